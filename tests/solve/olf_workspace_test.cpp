// The expected quadratic form as a plain product plus the uncertain pairs' covariance terms, and
// the re-solves' workspaces, which must carry nothing from one call to the next.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "numeric/matrix_ops.h"
#include "solve/olf.h"
#include "solve/qlp.h"

namespace ovaro {
namespace {

// E[X'KY] summed over every pair of elements, each pair's term formed on its own.
Mat allPairs(int rows, int cx, int cy, const Mat& x, const Mat& y, const IMat& ox, const IMat& oy,
             const Mat& sitt, const Mat& k, Mat& scale) {
  Mat out = mat2(1, cx, 1, cy);
  for (int i = 1; i <= cx; ++i)
    for (int j = 1; j <= cy; ++j)
      for (int r = 1; r <= rows; ++r)
        for (int s = 1; s <= rows; ++s) {
          const bool both = ox(r, i) > 0 && oy(s, j) > 0;
          const double term =
              (x(r, i) * y(s, j) + (both ? sitt(ox(r, i), oy(s, j)) : 0.0)) * k(r, s);
          out(i, j) += term;
          scale(i, j) += std::fabs(term);
        }
  return out;
}

TEST(OlfExpectedForm, AgreesWithTheSumOverAllPairs) {
  std::mt19937 gen(7);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  struct Shape {
    int rows, cx, cy, uncertain;
  };
  for (const Shape sh :
       {Shape{1, 1, 1, 1}, {3, 3, 2, 2}, {6, 6, 6, 9}, {12, 12, 4, 5}, {5, 5, 1, 5}}) {
    Mat x = mat2(1, sh.rows, 1, sh.cx), y = mat2(1, sh.rows, 1, sh.cy),
        k = mat2(1, sh.rows, 1, sh.rows);
    for (int r = 1; r <= sh.rows; ++r) {
      for (int i = 1; i <= sh.cx; ++i) x(r, i) = u(gen);
      for (int j = 1; j <= sh.cy; ++j) y(r, j) = u(gen);
      for (int s = 1; s <= sh.rows; ++s) k(r, s) = u(gen);
    }
    // Parameters placed at random in X and Y; some land in both (the same parameter twice).
    const int np = sh.uncertain;
    Mat sitt = mat2(1, np, 1, np);
    for (int a = 1; a <= np; ++a)
      for (int b = 1; b <= np; ++b) sitt(a, b) = u(gen);
    IMat ox = imat2(1, sh.rows, 1, sh.cx), oy = imat2(1, sh.rows, 1, sh.cy);
    std::uniform_int_distribution<int> row(1, sh.rows), colx(1, sh.cx), coly(1, sh.cy);
    for (int p = 1; p <= np; ++p) {
      ox(row(gen), colx(gen)) = p;
      if (p % 2 == 1) oy(row(gen), coly(gen)) = p;
    }
    Mat ky = mat2(1, sh.rows, 1, sh.cy), got = mat2(1, sh.cx, 1, sh.cy);
    mmul(sh.rows, sh.rows, sh.cy, k, y, ky);
    expectedQuadForm(sh.rows, sh.cx, sh.cy, x, ky, ox, oy, sitt, k, got);
    Mat scale = mat2(1, sh.cx, 1, sh.cy);
    const Mat want = allPairs(sh.rows, sh.cx, sh.cy, x, y, ox, oy, sitt, k, scale);
    for (int i = 1; i <= sh.cx; ++i)
      for (int j = 1; j <= sh.cy; ++j)
        EXPECT_NEAR(got(i, j), want(i, j), 1e-13 * scale(i, j))
            << sh.rows << " rows, " << i << "," << j;
  }
}

TEST(OlfWorkspace, AReusedWorkspaceGivesTheBitsOfAFreshOne) {
  // Two states, one control, B(2,1) uncertain, five periods; CE and OLF re-solves from every
  // period, each on one workspace kept across the calls and on a fresh one.
  const int n = 2, m = 1, nt = 5;
  Mat a = mat2(1, n, 1, n), b = mat2(1, n, 1, m), cs = mat2(1, n, 0, nt - 1);
  a(1, 1) = 0.9, a(1, 2) = 0.2, a(2, 1) = -0.1, a(2, 2) = 0.8, b(1, 1) = 0.3, b(2, 1) = 1.1;
  CriterionArrays crit;
  crit.f = mat2(1, n, 1, m), crit.ws = mat2(1, n, 0, nt), crit.wlcs = mat2(1, n, 0, nt);
  crit.lams = mat2(1, m, 0, nt - 1), crit.lamlcs = mat2(1, m, 0, nt - 1);
  for (int t = 0; t <= nt; ++t)
    for (int i = 1; i <= n; ++i) {
      crit.ws(i, t) = 1.0 + 0.5 * i, crit.wlcs(i, t) = -0.3 * t + i;
      if (t < nt) cs(i, t) = 0.1 * (t - i), crit.lams(1, t) = 0.4, crit.lamlcs(1, t) = 0.05 * t;
    }
  UncertainParameters par{1, imat2(1, n, 1, n), imat2(1, n, 1, m), imat2(1, n, 1, 1),
                          mat2(1, 1, 1, 1)};
  par.nbpar(2, 1) = 1, par.sitt(1, 1) = 0.04;
  OlfWork kept(n, m);
  for (int k = nt - 1; k >= 0; --k) {
    Mat g1 = mat2(1, m, 1, n), c1 = mat2(1, m, 1, 1), g2 = g1, c2 = c1;
    OlfWork fresh(n, m);
    CompKpg(n, m, nt, k, a, b, cs, crit, par, kept, g1, c1, SolveTrace());
    CompKpg(n, m, nt, k, a, b, cs, crit, par, fresh, g2, c2, SolveTrace());
    for (int j = 1; j <= n; ++j) EXPECT_EQ(g1(1, j), g2(1, j)) << "OLF period " << k;
    EXPECT_EQ(c1(1, 1), c2(1, 1)) << "OLF period " << k;
    RiccatiWork freshCe(n, m);
    CompKpgCe(n, m, nt, k, a, b, cs, crit, kept, g1, c1, SolveTrace());
    CompKpgCe(n, m, nt, k, a, b, cs, crit, freshCe, g2, c2, SolveTrace());
    for (int j = 1; j <= n; ++j) EXPECT_EQ(g1(1, j), g2(1, j)) << "CE period " << k;
    EXPECT_EQ(c1(1, 1), c2(1, 1)) << "CE period " << k;
  }
}

}  // namespace
}  // namespace ovaro
