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

// The leak checker of the sanitizer build reads this. The system's font library keeps a small
// cache alive until the process ends; that is not a leak of ours.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\n";
}
