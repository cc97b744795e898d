// The augmented extended Kalman filter on z = (x, theta).
//
// The true system x(k+1) = A(theta) x(k) + B(theta) u(k) + c(theta) + xsi is bilinear in the
// uncertain parameters and the states, so the filter works on the linearisation around the
// current estimates: fxt, the derivative of A x + B u + c with respect to theta at (xhkk, uk),
// carries the parameter uncertainty into the state prediction, and two second-order terms keep
// what the linearisation would lose when an uncertain A multiplies an uncertain x: eaistx in the
// predicted mean, eiej4 in the predicted state covariance. The parameters themselves follow
// theta(k+1) = D theta(k) + eta.
//
// Every triple product A B C is formed as A (B C) by the matrix library's mmul3, and every sum in
// the order written, so that two runs give the same bits. Temporaries live in a FilterWork made
// once per Monte Carlo run (a call without one makes its own); no input is overwritten.
#include "stoch/kalman.h"

#include <algorithm>
#include <optional>

#include "numeric/matrix_ops.h"
#include "solve/system_forms.h"

namespace ovaro {

namespace {

// trace(P Q R S) for P n x p, Q p x p, R p x n, S n x n: the running sum of
// P(i, k) Q(k, j) R(j, l) S(l, i) with i (1..n) and j (1..p) as the outer loops and k (1..p) and
// l (1..n) as the inner ones, the nesting of mtrace4.
double trace4Mixed(int n, int p, const Mat& P, const Mat& Q, const Mat& R, const Mat& S) {
  // Terms with a zero P or R factor are skipped, which changes no bit (see mtrace4).
  double sum = 0.0;
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= p; ++j)
      for (int k = 1; k <= p; ++k) {
        const double pk = P(i, k);
        if (pk == 0.0) continue;
        const double pq = pk * Q(k, j);
        for (int l = 1; l <= n; ++l) {
          const double r = R(j, l);
          if (r == 0.0) continue;
          sum += pq * r * S(l, i);
        }
      }
  return sum;
}

// The caller's scratch, or one made for this call.
FilterWork& workFor(FilterWork* work, std::optional<FilterWork>& own, const FilterSystem& sys) {
  return work != nullptr ? *work : own.emplace(sys.n, sys.m, sys.np, sys.ny);
}

}  // namespace

FilterMoments::FilterMoments(int n, int np)
    : xh(mat2(1, n, 1, 1)),
      th(mat2(1, np, 1, 1)),
      sixx(mat2(1, n, 1, n)),
      sitx(mat2(1, np, 1, n)),
      sitt(mat2(1, np, 1, np)) {}

FilterWork::FilterWork(int n, int m, int np, int ny)
    : axbuc(mat2(1, n, 1, 1)),
      eaistx(mat2(1, n, 1, 1)),
      athi(mat2(1, n, 1, np)),
      bthi(mat2(1, m, 1, np)),
      cthi(mat2(1, 1, 1, np)),
      xt(mat2(1, 1, 1, n)),
      ut(mat2(1, 1, 1, m)),
      xa(mat2(1, 1, 1, np)),
      ub(mat2(1, 1, 1, np)),
      ubc(mat2(1, 1, 1, np)),
      fxti(mat2(1, 1, 1, np)),
      fxt(mat2(1, n, 1, np)),
      tr4as(mat2(1, n, 1, n)),
      tr4bs(mat2(1, n, 1, n)),
      eiej4(mat2(1, n, 1, n)),
      at(mat2(1, n, 1, n)),
      asxxa(mat2(1, n, 1, n)),
      fxtt(mat2(1, np, 1, n)),
      sixtkk(mat2(1, n, 1, np)),
      asf(mat2(1, n, 1, n)),
      asft(mat2(1, n, 1, n)),
      fsf(mat2(1, n, 1, n)),
      a4(mat2(1, n, 1, n)),
      dsa(mat2(1, np, 1, n)),
      dsf(mat2(1, np, 1, n)),
      dt(mat2(1, np, 1, np)),
      dsd(mat2(1, np, 1, np)),
      ht(mat2(1, n, 1, ny)),
      hsh(mat2(1, ny, 1, ny)),
      s(mat2(1, ny, 1, ny)),
      scopy(mat2(1, ny, 1, ny)),
      sinverse(mat2(1, ny, 1, ny)),
      check(mat2(1, ny, 1, ny)),
      hsih(mat2(1, n, 1, n)),
      sxxhsihsxx(mat2(1, n, 1, n)),
      stxhsihsxx(mat2(1, np, 1, n)),
      sixtk1k(mat2(1, n, 1, np)),
      stxhsihsxt(mat2(1, np, 1, np)),
      hx(mat2(1, ny, 1, 1)),
      yhx(mat2(1, ny, 1, 1)),
      sxxhs(mat2(1, n, 1, ny)),
      sxxhsyhx(mat2(1, n, 1, 1)),
      stxhs(mat2(1, np, 1, ny)),
      stxhsyhx(mat2(1, np, 1, 1)),
      product(mat2(1, std::max({n, np, ny}), 1, std::max({n, np, ny}))),
      inverse(ny) {
  for (int i = 0; i < n; ++i) {
    athSlices.push_back(mat2(1, n, 1, np));
    athSlicesT.push_back(mat2(1, np, 1, n));
  }
}

