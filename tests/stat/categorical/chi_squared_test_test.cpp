// chi_squared_test_test.cpp - the chi-squared goodness-of-fit test in both
// twins against chisq.test(p = ) and pchisq()
// (tests/data/stat/categorical/chi_squared_test_ref.inc,
// make_chi_squared_test.R): raw data against a distribution function with
// estimated parameters (precip, normal; airquality ozone with NA,
// exponential), raw data with frequencies and given expected counts
// (mtcars), counts against given expected counts and against a
// distribution function; the refusals, a misbehaving distribution function
// among them, as rows.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/categorical/chi_squared_test_ref.inc"

template <class T>
class ChiSquaredTestTwin : public ::testing::Test {};
TYPED_TEST_SUITE(ChiSquaredTestTwin, Reals);

// The distribution functions of the cases, written out for each twin.
template <class T>
T precip_normal(T x) {
    return T(0.5) * std::erfc(-(x - T(gof_precip_normal[0])) / (T(gof_precip_normal[1]) * std::sqrt(T(2))));
}
template <class T>
T ozone_exponential(T x) {
    return x <= 0 ? T(0) : -std::expm1(-x / T(gof_ozone_mean[0]));
}
template <class T>
T uniform_0_5(T x) {
    return std::clamp(x / 5, T(0), T(1));
}
// Misbehaving functions: above 1 at 3, decreasing after 2.
template <class T>
T above_one(T x) {
    return x < 3 ? x / 10 : T(1.5);
}
template <class T>
T decreasing(T x) {
    return x <= 2 ? T(0.5) : T(0.25);
}

template <class T, std::size_t N>
std::vector<T> as(const double (&a)[N]) {
    return std::vector<T>(a, a + N);
}

struct Case {
    const char *name;
    std::function<double(int *, double *, double *, std::vector<double> &, std::vector<double> &)> call;
    const double *counts, *expected, *result;
    int k;
};

