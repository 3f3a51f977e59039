// large_shapes_bench.cpp - the beta, F, t and gamma distribution functions at
// shapes and degrees of freedom from 1e4 to 1e15, and the Poisson and binomial
// ones at means and sizes from 1e4 to 1e9, against R's standalone math
// library (pbeta, pf, pt, pgamma, ppois, pbinom) on the same arguments in the
// same run: 1024 argument sets per iteration, x from 4 standard deviations
// below the mean to 4 above.  Run with interleaved repetitions:
//     cmake -S . -B build-bench -DZORVS_BUILD_BENCH=ON && cmake --build build-bench -j2 --target zorvs_bench
//     build-bench/bench/zorvs_bench --benchmark_filter='LargeShapes'
//         --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true
// (one command line)
#include <benchmark/benchmark.h>

#include <cmath>

#include "zorvstat.h"
#ifdef ZORVS_HAVE_RMATH
#define MATHLIB_STANDALONE
#include <Rmath.h>
#endif

namespace {

constexpr int kN = 1024;
struct LargeArgs {
    double bx[kN], ba[kN], bb[kN];       // beta: x, shapes
    double f[kN], d1[kN], d2[kN];        // F
    double t[kN], df[kN];                // t
    double gx[kN], ga[kN];               // gamma
    int pk[kN];                          // Poisson: count, mean
    double pt[kN];
    int bk[kN], bn[kN];                  // binomial: count, size, probability
    double bp[kN];
    LargeArgs() {
        const double big[] = {1e4, 1e5, 1e6, 1e8, 1e10, 1e12, 1e14, 1e15};
        const double small[] = {1, 2, 3, 5, 10, 1e4, 1e6, 1e8};
        for (int i = 0; i < kN; ++i) {
            const double z = -4 + 8.0 * ((i * 37) % kN) / kN;
            const double a = big[i % 8], b = big[(i / 8) % 8] * (1 + 0.5 * ((i / 64) % 2));
            const double n = a + b, sd = std::sqrt(a * b / (n * n * (n + 1)));
            ba[i] = a;
            bb[i] = b;
            bx[i] = a / n + z * sd;
            d1[i] = small[(i / 8) % 8];
            d2[i] = big[i % 8];
            f[i] = std::exp(z * std::sqrt(2 / d1[i] + 2 / d2[i]));
            df[i] = big[i % 8];
            t[i] = z;
            ga[i] = big[i % 8];
            gx[i] = ga[i] + z * std::sqrt(ga[i]);
            const double counts[] = {1e4, 3e4, 1e5, 1e6, 1e7, 1e8, 3e8, 1e9};
            pt[i] = counts[i % 8] * (1 + 0.37 * ((i / 8) % 3));
            pk[i] = static_cast<int>(pt[i] + z * std::sqrt(pt[i]));
            bn[i] = static_cast<int>(counts[i % 8]);
            bp[i] = 0.05 + 0.9 * ((i / 8) % 8) / 7;
            const double mean = bn[i] * bp[i];
            bk[i] = static_cast<int>(mean + z * std::sqrt(mean * (1 - bp[i])));
        }
    }
};
const LargeArgs L;

template <class F>
void run(benchmark::State &state, F fn) {
    double sink = 0;
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) sink += fn(i);
        benchmark::DoNotOptimize(sink);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

}  // namespace

#define ZORVS_LARGE_BENCH(name, expr) \
    static void BM_LargeShapes_##name(benchmark::State &s) { run(s, [](int i) { return (expr); }); } \
    BENCHMARK(BM_LargeShapes_##name)

ZORVS_LARGE_BENCH(beta_cdf_zorvs, zorvs_d_beta_cdf(L.bx[i], L.ba[i], L.bb[i]));
ZORVS_LARGE_BENCH(F_cdf_zorvs, zorvs_d_F_cdf(L.f[i], L.d1[i], L.d2[i]));
ZORVS_LARGE_BENCH(t_cdf_zorvs, zorvs_d_t_cdf(L.t[i], L.df[i]));
ZORVS_LARGE_BENCH(gamma_cdf_zorvs, zorvs_d_gamma_cdf(L.gx[i], L.ga[i]));
ZORVS_LARGE_BENCH(poisson_cdf_zorvs, zorvs_d_poisson_cdf(L.pk[i], L.pt[i]));
ZORVS_LARGE_BENCH(binomial_cdf_zorvs, zorvs_d_binomial_cdf(L.bk[i], L.bn[i], L.bp[i]));
#ifdef ZORVS_HAVE_RMATH
ZORVS_LARGE_BENCH(beta_cdf_rmath, pbeta(L.bx[i], L.ba[i], L.bb[i], 1, 0));
ZORVS_LARGE_BENCH(F_cdf_rmath, pf(L.f[i], L.d1[i], L.d2[i], 1, 0));
ZORVS_LARGE_BENCH(t_cdf_rmath, pt(L.t[i], L.df[i], 1, 0));
ZORVS_LARGE_BENCH(gamma_cdf_rmath, pgamma(L.gx[i], L.ga[i], 1, 1, 0));
ZORVS_LARGE_BENCH(poisson_cdf_rmath, ppois(L.pk[i], L.pt[i], 1, 0));
ZORVS_LARGE_BENCH(binomial_cdf_rmath, pbinom(L.bk[i], L.bn[i], L.bp[i], 1, 0));
#endif
