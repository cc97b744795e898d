// The geometry of a time-path plot: where every line, point and text goes, in a fixed logical
// frame, and how the values are scaled for the labels. Both plot windows, the saved pictures and
// the batch tool draw from this; nothing here knows a screen.
//
// The frame is 10000 x 10000 logical units with y growing upwards. Its lower-left corner is at
// (-1111, -1250), so the axes run from the origin up to (0, 8000) and right to (8000, 0): 0.8 of
// the space, leaving room for the value labels on the left, the period labels and the legend
// below and the title above. A drawing surface maps the whole frame onto its full size (the
// frame is stretched, not kept square).
//
// Scaling. min and max run over every point of every series, range = max - min and mid =
// (max + min) / 2. A point of period t at value v sits at
//   x = trunc(t / (P - 1) * 8000),  y = trunc((v - min) / range * 8000)
// for P plotted periods, each series one polyline from period 0 to P - 1. The value labels show
// (min + f range) s for f = 0, 0.25, 0.5, 0.75, 1, with a power-of-ten factor s chosen from mid
// so that the printed numbers stay readable; the axis label names the factor ("%s x %7.3f").
// The factor's steps are not symmetric: on the negative side it switches to 1000 below -1, not
// below -0.001, and a mid of exactly 0 takes 1e6. Both are kept as they have always been.
//
// A constant series (range 0) is drawn as a flat line at mid-height, and a single period
// (P = 1) as a single point at the left; neither divides by zero, and the time axis then has no
// period labels or ticks.
#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "results/plot_series.h"
#include "results/run_statistics.h"

namespace ovaro {

inline constexpr int kPlotSpace = 10000;      // logical units across and up
inline constexpr int kPlotOriginX = -1111;    // logical x of the frame's left edge
inline constexpr int kPlotOriginY = -1250;    // logical y of the frame's bottom edge
inline constexpr int kPlotAxisLength = 8000;  // 0.8 of the space
inline constexpr int kPlotTextHeight = 300;   // logical height of one line of plot text
inline constexpr int kPlotLegendLine = 800;   // length of a legend's sample line

struct PlotScale {
  double min = 0.0;
  double max = 0.0;
  double range = 0.0;
  double mid = 0.0;
  double factor = 1.0;
};

// The power-of-ten factor of the value labels for a midpoint.
double plotScaleFactor(double mid);
// min, max, range, mid and factor over all points of the series.
PlotScale plotScale(std::span<const PlotSeries> series);

struct PlotPoint {
  int x = 0;
  int y = 0;
  friend bool operator==(const PlotPoint&, const PlotPoint&) = default;
};

struct PlotSegment {
  PlotPoint from;
  PlotPoint to;
};

// A text whose top-left corner is at (x, y), as text is placed on the drawing surface.
struct PlotText {
  PlotPoint at;
  std::string text;
};

struct PlotLegendEntry {
  PlotSegment sample;  // a short line in the series' pen
  PlotText text;
  int pen = 0;
};

struct PlotLayout {
  PlotScale scale;
  int points = 0;  // P, the plotted periods
  PlotText title;
  PlotText axisLabel;  // "%s x %7.3f": the acronym and the factor
  PlotText timeLabel;  // "Time"
  std::array<PlotText, 5> valueLabels;
  std::array<PlotSegment, 2> axes;                // up, then right
  std::vector<PlotSegment> valueTicks;            // at 0.25, 0.5, 0.75 of the axis
  std::vector<PlotText> periodLabels;             // periods 0..P-2
  std::vector<PlotSegment> periodTicks;           // periods 0..P-2
  std::vector<std::vector<PlotPoint>> polylines;  // one per series
  std::vector<int> pens;                          // the pen of each polyline
  std::vector<PlotLegendEntry> legend;
};

// Lays out a plot of the series (all of P points, P >= 1) under the labels.
PlotLayout layoutPlot(std::span<const PlotSeries> series, const PlotLabels& labels);

// The spread of one variable over the runs of a comparison, in the same frame: per compared
// method a band from the 10% to the 90% path and the median path over it, and the desired path.
// The scaling covers every band and the desired path.
struct SpreadLayout {
  PlotLayout frame;  // axes, labels and scale; its legend names each method, then "Des"
  std::vector<std::vector<PlotPoint>> bands;    // outline: the 90% path forward, 10% path back
  std::vector<std::vector<PlotPoint>> medians;  // one per method
  std::vector<int> methods;                     // each band's method, 0..4 in table order
  std::vector<PlotPoint> desired;
};
SpreadLayout layoutSpread(const RunSpread& spread, const PlotLabels& labels);

}  // namespace ovaro
