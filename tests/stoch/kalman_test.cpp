// The augmented filter against the linearised filter on the stacked vector z = (x, theta), written
// out here independently: the Gaussian fourth-moment term element by element and the parameter
// Jacobian by central differences. Without uncertain parameters it is the textbook Kalman filter.
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
Mat toMat(const Dense& d, int rows, int cols) {
  Mat m = mat2(1, rows, 1, cols);
  for (int i = 1; i <= rows; ++i)
    for (int j = 1; j <= cols; ++j) m(i, j) = d[i - 1][j - 1];
  return m;
}

void expectNear(const Mat& got, const Dense& want, double tol, const char* what) {
  for (std::size_t i = 0; i < want.size(); ++i)
    for (std::size_t j = 0; j < want[0].size(); ++j) {
      const int r = static_cast<int>(i) + 1, c = static_cast<int>(j) + 1;
      EXPECT_NEAR(got(r, c), want[i][j], tol) << what << "(" << r << "," << c << ")";
    }
}

// Two states, one control, two observations and up to four uncertain parameters, taken in this
// order: A(1, 2), B(2, 1), c(1) and A(2, 1). The covariance pz of z = (x, theta) is full.
struct Period {
  int n = 2, m = 1, l = 1, np = 0, ny = 2;
  Dense a = {{0.9, 0.0}, {0.0, 0.7}}, b = {{0.5}, {0.0}}, c = {{0.0}, {-0.2}};
  Dense q = {{0.04, 0.01}, {0.01, 0.09}}, h = {{1.0, 0.5}, {0.0, 1.0}};
  Dense r = {{0.1, 0.02}, {0.02, 0.2}}, xhkk = {{1.0}, {-0.5}}, uk = {{0.4}}, y = {{0.9}, {-0.3}};
  Dense thkk, d, gam, pz;
  std::vector<std::array<int, 3>> place;  // kind 0 A, 1 B, 2 c; row; column

  explicit Period(int uncertain) : np(uncertain) {
    const Dense d4 = {
        {0.9, 0.05, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 0.95, 0.0}, {0.02, 0.0, 0.0, 1.0}};
    const Dense th4 = {{0.2}, {1.0}, {0.3}, {-0.1}};
    place = {{0, 0, 1}, {1, 1, 0}, {2, 0, 0}, {0, 1, 0}};
    place.resize(np);
    thkk = block(th4, 0, np, 0, 1);
    d = block(d4, 0, np, 0, np);
    gam = zeros(np, np);
    for (int k = 0; k < np; ++k) gam[k][k] = 0.005 * (k + 1);
    placeTheta(thkk, a, b, c);
    // pz = L L'.
    Dense low = zeros(n + np, n + np);
    for (int i = 0; i < n + np; ++i)
      for (int j = 0; j <= i; ++j)
        low[i][j] = i == j ? 0.5 + 0.1 * i : 0.07 * (i + 1) - 0.05 * (j + 1);
    pz = mul(low, trans(low));
  }
  // A, B, c with theta written into the elements the parameters occupy.
  void placeTheta(const Dense& theta, Dense& ta, Dense& tb, Dense& tc) const {
    for (int k = 0; k < np; ++k) {
      const auto [kind, i, j] = place[k];
      (kind == 0 ? ta : kind == 1 ? tb : tc)[i][j] = theta[k][0];
    }
  }
  // A x + B u + c at theta.
  Dense transition(const Dense& theta) const {
    Dense ta = a, tb = b, tc = c;
    placeTheta(theta, ta, tb, tc);
    return plus(plus(mul(ta, xhkk), mul(tb, uk)), tc);
  }
  Dense sixx() const { return block(pz, 0, n, 0, n); }
  Dense sitx() const { return block(pz, n, np, 0, n); }
  Dense sitt() const { return block(pz, n, np, n, np); }
};

