// Tests of differencing: R's diff() on lh, lynx, AirPassengers and co2
// (tests/data/stat/series/make_difference.R), exact in double and within
// the rounding of the single-precision data in float; the lost head as NaN
// or excluded; orders of 0; lost counts beyond the series; the checks with
// their parameters; caller storage; the stop.
#include "support/tables.hpp"

namespace {

using zorvs_test::agrees;

#include "data/stat/series/difference_ref.inc"

ZORVS_TWIN_SUITE(DifferenceTwin);

ZORVS_TWIN_WRAPPER(difference, difference)

TYPED_TEST(DifferenceTwin, AgreesWithR) {
    using T = TypeParam;
    const double eps = std::is_same_v<T, float> ? 0x1p-23 : 0.0;  // double: exact
    for (const DiffCase &c : diff_cases) {
        SCOPED_TRACE(c.name);
        std::vector<T> z(c.z, c.z + c.n);
        double zmax = 0;
        int total_order = 0;
        for (double v : z) zmax = std::fmax(zmax, std::fabs(v));
        for (int k = 0; k < c.k; ++k) total_order += c.orders[k];
        const double tol = 4 * eps * std::ldexp(zmax, total_order);
        int periods[2] = {c.periods[0], c.periods[1]}, orders[2] = {c.orders[0], c.orders[1]};
        int lost = -1;
        // default: the lost head stays in place as NaN
        T *w = difference<T>(c.n, z.data(), c.k, periods, ZORVS_ORDERS, orders, ZORVS_NUM_LOST, &lost, 0);
        ASSERT_NE(w, nullptr);
        EXPECT_EQ(lost, c.n - c.kept);
        for (int i = 0; i < lost; ++i) EXPECT_TRUE(std::isnan(w[i])) << i;
        for (int i = 0; i < c.kept; ++i) EXPECT_NEAR(w[lost + i], c.want[i], tol) << i;
        std::free(w);
        // excluded head, in place on the series itself
        T *v = difference<T>(c.n, z.data(), c.k, periods, ZORVS_ORDERS, orders, ZORVS_EXCLUDE_FIRST,
                             ZORVS_RETURN_USER, z.data(), 0);
        ASSERT_EQ(v, z.data());
        for (int i = 0; i < c.kept; ++i) EXPECT_NEAR(z[i], c.want[i], tol) << i;
        for (int i = c.kept; i < c.n; ++i) EXPECT_TRUE(std::isnan(z[i])) << i;
    }
}

// Cases worked by hand on z = 1, 4, 9, 16, 25, 36 (squares): the periods
// and orders (-9: ZORVS_ORDERS not given), the head excluded or not, the
// lost count and the result.
TYPED_TEST(DifferenceTwin, HandCases) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    const struct {
        int k, periods[3], orders[3];
        bool exclude;
        int lost;
        T want[6];
    } rows[] = {
        {1, {1}, {-9}, false, 1, {nan, 3, 5, 7, 9, 11}},
        {1, {1}, {2}, true, 2, {2, 2, 2, 2, nan, nan}},
        {1, {1}, {3}, false, 3, {nan, nan, nan, 0, 0, 0}},
        {2, {1, 2}, {0, 1}, false, 2, {nan, nan, 8, 12, 16, 20}},
        {1, {1}, {0}, false, 0, {1, 4, 9, 16, 25, 36}},
        {2, {4, 3}, {1, 1}, true, 7, {nan, nan, nan, nan, nan, nan}},
        {3, {6, 1, 1}, {1, 1, 1}, false, 8, {nan, nan, nan, nan, nan, nan}},
        {2, {INT_MAX, 2}, {3, 1}, false, INT_MAX, {nan, nan, nan, nan, nan, nan}},
    };
    for (const auto &r : rows) {
        std::vector<T> z{1, 4, 9, 16, 25, 36};
        int periods[3], orders[3], lost = -1;
        std::copy(r.periods, r.periods + 3, periods);
        std::copy(r.orders, r.orders + 3, orders);
        const int head = r.exclude ? ZORVS_EXCLUDE_FIRST : ZORVS_SET_FIRST_TO_NAN;
        T *w = r.orders[0] == -9 ? difference<T>(6, z.data(), r.k, periods, ZORVS_NUM_LOST, &lost, 0)
                                 : difference<T>(6, z.data(), r.k, periods, ZORVS_ORDERS, orders, ZORVS_NUM_LOST, &lost, head, 0);
        ASSERT_NE(w, nullptr);
        EXPECT_EQ(lost, r.lost);
        for (int i = 0; i < 6; ++i) EXPECT_TRUE(agrees(w[i], r.want[i])) << r.lost << " cell " << i;
        EXPECT_EQ(z[5], 36);  // the series is not written
        std::free(w);
    }
}

