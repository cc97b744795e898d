#include "results/results_print.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/model_fixtures.h"
#include "support/solution_fixtures.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

// One state and one control over periods 0..2: x = 1, 2, 3 toward 4; u = 5, 6 toward 7.
Solution tinySolution() {
  Solution s = testing::zeroSolution("QLP", 1, 1, 2);
  for (int t = 0; t <= 2; ++t) {
    s.xs(1, t) = t + 1;
    s.xtws(1, t) = 4;
  }
  s.us(1, 0) = 5;
  s.us(1, 1) = 6;
  s.utws(1, 0) = 7;
  s.utws(1, 1) = 7;
  return s;
}

// " %10.2f " of a value whose digits are given.
std::string e(const std::string& digits) {
  return " " + std::string(10 - digits.size(), ' ') + digits + " ";
}

struct PrintCase {
  testing::TempDir dir;
  int format = 778;
  DebugFile file{&format};
  RecordingPrompter prompter;
  Model model;
  std::string path = dir.file("results.dbg");

  PrintCase() { EXPECT_TRUE(file.open(path)); }
  int print(std::array<int, 7> words, bool periodsAsRows, const Solution& s = tinySolution()) {
    model.display.words = words;
    return printResultsToDebugFile(model, s, periodsAsRows, file, prompter);
  }
  std::string written() {
    file.close();
    return testing::slurp(path);
  }
};

const std::string kOptDes = "\n resultsoptdes " + std::string("\n   ") + e("1.00") + e("2.00") +
                            e("3.00") + "\n   " + e("4.00") + e("4.00") + e("4.00") + "\n   " +
                            e("5.00") + e("6.00") + e("0.00") + "\n   " + e("7.00") + e("7.00") +
                            e("0.00");
const std::string kPlain = "\n results " + std::string("\n   ") + e("1.00") + e("2.00") +
                           e("3.00") + "\n   " + e("5.00") + e("6.00") + e("0.00");
const std::string kTransposed = "\n resultstransoptdes " + std::string("\n   ") + e("1.00") +
                                e("4.00") + e("5.00") + e("7.00") + "\n   " + e("2.00") +
                                e("4.00") + e("6.00") + e("7.00") + "\n   " + e("3.00") +
                                e("4.00") + e("0.00") + e("0.00");

TEST(ResultsPrint, OptimalAndDesiredTableWithPeriodsAsColumns) {
  PrintCase c;
  EXPECT_EQ(c.print({0, 0, 0, 0, 0, 1, 0}, false), 1);
  EXPECT_EQ(c.written(), kOptDes);
  EXPECT_TRUE(c.prompter.messages().empty());
}

TEST(ResultsPrint, OptimalAndDesiredTableTransposedWithPeriodsAsRows) {
  PrintCase c;
  EXPECT_EQ(c.print({0, 0, 0, 0, 0, 1, 0}, true), 1);
  EXPECT_EQ(c.written(), kTransposed);
  EXPECT_TRUE(c.prompter.messages().empty());
}

TEST(ResultsPrint, PlainTableOnlyWithPeriodsAsColumns) {
  PrintCase c;
  EXPECT_EQ(c.print({0, 0, 0, 0, 0, 0, 1}, false), 1);
  EXPECT_EQ(c.print({0, 0, 0, 0, 0, 0, 1}, true), 1);
  EXPECT_EQ(c.written(), kPlain);
  ASSERT_EQ(c.prompter.messages().size(), 1u);
  EXPECT_EQ(c.prompter.messages()[0].text, "This preference for results not yet implemented.");
  EXPECT_EQ(c.prompter.messages()[0].caption, "Results");
}

