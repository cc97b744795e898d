// The Pindyck conversion, the ITHN bookkeeping and the one-step state product.
#include "solve/system_forms.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "numeric/prompter.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

Mat filled(int rows, int cols, double base) {
  Mat a = mat2(1, rows, 1, cols);
  for (int i = 1; i <= rows; ++i)
    for (int j = 1; j <= cols; ++j) a(i, j) = base + 0.1 * i - 0.07 * j;
  return a;
}

// An ITHN table of `size` rows, the first ones given.
IMat ithnTable(int size, const std::vector<std::array<int, 3>>& rows) {
  IMat t = imat2(1, size, 1, 3);
  for (std::size_t r = 0; r < rows.size(); ++r)
    for (int c = 0; c < 3; ++c) t(static_cast<int>(r) + 1, c + 1) = rows[r][c];
  return t;
}

TEST(Iatoi, ConvertsThePindyckFormThroughTheInverseOfIMinusA0) {
  // (I - A0) times each result gives back its Pindyck matrix; with A0 = 0 the regular form is the
  // Pindyck form, lead matrices included.
  const int n = 3, m = 2, l = 1;
  const Mat pindyck[] = {filled(n, n, 0.3),  filled(n, m, -0.4),  filled(n, l, 1.2),
                         filled(n, n, 0.05), filled(n, n, -0.02), filled(n, n, 0.01)};
  Mat a0 = mat2(1, n, 1, n);
  for (int pass = 0; pass < 2; ++pass) {
    if (pass == 1) a0(1, 2) = 0.3, a0(2, 3) = -0.2, a0(3, 1) = 0.25, a0(2, 2) = 0.1;
    Mat out[] = {mat2(1, n, 1, n), mat2(1, n, 1, m), mat2(1, n, 1, l),
                 mat2(1, n, 1, n), mat2(1, n, 1, n), mat2(1, n, 1, n)};
    ASSERT_EQ(iatoi(n, m, l, 0, a0, pindyck[0], pindyck[1], pindyck[2], pindyck[3], pindyck[4],
                    pindyck[5], out[0], out[1], out[2], out[3], out[4], out[5], SolveTrace()),
              1);
    for (int x = 0; x < 6; ++x)
      for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= out[x].cols(); ++j) {
          double s = 0.0;
          for (int e = 1; e <= n; ++e) s += ((i == e ? 1.0 : 0.0) - a0(i, e)) * out[x](e, j);
          EXPECT_NEAR(s, pindyck[x](i, j), pass == 0 ? 0.0 : 1e-14) << x << " " << i << "," << j;
        }
  }
}

TEST(IthnCheck, PlacesParametersAndReportsBadRows) {
  const int n = 2, m = 2, np = 4;
  IMat nmap = imat2(1, np, 1, 1);
  for (int k = 1; k <= np; ++k) nmap(k, 1) = 1;
  IMat napar = imat2(1, n, 1, n), nbpar = imat2(1, n, 1, m), ncpar = imat2(1, n, 1, 1);
  RecordingPrompter prompter;
  ithnCheck(n, m, np, nmap, ithnTable(6, {{0, 1, 2}, {1, 2, 1}, {2, 2, 1}, {1, 1, 2}}), napar,
            nbpar, ncpar, prompter, SolveTrace());
  EXPECT_TRUE(prompter.messages().empty());
  EXPECT_EQ((std::array{napar(1, 1), napar(1, 2), napar(2, 1), napar(2, 2)}),
            (std::array{0, 1, 0, 0}));
  EXPECT_EQ((std::array{nbpar(1, 1), nbpar(1, 2), nbpar(2, 1), nbpar(2, 2)}),
            (std::array{0, 4, 2, 0}));
  EXPECT_EQ((std::array{ncpar(1, 1), ncpar(2, 1)}), (std::array{0, 3}));

  // Parameter 1 owns two rows; its first has a 0 in column 2, so its second is never counted and
  // parameter 2 reads that row instead of its own. A kind 7 is reported and not placed.
  nmap(1, 1) = 2;
  napar = imat2(1, n, 1, n), nbpar = imat2(1, n, 1, m), ncpar = imat2(1, n, 1, 1);
  ithnCheck(n, m, np, nmap, ithnTable(6, {{0, 0, 1}, {1, 2, 2}, {0, 1, 1}, {7, 1, 1}}), napar,
            nbpar, ncpar, prompter, SolveTrace());
  EXPECT_EQ(testing::shown(prompter), testing::dataSection("solve_messages.txt", "ithn-bad-rows"));
  EXPECT_EQ(nbpar(2, 2), 2);  // row 2, read for parameter 2
  EXPECT_EQ(napar(1, 1), 3);  // row 3, read for parameter 3
  EXPECT_EQ(nbpar(1, 1), 0);  // row 4 (kind 7) places nothing
}

TEST(MapThetaToAbc, WritesThetaIntoTheSystemAndCIntoEveryPeriod) {
  const int n = 3, m = 2, nt = 4, np = 3;
  Mat theta = mat2(1, np, 1, 1);
  theta(1, 1) = 0.7, theta(2, 1) = -1.5, theta(3, 1) = 4.25;
  Mat a = filled(n, n, 0.0), b = filled(n, m, 1.0), cs = mat2(1, n, 0, nt - 1);
  const Mat a0 = a, b0 = b;
  for (int i = 1; i <= n; ++i)
    for (int t = 0; t < nt; ++t) cs(i, t) = 10 * i + t;
  RecordingPrompter prompter;
  MapThetaToAbc(n, m, nt, np, ithnTable(np, {{0, 2, 3}, {1, 3, 2}, {2, 2, 3}}), theta, a, b, cs,
                prompter, SolveTrace());
  EXPECT_EQ(testing::shown(prompter),
            testing::dataSection("solve_messages.txt", "c-matrix-warning"));
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) EXPECT_EQ(a(i, j), i == 2 && j == 3 ? 0.7 : a0(i, j));
    for (int j = 1; j <= m; ++j) EXPECT_EQ(b(i, j), i == 3 && j == 2 ? -1.5 : b0(i, j));
    for (int t = 0; t < nt; ++t) EXPECT_EQ(cs(i, t), i == 2 ? 4.25 : 10 * i + t);
  }
}

TEST(CompAxBuc, IsTheNextStateOfTheRegularForm) {
  Mat a = filled(2, 2, 1.0), b = filled(2, 2, -0.5), c = filled(2, 1, 10.0), x = filled(2, 1, 1.0);
  Mat u = filled(2, 1, 4.0), out = mat2(1, 2, 1, 1);
  CompAxBuc(2, 2, a, b, c, x, u, out);
  for (int i = 1; i <= 2; ++i)
    EXPECT_NEAR(
        out(i, 1),
        a(i, 1) * x(1, 1) + a(i, 2) * x(2, 1) + b(i, 1) * u(1, 1) + b(i, 2) * u(2, 1) + c(i, 1),
        1e-13)
        << i;
}

}  // namespace
}  // namespace ovaro
