// Tests of the normality tests: Shapiro-Wilk W and p and the Lilliefors
// statistic and p-value against a 40-digit evaluation of the published
// methods (data/stat/categorical/normality_reference.py), from n = 3 to the
// limit of 2000; the Lilliefors statistic against nortest::lillie.test; the
// distance from R's shapiro.test printed as a measure.  Unsorted input with
// missing values and sorted input read in place give the same results;
// every message and refusal, with nothing written after a refusal; the stops.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/categorical/normality_ref.inc"

template <class T>
class Normality : public ::testing::Test {};
TYPED_TEST_SUITE(Normality, Reals);

template <class T>
auto normality() {
    return twin<T>(zorvs_f_normality_test, zorvs_d_normality_test);
}

// The case's values as given with NaN put in at every seventh place, and the
// same values ascending with three NaN at the end (read in place); no NaN
// where they would take n_observations past the limit of 2000.
template <class T>
std::pair<std::vector<T>, std::vector<T>> shuffled_and_sorted(const NormalityCase &c) {
    std::vector<T> mixed, sorted(c.x, c.x + c.n);
    for (int i = 0; i < c.n; ++i) {
        if (i % 7 == 3 && c.n <= 1000) mixed.push_back(NaN);
        mixed.push_back(static_cast<T>(c.x[i]));
    }
    std::sort(sorted.begin(), sorted.end());
    if (c.n <= 1000) sorted.insert(sorted.end(), 3, static_cast<T>(NaN));
    return {mixed, sorted};
}

TYPED_TEST(Normality, ShapiroWilkAgreesWithReference) {
    using T = TypeParam;
    const bool single = sizeof(T) == 4;
    const double w_tol = single ? 2e-6 : 1e-12, p_tol = single ? 2e-5 : 1e-10;
    const char *kind = single ? " (float)" : " (double)";
    Worst w_err(std::string("Shapiro-Wilk W, relative to the reference") + kind);
    Worst p_err(std::string("Shapiro-Wilk p, absolute to the reference") + kind);
    Worst w_r(std::string("Shapiro-Wilk W, absolute distance from R's shapiro.test") + kind);
    Worst p_r(std::string("Shapiro-Wilk p, absolute distance from R's shapiro.test") + kind);
    Quiet quiet;
    for (const NormalityCase &c : normality_cases) {
        if (c.n > 2000) continue;  // refused; see the refusals
        SCOPED_TRACE(c.name);
        auto [mixed, sorted] = shuffled_and_sorted<T>(c);
        const std::vector<T> before = mixed;
        for (std::vector<T> *x : {&mixed, &sorted}) {
            T w = -1;
            const double p = normality<T>()(static_cast<int>(x->size()), x->data(), ZORVS_SHAPIRO_WILK, &w, 0);
            EXPECT_EQ(zorvs_error_type(), 0);
            EXPECT_NEAR(w, c.w, w_tol * c.w);
            EXPECT_NEAR(p, c.p, p_tol);
            w_err.add(relative_error(w, c.w));
            p_err.add(std::fabs(p - c.p));
            if (!std::isnan(c.r_w) && x == &mixed) {
                w_r.add(std::fabs(w - c.r_w));
                p_r.add(std::fabs(p - c.r_p));
                std::printf("[measure] %s%s: W %.7f (R %.7f), p %.6g (R %.6g)\n", c.name, kind,
                            static_cast<double>(w), c.r_w, p, c.r_p);
            }
        }
        for (std::size_t i = 0; i < mixed.size(); ++i) EXPECT_TRUE(agrees(mixed[i], before[i])) << i;
    }
}

// D against nortest and the reference, the p-value against the reference,
// with the notes at the limits of the p-value and the warning on ties;
// with both keywords W is not stored.
TYPED_TEST(Normality, LillieforsAgreesWithReference) {
    using T = TypeParam;
    const bool single = sizeof(T) == 4;
    const double d_tol = single ? 2e-6 : 1e-12, p_tol = single ? 2e-5 : 1e-9;
    Worst d_err(std::string("Lilliefors D, relative to nortest::lillie.test") + (single ? " (float)" : " (double)"));
    Quiet quiet;
    for (const NormalityCase &c : normality_cases) {
        if (c.n < 5) continue;
        SCOPED_TRACE(c.name);
        auto [mixed, sorted] = shuffled_and_sorted<T>(c);
        std::vector<double> values(c.x, c.x + c.n);
        std::sort(values.begin(), values.end());
        const bool tied = std::adjacent_find(values.begin(), values.end()) != values.end();
        for (std::vector<T> *x : {&mixed, &sorted}) {
            T d = -1, w = -1;
            CodeLog log;
            const double p = normality<T>()(static_cast<int>(x->size()), x->data(), ZORVS_SHAPIRO_WILK, &w,
                                            ZORVS_LILLIEFORS, &d, 0);
            EXPECT_EQ(w, -1);
            EXPECT_NEAR(d, c.r_d, d_tol * c.r_d);
            EXPECT_NEAR(d, c.d, d_tol * c.d);
            d_err.add(relative_error(d, c.r_d));
            EXPECT_NEAR(p, c.lilliefors_p, p_tol);
            EXPECT_EQ(log.has(1, 20205), c.lilliefors_raw_p < 0.01);
            EXPECT_EQ(log.has(1, 20206), c.lilliefors_raw_p > 0.1);
            EXPECT_EQ(log.has(6, 20208), tied);
        }
    }
}

