// The debug print of the Monte Carlo runs: which dumps the ticked boxes of the Compare debug
// sheet turn on, and which run gets them.
#pragma once

#include "io/debug_file.h"
#include "io/debug_options.h"
#include "solve/trace.h"

namespace ovaro {

// The topics of the Compare debug sheet (Inputs, Intermediates, Results pages): each box turns on
// the dumps its label names.
SolveTrace monteCarloTrace(DebugFile* file, const DebugSwitches& switches);

// The trace of run `run` (1-based) of a Monte Carlo loop. Only the first run, or the run the user
// chose, is printed in detail; every other run keeps the Monte Carlo summary alone. The chosen run
// of "Only run number y" is announced in the file before its print.
SolveTrace runTrace(DebugFile* file, const DebugPrintSettings& debug, int run);

}  // namespace ovaro
