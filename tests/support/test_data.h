// Expected outputs kept under tests/data/, and the messages a prompter recorded in the same form.
// One entry a line; "\t", "\r", "\n" and "\\" stand for themselves escaped ("\s" for a blank, to
// end a line with one), so that the exact texts with their tabs and carriage returns stay readable.
// Lines starting with '#' are comments.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "numeric/prompter.h"

namespace ovaro::testing {

inline std::string unescaped(const std::string& s) {
  std::string out;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] != '\\' || i + 1 == s.size()) {
      out += s[i];
      continue;
    }
    const char c = s[++i];
    out += c == 't' ? '\t' : c == 'r' ? '\r' : c == 'n' ? '\n' : c == 's' ? ' ' : c;
  }
  return out;
}

inline std::string dataPath(const std::string& name) {
  return std::string(OVARO_SOURCE_DIR) + "/tests/data/" + name;
}

// The entries of a data file; an empty result means the file is missing or empty.
inline std::vector<std::string> dataLines(const std::string& name) {
  std::ifstream in(dataPath(name), std::ios::binary);
  std::vector<std::string> out;
  std::string line;
  while (std::getline(in, line))
    if (line.rfind('#', 0) != 0) out.push_back(unescaped(line));
  return out;
}

// The non-empty entries of one section of a data file: the lines after "[name]" up to the next
// section.
inline std::vector<std::string> dataSection(const std::string& file, const std::string& section) {
  std::vector<std::string> out;
  bool in = false;
  for (const std::string& l : dataLines(file)) {
    if (!l.empty() && l.front() == '[' && l.back() == ']') {
      in = l == "[" + section + "]";
    } else if (in && !l.empty()) {
      out.push_back(l);
    }
  }
  return out;
}

// Every message shown, as "caption: text".
inline std::vector<std::string> shown(const RecordingPrompter& p) {
  std::vector<std::string> out;
  for (const Message& m : p.messages()) out.push_back(m.caption + ": " + m.text);
  return out;
}

}  // namespace ovaro::testing
