// The expected quadratic form as a plain product plus the uncertain pairs' covariance terms.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "numeric/matrix_ops.h"
#include "solve/olf.h"

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

}  // namespace
}  // namespace ovaro
