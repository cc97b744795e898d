#include "ui/results/table_copy.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QStringList>
#include <map>
#include <utility>
#include <vector>

#include "ui/results_view.h"

namespace ovaro::ui {

namespace {

QString trimmed(const std::string& text) {
  return QString::fromStdString(text).trimmed();
}

// The table seen with the periods down: its lines are the periods, its columns the series.
struct PeriodGrid {
  std::vector<std::pair<int, QString>> periods;  // key and name, in order
  std::vector<std::pair<int, QString>> series;
  std::map<std::pair<int, int>, QString> values;  // (period key, series key) -> text
};

// The name of each value column from the two heading lines: the variable over its span, then the
// column's own heading (method, "des", "true", " opt").
std::map<int, QString> columnNames(const ResultsTable& t) {
  std::map<int, QString> names;
  for (const TableCell& h : t.headings) {
    if (h.column == kRowHeadingSlot) continue;
    for (int c = h.column; c < h.column + std::max(h.span, 1); ++c) {
      const QString part = trimmed(h.text);
      if (part.isEmpty()) continue;
      QString& name = names[c];
      name = h.line == 0 ? part + (name.isEmpty() ? "" : " " + name)
                         : (name.isEmpty() ? part : name + " " + part);
    }
  }
  return names;
}

PeriodGrid periodGrid(const ResultsTable& t) {
  PeriodGrid g;
  std::map<int, QString> lineNames;
  for (const TableCell& r : t.rowHeadings) lineNames[r.line] = trimmed(r.text);
  std::map<int, bool> usedLines, usedColumns;
  for (const TableCell& v : t.values) {
    usedLines[v.line] = true;
    usedColumns[v.column] = true;
  }
  const std::map<int, QString> colNames = columnNames(t);
  auto name = [](const std::map<int, QString>& names, int key) {
    auto it = names.find(key);
    return it == names.end() ? QString() : it->second;
  };
  if (t.periodsAsRows) {
    for (const auto& [line, used] : usedLines) g.periods.emplace_back(line, name(lineNames, line));
    for (const auto& [col, used] : usedColumns) g.series.emplace_back(col, name(colNames, col));
    for (const TableCell& v : t.values) g.values[{v.line, v.column}] = trimmed(v.text);
  } else {
    // Periods as columns: every value line is a series, every value column a period, named by
    // its acronym on the first heading line.
    for (const auto& [col, used] : usedColumns) {
      QString period;
      for (const TableCell& h : t.headings)
        if (h.column == col && (period.isEmpty() || h.line == 0)) period = trimmed(h.text);
      g.periods.emplace_back(col, period);
    }
    for (const auto& [line, used] : usedLines) g.series.emplace_back(line, name(lineNames, line));
    for (const TableCell& v : t.values) g.values[{v.column, v.line}] = trimmed(v.text);
  }
  return g;
}

}  // namespace

QString resultsTabText(const ResultsTable& table) {
  const PeriodGrid g = periodGrid(table);
  QStringList lines;
  QStringList heading{QString()};
  for (const auto& s : g.series) heading << s.second;
  lines << heading.join('\t');
  for (const auto& [key, name] : g.periods) {
    QStringList line{name};
    for (const auto& s : g.series) {
      auto it = g.values.find({key, s.first});
      line << (it == g.values.end() ? QString() : it->second);
    }
    lines << line.join('\t');
  }
  if (!table.criteria.empty()) lines << QString();
  for (const CriterionLine& c : table.criteria) {
    QString label = trimmed(c.label);
    if (label.endsWith('=')) label = label.chopped(1).trimmed();
    lines << label + '\t' + trimmed(c.value);
  }
  return lines.join('\n') + '\n';
}

ResultsCopy::ResultsCopy(ResultsView* view) : QObject(view), view_(view) {
  auto* action = new QAction(QObject::tr("Copy Table"), view);
  action->setObjectName("CopyResultsTable");
  QObject::connect(action, &QAction::triggered, this, [this] { copy(); });
  view->addAction(action);
  view->setContextMenuPolicy(Qt::ActionsContextMenu);
  view->tableWindow()->setFocusPolicy(Qt::StrongFocus);
  view->tableWindow()->installEventFilter(this);
}

bool ResultsCopy::copy() const {
  if (!view_->table()) return false;
  QGuiApplication::clipboard()->setText(resultsTabText(*view_->table()));
  return true;
}

bool ResultsCopy::eventFilter(QObject* watched, QEvent* event) {
  // The window's Ctrl+C copies the text area's selection; while the table has the focus the key
  // is claimed here first and copies the table instead.
  const auto type = event->type();
  if (type == QEvent::ShortcutOverride || type == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->matches(QKeySequence::Copy)) {
      event->accept();
      if (type == QEvent::KeyPress) copy();
      return true;
    }
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace ovaro::ui
