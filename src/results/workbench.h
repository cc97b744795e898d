// The Workbench: everything one workbench window, one batch job or one test works on.
//
// A session of Ovaro has one current Model, its shell preferences, the results store and the
// number format of the result tables, the debug print settings and the open debug file, the
// machine epsilon, and the two seams to the outside (the Prompter for every message, the
// Progress for long work). They live together here, passed explicitly to whatever needs them,
// never in globals: two workbenches in one process do not see each other.
//
#pragma once

#include <functional>
#include <string>

#include "io/debug_file.h"
#include "io/debug_options.h"
#include "model/model.h"
#include "numeric/progress.h"
#include "numeric/prompter.h"
#include "results/plot_series.h"
#include "results/results_store.h"
#include "results/scenario_store.h"
#include "solve/olf.h"
#include "stoch/random_terms.h"
#include "stoch/run_distributor.h"
#include "stoch/updating.h"

namespace ovaro {

// Solve method selector values: the deterministic QLP path and the OLF path.
inline constexpr int kSolveQlp = 2160;
inline constexpr int kSolveOlf = 2161;

// Preference flags of the shell (each 0 or 1, as the menu check marks show them) and the settings
// that start-up and File: Clear restore.
struct ShellPreferences {
  int warningMessages = 1;        // "Warning Messages", checked at start
  int debugImportedMatrices = 1;  // "Debug Print for Imported Matrices", checked at start
  int askScenarioQuestion = 0;    // "Ask scenario question after solution?", unchecked at start
  int importMatrixColumns = 5;    // "Import Matrix Columns"
  int methodSelector = kSolveQlp;
  int qTest = 1;  // ask before a comparison runs with a (near) zero Q
  friend bool operator==(const ShellPreferences&, const ShellPreferences&) = default;
};

class Workbench {
 public:
  // A workbench in its start-up state. The prompter and progress must outlive it.
  Workbench(Prompter& prompter, Progress& progress);
  // The debug file keeps a pointer to this workbench's number format: neither copied nor moved.
  Workbench(const Workbench&) = delete;
  Workbench& operator=(const Workbench&) = delete;

  // The start-up initialisation, run again by File: Clear: an empty Model (no sizes, no flags, no
  // arrays), the shell defaults and the machine epsilon. The number format, the debug settings
  // and the open debug file are left as they are.
  void resetToDefaults();

  Prompter& prompter;
  Progress& progress;

  Model model;
  ShellPreferences shell;
  double eps = 0.0;  // machine epsilon, computed at start-up

  // The number format chosen in Preferences for Results (770..795); 0 until a choice is made, in
  // which case tables use 770 and debug dumps " %10.2f ".
  int resultsFormat = 0;

  // The solutions made so far and how they are shown. Kept by File: Clear: a cleared model
  // cannot be shown (its sizes no longer match), and the display preferences are the user's.
  ResultsStore results;

  // Preferences: Caution Experiment, read by the OLF solve. Off at start.
  CautionExperiment caution;

  // The random generators' state: it survives from one solve to the next.
  RandomState random;
  // Threads for the untraced Monte Carlo runs (0: one per core). The results do not depend on it.
  int threads = 0;
  // The other processes that share a comparison's untraced runs (the batch tool under mpirun);
  // nullptr: this process alone, as in the workbench.
  RunDistributor* runDistributor = nullptr;
  // The choice of "Methods for Stochastic w/o Updating". (The Compare method choice is the
  // results store's run flags.)
  UpdatingMethods updatingMethods;

  // The scenarios stored for the scenario plot, and the choices of the two plot dialogs, kept
  // from one plot to the next.
  ScenarioStore scenarios;
  PlotChoices plotChoices;
  ScenarioPlotChoices scenarioPlotChoices;
  // Names a new scenario, given the method that made it (the workbench asks in the "Scenario
  // Acryonm and Description" dialog). When unset a scenario is named after its method.
  std::function<ScenarioName(const std::string& method)> nameScenario;

  DebugPrintSettings debug;
  DebugFile debugFile{&resultsFormat};
  std::string debugFileName;  // remembered from one traced command to the next

  // Options: Monte Carlo: the first period (counted from 0) of the variance over time of the
  // state and of the control paths. Kept for the statistics; they use every period for now.
  int varianceStartState = 0;
  int varianceStartControl = 0;
};

}  // namespace ovaro
