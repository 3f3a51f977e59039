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

// The argument checks on the normal path: a push and pop with three passing
// checks (an integer range, an order of two integers, a real not below 0),
// against the same push and pop with the three tests written inline.
#include "frame/checks.h"

static void BM_push_pop_checks(benchmark::State &state) {
    int n = 5, ld = 7;
    double x = 0.25;
    for (auto _ : state) {
        benchmark::DoNotOptimize(n);
        benchmark::DoNotOptimize(x);
        int arg_no = 0;
        zorvs_e1psh("bench_checks");
        zorvs_c1iarg(n, "n", 1, 10, &arg_no);
        zorvs_c12ile(n, "n", ld, "ld", &arg_no);
        zorvs_dc1ge0(x, "x", &arg_no);
        zorvs_e1pop("bench_checks");
        benchmark::DoNotOptimize(arg_no);
    }
}
BENCHMARK(BM_push_pop_checks);

static void BM_push_pop_inline_tests(benchmark::State &state) {
    int n = 5, ld = 7;
    double x = 0.25;
    for (auto _ : state) {
        benchmark::DoNotOptimize(n);
        benchmark::DoNotOptimize(x);
        int bad = 0;
        zorvs_e1psh("bench_checks");
        bad += (n < 1 || n > 10);
        bad += (n > ld);
        bad += (x < 0.0);
        zorvs_e1pop("bench_checks");
        benchmark::DoNotOptimize(bad);
    }
}
BENCHMARK(BM_push_pop_inline_tests);
