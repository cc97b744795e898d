// The results windows: the table of the displayed solutions drawn as text in three bordered
// child windows that scroll together.
//
//   +--------------------------------------------------------------+
//   | ResultsHorzAcrWin: column headings, 2 line heights + 5 high   |
//   +-----------+--------------------------------------------------+
//   | Results-  | ResultsWin: the values and the criterion lines,  |
//   | VertAcrWin| with the scroll bars                             |
//   | (row      |                                                  |
//   | headings) |                                                  |
//   +-----------+--------------------------------------------------+
//
// What goes where is computed by results/ (layoutResultsTable: cells by line and value column);
// this file turns those cells into pixels and paints them.
//
// The pixel geometry is stated in one combined frame, as if the three windows were a single
// sheet whose origin is the top-left corner of the column-heading window (inside its border):
//   - heading line 0 at y = 2 and line 1 one line height lower; a heading in the row-heading slot
//     ("States", "Time Periods", "Time") at x = 22, a heading over value column c at
//     x = first value column + 22 + c column widths (112 for the first one with periods as rows);
//   - the first value column at x = 90 and the first body line at y = line height + 10 + 2 line
//     heights; value column c, body line L at (90 + c column widths, that y + L line heights);
//   - row headings (period acronyms, or the variable names with periods as columns) at x = 5 on
//     their body line;
//   - a criterion line's text at the left edge of the table window, its value 20 average
//     character widths to the right of that edge.
// Each window shows its part of that sheet: the column-heading window the strip 0 <= y < its
// height, full width; the row-heading window the strip x < its width below the headings; the
// table window the rest. A position in a window is therefore the combined position minus the
// window's origin in the sheet (ResultsPlacement::*Origin): the first value of the table window
// sits at (10, line height + 5) in its own coordinates.
//
// Scrolling moves the sheet, not the frame: the table window's scroll bars give the offset
// (pixels); the column-heading window follows the horizontal offset (its whole strip, "States"
// included, moves with the values beneath it) and the row-heading window the vertical one. One
// step of the horizontal bar is one column width, of the vertical bar one line.
//
// Periods as rows the row-heading window is 80 pixels wide. Periods as columns the row headings
// name a variable and its column ("S1 HCFR", "U1 OLF true", "Parameters"), so the window widens
// to hold the widest of them when 80 pixels are too few; the first value column stays 10 pixels
// right of its edge, and every other rule above is the same with that width in place of 80.
#pragma once

#include <QAbstractScrollArea>
#include <QFrame>
#include <QPoint>
#include <QSize>
#include <QString>
#include <QWidget>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "results/results_table.h"

class QFont;

