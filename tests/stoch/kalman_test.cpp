// The augmented filter against answers computed here independently: the textbook Kalman filter
// when the parameters are known, and the linearised filter on the stacked vector z = (x, theta)
// with the Gaussian fourth-moment term written out element by element and the parameter Jacobian
// taken by central differences.
#include "stoch/kalman.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "io/debug_file.h"
#include "support/debug_labels.h"
#include "support/dense.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::block;
using testing::Dense;
using testing::inverse;
using testing::mul;
using testing::plus;
using testing::trans;
using testing::zeros;

// Between the two representations: Mat rows/columns 1.. hold Dense [0..].
Mat toMat(const Dense& d) {
  const int r = static_cast<int>(d.size()), c = d.empty() ? 0 : static_cast<int>(d[0].size());
  Mat m = mat2(1, r, 1, c);
  for (int i = 1; i <= r; ++i)
    for (int j = 1; j <= c; ++j) m(i, j) = d[i - 1][j - 1];
  return m;
}

void expectNear(const Mat& got, const Dense& want, double tol, const char* what) {
  for (std::size_t i = 0; i < want.size(); ++i)
    for (std::size_t j = 0; j < want[0].size(); ++j) {
      const int r = static_cast<int>(i) + 1, c = static_cast<int>(j) + 1;
      EXPECT_NEAR(got(r, c), want[i][j], tol) << what << "(" << r << "," << c << ")";
    }
}

// The model of one period, its parameter derivatives, the estimates at (k|k) and the observation.
struct Period {
  int n = 0, m = 0, l = 1, np = 0, ny = 0;
  Dense a, b, c, d, q, gam, h, r, xhkk, thkk, uk, y;
  Dense sixx, sitx, sitt;  // sitx: np x n
  // Where each parameter sits: kind 0 A, 1 B, 2 c, with row and column.
  std::vector<std::array<int, 3>> place;
};

// A, B, c with theta written into the elements the parameters occupy.
void placeTheta(const Period& p, const Dense& theta, Dense& a, Dense& b, Dense& c) {
  a = p.a, b = p.b, c = p.c;
  for (int k = 0; k < p.np; ++k) {
    const auto [kind, i, j] = p.place[k];
    Dense& target = kind == 0 ? a : kind == 1 ? b : c;
    target[i][j] = theta[k][0];
  }
}

// ath, bth, cth from the placements: a one where a parameter sits.
void derivatives(const Period& p, Mat3& ath, Mat3& bth, Mat3& cth) {
  ath = mat3(1, p.n, 1, p.np, 1, p.n);
  bth = mat3(1, p.m, 1, p.np, 1, p.n);
  cth = mat3(1, std::max(p.l, 1), 1, p.np, 1, p.n);
  for (int k = 0; k < p.np; ++k) {
    const auto [kind, i, j] = p.place[k];
    if (kind == 0) ath(j + 1, k + 1, i + 1) = 1.0;
    if (kind == 1) bth(j + 1, k + 1, i + 1) = 1.0;
    if (kind == 2) cth(1, k + 1, i + 1) = 1.0;
  }
}

// One period of the filter as the Monte Carlo runs call it: KStep, Sigk1k, Sigk1k1. Returns the
// estimates at (k+1|k) and (k+1|k+1).
std::pair<FilterMoments, FilterMoments> runFilter(const Period& p,
                                                  const SolveTrace& trace = SolveTrace()) {
  const int n = p.n, np = p.np;
  Mat3 ath, bth, cth;
  derivatives(p, ath, bth, cth);
  const auto orEmpty = [np](const Dense& d, int cols) {
    return np > 0 ? toMat(d) : mat2(1, 0, 1, cols);
  };
  const Mat a = toMat(p.a), b = toMat(p.b), c = toMat(p.c), d = orEmpty(p.d, 0);
  const Mat q = toMat(p.q), gam = orEmpty(p.gam, 0), h = toMat(p.h), r = toMat(p.r);
  const FilterSystem sys{n, p.m, p.l, np, p.ny, a, b, c, d, ath, bth, cth, q, gam, h, r};
  FilterMoments kk(n, np), k1k(n, np), k1k1(n, np);
  kk.xh = toMat(p.xhkk), kk.sixx = toMat(p.sixx);
  kk.th = orEmpty(p.thkk, 1), kk.sitx = orEmpty(p.sitx, n), kk.sitt = orEmpty(p.sitt, 0);
  const Mat uk = toMat(p.uk);
  KStep(sys, kk, uk, k1k, trace);
  Sigk1k(sys, kk, uk, k1k, trace);
  Sigk1k1(sys, toMat(p.y), k1k, k1k1, trace);
  return {std::move(k1k), std::move(k1k1)};
}

