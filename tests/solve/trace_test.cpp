// What a traced QLP solve writes to the debug file, and in which order.
#include "solve/trace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "io/debug_file.h"
#include "solve/drivers.h"
#include "solve/stacked_reference.h"
#include "support/debug_labels.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using Labels = std::vector<std::string>;

long firstOf(const Labels& l, const std::string& label) {
  const auto it = std::find(l.begin(), l.end(), label);
  return it == l.end() ? -1 : it - l.begin();
}

long count(const Labels& l, const std::string& label) {
  return std::count(l.begin(), l.end(), label);
}

std::string tracedSolve(const Model& model, std::initializer_list<DebugSwitch> on) {
  DebugSwitches switches;
  for (DebugSwitch s : on) switches.set(s);
  testing::TempDir dir;
  {
    DebugFile file;
    EXPECT_TRUE(file.open(dir.file("qlp.dbg")));
    RecordingPrompter prompter;
    EXPECT_TRUE(solveQlp(model, prompter, qlpSolveTrace(&file, switches)));
  }
  return testing::slurp(dir.file("qlp.dbg"));
}

TEST(QlpTrace, EverySwitchOnDumpsInTheOrderOfTheAlgorithm) {
  const int T = testing::baseCase().T;
  const Model model = testing::caseModel(testing::baseCase(), testing::constantFlags());
  const std::string content = tracedSolve(model, {DebugSwitch::QlpAll});
  ASSERT_EQ(content.rfind("Debug File for QLP \n", 0), 0u);
  const Labels l = testing::debugLabels(content);
  long previous = -1;
  for (const std::string& label : testing::dataSection("qlp_trace.txt", "every-switch-order")) {
    EXPECT_GT(firstOf(l, label), previous) << label;
    previous = firstOf(l, label);
  }
  // The whole backward pass comes before the forward pass, one step per period each.
  const long lastGlc = l.rend() - std::find(l.rbegin(), l.rend(), "glc") - 1;
  EXPECT_LT(lastGlc, firstOf(l, "xk in compu"));
  EXPECT_EQ(count(l, "kj"), T);
  EXPECT_EQ(count(l, "phi in comphi"), T);
  EXPECT_EQ(count(l, "xk in compu"), T);
  EXPECT_EQ(count(l, "criterion"), 1);

  // Each switch chooses its dumps.
  EXPECT_EQ(tracedSolve(model, {}), "Debug File for QLP ");
  Labels gAndG = {"Debug File for QLP"};
  for (int t = 0; t < T; ++t) gAndG.insert(gAndG.end(), {"g", "glc"});
  EXPECT_EQ(testing::debugLabels(tracedSolve(model, {DebugSwitch::QlpGAndG})), gAndG);
  EXPECT_EQ(testing::debugLabels(tracedSolve(model, {DebugSwitch::QlpCriterionValue})),
            (Labels{"Debug File for QLP", "sum in sumc", "criterion"}));
}

TEST(QlpTrace, ForwardVariableLoopIsTracedIterationByIteration) {
  const testing::Case k = testing::baseCase();
  SpecFlags f = testing::constantFlags();
  f.forwardVars = opt::kForwardYes;
  Model model = testing::caseModel(k, f, opt::kDeterministic, 0, /*maxLead=*/3, 50, "1.0E-16");
  for (MatrixId id : {MatrixId::D1, MatrixId::D2, MatrixId::D3})
    for (int i = 0; i < k.n; ++i) testing::setCell(model, id, i, i, 0.05);
  const Labels l = testing::debugLabels(tracedSolve(model, {DebugSwitch::QlpForwardLooking}));
  // Every pass: the lead adjustment, then the convergence test of its controls.
  const long passes = count(l, "cs in forward at top");
  ASSERT_GE(passes, 2);
  EXPECT_EQ(count(l, "cs in forward at bottom"), passes);
  EXPECT_EQ(count(l, "xk3 in forward"), passes * k.T);
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
