// Reading and writing model files of the sizes users keep: a 30-state, 15-control model with
// time-varying desired paths over 100 periods.
#include <benchmark/benchmark.h>

#include <string>

#include "model/model_file.h"

namespace {

ovaro::Model benchModel(int n, int periods) {
  ovaro::Model model;
  ovaro::Dimensions& d = model.dims;
  d.n.set(n);
  d.m.set(n / 2);
  d.l.set(1);
  d.initialPeriod.set(1);
  d.terminalPeriod.set(periods);
  d.recomputePeriods();
  d.setToleranceText("1.0E-06");
  ovaro::SpecFlags& f = model.flags;
  f = {ovaro::opt::kDeterministic,
       ovaro::opt::kQuadraticTracking,
       ovaro::opt::kRegular,
       ovaro::opt::kForwardNo,
       ovaro::opt::kPolicyNo,
       ovaro::opt::kZTimeVarying,
       ovaro::opt::kWConstant,
       ovaro::opt::kLambdaConstant,
       ovaro::opt::kXdesTimeVarying,
       ovaro::opt::kUdesTimeVarying,
       ovaro::opt::kGenerateInternally,
       450,
       453,
       "0"};
  ovaro::allocateModelArrays(model);
  ovaro::TextMatrix& a = *model.matrix(ovaro::MatrixId::A);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) a.setCell(i, j, i == j ? "0.95" : "0.01");
  return model;
}

void BM_serializeModel(benchmark::State& state) {
  const ovaro::Model model = benchModel(static_cast<int>(state.range(0)), 100);
  ovaro::RecordingPrompter prompter;
  std::string text;
  for (auto _ : state) {
    ovaro::serializeModel(model, "bench.ovi", text, prompter);
    benchmark::DoNotOptimize(text.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_serializeModel)->Arg(2)->Arg(10)->Arg(30);

void BM_readModel(benchmark::State& state) {
  const ovaro::Model model = benchModel(static_cast<int>(state.range(0)), 100);
  ovaro::RecordingPrompter prompter;
  std::string text;
  ovaro::serializeModel(model, "bench.ovi", text, prompter);
  for (auto _ : state) {
    ovaro::Model back;
    ovaro::readModelBytes(text, "bench.ovi", back, prompter);
    benchmark::DoNotOptimize(back.allocated);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_readModel)->Arg(2)->Arg(10)->Arg(30);

}  // namespace
