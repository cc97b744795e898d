// The File menu's exchange with other programs: Import: QLP and VELD, Import: Matrices, Export:
// QLP and VELD (whose dialog also offers the PC edition's input file).
#include <QStatusBar>
#include <string>

#include "io/interchange.h"
#include "io/matrix_import.h"
#include "io/veldpc.h"
#include "model/model_file.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/dialogs/model_commands.h"
#include "ui/main_window.h"
#include "ui/menu_table.h"

namespace ovaro::ui {

namespace {

constexpr const char* kAllFilesLabel = "All Files (*.*;*)";
constexpr const char* kAllFilesPattern = "*.*;*";
constexpr std::string_view kVeldpcSuffix = ".vpc";

FileRequest exportRequest(int id) {
  FileRequest r;
  r.kind = FileRequest::Kind::Save;
  if (id == cmd::kExportQlp)
    r.filters = {{"QLP Files (*.qlp)", "*.qlp"}, {kAllFilesLabel, kAllFilesPattern}};
  else
    r.filters = {{"VELD Files (*.vld)", "*.vld"},
                 {"VELDPC Files (*.vpc)", "*.vpc"},
                 {kAllFilesLabel, kAllFilesPattern}};
  r.promptBeforeOverwrite = true;
  return r;
}

// The imports open their files through the model file's filter, deliberately: the user switches
// to all files to see the input file.
FileRequest importRequest() {
  FileRequest r;
  r.kind = FileRequest::Kind::Open;
  r.filters = {{"OVARO Files (*.ovi)", "*.ovi"}, {kAllFilesLabel, kAllFilesPattern}};
  r.promptToCreate = true;
  return r;
}

FileRequest matrixFileRequest() {
  FileRequest r;
  r.kind = FileRequest::Kind::Open;
  r.filters = {{"Matrix Files (*.dma)", "*.dma"}, {kAllFilesLabel, kAllFilesPattern}};
  r.promptToCreate = true;
  return r;
}

bool endsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

}  // namespace

void MainWindow::registerInterchangeCommands() {
  for (int id : {cmd::kImportQlp, cmd::kImportVeld})
    commands_[id] = [this, id] { importInputFile(id); };
  for (int id : {cmd::kExportQlp, cmd::kExportVeld})
    commands_[id] = [this, id] { exportInputFile(id); };
  for (int id : {cmd::kImportSystem, cmd::kImportCriterion, cmd::kImportAdditive,
                 cmd::kImportUncertain, cmd::kImportMeasurement, cmd::kImportHcfr})
    commands_[id] = [this, id] { importMatrices(id); };
}

void MainWindow::importInputFile(int id) {
  if (shell_.modified != 0 && askSave() == Answer::Cancel) return;
  const std::optional<std::string> name = prompter_.askFileName(importRequest());
  if (name) {
    if (!debugFilePrompt()) return;
    const InputFormat format = id == cmd::kImportVeld ? InputFormat::Veld : InputFormat::Qlp;
    const int ok = readInputFile(format, *name, wb_.model, &wb_.debugFile, prompter_);
    wb_.debugFile.close();
    // An imported model has no model file of its own yet: the next Save asks for a name.
    shell_.fileName.clear();
    shell_.fileTitle.clear();
    if (ok == 1) {
      forgetResults();
      statusBar()->showMessage(QString::fromStdString("Imported " + fileTitle(*name)));
    } else {
      showFileMessage("Could not read file %s!", fileTitle(*name));
    }
  }
  setCaption();
  shell_.modified = 0;
}

void MainWindow::exportInputFile(int id) {
  const std::optional<std::string> name = prompter_.askFileName(exportRequest(id));
  if (!name) return;
  shell_.exportFileName = *name;
  shell_.exportTitle = fileTitle(*name);
  int ok = 0;
  if (id == cmd::kExportQlp)
    ok = writeInputFile(InputFormat::Qlp, *name, wb_.model);
  else if (endsWith(*name, kVeldpcSuffix))
    ok = writeVeldpcFile(*name, wb_.model, prompter_);
  else
    ok = writeInputFile(InputFormat::Veld, *name, wb_.model);
  if (ok != 1) showFileMessage("Could not write file %s", shell_.exportTitle);
}

void MainWindow::importMatrices(int id) {
  const Model& m = wb_.model;
  const int terms = m.flags.stochTerms;
  const bool noStochElements = terms == opt::kDeterministic || terms == opt::kParameterUncertainty;
  std::string_view group;
  switch (id) {
    case cmd::kImportSystem:
      if (m.flags.forwardVars == opt::kForwardYes &&
          (m.dims.maxLead.value < 1 || m.dims.maxLead.value > 3)) {
        prompter_.inform("Maximum Lead must be 1, 2 or 3.", "Error");
        return;
      }
      group = systemEquationsGroup(m);
      break;
    case cmd::kImportCriterion:
      group = criterionGroup(m);
      break;
    case cmd::kImportAdditive:
      group = "DataInStochAdd";
      break;
    case cmd::kImportUncertain:
      group = "DataInStoch";
      break;
    case cmd::kImportMeasurement:
      if (noStochElements)
        prompter_.inform(
            "If Veld Stoch Elem are to be nonzero then change complexity to include measurement "
            "error.",
            "Warning!");
      group = "DataInStochVE";
      break;
    default:
      if (noStochElements) prompter_.inform("Hello from Import HCRF.", "Warning!");
      group = "DataInGg";
      break;
  }
  modelCommands_->matrixEntry(group, [this](MatrixId matrix) { importOneMatrix(matrix); });
  update();
}

void MainWindow::importOneMatrix(MatrixId id) {
  if (shell_.modified != 0 && askSave() == Answer::Cancel) return;
  const std::optional<std::string> name = prompter_.askFileName(matrixFileRequest());
  if (!name) return;
  const bool traced = wb_.shell.debugImportedMatrices == 1;
  if (traced && !debugFilePrompt()) return;
  importMatrixFile(*name, id, wb_.shell.importMatrixColumns, wb_.model,
                   traced ? &wb_.debugFile : nullptr, prompter_);
  if (traced) wb_.debugFile.close();
}

}  // namespace ovaro::ui
