#include "model/conversion.h"

#include <charconv>
#include <climits>
#include <cmath>

namespace ovaro {

namespace {

// Skips leading white space and takes an optional sign off `s`; returns whether it was '-'.
bool takeSign(std::string_view& s) {
  std::size_t i = 0;
  while (i < s.size() && (s[i] == ' ' || s[i] == '\t' || s[i] == '\n' || s[i] == '\r' ||
                          s[i] == '\f' || s[i] == '\v'))
    ++i;
  s.remove_prefix(i);
  const bool negative = !s.empty() && s[0] == '-';
  if (!s.empty() && (s[0] == '+' || s[0] == '-')) s.remove_prefix(1);
  return negative;
}

}  // namespace

double toDouble(std::string_view text) {
  std::string_view s = text;
  const bool negative = takeSign(s);
  // from_chars takes no sign of its own after ours: "+-1" is not a number.
  if (s.empty() || s[0] == '+' || s[0] == '-') return 0.0;
  double value = 0.0;
  const auto [ptr, ec] = std::from_chars(s.data(), s.data() + s.size(), value);
  if (ec == std::errc::result_out_of_range) {
    // Overflow reads as an infinity and underflow as zero, as the C library's conversion does;
    // from_chars leaves the value alone, so tell them apart by the sign of the exponent.
    const std::string_view parsed(s.data(), static_cast<std::size_t>(ptr - s.data()));
    const std::size_t e = parsed.find_first_of("eE");
    const bool tiny = e != std::string_view::npos && e + 1 < parsed.size() && parsed[e + 1] == '-';
    value = tiny ? 0.0 : HUGE_VAL;
  } else if (ec != std::errc()) {
    return 0.0;
  }
  return negative ? -value : value;
}

int toInt(std::string_view text) {
  std::string_view s = text;
  const bool negative = takeSign(s);
  long long value = 0;
  for (char c : s) {
    if (c < '0' || c > '9') break;
    value = value * 10 + (c - '0');
    if (value > static_cast<long long>(INT_MAX) + 1) {
      value = static_cast<long long>(INT_MAX) + 1;
      break;
    }
  }
  if (negative) value = -value;
  if (value > INT_MAX) return INT_MAX;
  if (value < INT_MIN) return INT_MIN;
  return static_cast<int>(value);
}

Mat toMat(const TextMatrix& t) {
  Mat a = mat2(1, t.rows(), 1, t.cols());
  for (int i = 0; i < t.rows(); ++i)
    for (int j = 0; j < t.cols(); ++j) a(i + 1, j + 1) = toDouble(t.cell(i, j));
  return a;
}

Mat toPeriodMat(const TextMatrix& t) {
  Mat a = mat2(1, t.rows(), 0, t.cols() - 1);
  for (int i = 0; i < t.rows(); ++i)
    for (int j = 0; j < t.cols(); ++j) a(i + 1, j) = toDouble(t.cell(i, j));
  return a;
}

Vec toVec(const TextMatrix& t) {
  Vec v = vec1(1, t.rows());
  if (t.cols() < 1) return v;
  for (int i = 0; i < t.rows(); ++i) v(i + 1) = toDouble(t.cell(i, 0));
  return v;
}

IMat toIMat(const TextMatrix& t) {
  IMat a = imat2(1, t.rows(), 1, t.cols());
  for (int i = 0; i < t.rows(); ++i)
    for (int j = 0; j < t.cols(); ++j) a(i + 1, j + 1) = toInt(t.cell(i, j));
  return a;
}

}  // namespace ovaro
