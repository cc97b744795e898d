// The plots below the window: series and legends, scaling, frame positions, the scenario store,
// and the statistics over the runs of a comparison.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "model/model_file.h"
#include "results/plot_layout.h"
#include "results/plot_series.h"
#include "results/run_statistics.h"
#include "results/scenario_commands.h"
#include "results/scenario_store.h"
#include "results/stochastic_commands.h"
#include "support/debug_labels.h"
#include "support/solution_fixtures.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::zeroSolution;

// Each step of the factor on both sides, at and inside its bounds, and the two quirks: the
// negative side switches to 1000 below -1 already (so -0.5 takes it), and 0 takes 1e6.
TEST(PlotScale, FactorFollowsTheMidpointStepByStep) {
  const std::pair<double, double> cases[] = {
      {5e-7, 1e6},    {1e-6, 1000}, {5e-4, 1000}, {0.001, 1},  {0.5, 1},     {999.0, 1},
      {1000, 0.001},  {5e5, 0.001}, {1e6, 1e-6},  {3e7, 1e-6}, {-3e7, 1e-6}, {-1e6, 0.001},
      {-5000, 0.001}, {-1000, 1},   {-2, 1},      {-1, 1000},  {-0.5, 1000}, {-0.002, 1000},
      {-0.001, 1e6},  {-1e-5, 1e6}, {0.0, 1e6}};
  for (const auto& [mid, factor] : cases) EXPECT_EQ(plotScaleFactor(mid), factor) << mid;
}

// Positions worked out by hand: A = 0 1 3 2 and B = 3 3 3 3 over four periods.
TEST(PlotLayout, PointsTicksAndLabelsOfASmallSeries) {
  const std::vector<PlotSeries> series{{"Opt", {0, 1, 3, 2}, 0}, {"Des", {3, 3, 3, 3}, 1}};
  const PlotLayout p = layoutPlot(series, {"GDP", "Gross product", {"Q1", "Q2", "Q3", "Q4"}});
  EXPECT_EQ((std::array{p.scale.min, p.scale.max, p.scale.mid}), (std::array{0.0, 3.0, 1.5}));
  EXPECT_EQ(p.axisLabel.text, "GDP x   1.000");
  const std::vector<PlotPoint> a{{0, 0}, {2666, 2666}, {5333, 8000}, {8000, 5333}};
  const std::vector<PlotPoint> b{{0, 8000}, {2666, 8000}, {5333, 8000}, {8000, 8000}};
  EXPECT_EQ(p.polylines, (std::vector<std::vector<PlotPoint>>{a, b}));
  const char* values[] = {"     0.000", "     0.750", "     1.500", "     2.250", "     3.000"};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(p.valueLabels[i].text, values[i]);
    EXPECT_EQ(p.valueLabels[i].at, (PlotPoint{-1000, 2000 * i + 300}));
  }
  // The period ticks step by 8000 / 3 = 2666 whole units, so the third falls at 5332, one unit
  // short of its point; the last period has no label.
  ASSERT_EQ(p.periodTicks.size(), 3u);
  EXPECT_EQ(p.periodTicks[2].from, (PlotPoint{5332, 0}));
  EXPECT_EQ(p.periodLabels[1].at, (PlotPoint{2366, -100}));
  EXPECT_EQ(p.periodLabels[2].text, "Q3");
  EXPECT_EQ(p.title.at, (PlotPoint{2500, 8800}));
}

TEST(PlotLayout, ConstantSeriesAndSinglePeriodDivideByNothing) {
  const std::vector<PlotSeries> flat{{"Opt", {2, 2, 2}, 0}};
  const PlotLayout f = layoutPlot(flat, {});
  EXPECT_EQ(f.polylines[0], (std::vector<PlotPoint>{{0, 4000}, {4000, 4000}, {8000, 4000}}));
  EXPECT_EQ(f.valueLabels[4].text, "     2.000");
  const std::vector<PlotSeries> one{{"Opt", {-7}, 0}};
  const PlotLayout s = layoutPlot(one, {});
  EXPECT_EQ(s.polylines[0], (std::vector<PlotPoint>{{0, 4000}}));
  EXPECT_TRUE(s.periodTicks.empty());
}