// xhk1k = (A xhkk + B uk + c) + eaistx, eaistx_i = trace(ath_i sitxkk); thk1k = D thkk.
void KStep(const FilterSystem& sys, const FilterMoments& kk, const Mat& uk, FilterMoments& k1k,
           const SolveTrace& trace, FilterWork* work) {
  const int n = sys.n, m = sys.m, l = sys.l, np = sys.np;
  const Mat &c = sys.c, &d = sys.d, &xhkk = kk.xh, &thkk = kk.th;
  const Mat &sixxkk = kk.sixx, &sitxkk = kk.sitx, &sittkk = kk.sitt;
  const Mat3 &ath = sys.ath, &bth = sys.bth, &cth = sys.cth;
  Mat &xhk1k = k1k.xh, &thk1k = k1k.th;
  std::optional<FilterWork> own;
  FilterWork& w = workFor(work, own, sys);
  const bool steps = trace.on(SolveTopic::ProjectionMeansIntermediate);
  if (steps) {
    DebugFile& f = trace.file();
    f.dumpColumn("c in KStep", n, c);
    f.dumpMatrix("d in KStep", 1, np, 1, np, d);
    f.dumpColumn("xhkk in KStep", n, xhkk);
    f.dumpColumn("uk in KStep", m, uk);
    f.dumpMatrix("sixxkk in KStep", 1, n, 1, n, sixxkk);
    f.dumpMatrix("sitxkk in KStep", 1, np, 1, n, sitxkk);
    f.dumpMatrix("sittkk in KStep", 1, np, 1, np, sittkk);
  }

  Mat& axbuc = w.axbuc;
  CompAxBuc(n, m, sys.a, sys.b, c, xhkk, uk, axbuc);

  // E[A x] = A xhat + E[(A - Ahat)(x - xhat)]: for equation i the covariance of the uncertain
  // elements of row i of A with x, which is trace(ath_i sitxkk).
  Mat& eaistx = w.eaistx;
  Mat& athi = w.athi;
  for (int i = 1; i <= n; ++i) {
    mslice3get(n, np, i, ath, athi);
    eaistx(i, 1) = mtrace2(n, np, athi, sitxkk);
  }
  madd(n, 1, axbuc, eaistx, xhk1k);
  mmul(np, np, 1, d, thkk, thk1k);

  if (steps) {
    DebugFile& f = trace.file();
    f.dumpColumn("axbuc in KStep", n, axbuc);
    f.dumpMatrix3("ath in KStep", 1, n, 1, np, 1, n, ath);
    f.dumpMatrix3("bth in KStep", 1, m, 1, np, 1, n, bth);
    f.dumpMatrix3("cth in KStep", 1, l > 1 ? l : 1, 1, np, 1, n, cth);
    f.dumpColumn("eaistx in KStep", n, eaistx);
  }
  if (trace.on(SolveTopic::ProjectionMeansFinal)) {
    DebugFile& f = trace.file();
    f.dumpColumn("xhk1k in KStep", n, xhk1k);
    f.dumpColumn("thk1k in KStep", np, thk1k);
  }
}

