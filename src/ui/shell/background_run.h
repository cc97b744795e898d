// Long work off the user-interface thread: a comparison or an updating run of many runs goes to a
// worker thread while the window keeps painting and offers Cancel.
//
// The worker talks to the user only through the two seams: its Prompter forwards every message,
// in the order raised, to the window's own prompter on the user-interface thread and waits for
// the answer (so a question such as the zero-Q warning is still answered before the runs go on);
// its Progress steps the window's progress bar from the user-interface thread. The work itself
// must touch nothing that the window reads: the caller hands it copies of the model and the
// generator state, and takes the results back after it has finished.
#pragma once

#include <QObject>
#include <QPointer>
#include <QPushButton>
#include <atomic>
#include <functional>

#include "numeric/progress.h"
#include "numeric/prompter.h"

namespace ovaro::ui {

class BackgroundRun {
 public:
  // `window` is what is disabled while the work runs (its menus and text area); `cancelButton`
  // is shown while it runs and sets the cancel flag when clicked.
  BackgroundRun(QWidget* window, Prompter& prompter, Progress& progress, QPushButton* cancelButton);

  // Runs `work` on a worker thread and returns when it has finished, processing the window's
  // events meanwhile. `cancel` is the flag the work polls between runs.
  void run(const std::function<void(Prompter&, Progress&)>& work, std::atomic<bool>& cancel);

  // Whether a run is under way (commands are refused meanwhile).
  static bool busy(const QWidget* window);

 private:
  QPointer<QWidget> window_;
  Prompter& prompter_;
  Progress& progress_;
  QPointer<QPushButton> cancelButton_;
};

}  // namespace ovaro::ui
