// One period of the simulated true economy.
//
// The true system differs from what a method believes in two ways: it runs on the true parameters
// thetatrue (which drift as a random walk, and with the policy-to-parameter effect also respond
// to the percentage change of the controls), and it is hit by the drawn system noise xsi; the
// methods see it only through the noisy observation y = H x + zeta. Sums are formed in the order
// written, so that two runs give the same bits.
#include "stoch/one_period.h"

#include <cmath>
#include <string>

#include "numeric/matrix_ops.h"
#include "solve/system_forms.h"

namespace ovaro {

namespace {

// Below this size a previous control is not divided by: its percentage change is taken as
// kUkPercentSubstitute instead, and the solve is told.
constexpr double kSmallControl = 1e-9;
constexpr double kUkPercentSubstitute = 99999.0;

// The two routines that compute a percentage change of the controls, as their warnings name them.
struct PercentWarning {
  const char* firstLine;  // "Warning!  In subr ... - division "
  const char* shortTail;  // the last line of the form without a run number
};

constexpr PercentWarning kThetaTrueWarning = {
    "Warning!  In subr CompThetaTrueOnePeriod - division ",
    "policy-to-param.  ukpercent set to 99999.0"};
constexpr PercentWarning kPolicyEffectWarning = {
    "Warning!  In subr CompPolicyParmEffect - division ",
    "policy-to-param. ukpercent set to 99999.0"};

// The debug-file text of one substituted percentage: inside a Monte Carlo run it names the
// method, the run, the period and the control; in a single solve only the routine.
std::string percentWarningText(const PercentWarning& w, const PeriodContext& ctx, int k, int i) {
  const std::string second = "by a very small number in ukpercent calculation for ";
  if (ctx.run == 0) {
    return "\r\n\r\n\r\n" + std::string(w.firstLine) + "\r\n" + second + "\r\n" + w.shortTail +
           "\r\n\r\n";
  }
  return "\r\n\r\n\r\n" + std::string(w.firstLine) + "\r\n" + second + "\r\n" +
         "policy-to-param with method " + ctx.method + "\r\n" + "in Monte Carlo run " +
         std::to_string(ctx.run) + "\r\n" + "at time period " + std::to_string(k) + "\r\n" +
         "for control variable " + std::to_string(i) + "\r\n" + "ukpercent set to 99999.0" + "\r\n";
}

// ukpercent_i = (uk_i - us_i(k-1)) / us_i(k-1), all 0 in period 0, which has no previous control.
// A previous control below kSmallControl in size gives the substitute, sets the solve's flag and
// writes the warning whenever the debug file is there. Returns 0 when that write failed.
int percentChange(const PercentWarning& w, PeriodContext& ctx, int m, int k, const Mat& uk,
                  const Mat& us, Mat& ukpercent, const SolveTrace& trace) {
  for (int i = 1; i <= m; ++i) {
    if (k == 0) {
      ukpercent(i, 1) = 0.0;
      continue;
    }
    const double previous = us(i, k - 1);
    if (std::fabs(previous) >= kSmallControl) {
      ukpercent(i, 1) = (uk(i, 1) - previous) / previous;
      continue;
    }
    ukpercent(i, 1) = kUkPercentSubstitute;
    ctx.divisionWarning = true;
    if (trace.active() && trace.file().write(percentWarningText(w, ctx, k, i)) == 0) return 0;
  }
  return 1;
}

// plc = N ukpercent and puc = diag(plc): the proportional response of each parameter.
void policyResponse(int np, int m, const Mat& npolicy, const Mat& ukpercent, Mat& plc, Mat& puc) {
  mmul(np, m, 1, npolicy, ukpercent, plc);
  mzero(np, np, puc);
  for (int i = 1; i <= np; ++i) puc(i, i) = plc(i, 1);
}

}  // namespace

// uk = G xk + g.
void CompUOnePeriod(int n, int m, const Mat& g, const Mat& glc, const Mat& xk, Mat& uk,
                    const PeriodContext& ctx, const SolveTrace& trace) {
  Mat gx = mat2(1, m, 1, 1);
  mmul(m, n, 1, g, xk, gx);
  madd(m, 1, gx, glc, uk);
  if (!trace.on(SolveTopic::StatesControlsIntermediate)) return;
  DebugFile& f = trace.file();
  const std::string in = " in CompUOnePeriod";
  const std::string inRule = ctx.hcfr ? " in CompUOnePeriod/HCFR" : in;
  f.dumpColumn("xk" + in, n, xk);
  f.dumpMatrix("g" + in, 1, m, 1, n, g);
  f.dumpColumn("glc" + in, m, glc);
  f.dumpColumn("gx" + inRule, m, gx);
  f.dumpColumn("uk" + inRule, m, uk);
}

// xk1 = ax + (bu + (ctrue + xsi)), y = H xk1 + zeta(k+1).
void CompXOnePeriod(const TrueEconomy& e, int k, const Mat& xk, const Mat& uk, Mat& xk1, Mat& y,
                    const PeriodContext& ctx, const SolveTrace& trace) {
  const int n = e.n, m = e.m, nt = e.nt, ny = e.ny;
  const Mat &atrue = e.atrue, &btrue = e.btrue, &ctruetv = e.ctruetv, &h = e.h;
  const Mat &xsis = e.xsis, &zetas = e.zetas;
  Mat ax = mat2(1, n, 1, 1), bu = mat2(1, n, 1, 1), ctrue = mat2(1, n, 1, 1);
  Mat xsi = mat2(1, n, 1, 1), cxsi = mat2(1, n, 1, 1), bucxsi = mat2(1, n, 1, 1);
  mmul(n, n, 1, atrue, xk, ax);
  mmul(n, m, 1, btrue, uk, bu);
  vcolget(n, k, ctruetv, ctrue);
  vcolget(n, k, xsis, xsi);
  madd(n, 1, ctrue, xsi, cxsi);
  madd(n, 1, bu, cxsi, bucxsi);
  madd(n, 1, ax, bucxsi, xk1);

  // The observation of period k+1.
  Mat zeta = mat2(1, ny, 1, 1), xhk1 = mat2(1, ny, 1, 1);
  vcolget(ny, k + 1, zetas, zeta);
  mmul(ny, n, 1, h, xk1, xhk1);
  madd(ny, 1, xhk1, zeta, y);

  if (!trace.on(SolveTopic::StatesControlsIntermediate)) return;
  DebugFile& f = trace.file();
  const std::string in = ctx.hcfr ? " in CompXOnePeriod/HCFR" : " in CompXOnePeriod";
  f.dumpColumn("ax" + in, n, ax);
  f.dumpColumn("bu" + in, n, bu);
  f.dumpColumn("ctrue" + in, n, ctrue);
  f.dumpColumn("xsi" + in, n, xsi);
  f.dumpColumn("xk1" + in, n, xk1);
  f.dumpMatrix("h" + in, 1, ny, 1, n, h);
  f.dumpMatrix("zetas" + in, 1, ny, 1, nt, zetas);
  f.dumpColumn("zeta" + in, ny, zeta);
  f.dumpColumn("xhk1" + in, ny, xhk1);
  f.dumpColumn("y" + in, ny, y);
}

LeadTerms makeLeadTerms(int n) {
  return {mat2(1, n, 1, 1), mat2(1, n, 1, 1), mat2(1, n, 1, 1), mat2(1, n, 1, 1)};
}

// dxesum = (D1 xe(k+1) + D2 xe(k+2)) + D3 xe(k+3); all three are formed whatever the lead, the
// matrices beyond it being zero.
void ExpectedLeadTerms(int n, int k, const Mat& d1, const Mat& d2, const Mat& d3, const Mat& xe,
                       LeadTerms& out) {
  Mat xek = mat2(1, n, 1, 1);
  vcolget(n, k + 1, xe, xek);
  mmul(n, n, 1, d1, xek, out.d1xek1);
  vcolget(n, k + 2, xe, xek);
  mmul(n, n, 1, d2, xek, out.d2xek2);
  vcolget(n, k + 3, xe, xek);
  mmul(n, n, 1, d3, xek, out.d3xek3);
  madd3(n, 1, out.d1xek1, out.d2xek2, out.d3xek3, out.dxesum);
}

// xk1 = ax + (bu + ((ctrue + dxesum) + xsi)), dxesum = D1 xe(k+1) + D2 xe(k+2) + D3 xe(k+3).
void CompXOnePeriodForw(const TrueEconomy& e, int k, const Mat& d1, const Mat& d2, const Mat& d3,
                        const Mat& xe, const Mat& xk, const Mat& uk, Mat& xk1, Mat& y,
                        const SolveTrace& trace) {
  const int n = e.n, m = e.m, nt = e.nt, ny = e.ny;
  const Mat &atrue = e.atrue, &btrue = e.btrue, &ctruetv = e.ctruetv, &h = e.h;
  const Mat &xsis = e.xsis, &zetas = e.zetas;
  Mat ax = mat2(1, n, 1, 1), bu = mat2(1, n, 1, 1), ctrue = mat2(1, n, 1, 1);
  Mat xsi = mat2(1, n, 1, 1);
  mmul(n, n, 1, atrue, xk, ax);
  mmul(n, m, 1, btrue, uk, bu);
  vcolget(n, k, ctruetv, ctrue);
  vcolget(n, k, xsis, xsi);

  LeadTerms lead = makeLeadTerms(n);
  ExpectedLeadTerms(n, k, d1, d2, d3, xe, lead);
  const Mat& d2xek2 = lead.d2xek2;
  const Mat& d3xek3 = lead.d3xek3;
  const Mat& dxesum = lead.dxesum;

  Mat cdxsi = mat2(1, n, 1, 1), bucdxsi = mat2(1, n, 1, 1);
  madd3(n, 1, ctrue, dxesum, xsi, cdxsi);
  madd(n, 1, bu, cdxsi, bucdxsi);
  madd(n, 1, ax, bucdxsi, xk1);

  Mat zeta = mat2(1, ny, 1, 1), xhk1 = mat2(1, ny, 1, 1);
  vcolget(ny, k + 1, zetas, zeta);
  mmul(ny, n, 1, h, xk1, xhk1);
  madd(ny, 1, xhk1, zeta, y);

  if (!trace.on(SolveTopic::StatesControlsIntermediate)) return;
  DebugFile& f = trace.file();
  const std::string in = " in CompXOnePeriodForw";
  f.dumpMatrix("ctruetv" + in, 1, n, 0, nt - 1, ctruetv);
  f.dumpColumn("ax" + in, n, ax);
  f.dumpColumn("bu" + in, n, bu);
  f.dumpColumn("ctrue" + in, n, ctrue);
  f.dumpColumn("xsi" + in, n, xsi);
  f.dumpColumn("d2xek2" + in, n, d2xek2);
  f.dumpColumn("d3xek3" + in, n, d3xek3);
  f.dumpColumn("dxesum" + in, n, dxesum);
  f.dumpColumn("xk1" + in, n, xk1);
  f.dumpMatrix("h" + in, 1, ny, 1, n, h);
  f.dumpMatrix("zetas" + in, 1, ny, 1, nt, zetas);
  f.dumpColumn("zeta" + in, ny, zeta);
  f.dumpColumn("xhk1" + in, ny, xhk1);
  f.dumpColumn("y" + in, ny, y);
}

// thetatrue(:, k+1) = thetak + puc thetak + eta with the policy effect, thetak + eta without.
// The filter's transition D is deliberately not applied: the true parameters are a random walk.
int CompThetaTrueOnePeriod(PeriodContext& ctx, const ParameterDrift& drift, int k, const Mat& uk,
                           const Mat& us, Mat& thetatrue, const SolveTrace& trace) {
  const int np = drift.np, m = drift.m, nt = drift.nt;
  const Mat &npolicy = drift.npolicy, &etas = drift.etas;
  const bool steps = trace.on(SolveTopic::TrueParametersIntermediate);
  const std::string in = " in CompThetaTrueOnePeriod";
  if (steps) {
    trace.file().dumpColumn("uk" + in, m, uk);
    trace.file().dumpMatrix("us" + in, 1, m, 0, nt - 1, us);
  }
  const bool policy = drift.policyToParam == 1;
  Mat ukpercent = mat2(1, m, 1, 1), plc = mat2(1, np, 1, 1), puc = mat2(1, np, 1, np);
  if (policy) {
    if (percentChange(kThetaTrueWarning, ctx, m, k, uk, us, ukpercent, trace) == 0) return 0;
    policyResponse(np, m, npolicy, ukpercent, plc, puc);
  }

  Mat eta = mat2(1, np, 1, 1), thetak = mat2(1, np, 1, 1), thetak1 = mat2(1, np, 1, 1);
  Mat pucthetak = mat2(1, np, 1, 1);
  vcolget(np, k, etas, eta);
  vcolget(np, k, thetatrue, thetak);
  if (policy) {
    mmul(np, np, 1, puc, thetak, pucthetak);
    madd3(np, 1, thetak, pucthetak, eta, thetak1);
  } else {
    madd(np, 1, thetak, eta, thetak1);
  }
  vcolset(np, k + 1, thetak1, thetatrue);

  if (steps) {
    DebugFile& f = trace.file();
    if (policy) {
      f.dumpColumn("ukpercent" + in, m, ukpercent);
      f.dumpMatrix("npolicyparm" + in, 1, np, 1, m, npolicy);
      f.dumpColumn("plc" + in, np, plc);
      f.dumpMatrix("puc" + in, 1, np, 1, np, puc);
    }
    f.dumpColumn("eta" + in, np, eta);
    f.dumpColumn("thetak" + in, np, thetak);
    if (policy) f.dumpColumn("pucthetak" + in, np, pucthetak);
    f.dumpColumn("thetak1" + in, np, thetak1);
  }
  if (trace.on(SolveTopic::TrueParametersFinal)) {
    trace.file().dumpMatrix("thetatrue" + in, 1, np, 0, nt, thetatrue);
  }
  return trace.ok();
}

int TrueParameterEvolution(PeriodContext& ctx, const ParameterDrift& drift, int k, int n,
                           const IMat& ithn, const Mat& uk, const Mat& us, Mat& thetatrue,
                           Mat& atrue, Mat& btrue, Mat& ctruetv, Prompter& prompter,
                           const SolveTrace& trace) {
  if (CompThetaTrueOnePeriod(ctx, drift, k, uk, us, thetatrue, trace) == 0) return 0;
  const int np = drift.np, m = drift.m, nt = drift.nt;
  // The true system of the next period is built from the parameters just drawn.
  Mat theta = mat2(1, np, 1, 1);
  vcolget(np, k + 1, thetatrue, theta);
  MapThetaToAbc(n, m, nt, np, ithn, theta, atrue, btrue, ctruetv, prompter, trace);
  if (!trace.on(SolveTopic::TrueParametersFinal)) return 1;
  DebugFile& f = trace.file();
  f.dumpMatrix("atrue in TrueParameterEvolution", 1, n, 1, n, atrue);
  f.dumpMatrix("btrue in TrueParameterEvolution", 1, n, 1, m, btrue);
  f.dumpMatrix("ctruetv in TrueParameterEvolution", 1, n, 0, nt - 1, ctruetv);
  return trace.ok();
}

// thk1k1 = thk1k1 + puc thetatrue(:, k): OLIN knows how its controls move the parameters and
// adds that effect, taken from the true parameters, to what the filter learned.
int CompPolicyParmEffect(PeriodContext& ctx, const ParameterDrift& drift, int k, const Mat& uk,
                         const Mat& us, const Mat& thetatrue, Mat& thk1k1,
                         const SolveTrace& trace) {
  const int np = drift.np, m = drift.m, nt = drift.nt;
  const Mat& npolicy = drift.npolicy;
  Mat estimate = mat2(1, np, 1, 1);
  mmov(np, 1, thk1k1, estimate);
  Mat ukpercent = mat2(1, m, 1, 1), plc = mat2(1, np, 1, 1), puc = mat2(1, np, 1, np);
  if (percentChange(kPolicyEffectWarning, ctx, m, k, uk, us, ukpercent, trace) == 0) return 0;
  policyResponse(np, m, npolicy, ukpercent, plc, puc);
  Mat thktrue = mat2(1, np, 1, 1), pucthetak = mat2(1, np, 1, 1);
  vcolget(np, k, thetatrue, thktrue);
  mmul(np, np, 1, puc, thktrue, pucthetak);
  madd(np, 1, estimate, pucthetak, thk1k1);

  const bool steps = trace.on(SolveTopic::TrueParametersIntermediate);
  const bool finals = trace.on(SolveTopic::TrueParametersFinal);
  if (!steps && !finals) return 1;
  DebugFile& f = trace.file();
  const std::string in = " in CompPolicyParmEffect";
  if (steps) {
    f.dumpColumn("uk" + in, m, uk);
    f.dumpColumn("ukpercent" + in, m, ukpercent);
    f.dumpMatrix("npolicyparm" + in, 1, np, 1, m, npolicy);
    f.dumpColumn("plc" + in, np, plc);
    f.dumpMatrix("puc" + in, 1, np, 1, np, puc);
  }
  if (finals) f.dumpMatrix("thetatrue" + in, 1, np, 0, nt, thetatrue);
  if (steps) {
    f.dumpColumn("thktrue" + in, np, thktrue);
    f.dumpColumn("pucthetak" + in, np, pucthetak);
    f.dumpColumn("thk1k1" + in, np, thk1k1);
  }
  return trace.ok();
}

}  // namespace ovaro