// fxt(i, :) = xhkk' ath_i + (uk' bth_i + cth_i).
void Fxtk(const FilterSystem& sys, const Mat& xhkk, const Mat& uk, Mat& fxt,
          const SolveTrace& trace, FilterWork* work) {
  const int n = sys.n, m = sys.m, l = sys.l, np = sys.np;
  const Mat3 &ath = sys.ath, &bth = sys.bth, &cth = sys.cth;
  std::optional<FilterWork> own;
  FilterWork& w = workFor(work, own, sys);
  const bool steps = trace.on(SolveTopic::ProjectionCovariancesIntermediate);
  if (steps) {
    DebugFile& f = trace.file();
    f.dumpMatrix3("ath in Fxtk", 1, n, 1, np, 1, n, ath);
    f.dumpMatrix3("bth in Fxtk", 1, m, 1, np, 1, n, bth);
    f.dumpMatrix3("cth in Fxtk", 1, l > 1 ? l : 1, 1, np, 1, n, cth);
    f.dumpColumn("xhkk in Fxtk", n, xhkk);
    f.dumpColumn("uk in Fxtk", m, uk);
  }
  Mat &xt = w.xt, &ut = w.ut;
  mtrans(n, 1, xhkk, xt);
  mtrans(m, 1, uk, ut);
  Mat &athi = w.athi, &bthi = w.bthi, &cthi = w.cthi;
  Mat &xa = w.xa, &ub = w.ub, &ubc = w.ubc, &fxti = w.fxti;
  for (int i = 1; i <= n; ++i) {
    mslice3get(n, np, i, ath, athi);
    mslice3get(m, np, i, bth, bthi);
    mslice3get(1, np, i, cth, cthi);
    mmul(1, n, np, xt, athi, xa);
    mmul(1, m, np, ut, bthi, ub);
    madd(1, np, ub, cthi, ubc);
    madd(1, np, xa, ubc, fxti);
    for (int k = 1; k <= np; ++k) fxt(i, k) = fxti(1, k);
    if (steps) {
      DebugFile& f = trace.file();
      f.dumpMatrix("xa in Fxtk", 1, 1, 1, np, xa);
      f.dumpMatrix("ub in Fxtk", 1, 1, 1, np, ub);
      f.dumpMatrix("ubc in Fxtk", 1, 1, 1, np, ubc);
      f.dumpMatrix("fxti in Fxtk", 1, 1, 1, np, fxti);
    }
  }
  if (steps) trace.file().dumpMatrix("fxt in Fxtk", 1, n, 1, np, fxt);
}

