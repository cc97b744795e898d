#include "results/results_print.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>

#include "support/solution_fixtures.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

// Two states and two controls over periods 0..6: x_i(t) = 10 i + t toward -(10 i + t), u_i(t) =
// 100 i + t toward -(100 i + t).
Solution numbered() {
  Solution s = testing::zeroSolution("OLFwo", 2, 2, 6);
  for (int t = 0; t <= 6; ++t)
    for (int i = 1; i <= 2; ++i) {
      s.xs(i, t) = 10 * i + t, s.xtws(i, t) = -10 * i - t;
      if (t < 6) s.us(i, t) = 100 * i + t, s.utws(i, t) = -100 * i - t;
    }
  return s;
}

// A debug file in the 00.00 format, and what it holds once closed.
struct Dump {
  testing::TempDir dir;
  int format = 778;
  DebugFile file{&format};
  std::string path = dir.file("results.dbg");
  Dump() { EXPECT_TRUE(file.open(path)); }
  std::string written() {
    file.close();
    return testing::slurp(path);
  }
};

// The optimal-and-desired table: per state its path and its desired path, then per control the
// same, zero in the last period. words[5] prints it periods across, transposed when periods go
// down; words[6] the plain table of the paths alone, periods across only; the other words warn.
TEST(ResultsPrint, TablesAreTheDumpsOfThePathsInTheirPlaces) {
  const Solution s = numbered();
  Mat od = mat2(1, 8, 0, 6), plain = mat2(1, 4, 0, 6), transposed = mat2(0, 6, 1, 8);
  for (int t = 0; t <= 6; ++t) {
    const bool u = t < 6;
    const double column[8] = {10.0 + t,          -10.0 - t,         20.0 + t,
                              -20.0 - t,         u ? 100.0 + t : 0, u ? -100.0 - t : 0,
                              u ? 200.0 + t : 0, u ? -200.0 - t : 0};
    for (int r = 1; r <= 8; ++r) {
      od(r, t) = transposed(t, r) = column[r - 1];
      if (r % 2 == 1) plain((r + 1) / 2, t) = column[r - 1];
    }
  }
  Model model;
  RecordingPrompter prompter;
  struct Case {
    std::array<int, 7> words;
    bool periodsAsRows;
    const char* dumps;
    std::size_t warnings;
  };
  const Case cases[] = {
      {{0, 0, 0, 0, 0, 1, 0}, false, "od", 0}, {{0, 0, 0, 0, 0, 1, 0}, true, "transposed", 0},
      {{0, 0, 0, 0, 0, 0, 1}, true, "", 1},    {{1, 1, 1, 1, 1, 1, 1}, false, "od plain", 1},
      {{0, 0, 0, 0, 1, 0, 0}, true, "", 1},    {{1, 1, 1, 1, 0, 0, 0}, false, "", 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.dumps);
    Dump expected, got;
    const std::string dumps = c.dumps;
    if (dumps.starts_with("od")) expected.file.dumpMatrix("resultsoptdes", 1, 8, 0, 6, od);
    if (dumps == "transposed")
      expected.file.dumpMatrix("resultstransoptdes", 0, 6, 1, 8, transposed);
    if (dumps.ends_with("plain")) expected.file.dumpMatrix("results", 1, 4, 0, 6, plain);
    model.display.words = c.words;
    prompter.clear();
    EXPECT_EQ(printResultsToDebugFile(model, s, c.periodsAsRows, got.file, prompter), 1);
    EXPECT_EQ(got.written(), expected.written());
    EXPECT_EQ(testing::shown(prompter),
              std::vector<std::string>(
                  c.warnings, "Results: This preference for results not yet implemented."));
  }
}

TEST(ResultsPrint, FailedWritesReturnZeroAndShortPathsAreRefused) {
  RecordingPrompter prompter;
  Model model;
  model.display.words = {0, 0, 0, 0, 0, 1, 0};
  DebugFile full, closed;
  ASSERT_TRUE(full.open("/dev/full"));
  EXPECT_EQ(printResultsToDebugFile(model, numbered(), false, full, prompter), 0);
  EXPECT_EQ(printResultsToDebugFile(model, numbered(), true, closed, prompter), 0);
  model.display.words = {0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(printResultsToDebugFile(model, numbered(), true, closed, prompter), 1);
  Solution s = numbered();
  s.us = mat2(1, 2, 0, 0);
  EXPECT_THROW(printResultsToDebugFile(model, s, false, closed, prompter), std::invalid_argument);
  EXPECT_THROW(optimalAndDesiredTable(s), std::invalid_argument);
}

}  // namespace
}  // namespace ovaro
