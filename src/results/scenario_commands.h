// Storing a solution as a scenario once a solve has finished, when the user has asked for it
// ("Ask scenario question after solution?"): the workbench names the scenario, the store grows
// by one, and a traced solve dumps the store to its debug file.
#pragma once

#include "results/workbench.h"

namespace ovaro {

// Called by the QLP and OLF solves and by the comparison before their debug file is closed.
// Nothing happens while the preference is off. After a comparison the user is first told
// "Scenario solution stored for plot" (caption "Scenario"). Returns the scenario count.
int storeScenarioAfterSolve(Workbench& wb, const Solution& solution, bool afterComparison);

}  // namespace ovaro
