#include "ui/plots/plot_painter.h"

#include <QFileInfo>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <QSaveFile>
#include <QSvgGenerator>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace ovaro::ui {

namespace {

// Colours as the platform's 0x00BBGGRR values name them: red 0x0000FF, blue 0xFF0000,
// magenta 0xFF00FF, green 0x00FF00.
const QColor kRed(255, 0, 0);
const QColor kBlue(0, 0, 255);
const QColor kMagenta(255, 0, 255);
const QColor kGreen(0, 255, 0);

struct PenSpec {
  QColor colour;
  Qt::PenStyle style;
  int width;
};

const std::array<PenSpec, kMaxPlotSeries> kSeriesPens{{
    {kRed, Qt::SolidLine, 2},
    {kBlue, Qt::DashLine, 2},
    {kMagenta, Qt::DashDotLine, 2},
    {kGreen, Qt::SolidLine, 2},
    {kRed, Qt::DashLine, 2},
    {kBlue, Qt::DashDotLine, 2},
}};

QPen cosmetic(const QColor& colour, Qt::PenStyle style, int width) {
  QPen pen(colour, width, style, Qt::FlatCap, Qt::MiterJoin);
  pen.setCosmetic(true);
  return pen;
}

// Text is a fixed share of the picture's height: one line of plot text is kPlotTextHeight
// logical units high, of which the glyphs take four fifths.
QFont plotFont(const QRectF& target) {
  QFont font(QStringLiteral("DejaVu Sans Mono"));
  font.setStyleHint(QFont::Monospace);
  const double units = kPlotTextHeight * target.height() / kPlotSpace;
  font.setPixelSize(std::max(6, static_cast<int>(std::lround(0.8 * units))));
  return font;
}

void drawText(QPainter& painter, const QRectF& target, const PlotText& text) {
  if (text.text.empty()) return;
  const QPointF at = plotToDevice(text.at, target);
  const QFontMetricsF metrics(painter.font());
  painter.drawText(QPointF(at.x(), at.y() + metrics.ascent()), QString::fromStdString(text.text));
}

void drawSegment(QPainter& painter, const QRectF& target, const PlotSegment& s) {
  painter.drawLine(plotToDevice(s.from, target), plotToDevice(s.to, target));
}

QPolygonF polygon(const std::vector<PlotPoint>& points, const QRectF& target) {
  QPolygonF poly;
  for (const PlotPoint& p : points) poly << plotToDevice(p, target);
  return poly;
}

// A polyline; a single point is drawn as a dot a little wider than the pen.
void drawPolyline(QPainter& painter, const QRectF& target, const std::vector<PlotPoint>& points) {
  if (points.size() == 1) {
    const QPointF at = plotToDevice(points.front(), target);
    const double r = std::max(2.0, painter.pen().widthF() + 1.0);
    painter.save();
    painter.setBrush(painter.pen().color());
    painter.setPen(Qt::NoPen);
    painter.drawRect(QRectF(at.x() - r, at.y() - r, 2 * r, 2 * r));
    painter.restore();
    return;
  }
  painter.drawPolyline(polygon(points, target));
}

// The frame: white ground, axes, ticks, value and period labels, title, axis label, "Time".
void paintFrame(QPainter& painter, const QRectF& target, const PlotLayout& layout) {
  painter.fillRect(target, Qt::white);
  painter.setFont(plotFont(target));
  painter.setPen(cosmetic(Qt::black, Qt::SolidLine, 1));
  for (const PlotSegment& s : layout.axes) drawSegment(painter, target, s);
  for (const PlotSegment& s : layout.valueTicks) drawSegment(painter, target, s);
  for (const PlotSegment& s : layout.periodTicks) drawSegment(painter, target, s);
  for (const PlotText& t : layout.valueLabels) drawText(painter, target, t);
  for (const PlotText& t : layout.periodLabels) drawText(painter, target, t);
  drawText(painter, target, layout.title);
  drawText(painter, target, layout.axisLabel);
  drawText(painter, target, layout.timeLabel);
}

void drawLegendEntry(QPainter& painter, const QRectF& target, const PlotLegendEntry& e,
                     const QPen& pen) {
  painter.setPen(pen);
  drawSegment(painter, target, e.sample);
  painter.setPen(cosmetic(Qt::black, Qt::SolidLine, 1));
  drawText(painter, target, e.text);
}

}  // namespace

QPen plotPen(int pen) {
  if (pen >= 0 && pen < kMaxPlotSeries) {
    const PenSpec& s = kSeriesPens[static_cast<std::size_t>(pen)];
    return cosmetic(s.colour, s.style, s.width);
  }
  return cosmetic(Qt::black, Qt::DashDotDotLine, 4);
}

