// What the results show: the table as text and in the debug file, and the display chosen after
// each solve.
#include "results/results_table.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "io/number_format.h"
#include "results/display_selection.h"
#include "results/results_print.h"
#include "results/results_store.h"
#include "support/results_fixtures.h"
#include "support/solution_fixtures.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::labelledModel;
using testing::labelledResult;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// What tests/data/results_table_<name>.txt holds.
std::vector<std::string> expectedLines(const std::string& name) {
  const std::vector<std::string> lines =
      linesOf(testing::slurp(testing::dataPath("results_table_" + name + ".txt")));
  EXPECT_FALSE(lines.empty()) << name;
  return lines;
}

// The 1-state, 1-control model of seven periods 1990..1996, QLP solved, whose last period has no
// acronym: a 10-character row-heading slot, then x, xdes, the empty column headed "Controls", u
// and udes; a blank line after the fifth period; no control in the last period, headed by its
// number.
TEST(ResultsTable, OneMethodWithDesiredPathsAsText) {
  Model model = labelledModel(1, 1, 0, 1990, 1996);
  model.periods.acronyms[6] = " ";
  ResultsStore store;
  StoredResult r = labelledResult("QLP", 1, 1, 0, 6, 1.0);
  for (int t = 0; t <= 6; ++t) {
    r.solution.xs(1, t) = 10 * t + 0.25, r.solution.xtws(1, t) = 5;
    if (t < 6) r.solution.us(1, t) = 100.1 - 3 * t, r.solution.utws(1, t) = 2;
  }
  r.solution.criterion = 12345.678;
  store.store(r);
  store.display.selector = 3300;
  store.display.desiredPaths = true;
  for (int format : {770, 778})
    EXPECT_EQ(linesOf(renderResultsText(model, store, format)),
              expectedLines(std::to_string(format)));
  // 0 means no format chosen yet: the table of the default format.
  EXPECT_EQ(renderResultsText(model, store, 0), renderResultsText(model, store, 770));
  // An overflowing number pushes the rest of its line right but is not cut.
  r.solution.xs(1, 0) = -1.0e30;
  store.store(std::move(r));
  const std::vector<std::string> lines = linesOf(renderResultsText(model, store, 770));
  const std::string big = formatNumber(" %8.0f ", -1.0e30);
  ASSERT_GE(lines.size(), 4u);
  EXPECT_TRUE(lines[2].starts_with("Y0        " + big + "        5 ")) << lines[2];
  EXPECT_EQ(lines[3].substr(10, 10), "       10 ");
}

// Multi-method, parameter and transposed layouts, kept whole in tests/data/results_table_*.txt.
struct TextCase {
  const char* file;
  int n, m, np, last, policy;
  std::vector<const char*> methods;  // stored with signs 1, -1, 3, ...
  int selector, format;
  bool desired, parameters, columns;
};

TEST(ResultsTable, LayoutsAsText) {
  const TextCase cases[] = {
      // HCFR and CE side by side; OLF stored but not shown.
      {"two_methods", 2, 1, 0, 4, opt::kPolicyNo, {"HCFR", "CE", "OLF"}, 3328, 784, 1, 0, 0},
      {"no_desired", 1, 1, 0, 7, opt::kPolicyNo, {"QLP"}, 3300, 770, 0, 0, 0},
      // Without policy effect a "True Value" line ends the parameters; with it a true column
      // stands beside each estimate.
      {"true_value", 1, 1, 2, 7, opt::kPolicyNo, {"CE"}, 3312, 778, 0, 1, 0},
      {"policy", 1, 1, 1, 5, opt::kPolicyYes, {"CE", "OLF"}, 3336, 770, 1, 1, 0},
      {"columns", 2, 1, 2, 8, opt::kPolicyNo, {"CE", "OLF", "OLIN"}, 3360, 782, 1, 1, 1},
  };
  for (const TextCase& c : cases) {
    SCOPED_TRACE(c.file);
    const Model model = labelledModel(c.n, c.m, c.np, 1, c.last, c.policy);
    ResultsStore store;
    double sign = 1;
    for (const char* method : c.methods) {
      store.store(labelledResult(method, c.n, c.m, c.np, c.last - 1, sign, 0.25));
      sign = sign > 0 ? -sign : -3 * sign;
    }
    store.display = {c.selector, c.desired, c.parameters, !c.columns, c.columns};
    EXPECT_EQ(linesOf(renderResultsText(model, store, c.format)), expectedLines(c.file));
  }
}

