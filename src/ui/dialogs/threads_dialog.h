// Preferences: "Threads for Monte Carlo runs": how many threads a comparison's untraced runs use
// (0: one per core). The results are the same whatever the number; it only changes how long a
// comparison takes. The window keeps the choice from one session to the next.
#pragma once

#include <QDialog>

class QSpinBox;

namespace ovaro::ui {

class ThreadsDialog : public QDialog {
  Q_OBJECT
 public:
  // `threads` is written on OK and left alone on Cancel.
  explicit ThreadsDialog(int& threads, QWidget* parent = nullptr);
  QSpinBox* threadsBox() const { return box_; }

  void accept() override;

 private:
  int& threads_;
  QSpinBox* box_;
};

}  // namespace ovaro::ui
