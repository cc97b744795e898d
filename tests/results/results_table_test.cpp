#include "results/results_table.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "io/number_format.h"
#include "model/options.h"
#include "support/model_fixtures.h"
#include "support/solution_fixtures.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

// A model of n states, m controls and np parameters over the periods first..last, with acronyms
// S1.., C1.., U1.. and period acronyms Y0, Y1, ...
Model tableModel(int n, int m, int np, int first, int last, int policy = opt::kPolicyNo) {
  testing::ModelShape shape;
  shape.n = n;
  shape.m = m;
  shape.np = np;
  shape.initialPeriod = first;
  shape.terminalPeriod = last;
  shape.flags.policyToParam = policy;
  Model model =
      testing::makeModel(shape, np > 0 ? opt::kParameterUncertainty : opt::kDeterministic);
  for (int i = 0; i < n; ++i) model.states.acronyms[i] = "S" + std::to_string(i + 1);
  for (int j = 0; j < m; ++j) model.controls.acronyms[j] = "C" + std::to_string(j + 1);
  for (int p = 0; p < np; ++p) model.parameters.acronyms[p] = "U" + std::to_string(p + 1);
  for (std::size_t t = 0; t < model.periods.acronyms.size(); ++t) {
    model.periods.acronyms[t] = "Y" + std::to_string(t);
  }
  return model;
}

