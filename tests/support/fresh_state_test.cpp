// fresh_state_test.cpp - under CTest every test runs in its own process and
// so starts from the library's initial state.  When the whole test program
// runs in one process instead (a plain ./zorvs_tests), this listener gives
// each test the same start: no error on record, write options at their
// defaults, the page size the process started with, and the default stops.
#include "support/tables.hpp"

namespace {

class FreshState : public ::testing::EmptyTestEventListener {
public:
    FreshState() {
        zorvs_page(1, &width_);
        zorvs_page(2, &length_);
    }
    void OnTestStart(const ::testing::TestInfo &) override {
        zorvs_e1mes(0, 0, nullptr);
        int unused = 0;
        zorvs_write_options(0, &unused);
        int w = width_, l = length_;
        zorvs_page(-1, &w);
        zorvs_page(-2, &l);
        zorvs_error_options(ZORVS_SET_STOP, 1, 0, ZORVS_SET_STOP, 2, 0, ZORVS_SET_STOP, 3, 0, ZORVS_SET_STOP, 4, 1,
                            ZORVS_SET_STOP, 5, 1, 0);
    }

private:
    int width_ = 0, length_ = 0;
};

const bool registered = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new FreshState);
    return true;
}();

}  // namespace
