// The QLP solve against the same tracking problem minimised over the stacked controls.
#include "solve/qlp.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "numeric/prompter.h"
#include "solve/drivers.h"
#include "solve/stacked_reference.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::baseCase;
using testing::Case;
using testing::caseModel;
using testing::constantFlags;
using testing::expectClose;
using testing::Path;
using testing::solveStacked;

constexpr double kRel = 1e-9;

Solution solveOk(const Model& model) {
  RecordingPrompter prompter;
  std::optional<Solution> s = solveQlp(model, prompter, SolveTrace());
  EXPECT_TRUE(prompter.messages().empty())
      << (prompter.messages().empty() ? "" : prompter.messages()[0].text);
  EXPECT_TRUE(s.has_value());
  return s.value_or(Solution{});
}

// The solution's paths and criterion equal the reference's, and it carries the desired paths.
void expectMatches(const Case& k, const Solution& s, const Path& ref) {
  ASSERT_EQ(s.method, "QLP");
  ASSERT_EQ(s.nt, k.T);
  for (int t = 0; t <= k.T; ++t)
    for (int i = 0; i < k.n; ++i) {
      expectClose(s.xs(i + 1, t), ref.x[t][i], kRel,
                  "x" + std::to_string(i + 1) + " t" + std::to_string(t));
      EXPECT_EQ(s.xtws(i + 1, t), k.xd[t][i]);
    }
  for (int t = 0; t < k.T; ++t)
    for (int j = 0; j < k.m; ++j) {
      expectClose(s.us(j + 1, t), ref.u[t][j], kRel,
                  "u" + std::to_string(j + 1) + " t" + std::to_string(t));
      EXPECT_EQ(s.utws(j + 1, t), k.ud[t][j]);
    }
  expectClose(s.criterion, ref.criterion, kRel, "criterion");
}

// Every form of the system and the criterion: the solve is the stacked optimum.
TEST(QlpSolve, EveryFormMatchesTheStackedOptimum) {
  std::vector<std::tuple<const char*, Case, SpecFlags>> cases;
  cases.emplace_back("constant forms", baseCase(), constantFlags());

  Case tv = baseCase();
  for (int t = 0; t <= tv.T; ++t)
    for (int i = 0; i < tv.n; ++i) {
      tv.w[t][i] += 0.25 * t * (i + 1);
      tv.xd[t][i] += 0.5 * t - 0.3 * i;
    }
  for (int t = 0; t < tv.T; ++t) {
    tv.z[t][0] = 2.0 - 0.75 * t;
    for (int j = 0; j < tv.m; ++j) {
      tv.lam[t][j] += 0.1 * (t + 1) * (j + 1);
      tv.ud[t][j] -= 0.2 * t;
    }
  }
  testing::settle(tv);
  SpecFlags f = constantFlags();
  f.wForm = opt::kWTimeVarying;
  f.lambdaForm = opt::kLambdaTimeVarying;
  f.xdesForm = opt::kXdesTimeVarying;
  f.udesForm = opt::kUdesTimeVarying;
  f.zForm = opt::kZTimeVarying;
  cases.emplace_back("time-varying weights, paths and exogenous", tv, f);

  SpecFlags terminal = constantFlags();
  terminal.wForm = opt::kWTerminalDifferent;
  Case wn = baseCase();
  wn.w[wn.T] = {5.0, 0.25, 3.0};
  cases.emplace_back("terminal weight different", wn, terminal);
  Case one = baseCase(1);  // one solver period, two model periods
  one.w[1] = {2.0, 1.0, 4.0};
  cases.emplace_back("one solver period", one, terminal);

  // The Pindyck form against the stacked optimum of its regular form.
  Case pk;
  pk.n = 2, pk.m = 1, pk.l = 1, pk.T = 3;
  pk.a0 = {{0.0, 0.3}, {0.2, -0.1}};
  pk.a = {{0.7, 0.1}, {-0.05, 0.6}};
  pk.b = {{0.4}, {0.2}};
  pk.c = {{1.0}, {0.5}};
  pk.z.assign(pk.T, {0.8});
  pk.x0 = {1.0, 2.0};
  pk.w.assign(pk.T + 1, {1.5, 0.75});
  pk.lam.assign(pk.T, {0.4});
  pk.xd.assign(pk.T + 1, {3.0, -1.0});
  pk.ud.assign(pk.T, {0.2});
  cases.emplace_back("Pindyck form", pk, constantFlags());

  for (const auto& [what, k, flags] : cases) {
    SCOPED_TRACE(what);
    expectMatches(k, solveOk(caseModel(k, flags)), solveStacked(k));
  }
  // WN really enters: the constant-W solution is a different one.
  EXPECT_GT(std::fabs(solveOk(caseModel(wn, constantFlags())).us(1, wn.T - 1) -
                      solveOk(caseModel(wn, terminal)).us(1, wn.T - 1)),
            1e-3);
}

