// The random terms: the uniform and normal generators against integer arithmetic done here, the
// Cholesky factor against L L' = a, the order in which a run consumes the stream, the read-in
// source, the messages and the debug labels.
#include "stoch/random_terms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bitset>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "model/options.h"
#include "numeric/matrix_ops.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

const double kEps = macheps();

// One generator step for a state in (0, 1), in 64-bit integers, where nothing can wrap.
double referenceStep(float s) {
  const auto k = static_cast<long long>(static_cast<double>(s) * 566927.0);
  const long long r = (k * 3612 + 5701) % 566927;
  return (static_cast<double>(r) + 0.5) / 566927.0;
}

// Skips `count` standard normals of a copy of the state and returns the copy.
RandomState skipped(RandomState state, int count) {
  for (int i = 0; i < count; ++i) standardNormal(state);
  return state;
}

// Whether two states give the same next draws (stream position and spare cache alike).
void expectSameStream(RandomState a, RandomState b) {
  for (int i = 0; i < 5; ++i) ASSERT_EQ(standardNormal(a), standardNormal(b)) << "draw " << i;
}

Mat column(std::initializer_list<double> v) {
  Mat m = mat2(1, static_cast<int>(v.size()), 1, 1);
  int i = 1;
  for (double x : v) m(i++, 1) = x;
  return m;
}

Mat diagonal(std::initializer_list<double> v) {
  const int k = static_cast<int>(v.size());
  Mat m = mat2(1, k, 1, k);
  int i = 1;
  for (double x : v) {
    m(i, i) = x;
    ++i;
  }
  return m;
}

Mat square(int k, std::initializer_list<double> rowMajor) {
  Mat m = mat2(1, k, 1, k);
  int idx = 0;
  for (double x : rowMajor) {
    m(idx / k + 1, idx % k + 1) = x;
    ++idx;
  }
  return m;
}

void fill(Mat& m, double value) {
  for (int i = m.rlo(); i <= m.rhi(); ++i)
    for (int j = m.clo(); j <= m.chi(); ++j) m(i, j) = value;
}

bool allEqual(const Mat& m, double value) {
  for (int i = m.rlo(); i <= m.rhi(); ++i)
    for (int j = m.clo(); j <= m.chi(); ++j)
      if (m(i, j) != value) return false;
  return true;
}

SolveTrace traceOf(DebugFile& file, std::initializer_list<SolveTopic> topics) {
  std::bitset<kSolveTopicCount> bits;
  for (SolveTopic t : topics) bits.set(static_cast<std::size_t>(t));
  return SolveTrace(&file, bits);
}

// The labels of a debug file in order: every non-empty line that is not an element row.
std::vector<std::string> labels(const std::string& content) {
  std::vector<std::string> out;
  std::istringstream in(content);
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line.rfind("   ", 0) == 0) continue;
    const std::size_t b = line.find_first_not_of(' ');
    const std::size_t e = line.find_last_not_of(' ');
    if (b != std::string::npos) out.push_back(line.substr(b, e - b + 1));
  }
  return out;
}

const std::string kFirstElementText =
    "The [1][1] element in the matrix passed to \t\t \r the Cholesky decomposition routine is less "
    "\t\t \r than epsilon, so the routine will fail.\t\t \r Therefore the return triangular "
    "matrix, \t\t \r is set to zero. \t\t \r Warning!  This can cause misleading results.";
const std::string kDiagonalText =
    "A diagonal element of lmat is less than epsilon, so lmat set to zero.";

// ---------------------------------------------------------------------------------------------
// Uniform and normal generators

TEST(Quarns, FirstStepFromTheDefaultSeedAndTheStoredFloat) {
  EXPECT_EQ(quarnsStep(0.5f), 3895.5 / 566927.0);  // k = 283463, r = 3895
  RandomState st;
  const double u = quarnsUniform(st);
  EXPECT_EQ(u, 3895.5 / 566927.0);
  EXPECT_EQ(st.quarnsSeed, static_cast<float>(3895.5 / 566927.0));
  EXPECT_NE(u, static_cast<double>(st.quarnsSeed));  // the draw is the unrounded value

  // Many steps, each from the float the previous one left.
  float s = st.quarnsSeed;
  for (int i = 0; i < 5000; ++i) {
    const double expected = referenceStep(s);
    s = static_cast<float>(expected);
    ASSERT_EQ(quarnsUniform(st), expected) << "step " << i;
    ASSERT_GT(expected, 0.0);
    ASSERT_LT(expected, 1.0);
  }
}

TEST(Quarns, SeedsOutsideTheUnitIntervalWrapInThirtyTwoBitsAndStillEnd) {
  // 2.0 x 566927 = 1133854; 1133854 x 3612 + 5701 = 4095486349 wraps to -199480947.
  const long long wrapped = 1133854LL * 3612 + 5701 - 4294967296LL;
  const long long r = wrapped % 566927;  // truncating: negative
  EXPECT_EQ(quarnsStep(2.0f), (static_cast<double>(r) + 0.5) / 566927.0);
  EXPECT_LT(quarnsStep(2.0f), 0.0);

  // A state the 32-bit range cannot hold, an infinity or a negative one: the polar method still
  // finds its way back into the unit disc.
  for (float seed : {-0.5f, 7.25f, 1.0e10f, std::numeric_limits<float>::infinity()}) {
    RandomState st;
    st.quarnsSeed = seed;
    EXPECT_TRUE(std::isfinite(standardNormal(st))) << seed;
  }
}

