#include "results/scenario_store.h"

#include <algorithm>
#include <utility>

#include "numeric/matrix_ops.h"

namespace ovaro {

namespace {

constexpr std::size_t kScenarioAcronymLength = 8;
constexpr std::size_t kScenarioDescriptionLength = 47;

// Grows a variable x period x scenario array by one scenario (a fresh one when the store is
// empty) and copies rows 1..rows, periods 0..last of `from` into the new scenario.
Mat3 grown(Mat3 array, int rows, int last, int oldCount, const Mat& from, Prompter& prompter) {
  const int top = std::max(rows, 1);
  const int end = std::max(last, 0);
  Mat3 result = oldCount == 0 ? mat3(1, top, 0, end, 1, 1)
                              : ModMatSize(1, top, 0, end, 1, oldCount, oldCount + 1,
                                           std::move(array), prompter);
  const int s = oldCount + 1;
  for (int i = 1; i <= rows; ++i)
    for (int t = 0; t <= last; ++t)
      result(i, t, s) = from.rlo() <= i && i <= from.rhi() && from.clo() <= t && t <= from.chi()
                            ? from(i, t)
                            : 0.0;
  return result;
}

// Per variable, scenarios by periods.
Mat3 transposed(const Mat3& a, int rows, int last, int count) {
  Mat3 t = mat3(1, std::max(rows, 1), 1, std::max(count, 1), 0, std::max(last, 0));
  for (int i = 1; i <= rows; ++i)
    for (int p = 0; p <= last; ++p)
      for (int s = 1; s <= count; ++s) t(i, s, p) = a(i, p, s);
  return t;
}

std::vector<double> pathOf(const Mat3& a, int variable, int last, int scenario) {
  std::vector<double> v;
  for (int t = 0; t <= last; ++t) v.push_back(a(variable + 1, t, scenario));
  return v;
}

}  // namespace

int addScenario(ScenarioStore& store, const Solution& solution, const ScenarioName& name,
                DebugFile* debug, Prompter& prompter) {
  if (store.count > 0 &&
      (store.n != solution.n || store.m != solution.m || store.nt != solution.nt)) {
    prompter.inform(
        "The stored scenarios were made for a model of other sizes.\t\t\r They are replaced by "
        "this solution.",
        "Scenario");
    store = ScenarioStore{};
  }
  const int old = store.count;
  store.n = solution.n;
  store.m = solution.m;
  store.nt = solution.nt;
  store.xs = grown(std::move(store.xs), solution.n, solution.nt, old, solution.xs, prompter);
  store.us = grown(std::move(store.us), solution.m, solution.nt - 1, old, solution.us, prompter);
  store.xsDes =
      grown(std::move(store.xsDes), solution.n, solution.nt, old, solution.xtws, prompter);
  store.usDes =
      grown(std::move(store.usDes), solution.m, solution.nt - 1, old, solution.utws, prompter);
  store.acronyms.push_back(name.acronym.substr(0, kScenarioAcronymLength));
  store.descriptions.push_back(name.description.substr(0, kScenarioDescriptionLength));
  store.methods.push_back(solution.method);
  store.count = old + 1;
  if (debug != nullptr && debug->isOpen()) dumpScenarios(store, *debug);
  return store.count;
}

int dumpScenarios(const ScenarioStore& s, DebugFile& f) {
  const int S = s.count, T = s.nt;
  f.dumpMatrix3("ScenarioXs", 1, s.n, 0, T, 1, S, s.xs);
  f.dumpMatrix3("ScenarioUs", 1, s.m, 0, T - 1, 1, S, s.us);
  f.dumpMatrix3("ScenarioXsDes", 1, s.n, 0, T, 1, S, s.xsDes);
  f.dumpMatrix3("ScenarioUsDes", 1, s.m, 0, T - 1, 1, S, s.usDes);
  f.writeHeading("\r\nTranspose of Scenarios - each state and each control");
  f.dumpMatrix3("ScenarioXsT", 1, s.n, 1, S, 0, T, transposed(s.xs, s.n, T, S));
  f.dumpMatrix3("ScenarioUsT", 1, s.m, 1, S, 0, T - 1, transposed(s.us, s.m, T - 1, S));
  f.dumpMatrix3("ScenarioXsDesT", 1, s.n, 1, S, 0, T, transposed(s.xsDes, s.n, T, S));
  f.dumpMatrix3("ScenarioUsDesT", 1, s.m, 1, S, 0, T - 1, transposed(s.usDes, s.m, T - 1, S));
  return f.ok();
}

std::vector<int> chosenScenarios(const ScenarioStore& store, const ScenarioPlotChoices& c) {
  const std::size_t most = c.pathType == kScenarioMultiDesired ? 3 : c.chosen.size();
  std::vector<int> chosen;
  for (int s : c.chosen) {
    if (s < 1 || s > store.count || chosen.size() == most) break;
    chosen.push_back(s);
  }
  return chosen;
}

std::vector<PlotSeries> gatherScenarioSeries(const ScenarioStore& store,
                                             const ScenarioPlotChoices& c) {
  const bool states = c.kind == kScenarioStates;
  if (!states && c.kind != kScenarioControls) return {};
  const int count = states ? store.n : store.m;
  if (c.variable < 0 || c.variable >= count) return {};
  const int last = states ? store.nt : store.nt - 1;
  const Mat3& path = states ? store.xs : store.us;
  const Mat3& desired = states ? store.xsDes : store.usDes;
  std::vector<PlotSeries> series;
  const std::vector<int> chosen = chosenScenarios(store, c);
  for (int s : chosen) {
    const std::string& acronym = store.acronyms[static_cast<std::size_t>(s - 1)];
    std::vector<double> v = pathOf(path, c.variable, last, s);
    if (c.pathType == kScenarioDifference) {
      const std::vector<double> d = pathOf(desired, c.variable, last, s);
      for (std::size_t t = 0; t < v.size(); ++t) v[t] -= d[t];
    }
    series.push_back({acronym, std::move(v), static_cast<int>(series.size())});
    if (c.pathType == kScenarioMultiDesired)
      series.push_back({acronym + " Des", pathOf(desired, c.variable, last, s),
                        static_cast<int>(series.size())});
  }
  if (c.pathType == kScenarioOptAndDesired && !chosen.empty())
    series.push_back({"Des", pathOf(desired, c.variable, last, chosen.front()), kDesiredPen});
  return series;
}

}  // namespace ovaro
