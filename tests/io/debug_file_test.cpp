#include "io/debug_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "support/mat.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

namespace fs = std::filesystem;

using testing::slurp;
using testing::spit;
using testing::TempDir;

// One element in the " %8.0f " format (choice 770), padded by hand: a blank, the integer right
// aligned in eight places, a blank.
std::string cell770(int v) {
  const std::string digits = std::to_string(v);
  return " " + std::string(8 - digits.size(), ' ') + digits + " ";
}

// a(i, j) = 10 i + j over the given bounds.
Mat numbered(int rlo, int rhi, int clo, int chi) {
  Mat a = mat2(rlo, rhi, clo, chi);
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j) a(i, j) = 10 * i + j;
  return a;
}

// The row line of a numbered matrix for columns first..last.
std::string row770(int i, int first, int last) {
  std::string line = "\n   ";
  for (int j = first; j <= last; ++j) line += cell770(10 * i + j);
  return line;
}

TEST(DebugFile, OpenReplacesAnOldFileAndRefusesBadNames) {
  static_assert(!std::is_copy_constructible_v<DebugFile> && !std::is_copy_assignable_v<DebugFile>);
  TempDir tmp;
  const std::string path = tmp.file("trace.dbg");
  const std::string keep = tmp.file("keep.txt");
  spit(path, "the trace of an earlier command, longer than the new one");
  // A second name for the old file: deleting the old file leaves it intact, truncating would not.
  fs::create_hard_link(path, keep);

  DebugFile file;
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(file.write("x"), 0);
  EXPECT_EQ(file.dumpScalar("s", 1.0), 0);
  ASSERT_TRUE(file.open(path));
  EXPECT_TRUE(file.isOpen());
  EXPECT_EQ(file.path(), path);
  EXPECT_EQ(file.write("new"), 1);
  EXPECT_EQ(file.write(""), 1);
  file.close();
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(file.path(), path);
  EXPECT_EQ(slurp(path), "new");
  EXPECT_EQ(slurp(keep), "the trace of an earlier command, longer than the new one");

  // Opening another file closes the first one with its contents.
  ASSERT_TRUE(file.open(path));
  EXPECT_EQ(file.write("first"), 1);
  ASSERT_TRUE(file.open(tmp.file("second.dbg")));
  EXPECT_EQ(file.write("second"), 1);
  file.close();
  EXPECT_EQ(slurp(path), "first");
  EXPECT_EQ(slurp(tmp.file("second.dbg")), "second");

  EXPECT_FALSE(file.open(""));
  EXPECT_FALSE(file.isOpen());
  EXPECT_FALSE(file.open(tmp.file("no/such/dir/trace.dbg")));
  EXPECT_FALSE(file.open(tmp.path().string()));  // a directory is neither deleted nor opened
  EXPECT_TRUE(fs::is_directory(tmp.path()));
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(file.write("x"), 0);
}

TEST(DebugFile, FailedWriteClosesTheFileAndLaterDumpsFail) {
  int format = 778;
  DebugFile file(&format);
  const Mat a = numbered(1, 2, 1, 2);
  // /dev/full accepts the open and refuses every byte.
  ASSERT_TRUE(file.open("/dev/full"));
  EXPECT_EQ(file.dumpMatrix("a in test", 1, 2, 1, 2, a), 0);
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(file.dumpMatrix("a in test", 1, 2, 1, 2, a), 0);
  EXPECT_EQ(file.writeHeading("Debug File"), 0);

  ASSERT_TRUE(file.open("/dev/full"));
  MatrixTrace& trace = file;
  trace.matrix("kuc in mmul31tv", 1, 2, 1, 2, a);
  EXPECT_FALSE(file.isOpen());

  ASSERT_TRUE(file.open("/dev/full"));
  EXPECT_EQ(file.writeTitle(" Debug Print File ", "ACR", "Name"), 0);
  EXPECT_FALSE(file.isOpen());

  // The device was opened in place, never deleted.
  struct stat st {};
  ASSERT_EQ(::stat("/dev/full", &st), 0);
  EXPECT_TRUE(S_ISCHR(st.st_mode));
}