TEST(StandardNormal, PolarPairsWithTheSecondCachedWithoutTouchingTheSeed) {
  RandomState st;
  float s = st.quarnsSeed;
  int rejected = 0;
  for (int pair = 0; pair < 500; ++pair) {
    double a = 0.0, b = 0.0, rsq = 0.0;
    for (;;) {
      const double u1 = referenceStep(s);
      s = static_cast<float>(u1);
      const double u2 = referenceStep(s);
      s = static_cast<float>(u2);
      a = 2.0 * u1 - 1.0;
      b = 2.0 * u2 - 1.0;
      rsq = a * a + b * b;
      if (rsq < 1.0) break;
      ++rejected;
    }
    const double fac = std::sqrt(-2.0 * std::log(rsq) / rsq);
    ASSERT_EQ(standardNormal(st), b * fac) << "pair " << pair;
    ASSERT_EQ(st.spareFlag, 1);
    ASSERT_EQ(st.quarnsSeed, s);
    ASSERT_EQ(standardNormal(st), a * fac) << "pair " << pair;
    ASSERT_EQ(st.spareFlag, 0);
    ASSERT_EQ(st.quarnsSeed, s) << "the spare must not draw";
  }
  EXPECT_GT(rejected, 0) << "the rejection branch was never taken";
}

// ---------------------------------------------------------------------------------------------
// Cholesky

TEST(Cholesky, KnownFactorAndOneByOne) {
  RecordingPrompter p;
  Mat a = square(3, {4, 2, -2, 2, 10, 2, -2, 2, 6});
  Mat l = mat2(1, 3, 1, 3);
  fill(l, 99.0);
  Cholesky(3, a, l, kEps, p, SolveTrace());
  const Mat expected = square(3, {2, 0, 0, 1, 3, 0, -1, 1, 2});
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j) EXPECT_EQ(l(i, j), expected(i, j)) << i << "," << j;

  Mat one = square(1, {2.0});
  Mat l1 = mat2(1, 1, 1, 1);
  Cholesky(1, one, l1, kEps, p, SolveTrace());
  EXPECT_EQ(l1(1, 1), std::sqrt(2.0));
  EXPECT_EQ(one(1, 1), 2.0);
  EXPECT_TRUE(p.messages().empty());
}

TEST(Cholesky, RandomSpdMatricesFactorAndAreRestored) {
  const unsigned seed = 20240611u;
  SCOPED_TRACE("mt19937 seed " + std::to_string(seed));
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> dist(-1.0, 1.0);
  RecordingPrompter p;
  for (int k = 1; k <= 8; ++k) {
    Mat b = mat2(1, k, 1, k);
    for (int i = 1; i <= k; ++i)
      for (int j = 1; j <= k; ++j) b(i, j) = dist(gen);
    Mat a = mat2(1, k, 1, k);
    double scale = 0.0;
    for (int i = 1; i <= k; ++i)
      for (int j = 1; j <= k; ++j) {
        double s = i == j ? 0.1 : 0.0;
        for (int p2 = 1; p2 <= k; ++p2) s += b(i, p2) * b(j, p2);
        a(i, j) = s;
        scale = std::max(scale, std::fabs(s));
      }
    Mat original = mat2(1, k, 1, k);
    mmov(k, k, a, original);
    Mat l = mat2(1, k, 1, k);
    fill(l, 7.0);
    Cholesky(k, a, l, kEps, p, SolveTrace());
    for (int i = 1; i <= k; ++i) {
      EXPECT_GT(l(i, i), 0.0);
      for (int j = 1; j <= k; ++j) {
        EXPECT_EQ(a(i, j), original(i, j)) << "a not restored at " << i << "," << j;
        if (j > i) {
          EXPECT_EQ(l(i, j), 0.0);
        }
        double llt = 0.0;
        for (int p2 = 1; p2 <= k; ++p2) llt += l(i, p2) * l(j, p2);
        EXPECT_NEAR(llt, original(i, j), 64 * kEps * scale) << "k=" << k << " " << i << "," << j;
      }
    }
  }
  EXPECT_TRUE(p.messages().empty());
}

