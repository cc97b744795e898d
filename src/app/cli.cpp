#include "app/cli.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "app/answering_prompter.h"
#include "app/cli_examples.h"
#include "app/cli_interchange.h"
#include "app/cli_plot.h"
#include "app/cli_transform.h"
#include "app/model_report.h"
#include "io/debug_options.h"
#include "io/number_format.h"
#include "model/example_table.h"
#include "model/model_file.h"
#include "model/options.h"
#include "numeric/prompter.h"
#include "results/results_table.h"
#include "results/solve_commands.h"
#include "results/stochastic_commands.h"
#include "results/workbench.h"
#include "stoch/run_distributor.h"

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

struct SolveOptions {
  std::string model;
  std::string method = "qlp";
  int format = 0;
  bool desired = false;
  bool json = false;
  std::string debug;
  std::string trace;
  std::string caution;
};

// Splits a comma list, keeping empty items so that "a,,b" is caught as an error.
std::vector<std::string> splitCommas(const std::string& text) {
  std::vector<std::string> items;
  std::stringstream in(text);
  std::string item;
  while (std::getline(in, item, ',')) items.push_back(item);
  if (!text.empty() && text.back() == ',') items.emplace_back();
  return items;
}

// The switches named by --trace: machine names of the single solves' Debug Print Options or,
// for the Monte Carlo commands, of the five-page sheet; "all" ticks every box of them.
bool parseTrace(const std::string& text, bool monteCarlo, DebugSwitches& switches,
                std::ostream& err) {
  auto belongs = [&](const DebugSwitchInfo& info) {
    return (info.page == DebugPage::QlpOlf) != monteCarlo;
  };
  for (const std::string& name : splitCommas(text)) {
    if (name == "all") {
      for (const DebugSwitchInfo& info : debugSwitchTable())
        if (belongs(info)) switches.set(info.id);
      continue;
    }
    const std::optional<DebugSwitch> s = findDebugSwitch(name);
    if (!s || !belongs(debugSwitchInfo(*s))) {
      err << "ovaro-cli: unknown debug switch '" << name << "'. Known switches:";
      for (const DebugSwitchInfo& info : debugSwitchTable())
        if (belongs(info)) err << ' ' << info.name;
      err << " (or all)\n";
      return false;
    }
    switches.set(*s);
  }
  return true;
}

// --caution ROW,COL,VALUE,PERIOD.
bool parseCaution(const std::string& text, CautionExperiment& caution, std::ostream& err) {
  const std::vector<std::string> parts = splitCommas(text);
  auto integer = [](const std::string& s, int& v) {
    char* end = nullptr;
    const long x = std::strtol(s.c_str(), &end, 10);
    if (s.empty() || *end != '\0' || x < -1000000 || x > 1000000) return false;
    v = static_cast<int>(x);
    return true;
  };
  bool ok = parts.size() == 4 && integer(parts[0], caution.row) &&
            integer(parts[1], caution.column) && integer(parts[3], caution.period);
  if (ok) {
    char* end = nullptr;
    caution.value = std::strtod(parts[2].c_str(), &end);
    ok = !parts[2].empty() && *end == '\0';
  }
  if (!ok) {
    err << "ovaro-cli: --caution takes ROW,COL,VALUE,PERIOD, for example 1,1,0.09,1\n";
    return false;
  }
  caution.on = 1;
  return true;
}

nlohmann::json pathsJson(const Mat& paths, int rows, int lastPeriod) {
  nlohmann::json list = nlohmann::json::array();
  for (int i = 1; i <= rows; ++i) {
    nlohmann::json row = nlohmann::json::array();
    for (int t = 0; t <= lastPeriod; ++t) row.push_back(paths(i, t));
    list.push_back(row);
  }
  return list;
}

// Why a solve or a set of runs stopped: a debug file that could not be written in full (the
// workbench says nothing about it, the batch tool says so on stderr), else the last message.
std::string stopReason(const Workbench& wb, const RecordingPrompter& prompter,
                       const char* otherwise, std::ostream& err) {
  if (wb.debugFile.failed()) {
    const std::string reason = "writing the debug file " + wb.debugFile.path() +
                               " fell short (is the disk full?); the work was abandoned";
    err << "ovaro-cli: " << reason << "\n";
    return reason;
  }
  return prompter.messages().empty() ? std::string(otherwise) : prompter.messages().back().text;
}

