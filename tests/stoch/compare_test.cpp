// The Monte Carlo comparison: what every method of a run shares, what tells the methods apart,
// where they must agree with the deterministic solution, the counting and averaging over runs, the
// refusals, the same bits however the runs are shared; the comparison without updating.
#include "stoch/compare.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "model/model_file.h"
#include "model/options.h"
#include "numeric/matrix_ops.h"
#include "solve/drivers.h"
#include "stoch/monte_carlo_stats.h"
#include "stoch/run_distributor.h"
#include "stoch/updating.h"
#include "support/data_models.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

void set(Model& model, MatrixId id, int r, int c, double v) {
  model.matrix(id)->setCell(r, c, std::to_string(v).substr(0, 15));
}

// Two states, one control, one uncertain parameter in B(1, 1), five periods, additive noise, and
// the handcrafted rule u = -0.4 x1 - 0.1 x2 + 0.6.
Model learningModel() {
  return testing::dataModel("learning.ovi");
}

CompareResult compare(const Model& model, std::initializer_list<int> methods,
                      std::optional<int> runs, RandomState& random, Prompter& prompter,
                      CompareSettings s = {}) {
  for (int k : methods) s.methods[static_cast<std::size_t>(k)] = true;
  s.runs = runs, s.eps = macheps();
  NullProgress progress;
  return maincompare(model, s, random, prompter, progress);
}

TEST(Compare, EveryMethodOfARunStartsFromTheSameDrawsAndTheStreamGoesOn) {
  RandomState random;
  RecordingPrompter prompter;
  const CompareResult r =
      compare(learningModel(), {kHcfr, kCe, kCeWo, kOlf, kOlIn}, 1, random, prompter);
  ASSERT_TRUE(r.status == 1 && r.runs == 1);
  const RunPaths& ce = r.lastRun[kCe];
  EXPECT_NE(ce.thetas(1, 0), 0.5) << "the initial estimate is a draw, not theta0";
  bool moved = false;  // CE learns; CEWO never moves its estimate
  for (int t = 0; t <= r.nt; ++t) {
    EXPECT_EQ(r.lastRun[kCeWo].thetas(1, t), ce.thetas(1, 0));
    moved |= ce.thetas(1, t) != ce.thetas(1, 0);
  }
  EXPECT_TRUE(moved);
  for (std::size_t k = 0; k < kMethodCount; ++k) {
    const RunPaths& p = r.lastRun[k];
    SCOPED_TRACE(kMethodNames[k]);
    EXPECT_EQ(p.thetas(1, 0), ce.thetas(1, 0));
    EXPECT_TRUE(p.xs(1, 0) == 1.0 && p.xs(2, 0) == -0.5 && p.thetatrue(1, 0) == 0.5);
    // The run's criterion is the tracking criterion of its true paths.
    double c = 0.0;
    for (int t = 0; t <= r.nt; ++t)
      c += 0.5 * (std::pow(p.xs(1, t) - 2.0, 2) + 0.5 * std::pow(p.xs(2, t), 2) +
                  (t < r.nt ? 0.2 * std::pow(p.us(1, t), 2) : 0.0));
    EXPECT_NEAR(p.criterion, c, 1e-12 * c);
    EXPECT_EQ(r.mcResults[0][k], p.criterion);
  }
  // The stream goes on from one comparison to the next; a fresh one starts it again.
  RandomState fresh;
  EXPECT_NE(compare(learningModel(), {kCe}, 1, random, prompter).mcResults[0][kCe], ce.criterion);
  EXPECT_EQ(compare(learningModel(), {kCe}, 1, fresh, prompter).mcResults[0][kCe], ce.criterion);
}

// Where two methods must steer alike from the same draws: with no parameter variance and no
// parameter noise the OLF expectations reduce to the certainty equivalent; OLIN is OLF but for the
// policy effect, which a zero N removes.
TEST(Compare, MethodsAgreeWhereTheirDifferenceVanishes) {
  for (const auto& [known, policy, n, a, b, same] :
       {std::tuple{true, opt::kPolicyNo, 0.0, kCe, kOlf, true},
        {false, opt::kPolicyYes, 0.0, kOlf, kOlIn, true},
        {false, opt::kPolicyYes, 0.05, kOlf, kOlIn, false}}) {
    Model model = learningModel();
    if (known) set(model, MatrixId::SITT0, 0, 0, 0.0), model.randomSwitches.uncertainParameters = 0;
    model.flags.policyToParam = policy;
    set(model, MatrixId::N, 0, 0, n);
    RandomState random;
    RecordingPrompter prompter;
    const CompareResult r = compare(model, {a, b}, 3, random, prompter);
    ASSERT_EQ(r.status, 1);
    for (const auto& run : r.mcResults)
      EXPECT_EQ(std::abs(run[a] - run[b]) < 1e-9, same) << kMethodNames[b] << " " << n;
  }
}

