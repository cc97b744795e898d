#include "io/debug_options.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "support/test_data.h"

namespace ovaro {
namespace {

using S = DebugSwitch;

std::vector<std::string> labelsOf(DebugPage page) {
  std::vector<std::string> labels;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    if (info.page == page) labels.emplace_back(info.label);
  }
  return labels;
}

TEST(DebugOptions, TableHoldsEveryBoxInDialogOrder) {
  const auto table = debugSwitchTable();
  ASSERT_EQ(table.size(), static_cast<std::size_t>(kDebugSwitchCount));
  for (int i = 0; i < kDebugSwitchCount; ++i) {
    EXPECT_EQ(static_cast<int>(table[static_cast<std::size_t>(i)].id), i);
    EXPECT_EQ(&debugSwitchInfo(static_cast<DebugSwitch>(i)), &table[static_cast<std::size_t>(i)]);
    if (i > 0) {  // pages follow one another, never interleave
      EXPECT_LE(table[static_cast<std::size_t>(i - 1)].page,
                table[static_cast<std::size_t>(i)].page);
    }
  }

  const std::pair<DebugPage, const char*> pages[] = {{DebugPage::QlpOlf, "QlpOlf"},
                                                     {DebugPage::Summary, "Summary"},
                                                     {DebugPage::Inputs, "Inputs"},
                                                     {DebugPage::Intermediates, "Intermediates"},
                                                     {DebugPage::MonteCarlo, "MonteCarlo"}};
  for (const auto& [p, name] : pages)
    EXPECT_EQ(labelsOf(p), testing::dataSection("debug_switches.txt", name)) << name;
  EXPECT_EQ(labelsOf(DebugPage::Results).front(), "All Results");
  EXPECT_EQ(labelsOf(DebugPage::Results).size(), 10u);

  // The single-page dialog's groups, in order, after its ungrouped "All".
  std::vector<std::string> groups;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    if (info.page == DebugPage::QlpOlf && (groups.empty() || groups.back() != info.group))
      groups.emplace_back(info.group);
  }
  ASSERT_FALSE(groups.empty());
  EXPECT_EQ(groups.front(), "");
  EXPECT_EQ(std::vector<std::string>(groups.begin() + 1, groups.end()),
            testing::dataSection("debug_switches.txt", "QlpOlf groups"));
  EXPECT_EQ(debugSwitchInfo(S::QlpKAndP).group, "Riccati Equations");

  std::string titles;
  for (DebugPage p : {DebugPage::QlpOlf, DebugPage::Summary, DebugPage::Inputs,
                      DebugPage::Intermediates, DebugPage::Results, DebugPage::MonteCarlo})
    titles += std::string(debugPageTitle(p)) + "|";
  EXPECT_EQ(titles, "Debug Print Options|Summary|Inputs|Intermediates|Results|Monte Carlo|");
}

TEST(DebugOptions, MachineNamesAreUniqueAndFoundAgain) {
  const std::map<DebugPage, std::string> prefix = {
      {DebugPage::QlpOlf, "qlp."},      {DebugPage::Summary, "summary."},
      {DebugPage::Inputs, "inputs."},   {DebugPage::Intermediates, "intermediates."},
      {DebugPage::Results, "results."}, {DebugPage::MonteCarlo, "montecarlo."}};
  const std::regex shape("[a-z0-9]+(\\.[a-z0-9]+(-[a-z0-9]+)*)+");
  std::set<std::string> seen;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    const std::string name(info.name);
    SCOPED_TRACE(name);
    EXPECT_TRUE(std::regex_match(name, shape));
    EXPECT_EQ(name.rfind(prefix.at(info.page), 0), 0u);
    EXPECT_TRUE(seen.insert(name).second) << "duplicate";
    ASSERT_TRUE(findDebugSwitch(name).has_value());
    EXPECT_EQ(*findDebugSwitch(name), info.id);
  }
  EXPECT_EQ(findDebugSwitch("qlp.k-and-p"), S::QlpKAndP);
  EXPECT_EQ(findDebugSwitch("inputs.system-equations"), S::InputsSystemEquations);
  EXPECT_EQ(findDebugSwitch("intermediates.k-and-p"), S::IntermediatesKAndP);
  EXPECT_FALSE(findDebugSwitch("qlp.K-and-p").has_value());
  EXPECT_FALSE(findDebugSwitch("k-and-p").has_value());
  EXPECT_FALSE(findDebugSwitch("").has_value());
}

