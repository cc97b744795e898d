#include "solve/trace.h"

namespace ovaro {

SolveTrace qlpSolveTrace(DebugFile* file, const DebugSwitches& switches) {
  struct Link {
    SolveTopic topic;
    DebugSwitch box;
  };
  // "A, B, c. d, x0  in indat" covers everything read from the Model, the uncertain parameters of
  // the OLF solve included; the remaining boxes name one stage of the solve each.
  static constexpr Link kLinks[] = {
      {SolveTopic::SystemInput, DebugSwitch::QlpIndat},
      {SolveTopic::UncertainParameters, DebugSwitch::QlpIndat},
      {SolveTopic::CriterionInput, DebugSwitch::QlpCriterionInputs},
      {SolveTopic::TrackingToQuadratic, DebugSwitch::QlpTrackingToQuadratic},
      {SolveTopic::PindyckToRegular, DebugSwitch::QlpPindyckToRegular},
      {SolveTopic::ForwardVariables, DebugSwitch::QlpForwardLooking},
      {SolveTopic::ForwardLastTwo, DebugSwitch::QlpForwardLooking},
      {SolveTopic::PhiThetaPsi, DebugSwitch::QlpPhiThetaPsi},
      {SolveTopic::KAndPIntermediate, DebugSwitch::QlpKAndP},
      {SolveTopic::KAndP, DebugSwitch::QlpKAndP},
      {SolveTopic::GAndG, DebugSwitch::QlpGAndG},
      {SolveTopic::XAndUIntermediate, DebugSwitch::QlpXAndUIntermediate},
      {SolveTopic::XAndU, DebugSwitch::QlpXAndU},
      {SolveTopic::CriterionValue, DebugSwitch::QlpCriterionValue},
  };
  std::bitset<kSolveTopicCount> topics;
  for (const Link& link : kLinks) {
    if (switches.on(link.box)) topics.set(static_cast<std::size_t>(link.topic));
  }
  return SolveTrace(file, topics);
}

}  // namespace ovaro
