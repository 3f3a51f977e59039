// frame_bench.cpp - the cost of the call frame: a bare push and pop as a
// value routine pays it, and zorvs_d_vmax through the full keyword frame
// with and without the trap bracket, against a plain loop.
#include <benchmark/benchmark.h>

#include "frame/services.h"
#include "zorvstat.h"

static void BM_push_pop(benchmark::State &state) {
    static const char name[] = "zorvs_bench_value";
    for (auto _ : state) {
        zorvs_e1psh(name);
        zorvs_e1pop(name);
    }
}
BENCHMARK(BM_push_pop);

static void BM_vmax_trapping_on(benchmark::State &state) {
    zorvs_error_options(ZORVS_SIGNAL_TRAPPING_ON, 0);
    double x = 0;
    for (auto _ : state) {
        x += 1e-9;
        benchmark::DoNotOptimize(zorvs_d_vmax(4, 1.0, x, 3.0, 2.0));
    }
}
BENCHMARK(BM_vmax_trapping_on);

static void BM_vmax_trapping_off(benchmark::State &state) {
    zorvs_error_options(ZORVS_SIGNAL_TRAPPING_OFF, 0);
    double x = 0;
    for (auto _ : state) {
        x += 1e-9;
        benchmark::DoNotOptimize(zorvs_d_vmax(4, 1.0, x, 3.0, 2.0));
    }
    zorvs_error_options(ZORVS_SIGNAL_TRAPPING_ON, 0);
}
BENCHMARK(BM_vmax_trapping_off);

static void BM_max_plain(benchmark::State &state) {
    double x = 0;
    for (auto _ : state) {
        x += 1e-9;
        double v[4] = {1.0, x, 3.0, 2.0};
        benchmark::DoNotOptimize(v);
        double m = v[0];
        for (double e : v)
            if (e > m) m = e;
        benchmark::DoNotOptimize(m);
    }
}
BENCHMARK(BM_max_plain);
