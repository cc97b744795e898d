// Runs the batch tool's commands in-process and captures what they print.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "app/cli.h"

namespace ovaro::testing {

struct CliResult {
  int code;
  std::string out;
  std::string err;
};

inline CliResult runCli(std::vector<std::string> args) {
  args.insert(args.begin(), "ovaro-cli");
  std::vector<const char*> argv;
  for (const auto& a : args) argv.push_back(a.c_str());
  std::ostringstream out, err;
  const int code = cli::run(static_cast<int>(argv.size()), argv.data(), out, err);
  return {code, out.str(), err.str()};
}

// The path of an example model of the source tree.
inline std::string example(const char* name) {
  return std::string(OVARO_SOURCE_DIR) + "/examples/" + name;
}

}  // namespace ovaro::testing