// A solution whose every number tells where it comes from: x_i(t) = sign (100 i + t) + 0.25,
// u_j(t) = sign (50 j - t) - 0.375, desired paths 7 i and -2 j, parameter estimates
// sign (10 p + t) + 0.5, true values 3 p + 0.125 t.
StoredResult makeResult(std::string method, int n, int m, int np, int T, double sign,
                        bool withParameters = true) {
  StoredResult r;
  r.solution = testing::zeroSolution(std::move(method), n, m, T);
  Solution& s = r.solution;
  for (int t = 0; t <= T; ++t) {
    for (int i = 1; i <= n; ++i) {
      s.xs(i, t) = sign * (100 * i + t) + 0.25;
      s.xtws(i, t) = 7 * i;
    }
    for (int j = 1; j <= m && t < T; ++j) {
      s.us(j, t) = sign * (50 * j - t) - 0.375;
      s.utws(j, t) = -2 * j;
    }
  }
  s.criterion = sign * 4321.0;
  if (withParameters && np > 0) {
    ParameterPaths p{mat2(1, np, 0, T), mat2(1, np, 0, T)};
    for (int i = 1; i <= np; ++i) {
      for (int t = 0; t <= T; ++t) {
        p.estimates(i, t) = sign * (10 * i + t) + 0.5;
        p.trueValues(i, t) = 3 * i + 0.125 * t;
      }
    }
    r.parameters = std::move(p);
  }
  return r;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string padLeft(const std::string& s, std::size_t width) {
  return std::string(width > s.size() ? width - s.size() : 0, ' ') + s;
}
// A value printed in a field of `field` characters between the two blanks of every format.
std::string cell(const std::string& digits, std::size_t field) {
  return " " + padLeft(digits, field) + " ";
}
std::string blanks(std::size_t n) {
  return std::string(n, ' ');
}

// The 1-state, 1-control model of seven periods 1990..1996, QLP solved, whose last period has no
// acronym (it is headed by its number).
struct TinyCase {
  Model model = tableModel(1, 1, 0, 1990, 1996);
  ResultsStore store;
  TinyCase() {
    model.periods.acronyms[6] = " ";
    StoredResult r = makeResult("QLP", 1, 1, 0, 6, 1.0);
    for (int t = 0; t <= 6; ++t) {
      r.solution.xs(1, t) = 10 * t + 0.25;
      r.solution.xtws(1, t) = 5;
      if (t < 6) {
        r.solution.us(1, t) = 100.1 - 3 * t;
        r.solution.utws(1, t) = 2;
      }
    }
    r.solution.criterion = 12345.678;
    store.store(std::move(r));
    store.display.selector = 3300;
    store.display.desiredPaths = true;
  }
};

// The whole text in two formats, kept in tests/data/results_table_<format>.txt: a 10-character
// row-heading slot, then x, xdes, the empty column headed "Controls", u and udes; a blank line
// after the fifth period; no control in the last period, which is headed by its number.
TEST(ResultsTable, OneMethodWithDesiredPathsAsText) {
  TinyCase c;
  for (int format : {770, 778}) {
    const std::string file = "results_table_" + std::to_string(format) + ".txt";
    const std::vector<std::string> expected = linesOf(testing::slurp(testing::dataPath(file)));
    ASSERT_FALSE(expected.empty()) << file;
    EXPECT_EQ(linesOf(renderResultsText(c.model, c.store, format)), expected) << format;
  }
  // 0 means no format chosen yet: the table of the default format.
  EXPECT_EQ(renderResultsText(c.model, c.store, 0), renderResultsText(c.model, c.store, 770));
}

TEST(ResultsTable, WithoutDesiredPathsOneMethodHasBlankLabelCells) {
  TinyCase c;
  c.store.display.desiredPaths = false;
  const std::optional<ResultsTable> table = layoutResultsTable(c.model, c.store, 770);
  ASSERT_TRUE(table);
  EXPECT_EQ(table->columnCount, 3);  // x, the empty column, u
  std::vector<TableCell> second;
  for (const TableCell& h : table->headings) {
    if (h.line == 1) second.push_back(h);
  }
  EXPECT_EQ(second, (std::vector<TableCell>{{1, 0, 1, "  "}, {1, 2, 1, "  "}}));
  for (const TableCell& v : table->values) EXPECT_NE(v.column, 1) << v.text;
}

// Maps (line, column) to the text of every value cell.
std::map<std::pair<int, int>, std::string> valueGrid(const ResultsTable& t) {
  std::map<std::pair<int, int>, std::string> grid;
  for (const TableCell& c : t.values) {
    EXPECT_TRUE(grid.emplace(std::make_pair(c.line, c.column), c.text).second)
        << "two values at line " << c.line << ", column " << c.column;
  }
  return grid;
}

std::string valueAt(const ResultsTable& t, int line, int column) {
  const auto grid = valueGrid(t);
  const auto it = grid.find({line, column});
  return it == grid.end() ? "<none>" : it->second;
}

TEST(ResultsTable, TwoMethodsSideBySide) {
  const Model model = tableModel(2, 1, 0, 1, 4);  // T = 3
  ResultsStore store;
  store.store(makeResult("HCFR", 2, 1, 0, 3, 1.0));
  store.store(makeResult("CE", 2, 1, 0, 3, -1.0));
  store.store(makeResult("OLF", 2, 1, 0, 3, 5.0));  // stored, not shown
  store.display.selector = 3328;                    // HCFR-CE
  store.display.desiredPaths = true;
  const std::optional<ResultsTable> t = layoutResultsTable(model, store, 784);
  ASSERT_TRUE(t);
  const char* f = " %12.4f ";

  std::vector<TableCell> first, second;
  for (const TableCell& h : t->headings) (h.line == 0 ? first : second).push_back(h);
  EXPECT_EQ(first, (std::vector<TableCell>{{0, kRowHeadingSlot, 1, "States"},
                                           {0, 0, 3, " S1 "},
                                           {0, 3, 3, " S2 "},
                                           {0, 6, 1, "Controls"},
                                           {0, 7, 3, " C1 "}}));
  std::vector<std::pair<int, std::string>> labels;
  for (const TableCell& h : second) labels.emplace_back(h.column, h.text);
  EXPECT_EQ(labels, (std::vector<std::pair<int, std::string>>{{0, "HCFR"},
                                                              {1, "CE"},
                                                              {2, "des"},
                                                              {3, "HCFR"},
                                                              {4, "CE"},
                                                              {5, "des"},
                                                              {7, "HCFR"},
                                                              {8, "CE"},
                                                              {9, "des"}}));
  // Period 2 is body line 2: S2 from HCFR (+1) and CE (-1), its desired path 14, C1 likewise.
  EXPECT_EQ(valueAt(*t, 2, 3), formatNumber(f, 202.25));
  EXPECT_EQ(valueAt(*t, 2, 4), formatNumber(f, -201.75));
  EXPECT_EQ(valueAt(*t, 2, 5), formatNumber(f, 14.0));
  EXPECT_EQ(valueAt(*t, 2, 8), formatNumber(f, -48.375));
  EXPECT_EQ(valueAt(*t, 3, 7), "<none>");  // no control in the last period
  EXPECT_EQ(valueAt(*t, 2, 6), "<none>");  // the empty column
  EXPECT_EQ(t->values.size(), 4u * 6 + 3u * 3);

  ASSERT_EQ(t->criteria.size(), 2u);
  EXPECT_EQ(t->criteria[0].line, 5);  // two lines below the last period's line 3
  EXPECT_EQ(t->criteria[0].label, "  Criterion HCFR =");
  EXPECT_EQ(t->criteria[0].value, formatNumber(f, 4321.0));
  EXPECT_EQ(t->criteria[1].line, 6);
  EXPECT_EQ(t->criteria[1].label, "  Criterion CE =");
  EXPECT_EQ(t->criteria[1].value, formatNumber(f, -4321.0));
  EXPECT_EQ(t->lineCount, 7);
}

TEST(ResultsTable, ParametersWithoutPolicyEffectEndWithATrueValueLine) {
  const Model model = tableModel(1, 1, 2, 1, 7);  // T = 6
  ResultsStore store;
  store.store(makeResult("CE", 1, 1, 2, 6, 1.0));
  store.display.selector = 3312;
  store.display.parameters = true;
  const std::optional<ResultsTable> t = layoutResultsTable(model, store, 778);
  ASSERT_TRUE(t);
  // x, "Controls", u, "Parameters", U1, U2.
  EXPECT_EQ(t->columnCount, 6);
  const char* f = " %10.2f ";
  EXPECT_NE(std::find(t->headings.begin(), t->headings.end(), TableCell{0, 3, 1, "Parameters"}),
            t->headings.end());
  EXPECT_EQ(valueAt(*t, 6, 4), formatNumber(f, 15.5));  // U1 estimate, period 5 on line 6
  // Periods 0..6 take lines 0..7; "True Value" follows on line 8, the criterion on line 10.
  EXPECT_NE(std::find(t->rowHeadings.begin(), t->rowHeadings.end(),
                      TableCell{8, kRowHeadingSlot, 1, "True Value"}),
            t->rowHeadings.end());
  EXPECT_EQ(valueAt(*t, 8, 4), formatNumber(f, 3.0));
  EXPECT_EQ(valueAt(*t, 8, 5), formatNumber(f, 6.0));
  ASSERT_EQ(t->criteria.size(), 1u);
  EXPECT_EQ(t->criteria[0].line, 10);
  EXPECT_EQ(t->rowHeadingWidth, 11);  // "True Value" and one blank
}

TEST(ResultsTable, ParametersWithPolicyEffectShowTrueValuesBesideEachEstimate) {
  const Model model = tableModel(1, 1, 1, 1, 5, opt::kPolicyYes);  // T = 4
  ResultsStore store;
  store.store(makeResult("CE", 1, 1, 1, 4, 1.0));
  store.store(makeResult("OLF", 1, 1, 1, 4, -1.0));
  store.display.selector = 3336;  // CE-OLF
  store.display.parameters = true;
  store.display.desiredPaths = true;
  const std::optional<ResultsTable> t = layoutResultsTable(model, store, 770);
  ASSERT_TRUE(t);
  // S1: 0..2, Controls 3, C1: 4..6, Parameters 7, U1: 8..11.
  std::vector<std::pair<int, std::string>> paramHeadings;
  for (const TableCell& h : t->headings) {
    if (h.column >= 7) paramHeadings.emplace_back(h.line * 100 + h.column, h.text);
  }
  EXPECT_EQ(paramHeadings, (std::vector<std::pair<int, std::string>>{{7, "Parameters"},
                                                                     {8, " U1 "},
                                                                     {108, "CE"},
                                                                     {109, "true"},
                                                                     {110, "OLF"},
                                                                     {111, "true"}}));
  EXPECT_NE(std::find(t->headings.begin(), t->headings.end(), TableCell{0, 8, 4, " U1 "}),
            t->headings.end());
  const char* f = " %8.0f ";
  EXPECT_EQ(valueAt(*t, 3, 8), formatNumber(f, 13.5));   // CE estimate, period 3
  EXPECT_EQ(valueAt(*t, 3, 9), formatNumber(f, 3.375));  // its true value
  EXPECT_EQ(valueAt(*t, 4, 9), formatNumber(f, 3.5));    // the last period
  for (const TableCell& r : t->rowHeadings) EXPECT_NE(r.text, "True Value");
  EXPECT_EQ(t->criteria[0].line, 6);  // two lines below the last period's line 4
}

TEST(ResultsTable, ParametersAreLeftOutWhereThereAreNone) {
  const Model model = tableModel(1, 1, 1, 1, 4);
  ResultsStore store;
  store.store(makeResult("QLP", 1, 1, 1, 3, 1.0));  // even with parameter paths attached
  store.store(makeResult("CE", 1, 1, 1, 3, 1.0));
  store.store(makeResult("OLF", 1, 1, 1, 3, 1.0, false));
  store.display.parameters = true;
  auto hasParameters = [&](int selector) {
    store.display.selector = selector;
    const std::optional<ResultsTable> t = layoutResultsTable(model, store, 770);
    EXPECT_TRUE(t) << selector;
    if (!t) return false;
    for (const TableCell& h : t->headings) {
      if (h.text == "Parameters") return true;
    }
    return false;
  };
  EXPECT_TRUE(hasParameters(3312));   // CE
  EXPECT_FALSE(hasParameters(3300));  // QLP never shows parameters
  EXPECT_FALSE(hasParameters(3336));  // CE-OLF, but OLF has no parameter paths
  store.display.parameters = false;
  EXPECT_FALSE(hasParameters(3312));
}

TEST(ResultsTable, NothingToShowGivesNoTable) {
  const Model model = tableModel(1, 1, 0, 1, 4);  // T = 3
  ResultsStore store;
  EXPECT_EQ(renderResultsText(model, store, 770), "");  // selector 0
  store.store(makeResult("HCFR", 1, 1, 0, 3, 1.0));
  store.display.selector = 3328;  // HCFR-CE: CE missing
  EXPECT_FALSE(layoutResultsTable(model, store, 770));
  store.display.selector = 3301;
  EXPECT_FALSE(layoutResultsTable(model, store, 770));

  // Solutions that do not fit the Model any more.
  store.display.selector = 3308;
  EXPECT_TRUE(layoutResultsTable(model, store, 770));
  store.store(makeResult("HCFR", 2, 1, 0, 3, 1.0));
  EXPECT_FALSE(layoutResultsTable(model, store, 770));
  store.store(makeResult("HCFR", 1, 1, 0, 5, 1.0));
  EXPECT_FALSE(layoutResultsTable(model, store, 770));
  StoredResult shortPaths = makeResult("HCFR", 1, 1, 0, 3, 1.0);
  shortPaths.solution.xs = mat2(1, 1, 0, 2);
  store.store(std::move(shortPaths));
  EXPECT_EQ(renderResultsText(model, store, 770), "");
}

TEST(ResultsTable, AnOverflowingNumberPushesItsLineButIsNotCut) {
  TinyCase c;
  StoredResult r = *c.store.find("QLP");
  r.solution.xs(1, 0) = -1.0e30;
  c.store.store(std::move(r));
  const std::vector<std::string> lines = linesOf(renderResultsText(c.model, c.store, 770));
  const std::string big = formatNumber(" %8.0f ", -1.0e30);
  ASSERT_GT(big.size(), 10u);
  ASSERT_GE(lines.size(), 4u);
  EXPECT_EQ(lines[2].substr(0, 10 + big.size()), "Y0" + blanks(8) + big);
  EXPECT_EQ(lines[2].substr(10 + big.size(), 10), cell("5", 8));
  // The next period is untouched.
  EXPECT_EQ(lines[3].substr(10, 10), cell("10", 8));
}

// Every cell of the layout stands at its place in the text: the row-heading slot at the left, value
// column c at rowHeadingWidth + c x columnWidth, criterion values 20 characters in.
void expectCellsAtTheirPlaces(const ResultsTable& t) {
  const std::vector<std::string> lines = linesOf(renderTableText(t));
  ASSERT_EQ(static_cast<int>(lines.size()), 2 + t.lineCount);
  auto expectAt = [&](int line, std::size_t at, const std::string& text) {
    std::string trimmedText = text;
    while (!trimmedText.empty() && trimmedText.back() == ' ') trimmedText.pop_back();
    if (trimmedText.empty()) return;
    const std::string& l = lines[static_cast<std::size_t>(line)];
    EXPECT_EQ(l.substr(std::min(at, l.size()), trimmedText.size()), trimmedText)
        << "line " << line << " at " << at << ": " << l;
  };
  auto position = [&](int column) {
    return column == kRowHeadingSlot
               ? std::size_t{0}
               : static_cast<std::size_t>(t.rowHeadingWidth + column * t.columnWidth);
  };
  for (const TableCell& c : t.headings) expectAt(c.line, position(c.column), c.text);
  for (const TableCell& c : t.rowHeadings) expectAt(2 + c.line, position(c.column), c.text);
  for (const TableCell& c : t.values) expectAt(2 + c.line, position(c.column), c.text);
  for (const CriterionLine& c : t.criteria) {
    expectAt(2 + c.line, 0, c.label);
    expectAt(2 + c.line, kCriterionValueOffset, c.value);
  }
}

struct Combination {
  int selector;
  int format;
  int policy;
  bool desired;
  bool columns;
};

TEST(ResultsTable, EveryCellOfEveryLayoutIsAlignedInTheText) {
  const std::vector<Combination> combinations = {
      {3300, 770, opt::kPolicyNo, true, false},  {3300, 790, opt::kPolicyNo, false, true},
      {3328, 774, opt::kPolicyNo, true, false},  {3356, 782, opt::kPolicyYes, true, false},
      {3360, 795, opt::kPolicyNo, false, false}, {3364, 785, opt::kPolicyYes, true, true},
      {3352, 786, opt::kPolicyNo, true, true},   {3320, 784, opt::kPolicyYes, false, true},
  };
  for (const Combination& c : combinations) {
    SCOPED_TRACE(std::to_string(c.selector) + " " + std::to_string(c.format));
    Model model = tableModel(2, 2, 2, 1, 12, c.policy);  // T = 11
    ResultsStore store;
    double sign = 1.0;
    for (std::string_view name : kResultMethods) {
      store.store(makeResult(std::string(name), 2, 2, 2, 11, sign));
      sign = -sign * 2;
    }
    store.display.selector = c.selector;
    store.display.parameters = true;
    store.display.desiredPaths = c.desired;
    store.display.periodsAsColumns = c.columns;
    store.display.periodsAsRows = !c.columns;
    const std::optional<ResultsTable> t = layoutResultsTable(model, store, c.format);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->columnWidth, resultsNumberFormat(c.format).width);
    expectCellsAtTheirPlaces(*t);
  }
}

