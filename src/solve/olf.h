// Open loop feedback without updating: the QLP recursion with every product that holds A or B
// replaced by its expectation under the uncertainty of the parameters theta, so that the rule
// allows for the parameter covariance SITT. A parameter sits in A, B or c where the occupancy
// tables (napar n x n, nbpar n x m, ncpar n x 1, built by ithnCheck) say.
#pragma once

#include "numeric/arrays.h"
#include "numeric/prompter.h"
#include "solve/qlp.h"
#include "solve/trace.h"

namespace ovaro {

// The caution experiment: one element of the parameter covariance perturbed in one period of the
// recursion. `period` counts from 1: period 1 perturbs the step of period 0. The settings are
// taken as valid indices.
struct CautionExperiment {
  int on = 0;  // 1 for on, 0 for off
  int row = 1;
  int column = 1;
  double value = 0.0;
  int period = 1;
};

// Occupancy tables and covariance of one OLF solve.
struct UncertainParameters {
  int np = 0;
  IMat napar, nbpar, ncpar;
  Mat sitt;  // np x np
};

// The running values of the expected recursion (those of the QLP recursion: K, p, the step's
// forms, its rule) and the scratch of its expected products, made once per solve or per Monte
// Carlo run so that the steps allocate nothing.
struct OlfWork : RiccatiWork {
  OlfWork(int n, int m);
  Mat ka, kb, kc, c;  // K A, K B, K c and c = cs(:, t)
  Mat eaka, ebkb, eakb, atkc, atp, atkcp, btkc, btp, btkcp;
};

// out(i, j) = E[X'KY](i, j) = (X'(KY))(i, j) plus SITT(kx, ky) K(r, s) for every row r of X and s
// of Y whose elements (r, i) and (s, j) are both uncertain parameters (kx, ky their numbers in
// the occupancy tables). `ky` is the product K Y, formed by the caller once for all the forms
// that share it. X is rows x colsX, Y rows x colsY, K rows x rows.
void expectedQuadForm(int rows, int colsX, int colsY, const Mat& x, const Mat& ky, const IMat& occX,
                      const IMat& occY, const Mat& sitt, const Mat& k, Mat& out);

// With K = w.k of period t+1: w.phi = E[A'KA] + diag(ws(:, t)), w.theta = E[B'KB] +
// diag(lams(:, t)), w.psi = E[A'KB] + F.
int comphiolf(int n, int m, int nt, int t, const Mat& a, const Mat& b, const CriterionArrays& crit,
              const UncertainParameters& par, OlfWork& w, const SolveTrace& trace);
// With K = w.k and p = w.p of period t+1 and c = cs(:, t): w.philc = (E[A'Kc] + A'p) +
// wlcs(:, t), w.thetalc = (E[B'Kc] + B'p) + lamlcs(:, t).
int comphilcolf(int n, int m, int t, const Mat& a, const Mat& b, const Mat& cs,
                const CriterionArrays& crit, const UncertainParameters& par, OlfWork& w,
                const SolveTrace& trace);

// The OLF solve proper: backward recursion with the expected quadratic forms (and the caution
// experiment), then the forward pass on the nominal system from x0 and the criterion. `sitt` may
// be perturbed for one step and is put back. Returns 0 when a debug write failed.
int olf(const SystemArrays& sys, const CriterionArrays& crit, UncertainParameters& par,
        const CautionExperiment& caution, FeedbackRule& rule, Mat& xs, Mat& us, double& criterion,
        Prompter& prompter, const SolveTrace& trace);

// The per-period re-solve of the Monte Carlo OLF methods: the recursion from the terminal values
// down to period k with the system and covariance passed, returning the rule of period k. `w` is
// the caller's scratch for n states and m controls, made once per run.
int CompKpg(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
            const CriterionArrays& crit, const UncertainParameters& par, OlfWork& w, Mat& g,
            Mat& glc, const SolveTrace& trace);
// The same for forward-variable models, keeping the rule of every period k..nt-1.
int CompKpgOlfForw(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
                   const CriterionArrays& crit, const UncertainParameters& par, OlfWork& w,
                   FeedbackRule& rule, const SolveTrace& trace);

// The stochastic matrices that only measurement-error models enter, at their neutral values for
// the OLF runs: D and the diagonal of H are ones, everything else zero.
struct VeldDefaults {
  Mat d, h, sixx0, sitx0, r, gam, zetas, etas, x0dev;
};
VeldDefaults InVeldDefaultsForOlf(int n, int nt, int ny, int np, const SolveTrace& trace);

}  // namespace ovaro
