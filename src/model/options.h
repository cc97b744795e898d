// Identifiers of the specification options.
//
// A specification flag stores the id of the radio button the user chose (menu commands, controls
// and option values share one space of small integers), not an enumeration from 0. The numbers
// are part of the model file format and are used as they stand; 0 means no option chosen.
#pragma once

#include <string_view>

namespace ovaro::opt {

// Stochastic terms.
inline constexpr int kDeterministic = 1720;
inline constexpr int kAdditiveNoise = 1722;
inline constexpr int kParameterUncertainty = 1724;
inline constexpr int kMeasurementError = 1728;

// Form specifications.
inline constexpr int kQuadraticTracking = 400;
inline constexpr int kQuadraticForm = 401;
inline constexpr int kRegular = 402;
inline constexpr int kPindyck = 403;
inline constexpr int kForwardNo = 404;
inline constexpr int kForwardYes = 405;
inline constexpr int kPolicyNo = 406;
inline constexpr int kPolicyYes = 407;
inline constexpr int kZConstant = 410;
inline constexpr int kZTimeVarying = 411;
inline constexpr int kWConstant = 412;
inline constexpr int kWTerminalDifferent = 413;
inline constexpr int kWTimeVarying = 414;
inline constexpr int kLambdaConstant = 415;
inline constexpr int kLambdaTimeVarying = 416;
inline constexpr int kXdesConstant = 417;
inline constexpr int kXdesTimeVarying = 418;
inline constexpr int kXdesBoth = 419;  // no dialog offers it, but the store honours it
inline constexpr int kUdesConstant = 420;
inline constexpr int kUdesTimeVarying = 421;

// Source of random terms, and the two opaque option words saved beside it.
inline constexpr int kOption450 = 450;
inline constexpr int kOption451 = 451;
inline constexpr int kOption452 = 452;
inline constexpr int kOption453 = 453;
inline constexpr int kReadIn = 454;
inline constexpr int kGenerateInternally = 455;

// Results display orientation.
inline constexpr int kPeriodsAsRows = 3450;
inline constexpr int kPeriodsAsColumns = 3454;

// The label the dialogs show for an option id ("Quadratic Tracking", "Time Varying", ...), or an
// empty view for an id that is not an option (0 included).
std::string_view label(int id);

}  // namespace ovaro::opt
