// Plain dense matrices for reference computations in tests, row-major and counted from 0, kept
// apart from the library's arrays and operations so that an answer computed with them is an
// independent one.
#pragma once

#include <cmath>
#include <utility>
#include <vector>

namespace ovaro::testing {

using Vector = std::vector<double>;
using Dense = std::vector<Vector>;  // Dense[i][j]

inline Dense zeros(std::size_t r, std::size_t c) {
  return Dense(r, Vector(c, 0.0));
}

inline Dense mul(const Dense& a, const Dense& b) {
  Dense c = zeros(a.size(), b[0].size());
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < b[0].size(); ++j)
      for (std::size_t k = 0; k < b.size(); ++k) c[i][j] += a[i][k] * b[k][j];
  return c;
}

inline Dense trans(const Dense& a) {
  Dense t = zeros(a[0].size(), a.size());
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < a[0].size(); ++j) t[j][i] = a[i][j];
  return t;
}

// a + sign b.
inline Dense plus(const Dense& a, const Dense& b, double sign = 1.0) {
  Dense c = a;
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < a[0].size(); ++j) c[i][j] += sign * b[i][j];
  return c;
}

// X = M^-1 R for a square M and any number of right-hand columns, by Gaussian elimination with
// partial pivoting.
inline Dense solveDense(Dense M, Dense R) {
  const std::size_t n = M.size();
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t piv = k;
    for (std::size_t i = k + 1; i < n; ++i)
      if (std::fabs(M[i][k]) > std::fabs(M[piv][k])) piv = i;
    std::swap(M[k], M[piv]);
    std::swap(R[k], R[piv]);
    for (std::size_t i = k + 1; i < n; ++i) {
      const double f = M[i][k] / M[k][k];
      for (std::size_t j = k; j < n; ++j) M[i][j] -= f * M[k][j];
      for (std::size_t j = 0; j < R[i].size(); ++j) R[i][j] -= f * R[k][j];
    }
  }
  for (std::size_t k = n; k-- > 0;) {
    for (std::size_t j = 0; j < R[k].size(); ++j) {
      double s = R[k][j];
      for (std::size_t c = k + 1; c < n; ++c) s -= M[k][c] * R[c][j];
      R[k][j] = s / M[k][k];
    }
  }
  return R;
}

inline Dense inverse(const Dense& a) {
  Dense id = zeros(a.size(), a.size());
  for (std::size_t i = 0; i < a.size(); ++i) id[i][i] = 1.0;
  return solveDense(a, id);
}

// The rows x cols block of d from (r0, c0).
inline Dense block(const Dense& d, int r0, int rows, int c0, int cols) {
  Dense b = zeros(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) b[i][j] = d[r0 + i][c0 + j];
  return b;
}

}  // namespace ovaro::testing
