// ovaro-cli plot: the scaling of a path and the bands over the runs of a comparison.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "support/run_cli.h"

namespace ovaro {
namespace {

using nlohmann::json;
using testing::example;
using testing::runCli;

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

}  // namespace
}  // namespace ovaro
