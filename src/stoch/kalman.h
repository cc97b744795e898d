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

// What the filter takes as given in a period: the estimated A, B and c of the period, the
// parameter transition D, the derivatives ath, bth, cth, the noise covariances Q (states) and GAM
// (parameters), and the measurement y = H x + noise with covariance R.
struct FilterSystem {
  int n, m, l, np, ny;
  const Mat &a, &b, &c, &d;
  const Mat3 &ath, &bth, &cth;
  const Mat &q, &gam, &h, &r;
};

// The estimate of (x, theta) at one time: the means xh (n x 1) and th (np x 1) and the covariance
// blocks.
struct FilterMoments {
  FilterMoments(int n, int np);
  Mat xh, th, sixx, sitx, sitt;
};

// Prediction of the means (k+1|k): xh = (A xhkk + B uk + c) + eaistx with eaistx_i =
// trace(ath_i sitxkk), and th = D thkk. Writes k1k.xh and k1k.th only.
void KStep(const FilterSystem& sys, const FilterMoments& kk, const Mat& uk, FilterMoments& k1k,
           const SolveTrace& trace, FilterWork* work = nullptr);

// fxt (n x np): the derivative of (A x + B u + c) with respect to theta at (xhkk, uk).
void Fxtk(const FilterSystem& sys, const Mat& xhkk, const Mat& uk, Mat& fxt,
          const SolveTrace& trace, FilterWork* work = nullptr);

// Prediction of the covariances (k+1|k) from fxt. Writes the covariance blocks of k1k only.
void Sk1k(const FilterSystem& sys, const Mat& fxt, const FilterMoments& kk, FilterMoments& k1k,
          const SolveTrace& trace, FilterWork* work = nullptr);

// Fxtk then Sk1k.
void Sigk1k(const FilterSystem& sys, const FilterMoments& kk, const Mat& uk, FilterMoments& k1k,
            const SolveTrace& trace, FilterWork* work = nullptr);

// The measurement update of means and covariances with the observation y (ny x 1).
void Sigk1k1(const FilterSystem& sys, const Mat& y, const FilterMoments& k1k, FilterMoments& k1k1,
             const SolveTrace& trace, FilterWork* work = nullptr);

}  // namespace ovaro
