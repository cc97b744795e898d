// The series of the time-path plots: which paths of which stored solutions a plot shows, and
// under which legends.
//
// The single-run plot shows one state, control or uncertain parameter of the solution of one
// method, or of two or three Monte Carlo methods side by side, chosen by the solution code of
// the display table (2160 QLP .. 2176 CEWO-OLF-OLIN, display_selection.h). What it shows is
// named by the path type:
//   Optimum      the method's path ("Opt"), or one path per method under the method names;
//   Opt and Des  the same followed by the desired path ("Des");
//   Difference   path minus desired path ("Diff"), or one difference per method;
//   Estimated, True
//                the parameter's estimate or true value in a Monte Carlo solution ("Est",
//                "True"), or one per method under the method names;
//   Est and True both, per method, as "<method> Est" and "<method> True".
// The two single solves (QLP, OLF without updating) have no parameter paths.
//
// A plot has at most six series, each one value per plotted period: states and parameters are
// plotted over periods 0..T, controls over 0..T-1, so a controls plot has one point fewer than a
// states plot of the same run.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/model.h"
#include "results/results_store.h"

namespace ovaro {

// The variable kinds of the single-run plot.
inline constexpr int kPlotStates = 2150, kPlotControls = 2151, kPlotParameters = 2152;
// Its path types: the first three for states and controls, the last three for parameters.
inline constexpr int kPathOptimum = 2100, kPathOptAndDes = 2101, kPathDifference = 2102,
                     kPathEstimated = 2103, kPathTrue = 2104, kPathEstAndTrue = 2105;

inline constexpr int kMaxPlotSeries = 6;

// The warning of a plot without series (caption "Warning!").
inline constexpr const char* kNoSeriesSelected = "No series selected.";

// The pen a series is drawn with: the six series pens in order, and the heavy dash-dot-dot pen
// of the desired path in the scenario plot.
inline constexpr int kDesiredPen = kMaxPlotSeries;

struct PlotSeries {
  std::string legend;
  std::vector<double> values;  // one per plotted period, from period 0
  int pen = 0;                 // 0..5 for the series pens, kDesiredPen for the desired path
  friend bool operator==(const PlotSeries&, const PlotSeries&) = default;
};

// The choices of the single-run plot dialog, kept from one plot to the next.
struct PlotChoices {
  int variable = -1;  // 0-based index into the kind's acronyms; negative: none chosen
  int kind = kPlotStates;
  int pathType = kPathOptimum;
  int method = 2160;  // solution code 2160..2176
};

// What a gathering found: the series, or why there are none.
struct SeriesGathering {
  std::vector<PlotSeries> series;
  // The first method of the combination that has no stored solution (or whose solution does not
  // hold the variable); empty when every method was found.
  std::string missingMethod;
};

// The dialog label of a solution code in the plot dialog (2160 "QLP" .. 2176 "CEWO-OLF-OLIN");
// empty for a code that is not one.
std::string_view plotMethodLabel(int code);

// The series of one path type, one routine each. `method` is a solution code, `variable` a
// 0-based index and `kind` a variable kind.
SeriesGathering gatherOptimum(const ResultsStore& store, int method, int variable, int kind);
SeriesGathering gatherOptAndDes(const ResultsStore& store, int method, int variable, int kind);
SeriesGathering gatherDifference(const ResultsStore& store, int method, int variable, int kind);
// Estimated, True and Est and True; nothing for QLP and OLF without updating.
SeriesGathering gatherParameters(const ResultsStore& store, int pathType, int method, int variable);
// The routine of the chosen path type. No series when no variable is chosen or the path type does
// not belong to the kind (Optimum for a parameter, Estimated for a state).
SeriesGathering gatherSeries(const ResultsStore& store, const PlotChoices& choices);

// The labels a plot of a variable shows: its acronym (the axis label), its long name (the title)
// and the period acronyms along the time axis (the period's number in the Model's count when its
// acronym is blank). Blanks at either end are dropped.
struct PlotLabels {
  std::string acronym;
  std::string title;
  std::vector<std::string> periods;
};
// `kind` is a single-run kind (2150..2152); `points` the number of plotted periods.
PlotLabels plotLabels(const Model& model, int kind, int variable, int points);

// The acronyms of a variable kind, in order, blanks trimmed (the plot dialogs list them).
std::vector<std::string> plotVariableNames(const Model& model, int kind);

}  // namespace ovaro
