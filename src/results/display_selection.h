// Which results table is shown: the display table and the choice made after each solve.
//
// A display names one solution or a combination of two or three Monte Carlo methods shown side
// by side. Its id is the radio button of the Display Options dialog (3300, 3304, ..., 3364, in
// steps of four); the same choice is also coded as a solution code 2160 + its position in the
// table (2160 QLP, 2161 OLF without updating, ..., 2176), the coding of the solve method
// selector and of the plot dialogs, and the two are converted into each other where needed.
//
// After a solve the display follows what ran: a single QLP or OLF solve shows itself, a
// comparison shows the display whose methods are exactly the ones compared. Combinations
// without a display of their own (HCFR with CEWO, four or five methods) are not shown together;
// the user is told to pick them one by one.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "numeric/prompter.h"
#include "results/results_store.h"

namespace ovaro {

inline constexpr int kDisplayQlp = 3300;
inline constexpr int kDisplayOlfWithoutUpdate = 3304;
inline constexpr int kFirstDisplayId = 3300;
inline constexpr int kLastDisplayId = 3364;
inline constexpr int kFirstSolutionCode = 2160;
inline constexpr int kLastSolutionCode = 2176;

struct DisplayEntry {
  int id;                                  // radio button id of the Display Options dialog
  std::string_view dialogLabel;            // its text
  int k;                                   // methods shown side by side: 1, 2 or 3
  std::array<std::string_view, 3> labels;  // the method names in column order; k of them used
};

// The seventeen displays in dialog order.
std::span<const DisplayEntry> displayTable();
// The display with this id, or nullptr when the id is not one of them (0 included).
const DisplayEntry* findDisplay(int id);

// 3300 -> 2160, 3304 -> 2161, ..., 3364 -> 2176; 0 for anything that is not a display id.
int displayToSolutionCode(int displayId);
// 2160 -> 3300, ..., 2176 -> 3364; 0 for anything that is not a solution code.
int solutionCodeToDisplay(int code);

// The methods a selector shows: k and the column labels. k is 0 (and no label is set) for a
// selector that names no display.
struct DisplayMethods {
  int k = 0;
  std::array<std::string_view, 3> labels{};
};
DisplayMethods displayMethods(int selector);

inline constexpr std::string_view kDisplayCombinationWarning =
    "Display combination not yet implemented. \t\t\t\r Use Results: Display for one-by-one "
    "display.";

// Sets the display selector from the run flags once a solve has finished: 3300 when QLP ran,
// 3304 when OLF without updating ran (the later wins), and then, overriding both, the display
// whose methods are exactly the Compare methods that ran. When nothing matches the selector is
// 0 and the user is warned ("Warning!") that the combination is not displayed.
void SelectDisplayAfterSolve(ResultsStore& store, Prompter& prompter);

}  // namespace ovaro
