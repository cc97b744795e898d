// The arrays with caller-chosen bounds: zero on creation over the whole range, every index of the
// range addressing its own element, and (in checked builds) no access outside it.
#include "numeric/arrays.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include "numeric/matrix_ops.h"

namespace ovaro {
namespace {

// Every element of the box starts at zero, and a value naming its indices written to every element
// reads back unchanged, so that no two indices share an element.
template <typename Array, typename At>
void expectOwnElements(Array& a, std::array<int, 6> box, At at) {
  for (int pass = 0; pass < 3; ++pass)
    for (int i = box[0]; i <= box[1]; ++i)
      for (int j = box[2]; j <= box[3]; ++j)
        for (int k = box[4]; k <= box[5]; ++k) {
          auto& e = at(a, i, j, k);
          const auto tag = static_cast<std::decay_t<decltype(e)>>(10000.0 * i + 100 * j + k + 0.5);
          if (pass == 1)
            e = tag;
          else
            ASSERT_EQ(e, pass == 0 ? 0 : tag) << i << "," << j << "," << k;
        }
}

TEST(Arrays, EveryKindIsZeroAndAddressesItsWholeRange) {
  for (const auto& [lo, hi] : {std::pair{1, 6}, std::pair{0, 4}, std::pair{-2, 2}}) {
    Vec v = vec1(lo, hi);
    EXPECT_EQ(v.lo(), lo);
    EXPECT_EQ(v.size(), hi - lo + 1);
    expectOwnElements(
        v, {lo, hi, 0, 0, 0, 0}, [](Vec & a, int i, int, int) -> auto& { return a(i); });
  }
  EXPECT_EQ(vec1(1, 0).size(), 0);
  Mat a = mat2(2, 4, -1, 3);
  EXPECT_EQ((std::array{a.rlo(), a.rhi(), a.clo(), a.chi(), a.rows(), a.cols()}),
            (std::array{2, 4, -1, 3, 3, 5}));
  expectOwnElements(
      a, {2, 4, -1, 3, 0, 0}, [](Mat & m, int i, int j, int) -> auto& { return m(i, j); });
  IMat p = imat2(1, 3, 1, 4);
  expectOwnElements(
      p, {1, 3, 1, 4, 0, 0}, [](IMat & m, int i, int j, int) -> auto& { return m(i, j); });
  EXPECT_EQ(mat2(1, 0, 1, 5).rows(), 0);
  EXPECT_EQ(mat2(1, 0, 1, 5).cols(), 5);
  for (Mat3 b : {mat3(0, 2, 1, 3, 1, 4), mat3m(0, 2, 1, 3, 1, 4)}) {
    EXPECT_EQ((std::array{b.rlo(), b.chi(), b.dlo(), b.dhi()}), (std::array{0, 3, 1, 4}));
    expectOwnElements(
        b, {0, 2, 1, 3, 1, 4}, [](Mat3 & m, int i, int j, int k) -> auto& { return m(i, j, k); });
  }
}

#if defined(OVARO_CHECK_BOUNDS)
TEST(ArraysDeathTest, AccessOutsideTheBoundsAborts) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  // A vector counted from 1 has storage for element 0, but element 0 is not part of it.
  EXPECT_DEATH(vec1(1, 3)(0) = 1.0, "vector index 0 outside its bounds 1..3");
  EXPECT_DEATH(vec1(1, 3)(4) = 1.0, "vector index 4 outside");
  EXPECT_DEATH(mat2(1, 2, 0, 3)(3, 0) = 1.0, "matrix row 3 outside");
  EXPECT_DEATH(std::printf("%g\n", static_cast<const Mat&>(mat2(1, 2, 0, 3))(1, -1)),
               "matrix column -1 outside");
  EXPECT_DEATH(imat2(1, 2, 1, 2)(1, 3) = 1, "matrix column 3 outside");
  EXPECT_DEATH(mat3(1, 2, 0, 3, 1, 2)(1, 0, 3) = 1.0, "third index 3 outside");
  // An operation told a size larger than its arrays stops instead of reading past them.
  EXPECT_DEATH(
      {
        Mat c = mat2(1, 3, 1, 3);
        mmul(3, 2, 2, mat2(1, 2, 1, 2), mat2(1, 2, 1, 2), c);
      },
      "matrix row 3 outside");
}
#endif

}  // namespace
}  // namespace ovaro
