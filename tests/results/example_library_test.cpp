// Every example of the library, as its table and README name it: it reads without a message, in
// the current layout and within the size limits, solves by QLP
// (and by OLF when its parameters are uncertain) without one, and a stochastic example runs the
// five-method comparison over 20 runs; together the examples show every option of the forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <string>

#include "model/example_table.h"
#include "model/model_file.h"
#include "model/options.h"
#include "numeric/progress.h"
#include "results/solve_commands.h"
#include "results/stochastic_commands.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

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
