#include "ui/plots/plot_window.h"

#include <QAction>
#include <QMenuBar>
#include <QPainter>
#include <filesystem>

namespace ovaro::ui {

PlotCanvas::PlotCanvas(PictureFunction picture, QWidget* parent)
    : QWidget(parent), picture_(std::move(picture)) {
  setObjectName(QStringLiteral("PlotCanvas"));
  setMinimumSize(240, 180);
}

void PlotCanvas::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  picture_(painter, rect());
}

PlotWindow::PlotWindow(const QString& className, const QString& title, PictureFunction picture,
                       Prompter& prompter, QWidget* parent)
    : QMainWindow(parent), picture_(picture), prompter_(prompter) {
  setObjectName(className);
  setWindowTitle(title);
  // A window of its own, also when it belongs to the main window.
  setWindowFlag(Qt::Window, true);
  canvas_ = new PlotCanvas(std::move(picture), this);
  setCentralWidget(canvas_);
  resize(640, 480);

  QMenu* menu = menuBar()->addMenu(tr("&PLOT"));
  menu->setObjectName(QStringLiteral("PLOT"));
  save_ = menu->addAction(tr("&Save Picture..."));
  connect(save_, &QAction::triggered, this, [this] { savePictureAs(); });
  menu->addSeparator();
  QAction* close = menu->addAction(tr("&Close"));
  connect(close, &QAction::triggered, this, [this] { this->close(); });
}

void PlotWindow::savePictureAs() {
  FileRequest request;
  request.kind = FileRequest::Kind::Save;
  request.filters = {{"PNG Files (*.png)", "*.png"}, {"SVG Files (*.svg)", "*.svg"}};
  request.defaultExtension = "png";
  request.promptBeforeOverwrite = true;
  const std::optional<std::string> name = prompter_.askFileName(request);
  if (name) savePicture(*name);
}

bool PlotWindow::savePicture(const std::string& path) {
  const QString file = QString::fromStdString(path);
  const std::string title = std::filesystem::path(path).filename().string();
  if (pictureFormat(file).isEmpty()) {
    prompter_.inform("Could not write file " + title +
                         ": a picture is saved as a PNG (.png) or SVG (.svg) file.",
                     "Ovaro", Icon::Exclamation);
    return false;
  }
  QString error;
  if (!writePicture(file, QSize(kPictureWidth, kPictureHeight), picture_, &error)) {
    prompter_.inform("Could not write file " + title + "\r" + error.toStdString(), "Ovaro",
                     Icon::Exclamation);
    return false;
  }
  return true;
}

}  // namespace ovaro::ui
