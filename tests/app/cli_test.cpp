// The batch tool as a whole: the model report, conversion and transformation, the refusals, the
// installed program, and the Monte Carlo commands compare and updating.
#include "app/cli.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "model/model_file.h"
#include "support/run_cli.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using nlohmann::json;
using testing::example;
using testing::runCli;
using testing::slurp;
using testing::TempDir;

// The JSON holds the model as the reader sees it; the reader's messages come with it and on stderr.
TEST(CliInfo, JsonIsTheModelAsReadWithTheReadersMessages) {
  const auto r = runCli({"info", example("infl2.ovi"), "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(r.err, "");
  const json j = json::parse(r.out);
  for (const char* key : {"version", "name", "description", "dims", "flags", "labels"})
    EXPECT_TRUE(j.contains(key)) << key;
  Model model;
  RecordingPrompter quiet;
  ASSERT_EQ(readModelFile(example("infl2.ovi"), model, quiet), 1);
  EXPECT_EQ(j["acronym"], model.acronym);
  EXPECT_EQ(j["dims"]["nt"], model.dims.nt.value);
  EXPECT_EQ(j["dims"]["tolerance"], model.dims.tolerance);
  EXPECT_EQ(j["flags"]["xdesForm"], model.flags.xdesForm);
  EXPECT_EQ(j["labels"]["states"][1]["acronym"], model.states.acronyms[1]);
  EXPECT_EQ(j["matrices"]["A"][1][0], model.matrix(MatrixId::A)->cell(1, 0));
  EXPECT_EQ(j["matrices"]["XDEST"][0][7], model.matrix(MatrixId::XDEST)->cell(0, 7));
  EXPECT_FALSE(j["matrices"].contains("XDES"));  // not held under the time-varying form
  EXPECT_EQ(j["messages"], json::array());

  const auto old = runCli({"info", testing::dataPath("track1_v316.ovi"), "--json"});
  ASSERT_EQ(old.code, 0);
  EXPECT_EQ(json::parse(old.out)["messages"][0]["caption"],
            "Warning: Input File Version Out of Date");
  EXPECT_NE(old.err.find("Please upgrade"), std::string::npos);
}

TEST(CliInfo, TextReportShowsNameSizesLabelsAndMatrices) {
  const auto r = runCli({"info", example("learn1.ovi")});
  ASSERT_EQ(r.code, 0) << r.err;
  for (const char* line :
       {"Model        LEARN1 - Uncertain policy multiplier", "np = 1 uncertain parameters",
        "Stochastic with Parameter Uncertainty (1724)", "BMULT     Spending multiplier",
        "  ITHN (1 x 3)\n    1 1 1\n"})
    EXPECT_NE(r.out.find(line), std::string::npos) << line << "\n" << r.out;
  EXPECT_EQ(r.out.find('\r'), std::string::npos);
}

// The examples were written by an independent script in the current layout, so the writer must
// reproduce them exactly; a script of steps and its undoing gives every example back.
TEST(CliConvertAndTransform, ExamplesComeBackByteForByte) {
  TempDir dir;
  for (const char* name : {"track1.ovi", "infl2.ovi", "learn1.ovi"}) {
    SCOPED_TRACE(name);
    const std::string converted = dir.file(std::string("c-") + name);
    ASSERT_EQ(runCli({"convert", example(name), converted}).code, 0);
    EXPECT_EQ(slurp(converted), slurp(example(name)));

    Model model;
    RecordingPrompter quiet;
    ASSERT_EQ(readModelFile(example(name), model, quiet), 1);
    const int n = model.dims.n.value, m = model.dims.m.value;
    const std::string grown = dir.file(std::string("grown-") + name), back = dir.file(name);
    auto r = runCli({"transform", example(name), grown, "add-state", "add-control", "88",
                     "set:X0(" + std::to_string(n + 1) + ",1)=7.5", "--json"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(json::parse(r.out)["messages"][0]["text"], "Completed Addition of State Variables");
    r = runCli({"transform", grown, back, "w-constant",
                "size:m=" + std::to_string(m) + ";n=" + std::to_string(n) + "@" +
                    std::to_string(n + 1) + "," + std::to_string(m + 1)});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(slurp(back), slurp(example(name)));
  }
}

// Every refusal (tests/data/app_refusals.txt) says why on stderr and leaves no file behind.
TEST(CliRefusals, ExitCodeMessageAndNoFileWritten) {
  const std::vector<std::string> refusals = testing::dataLines("app_refusals.txt");
  ASSERT_GT(refusals.size(), 20u);
  for (const std::string& line : refusals) {
    SCOPED_TRACE(line);
    std::vector<std::string> field;
    std::istringstream in(line);
    for (std::string f; std::getline(in, f, '|');)
      field.push_back(
          f.substr(f.starts_with(' '), f.size() - f.starts_with(' ') - f.ends_with(' ')));
    ASSERT_GE(field.size(), 2u);
    TempDir dir;
    auto expand = [&](std::string s) {
      if (s.starts_with('@')) return example(s.c_str() + 1);
      for (std::size_t at = s.find('%'); at != std::string::npos; at = s.find('%'))
        s.replace(at, 1, dir.path().string() + "/");
      return s;
    };
    std::vector<std::string> args;
    std::istringstream words(field.size() > 2 ? field[2] : "");
    for (std::string w; words >> w;) args.push_back(expand(w));
    const auto result = runCli(args);
    EXPECT_EQ(result.code, std::stoi(field[0]));
    EXPECT_NE(result.err, "");
    EXPECT_NE(result.err.find(expand(field[1])), std::string::npos) << result.err;
    EXPECT_EQ(result.code == 1 ? result.out : "", "");
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
  }
  const auto help = runCli({"--help"});
  EXPECT_EQ(help.code, 0);
  for (const char* command : {"info", "convert", "solve", "compare", "plot", "transform"})
    EXPECT_NE(help.out.find(command), std::string::npos) << command;
}

// The installed program passes the exit code and stderr through.
TEST(CliProgram, TheInstalledBinaryExitsOneOnAMissingFile) {
  TempDir dir;
  const std::string cmd = std::string(OVARO_BINARY_DIR) + "/src/app/ovaro-cli info " +
                          dir.file("missing.ovi") + " 2>" + dir.file("err.txt") + " >/dev/null";
  const int status = std::system(cmd.c_str());
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_NE(slurp(dir.file("err.txt")).find("Could not read file"), std::string::npos);
}

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
  for (const auto& [what, count] : {std::pair{"criterion in CompareCe", 1},
                                    {"criterion in CompareOlf", 1},
                                    {"CompareCe - major time loop   k = ", 5},  // one per period
                                    {"\n mcResults ", 1}})
    EXPECT_EQ(occurrences(text, what), count) << what;
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
