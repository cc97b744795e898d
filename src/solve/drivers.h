// The Solve: QLP and Solve: OLF commands below the user interface: check the Model, read it,
// solve, and hand back the solution for the results store. Messages go through the Prompter;
// dumps go to the trace's debug file, which the caller has opened (and closes afterwards).
#pragma once

#include <optional>

#include "model/model.h"
#include "numeric/prompter.h"
#include "solve/olf.h"
#include "solve/solution.h"
#include "solve/trace.h"

namespace ovaro {

// The deterministic solution of the Model, with the forward-variable iteration when the model
// has forward variables. nullopt when the Model cannot be solved (the reason has been shown) or
// when a write to the debug file fell short (no message: the trace simply stops).
std::optional<Solution> solveQlp(const Model& model, Prompter& prompter, const SolveTrace& trace);

// The open loop feedback solution without updating. Refused with a message unless the model has
// uncertain parameters or measurement error.
std::optional<Solution> solveOlf(const Model& model, const CautionExperiment& caution,
                                 Prompter& prompter, const SolveTrace& trace);

}  // namespace ovaro
