// The debug print file: a plain-text trace of a computation.
//
// A traced command (a Print solve, an import, a traced matrix import) opens one debug file, and
// every routine it calls writes labelled dumps of the matrices, vectors and scalars it passes
// through. Each label names the variable and the routine ("kuc in mmul31tv"), so a reader can
// follow the computation step by step.
//
// Writing: every dump is assembled in memory and handed to the file in one unbuffered write, whose
// count is compared with the count asked. The first shortfall closes the file, the dump returns
// 0, and the file remembers the failure until it is opened again; from then on every dump returns
// 0 without writing. Computations therefore dump without testing each result and ask the file
// once, at the end of their work or where they would give up, whether the trace went through.
// Dumps return 1 on success.
//
// Layout of the matrix dumps: columns in blocks of at most five. With k = chi - clo + 1 columns
// there are max(k / 5, 1) full blocks, the first covering clo .. clo + min(k, 5) - 1 and each
// further one moved by five, then one block for what is left over (k - 5 x full blocks, when
// positive): 3 columns are one block of 3, 10 are two blocks of 5, 12 are 5, 5 and 2. Each block
// repeats the label line, then gives one line per row.
//
// Element format: double matrices and vectors use the results-format preference, read afresh at
// every dump, so a change between two dumps affects only the later one; the fixed-format dumps
// always use "%10.4f ".
//
// Bounds: the part to show must lie inside the array (an empty part shows only its label lines);
// asking for elements outside it is a programming error and throws std::out_of_range before
// anything is written.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "numeric/arrays.h"
#include "numeric/matrix_ops.h"
#include "numeric/prompter.h"

namespace ovaro {

// One labelled size of the heading, e.g. {" State Variables, n ", 3}.
struct DebugSize {
  std::string_view label;
  int value;
};

class DebugFile final : public MatrixTrace {
 public:
  // `formatId` points at the results-format preference kept by the owner (a number-format id,
  // see number_format.h); it is read at every dump and must outlive this object. nullptr, 0 or
  // an unknown id mean that no format has been chosen: elements print as " %10.2f ".
  explicit DebugFile(const int* formatId = nullptr) : formatId_(formatId) {}
  ~DebugFile() override;
  DebugFile(const DebugFile&) = delete;
  DebugFile& operator=(const DebugFile&) = delete;

  // Closes any open file, deletes a file of that name, and opens (creating) it for writing.
  // False when the name is empty or the file cannot be opened. Only a regular file or a link is
  // deleted: a device such as /dev/null is opened as it is.
  bool open(const std::string& path);
  bool isOpen() const { return fd_ >= 0; }
  void close();
  // Whether a write fell short since the last open(): the trace is incomplete and the traced
  // command fails. Closing the file, by the command or by the failure, keeps the answer.
  bool failed() const { return failed_; }
  // The same as a traced routine's result: 1, or 0 after a failed write.
  int ok() const { return failed_ ? 0 : 1; }
  // The name last given to open(), kept after the file is closed.
  const std::string& path() const { return path_; }

  // One checked write. 1 when every byte was written; 0 when the file is not open or the write
  // fell short (the file is then closed).
  int write(std::string_view text);

  // The element format of the double dumps as of now.
  const char* elementFormat() const;

  // Double matrix, rows rlo..rhi, columns clo..chi, chosen format: per block "\n %s " with the
  // label, per row "\n   " and the block's elements.
  int dumpMatrix(std::string_view label, int rlo, int rhi, int clo, int chi, const Mat& a);
  // A column vector: rows 1..rows of the first column, in the same layout.
  int dumpColumn(std::string_view label, int rows, const Mat& v) {
    return dumpMatrix(label, 1, rows, 1, 1, v);
  }
  // The same layout, every element as "%10.4f ".
  int dumpMatrixFixed(std::string_view label, int rlo, int rhi, int clo, int chi, const Mat& a);
  // For each first index i in ilo..ihi, the matrix a(i, rlo..rhi, clo..chi) in blocks headed
  // "\n %s    %d" with the label and i, elements as "%10.4f ".
  int dumpMatrix3(std::string_view label, int ilo, int ihi, int rlo, int rhi, int clo, int chi,
                  const Mat3& a);
  // Integer matrix: blocks headed "\n %s ", elements "%d ".
  int dumpIntMatrix(std::string_view label, int rlo, int rhi, int clo, int chi, const IMat& a);
  // Vector lo..hi: "\n %s" with the label, then the elements in the chosen format on one line.
  int dumpVector(std::string_view label, int lo, int hi, const Vec& v);
  // The same for a column vector held as a matrix: rows lo..hi of its first column.
  int dumpVector(std::string_view label, int lo, int hi, const Mat& column);
  // Vector lo..hi: " \n %s" with the label, then one "\n   %10.4f" per element.
  int dumpVectorFixed(std::string_view label, int lo, int hi, const Vec& v);
  int dumpVectorFixed(std::string_view label, int lo, int hi, const Mat& column);
  // "\n\n %s " with the label, then "%10.4f ".
  int dumpScalar(std::string_view label, double value);
  // "\n\n %s  " with the label, then "%d ".
  int dumpInt(std::string_view label, int value);
  // " %s \n" with the label, then " %3d  " per element.
  int dumpIntList(std::string_view label, std::span<const int> values);

  // Title block: the heading, then the model acronym and the model name, each on its own line
  // after one blank ("%s\r\n%s%s\n%s%s\n").
  int writeTitle(std::string_view heading, std::string_view acronym, std::string_view name);
  // Sizes: per entry "\r\n%s\n%s%d" with the label, three blanks and the value.
  int writeSizes(std::span<const DebugSize> sizes);
  // A heading line such as "Debug File for QLP ", written exactly as given.
  int writeHeading(std::string_view text);
  // A free remark "\r\n%s%10.4f": a label such as " tr4b = " and a number.
  int writeRemark(std::string_view label, double value);

  // Traced matrix operations show their operands through this: the double matrix dump. A failed
  // write closes the file, as for any dump.
  void matrix(std::string_view label, int rlo, int rhi, int clo, int chi, const Mat& a) override;

 private:
  const int* formatId_;
  int fd_ = -1;
  bool failed_ = false;
  std::string path_;
};

// The debug-file prompt that precedes every traced command: tells the user a file name is about
// to be asked ("Ovaro" caption, one OK button), asks for it in a save dialog (debug files first,
// then all files), and opens the file, deleting any file of that name. A cancelled dialog keeps
// `rememberedName`, the name of the previous traced command (possibly empty); a chosen name
// replaces it. Returns whether the debug file is open; when it is not, the command is abandoned
// without a message.
bool promptAndOpenDebugFile(Prompter& prompter, DebugFile& file, std::string& rememberedName);

}  // namespace ovaro
