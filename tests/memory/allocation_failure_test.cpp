// allocation_failure_test.cpp - every public routine, a row each with a
// valid call that asks for every output a routine can hand over, run with
// each of its allocations made to fail in turn: the call ends with (5, 200),
// (5, 201) or (5, 202), hands over nothing (a null result, every output
// address left null, the caller's storage untouched), and, in the sanitizer
// build, leaks nothing.  Where an optional output fails alone with its own
// code (the regression fit's 11039 to 11042), the fit and the other outputs
// stand; where a path needs no block (the in-place transposition's cycles,
// used by the regressors of a model), a failure may be absorbed with the
// full result.  A second test reads the public header and checks that every
// routine it declares has a row.
#include <fstream>
#include <regex>
#include <set>

#include "stat/regress/twins.hpp"

namespace {

#include "data/stat/regress/regressors_glm_ref.inc"

using zorvs_test::Info;

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
    T x[40], y[40], z[80] = {}, glm[128], cov[9] = {4, 2, 0.6, 2, 3, 0.4, 0.6, 0.4, 2}, seeds[4] = {2, 2, 5, 5}, f[20];
    int n[3] = {4, 5, 6}, perm[6] = {2, 0, 1, 5, 3, 4}, one[1] = {1}, class_columns[2] = {0, 2};
    char *labels[8];
    Data() {
        static const double base[] = {2.1, 3.4, 1.7, 5.2, 4.4, 3.3, 2.9, 6.0, 1.1, 4.8, 3.9, 2.2, 5.5, 4.1,
                                      3.0, 2.6, 1.9, 4.7, 3.6, 5.0, 2.4, 3.1, 4.0, 1.5, 2.8, 3.8, 4.9, 2.0,
                                      3.5, 4.3, 1.3, 5.8, 2.7, 3.2, 4.6, 1.8, 3.7, 2.5, 4.2, 3.4};
        for (int i = 0; i < 40; ++i) x[i] = T(base[i]), y[i] = T(base[(7 * i + 3) % 40] + 0.5 * base[i]);
        for (int t = 1; t < 80; ++t) z[t] = T(0.6 * z[t - 1] + std::sin(3.7 * t) + 0.3 * std::cos(11.1 * t));
        std::copy(glm_x, glm_x + 128, glm);
        for (int i = 0; i < 20; ++i) f[i] = T(1 + i % 3);
        for (char *&l : labels) l = const_cast<char *>("label");
    }
};

