#include "ui/results_view.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QScrollBar>
#include <algorithm>
#include <tuple>

#include "results/results_table.h"
#include "support/results_fixtures.h"
#include "ui/harness.h"

namespace ovaro::ui {
namespace {

// A QLP solve of `n` states and `m` controls over periods 0..T, shown with desired paths.
ResultsTable qlpTable(int n, int m, int T, int formatId, bool periodsAsRows = true) {
  ResultsStore store;
  store.store(testing::labelledResult("QLP", n, m, 0, T, 1.0));
  store.display = {3300, true, false, periodsAsRows, !periodsAsRows};
  std::optional<ResultsTable> table =
      layoutResultsTable(testing::labelledModel(n, m, 0, 1, T + 1), store, formatId);
  EXPECT_TRUE(table.has_value());
  return table.value_or(ResultsTable{});
}

std::vector<PlacedText> sorted(std::vector<PlacedText> texts) {
  std::sort(texts.begin(), texts.end(), [](const PlacedText& a, const PlacedText& b) {
    return std::tie(a.y, a.x, a.text) < std::tie(b.y, b.x, b.text);
  });
  return texts;
}

// The line height and character width of the tests that place by hand.
constexpr ResultsMetrics kMetrics{16, 7};

// In the combined frame the headings take two lines and 5 pixels, the row headings 80 pixels (or
// 5 and their text when longer); value column c of a format w characters wide starts 10 + c w 7
// pixels right of them, body line L at 16 + 10 + 32 + 16 L; the row headings sit 5 pixels in, the
// column headings 22 pixels right of their column's start, and a criterion's value 20 characters
// right of its label.
TEST(ResultsPlacement, EveryCellIsPlacedOnceWhereTheGeometrySays) {
  for (const bool rows : {true, false}) {
    SCOPED_TRACE(rows ? "periods as rows" : "periods as columns");
    const ResultsTable table = qlpTable(3, 2, 11, 782, rows);
    const ResultsPlacement p = placeResults(table, kMetrics);
    const int left = p.rowHeadingWidth;  // 80, or wider for the longer headings of columns
    EXPECT_EQ(left, rows ? 80 : std::max(80, 5 + table.rowHeadingWidth * 7));
    EXPECT_EQ(p.headingHeight, 37);
    EXPECT_EQ(p.columnHeadingOrigin, QPoint(0, 0));
    EXPECT_EQ(p.rowHeadingOrigin, QPoint(0, 37));
    EXPECT_EQ(p.tableOrigin, QPoint(left, 37));
    const int colW = 13 * 7;
    auto y = [](int line) { return 58 + line * 16 - 37; };  // in the windows below the headings
    std::vector<PlacedText> values, rowHeadings, headings;
    for (const TableCell& c : table.values)
      values.push_back({10 + c.column * colW, y(c.line), QString::fromStdString(c.text)});
    for (const CriterionLine& c : table.criteria) {
      values.push_back({0, y(c.line), QString::fromStdString(c.label)});
      values.push_back({140, y(c.line), QString::fromStdString(c.value)});
    }
    for (const TableCell& c : table.rowHeadings)
      rowHeadings.push_back({5, y(c.line), QString::fromStdString(c.text)});
    for (const TableCell& c : table.headings) {
      const int x = c.column == kRowHeadingSlot ? 22 : left + 10 + 22 + c.column * colW;
      headings.push_back({x, 2 + c.line * 16, QString::fromStdString(c.text)});
    }
    EXPECT_EQ(p.table, sorted(values));  // by line, then position, as the painter relies on
    EXPECT_EQ(sorted(p.rowHeadings), sorted(rowHeadings));
    EXPECT_EQ(sorted(p.columnHeadings), sorted(headings));
    // The scrollable extent reaches past the last column and the last line.
    EXPECT_GE(p.tableSize.width(), 10 + table.columnCount * colW);
    EXPECT_GE(p.tableSize.height(), y(table.lineCount - 1) + 16);
    EXPECT_GE(p.columnHeadingLength, left + 10 + table.columnCount * colW);
  }
  // A table of criteria only, measured by a font that reports nothing: still placed, one line
  // apart, nothing at a negative position.
  ResultsTable criteriaOnly;
  criteriaOnly.criteria = {{1, "  Criterion CE =", " 1 "}, {2, "  Criterion OLF =", " 2 "}};
  const ResultsPlacement odd = placeResults(criteriaOnly, ResultsMetrics{0, 0});
  ASSERT_EQ(odd.table.size(), 4u);
  EXPECT_LT(odd.table[0].y, odd.table[2].y);
  for (const PlacedText& t : odd.table) EXPECT_TRUE(t.x >= 0 && t.y >= 0);
}

// Whether `after` is `before` with its content moved left by dx and up by dy, inside `area`.
::testing::AssertionResult shiftedBy(const QImage& before, const QImage& after, QRect area, int dx,
                                     int dy) {
  for (int y = area.top(); y + dy <= area.bottom(); ++y)
    for (int x = area.left(); x + dx <= area.right(); ++x)
      if (after.pixel(x, y) != before.pixel(x + dx, y + dy))
        return ::testing::AssertionFailure() << "pixel (" << x << ", " << y << ") is not the old ("
                                             << x + dx << ", " << y + dy << ")";
  return ::testing::AssertionSuccess();
}

QImage picture(QWidget* w) {
  return w->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

// The three windows in their places, measured in the fixed-pitch font; scrolling the table moves
// the headings with it, and a new table starts again at its top-left corner.
TEST(ResultsView, ThreeWindowsInTheirPlacesAndTheHeadingsScrollWithTheTable) {
  test::qtApp();
  ResultsView view;
  view.resize(640, 480);
  view.show();
  QApplication::processEvents();
  view.showTable(qlpTable(2, 1, 6, 770));
  EXPECT_TRUE(QFontInfo(view.font()).fixedPitch());
  const QFontMetrics fm(view.font());
  const int lineHeight = fm.height() + fm.leading(), top = 2 * lineHeight + 5;
  EXPECT_EQ(view.metrics().lineHeight, lineHeight);
  EXPECT_EQ(view.metrics().charWidth, fm.averageCharWidth());
  QWidget* headings = view.findChild<QWidget*>("ResultsHorzAcrWin");
  QWidget* rowHeadings = view.findChild<QWidget*>("ResultsVertAcrWin");
  ResultsTableWindow* table = view.tableWindow();
  ASSERT_EQ(headings, view.columnHeadingWindow());
  ASSERT_EQ(rowHeadings, view.rowHeadingWindow());
  ASSERT_EQ(view.findChild<QWidget*>("ResultsWin"), table);
  EXPECT_EQ(headings->geometry(), QRect(0, 0, 640, top));
  EXPECT_EQ(rowHeadings->geometry(), QRect(0, top, 80, 480 - top));
  EXPECT_EQ(table->geometry(), QRect(80, top, 560, 480 - top));
  EXPECT_EQ(table->frameShape(), QFrame::Box);
  view.resize(420, 320);
  EXPECT_EQ(table->geometry(), QRect(80, top, 340, 320 - top));

  // A hundred periods of thirty states with their desired paths: far larger than the window.
  view.showTable(qlpTable(30, 4, 99, 778));
  QApplication::processEvents();
  QScrollBar* across = table->horizontalScrollBar();
  QScrollBar* down = table->verticalScrollBar();
  ASSERT_GT(across->maximum(), 100);
  ASSERT_GT(down->maximum(), 100);
  EXPECT_EQ(across->singleStep(), 12 * view.metrics().charWidth);
  EXPECT_EQ(down->singleStep(), view.metrics().lineHeight);
  // Only what the window shows is drawn: a few lines of a few columns, not the 6000 numbers.
  EXPECT_FALSE(table->visibleTexts().empty());
  EXPECT_LT(table->visibleTexts().size(), 400u);
  const QImage headings0 = picture(headings), rows0 = picture(rowHeadings);
  const QImage table0 = picture(table->viewport());
  // Across by 37 pixels: the column headings and the values move left, the row headings stay.
  across->setValue(37);
  QApplication::processEvents();
  const QImage headings1 = picture(headings), table1 = picture(table->viewport());
  EXPECT_NE(headings1, headings0);
  EXPECT_TRUE(shiftedBy(headings0, headings1, headings->contentsRect(), 37, 0));
  EXPECT_TRUE(shiftedBy(table0, table1, table->viewport()->rect(), 37, 0));
  EXPECT_EQ(picture(rowHeadings), rows0);
  EXPECT_EQ(table->visibleTexts().front().x, table->texts().front().x - 37);
  // Down by 45 pixels: the row headings and the values move up, the column headings stay.
  down->setValue(45);
  QApplication::processEvents();
  const QImage rows2 = picture(rowHeadings);
  EXPECT_NE(rows2, rows0);
  EXPECT_TRUE(shiftedBy(rows0, rows2, rowHeadings->contentsRect(), 0, 45));
  EXPECT_TRUE(shiftedBy(table1, picture(table->viewport()), table->viewport()->rect(), 0, 45));
  EXPECT_EQ(picture(headings), headings1);

  view.showTable(qlpTable(2, 1, 6, 770));
  QApplication::processEvents();
  EXPECT_EQ(table->scrollOffset(), QPoint(0, 0));
  EXPECT_EQ(view.columnHeadingWindow()->offset(), QPoint(0, 0));
  EXPECT_EQ(view.rowHeadingWindow()->offset(), QPoint(0, 0));
  // Clearing empties all three windows.
  view.clearTable();
  EXPECT_FALSE(view.table());
  EXPECT_TRUE(view.columnHeadingWindow()->texts().empty() &&
              view.rowHeadingWindow()->texts().empty() && table->texts().empty());
}

}  // namespace
}  // namespace ovaro::ui
