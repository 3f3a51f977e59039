// simple_statistics_bench.cpp - zorvs_d_simple_statistics on 10^7 rows by 4
// variables and 10^6 rows by 40, against GSL's per-column mean, variance,
// skewness, kurtosis, maximum and minimum, and against one plain read of the
// matrix.  Run: build/bench/zorvs_bench --benchmark_filter=Simple
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

#include "zorvstat.h"
#ifdef ZORVS_HAVE_GSL
#include <gsl/gsl_statistics_double.h>
#endif

namespace {

std::vector<double> &data(long rows, int columns) {
    static std::vector<double> x;
    static long made_rows = 0;
    static int made_columns = 0;
    if (made_rows != rows || made_columns != columns) {
        std::mt19937_64 rng(7);
        std::normal_distribution<double> normal(100.0, 3.0);
        x.resize(static_cast<std::size_t>(rows) * columns);
        for (double &v : x) v = normal(rng);
        made_rows = rows;
        made_columns = columns;
    }
    return x;
}

void BM_SimpleStatistics_zorvs(benchmark::State &state) {
    long rows = state.range(0);
    int columns = static_cast<int>(state.range(1));
    auto &x = data(rows, columns);
    for (auto _ : state) {
        double *t = zorvs_d_simple_statistics(static_cast<int>(rows), columns, x.data(), 0);
        benchmark::DoNotOptimize(t);
        std::free(t);
    }
}

void BM_SimpleStatistics_plain_read(benchmark::State &state) {
    long rows = state.range(0);
    int columns = static_cast<int>(state.range(1));
    auto &x = data(rows, columns);
    for (auto _ : state) {
        double sum = 0;
        for (double v : x) sum += v;
        benchmark::DoNotOptimize(sum);
    }
}

#ifdef ZORVS_HAVE_GSL
void BM_SimpleStatistics_gsl(benchmark::State &state) {
    long rows = state.range(0);
    int columns = static_cast<int>(state.range(1));
    auto &x = data(rows, columns);
    for (auto _ : state) {
        for (int j = 0; j < columns; ++j) {
            const double *c = x.data() + j;
            double mean = gsl_stats_mean(c, columns, rows);
            double var = gsl_stats_variance_m(c, columns, rows, mean);
            double sd = std::sqrt(var);
            benchmark::DoNotOptimize(gsl_stats_skew_m_sd(c, columns, rows, mean, sd));
            benchmark::DoNotOptimize(gsl_stats_kurtosis_m_sd(c, columns, rows, mean, sd));
            benchmark::DoNotOptimize(gsl_stats_max(c, columns, rows));
            benchmark::DoNotOptimize(gsl_stats_min(c, columns, rows));
        }
    }
}
BENCHMARK(BM_SimpleStatistics_gsl)->Args({10000000, 4})->Args({1000000, 40})->Unit(benchmark::kMillisecond);
#endif

BENCHMARK(BM_SimpleStatistics_zorvs)->Args({10000000, 4})->Args({1000000, 40})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SimpleStatistics_plain_read)->Args({10000000, 4})->Args({1000000, 40})->Unit(benchmark::kMillisecond);

}  // namespace
