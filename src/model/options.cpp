#include "model/options.h"

namespace ovaro::opt {

std::string_view label(int id) {
  switch (id) {
    case kDeterministic:
      return "Deterministic";
    case kAdditiveNoise:
      return "Stochastic with Additive Noise";
    case kParameterUncertainty:
      return "Stochastic with Parameter Uncertainty";
    case kMeasurementError:
      return "Stochastic with Measurement Error";
    case kQuadraticTracking:
      return "Quadratic Tracking";
    case kQuadraticForm:
      return "Quadratic Form";
    case kRegular:
      return "Regular";
    case kPindyck:
      return "Pindyck";
    case kForwardNo:
    case kPolicyNo:
      return "No";
    case kForwardYes:
    case kPolicyYes:
      return "Yes";
    case kZConstant:
    case kWConstant:
    case kLambdaConstant:
    case kXdesConstant:
    case kUdesConstant:
      return "Constant";
    case kZTimeVarying:
    case kWTimeVarying:
    case kLambdaTimeVarying:
    case kXdesTimeVarying:
    case kUdesTimeVarying:
      return "Time Varying";
    case kWTerminalDifferent:
      return "Terminal Different";
    case kXdesBoth:
      return "Constant and Time Varying";
    case kReadIn:
      return "Read In";
    case kGenerateInternally:
      return "Generate internally";
    case kPeriodsAsRows:
      return "Rows";
    case kPeriodsAsColumns:
      return "Columns";
    default:
      return {};
  }
}

}  // namespace ovaro::opt
