// sort_bench.cpp - the library's quicksort of 10^7 doubles (random and
// nearly sorted) against std::sort, qsort and GSL's gsl_sort in one run.
//
//   cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release && cmake --build build-bench -j2 --target zorvs_bench
//   build-bench/bench/zorvs_bench --benchmark_filter=Sort
//
// Each iteration copies the same input into the buffer (untimed) and sorts it.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "kernels/kernels.h"
#ifdef ZORVS_HAVE_GSL
#include <gsl/gsl_sort.h>
#endif

namespace {

constexpr int sort_n = 10000000;

const std::vector<double> &input(int shape) {
    static std::vector<double> random_data, nearly_data;
    std::vector<double> &v = shape == 0 ? random_data : nearly_data;
    if (v.empty()) {
        std::mt19937_64 g(42);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        v.resize(sort_n);
        for (int i = 0; i < sort_n; ++i) v[i] = shape == 0 ? u(g) : static_cast<double>(i);
        if (shape == 1)  // one element in a hundred swapped with a neighbour up to 100 away
            for (int i = 0; i + 100 < sort_n; i += 100) std::swap(v[i], v[i + g() % 100]);
    }
    return v;
}

template <class Sort>
void run(benchmark::State &state, Sort sort) {
    const auto &in = input(static_cast<int>(state.range(0)));
    std::vector<double> buf(in.size());
    for (auto _ : state) {
        state.PauseTiming();
        std::memcpy(buf.data(), in.data(), in.size() * sizeof(double));
        state.ResumeTiming();
        sort(buf.data(), static_cast<int>(buf.size()));
        benchmark::DoNotOptimize(buf.data());
    }
    state.SetLabel(state.range(0) == 0 ? "random" : "nearly sorted");
}

int compare(const void *a, const void *b) {
    double x = *static_cast<const double *>(a), y = *static_cast<const double *>(b);
    return (x > y) - (x < y);
}

void BM_SortZorvs(benchmark::State &s) { run(s, [](double *p, int n) { zorvs_dsvrgn(n, p, p); }); }
void BM_SortStd(benchmark::State &s) { run(s, [](double *p, int n) { std::sort(p, p + n); }); }
void BM_SortQsort(benchmark::State &s) { run(s, [](double *p, int n) { std::qsort(p, n, sizeof(double), compare); }); }
BENCHMARK(BM_SortZorvs)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SortStd)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SortQsort)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
#ifdef ZORVS_HAVE_GSL
void BM_SortGsl(benchmark::State &s) { run(s, [](double *p, int n) { gsl_sort(p, 1, static_cast<size_t>(n)); }); }
BENCHMARK(BM_SortGsl)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
#endif

}  // namespace
