// The Monte Carlo comparison: what every method of a run shares, what tells the methods apart,
// the counting and averaging over runs, and the refusals.
#include "stoch/compare.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "model/options.h"
#include "numeric/matrix_ops.h"
#include "stoch/monte_carlo_stats.h"
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
Model learningModel(int policy = opt::kPolicyNo) {
  Model model = testing::dataModel("learning.ovi");
  model.flags.policyToParam = policy;
  return model;
}

CompareSettings settingsFor(std::initializer_list<int> methods, int runs) {
  CompareSettings s;
  for (int k : methods) s.methods[static_cast<std::size_t>(k)] = true;
  s.runs = runs;
  s.eps = macheps();
  return s;
}

TEST(Compare, EveryMethodOfARunStartsFromTheSameDraws) {
  const Model model = learningModel();
  RandomState random;
  RecordingPrompter prompter;
  NullProgress progress;
  const CompareResult r = maincompare(model, settingsFor({kHcfr, kCe, kCeWo, kOlf, kOlIn}, 1),
                                      random, prompter, progress);
  ASSERT_EQ(r.status, 1);
  ASSERT_EQ(r.runs, 1);
  const RunPaths& ce = r.lastRun[kCe];
  for (int k = 0; k < kMethodCount; ++k) {
    const RunPaths& p = r.lastRun[static_cast<std::size_t>(k)];
    EXPECT_EQ(p.thetas(1, 0), ce.thetas(1, 0)) << kMethodNames[static_cast<std::size_t>(k)];
    EXPECT_EQ(p.xs(1, 0), 1.0);
    EXPECT_EQ(p.xs(2, 0), -0.5);
    EXPECT_EQ(p.thetatrue(1, 0), 0.5);
  }
  // The initial estimate is a draw, not theta0.
  EXPECT_NE(ce.thetas(1, 0), 0.5);
  // CEWO never moves its parameter estimate; CE learns.
  for (int t = 0; t <= r.nt; ++t) EXPECT_EQ(r.lastRun[kCeWo].thetas(1, t), ce.thetas(1, 0));
  bool moved = false;
  for (int t = 1; t <= r.nt; ++t) moved |= ce.thetas(1, t) != ce.thetas(1, 0);
  EXPECT_TRUE(moved);
  // Without the policy-to-parameter effect OLIN is OLF.
  EXPECT_EQ(r.lastRun[kOlIn].criterion, r.lastRun[kOlf].criterion);
  for (int t = 0; t <= r.nt; ++t) EXPECT_EQ(r.lastRun[kOlIn].xs(1, t), r.lastRun[kOlf].xs(1, t));
  // The run's criterion is the tracking criterion of its true paths.
  for (int k = 0; k < kMethodCount; ++k) {
    const RunPaths& p = r.lastRun[static_cast<std::size_t>(k)];
    double c = 0.0;
    for (int t = 0; t <= r.nt; ++t) {
      c += 0.5 * 1.0 * (p.xs(1, t) - 2.0) * (p.xs(1, t) - 2.0);
      c += 0.5 * 0.5 * p.xs(2, t) * p.xs(2, t);
      if (t < r.nt) c += 0.5 * 0.2 * p.us(1, t) * p.us(1, t);
    }
    EXPECT_NEAR(p.criterion, c, 1e-12 * c);
    EXPECT_EQ(r.mcResults[0][static_cast<std::size_t>(k)], p.criterion);
  }
}

TEST(Compare, WithAKnownParameterOlfChoosesWhatCeChooses) {
  // No parameter variance and no parameter noise: the OLF expectations reduce to the certainty
  // equivalent, so the two methods steer the same economy the same way from the same draws.
  Model model = learningModel();
  set(model, MatrixId::SITT0, 0, 0, 0.0);
  model.randomSwitches.uncertainParameters = 0;
  RandomState random;
  RecordingPrompter prompter;
  NullProgress progress;
  const CompareResult r =
      maincompare(model, settingsFor({kCe, kOlf}, 3), random, prompter, progress);
  ASSERT_EQ(r.status, 1);
  for (int run = 0; run < 3; ++run)
    EXPECT_NEAR(r.mcResults[static_cast<std::size_t>(run)][kCe],
                r.mcResults[static_cast<std::size_t>(run)][kOlf], 1e-9);
}

