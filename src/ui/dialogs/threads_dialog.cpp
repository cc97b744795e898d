#include "ui/dialogs/threads_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

namespace ovaro::ui {

// The batch tool accepts the same range for --threads.
constexpr int kMaxThreads = 1024;

ThreadsDialog::ThreadsDialog(int& threads, QWidget* parent) : QDialog(parent), threads_(threads) {
  setObjectName(QStringLiteral("MonteCarloThreads"));
  setWindowTitle(QStringLiteral("Threads for Monte Carlo runs"));
  box_ = new QSpinBox(this);
  box_->setObjectName(QStringLiteral("threads"));
  box_->setRange(0, kMaxThreads);
  box_->setSpecialValueText(QStringLiteral("0 (all cores)"));
  box_->setValue(threads_);

  auto* layout = new QVBoxLayout(this);
  auto* label = new QLabel(QStringLiteral("Threads for Monte Carlo runs (0 = all cores).\n"
                                          "The results are the same whatever the number; "
                                          "a comparison with debug print uses one."),
                           this);
  label->setWordWrap(true);
  layout->addWidget(label);
  layout->addWidget(box_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

void ThreadsDialog::accept() {
  threads_ = box_->value();
  QDialog::accept();
}

}  // namespace ovaro::ui
