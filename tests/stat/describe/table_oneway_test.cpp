// Tests of the one-way frequency table: counts in all four schemes against
// R's cut()/table() (tests/data/stat/describe/make_table_oneway.R) on data
// with values exactly on the edges and on either side of the fuzz, in both
// twins; the edge cases of each scheme counted by hand; the order of the
// checks and their parameters; caller storage; stops.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "frame/frame.hpp"
#include "frame/services.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

#include "data/stat/describe/table_oneway_ref.inc"

template <class T, std::size_t N>
std::vector<T> as(const double (&a)[N]) {
    return std::vector<T>(a, a + N);
}

template <class T>
class TableOnewayTwin : public ::testing::Test {};
using Reals = ::testing::Types<float, double>;
TYPED_TEST_SUITE(TableOnewayTwin, Reals);

// The twin's routine.
template <class T, class... Args>
T *table(int n, T *x, int k, Args... args) {
    if constexpr (std::is_same_v<T, float>)
        return zorvs_f_table_oneway(n, x, k, args...);
    else
        return zorvs_d_table_oneway(n, x, k, args...);
}

template <class T, std::size_t N>
void expect_counts(T *got, const double (&want)[N]) {
    ASSERT_NE(got, nullptr);
    for (std::size_t i = 0; i < N; ++i) EXPECT_EQ(got[i], static_cast<T>(want[i])) << "cell " << i;
}

TYPED_TEST(TableOnewayTwin, CountsAgreeWithR) {
    using T = TypeParam;
    const bool single = std::is_same_v<T, float>;
    auto x0 = single ? as<T>(mode0_f_x) : as<T>(mode0_d_x);
    T lo = -1, hi = -1;
    T *t0 = table<T>(static_cast<int>(x0.size()), x0.data(), 5, ZORVS_DATA_BOUNDS, &lo, &hi, 0);
    if (single)
        expect_counts(t0, mode0_f_counts);
    else
        expect_counts(t0, mode0_d_counts);
    EXPECT_EQ(lo, 0);
    EXPECT_EQ(hi, 10);
    std::free(t0);

    auto x1 = as<T>(mode1_x);
    T *t1 = table<T>(static_cast<int>(x1.size()), x1.data(), 10, ZORVS_KNOWN_BOUNDS, 0.0, 8.0, 0);
    expect_counts(t1, mode1_counts);
    std::free(t1);

    auto x2 = as<T>(mode2_x);
    auto c2 = as<T>(mode2_cuts);
    T *t2 = table<T>(static_cast<int>(x2.size()), x2.data(), 5, ZORVS_CUTPOINTS, c2.data(), 0);
    expect_counts(t2, mode2_counts);
    std::free(t2);

    auto x3 = as<T>(mode3_x);
    auto m3 = as<T>(mode3_marks);
    std::vector<T> user(4, -7);
    T *t3 = table<T>(static_cast<int>(x3.size()), x3.data(), 4, ZORVS_RETURN_USER, user.data(), ZORVS_CLASS_MARKS,
                     m3.data(), 0);
    EXPECT_EQ(t3, user.data());
    expect_counts(t3, mode3_counts);
    T sum = 0;
    for (T v : user) sum += v;
    EXPECT_LT(sum, static_cast<T>(x3.size()));  // 4 and others lie near no mark
}