int solve(const SolveOptions& o, std::ostream& out, std::ostream& err) {
  RecordingPrompter prompter(&err);
  NullProgress progress;
  Workbench wb(prompter, progress);
  const int method = o.method == "olf" ? kSolveOlf : kSolveQlp;
  if (!o.trace.empty() && !parseTrace(o.trace, false, wb.debug.switches, err)) return kExitUsage;
  if (!o.caution.empty()) {
    if (method != kSolveOlf) {
      err << "ovaro-cli: --caution applies to --method olf only\n";
      return kExitUsage;
    }
    if (!parseCaution(o.caution, wb.caution, err)) return kExitUsage;
  }
  auto failed = [&] {
    const std::string reason = stopReason(wb, prompter, "solve failed", err);
    if (o.json)
      out << dumpJson({{"error", reason}, {"messages", messagesJson(prompter.messages())}});
    return kExitFailed;
  };
  if (readModelFile(o.model, wb.model, prompter) != 1) {
    fileMessage(prompter, "Could not read file %s!", o.model);
    return failed();
  }
  wb.resultsFormat = o.format;
  wb.results.display.desiredPaths = o.desired;
  const bool rows = wb.model.display.orientation != opt::kPeriodsAsColumns;
  wb.results.display.periodsAsRows = rows;
  wb.results.display.periodsAsColumns = !rows;
  if (!o.debug.empty() && !wb.debugFile.open(o.debug)) {
    fileMessage(prompter, "Could not write file %s", o.debug);
    return failed();
  }
  if (!runSolveCommand(wb, method)) return failed();

  const StoredResult* result = wb.results.find(method == kSolveQlp ? "QLP" : "OLFwo");
  const Solution& s = result->solution;
  if (o.json) {
    nlohmann::json j;
    j["method"] = s.method;
    j["criterion"] = s.criterion;
    j["states"] = pathsJson(s.xs, s.n, s.nt);
    j["controls"] = pathsJson(s.us, s.m, s.nt - 1);
    j["desired_states"] = pathsJson(s.xtws, s.n, s.nt);
    j["desired_controls"] = pathsJson(s.utws, s.m, s.nt - 1);
    j["messages"] = messagesJson(prompter.messages());
    out << dumpJson(j);
  } else {
    out << renderResultsText(wb.model, wb.results, wb.resultsFormat);
  }
  return kExitOk;
}

// The run count on stderr, redrawn in place, when stderr is a terminal.
class TerminalProgress final : public Progress {
 public:
  explicit TerminalProgress(bool enabled) : enabled_(enabled) {}
  void start(int maximum) override {
    maximum_ = maximum;
    done_ = 0;
  }
  void step() override {
    ++done_;
    if (!enabled_ || maximum_ <= 0) return;
    const int width = 40;
    const int filled = done_ * width / maximum_;
    std::fprintf(
        stderr, "\r[%s%s] run %d of %d", std::string(static_cast<std::size_t>(filled), '#').c_str(),
        std::string(static_cast<std::size_t>(width - filled), ' ').c_str(), done_, maximum_);
    std::fflush(stderr);
  }
  void finish() override {
    if (enabled_ && maximum_ > 0) std::fputs("\n", stderr);
  }

 private:
  bool enabled_;
  int maximum_ = 0;
  int done_ = 0;
};

struct MonteCarloOptions {
  std::string model;
  std::string methods;
  int runs = -1;
  double seed = 0.5;
  bool json = false;
  bool no = false;
  std::string debug;
  std::string trace;
  int printRun = 0;
  int format = 0;
  int threads = 0;
  RunDistributor* distributor = nullptr;  // shares the runs with other processes (compare only)
};