TEST(Compare, OlinDiffersFromOlfOnlyThroughThePolicyEffect) {
  Model model = learningModel(opt::kPolicyYes);
  RandomState a, b;
  RecordingPrompter prompter;
  NullProgress progress;
  // N = 0: the policy effect is zero, OLIN is OLF.
  CompareResult r = maincompare(model, settingsFor({kOlf, kOlIn}, 2), a, prompter, progress);
  ASSERT_EQ(r.status, 1);
  EXPECT_EQ(r.mcResults[1][kOlf], r.mcResults[1][kOlIn]);
  set(model, MatrixId::N, 0, 0, 0.05);
  r = maincompare(model, settingsFor({kOlf, kOlIn}, 2), b, prompter, progress);
  ASSERT_EQ(r.status, 1);
  EXPECT_NE(r.mcResults[1][kOlf], r.mcResults[1][kOlIn]);
}

// The untraced runs go to a pool of threads; the traced comparison runs them one after another
// on one thread. Both must give the same bits, whatever the thread count, messages included.
TEST(Compare, ThreadsChangeNoBitOfTheResult) {
  Model model = learningModel(opt::kPolicyYes);
  set(model, MatrixId::N, 0, 0, 0.05);
  auto run = [&](int threads, bool traced) {
    testing::TempDir dir;
    DebugFile file;
    CompareSettings settings = settingsFor({kHcfr, kCe, kCeWo, kOlf, kOlIn}, 11);
    settings.threads = threads;
    if (traced) {
      EXPECT_TRUE(file.open(dir.file("run.dbg")));
      settings.file = &file;
    }
    RandomState random;
    RecordingPrompter prompter;
    NullProgress progress;
    CompareResult r = maincompare(model, settings, random, prompter, progress);
    std::string messages;
    for (const Message& m : prompter.messages()) messages += m.caption + ": " + m.text + "\n";
    return std::pair{std::move(r), messages};
  };
  const auto [serial, serialMessages] = run(1, true);
  ASSERT_EQ(serial.status, 1);
  for (int threads : {1, 2, 3, 16}) {
    const auto [r, messages] = run(threads, false);
    SCOPED_TRACE(threads);
    EXPECT_EQ(r.mcResults, serial.mcResults);
    EXPECT_EQ(r.lowestCounts, serial.lowestCounts);
    EXPECT_EQ(r.averages, serial.averages);
    EXPECT_EQ(messages, serialMessages);
    ASSERT_EQ(r.statistics.size(), serial.statistics.size());
    for (const auto& [name, mat] : serial.statistics) {
      const Mat& other = r.statistics.at(name);
      for (int i = mat.rlo(); i <= mat.rhi(); ++i)
        for (int j = mat.clo(); j <= mat.chi(); ++j) EXPECT_EQ(other(i, j), mat(i, j)) << name;
    }
    for (int k = 0; k < kMethodCount; ++k)
      EXPECT_EQ(r.lastRun[static_cast<std::size_t>(k)].criterion,
                serial.lastRun[static_cast<std::size_t>(k)].criterion);
  }
}

TEST(Compare, TheStreamContinuesFromOneComparisonToTheNext) {
  const Model model = learningModel();
  RecordingPrompter prompter;
  NullProgress progress;
  RandomState random;
  const CompareResult first = maincompare(model, settingsFor({kCe}, 2), random, prompter, progress);
  const CompareResult second =
      maincompare(model, settingsFor({kCe}, 2), random, prompter, progress);
  EXPECT_NE(first.mcResults[0][kCe], second.mcResults[0][kCe]);
  RandomState fresh;
  const CompareResult again = maincompare(model, settingsFor({kCe}, 2), fresh, prompter, progress);
  EXPECT_EQ(first.mcResults[0][kCe], again.mcResults[0][kCe]);
  EXPECT_EQ(first.mcResults[1][kCe], again.mcResults[1][kCe]);
}

