// What OK of the Size dialog and of the specification dialogs does to a model that already holds
// data: the old sizes and options, remembered when the dialog opened, are compared with the new
// ones that the dialog wrote, and each difference is carried out by a transformation or refused.
// (In the File: New sequence there is nothing to reconcile, and these are not called.)
#pragma once

#include "model/model.h"
#include "model/transform/transformations.h"
#include "numeric/prompter.h"

namespace ovaro {

// Size dialog OK: states, controls, exogenous variables, uncertain parameters and observations in
// that order (a larger count adds, a smaller one deletes one "DeleteElem" answer at a time), then
// the terminal period; a changed initial period is refused and put back.
void reconcileSize(Model& model, const Dimensions& old, Prompter& prompter,
                   const AskDeleteElem& askDeleteElem);

// Stochastic Terms or Form Specifications OK: each option that differs from `old` is carried out
// or refused (refused options are put back), in the order criterion, system form, forward
// variables, policy to parameter, W, Lambda, x desired, u desired, z, stochastic terms. The moves
// to uncertain parameters and to measurement error open the Size dialog for their counts first.
void reconcileSpecification(Model& model, const SpecFlags& old, Prompter& prompter,
                            const ShowSizeDialog& showSizeDialog);

// One command of the Transformations menu by its id (81 to 123), with the shell's checks first.
// `countsDialog` is the Size dialog that only takes counts (the moves to uncertain parameters and
// to measurement error); `sizeDialog` is the Size dialog with its reconciliation (Change Terminal
// Period). Returns false for an id that is not a transformation.
bool runTransformationCommand(Model& model, int id, Prompter& prompter,
                              const ShowSizeDialog& countsDialog, const ShowSizeDialog& sizeDialog,
                              const AskDeleteElem& askDeleteElem);

}  // namespace ovaro
