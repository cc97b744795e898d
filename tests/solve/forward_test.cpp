// Forward variables: the lead adjustment, the convergence test and the fixed point the QLP
// iteration reaches.
#include "solve/forward.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "io/debug_file.h"
#include "solve/stacked_reference.h"
#include "support/debug_labels.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using namespace testing;  // the fixtures and the reference
using Labels = std::vector<std::string>;

long count(const Labels& l, const std::string& label) {
  return std::count(l.begin(), l.end(), label);
}

TEST(ForwardLeads, LeadsBeyondTheHorizonAreTheTerminalState) {
  // One state, nt = 3, D1 = 2, D2 = 3, D3 = 5, x(t) = 10^(t+1); the columns past nt hold a value
  // that must never be read.
  Mat d1 = mat2(1, 1, 1, 1), d2 = d1, d3 = d1, xs = mat2(1, 1, 0, 6);
  d1(1, 1) = 2, d2(1, 1) = 3, d3(1, 1) = 5;
  const double x[] = {10, 100, 1000, 10000, 1e9, 1e9, 1e9};
  for (int t = 0; t <= 6; ++t) xs(1, t) = x[t];
  auto adjusted = [&](int lead, int t0, int flag) {
    Mat cs = mat2(1, 1, 0, 2);
    cs(1, 0) = 1, cs(1, 1) = 2, cs(1, 2) = 3;
    EXPECT_EQ(forward(1, 1, 3, t0, flag, lead, cs, d1, d2, d3, xs, SolveTrace()), 1);
    return std::array{cs(1, 0), cs(1, 1), cs(1, 2)};
  };
  EXPECT_EQ(adjusted(1, 0, 1), (std::array{201.0, 2002.0, 20003.0}));
  EXPECT_EQ(adjusted(2, 0, 1), (std::array{3201.0, 32002.0, 50003.0}));
  EXPECT_EQ(adjusted(3, 0, 1), (std::array{53201.0, 82002.0, 100003.0}));
  EXPECT_EQ(adjusted(2, 1, 1), (std::array{1.0, 32002.0, 50003.0}));
  EXPECT_EQ(adjusted(3, 0, 0), (std::array{1.0, 2.0, 3.0}));
}

TEST(ForwardConvergence, EpsIsThePlainSumOfSquaresFromT0) {
  Mat now = mat2(1, 2, 0, 2), old = now;
  const double nowV[2][3] = {{1.0, 2.0, 3.0}, {-1.0, 0.5, 4.0}};
  const double oldV[2][3] = {{9.0, 1.5, 2.0}, {7.0, 0.0, 6.0}};
  for (int i = 0; i < 2; ++i)
    for (int t = 0; t < 3; ++t) now(i + 1, t) = nowV[i][t], old(i + 1, t) = oldV[i][t];
  ForwardContext ctx;
  ctx.iterlim = 10, ctx.tolerance = 1e-6;
  double eps = -1;
  // Differences from period 1: 0.5, 1.0, 0.5, -2.0; period 0 is left out.
  ASSERT_EQ(CheckConvergence(1, 2, 1, 2, 3, now, old, eps, ctx, SolveTrace()), 1);
  EXPECT_EQ(eps, 0.25 + 1.0 + 0.25 + 4.0);
  for (int t = 0; t < 3; ++t) EXPECT_EQ(old(2, t), nowV[1][t]);
  EXPECT_FALSE(ctx.notConverged);
  // The first iteration has nothing to compare with.
  old(1, 0) = 100;
  ASSERT_EQ(CheckConvergence(1, 1, 0, 2, 3, now, old, eps, ctx, SolveTrace()), 1);
  EXPECT_EQ(eps, 0.0);
  EXPECT_EQ(old(1, 0), 1.0);

  // At the limit the warning goes to the debug file.
  TempDir dir;
  now(1, 1) = 5.0;
  for (bool monteCarlo : {false, true}) {
    const std::string path = dir.file(monteCarlo ? "mc.dbg" : "qlp.dbg");
    {
      DebugFile file;
      ASSERT_TRUE(file.open(path));
      ctx = {3, 1e-9, monteCarlo, "CE", false};
      old(1, 1) = -5.0;
      ASSERT_EQ(CheckConvergence(7, 3, 1, 2, 3, now, old, eps, ctx, SolveTrace(&file, {})), 1);
      EXPECT_TRUE(ctx.notConverged);
    }
    EXPECT_EQ(slurp(path),
              dataSection("solve_messages.txt", monteCarlo ? "forward-limit-debug-monte-carlo"
                                                           : "forward-limit-debug")[0]);
  }
}

