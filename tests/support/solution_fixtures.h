// A solution of given sizes with every path zero, for tests that fill in the values they check.
#pragma once

#include <string>
#include <utility>

#include "numeric/arrays.h"
#include "solve/solution.h"

namespace ovaro::testing {

// n states over periods 0..nt, m controls over 0..nt-1, desired paths alike, criterion 0.
inline Solution zeroSolution(std::string method, int n, int m, int nt) {
  Solution s;
  s.method = std::move(method);
  s.n = n;
  s.m = m;
  s.nt = nt;
  s.xs = mat2(1, n, 0, nt);
  s.xtws = mat2(1, n, 0, nt);
  s.us = mat2(1, m, 0, nt - 1);
  s.utws = mat2(1, m, 0, nt - 1);
  return s;
}

}  // namespace ovaro::testing
