// The products that accumulate a whole row at a time must give each element the bits of the
// textbook loop: one running sum from 0, its terms in increasing order of the summation index.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "numeric/matrix_ops.h"

namespace ovaro {
namespace {

TEST(MatrixRows, ProductsKeepTheOrderOfEachElementsSum) {
  std::mt19937 gen(11);
  // Magnitudes over many decades, so that a different order of addition would show.
  std::uniform_real_distribution<double> mant(-1.0, 1.0), expo(-12.0, 12.0);
  auto draw = [&] { return mant(gen) * std::pow(10.0, expo(gen)); };
  for (const auto [n, p, m] : {std::array{1, 1, 1}, {3, 7, 2}, {9, 4, 13}, {16, 16, 16}}) {
    Mat a = mat2(1, n, 1, p), at = mat2(1, p, 1, n), b = mat2(1, p, 1, m);
    for (int i = 1; i <= n; ++i)
      for (int k = 1; k <= p; ++k) at(k, i) = a(i, k) = draw();
    for (int k = 1; k <= p; ++k)
      for (int j = 1; j <= m; ++j) b(k, j) = draw();
    Mat ab = mat2(1, n, 1, m), atb = mat2(1, n, 1, m);
    mmul(n, p, m, a, b, ab);
    mtmul(n, p, m, at, b, atb);
    for (int i = 1; i <= n; ++i)
      for (int j = 1; j <= m; ++j) {
        double sum = 0.0;
        for (int k = 1; k <= p; ++k) sum += a(i, k) * b(k, j);
        EXPECT_EQ(ab(i, j), sum) << n << "x" << p << "x" << m << " at " << i << "," << j;
        EXPECT_EQ(atb(i, j), sum) << n << "x" << p << "x" << m << " at " << i << "," << j;
      }
  }
}

}  // namespace
}  // namespace ovaro
