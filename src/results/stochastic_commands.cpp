#include "results/stochastic_commands.h"

#include <utility>

#include "results/display_selection.h"
#include "results/scenario_commands.h"

namespace ovaro {

namespace {

// A run's paths as a stored solution of the method.
StoredResult storedRun(const char* method, int n, int m, int nt, const Mat& xs, const Mat& us,
                       const Mat& xtws, const Mat& utws, double criterion) {
  StoredResult stored;
  Solution& s = stored.solution;
  s.method = method;
  s.n = n;
  s.m = m;
  s.nt = nt;
  s.xs = xs;
  s.us = us;
  s.xtws = xtws;
  s.utws = utws;
  s.criterion = criterion;
  return stored;
}

// What the comparison kept of every run, for the spread over runs and the criterion summary.
// The run paths are moved, not copied: they are the largest arrays a comparison makes.
ComparisonRuns comparisonRuns(CompareResult& r) {
  ComparisonRuns runs;
  runs.runs = r.runs;
  runs.n = r.n;
  runs.m = r.m;
  runs.nt = r.nt;
  runs.selected = r.selected;
  runs.xs = std::move(r.runXs);
  runs.us = std::move(r.runUs);
  runs.criteria = r.mcResults;
  runs.xtws = r.xtws;
  runs.utws = r.utws;
  return runs;
}

}  // namespace

CompareSettings compareSettings(Workbench& wb, const MethodSelection& methods,
                                std::optional<int> runs) {
  CompareSettings settings;
  settings.methods = methods;
  settings.runs = runs;
  settings.qTest = wb.shell.qTest != 0;
  settings.debug = wb.debug;
  settings.file = wb.debugFile.isOpen() ? &wb.debugFile : nullptr;
  settings.eps = wb.eps;
  settings.threads = wb.threads;
  settings.distributor = wb.runDistributor;
  return settings;
}

void keepCompareResult(Workbench& wb, const MethodSelection& methods, CompareResult& result) {
  if (result.status != 1 || result.runs <= 0) return;
  // The display shows the comparison, not an earlier single solve.
  wb.results.ran.qlp = false;
  wb.results.ran.olfWithoutUpdate = false;
  for (int k = 0; k < kMethodCount; ++k) {
    if (!methods[static_cast<std::size_t>(k)]) continue;
    const RunPaths& rp = result.lastRun[static_cast<std::size_t>(k)];
    StoredResult stored =
        storedRun(kMethodNames[static_cast<std::size_t>(k)], result.n, result.m, result.nt, rp.xs,
                  rp.us, result.xtws, result.utws, rp.criterion);
    if (result.np > 0) stored.parameters = ParameterPaths{rp.thetas, rp.thetatrue};
    wb.results.store(std::move(stored));
  }
  wb.results.statistics = result.statistics;
  wb.results.comparison = comparisonRuns(result);
  SelectDisplayAfterSolve(wb.results, wb.prompter);
  // The scenario is the first compared method's last run, the solution the table shows first.
  for (int k = 0; k < kMethodCount; ++k) {
    if (!methods[static_cast<std::size_t>(k)]) continue;
    storeScenarioAfterSolve(
        wb, wb.results.find(kMethodNames[static_cast<std::size_t>(k)])->solution, true);
    break;
  }
}

CompareResult runCompareCommand(Workbench& wb, const MethodSelection& methods,
                                std::optional<int> runs) {
  wb.results.ran.compare = methods;
  const CompareSettings settings = compareSettings(wb, methods, runs);
  CompareResult result = maincompare(wb.model, settings, wb.random, wb.prompter, wb.progress);
  keepCompareResult(wb, methods, result);
  wb.debugFile.close();
  return result;
}

UpdatingSettings updatingSettings(Workbench& wb, std::optional<int> runs) {
  UpdatingSettings settings;
  settings.methods = wb.updatingMethods;
  settings.runs = runs;
  settings.debug = wb.debug;
  settings.file = wb.debugFile.isOpen() ? &wb.debugFile : nullptr;
  settings.eps = wb.eps;
  return settings;
}

void keepUpdatingResult(Workbench& wb, const UpdatingResult& result) {
  if (result.status == 1 && result.runs > 0 && wb.updatingMethods.hcfr) {
    StoredResult stored =
        storedRun("HCFR", result.n, result.m, result.nt, result.xs, result.us, result.xtws,
                  result.utws, result.criteria.empty() ? 0.0 : result.criteria.back());
    wb.results.store(std::move(stored));
  }
}

UpdatingResult runUpdatingCommand(Workbench& wb, std::optional<int> runs) {
  UpdatingResult result = maincompareWoUpdating(wb.model, updatingSettings(wb, runs), wb.random,
                                                wb.prompter, wb.progress);
  keepUpdatingResult(wb, result);
  wb.debugFile.close();
  return result;
}

}  // namespace ovaro
