// The random terms of the stochastic runs: two seeded uniform generators, the standard normal built
// on them, multivariate normal draws through a Cholesky factor, and the per-run generation of the
// controller's initial estimates and of the noise of every period.
//
// The generator state belongs to the workbench (RandomState) and is never reset by a solve, so
// two solves in a row continue one stream. Every draw happens in a fixed order, which fixes which
// uniform numbers each term consumes.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "io/debug_file.h"
#include "model/model.h"
#include "numeric/arrays.h"
#include "numeric/prompter.h"
#include "solve/trace.h"

namespace ovaro {

struct RandomState {
  float quarnsSeed =
      0.5f;         // the uniform generator in use; "Floating Point Seed for Quarns' Method"
  int vxSeed = 27;  // "Integer Seed for VX Method", passed along but used by no draw
  // The polar method makes normals in pairs; the second waits here for the next call.
  int spareFlag = 0;
  double spare = 0.0;
  // ran0: shuffle table 1..98, the last integer taken, whether the table is filled, and the
  // 32-bit state of its integer generator.
  std::array<double, 99> table{};
  double y = 0.0;
  bool tableFilled = false;
  std::uint32_t intState = 0;
  // The seed dialog's texts, shown again when it reopens.
  std::string vxSeedText = "27";
  std::string quarnsSeedText = "0.5";
};

// One Quarns step from the float state s: k = trunc(s x 566927), r = (k x 3612 + 5701) mod 566927,
// u = (r + 0.5) / 566927.
double quarnsStep(float s);
// The next uniform: the step from the stored seed, which then holds u rounded to float; the draw
// itself uses the unrounded u.
double quarnsUniform(RandomState& state);
// A standard normal by the polar method, with the spare cache.
double standardNormal(RandomState& state);
// The shuffle generator of the VX method (no solver calls it). Shows "Error in ran0." under
// "ran0" for an index out of range and goes on.
double ran0(RandomState& state, int seed, Prompter& prompter);

// evector (k x 1) = k successive standard normals ("evector in NormalZeroOneVec").
void NormalZeroOneVec(RandomState& state, int k, int seed, Mat& evector, const SolveTrace& trace);
// lmat = the lower-triangular factor of a (k x k); a is worked in place and restored on every
// path. A first element below eps, or a later diagonal below eps, gives its message (title
// "Cholesky") and lmat = 0.
void Cholesky(int k, Mat& a, Mat& lmat, double eps, Prompter& prompter, const SolveTrace& trace);
// ranvec = mu + L e with L the factor of sigma and e standard normal. sigma is left unchanged.
void NormalMuSigma(RandomState& state, int k, int seed, const Mat& mu, Mat& sigma, Mat& ranvec,
                   double eps, Prompter& prompter, const SolveTrace& trace);

// The random terms of one run.
struct RandomTerms {
  Mat x0random;     // n x 1: the initial state estimate
  Mat thetarandom;  // np x 1: the initial parameter estimate
  Mat xsis;         // n x 0..nt-1: system noise
  Mat zetas;        // ny x 1..nt: measurement noise
  Mat etas;         // np x 0..nt-1: noise of the parameter transition
};
RandomTerms makeRandomTerms(int n, int nt, int np, int ny);

// What the draws are made from: sizes (nt is the solvers' horizon), means and covariances, the
// Model's switches of the "Source of Random Terms" dialog, and the machine epsilon.
struct RandomSources {
  int n = 0, nt = 0, np = 0, ny = 0;
  Mat theta0;  // np x 1
  Mat sitt0;   // np x np
  Mat q;       // n x n
  Mat x0;      // n x 1
  Mat sixx0;   // n x n
  Mat r;       // ny x ny
  Mat gam;     // np x np
  RandomSwitches switches;
  double eps = 0.0;
};

// All random terms of one run, in the fixed order: xsis, zetas, etas (drawn and thrown away when
// switched off), thetarandom, x0random. The covariance warnings have the title "MonteCarlo".
void MonteCarlo(RandomState& state, RandomSources& src, RandomTerms& terms, Prompter& prompter,
                const SolveTrace& trace);
// The reduced form that draws only xsis ("System Equations" decides; zero otherwise).
void MonteCarloXsis(RandomState& state, RandomSources& src, Mat& xsis, Prompter& prompter,
                    const SolveTrace& trace);
// The reduced form that draws only thetarandom (theta0 when "Uncertain Parameters" is off).
void MonteCarloTheta(RandomState& state, RandomSources& src, Mat& thetarandom, Prompter& prompter,
                     const SolveTrace& trace);

// Sums over the runs of one solve, zeroed by makeRandomAccumulators.
struct RandomAccumulators {
  Mat thetaSum;    // np x 1: sum of thetarandom
  Mat xsisSum;     // n x 1: sum over runs and periods of xsis
  Mat thetaOuter;  // np x np: sum of thetarandom thetarandom'
  Mat xsis0Outer;  // n x n: sum of xsis(0) xsis(0)'
};
RandomAccumulators makeRandomAccumulators(int n, int np);
// MonteCarlo, then the run's terms added to the accumulators. Returns 0.
int GenerateRandomTerms(RandomState& state, RandomSources& src, RandomTerms& terms,
                        RandomAccumulators& acc, Prompter& prompter, const SolveTrace& trace);

// The choice of source made before the run loop: read-in terms from the Model (theta0 + TH0DEV,
// x0 + X0DEV, XSIS, ZETAS, ETAS) when the source is "Read In", then thetarandom = theta0 or
// TH0DIFF when "Uncertain Parameters" is off, and the warning (title "Warning !") when both
// initial-parameter choices are set. `terms` must be sized by makeRandomTerms.
void chooseRandomSource(const Model& model, const RandomSources& src, RandomTerms& terms,
                        Prompter& prompter, const SolveTrace& trace);

// The seed lines at the head of a Monte Carlo debug file.
int writeSeedLines(DebugFile& file, const RandomState& state);

// The seed dialog's OK: the integer text as a decimal integer into the VX seed, the float text as
// a decimal number into the Quarns seed (as a float); both texts kept (at most 8 characters).
void applySeedTexts(RandomState& state, std::string vxText, std::string quarnsText);

}  // namespace ovaro
