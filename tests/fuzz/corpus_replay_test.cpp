// corpus_replay_test.cpp - each committed input of tests/fuzz/corpus/<target>
// fed to its fuzz target (fuzz/targets/, compiled into this program without
// libFuzzer), a test a target: the checks of the target hold on every input
// (a finding aborts the test with its report), and the sanitizer builds see
// each input's path for reads and writes out of bounds and for leaks.  The
// inputs hold every finding of the targets and reach the messages and lines
// that random calls of each routine family reach.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/targets/fuzz_input.hpp"
#include "support/tables.hpp"
#undef F

// The targets' entry points (ZORVS_FUZZ_TARGET).
using Entry = int(const std::uint8_t *data, std::size_t size);
Entry zorvs_fuzz_dist, zorvs_fuzz_random, zorvs_fuzz_describe, zorvs_fuzz_regress, zorvs_fuzz_tests, zorvs_fuzz_series,
    zorvs_fuzz_multivariate, zorvs_fuzz_output;

namespace {

struct Target { const char *name; Entry *entry; };
const Target targets[] = {{"dist", zorvs_fuzz_dist}, {"random", zorvs_fuzz_random}, {"describe", zorvs_fuzz_describe},
                          {"regress", zorvs_fuzz_regress}, {"tests", zorvs_fuzz_tests}, {"series", zorvs_fuzz_series},
                          {"multivariate", zorvs_fuzz_multivariate}, {"output", zorvs_fuzz_output}};

class CorpusReplay : public ::testing::TestWithParam<Target> {};

TEST_P(CorpusReplay, EveryInputPassesTheTargetsChecks) {
    const std::filesystem::path corpus = ZORVS_FUZZ_CORPUS + std::string("/") + GetParam().name;
    std::vector<std::filesystem::path> inputs(std::filesystem::directory_iterator(corpus), {});
    std::sort(inputs.begin(), inputs.end());
    EXPECT_GT(inputs.size(), 300u);
    zorvs_test::NoStop no_stop;
    FILE *null = std::fopen("/dev/null", "w"), *errors = nullptr, *output = nullptr;
    zorvs_output_file(ZORVS_GET_ERROR_FILE, &errors, ZORVS_GET_OUTPUT_FILE, &output, 0);
    zorvs_output_file(ZORVS_SET_ERROR_FILE, null, ZORVS_SET_OUTPUT_FILE, null, 0);
    for (const auto &path : inputs) {
        std::ifstream file(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}}, name = path.filename().string();
        zorvs_fuzz::input_name = name.c_str();
        GetParam().entry(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    }
    zorvs_output_file(ZORVS_SET_ERROR_FILE, errors, ZORVS_SET_OUTPUT_FILE, output, 0);
    std::fclose(null);
    zorvs_random_option(1);  // the generator the library starts with
}

INSTANTIATE_TEST_SUITE_P(Targets, CorpusReplay, ::testing::ValuesIn(targets),
                         [](const ::testing::TestParamInfo<Target> &info) { return std::string(info.param.name); });

}  // namespace
