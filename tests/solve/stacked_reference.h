// An independent answer for the tracking problem, and the small models the solver tests share.
//
// The reference does not use the Riccati recursion or the matrix library: it writes every state
// as an affine function of the stacked controls U = (u(0), ..., u(T-1)) and x0,
//   x(t) = Phi(t) U + psi(t),
// minimises the criterion over U through its normal equations H U = r, solved by Gaussian
// elimination with partial pivoting, and sums the criterion along the path it produces.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "model/model.h"
#include "numeric/arrays.h"
#include "support/dense.h"
#include "support/model_fixtures.h"

namespace ovaro::testing {

// A problem as the Model states it. With a0 non-empty it is in the Pindyck form and a, b, c hold
// A1, B1, C1. Per-period data: z and lam, ud for t = 0..T-1; w and xd for t = 0..T.
struct Case {
  int n = 0, m = 0, l = 0, T = 0;
  Dense a0, a, b, c;
  std::vector<Vector> z;
  Vector x0;
  std::vector<Vector> w, lam, xd, ud;
};

struct Path {
  std::vector<Vector> x, u;
  double criterion = 0.0;
};

// The regular form of the case: (A, B, C), converted from the Pindyck form here by solving
// (I - A0) [A B C] = [A1 B1 C1].
inline void regularForm(const Case& k, Dense& a, Dense& b, Dense& c) {
  if (k.a0.empty()) {
    a = k.a;
    b = k.b;
    c = k.c;
    return;
  }
  Dense ia0(k.n, Vector(k.n));
  Dense rhs(k.n);
  for (int i = 0; i < k.n; ++i) {
    for (int j = 0; j < k.n; ++j) ia0[i][j] = (i == j ? 1.0 : 0.0) - k.a0[i][j];
    rhs[i] = k.a[i];
    rhs[i].insert(rhs[i].end(), k.b[i].begin(), k.b[i].end());
    rhs[i].insert(rhs[i].end(), k.c[i].begin(), k.c[i].end());
  }
  const Dense sol = solveDense(ia0, rhs);
  a.assign(k.n, Vector());
  b.assign(k.n, Vector());
  c.assign(k.n, Vector());
  for (int i = 0; i < k.n; ++i) {
    a[i].assign(sol[i].begin(), sol[i].begin() + k.n);
    b[i].assign(sol[i].begin() + k.n, sol[i].begin() + k.n + k.m);
    c[i].assign(sol[i].begin() + k.n + k.m, sol[i].end());
  }
}

// The criterion 0.5 sum (x - xd)' W (x - xd) + 0.5 sum (u - ud)' Lam (u - ud) of a path; with
// `tracking` false the desired paths are left out (the quadratic-form criterion without linear
// terms).
inline double trackingCriterion(const Case& k, const Path& p, bool tracking = true) {
  double j = 0.0;
  for (int t = 0; t <= k.T; ++t)
    for (int i = 0; i < k.n; ++i) {
      const double d = p.x[t][i] - (tracking ? k.xd[t][i] : 0.0);
      j += 0.5 * k.w[t][i] * d * d;
    }
  for (int t = 0; t < k.T; ++t)
    for (int i = 0; i < k.m; ++i) {
      const double d = p.u[t][i] - (tracking ? k.ud[t][i] : 0.0);
      j += 0.5 * k.lam[t][i] * d * d;
    }
  return j;
}

// The optimum over the stacked controls. `tracking` false minimises the criterion with zero
// desired paths.
inline Path solveStacked(const Case& k, bool tracking = true) {
  Dense a, b, cc;
  regularForm(k, a, b, cc);
  const int n = k.n, m = k.m, T = k.T, nu = m * T;
  std::vector<Vector> c(T, Vector(n, 0.0));
  for (int t = 0; t < T; ++t)
    for (int i = 0; i < n; ++i)
      for (int e = 0; e < k.l; ++e) c[t][i] += cc[i][e] * k.z[t][e];
  // x(t) = Phi U + psi, advanced period by period.
  Dense phi(n, Vector(nu, 0.0));
  Vector psi = k.x0;
  Dense h(nu, Vector(nu, 0.0));
  Dense r(nu, Vector(1, 0.0));
  for (int t = 0; t <= T; ++t) {
    for (int i = 0; i < n; ++i) {
      const double dev = psi[i] - (tracking ? k.xd[t][i] : 0.0);
      for (int p = 0; p < nu; ++p) {
        r[p][0] -= phi[i][p] * k.w[t][i] * dev;
        for (int q = 0; q < nu; ++q) h[p][q] += phi[i][p] * k.w[t][i] * phi[i][q];
      }
    }
    if (t == T) break;
    for (int j = 0; j < m; ++j) {
      h[t * m + j][t * m + j] += k.lam[t][j];
      r[t * m + j][0] += k.lam[t][j] * (tracking ? k.ud[t][j] : 0.0);
    }
    Dense nphi(n, Vector(nu, 0.0));
    Vector npsi(n, 0.0);
    for (int i = 0; i < n; ++i) {
      for (int e = 0; e < n; ++e) {
        for (int p = 0; p < nu; ++p) nphi[i][p] += a[i][e] * phi[e][p];
        npsi[i] += a[i][e] * psi[e];
      }
      for (int j = 0; j < m; ++j) nphi[i][t * m + j] += b[i][j];
      npsi[i] += c[t][i];
    }
    phi = std::move(nphi);
    psi = std::move(npsi);
  }
  const Dense uStacked = solveDense(h, r);
  Path out;
  out.x.push_back(k.x0);
  for (int t = 0; t < T; ++t) {
    Vector u(m);
    for (int j = 0; j < m; ++j) u[j] = uStacked[t * m + j][0];
    Vector x(n, 0.0);
    for (int i = 0; i < n; ++i) {
      for (int e = 0; e < n; ++e) x[i] += a[i][e] * out.x[t][e];
      for (int j = 0; j < m; ++j) x[i] += b[i][j] * u[j];
      x[i] += c[t][i];
    }
    out.u.push_back(u);
    out.x.push_back(x);
  }
  out.criterion = trackingCriterion(k, out, tracking);
  return out;
}

// ---------------------------------------------------------------------------------------------
// Writing a case into a Model

inline std::string num(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.10g", v);
  return buf;
}

inline void setCell(Model& model, MatrixId id, int r, int c, double v) {
  TextMatrix* t = model.matrix(id);
  ASSERT_NE(t, nullptr) << matrixSpec(id).name;
  t->setCell(r, c, num(v));
}

inline void setDense(Model& model, MatrixId id, const Dense& d) {
  for (std::size_t i = 0; i < d.size(); ++i)
    for (std::size_t j = 0; j < d[i].size(); ++j)
      setCell(model, id, static_cast<int>(i), static_cast<int>(j), d[i][j]);
}

// Every value of the case as the Model will read it back from its text, so that the reference
// and the solve start from the same numbers.
inline void settle(Case& k) {
  auto fix = [](Vector& v) {
    for (double& e : v) e = std::stod(num(e));
  };
  for (Dense* d : {&k.a0, &k.a, &k.b, &k.c, &k.z, &k.w, &k.lam, &k.xd, &k.ud})
    for (Vector& v : *d) fix(v);
  fix(k.x0);
}

// Column t of the Model matrix holds period t's vector.
inline void setPeriods(Model& model, MatrixId id, const std::vector<Vector>& v, int count) {
  for (int t = 0; t < count; ++t)
    for (std::size_t i = 0; i < v[t].size(); ++i)
      setCell(model, id, static_cast<int>(i), t, v[t][i]);
}

// A Model of the case under the given form flags; constant forms take period 0's values (and
// WN the terminal weight). Sizes: Model periods 1..T+1.
inline Model caseModel(const Case& k, SpecFlags flags, int stochTerms = opt::kDeterministic,
                       int np = 0, int maxLead = 0, int iterlim = 10,
                       const std::string& tolerance = "1.0E-06") {
  ModelShape s;
  s.n = k.n;
  s.m = k.m;
  s.l = k.l;
  s.np = np;
  s.initialPeriod = 1;
  s.terminalPeriod = k.T + 1;
  s.maxLead = maxLead;
  s.iterlim = iterlim;
  s.tolerance = tolerance;
  flags.systemForm = k.a0.empty() ? opt::kRegular : opt::kPindyck;
  s.flags = flags;
  Model model = makeModel(s, stochTerms);
  if (k.a0.empty()) {
    setDense(model, MatrixId::A, k.a);
    setDense(model, MatrixId::B, k.b);
    setDense(model, MatrixId::C, k.c);
  } else {
    setDense(model, MatrixId::A0, k.a0);
    setDense(model, MatrixId::A1, k.a);
    setDense(model, MatrixId::B1, k.b);
    setDense(model, MatrixId::C1, k.c);
  }
  if (flags.zForm == opt::kZTimeVarying) {
    setPeriods(model, MatrixId::ZT, k.z, k.T);
  } else {
    setPeriods(model, MatrixId::Z, k.z, 1);
  }
  setPeriods(model, MatrixId::X0, {k.x0}, 1);
  if (flags.wForm == opt::kWTimeVarying) {
    setPeriods(model, MatrixId::WT, k.w, k.T + 1);
  } else {
    setPeriods(model, MatrixId::W, k.w, 1);
    if (flags.wForm == opt::kWTerminalDifferent) setPeriods(model, MatrixId::WN, {k.w[k.T]}, 1);
  }
  if (flags.lambdaForm == opt::kLambdaTimeVarying) {
    setPeriods(model, MatrixId::LAMBDAT, k.lam, k.T);
  } else {
    setPeriods(model, MatrixId::LAMBDA, k.lam, 1);
  }
  if (flags.xdesForm == opt::kXdesTimeVarying) {
    setPeriods(model, MatrixId::XDEST, k.xd, k.T + 1);
  } else {
    setPeriods(model, MatrixId::XDES, k.xd, 1);
  }
  if (flags.udesForm == opt::kUdesTimeVarying) {
    setPeriods(model, MatrixId::UDEST, k.ud, k.T);
  } else {
    setPeriods(model, MatrixId::UDES, k.ud, 1);
  }
  return model;
}

// The default flags of the fixtures: tracking criterion, everything constant.
inline SpecFlags constantFlags() {
  return ModelShape{}.flags;
}

// Three states, two controls, one exogenous variable, four solver periods, every weight and
// desired value constant.
inline Case baseCase(int T = 4) {
  Case k;
  k.n = 3;
  k.m = 2;
  k.l = 1;
  k.T = T;
  k.a = {{0.9, 0.2, -0.1}, {0.05, 0.8, 0.3}, {-0.2, 0.1, 0.7}};
  k.b = {{0.5, -0.2}, {0.1, 0.4}, {0.3, 0.25}};
  k.c = {{1.0}, {0.5}, {-0.3}};
  k.z.assign(T, {2.0});
  k.x0 = {1.5, -0.5, 2.0};
  k.w.assign(T + 1, {1.0, 2.0, 0.5});
  k.lam.assign(T, {0.3, 0.8});
  k.xd.assign(T + 1, {2.0, 1.0, -1.0});
  k.ud.assign(T, {0.5, -0.25});
  return k;
}

// |actual - expected| within a relative tolerance (absolute below 1).
inline void expectClose(double actual, double expected, double rel, const std::string& what) {
  EXPECT_NEAR(actual, expected, rel * std::max(1.0, std::fabs(expected))) << what;
}

}  // namespace ovaro::testing
