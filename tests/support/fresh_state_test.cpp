// fresh_state_test.cpp - under CTest every test runs in its own process and
// so starts from the library's initial state.  When the whole test program
// runs in one process instead (a plain ./zorvs_tests), this listener gives
// each test the same start: no error on record, write options at their
// defaults, the page size the process started with, and the default stops.
#include "support/tables.hpp"

namespace {

// The page size the process started with, read before the first test.
int width = 0, length = 0;

class FreshState : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo &) override {
        int unused = 0, w = width, l = length;
        zorvs_e1mes(0, 0, nullptr);
        zorvs_write_options(0, &unused);
        zorvs_page(-1, &w);
        zorvs_page(-2, &l);
        zorvs_error_options(ZORVS_SET_STOP, 1, 0, ZORVS_SET_STOP, 2, 0, ZORVS_SET_STOP, 3, 0, ZORVS_SET_STOP, 4, 1,
                            ZORVS_SET_STOP, 5, 1, 0);
    }
};

const bool registered = [] {
    zorvs_page(1, &width);
    zorvs_page(2, &length);
    ::testing::UnitTest::GetInstance()->listeners().Append(new FreshState);
    return true;
}();

}  // namespace
