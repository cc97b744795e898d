#include "ui/plots/criterion_summary_window.h"

#include <QHeaderView>
#include <QLabel>
#include <QStringList>
#include <QTableWidget>
#include <QVBoxLayout>
#include <cmath>

namespace ovaro::ui {

namespace {

QTableWidget* table(const QStringList& headings, QWidget* parent) {
  auto* t = new QTableWidget(0, static_cast<int>(headings.size()), parent);
  t->setHorizontalHeaderLabels(headings);
  t->verticalHeader()->hide();
  t->setEditTriggers(QAbstractItemView::NoEditTriggers);
  t->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  t->horizontalHeader()->setStretchLastSection(true);
  return t;
}

void setRow(QTableWidget* t, int row, const QStringList& cells) {
  for (int c = 0; c < cells.size(); ++c) {
    auto* item = new QTableWidgetItem(cells[c]);
    if (c > 0) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    t->setItem(row, c, item);
  }
}

}  // namespace

QString summaryNumber(double value) {
  if (!std::isfinite(value)) return QStringLiteral("n/a");
  return QString::asprintf("%.6g", value);
}

CriterionSummaryWindow::CriterionSummaryWindow(QWidget* parent)
    : QWidget(parent, Qt::Window),
      heading_(new QLabel(this)),
      methods_(table(
          {tr("Method"), tr("Mean"), tr("Std. error"), tr("Median"), tr("10%"), tr("90%")}, this)),
      pairs_(table({tr("Pair"), tr("Mean difference"), tr("Std. error"), tr("95% low"),
                    tr("95% high"), tr("Confidence first lower")},
                   this)) {
  setObjectName(QStringLiteral("CriterionSummary"));
  setWindowTitle(tr("Criterion Summary"));
  methods_->setObjectName(QStringLiteral("methods"));
  pairs_->setObjectName(QStringLiteral("pairs"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(heading_);
  layout->addWidget(methods_);
  layout->addWidget(new QLabel(tr("Run-by-run differences, first minus second"), this));
  layout->addWidget(pairs_);
  resize(640, 360);
}

void CriterionSummaryWindow::showSummary(const CriterionSummary& s) {
  heading_->setText(tr("Criterion over %1 run(s)").arg(s.runs));
  methods_->setRowCount(static_cast<int>(s.methods.size()));
  for (std::size_t i = 0; i < s.methods.size(); ++i) {
    const CriterionStats& c = s.methods[i];
    setRow(methods_, static_cast<int>(i),
           {QString::fromStdString(c.method), summaryNumber(c.mean), summaryNumber(c.standardError),
            summaryNumber(c.median), summaryNumber(c.q10), summaryNumber(c.q90)});
  }
  pairs_->setRowCount(static_cast<int>(s.pairs.size()));
  for (std::size_t i = 0; i < s.pairs.size(); ++i) {
    const CriterionDifference& p = s.pairs[i];
    setRow(pairs_, static_cast<int>(i),
           {QString::fromStdString(p.first + " - " + p.second), summaryNumber(p.mean),
            summaryNumber(p.standardError), summaryNumber(p.low95), summaryNumber(p.high95),
            summaryNumber(p.confidenceFirstLower)});
  }
}

}  // namespace ovaro::ui
