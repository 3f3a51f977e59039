// regressions_test.cpp - the faults that random calls and the fuzz targets
// found, one row each (their inputs also stay in fuzz/corpus/<target>/, where
// also the principal components of a float matrix whose negative eigenvalue
// came first by magnitude, unreported, stay replayed): the call as found
// (stops of types 4 and 5 off), the (type, code) it must raise now, or 0, 0
// for none, and the property it broke: it returns (a watchdog ends a call
// that hangs), deviates lie in their support, counts add up, printed lines
// keep to the page.  Values are SciPy's, from
// tests/data/fuzz/make_regressions.py, or limits of the distributions (an
// infinite statistic, shapes so large that the distribution is a point mass).
#include "support/tables.hpp"

namespace {

using zorvs_test::Inf;
using zorvs_test::NaN;

struct Reference { const char *name; double args[3], value; };
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
    const bool ok = r && std::all_of(r, r + n, in_support);
    std::free(r);
    return ok;
}

// A matrix print wrote `labels` numbers (the title "T" aside), on lines no
// wider than the page.
bool labels_fit(const std::function<void()> &print, int labels) {
    zorvs_test::UnitCapture out(false);
    print();
    int width = 0, count = 0;
    zorvs_page(1, &width);
    for (const std::string &line : zorvs_test::split(out.text())) {
        if (static_cast<int>(line.size()) > width) return false;
        std::istringstream words(line);
        for (std::string w; words >> w;) count += w != "T";
    }
    return count == labels;
}

// The shuffled generator with a table of `bad` at slot `at` (a slot that in
// a fresh process was never filled) or everywhere (at -1).
template <class T>
bool shuffled(void (*install)(const T *), T bad, int at = 7) {
    zorvs_random_option(2);
    T table[128];
    for (T &v : table) v = at < 0 ? bad : T(0.5);
    if (at >= 0) table[at] = bad;
    install(table);
    return true;
}
auto is_nan = [](auto v) { return std::isnan(v); };
auto unit = [](auto u) { return u > 0 && u < 1; };
auto closed_unit = [](auto u) { return u >= 0 && u <= 1; };
auto within = [](double centre, double radius) { return [=](auto v) { return std::fabs(v - centre) < radius; }; };

constexpr int N = 2000;  // uniforms enough to reach each slot of the table
constexpr int transpose = ZORVS_TRANSPOSE;
double a[2700];  // 0, 1, 2, ...
float fa[2700], nan_f = NAN;
int ia[2700];

struct Row {
    const char *finding;
    int type, code;               // expected, or 0, 0 for no message
    std::function<bool()> holds;  // the call, and whether its property holds
};

