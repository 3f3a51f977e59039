// oneway_bench.cpp - zorvs_d_anova_oneway on 10^7 responses in 100 groups of
// 10^5, against one pass of GSL's per-group mean and variance
// (gsl_stats_mean, gsl_stats_variance_m) over the same groups, the rough
// floor of any one-way analysis.  Run:
//   build/bench/zorvs_bench --benchmark_filter=Oneway --benchmark_repetitions=9
//       --benchmark_enable_random_interleaving=true
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "zorvstat.h"
#ifdef ZORVS_HAVE_GSL
#include <gsl/gsl_statistics_double.h>
#endif

namespace {

constexpr int oneway_groups = 100;
constexpr int oneway_per_group = 100000;

const std::vector<double> &oneway_data() {
    static std::vector<double> y;
    if (y.empty()) {
        std::mt19937_64 rng(22);
        std::normal_distribution<double> normal(50.0, 4.0);
        y.resize(static_cast<std::size_t>(oneway_groups) * oneway_per_group);
        for (std::size_t i = 0; i < y.size(); ++i) y[i] = normal(rng) + 0.01 * double(i / oneway_per_group);
    }
    return y;
}

void BM_Oneway_zorvs(benchmark::State &state) {
    std::vector<double> y = oneway_data();
    std::vector<int> n(oneway_groups, oneway_per_group);
    double table[15], means[oneway_groups], sds[oneway_groups];
    for (auto _ : state) {
        double p = zorvs_d_anova_oneway(oneway_groups, n.data(), y.data(), ZORVS_ANOVA_TABLE_USER, table,
                                        ZORVS_GROUP_MEANS_USER, means, ZORVS_GROUP_STD_DEVS_USER, sds, 0);
        benchmark::DoNotOptimize(p);
        benchmark::DoNotOptimize(means);
    }
}
BENCHMARK(BM_Oneway_zorvs)->Unit(benchmark::kMillisecond);

#ifdef ZORVS_HAVE_GSL
void BM_Oneway_gsl_group_mean_variance(benchmark::State &state) {
    const std::vector<double> &y = oneway_data();
    double means[oneway_groups], variances[oneway_groups];
    for (auto _ : state) {
        for (int g = 0; g < oneway_groups; ++g) {
            const double *x = y.data() + static_cast<std::size_t>(g) * oneway_per_group;
            means[g] = gsl_stats_mean(x, 1, oneway_per_group);
            variances[g] = gsl_stats_variance_m(x, 1, oneway_per_group, means[g]);
        }
        benchmark::DoNotOptimize(means);
        benchmark::DoNotOptimize(variances);
    }
}
BENCHMARK(BM_Oneway_gsl_group_mean_variance)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
