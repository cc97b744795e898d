// The random terms: both generators against their recurrences in wide integers, draws against
// the covariance they come from, the order in which a run consumes the stream, the read-in source,
// the messages and the debug labels (tests/data/random_terms.txt).
#include "stoch/random_terms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "model/options.h"
#include "numeric/matrix_ops.h"
#include "support/debug_labels.h"
#include "support/mat.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using namespace testing;

const double kEps = macheps();
const std::string kData = "random_terms.txt";

// One generator step for a state in (0, 1), in 64-bit integers, where nothing can wrap.
double referenceStep(float s) {
  const auto k = static_cast<long long>(static_cast<double>(s) * 566927.0);
  return (static_cast<double>((k * 3612 + 5701) % 566927) + 0.5) / 566927.0;
}

RandomState skipped(RandomState state, int count) {
  for (int i = 0; i < count; ++i) standardNormal(state);
  return state;
}

// Whether two states give the same next draws (stream position and spare cache alike).
void expectSameStream(RandomState a, RandomState b) {
  for (int i = 0; i < 5; ++i) ASSERT_EQ(standardNormal(a), standardNormal(b)) << "draw " << i;
}

SolveTrace traceOf(DebugFile& file, std::initializer_list<SolveTopic> topics) {
  std::bitset<kSolveTopicCount> bits;
  for (SolveTopic t : topics) bits.set(static_cast<std::size_t>(t));
  return SolveTrace(&file, bits);
}

// What `write` leaves in a fresh debug file.
std::string written(const std::function<void(DebugFile&)>& write) {
  TempDir dir;
  DebugFile f;
  EXPECT_TRUE(f.open(dir.file("random.dbg")));
  write(f);
  f.close();
  return slurp(dir.file("random.dbg"));
}

TEST(StandardNormal, PolarPairsOfQuarnsUniformsWithTheSecondCachedWithoutTouchingTheSeed) {
  RandomState st;
  float s = st.quarnsSeed;
  int rejected = 0;
  for (int pair = 0; pair < 2000; ++pair) {
    double a = 0.0, b = 0.0, rsq = 0.0;
    do {
      const double u1 = referenceStep(s);
      const double u2 = referenceStep(static_cast<float>(u1));
      s = static_cast<float>(u2);
      a = 2.0 * u1 - 1.0, b = 2.0 * u2 - 1.0, rsq = a * a + b * b;
      rejected += rsq >= 1.0;
    } while (rsq >= 1.0);
    const double fac = std::sqrt(-2.0 * std::log(rsq) / rsq);
    ASSERT_EQ(standardNormal(st), b * fac) << "pair " << pair;
    ASSERT_EQ(standardNormal(st), a * fac) << "pair " << pair;
    ASSERT_EQ(st.quarnsSeed, s) << "the spare must not draw";
  }
  EXPECT_GT(rejected, 0) << "the rejection branch was never taken";
  EXPECT_EQ(quarnsStep(0.5f), 3895.5 / 566927.0);  // from the default seed
  // 2.0 x 566927 x 3612 + 5701 wraps to a negative int, and the remainder stays negative.
  const long long wrapped = 1133854LL * 3612 + 5701 - 4294967296LL;
  EXPECT_EQ(quarnsStep(2.0f), (static_cast<double>(wrapped % 566927) + 0.5) / 566927.0);
}

// The shuffle generator's first draws from a seed: a 15-bit integer generator (state x 214013 +
// 2531011 modulo 2^32, bits 16..30), 98 values discarded, a table of the next 98, then y.
std::vector<double> referenceRan0(int seed, std::size_t count) {
  auto state = static_cast<std::uint64_t>(seed + 4294967296LL) % 4294967296ULL;
  auto next = [&] {
    state = (state * 214013 + 2531011) % 4294967296ULL;
    return static_cast<double>((state / 65536) % 32768);
  };
  std::vector<double> table(99), out;
  for (int i = 0; i < 98; ++i) next();
  for (std::size_t j = 1; j <= 98; ++j) table[j] = next();
  for (double y = next(); out.size() < count; out.push_back(y / 32768.0)) {
    const auto j = static_cast<std::size_t>(98.0 * y / 32768.0 + 1.0);
    y = table[j], table[j] = next();
  }
  return out;
}

