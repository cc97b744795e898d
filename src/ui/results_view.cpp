#include "ui/results_view.h"

#include <QEvent>
#include <QFont>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>
#include <algorithm>
#include <tuple>

namespace ovaro::ui {

ResultsMetrics resultsMetrics(const QFont& font) {
  const QFontMetrics fm(font);
  return {fm.height() + fm.leading(), fm.averageCharWidth()};
}

QFont resultsFont() {
  return QFontDatabase::systemFont(QFontDatabase::FixedFont);
}

namespace {

// The combined frame of one table: where its value columns, heading lines and body lines are.
class Sheet {
 public:
  Sheet(const ResultsTable& table, const ResultsMetrics& metrics)
      : lineHeight_(std::max(1, metrics.lineHeight)),
        charWidth_(std::max(1, metrics.charWidth)),
        columnWidth_(std::max(0, table.columnWidth) * charWidth_),
        rowHeadingWidth_(rowHeadingWidthOf(table, charWidth_)) {}

  int lineHeight() const { return lineHeight_; }
  int charWidth() const { return charWidth_; }
  int columnWidth() const { return columnWidth_; }
  int rowHeadingWidth() const { return rowHeadingWidth_; }
  int headingHeight() const { return 2 * lineHeight_ + kHeadingWindowExtra; }

  int firstValueX() const { return rowHeadingWidth_ + kFirstValueGap; }
  int valueX(int column) const { return firstValueX() + column * columnWidth_; }
  int headingX(int column) const {
    if (column == kRowHeadingSlot) return kSlotHeadingX;
    return valueX(column) + kHeadingIndent;
  }
  int headingY(int line) const { return kFirstHeadingY + line * lineHeight_; }
  int bodyY(int line) const { return 3 * lineHeight_ + kBodyGap + line * lineHeight_; }

  // The right end of a text starting at x, as a fixed-pitch font draws it.
  int endOf(int x, const QString& text) const {
    return x + static_cast<int>(text.size()) * charWidth_;
  }

 private:
  // 80 pixels with periods as rows. With periods as columns the row headings name variables and
  // their columns, which 80 pixels rarely hold: the window takes the table's row-heading slot.
  static int rowHeadingWidthOf(const ResultsTable& table, int charWidth) {
    if (table.periodsAsRows) return kRowHeadingWindowWidth;
    return std::max(kRowHeadingWindowWidth, kRowHeadingX + table.rowHeadingWidth * charWidth);
  }

