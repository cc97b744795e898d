#include "results/display_selection.h"

#include <string>

namespace ovaro {

namespace {

constexpr int kIdStep = 4;  // display ids are four apart, solution codes one apart

constexpr std::array<DisplayEntry, 17> kDisplays{{
    {3300, "QLP", 1, {"QLP", "", ""}},
    {3304, "OLF w/o updated coef", 1, {"OLFwo", "", ""}},
    {3308, "HCFR", 1, {"HCFR", "", ""}},
    {3312, "CE", 1, {"CE", "", ""}},
    {3316, "CEWO (CE w/o update)", 1, {"CEWO", "", ""}},
    {3320, "OLF", 1, {"OLF", "", ""}},
    {3324, "OLIN (OLF with insight)", 1, {"OLIN", "", ""}},
    {3328, "HCFR-CE", 2, {"HCFR", "CE", ""}},
    {3332, "CE-CEWO", 2, {"CE", "CEWO", ""}},
    {3336, "CE-OLF", 2, {"CE", "OLF", ""}},
    {3340, "CE-OLIN", 2, {"CE", "OLIN", ""}},
    {3344, "CEWO-OLF", 2, {"CEWO", "OLF", ""}},
    {3348, "CEWO-OLIN", 2, {"CEWO", "OLIN", ""}},
    {3352, "OLF-OLIN", 2, {"OLF", "OLIN", ""}},
    {3356, "HCFR-CE-OLF", 3, {"HCFR", "CE", "OLF"}},
    {3360, "CE-OLF-OLIN", 3, {"CE", "OLF", "OLIN"}},
    {3364, "CEWO-OLF-OLIN", 3, {"CEWO", "OLF", "OLIN"}},
}};

// The Compare methods a display names, as run flags; all false for the two single solves,
// whose methods are not Compare methods.
std::array<bool, 5> compareFlagsOf(const DisplayEntry& entry) {
  std::array<bool, 5> flags{};
  for (int i = 0; i < entry.k; ++i) {
    for (std::size_t c = 0; c < kCompareMethods.size(); ++c) {
      if (entry.labels[static_cast<std::size_t>(i)] == kCompareMethods[c]) flags[c] = true;
    }
  }
  return flags;
}

}  // namespace

std::span<const DisplayEntry> displayTable() {
  return kDisplays;
}

const DisplayEntry* findDisplay(int id) {
  for (const DisplayEntry& e : kDisplays) {
    if (e.id == id) return &e;
  }
  return nullptr;
}

int displayToSolutionCode(int displayId) {
  if (findDisplay(displayId) == nullptr) return 0;
  return kFirstSolutionCode + (displayId - kFirstDisplayId) / kIdStep;
}

int solutionCodeToDisplay(int code) {
  if (code < kFirstSolutionCode || code > kLastSolutionCode) return 0;
  return kFirstDisplayId + (code - kFirstSolutionCode) * kIdStep;
}

DisplayMethods displayMethods(int selector) {
  const DisplayEntry* entry = findDisplay(selector);
  if (entry == nullptr) return {};
  return DisplayMethods{entry->k, entry->labels};
}

void SelectDisplayAfterSolve(ResultsStore& store, Prompter& prompter) {
  int selector = 0;
  if (store.ran.qlp) selector = kDisplayQlp;
  if (store.ran.olfWithoutUpdate) selector = kDisplayOlfWithoutUpdate;

  // Only displays that name Compare methods can match the Compare flags: with no Compare method
  // run, the single solves above stand.
  for (const DisplayEntry& entry : kDisplays) {
    const std::array<bool, 5> named = compareFlagsOf(entry);
    bool any = false;
    for (bool f : named) any = any || f;
    if (any && named == store.ran.compare) {
      selector = entry.id;
      break;
    }
  }

  store.display.selector = selector;
  if (selector == 0) prompter.inform(std::string(kDisplayCombinationWarning), "Warning!");
}

}  // namespace ovaro
