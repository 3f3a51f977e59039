// random_calls_test.cpp - the keyword routines and some distributions called
// with random arguments and keyword lists, as a careless or hostile caller
// would: missing, infinite, huge and subnormal reals, counts of 0 and -1,
// bad shuffle tables, odd formats, labels, options and page sizes (but never
// a count larger than the array it describes).  A fixed seed and a bounded
// number of calls keep it to seconds under the sanitizers, which make it
// worth running.  What must hold: the call returns (a watchdog ends the
// process of one that hangs), and each result lies within its support
// (counts add up, probabilities in [0, 1]) or comes with a message of type 3
// or above.  The continuous distributions are fuzzed in tests/dist/fuzz_test.cpp.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <random>

#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

// The routines of one twin (the double one tests the exponential deviates
// where the single one tests the normal ones).
template <class T> struct Twin;
template <> struct Twin<float> {
    static constexpr auto uniform = zorvs_f_random_uniform, normal = zorvs_f_random_normal;
    static constexpr auto gamma = zorvs_f_random_gamma;
    static constexpr auto multivariate = zorvs_f_random_normal_multivariate;
    static constexpr auto beta = zorvs_f_random_beta;
    static constexpr auto table = zorvs_f_table_oneway;
    static constexpr auto statistics = zorvs_f_simple_statistics;
    static constexpr auto one_sample = zorvs_f_normal_one_sample, two_sample = zorvs_f_normal_two_sample;
    static constexpr auto covariances = zorvs_f_covariances;

    static constexpr auto ranks = zorvs_f_ranks;
    static constexpr auto chi_squared_test = zorvs_f_chi_squared_test;
    static constexpr auto write = zorvs_f_write_matrix;
    static constexpr auto install = zorvs_rnses;
    static constexpr auto poisson_cdf = zorvs_f_poisson_cdf;
    static constexpr auto binomial_cdf = zorvs_f_binomial_cdf;
    static constexpr auto hypergeometric_cdf = zorvs_f_hypergeometric_cdf;
    static constexpr auto gamma_cdf = zorvs_f_gamma_cdf;
};
template <> struct Twin<double> {
    static constexpr auto uniform = zorvs_d_random_uniform, normal = zorvs_d_random_exponential;
    static constexpr auto gamma = zorvs_d_random_gamma;
    static constexpr auto multivariate = zorvs_d_random_normal_multivariate;
    static constexpr auto beta = zorvs_d_random_beta;
    static constexpr auto table = zorvs_d_table_oneway;
    static constexpr auto statistics = zorvs_d_simple_statistics;
    static constexpr auto one_sample = zorvs_d_normal_one_sample, two_sample = zorvs_d_normal_two_sample;
    static constexpr auto covariances = zorvs_d_covariances;

    static constexpr auto ranks = zorvs_d_ranks;
    static constexpr auto chi_squared_test = zorvs_d_chi_squared_test;
    static constexpr auto write = zorvs_d_write_matrix;
    static constexpr auto install = zorvs_drnses;
    static constexpr auto poisson_cdf = zorvs_d_poisson_cdf;
    static constexpr auto binomial_cdf = zorvs_d_binomial_cdf;
    static constexpr auto hypergeometric_cdf = zorvs_d_hypergeometric_cdf;
    static constexpr auto gamma_cdf = zorvs_d_gamma_cdf;
};

struct Caller {
    std::mt19937_64 bits{20261124};
    zorvs_test::CodeLog log;

