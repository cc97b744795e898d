#include "ui/qt_app.h"

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

}  // namespace ovaro::test
