#include "ui/qt_progress.h"

#include <QCoreApplication>

namespace ovaro::ui {

namespace {
void repaint() {
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}
}  // namespace

void QtProgress::start(int maximum) {
  if (bar_.isNull()) return;
  bar_->setRange(0, maximum > 0 ? maximum : 1);
  bar_->setValue(0);
  // The count of runs done stands beside the bar, so a long comparison shows how far it is.
  bar_->setFormat(QStringLiteral("Run %v of %m"));
  bar_->setTextVisible(true);
  bar_->show();
  repaint();
}

void QtProgress::step() {
  if (bar_.isNull()) return;
  bar_->setValue(bar_->value() + 1);
  repaint();
}

void QtProgress::finish() {
  if (bar_.isNull()) return;
  bar_->hide();
}

}  // namespace ovaro::ui
