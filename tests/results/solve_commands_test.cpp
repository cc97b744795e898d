// The solve commands on a workbench: what they leave in the results store and the debug file.
#include "results/solve_commands.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>

#include "model/model_file.h"
#include "numeric/progress.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

using testing::slurp;
using testing::TempDir;

std::string example(const char* name) {
  return OVARO_SOURCE_DIR "/examples/" + std::string(name);
}

// Each solve stores its solution beside the others and selects its display; a refused solve
// keeps what was shown and closes the debug file unwritten; a traced QLP solve with the second
// results-print option writes the table after the heading.
TEST(SolveCommands, EachSolveStoresItsSolutionAndSelectsItsDisplay) {
  RecordingPrompter prompter;
  NullProgress progress;
  Workbench wb(prompter, progress);
  ASSERT_EQ(readModelFile(example("learn1.ovi"), wb.model, prompter), 1);
  for (const auto& [command, method, display] :
       {std::tuple{kSolveQlp, "QLP", 3300}, {kSolveOlf, "OLFwo", 3304}, {kSolveQlp, "QLP", 3300}}) {
    ASSERT_TRUE(runSolveCommand(wb, command));
    EXPECT_EQ(wb.shell.methodSelector, command);
    EXPECT_EQ(wb.results.display.selector, display);
    ASSERT_NE(wb.results.find(method), nullptr);
  }
  EXPECT_TRUE(prompter.messages().empty());

  ASSERT_EQ(readModelFile(example("track1.ovi"), wb.model, prompter), 1);
  wb.results.clear();
  ASSERT_TRUE(runSolveCommand(wb, kSolveQlp));
  TempDir dir;
  ASSERT_TRUE(wb.debugFile.open(dir.file("olf.dbg")));
  EXPECT_FALSE(runSolveCommand(wb, kSolveOlf));
  EXPECT_FALSE(wb.debugFile.isOpen());
  EXPECT_EQ(slurp(dir.file("olf.dbg")), "");
  EXPECT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(wb.results.display.selector, 3300);
  EXPECT_EQ(wb.results.find("OLFwo"), nullptr);

  wb.model.display.words[5] = 1;
  ASSERT_TRUE(wb.debugFile.open(dir.file("qlp.dbg")));
  ASSERT_TRUE(runSolveCommand(wb, kSolveQlp));
  const std::string text = slurp(dir.file("qlp.dbg"));
  EXPECT_EQ(text.rfind("Debug File for QLP ", 0), 0u);
  EXPECT_NE(text.find("resultstransoptdes"), std::string::npos);
}

// The traced OLF solve of the menu takes its switches from the five-page sheet: a box of the
// sheet writes its dumps there, while the same box read as a Debug Print Options switch would
// not, and the other way round.
TEST(SolveCommands, TracedOlfReadsTheSheetsVocabularyWhenAsked) {
  RecordingPrompter prompter;
  NullProgress progress;
  Workbench wb(prompter, progress);
  ASSERT_EQ(readModelFile(example("learn1.ovi"), wb.model, prompter), 1);
  TempDir dir;
  auto traced = [&](std::optional<DebugSwitch> box, DebugPage vocabulary) {
    wb.debug.switches.clear();
    if (box) wb.debug.switches.set(*box);
    const std::string file = dir.file("olf.dbg");
    EXPECT_TRUE(wb.debugFile.open(file));
    EXPECT_TRUE(runSolveCommand(wb, kSolveOlf, vocabulary));
    return slurp(file);
  };
  const std::string sheet = traced(DebugSwitch::IntermediatesGAndG, DebugPage::Summary);
  const std::string headingOnly = traced(std::nullopt, DebugPage::Summary);
  EXPECT_GT(sheet.size(), headingOnly.size());
  // Both vocabularies name the same dumps for the same box.
  EXPECT_EQ(traced(DebugSwitch::QlpGAndG, DebugPage::QlpOlf), sheet);
  EXPECT_EQ(traced(DebugSwitch::IntermediatesGAndG, DebugPage::QlpOlf), headingOnly);
}

}  // namespace
}  // namespace ovaro
