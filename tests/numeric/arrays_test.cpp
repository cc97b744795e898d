// The arrays with caller-chosen bounds: zero on creation over the whole range, every index of the
// range addressing its own element, and (in checked builds) no access outside it.
#include "numeric/arrays.h"

#include <cstdio>

#include <gtest/gtest.h>

#include "numeric/matrix_ops.h"

namespace ovaro {
namespace {

// A value that names its indices, so that two indices sharing an element show up as a mismatch.
double tag(int i, int j, int k = 0) {
  return 10000.0 * i + 100.0 * j + k + 0.5;
}

TEST(Arrays, VectorsAreZeroAndAddressTheirWholeRange) {
  Vec v = vec1(1, 6);
  EXPECT_EQ(v.lo(), 1);
  EXPECT_EQ(v.hi(), 6);
  EXPECT_EQ(v.size(), 6);
  for (int i = 1; i <= 6; ++i) EXPECT_EQ(v(i), 0.0) << "element " << i;
  for (int i = 1; i <= 6; ++i) v(i) = tag(i, 0);
  for (int i = 1; i <= 6; ++i) EXPECT_EQ(v(i), tag(i, 0)) << "element " << i;

  // A vector counted from 0 zeroes and uses element 0 as an element of its own.
  Vec w = vec1(0, 4);
  EXPECT_EQ(w.lo(), 0);
  EXPECT_EQ(w.size(), 5);
  for (int i = 0; i <= 4; ++i) EXPECT_EQ(w(i), 0.0) << "element " << i;
  w(0) = 7.0;
  EXPECT_EQ(w(1), 0.0);
  w(1) = 8.0;
  EXPECT_EQ(w(0), 7.0);

  // Lower bounds below zero are allowed too.
  Vec z = vec1(-2, 2);
  EXPECT_EQ(z.size(), 5);
  for (int i = -2; i <= 2; ++i) z(i) = tag(i, 1);
  for (int i = -2; i <= 2; ++i) EXPECT_EQ(z(i), tag(i, 1)) << "element " << i;

  // An empty range has no elements.
  EXPECT_EQ(vec1(1, 0).size(), 0);
}

TEST(Arrays, MatricesAreZeroAndAddressTheirWholeRange) {
  Mat a = mat2(2, 4, -1, 3);
  EXPECT_EQ(a.rlo(), 2);
  EXPECT_EQ(a.rhi(), 4);
  EXPECT_EQ(a.clo(), -1);
  EXPECT_EQ(a.chi(), 3);
  EXPECT_EQ(a.rows(), 3);
  EXPECT_EQ(a.cols(), 5);
  for (int i = 2; i <= 4; ++i)
    for (int j = -1; j <= 3; ++j) EXPECT_EQ(a(i, j), 0.0) << i << "," << j;
  for (int i = 2; i <= 4; ++i)
    for (int j = -1; j <= 3; ++j) a(i, j) = tag(i, j);
  for (int i = 2; i <= 4; ++i)
    for (int j = -1; j <= 3; ++j) EXPECT_EQ(a(i, j), tag(i, j)) << i << "," << j;

  IMat p = imat2(1, 3, 1, 4);
  EXPECT_EQ(p.rows(), 3);
  EXPECT_EQ(p.cols(), 4);
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 4; ++j) EXPECT_EQ(p(i, j), 0) << i << "," << j;
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 4; ++j) p(i, j) = 10 * i + j;
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 4; ++j) EXPECT_EQ(p(i, j), 10 * i + j) << i << "," << j;

  const Mat empty = mat2(1, 0, 1, 5);
  EXPECT_EQ(empty.rows(), 0);
  EXPECT_EQ(empty.cols(), 5);
}

// State paths hold one column per period, counted from 0.
TEST(Arrays, PeriodColumnsStartAtZero) {
  const int n = 3, nt = 4;
  Mat x = mat2(1, n, 0, nt - 1);
  EXPECT_EQ(x.cols(), nt);
  for (int i = 1; i <= n; ++i)
    for (int t = 0; t < nt; ++t) x(i, t) = tag(i, t);

  // The column-vector helpers take the period as the column: column 0 is the first period.
  Mat first = mat2(1, n, 1, 1);
  vcolget(n, 0, x, first);
  for (int i = 1; i <= n; ++i) EXPECT_EQ(first(i, 1), tag(i, 0)) << "state " << i;
  Mat last = mat2(1, n, 1, 1);
  vcolget(n, nt - 1, x, last);
  for (int i = 1; i <= n; ++i) EXPECT_EQ(last(i, 1), tag(i, nt - 1)) << "state " << i;
}

TEST(Arrays, ThreeIndexArraysAreZeroAndAddressTheirWholeRange) {
  for (const bool perPeriod : {false, true}) {
    SCOPED_TRACE(perPeriod ? "mat3m" : "mat3");
    Mat3 a = perPeriod ? mat3m(0, 2, 1, 3, 1, 4) : mat3(0, 2, 1, 3, 1, 4);
    EXPECT_EQ(a.rlo(), 0);
    EXPECT_EQ(a.rhi(), 2);
    EXPECT_EQ(a.clo(), 1);
    EXPECT_EQ(a.chi(), 3);
    EXPECT_EQ(a.dlo(), 1);
    EXPECT_EQ(a.dhi(), 4);
    for (int i = 0; i <= 2; ++i)
      for (int j = 1; j <= 3; ++j)
        for (int k = 1; k <= 4; ++k) EXPECT_EQ(a(i, j, k), 0.0) << i << "," << j << "," << k;
    for (int i = 0; i <= 2; ++i)
      for (int j = 1; j <= 3; ++j)
        for (int k = 1; k <= 4; ++k) a(i, j, k) = tag(i, j, k);
    for (int i = 0; i <= 2; ++i)
      for (int j = 1; j <= 3; ++j)
        for (int k = 1; k <= 4; ++k)
          EXPECT_EQ(a(i, j, k), tag(i, j, k)) << i << "," << j << "," << k;
  }
}

#if defined(OVARO_CHECK_BOUNDS)
TEST(ArraysDeathTest, AccessOutsideTheBoundsAborts) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  // A vector counted from 1 has storage for element 0, but element 0 is not part of it.
  EXPECT_DEATH(
      {
        Vec v = vec1(1, 3);
        v(0) = 1.0;
      },
      "vector index 0 outside its bounds 1..3");
  EXPECT_DEATH(
      {
        Vec v = vec1(1, 3);
        v(4) = 1.0;
      },
      "vector index 4 outside");
  EXPECT_DEATH(
      {
        Mat a = mat2(1, 2, 0, 3);
        a(3, 0) = 1.0;
      },
      "matrix row 3 outside");
  EXPECT_DEATH(
      {
        const Mat a = mat2(1, 2, 0, 3);
        std::printf("%g\n", a(1, -1));
      },
      "matrix column -1 outside");
  EXPECT_DEATH(
      {
        IMat a = imat2(1, 2, 1, 2);
        a(1, 3) = 1;
      },
      "matrix column 3 outside");
  EXPECT_DEATH(
      {
        Mat3 a = mat3(1, 2, 0, 3, 1, 2);
        a(1, 0, 3) = 1.0;
      },
      "third index 3 outside");
  // An operation told a size larger than its arrays stops instead of reading past them.
  EXPECT_DEATH(
      {
        const Mat a = mat2(1, 2, 1, 2);
        Mat c = mat2(1, 3, 1, 3);
        mmul(3, 2, 2, a, a, c);
      },
      "matrix row 3 outside");
}
#endif

}  // namespace
}  // namespace ovaro
