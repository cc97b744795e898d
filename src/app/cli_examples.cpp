#include "app/cli_examples.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>
#include <string>

#include "app/model_report.h"
#include "model/example_table.h"

namespace ovaro::cli {

namespace {

// The JSON key of a cascade: its column heading with blanks as underscores.
std::string key(std::string_view column) {
  std::string k(column);
  std::replace(k.begin(), k.end(), ' ', '_');
  return k;
}

}  // namespace

CLI::App* addExamplesCommand(CLI::App& app, ExamplesOptions& o) {
  CLI::App* cmd = app.add_subcommand(
      "examples", "List the example library: id, file, description and each cascade's entry");
  cmd->add_flag("--json", o.json, "Print a JSON object instead of text");
  return cmd;
}

int listExamples(const ExamplesOptions& o, const ExampleTable& table, std::ostream& out,
                 std::ostream& err) {
  if (table.rows().empty()) {
    err << "ovaro-cli: " << table.problem() << "\n";
    if (o.json) out << dumpJson({{"error", table.problem()}});
    return 1;
  }
  if (o.json) {
    nlohmann::json rows = nlohmann::json::array();
    for (const ExampleEntry& e : table.rows()) {
      nlohmann::json row = {{"id", e.commandId},
                            {"file", std::string(e.fileName)},
                            {"description", std::string(e.description)}};
      for (const ExampleCascade& c : exampleCascades())
        row[key(c.column)] = std::string(e.*c.field);
      rows.push_back(std::move(row));
    }
    nlohmann::json cascades = nlohmann::json::object();
    for (const ExampleCascade& c : exampleCascades()) cascades[key(c.column)] = c.caption;
    out << dumpJson({{"table", table.path()}, {"cascades", cascades}, {"examples", rows}});
    return 0;
  }
  out << "Example library " << table.path() << ": " << table.rows().size() << " examples\n";
  for (const ExampleEntry& e : table.rows()) {
    out << e.commandId << "  " << e.fileName << "  " << e.description << "\n     ";
    const char* separator = "";
    for (const ExampleCascade& c : exampleCascades()) {
      out << separator << e.*c.field;
      separator = " | ";
    }
    out << "\n";
  }
  return 0;
}

}  // namespace ovaro::cli
