#include "io/debug_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <climits>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "io/number_format.h"
#include "support/mat.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

namespace fs = std::filesystem;

using testing::slurp;
using testing::spit;
using testing::TempDir;

// a(i, j) = 10 i + j over the given bounds.
Mat numbered(int rlo, int rhi, int clo, int chi) {
  Mat a = mat2(rlo, rhi, clo, chi);
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j) a(i, j) = 10 * i + j;
  return a;
}

TEST(DebugFile, OpenReplacesAnOldFileAndRefusesBadNames) {
  static_assert(!std::is_copy_constructible_v<DebugFile> && !std::is_copy_assignable_v<DebugFile>);
  TempDir tmp;
  const std::string path = tmp.file("trace.dbg"), keep = tmp.file("keep.txt");
  spit(path, "the trace of an earlier command, longer than the new one");
  // A second name for the old file: deleting the old file leaves it intact, truncating would not.
  fs::create_hard_link(path, keep);
  DebugFile file;
  EXPECT_EQ(file.write("x"), 0);
  EXPECT_EQ(file.dumpScalar("s", 1.0), 0);
  ASSERT_TRUE(file.open(path));
  EXPECT_EQ(file.path(), path);
  EXPECT_EQ(file.write("new"), 1);
  // Opening another file closes the first one with its contents.
  ASSERT_TRUE(file.open(tmp.file("second.dbg")));
  EXPECT_EQ(file.write("second"), 1);
  file.close();
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(slurp(path), "new");
  EXPECT_EQ(slurp(keep), "the trace of an earlier command, longer than the new one");
  EXPECT_EQ(slurp(tmp.file("second.dbg")), "second");
  for (const std::string& bad :
       {std::string(), tmp.file("no/such/dir/trace.dbg"),
        tmp.path().string()}) {  // a directory is neither deleted nor opened
    EXPECT_FALSE(file.open(bad)) << bad;
    EXPECT_FALSE(file.isOpen());
  }
  EXPECT_TRUE(fs::is_directory(tmp.path()));
}

// /dev/full accepts the open and refuses every byte; the device is never deleted.
TEST(DebugFile, FailedWriteClosesTheFileAndLaterDumpsFail) {
  DebugFile file;
  const Mat a = numbered(1, 2, 1, 2);
  ASSERT_TRUE(file.open("/dev/full"));
  EXPECT_EQ(file.dumpMatrix("a in test", 1, 2, 1, 2, a), 0);
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(file.writeHeading("Debug File"), 0);
  ASSERT_TRUE(file.open("/dev/full"));
  static_cast<MatrixTrace&>(file).matrix("kuc in mmul31tv", 1, 2, 1, 2, a);
  EXPECT_FALSE(file.isOpen());
  struct stat st {};
  ASSERT_EQ(::stat("/dev/full", &st), 0);
  EXPECT_TRUE(S_ISCHR(st.st_mode));
}