TEST(Compare, SummaryMessagesAndRefusals) {
  Model model = learningModel();
  RandomState random;
  NullProgress progress;
  {
    RecordingPrompter prompter;
    const CompareResult r =
        maincompare(model, settingsFor({kHcfr, kCe}, 3), random, prompter, progress);
    ASSERT_EQ(r.status, 1);
    ASSERT_GE(prompter.messages().size(), 2u);
    const auto& msgs = prompter.messages();
    EXPECT_EQ(msgs[msgs.size() - 2].caption, "Method Count");
    EXPECT_EQ(msgs.back().caption, "Average Criterion Values");
    EXPECT_EQ(r.lowestCounts[kHcfr] + r.lowestCounts[kCe], 3u);
    char text[200];
    std::snprintf(text, sizeof text, "HCFR = %g, CE = %g, CEWO = %g, OLF = %g,  OLIN = %g",
                  (r.mcResults[0][0] + r.mcResults[1][0] + r.mcResults[2][0]) / 3,
                  (r.mcResults[0][1] + r.mcResults[1][1] + r.mcResults[2][1]) / 3, 0.0, 0.0, 0.0);
    EXPECT_EQ(msgs.back().text, text);
  }
  {
    RecordingPrompter prompter;  // one run: no summary
    maincompare(model, settingsFor({kHcfr, kCe}, 1), random, prompter, progress);
    for (const Message& m : prompter.messages()) EXPECT_NE(m.caption, "Method Count");
  }
  // No runs, a zero Q declined (it asks first, No stops the solve), a deterministic model.
  struct Refusal {
    int runs, status;
    std::string shown;
  };
  const Refusal refusals[] = {
      {0, 1, "Warning!: Number of Monte Carlo runs set to zero so no solution."},
      {2, 0, "Warning!: Q(1,1) is very small."},
      {2, -1,
       "Warning!!: Warning: Need complexity of stochastic \t\t   \r or greater for "
       "Solve:Compare.  Use Solve:QLP instead."}};
  for (const Refusal& f : refusals) {
    if (f.status == 0) set(model, MatrixId::Q, 0, 0, 0.0);
    if (f.status == -1) model.flags.stochTerms = opt::kDeterministic;
    RecordingPrompter prompter;
    prompter.scriptAnswer(Answer::No);
    const CompareResult r =
        maincompare(model, settingsFor({kCe}, f.runs), random, prompter, progress);
    EXPECT_EQ(r.status, f.status);
    const std::vector<std::string> shown = testing::shown(prompter);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].substr(0, f.shown.size()), f.shown);
    EXPECT_EQ(prompter.messages()[0].buttons == Buttons::YesNo, f.status == 0);
  }
}

