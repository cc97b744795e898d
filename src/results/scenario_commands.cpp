#include "results/scenario_commands.h"

namespace ovaro {

int storeScenarioAfterSolve(Workbench& wb, const Solution& solution, bool afterComparison) {
  if (wb.shell.askScenarioQuestion != 1) return wb.scenarios.count;
  if (afterComparison) wb.prompter.inform(kScenarioStoredMessage, "Scenario");
  const ScenarioName name =
      wb.nameScenario ? wb.nameScenario(solution.method) : ScenarioName{solution.method, {}};
  DebugFile* file = wb.debugFile.isOpen() ? &wb.debugFile : nullptr;
  return addScenario(wb.scenarios, solution, name, file, wb.prompter);
}

}  // namespace ovaro
