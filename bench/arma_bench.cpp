// arma_bench.cpp - least-squares ARMA(2, 1) on 10^6 observations, with 10
// backcasts (the default) and without (the conditional sum of squares), and
// the method of moments on the same series.  The peers (statsmodels' ARIMA,
// R's arima(method = "CSS")) are timed on the same series by
// bench/arma_peers.py, which also times this library through its shared
// object in the same run.  Run: build/bench/zorvs_bench --benchmark_filter=Arma
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "zorvstat.h"

namespace {

// z(t) = 5 + 0.5 z(t-1) - 0.3 z(t-2) + a(t) - 0.4 a(t-1), a(t) unit normal.
const std::vector<double> &series() {
    static std::vector<double> z;
    if (z.empty()) {
        const int n = 1000000, burn = 500;
        std::mt19937_64 rng(25);
        std::normal_distribution<double> normal(0.0, 1.0);
        double z1 = 0, z2 = 0, a1 = 0;
        for (int t = 0; t < n + burn; ++t) {
            const double a = normal(rng), v = 5 + 0.5 * z1 - 0.3 * z2 + a - 0.4 * a1;
            z2 = z1, z1 = v, a1 = a;
            if (t >= burn) z.push_back(v);
        }
    }
    return z;
}

void BM_Arma21_LeastSquares_zorvs(benchmark::State &state) {
    std::vector<double> z = series();
    const int length = static_cast<int>(state.range(0));
    for (auto _ : state) {
        double *x = zorvs_d_arma(static_cast<int>(z.size()), z.data(), 2, 1, ZORVS_LEAST_SQUARES, ZORVS_BACKCASTING,
                                 length, 0.0, 0);
        benchmark::DoNotOptimize(x);
        std::free(x);
    }
}
BENCHMARK(BM_Arma21_LeastSquares_zorvs)->Arg(10)->Arg(0)->Unit(benchmark::kMillisecond);

void BM_Arma21_Moments_zorvs(benchmark::State &state) {
    std::vector<double> z = series();
    for (auto _ : state) {
        double *x = zorvs_d_arma(static_cast<int>(z.size()), z.data(), 2, 1, 0);
        benchmark::DoNotOptimize(x);
        std::free(x);
    }
}
BENCHMARK(BM_Arma21_Moments_zorvs)->Unit(benchmark::kMillisecond);

}  // namespace
