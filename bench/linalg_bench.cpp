// linalg_bench.cpp - the symmetric eigensystem against GSL's gsl_eigen_symmv
// at n = 200 and 500, and both in-place transposition paths (block copy and
// permutation cycles) on a 3000 x 5000 double matrix, against a plain
// out-of-place transpose into a second matrix.
//
// Run: build/bench/zorvs_bench --benchmark_filter='Eigen|Transpose'
#include <benchmark/benchmark.h>

#include <vector>

#include "frame/frame.hpp"
#include "kernels/linalg.h"
#include "zorvstat.h"

#ifdef ZORVS_HAVE_GSL
#include <gsl/gsl_eigen.h>
#include <gsl/gsl_matrix.h>
#endif

namespace {

std::vector<double> random_symmetric(int n) {
    std::vector<double> a(static_cast<std::size_t>(n) * n);
    unsigned long long s = 12345;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) {
            s = s * 6364136223846793005ULL + 1442695040888963407ULL;
            double v = static_cast<double>(s >> 11) / 9007199254740992.0 - 0.5;
            a[static_cast<std::size_t>(j) * n + i] = a[static_cast<std::size_t>(i) * n + j] = v;
        }
    return a;
}

void BM_Eigen_e2csf(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    auto a = random_symmetric(n);
    std::vector<double> eval(n), evec(static_cast<std::size_t>(n) * n), work(2 * n);
    for (auto _ : state) {
        zorvs_de2csf(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data());
        benchmark::DoNotOptimize(eval.data());
    }
}
BENCHMARK(BM_Eigen_e2csf)->Arg(200)->Arg(500)->Unit(benchmark::kMillisecond);

void BM_Eigen_e5csf(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    auto a = random_symmetric(n);
    std::vector<double> eval(n), evec(static_cast<std::size_t>(n) * n), work(2 * n);
    std::vector<int> iwork(n);
    for (auto _ : state) {
        zorvs_de5csf(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data(), iwork.data());
        benchmark::DoNotOptimize(eval.data());
    }
}
BENCHMARK(BM_Eigen_e5csf)->Arg(200)->Arg(500)->Unit(benchmark::kMillisecond);

#ifdef ZORVS_HAVE_GSL
void BM_Eigen_gsl_symmv(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    auto a = random_symmetric(n);
    gsl_matrix *m = gsl_matrix_alloc(n, n), *v = gsl_matrix_alloc(n, n);
    gsl_vector *e = gsl_vector_alloc(n);
    gsl_eigen_symmv_workspace *w = gsl_eigen_symmv_alloc(n);
    for (auto _ : state) {
        // symmv destroys its input: the copy is part of the work, as in e2csf.
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) gsl_matrix_set(m, i, j, a[static_cast<std::size_t>(j) * n + i]);
        gsl_eigen_symmv(m, e, v, w);
        benchmark::DoNotOptimize(e->data);
    }
    gsl_eigen_symmv_free(w);
    gsl_vector_free(e);
    gsl_matrix_free(v);
    gsl_matrix_free(m);
}
BENCHMARK(BM_Eigen_gsl_symmv)->Arg(200)->Arg(500)->Unit(benchmark::kMillisecond);
#endif

constexpr int rows = 3000, cols = 5000;

std::vector<double> big_matrix() {
    std::vector<double> a(static_cast<std::size_t>(rows) * cols);
    for (std::size_t k = 0; k < a.size(); ++k) a[k] = static_cast<double>(k);
    return a;
}

// In place with the temporary block.
void BM_Transpose_in_place_block(benchmark::State &state) {
    auto a = big_matrix();
    bool flip = false;
    for (auto _ : state) {
        zorvs_d_m1ran(flip ? cols : rows, flip ? rows : cols, a.data(), a.data());
        flip = !flip;
        benchmark::DoNotOptimize(a.data());
    }
}
BENCHMARK(BM_Transpose_in_place_block)->Unit(benchmark::kMillisecond);

// In place by cycles, the path taken when the block cannot be allocated.
void BM_Transpose_in_place_cycles(benchmark::State &state) {
    auto a = big_matrix();
    bool flip = false;
    for (auto _ : state) {
        zorvs::allocation_failure_countdown = 1;
        zorvs_d_m1ran(flip ? cols : rows, flip ? rows : cols, a.data(), a.data());
        zorvs::allocation_failure_countdown = 0;
        flip = !flip;
        benchmark::DoNotOptimize(a.data());
    }
}
BENCHMARK(BM_Transpose_in_place_cycles)->Unit(benchmark::kMillisecond);

// Peer: a plain two-index loop into a second matrix.
void BM_Transpose_plain_out_of_place(benchmark::State &state) {
    auto a = big_matrix();
    std::vector<double> b(a.size());
    for (auto _ : state) {
        for (int i = 0; i < rows; ++i)
            for (int j = 0; j < cols; ++j)
                b[static_cast<std::size_t>(j) * rows + i] = a[static_cast<std::size_t>(i) * cols + j];
        benchmark::DoNotOptimize(b.data());
    }
}
BENCHMARK(BM_Transpose_plain_out_of_place)->Unit(benchmark::kMillisecond);

}  // namespace
