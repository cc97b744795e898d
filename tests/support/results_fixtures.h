// Models and stored results whose every number tells where it comes from, for the tests of the
// results table, its placement on screen and its text.
#pragma once

#include <string>
#include <utility>

#include "model/options.h"
#include "results/results_store.h"
#include "support/model_fixtures.h"
#include "support/solution_fixtures.h"

namespace ovaro::testing {

// n states S1.., m controls C1.., np parameters U1.. over the periods first..last, which are
// headed Y0, Y1, ...
inline Model labelledModel(int n, int m, int np, int first, int last, int policy = opt::kPolicyNo) {
  ModelShape shape;
  shape.n = n;
  shape.m = m;
  shape.np = np;
  shape.initialPeriod = first;
  shape.terminalPeriod = last;
  shape.flags.policyToParam = policy;
  Model model = makeModel(shape, np > 0 ? opt::kParameterUncertainty : opt::kDeterministic);
  for (int i = 0; i < n; ++i) model.states.acronyms[i] = "S" + std::to_string(i + 1);
  for (int j = 0; j < m; ++j) model.controls.acronyms[j] = "C" + std::to_string(j + 1);
  for (int p = 0; p < np; ++p) model.parameters.acronyms[p] = "U" + std::to_string(p + 1);
  for (std::size_t t = 0; t < model.periods.acronyms.size(); ++t)
    model.periods.acronyms[t] = "Y" + std::to_string(t);
  return model;
}

// x_i(t) = sign (100 i + t) + frac, u_j(t) = sign (50 j - t) - frac, desired paths 7 i and -2 j,
// criterion sign 4321; with np > 0 the parameter estimates sign (10 p + t) + 0.5 and the true
// values 3 p + 0.125 t.
inline StoredResult labelledResult(std::string method, int n, int m, int np, int T, double sign,
                                   double frac = 0.0) {
  StoredResult r;
  r.solution = zeroSolution(std::move(method), n, m, T);
  Solution& s = r.solution;
  for (int t = 0; t <= T; ++t) {
    for (int i = 1; i <= n; ++i) {
      s.xs(i, t) = sign * (100 * i + t) + frac;
      s.xtws(i, t) = 7 * i;
    }
    for (int j = 1; j <= m && t < T; ++j) {
      s.us(j, t) = sign * (50 * j - t) - frac;
      s.utws(j, t) = -2 * j;
    }
  }
  s.criterion = sign * 4321.0;
  if (np > 0) {
    ParameterPaths p{mat2(1, np, 0, T), mat2(1, np, 0, T)};
    for (int i = 1; i <= np; ++i) {
      for (int t = 0; t <= T; ++t) {
        p.estimates(i, t) = sign * (10 * i + t) + 0.5;
        p.trueValues(i, t) = 3 * i + 0.125 * t;
      }
    }
    r.parameters = std::move(p);
  }
  return r;
}

}  // namespace ovaro::testing
