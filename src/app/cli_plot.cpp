#include "app/cli_plot.h"

#include <cmath>
#include <ostream>
#include <sstream>
#include <vector>

#include "app/model_report.h"
#include "io/number_format.h"
#include "model/model_file.h"
#include "results/display_selection.h"
#include "results/plot_layout.h"
#include "results/plot_series.h"
#include "results/solve_commands.h"
#include "results/stochastic_commands.h"
#include "results/workbench.h"

#ifdef OVARO_HAVE_PICTURES
#include <QSize>
#include <QString>

#include "ui/plots/plot_painter.h"
#endif

namespace ovaro::cli {

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

// Questions of the solves are answered Yes, as `compare` answers them by default.
class YesPrompter final : public RecordingPrompter {
 public:
  explicit YesPrompter(std::ostream* echo) : RecordingPrompter(echo) { setAnswerYes(true); }
};

const std::vector<std::pair<std::string, int>> kKinds{
    {"states", kPlotStates}, {"controls", kPlotControls}, {"parameters", kPlotParameters}};
const std::vector<std::pair<std::string, int>> kPaths{
    {"opt", kPathOptimum},   {"opt-des", kPathOptAndDes}, {"diff", kPathDifference},
    {"est", kPathEstimated}, {"true", kPathTrue},         {"est-true", kPathEstAndTrue}};

int lookup(const std::vector<std::pair<std::string, int>>& table, const std::string& name) {
  for (const auto& [key, id] : table)
    if (key == name) return id;
  return 0;
}

std::string lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

// A method combination of the plot as the comma list names it, e.g. "ce,olf" -> 2169; 0 when
// the list names no combination. `selection` receives the compare methods.
int combinationCode(const std::string& list, MethodSelection& selection) {
  selection = {};
  std::stringstream in(list);
  std::string item;
  int items = 0;
  while (std::getline(in, item, ',')) {
    ++items;
    bool found = false;
    for (std::size_t k = 0; k < kCompareMethods.size(); ++k) {
      if (lower(kCompareMethods[k]) == item && !selection[k]) selection[k] = found = true;
    }
    if (!found) return 0;
  }
  if (items == 0 || list.back() == ',') return 0;
  for (int code = kFirstSolutionCode + 2; code <= kLastSolutionCode; ++code) {
    const DisplayMethods d = displayMethods(solutionCodeToDisplay(code));
    MethodSelection named{};
    for (int i = 0; i < d.k; ++i)
      for (std::size_t k = 0; k < kCompareMethods.size(); ++k)
        if (kCompareMethods[k] == d.labels[static_cast<std::size_t>(i)]) named[k] = true;
    if (named == selection) return code;
  }
  return 0;
}

std::string combinationList() {
  std::string text;
  for (int code = kFirstSolutionCode + 2; code <= kLastSolutionCode; ++code) {
    const DisplayMethods d = displayMethods(solutionCodeToDisplay(code));
    std::string item;
    for (int i = 0; i < d.k; ++i)
      item += (i > 0 ? "," : "") + lower(d.labels[static_cast<std::size_t>(i)]);
    text += (text.empty() ? "" : " ") + item;
  }
  return text;
}

// The variable's 0-based index from its number (from 1) or its acronym; -1 when neither.
int variableIndex(const std::string& text, const std::vector<std::string>& names) {
  char* end = nullptr;
  const long number = std::strtol(text.c_str(), &end, 10);
  if (!text.empty() && *end == '\0')
    return number >= 1 && number <= static_cast<long>(names.size()) ? static_cast<int>(number - 1)
                                                                    : -1;
  for (std::size_t i = 0; i < names.size(); ++i)
    if (!text.empty() && names[i] == text) return static_cast<int>(i);
  return -1;
}

nlohmann::json positionsJson(const std::vector<PlotPoint>& points) {
  nlohmann::json list = nlohmann::json::array();
  for (const PlotPoint& p : points) list.push_back({p.x, p.y});
  return list;
}

// The frame's data: scale, labels and the number of points.
nlohmann::json frameJson(const PlotLayout& p) {
  nlohmann::json j;
  j["title"] = p.title.text;
  j["axis_label"] = p.axisLabel.text;
  j["min"] = p.scale.min;
  j["max"] = p.scale.max;
  j["range"] = p.scale.range;
  j["mid"] = p.scale.mid;
  j["scale"] = p.scale.factor;
  nlohmann::json labels = nlohmann::json::array();
  for (const PlotText& t : p.valueLabels) labels.push_back(t.text);
  j["value_labels"] = labels;
  j["points"] = p.points;
  nlohmann::json periods = nlohmann::json::array();
  for (const PlotText& t : p.periodLabels) periods.push_back(t.text);
  j["period_labels"] = periods;
  return j;
}

nlohmann::json plotJson(const std::vector<PlotSeries>& series, const PlotLayout& p) {
  nlohmann::json j = frameJson(p);
  nlohmann::json list = nlohmann::json::array();
  nlohmann::json polylines = nlohmann::json::array();
  for (std::size_t k = 0; k < series.size(); ++k) {
    list.push_back({{"legend", series[k].legend},
                    {"values", series[k].values},
                    {"positions", positionsJson(p.polylines[k])}});
    polylines.push_back(positionsJson(p.polylines[k]));
  }
  j["series"] = list;
  j["polylines"] = polylines;
  return j;
}

nlohmann::json spreadJson(const RunSpread& spread, const SpreadLayout& s) {
  nlohmann::json j = frameJson(s.frame);
  j["runs"] = spread.runs;
  nlohmann::json bands = nlohmann::json::array();
  for (std::size_t b = 0; b < spread.bands.size(); ++b) {
    const SpreadBand& band = spread.bands[b];
    bands.push_back({{"method", band.method},
                     {"median", band.median},
                     {"q10", band.low},
                     {"q90", band.high},
                     {"median_positions", positionsJson(s.medians[b])},
                     {"band_outline", positionsJson(s.bands[b])}});
  }
  j["bands"] = bands;
  j["desired"] = spread.desired;
  j["desired_positions"] = positionsJson(s.desired);
  return j;
}

// Writes the picture files asked for; false (with the reason shown) when one fails.
template <typename Paint>
bool writePictures(const PlotCommand& o, Paint paint, Prompter& prompter,
                   [[maybe_unused]] std::ostream& err) {
  if (o.png.empty() && o.svg.empty()) return true;
#ifdef OVARO_HAVE_PICTURES
  return ovaro::ui::withGuiApplication([&] {
    for (const std::string& file : {o.png, o.svg}) {
      if (file.empty()) continue;
      QString why;
      if (!ovaro::ui::writePicture(QString::fromStdString(file),
                                   QSize(ovaro::ui::kPictureWidth, ovaro::ui::kPictureHeight),
                                   paint, &why)) {
        prompter.inform("Could not write file " + file + "\r" + why.toStdString(), "Ovaro",
                        Icon::Exclamation);
        return false;
      }
    }
    return true;
  });
#else
  (void)paint;
  (void)prompter;
  err << "ovaro-cli: this build draws no pictures (it was built without the Qt workbench)\n";
  return false;
#endif
}

}  // namespace

