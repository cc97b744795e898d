// The matrix library: what each operation writes and what it leaves alone, products against the
// textbook loops to the bit, the order of its sums, and the warnings of the scenario resize.
#include "numeric/matrix_ops.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/mat.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::filledMat;
using testing::rowsMat;

constexpr double kSentinel = 99.25;         // marks elements an operation must leave alone
const double kTwo53 = std::ldexp(1.0, 53);  // 2^53 + 1 rounds back to 2^53

// `actual` over its whole bounds: `expected` (from 1) inside the block it covers, else the
// sentinel.
void expectBlock(const Mat& expected, const Mat& actual) {
  for (int i = actual.rlo(); i <= actual.rhi(); ++i)
    for (int j = actual.clo(); j <= actual.chi(); ++j) {
      const bool inside = i >= 1 && i <= expected.rows() && j >= 1 && j <= expected.cols();
      EXPECT_EQ(actual(i, j), inside ? expected(i, j) : kSentinel) << "element " << i << "," << j;
    }
}

TEST(MatrixOps, OperationsWriteOnlyTheirSizeOrBounds) {
  // Operands 2 x 3 inside 3 x 4 arrays: the third row and fourth column are not theirs; the
  // operations over bounds leave everything outside them.
  const Mat A = rowsMat({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
  const Mat B = rowsMat({{0.5, -1, 2}, {3, 0, -4}, {1, 1, 1}});
  const Mat C = rowsMat({{10, 20, 30}, {40, 50, 60}, {0, 0, 0}});
  const Mat D = rowsMat({{-1, -1, -1}, {-2, -2, -2}, {0, 0, 0}});
  Mat V = mat2(1, 3, 0, 2);  // a per-period array over periods 0..2
  Mat3 S = mat3(1, 3, 1, 3, 1, 4);
  for (int i = 1; i <= 3; ++i)
    for (int j = 0; j <= 3; ++j) {
      if (j <= 2) V(i, j) = 100.0 * (j + 1) + i;
      for (int k = 1; k <= 4 && j >= 1; ++k) S(i, j, k) = 100.0 * k + 10.0 * i + j;
    }
  const double s = kSentinel;
  const std::pair<std::function<void(Mat&)>, Mat> cases[] = {
      {[&](Mat& r) { mzero(2, 3, r); }, rowsMat({{0, 0, 0}, {0, 0, 0}})},
      {[&](Mat& r) { mident(2, 3, r); }, rowsMat({{1, 0, 0}, {0, 1, 0}})},
      {[&](Mat& r) { mident(3, 2, r); }, rowsMat({{1, 0}, {0, 1}, {0, 0}})},
      {[&](Mat& r) { mmov(2, 3, A, r); }, rowsMat({{1, 2, 3}, {4, 5, 6}})},
      {[&](Mat& r) { mneg(2, 3, B, r); }, rowsMat({{-0.5, 1, -2}, {-3, 0, 4}})},
      {[&](Mat& r) { madd(2, 3, A, B, r); }, rowsMat({{1.5, 1, 5}, {7, 5, 2}})},
      {[&](Mat& r) { msub(2, 3, A, B, r); }, rowsMat({{0.5, 3, 1}, {1, 5, 10}})},
      {[&](Mat& r) { madd3(2, 3, A, B, C, r); }, rowsMat({{11.5, 21, 35}, {47, 55, 62}})},
      {[&](Mat& r) { madd4(2, 3, A, B, C, D, r); }, rowsMat({{10.5, 20, 34}, {45, 53, 60}})},
      {[&](Mat& r) { mtrans(2, 3, A, r); }, rowsMat({{1, 4}, {2, 5}, {3, 6}})},
      {[&](Mat& r) { maddiagcol(2, 3, 2, A, V, r); }, rowsMat({{302, 2, 3}, {4, 307, 6}})},
      {[&](Mat& r) { maddiagcol(3, 2, 0, A, V, r); }, rowsMat({{102, 2}, {4, 107}, {7, 8}})},
      {[&](Mat& r) { vcolget(2, 1, V, r); }, rowsMat({{201}, {202}})},
      {[&](Mat& r) { vcolgetsub(2, 3, 0, V, r); }, rowsMat({{s}, {102}, {103}})},
      {[&](Mat& r) { vcoladd(2, 1, A, V, r); }, rowsMat({{202}, {206}})},
      {[&](Mat& r) { vcolset(2, 2, A, r); }, rowsMat({{s, 1}, {s, 4}})},
      {[&](Mat& r) { vcolsetsub(2, 3, 1, A, r); }, rowsMat({{s}, {4}, {7}})},
      {[&](Mat& r) { vrowset(2, 3, A, r); }, rowsMat({{s, s}, {s, s}, {1, 2}})},
      {[&](Mat& r) { mslice3get(2, 3, 3, S, r); }, rowsMat({{311, 312, 313}, {321, 322, 323}})},
      {[&](Mat& r) { mzerosub(2, 3, 2, 4, r); },
       rowsMat({{s, s, s, s}, {s, 0, 0, 0}, {s, 0, 0, 0}})},
      {[&](Mat& r) { mmovsub(2, 3, 2, 3, A, r); }, rowsMat({{s, s, s}, {s, 5, 6}, {s, 8, 9}})},
      {[&](Mat& r) { msubsub(2, 3, 2, 3, A, B, r); }, rowsMat({{s, s, s}, {s, 5, 10}, {s, 7, 8}})},
      {[&](Mat& r) { mtranssub(2, 3, 1, 2, A, r); }, rowsMat({{s, 4, 7}, {s, 5, 8}})},
      {[&](Mat& r) { mslice3getsub(2, 3, 2, 3, 1, S, r); },
       rowsMat({{s, s, s}, {s, 122, 123}, {s, 132, 133}})}};
  for (const auto& [op, expected] : cases) {
    Mat r = filledMat(1, 3, 1, 4, kSentinel);
    op(r);
    expectBlock(expected, r);
  }
}

// Every element of a product is the textbook sum, from 0 over the inner index upwards, to the bit;
// magnitudes over many decades make any other order show.
TEST(MatrixOps, ProductsAreTheTextbookSumsToTheBit) {
  std::mt19937 gen(11);
  std::uniform_real_distribution<double> mant(-1.0, 1.0), expo(-12.0, 12.0);
  auto random = [&](int r, int c) {
    Mat a = mat2(1, r, 1, c);
    for (int i = 1; i <= r; ++i)
      for (int j = 1; j <= c; ++j) a(i, j) = mant(gen) * std::pow(10.0, expo(gen));
    return a;
  };
  auto textbook = [](int n, int p, int m, auto a, auto b) {  // a(i, k) b(k, j)
    Mat c = filledMat(1, n + 1, 1, m + 1, kSentinel);
    for (int i = 1; i <= n; ++i)
      for (int j = 1; j <= m; ++j) {
        c(i, j) = 0.0;
        for (int k = 1; k <= p; ++k) c(i, j) += a(i, k) * b(k, j);
      }
    return c;
  };
  for (const auto [n, p, m] : {std::array{1, 1, 1}, {3, 7, 2}, {9, 4, 13}}) {
    SCOPED_TRACE(::testing::Message() << n << "x" << p << "x" << m);
    const Mat a = random(n, p), b = random(p, m), at = random(p, n), d = random(m, 3);
    const Mat e = random(n, m), k = random(p, p), v = random(n, 2);
    auto out = [&](int r, int c) { return filledMat(1, r + 1, 1, c + 1, kSentinel); };
    auto expectSame = [](const Mat& want, const Mat& got) {
      for (int i = want.rlo(); i <= want.rhi(); ++i)
        for (int j = want.clo(); j <= want.chi(); ++j) EXPECT_EQ(got(i, j), want(i, j)) << i << j;
    };
    Mat c = out(n, m);
    mmul(n, p, m, a, b, c);
    const Mat ab = textbook(n, p, m, a, b);
    expectSame(ab, c);
    c = out(n, m);
    mtmul(n, p, m, at, b, c);  // at' b
    expectSame(textbook(
                   n, p, m, [&](int i, int q) { return at(q, i); }, b),
               c);
    c = out(n, 3);
    mmul3(n, p, m, 3, a, b, d, c);  // a (b d)
    expectSame(textbook(n, p, 3, a, textbook(p, m, 3, b, d)), c);
    // at' (k b) + e
    Mat want = textbook(
        n, p, m, [&](int i, int q) { return at(q, i); }, textbook(p, p, m, k, b));
    for (int i = 1; i <= n; ++i)
      for (int j = 1; j <= m; ++j) want(i, j) += e(i, j);
    c = out(n, m);
    mtransmul(p, n, m, at, k, b, e, c);
    expectSame(want, c);
    // at' (k at) + diag(column 1 of v)
    want = textbook(
        n, p, n, [&](int i, int q) { return at(q, i); }, textbook(p, p, n, k, at));
    for (int i = 1; i <= n; ++i) want(i, i) += v(i, 1);
    c = out(n, n);
    mqformdiag(n, p, 1, at, k, v, c);
    expectSame(want, c);
  }
}

// Sums run left to right and products associate to the left; each case below gives a different
// answer in any other order.
TEST(MatrixOps, SumsRunInTheStatedOrder) {
  auto one = [](double v) { return rowsMat({{v}}); };
  Mat r = mat2(1, 1, 1, 1);
  auto add3 = [&](double a, double b, double c) {
    madd3(1, 1, one(a), one(b), one(c), r);
    return r(1, 1);
  };
  EXPECT_EQ(add3(kTwo53, 1, -kTwo53), 0.0);  // (2^53 + 1) - 2^53, not 2^53 + (1 - 2^53)
  EXPECT_EQ(add3(-kTwo53, 1, kTwo53), 1.0);
  madd4(1, 1, one(kTwo53), one(1), one(1), one(-kTwo53), r);
  EXPECT_EQ(r(1, 1), 0.0);

  // mtrace2: i outer, j inner; the terms come as 1, 2^53, -1, -2^53 (sum -1), with j outer as
  // 1, -1, 2^53, -2^53 (sum 0).
  const Mat ones = rowsMat({{1, 1}, {1, 1}});
  EXPECT_EQ(mtrace2(2, 2, rowsMat({{1, kTwo53}, {-1, -kTwo53}}), ones), -1.0);
  // mtrace4 with n = 1, m = 2: terms p_k q_l for p = (1, -1), q = (1, 2^53); k outside l gives
  // 1, 2^53, -1, -2^53 (sum -1), l outside k gives 1, -1, 2^53, -2^53 (sum 0).
  const Mat col = rowsMat({{1}, {1}});
  EXPECT_EQ(mtrace4(1, 2, rowsMat({{1, -1}}), col, rowsMat({{1, kTwo53}}), col), -1.0);
  // Each term of mtrace4 is ((A B) C) D; the other groupings differ in the last bit here.
  const double a = 6.1, b = 3.4, c = 7.1, d = 3.0;
  ASSERT_NE(((a * b) * c) * d, (a * b) * (c * d));
  ASSERT_NE(((a * b) * c) * d, a * (b * (c * d)));
  EXPECT_EQ(mtrace4(1, 1, one(a), one(b), one(c), one(d)), ((a * b) * c) * d);
}

// Keeps a copy of everything shown to it.
struct RecordingTrace : MatrixTrace {
  void matrix(std::string_view label, int rlo, int rhi, int clo, int chi, const Mat& a) override {
    Mat copy = mat2(rlo, rhi, clo, chi);
    mmovsub(rlo, rhi, clo, chi, a, copy);
    shown.emplace_back(std::string(label), std::move(copy));
  }
  std::vector<std::pair<std::string, Mat>> shown;
};

TEST(MatrixOps, QuadraticFormTracesItsSteps) {
  // A is 2 x 3 and K not symmetric: K A = [2 1 3; 0 3 -3], A' K A = [2 1 3; 0 3 -3; 4 -1 9],
  // and column 2 of V, (10, 20, 30), goes on the diagonal.
  const Mat A = rowsMat({{1, 0, 2}, {0, 1, -1}}), K = rowsMat({{2, 1}, {0, 3}});
  Mat V = filledMat(1, 3, 0, 3, -1000.0);
  for (int i = 1; i <= 3; ++i) V(i, 2) = 10.0 * i;
  RecordingTrace trace;
  Mat traced = filledMat(1, 4, 1, 4, kSentinel);
  mmul31tv(3, 2, 2, A, K, V, traced, &trace);
  expectBlock(rowsMat({{12, 1, 3}, {0, 23, -3}, {4, -1, 39}}), traced);
  const std::pair<const char*, Mat> expected[] = {
      {"kuc in mmul31tv", K},
      {"a in mmul31tv", A},
      {"kuca in mmul31tv", rowsMat({{2, 1, 3}, {0, 3, -3}})},
      {"at in mmul31tv", rowsMat({{1, 0}, {0, 1}, {2, -1}})},
      {"atkuca in mmul31tv", rowsMat({{2, 1, 3}, {0, 3, -3}, {4, -1, 9}})}};
  ASSERT_EQ(trace.shown.size(), std::size(expected));
  for (std::size_t s = 0; s < std::size(expected); ++s) {
    const auto& [label, copy] = trace.shown[s];
    EXPECT_EQ(label, expected[s].first);
    EXPECT_EQ((std::array{copy.rlo(), copy.rhi(), copy.clo(), copy.chi()}),
              (std::array{1, expected[s].second.rows(), 1, expected[s].second.cols()}));
    expectBlock(expected[s].second, copy);
  }
}

TEST(MatrixOps, TracesEqualTheDiagonalOfTheProduct) {
  // Small integers: every sum is exact, so the identities hold exactly.
  const Mat A = rowsMat({{1, -2, 3}, {0, 4, -1}}), B = rowsMat({{2, 1}, {-3, 5}, {1, 0}});
  const Mat C = rowsMat({{-1, 0, 2}, {3, 1, 1}}), D = rowsMat({{1, 1}, {0, -2}, {4, 3}});
  Mat AB = mat2(1, 2, 1, 2), ABC = mat2(1, 2, 1, 3), ABCD = mat2(1, 2, 1, 2);
  mmul(2, 3, 2, A, B, AB);
  mmul(2, 2, 3, AB, C, ABC);
  mmul(2, 3, 2, ABC, D, ABCD);
  EXPECT_EQ(mtrace2(2, 3, A, B), 31.0);  // (2 + 6 + 3) + (0 + 20 + 0)
  EXPECT_EQ(mtrace2(3, 2, B, A), 31.0);
  EXPECT_EQ(mtrace4(2, 3, A, B, C, D), ABCD(1, 1) + ABCD(2, 2));
  EXPECT_EQ(mtrace4(3, 2, B, C, D, A), ABCD(1, 1) + ABCD(2, 2));  // cyclic
}

TEST(MatrixOps, ThreeIndexArraysMoveEachIndex) {
  Mat3 A3 = mat3(1, 2, 0, 3, 1, 2);
  for (int i = 1; i <= 2; ++i)
    for (int j = 0; j <= 3; ++j)
      for (int k = 1; k <= 2; ++k) A3(i, j, k) = 100.0 * i + 10.0 * j + k;
  Mat3 B3 = mat3(0, 3, 1, 2, 1, 2), copy = mat3(1, 2, 0, 3, 1, 2);
  mtrans3(1, 2, 0, 3, 1, 2, A3, B3);
  mmov3sub(1, 2, 1, 3, 2, 2, A3, copy);  // periods 1..3 of scenario 2 only
  for (int i = 1; i <= 2; ++i)
    for (int j = 0; j <= 3; ++j)
      for (int k = 1; k <= 2; ++k) {
        EXPECT_EQ(B3(j, k, i), A3(i, j, k)) << j << k << i;
        EXPECT_EQ(copy(i, j, k), j >= 1 && k == 2 ? A3(i, j, k) : 0.0) << i << j << k;
      }

  // Slice 3 of a 3 x 3 x 4 array, and rows 2..3, columns 2..3 into slice 1.
  Mat3 S = mat3(1, 3, 1, 3, 1, 4);
  const Mat A = rowsMat({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
  mslice3set(2, 3, 3, A, S);
  mslice3setsub(2, 3, 2, 3, 1, A, S);
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j)
      for (int k = 1; k <= 4; ++k) {
        const bool set = (k == 3 && i <= 2) || (k == 1 && i >= 2 && j >= 2);
        EXPECT_EQ(S(i, j, k), set ? A(i, j) : 0.0) << i << j << k;
      }
}

TEST(MatrixOps, ModMatSizeAddsZeroScenariosOrWarnsAndKeepsWhatFits) {
  Mat3 four = mat3(1, 2, 0, 2, 1, 4);  // variable x period x scenario
  for (int i = 1; i <= 2; ++i)
    for (int t = 0; t <= 2; ++t)
      for (int k = 1; k <= 4; ++k) four(i, t, k) = 1000.0 * k + 10.0 * i + t;
  // Scenarios from..to of `got` are those of `four`, every other one of its scenarios is zero.
  auto expectScenarios = [&](const Mat3& got, int from, int to) {
    for (int i = 1; i <= 2; ++i)
      for (int t = 0; t <= 2; ++t)
        for (int k = got.dlo(); k <= got.dhi(); ++k)
          EXPECT_EQ(got(i, t, k), k >= from && k <= to ? four(i, t, k) : 0.0) << i << t << k;
  };
  RecordingPrompter prompter;
  const Mat3 grown = ModMatSize(1, 2, 0, 2, 1, 4, 6, four, prompter);
  EXPECT_TRUE(prompter.messages().empty());
  EXPECT_EQ(grown.dhi(), 6);
  expectScenarios(grown, 1, 4);
  const Mat3 shrunk = ModMatSize(1, 2, 0, 2, 1, 4, 2, four, prompter);
  EXPECT_EQ(testing::shown(prompter),
            (std::vector<std::string>{"Warning!: l3old greater than l3new in ModMatSize",
                                      "Warning!: l3old greater than l3new in mmov3dsub"}));
  EXPECT_EQ(prompter.messages()[0].buttons, Buttons::Ok);
  EXPECT_EQ(shrunk.dhi(), 2);
  expectScenarios(shrunk, 1, 2);
  // Without the warning case the copy takes ndl..l3old and leaves the rest of `to` alone.
  prompter.clear();
  Mat3 wide = mat3(1, 2, 0, 2, 1, 5);
  mmov3dsub(1, 2, 0, 2, 2, 3, 5, four, wide, prompter);
  EXPECT_TRUE(prompter.messages().empty());
  expectScenarios(wide, 2, 3);
}

}  // namespace
}  // namespace ovaro
