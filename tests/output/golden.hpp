// golden.hpp - compare printed output with an expected text kept under
// tests/data/output/.  With ZORVS_WRITE_GOLDEN set in the environment the
// expected text is (re)written instead; every such text is read by eye before
// it is committed.
#ifndef ZORVS_TEST_GOLDEN_HPP
#define ZORVS_TEST_GOLDEN_HPP

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace zorvs_test {

inline void expect_golden(const std::string &name, const std::string &text) {
    std::string path = std::string(ZORVS_TEST_DATA_DIR) + "/output/" + name + ".txt";
    if (std::getenv("ZORVS_WRITE_GOLDEN")) {
        std::ofstream(path, std::ios::binary) << text;
        return;
    }
    std::ifstream in(path, std::ios::binary);
    ASSERT_TRUE(in) << "missing expected text " << path;
    std::stringstream expected;
    expected << in.rdbuf();
    EXPECT_EQ(expected.str(), text) << "output differs from " << path;
}

}  // namespace zorvs_test

#endif