// Two states, one control, one observation; parameter 1 sits in A(1, 2) and, when np = 2,
// parameter 2 in B(2, 1).
Period smallPeriod(int np) {
  Period p;
  p.n = 2, p.m = 1, p.np = np, p.ny = 1;
  p.a = {{0.9, 0.2}, {-0.1, 0.7}};
  p.b = {{0.5}, {1.0}};
  p.c = {{0.3}, {-0.2}};
  p.xhkk = {{1.0}, {-0.5}};
  p.uk = {{0.4}};
  p.sixx = {{0.5, 0.1}, {0.1, 0.3}};
  p.q = {{0.04, 0.01}, {0.01, 0.09}};
  p.h = {{1.0, 0.5}};
  p.r = {{0.1}};
  p.y = {{0.8}};
  p.place = {{0, 0, 1}, {1, 1, 0}};
  p.place.resize(np);
  p.thkk = {{0.2}, {1.0}};
  p.thkk.resize(np);
  p.d = {{0.95, 0.0}, {0.0, 1.0}};
  p.gam = {{0.02, 0.0}, {0.0, 0.03}};
  p.d = block(p.d, 0, np, 0, np);
  p.gam = block(p.gam, 0, np, 0, np);
  p.sitx = zeros(np, 2);
  p.sitt = zeros(np, np);
  return p;
}

TEST(KalmanFilter, KnownParametersGiveTheTextbookFilter) {
  for (int np : {0, 1, 2}) {
    SCOPED_TRACE("np = " + std::to_string(np));
    const Period p = smallPeriod(np);
    const auto [pred, upd] = runFilter(p);

    // x- = A x + B u + c, P- = A P A' + Q; K = P- H' (H P- H' + R)^-1; x+ = x- + K (y - H x-),
    // P+ = P- - K H P-.
    const Dense xp = plus(plus(mul(p.a, p.xhkk), mul(p.b, p.uk)), p.c);
    const Dense pp = plus(mul(mul(p.a, p.sixx), trans(p.a)), p.q);
    const Dense k = mul(mul(pp, trans(p.h)), inverse(plus(mul(mul(p.h, pp), trans(p.h)), p.r)));
    const Dense xu = plus(xp, mul(k, plus(p.y, mul(p.h, xp), -1.0)));
    const Dense pu = plus(pp, mul(mul(k, p.h), pp), -1.0);
    expectNear(pred.xh, xp, 1e-14, "xhk1k");
    expectNear(pred.sixx, pp, 1e-14, "sixxk1k");
    expectNear(upd.xh, xu, 1e-14, "xhk1k1");
    expectNear(upd.sixx, pu, 1e-14, "sixxk1k1");
    // Nothing is learned about parameters uncorrelated with the states.
    for (const FilterMoments* z : {&pred, &upd}) {
      if (np == 0) break;
      expectNear(z->th, mul(p.d, p.thkk), 0.0, "th");
      expectNear(z->sitx, zeros(np, 2), 0.0, "sitx");
      expectNear(z->sitt, p.gam, 0.0, "sitt");
    }
  }
}

// Two states, one control, two observations and four uncertain parameters: A(1, 2), B(2, 1),
// c(1) and A(2, 1), with every covariance block full.
Period augmentedPeriod() {
  Period p;
  p.n = 2, p.m = 1, p.np = 4, p.ny = 2;
  p.place = {{0, 0, 1}, {1, 1, 0}, {2, 0, 0}, {0, 1, 0}};
  p.thkk = {{0.2}, {1.0}, {0.3}, {-0.1}};
  p.a = {{0.9, 0.0}, {0.0, 0.7}};
  p.b = {{0.5}, {0.0}};
  p.c = {{0.0}, {-0.2}};
  placeTheta(p, p.thkk, p.a, p.b, p.c);
  p.d = {{0.9, 0.05, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 0.95, 0.0}, {0.02, 0.0, 0.0, 1.0}};
  p.gam = {
      {0.01, 0.0, 0.0, 0.0}, {0.0, 0.02, 0.0, 0.0}, {0.0, 0.0, 0.015, 0.0}, {0.0, 0.0, 0.0, 0.005}};
  p.q = {{0.04, 0.01}, {0.01, 0.09}};
  p.h = {{1.0, 0.5}, {0.0, 1.0}};
  p.r = {{0.1, 0.02}, {0.02, 0.2}};
  p.xhkk = {{1.0}, {-0.5}};
  p.uk = {{0.4}};
  p.y = {{0.9}, {-0.3}};
  // P = L L' over z = (x1, x2, theta1..theta4).
  Dense low = zeros(6, 6);
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j <= i; ++j)
      low[i][j] = i == j ? 0.5 + 0.1 * i : 0.07 * (i + 1) - 0.05 * (j + 1);
  const Dense pz = mul(low, trans(low));
  p.sixx = block(pz, 0, 2, 0, 2);
  p.sitx = block(pz, 2, 4, 0, 2);
  p.sitt = block(pz, 2, 4, 2, 4);
  return p;
}

