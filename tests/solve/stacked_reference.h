// An independent answer for the tracking problem, and the small models the solver tests share.
//
// The reference uses neither the Riccati recursion nor the matrix library: it writes every state
// as an affine function of the stacked controls U = (u(0), ..., u(T-1)) and x0,
//   x(t) = Phi(t) U + psi(t),
// minimises the criterion over U through its normal equations H U = r, solved by Gaussian
// elimination with partial pivoting, and sums the criterion along the path it produces.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "io/debug_file.h"
#include "model/model.h"
#include "numeric/prompter.h"
#include "solve/drivers.h"
#include "support/dense.h"
#include "support/model_fixtures.h"
#include "support/temp_dir.h"

namespace ovaro::testing {

// A problem as the Model states it. With a0 non-empty it is in the Pindyck form and a, b, c hold
// A1, B1, C1. Per-period data: z, lam and ud for t = 0..T-1; w and xd for t = 0..T.
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

// The optimum over the stacked controls; `tracking` false takes the desired paths as zero.
inline Path solveStacked(const Case& k, bool tracking = true) {
  const int n = k.n, m = k.m, T = k.T, nu = m * T;
  // The regular form [A B C] = (I - A0)^-1 [A1 B1 C1].
  Dense abc(n), ia0(n, Vector(n, 0.0));
  for (int i = 0; i < n; ++i) {
    ia0[i][i] = 1.0;
    for (int j = 0; j < n && !k.a0.empty(); ++j) ia0[i][j] -= k.a0[i][j];
    abc[i] = k.a[i];
    abc[i].insert(abc[i].end(), k.b[i].begin(), k.b[i].end());
    abc[i].insert(abc[i].end(), k.c[i].begin(), k.c[i].end());
  }
  abc = solveDense(ia0, abc);
  const Dense a = block(abc, 0, n, 0, n), b = block(abc, 0, n, n, m),
              cz = mul(block(abc, 0, n, n + m, k.l), trans(k.z));
  auto dev = [&](const std::vector<Vector>& v, int t, int i) { return tracking ? v[t][i] : 0.0; };
  // x(t) = Phi U + psi, advanced period by period, its terms gathered into H and r.
  Dense phi = zeros(n, nu), h = zeros(nu, nu), r = zeros(nu, 1);
  Vector psi = k.x0;
  for (int t = 0; t <= T; ++t) {
    for (int i = 0; i < n; ++i)
      for (int p = 0; p < nu; ++p) {
        r[p][0] -= phi[i][p] * k.w[t][i] * (psi[i] - dev(k.xd, t, i));
        for (int q = 0; q < nu; ++q) h[p][q] += phi[i][p] * k.w[t][i] * phi[i][q];
      }
    if (t == T) break;
    for (int j = 0; j < m; ++j) {
      h[t * m + j][t * m + j] += k.lam[t][j];
      r[t * m + j][0] += k.lam[t][j] * dev(k.ud, t, j);
    }
    phi = mul(a, phi);
    Vector npsi(n, 0.0);
    for (int i = 0; i < n; ++i) {
      for (int e = 0; e < n; ++e) npsi[i] += a[i][e] * psi[e];
      for (int j = 0; j < m; ++j) phi[i][t * m + j] += b[i][j];
      npsi[i] += cz[i][t];
    }
    psi = std::move(npsi);
  }
  const Dense u = solveDense(h, r);
  Path out{{k.x0}, {}, 0.0};
  for (int t = 0; t <= T; ++t) {
    const Vector& x = out.x[t];
    for (int i = 0; i < n; ++i)
      out.criterion += 0.5 * k.w[t][i] * std::pow(x[i] - dev(k.xd, t, i), 2);
    if (t == T) break;
    out.u.emplace_back(m);
    Vector next(n, 0.0);
    for (int j = 0; j < m; ++j) {
      out.u[t][j] = u[t * m + j][0];
      out.criterion += 0.5 * k.lam[t][j] * std::pow(out.u[t][j] - dev(k.ud, t, j), 2);
    }
    for (int i = 0; i < n; ++i) {
      for (int e = 0; e < n; ++e) next[i] += a[i][e] * x[e];
      for (int j = 0; j < m; ++j) next[i] += b[i][j] * out.u[t][j];
      next[i] += cz[i][t];
    }
    out.x.push_back(std::move(next));
  }
  return out;
}

// ---------------------------------------------------------------------------------------------
// Writing a case into a Model

inline void setCell(Model& model, MatrixId id, int r, int c, double v) {
  TextMatrix* t = model.matrix(id);
  ASSERT_NE(t, nullptr) << matrixSpec(id).name;
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.10g", v);
  t->setCell(r, c, buf);
}

// Row i, column j of the Model matrix from d[i][j]; `transposed`, from d[j][i].
inline void setDense(Model& model, MatrixId id, const Dense& d, bool transposed = false) {
  for (std::size_t i = 0; i < d.size(); ++i)
    for (std::size_t j = 0; j < d[i].size(); ++j)
      setCell(model, id, static_cast<int>(transposed ? j : i), static_cast<int>(transposed ? i : j),
              d[i][j]);
}

// A Model of the case under the given form flags; constant forms take period 0's values (and
// WN the terminal weight). Model periods 1..T+1.
inline Model caseModel(const Case& k, SpecFlags flags, int stochTerms = opt::kDeterministic,
                       int np = 0, int maxLead = 0, int iterlim = 10,
                       const std::string& tolerance = "1.0E-06") {
  const bool pindyck = !k.a0.empty();
  flags.systemForm = pindyck ? opt::kPindyck : opt::kRegular;
  Model model = makeModel({k.n, k.m, k.l, np, 0, 0, 1, k.T + 1, maxLead, iterlim, tolerance, flags},
                          stochTerms);
  if (pindyck) setDense(model, MatrixId::A0, k.a0);
  setDense(model, pindyck ? MatrixId::A1 : MatrixId::A, k.a);
  setDense(model, pindyck ? MatrixId::B1 : MatrixId::B, k.b);
  setDense(model, pindyck ? MatrixId::C1 : MatrixId::C, k.c);
  setDense(model, MatrixId::X0, {k.x0}, true);
  if (flags.wForm == opt::kWTerminalDifferent) setDense(model, MatrixId::WN, {k.w[k.T]}, true);
  const struct {
    bool varying;
    MatrixId perPeriod, constant;
    const std::vector<Vector>& v;
  } paths[] = {
      {flags.zForm == opt::kZTimeVarying, MatrixId::ZT, MatrixId::Z, k.z},
      {flags.wForm == opt::kWTimeVarying, MatrixId::WT, MatrixId::W, k.w},
      {flags.lambdaForm == opt::kLambdaTimeVarying, MatrixId::LAMBDAT, MatrixId::LAMBDA, k.lam},
      {flags.xdesForm == opt::kXdesTimeVarying, MatrixId::XDEST, MatrixId::XDES, k.xd},
      {flags.udesForm == opt::kUdesTimeVarying, MatrixId::UDEST, MatrixId::UDES, k.ud}};
  for (const auto& p : paths)
    setDense(model, p.varying ? p.perPeriod : p.constant,
             p.varying ? p.v : std::vector<Vector>{p.v[0]}, true);
  return model;
}

// The default flags of the fixtures: tracking criterion, everything constant.
inline SpecFlags constantFlags() {
  return ModelShape{}.flags;
}

// Three states, two controls, one exogenous variable, T solver periods, every weight and desired
// value constant.
inline Case baseCase(int T = 4) {
  Case k;
  k.n = 3, k.m = 2, k.l = 1, k.T = T;
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

// The base case with forward variables up to `lead`; D_j = (0.12 / j) times a fixed pattern.
inline Model forwardModel(int lead, int iterlim, const std::string& tolerance, Dense d[3]) {
  SpecFlags f = constantFlags();
  f.forwardVars = opt::kForwardYes;
  Model model = caseModel(baseCase(), f, opt::kDeterministic, 0, lead, iterlim, tolerance);
  const MatrixId ids[] = {MatrixId::D1, MatrixId::D2, MatrixId::D3};
  for (int j = 0; j < 3; ++j) {
    const double s = j < lead ? 0.12 / (j + 1) : 0.0;
    d[j] = {{s, 0.5 * s, 0.0}, {0.0, s, -0.25 * s}, {0.5 * s, 0.0, s}};
    setDense(model, ids[j], d[j]);
  }
  return model;
}

// The debug file a QLP solve of the model writes with the given switches on.
inline std::string tracedSolve(const Model& model, std::initializer_list<DebugSwitch> on) {
  DebugSwitches switches;
  for (DebugSwitch s : on) switches.set(s);
  TempDir dir;
  {
    DebugFile file;
    EXPECT_TRUE(file.open(dir.file("qlp.dbg")));
    RecordingPrompter prompter;
    EXPECT_TRUE(solveQlp(model, prompter, qlpSolveTrace(&file, switches)));
  }
  return slurp(dir.file("qlp.dbg"));
}

// |actual - expected| within a relative tolerance (absolute below 1).
inline void expectClose(double actual, double expected, double rel, const std::string& what) {
  EXPECT_NEAR(actual, expected, rel * std::max(1.0, std::fabs(expected))) << what;
}

}  // namespace ovaro::testing
