// The inverse and the machine epsilon. Inverses are checked by their defining identity within a
// small multiple of n eps cond(A); the pivot rules (implicit scaling, a later row winning a tie)
// and the order of the sums against an LU factorisation written out here for the row order the
// rules must choose, on cases where any other choice changes the last bits.
#include "numeric/matrix_ops.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "support/mat.h"

namespace ovaro {
namespace {

using testing::rowsMat;

const double kEps = std::ldexp(1.0, -52);  // spacing of doubles just above 1

Mat inverse(const Mat& A) {
  Mat Ainv = mat2(1, A.rows(), 1, A.rows());
  minv(A.rows(), A, Ainv);
  return Ainv;
}

// A Ainv = I and Ainv A = I within 16 n eps cond(A), the products formed here.
void expectInverse(int n, const Mat& A, const Mat& Ainv) {
  double normA = 0, normInv = 0, left = 0, right = 0;
  for (int i = 1; i <= n; ++i) {
    double rowA = 0, rowInv = 0;
    for (int j = 1; j <= n; ++j) {
      ASSERT_TRUE(std::isfinite(Ainv(i, j))) << i << "," << j;
      rowA += std::fabs(A(i, j)), rowInv += std::fabs(Ainv(i, j));
      double p = i == j ? -1.0 : 0.0, q = p;
      for (int k = 1; k <= n; ++k) p += A(i, k) * Ainv(k, j), q += Ainv(i, k) * A(k, j);
      left = std::max(left, std::fabs(p)), right = std::max(right, std::fabs(q));
    }
    normA = std::max(normA, rowA), normInv = std::max(normInv, rowInv);
  }
  EXPECT_LE(left, 16.0 * n * kEps * normA * normInv) << "A Ainv - I";
  EXPECT_LE(right, 16.0 * n * kEps * normA * normInv) << "Ainv A - I";
}

// The inverse through an LU factorisation of A's rows taken in `order` (order[i - 1] is the row of
// A at position i), with no pivot search: U(i, j) = PA(i, j) - sum on and above the diagonal,
// L(i, j) = (PA(i, j) - sum) / U(j, j) below it, each sum over k < min(i, j) from 0 upwards
// (downwards with `reversed`); then L y = P e_c and U x = y for each column c.
Mat inverseInRowOrder(const Mat& A, const std::vector<int>& order, bool reversed = false) {
  const int n = A.rows();
  Mat L = mat2(1, n, 1, n), U = L, X = L, Y = L;
  for (int j = 1; j <= n; ++j)
    for (int i = 1; i <= n; ++i) {
      const int kmax = std::min(i, j) - 1;
      double sum = 0.0;
      for (int t = 1; t <= kmax; ++t) {
        const int k = reversed ? kmax + 1 - t : t;
        sum += L(i, k) * U(k, j);
      }
      const double v = A(order[i - 1], j) - sum;
      if (i <= j)
        U(i, j) = v;
      else
        L(i, j) = v / U(j, j);
    }
  for (int c = 1; c <= n; ++c) {
    for (int i = 1; i <= n; ++i) {
      double sum = 0.0;
      for (int k = 1; k < i; ++k) sum += L(i, k) * Y(k, c);
      Y(i, c) = (order[i - 1] == c ? 1.0 : 0.0) - sum;
    }
    for (int i = n; i >= 1; --i) {
      double sum = 0.0;
      for (int k = i + 1; k <= n; ++k) sum += U(i, k) * X(k, c);
      X(i, c) = (Y(i, c) - sum) / U(i, i);
    }
  }
  return X;
}

bool sameBits(const Mat& X, const Mat& Y) {
  for (int i = 1; i <= X.rows(); ++i)
    for (int j = 1; j <= X.cols(); ++j)
      if (X(i, j) != Y(i, j)) return false;
  return true;
}

TEST(Minv, RandomWellConditionedMatricesOfSizesOneToNine) {
  std::mt19937_64 rng(1937);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::uniform_int_distribution<int> exponent(-3, 3);
  for (int n = 1; n <= 9; ++n)
    for (int trial = 0; trial < 4; ++trial) {
      SCOPED_TRACE(::testing::Message() << "n " << n << ", trial " << trial);
      // Diagonally dominant rows scaled by powers of two (so that only implicit scaling finds the
      // dominant element), shuffled so that every pivot needs an exchange.
      std::vector<int> order(n);
      std::iota(order.begin(), order.end(), 1);
      std::shuffle(order.begin(), order.end(), rng);
      if (n > 1 && std::is_sorted(order.begin(), order.end()))
        std::rotate(order.begin(), order.begin() + 1, order.end());
      // Inside larger arrays: only the leading n x n block is read and written.
      Mat A = testing::filledMat(1, n + 1, 1, n + 1, 1e6),
          big = testing::filledMat(1, n + 1, 1, n + 1, -5);
      for (int i = 1; i <= n; ++i) {
        const double s = std::ldexp(1.0, exponent(rng));
        for (int j = 1; j <= n; ++j) A(i, j) = s * (u(rng) + (order[i - 1] == j ? n : 0.0));
      }
      minv(n, A, big);
      for (int i = 1; i <= n + 1; ++i) EXPECT_TRUE(big(i, n + 1) == -5 && big(n + 1, i) == -5) << i;
      expectInverse(n, A, big);
    }
}

TEST(Minv, PivotRowsAndSumsFollowTheStatedRules) {
  // Row i of A7 is row (3 (i - 1) + 2) mod 7 + 1 of a matrix whose dominant elements are on its
  // diagonal, so the pivot of column j is the row of A7 that came from row j.
  Mat A7 = mat2(1, 7, 1, 7);
  std::vector<int> pivots7(7);
  for (int i = 1; i <= 7; ++i) {
    const int from = (3 * (i - 1) + 2) % 7 + 1;
    pivots7[from - 1] = i;
    for (int j = 1; j <= 7; ++j)
      A7(i, j) = ((from * 17 + j * 29) % 23) / 23.0 - 0.5 + (from == j ? 2.0 : 0.0);
  }
  struct Case {
    const char* what;
    Mat A;
    std::vector<int> pivots;  // the row order the rules must produce
    std::vector<int> other;   // a plausible wrong order; empty: the sums run downwards instead
  };
  const Case cases[] = {
      // Row 1 has the larger leading element, but relative to the rest of its row row 2's is
      // larger (2/100 against 1/1).
      {"implicit scaling", rowsMat({{2, 100}, {1, 1}}), {2, 1}, {1, 2}},
      // Both leading elements are the largest of their rows: a tie, which the later row wins.
      {"tie", rowsMat({{1, -1}, {3, -2}}), {2, 1}, {1, 2}},
      // Row 1's scaled element is the larger (4/4 against 3/6), so it stays.
      {"no exchange", rowsMat({{4, -1}, {3, -6}}), {1, 2}, {2, 1}},
      // Column 1: rows 2 and 3 tie (8/8 = 9/9) and row 3 wins, trading places with row 1.
      // Column 2: row 1, now third, offers -6 against its own largest element 6, row 2 offers 7
      // against 8, so row 1 wins; had its scale stayed behind with row 3 (-6 against 9), row 2
      // would have.
      {"scale moves with its row",
       rowsMat({{0, -6, 0}, {8, 7, 1}, {9, 0, 2}}),
       {3, 1, 2},
       {3, 2, 1}},
      {"sums in order", A7, pivots7, {}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const Mat want = inverseInRowOrder(c.A, c.pivots);
    ASSERT_FALSE(sameBits(want, c.other.empty() ? inverseInRowOrder(c.A, c.pivots, true)
                                                : inverseInRowOrder(c.A, c.other)));
    const Mat got = inverse(c.A);
    EXPECT_TRUE(sameBits(got, want));
    expectInverse(c.A.rows(), c.A, got);
  }
}

TEST(Minv, SingularMatricesGiveNonFiniteValuesSilently) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  const Mat rankOne = inverse(rowsMat({{1, 2}, {2, 4}})), zero = inverse(mat2(1, 3, 1, 3));
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_FALSE(std::isfinite(rankOne(1, 1) + rankOne(1, 2) + rankOne(2, 1) + rankOne(2, 2)));
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j) EXPECT_FALSE(std::isfinite(zero(i, j))) << i << "," << j;
}

TEST(Macheps, IsTheFirstPowerOfTwoLostWhenAddedToOne) {
  const double e = macheps();
  EXPECT_EQ(e, std::ldexp(1.0, -53));
  volatile double sum = 1.0 + e;
  EXPECT_EQ(sum, 1.0);
  sum = 1.0 + 2.0 * e;
  EXPECT_NE(sum, 1.0);
}

}  // namespace
}  // namespace ovaro