// The order of the head keywords; errors, with stops off: (type, code),
// parameters, null or the caller's pointer, the lost count not written
// after a fatal error; the periods and the orders all checked before the
// worker ends; an unknown keyword's position counting the four fixed
// arguments.
TYPED_TEST(DifferenceTwin, BadInput) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    std::vector<T> z{1, 2, 4, 8, 16}, z3{1, 2, 4, nan, 16}, z0{nan, 2, 4, 8, 16}, w(3, 42);
    int ones[2] = {1, 1}, p10[2] = {1, 0}, p31[2] = {-3, 1}, o11[2] = {1, -1}, om1[2] = {-1, 1}, lost = -7;
    auto refused = [&](T *r) { return r == nullptr && lost == -7; };
    auto last_head_rule = [&](T *r) {
        const bool nan_head = r && std::isnan(r[0]) && r[2] == 2;
        return std::free(r), nan_head;
    };
    auto call = [&](int n, std::vector<T> &x, int k, int *periods, int *orders) {
        return refused(difference<T>(n, x.data(), k, periods, ZORVS_ORDERS, orders, ZORVS_NUM_LOST, &lost, 0));
    };
    using zorvs_test::expect_rows;
    expect_rows({
        // of the two head keywords the last holds
        {ZORVS_CALL(last_head_rule(difference<T>(3, z.data(), 1, ones, ZORVS_EXCLUDE_FIRST, ZORVS_SET_FIRST_TO_NAN, 0))), 1, 0, 0},
        {ZORVS_CALL(call(0, z, 1, ones, ones)), 1, 5, 603},
        {ZORVS_CALL(call(5, z, 0, ones, ones)), 1, 5, 603},
        {ZORVS_CALL(call(5, z, 2, p10, ones)), 1, 4, 20210, "i1=1 i2=0"},
        {ZORVS_CALL(call(5, z, 2, p31, ones)), 1, 4, 20210, "i1=0 i2=-3"},
        {ZORVS_CALL(call(5, z, 2, ones, o11)), 1, 4, 20211, "i1=1 i2=-1"},
        {ZORVS_CALL(call(5, z3, 1, ones, ones)), 1, 4, 20212, "i1=3"},
        {ZORVS_CALL(call(5, z0, 1, ones, ones)), 1, 4, 20212, "i1=0"},
        {ZORVS_CALL(call(3, z, 2, p10, om1)), 1, 4, 20211},
        {ZORVS_CALL(difference<T>(3, z0.data(), 1, ones, ZORVS_RETURN_USER, w.data(), 0) == w.data() && w[0] == 42), 1, 4, 20212},
        {ZORVS_CALL(refused(difference<T>(3, w.data(), 1, ones, ZORVS_NUM_LOST, ones, 4242, 0))), 1, 5, 11001, "i1=4242 i2=7"},
        {ZORVS_CALL(refused(difference<T>(3, w.data(), 1, ones, ZORVS_ORDERS, static_cast<int *>(nullptr), 0))), 1, 5, 150},
    });
}

}  // namespace
