// The augmented extended Kalman filter that each Monte Carlo method runs every period: it
// estimates the states x and the uncertain parameters theta jointly from the noisy observation.
// The covariance of (x, theta) is kept in three blocks: sixx (n x n), sitx (np x n), sitt
// (np x np), with the suffixes kk (k|k), k1k (k+1|k) and k1k1 (k+1|k+1).
//
// Parameter derivatives: ath(j, k, i) = dA(i, j)/dtheta_k (j 1..n, k 1..np, i 1..n), bth(j, k, i)
// = dB(i, j)/dtheta_k (j 1..m), cth(1, k, i) = dc_i/dtheta_k. Column vectors are k x 1 matrices.
#pragma once

#include <vector>

#include "numeric/arrays.h"
#include "numeric/matrix_ops.h"
#include "solve/trace.h"

namespace ovaro {

// The temporaries of one period of the filter for n states, m controls, np parameters and ny
// observations, made once per Monte Carlo run so that the filter allocates nothing per period.
// Each routine below takes it when given and otherwise makes its own; the numbers are the same.
struct FilterWork {
  FilterWork(int n, int m, int np, int ny);
  Mat axbuc, eaistx, athi, bthi, cthi, xt, ut, xa, ub, ubc, fxti, fxt;
  Mat tr4as, tr4bs, eiej4, at, asxxa, fxtt, sixtkk, asf, asft, fsf, a4, dsa, dsf, dt, dsd;
  Mat ht, hsh, s, scopy, sinverse, check, hsih, sxxhsihsxx, stxhsihsxx, sixtk1k, stxhsihsxt;
  Mat hx, yhx, sxxhs, sxxhsyhx, stxhs, stxhsyhx;
  Mat product;                             // the inner product of a triple product
  std::vector<Mat> athSlices, athSlicesT;  // ath_i (n x np) and its transpose, i = 1..n
  MinvWork inverse;
};

// Prediction of the means: xhk1k = (A xhkk + B uk + c) + eaistx with eaistx_i =
// trace(ath_i sitxkk), and thk1k = D thkk.
void KStep(int n, int m, int l, int np, const Mat& a, const Mat& b, const Mat& c, const Mat& d,
           const Mat& xhkk, const Mat& thkk, const Mat& uk, const Mat3& ath, const Mat3& bth,
           const Mat3& cth, const Mat& sixxkk, const Mat& sitxkk, const Mat& sittkk, Mat& xhk1k,
           Mat& thk1k, const SolveTrace& trace, FilterWork* work = nullptr);

// fxt (n x np): the derivative of (A x + B u + c) with respect to theta at (xhkk, uk).
void Fxtk(int n, int m, int l, int np, const Mat3& ath, const Mat3& bth, const Mat3& cth,
          const Mat& xhkk, const Mat& uk, Mat& fxt, const SolveTrace& trace,
          FilterWork* work = nullptr);

// Prediction of the covariances from fxt.
void Sk1k(int n, int m, int l, int np, const Mat& a, const Mat3& ath, const Mat& d, const Mat& fxt,
          const Mat& sixxkk, const Mat& sitxkk, const Mat& sittkk, const Mat& q, const Mat& gam,
          Mat& sixxk1k, Mat& sitxk1k, Mat& sittk1k, const SolveTrace& trace,
          FilterWork* work = nullptr);

// Fxtk then Sk1k.
void Sigk1k(int n, int m, int l, int np, const Mat& a, const Mat& c, const Mat& d, const Mat& xhkk,
            const Mat& uk, const Mat3& ath, const Mat3& bth, const Mat3& cth, const Mat& sixxkk,
            const Mat& sitxkk, const Mat& sittkk, const Mat& q, const Mat& gam, Mat& sixxk1k,
            Mat& sitxk1k, Mat& sittk1k, const SolveTrace& trace, FilterWork* work = nullptr);

// The measurement update of means and covariances with the observation y (ny x 1).
void Sigk1k1(int n, int m, int np, int ny, const Mat& y, const Mat& xhk1k, const Mat& thk1k,
             const Mat& sixxk1k, const Mat& sitxk1k, const Mat& sittk1k, const Mat& h, const Mat& r,
             Mat& xhk1k1, Mat& thk1k1, Mat& sixxk1k1, Mat& sitxk1k1, Mat& sittk1k1,
             const SolveTrace& trace, FilterWork* work = nullptr);

}  // namespace ovaro
