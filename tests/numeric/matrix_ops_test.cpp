// The matrix library against small hand-worked cases, identities that must hold, and the
// accumulation orders that keep results equal to the bit between builds.
#include "numeric/matrix_ops.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "numeric/arrays.h"
#include "numeric/prompter.h"
#include "support/mat.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::filledMat;
using testing::rowsMat;

constexpr double kSentinel = 99.25;         // marks elements an operation must leave alone
const double kTwo53 = std::ldexp(1.0, 53);  // 2^53 + 1 rounds back to 2^53

// Checks `actual` over the whole of its bounds: `expected` (rows and columns from 1) inside the
// block it covers, the sentinel everywhere else.
void expectBlock(const Mat& expected, const Mat& actual) {
  for (int i = actual.rlo(); i <= actual.rhi(); ++i)
    for (int j = actual.clo(); j <= actual.chi(); ++j) {
      const bool inside = i >= 1 && i <= expected.rows() && j >= 1 && j <= expected.cols();
      EXPECT_EQ(actual(i, j), inside ? expected(i, j) : kSentinel) << "element " << i << "," << j;
    }
}

Mat randomMat(std::mt19937_64& rng, int n, int m) {
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Mat a = mat2(1, n, 1, m);
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= m; ++j) a(i, j) = u(rng);
  return a;
}

std::mt19937_64 seededRng(std::uint64_t seed) {
  std::cout << "[ seed     ] " << seed << '\n';
  return std::mt19937_64(seed);
}