QColor methodColour(int method) {
  static const std::array<QColor, 5> kColours{QColor(230, 120, 0), kBlue, kMagenta,
                                              QColor(0, 160, 0), kRed};
  return kColours[static_cast<std::size_t>(std::clamp(method, 0, 4))];
}

QPointF plotToDevice(const PlotPoint& p, const QRectF& target) {
  const double x = target.left() + (p.x - kPlotOriginX) * target.width() / kPlotSpace;
  const double y =
      target.top() + target.height() - (p.y - kPlotOriginY) * target.height() / kPlotSpace;
  return {x, y};
}

void paintPlot(QPainter& painter, const QRect& rect, const PlotLayout& layout) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  const QRectF target(rect);
  paintFrame(painter, target, layout);
  for (std::size_t k = 0; k < layout.polylines.size(); ++k) {
    painter.setPen(plotPen(layout.pens[k]));
    drawPolyline(painter, target, layout.polylines[k]);
  }
  for (const PlotLegendEntry& e : layout.legend)
    drawLegendEntry(painter, target, e, plotPen(e.pen));
  painter.restore();
}

void paintSpread(QPainter& painter, const QRect& rect, const SpreadLayout& layout) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  const QRectF target(rect);
  paintFrame(painter, target, layout.frame);
  // Bands first, translucent, so that every median stays visible over every band.
  for (std::size_t b = 0; b < layout.bands.size(); ++b) {
    QColor fill = methodColour(layout.methods[b]);
    fill.setAlpha(56);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawPolygon(polygon(layout.bands[b], target));
  }
  painter.setBrush(Qt::NoBrush);
  for (std::size_t b = 0; b < layout.medians.size(); ++b) {
    painter.setPen(cosmetic(methodColour(layout.methods[b]), Qt::SolidLine, 2));
    drawPolyline(painter, target, layout.medians[b]);
  }
  const QPen desired = cosmetic(Qt::black, Qt::DashLine, 2);
  if (!layout.desired.empty()) {
    painter.setPen(desired);
    drawPolyline(painter, target, layout.desired);
  }
  for (const PlotLegendEntry& e : layout.frame.legend) {
    const QPen pen =
        e.pen == kDesiredPen ? desired : cosmetic(methodColour(e.pen), Qt::SolidLine, 2);
    drawLegendEntry(painter, target, e, pen);
  }
  painter.restore();
}

QString pictureFormat(const QString& path) {
  const QString suffix = QFileInfo(path).suffix().toLower();
  return suffix == QLatin1String("png") || suffix == QLatin1String("svg") ? suffix : QString();
}

bool writePicture(const QString& path, const QSize& size, const PictureFunction& paint,
                  QString* error) {
  auto fail = [&](const QString& why) {
    if (error != nullptr) *error = why;
    return false;
  };
  const QString format = pictureFormat(path);
  if (format.isEmpty())
    return fail(QStringLiteral("%1: a picture is saved as PNG (.png) or SVG (.svg)").arg(path));
  if (size.width() <= 0 || size.height() <= 0)
    return fail(QStringLiteral("%1: the picture has no size").arg(path));
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return fail(path + ": " + file.errorString());
  const QRect rect(QPoint(0, 0), size);
  if (format == QLatin1String("png")) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    {
      QPainter painter(&image);
      paint(painter, rect);
    }
    if (!image.save(&file, "PNG")) {
      file.cancelWriting();
      return fail(path + ": the PNG picture could not be written");
    }
  } else {
    QSvgGenerator generator;
    generator.setOutputDevice(&file);
    generator.setSize(size);
    generator.setViewBox(rect);
    generator.setTitle(QStringLiteral("Ovaro plot"));
    QPainter painter;
    if (!painter.begin(&generator)) {
      file.cancelWriting();
      return fail(path + ": the SVG picture could not be started");
    }
    paint(painter, rect);
    painter.end();
  }
  if (!file.commit()) return fail(path + ": " + file.errorString());
  return true;
}

bool withGuiApplication(const std::function<bool()>& work) {
  if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr) return work();
  // The platform is named on the command line of the application, which wins over the
  // environment: a batch job never opens a window, whatever display it may have.
  int argc = 3;
  char name[] = "ovaro";
  char platform[] = "-platform";
  char offscreen[] = "offscreen";
  char* argv[] = {name, platform, offscreen, nullptr};
  // Qt's own remarks about the platform (no runtime directory, no session) mean nothing to a
  // batch job; only its errors are passed on.
  const QtMessageHandler previous =
      qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtCriticalMsg || type == QtFatalMsg)
          std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
      });
  bool done = false;
  {
    QGuiApplication app(argc, argv);
    done = work();
  }
  qInstallMessageHandler(previous);
  return done;
}

}  // namespace ovaro::ui