// A store with QLP and three Monte Carlo solutions; CEWO is missing.
ResultsStore storeWithSolutions() {
  ResultsStore store;
  int k = 0;
  for (const char* method : {"QLP", "HCFR", "CE", "OLF"}) {
    StoredResult r{zeroSolution(method, 2, 1, 3), std::nullopt};
    for (int t = 0; t <= 3; ++t) {
      r.solution.xs(2, t) = 10 * ++k;
      r.solution.xtws(2, t) = t;
    }
    if (std::string(method) != "QLP")
      r.parameters = ParameterPaths{mat2(1, 1, 0, 3), mat2(1, 1, 0, 3)};
    store.store(std::move(r));
  }
  return store;
}

// tests/data/results_plot_legends.txt: the legends of singles, pairs and triples.
TEST(PlotSeries, LegendsAndValuesOfSinglesPairsAndTriples) {
  const ResultsStore store = storeWithSolutions();
  const std::vector<std::string> cases = testing::dataLines("results_plot_legends.txt");
  ASSERT_EQ(cases.size(), 14u);
  for (const std::string& c : cases) {
    int method = 0, pathType = 0, kind = 0;
    ASSERT_EQ(std::sscanf(c.c_str(), "%d %d %d", &method, &pathType, &kind), 3) << c;
    std::string legends;
    for (const PlotSeries& s : gatherSeries(store, {0, kind, pathType, method}).series)
      legends += (legends.empty() ? " " : ",") + s.legend;
    EXPECT_EQ(c.substr(c.find('|') + 1), legends) << c;
  }
  EXPECT_EQ(gatherSeries(store, {0, kPlotStates, kPathOptimum, 2168}).missingMethod, "CEWO");
  EXPECT_TRUE(gatherSeries(store, {-1, kPlotStates, kPathOptimum, 2160}).series.empty());
  // A difference subtracts the desired path; controls have one point fewer.
  const SeriesGathering d = gatherDifference(store, 2167, 1, kPlotStates);
  EXPECT_EQ(d.series[1].values, (std::vector<double>{90, 99, 108, 117}));  // CE 90..120 minus t
  EXPECT_EQ(gatherOptimum(store, 2160, 0, kPlotStates).series[0].values.size(), 4u);
  EXPECT_EQ(gatherOptimum(store, 2160, 0, kPlotControls).series[0].values.size(), 3u);
}

Solution scenario(const char* method, double level) {
  Solution s = zeroSolution(method, 1, 1, 2);
  for (int t = 0; t <= 2; ++t) {
    s.xs(1, t) = level;
    s.xtws(1, t) = level + 0.5;
  }
  return s;
}

TEST(ScenarioStore, GrowsKeepingEveryScenarioAndDumpsItself) {
  RecordingPrompter prompter;
  testing::TempDir dir;
  DebugFile file;
  ASSERT_TRUE(file.open(dir.file("s.dbg")));
  ScenarioStore store;
  EXPECT_EQ(addScenario(store, scenario("QLP", 1), {"BASELINE1", "first"}, nullptr, prompter), 1);
  EXPECT_EQ(addScenario(store, scenario("OLFwo", 2), {"HIGH", "second"}, &file, prompter), 2);
  file.close();
  EXPECT_EQ(store.acronyms, (std::vector<std::string>{"BASELINE", "HIGH"}));
  EXPECT_EQ(store.xs(1, 2, 2), 2);
  EXPECT_EQ(store.methods[1], "OLFwo");
  std::string labels;
  for (const std::string& l : testing::debugLabels(testing::slurp(dir.file("s.dbg"))))
    labels += l + "|";
  EXPECT_EQ(labels,
            "ScenarioXs|ScenarioUs|ScenarioXsDes|ScenarioUsDes|Transpose of Scenarios - each state "
            "and each control|ScenarioXsT|ScenarioUsT|ScenarioXsDesT|ScenarioUsDesT|");
  // A solution of other sizes starts the store afresh, and says so.
  EXPECT_EQ(addScenario(store, zeroSolution("QLP", 2, 1, 2), {"X", ""}, nullptr, prompter), 1);
  EXPECT_EQ(prompter.messages().size(), 1u);
}

