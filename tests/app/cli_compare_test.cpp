// The batch tool's Monte Carlo commands: compare and updating.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "support/run_cli.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

using nlohmann::json;
using testing::example;
using testing::runCli;
using testing::slurp;
using testing::TempDir;

TEST(CliCompare, JsonReportsEveryRunAndTheCountsOfAllFiveMethods) {
  const auto r =
      runCli({"compare", example("learn1.ovi"), "--methods", "olf,ce", "--runs", "6", "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  const json j = json::parse(r.out);
  EXPECT_EQ(j["runs"], 6);
  EXPECT_EQ(j["methods"], json::array({"CE", "OLF"}));  // in the fixed order
  ASSERT_EQ(j["criteria"]["CE"].size(), 6u);
  ASSERT_EQ(j["criteria"]["OLF"].size(), 6u);
  EXPECT_FALSE(j["criteria"].contains("HCFR"));
  double sum = 0.0;
  for (const auto& c : j["criteria"]["CE"]) sum += c.get<double>();
  EXPECT_NEAR(j["average_criterion"]["CE"].get<double>(), sum / 6, 1e-12 * sum);
  unsigned counted = 0;
  for (const char* name : {"HCFR", "CE", "CEWO", "OLF", "OLIN"}) {
    ASSERT_TRUE(j["lowest_counts"].contains(name)) << name;
    counted += j["lowest_counts"][name].get<unsigned>();
  }
  EXPECT_EQ(counted, 6u);  // CE with OLF is a counted pair: one method wins every run
  // The summary messages come with the JSON.
  bool methodCount = false;
  for (const auto& m : j["messages"]) methodCount |= m["caption"] == "Method Count";
  EXPECT_TRUE(methodCount);

  // The same seed gives the same runs; another seed other runs.
  const auto again =
      runCli({"compare", example("learn1.ovi"), "--methods", "ce,olf", "--runs", "6", "--json"});
  EXPECT_EQ(json::parse(again.out)["criteria"], j["criteria"]);
  const auto other = runCli({"compare", example("learn1.ovi"), "--methods", "ce,olf", "--runs", "6",
                             "--seed", "0.25", "--json"});
  EXPECT_NE(json::parse(other.out)["criteria"], j["criteria"]);
}

TEST(CliCompare, OneRunPrintsItsTableAndRefusalsExitOne) {
  auto r = runCli({"compare", example("learn1.ovi"), "--methods", "ce,olf", "--runs", "1"});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_NE(r.out.find("Average criterion:"), std::string::npos);
  EXPECT_NE(r.out.find("  Criterion CE ="), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("  Criterion OLF ="), std::string::npos);

  r = runCli({"compare", example("track1.ovi"), "--methods", "ce"});
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("Need complexity of stochastic"), std::string::npos);
  EXPECT_EQ(runCli({"compare", example("learn1.ovi"), "--methods", "ce,lqg"}).code, 2);
  EXPECT_EQ(runCli({"compare", example("learn1.ovi")}).code, 2);  // --methods is required

  TempDir dir;
  const std::string dbg = dir.file("mc.dbg");
  r = runCli({"compare", example("learn1.ovi"), "--methods", "ce", "--runs", "3", "--debug", dbg,
              "--trace", "results.monte-carlo-summary"});
  ASSERT_EQ(r.code, 0) << r.err;
  const std::string text = slurp(dbg);
  EXPECT_EQ(text.rfind(" Debug File for OLF ", 0), 0u);
  EXPECT_NE(text.find(" Monte Carlo seed for Quarns' generator = 0.500000"), std::string::npos);
  EXPECT_NE(text.find("mcResults"), std::string::npos);
}

TEST(CliUpdating, RunsTheHandcraftedRuleAndReportsItsCriteria) {
  auto r =
      runCli({"updating", example("learn1.ovi"), "--methods", "hcfr,ce", "--runs", "5", "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  const json j = json::parse(r.out);
  EXPECT_EQ(j["runs"], 5);
  EXPECT_EQ(j["criteria"]["HCFR"].size(), 5u);
  r = runCli({"updating", example("learn1.ovi"), "--methods", "hcfr", "--runs", "2", "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_TRUE(json::parse(r.out)["criteria"]["HCFR"].empty());
  EXPECT_EQ(runCli({"updating", example("track1.ovi"), "--methods", "hcfr"}).code, 1);
  EXPECT_EQ(runCli({"updating", example("learn1.ovi"), "--methods", "cewo"}).code, 2);
}

}  // namespace
}  // namespace ovaro