TEST(Compare, LowestCriterionCountsOnlyTheListedSelections) {
  auto count = [](std::initializer_list<int> on, std::array<double, kMethodCount> c) {
    MethodSelection sel{};
    for (int k : on) sel[static_cast<std::size_t>(k)] = true;
    std::array<unsigned, kMethodCount> counts{};
    countLowestCriterion(sel, c, counts);
    return counts;
  };
  using C = std::array<unsigned, kMethodCount>;
  // Pairs: a tie goes to the method named first.
  EXPECT_EQ(count({kHcfr, kCe}, {1, 1, 0, 0, 0}), (C{1, 0, 0, 0, 0}));
  EXPECT_EQ(count({kHcfr, kCe}, {2, 1, 0, 0, 0}), (C{0, 1, 0, 0, 0}));
  EXPECT_EQ(count({kCe, kCeWo}, {0, 1, 1, 0, 0}), (C{0, 1, 0, 0, 0}));
  EXPECT_EQ(count({kCe, kOlf}, {0, 1, 0, 1, 0}), (C{0, 1, 0, 0, 0}));
  EXPECT_EQ(count({kCeWo, kOlf}, {0, 0, 2, 1, 0}), (C{0, 0, 0, 1, 0}));
  EXPECT_EQ(count({kOlf, kOlIn}, {0, 0, 0, 1, 1}), (C{0, 0, 0, 1, 0}));
  EXPECT_EQ(count({kHcfr, kOlf}, {3, 0, 0, 1, 0}), (C{0, 0, 0, 1, 0}));
  // Triples: every tied method counts.
  EXPECT_EQ(count({kHcfr, kCe, kOlf}, {1, 1, 0, 1, 0}), (C{1, 1, 0, 1, 0}));
  EXPECT_EQ(count({kCe, kOlf, kOlIn}, {0, 2, 0, 1, 1}), (C{0, 0, 0, 1, 1}));
  // Anything else counts nothing.
  EXPECT_EQ(count({kHcfr, kCeWo}, {1, 0, 2, 0, 0}), (C{}));
  EXPECT_EQ(count({kCe}, {0, 1, 0, 0, 0}), (C{}));
  EXPECT_EQ(count({kHcfr, kCe, kCeWo, kOlf, kOlIn}, {1, 2, 3, 4, 5}), (C{}));
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
  const auto& s = result.statistics;
  // Average path over runs: 2, 3, 4; its variance over time: ((−1)² + 0 + 1²) / 2 = 1.
  EXPECT_EQ(s.at("AvgXsCe")(1, 0), 2.0);
  EXPECT_EQ(s.at("AvgXsCe")(1, 2), 4.0);
  EXPECT_EQ(s.at("VarAvgXsCe")(1, 1), 1.0);
  // Controls average 2, 3: mean 2.5, variance (0.25 + 0.25) / 1.
  EXPECT_EQ(s.at("VarAvgUsCe")(1, 1), 0.5);
  // Per run over time: run 1 mean 3, variance (4 + 1 + 9) / 2 = 7; run 2 mean 3, variance 1.
  EXPECT_EQ(s.at("AvgXsTimeCe")(1, 1), 3.0);
  EXPECT_EQ(s.at("VarXsTimeCe")(1, 1), 7.0);
  EXPECT_EQ(s.at("VarXsTimeCe")(1, 2), 1.0);
  EXPECT_EQ(s.at("VarXsTimeCeT")(2, 1), 1.0);
  // Squared differences from the desired path: run 1: 1 + 0 + 16, run 2: 1 + 4 + 0.
  EXPECT_EQ(s.at("SumSqDiffXsCe")(1, 1), 17.0);
  EXPECT_EQ(s.at("AvgSumSqDiffXsCe")(1, 1), 11.0);
  EXPECT_EQ(s.at("AvgVarXsTimeCe")(1, 1), 4.0);
  EXPECT_EQ(s.at("AvgAvgXsTimeCe")(1, 1), 3.0);
  EXPECT_EQ(s.count("AvgXsHcfr"), 0u);  // only the selected methods
}

TEST(Updating, TheHandcraftedRuleUnderNoiseWithoutLearning) {
  Model model = learningModel();
  model.randomSwitches.systemEquations = 0;  // no noise: the deterministic HCFR path
  RandomState random;
  NullProgress progress;
  RecordingPrompter prompter;
  UpdatingSettings settings;
  settings.methods.hcfr = true;
  settings.runs = 1;
  settings.eps = macheps();
  UpdatingResult r = maincompareWoUpdating(model, settings, random, prompter, progress);
  ASSERT_EQ(r.status, 1);
  EXPECT_TRUE(r.criteria.empty());
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].text, "Solved with handcrafted feedback rule.");
  // x(k+1) = A x + B (G x + g) + c with the model's own B(1,1) = 0.5.
  double x1 = 1.0, x2 = -0.5;
  for (int k = 0; k < 5; ++k) {
    const double u = -0.4 * x1 - 0.1 * x2 + 0.6;
    EXPECT_NEAR(r.us(1, k), u, 1e-12);
    const double n1 = 0.8 * x1 + 0.1 * x2 + 0.5 * u + 0.3;
    const double n2 = 0.7 * x2 + 0.2 * u;
    x1 = n1;
    x2 = n2;
    EXPECT_NEAR(r.xs(1, k + 1), x1, 1e-12);
    EXPECT_NEAR(r.xs(2, k + 1), x2, 1e-12);
  }

  // With CE beside it the criterion is computed and shown for a single run.
  prompter.clear();
  settings.methods.ce = true;
  r = maincompareWoUpdating(model, settings, random, prompter, progress);
  ASSERT_EQ(r.criteria.size(), 1u);
  char text[64];
  std::snprintf(text, sizeof text, "HCFR Criterion = %E", r.criteria[0]);
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].text, text);
  EXPECT_EQ(prompter.messages()[0].caption, "HCFR Criterion");

  prompter.clear();
  model.flags.stochTerms = opt::kDeterministic;
  r = maincompareWoUpdating(model, settings, random, prompter, progress);
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(prompter.messages()[0].caption, "Warning!!");
}

}  // namespace
}  // namespace ovaro
