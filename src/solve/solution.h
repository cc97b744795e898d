// One deterministic solution as the solvers leave it for the results tables: the optimal state
// and control paths, the desired paths they track, and the criterion value.
#pragma once

#include <string>

#include "numeric/arrays.h"

namespace ovaro {

struct Solution {
  std::string method;  // "QLP" or "OLFwo" (the Monte Carlo methods add their own names)
  int n = 0;           // states
  int m = 0;           // controls
  int nt = 0;          // the solvers' horizon: states for periods 0..nt, controls for 0..nt-1
  Mat xs;              // n x 0..nt
  Mat us;              // m x 0..nt-1
  Mat xtws;            // desired states, n x 0..nt
  Mat utws;            // desired controls, m x 0..nt-1
  double criterion = 0.0;
};

}  // namespace ovaro