TEST(ScenarioStore, ChoicesCountConsecutivelyAndMultiDesiredDoubles) {
  RecordingPrompter prompter;
  ScenarioStore store;
  for (int s = 1; s <= 4; ++s)
    addScenario(store, scenario("QLP", s), {"S" + std::to_string(s), ""}, nullptr, prompter);
  ScenarioPlotChoices c;
  c.variable = 0;
  c.chosen = {2, 1, 0, 3, 4};  // the gap ends the choice: two scenarios
  EXPECT_EQ(chosenScenarios(store, c), (std::vector<int>{2, 1}));
  c.chosen = {1, 2, 3, 4, 0};
  c.pathType = kScenarioMultiDesired;
  std::string legends;
  for (const PlotSeries& s : gatherScenarioSeries(store, c)) legends += s.legend + "|";
  EXPECT_EQ(legends, "S1|S1 Des|S2|S2 Des|S3|S3 Des|");
  c.pathType = kScenarioOptAndDesired;
  const std::vector<PlotSeries> withDes = gatherScenarioSeries(store, c);
  ASSERT_EQ(withDes.size(), 5u);
  EXPECT_EQ(withDes.back().legend, "Des");
  EXPECT_EQ(withDes.back().pen, kDesiredPen);
  EXPECT_EQ(withDes.back().values, (std::vector<double>{1.5, 1.5, 1.5}));
  c.kind = kScenarioParameters;
  EXPECT_TRUE(gatherScenarioSeries(store, c).empty());
}

// After a comparison the user is told first; the scenario is the first compared method's run.
TEST(ScenarioStore, AComparisonTellsThenStoresItsFirstMethod) {
  RecordingPrompter prompter;
  NullProgress progress;
  Workbench wb(prompter, progress);
  ASSERT_EQ(readModelFile(OVARO_SOURCE_DIR "/examples/learn1.ovi", wb.model, prompter), 1);
  wb.shell.askScenarioQuestion = 1;
  std::vector<std::string> asked;
  wb.nameScenario = [&](const std::string& method) {
    asked.push_back(method);
    return ScenarioName{"RUN", "last run"};
  };
  runCompareCommand(wb, {false, true, false, true, false}, 3);
  EXPECT_EQ(prompter.messages().back().text, kScenarioStoredMessage);
  EXPECT_EQ(prompter.messages().back().caption, "Scenario");
  EXPECT_EQ(asked, (std::vector<std::string>{"CE"}));
  ASSERT_EQ(wb.scenarios.count, 1);
  EXPECT_EQ(wb.scenarios.xs(1, 2, 1), wb.results.find("CE")->solution.xs(1, 2));
  EXPECT_EQ(wb.results.comparison->runs, 3);
}

TEST(RunStatistics, QuantilesAndStudentTAgainstTables) {
  EXPECT_EQ(quantile({4, 1, 3, 2}, 0.5), 2.5);
  EXPECT_DOUBLE_EQ(quantile({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, 0.1), 2.0);
  // Two-sided 95% points of Student's t from the printed tables.
  for (auto [df, t] : {std::pair{1, 12.706}, {10, 2.228}, {29, 2.045}})
    EXPECT_NEAR(studentTQuantile(0.975, df), t, 5e-4) << df;
  EXPECT_NEAR(studentTCdf(0.0, 5), 0.5, 1e-15);
}

TEST(RunStatistics, PairedDifferencesOfTheRunCriteria) {
  // Three runs of HCFR and CE: the differences are -1, -2, -3.
  const std::vector<std::array<double, 5>> runs{{1, 2, 0, 0, 0}, {2, 4, 0, 0, 0}, {3, 6, 0, 0, 0}};
  const CriterionSummary s = summarizeCriteria(runs, {true, true, false, false, false});
  ASSERT_EQ(s.methods.size(), 2u);
  EXPECT_DOUBLE_EQ(s.methods[1].standardError, 2 / std::sqrt(3.0));  // of the mean 4
  ASSERT_EQ(s.pairs.size(), 1u);
  const CriterionDifference& d = s.pairs[0];
  EXPECT_EQ(d.mean, -2);
  EXPECT_DOUBLE_EQ(d.standardError, 1 / std::sqrt(3.0));
  EXPECT_NEAR(d.high95, -2 + 4.303 / std::sqrt(3.0), 1e-3);  // t(0.975, 2) = 4.303
  EXPECT_GT(d.confidenceFirstLower, 0.95);
  const CriterionSummary one = summarizeCriteria({runs.data(), 1}, {true, true});
  EXPECT_TRUE(std::isnan(one.pairs[0].standardError));
}

}  // namespace
}  // namespace ovaro
