// What a solve writes to the debug print file.
//
// The solvers are shared by the single QLP and OLF solves and by the Monte Carlo methods, whose
// debug options come from different dialogs. The routines therefore ask for a topic ("the
// Riccati K and p", "the forward-variable iteration") and the caller decides which check boxes
// turn each topic on. A trace with no file writes nothing.
#pragma once

#include <bitset>

#include "io/debug_file.h"
#include "io/debug_options.h"

namespace ovaro {

enum class SolveTopic : int {
  SystemInput,          // A, B, C, z, leads, x0 as read from the Model; the c path
  CriterionInput,       // weights and desired paths as read
  TrackingToQuadratic,  // the linear terms formed from the desired paths
  PindyckToRegular,     // the conversion of the Pindyck form
  UncertainParameters,  // theta, its covariance, ITHN and the tables built from it
  ForwardVariables,     // lead adjustment and convergence of the forward-variable loop
  ForwardLastTwo,       // the projected paths of the last two iterations only
  PhiThetaPsi,          // the quadratic forms of one Riccati step
  KAndPIntermediate,    // the inverse and partial results inside the per-period re-solves
  KAndP,                // the Riccati matrices K and vectors p
  GAndG,                // the feedback rule G and g
  XAndUIntermediate,    // the forward pass, period by period
  XAndU,                // the optimal paths
  CriterionValue,       // the criterion
  // The stochastic runs.
  RunHeadings,                  // the period and iteration headings of a Monte Carlo run
  RandomIntermediates,          // the draws inside the normal generators
  RandomFinals,                 // the random terms of each run
  RandomMeans,                  // the sample moments of the draws over the runs
  ProjectionMeansIntermediate,  // the prediction of the means, step by step
  ProjectionMeansFinal,         // the predicted means
  ProjectionCovariancesIntermediate,
  ProjectionCovariancesFinal,
  FilterMeansIntermediate,  // the measurement update of the means, step by step
  FilterMeansFinal,
  FilterCovariancesIntermediate,
  FilterCovariancesFinal,
  ThetaCovariance,             // the updated parameter covariance alone
  TrueParametersIntermediate,  // the true parameters' evolution, step by step
  TrueParametersFinal,
  EstimatedParametersFinal,    // the estimated parameter path of a run
  StatesControlsIntermediate,  // the one-period simulation of the true system
  StatesControlsFinal,         // the true paths and criterion of a run
  MonteCarloSummary,           // criteria over the runs, counts and averages
};
inline constexpr int kSolveTopicCount = static_cast<int>(SolveTopic::MonteCarloSummary) + 1;

class SolveTrace {
 public:
  // Nothing traced.
  SolveTrace() = default;
  // `file` may be nullptr (nothing traced); otherwise it must outlive the trace.
  SolveTrace(DebugFile* file, std::bitset<kSolveTopicCount> topics)
      : file_(file), topics_(topics) {}

  // Whether dumps of this topic are to be written. A file closed by a failed write still counts
  // as traced: its dumps write nothing, and ok() tells the routine that the trace broke.
  bool on(SolveTopic t) const { return file_ != nullptr && topics_.test(index(t)); }
  // Whether the debug file is there at all (headings are written whatever the switches).
  bool active() const { return file_ != nullptr; }
  DebugFile& file() const { return *file_; }
  // 1 unless a write to the debug file has failed since it was opened: what a traced routine
  // returns, whatever it dumped on the way.
  int ok() const { return file_ != nullptr && file_->failed() ? 0 : 1; }
  // The file as the operand trace of a matrix product, when the topic is on.
  MatrixTrace* matrixTrace(SolveTopic t) const { return on(t) ? file_ : nullptr; }

 private:
  static std::size_t index(SolveTopic t) { return static_cast<std::size_t>(t); }
  DebugFile* file_ = nullptr;
  std::bitset<kSolveTopicCount> topics_;
};

// The topics of the Debug Print Options dialog of the QLP and OLF solves: each box turns on the
// dumps its label names ("All" all of them).
SolveTrace qlpSolveTrace(DebugFile* file, const DebugSwitches& switches);

}  // namespace ovaro
