// The workbench: one main window on the model file named on the command line, if any.
#include <QApplication>
#include <string>

#include "ui/main_window.h"
#include "ui/qt_prompter.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName("Ovaro");
  const QStringList args = QApplication::arguments();
  const std::string modelFile = args.size() > 1 ? args.at(1).toStdString() : std::string();

  ovaro::ui::QtPrompter prompter;
  ovaro::ui::MainWindow window(prompter, modelFile);
  window.show();
  return QApplication::exec();
}