// Sets up a workbench for a Monte Carlo command: the model, the seed, the debug file and switches.
// Returns an exit code, or -1 to go on.
int prepareMonteCarlo(const MonteCarloOptions& o, Workbench& wb, RecordingPrompter& prompter,
                      std::ostream& out, std::ostream& err) {
  if (!o.trace.empty() && !parseTrace(o.trace, true, wb.debug.switches, err)) return kExitUsage;
  if (o.printRun > 0) {
    wb.debug.runSelection = DebugRunSelection::RunNumber;
    wb.debug.runNumber = o.printRun;
  }
  auto failed = [&] {
    if (o.json)
      out << dumpJson({{"error", prompter.messages().back().text},
                       {"messages", messagesJson(prompter.messages())}});
    return kExitFailed;
  };
  if (readModelFile(o.model, wb.model, prompter) != 1) {
    fileMessage(prompter, "Could not read file %s!", o.model);
    return failed();
  }
  wb.random.quarnsSeed = static_cast<float>(o.seed);
  wb.resultsFormat = o.format;
  wb.threads = o.threads;
  wb.runDistributor = o.debug.empty() ? o.distributor : nullptr;
  if (!o.debug.empty() && !wb.debugFile.open(o.debug)) {
    fileMessage(prompter, "Could not write file %s", o.debug);
    return failed();
  }
  return -1;
}

int compare(const MonteCarloOptions& o, bool tty, std::ostream& out, std::ostream& err) {
  MethodSelection methods{};
  for (const std::string& name : splitCommas(o.methods)) {
    bool found = false;
    for (int k = 0; k < kMethodCount; ++k) {
      std::string lower = kMethodNames[static_cast<std::size_t>(k)];
      for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      if (name == lower) {
        methods[static_cast<std::size_t>(k)] = true;
        found = true;
      }
    }
    if (!found) {
      err << "ovaro-cli: unknown method '" << name << "' (hcfr, ce, cewo, olf, olin)\n";
      return kExitUsage;
    }
  }
  AnsweringPrompter prompter(&err, o.no);
  TerminalProgress progress(tty);
  Workbench wb(prompter, progress);
  if (const int code = prepareMonteCarlo(o, wb, prompter, out, err); code >= 0) return code;
  std::optional<int> runs;
  if (o.runs >= 0) runs = o.runs;
  const CompareResult r = runCompareCommand(wb, methods, runs);
  if (r.status != 1) {
    const std::string reason = stopReason(wb, prompter, "comparison stopped", err);
    if (o.json)
      out << dumpJson({{"error", reason}, {"messages", messagesJson(prompter.messages())}});
    return kExitFailed;
  }
  // Averages are formed by the summary only when there are two runs or more; for one run the
  // run's criterion is its own average.
  std::array<double, kMethodCount> averages = r.averages;
  if (r.runs == 1) averages = r.criterionSums;
  if (o.json) {
    nlohmann::json j;
    j["runs"] = r.runs;
    nlohmann::json names = nlohmann::json::array();
    nlohmann::json criteria = nlohmann::json::object();
    nlohmann::json avg = nlohmann::json::object();
    nlohmann::json counts = nlohmann::json::object();
    for (int k = 0; k < kMethodCount; ++k) {
      const std::size_t i = static_cast<std::size_t>(k);
      if (methods[i]) {
        names.push_back(kMethodNames[i]);
        nlohmann::json list = nlohmann::json::array();
        for (const auto& row : r.mcResults) list.push_back(row[i]);
        criteria[kMethodNames[i]] = list;
        avg[kMethodNames[i]] = averages[i];
      }
      counts[kMethodNames[i]] = r.lowestCounts[i];
    }
    j["methods"] = names;
    j["criteria"] = criteria;
    j["average_criterion"] = avg;
    j["lowest_counts"] = counts;
    j["criterion_summary"] = criterionSummaryJson(summarizeCriteria(r.mcResults, methods));
    j["messages"] = messagesJson(prompter.messages());
    out << dumpJson(j);
    return kExitOk;
  }
  out << "Monte Carlo comparison of " << o.model << ": " << r.runs << " run(s)\n";
  out << "Average criterion:";
  for (int k = 0; k < kMethodCount; ++k)
    if (methods[static_cast<std::size_t>(k)])
      out << "  " << kMethodNames[static_cast<std::size_t>(k)] << " = "
          << formatNumber("%g", averages[static_cast<std::size_t>(k)]);
  out << "\nRuns with lowest criterion:";
  for (int k = 0; k < kMethodCount; ++k)
    out << "  " << kMethodNames[static_cast<std::size_t>(k)] << " = "
        << r.lowestCounts[static_cast<std::size_t>(k)];
  out << "\n";
  if (r.runs == 1) out << "\n" << renderResultsText(wb.model, wb.results, wb.resultsFormat);
  return kExitOk;
}