// Every dump and heading, the matrices in blocks of five columns each under its label line and
// in the format chosen at the time of the dump; tests/data/io_debug_layouts.txt holds what they
// write, one dump an entry.
TEST(DebugFile, EveryDumpAndHeadingHasItsLayout) {
  TempDir tmp;
  const std::string path = tmp.file("all.dbg");
  int format = 770;
  DebugFile file(&format);
  ASSERT_TRUE(file.open(path));
  EXPECT_EQ(file.dumpMatrix("three", 1, 2, 1, 3, numbered(1, 2, 1, 3)), 1);
  EXPECT_EQ(file.dumpMatrix("twelve", 1, 1, 1, 12, numbered(1, 1, 1, 12)), 1);
  // Periods from 0, a part of a larger array.
  EXPECT_EQ(file.dumpMatrix("xs in compx", 2, 3, 0, 6, numbered(1, 4, 0, 9)), 1);
  for (int choice : {784, 795, 0}) {  // 0: no choice made, as for the rest
    format = choice;
    EXPECT_EQ(file.dumpMatrix("one", 1, 1, 1, 1, testing::rowsMat({{3.25}})), 1);
  }
  const Mat a = testing::rowsMat({{1, -2.5}, {0.125, 100}});
  EXPECT_EQ(file.dumpMatrixFixed("f", 1, 2, 1, 2, a), 1);
  Mat3 s = mat3(0, 1, 1, 1, 1, 6);
  for (int i = 0; i <= 1; ++i)
    for (int k = 1; k <= 6; ++k) s(i, 1, k) = 10 * i + k;
  EXPECT_EQ(file.dumpMatrix3("sixx", 0, 1, 1, 1, 1, 6, s), 1);
  IMat ithn = imat2(1, 2, 1, 3);
  ithn(1, 2) = ithn(2, 1) = ithn(2, 3) = 1;
  ithn(1, 3) = 2;
  ithn(2, 2) = -12;
  EXPECT_EQ(file.dumpIntMatrix("ithn", 1, 2, 1, 3, ithn), 1);
  EXPECT_EQ(file.dumpVector("x0", 1, 3, testing::colMat({1, -0.5, 12345.678})), 1);
  Vec xs = vec1(0, 1);
  xs(0) = 2, xs(1) = -3;
  EXPECT_EQ(file.dumpVectorFixed("xs", 0, 1, xs), 1);
  EXPECT_EQ(file.dumpVectorFixed("c", 2, 2, testing::colMat({7, 0.004})), 1);
  EXPECT_EQ(file.dumpScalar("criterion in sumc", 12.5), 1);
  EXPECT_EQ(file.dumpInt("iter", 7), 1);
  EXPECT_EQ(file.dumpIntList("nmap", std::vector{1, 22, 333, 4444}), 1);
  EXPECT_EQ(file.writeTitle(" Debug Print File ", "GOV1", "Small policy model"), 1);
  EXPECT_EQ(file.writeSizes(
                std::vector<DebugSize>{{" State Variables, n ", 2}, {" Control Variables, m ", 1}}),
            1);
  EXPECT_EQ(file.writeHeading("Debug File for QLP "), 1);
  EXPECT_EQ(file.writeRemark(" tr4b = ", 0.25), 1);
  static_cast<MatrixTrace&>(file).matrix("kuc in mmul31tv", 1, 1, 1, 2, a);
  // Empty parts still show their labels.
  EXPECT_EQ(file.dumpMatrix("nocols", 1, 2, 1, 0, a), 1);
  EXPECT_EQ(file.dumpMatrix("norows", 1, 0, 1, 7, a), 1);
  EXPECT_EQ(file.dumpMatrix("extreme", 1, 0, INT_MAX, INT_MIN, a), 1);
  EXPECT_EQ(file.dumpVector("none", 1, 0, vec1(1, 2)), 1);
  EXPECT_EQ(file.dumpMatrix3("s3", 1, 0, 1, 1, 1, 1, mat3(1, 1, 1, 1, 1, 1)), 1);
  EXPECT_EQ(file.dumpIntList("empty", {}), 1);
  file.close();
  std::string expected;
  for (const std::string& entry : testing::dataLines("io_debug_layouts.txt")) expected += entry;
  EXPECT_EQ(slurp(path), expected);
}

// Parts outside the array are refused before anything is written.
TEST(DebugFile, OutOfRangePartsThrow) {
  TempDir tmp;
  DebugFile file;
  ASSERT_TRUE(file.open(tmp.file("edges.dbg")));
  const Mat a = numbered(1, 2, 1, 2);
  EXPECT_THROW(file.dumpMatrix("a", 1, 3, 1, 2, a), std::out_of_range);
  EXPECT_THROW(file.dumpMatrixFixed("a", 1, 2, 1, 6, a), std::out_of_range);
  EXPECT_THROW(file.dumpIntMatrix("i", 1, 1, 1, 2, imat2(1, 1, 1, 1)), std::out_of_range);
  EXPECT_THROW(file.dumpMatrix3("s", 0, 1, 1, 1, 1, 1, mat3(1, 1, 1, 1, 1, 1)), std::out_of_range);
  EXPECT_THROW(file.dumpVectorFixed("v", 1, 3, vec1(1, 2)), std::out_of_range);
  EXPECT_THROW(file.dumpVector("m", 1, 3, mat2(1, 2, 1, 1)), std::out_of_range);
  EXPECT_THROW(file.dumpVectorFixed("m", 1, 1, mat2(1, 2, 1, 0)), std::out_of_range);
  file.close();
  EXPECT_EQ(slurp(tmp.file("edges.dbg")), "");
}