TEST(Cholesky, FailuresGiveTheirMessageAZeroFactorAndLeaveAUnchanged) {
  struct Case {
    Mat a;
    std::string text;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::vector<Case> cases;
  cases.push_back({square(2, {0, 0, 0, 1}), kFirstElementText});
  cases.push_back({square(2, {-1, 0, 0, 1}), kFirstElementText});
  cases.push_back({square(2, {kEps / 2, 0, 0, 1}), kFirstElementText});
  cases.push_back({square(2, {nan, 0, 0, 1}), kFirstElementText});
  // sqrt(4) = 2, a21 = 3, d = 5 - 9 < 0: a would be left half factored without the restore.
  cases.push_back({square(2, {4, 6, 6, 5}), kDiagonalText});
  cases.push_back({square(3, {1, 0, 0, 0, kEps / 2, 0, 0, 0, 1}), kDiagonalText});
  for (std::size_t c = 0; c < cases.size(); ++c) {
    SCOPED_TRACE("case " + std::to_string(c));
    RecordingPrompter p;
    Mat& a = cases[c].a;
    const int k = a.rows();
    Mat original = mat2(1, k, 1, k);
    mmov(k, k, a, original);
    Mat l = mat2(1, k, 1, k);
    fill(l, 5.0);
    Cholesky(k, a, l, kEps, p, SolveTrace());
    ASSERT_EQ(p.messages().size(), 1u);
    EXPECT_EQ(p.messages()[0].text, cases[c].text);
    EXPECT_EQ(p.messages()[0].caption, "Cholesky");
    EXPECT_TRUE(allEqual(l, 0.0));
    for (int i = 1; i <= k; ++i)
      for (int j = 1; j <= k; ++j) {
        if (!std::isnan(original(i, j))) {
          EXPECT_EQ(a(i, j), original(i, j));
        }
      }
  }
  // Exactly epsilon is enough, first element and later diagonal alike.
  RecordingPrompter p;
  Mat edge = square(2, {kEps, 0, 0, 1});
  Mat l = mat2(1, 2, 1, 2);
  Cholesky(2, edge, l, kEps, p, SolveTrace());
  Mat edge2 = square(2, {1, 0, 0, kEps});
  Cholesky(2, edge2, l, kEps, p, SolveTrace());
  EXPECT_TRUE(p.messages().empty());
  EXPECT_EQ(l(2, 2), std::sqrt(kEps));
}

// ---------------------------------------------------------------------------------------------
// Multivariate normal draws

TEST(NormalMuSigma, MuPlusFactorTimesTheNextNormals) {
  RecordingPrompter p;
  RandomState st;
  standardNormal(st);
  RandomState copy = st;
  const Mat mu = column({1.0, 2.0, 3.0});
  Mat sigma = square(3, {4, 2, -2, 2, 10, 2, -2, 2, 6});  // factor rows (2), (1 3), (-1 1 2)
  Mat ranvec = mat2(1, 3, 1, 1);
  NormalMuSigma(st, 3, 27, mu, sigma, ranvec, kEps, p, SolveTrace());
  const double e1 = standardNormal(copy), e2 = standardNormal(copy), e3 = standardNormal(copy);
  EXPECT_DOUBLE_EQ(ranvec(1, 1), 1.0 + 2.0 * e1);
  EXPECT_DOUBLE_EQ(ranvec(2, 1), 2.0 + (1.0 * e1 + 3.0 * e2));
  EXPECT_DOUBLE_EQ(ranvec(3, 1), 3.0 + (-1.0 * e1 + 1.0 * e2 + 2.0 * e3));
  EXPECT_EQ(sigma(2, 1), 2.0);
  EXPECT_EQ(sigma(3, 3), 6.0);
  expectSameStream(st, copy);
  EXPECT_TRUE(p.messages().empty());
}

TEST(NormalMuSigma, SampleMomentsMatchMuAndSigma) {
  RecordingPrompter p;
  RandomState st;
  const Mat mu = column({1.0, -2.0});
  Mat sigma = square(2, {4.0, 1.2, 1.2, 1.0});
  Mat ranvec = mat2(1, 2, 1, 1);
  const int draws = 20000;
  double s1 = 0, s2 = 0, s11 = 0, s12 = 0, s22 = 0;
  for (int i = 0; i < draws; ++i) {
    NormalMuSigma(st, 2, 27, mu, sigma, ranvec, kEps, p, SolveTrace());
    const double x = ranvec(1, 1), y = ranvec(2, 1);
    s1 += x;
    s2 += y;
    s11 += x * x;
    s12 += x * y;
    s22 += y * y;
  }
  const double m1 = s1 / draws, m2 = s2 / draws;
  // About four standard errors of each moment for this sample size.
  EXPECT_NEAR(m1, 1.0, 0.06);
  EXPECT_NEAR(m2, -2.0, 0.03);
  EXPECT_NEAR(s11 / draws - m1 * m1, 4.0, 0.16);
  EXPECT_NEAR(s12 / draws - m1 * m2, 1.2, 0.07);
  EXPECT_NEAR(s22 / draws - m2 * m2, 1.0, 0.04);
}

// ---------------------------------------------------------------------------------------------
// One run's terms

// Diagonal covariances with exact square roots, so every term is its mean plus a known multiple
// of one standard normal.
RandomSources sources(int n, int nt, int np, int ny) {
  RandomSources s;
  s.n = n;
  s.nt = nt;
  s.np = np;
  s.ny = ny;
  s.eps = kEps;
  s.q = diagonal({4.0, 9.0});
  s.r = diagonal({16.0, 0.25});
  s.gam = diagonal({1.0, 4.0});
  s.sitt0 = diagonal({9.0, 1.0});
  s.sixx0 = diagonal({0.25, 4.0});
  s.theta0 = column({0.5, -1.0});
  s.x0 = column({10.0, 20.0});
  return s;
}

RandomSwitches allOn() {
  RandomSwitches w;
  w.uncertainParameters = 1;
  w.uncertainStates = 1;
  w.systemEquations = 1;
  w.measurementEquations = 1;
  w.timeVaryingParameters = 1;
  return w;
}

TEST(MonteCarlo, DrawsEveryTermInTheFixedOrder) {
  RecordingPrompter p;
  RandomSources src = sources(2, 3, 2, 2);
  src.switches = allOn();
  RandomState st;
  standardNormal(st);  // start from a waiting spare
  RandomState ref = st;
  RandomTerms t = makeRandomTerms(2, 3, 2, 2);
  MonteCarlo(st, src, t, p, SolveTrace());
  EXPECT_TRUE(p.messages().empty());
  for (int k = 0; k <= 2; ++k) {
    EXPECT_EQ(t.xsis(1, k), 2.0 * standardNormal(ref)) << k;
    EXPECT_EQ(t.xsis(2, k), 3.0 * standardNormal(ref)) << k;
  }
  for (int k = 1; k <= 3; ++k) {
    EXPECT_EQ(t.zetas(1, k), 4.0 * standardNormal(ref)) << k;
    EXPECT_EQ(t.zetas(2, k), 0.5 * standardNormal(ref)) << k;
  }
  for (int k = 0; k <= 2; ++k) {
    EXPECT_EQ(t.etas(1, k), 1.0 * standardNormal(ref)) << k;
    EXPECT_EQ(t.etas(2, k), 2.0 * standardNormal(ref)) << k;
  }
  EXPECT_EQ(t.thetarandom(1, 1), 0.5 + 3.0 * standardNormal(ref));
  EXPECT_EQ(t.thetarandom(2, 1), -1.0 + 1.0 * standardNormal(ref));
  EXPECT_EQ(t.x0random(1, 1), 10.0 + 0.5 * standardNormal(ref));
  EXPECT_EQ(t.x0random(2, 1), 20.0 + 2.0 * standardNormal(ref));
  expectSameStream(st, ref);
}

TEST(MonteCarlo, SwitchedOffTermsAreZeroButParameterNoiseStillConsumesTheStream) {
  RecordingPrompter p;
  RandomSources src = sources(2, 3, 1, 2);  // np = 1: an odd count of thrown-away normals
  src.gam = diagonal({1.0});
  src.sitt0 = diagonal({9.0});
  src.theta0 = column({0.5});
  RandomState st;
  const RandomState before = st;
  RandomTerms t = makeRandomTerms(2, 3, 1, 2);
  fill(t.xsis, 5.0);
  fill(t.zetas, 5.0);
  fill(t.etas, 5.0);
  fill(t.thetarandom, 7.0);
  MonteCarlo(st, src, t, p, SolveTrace());
  EXPECT_TRUE(allEqual(t.xsis, 0.0));
  EXPECT_TRUE(allEqual(t.zetas, 0.0));
  EXPECT_TRUE(allEqual(t.etas, 0.0));
  EXPECT_TRUE(allEqual(t.thetarandom, 7.0)) << "left as the caller set it";
  EXPECT_EQ(t.x0random(1, 1), 10.0);
  EXPECT_EQ(t.x0random(2, 1), 20.0);
  expectSameStream(st, skipped(before, 3 * 1));  // nt x np, nothing more
  EXPECT_TRUE(p.messages().empty());

  // The initial parameter draw takes the normals after the thrown-away ones.
  src.switches.uncertainParameters = 1;
  RandomState st2;
  RandomState ref = skipped(st2, 3);
  MonteCarlo(st2, src, t, p, SolveTrace());
  EXPECT_EQ(t.thetarandom(1, 1), 0.5 + 3.0 * standardNormal(ref));
  expectSameStream(st2, ref);
}

TEST(MonteCarlo, ZeroQWarnsOnceThenCholeskyOncePerPeriod) {
  RecordingPrompter p;
  RandomSources src = sources(2, 3, 2, 2);
  src.q = mat2(1, 2, 1, 2);
  src.switches.systemEquations = 1;
  RandomState st;
  const RandomState before = st;
  RandomTerms t = makeRandomTerms(2, 3, 2, 2);
  fill(t.xsis, 5.0);
  MonteCarlo(st, src, t, p, SolveTrace());
  const std::string q =
      "Warning the (1,1) element in the system equations \t\t\r additive error covariance, Q, is "
      "less than epsilon, \t\t\r so that matrix may not be invertible as is \t\t\r required for "
      "the Monte Carlo generator. \t\t\r The Cholesky routine will return a zero matrix \t\t\r "
      "and this could cause misleading results. \t\t\r The warning after this one from the "
      "Cholesky subroutine \t\t\r may be repeated once for each time period.";
  ASSERT_EQ(p.messages().size(), 4u);
  EXPECT_EQ(p.messages()[0].text, q);
  EXPECT_EQ(p.messages()[0].caption, "MonteCarlo");
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(p.messages()[i].text, kFirstElementText);
    EXPECT_EQ(p.messages()[i].caption, "Cholesky");
  }
  EXPECT_TRUE(allEqual(t.xsis, 0.0));
  expectSameStream(st, skipped(before, 3 * 2 + 3 * 2));  // xsis draws, then the etas thrown away
}

