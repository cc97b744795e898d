#include "ui/menu_table.h"

#include <algorithm>
#include <map>
#include <set>

#include "model/example_table.h"

namespace ovaro::ui {

namespace {

MenuNode item(int id, std::string label) {
  return MenuNode{MenuKind::Command, id, std::move(label), false, false, {}};
}
MenuNode toggle(int id, std::string label, bool checked) {
  return MenuNode{MenuKind::Command, id, std::move(label), checked, true, {}};
}
MenuNode heading(int id, std::string label) {
  return MenuNode{MenuKind::Heading, id, std::move(label), false, false, {}};
}
MenuNode separator() {
  return MenuNode{MenuKind::Separator, 0, {}, false, false, {}};
}
MenuNode menu(std::string label, std::vector<MenuNode> children) {
  return MenuNode{MenuKind::Menu, 0, std::move(label), false, false, std::move(children)};
}

// One cascade of the Examples menu: the examples grouped by one of their attributes, each group a
// cascade of its own, groups in the order of their first example.
MenuNode exampleCascade(std::string label, std::string_view ExampleEntry::*attribute) {
  std::vector<std::string_view> groups;
  for (const ExampleEntry& e : exampleTable()) {
    if (std::find(groups.begin(), groups.end(), e.*attribute) == groups.end()) {
      groups.push_back(e.*attribute);
    }
  }
  std::vector<MenuNode> groupMenus;
  for (std::string_view group : groups) {
    std::vector<MenuNode> entries;
    for (const ExampleEntry& e : exampleTable()) {
      if (e.*attribute == group) entries.push_back(item(e.commandId, std::string(e.description)));
    }
    groupMenus.push_back(menu(std::string(group), std::move(entries)));
  }
  return menu(std::move(label), std::move(groupMenus));
}

std::vector<MenuNode> buildMenu() {
  std::vector<MenuNode> bar;
  bar.push_back(menu(
      "&File",
      {item(cmd::kNew, "&New"), item(cmd::kOpen, "&Open..."), item(cmd::kSave, "&Save"),
       item(cmd::kSaveAs, "Save &As..."), separator(), item(cmd::kImportQlp, "Import: QLP"),
       item(cmd::kImportVeld, "Import: VELD"),
       menu("Import: Matrices",
            {item(cmd::kImportSystem, "System Equations"), item(cmd::kImportCriterion, "Criterion"),
             item(cmd::kImportAdditive, "Additive Noise"),
             item(cmd::kImportUncertain, "Parameter Uncertainty"),
             item(cmd::kImportMeasurement, "Measurement Error"),
             item(cmd::kImportHcfr, "Handcrafted Feedback Rule")}),
       item(cmd::kExportQlp, "Export: QLP"), item(cmd::kExportVeld, "Export: VELD"), separator(),
       menu("Examples", {exampleCascade("By Author", &ExampleEntry::author),
                         exampleCascade("By Country", &ExampleEntry::country),
                         exampleCascade("By Functional Form", &ExampleEntry::functionalForm),
                         exampleCascade("By Stochastic Terms", &ExampleEntry::stochasticTerms),
                         exampleCascade("By Subject", &ExampleEntry::subject)}),
       separator(), item(cmd::kPrint, "&Print..."), item(cmd::kClear, "Clear"), separator(),
       item(cmd::kExit, "E&xit")}));
  bar.push_back(menu(
      "&Edit",
      {item(cmd::kUndo, "&Undo\tCtrl+Z"), separator(), item(cmd::kCut, "Cu&t\tCtrl+X"),
       item(cmd::kCopy, "&Copy\tCtrl+C"), item(cmd::kPaste, "&Paste\tCtrl+V"),
       item(cmd::kDelete, "De&lete\tDel"), separator(), item(cmd::kSelectAll, "&Select All")}));
  bar.push_back(menu(
      "S&pecification",
      {item(cmd::kSpecName, "Name"), item(cmd::kSpecDescription, "Description"),
       item(cmd::kSpecStochastic, "Stochastic Terms"), item(cmd::kSpecForms, "Functional Forms"),
       item(cmd::kSpecRandomSource, "Source of Random Terms"),
       item(cmd::kSpecMonteCarlo, "Options: Monte Carlo")}));
  bar.push_back(menu("&Data", {item(cmd::kDataSize, "&Size"), item(cmd::kDataAcronyms, "&Acronyms"),
                               separator(), item(cmd::kDataSystem, "System &Equations"),
                               item(cmd::kDataCriterion, "&Criterion Function"),
                               item(cmd::kDataAdditive, "Additive Noise Terms"),
                               item(cmd::kDataUncertain, "Parameter Uncertainty"),
                               item(cmd::kDataMeasurement, "Measurement Error Terms"),
                               item(cmd::kDataHcfr, "&Handcrafted Feedback Rule"),
                               item(cmd::kDataPolicy, "Policy to Parameter Effect")}));
  bar.push_back(menu("&Solve", {item(cmd::kSolveQlp, "&QLP"),
                                item(cmd::kSolveQlpPrint, "Q&LP: Print"),
                                separator(),
                                item(cmd::kSolveOlf, "&OLF  (w/o update)"),
                                item(cmd::kSolveOlfPrint, "OLF  (w/o update):  Print"),
                                separator(),
                                item(cmd::kCompare, "&Compare"),
                                item(cmd::kComparePrint, "Co&mpare: Print"),
                                separator(),
                                heading(cmd::kUpdatingHeading, "Parameter Updating"),
                                item(cmd::kUpdDeterministic, "   Deterministic"),
                                item(cmd::kUpdStochWo, "   Stochastic w/o Updating"),
                                item(cmd::kUpdStochWith, "   Stochastic with Updating"),
                                item(cmd::kUpdMeasError, "   Stochastic with Meas Error"),
                                separator(),
                                heading(cmd::kUpdPrintHeading, "Parameter Updating w Debug Print"),
                                item(cmd::kUpdPrintDeterministic, "   Deterministic"),
                                item(cmd::kUpdPrintStochWo, "   Stochastic w/o Updating"),
                                item(cmd::kUpdPrintStochWith, "   Stochastic with Updating"),
                                item(cmd::kUpdPrintMeasError, "   Stochastic with Meas Error")}));
  bar.push_back(menu(
      "&Results",
      {item(cmd::kPlotSingle, "Plot: Single Run"), item(cmd::kPlotScenarios, "Plot: Scenarios"),
       item(cmd::kPlotSpread, "Plot: Spread over Runs"),
       item(cmd::kCriterionSummary, "Criterion Summary"), separator(),
       item(cmd::kDisplay, "Display"), item(cmd::kResultsPrint, "Print")}));
  bar.push_back(menu("&Transformations", {heading(cmd::kTransFormHeading, "Functional Form"),
                                          item(86, "W - Constant to Terminal Different"),
                                          item(88, "W - Constant to Time Varying"),
                                          item(90, "W - Time Varying to Constant"),
                                          item(92, "Lambda - Constant to Time Varying"),
                                          item(94, "Lambda - Time Varying to Constant"),
                                          item(96, "X Desired  - Constant to Time Varying"),
                                          item(98, "U Desired - Constant to Time Varying"),
                                          item(81, "Z - Constant toTime Varying"),
                                          separator(),
                                          heading(cmd::kTransStochHeading, "Stochastic Terms"),
                                          item(100, "Deterministic to Stoch w Additive Noise"),
                                          item(102, "Deterministic to Stoch w Para Uncer"),
                                          item(103, "Stoch w Additive Noise to Stoch w Para Uncer"),
                                          item(104, "Stoch w Para Uncer to Stoch w Meas Error"),
                                          item(106, "Stoch w Meas Error to Deterministic"),
                                          separator(),
                                          heading(cmd::kTransSizeHeading, "Size"),
                                          item(108, "Add a State Variable"),
                                          item(112, "Add a Control Variable"),
                                          item(114, "Add an Exogenous Variable"),
                                          item(115, "Add an Observation Variable"),
                                          item(116, "Add an Uncertain Parameter"),
                                          item(121, "Delete a State Variable"),
                                          item(118, "Delete a Control Variable"),
                                          item(119, "Delete an Exogenous Variable"),
                                          item(120, "Delete an Observation Variable"),
                                          item(122, "Delete an Uncertain Parameter"),
                                          item(123, "Change Terminal Period")}));
  bar.push_back(
      menu("&Preferences",
           {item(cmd::kPrefResults, "&Results.."),
            item(cmd::kPrefImportColumns, "Import Matrix Columns"), separator(),
            toggle(cmd::kPrefScenarioQuestion, "Ask scenario question after solution?", false),
            toggle(cmd::kPrefDebugImported, "Debug Print for Imported Matrices", true),
            toggle(cmd::kPrefWarnings, "Warning Messages", true), separator(),
            item(cmd::kPrefCaution, "Caution Experiment ..."),
            item(cmd::kPrefSeed, "Seed for Monte Carlo Generator"),
            item(cmd::kPrefThreads, "Threads for Monte Carlo runs...")}));
  bar.push_back(menu("&Character", {item(cmd::kFont, "&Font...")}));
  bar.push_back(menu("&Help", {item(cmd::kHelp, "&Help"), item(cmd::kAbout, "&About Ovaro..")}));
  return bar;
}

void collect(const std::vector<MenuNode>& nodes, std::vector<int>& ids, std::set<int>& seen) {
  for (const MenuNode& n : nodes) {
    if ((n.kind == MenuKind::Command || n.kind == MenuKind::Heading) && seen.insert(n.id).second) {
      ids.push_back(n.id);
    }
    collect(n.children, ids, seen);
  }
}

const MenuNode* findItem(const std::vector<MenuNode>& nodes, int id) {
  for (const MenuNode& n : nodes) {
    if ((n.kind == MenuKind::Command || n.kind == MenuKind::Heading) && n.id == id) return &n;
    if (const MenuNode* found = findItem(n.children, id)) return found;
  }
  return nullptr;
}

constexpr Accelerator kAccelerators[] = {
    {"Ctrl+Z", cmd::kUndo},   {"Alt+Backspace", cmd::kUndo}, {"Ctrl+X", cmd::kCut},
    {"Shift+Del", cmd::kCut}, {"Ctrl+C", cmd::kCopy},        {"Ctrl+Ins", cmd::kCopy},
    {"Ctrl+V", cmd::kPaste},  {"Shift+Ins", cmd::kPaste},    {"Del", cmd::kDelete},
    {"F1", cmd::kHelp},
};

}  // namespace

const std::vector<MenuNode>& mainMenu() {
  static const std::vector<MenuNode> bar = buildMenu();
  return bar;
}

std::vector<int> menuCommandIds() {
  std::vector<int> ids;
  std::set<int> seen;
  collect(mainMenu(), ids, seen);
  return ids;
}

std::string menuLabel(int id) {
  const MenuNode* n = findItem(mainMenu(), id);
  return n != nullptr ? n->label : std::string();
}

std::vector<int> allCommandIds() {
  std::vector<int> ids = menuCommandIds();
  ids.push_back(cmd::kExamplesBrowser);
  return ids;
}

std::span<const Accelerator> acceleratorTable() {
  return kAccelerators;
}

}  // namespace ovaro::ui
