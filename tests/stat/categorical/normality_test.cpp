// Tests of the normality tests: Shapiro-Wilk W and p and the Lilliefors
// statistic and p-value against a 40-digit evaluation of the published
// methods (data/stat/categorical/normality_reference.py), from n = 3 to the
// limit of 2000 (Lilliefors to 5000); the Lilliefors statistic against
// nortest::lillie.test; the distance from R's shapiro.test printed as a
// measure.  Unsorted input with missing values and sorted input read in
// place give the same results; every message and refusal, with nothing
// written after a refusal; the stops.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/categorical/normality_ref.inc"

ZORVS_TWIN_SUITE(Normality);

TYPED_TEST(Normality, AgreesWithReferences) {
    using T = TypeParam;
    auto test = twin<T>(zorvs_f_normality_test, zorvs_d_normality_test);
    const bool single = sizeof(T) == 4;
    const double w_tol = single ? 2e-6 : 1e-12, p_tol = single ? 2e-5 : 1e-10, d_tol = single ? 2e-6 : 1e-12;
    const std::string kind = single ? " (float)" : " (double)";
    Worst w_err("Shapiro-Wilk W, relative" + kind), p_err("Shapiro-Wilk p, absolute" + kind);
    Worst d_err("Lilliefors D, relative to nortest" + kind);
    Quiet quiet;
    for (const NormalityCase &c : normality_cases) {
        SCOPED_TRACE(c.name);
        // as given with a NaN at every seventh place, and ascending with
        // three NaN at the end (read in place); no NaN past 2000 values
        const bool room = c.n <= 1000;
        std::vector<T> mixed, sorted(c.x, c.x + c.n);
        for (int i = 0; i < c.n; ++i) {
            if (i % 7 == 3 && room) mixed.push_back(NaN);
            mixed.push_back(static_cast<T>(c.x[i]));
        }
        std::sort(sorted.begin(), sorted.end());
        if (room) sorted.insert(sorted.end(), 3, static_cast<T>(NaN));
        const bool tied = std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
        for (std::vector<T> *x : {&mixed, &sorted}) {
            const int n = static_cast<int>(x->size());
            T w = -1, d = -1;
            if (c.n <= 2000) {
                zorvs_e1mes(0, 0, " ");  // clear the notes of the call before
                const double p = test(n, x->data(), ZORVS_SHAPIRO_WILK, &w, 0);
                EXPECT_EQ(zorvs_error_type(), 0);
                w_err.expect_within(relative_error(w, c.w), w_tol);
                p_err.expect_within(std::fabs(p - c.p), p_tol);
                if (!std::isnan(c.r_w) && x == &mixed)
                    std::printf("[measure] %s%s: W %.7f (R %.7f), p %.6g (R %.6g)\n", c.name, kind.c_str(),
                                static_cast<double>(w), c.r_w, p, c.r_p);
            }
            if (c.n < 5) continue;
            w = -1;
            CodeLog log;  // with both keywords Lilliefors runs and W is not stored
            const double p = test(n, x->data(), ZORVS_SHAPIRO_WILK, &w, ZORVS_LILLIEFORS, &d, 0);
            EXPECT_EQ(w, -1);
            EXPECT_NEAR(d, c.d, d_tol * c.d);
            d_err.expect_within(relative_error(d, c.r_d), d_tol);
            EXPECT_NEAR(p, c.lilliefors_p, p_tol);
            EXPECT_EQ(log.has(1, 20205), c.lilliefors_raw_p < 0.01);
            EXPECT_EQ(log.has(1, 20206), c.lilliefors_raw_p > 0.1);
            EXPECT_EQ(log.has(6, 20208), tied);
        }
    }
}

