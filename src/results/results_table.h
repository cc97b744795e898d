// The results table: the paths of the displayed solutions laid out as a grid of text cells.
//
// The layout is computed here once, as data, and drawn by whoever shows it: the workbench puts
// each cell at pixel positions in its three results windows (the column headings, the row
// headings and the table itself), the batch tool prints it as text with renderTableText.
//
// Positions are in units of the table, not of a screen: a heading cell sits on heading line 0 or
// 1; a body cell on body line 0, 1, ...; horizontally a cell is either in the row-heading slot
// (left of the values, kRowHeadingSlot) or in value column 0, 1, ..., each one column width of
// the chosen number format wide. The criterion lines are the exception: their text starts at the
// left edge of the body and their value kCriterionValueOffset characters to the right of it.
//
// Periods as rows (the default). One row per period t = 0..T, headed by the period's acronym,
// with a blank line after every five periods. Three blocks stand side by side, each starting at
// the top row and separated by one empty column:
//   states      per state, one column per displayed method (in label order), then the desired
//               path when desired paths are shown;
//   controls    the same for the controls, periods 0..T-1 (no control is chosen in period T);
//   parameters  only when parameters are asked for, the display is a Monte Carlo one and the
//               solutions carry parameter paths: per parameter and method the estimate, followed
//               by the true value when the policy affects the parameters. When it does not, the
//               true value is constant and is given once, on a line "True Value" below the rows.
// Heading line 0 reads "States", then each state acronym over its group of columns, "Controls"
// over the empty column and the control acronyms, and likewise "Parameters". Heading line 1
// names each column: the method labels, or for a single method " opt" when desired paths are
// shown (two blanks otherwise), and "des" over every desired column; a parameter's true-value
// column is headed "true". Parameters have no desired path, so their groups carry no "des".
// Two lines below the lowest block, one criterion line per method: "  Criterion <label> =".
//
// Periods as columns. The same grid transposed cell by cell: what was body line L, value column
// C is body line C + 1, value column L. So every period is a column (an empty column after every
// five periods, and the "True Value" column last), every variable, method and desired path a
// line, and each empty column between the blocks becomes an empty line headed by the next
// block's name ("Controls", "Parameters"); body line 0 is headed "States". The row heading of a
// value line names the variable and the column it came from ("S1 HCFR", "S1 des", "S1 opt"). The
// heading window reads "Time Periods" followed by the period acronyms on line 0, and "Time"
// followed by each period's index 0..T on line 1. The criterion lines follow two lines below.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/model.h"
#include "results/results_store.h"

namespace ovaro {

inline constexpr int kRowHeadingSlot = -1;
// Characters from the left edge of a criterion line to its value.
inline constexpr int kCriterionValueOffset = 20;
// The narrowest row-heading slot of the text rendering, in characters.
inline constexpr int kMinRowHeadingWidth = 10;

struct TableCell {
  int line = 0;    // heading line 0 or 1, or body line 0, 1, ...
  int column = 0;  // value column from 0, or kRowHeadingSlot
  int span = 1;    // value columns the text heads (a variable's acronym spans its group)
  std::string text;
  friend bool operator==(const TableCell&, const TableCell&) = default;
};

struct CriterionLine {
  int line = 0;       // body line
  std::string label;  // "  Criterion HCFR =", starting at the left edge
  std::string value;  // the criterion printed with the number format
};

struct ResultsTable {
  bool periodsAsRows = true;
  int columnWidth = 0;                 // characters of one value column: the number format's width
  int rowHeadingWidth = 0;             // characters of the row-heading slot in the text rendering
  int columnCount = 0;                 // value columns, empty ones included
  int lineCount = 0;                   // body lines, blank and criterion lines included
  std::vector<TableCell> headings;     // heading lines 0 and 1
  std::vector<TableCell> rowHeadings;  // body lines, all in the row-heading slot
  std::vector<TableCell> values;       // body lines, each in a value column
  std::vector<CriterionLine> criteria;
};

// Lays out the table of the store's display selector for the Model's sizes and labels, with the
// number format `formatId` (0 or an unknown id: 770) and the store's display preferences.
// nullopt when there is nothing to show: the selector names no display, a method it names has no
// stored solution, or a stored solution does not match the Model's sizes (n, m and the last
// period index T; the Model changed after the solve).
std::optional<ResultsTable> layoutResultsTable(const Model& model, const ResultsStore& store,
                                               int formatId);

// The table as text, one line per heading and body line, each ending in '\n'. The row-heading
// slot is rowHeadingWidth characters wide and value column c starts at rowHeadingWidth +
// c x columnWidth. A text that runs past the start of the next cell pushes that cell right,
// keeping at least one blank between the two, so no number is ever cut. Trailing blanks are
// dropped.
std::string renderTableText(const ResultsTable& table);

// The current display as text: layoutResultsTable then renderTableText; an empty string when
// there is nothing to show.
std::string renderResultsText(const Model& model, const ResultsStore& store, int formatId);

}  // namespace ovaro