// Learning in a forward-looking model (two states, one control, lead 1; the one uncertain
// parameter is B(1, 1), in the Pindyck form B1(1, 1) as A0 only links state 2 to state 1). With
// nothing random and the estimate starting at the truth the filter has nothing to learn: CE and
// CEWO steer as the deterministic solution does, and HCFR's true path (u = -0.4 x1 + 0.6) solves
// the model's own x(t+1) = A0 x(t+1) + D1 x(t+1) + A x(t) + B u(t) + c, the lead being the path.
class ForwardLearning : public ::testing::TestWithParam<bool> {};

TEST_P(ForwardLearning, CertaintyEquivalenceIsTheDeterministicSolution) {
  const bool pindyck = GetParam();
  const Model model = testing::dataModel(pindyck ? "forward_pindyck.ovi" : "forward_regular.ovi");
  RandomState random;
  RecordingPrompter prompter;
  const std::optional<Solution> qlp = solveQlp(model, prompter, SolveTrace());
  ASSERT_TRUE(qlp.has_value());
  const CompareResult r = compare(model, {kHcfr, kCe, kCeWo}, std::nullopt, random, prompter);
  ASSERT_EQ(r.status, 1);
  for (const auto& message : prompter.messages())
    EXPECT_EQ(message.caption.rfind("Warning", 0), std::string::npos) << message.text;
  for (std::size_t k : {kCe, kCeWo}) {
    SCOPED_TRACE(kMethodNames[k]);
    for (const auto& run : r.mcResults) EXPECT_NEAR(run[k], qlp->criterion, 1e-9 * qlp->criterion);
    for (int t = 0; t < r.nt; ++t) EXPECT_NEAR(r.lastRun[k].us(1, t), qlp->us(1, t), 1e-7) << t;
    for (int t = 0; t <= r.nt; ++t) EXPECT_NEAR(r.lastRun[k].thetas(1, t), 0.5, 1e-13) << t;
  }
  auto v = [&](MatrixId id, int i, int j) {
    const TextMatrix* m = model.matrix(id);
    return m == nullptr ? 0.0 : std::atof(std::string(m->cell(i, j)).c_str());
  };
  const RunPaths& p = r.lastRun[kHcfr];
  const MatrixId a = pindyck ? MatrixId::A1 : MatrixId::A, b = pindyck ? MatrixId::B1 : MatrixId::B;
  const MatrixId c = pindyck ? MatrixId::C1 : MatrixId::C,
                 d = pindyck ? MatrixId::DHAT1 : MatrixId::D1;
  for (int t = 0; t < r.nt; ++t) {
    EXPECT_NEAR(p.us(1, t), v(MatrixId::G, 0, 0) * p.xs(1, t) + v(MatrixId::g, 0, 0), 1e-12);
    for (int i = 0; i < 2; ++i) {
      double residual = p.xs(i + 1, t + 1) - v(b, i, 0) * p.us(1, t) - v(c, i, 0);
      for (int j = 0; j < 2; ++j)
        residual -= (pindyck ? v(MatrixId::A0, i, j) : 0.0) * p.xs(j + 1, t + 1) +
                    v(d, i, j) * p.xs(j + 1, t + 1) + v(a, i, j) * p.xs(j + 1, t);
      EXPECT_NEAR(residual, 0.0, 1e-7) << "state " << i + 1 << ", period " << t;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, ForwardLearning, ::testing::Bool(), [](const auto& info) {
  return std::string(info.param ? "Pindyck" : "Regular");
});

TEST(Compare, SummaryMessagesAndRefusals) {
  Model model = learningModel();
  RandomState random;
  RecordingPrompter prompter;
  const CompareResult r = compare(model, {kHcfr, kCe}, 3, random, prompter);
  ASSERT_EQ(r.status, 1);
  const auto& msgs = prompter.messages();
  ASSERT_GE(msgs.size(), 2u);
  EXPECT_EQ(msgs[msgs.size() - 2].caption, "Method Count");
  EXPECT_EQ(msgs.back().caption, "Average Criterion Values");
  std::array<unsigned, kMethodCount> lowest{};  // a tie would go to HCFR
  double sum[2] = {0.0, 0.0};
  for (const auto& c : r.mcResults) {
    ++lowest[c[kHcfr] <= c[kCe] ? kHcfr : kCe];
    sum[0] += c[kHcfr], sum[1] += c[kCe];
  }
  EXPECT_EQ(r.lowestCounts, lowest);
  char text[200];
  std::snprintf(text, sizeof text, "HCFR = %g, CE = %g, CEWO = %g, OLF = %g,  OLIN = %g",
                sum[0] / 3, sum[1] / 3, 0.0, 0.0, 0.0);
  EXPECT_EQ(msgs.back().text, text);
  RecordingPrompter one;  // one run: no summary
  compare(model, {kHcfr, kCe}, 1, random, one);
  for (const Message& m : one.messages()) EXPECT_NE(m.caption, "Method Count");

  // No runs, a zero Q declined (it asks first, No stops the solve), a deterministic model.
  for (const auto& [runs, status, text] :
       {std::tuple{0, 1, "Warning!: Number of Monte Carlo runs set to zero so no solution."},
        {2, 0, "Warning!: Q(1,1) is very small."},
        {2, -1,
         "Warning!!: Warning: Need complexity of stochastic \t\t   \r or greater for "
         "Solve:Compare.  Use Solve:QLP instead."}}) {
    if (status == 0) set(model, MatrixId::Q, 0, 0, 0.0);
    if (status == -1) model.flags.stochTerms = opt::kDeterministic;
    RecordingPrompter p;
    p.scriptAnswer(Answer::No);
    EXPECT_EQ(compare(model, {kCe}, runs, random, p).status, status);
    ASSERT_EQ(testing::shown(p).size(), 1u);
    EXPECT_EQ(testing::shown(p)[0].rfind(text, 0), 0u) << testing::shown(p)[0];
    EXPECT_EQ(p.messages()[0].buttons == Buttons::YesNo, status == 0);
  }
}

// Only the selections listed here (bit k: method k) count: in a pair a tie goes to the method
// named first, in a triple every tied method counts. Every selection against a direct count.
TEST(Compare, LowestCriterionCountsOnlyTheListedSelections) {
  const unsigned counted[] = {0b00011, 0b00110, 0b01010, 0b10010, 0b01100,
                              0b11000, 0b01001, 0b01011, 0b11010, 0b11100};
  const std::array<double, kMethodCount> criteria[] = {
      {1, 1, 1, 1, 1}, {1, 2, 3, 4, 5}, {5, 4, 3, 2, 1}, {2, 1, 2, 1, 2}, {1, 2, 1, 2, 1}};
  for (unsigned bits = 0; bits < 32; ++bits)
    for (const auto& c : criteria) {
      MethodSelection sel{};
      std::array<unsigned, kMethodCount> got{}, want{};
      double low = std::numeric_limits<double>::infinity();
      for (std::size_t k = 0; k < kMethodCount; ++k)
        if ((sel[k] = (bits >> k & 1u) != 0)) low = std::min(low, c[k]);
      countLowestCriterion(sel, c, got);
      const bool listed =
          std::find(std::begin(counted), std::end(counted), bits) != std::end(counted);
      for (std::size_t k = 0, taken = 0; k < kMethodCount; ++k)
        if (listed && sel[k] && c[k] == low && (std::popcount(bits) == 3 || taken++ == 0))
          want[k] = 1;
      EXPECT_EQ(got, want) << "selection " << bits << ", criteria " << &c - criteria;
    }
}

TEST(Compare, PathStatisticsFollowTheirDefinitions) {
  // Two runs of a one-state, one-control model over periods 0..2, built by hand.
  CompareResult result;
  result.selected[kCe] = true;
  result.runs = 2;
  MonteCarloPaths paths = makeMonteCarloPaths(1, 1, 2, 2);
  const double x[2][3] = {{1, 2, 6}, {3, 4, 2}};
  const double u[2][2] = {{1, 5}, {3, 1}};
  for (int r = 0; r < 2; ++r) {
    for (int t = 0; t <= 2; ++t) paths.xs[kCe](1, t, r + 1) = x[r][t];
    for (int t = 0; t <= 1; ++t) paths.us[kCe](1, t, r + 1) = u[r][t];
  }
  Mat xdes = mat2(1, 1, 0, 2), udes = mat2(1, 1, 0, 1);
  for (int t = 0; t <= 2; ++t) xdes(1, t) = 2;
  pathStatistics(result, paths, xdes, udes, DebugSwitches{}, nullptr);
  // Average path over runs 2, 3, 4, its variance over time (1 + 0 + 1) / 2; controls average 2, 3:
  // variance (0.25 + 0.25) / 1. Per run over time: means 3 and 3, variances (4 + 1 + 9) / 2 and 1.
  // Squared differences from the desired path: 1 + 0 + 16 and 1 + 4 + 0.
  const std::tuple<const char*, int, int, double> expected[] = {
      {"AvgXsCe", 1, 0, 2.0},        {"AvgXsCe", 1, 2, 4.0},
      {"VarAvgXsCe", 1, 1, 1.0},     {"VarAvgUsCe", 1, 1, 0.5},
      {"AvgXsTimeCe", 1, 1, 3.0},    {"VarXsTimeCe", 1, 1, 7.0},
      {"VarXsTimeCe", 1, 2, 1.0},    {"VarXsTimeCeT", 2, 1, 1.0},
      {"SumSqDiffXsCe", 1, 1, 17.0}, {"AvgSumSqDiffXsCe", 1, 1, 11.0},
      {"AvgVarXsTimeCe", 1, 1, 4.0}, {"AvgAvgXsTimeCe", 1, 1, 3.0}};
  for (const auto& [name, i, j, v] : expected)
    EXPECT_EQ(result.statistics.at(name)(i, j), v) << name;
  EXPECT_EQ(result.statistics.count("AvgXsHcfr"), 0u);  // only the selected methods
}

TEST(Updating, TheHandcraftedRuleWithoutNoiseAndItsCriterion) {
  Model model = learningModel();
  model.randomSwitches.systemEquations = 0;  // no noise: the deterministic HCFR path
  RandomState random;
  NullProgress progress;
  RecordingPrompter prompter;
  UpdatingSettings settings;
  settings.methods.hcfr = true, settings.runs = 1, settings.eps = macheps();
  UpdatingResult r = maincompareWoUpdating(model, settings, random, prompter, progress);
  ASSERT_EQ(r.status, 1);
  EXPECT_TRUE(r.criteria.empty());
  EXPECT_EQ(testing::shown(prompter),
            std::vector<std::string>{"HCFR: Solved with handcrafted feedback rule."});
  // x(k+1) = A x + B (G x + g) + c with the model's own B(1,1) = 0.5.
  double x1 = 1.0, x2 = -0.5;
  for (int k = 0; k < 5; ++k) {
    const double u = -0.4 * x1 - 0.1 * x2 + 0.6;
    const double next1 = 0.8 * x1 + 0.1 * x2 + 0.5 * u + 0.3;
    x2 = 0.7 * x2 + 0.2 * u, x1 = next1;
    EXPECT_NEAR(r.us(1, k), u, 1e-12);
    EXPECT_NEAR(r.xs(1, k + 1), x1, 1e-12);
    EXPECT_NEAR(r.xs(2, k + 1), x2, 1e-12);
  }
  // With CE beside it the criterion is computed and shown for a single run.
  prompter.clear();
  settings.methods.ce = true;
  r = maincompareWoUpdating(model, settings, random, prompter, progress);
  ASSERT_EQ(r.criteria.size(), 1u);
  char text[64];
  std::snprintf(text, sizeof text, "HCFR Criterion: HCFR Criterion = %E", r.criteria[0]);
  EXPECT_EQ(testing::shown(prompter), std::vector<std::string>{text});
}

// The same runs however they are shared: a traced comparison runs them in order on one thread,
// untraced ones on a pool of threads or other processes (simulated here one after another, their
// records kept in inboxes for process 0). Each way records the traced result to the bit.
struct Exchange {
  int size;
  std::vector<long long> others;  // what every other process hands in at the join
  std::vector<std::deque<RunBytes>> inbox = std::vector<std::deque<RunBytes>>(3);
  std::size_t received = 0;  // bytes process 0 took from the others
};

struct SequentialDistributor : RunDistributor {
  SequentialDistributor(Exchange& x, int rank) : x_(x), rank_(static_cast<std::size_t>(rank)) {}
  int rank() const override { return static_cast<int>(rank_); }
  int size() const override { return x_.size; }
  std::vector<long long> allGather(const std::vector<long long>& mine) override {
    std::vector<long long> all;
    for (std::size_t r = 0; r < static_cast<std::size_t>(x_.size); ++r) {
      const std::vector<long long>& part = r == rank_ ? mine : x_.others;
      all.insert(all.end(), part.begin(), part.end());
    }
    return all;
  }
  void sendToFirst(const RunBytes& bytes) override { x_.inbox[rank_].push_back(bytes); }
  RunBytes receiveFrom(int from) override {
    auto& box = x_.inbox[static_cast<std::size_t>(from)];
    RunBytes bytes = std::move(box.at(0));  // throws when nothing was sent
    box.pop_front();
    x_.received += bytes.size();
    return bytes;
  }
  Exchange& x_;
  std::size_t rank_;
};

// One process's comparison of 23 runs (not a multiple of any batch), as text that holds every
// bit it keeps (hexadecimal floating point), its messages and where it leaves the stream; a
// helper process gives its status alone.
std::string compareIn(const Model& model, RunDistributor* d, int threads, bool traced = false) {
  testing::TempDir dir;
  DebugFile file;
  EXPECT_TRUE(!traced || file.open(dir.file("run.dbg")));
  RecordingPrompter prompter;
  RandomState random;
  CompareSettings s;
  s.threads = threads, s.distributor = d, s.file = traced ? &file : nullptr;
  CompareResult r = compare(model, {kHcfr, kCe, kCeWo, kOlf, kOlIn}, 23, random, prompter, s);
  std::ostringstream t;
  t << std::hexfloat << r.status << ' ' << r.runs;
  if (d != nullptr && d->rank() > 0) return t.str();
  auto mat = [&](const Mat& a) {
    t << '[' << a.rlo() << ' ' << a.rhi() << ' ' << a.clo() << ' ' << a.chi() << ']';
    for (int i = a.rlo(); i <= a.rhi(); ++i)
      for (int j = a.clo(); j <= a.chi(); ++j) t << a(i, j) << ' ';
  };
  for (const auto& row : r.mcResults)
    for (double v : row) t << v << ' ';
  for (std::size_t k = 0; k < kMethodCount; ++k) {
    const RunPaths& last = r.lastRun[k];
    t << r.criterionSums[k] << ' ' << r.averages[k] << ' ' << r.lowestCounts[k] << ' '
      << last.criterion;
    for (const Mat* m : {&last.xs, &last.us, &last.thetas, &last.thetatrue}) mat(*m);
  }
  for (const auto& [name, m] : r.statistics) t << '\n' << name, mat(m);
  for (const Message& m : prompter.messages()) t << '\n' << m.caption << ": " << m.text;
  t << "\nseed " << random.quarnsSeed << " spare " << random.spareFlag << random.spare;
  return t.str();
}

// One comparison on `x.size` simulated processes, process 0 last; its text.
std::string shared(const Model& model, Exchange& x, int threads) {
  for (int r = x.size - 1; r > 0; --r) {
    SequentialDistributor d(x, r);
    EXPECT_EQ(compareIn(model, &d, threads), "0 0");  // a helper keeps nothing
  }
  SequentialDistributor first(x, 0);
  return compareIn(model, &first, threads);
}

class SharedRuns : public ::testing::TestWithParam<const char*> {};

// A learning model, a forward-looking one, measurement error, the policy-to-parameter effect.
INSTANTIATE_TEST_SUITE_P(Examples, SharedRuns,
                         ::testing::Values("learn1.ovi", "fwdnz1.ovi", "tvp1.ovi", "credib2.ovi"));

TEST_P(SharedRuns, EveryWayOfSharingRecordsTheTracedResult) {
  Model model;
  RecordingPrompter reading;
  ASSERT_EQ(
      readModelFile(std::string(OVARO_SOURCE_DIR) + "/examples/" + GetParam(), model, reading), 1);
  const std::string serial = compareIn(model, nullptr, 1, true);
  ASSERT_EQ(serial.rfind("1 23", 0), 0u);
  for (int n : {2, 3}) {
    const int threads = n == 2 ? 3 : 16;
    Exchange x{n, {1, 23, threads}};  // every process takes part, with 23 runs
    EXPECT_EQ(shared(model, x, threads), serial) << n;
    EXPECT_GT(x.received, 0u);  // the others did solve runs
  }
  // A process that stops before its runs (one that cannot read the model, say) leaves process 0
  // to solve every run itself, and the other to solve none.
  Exchange x{2, {0, 0, 0}};
  EXPECT_EQ(shared(model, x, 2), serial);
  EXPECT_EQ(x.received, 0u);
}

}  // namespace
}  // namespace ovaro