// Frees what a call handed over (blocks, or arrays of them); true when it
// handed over nothing.
inline bool gone(const void *p) {
    const bool null = p == nullptr;
    std::free(const_cast<void *>(p));
    return null;
}
template <class P, std::size_t N>
bool gone(P *const (&blocks)[N]) {
    return std::count_if(blocks, blocks + N, [](P *b) { return !gone(b); }) == 0;
}
template <class... P>
bool none(const P &...p) {
    return (gone(p) & ...);
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

// The record of a fit that a routine reads, made outside the countdown.
template <class T>
Info<T> *fit(Data<T> &d) {
    Info<T> *info = nullptr;
    before_the_call([&] { std::free(zorvs_test::fit<T>(20, 1, d.x, d.y, ZORVS_REGRESSION_INFO, &info, 0)); });
    return info;
}
template <class T>
T uniform_cdf(T x) { return x < 0 ? T(0) : x > 7 ? T(1) : x / 7; }

struct Row {
    const char *routine;
    bool allocates;                  // at least one allocation must be reached
    bool (*call)();                  // true: nothing handed over
    std::vector<int> standing = {};  // the routine's own codes for an output that fails alone
};

// A row for each twin of a routine: the body sees T, the twin's type, d,
// the data, and R(name), the twin itself.
#define R(name) ::zorvs_test::twin<T>(zorvs_f_##name, zorvs_d_##name)
#define TWINS_STANDING(name, allocates, standing, ...)                                    \
    {"zorvs_f_ " #name, allocates, [] { using T = float; Data<T> d; __VA_ARGS__ }, standing}, \
    {"zorvs_d_ " #name, allocates, [] { using T = double; Data<T> d; __VA_ARGS__ }, standing}
#define TWINS(name, allocates, ...) TWINS_STANDING(name, allocates, {}, __VA_ARGS__)
#define ROW(name, allocates, ...) {#name, allocates, [] { Data<double> d; (void)d; __VA_ARGS__ }}

const Row rows[] = {
    // The error system, machine constants, page and units: nothing to allocate.
    ROW(zorvs_error_options zorvs_error_type zorvs_error_code zorvs_output_file zorvs_page, false, FILE *f = nullptr;
        int w = 0; zorvs_error_options(ZORVS_SET_PRINT, 3, 1, 0); zorvs_output_file(ZORVS_GET_OUTPUT_FILE, &f, 0);
        zorvs_page(1, &w); return zorvs_error_type() >= 0 && zorvs_error_code() >= 0;),
    ROW(zorvs_f_machine zorvs_d_machine zorvs_i_machine, false,
        return zorvs_f_machine(1) > 0 && zorvs_d_machine(1) > 0 && zorvs_i_machine(1) > 0;),
    ROW(zorvs_version, true, return none(zorvs_version(ZORVS_LIBRARY_VERSION));),
    // Output.
    ROW(zorvs_write_options, false, int v = 0; zorvs_write_options(1, &v); return true;),
    ROW(zorvs_write_line, false, return printed_nothing([] { zorvs_write_line(5, "hello"); });),
    ROW(zorvs_wrtrl, false, return printed_nothing([] { zorvs_wrtrl("two\nlines", 20); });),
    ROW(zorvs_wrrrs, true, return printed_nothing([] { zorvs_wrrrs("x", 1.5f); });),
    ROW(zorvs_dwrrrs, true, return printed_nothing([] { zorvs_dwrrrs("x", 1.5); });),
    ROW(zorvs_wrirs, true, return printed_nothing([] { zorvs_wrirs("x", 3); });),
    TWINS(write_matrix, true, return printed_nothing([&] {
          R(write_matrix)("a", 4, 5, d.x, ZORVS_TRANSPOSE, ZORVS_ROW_LABELS, d.labels, 0);
      });),
    ROW(zorvs_i_write_matrix, true,
        return printed_nothing([&] { zorvs_i_write_matrix("a", 2, 3, d.perm, ZORVS_TRANSPOSE, 0); });),
    TWINS(wrrrl, true,
          return printed_nothing([&] { R(wrrrl)("a", 4, 5, d.x, 5, 0, "%10.4W", d.labels, d.labels, 2, 2); });),
    ROW(zorvs_i_wrirl, false,
        return printed_nothing([&] { zorvs_i_wrirl("a", 2, 3, d.perm, 3, 0, "%d", nullptr, nullptr, 1, 1); });),
    // Extrema.
    ROW(zorvs_f_max zorvs_d_max zorvs_i_max zorvs_f_min zorvs_d_min zorvs_i_min zorvs_i_vmax zorvs_i_vmin, false,
        return zorvs_f_max(1, 2) == 2 && zorvs_d_max(1, 2) == 2 && zorvs_i_max(1, 2) == 2 && zorvs_f_min(1, 2) == 1 &&
           zorvs_d_min(1, 2) == 1 && zorvs_i_min(1, 2) == 1 && zorvs_i_vmax(3, 1, 3, 2) == 3 &&
           zorvs_i_vmin(3, 1, 3, 2) == 1;),
    TWINS(maximum_index vmax vmin, false, int i = 0; R(maximum_index)(40, d.x, 1, &i);
          return R(vmax)(3, 1.0, 3.0, 2.0) == 3 && R(vmin)(3, 1.0, 3.0, 2.0) == 1;),
    // Transposition in place of a matrix that is not square takes a buffer.
    // (Without its buffer it transposes by cycles: nothing to hand over is
    // a matrix left as it was.)
    TWINS(m1ran, true, const T a5 = d.x[5]; R(m1ran)(4, 5, d.x, d.x); return d.x[1] != a5;),
    ROW(zorvs_i_m1ran, true, zorvs_i_m1ran(2, 3, d.perm, d.perm); return d.perm[1] != 5;),
    // Special functions and distributions: values only.
    TWINS(gamma log_gamma beta log_beta erf erfc normal_cdf normal_inverse_cdf bivariate_normal_cdf, false,
          return R(gamma)(T(4.5)) > 0 && R(log_gamma)(T(4.5)) > 0 && R(beta)(T(2), T(3)) > 0 &&
                 R(log_beta)(T(2), T(3)) < 0 && R(erf)(T(0.5)) > 0 && R(erfc)(T(0.5)) > 0 &&
                 R(normal_cdf)(T(0.5)) > 0 && R(normal_inverse_cdf)(T(0.7)) > 0 &&
                 R(bivariate_normal_cdf)(T(0.5), T(0.2), T(0.3)) > 0;),
    TWINS(gamma_incomplete gamma_cdf chi_squared_cdf chi_squared_inverse_cdf beta_incomplete beta_cdf, false,
          return R(gamma_incomplete)(T(2), T(1)) > 0 && R(gamma_cdf)(T(1), T(2)) > 0 &&
                 R(chi_squared_cdf)(T(3), T(4)) > 0 && R(chi_squared_inverse_cdf)(T(0.5), T(4)) > 0 &&
                 R(beta_incomplete)(T(0.3), T(2), T(3)) > 0 && R(beta_cdf)(T(0.3), T(2), T(3)) > 0;),
    TWINS(beta_inverse_cdf t_cdf t_inverse_cdf F_cdf F_inverse_cdf poisson_cdf binomial_cdf hypergeometric_cdf,
          false, return R(beta_inverse_cdf)(T(0.3), T(2), T(3)) > 0 && R(t_cdf)(T(1), T(5)) > 0 &&
                        R(t_inverse_cdf)(T(0.7), T(5)) > 0 && R(F_cdf)(T(1), T(3), T(5)) > 0 &&
                        R(F_inverse_cdf)(T(0.5), T(3), T(5)) > 0 && R(poisson_cdf)(3, T(2.5)) > 0 &&
                        R(binomial_cdf)(3, 10, T(0.4)) > 0 && R(hypergeometric_cdf)(3, 10, 20, 50) > 0;),
    // Random numbers.
    TWINS(random_uniform, true, return none(R(random_uniform)(10, 0));),
    ROW(zorvs_random_seed_get zorvs_random_seed_set zorvs_random_option zorvs_rnses zorvs_drnses, false,
        const float zero[128] = {}; const double dzero[128] = {}; zorvs_random_seed_set(123457); zorvs_random_option(1);
        zorvs_rnses(zero); zorvs_drnses(dzero); return zorvs_random_seed_get() >= 0;),
    TWINS(random_normal, true, return none(R(random_normal)(10, 0));),
    TWINS(random_exponential, true, return none(R(random_exponential)(10, 0));),
    TWINS(random_gamma, true, return none(R(random_gamma)(10, T(2.5), 0));),
    ROW(zorvs_random_poisson, true, return none(zorvs_random_poisson(10, 3.5f, 0));),
    TWINS(random_beta, true, return none(R(random_beta)(10, T(2), T(3), 0));),
    TWINS(random_normal_multivariate, true, return none(R(random_normal_multivariate)(5, 3, d.cov, 0));),
    // Descriptive statistics.
    TWINS(table_oneway, true, return none(R(table_oneway)(40, d.x, 5, 0));),
    TWINS(simple_statistics, true, return none(R(simple_statistics)(20, 2, d.x, ZORVS_MEDIAN_AND_SCALE, 0));),
    TWINS(normal_one_sample, true, return none(R(normal_one_sample)(40, d.x, 0));),
    TWINS(normal_two_sample, true, return none(R(normal_two_sample)(20, d.x, 20, d.y, 0));),
    TWINS(covariances, true, T *o[3] = {}; const int missing = ZORVS_MISSING_ELEMENTWISE;
          o[0] = R(covariances)(20, 2, d.x, missing, ZORVS_X_MEAN, &o[1], ZORVS_PAIR_COUNTS, &o[2], 0);
          return none(o);),
    TWINS(ranks, true, return none(R(ranks)(40, d.x, ZORVS_BLOM_SCORES, 0));),
    // Regression: the regressors of a model of order 2 over two class columns
    // (right after a failure the transposition may absorb); a fit whose
    // optional outputs fail alone, the fit standing with three of the four.
    TWINS(regressors_for_glm, true, T *g = nullptr;
          const int k = R(regressors_for_glm)(32, d.glm, 2, 2, ZORVS_X_CLASS_COLUMNS, d.class_columns,
                                              ZORVS_MODEL_ORDER, 2, ZORVS_REGRESSORS, &g, 0);
          EXPECT_TRUE(k == 0 || (k == glm_o2_s1_ncol && std::fabs(g[32 * k - 1] - glm_o2_s1[32 * k - 1]) < 1e-3));
          EXPECT_TRUE(std::equal(d.glm, d.glm + 128, glm_x, [](T v, double x) { return v == T(x); }));
          return none(g) && k == 0;),
    TWINS_STANDING(regression, true, (std::vector<int>{11039, 11040, 11041, 11042}), T *o[4] = {};
          Info<T> *info = nullptr;
          T *b = R(regression)(20, 1, d.x, d.y, ZORVS_ANOVA_TABLE, &o[0], ZORVS_COEF_COVARIANCES, &o[1],
                               ZORVS_X_MEAN, &o[2], ZORVS_RESIDUAL, &o[3], ZORVS_REGRESSION_INFO, &info, 0);
          EXPECT_TRUE(b ? info && std::count(o, o + 4, nullptr) <= 1 : !info); return none(b, o, info);),
    TWINS(regression_summary, true, Info<T> *info = fit(d); T *o[4] = {};
          R(regression_summary)(info, ZORVS_COEF_T_TESTS, &o[0], ZORVS_COEF_VIF, &o[1], ZORVS_COEF_COVARIANCES,
                                &o[2], ZORVS_ANOVA_TABLE, &o[3], 0); std::free(info); return none(o);),
    TWINS(regression_prediction, true, Info<T> *info = fit(d); T *o[12] = {};
          T *p = R(regression_prediction)(info, 20, d.x, ZORVS_Y, d.y, ZORVS_SCHEFFE_CI, &o[0], &o[1],
                                          ZORVS_CI_POP_MEAN, &o[2], &o[3], ZORVS_CI_NEW_SAMPLE, &o[4], &o[5],
                                          ZORVS_RESIDUAL, &o[6], ZORVS_STANDARDIZED_RESIDUAL, &o[7],
                                          ZORVS_DELETED_RESIDUAL, &o[8], ZORVS_COOKSD, &o[9], ZORVS_DFFITS, &o[10],
                                          ZORVS_LEVERAGE, &o[11], 0); std::free(info); return none(p, o);),
    // Analysis of variance.
    TWINS(anova_oneway, true, T *o[4] = {}; int *c = nullptr;
          R(anova_oneway)(3, d.n, d.x, ZORVS_ANOVA_TABLE, &o[0], ZORVS_GROUP_COUNTS, &c, ZORVS_GROUP_MEANS, &o[1],
                          ZORVS_GROUP_STD_DEVS, &o[2], ZORVS_TUKEY, &o[3], 0); return none(o, c);),
    TWINS(multiple_comparisons, true, return none(R(multiple_comparisons)(6, d.x, 30, T(0.4), 0));),
    // Categorical data and tests.
    TWINS(sign_test, false, int k = -1;
          return !std::isnan(R(sign_test)(40, d.x, ZORVS_PERCENTILE, 3.0, ZORVS_N_POSITIVE_DEVIATIONS, &k, 0));),
    TWINS(wilcoxon_rank_sum, true, T *s = nullptr; R(wilcoxon_rank_sum)(20, d.x, 20, d.y, ZORVS_STAT, &s, 0);
          return none(s);),
    TWINS(normality_test, true, T w = -7;
          return std::isnan(R(normality_test)(40, d.x, ZORVS_SHAPIRO_WILK, &w, 0)) && w == T(-7);),
    TWINS(normality_test, true, T w = -7;
          return std::isnan(R(normality_test)(40, d.x, ZORVS_LILLIEFORS, &w, 0)) && w == T(-7);),
    TWINS(contingency_table, true, T *o[4] = {}; for (int i = 0; i < 12; ++i) d.y[i] = T(3 + i % 5);
          R(contingency_table)(3, 4, d.y, ZORVS_EXPECTED, &o[0], ZORVS_CHI_SQUARED_CONTRIBUTIONS, &o[1],
                               ZORVS_CHI_SQUARED_STATISTICS, &o[2], ZORVS_STATISTICS, &o[3], 0); return none(o);),
    TWINS(chi_squared_test, true, T *o[3] = {}; const T cut[3] = {2, 3, 4};
          const T p = R(chi_squared_test)(uniform_cdf<T>, 4, 40, d.x,
                                          ZORVS_CUTPOINTS, cut, ZORVS_EXPECTED, &o[0],
                                          ZORVS_CHI_SQUARED_CONTRIBUTIONS, &o[1], ZORVS_CELL_COUNTS, &o[2], 0);
          return none(o) && std::isnan(p);),
    // Permutations.
    TWINS(permute_vector, true, return none(R(permute_vector)(6, d.x, d.perm, ZORVS_FORWARD_PERMUTATION, 0));),
    TWINS(permute_matrix, true, return none(R(permute_matrix)(6, 2, d.x, d.perm, ZORVS_PERMUTE_ROWS, 0));),
    // Multivariate analysis.
    TWINS(cluster_k_means, true, T *m = nullptr, *s = nullptr; int *c = nullptr;
          int *r = R(cluster_k_means)(20, 2, d.x, 2, d.seeds, ZORVS_CLUSTER_MEANS, &m, ZORVS_CLUSTER_SSQ, &s,
                                      ZORVS_CLUSTER_COUNTS, &c, ZORVS_FREQUENCIES, d.f, 0);
          return none(r, m, s, c);),
    TWINS(principal_components, true, T *o[4] = {};
          T *r = R(principal_components)(3, d.cov, ZORVS_EIGENVECTORS, &o[0], ZORVS_CORRELATIONS, &o[1],
                                         ZORVS_CUM_PERCENT, &o[2], ZORVS_STD_DEV, 20, &o[3], 0);
          return none(r, o);),
    // Time series.
    TWINS(difference, true, int lost = -1;
          return none(R(difference)(40, d.x, 1, d.one, ZORVS_ORDERS, d.one, ZORVS_NUM_LOST, &lost, 0)) && lost == -1;),
    TWINS(arma, true, T *o[3] = {}; void *info = nullptr;
          T *r = R(arma)(80, d.z, 1, 1, ZORVS_LEAST_SQUARES, ZORVS_RESIDUAL, &o[0], ZORVS_PARAM_EST_COV, &o[1],
                         ZORVS_AUTOCOV, &o[2], ZORVS_ARMA_INFO, &info, 0); return none(r, o, info);),
    TWINS(arma, true, void *info = nullptr; return none(R(arma)(40, d.x, 2, 1, ZORVS_ARMA_INFO, &info, 0), info);),
    TWINS(arma_forecast, true, zorvs_arma_info *info = nullptr; T *psi = nullptr; Data<double> e;
          before_the_call([&] {
              std::free(zorvs_d_arma(40, e.x, 1, 1, ZORVS_LEAST_SQUARES, ZORVS_ARMA_INFO, &info, 0));
          });
          T *r = R(arma_forecast)(info, 5, ZORVS_PSI_WEIGHTS, &psi, 0); std::free(info); return none(r, psi);),
};

#undef ROW
#undef TWINS
#undef TWINS_STANDING
#undef R

// Each row: every allocation it reaches fails in turn, cleanly.
TEST(AllocationFailure, EveryRoutineEndsCleanlyAtEachAllocation) {
    zorvs_test::UnitCapture output(false);
    int failures = 0, recovered = 0;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.routine);
        const int reached = zorvs_test::each_allocation_failing(row.call, row.standing, &recovered);
        EXPECT_EQ(reached > 0, row.allocates) << "allocations reached: " << reached;
        failures += reached;
        output.take();
    }
    EXPECT_GT(recovered, 0);  // the regressors' transposition without its buffer
    std::printf("[measure] allocation failure: %zu rows, %d failing allocations, %d of them recovered\n",
                std::size(rows), failures, recovered);
}

// Every routine the public header declares has a row, and every routine a
// row names is declared.
TEST(AllocationFailure, EveryPublicRoutineHasARow) {
    std::ifstream header(ZORVS_TEST_DATA_DIR "/../../include/zorvstat.h");
    ASSERT_TRUE(header) << "public header not found";
    const std::regex prototype(R"(^[a-z][a-z_ ]*[ *]+(zorvs_\w+)\()");
    std::set<std::string> declared, listed;
    for (std::string line; std::getline(header, line);)
        if (std::smatch m; std::regex_search(line, m, prototype)) declared.insert(m[1]);
    for (const Row &row : rows) {  // "zorvs_f_ erf erfc" lists zorvs_f_erf and zorvs_f_erfc
        std::istringstream words(row.routine);
        std::string prefix;
        for (std::string w; words >> w;)
            if (w.back() == '_') prefix = w;
            else listed.insert(prefix + w);
    }
    EXPECT_GT(declared.size(), 100u);
    for (const std::string &name : declared) EXPECT_TRUE(listed.count(name)) << name << " has no row";
    for (const std::string &name : listed) EXPECT_TRUE(declared.count(name)) << name << " is not declared";
}

}  // namespace