const std::vector<Row> rows = {
    // The labels of a matrix without rows ran past the line buffer.
    {"0 x 27", 0, 0, [] { return labels_fit([] { zorvs_d_write_matrix("T", 0, 27, a, 0); }, 27); }},
    {"0 x 27, single", 0, 0, [] { return labels_fit([] { zorvs_f_write_matrix("T", 0, 27, fa, 0); }, 27); }},
    {"0 x 100, int", 0, 0, [] { return labels_fit([] { zorvs_i_write_matrix("T", 0, 100, ia, 0); }, 100); }},
    {"27 x 0", 0, 0, [] { return labels_fit([] { zorvs_d_write_matrix("T", 27, 0, a, transpose, 0); }, 27); }},
    {"no array", 0, 0, [] { return labels_fit([] { zorvs_d_write_matrix("T", 27, 0, nullptr, transpose, 0); }, 27); }},
    // Loops that never ended at huge or infinite parameters.
    {"random_gamma 1e33", 3, 11043, [] { return all_of(zorvs_d_random_gamma(1, 1e33, 0), 1, is_nan); }},
    {"random_gamma 1e38, single", 3, 11043, [] { return all_of(zorvs_f_random_gamma(1, 1e38f, 0), 1, is_nan); }},
    {"random_gamma infinite", 3, 11043, [] { return all_of(zorvs_d_random_gamma(1, INFINITY, 0), 1, is_nan); }},
    {"random_gamma 1e12", 0, 0, [] { return all_of(zorvs_d_random_gamma(50, 1e12, 0), 50, within(1e12, 1e7)); }},
    {"random_poisson 1e33", 5, 11044, [] { return zorvs_random_poisson(1, 1e33f, 0) == nullptr; }},
    {"random_poisson infinite", 5, 11044, [] { return zorvs_random_poisson(1, INFINITY, 0) == nullptr; }},
    // Deviates past the largest int became INT_MIN.
    {"random_poisson 3e9", 5, 11044, [] { return zorvs_random_poisson(5, 3e9f, 0) == nullptr; }},
    {"random_poisson 2e9", 0, 0, [] { return all_of(zorvs_random_poisson(50, 2e9f, 0), 50, within(2e9, 5e5)); }},
    // A refused table entry left its slot at 0.
    {"drnses", 5, 11031, [] { return shuffled(zorvs_drnses, NaN) && all_of(zorvs_d_random_uniform(N, 0), N, unit); }},
    {"rnses", 5, 11031, [] { return shuffled(zorvs_rnses, 2.0f) && all_of(zorvs_f_random_uniform(N, 0), N, unit); }},
    // A table of subnormals underflowed both powers of Johnk's beta method
    // (0/0), and a covariance far from nonnegative definite overflowed its
    // factor; both gave NaN deviates without a message.
    {"random_beta after a table of subnormals", 0, 0, [] {
         return shuffled(zorvs_drnses, 1e-310, -1) && all_of(zorvs_d_random_beta(20, 0.3, 2.8e-9, 0), 20, closed_unit);
     }},
    {"random_normal_multivariate, overflowing factor", 3, 20406, [] {
         const float cov[9] = {2.6e-14f, 0, 1e33f, 0, 1, 9.34f, 1e33f, 9.34f, 3.8e-5f};
         return (std::free(zorvs_f_random_normal_multivariate(3, 3, cov, 0)), true);
     }},
    // Observations counted nowhere: a NaN cutpoint.
    {"NaN cutpoint", 5, 20024, [] { return !zorvs_d_table_oneway(3, a + 1, 2, ZORVS_CUTPOINTS, &NaN, 0); }},
    {"single, NaN cutpoint", 5, 20024, [] { return !zorvs_f_table_oneway(3, fa + 1, 2, ZORVS_CUTPOINTS, &nan_f, 0); }},
    // Off-diagonal pairs of a square table beyond the int range were handed
    // to the binomial as a negative number of trials.
    {"contingency_table, pairs of 6e9", 0, 0, [] {
         double table[4] = {1, 3e9, 3.0001e9, 1}, s[23 * 5];
         zorvs_d_contingency_table(2, 2, table, ZORVS_STATISTICS_USER, s, 0);
         return zorvs_test::relative_error(s[22 * 5 + 3], 2 * reference("d_binomial_cdf", 3e9, 6.0001e9, 0.5)) < 1e-10;
     }},
    // An output asked for in both forms: the one given last holds, the
    // caller's array is neither handed over as a block nor freed.
    {"regression output in both forms", 0, 0, [] {
         double x[6] = {1, 2, 3, 4, 5, 7}, y[6] = {2.1, 3.9, 6.2, 7.8, 10.1, 14.2}, mine[15] = {}, *block = nullptr;
         std::free(zorvs_d_regression(6, 1, x, y, ZORVS_ANOVA_TABLE, &block, ZORVS_ANOVA_TABLE_USER, mine, 0));
         const bool user_last = !block && mine[0] == 1.0;  // degrees of freedom of the regression
         mine[0] = 0;
         std::free(zorvs_d_regression(6, 1, x, y, ZORVS_ANOVA_TABLE_USER, mine, ZORVS_ANOVA_TABLE, &block, 0));
         const bool block_last = block && block != mine && block[0] == 1.0 && mine[0] == 0.0;
         std::free(block);
         return user_last && block_last;
     }},
    // Twice a huge page width overflowed an int before the width check (the
    // last row: the page stays so).
    {"page width 2^30", 5, 10010, [] {
         int w = 1 << 30;
         return zorvs_page(-1, &w), zorvs_dwrrrs("", 1.0), true;
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
        zorvs_random_option(1);
        EXPECT_TRUE(row.type ? log.has(row.type, row.code) : log.entries().empty());
        quiet.errors.take();
    }
}

// Distribution functions at the edges of their arguments: a probability in
// [0, 1] or a refusal, never a NaN without a message, and near the
// reference where SciPy has one.
TEST(FuzzRegressions, DistributionsAtTheEdges) {
    zorvs_test::expect_rows({
        {ZORVS_CALL(zorvs_d_chi_squared_cdf(Inf, Inf)), 1.0},  // inf / inf in the cube-root approximation
        {ZORVS_CALL(zorvs_f_chi_squared_cdf(INFINITY, 100.0f)), 1.0},
        {ZORVS_CALL(zorvs_f_chi_squared_cdf(1e38f, 1e38f)), 0.5, 0, 0, "", 1e-6},  // 9 df overflowed a float
        {ZORVS_CALL(zorvs_f_chi_squared_inverse_cdf(0.5f, 1e38f)), 1e38, 0, 0, "", 1e32},
        {ZORVS_CALL(zorvs_d_F_cdf(95.0, 1e300, 1e300)), 1.0},  // a b overflowed in the beta ratio's leading factor
        {ZORVS_CALL(zorvs_d_F_cdf(0.999999, 1e30, 1e30)), 0.0},
        {ZORVS_CALL(zorvs_d_F_cdf(1e-310, 0.5, 0x1p-1074)), NaN, 5, 9048},  // a df whose half is 0
        {ZORVS_CALL(zorvs_d_F_inverse_cdf(0.5, 0x1p-1074, 2.0)), NaN, 5, 9048},
        {ZORVS_CALL(zorvs_d_F_cdf(0.5, 1.246533832842823e-18, 1e300)), NaN, 3, 9057},  // b / a overflowed
        {ZORVS_CALL(zorvs_f_gamma_incomplete(7.8704914e20f, 7.870611e20f)), Inf},  // rounding passed 0 in a log1p
        {ZORVS_CALL(zorvs_d_gamma_incomplete(200.0, 1e300)), Inf},
        // Found by random calls, against SciPy: a loop that never ended at a
        // huge shape; the incomplete beta's scale level overflowed an int;
        // the continued fraction stopped far from its value at a huge shape.
        {ZORVS_CALL(zorvs_d_gamma_cdf(1e30, 1e30)), reference("d_gamma_cdf", 1e30, 1e30), 0, 0, "", 1e-15},
        {ZORVS_CALL(zorvs_d_beta_incomplete(0.5, 1e20, 2)), reference("d_beta_incomplete", 0.5, 1e20, 2)},
        {ZORVS_CALL(zorvs_d_beta_cdf(0.5, 1e20, 2)), reference("d_beta_cdf", 0.5, 1e20, 2)},
        {ZORVS_CALL(zorvs_d_F_cdf(5e19, 4, 2e20)), reference("d_F_cdf", 5e19, 4, 2e20), 0, 0, "", 1e-15},
        {ZORVS_CALL(zorvs_d_gamma_cdf(1e16, 1e16)), reference("d_gamma_cdf", 1e16, 1e16), 0, 0, "", 1e-15},
        {ZORVS_CALL(zorvs_d_gamma_cdf(1e8, 1e8)), reference("d_gamma_cdf", 1e8, 1e8), 0, 0, "", 1e-7},
        {ZORVS_CALL(zorvs_d_gamma_cdf(1e8 - 2e4, 1e8)), reference("d_gamma_cdf", 1e8 - 2e4, 1e8), 0, 0, "", 1e-7},
        {ZORVS_CALL(zorvs_d_gamma_cdf(1e8 + 2e4, 1e8)), reference("d_gamma_cdf", 1e8 + 2e4, 1e8), 0, 0, "", 1e-7},
        {ZORVS_CALL(zorvs_f_gamma_cdf(1e3f, 1e3f)), reference("f_gamma_cdf", 1e3, 1e3), 0, 0, "", 2e-4},
        {ZORVS_CALL(zorvs_f_gamma_cdf(970.0f, 1e3f)), reference("f_gamma_cdf", 970, 1e3), 0, 0, "", 2e-4},
        {ZORVS_CALL(zorvs_f_gamma_cdf(1030.0f, 1e3f)), reference("f_gamma_cdf", 1030, 1e3), 0, 0, "", 2e-4},
        {ZORVS_CALL(zorvs_d_gamma_cdf(1, 1e20)), reference("d_gamma_cdf", 1, 1e20)},  // the far tails beyond
        {ZORVS_CALL(zorvs_d_gamma_cdf(1e16 + 1e9, 1e16)), reference("d_gamma_cdf", 1e16 + 1e9, 1e16)},
        {ZORVS_CALL(zorvs_d_gamma_cdf(1e16 - 4e9, 1e16)), reference("d_gamma_cdf", 1e16 - 4e9, 1e16)},
    });
}

}  // namespace
