// regression_bench.cpp - zorvs_d_regression on 10^6 rows by 20 regressors
// with an intercept, against GSL's gsl_multifit_linear (SVD of the whole
// design matrix) and gsl_multilarge_linear with the TSQR type (blocks of rows
// folded into a triangular factor, memory O(p^2) like ours).  Each measures
// the fit from the caller's row-major data to the coefficients.
//
//   build-bench/bench/zorvs_bench --benchmark_filter=Regression
//       --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true
//       --benchmark_report_aggregates_only=true
// (one command line).
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "zorvstat.h"
#ifdef ZORVS_HAVE_GSL
#include <gsl/gsl_multifit.h>
#include <gsl/gsl_multilarge.h>
#endif

namespace {

constexpr long rows = 1000000;
constexpr int columns = 20;

struct Data {
    std::vector<double> x, y;
};

const Data &data() {
    static Data d;
    if (d.x.empty()) {
        std::mt19937_64 rng(11);
        std::normal_distribution<double> normal(0.0, 1.0);
        d.x.resize(static_cast<std::size_t>(rows) * columns);
        d.y.resize(rows);
        for (long i = 0; i < rows; ++i) {
            double s = 3.0;
            for (int j = 0; j < columns; ++j) {
                const double v = 10.0 + (j + 1) * normal(rng);
                d.x[i * columns + j] = v;
                s += (j % 3 - 1) * 0.5 * v;
            }
            d.y[i] = s + normal(rng);
        }
    }
    return d;
}

void BM_Regression_zorvs(benchmark::State &state) {
    const Data &d = data();
    std::vector<double> x = d.x, y = d.y;
    for (auto _ : state) {
        double *b = zorvs_d_regression(static_cast<int>(rows), columns, x.data(), y.data(), 0);
        benchmark::DoNotOptimize(b);
        std::free(b);
    }
}
BENCHMARK(BM_Regression_zorvs)->Unit(benchmark::kMillisecond);

#ifdef ZORVS_HAVE_GSL
// The design matrix with its column of ones, as GSL takes it.
void fill_design(gsl_matrix *X, const Data &d, long first, long n) {
    for (long i = 0; i < n; ++i) {
        double *row = gsl_matrix_ptr(X, i, 0);
        row[0] = 1.0;
        const double *src = d.x.data() + (first + i) * columns;
        for (int j = 0; j < columns; ++j) row[j + 1] = src[j];
    }
}

void BM_Regression_gsl_multifit_linear(benchmark::State &state) {
    const Data &d = data();
    const std::size_t p = columns + 1;
    for (auto _ : state) {
        gsl_matrix *X = gsl_matrix_alloc(rows, p);
        gsl_vector_const_view y = gsl_vector_const_view_array(d.y.data(), rows);
        gsl_vector *c = gsl_vector_alloc(p);
        gsl_matrix *cov = gsl_matrix_alloc(p, p);
        gsl_multifit_linear_workspace *w = gsl_multifit_linear_alloc(rows, p);
        double chisq = 0;
        fill_design(X, d, 0, rows);
        gsl_multifit_linear(X, &y.vector, c, cov, &chisq, w);
        benchmark::DoNotOptimize(gsl_vector_get(c, 1));
        gsl_multifit_linear_free(w);
        gsl_matrix_free(cov);
        gsl_vector_free(c);
        gsl_matrix_free(X);
    }
}
BENCHMARK(BM_Regression_gsl_multifit_linear)->Unit(benchmark::kMillisecond);

void BM_Regression_gsl_multilarge_tsqr(benchmark::State &state) {
    const Data &d = data();
    const std::size_t p = columns + 1;
    const long block = 10000;
    for (auto _ : state) {
        gsl_multilarge_linear_workspace *w = gsl_multilarge_linear_alloc(gsl_multilarge_linear_tsqr, p);
        gsl_matrix *X = gsl_matrix_alloc(block, p);
        gsl_vector *c = gsl_vector_alloc(p);
        for (long first = 0; first < rows; first += block) {
            fill_design(X, d, first, block);
            gsl_vector_const_view y = gsl_vector_const_view_array(d.y.data() + first, block);
            gsl_multilarge_linear_accumulate(X, const_cast<gsl_vector *>(&y.vector), w);
        }
        double rnorm = 0, snorm = 0;
        gsl_multilarge_linear_solve(0.0, c, &rnorm, &snorm, w);
        benchmark::DoNotOptimize(gsl_vector_get(c, 1));
        gsl_vector_free(c);
        gsl_matrix_free(X);
        gsl_multilarge_linear_free(w);
    }
}
BENCHMARK(BM_Regression_gsl_multilarge_tsqr)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
