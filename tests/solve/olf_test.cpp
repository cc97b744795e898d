// Open loop feedback: its expected quadratic forms, its agreement with QLP where the parameters are
// certain, its caution where they are not, the caution experiment and the refusals.
#include "solve/olf.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "io/debug_file.h"
#include "solve/drivers.h"
#include "solve/model_input.h"
#include "solve/stacked_reference.h"
#include "solve/system_forms.h"
#include "support/mat.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::baseCase;
using testing::Case;
using testing::caseModel;
using testing::colMat;
using testing::constantFlags;
using testing::expectClose;
using testing::rowsMat;
using testing::setCell;

// The base case with uncertain parameters: each ITHN row (kind, row, column) is one parameter,
// theta0 is the element's nominal value, and SITT0 is `sitt`.
Model uncertainModel(const Case& k, const std::vector<std::array<int, 3>>& ithn,
                     const testing::Dense& sitt) {
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
    for (int q = 0; q < np; ++q) setCell(model, MatrixId::SITT0, p, q, sitt[p][q]);
  }
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
  in.par.np = np;
  in.par.sitt = readModelMatrix(model, MatrixId::SITT0, np, 1, np);
  const IMat ithn = readModelIntMatrix(model, MatrixId::ITHN, np, 3);
  IMat nmap = imat2(1, np, 1, 1);
  for (int p = 1; p <= np; ++p) nmap(p, 1) = 1;
  in.par.napar = imat2(1, n, 1, n);
  in.par.nbpar = imat2(1, n, 1, m);
  in.par.ncpar = imat2(1, n, 1, 1);
  ithnCheck(n, m, np, nmap, ithn, in.par.napar, in.par.nbpar, in.par.ncpar, prompter, SolveTrace());
  return in;
}

TEST(OlfExpectedForms, EqualTheMeanOverAParameterDistributionWithThatCovariance) {
  // Three parameters in A(1,2), B(2,1) and c(1), correlated. The sigma points
  // theta0 +- sqrt(np) L e_k (L L' = SITT) have exactly that mean and covariance, and every
  // product below is quadratic in theta, so their average is the expectation.
  const int n = 2, m = 1, np = 3;
  const Mat a = rowsMat({{0.9, 0.3}, {-0.2, 0.7}}), b = colMat({0.4, 1.1});
  const Mat k = rowsMat({{2.0, 0.3}, {0.3, 1.5}}), p = colMat({-0.7, 0.2}), f = mat2(1, n, 1, m);
  Mat cs = mat2(1, n, 0, 0);
  cs(1, 0) = 0.5, cs(2, 0) = -0.4;
  const double l[3][3] = {{0.3, 0, 0}, {0.1, 0.4, 0}, {-0.2, 0.05, 0.25}};
  Mat sitt = mat2(1, np, 1, np);
  for (int i = 0; i < np; ++i)
    for (int j = 0; j < np; ++j)
      for (int e = 0; e < np; ++e) sitt(i + 1, j + 1) += l[i][e] * l[j][e];
  IMat napar = imat2(1, n, 1, n), nbpar = imat2(1, n, 1, m), ncpar = imat2(1, n, 1, 1);
  napar(1, 2) = 1, nbpar(2, 1) = 2, ncpar(1, 1) = 3;
  Mat ws = mat2(1, n, 0, 1), lams = mat2(1, m, 0, 0), wlcs = mat2(1, n, 0, 1),
      lamlcs = mat2(1, m, 0, 0);
  ws(1, 0) = 1.0, ws(2, 0) = 2.0, lams(1, 0) = 0.5, wlcs(1, 0) = 0.3, lamlcs(1, 0) = -0.1;

  CriterionArrays crit;
  crit.f = f, crit.ws = ws, crit.lams = lams, crit.wlcs = wlcs, crit.lamlcs = lamlcs;
  const UncertainParameters par{np, napar, nbpar, ncpar, sitt};
  OlfWork w(n, m);
  w.k = k, w.p = p;
  comphiolf(n, m, 1, 0, a, b, crit, par, w, SolveTrace());
  comphilcolf(n, m, 0, a, b, cs, crit, par, w, SolveTrace());
  const Mat &phi = w.phi, &psi = w.psi, &theta = w.theta, &philc = w.philc, &thetalc = w.thetalc;

  double ePhi[2][2] = {}, ePsi[2] = {}, eTheta = 0, ePhilc[2] = {}, eThetalc = 0;
  const double scale = std::sqrt(double(np));
  for (int e = 0; e < np; ++e)
    for (double sign : {1.0, -1.0}) {
      double A[2][2] = {{a(1, 1), a(1, 2)}, {a(2, 1), a(2, 2)}};
      double B[2] = {b(1, 1), b(2, 1)};
      double c[2] = {cs(1, 0), cs(2, 0)};
      A[0][1] += sign * scale * l[0][e];
      B[1] += sign * scale * l[1][e];
      c[0] += sign * scale * l[2][e];
      const double w = 1.0 / (2 * np);
      double kA[2][2], kB[2], kc[2];
      for (int i = 0; i < 2; ++i) {
        for (int j = 0; j < 2; ++j) kA[i][j] = k(i + 1, 1) * A[0][j] + k(i + 1, 2) * A[1][j];
        kB[i] = k(i + 1, 1) * B[0] + k(i + 1, 2) * B[1];
        kc[i] = k(i + 1, 1) * c[0] + k(i + 1, 2) * c[1];
      }
      for (int i = 0; i < 2; ++i) {
        for (int j = 0; j < 2; ++j) ePhi[i][j] += w * (A[0][i] * kA[0][j] + A[1][i] * kA[1][j]);
        ePsi[i] += w * (A[0][i] * kB[0] + A[1][i] * kB[1]);
        ePhilc[i] += w * (A[0][i] * (kc[0] + p(1, 1)) + A[1][i] * (kc[1] + p(2, 1)));
      }
      eTheta += w * (B[0] * kB[0] + B[1] * kB[1]);
      eThetalc += w * (B[0] * (kc[0] + p(1, 1)) + B[1] * (kc[1] + p(2, 1)));
    }
  for (int i = 0; i < 2; ++i) {
    for (int j = 0; j < 2; ++j)
      expectClose(phi(i + 1, j + 1), ePhi[i][j] + (i == j ? ws(i + 1, 0) : 0.0), 1e-13, "phi");
    expectClose(psi(i + 1, 1), ePsi[i], 1e-13, "psi");
    expectClose(philc(i + 1, 1), ePhilc[i] + wlcs(i + 1, 0), 1e-13, "philc");
  }
  expectClose(theta(1, 1), eTheta + lams(1, 0), 1e-13, "theta");
  expectClose(thetalc(1, 1), eThetalc + lamlcs(1, 0), 1e-13, "thetalc");
}