// ath, bth, cth from the placements: a one where a parameter sits.
void derivatives(const Period& p, Mat3& ath, Mat3& bth, Mat3& cth) {
  ath = mat3(1, p.n, 1, p.np, 1, p.n);
  bth = mat3(1, p.m, 1, p.np, 1, p.n);
  cth = mat3(1, std::max(p.l, 1), 1, p.np, 1, p.n);
  for (int k = 0; k < p.np; ++k) {
    const auto [kind, i, j] = p.place[k];
    (kind == 0 ? ath : kind == 1 ? bth : cth)(kind == 2 ? 1 : j + 1, k + 1, i + 1) = 1.0;
  }
}

// One period of the filter as the Monte Carlo runs call it: KStep, Sigk1k, Sigk1k1. Returns the
// estimates at (k+1|k) and (k+1|k+1).
std::pair<FilterMoments, FilterMoments> runFilter(const Period& p,
                                                  const SolveTrace& trace = SolveTrace()) {
  const int n = p.n, np = p.np;
  Mat3 ath, bth, cth;
  derivatives(p, ath, bth, cth);
  const Mat a = toMat(p.a, n, n), b = toMat(p.b, n, p.m), c = toMat(p.c, n, 1);
  const Mat d = toMat(p.d, np, np), q = toMat(p.q, n, n), gam = toMat(p.gam, np, np);
  const Mat h = toMat(p.h, p.ny, n), r = toMat(p.r, p.ny, p.ny);
  const FilterSystem sys{n, p.m, p.l, np, p.ny, a, b, c, d, ath, bth, cth, q, gam, h, r};
  FilterMoments kk(n, np), k1k(n, np), k1k1(n, np);
  kk.xh = toMat(p.xhkk, n, 1), kk.th = toMat(p.thkk, np, 1);
  kk.sixx = toMat(p.sixx(), n, n), kk.sitx = toMat(p.sitx(), np, n);
  kk.sitt = toMat(p.sitt(), np, np);
  const Mat uk = toMat(p.uk, p.m, 1);
  KStep(sys, kk, uk, k1k, trace);
  Sigk1k(sys, kk, uk, k1k, trace);
  Sigk1k1(sys, toMat(p.y, p.ny, 1), k1k, k1k1, trace);
  return {std::move(k1k), std::move(k1k1)};
}

// E[(dA_i dx)(dA_j dx)] - E[dA_i dx] E[dA_j dx] for jointly normal deviations, by Isserlis:
// sum over a, k, b, k' of ath_i(a,k) ath_j(b,k') (Cov(th_k, x_b) Cov(th_k', x_a) +
// Cov(th_k, th_k') Cov(x_a, x_b)). With thetaThetaOnly, the second product alone.
double secondOrder(const Period& p, const Mat3& ath, int i, int j, bool thetaThetaOnly = false) {
  const int n = p.n;
  double sum = 0.0;
  for (int a = 1; a <= n; ++a)
    for (int b = 1; b <= n; ++b)
      for (int k = 1; k <= p.np; ++k)
        for (int k2 = 1; k2 <= p.np; ++k2) {
          const double w = ath(a, k, i) * ath(b, k2, j);
          const double cross = p.pz[n + k - 1][b - 1] * p.pz[n + k2 - 1][a - 1];
          const double tt = p.pz[n + k - 1][n + k2 - 1] * p.pz[a - 1][b - 1];
          sum += w * (thetaThetaOnly ? tt : cross + tt);
        }
  return sum;
}

