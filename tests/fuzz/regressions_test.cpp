// regressions_test.cpp - the faults a random-call run over the keyword
// routines and distributions found, one row each: the call as it was found
// (in a fresh state, stops of types 4 and 5 off), the (type, code) it must
// raise now, or none, and the property it broke: the call returns (a
// watchdog ends a call that hangs), deviates stay within their support,
// counts add up, printed lines stay within the page.  Reference values are
// SciPy's, from tests/data/fuzz/make_regressions.py.
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

const double nan_value = std::nan("");
const double inf = INFINITY;

struct Reference {
    const char *name;
    double args[3];
    double value;
};
const Reference references[] = {
#include "data/fuzz/regressions_ref.inc"
};

// The reference value of `name` at (x, y, z), which must be in the table.
double reference(const char *name, double x, double y, double z = 0) {
    for (const Reference &r : references)
        if (std::string(r.name) == name && r.args[0] == x && r.args[1] == y && (z == 0 || r.args[2] == z))
            return r.value;
    ADD_FAILURE() << "no reference for " << name;
    return nan_value;
}

// Every element of an allocated result passes `in_support`; the result is freed.
template <class T, class P>
bool all_of(T *r, int n, P in_support) {
    bool ok = r != nullptr;
    for (int i = 0; ok && i < n; ++i) ok = in_support(r[i]);
    std::free(r);
    return ok;
}

// What a matrix print wrote: the lines hold `labels` numbers in all, none
// longer than the page width.
bool labels_within_page(const std::function<void()> &print, int labels) {
    zorvs_test::UnitCapture out(false);
    print();
    std::istringstream lines(out.text());
    std::string line;
    int width = 0, count = 0;
    zorvs_page(1, &width);
    while (std::getline(lines, line)) {
        if (static_cast<int>(line.size()) > width) return false;
        std::istringstream words(line);
        for (std::string w; words >> w;) count += w != "T";
    }
    return count == labels;
}

// Shuffled generator after a refused table: uniforms inside (0, 1) and
// normal deviates finite in both twins.  The generator is put back.
template <class T, class Install>
bool shuffled_draws_in_support(Install install, T bad) {
    zorvs_random_seed_set(123457);
    zorvs_random_option(2);
    T table[128];
    for (T &v : table) v = T(0.5);
    table[7] = bad;
    install(table);
    bool ok;
    if constexpr (std::is_same_v<T, float>) {
        ok = all_of(zorvs_f_random_uniform(2000, 0), 2000, [](float u) { return u > 0 && u < 1; }) &&
             all_of(zorvs_f_random_normal(2000, 0), 2000, [](float z) { return std::isfinite(z); });
    } else {
        ok = all_of(zorvs_d_random_uniform(2000, 0), 2000, [](double u) { return u > 0 && u < 1; }) &&
             all_of(zorvs_d_random_exponential(2000, 0), 2000, [](double e) { return std::isfinite(e); }) &&
             all_of(zorvs_d_random_gamma(200, 2.5, 0), 200, [](double g) { return g > 0 && std::isfinite(g); });
    }
    zorvs_random_option(1);
    return ok;
}

struct Row {
    const char *finding;
    int type, code;                 // expected, or 0, 0 for no message
    std::function<bool()> holds;    // the call, and whether its property holds
};

