// allocation_failure_test.cpp - every public routine, a row each with a
// valid call that asks for every output a routine can hand over, run with
// each of its allocations made to fail in turn: the call ends with (5, 200),
// (5, 201) or (5, 202), hands over nothing (a null result, every output
// address left null, the caller's storage untouched), and, in the sanitizer
// build, leaks nothing.  A second test reads the public header and checks
// that every routine it declares has a row.
#include <fstream>
#include <regex>
#include <set>

#include "support/tables.hpp"

namespace {

using zorvs_test::each_allocation_failing;

// Work done before the call that is not under test (a fit whose record a
// routine reads): outside the countdown, so that it neither fails nor counts.
template <class F>
void before_the_call(F setup) {
    const int pending = zorvs::allocation_failure_countdown;
    zorvs::allocation_failure_countdown = 0;
    setup();
    zorvs::allocation_failure_countdown = pending;
}

// The same small data for every row: 40 values with ties, no missing.
template <class T>
struct Data {
    T x[40], y[40], cov[9] = {4, 2, 0.6, 2, 3, 0.4, 0.6, 0.4, 2};
    int n[3] = {4, 5, 6}, perm[6] = {2, 0, 1, 5, 3, 4}, periods[1] = {1}, orders[1] = {1};
    char *labels[8];
    Data() {
        static const double base[] = {2.1, 3.4, 1.7, 5.2, 4.4, 3.3, 2.9, 6.0, 1.1, 4.8, 3.9, 2.2, 5.5, 4.1,
                                      3.0, 2.6, 1.9, 4.7, 3.6, 5.0, 2.4, 3.1, 4.0, 1.5, 2.8, 3.8, 4.9, 2.0,
                                      3.5, 4.3, 1.3, 5.8, 2.7, 3.2, 4.6, 1.8, 3.7, 2.5, 4.2, 3.4};
        for (int i = 0; i < 40; ++i) x[i] = T(base[i]), y[i] = T(base[(7 * i + 3) % 40] + 0.5 * base[i]);
        for (char *&l : labels) l = const_cast<char *>("label");
    }
};

// All null: the result and the output addresses of a call.
template <class... P>
bool all_null(P... p) {
    return ((p == nullptr) && ...);
}
// Free what a call handed over.
template <class... P>
void free_all(P... p) {
    (std::free(const_cast<void *>(static_cast<const void *>(p))), ...);
}

// A print: true when it printed less than it does with every allocation
// granted (a failing printer stops where it stands).
template <class F>
bool printed_nothing(F print) {
    zorvs_test::UnitCapture out(false);
    before_the_call(print);
    const std::string whole = out.take();
    print();
    return out.take() != whole;
}

struct Row {
    const char *routine;
    bool allocates;            // at least one allocation must be reached
    bool (*call)();            // true: nothing handed over
    std::vector<int> standing = {};  // the routine's own codes for an output that fails alone
};

// A row for each twin of a routine: the body sees T, the twin's type, and
// R(name), the twin itself.
#define R(name) ::zorvs_test::twin<T>(zorvs_f_##name, zorvs_d_##name)
#define TWIN_ROWS_STANDING(name, allocates, standing, ...)                      \
    {"zorvs_f_" #name, allocates, [] { using T = float; __VA_ARGS__ }, standing}, \
    {"zorvs_d_" #name, allocates, [] { using T = double; __VA_ARGS__ }, standing}
#define TWIN_ROWS(name, allocates, ...) TWIN_ROWS_STANDING(name, allocates, {}, __VA_ARGS__)
#define ROW(name, allocates, ...) {#name, allocates, [] { __VA_ARGS__ }}

// The fit's optional outputs fail alone, each with its own code.
const std::vector<int> fit_outputs = {11039, 11040, 11041, 11042};

template <class T>
using Info = std::conditional_t<std::is_same_v<T, float>, zorvs_f_regression_info, zorvs_d_regression_info>;

template <class T>
Info<T> *fit(Data<T> &d) {
    Info<T> *info = nullptr;
    before_the_call([&] { std::free(R(regression)(20, 1, d.x, d.y, ZORVS_REGRESSION_INFO, &info, 0)); });
    return info;
}
zorvs_arma_info *arma_fit() {
    Data<double> d;
    void *info = nullptr;
    before_the_call([&] { std::free(zorvs_d_arma(40, d.x, 1, 1, ZORVS_LEAST_SQUARES, ZORVS_ARMA_INFO, &info, 0)); });
    return static_cast<zorvs_arma_info *>(info);
}
float uniform_cdf(float x) { return x < 0 ? 0.0f : x > 7 ? 1.0f : x / 7; }
double uniform_dcdf(double x) { return x < 0 ? 0.0 : x > 7 ? 1.0 : x / 7; }

const Row rows[] = {
    // The error system, machine constants, page and units: nothing to allocate.
    ROW(zorvs_error_options, false, zorvs_error_options(ZORVS_SET_PRINT, 3, 1, 0); return true;),
    ROW(zorvs_error_type, false, return zorvs_error_type() >= 0;),
    ROW(zorvs_error_code, false, return zorvs_error_code() >= 0;),
    ROW(zorvs_output_file, false, FILE *f = nullptr; zorvs_output_file(ZORVS_GET_OUTPUT_FILE, &f, 0); return true;),
    ROW(zorvs_f_machine, false, return zorvs_f_machine(1) > 0;),
    ROW(zorvs_d_machine, false, return zorvs_d_machine(1) > 0;),
    ROW(zorvs_i_machine, false, return zorvs_i_machine(1) > 0;),
    ROW(zorvs_version, true, char *v = zorvs_version(ZORVS_LIBRARY_VERSION); free_all(v); return !v;),
    ROW(zorvs_page, false, int w = 0; zorvs_page(1, &w); return true;),
    // Output.
    ROW(zorvs_write_options, false, int v = 0; zorvs_write_options(1, &v); return true;),
    ROW(zorvs_write_line, false, return printed_nothing([] { zorvs_write_line(5, "hello"); });),
    ROW(zorvs_wrtrl, false, return printed_nothing([] { zorvs_wrtrl("two\nlines", 20); });),
    ROW(zorvs_wrrrs, true, return printed_nothing([] { zorvs_wrrrs("x", 1.5f); });),
    ROW(zorvs_dwrrrs, true, return printed_nothing([] { zorvs_dwrrrs("x", 1.5); });),
    ROW(zorvs_wrirs, true, return printed_nothing([] { zorvs_wrirs("x", 3); });),
    TWIN_ROWS(write_matrix, true, Data<T> d; return printed_nothing([&] {
                  R(write_matrix)("a", 4, 5, d.x, ZORVS_TRANSPOSE, ZORVS_ROW_LABELS, d.labels, 0);
              });),
    ROW(zorvs_i_write_matrix, true, Data<double> d;
        return printed_nothing([&] { zorvs_i_write_matrix("a", 2, 3, d.perm, ZORVS_TRANSPOSE, 0); });),
    TWIN_ROWS(wrrrl, true, Data<T> d; return printed_nothing([&] {
                  ::zorvs_test::twin<T>(zorvs_f_wrrrl, zorvs_d_wrrrl)("a", 4, 5, d.x, 5, 0, "%10.4W", d.labels,
                                                                      d.labels, 2, 2);
              });),
    ROW(zorvs_i_wrirl, false, Data<double> d; return printed_nothing([&] {
            zorvs_i_wrirl("a", 2, 3, d.perm, 3, 0, "%d", nullptr, nullptr, 1, 1);
        });),
    // Extrema.
    ROW(zorvs_f_max, false, return zorvs_f_max(1, 2) == 2;),
    ROW(zorvs_d_max, false, return zorvs_d_max(1, 2) == 2;),
    ROW(zorvs_i_max, false, return zorvs_i_max(1, 2) == 2;),
    ROW(zorvs_f_min, false, return zorvs_f_min(1, 2) == 1;),
    ROW(zorvs_d_min, false, return zorvs_d_min(1, 2) == 1;),
    ROW(zorvs_i_min, false, return zorvs_i_min(1, 2) == 1;),
    TWIN_ROWS(maximum_index, false, Data<T> d; int i = 0; R(maximum_index)(40, d.x, 1, &i); return true;),
    TWIN_ROWS(vmax, false, return R(vmax)(3, 1.0, 3.0, 2.0) == 3;),
    ROW(zorvs_i_vmax, false, return zorvs_i_vmax(3, 1, 3, 2) == 3;),
    TWIN_ROWS(vmin, false, return R(vmin)(3, 1.0, 3.0, 2.0) == 1;),
    ROW(zorvs_i_vmin, false, return zorvs_i_vmin(3, 1, 3, 2) == 1;),
    // Transposition in place of a matrix that is not square takes a buffer.
    // (Without its buffer it transposes by cycles: nothing to hand over is
    // a matrix left as it was.)
    TWIN_ROWS(m1ran, true, Data<T> d; const T a5 = d.x[5]; R(m1ran)(4, 5, d.x, d.x); return d.x[1] != a5;),
    ROW(zorvs_i_m1ran, true, Data<double> d; zorvs_i_m1ran(2, 3, d.perm, d.perm); return d.perm[1] != 5;),
    // Special functions and distributions: values only.
    TWIN_ROWS(gamma, false, return R(gamma)(T(4.5)) > 0;),
    TWIN_ROWS(log_gamma, false, return R(log_gamma)(T(4.5)) > 0;),
    TWIN_ROWS(beta, false, return R(beta)(T(2), T(3)) > 0;),
    TWIN_ROWS(log_beta, false, return R(log_beta)(T(2), T(3)) < 0;),
    TWIN_ROWS(erf, false, return R(erf)(T(0.5)) > 0;),
    TWIN_ROWS(erfc, false, return R(erfc)(T(0.5)) > 0;),
    TWIN_ROWS(normal_cdf, false, return R(normal_cdf)(T(0.5)) > 0;),
    TWIN_ROWS(normal_inverse_cdf, false, return R(normal_inverse_cdf)(T(0.7)) > 0;),
    TWIN_ROWS(bivariate_normal_cdf, false, return R(bivariate_normal_cdf)(T(0.5), T(0.2), T(0.3)) > 0;),
    TWIN_ROWS(gamma_incomplete, false, return R(gamma_incomplete)(T(2), T(1)) > 0;),
    TWIN_ROWS(gamma_cdf, false, return R(gamma_cdf)(T(1), T(2)) > 0;),
    TWIN_ROWS(chi_squared_cdf, false, return R(chi_squared_cdf)(T(3), T(4)) > 0;),
    TWIN_ROWS(chi_squared_inverse_cdf, false, return R(chi_squared_inverse_cdf)(T(0.5), T(4)) > 0;),
    TWIN_ROWS(beta_incomplete, false, return R(beta_incomplete)(T(0.3), T(2), T(3)) > 0;),
    TWIN_ROWS(beta_cdf, false, return R(beta_cdf)(T(0.3), T(2), T(3)) > 0;),
    TWIN_ROWS(beta_inverse_cdf, false, return R(beta_inverse_cdf)(T(0.3), T(2), T(3)) > 0;),
    TWIN_ROWS(t_cdf, false, return R(t_cdf)(T(1), T(5)) > 0;),
    TWIN_ROWS(t_inverse_cdf, false, return R(t_inverse_cdf)(T(0.7), T(5)) > 0;),
    TWIN_ROWS(F_cdf, false, return R(F_cdf)(T(1), T(3), T(5)) > 0;),
    TWIN_ROWS(F_inverse_cdf, false, return R(F_inverse_cdf)(T(0.5), T(3), T(5)) > 0;),
    TWIN_ROWS(poisson_cdf, false, return R(poisson_cdf)(3, T(2.5)) > 0;),
    TWIN_ROWS(binomial_cdf, false, return R(binomial_cdf)(3, 10, T(0.4)) > 0;),
    TWIN_ROWS(hypergeometric_cdf, false, return R(hypergeometric_cdf)(3, 10, 20, 50) > 0;),
    // Random numbers.
    TWIN_ROWS(random_uniform, true, T *r = R(random_uniform)(10, 0); free_all(r); return !r;),
    ROW(zorvs_random_seed_get, false, return zorvs_random_seed_get() >= 0;),
    ROW(zorvs_random_seed_set, false, zorvs_random_seed_set(123457); return true;),
    ROW(zorvs_random_option, false, zorvs_random_option(1); return true;),
    ROW(zorvs_rnses, false, const float zero[128] = {}; zorvs_rnses(zero); return true;),
    ROW(zorvs_drnses, false, const double zero[128] = {}; zorvs_drnses(zero); return true;),
    TWIN_ROWS(random_normal, true, T *r = R(random_normal)(10, 0); free_all(r); return !r;),
    TWIN_ROWS(random_exponential, true, T *r = R(random_exponential)(10, 0); free_all(r); return !r;),
    TWIN_ROWS(random_gamma, true, T *r = R(random_gamma)(10, T(2.5), 0); free_all(r); return !r;),
    ROW(zorvs_random_poisson, true, int *r = zorvs_random_poisson(10, 3.5f, 0); free_all(r); return !r;),
    TWIN_ROWS(random_beta, true, T *r = R(random_beta)(10, T(2), T(3), 0); free_all(r); return !r;),
    TWIN_ROWS(random_normal_multivariate, true, Data<T> d;
              T *r = R(random_normal_multivariate)(5, 3, d.cov, 0); free_all(r); return !r;),
    // Descriptive statistics.
    TWIN_ROWS(table_oneway, true, Data<T> d; T *r = R(table_oneway)(40, d.x, 5, 0); free_all(r); return !r;),
    TWIN_ROWS(simple_statistics, true, Data<T> d;
              T *r = R(simple_statistics)(20, 2, d.x, ZORVS_MEDIAN_AND_SCALE, 0); free_all(r); return !r;),
    TWIN_ROWS(normal_one_sample, true, Data<T> d; T *r = R(normal_one_sample)(40, d.x, 0); free_all(r); return !r;),
    TWIN_ROWS(normal_two_sample, true, Data<T> d;
              T *r = R(normal_two_sample)(20, d.x, 20, d.y, 0); free_all(r); return !r;),
    TWIN_ROWS(covariances, true, Data<T> d; T *m = nullptr, *c = nullptr;
              T *r = R(covariances)(20, 2, d.x, ZORVS_MISSING_ELEMENTWISE, ZORVS_X_MEAN, &m, ZORVS_PAIR_COUNTS, &c, 0);
              free_all(r, m, c); return all_null(r, m, c);),
    TWIN_ROWS(ranks, true, Data<T> d; T *r = R(ranks)(40, d.x, ZORVS_BLOM_SCORES, 0); free_all(r); return !r;),
    // Regression.
    TWIN_ROWS(regressors_for_glm, true, Data<T> d; T *g = nullptr;
              const int k = R(regressors_for_glm)(10, d.x, 1, 1, ZORVS_REGRESSORS, &g, 0);
              free_all(g); return !g && k == 0;),
    TWIN_ROWS_STANDING(regression, true, fit_outputs, Data<T> d; T *a = nullptr, *c = nullptr, *m = nullptr, *e = nullptr;
              Info<T> *info = nullptr;
              T *b = R(regression)(20, 1, d.x, d.y, ZORVS_ANOVA_TABLE, &a, ZORVS_COEF_COVARIANCES, &c, ZORVS_X_MEAN, &m,
                                   ZORVS_RESIDUAL, &e, ZORVS_REGRESSION_INFO, &info, 0);
              free_all(b, a, c, m, e, info); return all_null(b, a, c, m, e, info);),
    TWIN_ROWS(regression_summary, true, Data<T> d; Info<T> *info = fit(d);
              T *t = nullptr, *v = nullptr, *c = nullptr, *a = nullptr;
              R(regression_summary)(info, ZORVS_COEF_T_TESTS, &t, ZORVS_COEF_VIF, &v, ZORVS_COEF_COVARIANCES, &c,
                                    ZORVS_ANOVA_TABLE, &a, 0);
              free_all(info, t, v, c, a); return all_null(t, v, c, a);),
    TWIN_ROWS(regression_prediction, true, Data<T> d; Info<T> *info = fit(d);
              T *lo[3] = {}, *hi[3] = {}, *e = nullptr, *s = nullptr, *del = nullptr, *cook = nullptr, *dff = nullptr,
                *lev = nullptr;
              T *p = R(regression_prediction)(info, 20, d.x, ZORVS_Y, d.y, ZORVS_SCHEFFE_CI, &lo[0], &hi[0],
                                              ZORVS_CI_POP_MEAN, &lo[1], &hi[1], ZORVS_CI_NEW_SAMPLE, &lo[2], &hi[2],
                                              ZORVS_RESIDUAL, &e, ZORVS_STANDARDIZED_RESIDUAL, &s,
                                              ZORVS_DELETED_RESIDUAL, &del, ZORVS_COOKSD, &cook, ZORVS_DFFITS, &dff,
                                              ZORVS_LEVERAGE, &lev, 0);
              free_all(info, p, lo[0], lo[1], lo[2], hi[0], hi[1], hi[2], e, s, del, cook, dff, lev);
              return all_null(p, lo[0], lo[1], lo[2], hi[0], hi[1], hi[2], e, s, del, cook, dff, lev);),
    // Analysis of variance.
    TWIN_ROWS(anova_oneway, true, Data<T> d; T *a = nullptr, *m = nullptr, *s = nullptr, *t = nullptr; int *c = nullptr;
              R(anova_oneway)(3, d.n, d.x, ZORVS_ANOVA_TABLE, &a, ZORVS_GROUP_COUNTS, &c, ZORVS_GROUP_MEANS, &m,
                              ZORVS_GROUP_STD_DEVS, &s, ZORVS_TUKEY, &t, 0);
              free_all(a, m, s, t, c); return all_null(a, m, s, t, c);),
    TWIN_ROWS(multiple_comparisons, true, Data<T> d;
              int *r = R(multiple_comparisons)(6, d.x, 30, T(0.4), 0); free_all(r); return !r;),
    // Categorical data and tests.
    TWIN_ROWS(sign_test, false, Data<T> d; int pos = -1;
              R(sign_test)(40, d.x, ZORVS_PERCENTILE, 3.0, ZORVS_N_POSITIVE_DEVIATIONS, &pos, 0); return true;),
    TWIN_ROWS(wilcoxon_rank_sum, true, Data<T> d; T *s = nullptr;
              R(wilcoxon_rank_sum)(20, d.x, 20, d.y, ZORVS_STAT, &s, 0); free_all(s); return !s;),
    TWIN_ROWS(normality_test, true, Data<T> d; T w = -7;
              const T p = R(normality_test)(40, d.x, ZORVS_SHAPIRO_WILK, &w, 0); return std::isnan(p) && w == T(-7);),
    TWIN_ROWS(normality_test, true, Data<T> d; T w = -7;
              const T p = R(normality_test)(40, d.x, ZORVS_LILLIEFORS, &w, 0); return std::isnan(p) && w == T(-7);),
    TWIN_ROWS(contingency_table, true, Data<T> d; T *e = nullptr, *c = nullptr, *cs = nullptr, *s = nullptr;
              for (int i = 0; i < 12; ++i) d.y[i] = T(3 + i % 5);
              R(contingency_table)(3, 4, d.y, ZORVS_EXPECTED, &e, ZORVS_CHI_SQUARED_CONTRIBUTIONS, &c,
                                   ZORVS_CHI_SQUARED_STATISTICS, &cs, ZORVS_STATISTICS, &s, 0);
              free_all(e, c, cs, s); return all_null(e, c, cs, s);),
    TWIN_ROWS(chi_squared_test, true, Data<T> d; T *e = nullptr, *c = nullptr, *k = nullptr;
              const T cut[3] = {2, 3, 4};
              const T p = R(chi_squared_test)(::zorvs_test::twin<T>(uniform_cdf, uniform_dcdf), 4, 40, d.x,
                                              ZORVS_CUTPOINTS, cut, ZORVS_EXPECTED, &e, ZORVS_CHI_SQUARED_CONTRIBUTIONS,
                                              &c, ZORVS_CELL_COUNTS, &k, 0);
              free_all(e, c, k); return std::isnan(p) && all_null(e, c, k);),
    // Permutations.
    TWIN_ROWS(permute_vector, true, Data<T> d;
              T *r = R(permute_vector)(6, d.x, d.perm, ZORVS_FORWARD_PERMUTATION, 0); free_all(r); return !r;),
    TWIN_ROWS(permute_matrix, true, Data<T> d;
              T *r = R(permute_matrix)(6, 2, d.x, d.perm, ZORVS_PERMUTE_ROWS, 0); free_all(r); return !r;),
    // Multivariate analysis.
    TWIN_ROWS(cluster_k_means, true, Data<T> d; T *m = nullptr, *s = nullptr; int *c = nullptr;
              const T seeds[4] = {2, 2, 5, 5};
              int *r = R(cluster_k_means)(20, 2, d.x, 2, const_cast<T *>(seeds), ZORVS_CLUSTER_MEANS, &m,
                                          ZORVS_CLUSTER_SSQ, &s, ZORVS_CLUSTER_COUNTS, &c, 0);
              free_all(r, m, s, c); return all_null(r, m, s, c);),
    TWIN_ROWS(principal_components, true, Data<T> d; T *v = nullptr, *c = nullptr, *p = nullptr, *s = nullptr;
              T *r = R(principal_components)(3, d.cov, ZORVS_EIGENVECTORS, &v, ZORVS_CORRELATIONS, &c,
                                             ZORVS_CUM_PERCENT, &p, ZORVS_STD_DEV, 20, &s, 0);
              free_all(r, v, c, p, s); return all_null(r, v, c, p, s);),
    // Time series.
    TWIN_ROWS(difference, true, Data<T> d;
              T *r = R(difference)(40, d.x, 1, d.periods, ZORVS_ORDERS, d.orders, 0); free_all(r); return !r;),
    TWIN_ROWS(arma, true, Data<T> d; T *e = nullptr, *c = nullptr, *a = nullptr; void *info = nullptr;
              T *r = R(arma)(40, d.x, 1, 1, ZORVS_LEAST_SQUARES, ZORVS_RESIDUAL, &e, ZORVS_PARAM_EST_COV, &c,
                             ZORVS_AUTOCOV, &a, ZORVS_ARMA_INFO, &info, 0);
              free_all(r, e, c, a, info); return all_null(r, e, c, a, info);),
    TWIN_ROWS(arma, true, Data<T> d; void *info = nullptr;
              T *r = R(arma)(40, d.x, 2, 1, ZORVS_ARMA_INFO, &info, 0);
              free_all(r, info); return all_null(r, info);),
    TWIN_ROWS(arma_forecast, true, zorvs_arma_info *info = arma_fit(); T *psi = nullptr;
              T *r = R(arma_forecast)(info, 5, ZORVS_PSI_WEIGHTS, &psi, 0);
              free_all(r, psi, info); return all_null(r, psi);),
};

#undef ROW
#undef TWIN_ROWS
#undef TWIN_ROWS_STANDING
#undef R

// Each row: every allocation it reaches fails in turn, cleanly.
TEST(AllocationFailure, EveryRoutineEndsCleanlyAtEachAllocation) {
    zorvs_test::UnitCapture output(false);
    int routines = 0, failures = 0, recovered = 0;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.routine);
        const int reached = each_allocation_failing(row.call, row.standing, &recovered);
        EXPECT_EQ(reached > 0, row.allocates) << "allocations reached: " << reached;
        ++routines;
        failures += reached;
        output.take();
    }
    std::printf("[measure] allocation failure: %d rows, %d failing allocations, %d of them recovered\n", routines,
                failures, recovered);
}

// Every routine the public header declares has a row.
TEST(AllocationFailure, EveryPublicRoutineHasARow) {
    std::ifstream header(ZORVS_TEST_DATA_DIR "/../../include/zorvstat.h");
    ASSERT_TRUE(header) << "public header not found";
    const std::regex prototype(R"(^[a-z][a-z_ ]*[ *]+(zorvs_\w+)\()");
    std::set<std::string> declared, listed;
    for (std::string line; std::getline(header, line);)
        if (std::smatch m; std::regex_search(line, m, prototype)) declared.insert(m[1]);
    for (const Row &row : rows) listed.insert(row.routine);
    EXPECT_GT(declared.size(), 100u);
    for (const std::string &name : declared) EXPECT_TRUE(listed.count(name)) << name << " has no row";
    for (const std::string &name : listed) EXPECT_TRUE(declared.count(name)) << name << " is not declared";
}

}  // namespace
