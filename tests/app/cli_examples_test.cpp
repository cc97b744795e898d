// ovaro-cli examples: the library's table as the menu shows it.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "app/cli_examples.h"
#include "model/example_table.h"
#include "support/run_cli.h"

namespace ovaro::cli {
namespace {

TEST(CliExamples, JsonListsFiftyRowsEachUnderEveryCascade) {
  const testing::CliResult r = testing::runCli({"examples", "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  const nlohmann::json j = nlohmann::json::parse(r.out);
  ASSERT_EQ(j["examples"].size(), 50u);
  std::set<int> ids;
  for (const nlohmann::json& row : j["examples"]) {
    const int id = row["id"];
    EXPECT_TRUE(ids.insert(id).second) << id;
    const std::filesystem::path file = std::filesystem::path(j["table"].get<std::string>())
                                           .replace_filename(row["file"].get<std::string>());
    EXPECT_TRUE(std::filesystem::exists(file)) << file;
    for (const char* key : {"author", "country", "functional_form", "stochastic_terms", "subject"})
      EXPECT_FALSE(row[key].get<std::string>().empty()) << id << " " << key;
  }
}

TEST(CliExamples, AFaultyTableIsAnErrorNamingItsProblem) {
  const ExampleTable bad = ExampleTable::parse("id\tfile\n", "x.tsv");
  std::ostringstream out, err;
  EXPECT_EQ(listExamples({.json = true}, bad, out, err), 1);
  EXPECT_EQ(nlohmann::json::parse(out.str())["error"], bad.problem());
  EXPECT_EQ(err.str(), "ovaro-cli: " + bad.problem() + "\n");
}

}  // namespace
}  // namespace ovaro::cli
