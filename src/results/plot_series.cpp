#include "results/plot_series.h"

#include "results/display_selection.h"

namespace ovaro {

namespace {

// The plot dialog's labels of the solution codes 2160..2176, in code order.
constexpr std::array<std::string_view, 17> kPlotMethodLabels{"QLP",
                                                             "OLF w/o updated coef",
                                                             "HCFR",
                                                             "CE",
                                                             "CEWO  (CE w/o update)",
                                                             "OLF",
                                                             "OLIN  (OLF with Insight)",
                                                             "HCFR-CE",
                                                             "CE-CEWO",
                                                             "CE-OLF",
                                                             "CE-OLIN",
                                                             "CEWO-OLF",
                                                             "CEWO-OLIN",
                                                             "OLF-OLIN",
                                                             "HCFR-CE-OLF",
                                                             "CE-OLF-OLIN",
                                                             "CEWO-OLF-OLIN"};

// The methods a solution code names, in legend order.
std::vector<std::string_view> methodsOf(int code) {
  const DisplayMethods d = displayMethods(solutionCodeToDisplay(code));
  return {d.labels.begin(), d.labels.begin() + d.k};
}

// Row `row` of a path over periods 0..last, or nothing when the array does not hold them.
std::vector<double> rowOf(const Mat& a, int row, int last) {
  if (last < 0 || row < a.rlo() || row > a.rhi() || a.clo() > 0 || a.chi() < last) return {};
  std::vector<double> values;
  values.reserve(static_cast<std::size_t>(last) + 1);
  for (int t = 0; t <= last; ++t) values.push_back(a(row, t));
  return values;
}

// The path and the desired path of a variable in one solution; empty when the solution does not
// hold the variable.
struct VariablePaths {
  std::vector<double> path;
  std::vector<double> desired;
};

VariablePaths pathsOf(const Solution& s, int variable, int kind) {
  const bool states = kind == kPlotStates;
  const int count = states ? s.n : s.m;
  if (variable < 0 || variable >= count) return {};
  const int last = states ? s.nt : s.nt - 1;
  const Mat& path = states ? s.xs : s.us;
  const Mat& desired = states ? s.xtws : s.utws;
  VariablePaths p{rowOf(path, variable + 1, last), rowOf(desired, variable + 1, last)};
  if (p.path.empty() || p.desired.empty()) return {};
  return p;
}

// Gathers one series per method of the code (or per method and per part, for the parameter
// pairs) from the variable's paths; `make` appends the series of one method.
template <typename Make>
SeriesGathering gatherEach(const ResultsStore& store, int method, Make make) {
  SeriesGathering g;
  const std::vector<std::string_view> methods = methodsOf(method);
  const bool single = methods.size() == 1;
  for (std::string_view name : methods) {
    const StoredResult* stored = store.find(name);
    if (stored == nullptr || !make(*stored, std::string(name), single, g.series)) {
      g.series.clear();
      g.missingMethod = std::string(name);
      return g;
    }
  }
  for (std::size_t k = 0; k < g.series.size(); ++k) g.series[k].pen = static_cast<int>(k);
  return g;
}

bool isPathOfKind(int pathType, int kind) {
  if (kind == kPlotParameters) return pathType >= kPathEstimated && pathType <= kPathEstAndTrue;
  return (kind == kPlotStates || kind == kPlotControls) && pathType >= kPathOptimum &&
         pathType <= kPathDifference;
}

std::string trimmed(std::string_view s) {
  const std::size_t first = s.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(s.substr(first, s.find_last_not_of(' ') - first + 1));
}

const LabelTable* tableOf(const Model& model, int kind) {
  switch (kind) {
    case kPlotStates:
      return &model.states;
    case kPlotControls:
      return &model.controls;
    case kPlotParameters:
      return &model.parameters;
    default:
      return nullptr;
  }
}

}  // namespace

std::string_view plotMethodLabel(int code) {
  if (code < kFirstSolutionCode || code > kLastSolutionCode) return {};
  return kPlotMethodLabels[static_cast<std::size_t>(code - kFirstSolutionCode)];
}

SeriesGathering gatherOptimum(const ResultsStore& store, int method, int variable, int kind) {
  return gatherEach(
      store, method,
      [&](const StoredResult& r, std::string name, bool single, std::vector<PlotSeries>& out) {
        VariablePaths p = pathsOf(r.solution, variable, kind);
        if (p.path.empty()) return false;
        out.push_back({single ? "Opt" : std::move(name), std::move(p.path)});
        return true;
      });
}

SeriesGathering gatherOptAndDes(const ResultsStore& store, int method, int variable, int kind) {
  std::vector<double> desired;
  SeriesGathering g = gatherEach(
      store, method,
      [&](const StoredResult& r, std::string name, bool single, std::vector<PlotSeries>& out) {
        VariablePaths p = pathsOf(r.solution, variable, kind);
        if (p.path.empty()) return false;
        // Every method tracks the same desired path; the first
        // method's copy is shown.
        if (desired.empty()) desired = std::move(p.desired);
        out.push_back({single ? "Opt" : std::move(name), std::move(p.path)});
        return true;
      });
  if (!g.series.empty()) {
    const int pen = static_cast<int>(g.series.size());
    g.series.push_back({"Des", std::move(desired), pen});
  }
  return g;
}

SeriesGathering gatherDifference(const ResultsStore& store, int method, int variable, int kind) {
  return gatherEach(
      store, method,
      [&](const StoredResult& r, std::string name, bool single, std::vector<PlotSeries>& out) {
        VariablePaths p = pathsOf(r.solution, variable, kind);
        if (p.path.empty()) return false;
        for (std::size_t t = 0; t < p.path.size(); ++t) p.path[t] -= p.desired[t];
        out.push_back({single ? "Diff" : std::move(name), std::move(p.path)});
        return true;
      });
}

SeriesGathering gatherParameters(const ResultsStore& store, int pathType, int method,
                                 int variable) {
  // The two single solves carry no parameter paths: no series at all, not a missing solution.
  if (method == kFirstSolutionCode || method == kFirstSolutionCode + 1) return {};
  return gatherEach(
      store, method,
      [&](const StoredResult& r, std::string name, bool single, std::vector<PlotSeries>& out) {
        if (!r.parameters) return false;
        const int last = r.solution.nt;
        std::vector<double> est = rowOf(r.parameters->estimates, variable + 1, last);
        std::vector<double> truth = rowOf(r.parameters->trueValues, variable + 1, last);
        if (variable < 0 || est.empty() || truth.empty()) return false;
        if (pathType == kPathEstAndTrue) {
          out.push_back({name + " Est", std::move(est)});
          out.push_back({name + " True", std::move(truth)});
        } else if (pathType == kPathEstimated) {
          out.push_back({single ? "Est" : std::move(name), std::move(est)});
        } else {
          out.push_back({single ? "True" : std::move(name), std::move(truth)});
        }
        return true;
      });
}

SeriesGathering gatherSeries(const ResultsStore& store, const PlotChoices& c) {
  if (c.variable < 0 || !isPathOfKind(c.pathType, c.kind)) return {};
  switch (c.pathType) {
    case kPathOptimum:
      return gatherOptimum(store, c.method, c.variable, c.kind);
    case kPathOptAndDes:
      return gatherOptAndDes(store, c.method, c.variable, c.kind);
    case kPathDifference:
      return gatherDifference(store, c.method, c.variable, c.kind);
    default:
      return gatherParameters(store, c.pathType, c.method, c.variable);
  }
}

PlotLabels plotLabels(const Model& model, int kind, int variable, int points) {
  PlotLabels labels;
  if (const LabelTable* table = tableOf(model, kind);
      table != nullptr && variable >= 0 &&
      static_cast<std::size_t>(variable) < table->acronyms.size()) {
    const auto v = static_cast<std::size_t>(variable);
    // The label tables hold at most 8 characters of an acronym and 47 of a name.
    labels.acronym = trimmed(std::string_view(table->acronyms[v]).substr(0, 8));
    if (v < table->names.size())
      labels.title = trimmed(std::string_view(table->names[v]).substr(0, 47));
  }
  for (int t = 0; t < points; ++t) {
    std::string acronym;
    if (static_cast<std::size_t>(t) < model.periods.acronyms.size())
      acronym = trimmed(model.periods.acronyms[static_cast<std::size_t>(t)]);
    labels.periods.push_back(acronym.empty() ? std::to_string(model.dims.initialPeriod.value + t)
                                             : acronym);
  }
  return labels;
}

std::vector<std::string> plotVariableNames(const Model& model, int kind) {
  std::vector<std::string> names;
  if (const LabelTable* table = tableOf(model, kind)) {
    for (const std::string& a : table->acronyms) names.push_back(trimmed(a));
  }
  return names;
}

}  // namespace ovaro
