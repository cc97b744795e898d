#include "app/cli.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <nlohmann/json.hpp>
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

TEST(CliInfo, JsonDescribesTheModelWithTheDocumentedKeys) {
  const auto r = runCli({"info", example("infl2.ovi"), "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(r.err, "");
  const json j = json::parse(r.out);
  const std::vector<std::pair<std::string, std::vector<const char*>>> keys = {
      {"", {"version", "acronym", "name", "dims", "flags", "labels", "matrices", "description"}},
      {"dims",
       {"n", "m", "l", "initialPeriod", "terminalPeriod", "nt", "maxLead", "iterlim", "tolerance",
        "np", "nmc", "ny"}},
      {"flags",
       {"stochTerms", "criterionForm", "systemForm", "forwardVars", "policyToParam", "zForm",
        "wForm", "lambdaForm", "xdesForm", "udesForm", "randomSource"}}};
  for (const auto& [parent, names] : keys)
    for (const char* key : names)
      EXPECT_TRUE((parent.empty() ? j : j[parent]).contains(key)) << parent << "." << key;
  // The values are the model's as the reader sees it.
  Model model;
  RecordingPrompter quiet;
  ASSERT_EQ(readModelFile(example("infl2.ovi"), model, quiet), 1);
  EXPECT_EQ(j["acronym"], model.acronym);
  EXPECT_EQ(j["dims"]["nt"], model.dims.nt.value);
  EXPECT_EQ(j["dims"]["tolerance"], model.dims.tolerance);
  EXPECT_EQ(j["flags"]["xdesForm"], model.flags.xdesForm);
  EXPECT_EQ(j["labels"]["states"][1]["acronym"], model.states.acronyms[1]);
  EXPECT_EQ(j["labels"]["periods"].size(), 8u);
  const TextMatrix& a = *model.matrix(MatrixId::A);
  EXPECT_EQ(j["matrices"]["A"], json::array({json::array({a.cell(0, 0), a.cell(0, 1)}),
                                             json::array({a.cell(1, 0), a.cell(1, 1)})}));
  EXPECT_EQ(j["matrices"]["XDEST"][0][7], model.matrix(MatrixId::XDEST)->cell(0, 7));
  EXPECT_FALSE(j["matrices"].contains("XDES"));  // not held under the time-varying form
  EXPECT_EQ(j["messages"], json::array());

  // The reader's messages come with the JSON and on stderr: a version 316 file asks to upgrade.
  const auto old = runCli({"info", testing::dataPath("track1_v316.ovi"), "--json"});
  ASSERT_EQ(old.code, 0);
  EXPECT_EQ(json::parse(old.out)["messages"],
            json::parse(R"([{"caption": "Warning: Input File Version Out of Date",
              "text": "Please upgrade: Do File:Save, then exit and restart Ovaro."}])"));
  EXPECT_NE(old.err.find("Please upgrade"), std::string::npos);
}

TEST(CliInfo, TextReportShowsNameSizesLabelsAndMatrices) {
  const auto r = runCli({"info", example("learn1.ovi")});
  ASSERT_EQ(r.code, 0) << r.err;
  for (const char* line : {"LEARN1 - Uncertain policy multiplier", "np = 1 uncertain parameters",
                           "Stochastic with Parameter Uncertainty (1724)",
                           "BMULT     Spending multiplier", "  ITHN (1 x 3)\n    1 1 1\n"})
    EXPECT_NE(r.out.find(line), std::string::npos) << line << "\n" << r.out;
  EXPECT_EQ(r.out.find('\r'), std::string::npos);
}

// The examples were written by an independent script in the current layout, so the writer must
// reproduce them exactly; a script of steps and its undoing gives every example back, and the
// messages are the workbench's.
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
    const std::string n = std::to_string(model.dims.n.value);
    const std::string m = std::to_string(model.dims.m.value);
    const std::string n1 = std::to_string(model.dims.n.value + 1);
    const std::string m1 = std::to_string(model.dims.m.value + 1);
    const std::string grown = dir.file(std::string("grown-") + name), back = dir.file(name);
    auto r = runCli({"transform", example(name), grown, "add-state", "add-control", "88",
                     "set:X0(" + n1 + ",1)=7.5", "--json"});
    ASSERT_EQ(r.code, 0) << r.err;
    const json j = json::parse(r.out);
    EXPECT_TRUE(j["ok"].get<bool>());
    EXPECT_EQ(j["messages"][0]["text"], "Completed Addition of State Variables");
    r = runCli(
        {"transform", grown, back, "w-constant", "size:m=" + m + ";n=" + n + "@" + n1 + "," + m1});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(slurp(back), slurp(example(name)));
  }
}

