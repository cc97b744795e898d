// Forward variables: the lead adjustment, the convergence test and the fixed point the QLP
// iteration reaches.
#include "solve/forward.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "io/debug_file.h"
#include "solve/drivers.h"
#include "solve/stacked_reference.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::baseCase;
using testing::Case;
using testing::caseModel;
using testing::constantFlags;
using testing::setDense;

TEST(ForwardLeads, LeadsBeyondTheHorizonAreTheTerminalState) {
  // One state, nt = 3, D1 = 2, D2 = 3, D3 = 5, x(t) = 10^(t+1); the columns past nt hold a value
  // that must never be read.
  const int nt = 3;
  Mat d1 = mat2(1, 1, 1, 1), d2 = d1, d3 = d1;
  d1(1, 1) = 2, d2(1, 1) = 3, d3(1, 1) = 5;
  Mat xs = mat2(1, 1, 0, nt + 3);
  const double x[] = {10, 100, 1000, 10000, 1e9, 1e9, 1e9};
  for (int t = 0; t <= nt + 3; ++t) xs(1, t) = x[t];
  auto adjusted = [&](int lead, int t0, int flag) {
    Mat cs = mat2(1, 1, 0, nt - 1);
    cs(1, 0) = 1, cs(1, 1) = 2, cs(1, 2) = 3;
    EXPECT_EQ(forward(1, 1, nt, t0, flag, lead, cs, d1, d2, d3, xs, SolveTrace()), 1);
    return std::array<double, 3>{cs(1, 0), cs(1, 1), cs(1, 2)};
  };
  EXPECT_EQ(adjusted(1, 0, 1), (std::array<double, 3>{201, 2002, 20003}));
  EXPECT_EQ(adjusted(2, 0, 1), (std::array<double, 3>{3201, 32002, 50003}));
  EXPECT_EQ(adjusted(3, 0, 1), (std::array<double, 3>{53201, 82002, 100003}));
  EXPECT_EQ(adjusted(2, 1, 1), (std::array<double, 3>{1, 32002, 50003}));
  EXPECT_EQ(adjusted(3, 0, 0), (std::array<double, 3>{1, 2, 3}));

  // D1 x acts on rows: D1 = [[0, 1], [0, 0]] moves x2 of the next period into row 1 only.
  Mat e1 = mat2(1, 2, 1, 2), zero = mat2(1, 2, 1, 2), xs2 = mat2(1, 2, 0, 2),
      cs2 = mat2(1, 2, 0, 0);
  e1(1, 2) = 1;
  xs2(1, 1) = 3, xs2(2, 1) = 7;
  ASSERT_EQ(forward(2, 1, 1, 0, 1, 1, cs2, e1, zero, zero, xs2, SolveTrace()), 1);
  EXPECT_EQ(cs2(1, 0), 7);
  EXPECT_EQ(cs2(2, 0), 0);
}

TEST(ForwardConvergence, EpsIsThePlainSumOfSquaresFromT0) {
  const int m = 2, nt = 3;
  Mat usiter = mat2(1, m, 0, nt - 1), usOld = mat2(1, m, 0, nt - 1);
  const double now[2][3] = {{1.0, 2.0, 3.0}, {-1.0, 0.5, 4.0}};
  const double old[2][3] = {{9.0, 1.5, 2.0}, {7.0, 0.0, 6.0}};
  for (int i = 0; i < m; ++i)
    for (int t = 0; t < nt; ++t) usiter(i + 1, t) = now[i][t], usOld(i + 1, t) = old[i][t];
  ForwardContext ctx;
  ctx.iterlim = 10;
  ctx.tolerance = 1e-6;
  double eps = -1;
  // Differences from period 1: 0.5, 1.0, 0.5, -2.0; period 0 is left out.
  ASSERT_EQ(CheckConvergence(1, 2, 1, m, nt, usiter, usOld, eps, ctx, SolveTrace()), 1);
  EXPECT_EQ(eps, 0.25 + 1.0 + 0.25 + 4.0);
  for (int t = 0; t < nt; ++t) EXPECT_EQ(usOld(2, t), now[1][t]);
  EXPECT_FALSE(ctx.notConverged);
  // The first iteration has nothing to compare with.
  usOld(1, 0) = 100;
  ASSERT_EQ(CheckConvergence(1, 1, 0, m, nt, usiter, usOld, eps, ctx, SolveTrace()), 1);
  EXPECT_EQ(eps, 0.0);
  EXPECT_EQ(usOld(1, 0), 1.0);
}

