// ovaro-cli plot: the workbench's plots as data and as pictures, without a display.
//
//   ovaro-cli plot MODEL --method qlp|olf|LIST --kind states|controls|parameters --variable I
//                  --path opt|opt-des|diff|est|true|est-true [--runs N] [--seed F]
//                  [--png FILE] [--svg FILE] [--json] [--bands]
//
// qlp and olf solve the model by that method; LIST is a comma list of compare methods that
// forms one of the plot's method combinations (hcfr,ce / ce,olf,olin / ...): the comparison runs
// as `compare` runs it and the last run of each method is plotted, as in the workbench. I is the
// variable's number from 1 (or its acronym). --json prints the plot's data: the series (legend,
// values and point positions), min, max, mid, range, scale, axis_label, value_labels, title,
// points (P), period_labels and polylines; --png and --svg write the picture. --bands (with a
// LIST) draws the spread of the variable over all runs instead: per method the median and the
// 10-90% band, and the desired path; --path is then not needed.
//
// The summary of a comparison's criteria that `compare --json` prints comes from here too.
#pragma once

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iosfwd>
#include <memory>
#include <string>

#include "results/run_statistics.h"

namespace ovaro::cli {

// The sub-command and its options, bound to the parser (so the record stays where it was made).
struct PlotCommand {
  CLI::App* command = nullptr;
  std::string model;
  std::string method;
  std::string kind;
  std::string variable;
  std::string path;
  int runs = -1;
  double seed = 0.5;
  std::string png;
  std::string svg;
  bool json = false;
  bool bands = false;
};

// Adds the plot sub-command to the application.
std::unique_ptr<PlotCommand> addPlotCommand(CLI::App& app);
// Runs it once the command line has been parsed; the exit code.
int runPlotCommand(const PlotCommand& command, std::ostream& out, std::ostream& err);

// "criterion_summary": per method mean, standard_error, median, q10, q90; per pair first,
// second, mean_difference, standard_error, ci95 [low, high], confidence_first_lower. Values that
// are not defined (one run) are null.
nlohmann::json criterionSummaryJson(const CriterionSummary& summary);

}  // namespace ovaro::cli