// Sorted input with NaN only at its end is read in place: no work vector,
// so a failing allocation does not matter.  A NaN in the middle needs the
// sorted copy, whose allocation failure is refused with (5, 201).  After a
// refusal neither output is written.
TYPED_TEST(Normality, InPlaceReadingAndRefusals) {
    using T = TypeParam;
    auto test = twin<T>(zorvs_f_normality_test, zorvs_d_normality_test);
    T tail_nan[] = {1, 2, 2.5, 4, 7, NaN, NaN}, mid_nan[] = {1, 2, NaN, 2.5, 4, 7};
    T equal[] = {3, 3, NaN, 3, 3, 3}, sparse[] = {NaN, 1, NaN, 2, NaN, NaN, NaN, NaN};
    T none[] = {NaN, NaN, NaN, NaN, NaN}, with_inf[] = {1, 2, -T(Inf), 4, 5, T(Inf)};
    // values near the overflow limit test as the same values scaled down
    const T h = std::ldexp(T(1), std::numeric_limits<T>::max_exponent - 2);
    T small[] = {8, -8, 4, -2, 0, 1}, huge[] = {h, -h, h / 2, -h / 4, 0, h / 8};
    T w = -1, d = -1, *const null = nullptr;
    auto difference = [&](int keyword) {
        T statistic;
        return test(6, huge, keyword, &statistic, 0) - test(6, small, keyword, &statistic, 0);
    };
    std::vector<T> many(2001, T(1));
    auto failing = [&](T *x, int n) { return zorvs::allocation_failure_countdown = 1, test(n, x, ZORVS_SHAPIRO_WILK, &w, 0); };
    expect_rows({
        {ZORVS_CALL(failing(tail_nan, 7)), any, 0, 0},
        {ZORVS_CALL(failing(mid_nan, 6)), NaN, 5, 201, "i1=6 l1=n_observations"},
        {ZORVS_CALL(test(6, equal, ZORVS_SHAPIRO_WILK, &w, 0)), 1.0, 3, 20201},
        {ZORVS_CALL(w), 0.0},
        {ZORVS_DO(w = -1)},
        {ZORVS_CALL(test(2, tail_nan, ZORVS_SHAPIRO_WILK, &w, 0)), NaN, 5, 602, "i1=2 i2=3 i3=2000 l1=n_observations"},
        {ZORVS_CALL(test(2001, many.data(), ZORVS_SHAPIRO_WILK, &w, 0)), NaN, 5, 602, "i1=2001"},
        {ZORVS_CALL(test(8, sparse, ZORVS_SHAPIRO_WILK, &w, 0)), NaN, 5, 20200, "i1=2"},
        {ZORVS_CALL(test(4, tail_nan, ZORVS_LILLIEFORS, &d, 0)), NaN, 5, 603, "i1=4 i2=5 l1=n_observations"},
        {ZORVS_CALL(test(8, sparse, ZORVS_LILLIEFORS, &d, 0)), NaN, 4, 20202, "i1=2"},
        {ZORVS_CALL(test(6, equal, ZORVS_LILLIEFORS, &d, 0)), NaN, 4, 20204},
        {ZORVS_CALL(test(5, none, ZORVS_SHAPIRO_WILK, &w, 0)), NaN, 5, 20200, "i1=0"},
        {ZORVS_CALL(test(5, none, ZORVS_LILLIEFORS, &d, 0)), NaN, 4, 20202, "i1=0"},
        {ZORVS_CALL(test(6, with_inf, ZORVS_SHAPIRO_WILK, &w, 0)), NaN, 4, 20209, "i1=2 r1=-inf"},
        {ZORVS_CALL(test(6, with_inf, ZORVS_LILLIEFORS, &d, 0)), NaN, 4, 20209, "i1=2"},
        {ZORVS_CALL(difference(ZORVS_SHAPIRO_WILK)), 0.0, 0, 0, "", 1e-6},
        {ZORVS_CALL(difference(ZORVS_LILLIEFORS)), 0.0, -1, 0, "", 1e-6},
        {ZORVS_CALL(test(6, tail_nan, 1234, 0)), NaN, 5, 11001, "i1=1234 i2=3"},
        {ZORVS_CALL(test(6, null, 0)), NaN, 5, 150, "l1=x"},
    });
    EXPECT_EQ(w * 1000 + d, -1001);
}

}  // namespace
