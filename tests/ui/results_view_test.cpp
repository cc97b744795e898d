#include "ui/results_view.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontInfo>
#include <QFontMetrics>
#include <QImage>
#include <QPixmap>
#include <QScrollBar>
#include <algorithm>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "model/options.h"
#include "results/results_table.h"
#include "support/model_fixtures.h"
#include "support/solution_fixtures.h"
#include "ui/qt_app.h"

namespace ovaro::ui {

inline void PrintTo(const PlacedText& t, std::ostream* os) {
  *os << "(" << t.x << ", " << t.y << ") \"" << t.text.toStdString() << '"';
}

namespace {

// n states S1.., m controls C1.., periods first..last headed Y0, Y1, ...
Model viewModel(int n, int m, int first, int last) {
  testing::ModelShape shape;
  shape.n = n;
  shape.m = m;
  shape.initialPeriod = first;
  shape.terminalPeriod = last;
  Model model = testing::makeModel(shape);
  for (int i = 0; i < n; ++i) model.states.acronyms[i] = "S" + std::to_string(i + 1);
  for (int j = 0; j < m; ++j) model.controls.acronyms[j] = "C" + std::to_string(j + 1);
  for (std::size_t t = 0; t < model.periods.acronyms.size(); ++t) {
    model.periods.acronyms[t] = "Y" + std::to_string(t);
  }
  return model;
}

// x_i(t) = sign (100 i + t), desired 7 i; u_j(t) = sign (50 j - t), desired -2 j; criterion
// sign 4321.
StoredResult solved(std::string method, int n, int m, int T, double sign) {
  StoredResult r;
  r.solution = testing::zeroSolution(std::move(method), n, m, T);
  Solution& s = r.solution;
  for (int t = 0; t <= T; ++t) {
    for (int i = 1; i <= n; ++i) {
      s.xs(i, t) = sign * (100 * i + t);
      s.xtws(i, t) = 7 * i;
    }
    for (int j = 1; j <= m && t < T; ++j) {
      s.us(j, t) = sign * (50 * j - t);
      s.utws(j, t) = -2 * j;
    }
  }
  s.criterion = sign * 4321.0;
  return r;
}

// A QLP solve of `n` states and `m` controls over periods 0..T, shown with desired paths.
ResultsTable qlpTable(int n, int m, int T, int formatId, bool periodsAsRows = true) {
  const Model model = viewModel(n, m, 1, T + 1);
  ResultsStore store;
  store.store(solved("QLP", n, m, T, 1.0));
  store.display.selector = 3300;
  store.display.desiredPaths = true;
  store.display.periodsAsRows = periodsAsRows;
  store.display.periodsAsColumns = !periodsAsRows;
  std::optional<ResultsTable> table = layoutResultsTable(model, store, formatId);
  EXPECT_TRUE(table.has_value());
  return table.value_or(ResultsTable{});
}

// A number as the formats print it: a blank, the digits right-aligned in `field`, a blank.
QString numberCell(const QString& digits, int field) {
  return QStringLiteral(" %1 ").arg(digits, field);
}

const PlacedText* findText(const std::vector<PlacedText>& texts, const QString& text, int y) {
  for (const PlacedText& t : texts) {
    if (t.text == text && t.y == y) return &t;
  }
  return nullptr;
}

// Where `text` sits on the line at `y`, or -1.
int xOf(const std::vector<PlacedText>& texts, const QString& text, int y) {
  const PlacedText* t = findText(texts, text, y);
  return t ? t->x : -1;
}

std::vector<PlacedText> sorted(std::vector<PlacedText> texts) {
  std::sort(texts.begin(), texts.end(), [](const PlacedText& a, const PlacedText& b) {
    return std::tie(a.y, a.x, a.text) < std::tie(b.y, b.x, b.text);
  });
  return texts;
}

// The line height and character width of the tests that place by hand.
constexpr ResultsMetrics kMetrics{16, 7};

TEST(ResultsPlacement, PeriodsAsRowsFollowTheStatedGeometry) {
  // Two states, one control, seven periods (0..6); format 770 is 10 characters, 70 pixels.
  const ResultsTable table = qlpTable(2, 1, 6, 770);
  const ResultsPlacement p = placeResults(table, kMetrics);

  EXPECT_EQ(p.headingHeight, 2 * 16 + 5);
  EXPECT_EQ(p.rowHeadingWidth, 80);
  EXPECT_EQ(p.columnHeadingOrigin, QPoint(0, 0));
  EXPECT_EQ(p.rowHeadingOrigin, QPoint(0, 37));
  EXPECT_EQ(p.tableOrigin, QPoint(80, 37));

  // Combined frame: value column c at 90 + 70 c, body line L at 16 + 10 + 32 + 16 L = 58 + 16 L.
  // The table window starts at (80, 37), so column c is at 10 + 70 c and line L at 21 + 16 L.
  // Columns: S1 x, S1 des, S2 x, S2 des, the empty "Controls" column, C1 u, C1 des.
  EXPECT_EQ(xOf(p.table, numberCell("100", 8), 21), 10);     // x_1(0), column 0
  EXPECT_EQ(xOf(p.table, numberCell("7", 8), 21), 10 + 70);  // its desired path, column 1
  EXPECT_EQ(xOf(p.table, numberCell("200", 8), 21), 10 + 140);
  EXPECT_EQ(xOf(p.table, numberCell("50", 8), 21), 10 + 350);  // u_1(0), column 5
  EXPECT_EQ(xOf(p.table, numberCell("-2", 8), 21), 10 + 420);
  // Periods 0..4 on lines 0..4, a blank line, then period 5 on line 6 and 6 on line 7.
  EXPECT_EQ(xOf(p.table, numberCell("104", 8), 21 + 4 * 16), 10);
  EXPECT_EQ(xOf(p.table, numberCell("105", 8), 21 + 6 * 16), 10);
  EXPECT_EQ(xOf(p.table, numberCell("106", 8), 21 + 7 * 16), 10);
  EXPECT_EQ(xOf(p.table, numberCell("45", 8), 21 + 6 * 16), 10 + 350);  // u_1(5)
  for (const PlacedText& t : p.table) EXPECT_NE(t.y, 21 + 5 * 16) << t.text.toStdString();

  // Row headings in their own window (origin (0, 37)): at x 5, on the lines of their periods.
  const std::vector<PlacedText> rows{{5, 21, "Y0"}, {5, 37, "Y1"},  {5, 53, "Y2"}, {5, 69, "Y3"},
                                     {5, 85, "Y4"}, {5, 117, "Y5"}, {5, 133, "Y6"}};
  EXPECT_EQ(sorted(p.rowHeadings), rows);

  // Column headings: line 0 at y 2, line 1 at y 18; "States" at 22, the first heading over the
  // values at 112 and the others one column (70) apart per value column.
  const std::vector<PlacedText> headings{{22, 2, "States"},    {112, 2, " S1 "},  {252, 2, " S2 "},
                                         {392, 2, "Controls"}, {462, 2, " C1 "},  {112, 18, " opt"},
                                         {182, 18, "des"},     {252, 18, " opt"}, {322, 18, "des"},
                                         {462, 18, " opt"},    {532, 18, "des"}};
  EXPECT_EQ(sorted(p.columnHeadings), sorted(headings));

  // The criterion: blocks take lines 0..7, one blank line, the criterion on line 9. Its text at
  // the table window's left edge, its value 20 character widths (140 pixels) to the right.
  const int criterionY = 21 + 9 * 16;
  EXPECT_EQ(xOf(p.table, "  Criterion QLP =", criterionY), 0);
  EXPECT_EQ(xOf(p.table, numberCell("4321", 8), criterionY), 140);
  EXPECT_EQ(p.table.back().y, criterionY);  // nothing below it

  // The table's texts are ordered by line, then position: the painter relies on it.
  EXPECT_TRUE(
      std::is_sorted(p.table.begin(), p.table.end(), [](const PlacedText& a, const PlacedText& b) {
        return std::tie(a.y, a.x) < std::tie(b.y, b.x);
      }));
  // The scrollable extent reaches past the last column (7 columns from 10) and the criterion.
  EXPECT_GE(p.tableSize.width(), 10 + 7 * 70);
  EXPECT_GE(p.tableSize.height(), criterionY + 16);
  EXPECT_GE(p.columnHeadingLength, 80 + 10 + 7 * 70);
}

TEST(ResultsPlacement, EveryCellIsPlacedExactlyOnce) {
  for (const bool rows : {true, false}) {
    SCOPED_TRACE(rows ? "periods as rows" : "periods as columns");
    const ResultsTable table = qlpTable(3, 2, 11, 782, rows);
    const ResultsPlacement p = placeResults(table, kMetrics);
    const int colW = 13 * 7;
    const int left = p.rowHeadingWidth;
    // Each cell where the geometry puts it, in its window's coordinates.
    std::vector<PlacedText> values;
    for (const TableCell& c : table.values) {
      values.push_back(
          {10 + c.column * colW, 58 + c.line * 16 - 37, QString::fromStdString(c.text)});
    }
    for (const CriterionLine& c : table.criteria) {
      values.push_back({0, 58 + c.line * 16 - 37, QString::fromStdString(c.label)});
      values.push_back({140, 58 + c.line * 16 - 37, QString::fromStdString(c.value)});
    }
    std::vector<PlacedText> rowHeadings;
    for (const TableCell& c : table.rowHeadings) {
      rowHeadings.push_back({5, 58 + c.line * 16 - 37, QString::fromStdString(c.text)});
    }
    std::vector<PlacedText> headings;
    for (const TableCell& c : table.headings) {
      const int x = c.column == kRowHeadingSlot ? 22 : left + 10 + 22 + c.column * colW;
      headings.push_back({x, 2 + c.line * 16, QString::fromStdString(c.text)});
    }
    EXPECT_EQ(p.table.size(), table.values.size() + 2 * table.criteria.size());
    EXPECT_EQ(sorted(p.table), sorted(values));
    EXPECT_EQ(sorted(p.rowHeadings), sorted(rowHeadings));
    EXPECT_EQ(sorted(p.columnHeadings), sorted(headings));
  }
}

TEST(ResultsPlacement, EmptyAndOddTables) {
  const ResultsPlacement empty = placeResults(ResultsTable{}, kMetrics);
  EXPECT_TRUE(empty.table.empty());
  EXPECT_TRUE(empty.rowHeadings.empty());
  EXPECT_TRUE(empty.columnHeadings.empty());
  EXPECT_EQ(empty.tableSize, QSize(0, 0));
  EXPECT_EQ(empty.headingHeight, 37);

  // A table of criteria only, measured by a font that reports nothing: still placed, one line
  // apart, nothing at a negative position.
  ResultsTable criteriaOnly;
  criteriaOnly.criteria.push_back({1, "  Criterion CE =", " 1 "});
  criteriaOnly.criteria.push_back({2, "  Criterion OLF =", " 2 "});
  const ResultsPlacement odd = placeResults(criteriaOnly, ResultsMetrics{0, 0});
  ASSERT_EQ(odd.table.size(), 4u);
  EXPECT_LT(odd.table[0].y, odd.table[2].y);
  for (const PlacedText& t : odd.table) {
    EXPECT_GE(t.x, 0);
    EXPECT_GE(t.y, 0);
  }
}

// Whether `after` is `before` with its content moved left by dx and up by dy, inside `area`.
// Reports the first pixel that differs.
::testing::AssertionResult shiftedBy(const QImage& before, const QImage& after, QRect area, int dx,
                                     int dy) {
  for (int y = area.top(); y + dy <= area.bottom(); ++y) {
    for (int x = area.left(); x + dx <= area.right(); ++x) {
      if (after.pixel(x, y) != before.pixel(x + dx, y + dy)) {
        return ::testing::AssertionFailure() << "pixel (" << x << ", " << y << ") is not the old ("
                                             << x + dx << ", " << y + dy << ")";
      }
    }
  }
  return ::testing::AssertionSuccess();
}

// Pixels of `image` inside `area` that differ from its top-left pixel (the background).
int inkIn(const QImage& image, QRect area) {
  const QRgb background = image.pixel(area.topLeft());
  int ink = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) ink += image.pixel(x, y) != background;
  }
  return ink;
}