TEST(KalmanFilter, FollowsTheLinearisedAugmentedFilter) {
  for (int np : {0, 1, 4}) {
    SCOPED_TRACE("np = " + std::to_string(np));
    const Period p(np);
    const int n = p.n, nz = n + np;
    Mat3 ath, bth, cth;
    derivatives(p, ath, bth, cth);
    const auto [pred, upd] = runFilter(p);

    // F = [[A, fxt], [0, D]] with fxt by central differences of A(theta) x + B(theta) u + c(theta).
    Dense fz = zeros(nz, nz), noise = zeros(nz, nz);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) fz[i][j] = p.a[i][j], noise[i][j] = p.q[i][j];
    for (int k = 0; k < np; ++k) {
      Dense up = p.thkk, down = p.thkk;
      up[k][0] += 1e-3;
      down[k][0] -= 1e-3;
      const Dense f1 = p.transition(up), f2 = p.transition(down);
      for (int i = 0; i < n; ++i) fz[i][n + k] = (f1[i][0] - f2[i][0]) / 2e-3;
      for (int j = 0; j < np; ++j) fz[n + k][n + j] = p.d[k][j], noise[n + k][n + j] = p.gam[k][j];
    }
    // Means: E[A x] adds, element by element, the covariance of each uncertain A(i, j) with x_j.
    Dense zp = zeros(nz, 1);
    const Dense xp = p.transition(p.thkk);
    for (int i = 0; i < n; ++i) zp[i][0] = xp[i][0];
    for (int k = 0; k < np; ++k) {
      const auto [kind, i, j] = p.place[k];
      if (kind == 0) zp[i][0] += p.pz[n + k][j];
      for (int j2 = 0; j2 < np; ++j2) zp[n + k][0] += p.d[k][j2] * p.thkk[j2][0];
    }
    expectNear(pred.xh, block(zp, 0, n, 0, 1), 1e-14, "xhk1k");
    expectNear(pred.th, block(zp, n, np, 0, 1), 1e-14, "thk1k");

    // P- = F P F' + diag(Q, GAM) + the second-order term in the state block.
    Dense pp = plus(mul(mul(fz, p.pz), trans(fz)), noise);
    for (int i = 1; i <= n; ++i)
      for (int j = 1; j <= n; ++j) pp[i - 1][j - 1] += secondOrder(p, ath, i, j);
    // The full case must exercise the term, off the diagonal too.
    if (np == 4) {
      ASSERT_GT(std::fabs(secondOrder(p, ath, 1, 2)), 1e-4);
    }
    expectNear(pred.sixx, block(pp, 0, n, 0, n), 1e-12, "sixxk1k");
    expectNear(pred.sitx, block(pp, n, np, 0, n), 1e-12, "sitxk1k");
    expectNear(pred.sitt, block(pp, n, np, n, np), 1e-12, "sittk1k");

    // Update with Hz = [H 0]: K = P- Hz' (Hz P- Hz' + R)^-1, z+ = z- + K (y - Hz z-),
    // P+ = P- - K Hz P-.
    Dense hz = zeros(p.ny, nz);
    for (int i = 0; i < p.ny; ++i)
      for (int j = 0; j < n; ++j) hz[i][j] = p.h[i][j];
    const Dense gain = mul(mul(pp, trans(hz)), inverse(plus(mul(mul(hz, pp), trans(hz)), p.r)));
    const Dense zu = plus(zp, mul(gain, plus(p.y, mul(hz, zp), -1.0)));
    const Dense pu = plus(pp, mul(mul(gain, hz), pp), -1.0);
    expectNear(upd.xh, block(zu, 0, n, 0, 1), 1e-12, "xhk1k1");
    expectNear(upd.th, block(zu, n, np, 0, 1), 1e-12, "thk1k1");
    expectNear(upd.sixx, block(pu, 0, n, 0, n), 1e-12, "sixxk1k1");
    expectNear(upd.sitx, block(pu, n, np, 0, n), 1e-12, "sitxk1k1");
    expectNear(upd.sitt, block(pu, n, np, n, np), 1e-12, "sittk1k1");
  }
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
  const Period p(4);
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
  // Each tr4b remark carries trace(ath_i sitt ath_j' sixx), here checked for (1, 2).
  const std::string content = tracedFilter(p, {T::ProjectionCovariancesIntermediate});
  Mat3 ath, bth, cth;
  derivatives(p, ath, bth, cth);
  ASSERT_NE(secondOrder(p, ath, 1, 2, true), 0.0);
  char want[64];
  std::snprintf(want, sizeof want, "\r\n tr4b = %10.4f", secondOrder(p, ath, 1, 2, true));
  const std::size_t second = content.find("\r\n tr4b = ", content.find("\r\n tr4b = ") + 1);
  EXPECT_EQ(content.substr(second, std::string(want).size()), want);
}

}  // namespace
}  // namespace ovaro