// Parameters show only where the shown methods have them (never for QLP); nothing to show, a
// method missing, or solutions that no longer fit the model give no table.
TEST(ResultsTable, WhatTheStoreHoldsDecidesWhatIsShown) {
  const Model model = labelledModel(1, 1, 1, 1, 4);  // T = 3
  ResultsStore store;
  EXPECT_EQ(renderResultsText(model, store, 770), "");  // selector 0
  store.store(labelledResult("QLP", 1, 1, 1, 3, 1.0));  // even with parameter paths attached
  store.store(labelledResult("CE", 1, 1, 1, 3, 1.0));
  store.store(labelledResult("OLF", 1, 1, 0, 3, 1.0));
  store.display.parameters = true;
  auto shown = [&](int selector) {
    store.display.selector = selector;
    return renderResultsText(model, store, 770);
  };
  EXPECT_NE(shown(3312).find("Parameters"), std::string::npos);  // CE
  EXPECT_EQ(shown(3300).find("Parameters"), std::string::npos);
  EXPECT_EQ(shown(3336).find("Parameters"), std::string::npos);  // CE-OLF: OLF has none
  EXPECT_EQ(shown(3328), "");                                    // HCFR missing
  EXPECT_EQ(shown(3301), "");                                    // not a display
  ASSERT_NE(shown(3312), "");
  StoredResult shortPaths = labelledResult("CE", 1, 1, 1, 3, 1.0);
  shortPaths.solution.xs = mat2(1, 1, 0, 2);
  for (StoredResult r :
       {labelledResult("CE", 2, 1, 1, 3, 1.0), labelledResult("CE", 1, 1, 1, 5, 1.0), shortPaths}) {
    store.store(std::move(r));
    EXPECT_EQ(shown(3312), "");
  }
}

// Maps (line, column) to the text of every value cell; two values in one cell fail.
std::map<std::pair<int, int>, std::string> valueGrid(const ResultsTable& t) {
  std::map<std::pair<int, int>, std::string> grid;
  for (const TableCell& c : t.values)
    EXPECT_TRUE(grid.emplace(std::make_pair(c.line, c.column), c.text).second)
        << "two values at line " << c.line << ", column " << c.column;
  return grid;
}

// A store of every method, each with its own sign, shown as `selector`.
ResultsStore everyMethod(int selector, bool desired, bool columns) {
  ResultsStore store;
  double sign = 1.0;
  for (std::string_view name : kResultMethods) {
    store.store(labelledResult(std::string(name), 2, 2, 2, 11, sign, 0.25));
    sign = -sign * 2;
  }
  store.display = {selector, desired, true, !columns, columns};
  return store;
}

// Every cell of the layout stands at its place in the text: the row-heading slot at the left,
// value column c at rowHeadingWidth + c x columnWidth, criterion values 20 characters in. With
// periods as columns the values are those of periods as rows transposed.
TEST(ResultsTable, EveryLayoutIsAlignedInTheTextAndTransposes) {
  const std::tuple<int, int, int, bool> combinations[] = {
      {3300, 770, opt::kPolicyNo, true},  {3300, 790, opt::kPolicyNo, false},
      {3328, 774, opt::kPolicyNo, true},  {3356, 782, opt::kPolicyYes, true},
      {3360, 795, opt::kPolicyNo, false}, {3364, 785, opt::kPolicyYes, true},
      {3360, 782, opt::kPolicyYes, true}, {3320, 784, opt::kPolicyYes, false}};
  for (const auto& [selector, format, policy, desired] : combinations) {
    SCOPED_TRACE(std::to_string(selector) + " " + std::to_string(format));
    const Model model = labelledModel(2, 2, 2, 1, 12, policy);  // T = 11
    const std::optional<ResultsTable> rows =
        layoutResultsTable(model, everyMethod(selector, desired, false), format);
    const std::optional<ResultsTable> cols =
        layoutResultsTable(model, everyMethod(selector, desired, true), format);
    ASSERT_TRUE(rows && cols);
    EXPECT_TRUE(rows->periodsAsRows && !cols->periodsAsRows);
    for (const ResultsTable* t : {&*rows, &*cols}) {
      EXPECT_EQ(t->columnWidth, resultsNumberFormat(format).width);
      const std::vector<std::string> lines = linesOf(renderTableText(*t));
      ASSERT_EQ(static_cast<int>(lines.size()), 2 + t->lineCount);
      auto expectAt = [&](int line, int column, std::string text, std::size_t at = 0) {
        if (column != kRowHeadingSlot)
          at = std::size_t(t->rowHeadingWidth + column * t->columnWidth);
        while (!text.empty() && text.back() == ' ') text.pop_back();
        const std::string& l = lines[static_cast<std::size_t>(line)];
        EXPECT_EQ(l.substr(std::min(at, l.size()), text.size()), text) << line << " at " << at;
      };
      for (const TableCell& h : t->headings) expectAt(h.line, h.column, h.text);
      for (const TableCell& h : t->rowHeadings) expectAt(2 + h.line, h.column, h.text);
      for (const TableCell& v : t->values) expectAt(2 + v.line, v.column, v.text);
      for (const CriterionLine& cl : t->criteria) {
        expectAt(2 + cl.line, kRowHeadingSlot, cl.label);
        expectAt(2 + cl.line, kRowHeadingSlot, cl.value, kCriterionValueOffset);
      }
    }
    // Value (L, C) of the rows table is value (C + 1, L) of the columns table, and nothing else is.
    const auto r = valueGrid(*rows), c = valueGrid(*cols);
    ASSERT_EQ(r.size(), c.size());
    for (const auto& [at, text] : r) {
      const auto it = c.find({at.second + 1, at.first});
      ASSERT_NE(it, c.end()) << at.first << "," << at.second;
      EXPECT_EQ(it->second, text);
    }
    EXPECT_EQ(cols->criteria[0].line, rows->columnCount + 2);
    ASSERT_EQ(rows->criteria.size(), cols->criteria.size());
    for (std::size_t i = 0; i < rows->criteria.size(); ++i)
      EXPECT_EQ(rows->criteria[i].label + rows->criteria[i].value,
                cols->criteria[i].label + cols->criteria[i].value);
  }
}

