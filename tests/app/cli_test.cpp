#include "app/cli.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "model/model_file.h"
#include "support/model_fixtures.h"
#include "support/run_cli.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

using nlohmann::json;
using testing::slurp;
using testing::spit;
using testing::TempDir;

using Result = testing::CliResult;
using testing::example;
using testing::runCli;

TEST(CliInfo, JsonDescribesTheModelWithTheDocumentedKeys) {
  const Result r = runCli({"info", example("infl2.ovi"), "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(r.err, "");
  const json j = json::parse(r.out);
  for (const char* key : {"version", "acronym", "name", "dims", "flags", "labels", "matrices",
                          "description", "messages"})
    EXPECT_TRUE(j.contains(key)) << key;
  for (const char* key : {"n", "m", "l", "initialPeriod", "terminalPeriod", "nt", "maxLead",
                          "iterlim", "tolerance", "np", "nmc", "ny"})
    EXPECT_TRUE(j["dims"].contains(key)) << key;
  for (const char* key :
       {"stochTerms", "criterionForm", "systemForm", "forwardVars", "policyToParam", "zForm",
        "wForm", "lambdaForm", "xdesForm", "udesForm", "randomSource"})
    EXPECT_TRUE(j["flags"].contains(key)) << key;
  EXPECT_EQ(j["version"], 321);
  EXPECT_EQ(j["acronym"], "INFL2");
  EXPECT_EQ(j["dims"]["n"], 2);
  EXPECT_EQ(j["dims"]["nt"], 8);
  EXPECT_EQ(j["dims"]["tolerance"], 1.0e-6);
  EXPECT_EQ(j["flags"]["wForm"], 413);
  EXPECT_EQ(j["flags"]["xdesForm"], 418);
  EXPECT_EQ(j["labels"]["states"][1]["acronym"], "YGAP");
  EXPECT_EQ(j["labels"]["periods"].size(), 8u);
  EXPECT_EQ(j["matrices"]["A"], json::parse(R"([["0.7","0.3"],["-0.1","0.8"]])"));
  EXPECT_EQ(j["matrices"]["XDEST"][0][7], "2.0");
  EXPECT_EQ(j["matrices"]["UDEST"][0].size(), 7u);
  EXPECT_FALSE(j["matrices"].contains("XDES"));  // not held under the time-varying form
  EXPECT_EQ(j["messages"], json::array());
}

TEST(CliInfo, TextReportShowsNameSizesLabelsAndMatrices) {
  const Result r = runCli({"info", example("learn1.ovi")});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_NE(r.out.find("LEARN1 - Uncertain policy multiplier"), std::string::npos);
  EXPECT_NE(r.out.find("np = 1 uncertain parameters"), std::string::npos);
  EXPECT_NE(r.out.find("Stochastic with Parameter Uncertainty (1724)"), std::string::npos);
  EXPECT_NE(r.out.find("BMULT     Spending multiplier"), std::string::npos);
  EXPECT_NE(r.out.find("  ITHN (1 x 3)\n    1 1 1\n"), std::string::npos) << r.out;
  EXPECT_EQ(r.out.find('\r'), std::string::npos);
}

TEST(CliInfo, MessagesOfTheReadComeWithTheJson) {
  TempDir dir;
  // track1 as a version 316 file: without the tolerance, the policy-to-parameter word, the
  // "Certain But Different From Mean" switch and the handcrafted rule G, g. The reader asks to
  // upgrade it.
  std::vector<std::string> f;
  std::string field;
  for (char c : slurp(example("track1.ovi"))) {
    if (c == '~') {
      f.push_back(field);
      field.clear();
    } else {
      field.push_back(c);
    }
  }
  f[0] = "316";
  f.erase(f.end() - 3, f.end() - 1);  // G and g, before the description
  for (std::size_t i : {32, 17, 10}) f.erase(f.begin() + static_cast<std::ptrdiff_t>(i));
  std::string text;
  for (const auto& x : f) text += x + "~";
  const std::string path = dir.file("old.ovi");
  spit(path, text);
  const Result r = runCli({"info", path, "--json"});
  ASSERT_EQ(r.code, 0);
  const json j = json::parse(r.out);
  ASSERT_EQ(j["messages"].size(), 1u);
  EXPECT_EQ(j["messages"][0]["caption"], "Warning: Input File Version Out of Date");
  EXPECT_EQ(j["messages"][0]["text"], "Please upgrade: Do File:Save, then exit and restart Ovaro.");
  EXPECT_NE(r.err.find("Please upgrade"), std::string::npos);  // also on stderr
}

TEST(CliInfo, MissingFileFailsWithTheSystemsMessage) {
  TempDir dir;
  const std::string path = dir.file("nowhere.ovi");
  const Result r = runCli({"info", path});
  EXPECT_EQ(r.code, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_NE(r.err.find("Could not read file " + path + "!"), std::string::npos) << r.err;

  const Result j = runCli({"info", path, "--json"});
  EXPECT_EQ(j.code, 1);
  EXPECT_EQ(json::parse(j.out)["error"], "Could not read file " + path + "!");

  spit(dir.file("notes.md"), "# Notes\n");  // not a model file: the same failure, no advice
  const Result md = runCli({"info", dir.file("notes.md")});
  EXPECT_EQ(md.code, 1);
  EXPECT_EQ(md.err, "Ovaro: Could not read file " + dir.file("notes.md") + "!\n");
}

TEST(CliConvert, RewritesAnExampleByteForByte) {
  // The examples were written by an independent script in the current layout, so the writer must
  // reproduce them exactly.
  TempDir dir;
  for (const char* name : {"track1.ovi", "infl2.ovi", "learn1.ovi"}) {
    const std::string out = dir.file(name);
    const Result r = runCli({"convert", example(name), out});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(slurp(out), slurp(example(name))) << name;
  }
}

// A script of steps: every example survives a reshaping and its undoing byte for byte, the
// messages are the workbench's, and a step that cannot be understood writes nothing.
TEST(CliTransform, StepsAndTheirUndoingGiveTheModelBack) {
  TempDir dir;
  for (const char* name : {"track1.ovi", "infl2.ovi", "learn1.ovi"}) {
    Model model;
    RecordingPrompter quiet;
    ASSERT_EQ(readModelFile(example(name), model, quiet), 1);
    const std::string n1 = std::to_string(model.dims.n.value + 1);
    const std::string m1 = std::to_string(model.dims.m.value + 1);
    const std::string grown = dir.file(std::string("grown-") + name);
    const std::string back = dir.file(name);
    Result r = runCli({"transform", example(name), grown, "add-state", "add-control", "88",
                       "set:X0(" + n1 + ",1)=7.5", "--json"});
    ASSERT_EQ(r.code, 0) << r.err;
    const auto j = nlohmann::json::parse(r.out);
    EXPECT_TRUE(j["ok"].get<bool>());
    EXPECT_EQ(j["messages"][0]["text"], "Completed Addition of State Variables");
    r = runCli({"transform", grown, back, "w-constant",
                "size:m=" + std::to_string(model.dims.m.value) +
                    ";n=" + std::to_string(model.dims.n.value) + "@" + n1 + "," + m1});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(slurp(back), slurp(example(name))) << name;
  }
  const Result bad =
      runCli({"transform", example("track1.ovi"), dir.file("x.ovi"), "set:Q(1,1)=1"});
  EXPECT_EQ(bad.code, 2);
  EXPECT_FALSE(std::filesystem::exists(dir.file("x.ovi")));
}

TEST(CliConvert, ReportsReadAndWriteFailures) {
  TempDir dir;
  const Result missing = runCli({"convert", dir.file("none.ovi"), dir.file("out.ovi")});
  EXPECT_EQ(missing.code, 1);
  EXPECT_NE(missing.err.find("Could not read file"), std::string::npos);

  const Result unwritable =
      runCli({"convert", example("track1.ovi"), dir.file("no/such/dir/out.ovi")});
  EXPECT_EQ(unwritable.code, 1);
  EXPECT_NE(unwritable.err.find("Could not write file " + dir.file("no/such/dir/out.ovi")),
            std::string::npos)
      << unwritable.err;
}

TEST(CliUsage, BadUsageExitsTwoAndHelpExitsZero) {
  EXPECT_EQ(runCli({}).code, 2);
  EXPECT_EQ(runCli({"frobnicate"}).code, 2);
  EXPECT_EQ(runCli({"info"}).code, 2);
  EXPECT_EQ(runCli({"info", example("track1.ovi"), "--bogus"}).code, 2);
  const Result help = runCli({"--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_NE(help.out.find("info"), std::string::npos);
  EXPECT_NE(help.out.find("convert"), std::string::npos);
  const Result infoHelp = runCli({"info", "--help"});
  EXPECT_EQ(infoHelp.code, 0);
  EXPECT_NE(infoHelp.out.find("--json"), std::string::npos);
}

TEST(CliProgram, TheInstalledBinaryExitsOneOnAMissingFile) {
  TempDir dir;
  const std::string cmd = std::string(OVARO_BINARY_DIR) + "/src/app/ovaro-cli info " +
                          dir.file("missing.ovi") + " 2>" + dir.file("err.txt") + " >/dev/null";
  const int status = std::system(cmd.c_str());
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_NE(slurp(dir.file("err.txt")).find("Could not read file"), std::string::npos);
}

}  // namespace
}  // namespace ovaro