const std::vector<Row> &rows() {
    static double a[2700];
    static float fa[2700];
    static int ia[2700];
    for (int i = 0; i < 2700; ++i) a[i] = fa[i] = ia[i] = i;
    static const std::vector<Row> all = {
        // 1. Labels of a matrix without rows ran past the line buffer.
        {"write_matrix 0 x 27", 0, 0,
         [] { return labels_within_page([] { zorvs_d_write_matrix("T", 0, 27, a, 0); }, 27); }},
        {"write_matrix 0 x 27, single", 0, 0,
         [] { return labels_within_page([] { zorvs_f_write_matrix("T", 0, 27, fa, 0); }, 27); }},
        {"write_matrix 0 x 100, integer", 0, 0,
         [] { return labels_within_page([] { zorvs_i_write_matrix("T", 0, 100, ia, 0); }, 100); }},
        {"write_matrix 27 x 0 transposed", 0, 0,
         [] { return labels_within_page([] { zorvs_d_write_matrix("T", 27, 0, a, ZORVS_TRANSPOSE, 0); }, 27); }},
        {"write_matrix 27 x 0 transposed, no array", 0, 0,
         [] {
             return labels_within_page(
                 [] { zorvs_d_write_matrix("T", 27, 0, static_cast<double *>(nullptr), ZORVS_TRANSPOSE, 0); }, 27);
         }},
        // 2. Twice a huge page width overflowed before the width check.
        {"page width 2^30", 5, 10010,
         [] {
             int w = 1073741824, old = 0;
             zorvs_page(1, &old);
             zorvs_page(-1, &w);
             zorvs_dwrrrs("", 1.0);
             zorvs_page(-1, &old);
             return true;
         }},
        // 3. Hangs: the methods' loops at huge or infinite parameters.
        {"random_gamma 1e33", 3, 11043,
         [] { return all_of(zorvs_d_random_gamma(1, 1e33, 0), 1, [](double g) { return std::isnan(g); }); }},
        {"random_gamma 1e38, single", 3, 11043,
         [] { return all_of(zorvs_f_random_gamma(1, 1e38f, 0), 1, [](float g) { return std::isnan(g); }); }},
        {"random_gamma infinite", 3, 11043,
         [] { return all_of(zorvs_d_random_gamma(1, inf, 0), 1, [](double g) { return std::isnan(g); }); }},
        {"random_gamma 1e12, the largest served", 0, 0,
         [] { return all_of(zorvs_d_random_gamma(50, 1e12, 0), 50, [](double g) { return std::fabs(g - 1e12) < 1e7; }); }},
        {"random_poisson 1e33", 5, 11044, [] { return zorvs_random_poisson(1, 1e33f, 0) == nullptr; }},
        {"random_poisson infinite", 5, 11044, [] { return zorvs_random_poisson(1, INFINITY, 0) == nullptr; }},
        {"gamma_cdf 1e30 1e30", 3, 9070, [] { return std::isnan(zorvs_d_gamma_cdf(1e30, 1e30)); }},
        // 4. Deviates past the largest int became INT_MIN.
        {"random_poisson 3e9", 5, 11044, [] { return zorvs_random_poisson(5, 3e9f, 0) == nullptr; }},
        {"random_poisson 2e9, the largest served", 0, 0,
         [] { return all_of(zorvs_random_poisson(50, 2e9f, 0), 50, [](int k) { return std::abs(k - 2000000000) < 500000; }); }},
        // 5. A refused table entry left a slot at 0.
        {"drnses with a NaN", 5, 11031, [] { return shuffled_draws_in_support<double>(zorvs_drnses, nan_value); }},
        {"rnses with 2", 5, 11031, [] { return shuffled_draws_in_support<float>(zorvs_rnses, 2.0f); }},
        // Found by the random calls: a caller's table of subnormal uniforms
        // underflowed both powers of Johnk's method, 0/0.
        {"random_beta after a table of subnormals", 0, 0,
         [] {
             zorvs_random_option(2);
             double table[128];
             for (double &v : table) v = 1e-310;
             zorvs_drnses(table);
             const bool ok = all_of(zorvs_d_random_beta(20, 0.3, 2.8e-9, 0), 20, [](double b) { return b >= 0 && b <= 1; });
             zorvs_random_option(1);
             return ok;
         }},
        // Found by the random calls: a covariance far from nonnegative
        // definite overflowed its float factor, and NaN deviates came without
        // a message.
        {"random_normal_multivariate, overflowing factor", 3, 20406,
         [] {
             const float cov[9] = {2.6e-14f, 0, 1e33f, 0, 1, 9.34f, 1e33f, 9.34f, 3.8e-5f};
             std::free(zorvs_f_random_normal_multivariate(3, 3, cov, 0));
             return true;
         }},
        // 6. The scale level of the incomplete beta's finite sum overflowed an int.
        {"beta_incomplete 0.5 1e20 2", 0, 0,
         [] { return zorvs_d_beta_incomplete(0.5, 1e20, 2) == reference("d_beta_incomplete", 0.5, 1e20, 2); }},
        {"beta_cdf 0.5 1e20 2", 0, 0,
         [] { return zorvs_d_beta_cdf(0.5, 1e20, 2) == reference("d_beta_cdf", 0.5, 1e20, 2); }},
        {"F_cdf 5e19 4 2e20", 0, 0,
         [] { return std::fabs(zorvs_d_F_cdf(5e19, 4, 2e20) - reference("d_F_cdf", 5e19, 4, 2e20)) < 1e-15; }},
        // 7. Observations counted nowhere: a NaN cutpoint.
        {"table_oneway NaN cutpoint", 5, 20024,
         [] {
             double x[3] = {1, 2, 3}, cut[1] = {nan_value};
             return zorvs_d_table_oneway(3, x, 2, ZORVS_CUTPOINTS, cut, 0) == nullptr;
         }},
        {"table_oneway NaN cutpoint, single", 5, 20024,
         [] {
             float x[3] = {1, 2, 3}, cut[1] = {NAN};
             return zorvs_f_table_oneway(3, x, 2, ZORVS_CUTPOINTS, cut, 0) == nullptr;
         }},
        // 8. The continued fraction stopped far from its value at a huge shape.
        {"gamma_cdf 1e16 1e16", 3, 9070, [] { return std::isnan(zorvs_d_gamma_cdf(1e16, 1e16)); }},
        {"gamma_cdf at the largest shape served", 0, 0,
         [] {
             bool ok = true;
             for (double x : {1e8, 1e8 - 2e4, 1e8 + 2e4})
                 ok = ok && std::fabs(zorvs_d_gamma_cdf(x, 1e8) - reference("d_gamma_cdf", x, 1e8)) < 1e-7;
             for (float x : {1e3f, 970.0f, 1030.0f})
                 ok = ok && std::fabs(zorvs_f_gamma_cdf(x, 1e3f) - reference("f_gamma_cdf", x, 1e3)) < 2e-4;
             return ok;
         }},
        {"gamma_cdf beyond it, in the far tails", 0, 0,
         [] {
             bool ok = true;
             for (double x : {1e16 + 1e9, 1e16 - 4e9})
                 ok = ok && zorvs_d_gamma_cdf(x, 1e16) == reference("d_gamma_cdf", x, 1e16);
             return ok && zorvs_d_gamma_cdf(1, 1e20) == reference("d_gamma_cdf", 1, 1e20);
         }},
    };
    return all;
}

TEST(FuzzRegressions, EachFindingStaysFixed) {
    zorvs_test::Quiet quiet;
    zorvs_test::UnitCapture output(false);
    for (const Row &row : rows()) {
        SCOPED_TRACE(row.finding);
        zorvs_test::CodeLog log;
        alarm(20);  // a call that hangs ends the process and fails the test
        const bool holds = row.holds();
        alarm(0);
        EXPECT_TRUE(holds);
        if (row.type == 0) {
            EXPECT_TRUE(log.entries().empty()) << "first: " << log.entries()[0].first << ", " << log.entries()[0].second;
        } else {
            EXPECT_TRUE(log.has(row.type, row.code));
        }
        quiet.errors.take();
    }
}

}  // namespace