// Every refusal of the batch tool: bad usage exits 2, a command that cannot be carried out exits
// 1; each says why on stderr and leaves no file behind. "@name" stands for an example, "%name"
// for a file in a fresh directory.
TEST(CliRefusals, ExitCodeMessageAndNoFileWritten) {
  struct Refusal {
    std::vector<std::string> args;
    int code;
    std::string err;
  };
  const std::vector<std::string> plot = {"plot", "@learn1.ovi", "--method"};
  const Refusal refusals[] = {
      {{}, 2, ""},
      {{"frobnicate"}, 2, ""},
      {{"info"}, 2, ""},
      {{"info", "@track1.ovi", "--bogus"}, 2, ""},
      {{"info", "%nowhere.ovi"}, 1, "Could not read file %nowhere.ovi!"},
      {{"info", "@../README.md"}, 1, "Could not read file "},  // not a model file: no advice
      {{"convert", "%none.ovi", "%out.ovi"}, 1, "Could not read file"},
      {{"convert", "@track1.ovi", "%no/such/dir/out.ovi"},
       1,
       "Could not write file %no/such/dir/out.ovi"},
      {{"solve", "@track1.ovi", "--method", "olf"},
       1,
       "Warning!!: Warning: Need stochastic terms specification"},
      {{"solve", "@track1.ovi", "--method", "lqg"}, 2, ""},
      {{"solve", "@track1.ovi", "--format", "771"}, 2, ""},
      {{"solve", "@track1.ovi", "--trace", "all"}, 2, ""},  // no --debug
      {{"solve", "@track1.ovi", "--debug", "%x.dbg", "--trace", "qlp.k-and-p,no.such"},
       2,
       "qlp.g-and-g"},  // lists the known switches
      {{"solve", "@learn1.ovi", "--method", "olf", "--caution", "1,1,0.1"},
       2,
       "ovaro-cli: --caution takes ROW,COL,VALUE,PERIOD, for example 1,1,0.09,1\n"},
      {{"solve", "@track1.ovi", "--caution", "1,1,0.1,1"}, 2, ""},
      {{"solve", "@learn1.ovi", "--method", "olf", "--caution", "1,1,x,1"}, 2, ""},
      {{"compare", "@track1.ovi", "--methods", "ce"}, 1, "Need complexity of stochastic"},
      {{"compare", "@learn1.ovi", "--methods", "ce,lqg"}, 2, ""},
      {{"compare", "@learn1.ovi"}, 2, ""},  // --methods is required
      {{"updating", "@track1.ovi", "--methods", "hcfr"}, 1, ""},
      {{"updating", "@learn1.ovi", "--methods", "cewo"}, 2, ""},
      {{"plot", "@learn1.ovi", "--method", "hcfr,cewo", "--kind", "states", "--variable", "1",
        "--path", "opt"},
       2,
       "ovaro-cli: "},
      {{"plot", "@learn1.ovi", "--method", "qlp", "--kind", "parameters", "--variable", "1",
        "--path", "opt"},
       2,
       "ovaro-cli: "},
      {{"plot", "@learn1.ovi", "--method", "qlp", "--kind", "states", "--variable", "9", "--path",
        "opt"},
       2,
       "ovaro-cli: "},
      {{"plot", "@learn1.ovi", "--method", "qlp", "--kind", "states", "--variable", "1", "--bands"},
       2,
       "ovaro-cli: "},
      {{"transform", "@track1.ovi", "%x.ovi", "set:Q(1,1)=1"}, 2, ""},
      {{"export", "@track1.ovi", "%t.pc", "--format", "veldpc"},
       1,
       "Exogenous Variable Specification Not As Reguired for VELDPC."},
  };
  for (const Refusal& r : refusals) {
    TempDir dir;
    auto expand = [&](std::string s) {
      if (s.starts_with('@')) return example(s.c_str() + 1);
      for (std::size_t at = s.find('%'); at != std::string::npos; at = s.find('%'))
        s.replace(at, 1, dir.path().string() + "/");
      return s;
    };
    std::vector<std::string> args;
    std::string line;
    for (const std::string& a : r.args) args.push_back(expand(a)), line += a + " ";
    SCOPED_TRACE(line);
    const auto result = runCli(args);
    EXPECT_EQ(result.code, r.code);
    EXPECT_NE(result.err, "");
    EXPECT_NE(result.err.find(expand(r.err)), std::string::npos) << result.err;
    if (r.code == 1) {
      EXPECT_EQ(result.out, "");
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
  }
  const auto help = runCli({"--help"});
  EXPECT_EQ(help.code, 0);
  for (const char* command : {"info", "convert", "solve", "compare", "plot", "transform"})
    EXPECT_NE(help.out.find(command), std::string::npos) << command;
  EXPECT_NE(runCli({"info", "--help"}).out.find("--json"), std::string::npos);
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

}  // namespace
}  // namespace ovaro