// Where the variance cannot reach the rule, OLF is QLP: no variance at all, or only a constant
// uncertain (with A and B certain, E[A'Kc] = A'Kc and E[B'Kc] = B'Kc whatever the variance of c).
TEST(OlfSolve, WithoutVarianceInAOrBItIsTheQlpSolution) {
  const Case k = baseCase();
  const Model models[] = {
      uncertainModel(k, {{1, 1, 1}, {0, 2, 2}, {2, 3, 1}}, {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}}),
      uncertainModel(k, {{2, 2, 1}}, {{0.7}})};
  for (const Model& model : models) {
    RecordingPrompter prompter;
    const auto o = solveOlf(model, CautionExperiment{}, prompter, SolveTrace());
    const auto q = solveQlp(model, prompter, SolveTrace());
    ASSERT_TRUE(o && q);
    EXPECT_TRUE(prompter.messages().empty());
    EXPECT_EQ(o->method, "OLFwo");
    for (int t = 0; t <= k.T; ++t) {
      for (int j = 1; j <= k.m && t < k.T; ++j) expectClose(o->us(j, t), q->us(j, t), 1e-12, "u");
      for (int i = 1; i <= k.n; ++i) expectClose(o->xs(i, t), q->xs(i, t), 1e-12, "x");
    }
    expectClose(o->criterion, q->criterion, 1e-12, "criterion");

    // and the rule itself, period by period
    OlfInputs in = olfInputs(model, prompter);
    FeedbackRule qlpRule = makeFeedbackRule(k.n, k.m, k.T), olfRule = qlpRule;
    ASSERT_EQ(riccati(in.sys, in.crit, qlpRule, SolveTrace()), 1);
    Mat xs = mat2(1, k.n, 0, k.T), us = mat2(1, k.m, 0, k.T - 1);
    double j = 0;
    ASSERT_EQ(olf(in.sys, in.crit, in.par, {}, olfRule, xs, us, j, prompter, SolveTrace()), 1);
    for (int t = 0; t < k.T; ++t)
      for (int i = 1; i <= k.m; ++i) {
        for (int e = 1; e <= k.n; ++e)
          expectClose(olfRule.gs(t, i, e), qlpRule.gs(t, i, e), 1e-12, "G");
        expectClose(olfRule.glcs(i, t), qlpRule.glcs(i, t), 1e-12, "g");
      }
  }
}

