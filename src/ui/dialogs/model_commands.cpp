#include "ui/dialogs/model_commands.h"

#include <QDialog>

#include "model/options.h"
#include "ui/dialogs/acronym_window.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/dialogs/spec_dialogs.h"
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
  keepArraysInShape(old, wb_.model.dims);
}

void ModelCommands::forms() {
  const SpecFlags old = wb_.model.flags;
  FormsDialog dialog(wb_.model.flags, parent_);
  if (run(dialog) != QDialog::Accepted || newModelFlag_) return;
  keepArraysInShape(old, wb_.model.dims);
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
  keepArraysInShape(wb_.model.flags, old);
}

// Until the model transformations that carry a changed size or form over to the data are part of
// this build, a change that would leave the matrices out of shape with the sizes and flags is
// taken back, so that no solve reads a matrix of the wrong shape and no cell is lost.
void ModelCommands::keepArraysInShape(const SpecFlags& oldFlags, const Dimensions& oldDims) {
  Model& model = wb_.model;
  if (!model.allocated) return;
  const Dimensions& d = model.dims;
  const bool sizeChanged = d.n.value != oldDims.n.value || d.m.value != oldDims.m.value ||
                           d.l.value != oldDims.l.value || d.np.value != oldDims.np.value ||
                           d.ny.value != oldDims.ny.value || d.nt.value != oldDims.nt.value ||
                           d.maxLead.value != oldDims.maxLead.value;
  SpecFlags shapeOnly = model.flags;
  shapeOnly.randomSource = oldFlags.randomSource;
  shapeOnly.option450 = oldFlags.option450;
  shapeOnly.option452 = oldFlags.option452;
  const bool formChanged = !(shapeOnly == oldFlags);
  if (!sizeChanged && !formChanged) return;
  if (sizeChanged) {
    model.dims.n = oldDims.n;
    model.dims.m = oldDims.m;
    model.dims.l = oldDims.l;
    model.dims.np = oldDims.np;
    model.dims.ny = oldDims.ny;
    model.dims.maxLead = oldDims.maxLead;
    model.dims.initialPeriod = oldDims.initialPeriod;
    model.dims.terminalPeriod = oldDims.terminalPeriod;
    model.dims.recomputePeriods();
  }
  if (formChanged) model.flags = oldFlags;
  wb_.prompter.inform(
      "The data already entered cannot yet be carried over to a changed size or form in this "
      "build, so the change was taken back. To change them, start a new model with File: New.",
      "Transformation", Icon::Exclamation);
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

void ModelCommands::editModelMatrix(MatrixId id) {
  Model& model = wb_.model;
  TextMatrix* target = model.matrix(id);
  if (target == nullptr) return;
  const MatrixSpec& spec = matrixSpec(id);
  editMatrix(*target, spec.title, sideAcronyms(model, spec.rows, spec.name),
             sideAcronyms(model, spec.cols, spec.name), runEditor_, parent_);
}

void ModelCommands::transformation(int id) {
  // The transformations themselves are not part of this build yet; the command says so rather
  // than doing nothing.
  const std::string label = menuLabel(id);
  std::string plain;
  for (char c : label) {
    if (c != '&') plain += c;
  }
  wb_.prompter.inform(plain + " is not available in this build.", "Ovaro", Icon::Information);
}

}  // namespace ovaro::ui
