#include "solve/forward.h"

#include <cstdio>
#include <string>

#include "io/number_format.h"
#include "numeric/matrix_ops.h"

namespace ovaro {

namespace {

// d = D x for column `col` of xs.
void leadTerm(int n, const Mat& d, const Mat& xs, int col, Mat& out) {
  for (int i = 1; i <= n; ++i) {
    double s = 0.0;
    for (int j = 1; j <= n; ++j) s += d(i, j) * xs(j, col);
    out(i, 1) = s;
  }
}

}  // namespace

int forward(int n, int m, int nt, int t0, int forwardFlag, int maxLead, Mat& cs, const Mat& d1,
            const Mat& d2, const Mat& d3, const Mat& xs, const SolveTrace& trace) {
  (void)m;
  if (forwardFlag == 0) return 1;
  const bool traced = trace.on(SolveTopic::ForwardVariables);
  if (traced) {
    DebugFile& f = trace.file();
    f.dumpMatrix("cs in forward at top", 1, n, 0, nt - 1, cs);
    f.dumpMatrix("d1 in forward", 1, n, 1, n, d1);
    if (maxLead >= 2) f.dumpMatrix("d2 in forward", 1, n, 1, n, d2);
    if (maxLead >= 3) f.dumpMatrix("d3 in forward", 1, n, 1, n, d3);
    f.dumpMatrix("xs in forward", 1, n, 0, nt + maxLead, xs);
  }
  Mat dx1 = mat2(1, n, 1, 1), dx2 = mat2(1, n, 1, 1), dx3 = mat2(1, n, 1, 1);
  Mat ck = mat2(1, n, 1, 1), ckdx = mat2(1, n, 1, 1), ckdx1 = mat2(1, n, 1, 1),
      ckdx1dx2 = mat2(1, n, 1, 1);
  for (int t = t0; t <= nt - 1; ++t) {
    const int c1 = t + 1;
    const int c2 = t + 2 > nt ? nt : t + 2;
    const int c3 = t + 3 > nt ? nt : t + 3;
    vcolget(n, t, cs, ck);
    leadTerm(n, d1, xs, c1, dx1);
    madd(n, 1, ck, dx1, ckdx);
    Mat* result = &ckdx;
    if (maxLead >= 2) {
      leadTerm(n, d2, xs, c2, dx2);
      madd(n, 1, ckdx, dx2, ckdx1);
      result = &ckdx1;
    }
    if (maxLead >= 3) {
      leadTerm(n, d3, xs, c3, dx3);
      madd(n, 1, ckdx1, dx3, ckdx1dx2);
      result = &ckdx1dx2;
    }
    vcolset(n, t, *result, cs);
    if (traced) {
      DebugFile& f = trace.file();
      f.dumpMatrix("xk1 in forward", 1, n, c1, c1, xs);
      f.dumpMatrix("dx1 in forward", 1, n, 1, 1, dx1);
      f.dumpMatrix("ck in forward", 1, n, 1, 1, ck);
      f.dumpMatrix("ckdx in forward", 1, n, 1, 1, ckdx);
      if (maxLead >= 2) {
        f.dumpMatrix("xk2 in forward", 1, n, c2, c2, xs);
        f.dumpMatrix("dx2 in forward", 1, n, 1, 1, dx2);
        f.dumpMatrix("ckdx1 in forward", 1, n, 1, 1, ckdx1);
      }
      if (maxLead >= 3) {
        f.dumpMatrix("xk3 in forward", 1, n, c3, c3, xs);
        f.dumpMatrix("dx3 in forward", 1, n, 1, 1, dx3);
        f.dumpMatrix("ckdx1dx2 in forward", 1, n, 1, 1, ckdx1dx2);
      }
    }
  }
  if (traced) trace.file().dumpMatrix("cs in forward at bottom", 1, n, 0, nt - 1, cs);
  return trace.ok();
}

int CheckConvergence(int run, int iteration, int t0, int m, int nt, const Mat& usiter, Mat& usOld,
                     double& eps, ForwardContext& ctx, const SolveTrace& trace) {
  const bool traced = trace.on(SolveTopic::ForwardVariables);
  if (traced && !trace.file().write(
                    formatLabelled("\r\n\r\n%s%d\r\n", " CheckConvergence - iter = ", iteration))) {
    return 0;
  }
  // The first iteration has no previous controls to compare with: its difference is zero.
  Mat usIterDiff = mat2(1, m, 0, nt - 1);
  if (iteration >= 2) {
    msubsub(1, m, 0, nt - 1, usiter, usOld, usIterDiff);
    if (traced) {
      DebugFile& f = trace.file();
      if (!f.dumpMatrix("usiter in CheckConvergence", 1, m, 0, nt - 1, usiter) ||
          !f.dumpMatrix("usOld in CheckConvergence", 1, m, 0, nt - 1, usOld) ||
          !f.dumpMatrix("usIterDiff in CheckConvergence", 1, m, 0, nt - 1, usIterDiff)) {
        return 0;
      }
    }
  }
  eps = 0.0;
  for (int i = 1; i <= m; ++i)
    for (int t = t0; t <= nt - 1; ++t) eps += usIterDiff(i, t) * usIterDiff(i, t);
  if (traced && !trace.file().dumpScalar("epsCurrent in CheckConvergence", eps)) return 0;
  if (iteration >= 2 && eps <= ctx.tolerance && traced &&
      !trace.file().write(formatLabelled(
          "\r\n\r\n%s%d\r\n", " CheckConvergence - Convergence at iteration ", iteration))) {
    return 0;
  }
  mmovsub(1, m, 0, nt - 1, usiter, usOld);
  if (iteration == ctx.iterlim && eps > ctx.tolerance) {
    ctx.notConverged = true;
    if (trace.active()) {
      std::string text;
      if (!ctx.monteCarlo) {
        text =
            "\r\n\r\n\r\nWarning!  Reached iteration limit before \r\n"
            "reaching convergence tolerance in CheckConvergence.\r\n\r\n";
      } else {
        text =
            "\r\n\r\n\r\nWarning!  Reached iteration limit before \r\n"
            "reaching convergence tolerance in CheckConvergence \r\nwith method " +
            ctx.method + " at time period " + std::to_string(t0) + " in Monte Carlo run " +
            std::to_string(run) + "\r\n";
      }
      if (!trace.file().write(text)) return 0;
    }
  }
  return 1;
}

int forwardVariableLoop(SystemArrays& sys, Mat& xs, const Mat& us, ForwardContext& ctx,
                        Prompter& prompter, const SolveTrace& trace,
                        const std::function<int()>& solveOnce) {
  const int n = sys.n, m = sys.m, nt = sys.nt;
  ctx.notConverged = false;
  Mat csBase = mat2(1, n, 0, nt - 1);
  mmovsub(1, n, 0, nt - 1, sys.cs, csBase);
  Mat usiter = mat2(1, m, 0, nt - 1);
  Mat usOld = mat2(1, m, 0, nt - 1);
  for (int iteration = 1; iteration <= ctx.iterlim; ++iteration) {
    forward(n, m, nt, 0, sys.forward, sys.maxLead, sys.cs, sys.d1, sys.d2, sys.d3, xs, trace);
    solveOnce();
    mmovsub(1, n, 0, nt - 1, csBase, sys.cs);
    mmovsub(1, m, 0, nt - 1, us, usiter);
    double eps = 0.0;
    CheckConvergence(1, iteration, 0, m, nt, usiter, usOld, eps, ctx, trace);
    if (iteration >= 2 && eps <= ctx.tolerance) break;
  }
  if (ctx.notConverged) {
    prompter.inform(kForwardNotConverged, "Warning!", Icon::Exclamation);
    ctx.notConverged = false;
  }
  return trace.ok();
}

int InitializeXsiterUsiter(int t0, int n, int m, int nt, int maxLead, const Mat& xtws,
                           const Mat& us, const Mat& xsiterStore, bool notConverged, Mat& xsiter,
                           Mat& usiter, const SolveTrace& trace) {
  const bool traced = trace.on(SolveTopic::ForwardVariables);
  if (t0 == 0 || notConverged) {
    mmovsub(1, n, t0, nt, xtws, xsiter);
    if (traced)
      trace.file().dumpMatrix("xsiter in InitializeXsiterUsiter after xtws load", 1, n, t0,
                              nt + maxLead, xsiter);
    // Beyond the horizon the lead states are the terminal desired state, through column nt+3
    // so that the one-period step can always read three leads ahead.
    for (int t = nt + 1; t <= nt + 3; ++t)
      for (int i = 1; i <= n; ++i) xsiter(i, t) = xtws(i, nt);
    if (traced)
      trace.file().dumpMatrix("xsiter in InitializeXsiterUsiter after load beyond column nt", 1, n,
                              t0, nt + maxLead, xsiter);
  } else {
    mmovsub(1, n, t0, nt + 3, xsiterStore, xsiter);
    if (traced)
      trace.file().dumpMatrix("xsiter in InitializeXsiterUsiter after loading from xsiterStore", 1,
                              n, t0, nt + maxLead, xsiter);
  }
  mmovsub(1, m, 0, nt - 1, us, usiter);
  return trace.ok();
}

void CompXForw(const ProjectionSystem& sys, int t, const Mat& xsiter, const Mat& x, const Mat& u,
               Mat& xnext, Mat& y) {
  const int n = sys.n, m = sys.m;
  const Mat &a = sys.a, &b = sys.b, &cs = sys.cs;
  Mat ax = mat2(1, n, 1, 1), bu = mat2(1, n, 1, 1);
  Mat dx1 = mat2(1, n, 1, 1), dx2 = mat2(1, n, 1, 1), dx3 = mat2(1, n, 1, 1);
  mmul(n, n, 1, a, x, ax);
  mmul(n, m, 1, b, u, bu);
  leadTerm(n, sys.d1, xsiter, t + 1, dx1);
  leadTerm(n, sys.d2, xsiter, t + 2, dx2);
  leadTerm(n, sys.d3, xsiter, t + 3, dx3);
  for (int i = 1; i <= n; ++i) {
    const double leads = (dx1(i, 1) + dx2(i, 1)) + dx3(i, 1);
    xnext(i, 1) = ax(i, 1) + (bu(i, 1) + (cs(i, t) + leads));
  }
  mmul(sys.ny, n, 1, sys.h, xnext, y);
}

int ProjectionForwVar(int iteration, int iterlim, int t0, const ProjectionSystem& sys,
                      const FeedbackRule& rule, const Mat& x0, Mat& xsiter, Mat& usiter, Mat& csOut,
                      const SolveTrace& trace) {
  const int n = sys.n, m = sys.m, nt = sys.nt, ny = sys.ny;
  const bool traced = trace.on(SolveTopic::ForwardVariables);
  Mat x = mat2(1, n, 1, 1), u = mat2(1, m, 1, 1), xnext = mat2(1, n, 1, 1), y = mat2(1, ny, 1, 1);
  mmov(n, 1, x0, x);
  vcolset(n, t0, x, xsiter);
  for (int t = t0; t <= nt - 1; ++t) {
    compu(n, m, nt, t, rule, x, u, trace);
    if (traced) trace.file().dumpMatrix("ukk in ProjectionForwVar", 1, m, 1, 1, u);
    CompXForw(sys, t, xsiter, x, u, xnext, y);
    if (traced) trace.file().dumpMatrix("xkk1 in ProjectionForwVar", 1, n, 1, 1, xnext);
    mmov(n, 1, xnext, x);
    vcolset(n, t + 1, x, xsiter);
    vcolset(m, t, u, usiter);
  }
  if (traced && iteration < iterlim - 2) {
    trace.file().dumpMatrix("xsiter in ProjectionForwVar", 1, n, t0, nt, xsiter);
    trace.file().dumpMatrix("usiter in ProjectionForwVar", 1, m, t0, nt - 1, usiter);
  }
  if (trace.on(SolveTopic::ForwardLastTwo) &&
      (iteration == iterlim - 1 || iteration == iterlim - 2)) {
    trace.file().dumpMatrix("xsiter in ProjectionForwVar - last two iterations", 1, n, t0, nt,
                            xsiter);
    trace.file().dumpMatrix("usiter in ProjectionForwVar - last two iterations", 1, m, t0, nt - 1,
                            usiter);
  }
  mmovsub(1, n, 0, nt - 1, sys.cs, csOut);
  return trace.ok();
}

}  // namespace ovaro