// Sorted input with NaN only at its end is read in place: no work vector,
// so a failing allocation does not matter.  A NaN in the middle needs the
// sorted copy, whose allocation failure is refused with (5, 201).
TYPED_TEST(Normality, InPlaceReadingAndRefusals) {
    using T = TypeParam;
    auto test = normality<T>();
    T tail_nan[] = {1, 2, 2.5, 4, 7, NaN, NaN}, mid_nan[] = {1, 2, NaN, 2.5, 4, 7};
    T equal[] = {3, 3, NaN, 3, 3, 3}, sparse[] = {NaN, 1, NaN, 2, NaN, NaN, NaN, NaN};
    T w = -1, d = -1;
    std::vector<T> many(2001, T(1));
    auto failing = [](int n, T *x, auto... keywords) {
        zorvs::allocation_failure_countdown = 1;
        const double p = normality<T>()(n, x, keywords..., 0);
        zorvs::allocation_failure_countdown = 0;
        return p;
    };
    expect_rows({
        {ZORVS_CALL(failing(7, tail_nan, ZORVS_SHAPIRO_WILK, &w)), any, 0, 0},
        {ZORVS_CALL(failing(6, mid_nan, ZORVS_SHAPIRO_WILK, &w)), NaN, 5, 201, "i1=6 l1=n_observations"},
        {ZORVS_CALL(test(6, equal, ZORVS_SHAPIRO_WILK, &w, 0)), 1.0, 3, 20201},
        {ZORVS_CALL(w), 0.0},
        {ZORVS_CALL(test(2, tail_nan, ZORVS_SHAPIRO_WILK, &w, 0)), NaN, 5, 602,
         "i1=2 i2=3 i3=2000 l1=n_observations"},
        {ZORVS_CALL(test(2001, many.data(), ZORVS_SHAPIRO_WILK, &w, 0)), NaN, 5, 602, "i1=2001"},
        {ZORVS_CALL(test(8, sparse, ZORVS_SHAPIRO_WILK, &w, 0)), NaN, 5, 20200, "i1=2"},
        {ZORVS_CALL(test(4, tail_nan, ZORVS_LILLIEFORS, &d, 0)), NaN, 5, 603, "i1=4 i2=5 l1=n_observations"},
        {ZORVS_CALL(test(8, sparse, ZORVS_LILLIEFORS, &d, 0)), NaN, 4, 20202, "i1=2"},
        {ZORVS_CALL(test(6, equal, ZORVS_LILLIEFORS, &d, 0)), NaN, 4, 20204},
        {ZORVS_CALL(test(6, tail_nan, 1234, 0)), NaN, 5, 11001, "i1=1234 i2=3"},
        {ZORVS_CALL(test(6, static_cast<T *>(nullptr), 0)), NaN, 5, 150, "l1=x"},
    });
    EXPECT_EQ(d, -1);  // no refusal of Lilliefors wrote the statistic
    Quiet quiet;
    w = -1;
    test(2001, many.data(), ZORVS_SHAPIRO_WILK, &w, 0);
    test(8, sparse, ZORVS_SHAPIRO_WILK, &w, 0);
    EXPECT_EQ(w, -1);
}

TEST(NormalityStop, RefusalsStop) {
    expect_stops({{[] {
                       double x[] = {1, 2};
                       zorvs_d_normality_test(2, x, 0);
                   },
                   5, "602|n_observations"},
                  {[] {
                       float x[] = {2, 2, 2, 2, 2};
                       float d;
                       zorvs_f_normality_test(5, x, ZORVS_LILLIEFORS, &d, 0);
                   },
                   4, "20204|zorvs_f_normality_test"}});
}

}  // namespace