// sixxk1k = (A sixx A' + A sixt fxt' + fxt sitx A' + fxt sitt fxt') + Q + eiej4,
// sitxk1k = D sitx A' + D sitt fxt', sittk1k = D sitt D' + GAM.
void Sk1k(const FilterSystem& sys, const Mat& fxt, const FilterMoments& kk, FilterMoments& k1k,
          const SolveTrace& trace, FilterWork* work) {
  const int n = sys.n, np = sys.np;
  const Mat &a = sys.a, &d = sys.d, &q = sys.q, &gam = sys.gam;
  const Mat3& ath = sys.ath;
  const Mat &sixxkk = kk.sixx, &sitxkk = kk.sitx, &sittkk = kk.sitt;
  Mat &sixxk1k = k1k.sixx, &sitxk1k = k1k.sitx, &sittk1k = k1k.sitt;
  std::optional<FilterWork> own;
  FilterWork& w = workFor(work, own, sys);
  Mat& bd = w.product;
  const bool steps = trace.on(SolveTopic::ProjectionCovariancesIntermediate);
  if (steps) {
    DebugFile& f = trace.file();
    f.dumpMatrix("sixxkk in Sk1k", 1, n, 1, n, sixxkk);
    f.dumpMatrix("sitxkk in Sk1k", 1, np, 1, n, sitxkk);
    f.dumpMatrix("sittkk in Sk1k", 1, np, 1, np, sittkk);
  }

  // eiej4(i, j) = E[(A - Ahat)_i (x - xhat) (x - xhat)' (A - Ahat)_j'] under normality, the
  // second-order term of the product of an uncertain A with an uncertain x:
  // trace(ath_i sitx ath_j sitx) + trace(ath_i sitt ath_j' sixx).
  Mat &tr4as = w.tr4as, &tr4bs = w.tr4bs, &eiej4 = w.eiej4;
  // The slices of ath and their transposes, taken once for all the pairs (i, j).
  for (int i = 1; i <= n; ++i) {
    Mat& slice = w.athSlices[static_cast<std::size_t>(i - 1)];
    mslice3get(n, np, i, ath, slice);
    mtrans(n, np, slice, w.athSlicesT[static_cast<std::size_t>(i - 1)]);
  }
  for (int i = 1; i <= n; ++i) {
    const Mat& athi = w.athSlices[static_cast<std::size_t>(i - 1)];
    if (steps) trace.file().dumpMatrix("athi in Sk1k", 1, n, 1, np, athi);
    for (int j = 1; j <= n; ++j) {
      const Mat& athj = w.athSlices[static_cast<std::size_t>(j - 1)];
      const Mat& athjt = w.athSlicesT[static_cast<std::size_t>(j - 1)];
      const double tr4a = mtrace4(n, np, athi, sitxkk, athj, sitxkk);
      const double tr4b = trace4Mixed(n, np, athi, sittkk, athjt, sixxkk);
      tr4as(i, j) = tr4a;
      tr4bs(i, j) = tr4b;
      eiej4(i, j) = tr4a + tr4b;
      if (steps) {
        DebugFile& f = trace.file();
        f.dumpMatrix("athjt in Sk1k", 1, np, 1, n, athjt);
        f.writeRemark(" tr4b = ", tr4b);
      }
    }
  }
  if (steps) {
    DebugFile& f = trace.file();
    f.dumpMatrix("tr4as in Sk1k", 1, n, 1, n, tr4as);
    f.dumpMatrix("tr4bs in Sk1k", 1, n, 1, n, tr4bs);
    f.dumpMatrix("eiej4 in Sk1k", 1, n, 1, n, eiej4);
  }

  Mat &at = w.at, &asxxa = w.asxxa;
  mtrans(n, n, a, at);
  mmul3(n, n, n, n, a, sixxkk, at, asxxa, bd);

  Mat &fxtt = w.fxtt, &sixtkk = w.sixtkk;
  Mat &asf = w.asf, &asft = w.asft, &fsf = w.fsf;
  mtrans(n, np, fxt, fxtt);
  mtrans(np, n, sitxkk, sixtkk);
  mmul3(n, n, np, n, a, sixtkk, fxtt, asf, bd);
  mtrans(n, n, asf, asft);
  mmul3(n, np, np, n, fxt, sittkk, fxtt, fsf, bd);

  Mat& a4 = w.a4;
  madd4(n, n, asxxa, asf, asft, fsf, a4);
  madd3(n, n, a4, q, eiej4, sixxk1k);

  Mat &dsa = w.dsa, &dsf = w.dsf;
  mmul3(np, np, n, n, d, sitxkk, at, dsa, bd);
  mmul3(np, np, np, n, d, sittkk, fxtt, dsf, bd);
  madd(np, n, dsa, dsf, sitxk1k);

  Mat &dt = w.dt, &dsd = w.dsd;
  mtrans(np, np, d, dt);
  mmul3(np, np, np, np, d, sittkk, dt, dsd, bd);
  madd(np, np, dsd, gam, sittk1k);

  const bool finals = trace.on(SolveTopic::ProjectionCovariancesFinal);
  if (!steps && !finals) return;
  DebugFile& f = trace.file();
  if (steps) {
    f.dumpMatrix("a in Sk1k", 1, n, 1, n, a);
    f.dumpMatrix("at in Sk1k", 1, n, 1, n, at);
    f.dumpMatrix("asxxa in Sk1k", 1, n, 1, n, asxxa);
    f.dumpMatrix("fxtt in Sk1k", 1, np, 1, n, fxtt);
    f.dumpMatrix("sixtkk in Sk1k", 1, n, 1, np, sixtkk);
    f.dumpMatrix("asf in Sk1k", 1, n, 1, n, asf);
    f.dumpMatrix("asft in Sk1k", 1, n, 1, n, asft);
    f.dumpMatrix("fsf in Sk1k", 1, n, 1, n, fsf);
    f.dumpMatrix("a4 in Sk1k", 1, n, 1, n, a4);
  }
  if (finals) f.dumpMatrix("sixxk1k in Sk1k", 1, n, 1, n, sixxk1k);
  if (steps) {
    f.dumpMatrix("dsa in Sk1k", 1, np, 1, n, dsa);
    f.dumpMatrix("dsf in Sk1k", 1, np, 1, n, dsf);
  }
  if (finals) f.dumpMatrix("sitxk1k in Sk1k", 1, np, 1, n, sitxk1k);
  if (steps) {
    f.dumpMatrix("dt in Sk1k", 1, np, 1, np, dt);
    f.dumpMatrix("dsd in Sk1k", 1, np, 1, np, dsd);
    f.dumpMatrix("gam in Sk1k", 1, np, 1, np, gam);
  }
  if (finals) f.dumpMatrix("sittk1k in Sk1k", 1, np, 1, np, sittk1k);
}

