// Small matrices for tests, written the way they read on paper: rows and columns from 1.
#pragma once

#include <initializer_list>

#include "numeric/arrays.h"

namespace ovaro::testing {

// A matrix written row by row.
inline Mat rowsMat(std::initializer_list<std::initializer_list<double>> rows) {
  const int n = static_cast<int>(rows.size());
  const int m = n == 0 ? 0 : static_cast<int>(rows.begin()->size());
  Mat a = mat2(1, n, 1, m);
  int i = 1;
  for (const auto& row : rows) {
    int j = 1;
    for (double v : row) a(i, j++) = v;
    ++i;
  }
  return a;
}

inline Mat colMat(std::initializer_list<double> v) {
  Mat a = mat2(1, static_cast<int>(v.size()), 1, 1);
  int i = 1;
  for (double x : v) a(i++, 1) = x;
  return a;
}

inline Mat diagMat(std::initializer_list<double> v) {
  const int k = static_cast<int>(v.size());
  Mat a = mat2(1, k, 1, k);
  int i = 1;
  for (double x : v) a(i, i) = x, ++i;
  return a;
}

inline Mat filledMat(int rlo, int rhi, int clo, int chi, double v) {
  Mat a = mat2(rlo, rhi, clo, chi);
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j) a(i, j) = v;
  return a;
}

inline void fillMat(Mat& a, double v) {
  a = filledMat(a.rlo(), a.rhi(), a.clo(), a.chi(), v);
}

inline bool allEqual(const Mat& a, double v) {
  for (int i = a.rlo(); i <= a.rhi(); ++i)
    for (int j = a.clo(); j <= a.chi(); ++j)
      if (a(i, j) != v) return false;
  return true;
}

}  // namespace ovaro::testing
