// Open loop feedback: its control against the minimiser of the expected criterion, its agreement
// with QLP where the variance cannot reach the rule, the caution experiment and the refusals.
#include "solve/olf.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "solve/model_input.h"
#include "solve/stacked_reference.h"
#include "solve/system_forms.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using namespace testing;  // the fixtures and the reference

// The base case with uncertain parameters: each ITHN row (kind, row, column) is one parameter,
// theta0 is the element's nominal value, and SITT0 is `sitt`.
Model uncertainModel(const Case& k, const std::vector<std::array<int, 3>>& ithn,
                     const Dense& sitt) {
  const int np = static_cast<int>(ithn.size());
  Model model = caseModel(k, constantFlags(), opt::kParameterUncertainty, np);
  for (int p = 0; p < np; ++p) {
    const auto [kind, i, j] = ithn[p];
    for (int c = 0; c < 3; ++c)
      model.matrix(MatrixId::ITHN)->setCell(p, c, std::to_string(ithn[p][c]));
    const double nominal = kind == 0   ? k.a[i - 1][j - 1]
                           : kind == 1 ? k.b[i - 1][j - 1]
                                       : k.c[i - 1][0] * k.z[0][0];
    setCell(model, MatrixId::TH0, p, 0, nominal);
  }
  setDense(model, MatrixId::SITT0, sitt);
  return model;
}

// The arrays of one OLF solve of the model, as the driver builds them.
struct OlfInputs {
  SystemArrays sys;
  CriterionArrays crit;
  UncertainParameters par;
};

OlfInputs olfInputs(const Model& model, Prompter& prompter) {
  OlfInputs in;
  EXPECT_EQ(systemInput(model, SolveTrace(), in.sys), 1);
  EXPECT_EQ(criterionInput(model, SolveTrace(), in.crit), 1);
  const int n = in.sys.n, m = in.sys.m, np = model.dims.np.value;
  IMat nmap = imat2(1, np, 1, 1);
  for (int p = 1; p <= np; ++p) nmap(p, 1) = 1;
  in.par = {np, imat2(1, n, 1, n), imat2(1, n, 1, m), imat2(1, n, 1, 1),
            readModelMatrix(model, MatrixId::SITT0, np, 1, np)};
  ithnCheck(n, m, np, nmap, readModelIntMatrix(model, MatrixId::ITHN, np, 3), in.par.napar,
            in.par.nbpar, in.par.ncpar, prompter, SolveTrace());
  return in;
}

// One solver period, three correlated parameters in A(1,2), B(2,1) and c(3). The sigma points
// theta0 +- sqrt(3) L e_k (L L' = SITT) have exactly that mean and covariance, and the criterion is
// quadratic in theta, so its expectation is the average over them; the expected criterion is
// least where (Lam + E[B'W B]) u = Lam ud - E[B'W (A x0 + c - xd)]. The criterion is summed along
// the nominal path that control produces.
TEST(OlfSolve, TheFirstControlMinimisesTheExpectedCriterion) {
  const Case k = baseCase(1);
  const Dense L = {{0.3, 0, 0}, {0.1, 0.4, 0}, {-0.2, 0.05, 0.25}};
  const Dense x0 = trans({k.x0}), xd = trans({k.xd[1]}), c0 = mul(k.c, trans({k.z[0]}));
  Dense h = zeros(2, 2), r = zeros(2, 1), W = zeros(3, 3);
  for (int i = 0; i < 3; ++i) W[i][i] = k.w[1][i];
  for (int j = 0; j < 2; ++j) h[j][j] = k.lam[0][j], r[j][0] = k.lam[0][j] * k.ud[0][j];
  for (int e = 0; e < 3; ++e)
    for (double sign : {1.0, -1.0}) {
      Dense a = k.a, b = k.b, c = c0;
      const double d = sign * std::sqrt(3.0);
      a[0][1] += d * L[0][e], b[1][0] += d * L[1][e], c[2][0] += d * L[2][e];
      const Dense btw = mul(trans(b), W);
      h = plus(h, mul(btw, b), 1.0 / 6);
      r = plus(r, mul(btw, plus(plus(mul(a, x0), c), xd, -1.0)), -1.0 / 6);
    }
  const Dense u = solveDense(h, r), x1 = plus(plus(mul(k.a, x0), mul(k.b, u)), c0);
  double criterion = 0.0;
  for (int i = 0; i < 3; ++i)
    criterion += 0.5 * (k.w[0][i] * std::pow(x0[i][0] - k.xd[0][i], 2) +
                        k.w[1][i] * std::pow(x1[i][0] - xd[i][0], 2));
  for (int j = 0; j < 2; ++j) criterion += 0.5 * k.lam[0][j] * std::pow(u[j][0] - k.ud[0][j], 2);

  RecordingPrompter prompter;
  const auto o = solveOlf(uncertainModel(k, {{0, 1, 2}, {1, 2, 1}, {2, 3, 1}}, mul(L, trans(L))),
                          {}, prompter, SolveTrace());
  ASSERT_TRUE(o);
  EXPECT_TRUE(prompter.messages().empty());
  for (int j = 0; j < 2; ++j) expectClose(o->us(j + 1, 0), u[j][0], 1e-12, "u");
  expectClose(o->criterion, criterion, 1e-12, "criterion");
}