TYPED_TEST(ChiSquaredTestTwin, AgreesWithR) {
    using T = TypeParam;
    const bool single = std::is_same_v<T, float>;
    const auto test = twin<T>(zorvs_f_chi_squared_test, zorvs_d_chi_squared_test);
    const double tol = single ? 2e-5 : 1e-12;
    auto precip = as<T>(gof_precip_x), precip_cuts = as<T>(gof_precip_cuts);
    auto ozone = as<T>(gof_ozone_x), ozone_cuts = as<T>(gof_ozone_cuts);
    auto mpg = as<T>(gof_mpg_x), mpg_freq = as<T>(gof_mpg_freq), mpg_cuts = as<T>(gof_mpg_cuts);
    auto mpg_given = as<T>(gof_mpg_given), counts = as<T>(gof_counts_counts), given = as<T>(gof_counts_given);
    auto uniform = as<T>(gof_uniform_counts), uniform_cuts = as<T>(gof_uniform_cuts);
    std::vector<T> user_e(8, -1), user_c(8, -1);
    // each call returns the p-value, the triple, the expected counts and the counts
    auto run = [&](auto &&call) {
        return [&, call](int *df, double *chi, double *p, std::vector<double> &e, std::vector<double> &o) {
            T c = -1, pv = -1, *ep = nullptr, *op = nullptr;
            const T r = call(df, &c, &pv, &ep, &op);
            *chi = c, *p = pv;
            const bool user = ep == nullptr;
            if (user) ep = user_e.data(), op = user_c.data();
            e.assign(ep, ep + 8), o.assign(op, op + 8);
            if (!user) std::free(ep), std::free(op);
            return double(r);
        };
    };
    const std::vector<Case> cases = {
        {"precip, normal, 2 estimated",
         run([&](int *df, T *c, T *p, T **e, T **o) {
             return test(precip_normal<T>, 7, int(precip.size()), precip.data(), ZORVS_CUTPOINTS, precip_cuts.data(),
                         ZORVS_N_PARAMETERS_ESTIMATED, 2, ZORVS_CHI_SQUARED, df, c, p, ZORVS_EXPECTED, e,
                         ZORVS_CELL_COUNTS, o, 0);
         }),
         gof_precip_counts, gof_precip_expected, gof_precip_result, 7},
        {"ozone with NA, exponential, 1 estimated",
         run([&](int *df, T *c, T *p, T **, T **) {
             return test(ozone_exponential<T>, 7, int(ozone.size()), ozone.data(), ZORVS_CUTPOINTS, ozone_cuts.data(),
                         ZORVS_N_PARAMETERS_ESTIMATED, 1, ZORVS_CHI_SQUARED, df, c, p, ZORVS_EXPECTED_USER,
                         user_e.data(), ZORVS_CELL_COUNTS_USER, user_c.data(), 0);
         }),
         gof_ozone_counts, gof_ozone_expected, gof_ozone_result, 7},
        {"mpg with frequencies, expected given",
         run([&](int *df, T *c, T *p, T **e, T **o) {
             return test(nullptr, 4, int(mpg.size()), mpg.data(), ZORVS_FREQUENCIES, mpg_freq.data(), ZORVS_CUTPOINTS,
                         mpg_cuts.data(), ZORVS_EXPECTED_GIVEN, mpg_given.data(), ZORVS_CHI_SQUARED, df, c, p,
                         ZORVS_EXPECTED, e, ZORVS_CELL_COUNTS, o, 0);
         }),
         gof_mpg_counts, gof_mpg_expected, gof_mpg_result, 4},
        {"counts, expected given",
         run([&](int *df, T *c, T *p, T **e, T **o) {
             return test(nullptr, 5, 5, counts.data(), ZORVS_COUNTS, ZORVS_EXPECTED_GIVEN, given.data(),
                         ZORVS_CHI_SQUARED, df, c, p, ZORVS_EXPECTED, e, ZORVS_CELL_COUNTS, o, 0);
         }),
         gof_counts_counts, gof_counts_expected, gof_counts_result, 5},
        {"counts, uniform distribution function",
         run([&](int *df, T *c, T *p, T **e, T **o) {
             return test(uniform_0_5<T>, 5, 5, uniform.data(), ZORVS_COUNTS, ZORVS_CUTPOINTS, uniform_cuts.data(),
                         ZORVS_CHI_SQUARED, df, c, p, ZORVS_EXPECTED, e, ZORVS_CELL_COUNTS, o, 0);
         }),
         gof_uniform_counts, gof_uniform_expected, gof_uniform_result, 5},
    };
    Worst worst(std::string("chi-squared test against R, ") + (single ? "float" : "double"));
    Quiet quiet;  // small expected counts warn
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        int df = -1;
        double chi, p;
        std::vector<double> e, o;
        const double pv = c.call(&df, &chi, &p, e, o);
        EXPECT_EQ(df, int(c.result[1]));
        for (const auto &[got, want] : {std::pair{chi, c.result[0]}, {p, c.result[2]}, {pv, c.result[2]}}) {
            worst.add(relative_error(got, want));
            EXPECT_LE(relative_error(got, want), tol) << got << " vs " << want;
        }
        for (int i = 0; i < c.k; ++i) {
            EXPECT_EQ(o[i], c.counts[i]) << i;
            worst.add(relative_error(e[i], c.expected[i]));
            EXPECT_LE(relative_error(e[i], c.expected[i]), tol) << i;
        }
    }
}

