#include "results/solve_commands.h"

#include <optional>

#include "results/display_selection.h"
#include "results/results_print.h"
#include "results/scenario_commands.h"
#include "solve/drivers.h"
#include "stoch/compare.h"

namespace ovaro {

bool runSolveCommand(Workbench& wb, int method, DebugPage traceVocabulary) {
  wb.shell.methodSelector = method;
  DebugFile* file = wb.debugFile.isOpen() ? &wb.debugFile : nullptr;
  const SolveTrace trace = traceVocabulary == DebugPage::QlpOlf
                               ? qlpSolveTrace(file, wb.debug.switches)
                               : monteCarloTrace(file, wb.debug.switches);
  const bool qlp = method == kSolveQlp;
  std::optional<Solution> solution = qlp ? solveQlp(wb.model, wb.prompter, trace)
                                         : solveOlf(wb.model, wb.caution, wb.prompter, trace);
  if (solution) {
    if (file != nullptr)
      printResultsToDebugFile(wb.model, *solution, wb.results.display.periodsAsRows, *file,
                              wb.prompter);
    // The display follows the solve just made: exactly one of the two single solves has run.
    wb.results.ran.qlp = qlp;
    wb.results.ran.olfWithoutUpdate = !qlp;
    wb.results.store(StoredResult{std::move(*solution), std::nullopt});
    SelectDisplayAfterSolve(wb.results, wb.prompter);
    storeScenarioAfterSolve(wb, wb.results.find(qlp ? "QLP" : "OLFwo")->solution, false);
  }
  wb.debugFile.close();
  return solution.has_value();
}

}  // namespace ovaro
