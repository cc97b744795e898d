#include "io/number_format.h"

#include <array>
#include <cstdio>

namespace ovaro {

namespace {

// The widths of 786, 790 and 795 are wider than the printed text needs; they set the column
// spacing of the tables and are kept as the dialog defines them.
constexpr std::array<NumberFormat, 9> kFormats{{
    {770, "00.", " %8.0f ", 10},
    {774, "00.0", " %9.1f ", 11},
    {778, "00.00", " %10.2f ", 12},
    {782, "00.000", " %11.3f ", 13},
    {784, "00.0000", " %12.4f ", 14},
    {785, "0.0000E+000", " %9.4E ", 13},
    {786, "0.00E+000", " %10.2E ", 13},
    {790, "0.000000E+000", " %12.6E ", 17},
    {795, "Floating or Exponential", " %12.4g ", 15},
}};

}  // namespace

std::span<const NumberFormat> numberFormats() {
  return kFormats;
}

const NumberFormat* findNumberFormat(int id) {
  for (const NumberFormat& f : kFormats) {
    if (f.id == id) return &f;
  }
  return nullptr;
}

const NumberFormat& resultsNumberFormat(int id) {
  const NumberFormat* f = findNumberFormat(id);
  return f != nullptr ? *f : *findNumberFormat(kDefaultResultsFormatId);
}

const char* debugElementFormat(int id) {
  const NumberFormat* f = findNumberFormat(id);
  return f != nullptr ? f->format : kUnchosenDebugFormat;
}

// The format is chosen at run time from the table, so the compiler cannot check it; callers
// promise a single double conversion.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
void appendNumber(std::string& out, const char* format, double value) {
  // Room for every value of the fixed formats but the very largest; those take a second pass.
  char buffer[128];
  const int n = std::snprintf(buffer, sizeof buffer, format, value);
  if (n < 0) return;
  const auto count = static_cast<std::size_t>(n);
  if (count < sizeof buffer) {
    out.append(buffer, count);
    return;
  }
  const std::size_t start = out.size();
  out.resize(start + count + 1);  // snprintf writes the terminating NUL as well
  std::snprintf(out.data() + start, count + 1, format, value);
  out.resize(start + count);
}

std::string formatNumber(const char* format, double value) {
  std::string out;
  appendNumber(out, format, value);
  return out;
}

namespace {

template <typename T>
std::string labelled(const char* format, const char* label, T value) {
  const int size = std::snprintf(nullptr, 0, format, label, value);
  if (size <= 0) return {};
  std::string out(static_cast<std::size_t>(size) + 1, '\0');
  std::snprintf(out.data(), out.size(), format, label, value);
  out.resize(static_cast<std::size_t>(size));
  return out;
}

}  // namespace

std::string formatLabelled(const char* format, const char* label, int value) {
  return labelled(format, label, value);
}

std::string formatLabelled(const char* format, const char* label, double value) {
  return labelled(format, label, value);
}
#pragma GCC diagnostic pop

}  // namespace ovaro
