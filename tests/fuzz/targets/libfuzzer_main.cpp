// libfuzzer_main.cpp - libFuzzer's entry point in the fuzz build: the target
// named by ZORVS_FUZZ_ENTRY (zorvs_fuzz_NAME, see fuzz_input.hpp).
#include <cstddef>
#include <cstdint>

int ZORVS_FUZZ_ENTRY(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    return ZORVS_FUZZ_ENTRY(data, size);
}
