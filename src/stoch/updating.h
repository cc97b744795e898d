// The parameter-updating group's "Stochastic w/o Updating": the handcrafted feedback rule run
// under additive system noise over many runs, with the state known exactly and no learning.
#pragma once

#include <atomic>

#include <optional>
#include <vector>

#include "io/debug_file.h"
#include "io/debug_options.h"
#include "model/model.h"
#include "numeric/arrays.h"
#include "numeric/progress.h"
#include "numeric/prompter.h"
#include "stoch/random_terms.h"

namespace ovaro {

// The "Methods for Stochastic w/o Updating" choice.
struct UpdatingMethods {
  bool hcfr = false;
  bool ce = false;
  bool olf = false;
};

struct UpdatingSettings {
  UpdatingMethods methods;
  std::optional<int> runs;  // overrides the Model's nmc
  DebugPrintSettings debug;
  DebugFile* file = nullptr;
  double eps = 0.0;
  // When set and true, the runs stop after the run in hand and nothing is kept.
  const std::atomic<bool>* cancel = nullptr;
};

struct UpdatingResult {
  int status = 0;  // 1 done; 0 refused, cancelled or stopped by a failed debug write
  bool cancelled = false;
  int runs = 0;
  int n = 0, m = 0, nt = 0;
  std::vector<double> criteria;  // the HCFR criterion of each run, when one is computed
  double criterionSum = 0.0;
  Mat xs, us;  // the last run's paths (n x 0..nt, m x 0..nt-1)
  Mat xtws, utws;
};

// The second maincompare: the runs of SolveStochWoUpHcfr.
UpdatingResult maincompareWoUpdating(const Model& model, const UpdatingSettings& settings,
                                     RandomState& random, Prompter& prompter, Progress& progress);

}  // namespace ovaro
