// Copying the results table out of the workbench: the table shown, as tab-separated text that a
// spreadsheet or a numerical session takes as it is.
//
// Whatever the orientation on screen, the text has the periods down and one column per shown
// series (each variable's method and desired columns, the parameters' estimates and true values):
// a heading line naming the series ("Y1 QLP", "Y1 des"), then one line per period led by the
// period's name, each value as the number format printed it, blanks trimmed. The criterion lines
// follow after an empty line, name and value. A control has no value in the last period; its
// cell there is empty.
#pragma once

#include <QObject>
#include <QString>

#include "results/results_table.h"

namespace ovaro::ui {

class ResultsView;

QString resultsTabText(const ResultsTable& table);

// Gives the results view Ctrl+C (while the focus is in it) and a context menu entry that put
// the shown table on the clipboard. Owned by the view.
class ResultsCopy final : public QObject {
 public:
  explicit ResultsCopy(ResultsView* view);
  // Puts the shown table on the clipboard; false when no table is shown.
  bool copy() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  ResultsView* view_;
};

}  // namespace ovaro::ui
