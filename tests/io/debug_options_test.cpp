#include "io/debug_options.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "support/test_data.h"

namespace ovaro {
namespace {

using S = DebugSwitch;
using P = DebugPage;

const P kPages[] = {P::QlpOlf, P::Summary, P::Inputs, P::Intermediates, P::Results, P::MonteCarlo};

// The labels (or with `groups` the group captions, each once) of a page, in table order.
std::vector<std::string> labelsOf(P page, bool groups = false) {
  std::vector<std::string> out;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    const std::string text(groups ? info.group : info.label);
    if (info.page == page && (!groups || out.empty() || out.back() != text)) out.push_back(text);
  }
  return out;
}

std::set<S> page(P p) {
  std::set<S> all;
  for (const DebugSwitchInfo& info : debugSwitchTable())
    if (info.page == p) all.insert(info.id);
  return all;
}

// The boxes in dialog order, page after page, each with its label (tests/data/debug_switches.txt),
// and the single-page dialog's groups after its ungrouped "All".
TEST(DebugOptions, TableHoldsEveryBoxInDialogOrder) {
  const auto table = debugSwitchTable();
  ASSERT_EQ(table.size(), static_cast<std::size_t>(kDebugSwitchCount));
  for (std::size_t i = 0; i < table.size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(table[i].id), i);
    EXPECT_EQ(&debugSwitchInfo(table[i].id), &table[i]);
    EXPECT_LE(table[i ? i - 1 : 0].page, table[i].page);  // pages never interleave
  }
  const char* names[] = {"QlpOlf", "Summary", "Inputs", "Intermediates", "", "MonteCarlo"};
  std::string titles;
  for (int k = 0; k < 6; ++k) {
    titles += std::string(debugPageTitle(kPages[k])) + "|";
    if (kPages[k] == P::Results) continue;  // checked below
    EXPECT_EQ(labelsOf(kPages[k]), testing::dataSection("debug_switches.txt", names[k]));
  }
  EXPECT_EQ(labelsOf(P::Results).front(), "All Results");
  EXPECT_EQ(labelsOf(P::Results).size(), 10u);
  std::vector<std::string> groups = labelsOf(P::QlpOlf, true);
  ASSERT_EQ(groups.front(), "");
  groups.erase(groups.begin());
  EXPECT_EQ(groups, testing::dataSection("debug_switches.txt", "QlpOlf groups"));
  EXPECT_EQ(titles, "Debug Print Options|Summary|Inputs|Intermediates|Results|Monte Carlo|");
}

TEST(DebugOptions, MachineNamesAreUniqueAndFoundAgain) {
  const char* prefix[] = {"qlp.",           "summary.", "inputs.",
                          "intermediates.", "results.", "montecarlo."};
  std::set<std::string> seen;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    const std::string name(info.name);
    EXPECT_TRUE(name.starts_with(prefix[static_cast<int>(info.page)])) << name;
    EXPECT_TRUE(seen.insert(name).second) << "duplicate " << name;
    EXPECT_EQ(findDebugSwitch(name), info.id) << name;
  }
  EXPECT_EQ(findDebugSwitch("intermediates.k-and-p"), S::IntermediatesKAndP);
  for (const char* bad : {"qlp.K-and-p", "k-and-p", ""}) EXPECT_FALSE(findDebugSwitch(bad)) << bad;
}

// An All box turns on exactly its scope (tests/data/debug_switches.txt), which it then covers.
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

TEST(DebugSwitches, AllBoxesTurnOnExactlyTheirScope) {
  EXPECT_EQ(onWith(S::QlpAll), page(P::QlpOlf));
  std::set<S> sheet;
  for (P p : {P::Summary, P::Inputs, P::Intermediates, P::Results, P::MonteCarlo})
    sheet.merge(page(p));
  EXPECT_EQ(onWith(S::SummaryAll), sheet);
  EXPECT_EQ(onWith(S::InputsAll), page(P::Inputs));
  EXPECT_EQ(onWith(S::ResultsAll), page(P::Results));
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
  DebugSwitches switches;
  EXPECT_FALSE(switches.any());
  switches.set(S::InputsAll);
  switches.set(S::QlpGAndG);
  EXPECT_TRUE(switches.on(S::InputsCriterion));
  EXPECT_FALSE(switches.isSet(S::InputsCriterion));
  switches.set(S::InputsAll, false);
  EXPECT_FALSE(switches.on(S::InputsCriterion));
  EXPECT_TRUE(switches.on(S::QlpGAndG));
  switches.clear();
  EXPECT_EQ(switches, DebugSwitches{});
}

}  // namespace
}  // namespace ovaro