// Where the variance cannot reach the rule, OLF is QLP: no variance at all, or only a constant
// uncertain (with A and B certain, E[A'Kc] = A'Kc and E[B'Kc] = B'Kc whatever the variance of c).
TEST(OlfSolve, WithoutVarianceInAOrBItIsTheQlpSolution) {
  const Case k = baseCase();
  for (const Model& model : {uncertainModel(k, {{1, 1, 1}, {0, 2, 2}, {2, 3, 1}}, zeros(3, 3)),
                             uncertainModel(k, {{2, 2, 1}}, {{0.7}})}) {
    RecordingPrompter prompter;
    const auto o = solveOlf(model, {}, prompter, SolveTrace());
    const auto q = solveQlp(model, prompter, SolveTrace());
    ASSERT_TRUE(o && q);
    EXPECT_TRUE(prompter.messages().empty());
    EXPECT_EQ(o->method, "OLFwo");
    for (int t = 0; t <= k.T; ++t) {
      for (int j = 1; j <= k.m && t < k.T; ++j) expectClose(o->us(j, t), q->us(j, t), 1e-12, "u");
      for (int i = 1; i <= k.n; ++i) expectClose(o->xs(i, t), q->xs(i, t), 1e-12, "x");
    }
    expectClose(o->criterion, q->criterion, 1e-12, "criterion");
  }
}

TEST(OlfSolve, RefusesModelsWithoutUncertainty) {
  const std::pair<int, const char*> cases[] = {{opt::kDeterministic, "olf-deterministic"},
                                               {opt::kAdditiveNoise, "olf-additive-noise"}};
  for (const auto& [stoch, section] : cases) {
    RecordingPrompter prompter;
    EXPECT_FALSE(
        solveOlf(caseModel(baseCase(), constantFlags(), stoch), {}, prompter, SolveTrace()));
    EXPECT_EQ(shown(prompter), dataSection("solve_messages.txt", section));
  }
}