TEST(DebugFile, MatrixDumpsFollowTheBlockRuleAndTheChosenFormat) {
  TempDir tmp;
  const std::string path = tmp.file("blocks.dbg");
  int format = 770;
  DebugFile file(&format);
  ASSERT_TRUE(file.open(path));

  std::string expected;
  // 3 columns: one block.
  EXPECT_EQ(file.dumpMatrix("three", 1, 2, 1, 3, numbered(1, 2, 1, 3)), 1);
  expected += "\n three " + row770(1, 1, 3) + row770(2, 1, 3);
  // 10 columns: two blocks of five, each with its label line.
  EXPECT_EQ(file.dumpMatrix("ten", 1, 2, 1, 10, numbered(1, 2, 1, 10)), 1);
  expected += "\n ten " + row770(1, 1, 5) + row770(2, 1, 5);
  expected += "\n ten " + row770(1, 6, 10) + row770(2, 6, 10);
  // 12 columns: 5, 5 and 2.
  EXPECT_EQ(file.dumpMatrix("twelve", 1, 1, 1, 12, numbered(1, 1, 1, 12)), 1);
  expected += "\n twelve " + row770(1, 1, 5) + "\n twelve " + row770(1, 6, 10) + "\n twelve " +
              row770(1, 11, 12);
  // Periods from 0: columns 0..6 are 5 and 2; a part of a larger array.
  EXPECT_EQ(file.dumpMatrix("xs in compx", 2, 3, 0, 6, numbered(1, 4, 0, 9)), 1);
  expected += "\n xs in compx " + row770(2, 0, 4) + row770(3, 0, 4);
  expected += "\n xs in compx " + row770(2, 5, 6) + row770(3, 5, 6);

  // The format is read at every dump: 770, 784, "no choice", 795.
  const Mat one = testing::rowsMat({{3.25}});
  for (const auto& [choice, text] :
       {std::pair{770, "        3 "}, std::pair{784, "       3.2500 "},
        std::pair{0, "       3.25 "}, std::pair{795, "         3.25 "}}) {
    format = choice;
    EXPECT_EQ(file.dumpMatrix("one", 1, 1, 1, 1, one), 1);
    expected += std::string("\n one \n   ") + text;
  }
  file.close();
  EXPECT_EQ(slurp(path), expected);

  DebugFile unchosen(nullptr);
  ASSERT_TRUE(unchosen.open(path));
  EXPECT_EQ(unchosen.dumpMatrix("one", 1, 1, 1, 1, one), 1);
  unchosen.close();
  EXPECT_EQ(slurp(path), std::string("\n one ") + "\n   " + "       3.25 ");
}

TEST(DebugFile, EveryOtherDumpAndHeadingHasItsLayout) {
  TempDir tmp;
  const std::string path = tmp.file("all.dbg");
  DebugFile file;  // no format chosen: " %10.2f "
  ASSERT_TRUE(file.open(path));

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

  Vec x0 = vec1(1, 3);
  x0(1) = 1, x0(2) = -0.5, x0(3) = 12345.678;
  EXPECT_EQ(file.dumpVector("x0", 1, 3, x0), 1);
  const Mat c = testing::colMat({7, 0.004});
  EXPECT_EQ(file.dumpVector("c", 1, 2, c), 1);

  Vec xs = vec1(0, 1);
  xs(0) = 2, xs(1) = -3;
  EXPECT_EQ(file.dumpVectorFixed("xs", 0, 1, xs), 1);
  EXPECT_EQ(file.dumpVectorFixed("c", 2, 2, c), 1);

  EXPECT_EQ(file.dumpScalar("criterion in sumc", 12.5), 1);
  EXPECT_EQ(file.dumpInt("iter", 7), 1);
  const std::vector<int> nmap = {1, 22, 333, 4444};
  EXPECT_EQ(file.dumpIntList("nmap", nmap), 1);

  EXPECT_EQ(file.writeTitle(" Debug Print File ", "GOV1", "Small policy model"), 1);
  const std::vector<DebugSize> sizes = {{" State Variables, n ", 2}, {" Control Variables, m ", 1}};
  EXPECT_EQ(file.writeSizes(sizes), 1);
  EXPECT_EQ(file.writeHeading("Debug File for QLP "), 1);
  EXPECT_EQ(file.writeRemark(" tr4b = ", 0.25), 1);

  MatrixTrace& trace = file;
  trace.matrix("kuc in mmul31tv", 1, 1, 1, 2, a);

  file.close();
  std::string expected;  // tests/data/debug_file_layouts.txt, one dump an entry
  for (const std::string& entry : testing::dataLines("debug_file_layouts.txt")) expected += entry;
  EXPECT_EQ(slurp(path), expected);
}

