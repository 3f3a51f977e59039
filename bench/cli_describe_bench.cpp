// cli_describe_bench.cpp - `zorvstat describe` of a large CSV file against
// pandas' read_csv followed by describe on the same file, each run as a
// child process: wall time (manual time), the child's processor time (user
// and system, cpu_s: steadier than the wall time on a loaded machine) and its
// peak resident memory (ru_maxrss from wait4) as peak_MB, beside data_MB,
// the data as doubles.
//
// The file has ZORVS_CLI_BENCH_ROWS rows (default 10^7) of 10 columns of
// normal deviates with six decimals, about 1 GB at the default, written
// once to /tmp/zorvstat_bench_<rows>.csv and kept for later runs.
// Run: build-bench/bench/zorvs_cli_bench
//        --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true
//      (ZORVS_CLI_BENCH_ROWS=100000 for a quick run.)
#ifdef ZORVSTAT_PROGRAM
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

extern char **environ;

namespace {

constexpr int n_columns = 10;

long bench_rows() {
    const char *s = std::getenv("ZORVS_CLI_BENCH_ROWS");
    long n = s ? std::atol(s) : 10000000L;
    return n > 0 ? n : 10000000L;
}

// The file, written on first use.
const std::string &bench_file() {
    static std::string path;
    if (!path.empty()) return path;
    long rows = bench_rows();
    path = "/tmp/zorvstat_bench_" + std::to_string(rows) + ".csv";
    struct stat st;
    if (::stat(path.c_str(), &st) == 0 && st.st_size > 0) return path;
    std::string part = path + ".part";
    FILE *f = std::fopen(part.c_str(), "w");
    if (!f) return path;
    for (int j = 0; j < n_columns; ++j) std::fprintf(f, "%sx%d", j ? "," : "", j + 1);
    std::fputc('\n', f);
    std::mt19937_64 rng(2026);
    std::normal_distribution<double> normal(0.0, 1.0);
    std::string line;
    char number[32];
    for (long i = 0; i < rows; ++i) {
        line.clear();
        for (int j = 0; j < n_columns; ++j) {
            double v = 100.0 * (j + 1) + 10.0 * normal(rng);
            auto r = std::to_chars(number, number + sizeof number, v, std::chars_format::fixed, 6);
            line.append(number, r.ptr);
            line += j + 1 < n_columns ? ',' : '\n';
        }
        std::fwrite(line.data(), 1, line.size(), f);
    }
    std::fclose(f);
    std::rename(part.c_str(), path.c_str());
    return path;
}

struct ChildRun {
    double seconds;   // wall time; negative when the run failed
    double cpu;       // user and system time of the child
    double peak_mb;   // its peak resident memory
};

// One run of argv with its output to /dev/null.
ChildRun run_child(const std::vector<std::string> &args) {
    std::vector<char *> argv;
    for (const std::string &a : args) argv.push_back(const_cast<char *>(a.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    auto start = std::chrono::steady_clock::now();
    pid_t pid;
    int rc = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) return {-1.0, 0.0, 0.0};
    int status = 0;
    struct rusage usage {};
    wait4(pid, &status, 0, &usage);
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return {-1.0, 0.0, 0.0};
    double cpu = usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + 1e-6 * (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
    return {seconds, cpu, usage.ru_maxrss / 1024.0};
}

void time_child(benchmark::State &state, const std::vector<std::string> &args) {
    ChildRun last{};
    for (auto _ : state) {
        last = run_child(args);
        if (last.seconds < 0) {
            state.SkipWithError((args[0] + " failed").c_str());
            break;
        }
        state.SetIterationTime(last.seconds);
    }
    state.counters["cpu_s"] = last.cpu;
    state.counters["peak_MB"] = last.peak_mb;
    state.counters["data_MB"] = bench_rows() * n_columns * 8.0 / (1024.0 * 1024.0);
}

void BM_CliDescribe_zorvstat(benchmark::State &state) {
    time_child(state, {ZORVSTAT_PROGRAM, "describe", bench_file()});
}

void BM_CliDescribe_pandas(benchmark::State &state) {
    time_child(state, {"/usr/bin/python3", "-c", "import sys, pandas; print(pandas.read_csv(sys.argv[1]).describe())",
                       bench_file()});
}

}  // namespace

BENCHMARK(BM_CliDescribe_zorvstat)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CliDescribe_pandas)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
#endif
