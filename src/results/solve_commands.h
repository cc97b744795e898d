// The Solve: QLP and Solve: OLF commands on a workbench: solve the current Model, leave the
// solution in the results store, choose the display, and close the debug file of a traced solve.
//
// A traced solve (a Print variant in the workbench, --debug in the batch tool) opens the
// workbench's debug file before calling; the solve then writes its heading, the dumps its debug
// switches ask for and the results print, and the file is closed when the command ends.
#pragma once

#include "results/workbench.h"

namespace ovaro {

// Runs the solve that `method` names (kSolveQlp or kSolveOlf) and records it as the solve method.
// A solution is also stored as the next scenario when the user asks for scenarios.
// True when a solution was made; false when the Model was refused (the reason has been shown).
// `traceVocabulary` names the dialog the debug switches were chosen in: the single-page Debug
// Print Options (the default) or the five-page sheet, whose boxes name the same dumps in the
// Monte Carlo vocabulary.
bool runSolveCommand(Workbench& wb, int method, DebugPage traceVocabulary = DebugPage::QlpOlf);

}  // namespace ovaro
