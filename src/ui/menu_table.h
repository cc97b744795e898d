// The workbench's menu bar as data: every menu, item, label, separator and command id, and the
// keyboard accelerators.
//
// The window builds its menus from this table and the command table dispatches on the same ids,
// so a test can enumerate both and see that every command has its menu item and its handler.
// Labels keep their mnemonics ('&') and accelerator texts ('\t' then the key) as they are shown.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ovaro::ui {

// The command ids. They share one space with the ids of dialog controls and option values.
namespace cmd {
inline constexpr int kExamplesBrowser = 13;  // no menu item
inline constexpr int kNew = 21, kOpen = 22, kImportQlp = 23, kImportVeld = 24, kSave = 25,
                     kSaveAs = 26, kPrint = 27, kClear = 28, kExit = 29;
inline constexpr int kImportSystem = 2800, kImportCriterion = 2808, kImportAdditive = 2816,
                     kImportUncertain = 2824, kImportMeasurement = 2832, kImportHcfr = 2840;
inline constexpr int kExportQlp = 160, kExportVeld = 165;
inline constexpr int kFirstExample = 3600, kLastExample = 3836;
inline constexpr int kUndo = 40, kCut = 41, kCopy = 42, kPaste = 43, kDelete = 44, kSelectAll = 45;
inline constexpr int kSpecName = 51, kSpecDescription = 52, kSpecStochastic = 53, kSpecForms = 54,
                     kSpecRandomSource = 55, kSpecMonteCarlo = 57;
inline constexpr int kDataSize = 65, kDataAcronyms = 70, kDataSystem = 71, kDataCriterion = 75,
                     kDataAdditive = 76, kDataUncertain = 77, kDataMeasurement = 78, kDataHcfr = 79,
                     kDataPolicy = 80;
inline constexpr int kSolveQlp = 133, kSolveQlpPrint = 134, kSolveOlf = 135, kSolveOlfPrint = 136,
                     kCompare = 137, kComparePrint = 138;
inline constexpr int kUpdatingHeading = 205, kUpdDeterministic = 140, kUpdStochWo = 141,
                     kUpdStochWith = 142, kUpdMeasError = 143;
inline constexpr int kUpdPrintHeading = 210, kUpdPrintDeterministic = 145, kUpdPrintStochWo = 146,
                     kUpdPrintStochWith = 147, kUpdPrintMeasError = 148;
inline constexpr int kPlotSingle = 150, kPlotScenarios = 154, kDisplay = 156, kResultsPrint = 158;
// The spread over the runs of a comparison and its criterion summary.
inline constexpr int kPlotSpread = 4100, kCriterionSummary = 4104;
inline constexpr int kTransFormHeading = 224, kTransStochHeading = 225, kTransSizeHeading = 226;
inline constexpr int kPrefResults = 167, kPrefImportColumns = 2900, kPrefScenarioQuestion = 2916,
                     kPrefDebugImported = 2908, kPrefWarnings = 168, kPrefCaution = 169,
                     kPrefSeed = 2912;
inline constexpr int kPrefThreads = 4108;  // threads for the Monte Carlo runs
inline constexpr int kFont = 170, kHelp = 180, kAbout = 190;
}  // namespace cmd

enum class MenuKind {
  Menu,     // a top-level menu or a cascade; `children` holds its items
  Command,  // an item that sends its command id
  Heading,  // an item that carries an id but does nothing when chosen
  Separator,
};

struct MenuNode {
  MenuKind kind = MenuKind::Command;
  int id = 0;            // command id (0 for menus and separators)
  std::string label;     // as shown, with '&' mnemonics and "\t" accelerator texts
  bool checked = false;  // a check mark at start (the preference toggles)
  bool checkable = false;
  std::vector<MenuNode> children;
};

// The menu bar: File, Edit, Specification, Data, Solve, Results, Transformations, Preferences,
// Character, Help. File's Examples cascade lists every example of the library under each of its
// five groupings, so an example's id stands under several paths.
const std::vector<MenuNode>& mainMenu();

// Every distinct command id that some menu item sends (headings included), in menu order.
std::vector<int> menuCommandIds();

// The label of the first menu item with this id; empty when no item has it.
std::string menuLabel(int id);

// Every command id the workbench handles: the menu's ids plus the one without a menu item (the
// examples browser).
std::vector<int> allCommandIds();

struct Accelerator {
  std::string_view key;  // in the portable text form of a key sequence, e.g. "Ctrl+Z"
  int id;
};

// The accelerator table.
std::span<const Accelerator> acceleratorTable();

}  // namespace ovaro::ui
