// One period of the true economy: values worked out by hand, the order of the sums, the
// policy-to-parameter percentages with their substitute and warnings, and the debug labels.
#include "stoch/one_period.h"

#include <gtest/gtest.h>

#include <bitset>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "io/debug_file.h"
#include "solve/system_forms.h"
#include "support/debug_labels.h"
#include "support/mat.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::colMat;
using testing::rowsMat;

std::bitset<kSolveTopicCount> topics(std::initializer_list<SolveTopic> list) {
  std::bitset<kSolveTopicCount> on;
  for (SolveTopic t : list) on.set(static_cast<std::size_t>(t));
  return on;
}

// The labels of a debug file in order, consecutive repeats counted once.
std::vector<std::string> labels(const std::string& content) {
  std::vector<std::string> out;
  for (std::string& l : testing::debugLabels(content))
    if (out.empty() || out.back() != l) out.push_back(std::move(l));
  return out;
}

std::vector<std::string> expected(const std::string& section) {
  return testing::dataSection("one_period.txt", section);
}

std::string warning(std::size_t i) {
  return expected("warnings").at(i);
}

// Runs `body` with a debug file whose topics are `on`, and returns what it wrote.
template <typename Body>
std::string traced(std::bitset<kSolveTopicCount> on, Body body) {
  testing::TempDir dir;
  const std::string path = dir.file("period.dbg");
  {
    DebugFile file;
    EXPECT_TRUE(file.open(path));
    body(SolveTrace(&file, on));
  }
  return testing::slurp(path);
}

TEST(CompUOnePeriod, AppliesTheFeedbackRuleAndLabelsTheHcfrRuns) {
  const Mat g = rowsMat({{0.5, -1.0}, {2.0, 0.25}});
  const Mat glc = colMat({0.1, -0.3});
  const Mat xk = colMat({2.0, 4.0});
  Mat uk = mat2(1, 2, 1, 1);
  PeriodContext ctx;
  CompUOnePeriod(2, 2, g, glc, xk, uk, ctx, SolveTrace());
  EXPECT_EQ(uk(1, 1), 1.0 - 4.0 + 0.1);
  EXPECT_EQ(uk(2, 1), 4.0 + 1.0 - 0.3);

  ctx.hcfr = true;
  const std::string content =
      traced(topics({SolveTopic::StatesControlsIntermediate}),
             [&](const SolveTrace& t) { CompUOnePeriod(2, 2, g, glc, xk, uk, ctx, t); });
  EXPECT_EQ(labels(content), expected("CompUOnePeriod/HCFR"));
}

struct TrueSystem {
  int n = 2, m = 1, nt = 3, ny = 1;
  Mat atrue = rowsMat({{0.5, 0.25}, {-1.0, 2.0}});
  Mat btrue = rowsMat({{1.0}, {-2.0}});
  Mat ctruetv = mat2(1, 2, 0, 2);
  Mat h = rowsMat({{1.0, 3.0}});
  Mat xsis = mat2(1, 2, 0, 2);
  Mat zetas = mat2(1, 1, 1, 3);
  Mat xk = colMat({4.0, 1.0});
  Mat uk = colMat({0.5});
  Mat xk1 = mat2(1, 2, 1, 1), y = mat2(1, 1, 1, 1);
  TrueSystem() {
    for (int t = 0; t <= 2; ++t) {
      ctruetv(1, t) = 10.0 * (t + 1), ctruetv(2, t) = -100.0 * (t + 1);
      xsis(1, t) = 0.125 * (t + 1), xsis(2, t) = -0.0625 * (t + 1);
      zetas(1, t + 1) = 1000.0 * (t + 1);
    }
  }
  TrueEconomy economy() const { return {n, m, nt, ny, atrue, btrue, ctruetv, h, xsis, zetas}; }
  std::string step(int k, bool hcfr, std::bitset<kSolveTopicCount> on) {
    PeriodContext ctx;
    ctx.hcfr = hcfr;
    return traced(
        on, [&](const SolveTrace& t) { CompXOnePeriod(economy(), k, xk, uk, xk1, y, ctx, t); });
  }
};

