// The Monte Carlo progress bar of the workbench: a bar at the bottom of the main window, stepped
// once per run. Each step lets the window repaint (user input waits until the work is over, as
// the whole computation runs on the one user-interface thread).
#pragma once

#include <QPointer>
#include <QProgressBar>

#include "numeric/progress.h"

namespace ovaro::ui {

class QtProgress final : public Progress {
 public:
  // The bar to drive; hidden except while work runs.
  void setBar(QProgressBar* bar) { bar_ = bar; }

  void start(int maximum) override;
  void step() override;
  void finish() override;

 private:
  QPointer<QProgressBar> bar_;
};

}  // namespace ovaro::ui
