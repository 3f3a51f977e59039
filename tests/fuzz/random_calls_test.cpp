// random_calls_test.cpp - the keyword routines and the distributions
// called with random arguments and keyword lists, as a careless or hostile
// caller would: missing, infinite, huge and subnormal reals, counts of 0 and
// -1, bad shuffle tables, odd formats and page sizes.  A fixed seed and a
// bounded number of calls keep it short under the sanitizers, which make it
// worth running.  What must hold: the call returns (a watchdog ends the
// process of a call that hangs), and a result is within its support (counts
// that add up, probabilities in [0, 1]) or comes with a message of type 3 or
// above.  The continuous distributions have their own fuzzing in
// tests/dist/fuzz_test.cpp.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>

#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

struct Caller {
    std::mt19937_64 bits{20261124};
    zorvs_test::CodeLog log;

    double unit() { return static_cast<double>(bits() >> 11) * 0x1p-53; }
    int pick(int n) { return static_cast<int>(bits() % static_cast<std::uint64_t>(n)); }
    // A real: awkward, a random magnitude of either sign from e^-40 to e^40,
    // or a number in [0, 1).
    double real() {
        static const double awkward[] = {NAN, INFINITY, -INFINITY, 0.0, -0.0, 1.0, -1.0, 0.5, 2.0, 1e-310,
                                         1e300, -1e300, 1e33, 3e9, 2e9, 15.0, 14.99, 1e12, 1e16, 1e20, 1e38};
        switch (pick(4)) {
            case 0: return awkward[pick(sizeof awkward / sizeof awkward[0])];
            case 1: return std::exp(80 * unit() - 40);
            case 2: return -std::exp(80 * unit() - 40);
            default: return unit();
        }
    }
    // A count: mostly small, sometimes 0, -1 or huge.
    int count(int small) {
        static const int awkward[] = {0, -1, 1, 2, INT_MAX, INT_MIN, 1000000};
        return pick(5) == 0 ? awkward[pick(7)] : 1 + pick(small);
    }
    int highest() const {
        int t = 0;
        for (const auto &e : log.entries()) t = e.first > t ? e.first : t;
        return t;
    }
    // Array results: each element in support, or a message of type 3 and
    // above; no result only with type 4 or above.  Frees the result.
    template <class T, class P>
    void check(T *r, int n, P in_support, const char *what) {
        if (!r) {
            EXPECT_GE(highest(), 4) << what << " gave no result and no error";
            return;
        }
        for (int i = 0; i < n; ++i)
            if (!in_support(r[i])) {
                EXPECT_GE(highest(), 3) << what << "[" << i << "] = " << r[i] << " with no message";
                break;
            }
        std::free(r);
    }
    // A probability in [0, 1], or NaN: from a NaN argument, or with a message.
    void probability(double p, bool nan_in, const char *what) {
        if (!(p >= 0 && p <= 1)) {
            EXPECT_TRUE(std::isnan(p) && (nan_in || highest() >= 3)) << what << " = " << p;
        }
    }
};

