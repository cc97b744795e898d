#include "io/debug_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <utility>

#include "io/number_format.h"

namespace ovaro {

namespace {

constexpr const char* kFixedElement = "%10.4f ";

// Appends printf-formatted text; the dump layouts are written as the printf formats they are.
[[gnu::format(printf, 2, 3)]] void appendf(std::string& out, const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list again;
  va_copy(again, args);
  const int n = std::vsnprintf(nullptr, 0, format, args);
  va_end(args);
  if (n > 0) {
    const std::size_t start = out.size();
    const auto count = static_cast<std::size_t>(n);
    out.resize(start + count + 1);
    std::vsnprintf(out.data() + start, count + 1, format, again);
    out.resize(start + count);
  }
  va_end(again);
}

void requireInside(std::string_view label, const char* what, int lo, int hi, int arrayLo,
                   int arrayHi) {
  if (lo >= arrayLo && hi <= arrayHi) return;
  throw std::out_of_range("debug dump \"" + std::string(label) + "\": " + what + " " +
                          std::to_string(lo) + ".." + std::to_string(hi) + " outside " +
                          std::to_string(arrayLo) + ".." + std::to_string(arrayHi));
}

// Columns clo..chi in blocks of at most five; `head(out)` starts each block, and each row of
// rlo..rhi is a line "\n   " followed by `element(out, i, j)` for the block's columns. The count
// of full blocks is at least one, so an empty column range still shows its label and row lines.
// Indices are widened so that no bound near the limits of int can overflow.
template <typename Head, typename Element>
void appendBlocks(std::string& out, int rlo, int rhi, int clo, int chi, Head&& head,
                  Element&& element) {
  const long long k = static_cast<long long>(chi) - clo + 1;
  const long long fullBlocks = std::max(k / 5, 1LL);
  const long long remainder = std::max(k - 5 * fullBlocks, 0LL);
  auto block = [&](long long first, long long last) {
    head(out);
    for (long long i = rlo; i <= rhi; ++i) {
      out += "\n   ";
      for (long long j = first; j <= last; ++j) {
        element(out, static_cast<int>(i), static_cast<int>(j));
      }
    }
  };
  const long long firstLast = clo + std::min(k, 5LL) - 1;
  for (long long b = 0; b < fullBlocks; ++b) block(clo + 5 * b, firstLast + 5 * b);
  if (remainder > 0) block(clo + 5 * fullBlocks, chi);
}

template <typename Matrix>
void requireMatrixPart(std::string_view label, int rlo, int rhi, int clo, int chi,
                       const Matrix& a) {
  if (rhi < rlo || chi < clo) return;  // nothing is read
  requireInside(label, "rows", rlo, rhi, a.rlo(), a.rhi());
  requireInside(label, "columns", clo, chi, a.clo(), a.chi());
}

void requireVectorPart(std::string_view label, int lo, int hi, const Vec& v) {
  if (hi >= lo) requireInside(label, "elements", lo, hi, v.lo(), v.hi());
}

void requireColumnPart(std::string_view label, int lo, int hi, const Mat& column) {
  if (hi < lo) return;
  requireInside(label, "rows", lo, hi, column.rlo(), column.rhi());
  if (column.cols() < 1) {
    throw std::out_of_range("debug dump \"" + std::string(label) + "\": vector has no column");
  }
}

// A Vec and a one-column Mat dump the same way; these read element i of either.
double at(const Vec& v, int i) {
  return v(i);
}
double at(const Mat& column, int i) {
  return column(i, column.clo());
}

template <typename Vector>
std::string vectorText(std::string_view label, int lo, int hi, const Vector& v,
                       const char* format) {
  std::string out;
  appendf(out, "\n %s", std::string(label).c_str());
  for (long long i = lo; i <= hi; ++i) appendNumber(out, format, at(v, static_cast<int>(i)));
  return out;
}

template <typename Vector>
std::string vectorFixedText(std::string_view label, int lo, int hi, const Vector& v) {
  std::string out;
  appendf(out, " \n %s", std::string(label).c_str());
  for (long long i = lo; i <= hi; ++i) appendf(out, "\n   %10.4f", at(v, static_cast<int>(i)));
  return out;
}

std::string matrixText(std::string_view label, int rlo, int rhi, int clo, int chi, const Mat& a,
                       const char* format) {
  requireMatrixPart(label, rlo, rhi, clo, chi, a);
  const std::string name(label);
  std::string out;
  appendBlocks(
      out, rlo, rhi, clo, chi, [&](std::string& o) { appendf(o, "\n %s ", name.c_str()); },
      [&](std::string& o, int i, int j) { appendNumber(o, format, a(i, j)); });
  return out;
}

}  // namespace

DebugFile::~DebugFile() {
  close();
}

bool DebugFile::open(const std::string& path) {
  close();
  path_ = path;
  failed_ = false;
  if (path.empty()) return false;
  // The trace of an earlier command under the same name is replaced, not appended to. Devices,
  // pipes and directories are left where they are: opening them below succeeds or fails on its
  // own.
  struct stat st {};
  if (::lstat(path.c_str(), &st) == 0 && (S_ISREG(st.st_mode) || S_ISLNK(st.st_mode))) {
    ::unlink(path.c_str());
  }
  fd_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  return fd_ >= 0;
}

void DebugFile::close() {
  if (fd_ >= 0) {
    ::close(fd_);
    fd_ = -1;
  }
}

int DebugFile::write(std::string_view text) {
  if (fd_ < 0) return 0;
  ssize_t written;
  do {
    written = ::write(fd_, text.data(), text.size());
  } while (written < 0 && errno == EINTR);
  if (written < 0 || static_cast<std::size_t>(written) != text.size()) {
    close();
    failed_ = true;
    return 0;
  }
  return 1;
}

const char* DebugFile::elementFormat() const {
  return formatId_ != nullptr ? debugElementFormat(*formatId_) : kUnchosenDebugFormat;
}

int DebugFile::dumpMatrix(std::string_view label, int rlo, int rhi, int clo, int chi,
                          const Mat& a) {
  if (!isOpen()) return 0;
  return write(matrixText(label, rlo, rhi, clo, chi, a, elementFormat()));
}

int DebugFile::dumpMatrixFixed(std::string_view label, int rlo, int rhi, int clo, int chi,
                               const Mat& a) {
  if (!isOpen()) return 0;
  return write(matrixText(label, rlo, rhi, clo, chi, a, kFixedElement));
}

int DebugFile::dumpMatrix3(std::string_view label, int ilo, int ihi, int rlo, int rhi, int clo,
                           int chi, const Mat3& a) {
  if (!isOpen()) return 0;
  if (ihi >= ilo && rhi >= rlo && chi >= clo) {
    requireInside(label, "first index", ilo, ihi, a.rlo(), a.rhi());
    requireInside(label, "rows", rlo, rhi, a.clo(), a.chi());
    requireInside(label, "columns", clo, chi, a.dlo(), a.dhi());
  }
  const std::string name(label);
  std::string out;
  for (long long wide = ilo; wide <= ihi; ++wide) {
    const int i = static_cast<int>(wide);
    appendBlocks(
        out, rlo, rhi, clo, chi,
        [&](std::string& o) { appendf(o, "\n %s    %d", name.c_str(), i); },
        [&](std::string& o, int j, int k) { appendNumber(o, kFixedElement, a(i, j, k)); });
  }
  return write(out);
}

int DebugFile::dumpIntMatrix(std::string_view label, int rlo, int rhi, int clo, int chi,
                             const IMat& a) {
  if (!isOpen()) return 0;
  requireMatrixPart(label, rlo, rhi, clo, chi, a);
  const std::string name(label);
  std::string out;
  appendBlocks(
      out, rlo, rhi, clo, chi, [&](std::string& o) { appendf(o, "\n %s ", name.c_str()); },
      [&](std::string& o, int i, int j) { appendf(o, "%d ", a(i, j)); });
  return write(out);
}

int DebugFile::dumpVector(std::string_view label, int lo, int hi, const Vec& v) {
  if (!isOpen()) return 0;
  requireVectorPart(label, lo, hi, v);
  return write(vectorText(label, lo, hi, v, elementFormat()));
}

int DebugFile::dumpVector(std::string_view label, int lo, int hi, const Mat& column) {
  if (!isOpen()) return 0;
  requireColumnPart(label, lo, hi, column);
  return write(vectorText(label, lo, hi, column, elementFormat()));
}

int DebugFile::dumpVectorFixed(std::string_view label, int lo, int hi, const Vec& v) {
  if (!isOpen()) return 0;
  requireVectorPart(label, lo, hi, v);
  return write(vectorFixedText(label, lo, hi, v));
}

int DebugFile::dumpVectorFixed(std::string_view label, int lo, int hi, const Mat& column) {
  if (!isOpen()) return 0;
  requireColumnPart(label, lo, hi, column);
  return write(vectorFixedText(label, lo, hi, column));
}

int DebugFile::dumpScalar(std::string_view label, double value) {
  if (!isOpen()) return 0;
  std::string out;
  appendf(out, "\n\n %s ", std::string(label).c_str());
  appendf(out, "%10.4f ", value);
  return write(out);
}

int DebugFile::dumpInt(std::string_view label, int value) {
  if (!isOpen()) return 0;
  std::string out;
  appendf(out, "\n\n %s  ", std::string(label).c_str());
  appendf(out, "%d ", value);
  return write(out);
}

int DebugFile::dumpIntList(std::string_view label, std::span<const int> values) {
  if (!isOpen()) return 0;
  std::string out;
  appendf(out, " %s \n", std::string(label).c_str());
  for (int v : values) appendf(out, " %3d  ", v);
  return write(out);
}

int DebugFile::writeTitle(std::string_view heading, std::string_view acronym,
                          std::string_view name) {
  if (!isOpen()) return 0;
  std::string out;
  appendf(out, "%s\r\n%s%s\n%s%s\n", std::string(heading).c_str(), " ",
          std::string(acronym).c_str(), " ", std::string(name).c_str());
  return write(out);
}

int DebugFile::writeSizes(std::span<const DebugSize> sizes) {
  if (!isOpen()) return 0;
  std::string out;
  for (const DebugSize& s : sizes) {
    appendf(out, "\r\n%s\n%s%d", std::string(s.label).c_str(), "   ", s.value);
  }
  return write(out);
}

int DebugFile::writeHeading(std::string_view text) {
  if (!isOpen()) return 0;
  return write(text);
}

int DebugFile::writeRemark(std::string_view label, double value) {
  if (!isOpen()) return 0;
  std::string out;
  appendf(out, "\r\n%s%10.4f", std::string(label).c_str(), value);
  return write(out);
}

void DebugFile::matrix(std::string_view label, int rlo, int rhi, int clo, int chi, const Mat& a) {
  dumpMatrix(label, rlo, rhi, clo, chi, a);
}

bool promptAndOpenDebugFile(Prompter& prompter, DebugFile& file, std::string& rememberedName) {
  prompter.inform("Please provide debug file name in the following dialog box.", "Ovaro");
  FileRequest request;
  request.kind = FileRequest::Kind::Save;
  request.filters = {{"Debug Files (*.dbg)", "*.dbg"}, {"All Files (*.*;*)", "*.*;*"}};
  request.defaultExtension = "txt";
  request.promptBeforeOverwrite = true;
  if (std::optional<std::string> chosen = prompter.askFileName(request)) {
    rememberedName = std::move(*chosen);
  }
  return file.open(rememberedName);
}

}  // namespace ovaro
