// Painting a laid-out plot with QPainter: the one piece of drawing code behind the plot windows,
// the pictures they save and the pictures of the batch tool.
//
// The layout (results/plot_layout.h) places everything in the 10000 x 10000 logical frame with y
// upwards; here the frame is stretched over the target rectangle, lines are drawn through that
// mapping and texts are set upright with their top-left corner on the mapped point, in a fixed
// pitch font whose height is a fixed share of the target's height (so a larger picture has
// larger text, as it has longer lines).
//
// Pens. The six series pens, in order: solid red, dashed blue, dash-dot magenta, solid green,
// dashed red, dash-dot blue, all 2 pixels wide; the desired path of the scenario plot a black
// dash-dot-dot pen 4 pixels wide. Pens are cosmetic (their width is in pixels whatever the
// picture's size) and lines are not antialiased, so every line keeps its pure colour.
//
// Pictures are written as PNG or SVG by the file's extension, from the same painting; a picture
// is written to a temporary file first and replaces the target only when complete.
#pragma once

#include <QColor>
#include <QPen>
#include <QRect>
#include <QSize>
#include <QString>
#include <functional>

#include "results/plot_layout.h"

class QPainter;

namespace ovaro::ui {

// The pen of a series (0..5) or of the scenario plot's desired path (kDesiredPen).
QPen plotPen(int pen);
// The colour of a compared method (0..4 in the order HCFR, CE, CEWO, OLF, OLIN) in the spread
// picture.
QColor methodColour(int method);

// Paints the plot, or the spread over runs, into `target` (a white background first).
void paintPlot(QPainter& painter, const QRect& target, const PlotLayout& layout);
void paintSpread(QPainter& painter, const QRect& target, const SpreadLayout& layout);

// Where a logical point of the frame falls in `target`.
QPointF plotToDevice(const PlotPoint& p, const QRectF& target);

using PictureFunction = std::function<void(QPainter&, const QRect&)>;

// The picture format a file name asks for: "png", "svg", or empty for anything else.
QString pictureFormat(const QString& path);

// Paints `paint` into a picture of `size` pixels and writes it to `path` as PNG or SVG (by the
// extension). On failure returns false and says why in `error`; the file is then untouched.
bool writePicture(const QString& path, const QSize& size, const PictureFunction& paint,
                  QString* error);

// Runs `work` where a QGuiApplication exists (painting text needs one): the running one, or one
// made for the call on the offscreen platform, which needs no display. Returns what `work` does.
bool withGuiApplication(const std::function<bool()>& work);

// The default size of a saved picture.
inline constexpr int kPictureWidth = 800;
inline constexpr int kPictureHeight = 600;

}  // namespace ovaro::ui