namespace ovaro::ui {

// The stated geometry of the combined frame, in pixels.
inline constexpr int kRowHeadingWindowWidth = 80;  // with periods as rows
inline constexpr int kRowHeadingX = 5;
inline constexpr int kSlotHeadingX = 22;
inline constexpr int kFirstValueGap = 10;  // row-heading window edge to the first value column
inline constexpr int kHeadingIndent = 22;  // value column start to its heading
inline constexpr int kFirstHeadingY = 2;
inline constexpr int kHeadingWindowExtra = 5;  // heading window height = 2 line heights + this
inline constexpr int kBodyGap = 10;            // first body line at 3 line heights + this
inline constexpr int kContentMargin = 10;      // blank edge after the last text, right and below

// The display font's measures, taken when the windows are made.
struct ResultsMetrics {
  int lineHeight = 0;  // character height plus external leading
  int charWidth = 0;   // average character width
};

// The measures of `font` as the results windows use them.
ResultsMetrics resultsMetrics(const QFont& font);
// The font of the results windows: the system's fixed-pitch font, so columns of numbers align.
QFont resultsFont();

// One text at a pixel position of its window, (x, y) being the top-left corner of its line.
struct PlacedText {
  int x = 0;
  int y = 0;
  QString text;
  friend bool operator==(const PlacedText&, const PlacedText&) = default;
};

// Where every text of a table goes, per window, in the window's own (unscrolled) coordinates.
// The table's texts are ordered by y, then x, so a painter can find the visible lines quickly.
struct ResultsPlacement {
  std::vector<PlacedText> columnHeadings;
  std::vector<PlacedText> rowHeadings;
  std::vector<PlacedText> table;
  int rowHeadingWidth = kRowHeadingWindowWidth;  // width of the row-heading window
  int headingHeight = 0;                         // height of the column-heading window
  // Origins of the three windows in the combined frame.
  QPoint columnHeadingOrigin;
  QPoint rowHeadingOrigin;
  QPoint tableOrigin;
  // Extent of what each window draws: the table's scrollable area, and the lengths of the two
  // heading strips (the column headings' width, the row headings' height).
  QSize tableSize;
  int columnHeadingLength = 0;
  int rowHeadingLength = 0;
};

// The pixel placement of every cell of `table`: each heading, row heading and value once, and
// each criterion line as two texts (label, value). Computes only; nothing is drawn.
ResultsPlacement placeResults(const ResultsTable& table, const ResultsMetrics& metrics);

// A heading window: draws its texts shifted by the scroll offset it is given.
class ResultsHeadingWindow : public QFrame {
  Q_OBJECT
 public:
  explicit ResultsHeadingWindow(QWidget* parent = nullptr);
  void setTexts(std::vector<PlacedText> texts);
  const std::vector<PlacedText>& texts() const { return texts_; }
  // The part of the sheet shown: a text at (x, y) is drawn at (x, y) - offset.
  void setOffset(QPoint offset);
  QPoint offset() const { return offset_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::vector<PlacedText> texts_;
  QPoint offset_;
};

// The table window: the values and criterion lines, with the scroll bars that move all three.
class ResultsTableWindow : public QAbstractScrollArea {
  Q_OBJECT
 public:
  explicit ResultsTableWindow(QWidget* parent = nullptr);
  // Texts sorted by y, then x; `size` is the extent they cover. `columnStep` and `lineStep` are
  // the scroll bars' single steps.
  void setTexts(std::vector<PlacedText> texts, QSize size, int columnStep, int lineStep);
  const std::vector<PlacedText>& texts() const { return texts_; }
  QPoint scrollOffset() const;
  // The texts a paint of the whole viewport draws at the current offset, in viewport
  // coordinates: those whose line meets the viewport.
  std::vector<PlacedText> visibleTexts() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void updateScrollRanges();
  // The index range of the texts whose line meets [top, bottom) of the sheet.
  std::pair<std::size_t, std::size_t> linesBetween(int top, int bottom) const;

  std::vector<PlacedText> texts_;
  QSize size_;
  int lineHeight_ = 1;
};

// The three results windows, laid out inside the main window's results area.
class ResultsView : public QWidget {
  Q_OBJECT
 public:
  explicit ResultsView(QWidget* parent = nullptr);

  // Replaces what is shown by `table` and scrolls back to its top-left corner.
  void showTable(const ResultsTable& table);
  // Shows nothing (no solution to show).
  void clearTable();

  ResultsHeadingWindow* columnHeadingWindow() const { return columnHeadings_; }
  ResultsHeadingWindow* rowHeadingWindow() const { return rowHeadings_; }
  ResultsTableWindow* tableWindow() const { return table_; }
  // The table shown, if any.
  const std::optional<ResultsTable>& table() const { return shown_; }
  const ResultsPlacement& placement() const { return placement_; }
  ResultsMetrics metrics() const { return metrics_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void place();
  void layoutWindows();

  ResultsHeadingWindow* columnHeadings_;
  ResultsHeadingWindow* rowHeadings_;
  ResultsTableWindow* table_;
  std::optional<ResultsTable> shown_;
  ResultsPlacement placement_;
  ResultsMetrics metrics_;
};

}  // namespace ovaro::ui
