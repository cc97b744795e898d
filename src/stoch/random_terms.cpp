// The random terms of the stochastic runs.
//
// The uniform numbers come from the Quarns generator, a linear congruential step on a float
// state: every uniform is derived from the stored float, so the whole stream is fixed by the seed
// the user typed. Standard normals come from the polar method, which makes them in pairs and
// keeps the second for the next call. A draw from N(mu, sigma) is mu + L e with L the lower
// Cholesky factor of sigma, recomputed on every call, and e a vector of standard normals.
//
// MonteCarlo draws the terms of one run in a fixed order (system noise by period, measurement
// noise by period, parameter noise by period, the initial parameter estimate, the initial state
// estimate). The parameter noise is drawn even when it is switched off, so that switching it off
// leaves every later draw where it was.
#include "stoch/random_terms.h"

#include <climits>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <utility>

#include "io/number_format.h"
#include "model/conversion.h"
#include "model/options.h"
#include "numeric/matrix_ops.h"
#include "solve/model_input.h"

namespace ovaro {

namespace {

constexpr double kQuarnsModulus = 566927.0;
constexpr std::int32_t kQuarnsModulusInt = 566927;
constexpr std::int32_t kQuarnsMultiplier = 3612;
constexpr std::int32_t kQuarnsIncrement = 5701;

constexpr const char* kFirstElementMessage =
    "The [1][1] element in the matrix passed to \t\t \r the Cholesky decomposition routine is less "
    "\t\t \r than epsilon, so the routine will fail.\t\t \r Therefore the return triangular "
    "matrix, \t\t \r is set to zero. \t\t \r Warning!  This can cause misleading results.";
constexpr const char* kDiagonalMessage =
    "A diagonal element of lmat is less than epsilon, so lmat set to zero.";
constexpr const char* kBothInitialChoicesMessage =
    "Both random and certain specifications for the \t\t\t\r initial parameter estimates are set "
    "in \t\t\t\r Specification:Source of Random Terms. \t\t\t\r Please select on or the other. ";

// The warning shown before drawing from a covariance whose first element is below epsilon.
// `subject` names the matrix; the noise terms, drawn once per period, add that the Cholesky
// message may follow once for each period.
std::string covarianceWarning(const char* subject, bool perPeriod) {
  std::string text = "Warning the (1,1) element in the ";
  text += subject;
  text +=
      " is less than epsilon, \t\t\r so that matrix may not be invertible as is \t\t\r required "
      "for the Monte Carlo generator. \t\t\r The Cholesky routine will return a zero matrix \t\t\r "
      "and this could cause misleading results. ";
  if (perPeriod) {
    text +=
        "\t\t\r The warning after this one from the Cholesky subroutine \t\t\r "
        "may be repeated once for each time period.";
  }
  return text;
}

// The first element is missing (no variables), or below epsilon, or not a number: the same test
// that makes Cholesky give up, so the warning announces exactly the failures that follow.
bool firstElementBelowEps(int k, const Mat& a, double eps) {
  return k >= 1 && !(a(1, 1) >= eps);
}

void warnIfFirstBelowEps(int k, const Mat& a, double eps, const char* subject, bool perPeriod,
                         Prompter& prompter) {
  if (firstElementBelowEps(k, a, eps))
    prompter.inform(covarianceWarning(subject, perPeriod), "MonteCarlo", Icon::Exclamation);
}

// A double truncated toward zero to 32 bits. A value the 32-bit range cannot hold (or not a
// number) gives the most negative integer, as the processor's truncating conversion does; a
// seed far outside (0, 1) thus still gives a defined stream.
std::int32_t truncateToInt32(double x) {
  if (x > -2147483649.0 && x < 2147483648.0) return static_cast<std::int32_t>(x);
  return INT32_MIN;
}

// A number stored as a 32-bit float; beyond the float range it becomes an infinity, as the
// rounding to float does.
float toFloat(double x) {
  constexpr double kMax = std::numeric_limits<float>::max();
  if (x > kMax) return std::numeric_limits<float>::infinity();
  if (x < -kMax) return -std::numeric_limits<float>::infinity();
  return static_cast<float>(x);
}

// The integer generator of ran0: state = state x 214013 + 2531011 modulo 2^32, giving bits
// 16..30 of the new state.
int nextInteger(RandomState& state) {
  state.intState = state.intState * 214013u + 2531011u;
  return static_cast<int>((state.intState >> 16) & 0x7fffu);
}

// Column `col` of `out` = one draw from N(mu, sigma), for each period lo..hi in order.
void drawPeriods(RandomState& state, int k, int lo, int hi, const Mat& mu, Mat& sigma, Mat& out,
                 double eps, Prompter& prompter, const SolveTrace& trace) {
  Mat ranvec = mat2(1, k, 1, 1);
  for (int col = lo; col <= hi; ++col) {
    NormalMuSigma(state, k, state.vxSeed, mu, sigma, ranvec, eps, prompter, trace);
    vcolset(k, col, ranvec, out);
  }
}

// xsis: N(0, Q) for periods 0..nt-1 under "System Equations", zero otherwise.
void drawXsis(RandomState& state, RandomSources& src, Mat& xsis, Prompter& prompter,
              const SolveTrace& trace) {
  const int n = src.n;
  const int nt = src.nt;
  if (src.switches.systemEquations != 0) {
    warnIfFirstBelowEps(n, src.q, src.eps, "system equations \t\t\r additive error covariance, Q,",
                        true, prompter);
    const Mat zero = mat2(1, n, 1, 1);
    drawPeriods(state, n, 0, nt - 1, zero, src.q, xsis, src.eps, prompter, trace);
  } else {
    mzerosub(1, n, 0, nt - 1, xsis);
  }
  if (trace.on(SolveTopic::RandomIntermediates))
    trace.file().dumpMatrix("xsis in MonteCarlo", 1, n, 0, nt - 1, xsis);
}

// thetarandom: N(theta0, SITT0) under "Uncertain Parameters"; otherwise left as it is.
void drawTheta(RandomState& state, RandomSources& src, Mat& thetarandom, Prompter& prompter,
               const SolveTrace& trace) {
  const int np = src.np;
  if (src.switches.uncertainParameters != 0) {
    warnIfFirstBelowEps(np, src.sitt0, src.eps, "parameter \t\t\r covariance, SITT0,", false,
                        prompter);
    NormalMuSigma(state, np, state.vxSeed, src.theta0, src.sitt0, thetarandom, src.eps, prompter,
                  trace);
  }
  if (trace.on(SolveTopic::RandomIntermediates))
    trace.file().dumpMatrix("thetarandom in MonteCarlo", 1, np, 1, 1, thetarandom);
}

}  // namespace

double quarnsStep(float s) {
  // k = trunc(s x 566927); r = (k x 3612 + 5701) mod 566927 in wrapping 32-bit arithmetic.
  const std::int32_t k = truncateToInt32(static_cast<double>(s) * kQuarnsModulus);
  const auto wrapped = static_cast<std::int32_t>(static_cast<std::uint32_t>(k) *
                                                     static_cast<std::uint32_t>(kQuarnsMultiplier) +
                                                 static_cast<std::uint32_t>(kQuarnsIncrement));
  const std::int32_t r = wrapped % kQuarnsModulusInt;
  return (r + 0.5) / kQuarnsModulus;
}

double quarnsUniform(RandomState& state) {
  const double u = quarnsStep(state.quarnsSeed);
  state.quarnsSeed = toFloat(u);
  return u;
}

double standardNormal(RandomState& state) {
  if (state.spareFlag != 0) {
    state.spareFlag = 0;
    return state.spare;
  }
  // Polar method: a point uniform in the unit disc, rejected outside it. A point at the centre
  // is not guarded against.
  double a = 0.0;
  double b = 0.0;
  double rsq = 0.0;
  do {
    const double u1 = quarnsUniform(state);
    a = 2.0 * u1 - 1.0;
    const double u2 = quarnsUniform(state);
    b = 2.0 * u2 - 1.0;
    rsq = a * a + b * b;
  } while (rsq >= 1.0);
  const double fac = std::sqrt(-2.0 * std::log(rsq) / rsq);
  state.spare = a * fac;
  state.spareFlag = 1;
  return b * fac;
}

double ran0(RandomState& state, int seed, Prompter& prompter) {
  if (seed < 0 || !state.tableFilled) {
    state.tableFilled = true;
    state.intState = static_cast<std::uint32_t>(seed);
    for (int j = 1; j <= 98; ++j) nextInteger(state);
    for (int j = 1; j <= 98; ++j) state.table[static_cast<std::size_t>(j)] = nextInteger(state);
    state.y = nextInteger(state);
  }
  // j = trunc(98 y / 32768 + 1), which lies in 1..98 exactly when the position does in [1, 99).
  const double position = 98.0 * state.y / 32768.0 + 1.0;
  int j = 1;
  if (position >= 1.0 && position < 99.0) {
    j = static_cast<int>(position);
  } else {
    prompter.inform("Error in ran0.", "ran0", Icon::Exclamation);
    // y only leaves 0..32767 when the state was damaged; the nearest end of the table keeps the
    // read inside it.
    j = position >= 99.0 ? 98 : 1;
  }
  state.y = state.table[static_cast<std::size_t>(j)];
  state.table[static_cast<std::size_t>(j)] = nextInteger(state);
  return state.y / 32768.0;
}

void NormalZeroOneVec(RandomState& state, int k, [[maybe_unused]] int seed, Mat& evector,
                      const SolveTrace& trace) {
  for (int i = 1; i <= k; ++i) evector(i, 1) = standardNormal(state);
  if (trace.on(SolveTopic::RandomIntermediates))
    trace.file().dumpMatrix("evector in NormalZeroOneVec", 1, k, 1, 1, evector);
}

// lmat lmat' = a, lmat lower triangular; column by column, in place in a.
void Cholesky(int k, Mat& a, Mat& lmat, double eps, Prompter& prompter, const SolveTrace& trace) {
  if (k < 1) return;
  const bool traced = trace.on(SolveTopic::RandomIntermediates);
  if (traced) trace.file().dumpMatrix("a in Cholesky", 1, k, 1, k, a);
  // The factor overwrites a; the copy puts a back on every path.
  Mat saved = mat2(1, k, 1, k);
  mmov(k, k, a, saved);

  if (!(a(1, 1) >= eps)) {
    prompter.inform(kFirstElementMessage, "Cholesky", Icon::Exclamation);
    mzero(k, k, lmat);
    mmov(k, k, saved, a);
    return;
  }
  a(1, 1) = std::sqrt(a(1, 1));
  if (k == 1) {
    lmat(1, 1) = a(1, 1);
    mmov(k, k, saved, a);
    return;
  }
  const double inverse = 1.0 / a(1, 1);
  for (int i = 2; i <= k; ++i) a(i, 1) = a(i, 1) * inverse;

  for (int j = 2; j <= k; ++j) {
    double s = 0.0;
    for (int p = 1; p <= j - 1; ++p) s += a(j, p) * a(j, p);
    const double d = a(j, j) - s;
    if (d < eps) {
      prompter.inform(kDiagonalMessage, "Cholesky", Icon::Exclamation);
      mzero(k, k, lmat);
      mmov(k, k, saved, a);
      return;
    }
    a(j, j) = std::sqrt(d);
    for (int i = j + 1; i <= k; ++i) {
      double t = 0.0;
      for (int p = 1; p <= j - 1; ++p) t += a(i, p) * a(j, p);
      a(i, j) = (a(i, j) - t) / a(j, j);
    }
  }

  for (int i = 1; i <= k; ++i)
    for (int j = 1; j <= k; ++j) lmat(i, j) = j <= i ? a(i, j) : 0.0;
  if (traced) trace.file().dumpMatrix("lmat in Cholesky", 1, k, 1, k, lmat);
  mmov(k, k, saved, a);
}

// ranvec = mu + L e, L L' = sigma, e ~ N(0, I).
void NormalMuSigma(RandomState& state, int k, int seed, const Mat& mu, Mat& sigma, Mat& ranvec,
                   double eps, Prompter& prompter, const SolveTrace& trace) {
  if (k < 1) return;
  const bool traced = trace.on(SolveTopic::RandomIntermediates);
  if (traced) {
    trace.file().dumpMatrix("mu in NormalMuSigma", 1, k, 1, 1, mu);
    trace.file().dumpMatrix("sigma in NormalMuSigma", 1, k, 1, k, sigma);
  }
  Mat lmat = mat2(1, k, 1, k);
  Cholesky(k, sigma, lmat, eps, prompter, trace);
  if (traced) {
    trace.file().dumpMatrix("lmat in NormalMuSigma", 1, k, 1, k, lmat);
    // L L' shows in the file whether the factor reproduces sigma; nothing else uses it.
    Mat lmatT = mat2(1, k, 1, k);
    Mat checkmat = mat2(1, k, 1, k);
    mtrans(k, k, lmat, lmatT);
    mmul(k, k, k, lmat, lmatT, checkmat);
    trace.file().dumpMatrix("checkmat in NormalMuSigma", 1, k, 1, k, checkmat);
  }
  Mat evector = mat2(1, k, 1, 1);
  NormalZeroOneVec(state, k, seed, evector, trace);
  Mat levector = mat2(1, k, 1, 1);
  mmul(k, k, 1, lmat, evector, levector);
  if (traced) trace.file().dumpMatrix("levector in NormalMuSigma", 1, k, 1, 1, levector);
  madd(k, 1, mu, levector, ranvec);
  if (traced) trace.file().dumpMatrix("ranvec in NormalMuSigma", 1, k, 1, 1, ranvec);
}

RandomTerms makeRandomTerms(int n, int nt, int np, int ny) {
  RandomTerms t;
  t.x0random = mat2(1, n, 1, 1);
  t.thetarandom = mat2(1, np, 1, 1);
  t.xsis = mat2(1, n, 0, nt - 1);
  t.zetas = mat2(1, ny, 1, nt);
  t.etas = mat2(1, np, 0, nt - 1);
  return t;
}

void MonteCarlo(RandomState& state, RandomSources& src, RandomTerms& terms, Prompter& prompter,
                const SolveTrace& trace) {
  const int n = src.n;
  const int nt = src.nt;
  const int np = src.np;
  const int ny = src.ny;
  const bool traced = trace.on(SolveTopic::RandomIntermediates);
  if (traced) {
    DebugFile& f = trace.file();
    f.dumpMatrix("q in MonteCarlo", 1, n, 1, n, src.q);
    f.dumpMatrix("r in MonteCarlo", 1, ny, 1, ny, src.r);
    f.dumpMatrix("gam in MonteCarlo", 1, np, 1, np, src.gam);
    f.dumpMatrix("theta0 in MonteCarlo", 1, np, 1, 1, src.theta0);
    f.dumpMatrix("sitt0 in MonteCarlo", 1, np, 1, np, src.sitt0);
    f.dumpMatrix("x0 in MonteCarlo", 1, n, 1, 1, src.x0);
    f.dumpMatrix("sixx0 in MonteCarlo", 1, n, 1, n, src.sixx0);
  }

  // System noise, periods 0..nt-1.
  drawXsis(state, src, terms.xsis, prompter, trace);

  // Measurement noise, periods 1..nt.
  if (src.switches.measurementEquations != 0) {
    warnIfFirstBelowEps(ny, src.r, src.eps, "measurement \t\t\r error covariance, R,", true,
                        prompter);
    const Mat zero = mat2(1, ny, 1, 1);
    drawPeriods(state, ny, 1, nt, zero, src.r, terms.zetas, src.eps, prompter, trace);
  } else {
    mzerosub(1, ny, 1, nt, terms.zetas);
  }
  if (traced) trace.file().dumpMatrix("zetas in MonteCarlo", 1, ny, 1, nt, terms.zetas);

  // Parameter noise, periods 0..nt-1. Switched off, the normals are still drawn and thrown away,
  // so the initial estimates take the same numbers either way.
  if (src.switches.timeVaryingParameters != 0) {
    warnIfFirstBelowEps(np, src.gam, src.eps, "measurement \t\t\r error covariance, GAM,", true,
                        prompter);
    const Mat zero = mat2(1, np, 1, 1);
    drawPeriods(state, np, 0, nt - 1, zero, src.gam, terms.etas, src.eps, prompter, trace);
    if (traced) trace.file().dumpMatrix("etas in MonteCarlo", 1, np, 0, nt - 1, terms.etas);
  } else {
    Mat discarded = mat2(1, np, 1, 1);
    for (int k = 0; k <= nt - 1; ++k) NormalZeroOneVec(state, np, state.vxSeed, discarded, trace);
    mzerosub(1, np, 0, nt - 1, terms.etas);
  }

  // The controller's initial parameter estimate.
  drawTheta(state, src, terms.thetarandom, prompter, trace);

  // The controller's initial state estimate.
  if (src.switches.uncertainStates != 0) {
    warnIfFirstBelowEps(n, src.sixx0, src.eps, "parameter \t\t\r covariance, SIXX0,", false,
                        prompter);
    NormalMuSigma(state, n, state.vxSeed, src.x0, src.sixx0, terms.x0random, src.eps, prompter,
                  trace);
  } else {
    mmov(n, 1, src.x0, terms.x0random);
  }
  if (traced) trace.file().dumpMatrix("x0random in MonteCarlo", 1, n, 1, 1, terms.x0random);
}

void MonteCarloXsis(RandomState& state, RandomSources& src, Mat& xsis, Prompter& prompter,
                    const SolveTrace& trace) {
  if (trace.on(SolveTopic::RandomIntermediates))
    trace.file().dumpMatrix("q in MonteCarlo", 1, src.n, 1, src.n, src.q);
  drawXsis(state, src, xsis, prompter, trace);
}

void MonteCarloTheta(RandomState& state, RandomSources& src, Mat& thetarandom, Prompter& prompter,
                     const SolveTrace& trace) {
  const int np = src.np;
  if (trace.on(SolveTopic::RandomIntermediates)) {
    trace.file().dumpMatrix("theta0 in MonteCarlo", 1, np, 1, 1, src.theta0);
    trace.file().dumpMatrix("sitt0 in MonteCarlo", 1, np, 1, np, src.sitt0);
  }
  if (src.switches.uncertainParameters == 0) mmov(np, 1, src.theta0, thetarandom);
  drawTheta(state, src, thetarandom, prompter, trace);
}

RandomAccumulators makeRandomAccumulators(int n, int np) {
  RandomAccumulators acc;
  acc.thetaSum = mat2(1, np, 1, 1);
  acc.xsisSum = mat2(1, n, 1, 1);
  acc.thetaOuter = mat2(1, np, 1, np);
  acc.xsis0Outer = mat2(1, n, 1, n);
  return acc;
}

int GenerateRandomTerms(RandomState& state, RandomSources& src, RandomTerms& terms,
                        RandomAccumulators& acc, Prompter& prompter, const SolveTrace& trace) {
  const int n = src.n;
  const int nt = src.nt;
  const int np = src.np;
  const int ny = src.ny;
  MonteCarlo(state, src, terms, prompter, trace);
  if (trace.on(SolveTopic::RandomFinals)) {
    DebugFile& f = trace.file();
    f.dumpMatrix("xsis in GenerateRandomTerms", 1, n, 0, nt - 1, terms.xsis);
    f.dumpMatrix("zetas in GenerateRandomTerms", 1, ny, 1, nt, terms.zetas);
    f.dumpMatrix("etas in GenerateRandomTerms", 1, np, 0, nt - 1, terms.etas);
    f.dumpMatrix("thetarandom in GenerateRandomTerms", 1, np, 1, 1, terms.thetarandom);
    f.dumpMatrix("x0random in GenerateRandomTerms", 1, n, 1, 1, terms.x0random);
  }
  // The sample moments of the draws, checked after the runs.
  for (int i = 1; i <= np; ++i) acc.thetaSum(i, 1) += terms.thetarandom(i, 1);
  for (int i = 1; i <= n; ++i) {
    double rowSum = 0.0;
    for (int k = 0; k <= nt - 1; ++k) rowSum += terms.xsis(i, k);
    acc.xsisSum(i, 1) += rowSum;
  }
  for (int i = 1; i <= np; ++i)
    for (int j = 1; j <= np; ++j)
      acc.thetaOuter(i, j) += terms.thetarandom(i, 1) * terms.thetarandom(j, 1);
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j) acc.xsis0Outer(i, j) += terms.xsis(i, 0) * terms.xsis(j, 0);
  return 0;
}

