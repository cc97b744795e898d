#include "results/workbench.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/model_fixtures.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

// A reset is the start-up state of the model and the shell, but the results format and the debug
// settings are the user's and stay.
TEST(Workbench, ResetRestoresModelAndShellButKeepsFormatAndDebugSettings) {
  RecordingPrompter prompter;
  NullProgress progress;
  Workbench wb(prompter, progress);
  const Workbench fresh(prompter, progress);
  EXPECT_EQ(wb.eps, std::ldexp(1.0, -53));
  wb.model = testing::makeModel(testing::ModelShape{});
  wb.shell.warningMessages = 0;
  wb.shell.methodSelector = kSolveOlf;
  wb.resultsFormat = 790;
  wb.debug.switches.set(DebugSwitch::QlpKAndP);
  wb.resetToDefaults();
  EXPECT_FALSE(wb.model.allocated);
  EXPECT_FALSE(wb.model.holds(MatrixId::A));
  EXPECT_EQ(wb.shell, fresh.shell);
  EXPECT_EQ(wb.resultsFormat, 790);
  EXPECT_TRUE(wb.debug.switches.on(DebugSwitch::QlpKAndP));
  EXPECT_TRUE(prompter.messages().empty());
}

TEST(Workbench, TwoWorkbenchesDoNotShareTheirNumberFormat) {
  RecordingPrompter prompter;
  NullProgress progress;
  Workbench first(prompter, progress);
  Workbench second(prompter, progress);
  testing::TempDir dir;
  ASSERT_TRUE(first.debugFile.open(dir.file("first.dbg")));
  ASSERT_TRUE(second.debugFile.open(dir.file("second.dbg")));
  Mat a = mat2(1, 1, 1, 1);
  a(1, 1) = 1.5;
  first.resultsFormat = 784;  // " %12.4f "
  ASSERT_EQ(first.debugFile.dumpMatrix("a", 1, 1, 1, 1, a), 1);
  ASSERT_EQ(second.debugFile.dumpMatrix("a", 1, 1, 1, 1, a), 1);
  first.debugFile.close();
  second.debugFile.close();
  EXPECT_EQ(testing::slurp(dir.file("first.dbg")), "\n a \n          1.5000 ");
  EXPECT_EQ(testing::slurp(dir.file("second.dbg")), "\n a \n          1.50 ");
}

}  // namespace
}  // namespace ovaro
