// The scenario store: solutions kept side by side for the scenario plot.
//
// When the user asks for it ("Ask scenario question after solution?"), each QLP or OLF solve and
// each comparison adds its solution to the store as the next scenario, named by the user with an
// acronym (at most 8 characters) and a description (at most 47). The store grows one scenario at
// a time and keeps every earlier one: per variable, the states over periods 0..T, the controls
// over 0..T-1, and the desired states and controls, each as variable x period x scenario with
// scenarios counted from 1. A comparison stores the last run of its first compared method (the
// method the results table shows first).
//
// The scenario plot then shows one state or control across up to five stored scenarios, chosen
// as "First" .. "Fifth". Its series:
//   Optimum          each chosen scenario's path, under the scenario's acronym;
//   Opt and Desired  the same followed by the desired path of the first chosen scenario, drawn
//                    with the heavy dash-dot-dot pen under "Des";
//   Difference       each scenario's path minus its own desired path;
//   MultI Desired    each scenario's path followed by its own desired path ("<acronym> Des"),
//                    so the series count doubles and at most three scenarios are shown.
// The store keeps no parameter paths: a parameters plot has no series.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "io/debug_file.h"
#include "numeric/arrays.h"
#include "numeric/prompter.h"
#include "results/plot_series.h"
#include "solve/solution.h"

namespace ovaro {

// Variable kinds and path types of the scenario plot dialog.
inline constexpr int kScenarioStates = 2550, kScenarioControls = 2551, kScenarioParameters = 2553;
inline constexpr int kScenarioOptimum = 2500, kScenarioOptAndDesired = 2510,
                     kScenarioDifference = 2530, kScenarioMultiDesired = 2533;
inline constexpr int kMaxChosenScenarios = 5;

inline constexpr const char* kScenarioStoredMessage = "Scenario solution stored for plot";

struct ScenarioStore {
  int count = 0;             // S, the scenarios stored
  int n = 0, m = 0, nt = 0;  // the sizes every scenario shares (nt: the last period T)
  std::vector<std::string> acronyms;
  std::vector<std::string> descriptions;
  std::vector<std::string> methods;  // the method that made each scenario ("QLP", "CE", ...)
  Mat3 xs;                           // n x 0..T x 1..S
  Mat3 us;                           // m x 0..T-1 x 1..S
  Mat3 xsDes;
  Mat3 usDes;
};

struct ScenarioName {
  std::string acronym;
  std::string description;
};

// Adds `solution` as scenario S + 1 under `name` (cut to 8 and 47 characters), keeping the
// scenarios stored before. A solution whose sizes differ from the stored scenarios' starts the
// store afresh, after telling the user so (caption "Scenario"). When `debug` is open the whole
// store is dumped to it afterwards (dumpScenarios). Returns the new scenario count.
int addScenario(ScenarioStore& store, const Solution& solution, const ScenarioName& name,
                DebugFile* debug, Prompter& prompter);

// The store under "ScenarioXs", "ScenarioUs", "ScenarioXsDes", "ScenarioUsDes" (per variable, the
// periods by scenarios) and then, after the heading "Transpose of Scenarios - each state and
// each control", transposed under the same names with "T" appended (per variable, the scenarios
// by periods). 1 when every write succeeded.
int dumpScenarios(const ScenarioStore& store, DebugFile& file);

// The choices of the scenario plot dialog, kept from one plot to the next.
struct ScenarioPlotChoices {
  int variable = -1;  // 0-based; negative: none chosen
  int kind = kScenarioStates;
  int pathType = kScenarioOptimum;
  std::array<int, kMaxChosenScenarios> chosen{};  // "First" .. "Fifth": scenario 1..S, 0 none
  bool deselectAfterPlot = false;
};

// The scenarios the plot shows: the consecutive choices from "First" on that name a stored
// scenario, at most three with "MultI Desired".
std::vector<int> chosenScenarios(const ScenarioStore& store, const ScenarioPlotChoices& choices);

// The series of the scenario plot; none when no variable is chosen, no scenario is chosen, or
// the kind is Parameters.
std::vector<PlotSeries> gatherScenarioSeries(const ScenarioStore& store,
                                             const ScenarioPlotChoices& choices);

}  // namespace ovaro
