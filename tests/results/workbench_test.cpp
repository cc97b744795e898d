#include "results/workbench.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/model_fixtures.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

// A reset is the start-up state of the model and the shell, but the results format and the debug
// settings are the user's and stay; each workbench's debug file prints in its own format.
TEST(Workbench, ResetKeepsFormatAndDebugSettingsAndWorkbenchesShareNoFormat) {
  RecordingPrompter prompter;
  NullProgress progress;
  Workbench wb(prompter, progress), other(prompter, progress);
  const Workbench fresh(prompter, progress);
  EXPECT_EQ(wb.eps, std::ldexp(1.0, -53));
  wb.model = testing::makeModel(testing::ModelShape{});
  wb.shell.warningMessages = 0;
  wb.shell.methodSelector = kSolveOlf;
  wb.resultsFormat = 784;  // " %12.4f "
  wb.debug.switches.set(DebugSwitch::QlpKAndP);
  wb.resetToDefaults();
  EXPECT_FALSE(wb.model.allocated);
  EXPECT_EQ(wb.shell, fresh.shell);
  EXPECT_EQ(wb.resultsFormat, 784);
  EXPECT_TRUE(wb.debug.switches.on(DebugSwitch::QlpKAndP));
  EXPECT_TRUE(prompter.messages().empty());

  testing::TempDir dir;
  Mat a = mat2(1, 1, 1, 1);
  a(1, 1) = 1.5;
  for (Workbench* w : {&wb, &other}) {
    ASSERT_TRUE(w->debugFile.open(dir.file(w == &wb ? "first.dbg" : "second.dbg")));
    ASSERT_EQ(w->debugFile.dumpMatrix("a", 1, 1, 1, 1, a), 1);
    w->debugFile.close();
  }
  EXPECT_EQ(testing::slurp(dir.file("first.dbg")), "\n a \n          1.5000 ");
  EXPECT_EQ(testing::slurp(dir.file("second.dbg")), "\n a \n          1.50 ");
}

}  // namespace
}  // namespace ovaro
