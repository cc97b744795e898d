#include "results/stochastic_commands.h"

#include "results/display_selection.h"

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

}  // namespace

CompareResult runCompareCommand(Workbench& wb, const MethodSelection& methods,
                                std::optional<int> runs) {
  wb.results.ran.compare = methods;
  CompareSettings settings;
  settings.methods = methods;
  settings.runs = runs;
  settings.qTest = wb.shell.qTest != 0;
  settings.debug = wb.debug;
  settings.file = wb.debugFile.isOpen() ? &wb.debugFile : nullptr;
  settings.eps = wb.eps;
  settings.threads = wb.threads;
  CompareResult result = maincompare(wb.model, settings, wb.random, wb.prompter, wb.progress);
  if (result.status == 1 && result.runs > 0) {
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
    SelectDisplayAfterSolve(wb.results, wb.prompter);
  }
  wb.debugFile.close();
  return result;
}

UpdatingResult runUpdatingCommand(Workbench& wb, std::optional<int> runs) {
  UpdatingSettings settings;
  settings.methods = wb.updatingMethods;
  settings.runs = runs;
  settings.debug = wb.debug;
  settings.file = wb.debugFile.isOpen() ? &wb.debugFile : nullptr;
  settings.eps = wb.eps;
  UpdatingResult result =
      maincompareWoUpdating(wb.model, settings, wb.random, wb.prompter, wb.progress);
  if (result.status == 1 && result.runs > 0 && wb.updatingMethods.hcfr) {
    StoredResult stored =
        storedRun("HCFR", result.n, result.m, result.nt, result.xs, result.us, result.xtws,
                  result.utws, result.criteria.empty() ? 0.0 : result.criteria.back());
    wb.results.store(std::move(stored));
  }
  wb.debugFile.close();
  return result;
}

}  // namespace ovaro
