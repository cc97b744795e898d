#include "model/text_matrix.h"

#include <algorithm>
#include <cstring>

#include "numeric/arrays.h"

namespace ovaro {

TextMatrix::TextMatrix(int rows, int cols) : rows_(std::max(rows, 0)), cols_(std::max(cols, 0)) {
  std::array<char, kCellSize> zero{};
  zero[0] = '0';
  cells_.assign(static_cast<std::size_t>(rows_) * static_cast<std::size_t>(cols_), zero);
}

TextMatrix TextMatrix::identity(int n) {
  TextMatrix t(n, n);
  for (int i = 0; i < t.rows_; ++i) t.cells_[t.index(i, i)][0] = '1';
  return t;
}

std::size_t TextMatrix::index(int i, int j) const {
  OVARO_CHECK_INDEX("text matrix row", i, 0, rows_ - 1);
  OVARO_CHECK_INDEX("text matrix column", j, 0, cols_ - 1);
  return static_cast<std::size_t>(i) * static_cast<std::size_t>(cols_) +
         static_cast<std::size_t>(j);
}

std::string_view TextMatrix::cell(int i, int j) const {
  const auto& c = cells_[index(i, j)];
  return std::string_view(c.data(), strnlen(c.data(), kCellSize));
}

bool TextMatrix::setCell(int i, int j, std::string_view text) {
  auto& c = cells_[index(i, j)];
  c.fill('\0');
  const std::size_t nul = text.find('\0');
  const bool cutAtNul = nul != std::string_view::npos;
  if (cutAtNul) text = text.substr(0, nul);
  const bool fits = text.size() <= static_cast<std::size_t>(kCellChars);
  const std::size_t n = std::min(text.size(), static_cast<std::size_t>(kCellChars));
  std::memcpy(c.data(), text.data(), n);
  return fits && !cutAtNul;
}

bool operator==(const TextMatrix& a, const TextMatrix& b) {
  if (a.rows_ != b.rows_ || a.cols_ != b.cols_) return false;
  for (int i = 0; i < a.rows_; ++i)
    for (int j = 0; j < a.cols_; ++j)
      if (a.cell(i, j) != b.cell(i, j)) return false;
  return true;
}

std::vector<std::string> blankStrings(int count, int width) {
  return std::vector<std::string>(static_cast<std::size_t>(std::max(count, 0)),
                                  std::string(static_cast<std::size_t>(std::max(width, 0)), ' '));
}

std::vector<std::string> blankAcronyms(int count) {
  return blankStrings(count, 1);
}

std::vector<std::string> blankNames(int count) {
  return blankStrings(count, kNameChars);
}

LabelTable LabelTable::blank(int count, bool withNames) {
  LabelTable t;
  t.acronyms = blankAcronyms(count);
  if (withNames) t.names = blankNames(count);
  return t;
}

}  // namespace ovaro