TEST(MonteCarlo, EveryCovarianceWarningInOrder) {
  RecordingPrompter p;
  RandomSources src = sources(2, 2, 2, 2);
  for (Mat* m : {&src.q, &src.r, &src.gam, &src.sitt0, &src.sixx0}) fill(*m, 0.0);
  src.switches = allOn();
  RandomState st;
  RandomTerms t = makeRandomTerms(2, 2, 2, 2);
  MonteCarlo(st, src, t, p, SolveTrace());
  const std::string mid =
      " is less than epsilon, \t\t\r so that matrix may not be invertible as is \t\t\r required "
      "for the Monte Carlo generator. \t\t\r The Cholesky routine will return a zero matrix \t\t\r "
      "and this could cause misleading results. ";
  const std::string perPeriod =
      "\t\t\r The warning after this one from the Cholesky subroutine \t\t\r may be repeated once "
      "for each time period.";
  const std::string head = "Warning the (1,1) element in the ";
  const std::vector<std::string> warnings = {
      head + "system equations \t\t\r additive error covariance, Q," + mid + perPeriod,
      head + "measurement \t\t\r error covariance, R," + mid + perPeriod,
      head + "measurement \t\t\r error covariance, GAM," + mid + perPeriod,
      head + "parameter \t\t\r covariance, SITT0," + mid,
      head + "parameter \t\t\r covariance, SIXX0," + mid};
  const int choleskyAfter[] = {2, 2, 2, 1, 1};  // per period, or once
  std::vector<std::string> expected;
  for (int w = 0; w < 5; ++w) {
    expected.push_back("MonteCarlo: " + warnings[static_cast<std::size_t>(w)]);
    for (int c = 0; c < choleskyAfter[w]; ++c) expected.push_back("Cholesky: " + kFirstElementText);
  }
  std::vector<std::string> got;
  for (const Message& m : p.messages()) got.push_back(m.caption + ": " + m.text);
  EXPECT_EQ(got, expected);
  EXPECT_EQ(t.thetarandom(1, 1), 0.5);  // a zero factor leaves the mean
  EXPECT_EQ(t.x0random(2, 1), 20.0);
}

