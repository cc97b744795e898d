// The workbench commands that build and reshape the model: File: New, the Specification and Data
// dialogs, the acronym window and the Transformations menu.
//
// These only collect input through the dialogs and hand it on: the checks, prompts and data
// transformations that follow a changed size or form belong to the model layer's reconciliation
// and transformation functions, which talk to the user through the Prompter. The main window
// keeps one ModelCommands and calls it from its command table.
#pragma once

#include <optional>

#include <functional>
#include <string_view>

#include "results/workbench.h"
#include "ui/editor/matrix_editor.h"

class QDialog;
class QWidget;

namespace ovaro::ui {

class ModelCommands {
 public:
  // Shows a modal dialog and returns its result code (a test fills the dialog in and closes it).
  using DialogRunner = std::function<int(QDialog&)>;

  ModelCommands(Workbench& wb, QWidget* parent, DialogRunner runDialog,
                MatrixEditorRunner runEditor)
      : wb_(wb),
        parent_(parent),
        runDialog_(std::move(runDialog)),
        runEditor_(std::move(runEditor)) {}

  // File: New after the save prompt and the reset of the window: the default flags, then
  // "Name", "Stochastic_Terms", "Size", "Functional_Forms", "Source_Random" with the new-model
  // flag set (nothing is reconciled), then the arrays for the chosen sizes with blank labels.
  void newModelSequence();

  // Specification
  void name();
  void stochasticTerms();
  void forms();
  void sourceRandom();
  void optionsMonteCarlo();
  // Data
  void size();
  void acronyms();
  // The matrix-entry dialog of that template name ("DataInSEC4", ...), each button opening the
  // matrix editor on its matrix.
  void matrixEntry(std::string_view group);
  // The same dialog with another action behind its buttons (the import of single matrices).
  void matrixEntry(std::string_view group, const std::function<void(MatrixId)>& onMatrix);
  // The matrix editor on one matrix of the model, with its title, shape and acronyms.
  void editModelMatrix(MatrixId id);
  // Transformations menu command 81..123.
  void transformation(int id);

  // While File: New runs its dialogs.
  bool newModelFlag() const { return newModelFlag_; }

 private:
  int run(QDialog& dialog);
  // The "Size" dialog with the reconciliation that follows its OK outside File: New.
  void sizeDialog();
  void countsDialog();
  std::optional<int> deleteElemDialog();

  Workbench& wb_;
  QWidget* parent_;
  DialogRunner runDialog_;
  MatrixEditorRunner runEditor_;
  bool newModelFlag_ = false;
};

}  // namespace ovaro::ui
