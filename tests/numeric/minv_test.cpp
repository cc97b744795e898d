// The inverse and the machine epsilon.
//
// Inverses are checked by their defining identity, A Ainv = Ainv A = I, within a small multiple of
// n eps cond(A); the pivot rules (implicit scaling, a later row winning a tie) are checked on 2 x 2
// cases where the choice of pivot row changes the last bits of the answer, against the
// elimination written out by hand for the row the rules must choose.
#include "numeric/matrix_ops.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <iostream>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "numeric/arrays.h"
#include "support/mat.h"

namespace ovaro {
namespace {

using testing::rowsMat;

const double kEps = std::ldexp(1.0, -52);  // spacing of doubles just above 1

Mat inverse(int n, const Mat& A) {
  Mat Ainv = mat2(1, n, 1, n);
  minv(n, A, Ainv);
  return Ainv;
}

double normInf(int n, const Mat& A) {
  double worst = 0.0;
  for (int i = 1; i <= n; ++i) {
    double row = 0.0;
    for (int j = 1; j <= n; ++j) row += std::fabs(A(i, j));
    worst = std::max(worst, row);
  }
  return worst;
}

// Largest |(X Y - I)(i, j)|, the product formed here rather than by the library.
double residual(int n, const Mat& X, const Mat& Y) {
  double worst = 0.0;
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j) {
      double p = 0.0;
      for (int k = 1; k <= n; ++k) p += X(i, k) * Y(k, j);
      worst = std::max(worst, std::fabs(p - (i == j ? 1.0 : 0.0)));
    }
  return worst;
}

// Checks A Ainv = I and Ainv A = I within 16 n eps cond(A).
void expectInverse(int n, const Mat& A, const Mat& Ainv) {
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j) ASSERT_TRUE(std::isfinite(Ainv(i, j))) << i << "," << j;
  const double cond = normInf(n, A) * normInf(n, Ainv);
  const double tol = 16.0 * n * kEps * cond;
  EXPECT_LE(residual(n, A, Ainv), tol) << "A Ainv - I, cond " << cond;
  EXPECT_LE(residual(n, Ainv, A), tol) << "Ainv A - I, cond " << cond;
}

// The inverse through an LU factorisation of the rows of A taken in `order` (order[i - 1] is
// the row of A that goes to position i), with no pivot search of its own: on and above the
// diagonal U(i, j) = PA(i, j) - sum, below it L(i, j) = (PA(i, j) - sum) / U(j, j), the sums
// running over k < min(i, j) from 0 upwards; then L y = P e_c and U x = y for each column c.
// `reversedSums` runs the factorisation sums downwards instead, to show that a case tells the
// two orders apart.
Mat inverseInRowOrder(int n, const Mat& A, const std::vector<int>& order,
                      bool reversedSums = false) {
  Mat L = mat2(1, n, 1, n), U = mat2(1, n, 1, n), X = mat2(1, n, 1, n);
  auto pa = [&](int i, int j) { return A(order[static_cast<std::size_t>(i - 1)], j); };
  for (int j = 1; j <= n; ++j)
    for (int i = 1; i <= n; ++i) {
      const int kmax = std::min(i, j) - 1;
      double sum = 0.0;
      for (int t = 1; t <= kmax; ++t) {
        const int k = reversedSums ? kmax + 1 - t : t;
        sum += L(i, k) * U(k, j);
      }
      if (i <= j)
        U(i, j) = pa(i, j) - sum;
      else
        L(i, j) = (pa(i, j) - sum) / U(j, j);
    }
  std::vector<double> y(static_cast<std::size_t>(n + 1)), x(static_cast<std::size_t>(n + 1));
  for (int c = 1; c <= n; ++c) {
    for (int i = 1; i <= n; ++i) {
      double sum = 0.0;
      for (int k = 1; k < i; ++k) sum += L(i, k) * y[static_cast<std::size_t>(k)];
      y[static_cast<std::size_t>(i)] =
          (order[static_cast<std::size_t>(i - 1)] == c ? 1.0 : 0.0) - sum;
    }
    for (int i = n; i >= 1; --i) {
      double sum = 0.0;
      for (int k = i + 1; k <= n; ++k) sum += U(i, k) * x[static_cast<std::size_t>(k)];
      x[static_cast<std::size_t>(i)] = (y[static_cast<std::size_t>(i)] - sum) / U(i, i);
    }
    for (int i = 1; i <= n; ++i) X(i, c) = x[static_cast<std::size_t>(i)];
  }
  return X;
}

bool sameBits(int n, const Mat& X, const Mat& Y) {
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j)
      if (X(i, j) != Y(i, j)) return false;
  return true;
}

