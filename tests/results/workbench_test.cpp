#include "results/workbench.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/model_fixtures.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

TEST(Workbench, StartsEmptyWithTheShellDefaults) {
  RecordingPrompter prompter;
  NullProgress progress;
  Workbench wb(prompter, progress);
  EXPECT_FALSE(wb.model.allocated);
  EXPECT_EQ(wb.model.dims.n.text, "");
  EXPECT_EQ(wb.model.flags.stochTerms, 0);
  EXPECT_EQ(wb.shell.warningMessages, 1);
  EXPECT_EQ(wb.shell.debugImportedMatrices, 1);
  EXPECT_EQ(wb.shell.askScenarioQuestion, 0);
  EXPECT_EQ(wb.shell.importMatrixColumns, 5);
  EXPECT_EQ(wb.shell.methodSelector, kSolveQlp);
  EXPECT_EQ(wb.eps, std::ldexp(1.0, -53));
  EXPECT_EQ(wb.resultsFormat, 0);
  EXPECT_EQ(wb.results.find("QLP"), nullptr);
  EXPECT_FALSE(wb.debug.switches.any());
  EXPECT_FALSE(wb.debugFile.isOpen());
  EXPECT_TRUE(prompter.messages().empty());
}

TEST(Workbench, ResetRestoresModelAndShellButKeepsFormatAndDebugSettings) {
  RecordingPrompter prompter;
  NullProgress progress;
  Workbench wb(prompter, progress);
  wb.model = testing::makeModel(testing::ModelShape{});
  wb.shell.warningMessages = 0;
  wb.shell.methodSelector = kSolveOlf;
  wb.resultsFormat = 790;
  wb.debug.switches.set(DebugSwitch::QlpKAndP);
  wb.resetToDefaults();
  EXPECT_FALSE(wb.model.allocated);
  EXPECT_FALSE(wb.model.holds(MatrixId::A));
  EXPECT_EQ(wb.shell, ShellPreferences{});
  EXPECT_EQ(wb.resultsFormat, 790);
  EXPECT_TRUE(wb.debug.switches.on(DebugSwitch::QlpKAndP));
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
