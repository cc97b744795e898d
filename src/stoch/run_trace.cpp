#include "stoch/run_trace.h"

#include <bitset>
#include <cstddef>

#include "io/number_format.h"

namespace ovaro {

SolveTrace monteCarloTrace(DebugFile* file, const DebugSwitches& s) {
  using T = SolveTopic;
  using S = DebugSwitch;
  struct Link {
    T topic;
    S box;
  };
  static constexpr Link kLinks[] = {
      {T::SystemInput, S::InputsSystemEquations},
      {T::SystemInput, S::SummaryInputsAndResults},
      {T::CriterionInput, S::InputsCriterion},
      {T::CriterionInput, S::SummaryInputsAndResults},
      {T::TrackingToQuadratic, S::InputsTrackingToQuadratic},
      {T::PindyckToRegular, S::InputsPindyckToRegular},
      {T::UncertainParameters, S::InputsMapAbcToTheta},
      {T::UncertainParameters, S::InputsOther},
      {T::UncertainParameters, S::SummaryInputsAndResults},
      {T::ForwardVariables, S::InputsForwardLooking},
      {T::ForwardVariables, S::IntermediatesForwardEachIteration},
      {T::ForwardLastTwo, S::IntermediatesForwardLastTwo},
      {T::PhiThetaPsi, S::IntermediatesKAndPIntermediates},
      {T::KAndPIntermediate, S::IntermediatesKAndPIntermediates},
      {T::KAndP, S::IntermediatesKAndP},
      {T::GAndG, S::IntermediatesGAndG},
      {T::XAndUIntermediate, S::ResultsStatesControlsIntermediate},
      {T::XAndU, S::ResultsStatesControlsFinal},
      {T::CriterionValue, S::ResultsStatesControlsFinal},
      {T::RandomIntermediates, S::InputsRandomIntermediates},
      {T::RandomFinals, S::InputsRandomFinal},
      {T::RandomMeans, S::InputsRandomMeans},
      {T::ProjectionMeansIntermediate, S::ProjectionMeansIntermediate},
      {T::ProjectionMeansFinal, S::ProjectionMeansFinal},
      {T::ProjectionCovariancesIntermediate, S::ProjectionCovariancesIntermediate},
      {T::ProjectionCovariancesFinal, S::ProjectionCovariancesFinal},
      {T::FilterMeansIntermediate, S::FilterMeansIntermediate},
      {T::FilterMeansFinal, S::FilterMeansFinal},
      {T::FilterCovariancesIntermediate, S::FilterCovariancesIntermediate},
      {T::FilterCovariancesFinal, S::FilterCovariancesFinal},
      {T::ThetaCovariance, S::ResultsThetaCovariance},
      {T::TrueParametersIntermediate, S::ResultsTrueParametersIntermediate},
      {T::TrueParametersFinal, S::ResultsTrueParametersFinal},
      {T::EstimatedParametersFinal, S::ResultsEstimatedParametersFinal},
      {T::EstimatedParametersFinal, S::ResultsThetaMeans},
      {T::StatesControlsIntermediate, S::ResultsStatesControlsIntermediate},
      {T::StatesControlsFinal, S::ResultsStatesControlsFinal},
      {T::MonteCarloSummary, S::ResultsMonteCarloSummary},
      {T::MonteCarloSummary, S::SummaryInputsAndResults},
      {T::MonteCarloSummary, S::SummaryResultsOnly},
  };
  std::bitset<kSolveTopicCount> topics;
  for (const Link& link : kLinks)
    if (s.on(link.box)) topics.set(static_cast<std::size_t>(link.topic));
  // The period and iteration headings come with any detailed print of the runs; the summaries
  // after the runs (the Monte Carlo results print and the Monte Carlo page) are not one.
  bool any = false;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    if (info.page == DebugPage::QlpOlf || info.page == DebugPage::MonteCarlo) continue;
    if (info.id == S::ResultsMonteCarloSummary || info.id == S::SummaryResultsOnly) continue;
    if (s.isSet(info.id)) any = true;
  }
  if (any) topics.set(static_cast<std::size_t>(T::RunHeadings));
  return SolveTrace(file, topics);
}

SolveTrace runTrace(DebugFile* file, const DebugPrintSettings& debug, int run) {
  if (debug.printsRun(run)) {
    if (file != nullptr && debug.runSelection == DebugRunSelection::RunNumber)
      file->write(formatLabelled("\r\n\r\n\r\n%s%d", " Print for Monte Carlo run i = ", run));
    return monteCarloTrace(file, debug.switches);
  }
  DebugSwitches summaryOnly;
  summaryOnly.set(DebugSwitch::ResultsMonteCarloSummary);
  return monteCarloTrace(file, summaryOnly);
}

}  // namespace ovaro
