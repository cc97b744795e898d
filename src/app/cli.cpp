#include "app/cli.h"

#include <CLI/CLI.hpp>

#include <ostream>
#include <string>

#include "app/model_report.h"
#include "model/model_file.h"
#include "numeric/prompter.h"
#include "results/workbench.h"

namespace ovaro::cli {

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

// Shows a file failure the way the workbench does, under the program's name.
void fileMessage(Prompter& prompter, const char* format, const std::string& file) {
  std::string text = format;
  text.replace(text.find("%s"), 2, file);
  prompter.inform(text, "Ovaro", Icon::Exclamation);
}

struct InfoOptions {
  std::string model;
  bool json = false;
};

int info(const InfoOptions& o, std::ostream& out, std::ostream& err) {
  RecordingPrompter prompter(&err);
  NullProgress progress;
  Workbench wb(prompter, progress);
  const Model& model = wb.model;
  if (readModelFile(o.model, wb.model, prompter) != 1) {
    fileMessage(prompter, "Could not read file %s!", o.model);
    if (o.json)
      out << dumpJson({{"error", prompter.messages().back().text},
                       {"messages", messagesJson(prompter.messages())}});
    return kExitFailed;
  }
  if (o.json)
    out << dumpJson(modelInfoJson(model, prompter.messages()));
  else
    out << modelInfoText(model, o.model);
  return kExitOk;
}

struct ConvertOptions {
  std::string in;
  std::string out;
};

int convert(const ConvertOptions& o, std::ostream& err) {
  RecordingPrompter prompter(&err);
  NullProgress progress;
  Workbench wb(prompter, progress);
  if (readModelFile(o.in, wb.model, prompter) != 1) {
    fileMessage(prompter, "Could not read file %s!", o.in);
    return kExitFailed;
  }
  if (writeModelFile(o.out, wb.model, prompter) != 1) {
    fileMessage(prompter, "Could not write file %s", o.out);
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace

int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  CLI::App app{"Ovaro batch tool: quadratic-linear optimal control of small economic models.",
               "ovaro-cli"};
  app.require_subcommand(1);
  app.set_help_all_flag("--help-all", "Show the help of every command");

  InfoOptions infoOptions;
  CLI::App* infoCmd = app.add_subcommand(
      "info", "Show a model's sizes, forms, stochastic terms, labels and matrices");
  infoCmd->add_option("model", infoOptions.model, "Model file (.ovi)")->required();
  infoCmd->add_flag("--json", infoOptions.json, "Print a JSON object instead of text");

  ConvertOptions convertOptions;
  CLI::App* convertCmd = app.add_subcommand(
      "convert", "Read a model file and write it again in the current version (321)");
  convertCmd->add_option("in", convertOptions.in, "Model file to read")->required();
  convertCmd->add_option("out", convertOptions.out, "Model file to write")->required();

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    out << (app.get_subcommands().empty() ? app.help() : app.get_subcommands().front()->help());
    return kExitOk;
  } catch (const CLI::CallForAllHelp&) {
    out << app.help("", CLI::AppFormatMode::All);
    return kExitOk;
  } catch (const CLI::ParseError& e) {
    err << "ovaro-cli: " << e.what() << "\n"
        << "Run 'ovaro-cli --help' for usage.\n";
    return kExitUsage;
  }

  if (infoCmd->parsed()) return info(infoOptions, out, err);
  if (convertCmd->parsed()) return convert(convertOptions, err);
  return kExitUsage;
}

}  // namespace ovaro::cli
