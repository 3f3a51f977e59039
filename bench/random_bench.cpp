// random_bench.cpp - 10^7 uniforms, normals, exponentials, gammas, betas and
// Poisson deviates from the library against GSL's minimal standard
// generator (gsl_rng_minstd, the same multiplier 16807) with gsl_ran_*.
// Beta shapes are given in tenths: (5, 5) Johnk, (10, 30) inversion,
// (5, 30) and (3, 200) switching, (20, 50) and (300, 700) Cheng.
//
//   build-bench/bench/zorvs_bench --benchmark_filter='Random'
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "zorvstat.h"

#ifdef ZORVS_HAVE_GSL
#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>
#endif

namespace {

constexpr int kN = 10000000;

void BM_RandomUniform_zorvs(benchmark::State &state) {
    std::vector<double> r(kN);
    zorvs_random_option(1);
    zorvs_random_seed_set(1);
    for (auto _ : state) {
        zorvs_d_random_uniform(kN, ZORVS_RETURN_USER, r.data(), 0);
        benchmark::DoNotOptimize(r.data());
    }
}
void BM_RandomNormal_zorvs(benchmark::State &state) {
    std::vector<double> r(kN);
    zorvs_random_seed_set(1);
    for (auto _ : state) {
        zorvs_d_random_normal(kN, ZORVS_RETURN_USER, r.data(), 0);
        benchmark::DoNotOptimize(r.data());
    }
}
void BM_RandomExponential_zorvs(benchmark::State &state) {
    std::vector<double> r(kN);
    zorvs_random_seed_set(1);
    for (auto _ : state) {
        zorvs_d_random_exponential(kN, ZORVS_RETURN_USER, r.data(), 0);
        benchmark::DoNotOptimize(r.data());
    }
}
void BM_RandomGamma_zorvs(benchmark::State &state) {
    std::vector<double> r(kN);
    const double a = static_cast<double>(state.range(0)) / 10.0;
    zorvs_random_seed_set(1);
    for (auto _ : state) {
        zorvs_d_random_gamma(kN, a, ZORVS_RETURN_USER, r.data(), 0);
        benchmark::DoNotOptimize(r.data());
    }
}
void BM_RandomPoisson_zorvs(benchmark::State &state) {
    std::vector<int> r(kN);
    const float theta = static_cast<float>(state.range(0));
    zorvs_random_seed_set(1);
    for (auto _ : state) {
        zorvs_random_poisson(kN, theta, ZORVS_RETURN_USER, r.data(), 0);
        benchmark::DoNotOptimize(r.data());
    }
}
void BM_RandomBeta_zorvs(benchmark::State &state) {
    std::vector<double> r(kN);
    const double p = static_cast<double>(state.range(0)) / 10.0, q = static_cast<double>(state.range(1)) / 10.0;
    zorvs_random_option(1);
    zorvs_random_seed_set(1);
    for (auto _ : state) {
        zorvs_d_random_beta(kN, p, q, ZORVS_RETURN_USER, r.data(), 0);
        benchmark::DoNotOptimize(r.data());
    }
}
void beta_shapes(benchmark::internal::Benchmark *b) {
    for (auto shape : {std::vector<int64_t>{5, 5}, {10, 30}, {5, 30}, {3, 200}, {20, 50}, {300, 700}}) b->Args(shape);
}
BENCHMARK(BM_RandomUniform_zorvs)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomNormal_zorvs)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomExponential_zorvs)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomGamma_zorvs)->Arg(5)->Arg(30)->Arg(300)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomPoisson_zorvs)->Arg(5)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomBeta_zorvs)->Apply(beta_shapes)->Unit(benchmark::kMillisecond);

#ifdef ZORVS_HAVE_GSL
struct Rng {
    gsl_rng *r = gsl_rng_alloc(gsl_rng_minstd);
    ~Rng() { gsl_rng_free(r); }
};
void BM_RandomUniform_gsl(benchmark::State &state) {
    Rng g;
    std::vector<double> r(kN);
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) r[i] = gsl_rng_uniform_pos(g.r);
        benchmark::DoNotOptimize(r.data());
    }
}
void BM_RandomNormal_gsl(benchmark::State &state) {
    Rng g;
    std::vector<double> r(kN);
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) r[i] = gsl_ran_ugaussian(g.r);
        benchmark::DoNotOptimize(r.data());
    }
}
void BM_RandomExponential_gsl(benchmark::State &state) {
    Rng g;
    std::vector<double> r(kN);
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) r[i] = gsl_ran_exponential(g.r, 1.0);
        benchmark::DoNotOptimize(r.data());
    }
}
void BM_RandomGamma_gsl(benchmark::State &state) {
    Rng g;
    std::vector<double> r(kN);
    const double a = static_cast<double>(state.range(0)) / 10.0;
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) r[i] = gsl_ran_gamma(g.r, a, 1.0);
        benchmark::DoNotOptimize(r.data());
    }
}
void BM_RandomPoisson_gsl(benchmark::State &state) {
    Rng g;
    std::vector<int> r(kN);
    const double theta = static_cast<double>(state.range(0));
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) r[i] = static_cast<int>(gsl_ran_poisson(g.r, theta));
        benchmark::DoNotOptimize(r.data());
    }
}
void BM_RandomBeta_gsl(benchmark::State &state) {
    Rng g;
    std::vector<double> r(kN);
    const double p = static_cast<double>(state.range(0)) / 10.0, q = static_cast<double>(state.range(1)) / 10.0;
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) r[i] = gsl_ran_beta(g.r, p, q);
        benchmark::DoNotOptimize(r.data());
    }
}
BENCHMARK(BM_RandomUniform_gsl)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomNormal_gsl)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomExponential_gsl)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomGamma_gsl)->Arg(5)->Arg(30)->Arg(300)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomPoisson_gsl)->Arg(5)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomBeta_gsl)->Apply(beta_shapes)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