template <class T>
void one_call(Caller &c, int routine) {
    const int n = c.count(40);
    const int keep = n > 0 && n <= 1000 ? n : 0;  // elements a result holds
    // Data for the routines that read arrays: the counts given with them
    // never pass the array (a caller's lie about its storage is not tested).
    T buffer[200];
    for (T &v : buffer) v = static_cast<T>(c.pick(3) ? c.unit() * 20 - 5 : c.real());
    constexpr bool single = std::is_same_v<T, float>;
    auto unit_open = [](T u) { return u > 0 && u < 1; };
    switch (routine) {
        case 0: {  // uniforms, sometimes after a new option or table
            if (c.pick(4) == 0) zorvs_random_option(c.pick(8) - 1);
            if (c.pick(8) == 0) {
                if constexpr (single) zorvs_rnses(buffer); else zorvs_drnses(buffer);
            }
            if constexpr (single) c.check(zorvs_f_random_uniform(keep ? n : -1, 0), keep, unit_open, "uniform");
            else c.check(zorvs_d_random_uniform(keep ? n : -1, 0), keep, unit_open, "uniform");
            break;
        }
        case 1:
            if constexpr (single) c.check(zorvs_f_random_normal(keep ? n : 0, 0), keep, [](T z) { return std::isfinite(z); }, "normal");
            else c.check(zorvs_d_random_exponential(keep ? n : 0, 0), keep, [](T e) { return e >= 0; }, "exponential");
            break;
        case 2: {
            const T a = static_cast<T>(c.real());
            SCOPED_TRACE(::testing::Message() << "shape " << a);
            auto ok = [](T g) { return g >= 0 && !std::isnan(g); };
            if constexpr (single) c.check(zorvs_f_random_gamma(keep ? n : 0, a, 0), keep, ok, "gamma");
            else c.check(zorvs_d_random_gamma(keep ? n : 0, a, 0), keep, ok, "gamma");
            break;
        }
        case 3: {
            const T p = static_cast<T>(c.real()), q = static_cast<T>(c.real());
            SCOPED_TRACE(::testing::Message() << "shapes " << p << ", " << q);
            auto ok = [](T b) { return b >= 0 && b <= 1; };
            if constexpr (single) c.check(zorvs_f_random_beta(keep ? n : 0, p, q, 0), keep, ok, "beta");
            else c.check(zorvs_d_random_beta(keep ? n : 0, p, q, 0), keep, ok, "beta");
            break;
        }
        case 4:
            c.check(zorvs_random_poisson(keep ? n : 0, static_cast<float>(c.real()), 0), keep, [](int k) { return k >= 0; }, "poisson");
            break;
        case 5: {  // multivariate normal with a random covariance of order 1 to 3
            const int l = 1 + c.pick(3), m = keep ? (n > 20 ? 20 : n) : 0;
            T cov[9];
            bool finite = true;  // else NaN deviates are the missing values they come from
            for (int i = 0; i < 9; ++i) {
                cov[i] = c.pick(2) ? buffer[i] : static_cast<T>(i % 4 == 0);
                finite = finite && std::isfinite(cov[i]);
            }
            SCOPED_TRACE(::testing::Message() << "covariance " << cov[0] << " " << cov[1] << " " << cov[2] << " / "
                                              << cov[4] << " " << cov[5] << " / " << cov[8] << ", order " << l);
            auto ok = [finite](T z) { return std::isfinite(z) || !finite; };
            if constexpr (single) c.check(zorvs_f_random_normal_multivariate(m, l, cov, 0), m * l, ok, "multivariate");
            else c.check(zorvs_d_random_normal_multivariate(m, l, cov, 0), m * l, ok, "multivariate");
            break;
        }
        case 6: {  // one-way table in one of its four modes: counts add up
            const int obs = keep > 40 ? 40 : keep, k = c.pick(10) - 1, mode = c.pick(4);
            T *x = buffer, cut[8], lo = 0, hi = 0;
            for (T &v : cut) v = static_cast<T>(c.pick(4) ? c.unit() * 20 - 5 : c.real());
            std::sort(cut, cut + (c.pick(3) ? 8 : 0));
            T *t;
            auto table = [&](auto... keywords) {
                if constexpr (single) return zorvs_f_table_oneway(obs, x, k, keywords..., 0);
                else return zorvs_d_table_oneway(obs, x, k, keywords..., 0);
            };
            if (mode == 0) t = table(ZORVS_DATA_BOUNDS, &lo, &hi);
            else if (mode == 1) t = table(ZORVS_KNOWN_BOUNDS, c.real(), c.real());
            else if (mode == 2) t = table(ZORVS_CUTPOINTS, cut);
            else t = table(ZORVS_CLASS_MARKS, cut);
            if (t) {
                double sum = 0;
                for (int j = 0; j < k; ++j) sum += t[j];
                if (mode < 3) EXPECT_EQ(sum, obs) << "table mode " << mode << ": counts do not add up";
                else EXPECT_LE(sum, obs);
                std::free(t);
            } else {
                EXPECT_GE(c.highest(), 4) << "table mode " << mode << " gave no result and no error";
            }
            break;
        }
        case 7: {  // simple statistics with one of its keywords
            const int vars = 1 + c.pick(3), obs = keep / vars > 10 ? 10 : keep / vars;
            T *x = buffer, confidence = static_cast<T>(c.real());
            auto stats = [&](auto... keywords) {
                if constexpr (single) return zorvs_f_simple_statistics(obs, vars, x, keywords..., 0);
                else return zorvs_d_simple_statistics(obs, vars, x, keywords..., 0);
            };
            T *s;
            switch (c.pick(6)) {
                case 0: s = stats(); break;
                case 1: s = stats(ZORVS_MEDIAN_AND_SCALE); break;
                case 2: s = stats(ZORVS_MISSING_ELEMENTWISE, ZORVS_MEDIAN); break;
                case 3: s = stats(ZORVS_CONFIDENCE_MEANS, static_cast<double>(confidence)); break;
                case 4: s = stats(ZORVS_FREQUENCIES, buffer + 20); break;
                default: s = stats(ZORVS_WEIGHTS, buffer + 10); break;
            }
            std::free(s);
            break;
        }
        case 8: {  // matrix print on a random page
            static const char *formats[] = {nullptr, "%10.4W", "%5.1f", "%d", "%12.6w", "%g", "%40.30e", "%x"};
            static const int widths[] = {10, 20, 40, 78, 132, 255, 256, 1 << 30}, lengths[] = {10, 20, 60, 1 << 30};
            int old_width = 78, old_length = 60, width = widths[c.pick(8)], length = lengths[c.pick(4)];
            zorvs_page(1, &old_width);
            zorvs_page(2, &old_length);
            zorvs_page(-1, &width);
            zorvs_page(-2, &length);
            int option = -1 - c.pick(6), value = c.pick(5) - 2;  // centring, row wrap, paging, ...
            zorvs_write_options(option, &value);
            static const char *texts[] = {"", "a", "two\nlines", "x\ny\nz",
                                          "a label long enough to be broken over the lines of its field, or cut"};
            char *labels[41];
            for (char *&l : labels) l = const_cast<char *>(texts[c.pick(5)]);
            const int rows = c.pick(6), columns = keep > 30 ? 30 : keep;
            const char *format = formats[c.pick(8)];
            const int part = ZORVS_PRINT_ALL + 10 * c.pick(7);  // sometimes not a part at all
            if constexpr (single) zorvs_f_write_matrix("Random", rows, columns, buffer, ZORVS_WRITE_FORMAT, format, part, 0);
            else if (c.pick(3) == 0) zorvs_d_write_matrix("Random\ncall", rows, columns, buffer, ZORVS_TRANSPOSE, ZORVS_ROW_NUMBER_ZERO, 0);
            else if (c.pick(2)) zorvs_d_write_matrix(labels[0], rows, columns, buffer, ZORVS_ROW_LABELS, labels, ZORVS_COL_LABELS, labels, part, 0);
            else {
                int ints[200];
                for (int &v : ints) v = c.count(1000);
                const int stride = c.pick(4) ? columns + c.pick(10) : c.pick(3) - 1;
                zorvs_i_write_matrix("", rows, columns, ints, ZORVS_A_COL_DIM, stride, ZORVS_NO_COL_LABELS, 0);
            }
            zorvs_page(-1, &old_width);
            zorvs_page(-2, &old_length);
            zorvs_write_options(0, &value);  // all back to the defaults
            break;
        }
        default: {  // discrete distributions, and the gamma one near its centre at any shape
            const int k = c.count(60), m = c.count(60), l = c.count(100);
            const T p = static_cast<T>(c.pick(2) ? c.unit() : c.real());
            const T a = static_cast<T>(std::pow(10.0, 40 * c.unit())), x = a + static_cast<T>(c.real()) * std::sqrt(a);
            const T theta = static_cast<T>(c.real());
            const bool nan_p = std::isnan(p), nan_x = std::isnan(x), nan_theta = std::isnan(theta);
            if constexpr (single) {
                c.probability(zorvs_f_poisson_cdf(k, theta), nan_theta, "poisson_cdf");
                c.probability(zorvs_f_binomial_cdf(k, n, p), nan_p, "binomial_cdf");
                c.probability(zorvs_f_hypergeometric_cdf(k, n, m, l), false, "hypergeometric_cdf");
                c.probability(zorvs_f_gamma_cdf(x, a), nan_x, "gamma_cdf");
            } else {
                c.probability(zorvs_d_poisson_cdf(k, theta), nan_theta, "poisson_cdf");
                c.probability(zorvs_d_binomial_cdf(k, n, p), nan_p, "binomial_cdf");
                c.probability(zorvs_d_hypergeometric_cdf(k, n, m, l), false, "hypergeometric_cdf");
                c.probability(zorvs_d_gamma_cdf(x, a), nan_x, "gamma_cdf");
            }
        }
    }
}

TEST(RandomCalls, KeywordRoutinesAndDistributionsSurviveAnyArguments) {
    zorvs_test::Quiet quiet;
    zorvs_test::UnitCapture output(false);
    Caller c;
    zorvs_random_seed_set(20261124);
    alarm(300);  // a call that hangs ends the process and fails the test
    for (int call = 0; call < 60000; ++call) {
        c.log.clear();
        const int routine = c.pick(10);
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