TYPED_TEST(TableOnewayTwin, EdgeCasesOfEachScheme) {
    using T = TypeParam;
    // equal data: everything in cell 0, and the bounds are that value
    std::vector<T> same(6, static_cast<T>(2.5));
    T lo = 0, hi = 0;
    T *t = table<T>(6, same.data(), 3, ZORVS_DATA_BOUNDS, &lo, &hi, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t[0], 6);
    EXPECT_EQ(t[1], 0);
    EXPECT_EQ(t[2], 0);
    EXPECT_EQ(lo, static_cast<T>(2.5));
    EXPECT_EQ(hi, static_cast<T>(2.5));
    std::free(t);
    // one interval: all in cell 0
    std::vector<T> v{3, 1, 2, 9};
    t = table<T>(4, v.data(), 1, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t[0], 4);
    std::free(t);
    // mode 0 with a width that is not exact: w = 0.1 in the twin's precision;
    // the value 3w, computed as j*w exactly as the edge, stays in cell 2, and
    // one spacing of the data above the fuzz moves up
    std::vector<T> y{0, 1, static_cast<T>(3) * (static_cast<T>(1) / 10), static_cast<T>(0.55)};
    t = table<T>(4, y.data(), 10, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t[0], 1);
    EXPECT_EQ(t[2], 1);
    EXPECT_EQ(t[5], 1);
    EXPECT_EQ(t[9], 1);
    std::free(t);
    // mode 1 with three cells: the bounds go to cells 0 and 1
    std::vector<T> b{1, 2, 1.5, 0, 3};
    t = table<T>(5, b.data(), 3, ZORVS_KNOWN_BOUNDS, 1.0, 2.0, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t[0], 2);
    EXPECT_EQ(t[1], 2);
    EXPECT_EQ(t[2], 1);
    std::free(t);
    // mode 1 where (k - 2) * w rounds below the width of the bounds: the upper
    // bound itself is still counted, in the last inner cell
    {
        T low = static_cast<T>(0), up = static_cast<T>(1);
        std::vector<T> z{up, static_cast<T>(0.7)};
        for (int k = 3; k < 60; ++k) {
            t = table<T>(2, z.data(), k, ZORVS_KNOWN_BOUNDS, static_cast<double>(low), static_cast<double>(up), 0);
            ASSERT_NE(t, nullptr);
            T total = 0;
            for (int i = 0; i < k; ++i) total += t[i];
            EXPECT_EQ(total, 2) << k;
            EXPECT_EQ(t[k - 1], 0) << k;
            EXPECT_GE(t[k - 2], 1) << k;
            std::free(t);
        }
    }
    // mode 2 with one cutpoint: a value equal to it is in cell 0
    T cut = 5;
    std::vector<T> c{5, 4, 6};
    t = table<T>(3, c.data(), 2, ZORVS_CUTPOINTS, &cut, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t[0], 2);
    EXPECT_EQ(t[1], 1);
    std::free(t);
    // mode 3: exactly half from a mark counts; between two marks, the lower
    T marks[3] = {0, 2, 10};
    std::vector<T> m{1, 3, 9, 11, 5};
    t = table<T>(5, m.data(), 3, ZORVS_CLASS_MARKS, marks, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t[0], 1);
    EXPECT_EQ(t[1], 1);
    EXPECT_EQ(t[2], 2);  // half is 1, from the first two marks: 9 and 11 are exactly half from 10; 5 is nowhere
    std::free(t);
}

