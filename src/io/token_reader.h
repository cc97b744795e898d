// Whitespace-separated tokens of a file held in memory, read from front to back without ever
// looking outside the buffer. The readers of the interchange files and of matrix files share it.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace ovaro {

class TokenReader {
 public:
  explicit TokenReader(std::string_view bytes) : bytes_(bytes) {}

  // The blanks that separate tokens: space, tab, line feed, vertical tab, form feed, return.
  static bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
  }

  // The next token, or nullopt at the end of the bytes.
  std::optional<std::string_view> token() {
    while (pos_ < bytes_.size() && isBlank(bytes_[pos_])) ++pos_;
    if (pos_ >= bytes_.size()) return std::nullopt;
    const std::size_t start = pos_;
    while (pos_ < bytes_.size() && !isBlank(bytes_[pos_])) ++pos_;
    return bytes_.substr(start, pos_ - start);
  }

  // Passes over the rest of the current line, its line feed included.
  void skipLine() {
    while (pos_ < bytes_.size() && bytes_[pos_] != '\n') ++pos_;
    if (pos_ < bytes_.size()) ++pos_;
  }

  // The next whole line without its line feed and return (empty at the end of the bytes).
  std::string_view line() {
    const std::size_t start = pos_;
    skipLine();
    std::string_view l = bytes_.substr(start, pos_ - start);
    if (!l.empty() && l.back() == '\n') l.remove_suffix(1);
    if (!l.empty() && l.back() == '\r') l.remove_suffix(1);
    return l;
  }

  // The line (counted from 1) the reader has reached.
  int lineNumber() const {
    int n = 1;
    for (std::size_t i = 0; i < pos_ && i < bytes_.size(); ++i)
      if (bytes_[i] == '\n') ++n;
    return n;
  }

 private:
  std::string_view bytes_;
  std::size_t pos_ = 0;
};

}  // namespace ovaro
