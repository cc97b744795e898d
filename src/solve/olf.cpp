#include "solve/olf.h"

#include "numeric/matrix_ops.h"

namespace ovaro {

OlfWork::OlfWork(int n, int m)
    : RiccatiWork(n, m),
      ka(mat2(1, n, 1, n)),
      kb(mat2(1, n, 1, m)),
      kc(mat2(1, n, 1, 1)),
      c(mat2(1, n, 1, 1)),
      eaka(mat2(1, n, 1, n)),
      ebkb(mat2(1, m, 1, m)),
      eakb(mat2(1, n, 1, m)),
      atkc(mat2(1, n, 1, 1)),
      atp(mat2(1, n, 1, 1)),
      atkcp(mat2(1, n, 1, 1)),
      btkc(mat2(1, m, 1, 1)),
      btp(mat2(1, m, 1, 1)),
      btkcp(mat2(1, m, 1, 1)) {}

// E[X'KY] = X'(KY) + the covariance terms. X'KY is a plain product; the expectation differs from
// it only where an element of X and an element of Y are both uncertain parameters, by
// SITT(kx, ky) K(r, s) for each such pair. Each element is summed as X'(KY) over the rows r of X
// in increasing order, then the covariance terms added in increasing r and, within r, s.
void expectedQuadForm(int rows, int colsX, int colsY, const Mat& x, const Mat& ky, const IMat& occX,
                      const IMat& occY, const Mat& sitt, const Mat& k, Mat& out) {
  mtmul(colsX, rows, colsY, x, ky, out);
  for (int i = 1; i <= colsX; ++i) {
    for (int r = 1; r <= rows; ++r) {
      const int kx = occX(r, i);
      if (kx <= 0) continue;
      for (int j = 1; j <= colsY; ++j)
        for (int s = 1; s <= rows; ++s) {
          const int kyIndex = occY(s, j);
          if (kyIndex > 0) out(i, j) += sitt(kx, kyIndex) * k(r, s);
        }
    }
  }
}

int comphiolf(int n, int m, int nt, int t, const Mat& a, const Mat& b, const CriterionArrays& crit,
              const UncertainParameters& par, OlfWork& w, const SolveTrace& trace) {
  const bool traced = trace.on(SolveTopic::PhiThetaPsi);
  if (traced) {
    DebugFile& d = trace.file();
    d.dumpMatrix("kj1 in comphiolf", 1, n, 1, n, w.k);
    d.dumpMatrix("ws in comphiolf", 1, n, 0, nt, crit.ws);
    d.dumpMatrix("a in comphiolf", 1, n, 1, n, a);
    d.dumpMatrix("sitt in comphiolf", 1, par.np, 1, par.np, par.sitt);
    d.dumpMatrix("b in comphiolf", 1, n, 1, m, b);
  }
  // K A and K B once per step: K B serves both E[B'KB] and E[A'KB].
  mmul(n, n, n, w.k, a, w.ka);
  mmul(n, n, m, w.k, b, w.kb);
  expectedQuadForm(n, n, n, a, w.ka, par.napar, par.napar, par.sitt, w.k, w.eaka);
  maddiagcol(n, n, t, w.eaka, crit.ws, w.phi);
  expectedQuadForm(n, m, m, b, w.kb, par.nbpar, par.nbpar, par.sitt, w.k, w.ebkb);
  maddiagcol(m, m, t, w.ebkb, crit.lams, w.theta);
  expectedQuadForm(n, n, m, a, w.kb, par.napar, par.nbpar, par.sitt, w.k, w.eakb);
  madd(n, m, w.eakb, crit.f, w.psi);
  if (traced) {
    DebugFile& d = trace.file();
    d.dumpMatrix("eaka in comphiolf", 1, n, 1, n, w.eaka);
    d.dumpMatrix("phi in comphiolf", 1, n, 1, n, w.phi);
    d.dumpMatrix("ebkb in comphiolf", 1, m, 1, m, w.ebkb);
    d.dumpMatrix("theta in comphiolf", 1, m, 1, m, w.theta);
    d.dumpMatrix("eakb in comphiolf", 1, n, 1, m, w.eakb);
    d.dumpMatrix("psi in comphiolf", 1, n, 1, m, w.psi);
  }
  return trace.ok();
}

int comphilcolf(int n, int m, int t, const Mat& a, const Mat& b, const Mat& cs,
                const CriterionArrays& crit, const UncertainParameters& par, OlfWork& w,
                const SolveTrace& trace) {
  vcolget(n, t, cs, w.c);
  mmul(n, n, 1, w.k, w.c, w.kc);
  expectedQuadForm(n, n, 1, a, w.kc, par.napar, par.ncpar, par.sitt, w.k, w.atkc);
  mtmul(n, n, 1, a, w.p, w.atp);
  madd(n, 1, w.atkc, w.atp, w.atkcp);
  for (int i = 1; i <= n; ++i) w.philc(i, 1) = w.atkcp(i, 1) + crit.wlcs(i, t);
  expectedQuadForm(n, m, 1, b, w.kc, par.nbpar, par.ncpar, par.sitt, w.k, w.btkc);
  mtmul(m, n, 1, b, w.p, w.btp);
  madd(m, 1, w.btkc, w.btp, w.btkcp);
  for (int j = 1; j <= m; ++j) w.thetalc(j, 1) = w.btkcp(j, 1) + crit.lamlcs(j, t);
  if (!trace.on(SolveTopic::PhiThetaPsi)) return 1;
  DebugFile& d = trace.file();
  d.dumpMatrix("atkc in comphilcolf", 1, n, 1, 1, w.atkc);
  d.dumpMatrix("atp in comphilcolf", 1, n, 1, 1, w.atp);
  d.dumpMatrix("atkcp in comphilcolf", 1, n, 1, 1, w.atkcp);
  d.dumpMatrix("wlc in comphilcolf", 1, n, t, t, crit.wlcs);
  d.dumpMatrix("philc in comphilcolf", 1, n, 1, 1, w.philc);
  d.dumpMatrix("btkc in comphilcolf", 1, m, 1, 1, w.btkc);
  d.dumpMatrix("btp in comphilcolf", 1, m, 1, 1, w.btp);
  d.dumpMatrix("btkcp in comphilcolf", 1, m, 1, 1, w.btkcp);
  d.dumpMatrix("lamlc in comphilcolf", 1, m, t, t, crit.lamlcs);
  d.dumpMatrix("thetalc in comphilcolf", 1, m, 1, 1, w.thetalc);
  return trace.ok();
}

namespace {

// One step of the expected recursion at period t: K, p of period t+1 in, of period t out.
int olfStep(int n, int m, int nt, int t, const Mat& a, const Mat& b, const Mat& cs,
            const CriterionArrays& crit, const UncertainParameters& par, OlfWork& w,
            const SolveTrace& trace) {
  comphiolf(n, m, nt, t, a, b, crit, par, w, trace);
  comphilcolf(n, m, t, a, b, cs, crit, par, w, trace);
  riccatiUpdate(n, m, w);
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
    olfStep(n, m, nt, t, sys.a, sys.b, sys.cs, crit, par, w, trace);
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
                const CriterionArrays& crit, const UncertainParameters& par, OlfWork& w,
                FeedbackRule* rule, const SolveTrace& trace) {
  w.terminal(n, nt, crit.ws, crit.wlcs);
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
    olfStep(n, m, nt, t, a, b, cs, crit, par, w, trace);
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

int CompKpg(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
            const CriterionArrays& crit, const UncertainParameters& par, OlfWork& w, Mat& g,
            Mat& glc, const SolveTrace& trace) {
  compKpgBody(n, m, nt, k, a, b, cs, crit, par, w, nullptr, trace);
  takeRule(n, m, w, g, glc, trace);
  return trace.ok();
}

int CompKpgOlfForw(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
                   const CriterionArrays& crit, const UncertainParameters& par, OlfWork& w,
                   FeedbackRule& rule, const SolveTrace& trace) {
  compKpgBody(n, m, nt, k, a, b, cs, crit, par, w, &rule, trace);
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