TEST(CompXOnePeriod, AdvancesTheTrueStateWithTheNoiseOfThePeriod) {
  TrueSystem s;
  for (bool hcfr : {false, true}) {
    const std::string content = s.step(1, hcfr, topics({SolveTopic::StatesControlsIntermediate}));
    // Period 1: c and xsi from column 1, zeta from column 2.
    EXPECT_EQ(s.xk1(1, 1), (2.0 + 0.25) + (0.5 + (20.0 + 0.25)));
    EXPECT_EQ(s.xk1(2, 1), (-4.0 + 2.0) + (-1.0 + (-200.0 - 0.125)));
    EXPECT_EQ(s.y(1, 1), s.xk1(1, 1) + 3.0 * s.xk1(2, 1) + 2000.0);
    std::vector<std::string> want = expected("CompXOnePeriod");
    for (std::string& l : want) l += hcfr ? "/HCFR" : "";
    EXPECT_EQ(labels(content), want);
  }
  // Other topics leave the one-period simulation out.
  EXPECT_EQ(
      s.step(0, false, topics({SolveTopic::StatesControlsFinal, SolveTopic::TrueParametersFinal})),
      "");
}

TEST(CompXOnePeriod, AddsTheConstantAndTheNoiseBeforeTheControlTermAndTheStateTerm) {
  // Near 1e16 the doubles are 2 apart: ax + (bu + (c + xsi)) loses c + xsi = 1 into bu, while a
  // sum from the left would keep it.
  TrueSystem s;
  s.n = 1;
  s.atrue = rowsMat({{1e16}});
  s.btrue = rowsMat({{-1e16}});
  s.xk = colMat({1.0});
  s.uk = colMat({1.0});
  s.ctruetv(1, 0) = 0.5;
  s.xsis(1, 0) = 0.5;
  s.h = rowsMat({{1.0}});
  s.step(0, false, topics({}));
  EXPECT_EQ(s.xk1(1, 1), 0.0);
  EXPECT_EQ(s.y(1, 1), 1000.0);
}

TEST(CompXOnePeriodForw, AddsTheExpectedLeadStates) {
  TrueSystem s;
  Mat d1 = rowsMat({{1.0, 0.0}, {0.0, 0.0}});
  Mat d2 = rowsMat({{0.0, 0.0}, {0.0, 2.0}});
  Mat d3 = rowsMat({{0.0, 4.0}, {0.0, 0.0}});
  Mat xe = mat2(1, 2, 0, 6);
  for (int t = 0; t <= 6; ++t) xe(1, t) = t, xe(2, t) = 0.5 * t;
  const std::string content =
      traced(topics({SolveTopic::StatesControlsIntermediate}), [&](const SolveTrace& t) {
        CompXOnePeriodForw(s.economy(), 1, d1, d2, d3, xe, s.xk, s.uk, s.xk1, s.y, t);
      });
  // dxesum = D1 xe(2) + D2 xe(3) + D3 xe(4) = (2 + 0 + 4 * 2, 0 + 2 * 1.5 + 0) = (10, 3).
  EXPECT_EQ(s.xk1(1, 1), 2.25 + (0.5 + ((20.0 + 10.0) + 0.25)));
  EXPECT_EQ(s.xk1(2, 1), -2.0 + (-1.0 + ((-200.0 + 3.0) - 0.125)));
  EXPECT_EQ(s.y(1, 1), s.xk1(1, 1) + 3.0 * s.xk1(2, 1) + 2000.0);
  EXPECT_EQ(labels(content), expected("CompXOnePeriodForw"));
}

// Two parameters, two controls, horizon 3.
struct ParameterPath {
  int np = 2, m = 2, nt = 3;
  Mat thetatrue = mat2(1, 2, 0, 3);
  Mat etas = mat2(1, 2, 0, 2);
  Mat us = mat2(1, 2, 0, 2);
  Mat uk = colMat({3.0, 1.5});
  Mat npolicy = rowsMat({{1.0, 0.5}, {0.0, 2.0}});
  ParameterDrift drift(int effect = 1) const { return {np, m, nt, effect, npolicy, etas}; }
  ParameterPath() {
    thetatrue(1, 0) = 0.8, thetatrue(2, 0) = -0.4;
    thetatrue(1, 1) = 0.6, thetatrue(2, 1) = 1.2;
    for (int t = 0; t <= 2; ++t) etas(1, t) = 0.01 * (t + 1), etas(2, t) = -0.02 * (t + 1);
    us(1, 0) = 2.0, us(2, 0) = -1.0;
  }
};

