// The deterministic quadratic-linear problem: the system and criterion inputs, the backward
// Riccati recursion that gives the feedback rule u(t) = G(t) x(t) + g(t), the forward pass that
// applies it, and the criterion summed along the path.
//
// Horizon: nt is the solvers' period count, one less than the Model's count of period columns.
// States are held for periods 0..nt, controls for 0..nt-1. Column vectors are n x 1 matrices.
// The criterion weights are diagonal and held as one column per period: ws (n x 0..nt, column nt
// the terminal weight) and lams (m x 0..nt-1).
//
// The same building blocks serve the OLF solve, the forward-variable iteration and the Monte
// Carlo methods, which is why they take their sizes and arrays explicitly.
#pragma once

#include <optional>

#include "model/model.h"
#include "numeric/arrays.h"
#include "numeric/prompter.h"
#include "solve/trace.h"

namespace ovaro {

// The regular system form of one solve.
struct SystemArrays {
  int n = 0, m = 0, l = 0, nt = 0;
  int forward = 0;  // 1 when the model has forward variables
  int maxLead = 0;  // 1, 2 or 3 with forward variables
  Mat a;            // n x n
  Mat b;            // n x m
  Mat capc;         // n x l
  Mat cs;           // n x 0..nt-1: capC z(t)
  Mat d1, d2, d3;   // n x n lead coefficients, zero when unused
};

// The tracking criterion of one solve.
struct CriterionArrays {
  int tracking = 1;  // 0 for the "Quadratic Form" criterion
  Mat f;             // n x m cross weight, zero
  Mat ws;            // n x 0..nt
  Mat lams;          // m x 0..nt-1
  Mat xtws;          // n x 0..nt desired states
  Mat utws;          // m x 0..nt-1 desired controls
  Mat wlcs;          // n x 0..nt, -ws xtws
  Mat lamlcs;        // m x 0..nt-1, -lams utws
  Mat x0;            // n x 1
};

// The feedback rule of every period: gs(t, i, j) is G(t)(i, j), glcs(i, t) is g(t)(i).
struct FeedbackRule {
  Mat3 gs;   // 0..nt-1 x 1..m x 1..n
  Mat glcs;  // m x 0..nt-1
};
FeedbackRule makeFeedbackRule(int n, int m, int nt);
// G(t) as an m x n matrix.
Mat feedbackAt(const FeedbackRule& rule, int t, int m, int n);

// Whether the Model can be solved at all: sizes in range and every matrix its forms call for
// present. Says what is missing and returns false otherwise.
bool checkSolveInputs(const Model& model, Prompter& prompter);

// System input: A, B, capC (converted from the Pindyck form when the model has it), the lead
// matrices, and cs(:, t) = capC z(t). The Model must have passed checkSolveInputs.
int systemInput(const Model& model, const SolveTrace& trace, SystemArrays& sys);
// Criterion input: weights, desired paths, x0 and, in the tracking form, the linear terms.
int criterionInput(const Model& model, const SolveTrace& trace, CriterionArrays& crit);

// Scratch of one Riccati step (K c + p, psi thetainv, psi' and (psi thetainv) psi', the quadratic
// forms' products and the inversion's factors), made once per recursion so that its steps
// allocate nothing.
struct RiccatiScratch {
  RiccatiScratch(int n, int m);
  Mat q, psithinv, psit, psipsi;
  QuadFormWork quadA, quadB;
  MinvWork inverse;
};

// The running values of one backward recursion: K and p of the period just solved, the step's
// quadratic forms and linear terms, its rule, and the step's scratch.
struct RiccatiWork {
  Mat k, p, phi, psi, theta, philc, thetalc, thetainv, g, glc;
  RiccatiScratch scratch;
  RiccatiWork(int n, int m);
  // The terminal values K = diag(ws(:, nt)), p = wlcs(:, nt).
  void terminal(int n, int nt, const Mat& ws, const Mat& wlcs);
};

// One Riccati step's quadratic forms for period t, with w.k the K of period t+1:
// phi = A'KA + diag(ws(:, t)), theta = B'KB + diag(lams(:, t)), psi = A'KB + F.
int comphi(int n, int m, int nt, int t, const Mat& a, const Mat& b, const CriterionArrays& crit,
           RiccatiWork& w, const SolveTrace& trace);
// Its linear terms, with w.p the p of period t+1: q = K c(t) + p, philc = A'q + wlcs(:, t),
// thetalc = B'q + lamlcs(:, t).
void comphilc(int n, int m, int t, const Mat& a, const Mat& b, const Mat& cs,
              const CriterionArrays& crit, RiccatiWork& w);
// The step from period t+1 to t: thetainv = theta^-1, K = phi - (psi thetainv) psi',
// p = philc - (psi thetainv) thetalc, G = -(thetainv psi'), g = -(thetainv thetalc).
void riccatiUpdate(int n, int m, RiccatiWork& w);
// Keeps G and g as the rule of period t.
void storeRule(int n, int m, int t, const Mat& g, const Mat& glc, FeedbackRule& rule);

// Copies the rule of the last step solved out of the running values (dumped as "g" and "glc"):
// what a per-period re-solve returns.
int takeRule(int n, int m, const RiccatiWork& w, Mat& g, Mat& glc, const SolveTrace& trace);

// The backward recursion over periods nt-1..0 from the terminal K = diag(ws(:, nt)),
// p = wlcs(:, nt). Returns 0 when a debug write failed.
int riccati(const SystemArrays& sys, const CriterionArrays& crit, FeedbackRule& rule,
            const SolveTrace& trace);

// u = G(t) x + g(t). Returns 0 when a debug write failed (the file is then closed).
int compu(int n, int m, int nt, int t, const FeedbackRule& rule, const Mat& x, Mat& u,
          const SolveTrace& trace);
// x next = A x + (B u + c(t)).
int compx(int n, int m, int nt, int t, const Mat& a, const Mat& b, const Mat& cs, const Mat& x,
          const Mat& u, Mat& xnext, const SolveTrace& trace);
// u = G x + g with the Model's constant handcrafted rule (G m x n, g m x 1).
int compuhcfr(int n, int m, int nt, const Mat& g, const Mat& glc, const Mat& x, Mat& u,
              const SolveTrace& trace);

// The forward pass from x0: xs (n x 0..nt at least), us (m x 0..nt-1).
int forwardPass(const SystemArrays& sys, const Mat& x0, const FeedbackRule& rule, Mat& xs, Mat& us,
                const SolveTrace& trace);

// The forward pass, its paths dumped under "x and u", and the criterion (dumped as "criterion").
int pathsAndCriterion(const SystemArrays& sys, const CriterionArrays& crit,
                      const FeedbackRule& rule, Mat& xs, Mat& us, double& criterion,
                      const SolveTrace& trace);

// The criterion in the order the solves have always summed it (see the definition).
double sumc(int n, int m, int nt, const CriterionArrays& crit, const Mat& xs, const Mat& us,
            const SolveTrace& trace);
// The tracking criterion of a realised path, each period's part summed first.
double SumTracking(int n, int m, int nt, const CriterionArrays& crit, const Mat& xs, const Mat& us,
                   const SolveTrace& trace);
// The criterion of a path a Monte Carlo run realised: SumTracking for a tracking criterion,
// otherwise sumc.
double realisedCriterion(int n, int m, int nt, const CriterionArrays& crit, const Mat& xs,
                         const Mat& us);

// The per-period re-solve of the certainty-equivalence methods: the recursion from the terminal
// values down to period k with the current estimates a, b, cs and the criterion's weights,
// returning only the rule of period k (G m x n, g m x 1). `w` is the caller's scratch for n
// states and m controls, made once per run so that the re-solves allocate nothing.
int CompKpgCe(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
              const CriterionArrays& crit, RiccatiWork& w, Mat& g, Mat& glc,
              const SolveTrace& trace);
// The same for forward-variable models: the rule of every period k..nt-1 into `rule`.
int CompKpgCeForw(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
                  const CriterionArrays& crit, RiccatiWork& w, FeedbackRule& rule,
                  const SolveTrace& trace);

}  // namespace ovaro