// Read-in terms come from the Model's matrices, whose columns are the solver's periods:
// XSIS and ETAS column j is period j (0..nt-1), ZETAS column j is period j + 1 (1..nt), nt being
// the solver's horizon (the Model's period count minus one, the width of these matrices). A
// narrower matrix, as an older file may hold, leaves its last periods at 0.
void chooseRandomSource(const Model& model, const RandomSources& src, RandomTerms& terms,
                        Prompter& prompter, const SolveTrace& trace) {
  const int n = src.n;
  const int nt = src.nt;
  const int np = src.np;
  const int ny = src.ny;
  const bool traced = trace.on(SolveTopic::RandomFinals);
  const RandomSwitches& s = src.switches;

  if (model.flags.randomSource == opt::kReadIn) {
    const Mat th0dev = readModelMatrix(model, MatrixId::TH0DEV, np, 1, 1);
    const Mat x0dev = readModelMatrix(model, MatrixId::X0DEV, n, 1, 1);
    madd(np, 1, src.theta0, th0dev, terms.thetarandom);
    madd(n, 1, src.x0, x0dev, terms.x0random);
    if (traced) {
      trace.file().dumpMatrix("thetarandom from readin", 1, np, 1, 1, terms.thetarandom);
      trace.file().dumpMatrix("x0random from readin", 1, n, 1, 1, terms.x0random);
    }
    mmovsub(1, n, 0, nt - 1, readModelMatrix(model, MatrixId::XSIS, n, 0, nt - 1), terms.xsis);
    mmovsub(1, ny, 1, nt, readModelMatrix(model, MatrixId::ZETAS, ny, 1, nt), terms.zetas);
    mmovsub(1, np, 0, nt - 1, readModelMatrix(model, MatrixId::ETAS, np, 0, nt - 1), terms.etas);
  }

  if (s.uncertainParameters == 0 && s.certainButDifferent == 0) {
    mmov(np, 1, src.theta0, terms.thetarandom);
    if (traced) trace.file().dumpMatrix("thetarandom from theta0", 1, np, 1, 1, terms.thetarandom);
  } else if (s.uncertainParameters == 0 && s.certainButDifferent != 0) {
    mmov(np, 1, readModelMatrix(model, MatrixId::TH0DIFF, np, 1, 1), terms.thetarandom);
    if (traced)
      trace.file().dumpMatrix("thetarandom from theta0diff", 1, np, 1, 1, terms.thetarandom);
  }

  // The draw, made per run, overrides the certain value; the user is told to choose.
  if (s.uncertainParameters != 0 && s.certainButDifferent != 0)
    prompter.inform(kBothInitialChoicesMessage, "Warning !", Icon::Exclamation);
}

int writeSeedLines(DebugFile& file, const RandomState& state) {
  file.write(formatLabelled("\r\n\r\n\r\n%s%f", " Monte Carlo seed for Quarns' generator = ",
                            static_cast<double>(state.quarnsSeed)));
  file.write(
      formatLabelled("\r\n\r\n\r\n%s%d", " Monte Carlo seed for VX generator = ", state.vxSeed));
  return file.isOpen() ? file.ok() : 0;
}

void applySeedTexts(RandomState& state, std::string vxText, std::string quarnsText) {
  // The dialog's fields hold at most 8 characters.
  constexpr std::size_t kSeedChars = 8;
  if (vxText.size() > kSeedChars) vxText.resize(kSeedChars);
  if (quarnsText.size() > kSeedChars) quarnsText.resize(kSeedChars);
  state.vxSeed = toInt(vxText);
  state.quarnsSeed = toFloat(toDouble(quarnsText));
  state.vxSeedText = std::move(vxText);
  state.quarnsSeedText = std::move(quarnsText);
}

}  // namespace ovaro