TEST(OlfSolve, CautionExperimentPerturbsOneStepOfTheRecursion) {
  const Case k = baseCase();
  const Model model = uncertainModel(k, {{1, 1, 1}, {0, 2, 2}}, {{0.04, 0.01}, {0.01, 0.09}});
  RecordingPrompter prompter;
  OlfInputs in = olfInputs(model, prompter);
  auto run = [&](CautionExperiment ce) {
    prompter.clear();
    FeedbackRule rule = makeFeedbackRule(k.n, k.m, k.T);
    Mat xs = mat2(1, k.n, 0, k.T), us = mat2(1, k.m, 0, k.T - 1);
    double j = 0;
    EXPECT_EQ(olf(in.sys, in.crit, in.par, ce, rule, xs, us, j, prompter, SolveTrace()), 1);
    EXPECT_EQ(in.par.sitt(1, 1), 0.04);  // put back
    return rule;
  };
  auto sameAt = [&](const FeedbackRule& x, const FeedbackRule& y, int t) {
    for (int i = 1; i <= k.m; ++i) {
      for (int e = 1; e <= k.n; ++e)
        if (x.gs(t, i, e) != y.gs(t, i, e)) return false;
      if (x.glcs(i, t) != y.glcs(i, t)) return false;
    }
    return true;
  };
  const FeedbackRule base = run({});
  // Periods 1 and 3 perturb the step of t = 0 and t = 2 alone; 0 and T + 1 are no step at all.
  for (int period : {1, 3, 0, k.T + 1}) {
    const FeedbackRule r = run({1, 1, 1, 0.8, period});
    const bool inside = period >= 1 && period <= k.T;
    EXPECT_EQ(shown(prompter), inside ? dataSection("solve_messages.txt", "olf-caution")
                                      : std::vector<std::string>{});
    for (int t = 0; t < k.T; ++t)
      if (t >= period - 1 || !inside) {
        EXPECT_EQ(sameAt(r, base, t), t != period - 1) << period << t;
      }
  }

  // In a one-period model, perturbing period 1 is solving with the perturbed covariance.
  const auto caution = solveOlf(uncertainModel(baseCase(1), {{1, 1, 1}}, {{0.1}}),
                                {1, 1, 1, 0.6, 1}, prompter, SolveTrace());
  const auto direct =
      solveOlf(uncertainModel(baseCase(1), {{1, 1, 1}}, {{0.6}}), {}, prompter, SolveTrace());
  ASSERT_TRUE(caution && direct);
  EXPECT_EQ(caution->us(1, 0), direct->us(1, 0));
  EXPECT_EQ(caution->criterion, direct->criterion);
}

TEST(OlfSolve, BadPlacementsAndCautionIndicesStayInsideTheArrays) {
  // ITHN naming rows outside the system is reported and placed nowhere; the solve goes on.
  Model model = uncertainModel(baseCase(), {{0, 1, 1}, {1, 2, 1}, {2, 3, 1}},
                               {{0.1, 0, 0}, {0, 0.1, 0}, {0, 0, 0.1}});
  const char* rows[3][3] = {{"0", "4", "1"}, {"1", "-1", "2"}, {"2", "3", "9"}};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) model.matrix(MatrixId::ITHN)->setCell(r, c, rows[r][c]);
  RecordingPrompter prompter;
  EXPECT_TRUE(solveOlf(model, {}, prompter, SolveTrace()));
  ASSERT_EQ(prompter.messages().size(), 2u);
  for (const Message& msg : prompter.messages()) EXPECT_EQ(msg.caption, "Error in input.");
  prompter.clear();
  EXPECT_FALSE(solveOlf(model, {1, 4, 1, 0.5, 1}, prompter, SolveTrace()));
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].caption, "Error");
}

TEST(OlfSolve, TracedWithEverySwitchOffWritesOnlyTheHeading) {
  TempDir dir;
  DebugFile file;
  ASSERT_TRUE(file.open(dir.file("olf.dbg")));
  RecordingPrompter prompter;
  const Model model = uncertainModel(baseCase(), {{1, 1, 1}}, {{0.1}});
  ASSERT_TRUE(solveOlf(model, {}, prompter, qlpSolveTrace(&file, DebugSwitches{})));
  file.close();
  EXPECT_EQ(slurp(dir.file("olf.dbg")), dataSection("solve_messages.txt", "olf-debug-heading")[0]);
}

}  // namespace
}  // namespace ovaro
