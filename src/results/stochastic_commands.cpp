#include "results/stochastic_commands.h"

#include "results/display_selection.h"

namespace ovaro {

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
  CompareResult result = maincompare(wb.model, settings, wb.random, wb.prompter, wb.progress);
  if (result.status == 1 && result.runs > 0) {
    // The display shows the comparison, not an earlier single solve.
    wb.results.ran.qlp = false;
    wb.results.ran.olfWithoutUpdate = false;
    for (int k = 0; k < kMethodCount; ++k) {
      if (!methods[static_cast<std::size_t>(k)]) continue;
      const RunPaths& rp = result.lastRun[static_cast<std::size_t>(k)];
      StoredResult stored;
      Solution& s = stored.solution;
      s.method = kMethodNames[static_cast<std::size_t>(k)];
      s.n = result.n;
      s.m = result.m;
      s.nt = result.nt;
      s.xs = rp.xs;
      s.us = rp.us;
      s.xtws = result.xtws;
      s.utws = result.utws;
      s.criterion = rp.criterion;
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
    StoredResult stored;
    Solution& s = stored.solution;
    s.method = "HCFR";
    s.n = result.n;
    s.m = result.m;
    s.nt = result.nt;
    s.xs = result.xs;
    s.us = result.us;
    s.xtws = result.xtws;
    s.utws = result.utws;
    s.criterion = result.criteria.empty() ? 0.0 : result.criteria.back();
    wb.results.store(std::move(stored));
  }
  wb.debugFile.close();
  return result;
}

}  // namespace ovaro