// One state, one control, one solver period: x1 = a x0 + b u + c with b uncertain.
Case scalarCase() {
  Case k;
  k.n = 1, k.m = 1, k.l = 1, k.T = 1;
  k.a = {{0.8}};
  k.b = {{0.5}};
  k.c = {{0.2}};
  k.z = {{1.0}};
  k.x0 = {1.0};
  k.w = {{1.0}, {1.0}};
  k.lam = {{0.5}};
  k.xd = {{2.0}, {2.0}};
  k.ud = {{0.1}};
  return k;
}

TEST(OlfSolve, VarianceOfAControlCoefficientMakesTheControlCautious) {
  // E[0.5 w (x1 - xd)^2 + 0.5 lam (u - ud)^2] with E[b^2] = b^2 + s2 is least at
  // u = (lam ud - w b (a x0 + c - xd)) / (w (b^2 + s2) + lam).
  const Case k = scalarCase();
  const double a = 0.8, b = 0.5, c = 0.2, x0 = 1.0, w = 1.0, lam = 0.5, xd = 2.0, ud = 0.1;
  const double s2 = 0.3;
  const double uQlp = (lam * ud - w * b * (a * x0 + c - xd)) / (w * b * b + lam);
  const double uOlf = (lam * ud - w * b * (a * x0 + c - xd)) / (w * (b * b + s2) + lam);
  RecordingPrompter prompter;
  const auto o = solveOlf(uncertainModel(k, {{1, 1, 1}}, {{s2}}), {}, prompter, SolveTrace());
  const auto q = solveQlp(uncertainModel(k, {{1, 1, 1}}, {{s2}}), prompter, SolveTrace());
  ASSERT_TRUE(o && q);
  expectClose(q->us(1, 0), uQlp, 1e-13, "QLP control");
  expectClose(o->us(1, 0), uOlf, 1e-13, "OLF control");
  EXPECT_LT(std::fabs(o->us(1, 0)), std::fabs(q->us(1, 0)));
  // The criterion is summed along the nominal path the cautious control produces.
  const double x1 = a * x0 + b * uOlf + c;
  const double j = 0.5 * w * (x0 - xd) * (x0 - xd) + 0.5 * w * (x1 - xd) * (x1 - xd) +
                   0.5 * lam * (uOlf - ud) * (uOlf - ud);
  expectClose(o->criterion, j, 1e-13, "OLF criterion");

  // Over several periods with two uncertain coefficients the first control is still the smaller.
  const Model big = uncertainModel(baseCase(), {{1, 1, 1}, {1, 2, 2}}, {{0.2, 0.05}, {0.05, 0.3}});
  const auto ob = solveOlf(big, {}, prompter, SolveTrace());
  const auto qb = solveQlp(big, prompter, SolveTrace());
  ASSERT_TRUE(ob && qb);
  const double no = std::hypot(ob->us(1, 0), ob->us(2, 0));
  const double nq = std::hypot(qb->us(1, 0), qb->us(2, 0));
  EXPECT_LT(no, nq);
  EXPECT_TRUE(prompter.messages().empty());
}

TEST(OlfSolve, RefusesModelsWithoutUncertainty) {
  const std::string head =
      "Warning: Need stochastic terms specification \t\t   \r of 'uncertain parameters' or "
      "'measurement error' in \t\t   \r order to use the Solve: OLF solver.  Use the \t\t   \r ";
  const std::pair<int, std::string> cases[] = {
      {opt::kDeterministic, head + "Solve:QLP solver instead."},
      {opt::kAdditiveNoise,
       head + "Solve: Compare solver instead and select 'Certainty Equivalence'."}};
  for (const auto& [stoch, text] : cases) {
    RecordingPrompter prompter;
    const Model model = caseModel(baseCase(), constantFlags(), stoch);
    EXPECT_FALSE(solveOlf(model, {}, prompter, SolveTrace()).has_value());
    EXPECT_EQ(testing::shown(prompter), std::vector<std::string>{"Warning!!: " + text});
  }
}