    double unit() { return static_cast<double>(bits() >> 11) * 0x1p-53; }
    int pick(int n) { return static_cast<int>(bits() % static_cast<unsigned>(n)); }
    // Awkward, a magnitude of either sign from e^-40 to e^40, or in [0, 1).
    double real() {
        static const double awkward[] = {NAN, INFINITY, -INFINITY, 0.0, -0.0, 1.0, -1.0, 0.5, 2.0, 1e-310, 1e300,
                                         -1e300, 1e33, 3e9, 2e9, 15.0, 14.99, 1e12, 1e16, 1e20, 1e38};
        const int k = pick(4);
        return k == 0 ? awkward[pick(21)] : k == 1 ? std::exp(80 * unit() - 40) : k == 2 ? -std::exp(80 * unit() - 40)
                                                                                          : unit();
    }
    int count(int small) {
        static const int awkward[] = {0, -1, 1, 2, INT_MAX, INT_MIN, 1000000};
        return pick(5) == 0 ? awkward[pick(7)] : 1 + pick(small);
    }
    int highest() const {
        int t = 0;
        for (const auto &e : log.entries()) t = std::max(t, e.first);
        return t;
    }
    // Each element of a result in support, or a message of type 3 or above;
    // no result only with type 4 or above.  Frees the result.
    template <class T, class P>
    void check(T *r, int n, P in_support, const char *what) {
        if (!r) {
            EXPECT_GE(highest(), 4) << what << ": no result and no error";
            return;
        }
        for (int i = 0; i < n; ++i)
            if (!in_support(r[i])) {
                EXPECT_GE(highest(), 3) << what << "[" << i << "] = " << r[i] << " with no message";
                break;
            }
        std::free(r);
    }
    void probability(double p, bool nan_in, const char *what) {
        if (!(p >= 0 && p <= 1)) {
            EXPECT_TRUE(std::isnan(p) && (nan_in || highest() >= 3)) << what << " = " << p;
        }
    }
};

