// What a traced QLP solve writes to the debug file, and in which order.
#include "solve/trace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
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

using testing::debugLabels;

long firstOf(const std::vector<std::string>& l, const std::string& label) {
  const auto it = std::find(l.begin(), l.end(), label);
  return it == l.end() ? -1 : it - l.begin();
}

long lastOf(const std::vector<std::string>& l, const std::string& label) {
  const auto it = std::find(l.rbegin(), l.rend(), label);
  return it == l.rend() ? -1 : (l.rend() - it) - 1;
}

std::string tracedSolve(const Model& model, const DebugSwitches& switches) {
  testing::TempDir dir;
  const std::string path = dir.file("qlp.dbg");
  {
    DebugFile file;
    EXPECT_TRUE(file.open(path));
    RecordingPrompter prompter;
    EXPECT_TRUE(solveQlp(model, prompter, qlpSolveTrace(&file, switches)));
  }
  return testing::slurp(path);
}

TEST(QlpTrace, EverySwitchOnDumpsInTheOrderOfTheAlgorithm) {
  const testing::Case k = testing::baseCase();
  DebugSwitches all;
  all.set(DebugSwitch::QlpAll);
  const std::string content = tracedSolve(testing::caseModel(k, testing::constantFlags()), all);
  ASSERT_EQ(content.rfind("Debug File for QLP \n", 0), 0u);
  const std::vector<std::string> l = debugLabels(content);
  long previous = -1;
  for (const std::string& label : testing::dataSection("qlp_trace.txt", "every-switch-order")) {
    const long at = firstOf(l, label);
    EXPECT_GT(at, previous) << label;
    previous = at;
  }
  // The whole backward pass comes before the forward pass, one step per period each.
  EXPECT_LT(lastOf(l, "glc"), firstOf(l, "xk in compu"));
  EXPECT_EQ(std::count(l.begin(), l.end(), "kj"), k.T);
  EXPECT_EQ(std::count(l.begin(), l.end(), "phi in comphi"), k.T);
  EXPECT_EQ(std::count(l.begin(), l.end(), "xk in compu"), k.T);
  EXPECT_EQ(std::count(l.begin(), l.end(), "criterion"), 1);
}

TEST(QlpTrace, SwitchesChooseTheDumps) {
  const testing::Case k = testing::baseCase();
  const Model model = testing::caseModel(k, testing::constantFlags());
  EXPECT_EQ(tracedSolve(model, DebugSwitches{}), "Debug File for QLP ");

  DebugSwitches gAndG;
  gAndG.set(DebugSwitch::QlpGAndG);
  std::vector<std::string> expected = {"Debug File for QLP"};
  for (int t = 0; t < k.T; ++t) {
    expected.push_back("g");
    expected.push_back("glc");
  }
  EXPECT_EQ(debugLabels(tracedSolve(model, gAndG)), expected);

  DebugSwitches criterion;
  criterion.set(DebugSwitch::QlpCriterionValue);
  EXPECT_EQ(debugLabels(tracedSolve(model, criterion)),
            (std::vector<std::string>{"Debug File for QLP", "sum in sumc", "criterion"}));
}

TEST(QlpTrace, ForwardVariableLoopIsTracedIterationByIteration) {
  testing::Case k = testing::baseCase();
  SpecFlags f = testing::constantFlags();
  f.forwardVars = opt::kForwardYes;
  Model model = testing::caseModel(k, f, opt::kDeterministic, 0, /*maxLead=*/3, 50, "1.0E-16");
  for (MatrixId id : {MatrixId::D1, MatrixId::D2, MatrixId::D3})
    for (int i = 0; i < k.n; ++i) testing::setCell(model, id, i, i, 0.05);
  DebugSwitches sw;
  sw.set(DebugSwitch::QlpForwardLooking);
  const std::vector<std::string> l = debugLabels(tracedSolve(model, sw));
  // Every pass: the lead adjustment, then the convergence test of its controls.
  const long passes = std::count(l.begin(), l.end(), "cs in forward at top");
  ASSERT_GE(passes, 2);
  EXPECT_EQ(std::count(l.begin(), l.end(), "cs in forward at bottom"), passes);
  EXPECT_EQ(std::count(l.begin(), l.end(), "xk3 in forward"), passes * k.T);
  EXPECT_EQ(std::count(l.begin(), l.end(), "epsCurrent in CheckConvergence"), passes);
  std::vector<long> tops, bottoms;
  for (long i = 0; i < static_cast<long>(l.size()); ++i) {
    if (l[i] == "cs in forward at top") tops.push_back(i);
    if (l[i] == "cs in forward at bottom") bottoms.push_back(i);
  }
  for (long it = 1; it <= passes; ++it) {
    const long heading = firstOf(l, "CheckConvergence - iter = " + std::to_string(it));
    EXPECT_GT(heading, bottoms[it - 1]) << it;
    if (it < passes) {
      EXPECT_LT(heading, tops[it]) << it;
    }
  }
  EXPECT_EQ(l.back(), "CheckConvergence - Convergence at iteration " + std::to_string(passes));
}

}  // namespace
}  // namespace ovaro