TEST(Ran0, MatchesTheShuffleGeneratorAndReseedsOnANegativeSeed) {
  RecordingPrompter p;
  RandomState st;
  for (double expected : referenceRan0(27, 1000)) ASSERT_EQ(ran0(st, 27, p), expected);
  // A negative seed fills the table afresh on every call; a positive one continues.
  const std::vector<double> negative = referenceRan0(-7, 2);
  EXPECT_EQ(ran0(st, -7, p), negative[0]);
  EXPECT_EQ(ran0(st, -7, p), negative[0]);
  EXPECT_EQ(ran0(st, 5, p), negative[1]);
  st.y = 40000.0;  // only a damaged state gives an index beyond 98
  st.table[98] = 123.0;
  EXPECT_EQ(ran0(st, 1, p), 123.0 / 32768.0);
  EXPECT_EQ(shown(p), std::vector<std::string>{"ran0: Error in ran0."});
}

TEST(Cholesky, FailuresGiveTheirMessageAZeroFactorAndLeaveAUnchanged) {
  const std::string first = dataSection(kData, "cholesky-first-element").at(0);
  const std::string diagonal = dataSection(kData, "cholesky-diagonal").at(0);
  const std::pair<Mat, std::string> cases[] = {
      {rowsMat({{0, 0}, {0, 1}}), first},
      {rowsMat({{kEps / 2, 0}, {0, 1}}), first},
      {rowsMat({{std::numeric_limits<double>::quiet_NaN(), 0}, {0, 1}}), first},
      // sqrt(4) = 2, a21 = 3, d = 5 - 9 < 0: a would be left half factored without the restore.
      {rowsMat({{4, 6}, {6, 5}}), diagonal},
      {rowsMat({{1, 0, 0}, {0, kEps / 2, 0}, {0, 0, 1}}), diagonal},
      // Exactly epsilon is enough, on the first element and later on the diagonal alike.
      {rowsMat({{kEps, 0}, {0, 1}}), ""},
      {rowsMat({{1, 0}, {0, kEps}}), ""}};
  for (const auto& [input, text] : cases) {
    RecordingPrompter p;
    Mat a = input;
    const int k = a.rows();
    Mat l = filledMat(1, k, 1, k, 5.0);
    Cholesky(k, a, l, kEps, p, SolveTrace());
    EXPECT_EQ(shown(p), std::vector<std::string>(text.empty() ? 0 : 1, "Cholesky: " + text));
    EXPECT_EQ(allEqual(l, 0.0), !text.empty());
    EXPECT_EQ(l(k, k), text.empty() ? std::sqrt(input(k, k)) : 0.0);
    for (int i = 1; i <= k; ++i)
      for (int j = 1; j <= k; ++j)
        EXPECT_TRUE(a(i, j) == input(i, j) || std::isnan(input(i, j))) << i << "," << j;
  }
}

// A factor worked by hand, rows (2), (1 3), (-1 1 2), and many draws of mu + L e that have the
// mean and covariance they were drawn from; sigma is left as it was.
TEST(NormalMuSigma, TheFactorAndTheSampleMomentsMatchTheCovariance) {
  RecordingPrompter p;
  RandomState st;
  const Mat given = rowsMat({{4, 2, -2}, {2, 10, 2}, {-2, 2, 6}}), mu = colMat({1, 2, 3});
  const Mat factor = rowsMat({{2, 0, 0}, {1, 3, 0}, {-1, 1, 2}});
  Mat sigma = given, l = filledMat(1, 3, 1, 3, 7.0), outer = filledMat(1, 3, 1, 3, 0.0);
  Mat ranvec = mat2(1, 3, 1, 1), sum = filledMat(1, 3, 1, 1, 0.0);
  Cholesky(3, sigma, l, kEps, p, SolveTrace());
  const int draws = 10000;
  for (int d = 0; d < draws; ++d) {
    NormalMuSigma(st, 3, 27, mu, sigma, ranvec, kEps, p, SolveTrace());
    for (int i = 1; i <= 3; ++i) {
      sum(i, 1) += ranvec(i, 1);
      for (int j = 1; j <= 3; ++j)
        outer(i, j) += (ranvec(i, 1) - mu(i, 1)) * (ranvec(j, 1) - mu(j, 1));
    }
  }
  for (int i = 1; i <= 3; ++i) {
    EXPECT_NEAR(sum(i, 1) / draws, mu(i, 1), 0.05) << i;
    for (int j = 1; j <= 3; ++j) {
      EXPECT_NEAR(outer(i, j) / draws, given(i, j), 0.05 * std::sqrt(given(i, i) * given(j, j)));
      EXPECT_TRUE(sigma(i, j) == given(i, j) && l(i, j) == factor(i, j)) << i << "," << j;
    }
  }
  EXPECT_TRUE(p.messages().empty());
}