std::unique_ptr<PlotCommand> addPlotCommand(CLI::App& app) {
  auto o = std::make_unique<PlotCommand>();
  CLI::App* c = app.add_subcommand(
      "plot", "Plot a state, control or parameter of a solution: its data, or a PNG/SVG picture");
  o->command = c;
  c->add_option("model", o->model, "Model file (.ovi)")->required();
  c->add_option("--method", o->method,
                "qlp, olf, or a comma list of compare methods forming a plot combination "
                "(hcfr,ce; ce,olf,olin; ...)")
      ->required();
  c->add_option("--kind", o->kind, "states, controls or parameters")
      ->required()
      ->check(CLI::IsMember({"states", "controls", "parameters"}));
  c->add_option("--variable", o->variable, "The variable's number from 1, or its acronym")
      ->required();
  c->add_option("--path", o->path,
                "opt, opt-des, diff (states, controls); est, true, est-true "
                "(parameters)")
      ->check(CLI::IsMember({"opt", "opt-des", "diff", "est", "true", "est-true"}));
  c->add_option("--runs", o->runs, "Number of Monte Carlo runs (default: the model's)")
      ->check(CLI::Range(0, 1000000));
  c->add_option("--seed", o->seed, "Floating-point seed of the uniform generator (0.5)");
  c->add_option("--png", o->png, "Write the picture as a PNG file");
  c->add_option("--svg", o->svg, "Write the picture as an SVG file");
  c->add_flag("--json", o->json, "Print the plot's data as a JSON object");
  c->add_flag("--bands", o->bands,
              "Draw the spread over all runs of a comparison: median and 10-90% band per method");
  return o;
}