// E[(dA_i dx)(dA_j dx)] - E[dA_i dx] E[dA_j dx] for jointly normal deviations, by Isserlis:
// sum over a, k, b, k' of ath_i(a,k) ath_j(b,k') (Cov(th_k, x_b) Cov(th_k', x_a) +
// Cov(th_k, th_k') Cov(x_a, x_b)). With thetaThetaOnly, the second product alone.
double secondOrder(const Period& p, const Mat3& ath, int i, int j, bool thetaThetaOnly = false) {
  double sum = 0.0;
  for (int a = 1; a <= p.n; ++a)
    for (int b = 1; b <= p.n; ++b)
      for (int k = 1; k <= p.np; ++k)
        for (int k2 = 1; k2 <= p.np; ++k2) {
          const double w = ath(a, k, i) * ath(b, k2, j);
          if (w == 0.0) continue;
          const double cross = p.sitx[k - 1][b - 1] * p.sitx[k2 - 1][a - 1];
          const double tt = p.sitt[k - 1][k2 - 1] * p.sixx[a - 1][b - 1];
          sum += w * (thetaThetaOnly ? tt : cross + tt);
        }
  return sum;
}

TEST(KalmanFilter, UncertainParametersFollowTheLinearisedAugmentedFilter) {
  const Period p = augmentedPeriod();
  const int n = p.n, np = p.np, nz = n + np;
  Mat3 ath, bth, cth;
  derivatives(p, ath, bth, cth);
  const auto [pred, upd] = runFilter(p);

  // Means: E[A x] adds, element by element, the covariance of each uncertain A(i, j) with x_j.
  Dense ahat, bhat, chat;
  placeTheta(p, p.thkk, ahat, bhat, chat);
  Dense xp = plus(plus(mul(ahat, p.xhkk), mul(bhat, p.uk)), chat);
  for (int k = 0; k < np; ++k) {
    const auto [kind, i, j] = p.place[k];
    if (kind == 0) xp[i][0] += p.sitx[k][j];
  }
  const Dense thp = mul(p.d, p.thkk);
  expectNear(pred.xh, xp, 1e-14, "xhk1k");
  expectNear(pred.th, thp, 1e-14, "thk1k");

  // fxt by central differences of A(theta) x + B(theta) u + c(theta).
  Dense fxt = zeros(n, np);
  const double step = 1e-3;
  for (int k = 0; k < np; ++k) {
    Dense up = p.thkk, down = p.thkk;
    up[k][0] += step;
    down[k][0] -= step;
    Dense a1, b1, c1, a2, b2, c2;
    placeTheta(p, up, a1, b1, c1);
    placeTheta(p, down, a2, b2, c2);
    const Dense f1 = plus(plus(mul(a1, p.xhkk), mul(b1, p.uk)), c1);
    const Dense f2 = plus(plus(mul(a2, p.xhkk), mul(b2, p.uk)), c2);
    for (int i = 0; i < n; ++i) fxt[i][k] = (f1[i][0] - f2[i][0]) / (2 * step);
  }

  // P- = F P F' + diag(Q, GAM) + the second-order term in the state block, F = [[A, fxt], [0, D]].
  Dense pz = zeros(nz, nz), fz = zeros(nz, nz), noise = zeros(nz, nz);
  for (int i = 0; i < nz; ++i)
    for (int j = 0; j < nz; ++j) {
      if (i < n && j < n) pz[i][j] = p.sixx[i][j], fz[i][j] = ahat[i][j], noise[i][j] = p.q[i][j];
      if (i >= n && j < n) pz[i][j] = p.sitx[i - n][j], pz[j][i] = p.sitx[i - n][j];
      if (i >= n && j >= n)
        pz[i][j] = p.sitt[i - n][j - n], fz[i][j] = p.d[i - n][j - n],
        noise[i][j] = p.gam[i - n][j - n];
      if (i < n && j >= n) fz[i][j] = fxt[i][j - n];
    }
  Dense pp = plus(mul(mul(fz, pz), trans(fz)), noise);
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j) pp[i - 1][j - 1] += secondOrder(p, ath, i, j);
  // The case must exercise the term, off the diagonal too.
  ASSERT_GT(std::fabs(secondOrder(p, ath, 1, 2)), 1e-4);
  expectNear(pred.sixx, block(pp, 0, n, 0, n), 1e-12, "sixxk1k");
  expectNear(pred.sitx, block(pp, n, np, 0, n), 1e-12, "sitxk1k");
  expectNear(pred.sitt, block(pp, n, np, n, np), 1e-12, "sittk1k");

  // Update with Hz = [H 0]: K = P- Hz' (Hz P- Hz' + R)^-1, z+ = z- + K (y - Hz z-), P+ = P- - K Hz
  // P-.
  Dense hz = zeros(p.ny, nz);
  for (int i = 0; i < p.ny; ++i)
    for (int j = 0; j < n; ++j) hz[i][j] = p.h[i][j];
  const Dense gain = mul(mul(pp, trans(hz)), inverse(plus(mul(mul(hz, pp), trans(hz)), p.r)));
  Dense zp = zeros(nz, 1);
  for (int i = 0; i < n; ++i) zp[i][0] = xp[i][0];
  for (int k = 0; k < np; ++k) zp[n + k][0] = thp[k][0];
  const Dense zu = plus(zp, mul(gain, plus(p.y, mul(hz, zp), -1.0)));
  const Dense pu = plus(pp, mul(mul(gain, hz), pp), -1.0);
  expectNear(upd.xh, block(zu, 0, n, 0, 1), 1e-12, "xhk1k1");
  expectNear(upd.th, block(zu, n, np, 0, 1), 1e-12, "thk1k1");
  expectNear(upd.sixx, block(pu, 0, n, 0, n), 1e-12, "sixxk1k1");
  expectNear(upd.sitx, block(pu, n, np, 0, n), 1e-12, "sitxk1k1");
  expectNear(upd.sitt, block(pu, n, np, n, np), 1e-12, "sittk1k1");
}

