#include "app/cli.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

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

}  // namespace
}  // namespace ovaro
