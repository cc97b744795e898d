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
  ASSERT_EQ(j["states"].size(), 2u);
  ASSERT_EQ(j["controls"].size(), 2u);
  ASSERT_EQ(j["desired_states"].size(), 2u);
  ASSERT_EQ(j["desired_controls"].size(), 2u);
  for (const auto& row : j["states"]) EXPECT_EQ(row.size(), 8u);
  for (const auto& row : j["desired_states"]) EXPECT_EQ(row.size(), 8u);
  for (const auto& row : j["controls"]) EXPECT_EQ(row.size(), 7u);
  for (const auto& row : j["desired_controls"]) EXPECT_EQ(row.size(), 7u);
  EXPECT_TRUE(j["messages"].is_array());
  EXPECT_TRUE(j["messages"].empty());

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
    // Eight period rows (Q1..Q8) and the desired-column headings.
    for (const char* q : {"\nQ1 ", "\nQ5 ", "\nQ6 ", "\nQ8 "})
      EXPECT_NE(r.out.find(q), std::string::npos) << q;
    EXPECT_NE(r.out.find(" opt"), std::string::npos);
    EXPECT_NE(r.out.find("des"), std::string::npos);
    // A blank line separates the fifth period from the sixth.
    const std::size_t q5 = r.out.find("\nQ5 ");
    const std::size_t q6 = r.out.find("\nQ6 ");
    EXPECT_NE(r.out.substr(q5, q6 + 1 - q5).find("\n\n"), std::string::npos);
  }
}

TEST(CliSolve, RefusalsAndBadUsage) {
  // OLF on a deterministic model: the system's own message on stderr, exit 1.
  Result r = runCli({"solve", example("track1.ovi"), "--method", "olf"});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("Warning!!: Warning: Need stochastic terms specification"),
            std::string::npos)
      << r.err;
  EXPECT_NE(r.err.find("Solve:QLP solver instead."), std::string::npos);
  EXPECT_EQ(r.out, "");

  // The same refusal as JSON carries the message.
  r = runCli({"solve", example("track1.ovi"), "--method", "olf", "--json"});
  EXPECT_EQ(r.code, 1);
  const json j = json::parse(r.out);
  ASSERT_EQ(j["messages"].size(), 1u);
  EXPECT_EQ(j["messages"][0]["caption"], "Warning!!");

  r = runCli({"solve", "/no/such/model.ovi"});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("Could not read file /no/such/model.ovi!"), std::string::npos);

  EXPECT_EQ(runCli({"solve", example("track1.ovi"), "--method", "lqg"}).code, 2);
  EXPECT_EQ(runCli({"solve", example("track1.ovi"), "--format", "771"}).code, 2);
  EXPECT_EQ(runCli({"solve", example("track1.ovi"), "--trace", "all"}).code, 2);  // no --debug
  TempDir dir;
  r = runCli({"solve", example("track1.ovi"), "--debug", dir.file("x.dbg"), "--trace",
              "qlp.k-and-p,no.such"});
  EXPECT_EQ(r.code, 2);
  EXPECT_NE(r.err.find("qlp.g-and-g"), std::string::npos) << "lists the known switches";
  r = runCli({"solve", example("learn1.ovi"), "--method", "olf", "--caution", "1,1,0.1"});
  EXPECT_EQ(r.code, 2);
  EXPECT_NE(r.err.find("--caution takes ROW,COL,VALUE,PERIOD"), std::string::npos) << r.err;
  EXPECT_EQ(runCli({"solve", example("track1.ovi"), "--caution", "1,1,0.1,1"}).code, 2);
  EXPECT_EQ(
      runCli({"solve", example("learn1.ovi"), "--method", "olf", "--caution", "1,1,x,1"}).code, 2);
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
