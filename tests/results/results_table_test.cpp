#include "results/results_table.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "io/number_format.h"
#include "support/results_fixtures.h"
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

TEST(ResultsTable, ParametersOnlyWhereTheShownMethodsHaveThem) {
  const Model model = labelledModel(1, 1, 1, 1, 4);
  ResultsStore store;
  store.store(labelledResult("QLP", 1, 1, 1, 3, 1.0));  // even with parameter paths attached
  store.store(labelledResult("CE", 1, 1, 1, 3, 1.0));
  store.store(labelledResult("OLF", 1, 1, 0, 3, 1.0));
  store.display.parameters = true;
  auto hasParameters = [&](int selector) {
    store.display.selector = selector;
    return renderResultsText(model, store, 770).find("Parameters") != std::string::npos;
  };
  EXPECT_TRUE(hasParameters(3312));   // CE
  EXPECT_FALSE(hasParameters(3300));  // QLP never shows parameters
  EXPECT_FALSE(hasParameters(3336));  // CE-OLF, but OLF has no parameter paths
}

TEST(ResultsTable, NothingToShowGivesNoTable) {
  const Model model = labelledModel(1, 1, 0, 1, 4);  // T = 3
  ResultsStore store;
  EXPECT_EQ(renderResultsText(model, store, 770), "");  // selector 0
  store.store(labelledResult("HCFR", 1, 1, 0, 3, 1.0));
  for (int selector : {3328, 3301}) {  // CE missing; not a display
    store.display.selector = selector;
    EXPECT_FALSE(layoutResultsTable(model, store, 770)) << selector;
  }
  // Solutions that do not fit the Model any more.
  store.display.selector = 3308;
  EXPECT_TRUE(layoutResultsTable(model, store, 770));
  StoredResult shortPaths = labelledResult("HCFR", 1, 1, 0, 3, 1.0);
  shortPaths.solution.xs = mat2(1, 1, 0, 2);
  for (StoredResult r : {labelledResult("HCFR", 2, 1, 0, 3, 1.0),
                         labelledResult("HCFR", 1, 1, 0, 5, 1.0), shortPaths}) {
    store.store(std::move(r));
    EXPECT_EQ(renderResultsText(model, store, 770), "");
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
// periods as columns the values are those of periods as rows transposed, and the row headings of
// one head the columns of the other, a gap column preceding "True Value".
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
    std::map<int, std::string> colHeads, rowHeads;
    for (const TableCell& h : cols->headings)
      if (h.line == 0) colHeads[h.column] = h.text;
    for (const TableCell& h : cols->rowHeadings) rowHeads[h.line] = h.text;
    for (const TableCell& h : rows->rowHeadings)
      EXPECT_EQ(colHeads[h.line], h.text == "True Value" ? h.text : " " + h.text + " ");
    for (const TableCell& h : rows->headings)
      if (h.line == 0 && (h.text == "Controls" || h.text == "Parameters")) {
        EXPECT_EQ(rowHeads[h.column + 1], h.text);
      }
    EXPECT_EQ(cols->criteria[0].line, rows->columnCount + 2);
    ASSERT_EQ(rows->criteria.size(), cols->criteria.size());
    for (std::size_t i = 0; i < rows->criteria.size(); ++i)
      EXPECT_EQ(rows->criteria[i].label + rows->criteria[i].value,
                cols->criteria[i].label + cols->criteria[i].value);
  }
}

}  // namespace
}  // namespace ovaro
