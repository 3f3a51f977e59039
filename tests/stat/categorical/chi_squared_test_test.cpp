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

ZORVS_TWIN_SUITE(ChiSquaredTestTwin);

// The distribution functions of the cases, written out for each twin.
template <class T> T precip_normal(T x) {
    return T(0.5) * std::erfc(-(x - T(gof_precip_normal[0])) / (T(gof_precip_normal[1]) * std::sqrt(T(2))));
}
template <class T> T ozone_exponential(T x) { return x <= 0 ? T(0) : -std::expm1(-x / T(gof_ozone_mean[0])); }
template <class T> T uniform_0_5(T x) { return std::clamp(x / 5, T(0), T(1)); }
// Misbehaving functions: above 1 at 3, decreasing after 2.
template <class T> T above_one(T x) { return x < 3 ? x / 10 : T(1.5); }
template <class T> T decreasing(T x) { return x <= 2 ? T(0.5) : T(0.25); }

TYPED_TEST(ChiSquaredTestTwin, AgreesWithR) {
    using T = TypeParam;
    const bool single = std::is_same_v<T, float>;
    const auto test = ZORVS_TWIN(f_chi_squared_test, d_chi_squared_test);
    const double tol = single ? 2e-5 : 1e-12;
    auto precip = as<T>(gof_precip_x), precip_cuts = as<T>(gof_precip_cuts);
    auto ozone = as<T>(gof_ozone_x), ozone_cuts = as<T>(gof_ozone_cuts);
    auto mpg = as<T>(gof_mpg_x), mpg_freq = as<T>(gof_mpg_freq), mpg_cuts = as<T>(gof_mpg_cuts);
    auto mpg_given = as<T>(gof_mpg_given), counts = as<T>(gof_counts_counts), given = as<T>(gof_counts_given);
    auto uniform = as<T>(gof_uniform_counts), uniform_cuts = as<T>(gof_uniform_cuts);
    std::vector<T> e(8), o(8);
    int df;
    T chi, p;
    // the test of x with every output
    auto run = [&](auto cdf, int k, int n, std::vector<T> &x, auto... keys) {
        return test(cdf, k, n, x.data(), keys..., ZORVS_CHI_SQUARED, &df, &chi, &p, ZORVS_EXPECTED_USER, e.data(),
                    ZORVS_CELL_COUNTS_USER, o.data(), 0);
    };
    const int cut = ZORVS_CUTPOINTS, est = ZORVS_N_PARAMETERS_ESTIMATED, given_e = ZORVS_EXPECTED_GIVEN;
    const std::tuple<std::function<T()>, const double *, const double *, const double *, int> cases[] = {
        {[&] { return run(precip_normal<T>, 7, 70, precip, cut, precip_cuts.data(), est, 2); }, gof_precip_counts,
         gof_precip_expected, gof_precip_result, 7},
        {[&] { return run(ozone_exponential<T>, 7, 153, ozone, cut, ozone_cuts.data(), est, 1); }, gof_ozone_counts,
         gof_ozone_expected, gof_ozone_result, 7},
        {[&] { return run(nullptr, 4, 32, mpg, ZORVS_FREQUENCIES, mpg_freq.data(), cut, mpg_cuts.data(), given_e, mpg_given.data()); },
         gof_mpg_counts, gof_mpg_expected, gof_mpg_result, 4},
        {[&] { return run(nullptr, 5, 5, counts, ZORVS_COUNTS, given_e, given.data()); }, gof_counts_counts, gof_counts_expected,
         gof_counts_result, 5},
        {[&] { return run(uniform_0_5<T>, 5, 5, uniform, ZORVS_COUNTS, cut, uniform_cuts.data()); }, gof_uniform_counts,
         gof_uniform_expected, gof_uniform_result, 5},
    };
    Worst worst(std::string("chi-squared test against R, ") + (single ? "float" : "double"));
    Quiet quiet;  // small expected counts warn
    for (const auto &[call, want_counts, want_expected, want, k] : cases) {
        const double pv = call();
        EXPECT_EQ(df, int(want[1])) << k;
        for (const auto &[got, ref] : {std::pair{double(chi), want[0]}, {double(p), want[2]}, {pv, want[2]}})
            worst.expect_within(relative_error(got, ref), tol);
        for (int i = 0; i < k; ++i) {
            worst.expect_within(relative_error(e[i], want_expected[i]), tol);
            EXPECT_EQ(o[i], want_counts[i]) << i;
        }
    }
    // the allocated forms; the contributions add up to R's statistic
    T *ep = nullptr, *cp = nullptr, *op = nullptr;
    test(nullptr, 5, 5, counts.data(), ZORVS_COUNTS, ZORVS_EXPECTED_GIVEN, given.data(), ZORVS_EXPECTED, &ep,
         ZORVS_CHI_SQUARED_CONTRIBUTIONS, &cp, ZORVS_CELL_COUNTS, &op, 0);
    ASSERT_TRUE(ep && cp && op);
    EXPECT_TRUE(ep[4] == given[4] && op[4] == counts[4]);
    EXPECT_NEAR(std::accumulate(cp, cp + 5, 0.0), gof_counts_result[0], tol * gof_counts_result[0]);
    std::free(ep), std::free(cp), std::free(op);
}

