// ovaro-cli examples [--json]: the example library as the workbench's File: Examples menu shows
// it, one row per example with its id, file, description and its entry under each cascade.
#pragma once

#include <CLI/CLI.hpp>

#include <iosfwd>

namespace ovaro {
class ExampleTable;
}

namespace ovaro::cli {

struct ExamplesOptions {
  bool json = false;
};

// Adds the sub-command to `app`, its options written into `o`.
CLI::App* addExamplesCommand(CLI::App& app, ExamplesOptions& o);
// Lists `table`: 0 done, 1 when the table could not be read (its problem on `err`, and in the
// JSON object under "error").
int listExamples(const ExamplesOptions& o, const ExampleTable& table, std::ostream& out,
                 std::ostream& err);

}  // namespace ovaro::cli