TEST(ResultsPrint, BothTablesInOrderAndTheFirstOptionOnlyWarns) {
  PrintCase c;
  EXPECT_EQ(c.print({1, 1, 1, 1, 1, 1, 1}, false), 1);
  EXPECT_EQ(c.written(), kOptDes + kPlain);
  ASSERT_EQ(c.prompter.messages().size(), 1u);
  EXPECT_EQ(c.prompter.messages()[0].caption, "Results");

  PrintCase rows;
  EXPECT_EQ(rows.print({0, 0, 0, 0, 1, 0, 0}, true), 1);
  EXPECT_EQ(rows.written(), "");
  EXPECT_EQ(rows.prompter.messages().size(), 1u);

  // The first four words play no part.
  PrintCase none;
  EXPECT_EQ(none.print({1, 1, 1, 1, 0, 0, 0}, false), 1);
  EXPECT_EQ(none.written(), "");
  EXPECT_TRUE(none.prompter.messages().empty());
}

TEST(ResultsPrint, TablesHoldEveryPathInItsPlace) {
  Solution s;
  s.method = "OLFwo";
  s.n = 2;
  s.m = 2;
  s.nt = 6;
  s.xs = mat2(1, 2, 0, 6);
  s.xtws = mat2(1, 2, 0, 6);
  s.us = mat2(1, 2, 0, 5);
  s.utws = mat2(1, 2, 0, 5);
  for (int t = 0; t <= 6; ++t) {
    for (int i = 1; i <= 2; ++i) {
      s.xs(i, t) = 10 * i + t;
      s.xtws(i, t) = -10 * i - t;
      if (t < 6) {
        s.us(i, t) = 100 * i + t;
        s.utws(i, t) = -100 * i - t;
      }
    }
  }
  const Mat od = optimalAndDesiredTable(s);
  ASSERT_EQ(od.rows(), 8);
  ASSERT_EQ(od.clo(), 0);
  ASSERT_EQ(od.chi(), 6);
  for (int t = 0; t <= 6; ++t) {
    const double u1 = t < 6 ? 100 + t : 0, u2 = t < 6 ? 200 + t : 0;
    const double d1 = t < 6 ? -100 - t : 0, d2 = t < 6 ? -200 - t : 0;
    const double expected[8] = {10.0 + t, -10.0 - t, 20.0 + t, -20.0 - t, u1, d1, u2, d2};
    for (int r = 1; r <= 8; ++r) EXPECT_EQ(od(r, t), expected[r - 1]) << r << "," << t;
  }

  // The transposed print is the dump of the transposed table: seven rows of eight columns.
  Mat transposed = mat2(0, 6, 1, 8);
  for (int t = 0; t <= 6; ++t) {
    for (int r = 1; r <= 8; ++r) transposed(t, r) = od(r, t);
  }
  PrintCase reference;
  ASSERT_EQ(reference.file.dumpMatrix("resultstransoptdes", 0, 6, 1, 8, transposed), 1);
  PrintCase c;
  EXPECT_EQ(c.print({0, 0, 0, 0, 0, 1, 0}, true, s), 1);
  EXPECT_EQ(c.written(), reference.written());
}

TEST(ResultsPrint, FailedWritesReturnZero) {
  RecordingPrompter prompter;
  Model model;
  model.display.words = {0, 0, 0, 0, 0, 1, 0};
  DebugFile full;
  ASSERT_TRUE(full.open("/dev/full"));
  EXPECT_EQ(printResultsToDebugFile(model, tinySolution(), false, full, prompter), 0);
  EXPECT_FALSE(full.isOpen());

  DebugFile closed;
  EXPECT_EQ(printResultsToDebugFile(model, tinySolution(), true, closed, prompter), 0);
  model.display.words = {0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(printResultsToDebugFile(model, tinySolution(), true, closed, prompter), 1);
}

TEST(ResultsPrint, PathsShorterThanTheirSizesAreRefused) {
  RecordingPrompter prompter;
  Model model;
  DebugFile file;
  Solution s = tinySolution();
  s.us = mat2(1, 1, 0, 0);
  EXPECT_THROW(printResultsToDebugFile(model, s, false, file, prompter), std::invalid_argument);
  EXPECT_THROW(optimalAndDesiredTable(s), std::invalid_argument);
}

}  // namespace
}  // namespace ovaro
