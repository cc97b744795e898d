#include "stoch/monte_carlo_stats.h"

#include <cstdio>
#include <string>

namespace ovaro {

MonteCarloPaths makeMonteCarloPaths(int n, int m, int nt, int nmc) {
  MonteCarloPaths p;
  for (int k = 0; k < kMethodCount; ++k) {
    p.xs[static_cast<std::size_t>(k)] = mat3(1, n, 0, nt, 1, nmc);
    p.us[static_cast<std::size_t>(k)] = mat3(1, m, 0, nt - 1, 1, nmc);
  }
  return p;
}

void storeRunPaths(MonteCarloPaths& paths, int method, int run, const RunPaths& rp) {
  Mat3& xs = paths.xs[static_cast<std::size_t>(method)];
  Mat3& us = paths.us[static_cast<std::size_t>(method)];
  for (int i = xs.rlo(); i <= xs.rhi(); ++i)
    for (int t = xs.clo(); t <= xs.chi(); ++t) xs(i, t, run) = rp.xs(i, t);
  for (int j = us.rlo(); j <= us.rhi(); ++j)
    for (int t = us.clo(); t <= us.chi(); ++t) us(j, t, run) = rp.us(j, t);
}

namespace {

std::string printed(const char* format, const std::array<double, kMethodCount>& v) {
  char buf[512];
  std::snprintf(buf, sizeof buf, format, v[0], v[1], v[2], v[3], v[4]);
  return buf;
}

std::string printedCounts(const std::array<unsigned, kMethodCount>& c) {
  char buf[512];
  std::snprintf(buf, sizeof buf, "HCFR = %d, CE = %d, CEWO = %d, OLF = %d, OLIN = %d",
                static_cast<int>(c[0]), static_cast<int>(c[1]), static_cast<int>(c[2]),
                static_cast<int>(c[3]), static_cast<int>(c[4]));
  return buf;
}

Mat transposed(const Mat& a) {
  Mat t = mat2(a.clo(), a.chi(), a.rlo(), a.rhi());
  for (int i = a.rlo(); i <= a.rhi(); ++i)
    for (int j = a.clo(); j <= a.chi(); ++j) t(j, i) = a(i, j);
  return t;
}

// The statistics of one family (states or controls) of one method. `paths` is variable x period
// x run over periods 0..last; `desired` the desired path over the same periods.
//
// Over the runs, per variable and period: Avg = the mean. Over time, per variable and run:
// AvgTime = the mean over the last + 1 periods, VarTime = the sum of squared deviations from it
// divided by the number of periods minus one, SumSqDiff = the sum over periods of the squared
// difference between the path and the desired path. VarAvg is the variance over time of the
// averaged path (number of periods minus one), and AvgAvgTime, AvgVarTime, AvgSumSqDiff are the
// means over the runs of the per-run values, summed in run order and divided by nmc.
struct Family {
  const char* tag;  // "Xs" or "Us"
  DebugSwitch byRuns, runsBy, byPeriods, periodsBy;
};

void familyStatistics(CompareResult& result, const Family& fam, const char* suffix,
                      const Mat3& paths, const Mat& desired, const DebugSwitches& sw,
                      DebugFile* file) {
  const int rows = paths.rhi();
  const int last = paths.chi();
  const int runs = paths.dhi();
  const double points = static_cast<double>(last + 1);
  const double nmc = static_cast<double>(runs);
  Mat avg = mat2(1, rows, 0, last);
  for (int i = 1; i <= rows; ++i) {
    for (int t = 0; t <= last; ++t) {
      double sum = 0.0;
      for (int r = 1; r <= runs; ++r) sum += paths(i, t, r);
      avg(i, t) = sum / nmc;
    }
  }
  Mat varAvg = mat2(1, rows, 1, 1);
  Mat avgTime = mat2(1, rows, 1, runs), varTime = mat2(1, rows, 1, runs),
      sumSq = mat2(1, rows, 1, runs);
  Mat avgAvgTime = mat2(1, rows, 1, 1), avgVarTime = mat2(1, rows, 1, 1),
      avgSumSq = mat2(1, rows, 1, 1);
  for (int i = 1; i <= rows; ++i) {
    double sum = 0.0;
    for (int t = 0; t <= last; ++t) sum += avg(i, t);
    const double mean = sum / points;
    double ss = 0.0;
    for (int t = 0; t <= last; ++t) ss += (avg(i, t) - mean) * (avg(i, t) - mean);
    varAvg(i, 1) = ss / (points - 1.0);
    for (int r = 1; r <= runs; ++r) {
      double s1 = 0.0;
      for (int t = 0; t <= last; ++t) s1 += paths(i, t, r);
      const double m1 = s1 / points;
      double v = 0.0, d = 0.0;
      for (int t = 0; t <= last; ++t) {
        v += (paths(i, t, r) - m1) * (paths(i, t, r) - m1);
        d += (paths(i, t, r) - desired(i, t)) * (paths(i, t, r) - desired(i, t));
      }
      avgTime(i, r) = m1;
      varTime(i, r) = v / (points - 1.0);
      sumSq(i, r) = d;
    }
    double a = 0.0, v = 0.0, d = 0.0;
    for (int r = 1; r <= runs; ++r) {
      a += avgTime(i, r);
      v += varTime(i, r);
      d += sumSq(i, r);
    }
    avgAvgTime(i, 1) = a / nmc;
    avgVarTime(i, 1) = v / nmc;
    avgSumSq(i, 1) = d / nmc;
  }

  const std::string t = fam.tag;
  // A transpose is named after its array with "T" after the method: "AvgXsTimeHcfrT".
  struct Named {
    std::string name;
    bool transpose;
    Mat* value;
    DebugSwitch box;
  };
  Mat avgT = transposed(avg), avgTimeT = transposed(avgTime), varTimeT = transposed(varTime),
      sumSqT = transposed(sumSq);
  Named all[] = {
      {"Avg" + t, false, &avg, fam.byPeriods},
      {"Avg" + t, true, &avgT, fam.periodsBy},
      {"VarAvg" + t, false, &varAvg, DebugSwitch::MonteCarloMomentsOfMoments},
      {"Avg" + t + "Time", false, &avgTime, fam.byRuns},
      {"Avg" + t + "Time", true, &avgTimeT, fam.runsBy},
      {"Var" + t + "Time", false, &varTime, DebugSwitch::MonteCarloMomentsOverTime},
      {"Var" + t + "Time", true, &varTimeT, DebugSwitch::MonteCarloMomentsOverTime},
      {"SumSqDiff" + t, false, &sumSq, DebugSwitch::MonteCarloSumSquaredDifferences},
      {"SumSqDiff" + t, true, &sumSqT, DebugSwitch::MonteCarloSumSquaredDifferences},
      {"AvgAvg" + t + "Time", false, &avgAvgTime, DebugSwitch::MonteCarloAvgAvg},
      {"AvgVar" + t + "Time", false, &avgVarTime, DebugSwitch::MonteCarloAvgVar},
      {"AvgSumSqDiff" + t, false, &avgSumSq, DebugSwitch::MonteCarloAllSumSquaredDifferences},
  };
  for (Named& x : all) {
    const std::string name = x.name + suffix + (x.transpose ? "T" : "");
    if (file != nullptr && sw.on(x.box))
      file->dumpMatrix(name, x.value->rlo(), x.value->rhi(), x.value->clo(), x.value->chi(),
                       *x.value);
    result.statistics[name] = std::move(*x.value);
  }
  if (file != nullptr && sw.on(DebugSwitch::MonteCarloLargeDebug))
    file->dumpMatrix3(std::string("MonteCarlo") + t + suffix, 1, rows, 0, last, 1, runs, paths);
}

}  // namespace

void monteCarloSummary(CompareResult& result, Prompter& prompter, const SolveTrace& trace) {
  const double nmc = static_cast<double>(result.runs);
  for (int k = 0; k < kMethodCount; ++k)
    result.averages[static_cast<std::size_t>(k)] =
        result.criterionSums[static_cast<std::size_t>(k)] / nmc;
  prompter.inform(printedCounts(result.lowestCounts), "Method Count");
  prompter.inform(printed("HCFR = %g, CE = %g, CEWO = %g, OLF = %g,  OLIN = %g", result.averages),
                  "Average Criterion Values");
  if (!trace.on(SolveTopic::MonteCarloSummary)) return;
  DebugFile& f = trace.file();
  f.write("\r\n         HCFR        CE        CEWO         OLF          OLIN");
  Mat mc = mat2(1, result.runs, 1, kMethodCount);
  for (int r = 1; r <= result.runs; ++r)
    for (int k = 1; k <= kMethodCount; ++k)
      mc(r, k) = result.mcResults[static_cast<std::size_t>(r - 1)][static_cast<std::size_t>(k - 1)];
  f.dumpMatrix("mcResults", 1, result.runs, 1, kMethodCount, mc);
  for (int k = 0; k < kMethodCount; ++k)
    f.dumpScalar(
        std::string("Average Criterion Value for ") + kMethodNames[static_cast<std::size_t>(k)],
        result.averages[static_cast<std::size_t>(k)]);
  for (int k = 0; k < kMethodCount; ++k)
    f.dumpInt(
        std::string("Runs with Lowest Criterion in ") + kMethodNames[static_cast<std::size_t>(k)],
        static_cast<int>(result.lowestCounts[static_cast<std::size_t>(k)]));
}

void pathStatistics(CompareResult& result, const MonteCarloPaths& paths, const Mat& xtws,
                    const Mat& utws, const DebugSwitches& switches, DebugFile* file) {
  using S = DebugSwitch;
  const Family states{"Xs", S::MonteCarloStatesByRuns, S::MonteCarloRunsByStates,
                      S::MonteCarloStatesByPeriods, S::MonteCarloPeriodsByStates};
  const Family controls{"Us", S::MonteCarloControlsByRuns, S::MonteCarloRunsByControls,
                        S::MonteCarloControlsByPeriods, S::MonteCarloPeriodsByControls};
  for (int k = 0; k < kMethodCount; ++k) {
    if (!result.selected[static_cast<std::size_t>(k)]) continue;
    const char* suffix = kMethodSuffixes[static_cast<std::size_t>(k)];
    familyStatistics(result, states, suffix, paths.xs[static_cast<std::size_t>(k)], xtws, switches,
                     file);
    familyStatistics(result, controls, suffix, paths.us[static_cast<std::size_t>(k)], utws,
                     switches, file);
  }
}

void randomDrawCheck(CompareResult& result, const RandomAccumulators& acc, const RandomTerms& terms,
                     const SolveTrace& trace) {
  const int n = result.n, np = result.np, nt = result.nt;
  const double nmc = static_cast<double>(result.runs);
  Mat thetamean = mat2(1, np, 1, 1), xsimean = mat2(1, n, 1, 1);
  Mat thetacovar = mat2(1, np, 1, np), xsicovar = mat2(1, n, 1, n);
  for (int i = 1; i <= np; ++i) thetamean(i, 1) = acc.thetaSum(i, 1) / nmc;
  for (int i = 1; i <= n; ++i) xsimean(i, 1) = acc.xsisSum(i, 1) / (nmc * nt);
  for (int i = 1; i <= np; ++i)
    for (int j = 1; j <= np; ++j)
      thetacovar(i, j) = acc.thetaOuter(i, j) / nmc - thetamean(i, 1) * thetamean(j, 1);
  // The subtrahend is the last run's period-0 noise, not the mean: the check has always been
  // made this way and its printed values are compared with old ones.
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j)
      xsicovar(i, j) = acc.xsis0Outer(i, j) / nmc - terms.xsis(i, 0) * terms.xsis(j, 0);
  if (trace.on(SolveTopic::RandomMeans)) {
    DebugFile& f = trace.file();
    f.dumpMatrix("thetamean in maincompare", 1, np, 1, 1, thetamean);
    f.dumpMatrix("xsimean in maincompare", 1, n, 1, 1, xsimean);
    f.dumpMatrix("thetacovar in maincompare", 1, np, 1, np, thetacovar);
    f.dumpMatrix("xsicovar in maincompare - only for time period 0", 1, n, 1, n, xsicovar);
  }
  result.statistics["thetamean"] = std::move(thetamean);
  result.statistics["xsimean"] = std::move(xsimean);
  result.statistics["thetacovar"] = std::move(thetacovar);
  result.statistics["xsicovar"] = std::move(xsicovar);
}

}  // namespace ovaro