// The labels of a debug file in order, consecutive repeats (blocks of one dump) counted once;
// the " tr4b = " remarks, one per element pair, are all kept.
std::vector<std::string> labels(const std::string& content) {
  std::vector<std::string> out;
  for (std::string& label : testing::debugLabels(content))
    if (out.empty() || out.back() != label || label == "tr4b =") out.push_back(std::move(label));
  return out;
}

std::string tracedFilter(const Period& p, std::initializer_list<SolveTopic> topics) {
  testing::TempDir dir;
  const std::string path = dir.file("kalman.dbg");
  {
    DebugFile file;
    EXPECT_TRUE(file.open(path));
    std::bitset<kSolveTopicCount> on;
    for (SolveTopic t : topics) on.set(static_cast<std::size_t>(t));
    runFilter(p, SolveTrace(&file, on));
  }
  return testing::slurp(path);
}

TEST(KalmanFilterTrace, EachTopicWritesItsOwnDumps) {
  using T = SolveTopic;
  const Period p = augmentedPeriod();
  EXPECT_EQ(tracedFilter(p, {}), "");
  const std::pair<T, const char*> topics[] = {
      {T::ProjectionMeansFinal, "ProjectionMeansFinal"},
      {T::ProjectionCovariancesFinal, "ProjectionCovariancesFinal"},
      {T::FilterCovariancesFinal, "FilterCovariancesFinal"},
      {T::ThetaCovariance, "ThetaCovariance"},
      {T::FilterMeansFinal, "FilterMeansFinal"},
      {T::ProjectionMeansIntermediate, "ProjectionMeansIntermediate"},
      {T::FilterMeansIntermediate, "FilterMeansIntermediate"},
      {T::FilterCovariancesIntermediate, "FilterCovariancesIntermediate"},
      {T::ProjectionCovariancesIntermediate, "ProjectionCovariancesIntermediate"}};
  for (const auto& [topic, name] : topics) {
    const auto expected = testing::dataSection("kalman_trace.txt", name);
    ASSERT_FALSE(expected.empty()) << name;
    EXPECT_EQ(labels(tracedFilter(p, {topic})), expected) << name;
  }
  // The final covariances include the theta block, which is not written twice.
  EXPECT_EQ(labels(tracedFilter(p, {T::FilterCovariancesFinal, T::ThetaCovariance})),
            testing::dataSection("kalman_trace.txt", "FilterCovariancesFinal"));
}

TEST(KalmanFilterTrace, EachTr4bRemarkCarriesItsTrace) {
  const Period p = augmentedPeriod();
  const std::string content = tracedFilter(p, {SolveTopic::ProjectionCovariancesIntermediate});
  // Each tr4b remark carries trace(ath_i sitt ath_j' sixx), here checked for (1, 2).
  Mat3 ath, bth, cth;
  derivatives(p, ath, bth, cth);
  char want[64];
  std::snprintf(want, sizeof want, "\r\n tr4b = %10.4f", secondOrder(p, ath, 1, 2, true));
  std::size_t at = 0;
  for (int r = 0; r < 2; ++r) at = content.find("\r\n tr4b = ", at) + 1;
  EXPECT_EQ(content.substr(at - 1, std::string(want).size()), want);
  ASSERT_NE(secondOrder(p, ath, 1, 2, true), 0.0);
}

}  // namespace
}  // namespace ovaro
