// normality_bench.cpp - zorvs_d_normality_test on normal samples: Lilliefors
// on 10^6 observations and Shapiro-Wilk on 2000 (its largest n), unsorted
// (copied and sorted) and already ascending (read in place), against the
// std::sort of a copy of the same values, the step that bounds both tests.
// SciPy's shapiro and statsmodels' lilliefors are timed on the same n by
// bench/normality_peers.py.
// Run: build-bench/bench/zorvs_bench --benchmark_filter=Normality
//        --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "zorvstat.h"

namespace {

const std::vector<double> &sample(long n, bool sorted) {
    static std::vector<double> x, ascending;
    if (static_cast<long>(x.size()) != n) {
        std::mt19937_64 rng(24);
        std::normal_distribution<double> normal(10.0, 2.0);
        x.resize(static_cast<std::size_t>(n));
        for (double &v : x) v = normal(rng);
        ascending = x;
        std::sort(ascending.begin(), ascending.end());
    }
    return sorted ? ascending : x;
}

void BM_Normality_lilliefors(benchmark::State &state) {
    auto x = sample(state.range(0), state.range(1) != 0);
    double d = 0;
    for (auto _ : state) benchmark::DoNotOptimize(zorvs_d_normality_test(static_cast<int>(x.size()), x.data(), ZORVS_LILLIEFORS, &d, 0));
}

void BM_Normality_shapiro_wilk(benchmark::State &state) {
    auto x = sample(state.range(0), state.range(1) != 0);
    double w = 0;
    for (auto _ : state) benchmark::DoNotOptimize(zorvs_d_normality_test(static_cast<int>(x.size()), x.data(), ZORVS_SHAPIRO_WILK, &w, 0));
}

void BM_Normality_sort_peer(benchmark::State &state) {
    const auto &x = sample(state.range(0), false);
    std::vector<double> copy(x.size());
    for (auto _ : state) {
        std::copy(x.begin(), x.end(), copy.begin());
        std::sort(copy.begin(), copy.end());
        benchmark::DoNotOptimize(copy.data());
    }
}

BENCHMARK(BM_Normality_lilliefors)->Args({1000000, 0})->Args({1000000, 1})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Normality_sort_peer)->Args({1000000, 0})->Args({2000, 0})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Normality_shapiro_wilk)->Args({2000, 0})->Args({2000, 1})->Unit(benchmark::kMillisecond);

}  // namespace
