// cli.hpp - running the installed zorvstat program in tests (the cli test
// program only: ZORVSTAT_PROGRAM and ZORVSTAT_SAMPLES come from its build).
#ifndef ZORVS_TEST_CLI_HPP
#define ZORVS_TEST_CLI_HPP

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/capture.hpp"

namespace zorvs_test {

struct Outcome {
    int status;
    std::string out, err;
};

// A command line as a user types it ("zorvstat describe --format csv",
// "ZORVSTAT_BLOCK=5 zorvstat table", "zorvstat describe > /dev/full"), run
// by the shell in tests/data/cli/ with the installed program first on the
// path and no environment pointing it at its catalogue or samples; "@/"
// stands for the samples' folder.  Standard input is empty and standard
// output captured unless the line redirects them itself.
inline Outcome zorvstat(std::string line) {
    for (std::size_t at; (at = line.find("@/")) != std::string::npos;)
        line.replace(at, 2, std::string(ZORVSTAT_SAMPLES) + "/");
    const std::string program = ZORVSTAT_PROGRAM, bin = program.substr(0, program.rfind('/'));
    const std::string scratch = ::testing::TempDir() + "zorvstat_" + std::to_string(::getpid());
    const std::string command = "cd '" + std::string(ZORVS_TEST_DATA_DIR) + "/cli' && unset ZORVSTAT_DATA ZORVSERRPATH && PATH='" +
                                bin + "':\"$PATH\" && (" + line + ") < /dev/null > " + scratch + ".out 2> " + scratch + ".err";
    const int rc = std::system(command.c_str());
    Outcome r{WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, read_all(scratch + ".out"), read_all(scratch + ".err")};
    std::remove((scratch + ".out").c_str());
    std::remove((scratch + ".err").c_str());
    return r;
}

}  // namespace zorvs_test

#endif
