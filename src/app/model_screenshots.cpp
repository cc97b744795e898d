#include "model_screenshots.h"

#include <QLineEdit>
#include <QTabWidget>
#include <algorithm>

#include "model/model_file.h"
#include "model/options.h"
#include "numeric/prompter.h"
#include "ui/dialogs/acronym_window.h"
#include "ui/dialogs/form_dialogs.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/editor/matrix_editor.h"

namespace ovaro {

namespace {

// A model that holds every matrix a group can offer: all stochastic terms, forward variables to
// the third lead, the policy effect, and the system in the form asked for.
Model fullModel(bool pindyck) {
  Model m;
  clearModel(m);
  m.dims.n.set(3);
  m.dims.m.set(2);
  m.dims.l.set(1);
  m.dims.np.set(2);
  m.dims.ny.set(2);
  m.dims.nmc.set(50);
  m.dims.maxLead.set(3);
  m.dims.initialPeriod.set(1);
  m.dims.terminalPeriod.set(6);
  m.dims.recomputePeriods();
  m.flags = {
      opt::kMeasurementError,   opt::kQuadraticTracking, pindyck ? opt::kPindyck : opt::kRegular,
      opt::kForwardYes,         opt::kPolicyYes,         opt::kZConstant,
      opt::kWTerminalDifferent, opt::kLambdaConstant,    opt::kXdesConstant,
      opt::kUdesConstant,       opt::kGenerateInternally};
  allocateModelArrays(m);
  return m;
}

}  // namespace

bool saveModelBuildingShots(const QString& examples, const SaveShot& save) {
  bool ok = true;
  RecordingPrompter quiet;
  Model track;
  readModelFile((examples + "/track1.ovi").toStdString(), track, quiet);

  {
    ui::NameDialog d(track);
    ok &= save(d, "dialog_name");
  }
  {
    ui::SizeDialog d(track.dims);
    ok &= save(d, "dialog_size");
  }
  {
    ui::StochasticTermsDialog d(track.flags);
    ok &= save(d, "dialog_stochastic_terms");
  }
  {
    ui::FormsDialog d(track.flags);
    ok &= save(d, "dialog_functional_forms");
  }
  {
    ui::SourceRandomDialog d(track.flags, track.randomSwitches);
    ok &= save(d, "dialog_source_random");
  }
  {
    int state = 0, control = 0;
    ui::OptionsMcDialog d(track.periods.acronyms, state, control);
    ok &= save(d, "dialog_options_mc");
  }
  {
    int index = 0, confirmed = 0;
    ui::DeleteElemDialog d(index, confirmed);
    ok &= save(d, "dialog_delete_elem");
  }
  const Model regular = fullModel(false), pindyck = fullModel(true);
  for (const ui::MatrixEntryGroup& g : ui::matrixEntryGroups()) {
    const bool needsPindyck =
        std::find(g.matrices.begin(), g.matrices.end(), MatrixId::A0) != g.matrices.end();
    ui::MatrixEntryDialog d(g, needsPindyck ? pindyck : regular, {});
    ok &= save(d, "dialog_" + QString::fromLatin1(g.name.data(), g.name.size()).toLower());
  }
  {
    // Desired states by period in a labelled three-state model: two blocks, one marked cell.
    Model labelled = fullModel(false);
    labelled.flags.xdesForm = opt::kXdesTimeVarying;
    allocateModelArrays(labelled);
    labelled.states.acronyms = {"YGAP", "INFL", "RATE"};
    labelled.periods.acronyms = {"2027", "2028", "2029", "2030", "2031", "2032"};
    TextMatrix& cells = *labelled.matrix(MatrixId::XDEST);
    for (int r = 0; r < cells.rows(); ++r) {
      for (int c = 0; c < cells.cols(); ++c) cells.setCell(r, c, r == 1 ? "2.0" : "0");
    }
    cells.setCell(1, 2, "2.0.5");
    const MatrixSpec& spec = matrixSpec(MatrixId::XDEST);
    ui::MatrixEditor d({spec.title, ui::sideAcronyms(labelled, spec.rows, spec.name),
                        ui::sideAcronyms(labelled, spec.cols, spec.name), cells});
    d.resize(600, 450);
    ok &= save(d, "matrix_editor");
  }
  {
    ui::AcronymWindow d(track);
    ok &= save(d, "acronym_window");
  }
  return ok;
}

}  // namespace ovaro