QImage picture(QWidget* w) {
  return w->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

TEST(ResultsView, ShowsTheThreeWindowsInTheirPlaces) {
  test::qtApp();
  ResultsView view;
  view.resize(640, 480);
  view.show();
  QApplication::processEvents();
  const ResultsTable table = qlpTable(2, 1, 6, 770);
  view.showTable(table);

  // The metrics come from the fixed-pitch font, measured here independently.
  EXPECT_TRUE(QFontInfo(view.font()).fixedPitch());
  const QFontMetrics fm(view.font());
  const int lineHeight = fm.height() + fm.leading();
  EXPECT_EQ(view.metrics().lineHeight, lineHeight);
  EXPECT_EQ(view.metrics().charWidth, fm.averageCharWidth());
  const int top = 2 * lineHeight + 5;

  auto* headings = view.findChild<QWidget*>("ResultsHorzAcrWin");
  auto* rowHeadings = view.findChild<QWidget*>("ResultsVertAcrWin");
  auto* values = view.findChild<QWidget*>("ResultsWin");
  ASSERT_EQ(headings, view.columnHeadingWindow());
  ASSERT_EQ(rowHeadings, view.rowHeadingWindow());
  ASSERT_EQ(values, view.tableWindow());
  EXPECT_EQ(headings->geometry(), QRect(0, 0, 640, top));
  EXPECT_EQ(rowHeadings->geometry(), QRect(0, top, 80, 480 - top));
  EXPECT_EQ(values->geometry(), QRect(80, top, 560, 480 - top));
  for (const QFrame* f :
       {static_cast<QFrame*>(view.columnHeadingWindow()),
        static_cast<QFrame*>(view.rowHeadingWindow()), static_cast<QFrame*>(view.tableWindow())}) {
    EXPECT_EQ(f->frameShape(), QFrame::Box) << f->objectName().toStdString();
  }

  // The windows draw what the placement computes for this font.
  const ResultsPlacement p = placeResults(table, view.metrics());
  EXPECT_EQ(view.columnHeadingWindow()->texts(), p.columnHeadings);
  EXPECT_EQ(view.rowHeadingWindow()->texts(), p.rowHeadings);
  EXPECT_EQ(view.tableWindow()->texts(), p.table);
  ASSERT_TRUE(view.table());
  EXPECT_EQ(view.table()->values.size(), table.values.size());

  // Resizing keeps the layout; clearing empties all three windows.
  view.resize(300, 200);
  EXPECT_EQ(values->geometry(), QRect(80, top, 220, 200 - top));
  view.clearTable();
  EXPECT_FALSE(view.table());
  EXPECT_TRUE(view.columnHeadingWindow()->texts().empty());
  EXPECT_TRUE(view.rowHeadingWindow()->texts().empty());
  EXPECT_TRUE(view.tableWindow()->texts().empty());
  QApplication::processEvents();
  EXPECT_FALSE(view.grab().isNull());  // an empty view paints
}

TEST(ResultsView, ScrollingTheTableMovesTheHeadingsWithIt) {
  test::qtApp();
  ResultsView view;
  view.resize(420, 320);
  // A hundred periods of thirty states with their desired paths: far larger than the window.
  view.showTable(qlpTable(30, 4, 99, 778));
  view.show();
  QApplication::processEvents();

  ResultsTableWindow* table = view.tableWindow();
  QScrollBar* across = table->horizontalScrollBar();
  QScrollBar* down = table->verticalScrollBar();
  ASSERT_GT(across->maximum(), 100);
  ASSERT_GT(down->maximum(), 100);
  EXPECT_EQ(across->singleStep(), 12 * view.metrics().charWidth);
  EXPECT_EQ(down->singleStep(), view.metrics().lineHeight);
  // Only what the window shows is drawn: a few lines of a few columns, not the 6000 numbers.
  const std::vector<PlacedText> visible = table->visibleTexts();
  EXPECT_FALSE(visible.empty());
  EXPECT_LT(visible.size(), 400u);

  QWidget* headings = view.columnHeadingWindow();
  QWidget* rowHeadings = view.rowHeadingWindow();
  const QRect headingArea = view.columnHeadingWindow()->contentsRect();
  const QRect rowArea = view.rowHeadingWindow()->contentsRect();
  const QRect tableArea = table->viewport()->rect();
  const QImage headings0 = picture(headings);
  const QImage rows0 = picture(rowHeadings);
  const QImage table0 = picture(table->viewport());
  ASSERT_GT(inkIn(headings0, headingArea), 0);
  ASSERT_GT(inkIn(rows0, rowArea), 0);

  // Across by 37 pixels: the column headings and the values move left by 37, the row headings
  // stay.
  across->setValue(37);
  QApplication::processEvents();
  EXPECT_EQ(view.columnHeadingWindow()->offset(), QPoint(37, 0));
  EXPECT_EQ(view.rowHeadingWindow()->offset(), QPoint(0, 0));
  const QImage headings1 = picture(headings);
  const QImage table1 = picture(table->viewport());
  EXPECT_NE(headings1, headings0);
  EXPECT_TRUE(shiftedBy(headings0, headings1, headingArea, 37, 0));
  EXPECT_TRUE(shiftedBy(table0, table1, tableArea, 37, 0));
  EXPECT_EQ(picture(rowHeadings), rows0);
  const std::vector<PlacedText> moved = table->visibleTexts();
  ASSERT_FALSE(moved.empty());
  EXPECT_EQ(moved.front().x, table->texts().front().x - 37);

  // Down by 45 pixels: the row headings and the values move up by 45, the column headings stay.
  down->setValue(45);
  QApplication::processEvents();
  EXPECT_EQ(view.rowHeadingWindow()->offset(), QPoint(0, 45));
  const QImage rows2 = picture(rowHeadings);
  EXPECT_NE(rows2, rows0);
  EXPECT_TRUE(shiftedBy(rows0, rows2, rowArea, 0, 45));
  EXPECT_TRUE(shiftedBy(table1, picture(table->viewport()), tableArea, 0, 45));
  EXPECT_EQ(picture(headings), headings1);

  // A new table starts again at its top-left corner, headings included.
  view.showTable(qlpTable(2, 1, 6, 770));
  QApplication::processEvents();
  EXPECT_EQ(table->scrollOffset(), QPoint(0, 0));
  EXPECT_EQ(view.columnHeadingWindow()->offset(), QPoint(0, 0));
  EXPECT_EQ(view.rowHeadingWindow()->offset(), QPoint(0, 0));
}

}  // namespace
}  // namespace ovaro::ui