// Diagonal covariances with exact square roots, so every term is its mean plus a known multiple
// of one standard normal.
RandomSources sources(int n, int nt, int np, int ny, RandomSwitches w = {1, 0, 1, 1, 1, 1}) {
  RandomSources s;
  s.n = n, s.nt = nt, s.np = np, s.ny = ny, s.eps = kEps, s.switches = w;
  s.q = diagMat({4.0, 9.0});
  s.r = diagMat({16.0, 0.25});
  s.gam = np == 1 ? diagMat({1.0}) : diagMat({1.0, 4.0});
  s.sitt0 = np == 1 ? diagMat({9.0}) : diagMat({9.0, 1.0});
  s.theta0 = np == 1 ? colMat({0.5}) : colMat({0.5, -1.0});
  s.sixx0 = diagMat({0.25, 4.0});
  s.x0 = colMat({10.0, 20.0});
  return s;
}

TEST(MonteCarlo, DrawsEveryTermInTheFixedOrder) {
  RecordingPrompter p;
  RandomSources src = sources(2, 3, 2, 2);
  RandomState st;
  standardNormal(st);  // start from a waiting spare
  RandomState ref = st;
  RandomTerms t = makeRandomTerms(2, 3, 2, 2);
  MonteCarlo(st, src, t, p, SolveTrace());
  // Per-period terms column by column, then theta0's draw, then x0's.
  for (const auto& [m, first, sd1, sd2] :
       {std::tuple{&t.xsis, 0, 2.0, 3.0}, {&t.zetas, 1, 4.0, 0.5}, {&t.etas, 0, 1.0, 2.0}})
    for (int k = first; k <= first + 2; ++k) {
      EXPECT_EQ((*m)(1, k), sd1 * standardNormal(ref)) << k;
      EXPECT_EQ((*m)(2, k), sd2 * standardNormal(ref)) << k;
    }
  EXPECT_EQ(t.thetarandom(1, 1), 0.5 + 3.0 * standardNormal(ref));
  EXPECT_EQ(t.thetarandom(2, 1), -1.0 + 1.0 * standardNormal(ref));
  EXPECT_EQ(t.x0random(1, 1), 10.0 + 0.5 * standardNormal(ref));
  EXPECT_EQ(t.x0random(2, 1), 20.0 + 2.0 * standardNormal(ref));
  expectSameStream(st, ref);
  // The system noise alone, as the comparison without updating draws it, is the full draw's.
  RandomState again = skipped(RandomState(), 1);
  Mat xsis = mat2(1, 2, 0, 2);
  MonteCarloXsis(again, src, xsis, p, SolveTrace());
  for (int k = 0; k <= 2; ++k)
    EXPECT_TRUE(xsis(1, k) == t.xsis(1, k) && xsis(2, k) == t.xsis(2, k));
  expectSameStream(again, skipped(RandomState(), 7));
  EXPECT_TRUE(p.messages().empty());
}

TEST(MonteCarlo, SwitchedOffAndZeroCovariancesGiveZeroTermsButParameterNoiseStillDraws) {
  RecordingPrompter p;
  RandomSources src = sources(2, 3, 1, 2, {});  // np = 1: an odd count of thrown-away normals
  RandomState st;
  RandomTerms t = makeRandomTerms(2, 3, 1, 2);
  for (Mat* m : {&t.xsis, &t.zetas, &t.etas}) fillMat(*m, 5.0);
  fillMat(t.thetarandom, 7.0);
  MonteCarlo(st, src, t, p, SolveTrace());
  EXPECT_TRUE(allEqual(t.xsis, 0.0) && allEqual(t.zetas, 0.0) && allEqual(t.etas, 0.0));
  EXPECT_TRUE(allEqual(t.thetarandom, 7.0)) << "left as the caller set it";
  EXPECT_EQ(t.x0random(2, 1), 20.0);
  expectSameStream(st, skipped(RandomState(), 3 * 1));  // nt x np, nothing more

  // The initial parameter draw takes the normals after the thrown-away ones.
  src.switches.uncertainParameters = 1;
  RandomState st2, ref = skipped(RandomState(), 3);
  MonteCarlo(st2, src, t, p, SolveTrace());
  EXPECT_EQ(t.thetarandom(1, 1), 0.5 + 3.0 * standardNormal(ref));
  expectSameStream(st2, ref);

  // Without uncertain parameters nothing is drawn for them.
  RandomSources none = sources(2, 3, 0, 2);
  none.gam = none.sitt0 = mat2(1, 0, 1, 0);
  none.theta0 = mat2(1, 0, 1, 1);
  RandomState st3, ref3 = skipped(RandomState(), 3 * 2 + 3 * 2);  // xsis, zetas
  RandomTerms t3 = makeRandomTerms(2, 3, 0, 2);
  MonteCarlo(st3, none, t3, p, SolveTrace());
  EXPECT_EQ(t3.x0random(1, 1), 10.0 + 0.5 * standardNormal(ref3));

  // Every covariance zero: each warning in turn, zero terms, the means left.
  RandomSources zero = sources(2, 2, 2, 2);
  for (Mat* m : {&zero.q, &zero.r, &zero.gam, &zero.sitt0, &zero.sixx0}) fillMat(*m, 0.0);
  RandomTerms z = makeRandomTerms(2, 2, 2, 2);
  fillMat(z.xsis, 5.0);
  MonteCarlo(st, zero, z, p, SolveTrace());
  EXPECT_EQ(shown(p), dataSection(kData, "every-covariance-zero"));
  EXPECT_TRUE(allEqual(z.xsis, 0.0) && z.thetarandom(1, 1) == 0.5 && z.x0random(2, 1) == 20.0);
}