// Errors, with stops off: codes, parameters, null result or caller's pointer.
TYPED_TEST(TableOnewayTwin, ChecksRaiseInOrderAndReturnNull) {
    using T = TypeParam;
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    std::vector<T> x{1, 2, 3};
    T cuts[2] = {1, 2}, lo, hi;
    // two mode keywords: nothing else is looked at, not even n_intervals
    EXPECT_EQ(table<T>(3, x.data(), -5, ZORVS_CUTPOINTS, cuts, ZORVS_DATA_BOUNDS, &lo, &hi, 0), nullptr);
    EXPECT_EQ(zorvs_error_code(), 20022);
    EXPECT_FALSE(log.has_code(603));
    // one mode keyword twice counts as two
    EXPECT_EQ(table<T>(3, x.data(), 3, ZORVS_CUTPOINTS, cuts, ZORVS_CUTPOINTS, cuts, 0), nullptr);
    EXPECT_EQ(zorvs_error_code(), 20022);
    // n_intervals below 1: the argument check
    EXPECT_EQ(table<T>(3, x.data(), 0, 0), nullptr);
    EXPECT_TRUE(zorvs_error_code() == 602 || zorvs_error_code() == 603);
    EXPECT_STREQ(zorvs_error_param.l[1], "n_intervals");
    // cutpoints with one cell
    EXPECT_EQ(table<T>(3, x.data(), 1, ZORVS_CUTPOINTS, cuts, 0), nullptr);
    EXPECT_EQ(zorvs_error_code(), 20020);
    EXPECT_EQ(zorvs_error_param.i[1], 1);
    EXPECT_STREQ(zorvs_error_param.l[1], "ZORVS_CUTPOINTS");
    EXPECT_EQ(table<T>(3, x.data(), 1, ZORVS_CLASS_MARKS, cuts, 0), nullptr);
    EXPECT_STREQ(zorvs_error_param.l[1], "ZORVS_CLASS_MARKS");
    // no observations, with caller storage: the caller's pointer comes back
    std::vector<T> user(3, 42);
    EXPECT_EQ(table<T>(0, x.data(), 3, ZORVS_RETURN_USER, user.data(), 0), user.data());
    EXPECT_EQ(zorvs_error_code(), 11002);
    EXPECT_EQ(zorvs_error_param.i[1], 0);
    EXPECT_EQ(user[0], 42);  // nothing counted
    // bounds out of order, several checks at once: each raised, the last code stays
    log.clear();
    EXPECT_EQ(table<T>(-1, x.data(), 2, ZORVS_KNOWN_BOUNDS, 3.0, 3.0, 0), nullptr);
    EXPECT_TRUE(log.has(5, 11002));
    EXPECT_TRUE(log.has(5, 20023));
    EXPECT_TRUE(log.has(5, 20021));
    EXPECT_EQ(zorvs_error_param.r[1], 3.0);
    EXPECT_EQ(zorvs_error_param.r[2], 3.0);
    EXPECT_EQ(zorvs_error_param.i[1], 2);
    // cutpoints not increasing: every bad pair, indices from 0
    log.clear();
    T bad[4] = {1, 0.5f, 0.5f, 2};
    EXPECT_EQ(table<T>(3, x.data(), 5, ZORVS_CUTPOINTS, bad, 0), nullptr);
    int n24 = 0;
    for (auto &e : log.entries()) n24 += e.second == 20024;
    EXPECT_GE(n24, 2);  // raised for both bad pairs (the release logs the last once more)
    EXPECT_STREQ(zorvs_error_param.l[1], "cutpoints");
    EXPECT_EQ(zorvs_error_param.i[1], 2);
    EXPECT_EQ(zorvs_error_param.i[2], 1);
    EXPECT_EQ(zorvs_error_param.r[1], 0.5);
    // class marks: all k marks are looked at
    T marks[3] = {1, 2, 2};
    EXPECT_EQ(table<T>(3, x.data(), 3, ZORVS_CLASS_MARKS, marks, 0), nullptr);
    EXPECT_EQ(zorvs_error_code(), 20024);
    EXPECT_STREQ(zorvs_error_param.l[1], "class_marks");
    // a NaN among the data
    x[1] = zorvs::missing<T>();
    EXPECT_EQ(table<T>(3, x.data(), 3, 0), nullptr);
    EXPECT_EQ(zorvs_error_code(), 20026);
    // unknown keyword: position counts the fixed arguments
    EXPECT_EQ(table<T>(3, x.data(), 3, ZORVS_KNOWN_BOUNDS, 0.0, 1.0, 99999, 0), nullptr);
    EXPECT_EQ(zorvs_error_code(), 11001);
    EXPECT_EQ(zorvs_error_param.i[1], 99999);
    EXPECT_EQ(zorvs_error_param.i[2], 7);
    // a failed allocation of the result or of the work vector
    x[1] = 2;
    for (int countdown : {1, 2}) {
        zorvs::allocation_failure_countdown = countdown;
        EXPECT_EQ(table<T>(3, x.data(), 4, 0), nullptr);
        zorvs::allocation_failure_countdown = 0;
        EXPECT_EQ(zorvs_error_code(), 201);
        EXPECT_EQ(zorvs_error_param.i[1], 4);
        EXPECT_STREQ(zorvs_error_param.l[1], "n_intervals");
    }
    // and the routine works again afterwards
    T *t = table<T>(3, x.data(), 3, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t[0] + t[1] + t[2], 3);
    std::free(t);
}

TEST(TableOnewayStops, TerminalErrorEndsTheProcess) {
    auto call = [] {
        float x[2] = {1, 2};
        zorvs_f_table_oneway(2, x, 3, ZORVS_KNOWN_BOUNDS, 2.0, 1.0, 0);
        std::exit(0);
    };
    EXPECT_EXIT(call(), ::testing::ExitedWithCode(5), "zorvs_f_table_oneway");
    auto call_d = [] {
        double x[2] = {1, 2};
        double c[1] = {0};
        zorvs_d_table_oneway(2, x, 2, ZORVS_CUTPOINTS, c, ZORVS_CLASS_MARKS, c, 0);
        std::exit(0);
    };
    EXPECT_EXIT(call_d(), ::testing::ExitedWithCode(5), "zorvs_d_table_oneway");
}

}  // namespace
