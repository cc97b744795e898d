#include "ui/qt_app.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QPushButton>
#include <QTest>
#include <QtGlobal>

namespace ovaro::test {

QApplication& qtApp() {
  static int argc = 1;
  static char name[] = "ovaro_ui_tests";
  static char* argv[] = {name, nullptr};
  static QApplication* app = [] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return new QApplication(argc, argv);
  }();
  return *app;
}

void type(QLineEdit* edit, const QString& text) {
  ASSERT_NE(edit, nullptr);
  edit->clear();
  QTest::keyClicks(edit, text);
}

void press(QDialog& dialog, QDialogButtonBox::StandardButton which) {
  auto* box = dialog.findChild<QDialogButtonBox*>();
  ASSERT_TRUE(box != nullptr && box->button(which) != nullptr);
  box->button(which)->click();
}

void click(QButtonGroup* group, int id) {
  QAbstractButton* b = group->button(id);
  ASSERT_NE(b, nullptr) << "no button " << id;
  b->click();
}

int accepted(QDialog& dialog) {
  dialog.accept();
  return QDialog::Accepted;
}

}  // namespace ovaro::test

// The leak checker of the sanitizer build reads this. The system's font library keeps a small
// cache alive until the process ends; that is not a leak of ours.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\n";
}
