// regressions_test.cpp - the faults that random calls of the keyword
// routines and distributions found, one row each: the call as found (stops
// of types 4 and 5 off), the (type, code) it must raise now, or 0, 0 for
// none, and the property it broke: it returns (a watchdog ends a call that
// hangs), deviates lie in their support, counts add up, printed lines keep
// to the page.  Values are SciPy's, from tests/data/fuzz/make_regressions.py.
#include "support/tables.hpp"

namespace {

struct Reference {
    const char *name;
    double args[3];
    double value;
};
const Reference references[] = {
#include "data/fuzz/regressions_ref.inc"
};

double reference(const std::string &name, double x, double y, double z = 0) {
    for (const Reference &r : references)
        if (name == r.name && r.args[0] == x && r.args[1] == y && r.args[2] == z) return r.value;
    ADD_FAILURE() << "no reference for " << name;
    return NAN;
}

// Every element of a result passes `in_support`; the result is freed.
template <class T, class P>
bool all_of(T *r, int n, P in_support) {
    bool ok = r != nullptr;
    for (int i = 0; ok && i < n; ++i) ok = in_support(r[i]);
    std::free(r);
    return ok;
}

// A matrix print wrote `labels` numbers (the title "T" aside), on lines no
// wider than the page.
bool labels_within_page(const std::function<void()> &print, int labels) {
    zorvs_test::UnitCapture out(false);
    print();
    std::istringstream lines(out.text());
    int width = 0, count = 0;
    zorvs_page(1, &width);
    for (std::string line; std::getline(lines, line);) {
        if (static_cast<int>(line.size()) > width) return false;
        std::istringstream words(line);
        for (std::string w; words >> w;) count += w != "T";
    }
    return count == labels;
}

// Uniforms of the shuffled generator after a table with one bad entry, at
// a slot that in a fresh process was never filled: all inside (0, 1).
template <class T>
bool shuffled_uniforms_inside(void (*install)(const T *), T *(*uniform)(int, ...), T bad) {
    zorvs_random_option(2);
    T table[128];
    for (T &v : table) v = T(0.5);
    table[7] = bad;
    install(table);
    const bool ok = all_of(uniform(2000, 0), 2000, [](T u) { return u > 0 && u < 1; });
    zorvs_random_option(1);
    return ok;
}

double a[2700];
float fa[2700];
int ia[2700];
auto is_nan = [](auto v) { return std::isnan(v); };

struct Row {
    const char *finding;
    int type, code;               // expected, or 0, 0 for no message
    std::function<bool()> holds;  // the call, and whether its property holds
};

const std::vector<Row> rows = {
    // 1. The labels of a matrix without rows ran past the line buffer.
    {"write_matrix 0 x 27, all twins", 0, 0, [] {
         return labels_within_page([] { zorvs_d_write_matrix("T", 0, 27, a, 0); }, 27) &&
                labels_within_page([] { zorvs_f_write_matrix("T", 0, 27, fa, 0); }, 27) &&
                labels_within_page([] { zorvs_i_write_matrix("T", 0, 100, ia, 0); }, 100);
     }},
    {"27 x 0 transposed, with and without an array", 0, 0, [] {
         return labels_within_page([] { zorvs_d_write_matrix("T", 27, 0, a, ZORVS_TRANSPOSE, 0); }, 27) &&
                labels_within_page([] { zorvs_d_write_matrix("T", 27, 0, nullptr, ZORVS_TRANSPOSE, 0); }, 27);
     }},
    // 2. Twice a huge page width overflowed an int before the width check.
    {"page width 2^30", 5, 10010, [] {
         int w = 1073741824, old = 0;
         zorvs_page(1, &old);
         zorvs_page(-1, &w);
         zorvs_dwrrrs("", 1.0);
         zorvs_page(-1, &old);
         return true;
     }},
    // 3. Loops that never ended at huge or infinite parameters.
    {"random_gamma 1e33", 3, 11043, [] { return all_of(zorvs_d_random_gamma(1, 1e33, 0), 1, is_nan); }},
    {"random_gamma 1e38, single", 3, 11043, [] { return all_of(zorvs_f_random_gamma(1, 1e38f, 0), 1, is_nan); }},
    {"random_gamma infinite", 3, 11043, [] { return all_of(zorvs_d_random_gamma(1, INFINITY, 0), 1, is_nan); }},
    {"random_gamma 1e12, served", 0, 0,
     [] { return all_of(zorvs_d_random_gamma(50, 1e12, 0), 50, [](double g) { return std::fabs(g - 1e12) < 1e7; }); }},
    {"random_poisson 1e33", 5, 11044, [] { return zorvs_random_poisson(1, 1e33f, 0) == nullptr; }},
    {"random_poisson infinite", 5, 11044, [] { return zorvs_random_poisson(1, INFINITY, 0) == nullptr; }},
    {"gamma_cdf 1e30 1e30", 0, 0,
     [] { return std::fabs(zorvs_d_gamma_cdf(1e30, 1e30) - reference("d_gamma_cdf", 1e30, 1e30)) < 1e-15; }},
    // 4. Deviates past the largest int became INT_MIN.
    {"random_poisson 3e9", 5, 11044, [] { return zorvs_random_poisson(5, 3e9f, 0) == nullptr; }},
    {"random_poisson 2e9, served", 0, 0, [] {
         return all_of(zorvs_random_poisson(50, 2e9f, 0), 50, [](int k) { return std::abs(k - 2000000000) < 500000; });
     }},
    // 5. A refused table entry left its slot at 0.
    {"drnses with a NaN", 5, 11031, [] { return shuffled_uniforms_inside(zorvs_drnses, zorvs_d_random_uniform, std::nan("")); }},
    {"rnses with 2", 5, 11031, [] { return shuffled_uniforms_inside(zorvs_rnses, zorvs_f_random_uniform, 2.0f); }},
    // Found later: a table of subnormals underflowed both powers of Johnk's
    // beta method (0/0), and a covariance far from nonnegative definite
    // overflowed its factor; both gave NaN deviates without a message.
    {"random_beta after a table of subnormals", 0, 0, [] {
         zorvs_random_option(2);
         double table[128];
         for (double &v : table) v = 1e-310;
         zorvs_drnses(table);
         const bool ok = all_of(zorvs_d_random_beta(20, 0.3, 2.8e-9, 0), 20, [](double b) { return b >= 0 && b <= 1; });
         zorvs_random_option(1);
         return ok;
     }},
    {"random_normal_multivariate, overflowing factor", 3, 20406, [] {
         const float cov[9] = {2.6e-14f, 0, 1e33f, 0, 1, 9.34f, 1e33f, 9.34f, 3.8e-5f};
         std::free(zorvs_f_random_normal_multivariate(3, 3, cov, 0));
         return true;
     }},
    // 6. The incomplete beta's scale level overflowed an int.
    {"beta_incomplete 0.5 1e20 2", 0, 0,
     [] { return zorvs_d_beta_incomplete(0.5, 1e20, 2) == reference("d_beta_incomplete", 0.5, 1e20, 2); }},
    {"beta_cdf 0.5 1e20 2", 0, 0, [] { return zorvs_d_beta_cdf(0.5, 1e20, 2) == reference("d_beta_cdf", 0.5, 1e20, 2); }},
    {"F_cdf 5e19 4 2e20", 0, 0,
     [] { return std::fabs(zorvs_d_F_cdf(5e19, 4, 2e20) - reference("d_F_cdf", 5e19, 4, 2e20)) < 1e-15; }},
    // 7. Observations counted nowhere: a NaN cutpoint.
    {"table_oneway NaN cutpoint", 5, 20024, [] {
         double x[3] = {1, 2, 3}, cut[1] = {NAN};
         return zorvs_d_table_oneway(3, x, 2, ZORVS_CUTPOINTS, cut, 0) == nullptr;
     }},
    {"single, NaN cutpoint", 5, 20024, [] {
         float x[3] = {1, 2, 3}, cut[1] = {NAN};
         return zorvs_f_table_oneway(3, x, 2, ZORVS_CUTPOINTS, cut, 0) == nullptr;
     }},
    // 8. The continued fraction stopped far from its value at a huge shape.
    {"gamma_cdf 1e16 1e16", 0, 0,
     [] { return std::fabs(zorvs_d_gamma_cdf(1e16, 1e16) - reference("d_gamma_cdf", 1e16, 1e16)) < 1e-15; }},
    {"gamma_cdf at the largest shapes served", 0, 0, [] {
         bool ok = true;
         for (double x : {1e8, 1e8 - 2e4, 1e8 + 2e4})
             ok = ok && std::fabs(zorvs_d_gamma_cdf(x, 1e8) - reference("d_gamma_cdf", x, 1e8)) < 1e-7;
         for (float x : {1e3f, 970.0f, 1030.0f})
             ok = ok && std::fabs(zorvs_f_gamma_cdf(x, 1e3f) - reference("f_gamma_cdf", x, 1e3)) < 2e-4;
         return ok;
     }},
    {"gamma_cdf beyond, in the far tails", 0, 0, [] {
         bool ok = zorvs_d_gamma_cdf(1, 1e20) == reference("d_gamma_cdf", 1, 1e20);
         for (double x : {1e16 + 1e9, 1e16 - 4e9}) ok = ok && zorvs_d_gamma_cdf(x, 1e16) == reference("d_gamma_cdf", x, 1e16);
         return ok;
     }},
    // 7. Off-diagonal pairs of a square table beyond the int range were
    // handed to the binomial as a negative number of trials.
    {"contingency_table, pairs of 6e9", 0, 0, [] {
         double table[4] = {1, 3e9, 3.0001e9, 1}, s[23 * 5];
         zorvs_d_contingency_table(2, 2, table, ZORVS_STATISTICS_USER, s, 0);
         return zorvs_test::relative_error(s[22 * 5 + 3], 2 * reference("d_binomial_cdf", 3e9, 6.0001e9, 0.5)) < 1e-10;
     }},
};

TEST(FuzzRegressions, EachFindingStaysFixed) {
    zorvs_test::Quiet quiet;
    zorvs_test::UnitCapture output(false);
    for (int i = 0; i < 2700; ++i) a[i] = fa[i] = ia[i] = i;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.finding);
        zorvs_test::CodeLog log;
        alarm(20);  // a call that hangs ends the process, and the test fails
        EXPECT_TRUE(row.holds());
        alarm(0);
        if (row.type == 0) {
            EXPECT_TRUE(log.entries().empty()) << log.entries()[0].first << ", " << log.entries()[0].second;
        } else {
            EXPECT_TRUE(log.has(row.type, row.code));
        }
        quiet.errors.take();
    }
}

}  // namespace