// Two states and two controls over periods 0..6: x_i(t) = 10 i + t toward -(10 i + t), u_i(t) =
// 100 i + t toward -(100 i + t).
Solution numbered() {
  Solution s = testing::zeroSolution("OLFwo", 2, 2, 6);
  for (int t = 0; t <= 6; ++t)
    for (int i = 1; i <= 2; ++i) {
      s.xs(i, t) = 10 * i + t, s.xtws(i, t) = -10 * i - t;
      if (t < 6) s.us(i, t) = 100 * i + t, s.utws(i, t) = -100 * i - t;
    }
  return s;
}

// A debug file in the 00.00 format, and what it holds once closed.
struct Dump {
  testing::TempDir dir;
  int format = 778;
  DebugFile file{&format};
  std::string path = dir.file("results.dbg");
  Dump() { EXPECT_TRUE(file.open(path)); }
  std::string written() {
    file.close();
    return testing::slurp(path);
  }
};

// The optimal-and-desired table: per state its path and its desired path, then per control the
// same, zero in the last period. words[5] prints it periods across, transposed when periods go
// down; words[6] the plain table of the paths alone, periods across only; the other words warn.
TEST(ResultsPrint, TablesAreTheDumpsOfThePathsInTheirPlaces) {
  const Solution s = numbered();
  Mat od = mat2(1, 8, 0, 6), plain = mat2(1, 4, 0, 6), transposed = mat2(0, 6, 1, 8);
  for (int t = 0; t <= 6; ++t) {
    const bool u = t < 6;
    const double column[8] = {10.0 + t,          -10.0 - t,         20.0 + t,
                              -20.0 - t,         u ? 100.0 + t : 0, u ? -100.0 - t : 0,
                              u ? 200.0 + t : 0, u ? -200.0 - t : 0};
    for (int r = 1; r <= 8; ++r) {
      od(r, t) = transposed(t, r) = column[r - 1];
      if (r % 2 == 1) plain((r + 1) / 2, t) = column[r - 1];
    }
  }
  Model model;
  RecordingPrompter prompter;
  struct Case {
    std::array<int, 7> words;
    bool periodsAsRows;
    const char* dumps;
    std::size_t warnings;
  };
  const Case cases[] = {
      {{0, 0, 0, 0, 0, 1, 0}, false, "od", 0}, {{0, 0, 0, 0, 0, 1, 0}, true, "transposed", 0},
      {{0, 0, 0, 0, 0, 0, 1}, true, "", 1},    {{1, 1, 1, 1, 1, 1, 1}, false, "od plain", 1},
      {{0, 0, 0, 0, 1, 0, 0}, true, "", 1},    {{1, 1, 1, 1, 0, 0, 0}, false, "", 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.dumps);
    Dump expected, got;
    const std::string dumps = c.dumps;
    if (dumps.starts_with("od")) expected.file.dumpMatrix("resultsoptdes", 1, 8, 0, 6, od);
    if (dumps == "transposed")
      expected.file.dumpMatrix("resultstransoptdes", 0, 6, 1, 8, transposed);
    if (dumps.ends_with("plain")) expected.file.dumpMatrix("results", 1, 4, 0, 6, plain);
    model.display.words = c.words;
    prompter.clear();
    EXPECT_EQ(printResultsToDebugFile(model, s, c.periodsAsRows, got.file, prompter), 1);
    EXPECT_EQ(got.written(), expected.written());
    EXPECT_EQ(testing::shown(prompter),
              std::vector<std::string>(
                  c.warnings, "Results: This preference for results not yet implemented."));
  }
}

TEST(ResultsPrint, FailedWritesReturnZeroAndShortPathsAreRefused) {
  RecordingPrompter prompter;
  Model model;
  model.display.words = {0, 0, 0, 0, 0, 1, 0};
  DebugFile full, closed;
  ASSERT_TRUE(full.open("/dev/full"));
  EXPECT_EQ(printResultsToDebugFile(model, numbered(), false, full, prompter), 0);
  EXPECT_EQ(printResultsToDebugFile(model, numbered(), true, closed, prompter), 0);
  model.display.words = {0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(printResultsToDebugFile(model, numbered(), true, closed, prompter), 1);
  Solution s = numbered();
  s.us = mat2(1, 2, 0, 0);
  EXPECT_THROW(printResultsToDebugFile(model, s, false, closed, prompter), std::invalid_argument);
  EXPECT_THROW(optimalAndDesiredTable(s), std::invalid_argument);
}

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
