// k_means_bench.cpp - zorvs_d_cluster_k_means on 10^6 points in 10
// dimensions into 20 clusters (30 passes at most), from seeds that are 20
// rows of the data, on blobs of scatter 1.5 (they overlap so much that the
// quick-transfer stage runs to its limit, in R as here) and of scatter 0.5
// (the clustering converges in a few passes).  The peer is R's
// kmeans(algorithm = "Hartigan-Wong") on the same data and seeds, timed by
// bench/k_means_peer.R: run the benchmark once with ZORVS_KMEANS_DATA=<prefix>
// to write the data to <prefix>_15.bin and <prefix>_5.bin (10^6 rows of 10
// doubles, row-major, native byte order), then
//     Rscript bench/k_means_peer.R <prefix>_15.bin
// Both print the total within-cluster sum of squares, which must agree.
// Run: build-bench/bench/zorvs_bench --benchmark_filter=KMeans
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "zorvstat.h"

namespace {

constexpr int rows = 1000000, dims = 10, clusters = 20;

// 20 blobs with centres uniform in [0, 10]^10 and normal scatter of
// standard deviation tenths / 10.
const std::vector<double> &data(int tenths) {
    static std::vector<double> x;
    static int made = 0;
    if (made != tenths) {
        made = tenths;
        std::mt19937_64 rng(20261124);
        std::uniform_real_distribution<double> uniform(0.0, 10.0);
        std::normal_distribution<double> normal(0.0, tenths / 10.0);
        std::vector<double> centre(clusters * dims);
        for (double &c : centre) c = uniform(rng);
        x.resize(static_cast<std::size_t>(rows) * dims);
        for (int i = 0; i < rows; ++i) {
            const int c = static_cast<int>(rng() % clusters);
            for (int j = 0; j < dims; ++j) x[static_cast<std::size_t>(i) * dims + j] = centre[c * dims + j] + normal(rng);
        }
        if (const char *prefix = std::getenv("ZORVS_KMEANS_DATA")) {
            const std::string path = std::string(prefix) + "_" + std::to_string(tenths) + ".bin";
            if (FILE *f = std::fopen(path.c_str(), "wb")) {
                std::fwrite(x.data(), sizeof(double), x.size(), f);
                std::fclose(f);
            }
        }
    }
    return x;
}

// Seeds: rows 0, 49999, 99998, ... (k_means_peer.R takes the same rows).
std::vector<double> seeds(int tenths) {
    const auto &x = data(tenths);
    std::vector<double> s;
    for (int l = 0; l < clusters; ++l)
        for (int j = 0; j < dims; ++j) s.push_back(x[static_cast<std::size_t>(l) * 49999 * dims + j]);
    return s;
}

void BM_KMeans_zorvs(benchmark::State &state) {
    const int tenths = static_cast<int>(state.range(0));
    std::vector<double> x = data(tenths), s = seeds(tenths);
    double ssq[clusters];
    for (auto _ : state) {
        int *c = zorvs_d_cluster_k_means(rows, dims, x.data(), clusters, s.data(), ZORVS_MAX_ITERATIONS, 30,
                                         ZORVS_CLUSTER_SSQ_USER, ssq, 0);
        benchmark::DoNotOptimize(c);
        std::free(c);
    }
    double total = 0;
    for (double v : ssq) total += v;
    state.counters["total_within_ss"] = total;
}
BENCHMARK(BM_KMeans_zorvs)->Arg(15)->Arg(5)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
