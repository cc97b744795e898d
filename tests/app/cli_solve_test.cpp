// The batch tool's solve command: the table, the JSON object, the debug file and the refusals.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "io/number_format.h"
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

TEST(CliSolve, DebugFileHoldsTheHeadingAndOnlyTheTracedDumps) {
  testing::TempDir dir;
  const std::string plain = dir.file("plain.dbg"), traced = dir.file("traced.dbg");
  ASSERT_EQ(runCli({"solve", example("track1.ovi"), "--debug", plain}).code, 0);
  EXPECT_EQ(slurp(plain), "Debug File for QLP ");
  ASSERT_EQ(
      runCli({"solve", example("track1.ovi"), "--debug", traced, "--trace", "qlp.g-and-g"}).code,
      0);
  const std::string text = slurp(traced);
  EXPECT_EQ(text.rfind("Debug File for QLP ", 0), 0u);
  EXPECT_NE(text.find("\n g "), std::string::npos);
  EXPECT_NE(text.find("\n glc "), std::string::npos);
  EXPECT_EQ(text.find("kj"), std::string::npos);
  EXPECT_EQ(text.find("sum in sumc"), std::string::npos);
}

}  // namespace
}  // namespace ovaro
