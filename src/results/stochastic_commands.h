// The Solve: Compare command and the parameter-updating group's "Stochastic w/o Updating" on a
// workbench: run the Monte Carlo driver on the current Model with the workbench's generator
// state, debug settings and progress, and leave the runs' results in the results store.
#pragma once

#include <optional>

#include "results/workbench.h"
#include "stoch/compare.h"
#include "stoch/updating.h"

namespace ovaro {

// Runs the comparison of the chosen methods (the choice is kept as the Compare run flags).
// `runs` overrides the Model's run count. The open debug file, if any, is written and closed.
// Each selected method's last run is stored under its name with its parameter paths, every run's
// paths and criteria are kept as the store's comparison (the run paths move there: the returned
// result no longer holds them), the display is chosen for the methods that ran, and the first
// compared method's last run becomes a scenario when the user asks for scenarios.
CompareResult runCompareCommand(Workbench& wb, const MethodSelection& methods,
                                std::optional<int> runs = std::nullopt);
// The two halves of it, for a caller that runs the comparison elsewhere (the workbench runs it on
// a worker thread): the settings the workbench gives, and the keeping of a finished comparison's
// results (nothing is kept unless it finished).
CompareSettings compareSettings(Workbench& wb, const MethodSelection& methods,
                                std::optional<int> runs = std::nullopt);
// The run paths move into the store: `result` no longer holds them afterwards.
void keepCompareResult(Workbench& wb, const MethodSelection& methods, CompareResult& result);

// "Stochastic w/o Updating" with the workbench's method choice. The last run's paths are stored
// as the HCFR solution.
UpdatingResult runUpdatingCommand(Workbench& wb, std::optional<int> runs = std::nullopt);
UpdatingSettings updatingSettings(Workbench& wb, std::optional<int> runs = std::nullopt);
void keepUpdatingResult(Workbench& wb, const UpdatingResult& result);

// The commands of the parameter-updating group that have no driver of their own answer this.
inline constexpr const char* kNotSupportedYet = "This option not supported yet.";

}  // namespace ovaro
