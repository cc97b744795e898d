#include "results/display_selection.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

#include "results/results_store.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

const std::string kWarning =
    "Display combination not yet implemented. \t\t\t\r Use Results: Display for one-by-one "
    "display.";

// Ids step by 4 from 3300, solution codes by 1 from 2160, each way; a combined display is named by
// its methods joined with '-', and every label is a result method.
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
    EXPECT_EQ(displayMethods(e.id).labels, e.labels);
  }
  for (int bad : {0, 3296, 3301, 3368, 2160}) {
    EXPECT_EQ(findDisplay(bad), nullptr) << bad;
    EXPECT_EQ(displayToSolutionCode(bad), 0) << bad;
    EXPECT_EQ(displayMethods(bad).k, 0) << bad;
  }
  for (int bad : {2159, 2177, 3300}) EXPECT_EQ(solutionCodeToDisplay(bad), 0) << bad;
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
      EXPECT_EQ(testing::shown(prompter), std::vector<std::string>{"Warning!: " + kWarning});
      EXPECT_EQ(prompter.messages()[0].buttons, Buttons::Ok);
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
  RecordingPrompter prompter;
  EXPECT_EQ(select(RunFlags{}, prompter), 0);  // nothing ran at all
  EXPECT_EQ(prompter.messages().size(), 1u);
}

TEST(ResultsStore, ReplacesByMethodAndClearKeepsTheDisplay) {
  ResultsStore store;
  StoredResult ce;
  ce.solution.method = "CE";
  ce.solution.criterion = 1.5;
  store.store(ce);
  ce.solution.criterion = 2.5;
  store.store(ce);
  EXPECT_EQ(store.find("CE")->solution.criterion, 2.5);
  EXPECT_EQ(store.find("ce"), nullptr);
  ce.solution.method = "OLFW";
  EXPECT_THROW(store.store(ce), std::invalid_argument);
  store.ran.qlp = true;
  store.display = {3312, true, false, false, true};
  const DisplayPreferences kept = store.display;
  store.clear();
  EXPECT_EQ(store.find("CE"), nullptr);
  EXPECT_EQ(store.ran, RunFlags{});
  EXPECT_EQ(store.display, kept);
}

}  // namespace
}  // namespace ovaro
