// The matrix kernels of the Riccati step at the sizes the solvers meet.
#include <benchmark/benchmark.h>

#include <random>

#include "numeric/matrix_ops.h"

namespace {

ovaro::Mat randomMatrix(int n, unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  ovaro::Mat a = ovaro::mat2(1, n, 1, n);
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) a(i, j) = u(rng);
    a(i, i) += n;  // well conditioned
  }
  return a;
}

void BM_mmul(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const ovaro::Mat a = randomMatrix(n, 1);
  const ovaro::Mat b = randomMatrix(n, 2);
  ovaro::Mat c = ovaro::mat2(1, n, 1, n);
  for (auto _ : state) {
    ovaro::mmul(n, n, n, a, b, c);
    benchmark::DoNotOptimize(c(1, 1));
  }
}
BENCHMARK(BM_mmul)->Arg(2)->Arg(10)->Arg(30);

void BM_minv(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const ovaro::Mat a = randomMatrix(n, 3);
  ovaro::Mat inv = ovaro::mat2(1, n, 1, n);
  for (auto _ : state) {
    ovaro::minv(n, a, inv);
    benchmark::DoNotOptimize(inv(1, 1));
  }
}
BENCHMARK(BM_minv)->Arg(1)->Arg(5)->Arg(15)->Arg(30);

void BM_quadraticForm(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const ovaro::Mat a = randomMatrix(n, 4);
  const ovaro::Mat k = randomMatrix(n, 5);
  ovaro::Mat v = ovaro::mat2(1, n, 0, 0);
  ovaro::Mat c = ovaro::mat2(1, n, 1, n);
  for (auto _ : state) {
    ovaro::mqformdiag(n, n, 0, a, k, v, c);
    benchmark::DoNotOptimize(c(1, 1));
  }
}
BENCHMARK(BM_quadraticForm)->Arg(2)->Arg(10)->Arg(30);

}  // namespace
