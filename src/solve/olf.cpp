#include "solve/olf.h"

#include "numeric/matrix_ops.h"

namespace ovaro {

void expectedQuadForm(int rows, int colsX, int colsY, const Mat& x, const Mat& y, const IMat& occX,
                      const IMat& occY, const Mat& sitt, const Mat& k, Mat& out) {
  for (int i = 1; i <= colsX; ++i) {
    for (int j = 1; j <= colsY; ++j) {
      double sum = 0.0;
      for (int r = 1; r <= rows; ++r) {
        const int kx = occX(r, i);
        for (int s = 1; s <= rows; ++s) {
          const int ky = occY(s, j);
          if (kx * ky > 0) {
            sum += (x(r, i) * y(s, j) + sitt(kx, ky)) * k(r, s);
          } else {
            sum += k(r, s) * x(r, i) * y(s, j);
          }
        }
      }
      out(i, j) = sum;
    }
  }
}

int comphiolf(int n, int m, int nt, int np, int t, const Mat& a, const Mat& b, const Mat& f,
              const Mat& k, const Mat& lams, const IMat& napar, const IMat& nbpar, const Mat& sitt,
              const Mat& ws, Mat& phi, Mat& psi, Mat& theta, const SolveTrace& trace) {
  const bool traced = trace.on(SolveTopic::PhiThetaPsi);
  if (traced) {
    DebugFile& d = trace.file();
    d.dumpMatrix("kj1 in comphiolf", 1, n, 1, n, k);
    d.dumpMatrix("ws in comphiolf", 1, n, 0, nt, ws);
    d.dumpMatrix("a in comphiolf", 1, n, 1, n, a);
    d.dumpMatrix("sitt in comphiolf", 1, np, 1, np, sitt);
    d.dumpMatrix("b in comphiolf", 1, n, 1, m, b);
  }
  Mat eaka = mat2(1, n, 1, n), ebkb = mat2(1, m, 1, m), eakb = mat2(1, n, 1, m);
  expectedQuadForm(n, n, n, a, a, napar, napar, sitt, k, eaka);
  maddiagcol(n, n, t, eaka, ws, phi);
  expectedQuadForm(n, m, m, b, b, nbpar, nbpar, sitt, k, ebkb);
  maddiagcol(m, m, t, ebkb, lams, theta);
  expectedQuadForm(n, n, m, a, b, napar, nbpar, sitt, k, eakb);
  madd(n, m, eakb, f, psi);
  if (traced) {
    DebugFile& d = trace.file();
    d.dumpMatrix("eaka in comphiolf", 1, n, 1, n, eaka);
    d.dumpMatrix("phi in comphiolf", 1, n, 1, n, phi);
    d.dumpMatrix("ebkb in comphiolf", 1, m, 1, m, ebkb);
    d.dumpMatrix("theta in comphiolf", 1, m, 1, m, theta);
    d.dumpMatrix("eakb in comphiolf", 1, n, 1, m, eakb);
    d.dumpMatrix("psi in comphiolf", 1, n, 1, m, psi);
  }
  return trace.ok();
}

int comphilcolf(int n, int m, int nt, int np, int t, const Mat& a, const Mat& b, const Mat& cs,
                const Mat& k, const Mat& lamlcs, const IMat& napar, const IMat& nbpar,
                const IMat& ncpar, const Mat& sitt, const Mat& p, const Mat& wlcs, Mat& philc,
                Mat& thetalc, const SolveTrace& trace) {
  (void)nt;
  (void)np;
  Mat c = mat2(1, n, 1, 1);
  vcolget(n, t, cs, c);
  Mat atkc = mat2(1, n, 1, 1), atp = mat2(1, n, 1, 1), atkcp = mat2(1, n, 1, 1);
  Mat btkc = mat2(1, m, 1, 1), btp = mat2(1, m, 1, 1), btkcp = mat2(1, m, 1, 1);
  Mat at = mat2(1, n, 1, n), bt = mat2(1, m, 1, n);
  expectedQuadForm(n, n, 1, a, c, napar, ncpar, sitt, k, atkc);
  mtrans(n, n, a, at);
  mmul(n, n, 1, at, p, atp);
  madd(n, 1, atkc, atp, atkcp);
  for (int i = 1; i <= n; ++i) philc(i, 1) = atkcp(i, 1) + wlcs(i, t);
  expectedQuadForm(n, m, 1, b, c, nbpar, ncpar, sitt, k, btkc);
  mtrans(n, m, b, bt);
  mmul(m, n, 1, bt, p, btp);
  madd(m, 1, btkc, btp, btkcp);
  for (int j = 1; j <= m; ++j) thetalc(j, 1) = btkcp(j, 1) + lamlcs(j, t);
  if (!trace.on(SolveTopic::PhiThetaPsi)) return 1;
  DebugFile& d = trace.file();
  d.dumpMatrix("atkc in comphilcolf", 1, n, 1, 1, atkc);
  d.dumpMatrix("atp in comphilcolf", 1, n, 1, 1, atp);
  d.dumpMatrix("atkcp in comphilcolf", 1, n, 1, 1, atkcp);
  d.dumpMatrix("wlc in comphilcolf", 1, n, t, t, wlcs);
  d.dumpMatrix("philc in comphilcolf", 1, n, 1, 1, philc);
  d.dumpMatrix("btkc in comphilcolf", 1, m, 1, 1, btkc);
  d.dumpMatrix("btp in comphilcolf", 1, m, 1, 1, btp);
  d.dumpMatrix("btkcp in comphilcolf", 1, m, 1, 1, btkcp);
  d.dumpMatrix("lamlc in comphilcolf", 1, m, t, t, lamlcs);
  d.dumpMatrix("thetalc in comphilcolf", 1, m, 1, 1, thetalc);
  return trace.ok();
}

namespace {

using OlfWork = RiccatiWork;  // the same running values as the QLP recursion

// One step of the expected recursion at period t: K, p of period t+1 in, of period t out.
int olfStep(int n, int m, int nt, int t, const Mat& a, const Mat& b, const Mat& cs, const Mat& f,
            const Mat& lamlcs, const Mat& lams, const Mat& wlcs, const Mat& ws,
            const UncertainParameters& par, OlfWork& w, const SolveTrace& trace) {
  comphiolf(n, m, nt, par.np, t, a, b, f, w.k, lams, par.napar, par.nbpar, par.sitt, ws, w.phi,
            w.psi, w.theta, trace);
  comphilcolf(n, m, nt, par.np, t, a, b, cs, w.k, lamlcs, par.napar, par.nbpar, par.ncpar, par.sitt,
              w.p, wlcs, w.philc, w.thetalc, trace);
  riccatiUpdate(n, m, w.phi, w.psi, w.theta, w.philc, w.thetalc, w.thetainv, w.k, w.p, w.g, w.glc);
  return trace.ok();
}

}  // namespace

int olf(const SystemArrays& sys, const CriterionArrays& crit, UncertainParameters& par,
        const CautionExperiment& caution, FeedbackRule& rule, Mat& xs, Mat& us, double& criterion,
        Prompter& prompter, const SolveTrace& trace) {
  const int n = sys.n, m = sys.m, nt = sys.nt;
  OlfWork w(n, m);
  w.terminal(n, nt, crit.ws, crit.wlcs);
  if (trace.on(SolveTopic::KAndP)) {
    trace.file().dumpMatrix("kj1", 1, n, 1, n, w.k);
    trace.file().dumpMatrix("pj1", 1, n, 1, 1, w.p);
  }
  for (int t = nt - 1; t >= 0; --t) {
    const bool perturb = caution.on == 1 && t == caution.period - 1;
    double saved = 0.0;
    if (perturb) {
      prompter.inform("Caution Experiment Turned On", "Caution Experiment");
      saved = par.sitt(caution.row, caution.column);
      par.sitt(caution.row, caution.column) = caution.value;
    }
    olfStep(n, m, nt, t, sys.a, sys.b, sys.cs, crit.f, crit.lamlcs, crit.lams, crit.wlcs, crit.ws,
            par, w, trace);
    if (perturb) par.sitt(caution.row, caution.column) = saved;
    storeRule(n, m, t, w.g, w.glc, rule);
    if (trace.on(SolveTopic::KAndPIntermediate))
      trace.file().dumpMatrix("thetainv in olf", 1, m, 1, m, w.thetainv);
    if (trace.on(SolveTopic::KAndP)) {
      trace.file().dumpMatrix("kj", 1, n, 1, n, w.k);
      trace.file().dumpMatrix("pj", 1, n, 1, 1, w.p);
    }
    if (trace.on(SolveTopic::GAndG)) {
      trace.file().dumpMatrix("g", 1, m, 1, n, w.g);
      trace.file().dumpMatrix("glc", 1, m, 1, 1, w.glc);
    }
  }
  if (trace.on(SolveTopic::GAndG)) {
    trace.file().dumpMatrix3("gs", 0, nt - 1, 1, m, 1, n, rule.gs);
    trace.file().dumpMatrix("glcs", 1, m, 0, nt - 1, rule.glcs);
  }
  pathsAndCriterion(sys, crit, rule, xs, us, criterion, trace);
  return trace.ok();
}

namespace {

int compKpgBody(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
                const Mat& f, const Mat& lamlcs, const Mat& lams, const Mat& wlcs, const Mat& ws,
                const UncertainParameters& par, OlfWork& w, FeedbackRule* rule,
                const SolveTrace& trace) {
  w.terminal(n, nt, ws, wlcs);
  if (trace.on(SolveTopic::KAndP)) {
    trace.file().dumpMatrix("kj1 at top of CompKpg", 1, n, 1, n, w.k);
    trace.file().dumpMatrix("pj1 at top of CompKpg", 1, n, 1, 1, w.p);
  }
  const bool inner = trace.on(SolveTopic::KAndPIntermediate);
  for (int t = nt - 1; t >= k; --t) {
    if (inner) {
      trace.file().writeHeading(" in CompKpg - backward loop");
      trace.file().dumpInt("k = ", t);
    }
    olfStep(n, m, nt, t, a, b, cs, f, lamlcs, lams, wlcs, ws, par, w, trace);
    if (rule != nullptr) storeRule(n, m, t, w.g, w.glc, *rule);
    if (inner) {
      trace.file().dumpMatrix("theta in CompKpg", 1, m, 1, m, w.theta);
      trace.file().dumpMatrix("thetainv in CompKpg", 1, m, 1, m, w.thetainv);
      trace.file().dumpMatrix("kj in CompKpg", 1, n, 1, n, w.k);
      trace.file().dumpMatrix("pj in CompKpg", 1, n, 1, 1, w.p);
    }
  }
  return trace.ok();
}

}  // namespace

int CompKpg(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs, const Mat& f,
            const Mat& lamlcs, const Mat& lams, const Mat& wlcs, const Mat& ws,
            const UncertainParameters& par, Mat& g, Mat& glc, const SolveTrace& trace) {
  OlfWork w(n, m);
  compKpgBody(n, m, nt, k, a, b, cs, f, lamlcs, lams, wlcs, ws, par, w, nullptr, trace);
  takeRule(n, m, w, g, glc, trace);
  return trace.ok();
}

int CompKpgOlfForw(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
                   const Mat& f, const Mat& lamlcs, const Mat& lams, const Mat& wlcs, const Mat& ws,
                   const UncertainParameters& par, FeedbackRule& rule, const SolveTrace& trace) {
  OlfWork w(n, m);
  compKpgBody(n, m, nt, k, a, b, cs, f, lamlcs, lams, wlcs, ws, par, w, &rule, trace);
  if (trace.on(SolveTopic::GAndG)) {
    trace.file().dumpMatrix3("gs in CompKpgOlfForw", k, nt - 1, 1, m, 1, n, rule.gs);
    trace.file().dumpMatrix("glcs in CompKpgOlfForw", 1, m, k, nt - 1, rule.glcs);
  }
  return trace.ok();
}

VeldDefaults InVeldDefaultsForOlf(int n, int nt, int ny, int np, const SolveTrace& trace) {
  VeldDefaults v{mat2(1, np, 1, np), mat2(1, ny, 1, n),      mat2(1, n, 1, n),
                 mat2(1, np, 1, n),  mat2(1, ny, 1, ny),     mat2(1, np, 1, np),
                 mat2(1, ny, 1, nt), mat2(1, np, 0, nt - 1), mat2(1, n, 1, 1)};
  mident(np, np, v.d);
  mident(ny, n, v.h);
  if (trace.on(SolveTopic::UncertainParameters)) {
    DebugFile& f = trace.file();
    f.dumpMatrix("d in InVeldDefaultsForOlf", 1, np, 1, np, v.d);
    f.dumpMatrix("h in InVeldDefaultsForOlf", 1, ny, 1, n, v.h);
    f.dumpMatrix("sixx0 in InVeldDefaultsForOlf", 1, n, 1, n, v.sixx0);
    f.dumpMatrix("sitx0 in InVeldDefaultsForOlf", 1, np, 1, n, v.sitx0);
    f.dumpMatrix("r in InVeldDefaultsForOlf", 1, ny, 1, ny, v.r);
    f.dumpMatrix("gam in InVeldDefaultsForOlf", 1, np, 1, np, v.gam);
    f.dumpMatrix("zetas in InVeldDefaultsForOlf", 1, ny, 1, nt, v.zetas);
    f.dumpMatrix("etas in InVeldDefaultsForOlf", 1, np, 0, nt - 1, v.etas);
    f.dumpMatrix("x0dev in InVeldDefaultsForOlf", 1, n, 1, 1, v.x0dev);
  }
  return v;
}

}  // namespace ovaro
