// Reading a debug print file back as the sequence of its labels.
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace ovaro::testing {

// The labels of the file in order: every line that is not an element row ("   " first), cut at
// the blanks that separate a scalar's label from its value. A dump of many blocks repeats its
// label once per block.
inline std::vector<std::string> debugLabels(const std::string& content) {
  std::vector<std::string> out;
  std::istringstream in(content);
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line.rfind("   ", 0) == 0) continue;
    const std::size_t cut = line.find("  ", 1);
    if (cut != std::string::npos) line.erase(cut);
    const std::size_t b = line.find_first_not_of(' ');
    const std::size_t e = line.find_last_not_of(' ');
    out.push_back(line.substr(b, e - b + 1));
  }
  return out;
}

}  // namespace ovaro::testing
