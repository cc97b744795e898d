#include "results/display_selection.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

#include "results/results_store.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

// Ids step by 4 from 3300, solution codes by 1 from 2160, each way; a combined display is named by
// its methods joined with '-', and every label is a result method.
TEST(DisplayTable, IdsCodesAndLabelsAgree) {
  const auto table = displayTable();
  ASSERT_EQ(table.size(), 17u);
  for (int i = 0; i < 17; ++i) {
    const DisplayEntry& e = table[static_cast<std::size_t>(i)];
    SCOPED_TRACE(e.id);
    EXPECT_EQ(e.id, 3300 + 4 * i);
    EXPECT_EQ(displayToSolutionCode(e.id), 2160 + i);
    EXPECT_EQ(solutionCodeToDisplay(2160 + i), e.id);
    EXPECT_EQ(findDisplay(e.id), &e);
    std::string joined;
    for (int k = 0; k < e.k; ++k) {
      EXPECT_GE(resultMethodIndex(e.labels[k]), 0) << e.labels[k];
      joined += (k ? "-" : "") + std::string(e.labels[k]);
    }
    for (int k = e.k; k < 3; ++k) EXPECT_TRUE(e.labels[k].empty());
    EXPECT_EQ(e.k > 1 ? e.dialogLabel : joined, joined);
  }
  for (int bad : {0, 3296, 3301, 3368, 2160}) {
    EXPECT_EQ(findDisplay(bad), nullptr) << bad;
    EXPECT_EQ(displayToSolutionCode(bad), 0) << bad;
  }
  for (int bad : {2159, 2177, 3300}) EXPECT_EQ(solutionCodeToDisplay(bad), 0) << bad;
}

// Runs the selection after solves with the given flags (the compare flags from `methods`) and
// returns the selector.
int select(RunFlags ran, const std::set<std::string_view>& methods, RecordingPrompter& prompter) {
  ResultsStore store;
  store.display.selector = 3352;
  for (std::size_t i = 0; i < kCompareMethods.size(); ++i)
    ran.compare[i] = methods.contains(kCompareMethods[i]);
  store.ran = ran;
  SelectDisplayAfterSolve(store, prompter);
  return store.display.selector;
}

// The OLF flag is read after the QLP one; matched Compare flags override both, unmatched ones
// leave what the single solves set.
TEST(SelectDisplayAfterSolve, SingleSolvesShowThemselvesAndACompareMatchOverridesThem) {
  RecordingPrompter prompter;
  RunFlags ran;
  ran.qlp = true;
  EXPECT_EQ(select(ran, {}, prompter), 3300);
  ran.olfWithoutUpdate = true;
  EXPECT_EQ(select(ran, {}, prompter), 3304);
  EXPECT_EQ(select(ran, {"CE", "OLF"}, prompter), 3336);
  EXPECT_EQ(select(ran, {"HCFR", "CEWO"}, prompter), 3304);
  EXPECT_TRUE(prompter.messages().empty());
}

TEST(SelectDisplayAfterSolve, EverySubsetOfCompareMethodsEitherMatchesOneDisplayOrWarns) {
  int matched = 0;
  for (int mask = 0; mask < 32; ++mask) {
    std::set<std::string_view> methods;
    for (std::size_t i = 0; i < 5; ++i)
      if (mask & (1 << i)) methods.insert(kCompareMethods[i]);
    RecordingPrompter prompter;
    const int selector = select(RunFlags{}, methods, prompter);
    SCOPED_TRACE(mask);
    if (selector == 0) {  // nothing ran at all (mask 0) warns too
      EXPECT_EQ(testing::shown(prompter),
                std::vector<std::string>{"Warning!: Display combination not yet implemented. "
                                         "\t\t\t\r Use Results: Display for one-by-one display."});
      EXPECT_EQ(prompter.messages()[0].buttons, Buttons::Ok);
      continue;
    }
    ++matched;
    EXPECT_TRUE(prompter.messages().empty());
    const DisplayMethods shown = displayMethods(selector);
    EXPECT_EQ(std::set<std::string_view>(shown.labels.begin(), shown.labels.begin() + shown.k),
              methods);
  }
  EXPECT_EQ(matched, 15);  // 5 single methods, 7 pairs, 3 triples
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
