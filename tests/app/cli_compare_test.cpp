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
  EXPECT_NE(r.out.find("\nRuns with lowest criterion:  HCFR = "), std::string::npos) << r.out;
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

// Counts the occurrences of `what` in `text`.
int occurrences(const std::string& text, const std::string& what) {
  int n = 0;
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

TEST(CliCompare, ATracedComparisonPrintsOnlyTheRunsTheSwitchingRulesAllow) {
  TempDir dir;
  // Without a run restriction only run 1 is printed in detail; the summary comes after the runs.
  const std::string first = dir.file("first.dbg");
  auto r = runCli({"compare", example("learn1.ovi"), "--methods", "ce,olf", "--runs", "4",
                   "--debug", first, "--trace", "results.states-and-controls-final"});
  ASSERT_EQ(r.code, 0) << r.err;
  std::string text = slurp(first);
  EXPECT_EQ(occurrences(text, "criterion in CompareCe"), 1);
  EXPECT_EQ(occurrences(text, "criterion in CompareOlf"), 1);
  EXPECT_EQ(occurrences(text, "CompareCe - major time loop   k = "), 5);  // one per period
  EXPECT_EQ(occurrences(text, "\n mcResults "), 1);
  EXPECT_LT(text.find("criterion in CompareOlf"), text.find("mcResults"));

  // "Only run number 3": run 3 alone, announced.
  const std::string third = dir.file("third.dbg");
  r = runCli({"compare", example("learn1.ovi"), "--methods", "ce,olf", "--runs", "4", "--debug",
              third, "--trace", "results.states-and-controls-final", "--print-run", "3"});
  ASSERT_EQ(r.code, 0) << r.err;
  text = slurp(third);
  EXPECT_EQ(occurrences(text, " Print for Monte Carlo run i = 3"), 1);
  EXPECT_EQ(occurrences(text, "criterion in CompareCe"), 1);
  EXPECT_LT(text.find(" Print for Monte Carlo run i = 3"), text.find("criterion in CompareCe"));
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