TEST(Minv, AZeroLeadingElementAndOnlyTheLeadingBlockOfLargerArrays) {
  // By hand: x1 = b2, x2 = b3 - 3 b2, x3 = b1 + 6 b2 - 2 b3.
  const Mat A = rowsMat({{0, 2, 1}, {1, 0, 0}, {3, 1, 0}});
  const Mat byHand = rowsMat({{0, 1, 0}, {0, -3, 1}, {1, 6, -2}});
  Mat big = testing::filledMat(1, 4, 1, 4, 1e6);
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j) big(i, j) = A(i, j);
  Mat bigInv = testing::filledMat(1, 4, 1, 4, -5.0);
  minv(3, big, bigInv);
  for (int i = 1; i <= 4; ++i)
    for (int j = 1; j <= 4; ++j)
      EXPECT_NEAR(bigInv(i, j), i <= 3 && j <= 3 ? byHand(i, j) : -5.0, 8 * kEps) << i << "," << j;
  expectInverse(3, A, bigInv);
}

TEST(Minv, RandomWellConditionedMatricesOfSizesOneToNine) {
  const std::uint64_t seed = 1937;
  std::cout << "[ seed     ] " << seed << '\n';
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::uniform_int_distribution<int> exponent(-3, 3);
  for (int n = 1; n <= 9; ++n)
    for (int trial = 0; trial < 4; ++trial) {
      SCOPED_TRACE(::testing::Message() << "seed " << seed << ", n " << n << ", trial " << trial);
      // Diagonally dominant, rows scaled by powers of two (so that only implicit scaling finds
      // the dominant element), then rows shuffled so that every pivot needs an exchange.
      Mat M = mat2(1, n, 1, n);
      for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= n; ++j) M(i, j) = u(rng) + (i == j ? n : 0.0);
      std::vector<int> order(static_cast<std::size_t>(n));
      std::iota(order.begin(), order.end(), 1);
      std::shuffle(order.begin(), order.end(), rng);
      if (n > 1 && std::is_sorted(order.begin(), order.end()))
        std::rotate(order.begin(), order.begin() + 1, order.end());
      Mat A = mat2(1, n, 1, n);
      for (int i = 1; i <= n; ++i) {
        const double s = std::ldexp(1.0, exponent(rng));
        for (int j = 1; j <= n; ++j) A(i, j) = s * M(order[static_cast<std::size_t>(i - 1)], j);
      }
      expectInverse(n, A, inverse(n, A));
    }
}

TEST(Minv, PivotRowFollowsImplicitScalingAndLaterRowsWinTies) {
  struct Case {
    const char* what;
    Mat A;
    std::vector<int> pivots;  // the row order the rules must produce
    std::vector<int> other;   // a plausible wrong order, whose answer differs in the last bits
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
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const int n = c.A.rows();
    const Mat want = inverseInRowOrder(n, c.A, c.pivots);
    ASSERT_FALSE(sameBits(n, want, inverseInRowOrder(n, c.A, c.other)));
    const Mat got = inverse(n, c.A);
    EXPECT_TRUE(sameBits(n, got, want));
    expectInverse(n, c.A, got);
  }
}

// Every sum of the factorisation and the substitutions in the stated order: the result is equal
// to the bit to the reference factorisation in the known pivot order.
TEST(Minv, MatchesTheReferenceFactorisationToTheBit) {
  // Row i of M has its dominant element on the diagonal; A holds the rows of M shuffled, row i of
  // A being row (3 (i - 1) + 2) mod 7 + 1 of M, so the pivot of column j is the row of A that
  // came from row j of M.
  const int n = 7;
  Mat M = mat2(1, n, 1, n);
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j)
      M(i, j) = ((i * 17 + j * 29) % 23) / 23.0 - 0.5 + (i == j ? 2.0 : 0.0);
  Mat A = mat2(1, n, 1, n);
  std::vector<int> pivots(static_cast<std::size_t>(n));
  for (int i = 1; i <= n; ++i) {
    const int from = (3 * (i - 1) + 2) % n + 1;
    for (int j = 1; j <= n; ++j) A(i, j) = M(from, j);
    pivots[static_cast<std::size_t>(from - 1)] = i;
  }
  const Mat want = inverseInRowOrder(n, A, pivots);
  ASSERT_FALSE(sameBits(n, want, inverseInRowOrder(n, A, pivots, true)));
  const Mat got = inverse(n, A);
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j) EXPECT_EQ(got(i, j), want(i, j)) << i << "," << j;
  expectInverse(n, A, got);
}

TEST(Minv, SingularMatricesGiveNonFiniteValuesSilently) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  const Mat rankOne = inverse(2, rowsMat({{1, 2}, {2, 4}}));
  const Mat zero = inverse(3, mat2(1, 3, 1, 3));
  const std::string out = ::testing::internal::GetCapturedStdout();
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(out, "");
  EXPECT_EQ(err, "");

  int nonFinite = 0;
  for (int i = 1; i <= 2; ++i)
    for (int j = 1; j <= 2; ++j) nonFinite += std::isfinite(rankOne(i, j)) ? 0 : 1;
  EXPECT_GT(nonFinite, 0);
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
  EXPECT_EQ(macheps(), e);  // the same on every call
}

}  // namespace
}  // namespace ovaro
