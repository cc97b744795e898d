// The results print: a solution's paths written to the debug file at the end of a traced solve.
//
// Three results-print options saved with the model decide what is written (the fifth, sixth and
// seventh of the Model's results-display words; the first two words are kept in the file but
// have no use). The orientation of the printed table follows the display's orientation:
//   first option   not carried out: "This preference for results not yet implemented."
//   second option  the optimal-and-desired table: for each state its optimal row followed by its
//                  desired row, then the same for each control, over periods 0..T (no control is
//                  chosen in period T, so the controls show 0 there). Periods as columns print it
//                  as "resultsoptdes"; periods as rows print its transpose as "resultstransoptdes".
//   third option   the plain table, states then controls without desired rows, as "results"
//                  with periods as columns; with periods as rows it is not carried out.
// Each table is a double-matrix dump of the debug file, in the results number format.
#pragma once

#include "io/debug_file.h"
#include "model/model.h"
#include "numeric/prompter.h"
#include "solve/solution.h"

namespace ovaro {

// Indices of the three results-print options among the Model's results-display words.
inline constexpr int kResultsPrintFirstWord = 4;
inline constexpr int kResultsPrintSecondWord = 5;
inline constexpr int kResultsPrintThirdWord = 6;

inline constexpr const char* kResultsPreferenceMissing =
    "This preference for results not yet implemented.";

// The optimal-and-desired table of a solution: rows 1..2(n + m), periods 0..nt.
Mat optimalAndDesiredTable(const Solution& solution);
// The plain table: rows 1..n + m (states, then controls), periods 0..nt.
Mat plainResultsTable(const Solution& solution);

// Writes the tables the Model's results-print options ask for to `file`, with periods as rows or
// as columns, and tells the user ("Results") of the options that are not carried out. Returns 1,
// or 0 when a dump failed (the debug file is then closed, or was not open). A solution whose
// arrays do not hold its own sizes is a programming error: std::invalid_argument.
int printResultsToDebugFile(const Model& model, const Solution& solution, bool periodsAsRows,
                            DebugFile& file, Prompter& prompter);

}  // namespace ovaro