// Refusals: a message from the catalogue, NaN, nothing written to the
// caller's storage or through the output addresses.
TYPED_TEST(ChiSquaredTestTwin, RefusalsWriteNothing) {
    using T = TypeParam;
    const auto test = twin<T>(zorvs_f_chi_squared_test, zorvs_d_chi_squared_test);
    const T nan = zorvs::missing<T>();
    std::vector<T> x{1, 2, 3, 4, 5, 6}, cuts{2, 4}, bad_cuts{4, 2}, nan_cuts{2, nan}, given{2, 2, 2};
    std::vector<T> zero_given{3, 0, 3}, counts{1, -2, 3}, freq{1, -1, 1, 1, 1, 1}, missing(6, nan);
    std::vector<T> user(3, T(42)), zero_freq(6, 0), low_cuts{-1, 0};
    T *contributions = nullptr;
    T chi = 42, p = 42;
    int df = 42;
    auto untouched = [&] {
        return chi == 42 && p == 42 && df == 42 &&
               std::all_of(user.begin(), user.end(), [](T v) { return v == 42; });
    };
    auto refused = [&](T r) { return std::isnan(double(r)) && untouched(); };
    T *d = x.data(), *c = cuts.data();
    expect_rows({
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, c, ZORVS_EXPECTED_GIVEN, given.data(), 0))),
         1, 5, 11117},
        {ZORVS_CALL(refused(test(nullptr, 3, 6, d, ZORVS_CUTPOINTS, c, 0))), 1, 5, 21220},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 1, 6, d, ZORVS_CUTPOINTS, c, 0))), 1, 5, 603, "l1=n_categories"},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 0, d, ZORVS_CUTPOINTS, c, 0))), 1, 5, 11002, "i1=0"},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, 0))), 1, 5, 21221, "", 0, "A distribution function"},
        {ZORVS_CALL(refused(test(nullptr, 3, 6, d, ZORVS_EXPECTED_GIVEN, given.data(), 0))), 1, 5, 21221, "", 0,
         "Raw data"},
        {ZORVS_CALL(refused(test(nullptr, 3, 6, d, ZORVS_COUNTS, ZORVS_EXPECTED_GIVEN, given.data(), 0))), 1, 5, 21230,
         "i1=6 i2=3"},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, c, ZORVS_N_PARAMETERS_ESTIMATED, 2, 0))), 1, 5,
         21225, "i1=3 i2=2 i3=0"},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, c, ZORVS_N_PARAMETERS_ESTIMATED, -1, 0))), 1,
         5, 21225},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, bad_cuts.data(), 0))), 1, 5, 21222,
         "i1=1 r1=2 i2=0 r2=4"},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, nan_cuts.data(), 0))), 1, 5, 21222, "i1=1"},
        // the distribution function out of [0, 1], and decreasing
        {ZORVS_CALL(refused(test(above_one<T>, 3, 6, d, ZORVS_CUTPOINTS, c, ZORVS_CHI_SQUARED, &df, &chi, &p,
                                 ZORVS_EXPECTED_USER, user.data(), 0))),
         1, 5, 21223, "r1=4 r2=1.5"},
        {ZORVS_CALL(refused(test(decreasing<T>, 3, 6, d, ZORVS_CUTPOINTS, c, ZORVS_CHI_SQUARED, &df, &chi, &p, 0))), 1,
         5, 21224, "r1=4 r2=0.25 r3=2 r4=0.5"},
        // a cell of probability 0; a given expected count of 0
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, low_cuts.data(), 0))), 1, 5, 21226,
         "i1=0 r1=0"},
        {ZORVS_CALL(refused(test(nullptr, 3, 6, d, ZORVS_CUTPOINTS, c, ZORVS_EXPECTED_GIVEN, zero_given.data(),
                                 ZORVS_CELL_COUNTS_USER, user.data(), 0))),
         1, 5, 21226, "i1=1 r1=0"},
        {ZORVS_CALL(refused(test(nullptr, 3, 3, counts.data(), ZORVS_COUNTS, ZORVS_EXPECTED_GIVEN, given.data(), 0))), 1,
         5, 21227, "i1=1 r1=-2"},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, c, ZORVS_FREQUENCIES, freq.data(),
                                 ZORVS_CHI_SQUARED, &df, &chi, &p, 0))),
         1, 5, 11054, "i1=1 r1=-1"},
        // all missing, all frequencies 0
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, missing.data(), ZORVS_CUTPOINTS, c, 0))), 1, 5, 21228, "i1=6"},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, c, ZORVS_FREQUENCIES, zero_freq.data(), 0))),
         1, 5, 21228},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, c, 44444, 0))), 1, 5, 11001,
         "i1=44444 i2=7"},
        {ZORVS_CALL(zorvs::allocation_failure_countdown = 3), 3},
        {ZORVS_CALL(refused(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, c, ZORVS_EXPECTED_USER, user.data(),
                                 ZORVS_CHI_SQUARED_CONTRIBUTIONS, &contributions, 0)) &&
                    contributions == nullptr),
         1, 5, 201},
        {ZORVS_CALL(zorvs::allocation_failure_countdown = 0), 0},
        // six values in three cells of expected count 2: a warning, results kept
        {ZORVS_CALL(test(uniform_0_5<T>, 3, 6, d, ZORVS_CUTPOINTS, c, 0)), any, 3, 21229, "i1=3 i2=3 r1~1.2"},
    });
}

}  // namespace
