#include "results/plot_layout.h"

#include <cmath>

#include "io/number_format.h"

namespace ovaro {

namespace {

// A fraction of the logical space, in units.
constexpr int units(double fraction) {
  return static_cast<int>(fraction * kPlotSpace + (fraction < 0 ? -0.5 : 0.5));
}

// A computed coordinate as a whole number of units: truncated toward zero like any conversion,
// but a value that is not finite or lies far outside the frame is held at its edge, so a path
// that ran away still draws.
int toUnits(double v) {
  if (std::isnan(v)) return 0;
  constexpr double kLimit = 1e6;
  if (v > kLimit) return static_cast<int>(kLimit);
  if (v < -kLimit) return static_cast<int>(-kLimit);
  return static_cast<int>(v);
}

// The legend stands below the period labels, in two rows of three entries: a sample line of
// kPlotLegendLine units and the legend text just after it.
constexpr std::array<int, 3> kLegendColumnX{units(0.0), units(0.3), units(0.6)};
constexpr std::array<int, 2> kLegendRowTop{units(-0.055), units(-0.09)};
constexpr int kLegendTextGap = units(0.015);

}  // namespace

double plotScaleFactor(double mid) {
  if (mid > 0) {
    if (mid < 1e-6) return 1e6;
    if (mid < 0.001) return 1000;
    if (mid < 1000) return 1;
    if (mid < 1e6) return 0.001;
    return 1e-6;
  }
  if (mid < -1e6) return 1e-6;
  if (mid < -1000) return 0.001;
  if (mid < -1) return 1;
  if (mid < -0.001) return 1000;
  return 1e6;
}

PlotScale plotScale(std::span<const PlotSeries> series) {
  PlotScale s;
  if (series.empty() || series.front().values.empty()) return s;
  // The first series' first point starts both extremes; every other point is scanned.
  s.min = s.max = series.front().values.front();
  for (std::size_t k = 0; k < series.size(); ++k) {
    const std::vector<double>& v = series[k].values;
    for (std::size_t t = k == 0 ? 1 : 0; t < v.size(); ++t) {
      if (v[t] > s.max) s.max = v[t];
      if (v[t] < s.min) s.min = v[t];
    }
  }
  s.range = s.max - s.min;
  s.mid = (s.max + s.min) / 2.0;
  s.factor = plotScaleFactor(s.mid);
  return s;
}

PlotLayout layoutPlot(std::span<const PlotSeries> series, const PlotLabels& labels) {
  PlotLayout p;
  p.scale = plotScale(series);
  const PlotScale& s = p.scale;
  p.points = series.empty() ? 0 : static_cast<int>(series.front().values.size());
  const int last = p.points - 1;  // P - 1

  p.title = {{units(0.25), units(0.88)}, labels.title};
  p.axisLabel = {{units(-0.08), units(0.88)},
                 formatLabelled("%s x %7.3f", labels.acronym.c_str(), s.factor)};
  p.timeLabel = {{units(0.8), units(0.045)}, "Time"};
  p.axes = {PlotSegment{{0, 0}, {0, kPlotAxisLength}}, PlotSegment{{0, 0}, {kPlotAxisLength, 0}}};

  constexpr std::array<double, 5> kFractions{0.0, 0.25, 0.5, 0.75, 1.0};
  for (std::size_t i = 0; i < kFractions.size(); ++i) {
    const double f = kFractions[i];
    const int y = toUnits(f * kPlotAxisLength + 0.03 * kPlotSpace);
    p.valueLabels[i] = {{units(-0.1), y}, formatNumber("%10.3f", (s.min + f * s.range) * s.factor)};
    if (i > 0 && i + 1 < kFractions.size()) {
      const int tickY = toUnits(f * kPlotAxisLength);
      p.valueTicks.push_back({{0, tickY}, {units(0.02), tickY}});
    }
  }

  // The period labels and ticks step by a whole number of units (integer division), so they may
  // fall a little short of the points they name, as they always have.
  if (last > 0) {
    const int step = kPlotAxisLength / last;
    for (int t = 0; t < last; ++t) {
      const std::string text = static_cast<std::size_t>(t) < labels.periods.size()
                                   ? labels.periods[static_cast<std::size_t>(t)]
                                   : "";
      p.periodLabels.push_back({{step * t - units(0.03), units(-0.01)}, text});
      p.periodTicks.push_back({{step * t, 0}, {step * t, units(0.02)}});
    }
  }

  for (std::size_t k = 0; k < series.size(); ++k) {
    std::vector<PlotPoint> line;
    const std::vector<double>& v = series[k].values;
    for (int t = 0; t < static_cast<int>(v.size()); ++t) {
      const int x = last > 0 ? toUnits(static_cast<double>(t) / last * kPlotAxisLength) : 0;
      const int y =
          s.range != 0.0
              ? toUnits((v[static_cast<std::size_t>(t)] - s.min) / s.range * kPlotAxisLength)
              : kPlotAxisLength / 2;
      line.push_back({x, y});
    }
    p.polylines.push_back(std::move(line));
    p.pens.push_back(series[k].pen);

    const std::size_t column = k % kLegendColumnX.size();
    const std::size_t row = (k / kLegendColumnX.size()) % kLegendRowTop.size();
    const int x = kLegendColumnX[column];
    const int top = kLegendRowTop[row];
    const int middle = top - kPlotTextHeight / 2;
    p.legend.push_back({{{x, middle}, {x + kPlotLegendLine, middle}},
                        {{x + kPlotLegendLine + kLegendTextGap, top}, series[k].legend},
                        series[k].pen});
  }
  return p;
}

SpreadLayout layoutSpread(const RunSpread& spread, const PlotLabels& labels) {
  // Lay everything out as series first: per method its median, 10% and 90% paths, then the
  // desired path. The frame scales over all of them; the legend keeps one entry per method.
  std::vector<PlotSeries> series;
  std::vector<int> methods;
  for (const SpreadBand& b : spread.bands) {
    int method = 0;
    for (std::size_t k = 0; k < kCompareMethods.size(); ++k)
      if (kCompareMethods[k] == b.method) method = static_cast<int>(k);
    methods.push_back(method);
    series.push_back({b.method, b.median, method});
    series.push_back({b.method, b.low, method});
    series.push_back({b.method, b.high, method});
  }
  if (!spread.desired.empty()) series.push_back({"Des", spread.desired, kDesiredPen});
  SpreadLayout s;
  s.frame = layoutPlot(series, labels);
  s.methods = methods;
  std::vector<PlotLegendEntry> legend;
  for (std::size_t b = 0; b < methods.size(); ++b) {
    const std::vector<PlotPoint>& low = s.frame.polylines[3 * b + 1];
    const std::vector<PlotPoint>& high = s.frame.polylines[3 * b + 2];
    std::vector<PlotPoint> outline(high.begin(), high.end());
    outline.insert(outline.end(), low.rbegin(), low.rend());
    s.bands.push_back(std::move(outline));
    s.medians.push_back(s.frame.polylines[3 * b]);
  }
  if (!spread.desired.empty()) s.desired = s.frame.polylines.back();
  // The legend: one entry per method, then the desired path, in the places of the first entries.
  const std::size_t entries = methods.size() + (spread.desired.empty() ? 0 : 1);
  for (std::size_t e = 0; e < entries && e < s.frame.legend.size(); ++e) {
    const bool isDesired = e == methods.size();
    PlotLegendEntry entry = s.frame.legend[e];
    entry.text.text = isDesired ? "Des" : spread.bands[e].method;
    entry.pen = isDesired ? kDesiredPen : methods[e];
    legend.push_back(std::move(entry));
  }
  s.frame.legend = std::move(legend);
  s.frame.polylines.clear();
  s.frame.pens.clear();
  return s;
}

}  // namespace ovaro