int updating(const MonteCarloOptions& o, bool tty, std::ostream& out, std::ostream& err) {
  UpdatingMethods methods;
  for (const std::string& name : splitCommas(o.methods)) {
    if (name == "hcfr") {
      methods.hcfr = true;
    } else if (name == "ce") {
      methods.ce = true;
    } else if (name == "olf") {
      methods.olf = true;
    } else {
      err << "ovaro-cli: unknown method '" << name << "' (hcfr, ce, olf)\n";
      return kExitUsage;
    }
  }
  AnsweringPrompter prompter(&err, o.no);
  TerminalProgress progress(tty);
  Workbench wb(prompter, progress);
  if (const int code = prepareMonteCarlo(o, wb, prompter, out, err); code >= 0) return code;
  wb.updatingMethods = methods;
  std::optional<int> runs;
  if (o.runs >= 0) runs = o.runs;
  const UpdatingResult r = runUpdatingCommand(wb, runs);
  if (r.status != 1) {
    const std::string reason = stopReason(wb, prompter, "runs stopped", err);
    if (o.json)
      out << dumpJson({{"error", reason}, {"messages", messagesJson(prompter.messages())}});
    return kExitFailed;
  }
  if (o.json) {
    nlohmann::json j;
    j["runs"] = r.runs;
    j["criteria"] = {{"HCFR", r.criteria}};
    j["messages"] = messagesJson(prompter.messages());
    out << dumpJson(j);
    return kExitOk;
  }
  out << "Stochastic w/o Updating of " << o.model << ": " << r.runs << " run(s)\n";
  if (!r.criteria.empty()) {
    out << "Average HCFR criterion = "
        << formatNumber("%g", r.criterionSum / static_cast<double>(r.criteria.size())) << "\n";
  } else {
    out << "No criterion computed (select ce or olf beside hcfr to compute it).\n";
  }
  return kExitOk;
}

}  // namespace