TEST(QlpSolve, StartOnASelfSustainingDesiredPathNeedsNoControl) {
  // A xdes + c = xdes with c = C z, and udes = 0: staying put costs nothing.
  Case k;
  k.n = 2;
  k.m = 1;
  k.l = 1;
  k.T = 4;
  k.a = {{0.5, 0.2}, {0.1, 0.6}};
  k.b = {{1.0}, {-0.5}};
  k.c = {{0.1}, {0.7}};  // xdes - A xdes for xdes = (1, 2)
  k.z.assign(k.T, {1.0});
  k.x0 = {1.0, 2.0};
  k.w.assign(k.T + 1, {1.0, 3.0});
  k.lam.assign(k.T, {0.5});
  k.xd.assign(k.T + 1, {1.0, 2.0});
  k.ud.assign(k.T, {0.0});
  const Solution s = solveOk(caseModel(k, constantFlags()));
  for (int t = 0; t < k.T; ++t) EXPECT_NEAR(s.us(1, t), 0.0, 1e-12) << t;
  for (int t = 0; t <= k.T; ++t) {
    EXPECT_NEAR(s.xs(1, t), 1.0, 1e-12) << t;
    EXPECT_NEAR(s.xs(2, t), 2.0, 1e-12) << t;
  }
  EXPECT_NEAR(s.criterion, 0.0, 1e-12);
}

TEST(QlpSolve, QuadraticFormCriterionTakesNothingFromTheDesiredPaths) {
  // With the quadratic-form criterion the desired paths give neither linear nor constant terms:
  // the solve is the regulator 0.5 sum x'Wx + 0.5 sum u'Lam u, whatever XDES and UDES hold.
  const Case k = baseCase();
  SpecFlags f = constantFlags();
  f.criterionForm = opt::kQuadraticForm;
  const Solution s = solveOk(caseModel(k, f));
  const Path ref = solveStacked(k, /*tracking=*/false);
  for (int t = 0; t < k.T; ++t)
    for (int j = 0; j < k.m; ++j) expectClose(s.us(j + 1, t), ref.u[t][j], kRel, "u");
  expectClose(s.criterion, ref.criterion, kRel, "criterion");
  // and it is not the tracking optimum
  EXPECT_GT(std::fabs(s.criterion - solveStacked(k).criterion), 1e-3);
}

TEST(QlpSolve, TrackingCriterionSumsAgreeAndTheRuleReproducesThePath) {
  // sumc (linear and constant terms) and SumTracking (deviations) are two sums of one criterion;
  // CompKpgCe from period k gives the same rule as the full recursion at k.
  const Case k = baseCase();
  const Model model = caseModel(k, constantFlags());
  SystemArrays sys;
  CriterionArrays crit;
  ASSERT_EQ(systemInput(model, SolveTrace(), sys), 1);
  ASSERT_EQ(criterionInput(model, SolveTrace(), crit), 1);
  FeedbackRule rule = makeFeedbackRule(sys.n, sys.m, sys.nt);
  ASSERT_EQ(riccati(sys, crit, rule, SolveTrace()), 1);
  Mat xs = mat2(1, sys.n, 0, sys.nt), us = mat2(1, sys.m, 0, sys.nt - 1);
  ASSERT_EQ(forwardPass(sys, crit.x0, rule, xs, us, SolveTrace()), 1);
  const double a = sumc(sys.n, sys.m, sys.nt, crit, xs, us, SolveTrace());
  const double b = SumTracking(sys.n, sys.m, sys.nt, crit, xs, us, SolveTrace());
  expectClose(a, b, 1e-12, "sumc vs SumTracking");
  for (int per = 0; per < sys.nt; ++per) {
    Mat g = mat2(1, sys.m, 1, sys.n), glc = mat2(1, sys.m, 1, 1);
    RiccatiWork w(sys.n, sys.m);
    ASSERT_EQ(
        CompKpgCe(sys.n, sys.m, sys.nt, per, sys.a, sys.b, sys.cs, crit, w, g, glc, SolveTrace()),
        1);
    for (int i = 1; i <= sys.m; ++i) {
      for (int j = 1; j <= sys.n; ++j) EXPECT_EQ(g(i, j), rule.gs(per, i, j));
      EXPECT_EQ(glc(i, 1), rule.glcs(i, per));
    }
  }
}

TEST(QlpSolve, RefusesModelsItCannotSolve) {
  Model model = caseModel(baseCase(), constantFlags());
  model.dropMatrix(MatrixId::LAMBDA);
  RecordingPrompter prompter;
  EXPECT_FALSE(solveQlp(model, prompter, SolveTrace()).has_value());
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_NE(prompter.messages()[0].text.find("LAMBDA"), std::string::npos);

  SpecFlags f = constantFlags();
  f.forwardVars = opt::kForwardYes;
  prompter.clear();
  EXPECT_FALSE(solveQlp(caseModel(baseCase(), f, opt::kDeterministic, 0, /*maxLead=*/4), prompter,
                        SolveTrace()));
  EXPECT_EQ(testing::shown(prompter),
            std::vector<std::string>{"Error: Maximum Lead must be 1, 2 or 3."});
}

}  // namespace
}  // namespace ovaro
