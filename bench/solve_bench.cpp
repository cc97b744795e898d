// The deterministic solves at the sizes users keep: (n states, m controls, T periods) = (4, 2, 10)
// and (30, 10, 100), by QLP and by OLF (with the m diagonal elements of B uncertain), each from the
// Model's cell texts to the criterion, and a forward-variable model whose solve iterates to
// convergence.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>

#include "model/model.h"
#include "numeric/prompter.h"
#include "solve/drivers.h"

namespace {

using ovaro::MatrixId;
namespace opt = ovaro::opt;

void set(ovaro::Model& model, MatrixId id, int r, int c, double v) {
  model.matrix(id)->setCell(r, c, std::to_string(v).substr(0, 15));
}

// A stable, coupled system with one exogenous variable and tracking targets away from x0.
ovaro::Model benchModel(int n, int m, int periods, int stochTerms, int forwardLead) {
  ovaro::Model model;
  ovaro::Dimensions& d = model.dims;
  const int np = stochTerms == opt::kParameterUncertainty ? m : 0;
  d.n.set(n);
  d.m.set(m);
  d.l.set(1);
  d.np.set(np);
  d.initialPeriod.set(1);
  d.terminalPeriod.set(periods);
  d.recomputePeriods();
  d.maxLead.set(forwardLead);
  d.iterlim.set(200);
  d.setToleranceText("1.0E-10");
  model.flags = {stochTerms,
                 opt::kQuadraticTracking,
                 opt::kRegular,
                 forwardLead > 0 ? opt::kForwardYes : opt::kForwardNo,
                 opt::kPolicyNo,
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
    for (int j = 0; j < n; ++j) set(model, MatrixId::A, i, j, i == j ? 0.9 : 0.02);
    for (int j = 0; j < m; ++j) set(model, MatrixId::B, i, j, (i + j) % 3 == 0 ? 0.5 : 0.1);
    set(model, MatrixId::C, i, 0, 0.1);
    set(model, MatrixId::X0, i, 0, 1.0 + 0.1 * i);
    set(model, MatrixId::W, i, 0, 1.0);
    set(model, MatrixId::XDES, i, 0, 2.0);
    if (forwardLead > 0)
      for (int j = 0; j < n; ++j) set(model, MatrixId::D1, i, j, i == j ? 0.1 : 0.0);
  }
  set(model, MatrixId::Z, 0, 0, 1.0);
  for (int j = 0; j < m; ++j) {
    set(model, MatrixId::LAMBDA, j, 0, 0.5);
    set(model, MatrixId::UDES, j, 0, 0.0);
  }
  for (int k = 0; k < np; ++k) {
    // Parameter k is B(k, k), known with variance 0.01.
    set(model, MatrixId::TH0, k, 0, 0.5);
    set(model, MatrixId::SITT0, k, k, 0.01);
    model.matrix(MatrixId::ITHN)->setCell(k, 0, "1");
    model.matrix(MatrixId::ITHN)->setCell(k, 1, std::to_string(k + 1));
    model.matrix(MatrixId::ITHN)->setCell(k, 2, std::to_string(k + 1));
  }
  return model;
}

int arg(const benchmark::State& state, int i) {
  return static_cast<int>(state.range(i));
}

void BM_SolveQlp(benchmark::State& state) {
  const ovaro::Model model =
      benchModel(arg(state, 0), arg(state, 1), arg(state, 2), opt::kDeterministic, 0);
  ovaro::RecordingPrompter prompter;
  for (auto _ : state) {
    auto solution = ovaro::solveQlp(model, prompter, ovaro::SolveTrace());
    benchmark::DoNotOptimize(solution);
  }
}
BENCHMARK(BM_SolveQlp)
    ->ArgNames({"n", "m", "T"})
    ->Args({4, 2, 10})
    ->Args({30, 10, 100})
    ->Unit(benchmark::kMicrosecond);

void BM_SolveOlf(benchmark::State& state) {
  const ovaro::Model model =
      benchModel(arg(state, 0), arg(state, 1), arg(state, 2), opt::kParameterUncertainty, 0);
  ovaro::RecordingPrompter prompter;
  for (auto _ : state) {
    auto solution =
        ovaro::solveOlf(model, ovaro::CautionExperiment{}, prompter, ovaro::SolveTrace());
    benchmark::DoNotOptimize(solution);
  }
}
BENCHMARK(BM_SolveOlf)
    ->ArgNames({"n", "m", "T"})
    ->Args({4, 2, 10})
    ->Args({30, 10, 100})
    ->Unit(benchmark::kMicrosecond);

// A forward-variable model with lead 1: the solve repeats until the controls settle.
void BM_SolveQlpForward(benchmark::State& state) {
  const ovaro::Model model =
      benchModel(arg(state, 0), std::max(1, arg(state, 0) / 2), 20, opt::kDeterministic, 1);
  ovaro::RecordingPrompter prompter;
  for (auto _ : state) {
    auto solution = ovaro::solveQlp(model, prompter, ovaro::SolveTrace());
    benchmark::DoNotOptimize(solution);
  }
}
BENCHMARK(BM_SolveQlpForward)->Arg(2)->Arg(10)->Unit(benchmark::kMicrosecond);

}  // namespace
