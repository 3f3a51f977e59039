// catalogue_bench.cpp - the cost of fetching a message text from the mapped
// catalogue (bisection of the code table, one step through the offset
// table), against a hash table of texts held in memory, the peer a library
// with compiled-in texts would use; and the machine-constant inquiry with its
// frame against reading the constant directly.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <limits>
#include <string>
#include <unordered_map>
#include <vector>

#include "frame/services.h"
#include "zorvstat.h"

namespace {

// Codes spread over the catalogue; consecutive lookups differ, so the
// one-entry cache never answers.
const std::vector<int> bench_codes = {102,   132,   201,   603,   9043,  11001, 11054, 11117,
                                      20024, 20235, 20403, 60001, 10008, 20422, 9061,  11149};

// Point the library at the catalogue of the build tree (the directory above
// the one holding this program) before the first lookup.
void use_build_catalogue() {
    static bool done = false;
    if (done) return;
    done = true;
    char exe[4096];
    ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
    if (n <= 0) return;
    std::string path(exe, static_cast<std::size_t>(n));
    path = path.substr(0, path.rfind('/'));  // bench/
    path = path.substr(0, path.rfind('/') + 1);
    static std::string kept = path;
    zorvs_error_options(ZORVS_ERROR_MSG_PATH, kept.c_str(), 0);
}

void BM_catalogue_find_message(benchmark::State &state) {
    use_build_catalogue();
    std::size_t k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(zorvs_find_message(bench_codes[k]));
        k = (k + 1) % bench_codes.size();
    }
}
BENCHMARK(BM_catalogue_find_message);

void BM_catalogue_find_name(benchmark::State &state) {
    use_build_catalogue();
    std::size_t k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(zorvs_find_name(bench_codes[k]));
        k = (k + 1) % bench_codes.size();
    }
}
BENCHMARK(BM_catalogue_find_name);

// Peer: the same texts in a hash table in memory.
void BM_peer_hash_table_lookup(benchmark::State &state) {
    use_build_catalogue();
    std::unordered_map<int, std::string> table;
    for (int code : bench_codes) table[code] = zorvs_find_message(code);
    std::size_t k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(table.find(bench_codes[k])->second.c_str());
        k = (k + 1) % bench_codes.size();
    }
}
BENCHMARK(BM_peer_hash_table_lookup);

void BM_machine_inquiry(benchmark::State &state) {
    for (auto _ : state) benchmark::DoNotOptimize(zorvs_d_machine(4));
}
BENCHMARK(BM_machine_inquiry);

void BM_peer_numeric_limits(benchmark::State &state) {
    for (auto _ : state) {
        double e = std::numeric_limits<double>::epsilon();
        benchmark::DoNotOptimize(e);
    }
}
BENCHMARK(BM_peer_numeric_limits);

}  // namespace