TEST(ForwardConvergence, AtTheLimitTheWarningGoesToTheDebugFile) {
  testing::TempDir dir;
  const int m = 1, nt = 2;
  Mat usiter = mat2(1, m, 0, nt - 1), usOld = mat2(1, m, 0, nt - 1);
  usiter(1, 1) = 1.0;
  double eps = 0;
  for (bool monteCarlo : {false, true}) {
    DebugFile file;
    const std::string path = dir.file(monteCarlo ? "mc.dbg" : "qlp.dbg");
    ASSERT_TRUE(file.open(path));
    ForwardContext ctx{3, 1e-9, monteCarlo, "CE", false};
    mzerosub(1, m, 0, nt - 1, usOld);
    ASSERT_EQ(CheckConvergence(7, 3, 1, m, nt, usiter, usOld, eps, ctx, SolveTrace(&file, {})), 1);
    EXPECT_TRUE(ctx.notConverged);
    file.close();
    EXPECT_EQ(testing::slurp(path),
              monteCarlo ? "\r\n\r\n\r\nWarning!  Reached iteration limit before \r\n"
                           "reaching convergence tolerance in CheckConvergence \r\n"
                           "with method CE at time period 1 in Monte Carlo run 7\r\n"
                         : "\r\n\r\n\r\nWarning!  Reached iteration limit before \r\n"
                           "reaching convergence tolerance in CheckConvergence.\r\n\r\n");
  }
}

// The base case with forward variables up to `lead`; D_j = (0.12 / j) times a fixed pattern.
Model forwardModel(int lead, int iterlim, const std::string& tolerance, testing::Dense d[3]) {
  const Case k = baseCase();
  SpecFlags f = constantFlags();
  f.forwardVars = opt::kForwardYes;
  Model model = caseModel(k, f, opt::kDeterministic, 0, lead, iterlim, tolerance);
  const MatrixId ids[] = {MatrixId::D1, MatrixId::D2, MatrixId::D3};
  for (int j = 0; j < 3; ++j) {
    const double s = j < lead ? 0.12 / (j + 1) : 0.0;
    d[j] = {{s, 0.5 * s, 0.0}, {0.0, s, -0.25 * s}, {0.5 * s, 0.0, s}};
    setDense(model, ids[j], d[j]);
  }
  return model;
}

TEST(ForwardQlp, TheIterationEndsAtAFixedPointOfTheLeadAdjustment) {
  for (int lead = 1; lead <= 3; ++lead) {
    SCOPED_TRACE("lead " + std::to_string(lead));
    testing::Dense d[3];
    const Model model = forwardModel(lead, 200, "1.0E-24", d);
    RecordingPrompter prompter;
    const std::optional<Solution> s = solveQlp(model, prompter, SolveTrace());
    ASSERT_TRUE(s);
    EXPECT_TRUE(prompter.messages().empty());
    const Case k = baseCase();
    const int n = k.n, m = k.m, nt = k.T;
    // The final path obeys the system with its own leads (beyond nt the terminal state).
    for (int t = 0; t < nt; ++t)
      for (int i = 0; i < n; ++i) {
        double rhs = 0.0;
        for (int e = 0; e < n; ++e) rhs += k.a[i][e] * s->xs(e + 1, t);
        for (int j = 0; j < m; ++j) rhs += k.b[i][j] * s->us(j + 1, t);
        rhs += k.c[i][0] * k.z[t][0];
        for (int l = 1; l <= 3; ++l)
          for (int e = 0; e < n; ++e) rhs += d[l - 1][i][e] * s->xs(e + 1, std::min(t + l, nt));
        EXPECT_NEAR(s->xs(i + 1, t + 1), rhs, 1e-10) << "t " << t << " i " << i;
      }
  }
}

TEST(ForwardQlp, WarnsOnlyWhenTheIterationLimitIsReached) {
  testing::Dense d[3];
  RecordingPrompter prompter;
  ASSERT_TRUE(solveQlp(forwardModel(2, 2, "1.0E-30", d), prompter, SolveTrace()));
  EXPECT_EQ(testing::shown(prompter),
            std::vector<std::string>{
                "Warning!: Convergence in the forward variable loop\t\t\t\t\r failed. Use "
                "Solve:QLP:Print \t\t\t\t\r with print for forward variables\t\t\t\t\r to "
                "track down the problem."});

  prompter.clear();
  ASSERT_TRUE(solveQlp(forwardModel(2, 200, "1.0E-20", d), prompter, SolveTrace()));
  EXPECT_TRUE(prompter.messages().empty());
  // A limit of one never compares two iterations, so it never warns.
  ASSERT_TRUE(solveQlp(forwardModel(2, 1, "1.0E-30", d), prompter, SolveTrace()));
  EXPECT_TRUE(prompter.messages().empty());
}

}  // namespace
}  // namespace ovaro