TEST(GenerateRandomTerms, AddsEachRunsTermsToTheSums) {
  RecordingPrompter p;
  RandomSources src = sources(2, 3, 2, 2);
  RandomState st;
  RandomAccumulators acc = makeRandomAccumulators(2, 2);
  RandomTerms runs[2] = {makeRandomTerms(2, 3, 2, 2), makeRandomTerms(2, 3, 2, 2)};
  for (RandomTerms& t : runs) EXPECT_EQ(GenerateRandomTerms(st, src, t, acc, p, SolveTrace()), 0);
  const Mat &a = runs[0].thetarandom, &b = runs[1].thetarandom, &x = runs[0].xsis,
            &y = runs[1].xsis;
  for (int i = 1; i <= 2; ++i) {
    EXPECT_DOUBLE_EQ(acc.thetaSum(i, 1), a(i, 1) + b(i, 1));
    EXPECT_DOUBLE_EQ(acc.xsisSum(i, 1),
                     (x(i, 0) + x(i, 1) + x(i, 2)) + (y(i, 0) + y(i, 1) + y(i, 2)));
    for (int j = 1; j <= 2; ++j) {
      EXPECT_DOUBLE_EQ(acc.thetaOuter(i, j), a(i, 1) * a(j, 1) + b(i, 1) * b(j, 1));
      EXPECT_DOUBLE_EQ(acc.xsis0Outer(i, j), x(i, 0) * x(j, 0) + y(i, 0) * y(j, 0));
    }
  }
}

TextMatrix texts(int rows, int cols, double base) {
  TextMatrix t(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) t.setCell(i, j, std::to_string(base + 10 * i + j));
  return t;
}

// Deviations 1, 11 from theta0, 2, 12 from x0, TH0DIFF 3, 13, and per-period terms whose value
// gives their row and column.
Model readInModel() {
  Model model;
  model.flags.randomSource = opt::kReadIn;
  const std::pair<MatrixId, double> bases[] = {{MatrixId::TH0DEV, 1},  {MatrixId::X0DEV, 2},
                                               {MatrixId::TH0DIFF, 3}, {MatrixId::XSIS, 100},
                                               {MatrixId::ZETAS, 200}, {MatrixId::ETAS, 300}};
  for (const auto& [id, base] : bases) model.setMatrix(id, texts(2, base < 100 ? 1 : 3, base));
  return model;
}