TEST(MatrixOps, ElementwiseOperationsWriteOnlyTheirSize) {
  // Operands 2 x 3 inside 3 x 4 arrays: the third row and fourth column are not theirs.
  const Mat A = rowsMat({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
  const Mat B = rowsMat({{0.5, -1, 2}, {3, 0, -4}, {1, 1, 1}});
  const Mat C = rowsMat({{10, 20, 30}, {40, 50, 60}, {0, 0, 0}});
  const Mat D = rowsMat({{-1, -1, -1}, {-2, -2, -2}, {0, 0, 0}});
  auto out = [] { return filledMat(1, 3, 1, 4, kSentinel); };

  using Op = std::function<void(Mat&)>;
  const std::pair<Op, Mat> cases[] = {
      {[&](Mat& r) { mzero(2, 3, r); }, rowsMat({{0, 0, 0}, {0, 0, 0}})},
      {[&](Mat& r) { mident(2, 3, r); }, rowsMat({{1, 0, 0}, {0, 1, 0}})},
      {[&](Mat& r) { mident(3, 2, r); }, rowsMat({{1, 0}, {0, 1}, {0, 0}})},
      {[&](Mat& r) { mmov(2, 3, A, r); }, rowsMat({{1, 2, 3}, {4, 5, 6}})},
      {[&](Mat& r) { mneg(2, 3, B, r); }, rowsMat({{-0.5, 1, -2}, {-3, 0, 4}})},
      {[&](Mat& r) { madd(2, 3, A, B, r); }, rowsMat({{1.5, 1, 5}, {7, 5, 2}})},
      {[&](Mat& r) { msub(2, 3, A, B, r); }, rowsMat({{0.5, 3, 1}, {1, 5, 10}})},
      {[&](Mat& r) { madd3(2, 3, A, B, C, r); }, rowsMat({{11.5, 21, 35}, {47, 55, 62}})},
      {[&](Mat& r) { madd4(2, 3, A, B, C, D, r); }, rowsMat({{10.5, 20, 34}, {45, 53, 60}})}};
  for (const auto& [op, expected] : cases) {
    Mat r = out();
    op(r);
    expectBlock(expected, r);
  }

  // Column 2 of a per-period array (periods 0..2) added to the diagonal.
  Mat V = mat2(1, 3, 0, 2);
  for (int i = 1; i <= 3; ++i)
    for (int t = 0; t <= 2; ++t) V(i, t) = 100.0 * (t + 1) + i;
  Mat r = out();
  maddiagcol(2, 3, 2, A, V, r);
  expectBlock(rowsMat({{302, 2, 3}, {4, 307, 6}}), r);
  r = out();
  maddiagcol(3, 2, 0, A, V, r);
  expectBlock(rowsMat({{102, 2}, {4, 107}, {7, 8}}), r);
}

TEST(MatrixOps, SubrangeOperationsWriteOnlyTheirBounds) {
  // Arrays 0..3 x 0..4; the operations cover rows 1..2 and columns 2..4.
  Mat A = mat2(0, 3, 0, 4);
  Mat B = mat2(0, 3, 0, 4);
  for (int i = 0; i <= 3; ++i)
    for (int j = 0; j <= 4; ++j) {
      A(i, j) = 10.0 * i + j;
      B(i, j) = 0.25 * j - i;
    }
  auto inside = [](int i, int j) { return i >= 1 && i <= 2 && j >= 2 && j <= 4; };

  const std::pair<std::function<void(Mat&)>, std::function<double(int, int)>> cases[] = {
      {[&](Mat& r) { mzerosub(1, 2, 2, 4, r); }, [](int, int) { return 0.0; }},
      {[&](Mat& r) { mmovsub(1, 2, 2, 4, A, r); }, [](int i, int j) { return 10.0 * i + j; }},
      {[&](Mat& r) { msubsub(1, 2, 2, 4, A, B, r); },
       [](int i, int j) { return 11.0 * i + 0.75 * j; }}};
  for (const auto& [op, value] : cases) {
    Mat r = filledMat(0, 3, 0, 4, kSentinel);
    op(r);
    for (int i = 0; i <= 3; ++i)
      for (int j = 0; j <= 4; ++j)
        EXPECT_EQ(r(i, j), inside(i, j) ? value(i, j) : kSentinel) << i << j;
  }

  // B(j, i) = A(i, j) over rows 1..2, columns 2..4 of A.
  Mat t = filledMat(0, 4, 0, 3, kSentinel);
  mtranssub(1, 2, 2, 4, A, t);
  for (int j = 0; j <= 4; ++j)
    for (int i = 0; i <= 3; ++i)
      EXPECT_EQ(t(j, i), inside(i, j) ? 10.0 * i + j : kSentinel) << j << i;
}

// Each sum and product is taken in the stated order; these cases give a different answer in any
// other order (2^53 + 1 rounds back to 2^53).
TEST(MatrixOps, SumsAndProductsRunInTheStatedOrder) {
  const Mat big = rowsMat({{kTwo53}});
  const Mat one = rowsMat({{1}});
  const Mat minusBig = rowsMat({{-kTwo53}});
  Mat r = mat2(1, 1, 1, 1);
  madd3(1, 1, big, one, minusBig, r);  // (2^53 + 1) - 2^53 = 0, not 2^53 + (1 - 2^53) = 1
  EXPECT_EQ(r(1, 1), 0.0);
  madd4(1, 1, big, one, one, minusBig, r);
  EXPECT_EQ(r(1, 1), 0.0);
  madd3(1, 1, one, big, minusBig, r);
  EXPECT_EQ(r(1, 1), 0.0);
  madd3(1, 1, minusBig, one, big, r);  // (1 - 2^53) + 2^53 = 1
  EXPECT_EQ(r(1, 1), 1.0);

  // mmul: the inner index runs upwards from a sum of 0.
  const Mat row = rowsMat({{kTwo53, 1, -kTwo53}});
  const Mat ones = rowsMat({{1}, {1}, {1}});
  mmul(1, 3, 1, row, ones, r);
  EXPECT_EQ(r(1, 1), 0.0);
  const Mat reversed = rowsMat({{-kTwo53, 1, kTwo53}});
  mmul(1, 3, 1, reversed, ones, r);
  EXPECT_EQ(r(1, 1), 1.0);

  // mtrace2: i outer, j inner. The terms A(i,j) B(j,i) come as 1, 2^53, -1, -2^53 in that order
  // (sum -1); with j outer they would come as 1, -1, 2^53, -2^53 (sum 0).
  const Mat A2 = rowsMat({{1, kTwo53}, {-1, -kTwo53}});
  const Mat B2 = rowsMat({{1, 1}, {1, 1}});
  EXPECT_EQ(mtrace2(2, 2, A2, B2), -1.0);

  // mtrace4 with n = 1, m = 2: the terms (A(1,k) B(k,1)) (C(1,l) D(l,1)) are p_k q_l with
  // p = (1, -1) and q = (1, 2^53). With k outside l they come as 1, 2^53, -1, -2^53 (sum -1);
  // with l outside k as 1, -1, 2^53, -2^53 (sum 0).
  const Mat A4 = rowsMat({{1, -1}});
  const Mat B4 = rowsMat({{1}, {1}});
  const Mat C4 = rowsMat({{1, kTwo53}});
  const Mat D4 = rowsMat({{1}, {1}});
  EXPECT_EQ(mtrace4(1, 2, A4, B4, C4, D4), -1.0);

  // Each term of mtrace4 is ((A B) C) D. With n = m = 1 and these values the other groupings
  // differ in the last bit.
  const double a = 6.1, b = 3.4, c = 7.1, d = 3.0;
  const double leftToRight = ((a * b) * c) * d;
  ASSERT_NE(leftToRight, (a * b) * (c * d));
  ASSERT_NE(leftToRight, a * (b * (c * d)));
  EXPECT_EQ(mtrace4(1, 1, rowsMat({{a}}), rowsMat({{b}}), rowsMat({{c}}), rowsMat({{d}})),
            leftToRight);
}

TEST(MatrixOps, ProductsMatchHandWorkedCases) {
  Mat r = filledMat(1, 3, 1, 3, kSentinel);
  mmul(2, 3, 2, rowsMat({{1, 2, 3}, {4, 5, 6}}), rowsMat({{7, 8}, {9, 10}, {11, 12}}), r);
  expectBlock(rowsMat({{58, 64}, {139, 154}}), r);

  // A (1 x 2) (B (2 x 3) D (3 x 1)): B D = (14, 2)', A B D = 18.
  r = filledMat(1, 2, 1, 2, kSentinel);
  mmul3(1, 2, 3, 1, rowsMat({{1, 2}}), rowsMat({{1, 2, 3}, {0, 1, 0}}), rowsMat({{1}, {2}, {3}}),
        r);
  expectBlock(rowsMat({{18}}), r);

  // A' (B D) + E with A 2 x 3 (so p = 3 differs from n = 2) and a B that is not symmetric:
  // B D = (1, 1)', A' B D = (5, 7, 9)'.
  r = filledMat(1, 4, 1, 2, kSentinel);
  mtransmul(2, 3, 1, rowsMat({{1, 2, 3}, {4, 5, 6}}), rowsMat({{1, 0}, {2, 1}}),
            rowsMat({{1}, {-1}}), rowsMat({{0.5}, {1}, {-9}}), r);
  expectBlock(rowsMat({{5.5}, {8}, {0}}), r);

  r = filledMat(1, 4, 1, 3, kSentinel);
  mtrans(2, 3, rowsMat({{1, 2, 3}, {4, 5, 6}}), r);
  expectBlock(rowsMat({{1, 4}, {2, 5}, {3, 6}}), r);
}

TEST(MatrixOps, TripleProductAssociatesToTheRight) {
  const std::uint64_t seed = 20240611;
  std::mt19937_64 rng = seededRng(seed);
  const Mat A = randomMat(rng, 3, 4), B = randomMat(rng, 4, 5), D = randomMat(rng, 5, 2);
  Mat BD = mat2(1, 4, 1, 2), ABD = mat2(1, 3, 1, 2), C = mat2(1, 3, 1, 2);
  mmul(4, 5, 2, B, D, BD);
  mmul(3, 4, 2, A, BD, ABD);
  mmul3(3, 4, 5, 2, A, B, D, C);
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 2; ++j) EXPECT_EQ(C(i, j), ABD(i, j)) << i << "," << j;
}

// Keeps a copy of everything shown to it.
class RecordingTrace : public MatrixTrace {
 public:
  struct Shown {
    std::string label;
    Mat copy;
  };
  void matrix(std::string_view label, int rlo, int rhi, int clo, int chi, const Mat& a) override {
    Mat copy = mat2(rlo, rhi, clo, chi);
    mmovsub(rlo, rhi, clo, chi, a, copy);
    shown.push_back({std::string(label), std::move(copy)});
  }
  std::vector<Shown> shown;
};

TEST(MatrixOps, QuadraticFormTracesItsStepsAndMatchesTheUntracedForm) {
  // A is m x n = 2 x 3; K is not symmetric, so K and K' give different products.
  //   K A = [2 1 3; 0 3 -3],  A' K A = [2 1 3; 0 3 -3; 4 -1 9],
  // and column 2 of V, (10, 20, 30), goes on the diagonal.
  const Mat A = rowsMat({{1, 0, 2}, {0, 1, -1}});
  const Mat K = rowsMat({{2, 1}, {0, 3}});
  Mat V = mat2(1, 3, 0, 3);
  for (int i = 1; i <= 3; ++i)
    for (int t = 0; t <= 3; ++t) V(i, t) = t == 2 ? 10.0 * i : -1000.0;

  RecordingTrace trace;
  Mat traced = filledMat(1, 4, 1, 4, kSentinel);
  mmul31tv(3, 2, 2, A, K, V, traced, &trace);
  expectBlock(rowsMat({{12, 1, 3}, {0, 23, -3}, {4, -1, 39}}), traced);

  const std::pair<const char*, Mat> expected[] = {
      {"kuc in mmul31tv", K},
      {"a in mmul31tv", A},
      {"kuca in mmul31tv", rowsMat({{2, 1, 3}, {0, 3, -3}})},
      {"at in mmul31tv", rowsMat({{1, 0}, {0, 1}, {2, -1}})},
      {"atkuca in mmul31tv", rowsMat({{2, 1, 3}, {0, 3, -3}, {4, -1, 9}})},
  };
  ASSERT_EQ(trace.shown.size(), std::size(expected));
  for (std::size_t s = 0; s < std::size(expected); ++s) {
    const auto& [label, value] = expected[s];
    SCOPED_TRACE(label);
    EXPECT_EQ(trace.shown[s].label, label);
    const Mat& copy = trace.shown[s].copy;
    EXPECT_EQ((std::array{copy.rlo(), copy.rhi(), copy.clo(), copy.chi()}),
              (std::array{1, value.rows(), 1, value.cols()}));
    expectBlock(value, copy);
  }

  Mat untraced = filledMat(1, 4, 1, 4, kSentinel);
  mmul31tv(3, 2, 2, A, K, V, untraced, nullptr);
  expectBlock(rowsMat({{12, 1, 3}, {0, 23, -3}, {4, -1, 39}}), untraced);

  // With rounding in play the traced and untraced forms still agree to the bit.
  const std::uint64_t seed = 77031;
  std::mt19937_64 rng = seededRng(seed);
  for (const auto& [n, m] : {std::pair{4, 3}, std::pair{3, 5}, std::pair{1, 1}, std::pair{6, 6}}) {
    SCOPED_TRACE(::testing::Message() << "n=" << n << " m=" << m);
    const Mat An = randomMat(rng, m, n), Kn = randomMat(rng, m, m), Vn = randomMat(rng, n, 3);
    Mat c1 = mat2(1, n, 1, n), c2 = mat2(1, n, 1, n);
    RecordingTrace ignored;
    mmul31tv(n, m, 3, An, Kn, Vn, c1, &ignored);
    mqformdiag(n, m, 3, An, Kn, Vn, c2);
    for (int i = 1; i <= n; ++i)
      for (int j = 1; j <= n; ++j) EXPECT_EQ(c1(i, j), c2(i, j)) << i << "," << j;
  }
}

TEST(MatrixOps, TracesEqualTheDiagonalOfTheExplicitProduct) {
  auto diagonalSum = [](const Mat& P) {
    double s = 0.0;
    for (int i = 1; i <= P.rows(); ++i) s += P(i, i);
    return s;
  };

  // Small integers: every sum is exact, so the identities hold exactly.
  const Mat A = rowsMat({{1, -2, 3}, {0, 4, -1}});   // 2 x 3
  const Mat B = rowsMat({{2, 1}, {-3, 5}, {1, 0}});  // 3 x 2
  const Mat C = rowsMat({{-1, 0, 2}, {3, 1, 1}});    // 2 x 3
  const Mat D = rowsMat({{1, 1}, {0, -2}, {4, 3}});  // 3 x 2
  Mat AB = mat2(1, 2, 1, 2), ABC = mat2(1, 2, 1, 3), ABCD = mat2(1, 2, 1, 2);
  mmul(2, 3, 2, A, B, AB);
  mmul(2, 2, 3, AB, C, ABC);
  mmul(2, 3, 2, ABC, D, ABCD);
  EXPECT_EQ(mtrace2(2, 3, A, B), diagonalSum(AB));
  EXPECT_EQ(mtrace2(2, 3, A, B), mtrace2(3, 2, B, A));  // trace(AB) = trace(BA)
  EXPECT_EQ(mtrace4(2, 3, A, B, C, D), diagonalSum(ABCD));
  EXPECT_EQ(mtrace4(2, 3, A, B, C, D), mtrace4(3, 2, B, C, D, A));  // cyclic
  EXPECT_EQ(mtrace2(2, 3, A, B), 31.0);                             // (2 + 6 + 3) + (0 + 20 + 0)

  // Random doubles agree up to rounding.
  const std::uint64_t seed = 4417;
  std::mt19937_64 rng = seededRng(seed);
  for (const auto& [n, m] : {std::pair{1, 1}, std::pair{3, 5}, std::pair{6, 2}, std::pair{7, 7}}) {
    SCOPED_TRACE(::testing::Message() << "n=" << n << " m=" << m);
    const Mat Ar = randomMat(rng, n, m), Br = randomMat(rng, m, n), Cr = randomMat(rng, n, m),
              Dr = randomMat(rng, m, n);
    Mat P = mat2(1, n, 1, n), Q = mat2(1, n, 1, m), R = mat2(1, n, 1, n);
    mmul(n, m, n, Ar, Br, P);
    mmul(n, n, m, P, Cr, Q);
    mmul(n, m, n, Q, Dr, R);
    const double tol = 64.0 * n * m * m * std::ldexp(1.0, -52);
    EXPECT_NEAR(mtrace2(n, m, Ar, Br), diagonalSum(P), tol);
    EXPECT_NEAR(mtrace4(n, m, Ar, Br, Cr, Dr), diagonalSum(R), tol * n * m);
  }
}

TEST(MatrixOps, ThreeIndexTransposeMovesEachIndex) {
  Mat3 A3 = mat3(1, 2, 0, 3, 1, 2);
  for (int i = 1; i <= 2; ++i)
    for (int j = 0; j <= 3; ++j)
      for (int k = 1; k <= 2; ++k) A3(i, j, k) = 100.0 * i + 10.0 * j + k;
  Mat3 B3 = mat3(0, 3, 1, 2, 1, 2);
  mtrans3(1, 2, 0, 3, 1, 2, A3, B3);
  for (int j = 0; j <= 3; ++j)
    for (int k = 1; k <= 2; ++k)
      for (int i = 1; i <= 2; ++i)
        EXPECT_EQ(B3(j, k, i), 100.0 * i + 10.0 * j + k) << j << "," << k << "," << i;

  Mat3 copy = mat3(1, 2, 0, 3, 1, 2);
  mmov3sub(1, 2, 1, 3, 2, 2, A3, copy);  // periods 1..3 of scenario 2 only
  for (int i = 1; i <= 2; ++i)
    for (int j = 0; j <= 3; ++j)
      for (int k = 1; k <= 2; ++k)
        EXPECT_EQ(copy(i, j, k), j >= 1 && k == 2 ? A3(i, j, k) : 0.0) << i << j << k;
}

TEST(MatrixOps, SlicesAndColumnsMoveTheRightElements) {
  // Slice 3 of a 3 x 3 x 4 array: set and get back, other slices untouched.
  Mat3 A3 = mat3(1, 3, 1, 3, 1, 4);
  const Mat A = rowsMat({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
  mslice3set(2, 3, 3, A, A3);
  mslice3setsub(2, 3, 2, 3, 1, A, A3);  // rows 2..3, columns 2..3 into slice 1
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j)
      for (int k = 1; k <= 4; ++k) {
        const bool set = (k == 3 && i <= 2) || (k == 1 && i >= 2 && j >= 2);
        EXPECT_EQ(A3(i, j, k), set ? A(i, j) : 0.0) << i << j << k;
      }
  Mat got = filledMat(1, 3, 1, 4, kSentinel);
  mslice3get(2, 3, 3, A3, got);
  expectBlock(rowsMat({{1, 2, 3}, {4, 5, 6}}), got);
  got = filledMat(1, 3, 1, 4, kSentinel);
  mslice3getsub(2, 3, 2, 3, 1, A3, got);
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 4; ++j)
      EXPECT_EQ(got(i, j), i >= 2 && j >= 2 && j <= 3 ? A(i, j) : kSentinel) << i << j;

  // Columns of per-period paths (three states over periods 0..2) and a row of a gain.
  const Mat x = rowsMat({{1}, {2}, {3}});
  Mat paths = filledMat(1, 3, 0, 2, kSentinel);
  vcolset(2, 1, x, paths);
  vcolsetsub(2, 3, 0, x, paths);
  Mat col = filledMat(1, 3, 1, 1, kSentinel), sub = col, sum = col;
  vcolget(2, 1, paths, col);
  vcolgetsub(2, 3, 0, paths, sub);
  vcoladd(2, 1, rowsMat({{0.5}, {-1}, {100}}), paths, sum);
  Mat G = filledMat(1, 3, 1, 3, kSentinel);
  vrowset(2, 3, rowsMat({{7, 8, 9}}), G);
  const double s = kSentinel;
  const double want[][3] = {{s, 1, s}, {2, 2, s}, {3, s, s}};
  for (int i = 1; i <= 3; ++i) {
    for (int t = 0; t <= 2; ++t) EXPECT_EQ(paths(i, t), want[i - 1][t]) << i << "," << t;
    EXPECT_EQ(col(i, 1), i <= 2 ? x(i, 1) : s) << i;
    EXPECT_EQ(sub(i, 1), i >= 2 ? x(i, 1) : s) << i;
    for (int j = 1; j <= 3; ++j) EXPECT_EQ(G(i, j), i == 3 && j <= 2 ? 6.0 + j : s) << i << j;
  }
  EXPECT_EQ(sum(1, 1), 1.5);
  EXPECT_EQ(sum(2, 1), 1.0);
  EXPECT_EQ(sum(3, 1), s);
}

// Stored scenarios: variable x period x scenario.
Mat3 scenarios(int n, int nt, int count) {
  Mat3 a = mat3(1, n, 0, nt - 1, 1, count);
  for (int i = 1; i <= n; ++i)
    for (int t = 0; t < nt; ++t)
      for (int k = 1; k <= count; ++k) a(i, t, k) = 1000.0 * k + 10.0 * i + t;
  return a;
}

// Scenarios `from`..`to` of `got` are those of `ref`, every other one of its scenarios is zero.
void expectScenarios(const Mat3& got, const Mat3& ref, int from, int to) {
  for (int i = got.rlo(); i <= got.rhi(); ++i)
    for (int t = got.clo(); t <= got.chi(); ++t)
      for (int k = got.dlo(); k <= got.dhi(); ++k)
        EXPECT_EQ(got(i, t, k), k >= from && k <= to ? ref(i, t, k) : 0.0) << i << t << k;
}

TEST(MatrixOps, ModMatSizeAddsAZeroScenarioOrWarnsAndKeepsWhatFits) {
  RecordingPrompter prompter;
  const Mat3 three = scenarios(2, 3, 3), four = scenarios(2, 3, 4);
  const Mat3 grown = ModMatSize(1, 2, 0, 2, 1, 3, 4, three, prompter);
  EXPECT_TRUE(prompter.messages().empty());
  EXPECT_EQ(grown.dhi(), 4);
  expectScenarios(grown, three, 1, 3);

  const Mat3 shrunk = ModMatSize(1, 2, 0, 2, 1, 4, 2, four, prompter);
  EXPECT_EQ(testing::shown(prompter),
            (std::vector<std::string>{"Warning!: l3old greater than l3new in ModMatSize",
                                      "Warning!: l3old greater than l3new in mmov3dsub"}));
  EXPECT_EQ(prompter.messages()[0].buttons, Buttons::Ok);
  EXPECT_EQ(shrunk.dhi(), 2);
  expectScenarios(shrunk, four, 1, 2);

  // The copy on its own: warns and copies up to where the destination ends; without the warning
  // case it copies ndl..l3old and leaves the rest of the destination alone.
  prompter.clear();
  Mat3 to = mat3(1, 2, 0, 2, 1, 3), wide = mat3(1, 2, 0, 2, 1, 5);
  mmov3dsub(1, 2, 0, 2, 1, 4, 3, four, to, prompter);
  EXPECT_EQ(testing::shown(prompter),
            std::vector<std::string>{"Warning!: l3old greater than l3new in mmov3dsub"});
  expectScenarios(to, four, 1, 3);
  prompter.clear();
  mmov3dsub(1, 2, 0, 2, 2, 3, 5, four, wide, prompter);
  EXPECT_TRUE(prompter.messages().empty());
  expectScenarios(wide, four, 2, 3);
}

}  // namespace
}  // namespace ovaro