int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err,
        RunDistributor* distributor) {
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
  TransformOptions transformOptions;
  CLI::App* transformCmd = addTransformCommand(app, transformOptions);
  ExamplesOptions examplesOptions;
  CLI::App* examplesCmd = addExamplesCommand(app, examplesOptions);
  ExportOptions exportOptions;
  CLI::App* exportCmd = addExportCommand(app, exportOptions);
  ImportOptions importOptions;
  CLI::App* importCmd = addImportCommand(app, importOptions);
  ImportMatrixOptions importMatrixOptions;
  CLI::App* importMatrixCmd = addImportMatrixCommand(app, importMatrixOptions);

  SolveOptions solveOptions;
  CLI::App* solveCmd = app.add_subcommand(
      "solve", "Solve a model by QLP or by OLF without updating and print the results table");
  solveCmd->add_option("model", solveOptions.model, "Model file (.ovi)")->required();
  solveCmd->add_option("--method", solveOptions.method, "qlp (default) or olf")
      ->check(CLI::IsMember({"qlp", "olf"}));
  std::vector<int> formatIds;
  for (const NumberFormat& f : numberFormats()) formatIds.push_back(f.id);
  solveCmd
      ->add_option("--format", solveOptions.format,
                   "Number format id: 770 00., 774 00.0, 778 00.00, 782 00.000, 784 00.0000, "
                   "785 0.0000E+000, 786 0.00E+000, 790 0.000000E+000, 795 %g (default 770)")
      ->check(CLI::IsMember(formatIds));
  solveCmd->add_flag("--desired", solveOptions.desired,
                     "Show the desired paths beside the optimal");
  solveCmd->add_flag("--json", solveOptions.json, "Print a JSON object instead of the table");
  solveCmd->add_option("--debug", solveOptions.debug, "Write a debug print file");
  solveCmd
      ->add_option("--trace", solveOptions.trace,
                   "Comma list of debug switches (qlp.k-and-p, qlp.x-and-u, ...) or all")
      ->needs(solveCmd->get_option("--debug"));
  solveCmd->add_option("--caution", solveOptions.caution,
                       "ROW,COL,VALUE,PERIOD: perturb SITT0(ROW,COL) to VALUE in PERIOD (olf)");

  MonteCarloOptions compareOptions;
  CLI::App* compareCmd =
      app.add_subcommand("compare", "Monte Carlo comparison of HCFR, CE, CEWO, OLF and OLIN");
  MonteCarloOptions updatingOptions;
  CLI::App* updatingCmd = app.add_subcommand(
      "updating", "Parameter updating: the handcrafted rule under noise, without updating");
  for (auto [cmd, o] :
       {std::pair{compareCmd, &compareOptions}, std::pair{updatingCmd, &updatingOptions}}) {
    const bool isCompare = cmd == compareCmd;
    cmd->add_option("model", o->model, "Model file (.ovi)")->required();
    cmd->add_option(
           "--methods", o->methods,
           isCompare ? "Comma list of hcfr, ce, cewo, olf, olin" : "Comma list of hcfr, ce, olf")
        ->required();
    cmd->add_option("--runs", o->runs, "Number of Monte Carlo runs (default: the model's)")
        ->check(CLI::Range(0, 1000000));
    cmd->add_option("--seed", o->seed, "Floating-point seed of the uniform generator (0.5)");
    cmd->add_flag("--json", o->json, "Print a JSON object");
    cmd->add_flag("--no", o->no, "Answer No to the questions (default Yes)");
    cmd->add_option("--debug", o->debug, "Write a debug print file");
    cmd->add_option("--trace", o->trace,
                    "Comma list of debug switches of the Compare sheet, or all")
        ->needs(cmd->get_option("--debug"));
    cmd->add_option("--print-run", o->printRun, "Print only this run in detail")
        ->check(CLI::Range(1, 1000000));
    cmd->add_option("--threads", o->threads,
                    isCompare ? "Threads for the runs (default: one per core); the results are the "
                                "same to the bit whatever the number, and a run with --debug stays "
                                "on one thread"
                              : "Accepted as for compare; these runs stay on one thread for now")
        ->check(CLI::Range(1, 1024));
    if (isCompare)
      cmd->add_option("--format", o->format, "Number format id of the one-run table")
          ->check(CLI::IsMember(formatIds));
  }

  const std::unique_ptr<PlotCommand> plotOptions = addPlotCommand(app);

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

  // The other processes of an mpirun job only help with an untraced comparison's runs.
  if (distributor != nullptr && distributor->rank() > 0 &&
      !(compareCmd->parsed() && compareOptions.debug.empty()))
    return kExitOk;
  compareOptions.distributor = distributor;
  if (infoCmd->parsed()) return info(infoOptions, out, err);
  if (convertCmd->parsed()) return convert(convertOptions, err);
  if (transformCmd->parsed()) return transform(transformOptions, out, err);
  if (examplesCmd->parsed()) return listExamples(examplesOptions, exampleLibrary(), out, err);
  if (exportCmd->parsed()) return exportModel(exportOptions, out, err);
  if (importCmd->parsed()) return importModel(importOptions, out, err);
  if (importMatrixCmd->parsed()) return importMatrix(importMatrixOptions, out, err);
  if (solveCmd->parsed()) return solve(solveOptions, out, err);
  if (plotOptions->command->parsed()) return runPlotCommand(*plotOptions, out, err);
  const bool tty = &err == &std::cerr && isatty(STDERR_FILENO);
  if (compareCmd->parsed()) return compare(compareOptions, tty, out, err);
  if (updatingCmd->parsed()) return updating(updatingOptions, tty, out, err);
  return kExitUsage;
}

}  // namespace ovaro::cli
