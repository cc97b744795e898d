// The vocabulary of debug print switches, and the set of switches a traced command consults.
//
// Two option dialogs choose what a traced command writes to the debug file: the single-page
// Debug Print Options dialog of the QLP and OLF solves, and the five-page sheet (Summary, Inputs,
// Intermediates, Results, Monte Carlo) of the Monte Carlo comparison. Each check box is one
// switch. The switch table below is the one description of them: the dialogs build their pages
// from it, the batch tool takes its machine names in `--trace`, and the computing code tests a
// switch immediately before each dump.
//
// "All" boxes: a box named "All ..." turns on every switch of its scope without ticking them, so
// a switch is on when its own box or any "All" box above it is set. The scopes nest: each entry
// names the innermost "All" box that covers it, and that box names the next one out.
#pragma once

#include <bitset>
#include <optional>
#include <span>
#include <string_view>

namespace ovaro {

enum class DebugSwitch : int {
  // Debug Print Options (QLP and OLF solves)
  QlpAll,
  QlpIndat,
  QlpCriterionInputs,
  QlpTrackingToQuadratic,
  QlpPindyckToRegular,
  QlpForwardLooking,
  QlpPhiThetaPsi,
  QlpKAndP,
  QlpGAndG,
  QlpXAndU,
  QlpXAndUIntermediate,
  QlpCriterionValue,
  // Summary page
  SummaryAll,
  SummaryInputsAndResults,
  SummaryResultsOnly,
  // Inputs page
  InputsAll,
  InputsAllModel,
  InputsSystemEquations,
  InputsCriterion,
  InputsOther,
  InputsAllConversion,
  InputsTrackingToQuadratic,
  InputsPindyckToRegular,
  InputsForwardLooking,
  InputsMapAbcToTheta,
  InputsAllStochastic,
  InputsRandomIntermediates,
  InputsRandomFinal,
  InputsRandomMeans,
  // Intermediates page
  IntermediatesKAndPIntermediates,
  IntermediatesKAndP,
  IntermediatesGAndG,
  IntermediatesForwardEachIteration,
  IntermediatesForwardLastTwo,
  IntermediatesAllMeansCovariances,
  ProjectionMeansIntermediate,
  ProjectionMeansFinal,
  ProjectionCovariancesIntermediate,
  ProjectionCovariancesFinal,
  FilterMeansIntermediate,
  FilterMeansFinal,
  FilterCovariancesIntermediate,
  FilterCovariancesFinal,
  // Results page
  ResultsAll,
  ResultsThetaMeans,
  ResultsThetaCovariance,
  ResultsEstimatedParametersIntermediate,
  ResultsEstimatedParametersFinal,
  ResultsTrueParametersIntermediate,
  ResultsTrueParametersFinal,
  ResultsStatesControlsIntermediate,
  ResultsStatesControlsFinal,
  ResultsMonteCarloSummary,
  // Monte Carlo page
  MonteCarloStatesByRuns,
  MonteCarloRunsByStates,
  MonteCarloControlsByRuns,
  MonteCarloRunsByControls,
  MonteCarloStatesByPeriods,
  MonteCarloPeriodsByStates,
  MonteCarloControlsByPeriods,
  MonteCarloPeriodsByControls,
  MonteCarloMomentsOverTime,
  MonteCarloMomentsOverRuns,
  MonteCarloSumSquaredDifferences,
  MonteCarloAvgAvg,
  MonteCarloAvgVar,
  MonteCarloAllSumSquaredDifferences,
  MonteCarloMomentsOfMoments,
  MonteCarloLargeDebug,
};

inline constexpr int kDebugSwitchCount = static_cast<int>(DebugSwitch::MonteCarloLargeDebug) + 1;

// The single-page dialog, then the pages of the sheet in tab order.
enum class DebugPage { QlpOlf, Summary, Inputs, Intermediates, Results, MonteCarlo };

// The dialog or tab title: "Debug Print Options", "Summary", "Inputs", "Intermediates",
// "Results", "Monte Carlo".
std::string_view debugPageTitle(DebugPage page);

struct DebugSwitchInfo {
  DebugSwitch id;
  DebugPage page;
  std::string_view group;                // group box caption; empty for boxes outside any group
  std::string_view label;                // check box text
  std::string_view name;                 // stable machine name, e.g. "qlp.k-and-p"
  std::optional<DebugSwitch> coveredBy;  // innermost "All" box whose scope holds this switch
};

// Every switch, in dialog order (which is also the order of the enumeration).
std::span<const DebugSwitchInfo> debugSwitchTable();
const DebugSwitchInfo& debugSwitchInfo(DebugSwitch s);
// The switch with this machine name; nullopt for an unknown name.
std::optional<DebugSwitch> findDebugSwitch(std::string_view name);
// Whether setting `allBox` turns `s` on (a box does not cover itself).
bool covers(DebugSwitch allBox, DebugSwitch s);

// The set of ticked boxes. All off at start.
class DebugSwitches {
 public:
  void set(DebugSwitch s, bool value = true) { bits_.set(index(s), value); }
  // Whether the box itself is ticked.
  bool isSet(DebugSwitch s) const { return bits_.test(index(s)); }
  // Whether a dump under this switch is to be written: its box or an "All" box covering it.
  bool on(DebugSwitch s) const;
  // Whether any box is ticked.
  bool any() const { return bits_.any(); }
  void clear() { bits_.reset(); }

  friend bool operator==(const DebugSwitches&, const DebugSwitches&) = default;

 private:
  static std::size_t index(DebugSwitch s) { return static_cast<std::size_t>(s); }
  std::bitset<kDebugSwitchCount> bits_;
};

// Which Monte Carlo runs get the selected print, beside the Summary page caption "Turn on
// selected print only in the following runs". Runs are numbered from 1.
enum class DebugRunSelection {
  FirstRun,   // "Only the first run"
  RunNumber,  // "Only run number y", y typed in the box beside it
};

inline constexpr std::string_view kRunSelectionCaption =
    "Turn on selected print only in the following runs";
inline constexpr std::string_view kFirstRunLabel = "Only the first run";
inline constexpr std::string_view kRunNumberLabel = "Only run number y";

// The debug print settings of a workbench or batch job: the ticked boxes and the run restriction.
struct DebugPrintSettings {
  DebugSwitches switches;
  DebugRunSelection runSelection = DebugRunSelection::FirstRun;
  int runNumber = 1;

  // Whether run `run` (1-based) is the one that gets the selected print.
  bool printsRun(int run) const;
};

}  // namespace ovaro