// Refusals: a message from the catalogue, NaN, nothing written to the
// caller's storage or through the output addresses.
TYPED_TEST(ChiSquaredTestTwin, RefusalsWriteNothing) {
    using T = TypeParam;
    const auto test = ZORVS_TWIN(f_chi_squared_test, d_chi_squared_test);
    const T nan = zorvs::missing<T>();
    std::vector<T> x{1, 2, 3, 4, 5, 6}, cuts{2, 4}, bad_cuts{4, 2}, nan_cuts{2, nan}, low_cuts{-1, 0}, given{2, 2, 2};
    std::vector<T> zero_given{3, 0, 3}, counts{1, -2, 3}, freq{1, -1, 1, 1, 1, 1}, none(6, nan), user(3, T(42));
    T *contributions = nullptr, chi = 42, p = 42, *d = x.data(), *c = cuts.data(), *g = given.data();
    int df = 42;
    // the call with every output asked for, true if it returned NaN and wrote nothing
    auto refused = [&](auto cdf, int k, int n, T *data, auto... kw) {
        const T r = test(cdf, k, n, data, kw..., ZORVS_CHI_SQUARED, &df, &chi, &p, ZORVS_EXPECTED_USER, user.data(),
                         ZORVS_CHI_SQUARED_CONTRIBUTIONS, &contributions, 0);
        return std::isnan(double(r)) && chi == 42 && p == 42 && df == 42 && !contributions &&
               std::all_of(user.begin(), user.end(), [](T v) { return v == 42; });
    };
    const auto u = uniform_0_5<T>;
    const int cut = ZORVS_CUTPOINTS;
    expect_rows({
        {ZORVS_CALL(refused(u, 3, 6, d, cut, c, ZORVS_EXPECTED_GIVEN, g)), 1, 5, 11117},
        {ZORVS_CALL(refused(nullptr, 3, 6, d, cut, c)), 1, 5, 21220},
        {ZORVS_CALL(refused(u, 1, 6, d, cut, c)), 1, 5, 603, "l1=n_categories"},
        {ZORVS_CALL(refused(u, 3, 0, d, cut, c)), 1, 5, 11002, "i1=0"},
        {ZORVS_CALL(refused(u, 3, 6, d)), 1, 5, 21221, "", 0, "A distribution function"},
        {ZORVS_CALL(refused(nullptr, 3, 6, d, ZORVS_EXPECTED_GIVEN, g)), 1, 5, 21221, "", 0, "Raw data"},
        {ZORVS_CALL(refused(nullptr, 3, 6, d, ZORVS_COUNTS, ZORVS_EXPECTED_GIVEN, g)), 1, 5, 21230, "i1=6 i2=3"},
        {ZORVS_CALL(refused(u, 3, 6, d, cut, c, ZORVS_N_PARAMETERS_ESTIMATED, 2)), 1, 5, 21225, "i1=3 i2=2 i3=0"},
        {ZORVS_CALL(refused(u, 3, 6, d, cut, c, ZORVS_N_PARAMETERS_ESTIMATED, -1)), 1, 5, 21225},
        {ZORVS_CALL(refused(u, 3, 6, d, cut, bad_cuts.data())), 1, 5, 21222, "i1=1 r1=2 i2=0 r2=4"},
        {ZORVS_CALL(refused(u, 3, 6, d, cut, nan_cuts.data())), 1, 5, 21222, "i1=1"},
        // the distribution function out of [0, 1], and decreasing
        {ZORVS_CALL(refused(above_one<T>, 3, 6, d, cut, c)), 1, 5, 21223, "r1=4 r2=1.5"},
        {ZORVS_CALL(refused(decreasing<T>, 3, 6, d, cut, c)), 1, 5, 21224, "r1=4 r2=0.25 r3=2 r4=0.5"},
        // a cell of probability 0; a given expected count of 0; a negative count
        {ZORVS_CALL(refused(u, 3, 6, d, cut, low_cuts.data())), 1, 5, 21226, "i1=0 r1=0"},
        {ZORVS_CALL(refused(nullptr, 3, 6, d, cut, c, ZORVS_EXPECTED_GIVEN, zero_given.data())), 1, 5, 21226, "i1=1"},
        {ZORVS_CALL(refused(nullptr, 3, 3, counts.data(), ZORVS_COUNTS, ZORVS_EXPECTED_GIVEN, g)), 1, 5, 21227,
         "i1=1 r1=-2"},
        {ZORVS_CALL(refused(u, 3, 6, d, cut, c, ZORVS_FREQUENCIES, freq.data())), 1, 5, 11054, "i1=1 r1=-1"},
        {ZORVS_CALL(refused(u, 3, 6, none.data(), cut, c)), 1, 5, 21228, "i1=6"},
        {ZORVS_CALL(refused(u, 3, 6, d, cut, c, 44444)), 1, 5, 11001, "i1=44444 i2=7"},
        {ZORVS_CALL(refused(u, 3, 6, static_cast<T *>(nullptr), cut, c)), 1, 5, 150, "l1=x"},
        {ZORVS_CALL((zorvs::allocation_failure_countdown = 3, refused(u, 3, 6, d, cut, c))), 1, 5, 201},
        // six values in cells of expected counts 2.4, 2.4, 1.2: a warning, results kept
        {ZORVS_CALL(test(u, 3, 6, d, cut, c, 0)), any, 3, 21229, "i1=3 i2=3 r1~1.2"},
    });
}

}  // namespace
