#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "model/model_file.h"
#include "support/model_fixtures.h"
#include "support/run_cli.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

using nlohmann::json;
using testing::example;
using testing::runCli;

class CliExchange : public ::testing::TestWithParam<std::tuple<const char*, const char*>> {};

// The solve of the imported export is the solve of the model itself.
TEST_P(CliExchange, ExportAndImportKeepTheSolveResults) {
  const auto [name, format] = GetParam();
  testing::TempDir dir;
  const std::string exported = dir.file("m.x"), back = dir.file("back.ovi");
  ASSERT_EQ(runCli({"export", example(name), exported, "--format", format}).code, 0);
  const auto imported = runCli(
      {"import", exported, back, "--format", format, "--json", "--debug", dir.file("import.dbg")});
  ASSERT_EQ(imported.code, 0) << imported.err;
  EXPECT_TRUE(json::parse(imported.out)["ok"].get<bool>());
  for (const char* method : {"qlp", "olf"}) {
    const auto original = runCli({"solve", example(name), "--method", method, "--json"});
    const auto again = runCli({"solve", back, "--method", method, "--json"});
    EXPECT_EQ(again.code, original.code);
    EXPECT_EQ(again.out, original.out) << method;
  }
}

INSTANTIATE_TEST_SUITE_P(Examples, CliExchange,
                         ::testing::Combine(::testing::Values("track1.ovi", "infl2.ovi",
                                                              "learn1.ovi"),
                                            ::testing::Values("qlp", "veld")));

TEST(CliImportMatrix, FillsTheCellsInColumnBlocksAndRefusesALongToken) {
  testing::TempDir dir;
  const std::string model = dir.file("m.ovi"), out = dir.file("out.ovi"), dma = dir.file("x.dma");
  RecordingPrompter prompter;
  testing::ModelShape shape;
  shape.flags.xdesForm = opt::kXdesTimeVarying;
  ASSERT_EQ(writeModelFile(model, testing::makeModel(shape), prompter), 1);
  // XDEST is 2 x 4: blocks of 3 columns and of 1.
  testing::spit(dma, "11 12 13\n21 22 23\n14\n24\n");
  const auto r = runCli({"import-matrix", model, out, "--matrix", "XDEST", "--file", dma,
                         "--columns", "3", "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(json::parse(r.out)["cells"],
            json::parse(R"([["11","12","13","14"],["21","22","23","24"]])"));

  testing::spit(dma, "1 2 3 1234567890123456 5 6 7 8");
  const auto refused =
      runCli({"import-matrix", model, dir.file("no.ovi"), "--matrix", "XDEST", "--file", dma});
  EXPECT_EQ(refused.code, 1);
  EXPECT_NE(refused.err.find("\"1234567890123456\""), std::string::npos) << refused.err;
  EXPECT_FALSE(std::filesystem::exists(dir.file("no.ovi")));
}

}  // namespace
}  // namespace ovaro
