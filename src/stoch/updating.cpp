#include "stoch/updating.h"

#include <cstdio>
#include <string>

#include "io/number_format.h"
#include "model/options.h"
#include "numeric/matrix_ops.h"
#include "solve/model_input.h"
#include "solve/qlp.h"
#include "stoch/compare.h"
#include "stoch/one_period.h"
#include "stoch/run_trace.h"

namespace ovaro {

namespace {

// One run: the rule applied to the known state, the Model's own system, the drawn noise.
int SolveStochWoUpHcfr(const SystemArrays& sys, const Mat& x0, const Mat& g, const Mat& glc,
                       const Mat& xsis, Mat& xs, Mat& us, PeriodContext& ctx,
                       const SolveTrace& trace) {
  const int n = sys.n, m = sys.m, nt = sys.nt;
  Mat xk = mat2(1, n, 1, 1), uk = mat2(1, m, 1, 1), ax = mat2(1, n, 1, 1), bu = mat2(1, n, 1, 1);
  mmov(n, 1, x0, xk);
  vcolset(n, 0, x0, xs);
  for (int k = 0; k <= nt - 1; ++k) {
    if (trace.on(SolveTopic::RunHeadings))
      trace.file().write(
          formatLabelled("\r\n\r\n%s%d", " SolveStochWoUpHcfr - major time loop   k = ", k));
    ctx.hcfr = true;
    CompUOnePeriod(n, m, g, glc, xk, uk, ctx, trace);
    ctx.hcfr = false;
    mmul(n, n, 1, sys.a, xk, ax);
    mmul(n, m, 1, sys.b, uk, bu);
    for (int i = 1; i <= n; ++i) xk(i, 1) = ax(i, 1) + (bu(i, 1) + (sys.cs(i, k) + xsis(i, k)));
    vcolset(n, k + 1, xk, xs);
    vcolset(m, k, uk, us);
  }
  if (trace.on(SolveTopic::StatesControlsFinal)) {
    trace.file().dumpMatrix("xs in SolveStochWoUpHcfr", 1, n, 0, nt, xs);
    trace.file().dumpMatrix("us in SolveStochWoUpHcfr", 1, m, 0, nt - 1, us);
  }
  return trace.ok();
}

}  // namespace

UpdatingResult maincompareWoUpdating(const Model& model, const UpdatingSettings& settings,
                                     RandomState& random, Prompter& prompter, Progress& progress) {
  UpdatingResult result;
  const int stoch = model.flags.stochTerms;
  if (stoch != opt::kAdditiveNoise && stoch != opt::kParameterUncertainty &&
      stoch != opt::kMeasurementError) {
    prompter.inform(
        "Warning: Need stochastic terms of stochastic \t\t   \r with addtive noise or "
        "greater for Solve:Stochastic w/o Updating.  \t\t   \r Use "
        "Solve:Deterministic instead.",
        "Warning!!", Icon::Exclamation);
    return result;
  }
  if (!checkSolveInputs(model, prompter)) return result;
  const int n = model.dims.n.value, m = model.dims.m.value, nt = solverPeriods(model);
  const int nmc = settings.runs ? *settings.runs : model.dims.nmc.value;
  result.n = n;
  result.m = m;
  result.nt = nt;
  DebugFile* file = settings.file;
  SolveTrace trace = monteCarloTrace(file, settings.debug.switches);
  if (file != nullptr) {
    writeDebugHeading(*file, " Debug Print File ", model);
    writeSeedLines(*file, random);
    if (file->failed()) return result;
  }
  SystemArrays sys;
  CriterionArrays crit;
  systemInput(model, trace, sys);
  criterionInput(model, trace, crit);
  const Mat g = readModelMatrix(model, MatrixId::G, m, 1, n);
  const Mat glc = readModelMatrix(model, MatrixId::g, m, 1, 1);
  RandomSources src;
  src.n = n;
  src.nt = nt;
  src.np = model.dims.np.value;
  src.ny = n;
  src.q = readModelMatrix(model, MatrixId::Q, n, 1, n);
  src.switches = model.randomSwitches;
  src.eps = settings.eps;
  Mat xsis = readModelMatrix(model, MatrixId::XSIS, n, 0, nt - 1);
  const bool generate = model.flags.randomSource != opt::kReadIn;
  const bool criterionWanted = settings.methods.ce || settings.methods.olf;

  result.xs = mat2(1, n, 0, nt);
  result.us = mat2(1, m, 0, nt - 1);
  result.xtws = crit.xtws;
  result.utws = crit.utws;
  PeriodContext ctx;
  ctx.method = "HCFR";
  progress.start(nmc);
  auto cancelled = [&] { return settings.cancel != nullptr && settings.cancel->load(); };
  int started = 0;
  for (int run = 1; run <= nmc && trace.ok() && !cancelled(); ++run) {
    started = run;
    trace = runTrace(file, settings.debug, run);
    progress.step();
    if (generate) MonteCarloXsis(random, src, xsis, prompter, trace);
    ctx.run = run;
    if (!settings.methods.hcfr) continue;
    SolveStochWoUpHcfr(sys, crit.x0, g, glc, xsis, result.xs, result.us, ctx, trace);
    if (!criterionWanted) {
      if (nmc == 1)
        prompter.inform("Solved with handcrafted feedback rule.", "HCFR", Icon::Information);
      continue;
    }
    if (trace.on(SolveTopic::RunHeadings))
      trace.file().write("\r\n\r\n Criterion values in HCFR case ");
    const double c = realisedCriterion(n, m, nt, crit, result.xs, result.us);
    if (trace.on(SolveTopic::StatesControlsFinal))
      trace.file().dumpScalar("criterion in SolveStochWoUpHcfrCrit", c);
    if (nmc < 2) {
      char buf[128];
      std::snprintf(buf, sizeof buf, "HCFR Criterion = %E", c);
      prompter.inform(buf, "HCFR Criterion", Icon::Information);
    }
    result.criteria.push_back(c);
    result.criterionSum += c;
  }
  progress.finish();
  if (started < nmc && cancelled()) {
    UpdatingResult none;
    none.cancelled = true;
    return none;
  }
  result.runs = nmc;
  result.status = trace.ok();
  return result;
}

}  // namespace ovaro