template <class T>
void one_call(Caller &c, int routine) {
    using R = Twin<T>;
    const int n = c.count(40), keep = n > 0 && n <= 1000 ? n : 0;  // what a result holds
    const int given = keep ? n : c.pick(2) - 1;                     // no huge allocations
    T data[200];
    for (T &v : data) v = static_cast<T>(c.pick(3) ? c.unit() * 20 - 5 : c.real());
    const T p = static_cast<T>(c.real()), q = static_cast<T>(c.real());
    SCOPED_TRACE(::testing::Message() << "n " << n << ", parameters " << p << ", " << q);
    switch (routine) {
        case 0:  // uniforms, sometimes after a new option or shuffle table
            if (c.pick(4) == 0) zorvs_random_option(c.pick(8) - 1);
            if (c.pick(8) == 0) R::install(data);
            c.check(R::uniform(given, 0), keep, [](T u) { return u > 0 && u < 1; }, "uniform");
            c.check(R::normal(given, 0), keep, [](T z) { return std::isfinite(z); }, "normal or exponential");
            break;
        case 1: c.check(R::gamma(given, p, 0), keep, [](T g) { return g >= 0; }, "gamma"); break;
        case 2: c.check(R::beta(given, p, q, 0), keep, [](T b) { return b >= 0 && b <= 1; }, "beta"); break;
        case 3: c.check(zorvs_random_poisson(given, float(p), 0), keep, [](int k) { return k >= 0; }, "poisson"); break;
        case 4: {  // multivariate normal, covariance of order 1 to 3: a non-finite one gives missing deviates
            const int l = 1 + c.pick(3), m = std::min(keep, 20);
            for (int i = 0; i < 9; ++i) data[i] = c.pick(2) ? data[i] : T(i % 4 == 0);
            const bool finite = std::all_of(data, data + 9, [](T v) { return std::isfinite(v); });
            c.check(R::multivariate(m, l, data, 0), m * l, [&](T z) { return std::isfinite(z) || !finite; }, "mvn");
            break;
        }
        case 5: {  // one-way table in one of its modes: the counts add up
            const int obs = std::min(keep, 40), k = c.pick(10) - 1, mode = c.pick(4);
            T *x = data + 100, *cut = data, lo = 0, hi = 0;
            std::sort(cut, cut + (c.pick(3) ? 8 : 0));
            T *t = mode == 0   ? R::table(obs, x, k, ZORVS_DATA_BOUNDS, &lo, &hi, 0)
                   : mode == 1 ? R::table(obs, x, k, ZORVS_KNOWN_BOUNDS, double(p), double(q), 0)
                               : R::table(obs, x, k, mode == 2 ? ZORVS_CUTPOINTS : ZORVS_CLASS_MARKS, cut, 0);
            if (!t) {
                EXPECT_GE(c.highest(), 4) << "table mode " << mode << ": no result and no error";
                break;
            }
            double sum = 0;
            for (int j = 0; j < k; ++j) sum += t[j];
            if (mode < 3) EXPECT_EQ(sum, obs) << "table mode " << mode << ": counts do not add up";
            else EXPECT_LE(sum, obs);
            std::free(t);
            break;
        }
        case 6: {  // simple statistics with one of its keywords
            const int vars = 1 + c.pick(3), obs = std::min(keep / vars, 10);
            static const int keywords[] = {ZORVS_MEDIAN_AND_SCALE, ZORVS_MEDIAN, ZORVS_MISSING_ELEMENTWISE, 0};
            const int k = c.pick(7);
            std::free(k < 4   ? R::statistics(obs, vars, data, keywords[k], 0)
                      : k < 5 ? R::statistics(obs, vars, data, ZORVS_CONFIDENCE_MEANS, double(p), 0)
                              : R::statistics(obs, vars, data, k < 6 ? ZORVS_FREQUENCIES : ZORVS_WEIGHTS, data + 100, 0));
            break;
        }
        case 7: {  // a matrix print on a random page, with random options
            static const char *formats[] = {nullptr, "%10.4W", "%5.1f", "%d", "%12.6w", "%g", "%40.30e", "%x"};
            static const char *texts[] = {"", "a", "two\nlines", "x\ny\nz", "a label that is too long for its field"};
            static const int widths[] = {10, 20, 40, 78, 132, 255, 256, 1 << 30}, lengths[] = {10, 20, 60, 1 << 30};
            int old_width = 78, old_length = 60, width = widths[c.pick(8)], length = lengths[c.pick(4)];
            int option = -1 - c.pick(6), value = c.pick(5) - 2;  // centring, row wrap, paging, ...
            zorvs_page(1, &old_width);
            zorvs_page(2, &old_length);
            zorvs_page(-1, &width);
            zorvs_page(-2, &length);
            zorvs_write_options(option, &value);
            char *labels[41];
            for (char *&l : labels) l = const_cast<char *>(texts[c.pick(5)]);
            const int rows = c.pick(6), columns = std::min(keep, 30), part = ZORVS_PRINT_ALL + 10 * c.pick(7);
            int ints[200];
            for (int &v : ints) v = c.count(1000);
            switch (c.pick(4)) {
                case 0: R::write("Random", rows, columns, data, ZORVS_WRITE_FORMAT, formats[c.pick(8)], part, 0); break;
                case 1: R::write("Random\ncall", rows, columns, data, ZORVS_TRANSPOSE, ZORVS_ROW_NUMBER_ZERO, 0); break;
                case 2: R::write(labels[0], rows, columns, data, ZORVS_ROW_LABELS, labels, ZORVS_COL_LABELS, labels, 0); break;
                default:
                    zorvs_i_write_matrix("", rows, columns, ints, ZORVS_A_COL_DIM,
                                         c.pick(4) ? columns + c.pick(10) : c.pick(3) - 1, ZORVS_NO_COL_LABELS, part, 0);
            }
            zorvs_page(-1, &old_width);
            zorvs_page(-2, &old_length);
            zorvs_write_options(0, &value);  // all options back to their defaults
            break;
        }
        case 9: {  // normal samples and covariances: p-values in [0, 1], correlations in [-1, 1]
            const int obs = std::min(keep, 20), vars = 1 + c.pick(3), col = c.pick(3) ? ZORVS_X_COL_DIM : 0;
            const bool finite = std::all_of(data, data + 60, [](T v) { return std::isfinite(v); });
            T *one = R::one_sample(obs, data, ZORVS_HYPOTHESIZED_VARIANCE, double(p), ZORVS_CONFIDENCE_VARIANCES, double(q), 0);
            T *two = R::two_sample(obs, data, std::min(keep, 15), data + 20, ZORVS_HYPOTHESIZED_RATIO, double(q), 0);
            T *cor = R::covariances(obs, vars, data, ZORVS_CORRELATION_MATRIX, c.pick(2) ? ZORVS_MISSING_ELEMENTWISE : 0,
                                    ZORVS_WEIGHTS, data + 100, col, vars + c.pick(2), 0);
            for (int k : {10, 11, 12, 14, 15, 16})
                if (one) c.probability(one[k], !finite, "one-sample p");
            for (int k : {12, 13, 14, 19, 20, 21, 27, 28, 29})
                if (two) c.probability(two[k], !finite, "two-sample p");
            std::free(one);
            std::free(two);
            c.check(cor, cor ? vars * vars : 0, [](T r) { return std::isnan(r) || std::fabs(r) <= 1; }, "correlation");
            break;
        }
        case 10: {  // ranks with a tie rule, fuzz and score; goodness of fit of the data to their own cutpoints
            static const int ties[] = {ZORVS_AVERAGE_TIE, ZORVS_LOWEST, ZORVS_HIGHEST, ZORVS_RANDOM_SPLIT};
            static const int scores[] = {ZORVS_RANKS, ZORVS_BLOM_SCORES, ZORVS_SAVAGE_SCORES};
            const int obs = std::min(keep, 100), score = c.pick(3);
            const T top = score == 0 ? T(obs) : score == 1 ? T(10) : T(10 + std::log(double(obs) + 1));
            c.check(R::ranks(obs, data, ties[c.pick(4)], scores[score], ZORVS_FUZZ, double(p), 0), obs,
                    [&](T r) { return std::isnan(r) || (r >= -top && r <= top); }, "ranks");
            std::sort(data + 100, data + 100 + 8);
            auto cdf = +[](T x) { return T(0.5) + std::atan(x) / T(3.14159265358979); };
            const int k = c.pick(10) - 1;
            c.probability(c.pick(2) ? R::chi_squared_test(cdf, k, obs, data, ZORVS_CUTPOINTS, data + 100,
                                                          ZORVS_N_PARAMETERS_ESTIMATED, c.pick(3), 0)
                                    : R::chi_squared_test(nullptr, k, obs, data, ZORVS_CUTPOINTS, data + 100,
                                                          ZORVS_EXPECTED_GIVEN, data + 150, 0),
                          false, "chi_squared_test");
            break;
        }
        default: {  // discrete distributions, and the gamma one near its centre at any shape
            const int k = c.count(60), m = c.count(60), l = c.count(100);
            const T unit = static_cast<T>(c.unit()), a = static_cast<T>(std::pow(10.0, 40 * c.unit()));
            const T x = a + p * std::sqrt(a), chance = c.pick(2) ? unit : p;
            c.probability(R::poisson_cdf(k, q), std::isnan(q), "poisson_cdf");
            c.probability(R::binomial_cdf(k, n, chance), std::isnan(chance), "binomial_cdf");
            c.probability(R::hypergeometric_cdf(k, n, m, l), false, "hypergeometric_cdf");
            c.probability(R::gamma_cdf(x, a), std::isnan(x), "gamma_cdf");
        }
    }
}

TEST(RandomCalls, KeywordRoutinesAndDistributionsSurviveAnyArguments) {
    zorvs_test::Quiet quiet;
    zorvs_test::UnitCapture output(false);
    Caller c;
    zorvs_random_seed_set(20261124);
    alarm(120);  // a call that hangs ends the process, and the test fails
    for (int call = 0; call < 30000; ++call) {
        c.log.clear();
        const int routine = c.pick(11);
        SCOPED_TRACE(::testing::Message() << "call " << call << ", routine " << routine);
        if (c.pick(2)) one_call<float>(c, routine);
        else one_call<double>(c, routine);
        output.take();
        quiet.errors.take();
    }
    alarm(0);
    zorvs_random_option(1);
}

}  // namespace