TEST(DebugFilePrompt, AsksForTheNameAndKeepsTheLastOneOnCancel) {
  TempDir tmp;
  const std::string path = tmp.file("solve.dbg");
  RecordingPrompter prompter;
  DebugFile file;
  std::string remembered;
  prompter.scriptFileName(path);
  EXPECT_TRUE(promptAndOpenDebugFile(prompter, file, remembered));
  EXPECT_EQ(remembered, path);
  EXPECT_EQ(testing::shown(prompter),
            std::vector<std::string>{
                "Ovaro: Please provide debug file name in the following dialog box."});
  ASSERT_EQ(prompter.fileRequests().size(), 1u);
  const FileRequest& r = prompter.fileRequests()[0];
  std::string filters;
  for (const auto& f : r.filters) filters += f.label + "|" + f.pattern + "|";
  EXPECT_EQ(filters, "Debug Files (*.dbg)|*.dbg|All Files (*.*;*)|*.*;*|");
  EXPECT_TRUE(r.kind == FileRequest::Kind::Save && r.defaultExtension == "txt" &&
              r.promptBeforeOverwrite);
  EXPECT_EQ(file.write("run 1"), 1);
  // Cancel: the previous name is used again and its file started afresh.
  prompter.scriptFileName(std::nullopt);
  EXPECT_TRUE(promptAndOpenDebugFile(prompter, file, remembered));
  EXPECT_EQ(file.write("run 2"), 1);
  file.close();
  EXPECT_EQ(slurp(path), "run 2");
  // Cancel with no earlier name, and a name that cannot be created: nothing is open.
  std::string none;
  EXPECT_FALSE(promptAndOpenDebugFile(prompter, file, none));
  EXPECT_TRUE(none.empty());
  prompter.scriptFileName(tmp.file("missing/x.dbg"));
  EXPECT_FALSE(promptAndOpenDebugFile(prompter, file, remembered));
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(prompter.messages().size(), 4u);
}

// Each choice in dialog order with its label, format, width, and 1234.5678 as it prints.
TEST(NumberFormat, TableInDialogOrderWithDefaults) {
  struct Row {
    int id;
    std::string label, format;
    int width;
    std::string printed;
  };
  const std::vector<Row> expected = {
      {770, "00.", " %8.0f ", 10, "     1235 "},
      {774, "00.0", " %9.1f ", 11, "    1234.6 "},
      {778, "00.00", " %10.2f ", 12, "    1234.57 "},
      {782, "00.000", " %11.3f ", 13, "    1234.568 "},
      {784, "00.0000", " %12.4f ", 14, "    1234.5678 "},
      {785, "0.0000E+000", " %9.4E ", 13, " 1.2346E+03 "},  // wider than its field
      {786, "0.00E+000", " %10.2E ", 13, "   1.23E+03 "},
      {790, "0.000000E+000", " %12.6E ", 17, " 1.234568E+03 "},
      {795, "Floating or Exponential", " %12.4g ", 15, "         1235 "},
  };
  const auto table = numberFormats();
  ASSERT_EQ(table.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const Row& e = expected[i];
    SCOPED_TRACE(e.id);
    EXPECT_EQ(table[i].id, e.id);
    EXPECT_EQ(table[i].label, e.label);
    EXPECT_EQ(table[i].width, e.width);
    EXPECT_EQ(findNumberFormat(e.id), &table[i]);
    EXPECT_EQ(resultsNumberFormat(e.id).id, e.id);
    EXPECT_EQ(std::string(debugElementFormat(e.id)), e.format);
    EXPECT_EQ(formatNumber(table[i].format, 1234.5678), e.printed);
  }

  // No choice, or an id that is not a format (a neighbour in the id space included).
  for (int id : {0, 771, 800, -1}) {
    EXPECT_EQ(findNumberFormat(id), nullptr) << id;
    EXPECT_EQ(resultsNumberFormat(id).id, 770) << id;
    EXPECT_EQ(std::string(debugElementFormat(id)), " %10.2f ") << id;
  }
}

// The widest doubles print whole: 309 integer digits plus ".0000" and the two blanks; appending
// keeps what was there.
TEST(NumberFormat, TheWidestValuesAndAppending) {
  EXPECT_EQ(formatNumber(" %8.0f ", std::numeric_limits<double>::infinity()), "      inf ");
  const std::string big = formatNumber(" %12.4f ", 1e308);
  EXPECT_EQ(big.size(), 316u);
  EXPECT_EQ(big.find_first_not_of("0123456789", 1), 310u);
  EXPECT_EQ(formatNumber(" %12.4f ", -1.7976931348623157e308).size(), 317u);
  std::string out = "ab";
  appendNumber(out, " %12.4f ", 1e308);
  appendNumber(out, "%10.4f ", 0.5);
  EXPECT_EQ(out, "ab" + big + "    0.5000 ");
}

}  // namespace
}  // namespace ovaro