  int lineHeight_;
  int charWidth_;
  int columnWidth_;
  int rowHeadingWidth_;
};

}  // namespace

ResultsPlacement placeResults(const ResultsTable& table, const ResultsMetrics& metrics) {
  const Sheet sheet(table, metrics);
  ResultsPlacement out;
  out.rowHeadingWidth = sheet.rowHeadingWidth();
  out.headingHeight = sheet.headingHeight();
  out.columnHeadingOrigin = QPoint(0, 0);
  out.rowHeadingOrigin = QPoint(0, sheet.headingHeight());
  out.tableOrigin = QPoint(sheet.rowHeadingWidth(), sheet.headingHeight());

  int headingEnd = 0;
  out.columnHeadings.reserve(table.headings.size());
  for (const TableCell& c : table.headings) {
    PlacedText p{sheet.headingX(c.column), sheet.headingY(c.line), QString::fromStdString(c.text)};
    headingEnd = std::max(headingEnd, sheet.endOf(p.x, p.text));
    out.columnHeadings.push_back(std::move(p));
  }

  const QPoint row = out.rowHeadingOrigin;
  int rowEnd = 0;
  out.rowHeadings.reserve(table.rowHeadings.size());
  for (const TableCell& c : table.rowHeadings) {
    PlacedText p{kRowHeadingX - row.x(), sheet.bodyY(c.line) - row.y(),
                 QString::fromStdString(c.text)};
    rowEnd = std::max(rowEnd, p.y + sheet.lineHeight());
    out.rowHeadings.push_back(std::move(p));
  }

  const QPoint origin = out.tableOrigin;
  out.table.reserve(table.values.size() + 2 * table.criteria.size());
  for (const TableCell& c : table.values) {
    out.table.push_back({sheet.valueX(c.column) - origin.x(), sheet.bodyY(c.line) - origin.y(),
                         QString::fromStdString(c.text)});
  }
  // A criterion line starts at the table window's left edge, whatever the orientation.
  for (const CriterionLine& c : table.criteria) {
    const int y = sheet.bodyY(c.line) - origin.y();
    out.table.push_back({0, y, QString::fromStdString(c.label)});
    out.table.push_back(
        {kCriterionValueOffset * sheet.charWidth(), y, QString::fromStdString(c.value)});
  }
  std::stable_sort(out.table.begin(), out.table.end(),
                   [](const PlacedText& a, const PlacedText& b) {
                     return std::tie(a.y, a.x) < std::tie(b.y, b.x);
                   });

  // The extent: every value column (empty ones included) and every text, however far a long
  // number runs past its column, plus a blank margin.
  int width = 0;
  int height = 0;
  if (!out.table.empty() || table.columnCount > 0) {
    width = sheet.valueX(table.columnCount) - origin.x();
    for (const PlacedText& p : out.table) {
      width = std::max(width, sheet.endOf(p.x, p.text));
      height = std::max(height, p.y + sheet.lineHeight());
    }
    width += kContentMargin;
    height += kContentMargin;
  }
  height = std::max(height, rowEnd > 0 ? rowEnd + kContentMargin : 0);
  out.tableSize = QSize(width, height);
  out.columnHeadingLength =
      std::max(origin.x() + width, headingEnd > 0 ? headingEnd + kContentMargin : 0);
  out.rowHeadingLength = height;
  return out;
}

// ---- heading windows ----

ResultsHeadingWindow::ResultsHeadingWindow(QWidget* parent) : QFrame(parent) {
  setFrameStyle(QFrame::Box | QFrame::Plain);
  setLineWidth(1);
  setBackgroundRole(QPalette::Base);
  setAutoFillBackground(true);
}

void ResultsHeadingWindow::setTexts(std::vector<PlacedText> texts) {
  texts_ = std::move(texts);
  update();
}

void ResultsHeadingWindow::setOffset(QPoint offset) {
  if (offset == offset_) return;
  offset_ = offset;
  update();
}

void ResultsHeadingWindow::paintEvent(QPaintEvent* event) {
  QFrame::paintEvent(event);  // the border
  const QRect area = contentsRect();
  QPainter painter(this);
  painter.setClipRect(area & event->rect());
  const QFontMetrics fm = fontMetrics();
  const int lineHeight = fm.height() + fm.leading();
  for (const PlacedText& t : texts_) {
    const int x = area.left() + t.x - offset_.x();
    const int y = area.top() + t.y - offset_.y();
    if (x > area.right() || y > area.bottom() || y + lineHeight < area.top()) continue;
    painter.drawText(x, y + fm.ascent(), t.text);
  }
}

// ---- table window ----

namespace {

// Whether a text drawn from x can reach into the columns of `area`; `widest` bounds the width of
// one character.
bool meets(int x, const QString& text, const QRect& area, int widest) {
  return x <= area.right() && x + static_cast<int>(text.size()) * widest >= area.left();
}

}  // namespace

ResultsTableWindow::ResultsTableWindow(QWidget* parent) : QAbstractScrollArea(parent) {
  setFrameStyle(QFrame::Box | QFrame::Plain);
  setLineWidth(1);
  viewport()->setBackgroundRole(QPalette::Base);
  viewport()->setAutoFillBackground(true);
}

void ResultsTableWindow::setTexts(std::vector<PlacedText> texts, QSize size, int columnStep,
                                  int lineStep) {
  texts_ = std::move(texts);
  size_ = size;
  lineHeight_ = std::max(1, lineStep);
  horizontalScrollBar()->setSingleStep(std::max(1, columnStep));
  verticalScrollBar()->setSingleStep(lineHeight_);
  updateScrollRanges();
  viewport()->update();
}

QPoint ResultsTableWindow::scrollOffset() const {
  return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

void ResultsTableWindow::updateScrollRanges() {
  const QSize shown = viewport()->size();
  horizontalScrollBar()->setPageStep(std::max(1, shown.width()));
  verticalScrollBar()->setPageStep(std::max(1, shown.height()));
  horizontalScrollBar()->setRange(0, std::max(0, size_.width() - shown.width()));
  verticalScrollBar()->setRange(0, std::max(0, size_.height() - shown.height()));
}

void ResultsTableWindow::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  updateScrollRanges();
}

std::pair<std::size_t, std::size_t> ResultsTableWindow::linesBetween(int top, int bottom) const {
  // A line at y covers [y, y + line height): it meets [top, bottom) when top - line height < y
  // < bottom.
  const auto below = [](const PlacedText& t, int y) { return t.y < y; };
  const auto first = std::lower_bound(texts_.begin(), texts_.end(), top - lineHeight_ + 1, below);
  const auto last = std::lower_bound(first, texts_.end(), bottom, below);
  return {static_cast<std::size_t>(first - texts_.begin()),
          static_cast<std::size_t>(last - texts_.begin())};
}

std::vector<PlacedText> ResultsTableWindow::visibleTexts() const {
  const QPoint offset = scrollOffset();
  const QRect area = viewport()->rect();
  const int widest = fontMetrics().maxWidth();
  std::vector<PlacedText> out;
  const auto [first, last] = linesBetween(offset.y() + area.top(), offset.y() + area.bottom() + 1);
  for (std::size_t i = first; i < last; ++i) {
    const PlacedText& t = texts_[i];
    const int x = t.x - offset.x();
    if (!meets(x, t.text, area, widest)) continue;
    out.push_back({x, t.y - offset.y(), t.text});
  }
  return out;
}

void ResultsTableWindow::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  const QFontMetrics fm = fontMetrics();
  const QPoint offset = scrollOffset();
  const QRect area = event->rect();
  // Only the lines the exposed area meets: a table of a hundred periods holds thousands of
  // numbers, of which a window shows a few hundred.
  const auto [first, last] = linesBetween(offset.y() + area.top(), offset.y() + area.bottom() + 1);
  const int widest = fm.maxWidth();
  for (std::size_t i = first; i < last; ++i) {
    const PlacedText& t = texts_[i];
    const int x = t.x - offset.x();
    if (!meets(x, t.text, area, widest)) continue;
    painter.drawText(x, t.y - offset.y() + fm.ascent(), t.text);
  }
}

