// Reshaping a model that already holds data: a weight, desired path or exogenous path switched
// between constant and time varying, a change of the stochastic terms, a new terminal period, and
// variables or uncertain parameters added or deleted. Each operation allocates the Text matrices
// the new shape needs, carries over every cell that still fits with its text unchanged, fills new
// cells with "0", and reports through the Prompter what it did (caption "Transformation").
//
// The dialogs write the new sizes and options into the Model first; these operations are told the
// old ones. The Size and specification dialogs reach them through reconcile.h.
#pragma once

#include <functional>
#include <optional>

#include "model/model.h"
#include "numeric/prompter.h"

namespace ovaro {

// The classes of elements that can be added and deleted, in the order the Size dialog's
// reconciliation treats them.
enum class ElementClass { States, Controls, Exogenous, Parameters, Observations };

// "DeleteElem": the number typed, or nullopt when the dialog was cancelled.
using AskDeleteElem = std::function<std::optional<int>()>;
// The Size dialog, writing the counts it is given into the Model without any reconciliation.
using ShowSizeDialog = std::function<void()>;

// Form changes. `old` is the option before the change; the Model's flag holds the new one. A
// change that the user declines (No to the data-loss question) puts the old option back.
void wConstantToTerminalDifferent(Model& model, Prompter& prompter);
void wTerminalDifferentToConstant(Model& model, Prompter& prompter);
void wConstantToTimeVarying(Model& model, Prompter& prompter);
void wTimeVaryingToConstant(Model& model, Prompter& prompter);
void lambdaConstantToTimeVarying(Model& model, Prompter& prompter);
void lambdaTimeVaryingToConstant(Model& model, Prompter& prompter);
void xdesConstantToTimeVarying(Model& model, Prompter& prompter);
void udesConstantToTimeVarying(Model& model, Prompter& prompter);
void zConstantToTimeVarying(Model& model, Prompter& prompter);
void zTimeVaryingToConstant(Model& model, Prompter& prompter);

// Stochastic-terms changes; the counts they need (np, ny) are already in the Model.
void deterministicToAdditiveNoise(Model& model, Prompter& prompter);
void deterministicToParameterUncertainty(Model& model, Prompter& prompter);
void additiveNoiseToParameterUncertainty(Model& model, Prompter& prompter);
void parameterUncertaintyToMeasurementError(Model& model, Prompter& prompter);
void measurementErrorToDeterministic(Model& model, Prompter& prompter);

// The new terminal period is in the Model; `oldNt` is the period count before it.
void changeTerminalPeriod(Model& model, int oldNt, Prompter& prompter);

// Grows the class from `oldCount` to the Model's count: every matrix with a dimension of that
// class gains "0" rows or columns at the end, its label table blank entries.
void addElements(Model& model, ElementClass cls, int oldCount, Prompter& prompter);
// Deletes element `index` (1-based, as typed) of a class that has `count` elements: the row and
// column of that index go from every matrix with a dimension of the class, the entry from its
// label table, and the count drops by one. Checks the index and asks before any data is lost;
// returns whether the element was deleted.
bool deleteElement(Model& model, ElementClass cls, int index, int count, Prompter& prompter);

}  // namespace ovaro
