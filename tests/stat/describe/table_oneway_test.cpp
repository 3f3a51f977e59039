// table_oneway_test.cpp - the one-way frequency table in both twins: counts
// in all four schemes against R's cut()/table()
// (tests/data/stat/describe/table_oneway_ref.inc, make_table_oneway.R) on
// data with values exactly on the edges and on either side of the fuzz; the
// edge cases of each scheme counted by hand; the checks, in their order and
// with their parameters, as rows.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/describe/table_oneway_ref.inc"

ZORVS_TWIN_SUITE(TableOnewayTwin);

// A scheme's call on data x, and the counts it must give.
template <class T>
struct Counting {
    const char *what;
    std::vector<T> x;
    std::function<T *(int, T *)> call;
    std::vector<double> counts;
};

TYPED_TEST(TableOnewayTwin, CountsAgreeWithRAndTheEdgeCases) {
    using T = TypeParam;
    const auto table = twin<T>(zorvs_f_table_oneway, zorvs_d_table_oneway);
    const bool single = std::is_same_v<T, float>;
    T lo0 = -1, hi0 = -1, lo = -1, hi = -1, cut = 5, marks[3] = {0, 2, 10};
    auto c2 = as<T>(mode2_cuts), m3 = as<T>(mode3_marks);
    std::vector<T> user(4, -7);
    const T tenth = T(3) * (T(1) / 10);
    const std::vector<Counting<T>> rows = {
        {"R, data bounds", single ? as<T>(mode0_f_x) : as<T>(mode0_d_x),
         [&](int n, T *x) { return table(n, x, 5, ZORVS_DATA_BOUNDS, &lo0, &hi0, 0); },
         single ? as<double>(mode0_f_counts) : as<double>(mode0_d_counts)},
        {"R, known bounds", as<T>(mode1_x), [&](int n, T *x) { return table(n, x, 10, ZORVS_KNOWN_BOUNDS, 0.0, 8.0, 0); },
         as<double>(mode1_counts)},
        {"R, cutpoints", as<T>(mode2_x), [&](int n, T *x) { return table(n, x, 5, ZORVS_CUTPOINTS, c2.data(), 0); },
         as<double>(mode2_counts)},
        // 4 and others lie near no mark; the caller's storage comes back
        {"R, class marks", as<T>(mode3_x),
         [&](int n, T *x) { return table(n, x, 4, ZORVS_RETURN_USER, user.data(), ZORVS_CLASS_MARKS, m3.data(), 0); },
         as<double>(mode3_counts)},
        // equal data: everything in cell 0, the bounds that value
        {"equal data", std::vector<T>(6, T(2.5)), [&](int n, T *x) { return table(n, x, 3, ZORVS_DATA_BOUNDS, &lo, &hi, 0); },
         {6, 0, 0}},
        {"one interval", {3, 1, 2, 9}, [&](int n, T *x) { return table(n, x, 1, 0); }, {4}},
        // width 0.1 in the twin: 3w, computed as the edge j w is, stays in
        // cell 2, and one spacing of the data above the fuzz moves up
        {"inexact width", {0, 1, tenth, T(0.55)}, [&](int n, T *x) { return table(n, x, 10, 0); },
         {1, 0, 1, 0, 0, 1, 0, 0, 0, 1}},
        {"bounds to cells 0 and 1", {1, 2, 1.5, 0, 3},
         [&](int n, T *x) { return table(n, x, 3, ZORVS_KNOWN_BOUNDS, 1.0, 2.0, 0); }, {2, 2, 1}},
        {"a value on the cutpoint", {5, 4, 6}, [&](int n, T *x) { return table(n, x, 2, ZORVS_CUTPOINTS, &cut, 0); }, {2, 1}},
        // exactly half from a mark counts (9 and 11); 5 is near none
        {"half from a mark", {1, 3, 9, 11, 5}, [&](int n, T *x) { return table(n, x, 3, ZORVS_CLASS_MARKS, marks, 0); },
         {1, 1, 2}},
    };
    for (const auto &r : rows) {
        auto x = r.x;
        T *t = r.call(int(x.size()), x.data());
        ASSERT_NE(t, nullptr) << r.what;
        EXPECT_EQ(std::vector<double>(t, t + r.counts.size()), r.counts) << r.what;
        if (t != user.data()) std::free(t);
    }
    EXPECT_TRUE(lo0 == 0 && hi0 == 10 && lo == T(2.5) && hi == T(2.5));
    // Where (k - 2) w rounds below the width of the bounds, the upper bound
    // itself is still counted, in the last inner cell.
    std::vector<T> z{1, T(0.7)};
    for (int k = 3; k < 60; ++k) {
        T *t = table(2, z.data(), k, ZORVS_KNOWN_BOUNDS, 0.0, 1.0, 0);
        EXPECT_EQ(std::accumulate(t, t + k, T(0)), 2) << k;
        EXPECT_TRUE(t[k - 1] == 0 && t[k - 2] >= 1) << k;
        std::free(t);
    }
}

