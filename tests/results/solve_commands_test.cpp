// The workbench and the commands on it: what the solves leave in the results store and the debug
// file, and every example of the library solved and compared.
#include "results/solve_commands.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "model/example_table.h"
#include "model/model_file.h"
#include "model/options.h"
#include "numeric/progress.h"
#include "results/stochastic_commands.h"
#include "results/workbench.h"
#include "support/model_fixtures.h"
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

// Every example of the library, as its table and README name it: it reads without a message, in
// the current layout and within the size limits, solves by QLP (and by OLF when its parameters are
// uncertain) without one, and a stochastic example runs the five-method comparison over 20 runs;
// together the examples show every option of the forms.
const ExampleTable& library() {
  static const ExampleTable table =
      ExampleTable::read(std::string(OVARO_SOURCE_DIR) + "/examples/examples.tsv");
  return table;
}

// The messages a comparison always shows: the summary, and the refusal to show five methods'
// paths in one table.
bool summaryMessage(const Message& m) {
  return m.caption == "Method Count" || m.caption == "Average Criterion Values" ||
         m.text.starts_with("Display combination not yet implemented.");
}

class Example : public ::testing::TestWithParam<int> {};

TEST_P(Example, LoadsSolvesAndCompares) {
  const ExampleEntry& e = library().rows()[static_cast<std::size_t>(GetParam())];
  SCOPED_TRACE(std::string(e.description));
  RecordingPrompter prompter;
  NullProgress progress;
  Workbench wb(prompter, progress);
  ASSERT_EQ(readModelFile(library().filePath(e), wb.model, prompter), 1);
  EXPECT_TRUE(prompter.messages().empty());
  const Model& m = wb.model;
  EXPECT_EQ(m.fileVersion, kModelFileVersion);
  EXPECT_EQ(checkSizes(m), "");
  static const std::string readme = testing::slurp(OVARO_SOURCE_DIR "/examples/README.md");
  EXPECT_NE(readme.find(std::string(e.description)), std::string::npos);
  // The file stem names the model, and the table files it under its own stochastic terms.
  std::string acronym = m.acronym;
  for (char& c : acronym) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  EXPECT_EQ(acronym + ".ovi", e.fileName);
  std::string_view named;
  for (auto [id, name] : {std::pair{opt::kDeterministic, "Deterministic"},
                          {opt::kAdditiveNoise, "Additive noise"},
                          {opt::kParameterUncertainty, "Parameter uncertainty"},
                          {opt::kMeasurementError, "Measurement error"}})
    if (id == m.flags.stochTerms) named = name;
  EXPECT_EQ(e.stochasticTerms, named);
  EXPECT_GT(m.description.size(), 200u);

  const int stoch = m.flags.stochTerms;
  ASSERT_TRUE(runSolveCommand(wb, kSolveQlp));
  const bool uncertain = stoch == opt::kParameterUncertainty || stoch == opt::kMeasurementError;
  ASSERT_TRUE(!uncertain || runSolveCommand(wb, kSolveOlf));
  EXPECT_TRUE(prompter.messages().empty()) << prompter.messages().front().text;
  if (stoch == opt::kDeterministic) return;
  EXPECT_EQ(m.dims.nmc.value, 20);
  MethodSelection all;
  all.fill(true);
  const CompareResult r = runCompareCommand(wb, all, 20);
  ASSERT_EQ(r.status, 1);
  EXPECT_EQ(r.runs, 20);
  for (double average : r.averages) EXPECT_TRUE(std::isfinite(average) && average > 0);
  for (const Message& msg : prompter.messages()) EXPECT_TRUE(summaryMessage(msg)) << msg.text;
}

INSTANTIATE_TEST_SUITE_P(Library, Example,
                         ::testing::Range(0, static_cast<int>(library().rows().size())));

TEST(ExampleLibrary, FiftyExamplesShowEveryOptionTwice) {
  ASSERT_EQ(library().rows().size(), 50u) << library().problem();
  EXPECT_EQ(defaultExample().fileName, "track1.ovi");  // what `make run` shows
  std::map<int, int> shown;                            // option id -> examples that choose it
  for (const ExampleEntry& e : library().rows()) {
    RecordingPrompter prompter;
    Model m;
    ASSERT_EQ(readModelFile(library().filePath(e), m, prompter), 1);
    const SpecFlags& f = m.flags;
    for (int id : {f.stochTerms, f.criterionForm, f.systemForm, f.forwardVars, f.policyToParam,
                   f.zForm, f.wForm, f.lambdaForm, f.xdesForm, f.udesForm})
      ++shown[id];
    if (f.forwardVars == opt::kForwardYes) ++shown[m.dims.maxLead.value];  // leads 1..3
    if (f.stochTerms != opt::kDeterministic) ++shown[f.randomSource];
  }
  for (int id : {1720, 1722, 1724, 1728, 400, 401, 402, 403, 404, 405, 406, 407, 410, 411,
                 412,  413,  414,  415,  416, 417, 418, 420, 421, 454, 455, 1,   2,   3})
    EXPECT_GE(shown[id], 2) << id;
}

}  // namespace
}  // namespace ovaro
