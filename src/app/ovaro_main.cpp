// The workbench: one main window on the model file named on the command line, if any.
#include <QApplication>
#include <QSettings>
#include <string>

#include "ui/main_window.h"
#include "ui/qt_prompter.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName("Ovaro");
  QApplication::setOrganizationName("Ovaro");
  const QStringList args = QApplication::arguments();
  const std::string modelFile = args.size() > 1 ? args.at(1).toStdString() : std::string();

  ovaro::ui::QtPrompter prompter;
  ovaro::ui::MainWindow window(prompter, modelFile);
  // Where the user left the window, the results preferences and the recent files.
  QSettings settings;
  window.useSettings(&settings);
  window.show();
  return QApplication::exec();
}
