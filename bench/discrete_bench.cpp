// discrete_bench.cpp - the Poisson and binomial distribution functions and
// the studentized range quantile against R's standalone math library (ppois,
// pbinom, qtukey) in the same run.
#include <benchmark/benchmark.h>

#include "dist/discrete.h"
#include "zorvstat.h"

#ifdef ZORVS_HAVE_RMATH
#define MATHLIB_STANDALONE
#include <Rmath.h>
#endif

namespace {

// Poisson: means from 5 to 5e5, k at the mean (the longest sums).
void BM_PoissonCdf(benchmark::State &state) {
    double theta = static_cast<double>(state.range(0));
    int k = static_cast<int>(theta);
    for (auto _ : state) benchmark::DoNotOptimize(zorvs_d_poisson_cdf(k, theta));
}
BENCHMARK(BM_PoissonCdf)->Arg(5)->Arg(500)->Arg(50000)->Arg(500000);

void BM_BinomialCdf(benchmark::State &state) {
    int n = static_cast<int>(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(zorvs_d_binomial_cdf(n / 3, n, 0.3));
}
BENCHMARK(BM_BinomialCdf)->Arg(10)->Arg(1000)->Arg(100000)->Arg(1000000);

// Studentized range quantile: means 3 and 20, df 10, p 0.95.
void BM_StudentizedRangeInverse(benchmark::State &state) {
    double means = static_cast<double>(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(zorvs_dsrin(0.95, 10, means));
}
BENCHMARK(BM_StudentizedRangeInverse)->Arg(3)->Arg(20)->Unit(benchmark::kMillisecond);

#ifdef ZORVS_HAVE_RMATH
void BM_PoissonCdf_Rmath(benchmark::State &state) {
    double theta = static_cast<double>(state.range(0));
    double k = static_cast<int>(theta);
    for (auto _ : state) benchmark::DoNotOptimize(ppois(k, theta, 1, 0));
}
BENCHMARK(BM_PoissonCdf_Rmath)->Arg(5)->Arg(500)->Arg(50000)->Arg(500000);

void BM_BinomialCdf_Rmath(benchmark::State &state) {
    int n = static_cast<int>(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(pbinom(n / 3, n, 0.3, 1, 0));
}
BENCHMARK(BM_BinomialCdf_Rmath)->Arg(10)->Arg(1000)->Arg(100000)->Arg(1000000);

void BM_StudentizedRangeInverse_Rmath(benchmark::State &state) {
    double means = static_cast<double>(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(qtukey(0.95, 1, means, 10, 1, 0));
}
BENCHMARK(BM_StudentizedRangeInverse_Rmath)->Arg(3)->Arg(20)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
