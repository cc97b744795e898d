// The batch tool's Monte Carlo commands: compare and updating.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/run_cli.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

using nlohmann::json;
using testing::example;
using testing::runCli;
using testing::slurp;

// The JSON of a comparison agrees with its own run criteria: averages, lowest counts over all
// five methods, and the criterion summary of the paired differences.
TEST(CliCompare, JsonReportsEveryRunAndWhatFollowsFromThem) {
  const std::vector<std::string> args = {
      "compare", example("learn1.ovi"), "--methods", "olf,ce", "--runs", "8", "--json"};
  const auto r = runCli(args);
  ASSERT_EQ(r.code, 0) << r.err;
  const json j = json::parse(r.out);
  EXPECT_EQ(j["methods"], json::array({"CE", "OLF"}));  // in the fixed order
  const std::vector<double> ce = j["criteria"]["CE"], olf = j["criteria"]["OLF"];
  ASSERT_EQ(ce.size(), 8u);
  ASSERT_EQ(olf.size(), 8u);
  double sum = 0, mean = 0, ss = 0;
  for (std::size_t i = 0; i < 8; ++i) sum += ce[i], mean += (ce[i] - olf[i]) / 8;
  for (std::size_t i = 0; i < 8; ++i) ss += std::pow(ce[i] - olf[i] - mean, 2);
  EXPECT_NEAR(j["average_criterion"]["CE"].get<double>(), sum / 8, 1e-12 * sum);
  unsigned counted = 0;
  for (const char* name : {"HCFR", "CE", "CEWO", "OLF", "OLIN"})
    counted += j["lowest_counts"].value(name, 100u);
  EXPECT_EQ(counted, 8u);  // CE with OLF is a counted pair: one method wins every run
  const json& pair = j["criterion_summary"]["pairs"][0];
  EXPECT_EQ(pair["first"], "CE");
  EXPECT_NEAR(pair["mean_difference"].get<double>(), mean, 1e-12);
  const double se = std::sqrt(ss / 7 / 8);
  EXPECT_NEAR(pair["standard_error"].get<double>(), se, 1e-12);
  EXPECT_NEAR(pair["ci95"][1].get<double>() - mean, 2.365 * se, 1e-3 * se);  // t(0.975, 7)
  std::vector<double> sorted = olf;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_DOUBLE_EQ(j["criterion_summary"]["methods"]["OLF"]["median"].get<double>(),
                   (sorted[3] + sorted[4]) / 2);
  EXPECT_EQ(j["messages"][0]["caption"], "Method Count");

  // The same seed gives the same runs; another seed other runs.
  EXPECT_EQ(json::parse(runCli(args).out)["criteria"], j["criteria"]);
  std::vector<std::string> seeded = args;
  seeded.insert(seeded.end(), {"--seed", "0.25"});
  EXPECT_NE(json::parse(runCli(seeded).out)["criteria"], j["criteria"]);
}

TEST(CliCompare, OneRunPrintsItsTable) {
  auto r = runCli({"compare", example("learn1.ovi"), "--methods", "ce,olf", "--runs", "1"});
  ASSERT_EQ(r.code, 0) << r.err;
  for (const char* text : {"Average criterion:", "\nRuns with lowest criterion:  HCFR = ",
                           "  Criterion CE =", "  Criterion OLF ="})
    EXPECT_NE(r.out.find(text), std::string::npos) << text << "\n" << r.out;
}

int occurrences(const std::string& text, const std::string& what) {
  int n = 0;
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

// Without a run restriction only run 1 is printed in detail, the summary after the runs; with
// "only run number 3" run 3 alone, announced.
TEST(CliCompare, ATracedComparisonPrintsOnlyTheRunsTheSwitchingRulesAllow) {
  testing::TempDir dir;
  const std::string dbg = dir.file("mc.dbg");
  std::vector<std::string> args = {"compare",   example("learn1.ovi"),
                                   "--methods", "ce,olf",
                                   "--runs",    "4",
                                   "--debug",   dbg,
                                   "--trace",   "results.states-and-controls-final"};
  auto r = runCli(args);
  ASSERT_EQ(r.code, 0) << r.err;
  std::string text = slurp(dbg);
  EXPECT_EQ(text.rfind(" Debug File for OLF ", 0), 0u);
  EXPECT_NE(text.find(" Monte Carlo seed for Quarns' generator = 0.500000"), std::string::npos);
  EXPECT_EQ(occurrences(text, "criterion in CompareCe"), 1);
  EXPECT_EQ(occurrences(text, "criterion in CompareOlf"), 1);
  EXPECT_EQ(occurrences(text, "CompareCe - major time loop   k = "), 5);  // one per period
  EXPECT_EQ(occurrences(text, "\n mcResults "), 1);
  EXPECT_LT(text.find("criterion in CompareOlf"), text.find("mcResults"));

  args.insert(args.end(), {"--print-run", "3"});
  r = runCli(args);
  ASSERT_EQ(r.code, 0) << r.err;
  text = slurp(dbg);
  EXPECT_EQ(occurrences(text, " Print for Monte Carlo run i = 3"), 1);
  EXPECT_EQ(occurrences(text, "criterion in CompareCe"), 1);
  EXPECT_LT(text.find(" Print for Monte Carlo run i = 3"), text.find("criterion in CompareCe"));
}

// HCFR alone has no learning to compare: the runs are counted but carry no criteria.
TEST(CliUpdating, RunsTheHandcraftedRuleAndReportsItsCriteria) {
  for (const auto& [methods, criteria] : {std::pair{"hcfr,ce", 5u}, {"hcfr", 0u}}) {
    const auto r =
        runCli({"updating", example("learn1.ovi"), "--methods", methods, "--runs", "5", "--json"});
    ASSERT_EQ(r.code, 0) << r.err;
    const json j = json::parse(r.out);
    EXPECT_EQ(j["runs"], 5);
    EXPECT_EQ(j["criteria"]["HCFR"].size(), criteria) << methods;
  }
}

}  // namespace
}  // namespace ovaro
