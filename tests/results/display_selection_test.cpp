#include "results/display_selection.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

#include "results/results_store.h"

namespace ovaro {
namespace {

const std::string kWarning =
    "Display combination not yet implemented. \t\t\t\r Use Results: Display for one-by-one "
    "display.";

TEST(DisplayTable, IdsCodesAndLabelsAgree) {
  const auto table = displayTable();
  ASSERT_EQ(table.size(), 17u);
  for (std::size_t i = 0; i < table.size(); ++i) {
    const DisplayEntry& e = table[i];
    SCOPED_TRACE(e.id);
    EXPECT_EQ(e.id, 3300 + 4 * static_cast<int>(i));
    EXPECT_EQ(displayToSolutionCode(e.id), 2160 + static_cast<int>(i));
    EXPECT_EQ(solutionCodeToDisplay(2160 + static_cast<int>(i)), e.id);
    EXPECT_EQ(findDisplay(e.id), &e);
    // The combined displays are named by their methods joined with '-'; every display has as
    // many labels as it shows methods, each a result method.
    std::string joined;
    int named = 0;
    for (std::string_view label : e.labels) {
      if (label.empty()) continue;
      ++named;
      EXPECT_GE(resultMethodIndex(label), 0) << label;
      joined += (joined.empty() ? "" : "-") + std::string(label);
    }
    EXPECT_EQ(named, e.k);
    if (e.k > 1) {
      EXPECT_EQ(e.dialogLabel, joined);
    }
    const DisplayMethods methods = displayMethods(e.id);
    EXPECT_EQ(methods.k, e.k);
    EXPECT_EQ(methods.labels, e.labels);
  }
  EXPECT_EQ(findDisplay(3300)->dialogLabel, "QLP");
  EXPECT_EQ(findDisplay(3304)->dialogLabel, "OLF w/o updated coef");
  EXPECT_EQ(findDisplay(3304)->labels[0], "OLFwo");
  EXPECT_EQ(findDisplay(3316)->dialogLabel, "CEWO (CE w/o update)");
  EXPECT_EQ(findDisplay(3324)->dialogLabel, "OLIN (OLF with insight)");

  for (int bad : {0, 3296, 3301, 3302, 3368, 2160}) {
    EXPECT_EQ(findDisplay(bad), nullptr) << bad;
    EXPECT_EQ(displayToSolutionCode(bad), 0) << bad;
    EXPECT_EQ(displayMethods(bad).k, 0) << bad;
  }
  for (int bad : {0, 2159, 2177, 3300}) EXPECT_EQ(solutionCodeToDisplay(bad), 0) << bad;
}

// Runs the selection with the given run flags and returns the selector.
int select(RunFlags ran, RecordingPrompter& prompter, int before = 3352) {
  ResultsStore store;
  store.display.selector = before;
  store.ran = ran;
  SelectDisplayAfterSolve(store, prompter);
  return store.display.selector;
}

RunFlags compareRun(std::set<std::string_view> methods) {
  RunFlags ran;
  for (std::size_t i = 0; i < kCompareMethods.size(); ++i) {
    ran.compare[i] = methods.count(kCompareMethods[i]) > 0;
  }
  return ran;
}

TEST(SelectDisplayAfterSolve, SingleSolvesShowThemselvesAndACompareMatchOverridesThem) {
  RecordingPrompter prompter;
  RunFlags ran;
  ran.qlp = true;
  EXPECT_EQ(select(ran, prompter), 3300);
  ran.olfWithoutUpdate = true;
  EXPECT_EQ(select(ran, prompter), 3304);  // the OLF flag is read second
  ran.compare = compareRun({"CE", "OLF"}).compare;
  EXPECT_EQ(select(ran, prompter), 3336);
  EXPECT_TRUE(prompter.messages().empty());

  // Unmatched Compare flags leave what the single solves set.
  ran.compare = compareRun({"HCFR", "CEWO"}).compare;
  EXPECT_EQ(select(ran, prompter), 3304);
  EXPECT_TRUE(prompter.messages().empty());
}

TEST(SelectDisplayAfterSolve, CombinationsWithoutADisplayWarnAndSelectNothing) {
  RecordingPrompter prompter;
  EXPECT_EQ(select(compareRun({"HCFR", "CEWO"}), prompter), 0);
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].text, kWarning);
  EXPECT_EQ(prompter.messages()[0].caption, "Warning!");
  EXPECT_EQ(prompter.messages()[0].buttons, Buttons::Ok);
  EXPECT_EQ(select(RunFlags{}, prompter), 0);  // nothing ran at all
  EXPECT_EQ(prompter.messages().size(), 2u);
}

TEST(SelectDisplayAfterSolve, EverySubsetOfCompareMethodsEitherMatchesOneDisplayOrWarns) {
  int matched = 0;
  for (int mask = 1; mask < 32; ++mask) {
    std::set<std::string_view> methods;
    for (std::size_t i = 0; i < 5; ++i) {
      if (mask & (1 << i)) methods.insert(kCompareMethods[i]);
    }
    RecordingPrompter prompter;
    const int selector = select(compareRun(methods), prompter);
    SCOPED_TRACE(mask);
    if (selector == 0) {
      EXPECT_EQ(prompter.messages().size(), 1u);
      continue;
    }
    ++matched;
    EXPECT_TRUE(prompter.messages().empty());
    const DisplayMethods shown = displayMethods(selector);
    std::set<std::string_view> labels(shown.labels.begin(), shown.labels.begin() + shown.k);
    EXPECT_EQ(labels, methods);
    EXPECT_LE(methods.size(), 3u);
  }
  EXPECT_EQ(matched, 15);  // 5 single methods, 7 pairs, 3 triples
}

TEST(ResultsStore, StoresFindsReplacesAndClears) {
  ResultsStore store;
  EXPECT_TRUE(store.display.periodsAsRows && !store.display.periodsAsColumns);
  StoredResult ce;
  ce.solution.method = "CE";
  ce.solution.criterion = 1.5;
  store.store(ce);
  ce.solution.criterion = 2.5;
  store.store(ce);
  StoredResult qlp;
  qlp.solution.method = "QLP";
  store.store(qlp);
  ASSERT_NE(store.find("CE"), nullptr);
  EXPECT_EQ(store.find("CE")->solution.criterion, 2.5);
  EXPECT_NE(store.find("QLP"), nullptr);
  EXPECT_EQ(store.find("CEWO"), nullptr);
  EXPECT_EQ(store.find("ce"), nullptr);
  StoredResult unknown;
  unknown.solution.method = "OLFW";
  EXPECT_THROW(store.store(unknown), std::invalid_argument);

  store.ran.qlp = true;
  store.display.selector = 3312;
  store.display.periodsAsColumns = true;
  const DisplayPreferences kept = store.display;
  store.clear();
  EXPECT_EQ(store.find("CE"), nullptr);
  EXPECT_EQ(store.find("QLP"), nullptr);
  EXPECT_EQ(store.ran, RunFlags{});
  EXPECT_EQ(store.display, kept);
}

}  // namespace
}  // namespace ovaro