// With stops off: code, parameters, a null result or the caller's pointer.
TYPED_TEST(TableOnewayTwin, ChecksRaiseInOrderAndReturnNull) {
    using T = TypeParam;
    const auto table = twin<T>(zorvs_f_table_oneway, zorvs_d_table_oneway);
    std::vector<T> x{1, 2, 3}, user(3, 42), missing{1, zorvs::missing<T>(), 3};
    T cuts[2] = {1, 2}, lo, hi, bad[4] = {1, T(0.5), T(0.5), 2}, marks[3] = {1, 2, 2};
    CodeLog log;
    auto null = [](T *t) { return t == nullptr; };
    expect_rows({
        // two mode keywords (one twice counts as two): nothing else looked at
        {ZORVS_CALL(null(table(3, x.data(), -5, ZORVS_CUTPOINTS, cuts, ZORVS_DATA_BOUNDS, &lo, &hi, 0))), 1, 5, 20022},
        {ZORVS_CALL(log.has_code(603)), 0, -1},
        {ZORVS_CALL(null(table(3, x.data(), 3, ZORVS_CUTPOINTS, cuts, ZORVS_CUTPOINTS, cuts, 0))), 1, 5, 20022},
        {ZORVS_CALL(null(table(3, x.data(), 0, 0))), 1, 5, -1, "l1=n_intervals"},
        {ZORVS_CALL(null(table(3, x.data(), 1, ZORVS_CUTPOINTS, cuts, 0))), 1, 5, 20020, "i1=1 l1=ZORVS_CUTPOINTS"},
        {ZORVS_CALL(null(table(3, x.data(), 1, ZORVS_CLASS_MARKS, cuts, 0))), 1, 5, 20020, "l1=ZORVS_CLASS_MARKS"},
        {ZORVS_CALL(table(0, x.data(), 3, ZORVS_RETURN_USER, user.data(), 0) == user.data() && user[0] == 42), 1, 5,
         11002, "i1=0"},
        // several checks at once: each raised, the last code stays
        {ZORVS_DO(log.clear()), any, -1},
        {ZORVS_CALL(null(table(-1, x.data(), 2, ZORVS_KNOWN_BOUNDS, 3.0, 3.0, 0))), 1, 5, -1, "r1=3 r2=3 i1=2"},
        {ZORVS_CALL(log.has(5, 11002) && log.has(5, 20023) && log.has(5, 20021)), 1, -1},
        // every bad pair of cutpoints, indices from 0
        {ZORVS_CALL(null(table(3, x.data(), 5, ZORVS_CUTPOINTS, bad, 0))), 1, 5, 20024, "l1=cutpoints i1=2 i2=1 r1=0.5"},
        {ZORVS_CALL(std::count(log.entries().begin(), log.entries().end(), std::pair{5, 20024}) >= 2), 1, -1},
        {ZORVS_CALL(null(table(3, x.data(), 3, ZORVS_CLASS_MARKS, marks, 0))), 1, 5, 20024, "l1=class_marks"},
        {ZORVS_CALL(null(table(3, missing.data(), 3, 0))), 1, 5, 20026},
        {ZORVS_CALL(null(table(3, x.data(), 3, ZORVS_KNOWN_BOUNDS, 0.0, 1.0, 99999, 0))), 1, 5, 11001, "i1=99999 i2=7"},
        // a failed allocation of the result or of the work vector
        {ZORVS_CALL((zorvs::allocation_failure_countdown = 1, null(table(3, x.data(), 4, 0)))), 1, 5, 201, "i1=4 l1=n_intervals"},
        {ZORVS_CALL((zorvs::allocation_failure_countdown = 2, null(table(3, x.data(), 4, 0)))), 1, 5, 201, "i1=4 l1=n_intervals"},
    });
}

}  // namespace
