// The Pindyck conversion, the ITHN bookkeeping and the one-step state product.
#include "solve/system_forms.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "numeric/prompter.h"

namespace ovaro {
namespace {

Mat filled(int rows, int cols, double base) {
  Mat a = mat2(1, rows, 1, cols);
  for (int i = 1; i <= rows; ++i)
    for (int j = 1; j <= cols; ++j) a(i, j) = base + 0.1 * i - 0.07 * j;
  return a;
}

TEST(Iatoi, ConvertsThePindyckFormThroughTheInverseOfIMinusA0) {
  const int n = 3, m = 2, l = 1;
  const Mat a1 = filled(n, n, 0.3), b1 = filled(n, m, -0.4), c1 = filled(n, l, 1.2);
  const Mat dd1 = filled(n, n, 0.05), dd2 = filled(n, n, -0.02), dd3 = filled(n, n, 0.01);
  auto convert = [&](const Mat& a0, Mat& a, Mat& b, Mat& capc, Mat& d1, Mat& d2, Mat& d3) {
    a = mat2(1, n, 1, n), b = mat2(1, n, 1, m), capc = mat2(1, n, 1, l);
    d1 = mat2(1, n, 1, n), d2 = d1, d3 = d1;
    ASSERT_EQ(
        iatoi(n, m, l, 0, a0, a1, b1, c1, dd1, dd2, dd3, a, b, capc, d1, d2, d3, SolveTrace()), 1);
  };
  // (I - A0) times each result gives back its Pindyck matrix; with A0 = 0 the regular form is the
  // Pindyck form, lead matrices included.
  Mat a0 = mat2(1, n, 1, n);
  for (int pass = 0; pass < 2; ++pass) {
    if (pass == 1) a0(1, 2) = 0.3, a0(2, 3) = -0.2, a0(3, 1) = 0.25, a0(2, 2) = 0.1;
    Mat a, b, capc, d1, d2, d3;
    convert(a0, a, b, capc, d1, d2, d3);
    auto back = [&](const Mat& x, const Mat& orig, int cols, const char* what) {
      for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= cols; ++j) {
          double s = 0.0;
          for (int e = 1; e <= n; ++e) s += ((i == e ? 1.0 : 0.0) - a0(i, e)) * x(e, j);
          EXPECT_NEAR(s, orig(i, j), pass == 0 ? 0.0 : 1e-14) << what << " " << i << "," << j;
        }
    };
    back(a, a1, n, "A");
    back(b, b1, m, "B");
    back(capc, c1, l, "C");
    back(d1, dd1, n, "D1");
    back(d2, dd2, n, "D2");
    back(d3, dd3, n, "D3");
  }
}

TEST(IthnCheck, PlacesParametersAndReportsBadRows) {
  const int n = 2, m = 2, np = 4;
  IMat nmap = imat2(1, np, 1, 1), ithn = imat2(1, 6, 1, 3);
  for (int k = 1; k <= np; ++k) nmap(k, 1) = 1;
  const int rows[4][3] = {{0, 1, 2}, {1, 2, 1}, {2, 2, 1}, {1, 1, 2}};
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c) ithn(r + 1, c + 1) = rows[r][c];
  IMat napar = imat2(1, n, 1, n), nbpar = imat2(1, n, 1, m), ncpar = imat2(1, n, 1, 1);
  RecordingPrompter prompter;
  ithnCheck(n, m, np, nmap, ithn, napar, nbpar, ncpar, prompter, SolveTrace());
  EXPECT_TRUE(prompter.messages().empty());
  EXPECT_EQ(napar(1, 2), 1);
  EXPECT_EQ(nbpar(2, 1), 2);
  EXPECT_EQ(ncpar(2, 1), 3);
  EXPECT_EQ(nbpar(1, 2), 4);
  EXPECT_EQ(napar(1, 1) + napar(2, 1) + napar(2, 2) + nbpar(1, 1) + nbpar(2, 2) + ncpar(1, 1), 0);