TEST(ResultsTable, PeriodsAsColumnsIsTheTransposeOfPeriodsAsRows) {
  for (int policy : {opt::kPolicyNo, opt::kPolicyYes}) {
    SCOPED_TRACE(policy);
    const Model model = tableModel(2, 1, 2, 1, 8, policy);  // T = 7
    ResultsStore store;
    store.store(makeResult("CE", 2, 1, 2, 7, 1.0));
    store.store(makeResult("OLF", 2, 1, 2, 7, -3.0));
    store.store(makeResult("OLIN", 2, 1, 2, 7, 9.0));
    store.display.selector = 3360;  // CE-OLF-OLIN
    store.display.parameters = true;
    store.display.desiredPaths = true;
    const std::optional<ResultsTable> rows = layoutResultsTable(model, store, 782);
    store.display.periodsAsRows = false;
    store.display.periodsAsColumns = true;
    const std::optional<ResultsTable> cols = layoutResultsTable(model, store, 782);
    ASSERT_TRUE(rows && cols);
    EXPECT_TRUE(rows->periodsAsRows);
    EXPECT_FALSE(cols->periodsAsRows);

    // Value (L, C) of the rows table is value (C + 1, L) of the columns table, and nothing else is.
    const auto r = valueGrid(*rows);
    const auto c = valueGrid(*cols);
    ASSERT_EQ(r.size(), c.size());
    for (const auto& [at, text] : r) {
      const auto it = c.find({at.second + 1, at.first});
      ASSERT_NE(it, c.end()) << at.first << "," << at.second;
      EXPECT_EQ(it->second, text);
    }
    EXPECT_EQ(cols->columnCount,
              policy == opt::kPolicyNo ? 10 : 9);  // 8 periods, a gap, True Value
    // Line 0 "States", one line per column of the rows table, one blank line.
    EXPECT_EQ(cols->criteria[0].line, rows->columnCount + 2);

    // Row headings of the rows table head the columns of the other, and the column headings of
    // the rows table name the lines of the other.
    std::map<int, std::string> colHeads, rowHeads;
    for (const TableCell& h : cols->headings) {
      if (h.line == 0) colHeads[h.column] = h.text;
    }
    for (const TableCell& h : cols->rowHeadings) rowHeads[h.line] = h.text;
    EXPECT_EQ(colHeads[kRowHeadingSlot], "Time Periods");
    for (const TableCell& h : rows->rowHeadings) {
      const std::string expected = h.text == "True Value" ? h.text : " " + h.text + " ";
      EXPECT_EQ(colHeads[h.line], expected);
    }
    EXPECT_EQ(rowHeads[0], "States");
    EXPECT_EQ(rowHeads[1], "S1 CE");
    EXPECT_EQ(rowHeads[3], "S1 OLIN");
    EXPECT_EQ(rowHeads[4], "S1 des");
    for (const TableCell& h : rows->headings) {
      if (h.line == 0 && (h.text == "Controls" || h.text == "Parameters")) {
        EXPECT_EQ(rowHeads[h.column + 1], h.text);
      }
    }
    if (policy == opt::kPolicyYes) {
      // Parameters start after S1, S2 (4 columns each), the gap, C1 (4) and the gap: column 14.
      EXPECT_EQ(rowHeads[15], "U1 CE");
      EXPECT_EQ(rowHeads[16], "U1 CE true");
    }

    // The criterion lines are the same, below the last line.
    ASSERT_EQ(rows->criteria.size(), 3u);
    ASSERT_EQ(cols->criteria.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(rows->criteria[i].label, cols->criteria[i].label);
      EXPECT_EQ(rows->criteria[i].value, cols->criteria[i].value);
    }
  }
}

}  // namespace
}  // namespace ovaro