std::set<S> onWith(S box) {
  DebugSwitches switches;
  switches.set(box);
  std::set<S> on;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    if (switches.on(info.id)) on.insert(info.id);
    EXPECT_EQ(covers(box, info.id), info.id != box && switches.on(info.id));
  }
  return on;
}

std::set<S> page(DebugPage p) {
  std::set<S> all;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    if (info.page == p) all.insert(info.id);
  }
  return all;
}

TEST(DebugSwitches, AllBoxesTurnOnExactlyTheirScope) {
  DebugSwitches switches;
  EXPECT_FALSE(switches.any());
  for (const DebugSwitchInfo& info : debugSwitchTable()) EXPECT_FALSE(switches.on(info.id));

  EXPECT_EQ(onWith(S::QlpAll), page(DebugPage::QlpOlf));
  std::set<S> sheet;
  for (DebugPage p : {DebugPage::Summary, DebugPage::Inputs, DebugPage::Intermediates,
                      DebugPage::Results, DebugPage::MonteCarlo}) {
    const std::set<S> one = page(p);
    sheet.insert(one.begin(), one.end());
  }
  EXPECT_EQ(onWith(S::SummaryAll), sheet);
  EXPECT_EQ(onWith(S::InputsAll), page(DebugPage::Inputs));
  EXPECT_EQ(onWith(S::ResultsAll), page(DebugPage::Results));
  for (const char* box :
       {"inputs.all-model", "inputs.all-conversion", "inputs.all-stochastic-elements",
        "intermediates.all-means-and-covariances", "montecarlo.all-sum-of-squared-differences",
        "qlp.k-and-p", "intermediates.k-and-p"}) {
    std::set<S> expected{*findDebugSwitch(box)};
    for (const std::string& name :
         testing::dataSection("debug_switches.txt", "scope " + std::string(box)))
      expected.insert(*findDebugSwitch(name));
    EXPECT_EQ(onWith(*findDebugSwitch(box)), expected) << box;
  }

  // Ticked and on are different questions; unticking the All box turns its scope off again.
  switches.set(S::InputsAll);
  switches.set(S::QlpGAndG);
  EXPECT_TRUE(switches.any());
  EXPECT_TRUE(switches.on(S::InputsCriterion));
  EXPECT_FALSE(switches.isSet(S::InputsCriterion));
  DebugSwitches saved = switches;
  switches.set(S::InputsAll, false);
  EXPECT_FALSE(switches.on(S::InputsCriterion));
  EXPECT_TRUE(switches.on(S::QlpGAndG));
  EXPECT_NE(switches, saved);
  switches.clear();
  EXPECT_FALSE(switches.any());
  EXPECT_FALSE(switches.on(S::QlpGAndG));
  EXPECT_EQ(switches, DebugSwitches{});
}

TEST(DebugPrintSettings, RunRestrictionPicksOneRun) {
  DebugPrintSettings settings;
  EXPECT_FALSE(settings.switches.any());
  EXPECT_TRUE(settings.printsRun(1));
  EXPECT_FALSE(settings.printsRun(2));
  settings.runSelection = DebugRunSelection::RunNumber;
  settings.runNumber = 3;
  for (int run = 1; run <= 4; ++run) EXPECT_EQ(settings.printsRun(run), run == 3) << run;
  EXPECT_EQ(kRunSelectionCaption, "Turn on selected print only in the following runs");
  EXPECT_EQ(kFirstRunLabel, "Only the first run");
  EXPECT_EQ(kRunNumberLabel, "Only run number y");
}

}  // namespace
}  // namespace ovaro
