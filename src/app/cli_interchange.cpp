#include "app/cli_interchange.h"

#include <ostream>

#include "app/answering_prompter.h"
#include "app/model_report.h"
#include "io/debug_file.h"
#include "io/interchange.h"
#include "io/matrix_import.h"
#include "io/veldpc.h"
#include "model/model_file.h"

namespace ovaro::cli {

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

InputFormat inputFormat(const std::string& name) {
  return name == "veld" ? InputFormat::Veld : InputFormat::Qlp;
}

void fileFailure(Prompter& prompter, const char* before, const std::string& path,
                 const char* after) {
  prompter.inform(before + path + after, "Ovaro", Icon::Exclamation);
}

// Prints the JSON answer when asked and passes the exit code on.
class Finisher {
 public:
  Finisher(const AnsweringPrompter& prompter, std::ostream& out, bool json)
      : prompter_(prompter), out_(out), json_(json) {}
  int operator()(int code, nlohmann::json extra = nlohmann::json::object()) const {
    if (!json_) return code;
    nlohmann::json j = {{"ok", code == kExitOk}, {"messages", messagesJson(prompter_.messages())}};
    j.update(extra);
    out_ << dumpJson(j);
    return code;
  }

 private:
  const AnsweringPrompter& prompter_;
  std::ostream& out_;
  bool json_;
};

}  // namespace

CLI::App* addExportCommand(CLI::App& app, ExportOptions& o) {
  CLI::App* cmd = app.add_subcommand(
      "export", "Write a model as a QLP, VELD or VELDPC input file (File: Export)");
  cmd->add_option("model", o.model, "Model file to read (.ovi)")->required();
  cmd->add_option("out", o.out, "Input file to write")->required();
  cmd->add_option("--format", o.format, "qlp, veld or veldpc")
      ->required()
      ->check(CLI::IsMember({"qlp", "veld", "veldpc"}));
  cmd->add_flag("--json", o.json, "Print {\"ok\", \"messages\"}");
  return cmd;
}

CLI::App* addImportCommand(CLI::App& app, ImportOptions& o) {
  CLI::App* cmd = app.add_subcommand(
      "import", "Read a QLP or VELD input file and save it as a model file (File: Import)");
  cmd->add_option("file", o.file, "Input file to read (.qlp, .vld)")->required();
  cmd->add_option("out", o.out, "Model file to write (.ovi)")->required();
  cmd->add_option("--format", o.format, "qlp or veld")
      ->required()
      ->check(CLI::IsMember({"qlp", "veld"}));
  cmd->add_option("--debug", o.debug, "Debug print file for the echo of what was read");
  cmd->add_flag("--json", o.json, "Print {\"ok\", \"messages\"}");
  return cmd;
}

CLI::App* addImportMatrixCommand(CLI::App& app, ImportMatrixOptions& o) {
  CLI::App* cmd = app.add_subcommand(
      "import-matrix", "Fill one matrix of a model from a matrix file (File: Import: Matrices)");
  cmd->add_option("model", o.model, "Model file to read (.ovi)")->required();
  cmd->add_option("out", o.out, "Model file to write (.ovi)")->required();
  cmd->add_option("--matrix", o.matrix, "The matrix to fill: A, B, SITT0, g, ...")->required();
  cmd->add_option("--file", o.file, "Matrix file (.dma)")->required();
  cmd->add_option("--columns", o.columns, "Columns per block of the file (default 5)")
      ->check(CLI::Range(1, 1000000));
  cmd->add_option("--debug", o.debug, "Debug print file for the imported matrix");
  cmd->add_flag("--json", o.json, "Print {\"ok\", \"messages\", \"cells\"}");
  return cmd;
}

int exportModel(const ExportOptions& o, std::ostream& out, std::ostream& err) {
  AnsweringPrompter prompter(&err, false);
  const Finisher finish(prompter, out, o.json);
  Model model;
  if (readModelFile(o.model, model, prompter) != 1) {
    fileFailure(prompter, "Could not read file ", o.model, "!");
    return finish(kExitFailed);
  }
  const int ok = o.format == "veldpc" ? writeVeldpcFile(o.out, model, prompter)
                                      : writeInputFile(inputFormat(o.format), o.out, model);
  if (ok != 1) {
    fileFailure(prompter, "Could not write file ", o.out, "");
    return finish(kExitFailed);
  }
  return finish(kExitOk);
}

int importModel(const ImportOptions& o, std::ostream& out, std::ostream& err) {
  AnsweringPrompter prompter(&err, false);
  const Finisher finish(prompter, out, o.json);
  DebugFile debug;
  if (!o.debug.empty() && !debug.open(o.debug)) {
    fileFailure(prompter, "Could not write file ", o.debug, "");
    return finish(kExitFailed);
  }
  Model model;
  if (readInputFile(inputFormat(o.format), o.file, model, o.debug.empty() ? nullptr : &debug,
                    prompter) != 1) {
    fileFailure(prompter, "Could not read file ", o.file, "!");
    return finish(kExitFailed);
  }
  if (writeModelFile(o.out, model, prompter) != 1) {
    fileFailure(prompter, "Could not write file ", o.out, "");
    return finish(kExitFailed);
  }
  return finish(kExitOk);
}

int importMatrix(const ImportMatrixOptions& o, std::ostream& out, std::ostream& err) {
  AnsweringPrompter prompter(&err, false);
  const Finisher finish(prompter, out, o.json);
  Model model;
  if (readModelFile(o.model, model, prompter) != 1) {
    fileFailure(prompter, "Could not read file ", o.model, "!");
    return finish(kExitFailed);
  }
  const std::optional<MatrixId> id = matrixByName(o.matrix);
  if (!id || !model.holds(*id)) {
    err << "ovaro-cli import-matrix: the model holds no matrix named '" << o.matrix << "'\n";
    return finish(kExitUsage);
  }
  DebugFile debug;
  if (!o.debug.empty() && !debug.open(o.debug)) {
    fileFailure(prompter, "Could not write file ", o.debug, "");
    return finish(kExitFailed);
  }
  if (!importMatrixFile(o.file, *id, o.columns, model, &debug, prompter))
    return finish(kExitFailed);
  if (writeModelFile(o.out, model, prompter) != 1) {
    fileFailure(prompter, "Could not write file ", o.out, "");
    return finish(kExitFailed);
  }
  nlohmann::json cells = nlohmann::json::array();
  const TextMatrix& t = *model.matrix(*id);
  for (int i = 0; i < t.rows(); ++i) {
    nlohmann::json row = nlohmann::json::array();
    for (int j = 0; j < t.cols(); ++j) row.push_back(std::string(t.cell(i, j)));
    cells.push_back(row);
  }
  return finish(kExitOk, {{"cells", cells}});
}

}  // namespace ovaro::cli