// One step of the true parameters: theta(k+1) = theta(k) + puc theta(k) + eta(k) with the policy
// effect, puc = diag(N ukpercent), ukpercent = (u(k) - u(k-1)) / u(k-1); a previous control of zero
// (|u| < 1e-9) gives 99999 and a warning written whatever the topics.
TEST(CompThetaTrueOnePeriod, StepsTheTrueParametersWithTheirWarningAndLabels) {
  using T = SolveTopic;
  struct Case {
    const char* what;
    int k, effect, zeroControl, run;
    double theta1, theta2;  // the new column k + 1
    std::bitset<kSolveTopicCount> on;
    std::string written;  // the labels' section, or the warning
  };
  const Case cases[] = {
      // ukpercent = (0.5, -2.5); plc = N ukpercent = (0.5 - 1.25, -5).
      {"policy effect", 1, 1, 0, 0, (0.6 + -0.75 * 0.6) + 0.02, (1.2 + -5.0 * 1.2) - 0.04,
       topics({T::TrueParametersIntermediate}), "with the policy effect"},
      {"period 0: no percentage change", 0, 1, 0, 0, 0.8 + 0.01, -0.4 - 0.02, topics({}), ""},
      // N is not read: NaN there would show.
      {"without the effect", 1, 0, 1, 0, 0.6 + 0.02, 1.2 - 0.04,
       topics({T::TrueParametersIntermediate, T::TrueParametersFinal}),
       "without the policy effect"},
      // ukpercent = (0.5, 99999); plc = (0.25 + 49999.5, 199998): the run goes on with the jump.
      {"Monte Carlo run", 1, 1, 2, 7, (0.6 + 50000.0 * 0.6) + 0.02, (1.2 + 199998.0 * 1.2) - 0.04,
       topics({}), warning(0)},
      {"single solve", 1, 1, 1, 0, (0.6 + 99997.75 * 0.6) + 0.02, (1.2 + -5.0 * 1.2) - 0.04,
       topics({}), warning(1)}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ParameterPath p;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    if (c.effect == 0) p.npolicy = rowsMat({{nan, nan}, {nan, nan}});
    if (c.zeroControl > 0) p.us(c.zeroControl, 0) = 0.0;
    PeriodContext ctx;
    ctx.run = c.run;
    ctx.method = "OLF";
    const std::string content = traced(c.on, [&](const SolveTrace& t) {
      EXPECT_EQ(CompThetaTrueOnePeriod(ctx, p.drift(c.effect), c.k, p.uk, p.us, p.thetatrue, t), 1);
    });
    EXPECT_EQ(p.thetatrue(1, c.k + 1), c.theta1);
    EXPECT_EQ(p.thetatrue(2, c.k + 1), c.theta2);
    EXPECT_EQ(p.thetatrue(1, c.k), c.k == 1 ? 0.6 : 0.8);  // other columns left alone
    EXPECT_EQ(p.thetatrue(1, c.k + 2), 0.0);
    EXPECT_EQ(ctx.divisionWarning, c.effect == 1 && c.zeroControl > 0);
    if (c.written.starts_with("\r")) {
      EXPECT_EQ(content, c.written);
    } else {
      EXPECT_EQ(labels(content), c.written.empty()
                                     ? std::vector<std::string>{}
                                     : expected("CompThetaTrueOnePeriod " + c.written));
    }
  }
  // Near zero on either side counts as zero; exactly the limit does not.
  for (double previous : {9.9e-10, -9.9e-10, 1e-9}) {
    ParameterPath q;
    q.us(1, 0) = previous;
    PeriodContext c;
    CompThetaTrueOnePeriod(c, q.drift(), 1, q.uk, q.us, q.thetatrue, SolveTrace());
    EXPECT_EQ(c.divisionWarning, previous != 1e-9) << previous;
  }
}

TEST(CompThetaTrueOnePeriod, FailedWarningWriteStopsTheRoutine) {
  ParameterPath p;
  p.us(1, 0) = 0.0;
  DebugFile file;
  ASSERT_TRUE(file.open("/dev/full"));
  PeriodContext ctx;
  EXPECT_EQ(CompThetaTrueOnePeriod(ctx, p.drift(), 1, p.uk, p.us, p.thetatrue,
                                   SolveTrace(&file, topics({}))),
            0);
  EXPECT_EQ(p.thetatrue(1, 2), 0.0);
}