  // Parameter 1 owns two rows; its first has a 0 in column 2, so its second is never counted and
  // parameter 2 reads that row instead of its own. A kind 7 is reported and not placed.
  nmap(1, 1) = 2;
  const int bad[4][3] = {{0, 0, 1}, {1, 2, 2}, {0, 1, 1}, {7, 1, 1}};
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c) ithn(r + 1, c + 1) = bad[r][c];
  napar = imat2(1, n, 1, n), nbpar = imat2(1, n, 1, m), ncpar = imat2(1, n, 1, 1);
  prompter.clear();
  ithnCheck(n, m, np, nmap, ithn, napar, nbpar, ncpar, prompter, SolveTrace());
  ASSERT_EQ(prompter.messages().size(), 2u);
  EXPECT_EQ(prompter.messages()[0].text, "Elements in columns 2 and 3 of ITHN must be > 0");
  EXPECT_EQ(prompter.messages()[0].caption, "Error in input.");
  EXPECT_EQ(prompter.messages()[1].text, "Elements in column 1 of ITHN must be 0, 1 or 2.");
  EXPECT_EQ(prompter.messages()[1].caption, "Error in input.");
  EXPECT_EQ(nbpar(2, 2), 2);  // row 2, read for parameter 2
  EXPECT_EQ(napar(1, 1), 3);  // row 3, read for parameter 3
  EXPECT_EQ(nbpar(1, 1), 0);  // row 4 (kind 7) places nothing
}

TEST(MapThetaToAbc, WritesThetaIntoTheSystemAndCIntoEveryPeriod) {
  const int n = 3, m = 2, nt = 4, np = 3;
  IMat ithn = imat2(1, np, 1, 3);
  const int rows[3][3] = {{0, 2, 3}, {1, 3, 2}, {2, 2, 3}};
  for (int r = 0; r < np; ++r)
    for (int c = 0; c < 3; ++c) ithn(r + 1, c + 1) = rows[r][c];
  Mat theta = mat2(1, np, 1, 1);
  theta(1, 1) = 0.7, theta(2, 1) = -1.5, theta(3, 1) = 4.25;
  Mat a = filled(n, n, 0.0), b = filled(n, m, 1.0), cs = mat2(1, n, 0, nt - 1);
  const Mat a0 = a, b0 = b;
  for (int i = 1; i <= n; ++i)
    for (int t = 0; t < nt; ++t) cs(i, t) = 10 * i + t;
  RecordingPrompter prompter;
  MapThetaToAbc(n, m, nt, np, ithn, theta, a, b, cs, prompter, SolveTrace());
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].text,
            "Olf portion of code is presently \t\t\t\t\t\r able to accomodate only a 'c' vector "
            "and not a \t\t\t\t\t\r 'C' matrix.");
  EXPECT_EQ(prompter.messages()[0].caption, "Warning!!!!");
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) EXPECT_EQ(a(i, j), i == 2 && j == 3 ? 0.7 : a0(i, j));
    for (int j = 1; j <= m; ++j) EXPECT_EQ(b(i, j), i == 3 && j == 2 ? -1.5 : b0(i, j));
    for (int t = 0; t < nt; ++t) EXPECT_EQ(cs(i, t), i == 2 ? 4.25 : 10 * i + t);
  }
}

TEST(CompAxBuc, IsTheNextStateOfTheRegularForm) {
  const int n = 2, m = 2;
  Mat a = mat2(1, n, 1, n), b = mat2(1, n, 1, m), c = mat2(1, n, 1, 1), x = c, u = c, out = c;
  a(1, 1) = 1, a(1, 2) = 2, a(2, 1) = 3, a(2, 2) = 4;
  b(1, 1) = 0.5, b(1, 2) = -1, b(2, 1) = 0, b(2, 2) = 2;
  c(1, 1) = 10, c(2, 1) = 20;
  x(1, 1) = 1, x(2, 1) = -1;
  u(1, 1) = 4, u(2, 1) = 3;
  CompAxBuc(n, m, a, b, c, x, u, out);
  EXPECT_EQ(out(1, 1), (1 - 2) + ((2 - 3) + 10));
  EXPECT_EQ(out(2, 1), (3 - 4) + ((0 + 6) + 20));

  // and the true system survives a perturbation
  Mat cs = mat2(1, n, 0, 2), at = a, bt = b, ct = cs;
  cs(2, 1) = 5;
  StoreATrue(n, m, 3, a, b, cs, at, bt, ct);
  a(1, 1) = b(2, 2) = cs(2, 1) = -9;
  RestoreA(n, m, 3, at, bt, ct, a, b, cs);
  EXPECT_EQ(a(1, 1), 1);
  EXPECT_EQ(b(2, 2), 2);
  EXPECT_EQ(cs(2, 1), 5);
}

}  // namespace
}  // namespace ovaro