// ---- the three windows together ----

ResultsView::ResultsView(QWidget* parent)
    : QWidget(parent),
      columnHeadings_(new ResultsHeadingWindow(this)),
      rowHeadings_(new ResultsHeadingWindow(this)),
      table_(new ResultsTableWindow(this)) {
  columnHeadings_->setObjectName(QStringLiteral("ResultsHorzAcrWin"));
  rowHeadings_->setObjectName(QStringLiteral("ResultsVertAcrWin"));
  table_->setObjectName(QStringLiteral("ResultsWin"));
  setFont(resultsFont());
  metrics_ = resultsMetrics(font());

  connect(table_->horizontalScrollBar(), &QScrollBar::valueChanged, this,
          [this](int x) { columnHeadings_->setOffset(QPoint(x, 0)); });
  connect(table_->verticalScrollBar(), &QScrollBar::valueChanged, this,
          [this](int y) { rowHeadings_->setOffset(QPoint(0, y)); });
  place();
}

void ResultsView::showTable(const ResultsTable& table) {
  shown_ = table;
  place();
  table_->horizontalScrollBar()->setValue(0);
  table_->verticalScrollBar()->setValue(0);
}

void ResultsView::clearTable() {
  shown_.reset();
  place();
}

void ResultsView::place() {
  placement_ = placeResults(shown_ ? *shown_ : ResultsTable{}, metrics_);
  columnHeadings_->setTexts(placement_.columnHeadings);
  rowHeadings_->setTexts(placement_.rowHeadings);
  const int columnStep = shown_ ? shown_->columnWidth * metrics_.charWidth : 0;
  table_->setTexts(placement_.table, placement_.tableSize, columnStep, metrics_.lineHeight);
  layoutWindows();
  // The ranges may have moved the bars without a change signal reaching a window that was
  // replaced; bring the headings to the bars' positions.
  columnHeadings_->setOffset(QPoint(table_->horizontalScrollBar()->value(), 0));
  rowHeadings_->setOffset(QPoint(0, table_->verticalScrollBar()->value()));
}

void ResultsView::layoutWindows() {
  const int w = width();
  const int h = height();
  const int top = placement_.headingHeight;
  const int left = placement_.rowHeadingWidth;
  columnHeadings_->setGeometry(0, 0, w, top);
  rowHeadings_->setGeometry(0, top, left, std::max(0, h - top));
  table_->setGeometry(left, top, std::max(0, w - left), std::max(0, h - top));
}

void ResultsView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  layoutWindows();
}

void ResultsView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  // The windows' geometry follows the font: line height and character width are taken anew.
  if (event->type() == QEvent::FontChange) {
    metrics_ = resultsMetrics(font());
    place();
  }
}

}  // namespace ovaro::ui
