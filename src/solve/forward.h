// Models with forward variables: the constant term of period t carries expected future states,
// c(t) + D1 x(t+1) + D2 x(t+2) + D3 x(t+3) up to the maximum lead. The solvers take the lead
// states from a previous solution as known constants and iterate until the controls stop
// changing.
#pragma once

#include <functional>
#include <string>

#include "numeric/arrays.h"
#include "numeric/prompter.h"
#include "solve/qlp.h"
#include "solve/trace.h"

namespace ovaro {

// Method names of the convergence messages, indexed as the solves number them.
inline constexpr const char* kForwardMethodNames[] = {"QLP",  "OLFwo", "HCFR", "CE",
                                                      "CEWO", "OLF",   "OLIN"};

// What one forward-variable iteration needs to know besides its arrays: the Model's iteration
// limit and tolerance, where the iteration runs (an interactive solve or a Monte Carlo run of
// some method), and the not-converged flag, which the solve clears and the convergence test sets.
struct ForwardContext {
  int iterlim = 0;
  double tolerance = 0.0;
  bool monteCarlo = false;
  std::string method = "QLP";
  bool notConverged = false;
};

// The message of an interactive solve whose loop reached its limit.
inline constexpr const char* kForwardNotConverged =
    "Convergence in the forward variable loop\t\t\t\t\r failed. Use Solve:QLP:Print \t\t\t\t\r "
    "with print for forward variables\t\t\t\t\r to track down the problem.";

// Adds the lead terms to cs(:, t) for t = t0..nt-1, taking lead states beyond nt as the terminal
// state xs(:, nt). Does nothing when `forwardFlag` is 0. xs must hold columns 0..nt + maxLead.
int forward(int n, int m, int nt, int t0, int forwardFlag, int maxLead, Mat& cs, const Mat& d1,
            const Mat& d2, const Mat& d3, const Mat& xs, const SolveTrace& trace);

// eps = the sum of squares of usiter - usOld over the controls and periods t0..nt-1 (0 in the
// first iteration, which has nothing to compare with); then usOld = usiter. At the iteration
// limit with eps above the tolerance it sets the not-converged flag and writes the warning to
// the debug file. Returns 0 when a debug write failed, else 1.
int CheckConvergence(int run, int iteration, int t0, int m, int nt, const Mat& usiter, Mat& usOld,
                     double& eps, ForwardContext& ctx, const SolveTrace& trace);

// The iteration of the QLP and OLF solves, run after the first full solve: `solveOnce` re-solves
// with the adjusted sys.cs (recursion, forward pass and criterion) and leaves its paths in xs and
// us. cs is restored after every pass. Shows the convergence warning when the limit was reached
// without convergence. Returns 0 when a debug write failed.
int forwardVariableLoop(SystemArrays& sys, Mat& xs, const Mat& us, ForwardContext& ctx,
                        Prompter& prompter, const SolveTrace& trace,
                        const std::function<int()>& solveOnce);

// The first guess of a stochastic run's iteration at period t0: the desired path (at t0 = 0 or
// after a failure to converge) or the path kept from the previous period. xsiter holds columns
// 0..nt+3; columns beyond nt are the terminal state.
int InitializeXsiterUsiter(int t0, int n, int m, int nt, int maxLead, const Mat& xtws,
                           const Mat& us, const Mat& xsiterStore, bool notConverged, Mat& xsiter,
                           Mat& usiter, const SolveTrace& trace);

// The economy a stochastic method projects in its forward-variable iteration: the period's
// estimated A and B, the constants cs (n x 0..nt-1), the lead coefficients and the measurement
// matrix H (ny x n).
struct ProjectionSystem {
  int n, m, nt, ny;
  const Mat &a, &b, &cs, &d1, &d2, &d3, &h;
};

// One iteration of a stochastic method at period t0: applies the rule from the state estimate x
// to the end of the horizon with the lead terms taken from xsiter, and records the path in
// xsiter and usiter. csOut receives the constant terms used. `iterlim` chooses which dumps the
// "last two iterations" option shows.
int ProjectionForwVar(int iteration, int iterlim, int t0, const ProjectionSystem& sys,
                      const FeedbackRule& rule, const Mat& x, Mat& xsiter, Mat& usiter, Mat& csOut,
                      const SolveTrace& trace);

// x next = A x + (B u + (c(t) + (D1 xsiter(t+1) + D2 xsiter(t+2) + D3 xsiter(t+3)))),
// y = H x next.
void CompXForw(const ProjectionSystem& sys, int t, const Mat& xsiter, const Mat& x, const Mat& u,
               Mat& xnext, Mat& y);

}  // namespace ovaro
