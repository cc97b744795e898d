// Text matrices and label tables: the Model keeps every input value as the text the user typed.
//
// A Text matrix is a row-major block of fixed 16-byte cells; each cell holds one element as
// decimal text (at most 15 characters and a terminator), exactly as typed or as read from a
// file, and is converted to a number only where a computation needs it. Keeping the text means a
// model written back to its file reproduces 1.0E-06 as 1.0E-06, not as 1e-06.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace ovaro {

inline constexpr int kCellSize = 16;              // bytes per cell, terminator included
inline constexpr int kCellChars = kCellSize - 1;  // characters a cell holds
inline constexpr int kAcronymChars = 8;           // a 9-byte slot with its terminator
inline constexpr int kNameChars = 48;             // a 48-byte blank-filled slot

class TextMatrix {
 public:
  TextMatrix() = default;
  // A rows x cols matrix with every cell "0". Negative counts are taken as 0.
  TextMatrix(int rows, int cols);
  // An n x n matrix with "1" on the diagonal and "0" elsewhere.
  static TextMatrix identity(int n);

  int rows() const { return rows_; }
  int cols() const { return cols_; }

  // Cell (i, j), both counted from 0.
  std::string_view cell(int i, int j) const;
  // Stores `text` in cell (i, j). A text longer than a cell holds is shortened to its first 15
  // characters and false is returned; a text is also cut at an embedded NUL.
  bool setCell(int i, int j, std::string_view text);

  // Whether two matrices have the same shape and the same text in every cell.
  friend bool operator==(const TextMatrix& a, const TextMatrix& b);

 private:
  std::size_t index(int i, int j) const;

  int rows_ = 0;
  int cols_ = 0;
  std::vector<std::array<char, kCellSize>> cells_;
};

// `count` strings of `width` blanks each.
std::vector<std::string> blankStrings(int count, int width);
// `count` blank acronyms, each " ".
std::vector<std::string> blankAcronyms(int count);
// `count` blank names, each 48 blanks.
std::vector<std::string> blankNames(int count);

// Acronyms (at most 8 characters) and, for every table but the periods', long names (at most 48).
struct LabelTable {
  std::vector<std::string> acronyms;
  std::vector<std::string> names;  // empty for the period table

  // A table of `count` blank entries; with names when `withNames`.
  static LabelTable blank(int count, bool withNames);
  friend bool operator==(const LabelTable&, const LabelTable&) = default;
};

}  // namespace ovaro
