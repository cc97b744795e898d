// The batch tool's commands one by one: solve (the table, the JSON object, the debug file), plot,
// export and import, and the example list.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>

#include "app/cli_examples.h"
#include "io/number_format.h"
#include "model/example_table.h"
#include "model/model_file.h"
#include "support/model_fixtures.h"
#include "support/run_cli.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

using nlohmann::json;
using testing::example;
using testing::runCli;
using testing::slurp;

// infl2 has 2 states and 2 controls over 8 periods; its path starts from the initial inflation,
// and a tracking criterion off target is positive.
TEST(CliSolve, JsonAndTableOfTheSameSolve) {
  const auto r = runCli({"solve", example("infl2.ovi"), "--json"});
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
  EXPECT_GT(j["criterion"].get<double>(), 0.0);
  EXPECT_DOUBLE_EQ(j["states"][0][0].get<double>(), 4.5);
  for (int format : {770, 790}) {
    const auto t =
        runCli({"solve", example("infl2.ovi"), "--format", std::to_string(format), "--desired"});
    ASSERT_EQ(t.code, 0) << t.err;
    std::string value =
        formatNumber(findNumberFormat(format)->format, j["criterion"].get<double>());
    value = value.substr(1, value.size() - 2);
    const std::size_t at = t.out.find("  Criterion QLP =");
    ASSERT_NE(at, std::string::npos) << t.out;
    EXPECT_NE(t.out.substr(at, t.out.find('\n', at) - at).find(value), std::string::npos) << value;
    for (const char* q : {"\nQ1 ", "\nQ5 ", "\n\nQ6 ", "\nQ8 "})  // a blank line after the fifth
      EXPECT_NE(t.out.find(q), std::string::npos) << q;
  }
}

// A refusal as JSON carries the system's message; the OLF solve of uncertain parameters names
// itself OLFwo, and the caution experiment announces itself.
TEST(CliSolve, JsonCarriesTheMessagesAndTheMethod) {
  const auto r = runCli({"solve", example("track1.ovi"), "--method", "olf", "--json"});
  EXPECT_EQ(r.code, 1);
  const json j = json::parse(r.out);
  ASSERT_EQ(j["messages"].size(), 1u);
  EXPECT_EQ(j["messages"][0]["caption"], "Warning!!");
  EXPECT_NE(j["messages"][0]["text"].get<std::string>().find("Solve:QLP solver instead."),
            std::string::npos);
  const auto o = runCli(
      {"solve", example("learn1.ovi"), "--method", "olf", "--caution", "1,1,0.09,1", "--json"});
  ASSERT_EQ(o.code, 0) << o.err;
  const json c = json::parse(o.out);
  EXPECT_EQ(c["method"], "OLFwo");
  EXPECT_EQ(c["messages"][0]["text"], "Caution Experiment Turned On");
}

// The data of a QLP plot, checked against the series it prints: extremes, midpoint, labels and
// every point position worked out here from the values.
TEST(CliPlot, JsonGivesTheScalingLabelsAndPositionsOfItsSeries) {
  const auto r = runCli({"plot", example("track1.ovi"), "--method", "qlp", "--kind", "states",
                         "--variable", "1", "--path", "opt-des", "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  const json j = json::parse(r.out);
  ASSERT_EQ(j["series"].size(), 2u);
  EXPECT_EQ(j["series"][1]["legend"], "Des");
  double lo = HUGE_VAL, hi = -HUGE_VAL;
  for (const auto& s : j["series"])
    for (double v : s["values"]) lo = std::min(lo, v), hi = std::max(hi, v);
  EXPECT_EQ(j["min"], lo);
  EXPECT_EQ(j["max"], hi);
  EXPECT_EQ(j["mid"], (hi + lo) / 2.0);
  // The output gap starts at -2 and ends near 0.3: a midpoint between -1 and -0.001, which
  // takes the factor 1000.
  EXPECT_EQ(j["scale"], 1000);
  EXPECT_EQ(j["axis_label"], "YGAP x 1000.000");
  char label[64];
  std::snprintf(label, sizeof label, "%10.3f", (lo + 0.5 * (hi - lo)) * 1000);
  EXPECT_EQ(j["value_labels"][2], label);
  const int points = j["points"];
  EXPECT_EQ(points, 10);
  for (std::size_t k = 0; k < 2; ++k)
    for (int t = 0; t < points; ++t) {
      const double v = j["series"][k]["values"][t];
      EXPECT_EQ(j["polylines"][k][t], json({static_cast<int>(t * 8000.0 / (points - 1)),
                                            static_cast<int>((v - lo) / (hi - lo) * 8000)}));
    }
  EXPECT_EQ(j["period_labels"].size(), 9u);  // periods 0..P-2
}

TEST(CliPlot, BandsHoldTheMedianBetweenTheirQuantiles) {
  const auto r = runCli({"plot", example("learn1.ovi"), "--method", "ce,olf", "--kind", "controls",
                         "--variable", "1", "--bands", "--runs", "12", "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  const json j = json::parse(r.out);
  EXPECT_EQ(j["runs"], 12);
  ASSERT_EQ(j["bands"].size(), 2u);
  for (const auto& b : j["bands"])
    for (std::size_t t = 0; t < b["median"].size(); ++t) {
      EXPECT_LE(b["q10"][t].get<double>(), b["median"][t].get<double>());
      EXPECT_LE(b["median"][t].get<double>(), b["q90"][t].get<double>());
    }
}

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

TEST(CliExamples, JsonListsFiftyRowsEachUnderEveryCascade) {
  const auto r = runCli({"examples", "--json"});
  ASSERT_EQ(r.code, 0) << r.err;
  const json j = json::parse(r.out);
  ASSERT_EQ(j["examples"].size(), 50u);
  std::set<int> ids;
  for (const json& row : j["examples"]) {
    const int id = row["id"];
    EXPECT_TRUE(ids.insert(id).second) << id;
    const std::filesystem::path file = std::filesystem::path(j["table"].get<std::string>())
                                           .replace_filename(row["file"].get<std::string>());
    EXPECT_TRUE(std::filesystem::exists(file)) << file;
    for (const char* key : {"author", "country", "functional_form", "stochastic_terms", "subject"})
      EXPECT_FALSE(row[key].get<std::string>().empty()) << id << " " << key;
  }
}

TEST(CliExamples, AFaultyTableIsAnErrorNamingItsProblem) {
  const ExampleTable bad = ExampleTable::parse("id\tfile\n", "x.tsv");
  std::ostringstream out, err;
  EXPECT_EQ(cli::listExamples({.json = true}, bad, out, err), 1);
  EXPECT_EQ(json::parse(out.str())["error"], bad.problem());
  EXPECT_EQ(err.str(), "ovaro-cli: " + bad.problem() + "\n");
}

}  // namespace
}  // namespace ovaro