TEST(DebugFile, EmptyPartsShowLabelsAndOutOfRangePartsThrow) {
  TempDir tmp;
  const std::string path = tmp.file("edges.dbg");
  DebugFile file;
  ASSERT_TRUE(file.open(path));
  const Mat a = numbered(1, 2, 1, 2);
  std::string expected;

  EXPECT_EQ(file.dumpMatrix("nocols", 1, 2, 1, 0, a), 1);  // one empty block, two row lines
  expected += "\n nocols \n   \n   ";
  EXPECT_EQ(file.dumpMatrix("norows", 1, 0, 1, 7, a), 1);  // blocks of 5 and 2, no rows
  expected += "\n norows \n norows ";
  EXPECT_EQ(file.dumpMatrix("extreme", 1, 0, INT_MAX, INT_MIN, a), 1);
  expected += "\n extreme ";
  EXPECT_EQ(file.dumpVector("none", 1, 0, vec1(1, 2)), 1);
  expected += "\n none";
  EXPECT_EQ(file.dumpMatrix3("s3", 1, 0, 1, 1, 1, 1, mat3(1, 1, 1, 1, 1, 1)), 1);
  EXPECT_EQ(file.dumpIntList("empty", {}), 1);
  expected += " empty \n";

  // Parts outside the array are refused before anything is written.
  EXPECT_THROW(file.dumpMatrix("a", 1, 3, 1, 2, a), std::out_of_range);
  EXPECT_THROW(file.dumpMatrix("a", 1, 2, 0, 2, a), std::out_of_range);
  EXPECT_THROW(file.dumpMatrixFixed("a", 1, 2, 1, 6, a), std::out_of_range);
  EXPECT_THROW(file.dumpIntMatrix("i", 1, 1, 1, 2, imat2(1, 1, 1, 1)), std::out_of_range);
  EXPECT_THROW(file.dumpMatrix3("s", 0, 1, 1, 1, 1, 1, mat3(1, 1, 1, 1, 1, 1)), std::out_of_range);
  EXPECT_THROW(file.dumpMatrix3("s", 1, 1, 1, 1, 1, 2, mat3(1, 1, 1, 1, 1, 1)), std::out_of_range);
  EXPECT_THROW(file.dumpVector("v", 0, 2, vec1(1, 2)), std::out_of_range);
  EXPECT_THROW(file.dumpVectorFixed("v", 1, 3, vec1(1, 2)), std::out_of_range);
  EXPECT_THROW(file.dumpVector("m", 1, 3, mat2(1, 2, 1, 1)), std::out_of_range);
  EXPECT_THROW(file.dumpVectorFixed("m", 1, 1, mat2(1, 2, 1, 0)), std::out_of_range);
  EXPECT_TRUE(file.isOpen());

  file.close();
  EXPECT_EQ(slurp(path), expected);
}

TEST(DebugFilePrompt, AsksForTheNameAndKeepsTheLastOneOnCancel) {
  TempDir tmp;
  const std::string path = tmp.file("solve.dbg");
  spit(path, "stale");
  RecordingPrompter prompter;
  DebugFile file;
  std::string remembered;

  prompter.scriptFileName(path);
  EXPECT_TRUE(promptAndOpenDebugFile(prompter, file, remembered));
  EXPECT_TRUE(file.isOpen());
  EXPECT_EQ(remembered, path);
  EXPECT_EQ(testing::shown(prompter),
            std::vector<std::string>{
                "Ovaro: Please provide debug file name in the following dialog box."});
  EXPECT_EQ(prompter.messages()[0].buttons, Buttons::Ok);
  ASSERT_EQ(prompter.fileRequests().size(), 1u);
  const FileRequest& r = prompter.fileRequests()[0];
  EXPECT_EQ(r.kind, FileRequest::Kind::Save);
  ASSERT_EQ(r.filters.size(), 2u);
  EXPECT_EQ(r.filters[0].label + "|" + r.filters[0].pattern + "|" + r.filters[1].label + "|" +
                r.filters[1].pattern,
            "Debug Files (*.dbg)|*.dbg|All Files (*.*;*)|*.*;*");
  EXPECT_EQ(r.defaultExtension, "txt");
  EXPECT_TRUE(r.promptBeforeOverwrite);
  EXPECT_EQ(file.write("run 1"), 1);
  EXPECT_EQ(slurp(path), "run 1");

  // Cancel: the previous name is used again and its file started afresh.
  prompter.scriptFileName(std::nullopt);
  EXPECT_TRUE(promptAndOpenDebugFile(prompter, file, remembered));
  EXPECT_EQ(remembered, path);
  EXPECT_EQ(file.write("run 2"), 1);
  file.close();
  EXPECT_EQ(slurp(path), "run 2");
  EXPECT_EQ(prompter.messages().size(), 2u);

  // Cancel with no earlier name, and a name that cannot be created: nothing is open.
  std::string none;
  EXPECT_FALSE(promptAndOpenDebugFile(prompter, file, none));
  EXPECT_TRUE(none.empty());
  EXPECT_FALSE(file.isOpen());
  prompter.scriptFileName(tmp.file("missing/x.dbg"));
  EXPECT_FALSE(promptAndOpenDebugFile(prompter, file, remembered));
  EXPECT_EQ(remembered, tmp.file("missing/x.dbg"));
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(prompter.messages().size(), 4u);
}

}  // namespace
}  // namespace ovaro
