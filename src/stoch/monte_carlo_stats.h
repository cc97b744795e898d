// Statistics over the runs of a Monte Carlo comparison: the lowest-criterion counts and average
// criteria, the moments of the state and control paths over runs and over time, and the check of
// the sample moments of the random draws.
#pragma once

#include <array>

#include "io/debug_file.h"
#include "io/debug_options.h"
#include "numeric/arrays.h"
#include "numeric/prompter.h"
#include "solve/trace.h"
#include "stoch/compare.h"
#include "stoch/random_terms.h"

namespace ovaro {

// The true paths of every run, per method: xs(i, t, run) and us(j, t, run).
struct MonteCarloPaths {
  std::array<Mat3, kMethodCount> xs;
  std::array<Mat3, kMethodCount> us;
};
MonteCarloPaths makeMonteCarloPaths(int n, int m, int nt, int nmc);
void storeRunPaths(MonteCarloPaths& paths, int method, int run, const RunPaths& rp);

// Averages of the criteria, the "Method Count" and "Average Criterion Values" messages, and the
// Monte Carlo results print.
void monteCarloSummary(CompareResult& result, Prompter& prompter, const SolveTrace& trace);

// The path statistics of every selected method, into result.statistics by name, each dumped
// under its box of the Monte Carlo page when `file` is open.
void pathStatistics(CompareResult& result, const MonteCarloPaths& paths, const Mat& xtws,
                    const Mat& utws, const DebugSwitches& switches, DebugFile* file);

// The sample moments of the draws (thetamean, xsimean, thetacovar, xsicovar) from the
// accumulators; `terms` holds the last run's draws.
void randomDrawCheck(CompareResult& result, const RandomAccumulators& acc, const RandomTerms& terms,
                     const SolveTrace& trace);

}  // namespace ovaro
