#include "solve/drivers.h"

#include <string>

#include "model/options.h"
#include "numeric/matrix_ops.h"
#include "solve/forward.h"
#include "solve/model_input.h"
#include "solve/qlp.h"
#include "solve/system_forms.h"

namespace ovaro {

namespace {

// The state path array: with forward variables it reaches maxLead periods past the horizon, where
// the lead terms of the last periods look.
Mat stateArray(const SystemArrays& sys) {
  return mat2(1, sys.n, 0, sys.nt + (sys.forward ? sys.maxLead : 0));
}

Solution makeSolution(const char* method, const SystemArrays& sys, const CriterionArrays& crit,
                      const Mat& xs, const Mat& us, double criterion) {
  Solution s;
  s.method = method;
  s.n = sys.n;
  s.m = sys.m;
  s.nt = sys.nt;
  s.xs = mat2(1, sys.n, 0, sys.nt);
  s.us = mat2(1, sys.m, 0, sys.nt - 1);
  s.xtws = mat2(1, sys.n, 0, sys.nt);
  s.utws = mat2(1, sys.m, 0, sys.nt - 1);
  mmovsub(1, sys.n, 0, sys.nt, xs, s.xs);
  mmovsub(1, sys.m, 0, sys.nt - 1, us, s.us);
  mmovsub(1, sys.n, 0, sys.nt, crit.xtws, s.xtws);
  mmovsub(1, sys.m, 0, sys.nt - 1, crit.utws, s.utws);
  s.criterion = criterion;
  return s;
}

ForwardContext forwardContext(const Model& model, const char* method) {
  ForwardContext ctx;
  ctx.iterlim = model.dims.iterlim.value;
  ctx.tolerance = model.dims.tolerance;
  ctx.method = method;
  return ctx;
}

// Recursion, forward pass and criterion with the current cs.
int qlpOnce(const SystemArrays& sys, const CriterionArrays& crit, FeedbackRule& rule, Mat& xs,
            Mat& us, double& criterion, const SolveTrace& trace) {
  riccati(sys, crit, rule, trace);
  pathsAndCriterion(sys, crit, rule, xs, us, criterion, trace);
  return trace.ok();
}

bool requireUncertainInputs(const Model& model, Prompter& prompter) {
  if (model.dims.np.value < 1) return true;
  for (MatrixId id : {MatrixId::TH0, MatrixId::SITT0, MatrixId::ITHN}) {
    if (model.holds(id)) continue;
    const MatrixSpec& spec = matrixSpec(id);
    prompter.inform(std::string("The model holds no matrix ") + spec.name + " (" + spec.title +
                        "). Enter it under Data, then solve again.",
                    "Error", Icon::Stop);
    return false;
  }
  return true;
}

}  // namespace

std::optional<Solution> solveQlp(const Model& model, Prompter& prompter, const SolveTrace& trace) {
  if (!checkSolveInputs(model, prompter)) return std::nullopt;
  if (trace.active()) trace.file().writeHeading("Debug File for QLP ");
  SystemArrays sys;
  CriterionArrays crit;
  systemInput(model, trace, sys);
  criterionInput(model, trace, crit);
  FeedbackRule rule = makeFeedbackRule(sys.n, sys.m, sys.nt);
  Mat xs = stateArray(sys);
  Mat us = mat2(1, sys.m, 0, sys.nt - 1);
  double criterion = 0.0;
  qlpOnce(sys, crit, rule, xs, us, criterion, trace);
  if (sys.forward) {
    ForwardContext ctx = forwardContext(model, "QLP");
    forwardVariableLoop(sys, xs, us, ctx, prompter, trace,
                        [&] { return qlpOnce(sys, crit, rule, xs, us, criterion, trace); });
  }
  // A trace that broke off ends the solve without a solution: the command asks here, once.
  if (!trace.ok()) return std::nullopt;
  return makeSolution("QLP", sys, crit, xs, us, criterion);
}

std::optional<Solution> solveOlf(const Model& model, const CautionExperiment& caution,
                                 Prompter& prompter, const SolveTrace& trace) {
  const int stoch = model.flags.stochTerms;
  if (stoch != opt::kParameterUncertainty && stoch != opt::kMeasurementError) {
    const char* tail = stoch == opt::kAdditiveNoise
                           ? "Solve: Compare solver instead and select 'Certainty Equivalence'."
                           : "Solve:QLP solver instead.";
    prompter.inform(std::string("Warning: Need stochastic terms specification \t\t   \r of "
                                "'uncertain parameters' or 'measurement error' in \t\t   \r order "
                                "to use the Solve: OLF solver.  Use the \t\t   \r ") +
                        tail,
                    "Warning!!", Icon::Exclamation);
    return std::nullopt;
  }
  if (!checkSolveInputs(model, prompter) || !requireUncertainInputs(model, prompter))
    return std::nullopt;
  const int n = model.dims.n.value;
  const int m = model.dims.m.value;
  const int np = model.dims.np.value;
  const int nt = solverPeriods(model);
  if (caution.on == 1 &&
      (caution.row < 1 || caution.row > np || caution.column < 1 || caution.column > np)) {
    prompter.inform("The caution experiment names element (" + std::to_string(caution.row) + ", " +
                        std::to_string(caution.column) + ") of SITT0, which has " +
                        std::to_string(np) +
                        " rows and columns. Correct it under Preferences: Caution Experiment.",
                    "Error", Icon::Stop);
    return std::nullopt;
  }
  if (trace.active()) writeDebugHeading(trace.file(), " Debug File for OLF ", model);
  SystemArrays sys;
  CriterionArrays crit;
  systemInput(model, trace, sys);
  criterionInput(model, trace, crit);

  const Mat theta0 = readModelMatrix(model, MatrixId::TH0, np, 1, 1);
  const Mat theta0diff = readModelMatrix(model, MatrixId::TH0DIFF, np, 1, 1);
  UncertainParameters par;
  par.np = np;
  par.sitt = readModelMatrix(model, MatrixId::SITT0, np, 1, np);
  const Mat q = readModelMatrix(model, MatrixId::Q, n, 1, n);
  const IMat ithn = readModelIntMatrix(model, MatrixId::ITHN, np, 3);
  const Mat xsis = readModelMatrix(model, MatrixId::XSIS, n, 0, nt - 1);
  if (trace.on(SolveTopic::UncertainParameters)) {
    DebugFile& f = trace.file();
    f.dumpMatrix("theta0", 1, np, 1, 1, theta0);
    f.dumpMatrix("theta0diff", 1, np, 1, 1, theta0diff);
    f.dumpMatrix("sitt0", 1, np, 1, np, par.sitt);
    f.dumpIntMatrix("ithn", 1, np, 1, 3, ithn);
    f.dumpMatrix("xsis", 1, n, 0, nt - 1, xsis);
  }
  IMat nmap = imat2(1, np, 1, 1);
  for (int k = 1; k <= np; ++k) nmap(k, 1) = 1;
  par.napar = imat2(1, n, 1, n);
  par.nbpar = imat2(1, n, 1, m);
  par.ncpar = imat2(1, n, 1, 1);
  ithnCheck(n, m, np, nmap, ithn, par.napar, par.nbpar, par.ncpar, prompter, trace);

  FeedbackRule rule = makeFeedbackRule(n, m, nt);
  Mat xs = stateArray(sys);
  Mat us = mat2(1, m, 0, nt - 1);
  double criterion = 0.0;
  olf(sys, crit, par, caution, rule, xs, us, criterion, prompter, trace);
  if (sys.forward) {
    ForwardContext ctx = forwardContext(model, "OLFwo");
    forwardVariableLoop(sys, xs, us, ctx, prompter, trace, [&] {
      return olf(sys, crit, par, caution, rule, xs, us, criterion, prompter, trace);
    });
  }
  if (!trace.ok()) return std::nullopt;
  return makeSolution("OLFwo", sys, crit, xs, us, criterion);
}

}  // namespace ovaro