TEST(ForwardQlp, TheIterationEndsAtAFixedPointOfTheLeadAdjustment) {
  const Case k = baseCase();
  for (int lead = 1; lead <= 3; ++lead) {
    SCOPED_TRACE("lead " + std::to_string(lead));
    Dense d[3];
    RecordingPrompter prompter;
    const std::optional<Solution> s =
        solveQlp(forwardModel(lead, 200, "1.0E-24", d), prompter, SolveTrace());
    ASSERT_TRUE(s);
    EXPECT_TRUE(prompter.messages().empty());
    // The final path obeys the system with its own leads (beyond nt the terminal state).
    for (int t = 0; t < k.T; ++t)
      for (int i = 0; i < k.n; ++i) {
        double rhs = k.c[i][0] * k.z[t][0];
        for (int e = 0; e < k.n; ++e) {
          rhs += k.a[i][e] * s->xs(e + 1, t);
          for (int l = 1; l <= 3; ++l) rhs += d[l - 1][i][e] * s->xs(e + 1, std::min(t + l, k.T));
        }
        for (int j = 0; j < k.m; ++j) rhs += k.b[i][j] * s->us(j + 1, t);
        EXPECT_NEAR(s->xs(i + 1, t + 1), rhs, 1e-10) << "t " << t << " i " << i;
      }
  }
}

TEST(ForwardQlp, WarnsOnlyWhenTheIterationLimitIsReached) {
  Dense d[3];
  const auto warning = dataSection("solve_messages.txt", "forward-limit");
  // A limit of one never compares two iterations, so it never warns.
  const std::pair<int, const char*> cases[] = {{2, "1.0E-30"}, {200, "1.0E-20"}, {1, "1.0E-30"}};
  for (const auto& [iterlim, tolerance] : cases) {
    RecordingPrompter prompter;
    ASSERT_TRUE(solveQlp(forwardModel(2, iterlim, tolerance, d), prompter, SolveTrace()));
    EXPECT_EQ(shown(prompter), iterlim == 2 ? warning : std::vector<std::string>{});
  }
}

TEST(ForwardQlp, TheLoopIsTracedIterationByIteration) {
  Dense d[3];
  const Labels l =
      debugLabels(tracedSolve(forwardModel(3, 50, "1.0E-16", d), {DebugSwitch::QlpForwardLooking}));
  // Every pass: the lead adjustment, then the convergence test of its controls.
  const long passes = count(l, "cs in forward at top");
  ASSERT_GE(passes, 2);
  EXPECT_EQ(count(l, "xk3 in forward"), passes * baseCase().T);
  EXPECT_EQ(count(l, "epsCurrent in CheckConvergence"), passes);
  Labels loop, expected;
  for (const std::string& s : l)
    if (s.rfind("cs in forward at", 0) == 0 || s.rfind("CheckConvergence - iter", 0) == 0)
      loop.push_back(s);
  for (long p = 1; p <= passes; ++p)
    expected.insert(expected.end(), {"cs in forward at top", "cs in forward at bottom",
                                     "CheckConvergence - iter = " + std::to_string(p)});
  EXPECT_EQ(loop, expected);
  EXPECT_EQ(l.back(), "CheckConvergence - Convergence at iteration " + std::to_string(passes));
}

}  // namespace
}  // namespace ovaro