int runPlotCommand(const PlotCommand& o, std::ostream& out, std::ostream& err) {
  const int kind = lookup(kKinds, o.kind);
  MethodSelection selection{};
  int code = 0;
  if (o.method == "qlp") {
    code = kFirstSolutionCode;
  } else if (o.method == "olf") {
    code = kFirstSolutionCode + 1;
  } else {
    code = combinationCode(o.method, selection);
    if (code == 0) {
      err << "ovaro-cli: --method " << o.method
          << " is not qlp, olf or a plot combination of compare methods; the combinations are: "
          << combinationList() << "\n";
      return kExitUsage;
    }
  }
  const bool comparison = code > kFirstSolutionCode + 1;
  const int path = lookup(kPaths, o.path);
  if (o.bands) {
    if (!comparison || kind == kPlotParameters) {
      err << "ovaro-cli: --bands draws a state or control over the runs of a comparison: give "
             "--method a list of compare methods and --kind states or controls\n";
      return kExitUsage;
    }
  } else if (path == 0) {
    err << "ovaro-cli: --path is required (opt, opt-des, diff, est, true or est-true)\n";
    return kExitUsage;
  } else if ((kind == kPlotParameters) != (path >= kPathEstimated)) {
    err << "ovaro-cli: --path " << o.path << " does not apply to --kind " << o.kind
        << " (states and controls: opt, opt-des, diff; parameters: est, true, est-true)\n";
    return kExitUsage;
  }

  YesPrompter prompter(&err);
  NullProgress progress;
  Workbench wb(prompter, progress);
  auto failed = [&](std::string reason) {
    if (o.json)
      out << dumpJson(
          {{"error", prompter.messages().empty() ? reason : prompter.messages().back().text},
           {"messages", messagesJson(prompter.messages())}});
    return kExitFailed;
  };
  if (readModelFile(o.model, wb.model, prompter) != 1) {
    prompter.inform("Could not read file " + o.model + "!", "Ovaro", Icon::Exclamation);
    return failed("model not read");
  }
  const std::vector<std::string> names = plotVariableNames(wb.model, kind);
  const int variable = variableIndex(o.variable, names);
  if (variable < 0) {
    err << "ovaro-cli: --variable " << o.variable << ": the model's " << o.kind << " are 1.."
        << names.size();
    for (const std::string& n : names) err << ' ' << n;
    err << "\n";
    return kExitUsage;
  }
  wb.random.quarnsSeed = static_cast<float>(o.seed);
  if (comparison) {
    std::optional<int> runs;
    if (o.runs >= 0) runs = o.runs;
    const CompareResult r = runCompareCommand(wb, selection, runs);
    if (r.status != 1 || r.runs == 0) return failed("comparison stopped");
  } else if (!runSolveCommand(wb, code == kFirstSolutionCode ? kSolveQlp : kSolveOlf)) {
    return failed("solve failed");
  }

  if (o.bands) {
    const RunSpread spread = spreadOverRuns(*wb.results.comparison, kind == kPlotStates, variable);
    if (spread.bands.empty()) {
      prompter.inform(kNoSeriesSelected, "Warning!", Icon::Exclamation);
      return failed(kNoSeriesSelected);
    }
    PlotLabels labels =
        plotLabels(wb.model, kind, variable, static_cast<int>(spread.desired.size()));
    labels.title += " - median and 10-90% of " + std::to_string(spread.runs) + " runs";
    const SpreadLayout layout = layoutSpread(spread, labels);
#ifdef OVARO_HAVE_PICTURES
    auto paint = [&layout](QPainter& p, const QRect& r) { ovaro::ui::paintSpread(p, r, layout); };
#else
    int paint = 0;
#endif
    if (!writePictures(o, paint, prompter, err)) return failed("picture not written");
    if (o.json) {
      nlohmann::json j = spreadJson(spread, layout);
      j["messages"] = messagesJson(prompter.messages());
      out << dumpJson(j);
    } else {
      out << layout.frame.title.text << "\n";
      for (const SpreadBand& b : spread.bands)
        out << "  " << b.method << ": median at the last period "
            << formatNumber("%g", b.median.back()) << ", 10-90% "
            << formatNumber("%g", b.low.back()) << " .. " << formatNumber("%g", b.high.back())
            << "\n";
    }
    return kExitOk;
  }

  PlotChoices choices;
  choices.variable = variable;
  choices.kind = kind;
  choices.pathType = path;
  choices.method = code;
  const SeriesGathering g = gatherSeries(wb.results, choices);
  if (g.series.empty()) {
    prompter.inform(kNoSeriesSelected, "Warning!", Icon::Exclamation);
    return failed(kNoSeriesSelected);
  }
  const int points = static_cast<int>(g.series.front().values.size());
  const PlotLayout layout = layoutPlot(g.series, plotLabels(wb.model, kind, variable, points));
#ifdef OVARO_HAVE_PICTURES
  auto paint = [&layout](QPainter& p, const QRect& r) { ovaro::ui::paintPlot(p, r, layout); };
#else
  int paint = 0;
#endif
  if (!writePictures(o, paint, prompter, err)) return failed("picture not written");
  if (o.json) {
    nlohmann::json j = plotJson(g.series, layout);
    j["messages"] = messagesJson(prompter.messages());
    out << dumpJson(j);
  } else {
    out << layout.title.text << " (" << layout.axisLabel.text << "), " << layout.points
        << " periods\n  series:";
    for (const PlotSeries& s : g.series) out << "  " << s.legend;
    out << "\n  value labels:";
    for (const PlotText& t : layout.valueLabels) out << " [" << t.text << "]";
    out << "\n";
  }
  return kExitOk;
}

nlohmann::json criterionSummaryJson(const CriterionSummary& s) {
  // NaN (not defined for one run) is written as null.
  auto number = [](double v) { return std::isfinite(v) ? nlohmann::json(v) : nlohmann::json(); };
  nlohmann::json methods = nlohmann::json::object();
  for (const CriterionStats& c : s.methods)
    methods[c.method] = {{"mean", number(c.mean)},
                         {"standard_error", number(c.standardError)},
                         {"median", number(c.median)},
                         {"q10", number(c.q10)},
                         {"q90", number(c.q90)}};
  nlohmann::json pairs = nlohmann::json::array();
  for (const CriterionDifference& p : s.pairs)
    pairs.push_back({{"first", p.first},
                     {"second", p.second},
                     {"mean_difference", number(p.mean)},
                     {"standard_error", number(p.standardError)},
                     {"ci95", {number(p.low95), number(p.high95)}},
                     {"confidence_first_lower", number(p.confidenceFirstLower)}});
  return {{"runs", s.runs}, {"methods", methods}, {"pairs", pairs}};
}

}  // namespace ovaro::cli
