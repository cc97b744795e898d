// The criterion summary of a comparison, in a small window beside the results: per compared
// method the mean, standard error, median and 10% / 90% quantiles of its run criteria, and per
// pair of methods the mean run-by-run difference with its standard error, 95% interval and the
// confidence that the first method's criterion is the lower (results/run_statistics.h).
#pragma once

#include <QWidget>

#include "results/run_statistics.h"

class QLabel;
class QTableWidget;

namespace ovaro::ui {

class CriterionSummaryWindow final : public QWidget {
  Q_OBJECT
 public:
  explicit CriterionSummaryWindow(QWidget* parent = nullptr);

  // Shows this summary, replacing the one shown before.
  void showSummary(const CriterionSummary& summary);

  QTableWidget* methodsTable() const { return methods_; }
  QTableWidget* pairsTable() const { return pairs_; }

 private:
  QLabel* heading_;
  QTableWidget* methods_;
  QTableWidget* pairs_;
};

// A number as the summary shows it ("%.6g"); "n/a" for a value that is not defined.
QString summaryNumber(double value);

}  // namespace ovaro::ui
