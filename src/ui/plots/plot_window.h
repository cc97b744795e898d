// The plot windows: "PlotWin" (a single run), "PlotWinSce" (scenarios) and the spread over the
// runs of a comparison. Each shows one picture painted by plot_painter over its whole client
// area, and carries the "PLOT" menu, whose commands save the picture as PNG or SVG (the same
// painting, at the default picture size) and close the window.
#pragma once

#include <QMainWindow>
#include <QWidget>
#include <string>

#include "numeric/prompter.h"
#include "ui/plots/plot_painter.h"

class QAction;

namespace ovaro::ui {

// The client area: paints the picture over its whole size.
class PlotCanvas final : public QWidget {
 public:
  PlotCanvas(PictureFunction picture, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  PictureFunction picture_;
};

class PlotWindow final : public QMainWindow {
  Q_OBJECT
 public:
  // `className` names the window ("PlotWin", "PlotWinSce", ...); file names and failures go
  // through `prompter`, which must outlive the window.
  PlotWindow(const QString& className, const QString& title, PictureFunction picture,
             Prompter& prompter, QWidget* parent = nullptr);

  PlotCanvas* canvas() const { return canvas_; }
  QAction* saveAction() const { return save_; }

  // PLOT: Save Picture...: asks for a file name (PNG or SVG) and writes the picture.
  void savePictureAs();
  // Writes the picture to `path` (the format by its extension); a failure is reported through
  // the prompter. True when written.
  bool savePicture(const std::string& path);

 private:
  PictureFunction picture_;
  Prompter& prompter_;
  PlotCanvas* canvas_;
  QAction* save_;
};

}  // namespace ovaro::ui
