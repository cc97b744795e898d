#include "io/debug_options.h"

#include <array>

namespace ovaro {

namespace {

using S = DebugSwitch;
using P = DebugPage;
constexpr std::optional<DebugSwitch> kNone;

// Group captions the dialogs draw around related boxes.
constexpr std::string_view kInputs = "Inputs";
constexpr std::string_view kInputTransformations = "Input Transformations";
constexpr std::string_view kRiccati = "Riccati Equations";
constexpr std::string_view kFeedbackRule = "Feedback Rule";
constexpr std::string_view kCriterionValue = "Criterion Value";
constexpr std::string_view kModel = "Model";
constexpr std::string_view kConversion = "Conversion";
constexpr std::string_view kStochastic = "Stochastic Elements";
constexpr std::string_view kForwardIterations = "Forward-Looking Variable Iterations";
constexpr std::string_view kMeansCovariances = "Means and Covariances";
constexpr std::string_view kProjections = "Projections (k+1/k)";
constexpr std::string_view kKalmanFilter = "Kalman Filter (k+1/k+1)";
constexpr std::string_view kTheta = "Theta";
constexpr std::string_view kParameters = "Uncertain Parameters";
constexpr std::string_view kStatesControls = "States and Controls";
constexpr std::string_view kMonteCarlo = "Monte Carlo";
constexpr std::string_view kLayouts = "Layout of Result Arrays";
constexpr std::string_view kMoments = "Moments";
constexpr std::string_view kSumSquares = "Sum of Squared Differences";
constexpr std::string_view kMomentsOfMoments = "Moments of Moments";

constexpr std::array<DebugSwitchInfo, kDebugSwitchCount> kTable{{
    // The single-page dialog: its "All" covers the whole dialog and nothing of the sheet.
    {S::QlpAll, P::QlpOlf, "", "All", "qlp.all", kNone},
    {S::QlpIndat, P::QlpOlf, kInputs, "A, B, c. d, x0  in indat", "qlp.a-b-c-d-x0", S::QlpAll},
    {S::QlpCriterionInputs, P::QlpOlf, kInputs, "W's, LAM's, xdes, udes", "qlp.w-lam-xdes-udes",
     S::QlpAll},
    {S::QlpTrackingToQuadratic, P::QlpOlf, kInputTransformations, "tracking to quadratic form",
     "qlp.tracking-to-quadratic-form", S::QlpAll},
    {S::QlpPindyckToRegular, P::QlpOlf, kInputTransformations, "Pindyck to regular form",
     "qlp.pindyck-to-regular-form", S::QlpAll},
    {S::QlpForwardLooking, P::QlpOlf, kInputTransformations, "forward-looking variables",
     "qlp.forward-looking-variables", S::QlpAll},
    {S::QlpPhiThetaPsi, P::QlpOlf, kRiccati, "phi, theta, and psi", "qlp.phi-theta-psi", S::QlpAll},
    {S::QlpKAndP, P::QlpOlf, kRiccati, "K and p", "qlp.k-and-p", S::QlpAll},
    {S::QlpGAndG, P::QlpOlf, kFeedbackRule, "G and g", "qlp.g-and-g", S::QlpAll},
    {S::QlpXAndU, P::QlpOlf, kFeedbackRule, "x and u", "qlp.x-and-u", S::QlpAll},
    {S::QlpXAndUIntermediate, P::QlpOlf, kFeedbackRule, "x and u : intermediate",
     "qlp.x-and-u-intermediate", S::QlpAll},
    {S::QlpCriterionValue, P::QlpOlf, kCriterionValue, "J", "qlp.j", S::QlpAll},

    // Summary page: its "All" covers every page of the sheet.
    {S::SummaryAll, P::Summary, "", "All", "summary.all", kNone},
    {S::SummaryInputsAndResults, P::Summary, "", "Only inputs and results summary",
     "summary.inputs-and-results-summary", S::SummaryAll},
    {S::SummaryResultsOnly, P::Summary, "", "Only results summary", "summary.results-summary",
     S::SummaryAll},

    // Inputs page.
    {S::InputsAll, P::Inputs, "", "All Inputs", "inputs.all", S::SummaryAll},
    {S::InputsAllModel, P::Inputs, kModel, "All Model", "inputs.all-model", S::InputsAll},
    {S::InputsSystemEquations, P::Inputs, kModel, "System Equations", "inputs.system-equations",
     S::InputsAllModel},
    {S::InputsCriterion, P::Inputs, kModel, "Criterion", "inputs.criterion", S::InputsAllModel},
    {S::InputsOther, P::Inputs, kModel, "Other Inputs", "inputs.other-inputs", S::InputsAllModel},
    {S::InputsAllConversion, P::Inputs, kConversion, "All Conversion", "inputs.all-conversion",
     S::InputsAll},
    {S::InputsTrackingToQuadratic, P::Inputs, kConversion, "Tracking to Quadratic Form",
     "inputs.tracking-to-quadratic-form", S::InputsAllConversion},
    {S::InputsPindyckToRegular, P::Inputs, kConversion, "Pindyck to Regular Form",
     "inputs.pindyck-to-regular-form", S::InputsAllConversion},
    {S::InputsForwardLooking, P::Inputs, kConversion, "Forward-Looking Variables",
     "inputs.forward-looking-variables", S::InputsAllConversion},
    {S::InputsMapAbcToTheta, P::Inputs, kConversion, "Map A, B, c to Theta",
     "inputs.map-abc-to-theta", S::InputsAllConversion},
    {S::InputsAllStochastic, P::Inputs, kStochastic, "All Stochastic Elements",
     "inputs.all-stochastic-elements", S::InputsAll},
    {S::InputsRandomIntermediates, P::Inputs, kStochastic,
     "Random Variables - Intermediates - Each Run", "inputs.random-variables-intermediates",
     S::InputsAllStochastic},
    {S::InputsRandomFinal, P::Inputs, kStochastic, "Random Variables - Final - Each Run",
     "inputs.random-variables-final", S::InputsAllStochastic},
    {S::InputsRandomMeans, P::Inputs, kStochastic, "Means of Ran Vars Across Monte Carlo Runs",
     "inputs.random-variables-means", S::InputsAllStochastic},

    // Intermediates page: no page-wide "All"; the Summary "All" covers it.
    {S::IntermediatesKAndPIntermediates, P::Intermediates, kRiccati, "K and p - Intermediates",
     "intermediates.k-and-p-intermediates", S::SummaryAll},
    {S::IntermediatesKAndP, P::Intermediates, kRiccati, "K and p", "intermediates.k-and-p",
     S::SummaryAll},
    {S::IntermediatesGAndG, P::Intermediates, kRiccati, "G and g", "intermediates.g-and-g",
     S::SummaryAll},
    {S::IntermediatesForwardEachIteration, P::Intermediates, kForwardIterations, "Each Iteration",
     "intermediates.forward-each-iteration", S::SummaryAll},
    {S::IntermediatesForwardLastTwo, P::Intermediates, kForwardIterations,
     "Last Two Iterations Only", "intermediates.forward-last-two-iterations", S::SummaryAll},
    {S::IntermediatesAllMeansCovariances, P::Intermediates, kMeansCovariances,
     "All Means and Covariances", "intermediates.all-means-and-covariances", S::SummaryAll},
    {S::ProjectionMeansIntermediate, P::Intermediates, kProjections, "Means - Intermediate",
     "intermediates.projection.means-intermediate", S::IntermediatesAllMeansCovariances},
    {S::ProjectionMeansFinal, P::Intermediates, kProjections, "Means - Final",
     "intermediates.projection.means-final", S::IntermediatesAllMeansCovariances},
    {S::ProjectionCovariancesIntermediate, P::Intermediates, kProjections,
     "Covariances - Intermediate", "intermediates.projection.covariances-intermediate",
     S::IntermediatesAllMeansCovariances},
    {S::ProjectionCovariancesFinal, P::Intermediates, kProjections, "Covariances - Final",
     "intermediates.projection.covariances-final", S::IntermediatesAllMeansCovariances},
    {S::FilterMeansIntermediate, P::Intermediates, kKalmanFilter, "Means - Intermediate",
     "intermediates.kalman.means-intermediate", S::IntermediatesAllMeansCovariances},
    {S::FilterMeansFinal, P::Intermediates, kKalmanFilter, "Means - Final",
     "intermediates.kalman.means-final", S::IntermediatesAllMeansCovariances},
    {S::FilterCovariancesIntermediate, P::Intermediates, kKalmanFilter,
     "Covariances - Intermediate", "intermediates.kalman.covariances-intermediate",
     S::IntermediatesAllMeansCovariances},
    {S::FilterCovariancesFinal, P::Intermediates, kKalmanFilter, "Covariances - Final",
     "intermediates.kalman.covariances-final", S::IntermediatesAllMeansCovariances},

    // Results page.
    {S::ResultsAll, P::Results, "", "All Results", "results.all", S::SummaryAll},
    {S::ResultsThetaMeans, P::Results, kTheta, "Theta - Means", "results.theta-means",
     S::ResultsAll},
    {S::ResultsThetaCovariance, P::Results, kTheta, "Theta - Covariance",
     "results.theta-covariance", S::ResultsAll},
    {S::ResultsEstimatedParametersIntermediate, P::Results, kParameters,
     "Estimated Parameters - Intermediate", "results.estimated-parameters-intermediate",
     S::ResultsAll},
    {S::ResultsEstimatedParametersFinal, P::Results, kParameters, "Estimated Parameters - Final",
     "results.estimated-parameters-final", S::ResultsAll},
    {S::ResultsTrueParametersIntermediate, P::Results, kParameters,
     "True Parameters - Intermediate", "results.true-parameters-intermediate", S::ResultsAll},
    {S::ResultsTrueParametersFinal, P::Results, kParameters, "True Parameters - Final",
     "results.true-parameters-final", S::ResultsAll},
    {S::ResultsStatesControlsIntermediate, P::Results, kStatesControls,
     "States and Controls - Intermediate", "results.states-and-controls-intermediate",
     S::ResultsAll},
    {S::ResultsStatesControlsFinal, P::Results, kStatesControls, "States and Controls - Final",
     "results.states-and-controls-final", S::ResultsAll},
    {S::ResultsMonteCarloSummary, P::Results, kMonteCarlo, "Monte Carlo Summary",
     "results.monte-carlo-summary", S::ResultsAll},

    // Monte Carlo page: the layouts of the result arrays (variables by runs or by periods, either
    // way round) and the statistics over runs.
    {S::MonteCarloStatesByRuns, P::MonteCarlo, kLayouts, "n x nmc", "montecarlo.n-x-nmc",
     S::SummaryAll},
    {S::MonteCarloRunsByStates, P::MonteCarlo, kLayouts, "nmc x n", "montecarlo.nmc-x-n",
     S::SummaryAll},
    {S::MonteCarloControlsByRuns, P::MonteCarlo, kLayouts, "m x nmc", "montecarlo.m-x-nmc",
     S::SummaryAll},
    {S::MonteCarloRunsByControls, P::MonteCarlo, kLayouts, "nmc x m", "montecarlo.nmc-x-m",
     S::SummaryAll},
    {S::MonteCarloStatesByPeriods, P::MonteCarlo, kLayouts, "n x nt", "montecarlo.n-x-nt",
     S::SummaryAll},
    {S::MonteCarloPeriodsByStates, P::MonteCarlo, kLayouts, "nt x n", "montecarlo.nt-x-n",
     S::SummaryAll},
    {S::MonteCarloControlsByPeriods, P::MonteCarlo, kLayouts, "m x nt", "montecarlo.m-x-nt",
     S::SummaryAll},
    {S::MonteCarloPeriodsByControls, P::MonteCarlo, kLayouts, "nt x m", "montecarlo.nt-x-m",
     S::SummaryAll},
    {S::MonteCarloMomentsOverTime, P::MonteCarlo, kMoments, "Moments Over Time",
     "montecarlo.moments-over-time", S::SummaryAll},
    {S::MonteCarloMomentsOverRuns, P::MonteCarlo, kMoments, "Moments Over Monte Carlo Runs",
     "montecarlo.moments-over-runs", S::SummaryAll},
    // The sum of squared differences over runs and the two averages built from it form one
    // family under their own "All" box.
    {S::MonteCarloSumSquaredDifferences, P::MonteCarlo, kSumSquares, "Sum of Squared Differences",
     "montecarlo.sum-of-squared-differences", S::MonteCarloAllSumSquaredDifferences},
    {S::MonteCarloAvgAvg, P::MonteCarlo, kSumSquares, "Avg Avg over MC Runs",
     "montecarlo.avg-avg-over-runs", S::MonteCarloAllSumSquaredDifferences},
    {S::MonteCarloAvgVar, P::MonteCarlo, kSumSquares, "Avg Var over MC Runs",
     "montecarlo.avg-var-over-runs", S::MonteCarloAllSumSquaredDifferences},
    {S::MonteCarloAllSumSquaredDifferences, P::MonteCarlo, kSumSquares,
     "All for \"Sum of Squared Differences\"", "montecarlo.all-sum-of-squared-differences",
     S::SummaryAll},
    {S::MonteCarloMomentsOfMoments, P::MonteCarlo, kMomentsOfMoments,
     "Moments Across Time of Moments Over Mc Runs", "montecarlo.moments-across-time-of-moments",
     S::SummaryAll},
    {S::MonteCarloLargeDebug, P::MonteCarlo, "", "For debugging - May produce a large print file.",
     "montecarlo.for-debugging", S::SummaryAll},
}};

// The table is indexed by the enumeration; a switch out of place would make every lookup wrong.
constexpr bool tableInEnumOrder() {
  for (int i = 0; i < kDebugSwitchCount; ++i) {
    if (static_cast<int>(kTable[static_cast<std::size_t>(i)].id) != i) return false;
  }
  return true;
}
static_assert(tableInEnumOrder(), "debug switch table out of enumeration order");

}  // namespace

std::string_view debugPageTitle(DebugPage page) {
  switch (page) {
    case DebugPage::QlpOlf:
      return "Debug Print Options";
    case DebugPage::Summary:
      return "Summary";
    case DebugPage::Inputs:
      return "Inputs";
    case DebugPage::Intermediates:
      return "Intermediates";
    case DebugPage::Results:
      return "Results";
    case DebugPage::MonteCarlo:
      return "Monte Carlo";
  }
  return "";
}

std::span<const DebugSwitchInfo> debugSwitchTable() {
  return kTable;
}

const DebugSwitchInfo& debugSwitchInfo(DebugSwitch s) {
  return kTable[static_cast<std::size_t>(s)];
}

std::optional<DebugSwitch> findDebugSwitch(std::string_view name) {
  for (const DebugSwitchInfo& info : kTable) {
    if (info.name == name) return info.id;
  }
  return std::nullopt;
}

bool covers(DebugSwitch allBox, DebugSwitch s) {
  for (std::optional<DebugSwitch> box = debugSwitchInfo(s).coveredBy; box;
       box = debugSwitchInfo(*box).coveredBy) {
    if (*box == allBox) return true;
  }
  return false;
}

bool DebugSwitches::on(DebugSwitch s) const {
  if (isSet(s)) return true;
  for (std::optional<DebugSwitch> box = debugSwitchInfo(s).coveredBy; box;
       box = debugSwitchInfo(*box).coveredBy) {
    if (isSet(*box)) return true;
  }
  return false;
}

bool DebugPrintSettings::printsRun(int run) const {
  return run == (runSelection == DebugRunSelection::FirstRun ? 1 : runNumber);
}

}  // namespace ovaro
