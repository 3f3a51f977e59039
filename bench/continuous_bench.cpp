// continuous_bench.cpp - the continuous distributions against R's standalone
// math library and GSL's gsl_cdf_* in the same run, each over the same fixed
// list of 1024 argument sets per iteration (so each run makes 10^5 to 10^6
// calls).  Run:
//     cmake -S . -B build-bench -DZORVS_BUILD_BENCH=ON && cmake --build build-bench -j2 --target zorvs_bench
//     build-bench/bench/zorvs_bench --benchmark_filter='Continuous'
#include <benchmark/benchmark.h>

#include <cmath>

#include "dist/continuous.h"
#include "zorvstat.h"
#ifdef ZORVS_HAVE_RMATH
#define MATHLIB_STANDALONE
#include <Rmath.h>
#endif
#ifdef ZORVS_HAVE_GSL
#include <gsl/gsl_cdf.h>
#include <gsl/gsl_errno.h>
#endif

namespace {

constexpr int kN = 1024;
struct Args {
    double x[kN], p[kN], d1[kN], d2[kN], u[kN];
    Args() {
        const double dfs[] = {1, 2.5, 4, 7, 10, 15.5, 30, 50};
        for (int i = 0; i < kN; ++i) {
            d1[i] = dfs[i % 8];
            d2[i] = dfs[(i / 8) % 8];
            p[i] = (i + 0.5) / kN;
            u[i] = 0.02 + 0.96 * p[i];
            x[i] = 0.05 + 6.0 * ((i * 37) % kN) / kN;
        }
    }
};
const Args A;

template <class F>
void run(benchmark::State &state, F f) {
    double sink = 0;
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) sink += f(i);
        benchmark::DoNotOptimize(sink);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

}  // namespace

#define ZORVS_BENCH(name, expr) \
    static void BM_Continuous_##name(benchmark::State &s) { run(s, [](int i) { return (expr); }); } \
    BENCHMARK(BM_Continuous_##name)

ZORVS_BENCH(gamma_cdf_zorvs, zorvs_d_gamma_cdf(A.x[i] * 2, A.d1[i]));
ZORVS_BENCH(gamma_incomplete_zorvs, zorvs_d_gamma_incomplete(A.d1[i], A.x[i] * 2));
ZORVS_BENCH(chisq_cdf_zorvs, zorvs_d_chi_squared_cdf(A.x[i] * 4, A.d1[i]));
ZORVS_BENCH(chisq_inv_zorvs, zorvs_d_chi_squared_inverse_cdf(A.p[i], A.d1[i]));
ZORVS_BENCH(beta_cdf_zorvs, zorvs_d_beta_cdf(A.u[i], A.d1[i], A.d2[i]));
ZORVS_BENCH(beta_inv_zorvs, zorvs_d_beta_inverse_cdf(A.p[i], A.d1[i], A.d2[i]));
ZORVS_BENCH(t_cdf_zorvs, zorvs_d_t_cdf(A.x[i] - 3, A.d1[i]));
ZORVS_BENCH(t_inv_zorvs, zorvs_d_t_inverse_cdf(A.p[i], A.d1[i]));
ZORVS_BENCH(F_cdf_zorvs, zorvs_d_F_cdf(A.x[i], A.d1[i], A.d2[i]));
ZORVS_BENCH(F_inv_zorvs, zorvs_d_F_inverse_cdf(A.p[i], A.d1[i], A.d2[i]));
// The upper tail of an F ratio through the safe ratio of the argument checks.
static double F_upper(double f, double d1, double d2) {
    double ratio, p;
    zorvs_dc1f(f, 1, d1, d2, &ratio, &p);
    return p;
}
ZORVS_BENCH(F_upper_zorvs, F_upper(A.x[i], A.d1[i], A.d2[i]));

#ifdef ZORVS_HAVE_RMATH
ZORVS_BENCH(gamma_cdf_R, pgamma(A.x[i] * 2, A.d1[i], 1.0, 1, 0));
// The incomplete gamma integral itself: the regularised P(a, x) times gamma(a).
ZORVS_BENCH(gamma_incomplete_R, pgamma(A.x[i] * 2, A.d1[i], 1.0, 1, 0) * gammafn(A.d1[i]));
ZORVS_BENCH(chisq_cdf_R, pchisq(A.x[i] * 4, A.d1[i], 1, 0));
ZORVS_BENCH(chisq_inv_R, qchisq(A.p[i], A.d1[i], 1, 0));
ZORVS_BENCH(beta_cdf_R, pbeta(A.u[i], A.d1[i], A.d2[i], 1, 0));
ZORVS_BENCH(beta_inv_R, qbeta(A.p[i], A.d1[i], A.d2[i], 1, 0));
ZORVS_BENCH(t_cdf_R, pt(A.x[i] - 3, A.d1[i], 1, 0));
ZORVS_BENCH(t_inv_R, qt(A.p[i], A.d1[i], 1, 0));
ZORVS_BENCH(F_cdf_R, pf(A.x[i], A.d1[i], A.d2[i], 1, 0));
ZORVS_BENCH(F_inv_R, qf(A.p[i], A.d1[i], A.d2[i], 1, 0));
ZORVS_BENCH(F_upper_R, pf(A.x[i], A.d1[i], A.d2[i], 0, 0));
#endif

#ifdef ZORVS_HAVE_GSL
ZORVS_BENCH(gamma_cdf_gsl, gsl_cdf_gamma_P(A.x[i] * 2, A.d1[i], 1.0));
ZORVS_BENCH(chisq_cdf_gsl, gsl_cdf_chisq_P(A.x[i] * 4, A.d1[i]));
ZORVS_BENCH(chisq_inv_gsl, gsl_cdf_chisq_Pinv(A.p[i], A.d1[i]));
ZORVS_BENCH(beta_cdf_gsl, gsl_cdf_beta_P(A.u[i], A.d1[i], A.d2[i]));
ZORVS_BENCH(beta_inv_gsl, gsl_cdf_beta_Pinv(A.p[i], A.d1[i], A.d2[i]));
ZORVS_BENCH(t_cdf_gsl, gsl_cdf_tdist_P(A.x[i] - 3, A.d1[i]));
ZORVS_BENCH(t_inv_gsl, gsl_cdf_tdist_Pinv(A.p[i], A.d1[i]));
ZORVS_BENCH(F_cdf_gsl, gsl_cdf_fdist_P(A.x[i], A.d1[i], A.d2[i]));
ZORVS_BENCH(F_inv_gsl, gsl_cdf_fdist_Pinv(A.p[i], A.d1[i], A.d2[i]));
ZORVS_BENCH(F_upper_gsl, gsl_cdf_fdist_Q(A.x[i], A.d1[i], A.d2[i]));
#endif
