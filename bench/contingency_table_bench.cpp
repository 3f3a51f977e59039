// contingency_table_bench.cpp - zorvs_d_contingency_table on square tables of
// 125 to 1000 rows (Poisson counts of mean 12 to 16, 40 on the diagonal), with
// every output and with the Pearson test alone, against a plain read of the
// table and, up to 250 x 250, against the textbook O(r^2 c^2) count of
// concordant and discordant pairs (gamma alone).  Growth of the time with
// r c shows the measures cost O(r c).
// Run: build/bench/zorvs_bench --benchmark_filter=Contingency
//      --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "zorvstat.h"

namespace {

std::vector<double> &table(int n) {
    static std::vector<double> t;
    static int made = 0;
    if (made != n) {
        std::mt19937_64 rng(11);
        t.resize(static_cast<std::size_t>(n) * n);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) {
                std::poisson_distribution<int> count(i == j ? 40.0 : 12.0 + (i + j) % 5);
                t[static_cast<std::size_t>(i) * n + j] = count(rng);
            }
        made = n;
    }
    return t;
}

void BM_Contingency_zorvs_all(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    auto &t = table(n);
    std::vector<double> expected((n + 1) * (n + 1)), contributions(expected.size()), statistics(115), chi(5);
    for (auto _ : state) {
        double p = zorvs_d_contingency_table(n, n, t.data(), ZORVS_EXPECTED_USER, expected.data(),
                                             ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER, contributions.data(),
                                             ZORVS_CHI_SQUARED_STATISTICS_USER, chi.data(), ZORVS_STATISTICS_USER,
                                             statistics.data(), 0);
        benchmark::DoNotOptimize(p);
    }
    state.SetComplexityN(static_cast<long>(n) * n);
}

void BM_Contingency_zorvs_pearson_only(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    auto &t = table(n);
    int df = 0;
    double x2 = 0, p = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(zorvs_d_contingency_table(n, n, t.data(), ZORVS_CHI_SQUARED, &df, &x2, &p, 0));
    }
    state.SetComplexityN(static_cast<long>(n) * n);
}

void BM_Contingency_plain_read(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    auto &t = table(n);
    for (auto _ : state) {
        double sum = 0;
        for (double v : t) sum += v;
        benchmark::DoNotOptimize(sum);
    }
    state.SetComplexityN(static_cast<long>(n) * n);
}

// Gamma by the definition: for every cell, the counts below-right and
// below-left of it, summed afresh.
void BM_Contingency_naive_gamma(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    auto &t = table(n);
    for (auto _ : state) {
        double p = 0, q = 0;
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) {
                const double x = t[static_cast<std::size_t>(i) * n + j];
                if (x == 0) continue;
                double below_right = 0, below_left = 0;
                for (int k = i + 1; k < n; ++k)
                    for (int l = 0; l < n; ++l) {
                        const double y = t[static_cast<std::size_t>(k) * n + l];
                        if (l > j) below_right += y;
                        else if (l < j) below_left += y;
                    }
                p += x * below_right;
                q += x * below_left;
            }
        benchmark::DoNotOptimize((p - q) / (p + q));
    }
    state.SetComplexityN(static_cast<long>(n) * n);
}

BENCHMARK(BM_Contingency_zorvs_all)->Arg(125)->Arg(250)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Contingency_zorvs_pearson_only)->Arg(125)->Arg(250)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Contingency_plain_read)->Arg(125)->Arg(250)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Contingency_naive_gamma)->Arg(125)->Arg(250)->Unit(benchmark::kMillisecond);

}  // namespace
