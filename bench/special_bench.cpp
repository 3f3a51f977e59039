// special_bench.cpp - each double special function called 10^6 times over a
// spread of arguments, against R's standalone math library and GSL in the
// same run.  Run:  build-bench/bench/zorvs_bench --benchmark_filter=Special
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "zorvstat.h"

#ifdef ZORVS_HAVE_RMATH
#define MATHLIB_STANDALONE 1
#include <Rmath.h>
#endif
#ifdef ZORVS_HAVE_GSL
#include <gsl/gsl_cdf.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_sf_erf.h>
#include <gsl/gsl_sf_gamma.h>
#endif

namespace {

constexpr int calls = 1000000;

// calls arguments spread evenly over [lo, hi].
std::vector<double> spread(double lo, double hi) {
    std::vector<double> x(calls);
    for (int i = 0; i < calls; ++i) x[i] = lo + (hi - lo) * (i + 0.5) / calls;
    return x;
}

template <class F>
void run(benchmark::State &state, double lo, double hi, F f) {
    const std::vector<double> x = spread(lo, hi);
    for (auto _ : state) {
        double s = 0;
        for (double v : x) s += f(v);
        benchmark::DoNotOptimize(s);
    }
    state.SetItemsProcessed(state.iterations() * calls);
}

#define SPECIAL_BENCH(name, lo, hi, expr)                                             \
    void BM_Special_##name(benchmark::State &state) { run(state, lo, hi, [](double x) { return expr; }); } \
    BENCHMARK(BM_Special_##name)->Unit(benchmark::kMillisecond)

SPECIAL_BENCH(gamma_zorvs, 0.1, 50, zorvs_d_gamma(x));
SPECIAL_BENCH(log_gamma_zorvs, 0.1, 1000, zorvs_d_log_gamma(x));
SPECIAL_BENCH(beta_zorvs, 0.1, 50, zorvs_d_beta(x, 3.5));
SPECIAL_BENCH(log_beta_zorvs, 0.1, 1000, zorvs_d_log_beta(x, 3.5));
SPECIAL_BENCH(erf_zorvs, -5, 5, zorvs_d_erf(x));
SPECIAL_BENCH(erfc_zorvs, -5, 25, zorvs_d_erfc(x));
SPECIAL_BENCH(normal_cdf_zorvs, -35, 8, zorvs_d_normal_cdf(x));
SPECIAL_BENCH(normal_inverse_cdf_zorvs, 1e-6, 1 - 1e-6, zorvs_d_normal_inverse_cdf(x));
SPECIAL_BENCH(bivariate_normal_cdf_zorvs, -4, 4, zorvs_d_bivariate_normal_cdf(x, 0.5 - 0.3 * x, 0.4));

#ifdef ZORVS_HAVE_RMATH
SPECIAL_BENCH(gamma_rmath, 0.1, 50, gammafn(x));
SPECIAL_BENCH(log_gamma_rmath, 0.1, 1000, lgammafn(x));
SPECIAL_BENCH(beta_rmath, 0.1, 50, beta(x, 3.5));
SPECIAL_BENCH(log_beta_rmath, 0.1, 1000, lbeta(x, 3.5));
SPECIAL_BENCH(erfc_rmath, -5, 25, 2 * pnorm(-x * M_SQRT2, 0, 1, 1, 0));
SPECIAL_BENCH(normal_cdf_rmath, -35, 8, pnorm(x, 0, 1, 1, 0));
SPECIAL_BENCH(normal_inverse_cdf_rmath, 1e-6, 1 - 1e-6, qnorm(x, 0, 1, 1, 0));
#endif

#ifdef ZORVS_HAVE_GSL
const bool gsl_quiet = (gsl_set_error_handler_off(), true);
SPECIAL_BENCH(gamma_gsl, 0.1, 50, gsl_sf_gamma(x));
SPECIAL_BENCH(log_gamma_gsl, 0.1, 1000, gsl_sf_lngamma(x));
SPECIAL_BENCH(beta_gsl, 0.1, 50, gsl_sf_beta(x, 3.5));
SPECIAL_BENCH(log_beta_gsl, 0.1, 1000, gsl_sf_lnbeta(x, 3.5));
SPECIAL_BENCH(erf_gsl, -5, 5, gsl_sf_erf(x));
SPECIAL_BENCH(erfc_gsl, -5, 25, gsl_sf_erfc(x));
SPECIAL_BENCH(normal_cdf_gsl, -35, 8, gsl_cdf_ugaussian_P(x));
SPECIAL_BENCH(normal_inverse_cdf_gsl, 1e-6, 1 - 1e-6, gsl_cdf_ugaussian_Pinv(x));
#endif

}  // namespace
