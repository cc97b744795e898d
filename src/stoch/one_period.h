// One period of the simulated true economy inside a Monte Carlo run: the control from the
// current rule, the true state advanced with the true parameters and the drawn noise, the noisy
// observation, and the true parameters' own evolution (a random walk, plus the policy-to-parameter
// effect when the model has it).
#pragma once

#include <string>

#include "numeric/arrays.h"
#include "numeric/prompter.h"
#include "solve/trace.h"

namespace ovaro {

// Where a one-period step runs, for its debug labels and warnings: inside a Monte Carlo run of a
// method (run >= 1) or in a single solve (run 0). `hcfr` marks the HCFR runs, whose labels end in
// "/HCFR". A division by a very small previous control sets `divisionWarning`.
struct PeriodContext {
  int run = 0;
  std::string method = "QLP";
  bool hcfr = false;
  bool divisionWarning = false;
};

// uk = G xk + g.
void CompUOnePeriod(int n, int m, const Mat& g, const Mat& glc, const Mat& xk, Mat& uk,
                    const PeriodContext& ctx, const SolveTrace& trace);
// The true economy of a run as one period sees it: A, B and the time-varying c (n x 0..nt-1) at
// the current true parameters, the measurement matrix H (ny x n), and the run's drawn system noise
// xsis (n x 0..nt-1) and measurement noise zetas (ny x 1..nt).
struct TrueEconomy {
  int n, m, nt, ny;
  const Mat &atrue, &btrue, &ctruetv, &h, &xsis, &zetas;
};

// xk1 = ax + (bu + (ctrue + xsi)), y = H xk1 + zetas(:, k+1).
void CompXOnePeriod(const TrueEconomy& e, int k, const Mat& xk, const Mat& uk, Mat& xk1, Mat& y,
                    const PeriodContext& ctx, const SolveTrace& trace);
// The lead terms of period k in a forward-looking economy, from the expected path xe (which must
// hold columns k+1..k+3): the three products and dxesum = D1 xe(k+1) + D2 xe(k+2) + D3 xe(k+3).
// The true economy and the filter's prediction both take them from here, so that the filter
// predicts with the equation that generates the data.
struct LeadTerms {
  Mat d1xek1, d2xek2, d3xek3, dxesum;  // n x 1 each
};
LeadTerms makeLeadTerms(int n);
void ExpectedLeadTerms(int n, int k, const Mat& d1, const Mat& d2, const Mat& d3, const Mat& xe,
                       LeadTerms& out);

// The same with the lead terms D1 xe(k+1) + D2 xe(k+2) + D3 xe(k+3) of the expected path xe
// (which must hold columns k+1..k+3). Its labels are the same for every method.
void CompXOnePeriodForw(const TrueEconomy& e, int k, const Mat& d1, const Mat& d2, const Mat& d3,
                        const Mat& xe, const Mat& xk, const Mat& uk, Mat& xk1, Mat& y,
                        const SolveTrace& trace);

// How the true parameters move: np parameters, m controls, horizon nt, the drawn parameter noise
// etas (np x 0..nt-1) and, with the policy-to-parameter effect (`policyToParam` 1), the response
// N (np x m) of the parameters to the percentage change of the controls; without it N is not read.
struct ParameterDrift {
  int np, m, nt, policyToParam;
  const Mat &npolicy, &etas;
};

// thetatrue(:, k+1) from thetatrue(:, k), the parameter noise and, with the policy effect, the
// percentage change of the controls uk against us(:, k-1). A previous control below 1e-9 in size
// gives a percentage of 99999.0, sets ctx.divisionWarning and, whenever the debug file is there,
// writes the warning to it. Returns 0 when a debug write failed (a failed warning stops the
// routine before thetatrue is written).
int CompThetaTrueOnePeriod(PeriodContext& ctx, const ParameterDrift& drift, int k, const Mat& uk,
                           const Mat& us, Mat& thetatrue, const SolveTrace& trace);
// CompThetaTrueOnePeriod, then atrue, btrue, ctruetv (n states) built from thetatrue(:, k+1) by
// MapThetaToAbc with ITHN (np x 3).
int TrueParameterEvolution(PeriodContext& ctx, const ParameterDrift& drift, int k, int n,
                           const IMat& ithn, const Mat& uk, const Mat& us, Mat& thetatrue,
                           Mat& atrue, Mat& btrue, Mat& ctruetv, Prompter& prompter,
                           const SolveTrace& trace);
// OLIN: thk1k1 = thk1k1 + puc thetatrue(:, k), the known policy effect added to the estimate.
int CompPolicyParmEffect(PeriodContext& ctx, const ParameterDrift& drift, int k, const Mat& uk,
                         const Mat& us, const Mat& thetatrue, Mat& thk1k1, const SolveTrace& trace);

}  // namespace ovaro
