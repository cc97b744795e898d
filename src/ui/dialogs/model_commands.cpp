#include "ui/dialogs/model_commands.h"

#include <QDialog>

#include "model/options.h"
#include "model/transform/reconcile.h"
#include "ui/dialogs/acronym_window.h"
#include "ui/dialogs/form_dialogs.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/menu_table.h"

namespace ovaro::ui {

namespace {

// The flags a new model starts from: the first option of every group, so that a user who only
// looks at a dialog and presses OK still gets a complete, solvable specification.
void setNewModelFlags(SpecFlags& f) {
  f.stochTerms = opt::kDeterministic;
  f.criterionForm = opt::kQuadraticTracking;
  f.systemForm = opt::kRegular;
  f.forwardVars = opt::kForwardNo;
  f.policyToParam = opt::kPolicyNo;
  f.zForm = opt::kZConstant;
  f.wForm = opt::kWConstant;
  f.lambdaForm = opt::kLambdaConstant;
  f.xdesForm = opt::kXdesConstant;
  f.udesForm = opt::kUdesConstant;
  f.randomSource = opt::kGenerateInternally;
  f.option450 = opt::kOption450;
  f.option452 = opt::kOption452;
}

}  // namespace

int ModelCommands::run(QDialog& dialog) {
  return runDialog_ ? runDialog_(dialog) : dialog.exec();
}

void ModelCommands::newModelSequence() {
  Model& model = wb_.model;
  clearModel(model);
  setNewModelFlags(model.flags);
  model.fileVersion = kModelFileVersion;
  newModelFlag_ = true;
  {
    NameDialog dialog(model, parent_);
    run(dialog);
  }
  {
    StochasticTermsDialog dialog(model.flags, parent_);
    run(dialog);
  }
  {
    SizeDialog dialog(model.dims, parent_);
    run(dialog);
  }
  {
    FormsDialog dialog(model.flags, parent_);
    run(dialog);
  }
  {
    SourceRandomDialog dialog(model.flags, model.randomSwitches, parent_);
    run(dialog);
  }
  newModelFlag_ = false;
  wb_.resultsFormat = 770;
  // Sizes no model can hold (a slip of the keyboard: 100000 periods) would exhaust memory; they
  // are named and the model is left without arrays, as after Clear.
  const std::string problem = checkSizes(model);
  if (!problem.empty()) {
    wb_.prompter.inform(problem + " Choose File: New again and enter smaller sizes.", "Ovaro",
                        Icon::Exclamation);
    return;
  }
  allocateModelArrays(model);
  blankLabels(model);
}

void ModelCommands::name() {
  NameDialog dialog(wb_.model, parent_);
  run(dialog);
}

void ModelCommands::stochasticTerms() {
  const SpecFlags old = wb_.model.flags;
  StochasticTermsDialog dialog(wb_.model.flags, parent_);
  if (run(dialog) != QDialog::Accepted || newModelFlag_) return;
  reconcileSpecification(wb_.model, old, wb_.prompter, [this] { countsDialog(); });
}

void ModelCommands::forms() {
  const SpecFlags old = wb_.model.flags;
  FormsDialog dialog(wb_.model.flags, parent_);
  if (run(dialog) != QDialog::Accepted || newModelFlag_) return;
  reconcileSpecification(wb_.model, old, wb_.prompter, [this] { countsDialog(); });
}

void ModelCommands::sourceRandom() {
  SourceRandomDialog dialog(wb_.model.flags, wb_.model.randomSwitches, parent_);
  run(dialog);
}

void ModelCommands::optionsMonteCarlo() {
  const LabelTable& periods = wb_.model.periods;
  OptionsMcDialog dialog(periods.acronyms, wb_.varianceStartState, wb_.varianceStartControl,
                         parent_);
  run(dialog);
}

void ModelCommands::size() {
  sizeDialog();
}

void ModelCommands::sizeDialog() {
  const Dimensions old = wb_.model.dims;
  SizeDialog dialog(wb_.model.dims, parent_);
  if (run(dialog) != QDialog::Accepted || newModelFlag_) return;
  reconcileSize(wb_.model, old, wb_.prompter, [this] { return deleteElemDialog(); });
}

// "DeleteElem": the number typed, or nothing when it was cancelled.
std::optional<int> ModelCommands::deleteElemDialog() {
  int index = 0, confirmed = 0;
  DeleteElemDialog ask(index, confirmed, parent_);
  run(ask);
  if (confirmed == 0) return std::nullopt;
  return index;
}

// The Size dialog in the middle of a change of stochastic terms: it only takes the new counts,
// which the transformation that follows puts to use.
void ModelCommands::countsDialog() {
  SizeDialog dialog(wb_.model.dims, parent_);
  run(dialog);
}

void ModelCommands::acronyms() {
  AcronymWindow window(wb_.model, parent_);
  run(window);
}

void ModelCommands::matrixEntry(std::string_view name) {
  const MatrixEntryGroup* group = matrixEntryGroup(name);
  if (group == nullptr) return;
  MatrixEntryDialog dialog(
      *group, wb_.model, [this](MatrixId id) { editModelMatrix(id); }, parent_);
  run(dialog);
}

void ModelCommands::matrixEntry(std::string_view name,
                                const std::function<void(MatrixId)>& onMatrix) {
  const MatrixEntryGroup* group = matrixEntryGroup(name);
  if (group == nullptr) return;
  MatrixEntryDialog dialog(*group, wb_.model, onMatrix, parent_);
  run(dialog);
}

void ModelCommands::editModelMatrix(MatrixId id) {
  Model& model = wb_.model;
  TextMatrix* target = model.matrix(id);
  if (target == nullptr) return;
  const MatrixSpec& spec = matrixSpec(id);
  editMatrix(*target, spec.title, sideAcronyms(model, spec.rows, spec.name),
             sideAcronyms(model, spec.cols, spec.name), runEditor_, parent_);
}

void ModelCommands::transformation(int id) {
  runTransformationCommand(
      wb_.model, id, wb_.prompter, [this] { countsDialog(); }, [this] { sizeDialog(); },
      [this] { return deleteElemDialog(); });
}

}  // namespace ovaro::ui