void Sigk1k(const FilterSystem& sys, const FilterMoments& kk, const Mat& uk, FilterMoments& k1k,
            const SolveTrace& trace, FilterWork* work) {
  const int n = sys.n, np = sys.np;
  std::optional<FilterWork> own;
  FilterWork& w = workFor(work, own, sys);
  if (trace.on(SolveTopic::ProjectionCovariancesIntermediate)) {
    Mat cLocal = mat2(1, n, 1, 1);
    mmov(n, 1, sys.c, cLocal);
    DebugFile& f = trace.file();
    f.dumpColumn("c in Sigk1k", n, cLocal);
    f.dumpColumn("xhkk in Sigk1k", n, kk.xh);
    f.dumpColumn("uk in Sigk1k", sys.m, uk);
    f.dumpMatrix("sixxkk in Sigk1k", 1, n, 1, n, kk.sixx);
    f.dumpMatrix("sitxkk in Sigk1k", 1, np, 1, n, kk.sitx);
    f.dumpMatrix("sittkk in Sigk1k", 1, np, 1, np, kk.sitt);
  }
  Fxtk(sys, kk.xh, uk, w.fxt, trace, &w);
  Sk1k(sys, w.fxt, kk, k1k, trace, &w);
}

// With s = H sixx H' + R and the gain blocks sixx H' s^-1 and sitx H' s^-1:
// xhk1k1 = xhk1k + sixx H' s^-1 (y - H xhk1k), thk1k1 = thk1k + sitx H' s^-1 (y - H xhk1k),
// and each covariance block loses its part explained by the observation.
void Sigk1k1(const FilterSystem& sys, const Mat& y, const FilterMoments& k1k, FilterMoments& k1k1,
             const SolveTrace& trace, FilterWork* work) {
  const int n = sys.n, np = sys.np, ny = sys.ny;
  const Mat &h = sys.h, &r = sys.r;
  const Mat &xhk1k = k1k.xh, &thk1k = k1k.th;
  const Mat &sixxk1k = k1k.sixx, &sitxk1k = k1k.sitx, &sittk1k = k1k.sitt;
  Mat &xhk1k1 = k1k1.xh, &thk1k1 = k1k1.th;
  Mat &sixxk1k1 = k1k1.sixx, &sitxk1k1 = k1k1.sitx, &sittk1k1 = k1k1.sitt;
  std::optional<FilterWork> own;
  FilterWork& w = workFor(work, own, sys);
  Mat& bd = w.product;
  const bool covSteps = trace.on(SolveTopic::FilterCovariancesIntermediate);
  const bool covFinals = trace.on(SolveTopic::FilterCovariancesFinal);
  const bool thetaCov = covFinals || trace.on(SolveTopic::ThetaCovariance);
  const bool meanSteps = trace.on(SolveTopic::FilterMeansIntermediate);
  const bool meanFinals = trace.on(SolveTopic::FilterMeansFinal);

  // The innovation covariance and its inverse.
  Mat &ht = w.ht, &hsh = w.hsh, &s = w.s;
  mtrans(ny, n, h, ht);
  mmul3(ny, n, n, ny, h, sixxk1k, ht, hsh, bd);
  madd(ny, ny, hsh, r, s);
  Mat &scopy = w.scopy, &sinverse = w.sinverse, &check = w.check;
  mmov(ny, ny, s, scopy);
  minv(ny, scopy, sinverse, w.inverse);
  mmul(ny, ny, ny, s, sinverse, check);
  Mat& hsih = w.hsih;
  mmul3(n, ny, ny, n, ht, sinverse, h, hsih, bd);

  // Covariances: every correction is formed from the predicted blocks alone.
  Mat& sxxhsihsxx = w.sxxhsihsxx;
  mmul3(n, n, n, n, sixxk1k, hsih, sixxk1k, sxxhsihsxx, bd);
  msub(n, n, sixxk1k, sxxhsihsxx, sixxk1k1);
  Mat& stxhsihsxx = w.stxhsihsxx;
  mmul3(np, n, n, n, sitxk1k, hsih, sixxk1k, stxhsihsxx, bd);
  msub(np, n, sitxk1k, stxhsihsxx, sitxk1k1);
  Mat &sixtk1k = w.sixtk1k, &stxhsihsxt = w.stxhsihsxt;
  mtrans(np, n, sitxk1k, sixtk1k);
  mmul3(np, n, n, np, sitxk1k, hsih, sixtk1k, stxhsihsxt, bd);
  msub(np, np, sittk1k, stxhsihsxt, sittk1k1);

  // Means.
  Mat &hx = w.hx, &yhx = w.yhx;
  mmul(ny, n, 1, h, xhk1k, hx);
  msub(ny, 1, y, hx, yhx);
  Mat &sxxhs = w.sxxhs, &sxxhsyhx = w.sxxhsyhx;
  mmul3(n, n, ny, ny, sixxk1k, ht, sinverse, sxxhs, bd);
  mmul(n, ny, 1, sxxhs, yhx, sxxhsyhx);
  madd(n, 1, xhk1k, sxxhsyhx, xhk1k1);
  Mat &stxhs = w.stxhs, &stxhsyhx = w.stxhsyhx;
  mmul3(np, n, ny, ny, sitxk1k, ht, sinverse, stxhs, bd);
  mmul(np, ny, 1, stxhs, yhx, stxhsyhx);
  madd(np, 1, thk1k, stxhsyhx, thk1k1);

  if (!(covSteps || thetaCov || meanSteps || meanFinals)) return;
  DebugFile& f = trace.file();
  if (covSteps) {
    f.dumpMatrix("sixxk1k in Sigk1k1", 1, n, 1, n, sixxk1k);
    f.dumpMatrix("sitxk1k in Sigk1k1", 1, np, 1, n, sitxk1k);
    f.dumpMatrix("sittk1k in Sigk1k1", 1, np, 1, np, sittk1k);
    f.dumpMatrix("h in Sigk1k1", 1, ny, 1, n, h);
    f.dumpMatrix("r in Sigk1k1", 1, ny, 1, ny, r);
    f.dumpMatrix("ht in Sigk1k1", 1, n, 1, ny, ht);
    f.dumpMatrix("hsh in Sigk1k1", 1, ny, 1, ny, hsh);
    f.dumpMatrix("s in Sigk1k1", 1, ny, 1, ny, s);
    f.dumpMatrix("sinverse in Sigk1k1", 1, ny, 1, ny, sinverse);
    f.dumpMatrix("check in Sigk1k1", 1, ny, 1, ny, check);
    f.dumpMatrix("hsih in Sigk1k1", 1, n, 1, n, hsih);
    f.dumpMatrix("sxxhsihsxx in Sigk1k1", 1, n, 1, n, sxxhsihsxx);
  }
  if (covFinals) f.dumpMatrix("sixxk1k1 in Sigk1k1", 1, n, 1, n, sixxk1k1);
  if (covSteps) f.dumpMatrix("stxhsihsxx in Sigk1k1", 1, np, 1, n, stxhsihsxx);
  if (covFinals) f.dumpMatrix("sitxk1k1 in Sigk1k1", 1, np, 1, n, sitxk1k1);
  if (covSteps) {
    f.dumpMatrix("sixtk1k in Sigk1k1", 1, n, 1, np, sixtk1k);
    f.dumpMatrix("stxhsihsxt in Sigk1k1", 1, np, 1, np, stxhsihsxt);
  }
  if (thetaCov) f.dumpMatrix("sittk1k1 in Sigk1k1", 1, np, 1, np, sittk1k1);
  if (meanSteps) {
    f.dumpColumn("xhk1k in Sigk1k1", n, xhk1k);
    f.dumpColumn("thk1k in Sigk1k1", np, thk1k);
    f.dumpColumn("y in Sigk1k1", ny, y);
    f.dumpColumn("hx in Sigk1k1", ny, hx);
    f.dumpColumn("yhx in Sigk1k1", ny, yhx);
    f.dumpMatrix("sxxhs in Sigk1k1", 1, n, 1, ny, sxxhs);
    f.dumpColumn("sxxhsyhx in Sigk1k1", n, sxxhsyhx);
  }
  if (meanFinals) f.dumpColumn("xhk1k1 in Sigk1k1", n, xhk1k1);
  if (meanSteps) {
    f.dumpMatrix("stxhs in Sigk1k1", 1, np, 1, ny, stxhs);
    f.dumpColumn("stxhsyhx in Sigk1k1", np, stxhsyhx);
  }
  if (meanFinals) f.dumpColumn("thk1k1 in Sigk1k1", np, thk1k1);
}

}  // namespace ovaro
