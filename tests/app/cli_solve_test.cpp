// The batch tool's solve command: the table, the JSON object, the debug file and the refusals.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "app/cli.h"
#include "io/number_format.h"
#include "support/run_cli.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

using nlohmann::json;
using testing::slurp;
using testing::TempDir;

using Result = testing::CliResult;
using testing::example;
using testing::runCli;

TEST(CliSolve, JsonHoldsPathsOfTheDocumentedShapes) {
  // infl2: 2 states, 2 controls, 8 periods (T = 7).
  const Result r = runCli({"solve", example("infl2.ovi"), "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  const json j = json::parse(r.out);
  EXPECT_EQ(j["method"], "QLP");
  for (const auto& [key, length] : {std::pair{"states", 8u},
                                    {"desired_states", 8u},
                                    {"controls", 7u},
                                    {"desired_controls", 7u}}) {
    ASSERT_EQ(j[key].size(), 2u) << key;
    for (const auto& row : j[key]) EXPECT_EQ(row.size(), length) << key;
  }
  EXPECT_EQ(j["messages"], json::array());
  // The path starts from the model's initial inflation, and a tracking criterion off target is
  // positive.
  EXPECT_GT(j["criterion"].get<double>(), 0.0);
  EXPECT_DOUBLE_EQ(j["states"][0][0].get<double>(), 4.5);
  // The OLF solve of a model with uncertain parameters names itself OLFwo.
  const Result o = runCli({"solve", example("learn1.ovi"), "--method", "olf", "--json"});
  ASSERT_EQ(o.code, 0) << o.err;
  EXPECT_EQ(json::parse(o.out)["method"], "OLFwo");
}

TEST(CliSolve, TableShowsEveryPeriodAndTheCriterionInTheChosenFormat) {
  const Result j = runCli({"solve", example("infl2.ovi"), "--json"});
  const double criterion = json::parse(j.out)["criterion"].get<double>();
  for (int format : {770, 778, 790}) {
    const Result r =
        runCli({"solve", example("infl2.ovi"), "--format", std::to_string(format), "--desired"});
    ASSERT_EQ(r.code, 0) << r.err;
    const std::string value = formatNumber(findNumberFormat(format)->format, criterion);
    // The criterion line holds the value as the format prints it.
    const std::size_t at = r.out.find("  Criterion QLP =");
    ASSERT_NE(at, std::string::npos) << r.out;
    const std::string line = r.out.substr(at, r.out.find('\n', at) - at);
    EXPECT_NE(line.find(value.substr(1, value.size() - 2)), std::string::npos)
        << line << " / " << value;
    // Eight period rows, a blank line after the fifth.
    for (const char* q : {"\nQ1 ", "\nQ5 ", "\n\nQ6 ", "\nQ8 "})
      EXPECT_NE(r.out.find(q), std::string::npos) << q;
  }
}

// A refusal as JSON carries the system's message.
TEST(CliSolve, JsonRefusalCarriesTheMessage) {
  const Result r = runCli({"solve", example("track1.ovi"), "--method", "olf", "--json"});
  EXPECT_EQ(r.code, 1);
  const json j = json::parse(r.out);
  ASSERT_EQ(j["messages"].size(), 1u);
  EXPECT_EQ(j["messages"][0]["caption"], "Warning!!");
  EXPECT_NE(j["messages"][0]["text"].get<std::string>().find("Solve:QLP solver instead."),
            std::string::npos);
}

TEST(CliSolve, DebugFileHoldsTheHeadingAndOnlyTheTracedDumps) {
  TempDir dir;
  const std::string plain = dir.file("plain.dbg");
  Result r = runCli({"solve", example("track1.ovi"), "--debug", plain});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(slurp(plain), "Debug File for QLP ");

  const std::string traced = dir.file("traced.dbg");
  r = runCli({"solve", example("track1.ovi"), "--debug", traced, "--trace", "qlp.g-and-g"});
  ASSERT_EQ(r.code, 0) << r.err;
  const std::string text = slurp(traced);
  EXPECT_EQ(text.rfind("Debug File for QLP ", 0), 0u);
  EXPECT_NE(text.find("\n g "), std::string::npos);
  EXPECT_NE(text.find("\n glc "), std::string::npos);
  EXPECT_EQ(text.find("kj"), std::string::npos);
  EXPECT_EQ(text.find("sum in sumc"), std::string::npos);

  // The caution experiment announces itself.
  r = runCli(
      {"solve", example("learn1.ovi"), "--method", "olf", "--caution", "1,1,0.09,1", "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  const json j = json::parse(r.out);
  ASSERT_FALSE(j["messages"].empty());
  EXPECT_EQ(j["messages"][0]["caption"], "Caution Experiment");
  EXPECT_EQ(j["messages"][0]["text"], "Caution Experiment Turned On");
}

}  // namespace
}  // namespace ovaro
