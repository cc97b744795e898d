// The Monte Carlo comparison: all five methods over 100 and 1000 runs, on one thread and on all,
// for a one-state model and for a model of 4 states, 2 controls and 4 uncertain parameters over 20
// periods.
#include <benchmark/benchmark.h>

#include <string>

#include "model/model.h"
#include "numeric/matrix_ops.h"
#include "numeric/progress.h"
#include "numeric/prompter.h"
#include "stoch/compare.h"

namespace {

using ovaro::MatrixId;
namespace opt = ovaro::opt;

void set(ovaro::Model& model, MatrixId id, int r, int c, double v) {
  model.matrix(id)->setCell(r, c, std::to_string(v).substr(0, 15));
}

ovaro::Model compareModel(int n, int m, int np, int periods) {
  ovaro::Model model;
  ovaro::Dimensions& d = model.dims;
  d.n.set(n);
  d.m.set(m);
  d.l.set(1);
  d.np.set(np);
  d.nmc.set(100);
  d.initialPeriod.set(1);
  d.terminalPeriod.set(periods);
  d.recomputePeriods();
  d.iterlim.set(20);
  d.setToleranceText("1.0E-06");
  model.flags = {opt::kParameterUncertainty,
                 opt::kQuadraticTracking,
                 opt::kRegular,
                 opt::kForwardNo,
                 opt::kPolicyYes,
                 opt::kZConstant,
                 opt::kWConstant,
                 opt::kLambdaConstant,
                 opt::kXdesConstant,
                 opt::kUdesConstant,
                 opt::kGenerateInternally,
                 450,
                 453,
                 "0"};
  ovaro::allocateModelArrays(model);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) set(model, MatrixId::A, i, j, i == j ? 0.8 : 0.05);
    for (int j = 0; j < m; ++j) set(model, MatrixId::B, i, j, (i + j) % 2 == 0 ? 0.5 : 0.1);
    set(model, MatrixId::C, i, 0, 0.2);
    set(model, MatrixId::X0, i, 0, 1.0);
    set(model, MatrixId::W, i, 0, 1.0);
    set(model, MatrixId::XDES, i, 0, 2.0);
    set(model, MatrixId::Q, i, i, 0.01);
    for (int j = 0; j < m; ++j) set(model, MatrixId::G, j, i, -0.2);
  }
  set(model, MatrixId::Z, 0, 0, 1.0);
  for (int j = 0; j < m; ++j) {
    set(model, MatrixId::LAMBDA, j, 0, 0.3);
    set(model, MatrixId::g, j, 0, 0.5);
  }
  // Parameters in the first row of A and B, each known with variance 0.01.
  for (int k = 0; k < np; ++k) {
    const bool inB = k % 2 == 1;
    const int col = k / 2;
    set(model, MatrixId::TH0, k, 0, inB ? 0.5 : 0.8);
    set(model, MatrixId::SITT0, k, k, 0.01);
    set(model, MatrixId::N, k, 0, 0.01);
    model.matrix(MatrixId::ITHN)->setCell(k, 0, inB ? "1" : "0");
    model.matrix(MatrixId::ITHN)->setCell(k, 1, std::to_string(1 + k % n));
    model.matrix(MatrixId::ITHN)->setCell(k, 2, std::to_string(col + 1));
  }
  model.randomSwitches.uncertainParameters = 1;
  model.randomSwitches.systemEquations = 1;
  return model;
}

// Arguments: states (1 or 4), runs, threads (0: one per core). Wall time, as the threads share it.
void BM_CompareFiveMethods(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const int runs = static_cast<int>(state.range(1));
  const ovaro::Model model = n == 1 ? compareModel(1, 1, 1, 10) : compareModel(4, 2, 4, 20);
  ovaro::CompareSettings settings;
  settings.methods = {true, true, true, true, true};
  settings.runs = runs;
  settings.threads = static_cast<int>(state.range(2));
  settings.eps = ovaro::macheps();
  ovaro::RecordingPrompter prompter;
  ovaro::NullProgress progress;
  ovaro::RandomState random;
  for (auto _ : state) {
    prompter.clear();
    auto result = ovaro::maincompare(model, settings, random, prompter, progress);
    benchmark::DoNotOptimize(result);
  }
  state.counters["runs/s"] =
      benchmark::Counter(static_cast<double>(runs) * static_cast<double>(state.iterations()),
                         benchmark::Counter::kIsRate);
}
BENCHMARK(BM_CompareFiveMethods)
    ->ArgNames({"n", "runs", "threads"})
    ->ArgsProduct({{1, 4}, {100, 1000}, {1, 0}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