TEST(ChooseRandomSource, ReadInCertainButDifferentAndTheClashOfBothChoices) {
  RecordingPrompter p;
  Model model = readInModel();
  RandomSources src = sources(2, 3, 2, 2, {});
  RandomTerms t = makeRandomTerms(2, 3, 2, 2);
  const std::string trace = written([&](DebugFile& f) {
    chooseRandomSource(model, src, t, p, traceOf(f, {SolveTopic::RandomFinals}));
    EXPECT_EQ(t.thetarandom(2, 1), -1.0);  // both initial choices off: theta0
    src.switches.certainButDifferent = 1;
    chooseRandomSource(model, src, t, p, traceOf(f, {SolveTopic::RandomIntermediates}));
    chooseRandomSource(model, src, t, p, traceOf(f, {SolveTopic::RandomFinals}));
  });
  EXPECT_EQ(debugLabels(trace), dataSection(kData, "trace-read-in"));
  EXPECT_EQ(t.thetarandom(2, 1), 13.0);
  src.switches = {1, 0, 0, 0, 0, 0};
  chooseRandomSource(model, src, t, p, SolveTrace());
  EXPECT_TRUE(t.thetarandom(1, 1) == 1.5 && t.thetarandom(2, 1) == 10.0);
  EXPECT_TRUE(t.x0random(1, 1) == 12.0 && t.x0random(2, 1) == 32.0);
  for (int i = 1; i <= 2; ++i)
    for (int j = 0; j <= 2; ++j)  // measurement noise from period 1, the rest from period 0
      EXPECT_TRUE(t.xsis(i, j) == 90 + 10 * i + j && t.zetas(i, j + 1) == 190 + 10 * i + j &&
                  t.etas(i, j) == 290 + 10 * i + j)
          << i << "," << j;
  model.setMatrix(MatrixId::ZETAS, texts(2, 2, 200));  // too narrow: the last period stays 0
  chooseRandomSource(model, src, t, p, SolveTrace());
  EXPECT_TRUE(t.zetas(1, 2) == 201.0 && t.zetas(1, 3) == 0.0);
  // Generated terms are drawn per run, not here; certain-but-different still reads TH0DIFF.
  model.flags.randomSource = opt::kGenerateInternally;
  src.switches = {0, 1, 0, 0, 0, 0};
  fillMat(t.xsis, 42.0);
  chooseRandomSource(model, src, t, p, SolveTrace());
  EXPECT_TRUE(t.thetarandom(1, 1) == 3.0 && allEqual(t.xsis, 42.0));
  EXPECT_TRUE(p.messages().empty());
  src.switches.uncertainParameters = 1;
  fillMat(t.thetarandom, 8.0);
  chooseRandomSource(model, src, t, p, SolveTrace());
  EXPECT_EQ(shown(p), dataSection(kData, "both-initial-choices"));
  EXPECT_EQ(p.messages().at(0).icon, Icon::Exclamation);
  EXPECT_TRUE(allEqual(t.thetarandom, 8.0));
}

TEST(Seeds, DialogTextsSetTheSeedsButNotTheSpareAndHeadTheDebugFile) {
  RandomState st;
  standardNormal(st);
  const double spare = st.spare;
  applySeedTexts(st, "123", "0.25");
  EXPECT_EQ(standardNormal(st), spare);
  EXPECT_EQ(quarnsUniform(st), referenceStep(0.25f));
  applySeedTexts(st, "x", "1e99");
  EXPECT_TRUE(st.vxSeed == 0 && std::isinf(st.quarnsSeed));
  EXPECT_TRUE(std::isfinite(standardNormal(st))) << "a seed out of range still draws";

  st.quarnsSeed = 0.25f;
  st.vxSeed = -3;
  EXPECT_EQ(written([&](DebugFile& f) { EXPECT_EQ(writeSeedLines(f, st), 1); }),
            "\r\n\r\n\r\n Monte Carlo seed for Quarns' generator = 0.250000"
            "\r\n\r\n\r\n Monte Carlo seed for VX generator = -3");
  DebugFile closed;
  EXPECT_EQ(writeSeedLines(closed, st), 0);
}

std::vector<std::string> tracedRun(std::initializer_list<SolveTopic> topics, RandomSwitches w,
                                   int np) {
  RecordingPrompter p;
  RandomSources src = sources(2, 2, np, 2, w);
  RandomState st;
  RandomTerms t = makeRandomTerms(2, 2, np, 2);
  RandomAccumulators acc = makeRandomAccumulators(2, np);
  return debugLabels(
      written([&](DebugFile& f) { GenerateRandomTerms(st, src, t, acc, p, traceOf(f, topics)); }));
}

TEST(RandomTrace, LabelsInOrder) {
  EXPECT_EQ(tracedRun({SolveTopic::RandomIntermediates}, {}, 1),
            dataSection(kData, "trace-monte-carlo"));
  EXPECT_TRUE(tracedRun({SolveTopic::RandomMeans, SolveTopic::KAndP}, {}, 1).empty());
  const RandomSwitches w{1, 0, 0, 0, 0, 0};
  const std::vector<std::string> draw = dataSection(kData, "trace-one-draw");
  std::vector<std::string> l = tracedRun({SolveTopic::RandomIntermediates}, w, 2);
  const auto at = std::find(l.begin(), l.end(), draw.front());
  ASSERT_GE(l.end() - at, static_cast<long>(draw.size()));
  EXPECT_EQ(std::vector<std::string>(at, at + static_cast<long>(draw.size())), draw);
  EXPECT_EQ(tracedRun({SolveTopic::RandomFinals}, w, 2), dataSection(kData, "trace-finals"));
}

}  // namespace
}  // namespace ovaro