TEST(OlfSolve, CautionExperimentPerturbsOneStepOfTheRecursion) {
  const Case k = baseCase();
  const Model model = uncertainModel(k, {{1, 1, 1}, {0, 2, 2}}, {{0.04, 0.01}, {0.01, 0.09}});
  RecordingPrompter prompter;
  OlfInputs in = olfInputs(model, prompter);
  auto run = [&](CautionExperiment ce) {
    FeedbackRule rule = makeFeedbackRule(k.n, k.m, k.T);
    Mat xs = mat2(1, k.n, 0, k.T), us = mat2(1, k.m, 0, k.T - 1);
    double j = 0;
    EXPECT_EQ(olf(in.sys, in.crit, in.par, ce, rule, xs, us, j, prompter, SolveTrace()), 1);
    return rule;
  };
  auto sameFrom = [&](const FeedbackRule& x, const FeedbackRule& y, int t) {
    for (int i = 1; i <= k.m; ++i) {
      for (int e = 1; e <= k.n; ++e)
        if (x.gs(t, i, e) != y.gs(t, i, e)) return false;
      if (x.glcs(i, t) != y.glcs(i, t)) return false;
    }
    return true;
  };
  const FeedbackRule base = run({});
  ASSERT_TRUE(prompter.messages().empty());
  for (int period : {1, 3}) {
    prompter.clear();
    const FeedbackRule r = run({1, 1, 1, 0.8, period});
    EXPECT_EQ(testing::shown(prompter),
              std::vector<std::string>{"Caution Experiment: Caution Experiment Turned On"});
    for (int t = period; t < k.T; ++t) EXPECT_TRUE(sameFrom(r, base, t)) << period << " " << t;
    EXPECT_FALSE(sameFrom(r, base, period - 1)) << period;
    EXPECT_EQ(in.par.sitt(1, 1), 0.04);  // put back
  }
  for (int period : {0, k.T + 1}) {
    prompter.clear();
    const FeedbackRule r = run({1, 1, 1, 0.8, period});
    EXPECT_TRUE(prompter.messages().empty()) << period;
    for (int t = 0; t < k.T; ++t) EXPECT_TRUE(sameFrom(r, base, t)) << period << " " << t;
  }

  // In a one-period model, perturbing period 1 is solving with the perturbed covariance.
  const Case s = scalarCase();
  RecordingPrompter p2;
  const auto caution =
      solveOlf(uncertainModel(s, {{1, 1, 1}}, {{0.1}}), {1, 1, 1, 0.6, 1}, p2, SolveTrace());
  const auto direct = solveOlf(uncertainModel(s, {{1, 1, 1}}, {{0.6}}), {}, p2, SolveTrace());
  ASSERT_TRUE(caution && direct);
  EXPECT_EQ(caution->us(1, 0), direct->us(1, 0));
  EXPECT_EQ(caution->criterion, direct->criterion);
}

TEST(OlfSolve, BadPlacementsAndCautionIndicesStayInsideTheArrays) {
  // ITHN naming rows outside the system is reported and placed nowhere; the solve goes on.
  const Case k = baseCase();
  Model model =
      uncertainModel(k, {{0, 1, 1}, {1, 2, 1}, {2, 3, 1}}, {{0.1, 0, 0}, {0, 0.1, 0}, {0, 0, 0.1}});
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
  testing::TempDir dir;
  DebugFile file;
  ASSERT_TRUE(file.open(dir.file("olf.dbg")));
  RecordingPrompter prompter;
  const Model model = uncertainModel(baseCase(), {{1, 1, 1}}, {{0.1}});
  ASSERT_TRUE(solveOlf(model, {}, prompter, qlpSolveTrace(&file, DebugSwitches{})));
  file.close();
  EXPECT_EQ(testing::slurp(dir.file("olf.dbg")),
            " Debug File for OLF \r\n TESTMOD\n A model for tests\n"
            "\r\n State Variables, n \n   3\r\n Control Variables, m \n   2"
            "\r\n Exogenous Variables, l \n   1\r\n Uncertain Parameters, np \n   1"
            "\r\n Time Periods, nt \n   4");
}

}  // namespace
}  // namespace ovaro