TEST(TrueParameterEvolution, RebuildsTheTrueSystemFromTheNewParameters) {
  // Parameter 1 sits in A(2, 1), parameter 2 in c(1).
  ParameterPath p;
  const int n = 2;
  IMat ithn = imat2(1, 2, 1, 3);
  ithn(1, 1) = kIthnA, ithn(1, 2) = 2, ithn(1, 3) = 1;
  ithn(2, 1) = kIthnC, ithn(2, 2) = 1, ithn(2, 3) = 1;
  Mat atrue = rowsMat({{0.5, 0.25}, {9.0, 2.0}});
  Mat btrue = rowsMat({{1.0, -2.0}, {3.0, 4.0}});
  Mat ctruetv = mat2(1, 2, 0, 2);
  for (int t = 0; t <= 2; ++t) ctruetv(1, t) = 7.0, ctruetv(2, t) = -3.0;
  PeriodContext ctx;
  RecordingPrompter prompter;
  const std::string content =
      traced(topics({SolveTopic::TrueParametersFinal}), [&](const SolveTrace& t) {
        EXPECT_EQ(TrueParameterEvolution(ctx, p.drift(0), 0, n, ithn, p.uk, p.us, p.thetatrue,
                                         atrue, btrue, ctruetv, prompter, t),
                  1);
      });
  // A(2, 1) and c(1) in every period now hold theta(1) = 0.8 + 0.01 and theta(2) = -0.4 - 0.02.
  EXPECT_EQ(atrue(2, 1), 0.8 + 0.01);
  EXPECT_EQ(atrue(1, 2) + btrue(2, 2) + ctruetv(2, 2), 0.25 + 4.0 - 3.0);
  for (int t = 0; t <= 2; ++t) EXPECT_EQ(ctruetv(1, t), -0.4 - 0.02);
  EXPECT_TRUE(prompter.messages().empty());
  EXPECT_EQ(labels(content), expected("TrueParameterEvolution"));
}

// OLIN adds the known effect of its controls, applied to the true parameters, to its estimate:
// plc = (-0.75, -5) as above on thetatrue(:, 1) = (0.6, 1.2); a zero previous control gives
// ukpercent 99999 and plc(1) = 99999 - 1.25, with this routine's own warning.
TEST(CompPolicyParmEffect, AddsTheKnownEffectOfTheTrueParametersToTheEstimate) {
  struct Case {
    int k, run;
    bool zeroControl;
    double plc1;  // plc2 is -5 whenever k = 1
    std::bitset<kSolveTopicCount> on;
  };
  using T = SolveTopic;
  for (const Case& c :
       {Case{1, 0, false, -0.75, topics({T::TrueParametersIntermediate, T::TrueParametersFinal})},
        Case{0, 0, false, 0.0, topics({})}, Case{1, 0, true, 99997.75, topics({})},
        Case{1, 4, true, 99997.75, topics({})}}) {
    SCOPED_TRACE(::testing::Message() << "k " << c.k << " run " << c.run);
    ParameterPath p;
    if (c.zeroControl) p.us(1, 0) = 0.0;
    Mat thk1k1 = colMat({0.3, -0.7});
    PeriodContext ctx;
    ctx.run = c.run;
    ctx.method = "OLIN";
    const std::string content = traced(c.on, [&](const SolveTrace& t) {
      EXPECT_EQ(CompPolicyParmEffect(ctx, p.drift(), c.k, p.uk, p.us, p.thetatrue, thk1k1, t), 1);
    });
    EXPECT_EQ(thk1k1(1, 1), c.k == 0 ? 0.3 : 0.3 + c.plc1 * 0.6);
    EXPECT_EQ(thk1k1(2, 1), c.k == 0 ? -0.7 : -0.7 + -5.0 * 1.2);
    EXPECT_EQ(ctx.divisionWarning, c.zeroControl);
    if (c.zeroControl) {
      EXPECT_EQ(content, warning(c.run == 0 ? 2 : 3));
    } else if (c.on.any()) {
      EXPECT_EQ(labels(content), expected("CompPolicyParmEffect"));
    }
  }
}

}  // namespace
}  // namespace ovaro