TEST(MonteCarlo, NoUncertainParametersDrawsNothingForThem) {
  RecordingPrompter p;
  RandomSources src = sources(2, 3, 0, 2);
  src.gam = mat2(1, 0, 1, 0);
  src.sitt0 = mat2(1, 0, 1, 0);
  src.theta0 = mat2(1, 0, 1, 1);
  src.switches = allOn();
  RandomState st;
  RandomState ref = skipped(st, 3 * 2 + 3 * 2);  // xsis, zetas
  RandomTerms t = makeRandomTerms(2, 3, 0, 2);
  MonteCarlo(st, src, t, p, SolveTrace());
  EXPECT_EQ(t.x0random(1, 1), 10.0 + 0.5 * standardNormal(ref));
  EXPECT_TRUE(p.messages().empty());
}

TEST(MonteCarlo, ReducedFormsDrawOnlyTheirTerm) {
  RecordingPrompter p;
  RandomSources src = sources(2, 3, 2, 2);
  src.switches = allOn();
  RandomState full;
  RandomState st = full;
  RandomTerms t = makeRandomTerms(2, 3, 2, 2);
  MonteCarlo(full, src, t, p, SolveTrace());
  Mat xsis = mat2(1, 2, 0, 2);
  MonteCarloXsis(st, src, xsis, p, SolveTrace());
  for (int i = 1; i <= 2; ++i)
    for (int k = 0; k <= 2; ++k) EXPECT_EQ(xsis(i, k), t.xsis(i, k));
  expectSameStream(st, skipped(RandomState(), 6));

  src.switches.systemEquations = 0;
  fill(xsis, 3.0);
  RandomState untouched;
  MonteCarloXsis(untouched, src, xsis, p, SolveTrace());
  EXPECT_TRUE(allEqual(xsis, 0.0));
  expectSameStream(untouched, RandomState());

  Mat theta = mat2(1, 2, 1, 1);
  RandomState th;
  RandomState ref = th;
  MonteCarloTheta(th, src, theta, p, SolveTrace());
  EXPECT_EQ(theta(1, 1), 0.5 + 3.0 * standardNormal(ref));
  EXPECT_EQ(theta(2, 1), -1.0 + 1.0 * standardNormal(ref));
  src.switches.uncertainParameters = 0;
  RandomState th2;
  MonteCarloTheta(th2, src, theta, p, SolveTrace());
  EXPECT_EQ(theta(1, 1), 0.5);
  EXPECT_EQ(theta(2, 1), -1.0);
  expectSameStream(th2, RandomState());
  EXPECT_TRUE(p.messages().empty());
}

