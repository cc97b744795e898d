// ovaro-cli transform IN.ovi OUT.ovi [--no] [--json] STEP...: the workbench's reshaping of a model
// (the Transformations menu, the Form Specifications and Stochastic Terms dialogs, the Size
// dialog, a cell typed in the matrix editor) as a script. The steps run in order through the same
// functions the dialogs call; questions are answered Yes, or No with --no.
#pragma once

#include <CLI/CLI.hpp>

#include <iosfwd>
#include <string>
#include <vector>

namespace ovaro::cli {

struct TransformOptions {
  std::string in;
  std::string out;
  bool no = false;
  bool json = false;
  std::vector<std::string> steps;
};

// Adds the sub-command to `app`, its options written into `o`.
CLI::App* addTransformCommand(CLI::App& app, TransformOptions& o);
// Runs it: 0 done, 1 a model that cannot be read or written, 2 a step that cannot be understood.
int transform(const TransformOptions& o, std::ostream& out, std::ostream& err);

}  // namespace ovaro::cli
