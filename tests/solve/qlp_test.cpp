// The QLP solve against the same tracking problem minimised over the stacked controls.
#include "solve/qlp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "solve/stacked_reference.h"
#include "support/debug_labels.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using namespace testing;  // the fixtures and the reference

constexpr double kRel = 1e-9;

Solution solveOk(const Model& model) {
  RecordingPrompter prompter;
  std::optional<Solution> s = solveQlp(model, prompter, SolveTrace());
  EXPECT_EQ(shown(prompter), std::vector<std::string>{});
  EXPECT_TRUE(s.has_value());
  return s.value_or(Solution{});
}

// Every form of the system and the criterion: the solve is the stacked optimum, and it carries the
// desired paths.
TEST(QlpSolve, EveryFormMatchesTheStackedOptimum) {
  Case tv = baseCase(), wn = baseCase(), one = baseCase(1), pk = baseCase();
  for (int t = 0; t <= tv.T; ++t)
    for (int i = 0; i < tv.n; ++i)
      tv.w[t][i] += 0.25 * t * (i + 1), tv.xd[t][i] += 0.5 * t - 0.3 * i;
  for (int t = 0; t < tv.T; ++t) {
    tv.z[t][0] = 2.0 - 0.75 * t;
    for (int j = 0; j < tv.m; ++j) tv.lam[t][j] += 0.1 * (t + 1) * (j + 1), tv.ud[t][j] -= 0.2 * t;
  }
  SpecFlags varying = constantFlags(), terminal = constantFlags(), quadratic = constantFlags();
  varying.wForm = opt::kWTimeVarying;
  varying.lambdaForm = opt::kLambdaTimeVarying;
  varying.xdesForm = opt::kXdesTimeVarying;
  varying.udesForm = opt::kUdesTimeVarying;
  varying.zForm = opt::kZTimeVarying;
  terminal.wForm = opt::kWTerminalDifferent;
  wn.w[wn.T] = {5.0, 0.25, 3.0};
  one.w[1] = {2.0, 1.0, 4.0};  // one solver period, two model periods
  // With the quadratic-form criterion the desired paths give neither linear nor constant terms.
  quadratic.criterionForm = opt::kQuadraticForm;
  pk.a0 = {{0.0, 0.3, 0.0}, {0.2, -0.1, 0.0}, {0.0, 0.0, 0.1}};  // A, B and C are A1, B1 and C1
  const std::tuple<const char*, Case, SpecFlags> cases[] = {
      {"constant forms", baseCase(), constantFlags()},
      {"time-varying weights, paths and exogenous", tv, varying},
      {"terminal weight different", wn, terminal},
      {"one solver period", one, terminal},
      {"quadratic-form criterion", baseCase(), quadratic},
      {"Pindyck form", pk, constantFlags()}};
  for (const auto& [what, k, flags] : cases) {
    SCOPED_TRACE(what);
    const Model model = caseModel(k, flags);
    const Solution s = solveOk(model);
    const Path ref = solveStacked(k, flags.criterionForm != opt::kQuadraticForm);
    ASSERT_EQ(s.method, "QLP");
    ASSERT_EQ(s.nt, k.T);
    for (int t = 0; t <= k.T; ++t)
      for (int i = 0; i < k.n; ++i) {
        expectClose(s.xs(i + 1, t), ref.x[t][i], kRel,
                    "x" + std::to_string(i + 1) + " t" + std::to_string(t));
        expectClose(s.xtws(i + 1, t), k.xd[t][i], 1e-15, "xdes");
      }
    for (int t = 0; t < k.T; ++t)
      for (int j = 0; j < k.m; ++j) {
        expectClose(s.us(j + 1, t), ref.u[t][j], kRel,
                    "u" + std::to_string(j + 1) + " t" + std::to_string(t));
        expectClose(s.utws(j + 1, t), k.ud[t][j], 1e-15, "udes");
      }
    expectClose(s.criterion, ref.criterion, kRel, "criterion");
    // The sum of the deviations, the other way of summing the tracking criterion.
    CriterionArrays crit;
    ASSERT_EQ(criterionInput(model, SolveTrace(), crit), 1);
    if (crit.tracking == 1)
      expectClose(SumTracking(k.n, k.m, k.T, crit, s.xs, s.us, SolveTrace()), ref.criterion, kRel,
                  "SumTracking");
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
  EXPECT_EQ(shown(prompter), std::vector<std::string>{"Error: Maximum Lead must be 1, 2 or 3."});
}

TEST(QlpTrace, SwitchesChooseTheDumpsInTheOrderOfTheAlgorithm) {
  using Labels = std::vector<std::string>;
  const Model model = caseModel(baseCase(), constantFlags());
  const std::string content = tracedSolve(model, {DebugSwitch::QlpAll});
  ASSERT_EQ(content.rfind("Debug File for QLP \n", 0), 0u);
  const Labels l = debugLabels(content);
  auto first = [&](const std::string& label) {
    return std::find(l.begin(), l.end(), label) - l.begin();
  };
  auto count = [&](const std::string& label) { return std::count(l.begin(), l.end(), label); };
  long previous = -1;
  for (const std::string& label : dataSection("qlp_trace.txt", "every-switch-order")) {
    EXPECT_GT(first(label), previous) << label;
    previous = first(label);
  }
  // The whole backward pass comes before the forward pass, one step per period each.
  EXPECT_LT(l.rend() - std::find(l.rbegin(), l.rend(), "glc") - 1, first("xk in compu"));
  const int T = baseCase().T;
  for (const char* label : {"kj", "phi in comphi", "xk in compu"})
    EXPECT_EQ(count(label), T) << label;
  EXPECT_EQ(count("criterion"), 1);

  EXPECT_EQ(tracedSolve(model, {}), "Debug File for QLP ");
  Labels gAndG = {"Debug File for QLP"};
  for (int t = 0; t < T; ++t) gAndG.insert(gAndG.end(), {"g", "glc"});
  EXPECT_EQ(debugLabels(tracedSolve(model, {DebugSwitch::QlpGAndG})), gAndG);
  EXPECT_EQ(debugLabels(tracedSolve(model, {DebugSwitch::QlpCriterionValue})),
            (Labels{"Debug File for QLP", "sum in sumc", "criterion"}));
}

}  // namespace
}  // namespace ovaro