TEST(GenerateRandomTerms, RunsMonteCarloAndAccumulatesTheMoments) {
  RecordingPrompter p;
  RandomSources src = sources(2, 3, 2, 2);
  src.switches = allOn();
  RandomState st;
  RandomState ref = st;
  RandomTerms t = makeRandomTerms(2, 3, 2, 2);
  RandomTerms r = makeRandomTerms(2, 3, 2, 2);
  RandomAccumulators acc = makeRandomAccumulators(2, 2);
  std::vector<RandomTerms> runs;
  for (int run = 0; run < 2; ++run) {
    EXPECT_EQ(GenerateRandomTerms(st, src, t, acc, p, SolveTrace()), 0);
    MonteCarlo(ref, src, r, p, SolveTrace());
    for (int i = 1; i <= 2; ++i) {
      EXPECT_EQ(t.thetarandom(i, 1), r.thetarandom(i, 1));
      for (int k = 0; k <= 2; ++k) EXPECT_EQ(t.xsis(i, k), r.xsis(i, k));
    }
    runs.push_back(t);
  }
  for (int i = 1; i <= 2; ++i) {
    EXPECT_DOUBLE_EQ(acc.thetaSum(i, 1), runs[0].thetarandom(i, 1) + runs[1].thetarandom(i, 1));
    // Each run adds its own sum over the periods.
    double xs = 0.0;
    for (const RandomTerms& run : runs) {
      double rowSum = 0.0;
      for (int k = 0; k <= 2; ++k) rowSum += run.xsis(i, k);
      xs += rowSum;
    }
    EXPECT_EQ(acc.xsisSum(i, 1), xs);
    for (int j = 1; j <= 2; ++j) {
      EXPECT_DOUBLE_EQ(acc.thetaOuter(i, j),
                       runs[0].thetarandom(i, 1) * runs[0].thetarandom(j, 1) +
                           runs[1].thetarandom(i, 1) * runs[1].thetarandom(j, 1));
      EXPECT_DOUBLE_EQ(acc.xsis0Outer(i, j), runs[0].xsis(i, 0) * runs[0].xsis(j, 0) +
                                                 runs[1].xsis(i, 0) * runs[1].xsis(j, 0));
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Choice of source

TextMatrix texts(int rows, int cols, double base) {
  TextMatrix t(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) t.setCell(i, j, std::to_string(base + 10 * i + j));
  return t;
}

Model readInModel() {
  Model model;
  model.flags.randomSource = opt::kReadIn;
  TextMatrix th0dev(2, 1);
  th0dev.setCell(0, 0, "0.25");
  th0dev.setCell(1, 0, "-0.5");
  model.setMatrix(MatrixId::TH0DEV, th0dev);
  TextMatrix x0dev(2, 1);
  x0dev.setCell(0, 0, "1");
  x0dev.setCell(1, 0, "-2");
  model.setMatrix(MatrixId::X0DEV, x0dev);
  TextMatrix th0diff(2, 1);
  th0diff.setCell(0, 0, "3.5");
  th0diff.setCell(1, 0, "4.5");
  model.setMatrix(MatrixId::TH0DIFF, th0diff);
  model.setMatrix(MatrixId::XSIS, texts(2, 3, 100));
  model.setMatrix(MatrixId::ZETAS, texts(2, 3, 200));
  model.setMatrix(MatrixId::ETAS, texts(2, 3, 300));
  return model;
}

TEST(ChooseRandomSource, ReadInTermsLineUpWithTheSolverPeriods) {
  RecordingPrompter p;
  const Model model = readInModel();
  RandomSources src = sources(2, 3, 2, 2);
  src.switches.uncertainParameters = 1;
  RandomTerms t = makeRandomTerms(2, 3, 2, 2);
  chooseRandomSource(model, src, t, p, SolveTrace());
  EXPECT_EQ(t.thetarandom(1, 1), 0.75);
  EXPECT_EQ(t.thetarandom(2, 1), -1.5);
  EXPECT_EQ(t.x0random(1, 1), 11.0);
  EXPECT_EQ(t.x0random(2, 1), 18.0);
  for (int i = 1; i <= 2; ++i)
    for (int j = 0; j <= 2; ++j) {
      EXPECT_EQ(t.xsis(i, j), 100 + 10 * (i - 1) + j) << i << "," << j;
      EXPECT_EQ(t.etas(i, j), 300 + 10 * (i - 1) + j) << i << "," << j;
      EXPECT_EQ(t.zetas(i, j + 1), 200 + 10 * (i - 1) + j) << i << "," << j + 1;
    }
  EXPECT_TRUE(p.messages().empty());

  // A narrower ZETAS leaves the last period at 0.
  Model narrow = model;
  narrow.setMatrix(MatrixId::ZETAS, texts(2, 2, 200));
  chooseRandomSource(narrow, src, t, p, SolveTrace());
  EXPECT_EQ(t.zetas(1, 2), 201.0);
  EXPECT_EQ(t.zetas(1, 3), 0.0);
}

TEST(ChooseRandomSource, CertainInitialParametersWhateverTheSource) {
  RecordingPrompter p;
  Model model = readInModel();
  RandomSources src = sources(2, 3, 2, 2);
  RandomTerms t = makeRandomTerms(2, 3, 2, 2);
  chooseRandomSource(model, src, t, p, SolveTrace());  // read in, both choices off: theta0
  EXPECT_EQ(t.thetarandom(1, 1), 0.5);
  EXPECT_EQ(t.thetarandom(2, 1), -1.0);
  EXPECT_EQ(t.x0random(1, 1), 11.0);

  model.flags.randomSource = opt::kGenerateInternally;
  src.switches.certainButDifferent = 1;
  RandomTerms g = makeRandomTerms(2, 3, 2, 2);
  fill(g.xsis, 42.0);
  chooseRandomSource(model, src, g, p, SolveTrace());
  EXPECT_EQ(g.thetarandom(1, 1), 3.5);
  EXPECT_EQ(g.thetarandom(2, 1), 4.5);
  EXPECT_TRUE(allEqual(g.xsis, 42.0)) << "generated terms are drawn per run, not here";
  EXPECT_TRUE(p.messages().empty());
}

TEST(ChooseRandomSource, BothInitialChoicesWarnAndLeaveTheDrawToTheRun) {
  RecordingPrompter p;
  Model model = readInModel();
  model.flags.randomSource = opt::kGenerateInternally;
  RandomSources src = sources(2, 3, 2, 2);
  src.switches.uncertainParameters = 1;
  src.switches.certainButDifferent = 1;
  RandomTerms t = makeRandomTerms(2, 3, 2, 2);
  fill(t.thetarandom, 8.0);
  chooseRandomSource(model, src, t, p, SolveTrace());
  ASSERT_EQ(p.messages().size(), 1u);
  EXPECT_EQ(p.messages()[0].caption, "Warning !");
  EXPECT_EQ(p.messages()[0].text,
            "Both random and certain specifications for the \t\t\t\r initial parameter estimates "
            "are set in \t\t\t\r Specification:Source of Random Terms. \t\t\t\r Please select on "
            "or the other. ");
  EXPECT_EQ(p.messages()[0].icon, Icon::Exclamation);
  EXPECT_TRUE(allEqual(t.thetarandom, 8.0));
}

// ---------------------------------------------------------------------------------------------
// ran0

// The shuffle generator as described: a 15-bit integer generator (state x 214013 + 2531011
// modulo 2^32, bits 16..30), 98 values discarded, a table of 98, and y.
struct ReferenceRan0 {
  std::uint64_t state = 0;
  std::vector<double> table = std::vector<double>(99, 0.0);
  double y = 0.0;
  bool filled = false;
  double nextInt() {
    state = (state * 214013 + 2531011) % 4294967296ULL;
    return static_cast<double>((state / 65536) % 32768);
  }
  double draw(int seed) {
    if (seed < 0 || !filled) {
      filled = true;
      state = static_cast<std::uint64_t>(static_cast<std::int64_t>(seed) + 4294967296LL) %
              4294967296ULL;
      for (int i = 0; i < 98; ++i) nextInt();
      for (int j = 1; j <= 98; ++j) table[static_cast<std::size_t>(j)] = nextInt();
      y = nextInt();
    }
    const auto j = static_cast<std::size_t>(98.0 * y / 32768.0 + 1.0);
    y = table[j];
    table[j] = nextInt();
    return y / 32768.0;
  }
};

TEST(Ran0, MatchesTheShuffleGeneratorAndReseedsOnANegativeSeed) {
  RecordingPrompter p;
  RandomState st;
  ReferenceRan0 ref;
  for (int i = 0; i < 1000; ++i) {
    const double v = ran0(st, 27, p);
    ASSERT_EQ(v, ref.draw(27)) << i;
    ASSERT_GE(v, 0.0);
    ASSERT_LT(v, 1.0);
  }
  // A negative seed fills the table afresh on every call; a positive one continues.
  const double first = ran0(st, -7, p);
  EXPECT_EQ(ran0(st, -7, p), first);
  ReferenceRan0 neg;
  EXPECT_EQ(first, neg.draw(-7));
  EXPECT_EQ(ran0(st, 5, p), neg.draw(5));
  EXPECT_TRUE(p.messages().empty());
}

TEST(Ran0, IndexOutOfRangeReportsAndStaysInTheTable) {
  RecordingPrompter p;
  RandomState st;
  ran0(st, 1, p);
  st.y = 40000.0;  // only a damaged state gives an index beyond 98
  st.table[98] = 123.0;
  EXPECT_EQ(ran0(st, 1, p), 123.0 / 32768.0);
  ASSERT_EQ(p.messages().size(), 1u);
  EXPECT_EQ(p.messages()[0].text, "Error in ran0.");
  EXPECT_EQ(p.messages()[0].caption, "ran0");
}

// ---------------------------------------------------------------------------------------------
// Seeds

TEST(Seeds, DialogTextsSetTheSeedsButNotTheSpare) {
  RandomState st;
  standardNormal(st);
  const double spare = st.spare;
  applySeedTexts(st, "123", "0.25");
  EXPECT_EQ(st.vxSeed, 123);
  EXPECT_EQ(st.quarnsSeed, 0.25f);
  EXPECT_EQ(st.vxSeedText, "123");
  EXPECT_EQ(st.quarnsSeedText, "0.25");
  EXPECT_EQ(st.spareFlag, 1);
  EXPECT_EQ(standardNormal(st), spare);
  EXPECT_EQ(quarnsUniform(st), referenceStep(0.25f));

  applySeedTexts(st, "123456789", "0.123456789");  // the fields hold eight characters
  EXPECT_EQ(st.vxSeed, 12345678);
  EXPECT_EQ(st.quarnsSeed, 0.123456f);
  EXPECT_EQ(st.quarnsSeedText, "0.123456");
  applySeedTexts(st, "x", "1e99");
  EXPECT_EQ(st.vxSeed, 0);
  EXPECT_TRUE(std::isinf(st.quarnsSeed));
}

TEST(Seeds, SeedLinesAtTheHeadOfTheDebugFile) {
  testing::TempDir dir;
  const std::string path = dir.file("seed.dbg");
  RandomState st;
  {
    DebugFile f;
    ASSERT_TRUE(f.open(path));
    EXPECT_EQ(writeSeedLines(f, st), 1);
    st.quarnsSeed = 0.25f;
    st.vxSeed = -3;
    EXPECT_EQ(writeSeedLines(f, st), 1);
  }
  EXPECT_EQ(testing::slurp(path),
            "\r\n\r\n\r\n Monte Carlo seed for Quarns' generator = 0.500000"
            "\r\n\r\n\r\n Monte Carlo seed for VX generator = 27"
            "\r\n\r\n\r\n Monte Carlo seed for Quarns' generator = 0.250000"
            "\r\n\r\n\r\n Monte Carlo seed for VX generator = -3");
  DebugFile closed;
  EXPECT_EQ(writeSeedLines(closed, st), 0);
}

// ---------------------------------------------------------------------------------------------
// Debug labels

std::string tracedRun(std::initializer_list<SolveTopic> topics, RandomSwitches switches, int np) {
  testing::TempDir dir;
  const std::string path = dir.file("random.dbg");
  {
    DebugFile f;
    EXPECT_TRUE(f.open(path));
    RecordingPrompter p;
    RandomSources src = sources(2, 2, np, 2);
    if (np == 1) {
      src.gam = diagonal({1.0});
      src.sitt0 = diagonal({1.0});
      src.theta0 = column({0.5});
    }
    src.switches = switches;
    RandomState st;
    RandomTerms t = makeRandomTerms(2, 2, np, 2);
    RandomAccumulators acc = makeRandomAccumulators(2, np);
    GenerateRandomTerms(st, src, t, acc, p, traceOf(f, topics));
  }
  return testing::slurp(path);
}

TEST(RandomTrace, MonteCarloLabelsInOrder) {
  const std::vector<std::string> expected = {
      "q in MonteCarlo",
      "r in MonteCarlo",
      "gam in MonteCarlo",
      "theta0 in MonteCarlo",
      "sitt0 in MonteCarlo",
      "x0 in MonteCarlo",
      "sixx0 in MonteCarlo",
      "xsis in MonteCarlo",
      "zetas in MonteCarlo",
      "evector in NormalZeroOneVec",  // the parameter noise thrown away, one vector per period
      "evector in NormalZeroOneVec",
      "thetarandom in MonteCarlo",
      "x0random in MonteCarlo"};
  EXPECT_EQ(labels(tracedRun({SolveTopic::RandomIntermediates}, RandomSwitches{}, 1)), expected);
  EXPECT_EQ(tracedRun({SolveTopic::RandomMeans, SolveTopic::KAndP}, RandomSwitches{}, 1), "");
}

TEST(RandomTrace, OneDrawAndTheRunsFinalTerms) {
  RandomSwitches w;
  w.uncertainParameters = 1;
  const std::vector<std::string> draw = {"mu in NormalMuSigma",
                                         "sigma in NormalMuSigma",
                                         "a in Cholesky",
                                         "lmat in Cholesky",
                                         "lmat in NormalMuSigma",
                                         "checkmat in NormalMuSigma",
                                         "evector in NormalZeroOneVec",
                                         "levector in NormalMuSigma",
                                         "ranvec in NormalMuSigma"};
  std::vector<std::string> l = labels(tracedRun({SolveTopic::RandomIntermediates}, w, 2));
  const auto at = std::find(l.begin(), l.end(), "mu in NormalMuSigma");
  ASSERT_GT(l.end() - at, static_cast<long>(draw.size()));
  EXPECT_EQ(std::vector<std::string>(at, at + static_cast<long>(draw.size())), draw);
  EXPECT_EQ(*(at + static_cast<long>(draw.size())), "thetarandom in MonteCarlo");

  const std::vector<std::string> finals = {
      "xsis in GenerateRandomTerms", "zetas in GenerateRandomTerms", "etas in GenerateRandomTerms",
      "thetarandom in GenerateRandomTerms", "x0random in GenerateRandomTerms"};
  EXPECT_EQ(labels(tracedRun({SolveTopic::RandomFinals}, w, 2)), finals);
}

TEST(RandomTrace, ReadInLabels) {
  testing::TempDir dir;
  const std::string path = dir.file("readin.dbg");
  {
    DebugFile f;
    ASSERT_TRUE(f.open(path));
    RecordingPrompter p;
    Model model = readInModel();
    RandomSources src = sources(2, 3, 2, 2);
    RandomTerms t = makeRandomTerms(2, 3, 2, 2);
    chooseRandomSource(model, src, t, p, traceOf(f, {SolveTopic::RandomFinals}));
    src.switches.certainButDifferent = 1;
    chooseRandomSource(model, src, t, p, traceOf(f, {SolveTopic::RandomIntermediates}));
    chooseRandomSource(model, src, t, p, traceOf(f, {SolveTopic::RandomFinals}));
  }
  const std::vector<std::string> expected = {
      "thetarandom from readin", "x0random from readin", "thetarandom from theta0",
      "thetarandom from readin", "x0random from readin", "thetarandom from theta0diff"};
  EXPECT_EQ(labels(testing::slurp(path)), expected);
}

}  // namespace
}  // namespace ovaro
