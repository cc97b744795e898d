// The Monte Carlo comparison (Solve: Compare): nmc runs of the horizon in which every selected
// method steers the same simulated true economy from the same random draws, learning the state
// and the uncertain parameters with the Kalman filter; then the statistics over the runs.
//
// Methods are numbered in the order of every per-method table: HCFR, CE, CEWO, OLF, OLIN.
#pragma once

#include <array>
#include <atomic>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "io/debug_file.h"
#include "io/debug_options.h"
#include "model/model.h"
#include "numeric/arrays.h"
#include "numeric/progress.h"
#include "numeric/prompter.h"
#include "solve/trace.h"
#include "stoch/random_terms.h"
#include "stoch/run_trace.h"

namespace ovaro {

class RunDistributor;

inline constexpr int kMethodCount = 5;
enum MethodIndex { kHcfr = 0, kCe = 1, kCeWo = 2, kOlf = 3, kOlIn = 4 };
inline constexpr std::array<const char*, kMethodCount> kMethodNames = {"HCFR", "CE", "CEWO", "OLF",
                                                                       "OLIN"};
// Suffixes of the statistics' names ("AvgXsHcfr", "AvgXsOlfIn", ...).
inline constexpr std::array<const char*, kMethodCount> kMethodSuffixes = {"Hcfr", "Ce", "CeWo",
                                                                          "Olf", "OlfIn"};

using MethodSelection = std::array<bool, kMethodCount>;

// The paths of one run of one method.
struct RunPaths {
  Mat xs;         // n x 0..nt, the true states
  Mat us;         // m x 0..nt-1, the controls applied
  Mat thetas;     // np x 0..nt, the estimated parameters
  Mat thetatrue;  // np x 0..nt, the true parameters
  double criterion = 0.0;
};

// What a comparison leaves behind.
struct CompareResult {
  // 1: the runs were made; 0: stopped (a failed debug write, or No at the Q question);
  // -1: refused before anything was computed.
  int status = -1;
  int runs = 0;
  bool cancelled = false;  // stopped by the cancel flag: status 0, nothing to keep
  int n = 0, m = 0, nt = 0, np = 0;
  MethodSelection selected{};
  std::vector<std::array<double, kMethodCount>> mcResults;  // criterion by run and method
  std::array<double, kMethodCount> criterionSums{};
  std::array<double, kMethodCount> averages{};
  std::array<unsigned, kMethodCount> lowestCounts{};
  std::array<RunPaths, kMethodCount> lastRun;  // the paths of the last run of each method
  Mat xtws, utws;                              // the desired paths
  // The true paths of every run, per method: xs(i, t, run) and us(j, t, run).
  std::array<Mat3, kMethodCount> runXs;
  std::array<Mat3, kMethodCount> runUs;
  // Named statistics of the paths over the runs ("AvgXsCe", "VarAvgUsOlf", "thetamean", ...).
  std::map<std::string, Mat> statistics;
};

// Everything a comparison reads besides the Model.
struct CompareSettings {
  MethodSelection methods{};
  std::optional<int> runs;    // overrides the Model's nmc
  bool qTest = true;          // ask before running with a (near) zero Q
  DebugPrintSettings debug;   // the switches and the run restriction
  DebugFile* file = nullptr;  // the open debug file of "Compare: Print", or nullptr
  double eps = 0.0;           // machine epsilon
  int threads = 0;            // threads for the untraced runs; 0: one per core
  // The other processes that share the untraced runs (mpirun); nullptr: this process alone.
  // Only process 0's result is kept; the others return status 0 after their share.
  RunDistributor* distributor = nullptr;
  // When set and true, the comparison stops after the run in hand and keeps nothing.
  const std::atomic<bool>* cancel = nullptr;
};

// maincompare: the preconditions, the run loop and the statistics.
CompareResult maincompare(const Model& model, const CompareSettings& settings, RandomState& random,
                          Prompter& prompter, Progress& progress);

// The lowest-criterion count of one run: only the exact selections listed in the code count.
void countLowestCriterion(const MethodSelection& selected,
                          const std::array<double, kMethodCount>& c,
                          std::array<unsigned, kMethodCount>& counts);

}  // namespace ovaro
