// random_calls_test.cpp - the keyword routines and some distributions called
// with random arguments and keyword lists, as a careless or hostile caller
// would: missing, infinite, huge and subnormal reals, counts of 0 and -1,
// bad shuffle tables, odd formats, labels, options and page sizes (but never
// a count larger than the array it describes).  A fixed seed and a bounded
// number of calls keep it to seconds under the sanitizers, which make it
// worth running.  What must hold: the call returns (a watchdog ends the
// process of one that hangs), and each result lies within its support
// (counts add up, probabilities in [0, 1]) or comes with a message of type 3
// or above.  A second test runs the statistics families (regression, the
// multivariate routines, time series) the same way, a row each; under the
// sanitizer build these runs also look for reads and writes out of bounds
// and for leaks on every path.  The continuous distributions are fuzzed in
// tests/dist/fuzz_test.cpp.
#include "stat/regress/twins.hpp"
#include "support/tables.hpp"

namespace {

// The routine of twin T: R(random_gamma) is zorvs_f_random_gamma for float.
#define R(name) ::zorvs_test::twin<T>(zorvs_f_##name, zorvs_d_##name)

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
    // A real of the data: awkward one time in five, else in [-5, 5).
    double value() { return pick(5) == 0 ? real() : 10 * unit() - 5; }
    // A message that fails a call (type 4 or 5) since the log was cleared.
    bool failed() const {
        return std::any_of(log.entries().begin(), log.entries().end(), [](auto e) { return e.first == 4 || e.first == 5; });
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
    const int n = c.count(40), keep = n > 0 && n <= 1000 ? n : 0;  // what a result holds
    const int given = keep ? n : c.pick(2) - 1;                     // no huge allocations
    T data[200];
    for (T &v : data) v = static_cast<T>(c.pick(3) ? c.unit() * 20 - 5 : c.real());
    const T p = static_cast<T>(c.real()), q = static_cast<T>(c.real());
    SCOPED_TRACE(::testing::Message() << "n " << n << ", parameters " << p << ", " << q);
    switch (routine) {
        case 0:  // uniforms, sometimes after a new option or shuffle table
            if (c.pick(4) == 0) zorvs_random_option(c.pick(8) - 1);
            if (c.pick(8) == 0) ::zorvs_test::twin<T>(zorvs_rnses, zorvs_drnses)(data);
            c.check(R(random_uniform)(given, 0), keep, [](T u) { return u > 0 && u < 1; }, "uniform");
            c.check(::zorvs_test::twin<T>(zorvs_f_random_normal, zorvs_d_random_exponential)(given, 0), keep, [](T z) { return std::isfinite(z); }, "normal or exponential");
            break;
        case 1: c.check(R(random_gamma)(given, p, 0), keep, [](T g) { return g >= 0; }, "gamma"); break;
        case 2: c.check(R(random_beta)(given, p, q, 0), keep, [](T b) { return b >= 0 && b <= 1; }, "beta"); break;
        case 3: c.check(zorvs_random_poisson(given, float(p), 0), keep, [](int k) { return k >= 0; }, "poisson"); break;
        case 4: {  // multivariate normal, covariance of order 1 to 3: a non-finite one gives missing deviates
            const int l = 1 + c.pick(3), m = std::min(keep, 20);
            for (int i = 0; i < 9; ++i) data[i] = c.pick(2) ? data[i] : T(i % 4 == 0);
            const bool finite = std::all_of(data, data + 9, [](T v) { return std::isfinite(v); });
            c.check(R(random_normal_multivariate)(m, l, data, 0), m * l, [&](T z) { return std::isfinite(z) || !finite; }, "mvn");
            break;
        }
        case 5: {  // one-way table in one of its modes: the counts add up
            const int obs = std::min(keep, 40), k = c.pick(10) - 1, mode = c.pick(4);
            T *x = data + 100, *cut = data, lo = 0, hi = 0;
            std::sort(cut, cut + (c.pick(3) ? 8 : 0));
            T *t = mode == 0   ? R(table_oneway)(obs, x, k, ZORVS_DATA_BOUNDS, &lo, &hi, 0)
                   : mode == 1 ? R(table_oneway)(obs, x, k, ZORVS_KNOWN_BOUNDS, double(p), double(q), 0)
                               : R(table_oneway)(obs, x, k, mode == 2 ? ZORVS_CUTPOINTS : ZORVS_CLASS_MARKS, cut, 0);
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
            std::free(k < 4   ? R(simple_statistics)(obs, vars, data, keywords[k], 0)
                      : k < 5 ? R(simple_statistics)(obs, vars, data, ZORVS_CONFIDENCE_MEANS, double(p), 0)
                              : R(simple_statistics)(obs, vars, data, k < 6 ? ZORVS_FREQUENCIES : ZORVS_WEIGHTS, data + 100, 0));
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
                case 0: R(write_matrix)("Random", rows, columns, data, ZORVS_WRITE_FORMAT, formats[c.pick(8)], part, 0); break;
                case 1: R(write_matrix)("Random\ncall", rows, columns, data, ZORVS_TRANSPOSE, ZORVS_ROW_NUMBER_ZERO, 0); break;
                case 2: R(write_matrix)(labels[0], rows, columns, data, ZORVS_ROW_LABELS, labels, ZORVS_COL_LABELS, labels, 0); break;
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
            T *one = R(normal_one_sample)(obs, data, ZORVS_HYPOTHESIZED_VARIANCE, double(p), ZORVS_CONFIDENCE_VARIANCES, double(q), 0);
            T *two = R(normal_two_sample)(obs, data, std::min(keep, 15), data + 20, ZORVS_HYPOTHESIZED_RATIO, double(q), 0);
            T *cor = R(covariances)(obs, vars, data, ZORVS_CORRELATION_MATRIX, c.pick(2) ? ZORVS_MISSING_ELEMENTWISE : 0,
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
            c.check(R(ranks)(obs, data, ties[c.pick(4)], scores[score], ZORVS_FUZZ, double(p), 0), obs,
                    [&](T r) { return std::isnan(r) || (r >= -top && r <= top); }, "ranks");
            std::sort(data + 100, data + 100 + 8);
            auto cdf = +[](T x) { return T(0.5) + std::atan(x) / T(3.14159265358979); };
            const int k = c.pick(10) - 1;
            c.probability(c.pick(2) ? R(chi_squared_test)(cdf, k, obs, data, ZORVS_CUTPOINTS, data + 100,
                                                          ZORVS_N_PARAMETERS_ESTIMATED, c.pick(3), 0)
                                    : R(chi_squared_test)(nullptr, k, obs, data, ZORVS_CUTPOINTS, data + 100,
                                                          ZORVS_EXPECTED_GIVEN, data + 150, 0),
                          false, "chi_squared_test");
            break;
        }
        case 11: {  // sign, rank-sum and normality tests: p-values in [0, 1], W in [0, 1]
            const int obs = std::min(keep, 100);
            T w = 0, d = 0;
            c.probability(R(sign_test)(given, data, ZORVS_PERCENTAGE, double(c.unit()), ZORVS_PERCENTILE, double(p), 0),
                          false, "sign_test");
            c.probability(R(wilcoxon_rank_sum)(obs, data, std::min(keep, 90), data + 100, ZORVS_FUZZ, double(q), 0),
                          false, "wilcoxon_rank_sum");
            c.probability(c.pick(2) ? R(normality_test)(obs, data, ZORVS_SHAPIRO_WILK, &w, 0)
                                    : R(normality_test)(obs, data, ZORVS_LILLIEFORS, &d, 0),
                          false, "normality_test");
            if (!(w >= 0 && w <= 1)) {
                EXPECT_TRUE(std::isnan(w) || c.highest() >= 3) << "W = " << w;
            }
            break;
        }
        default: {  // discrete distributions, and the gamma one near its centre at any shape
            const int k = c.count(60), m = c.count(60), l = c.count(100);
            const T unit = static_cast<T>(c.unit()), a = static_cast<T>(std::pow(10.0, 40 * c.unit()));
            const T x = a + p * std::sqrt(a), chance = c.pick(2) ? unit : p;
            c.probability(R(poisson_cdf)(k, q), std::isnan(q), "poisson_cdf");
            c.probability(R(binomial_cdf)(k, n, chance), std::isnan(chance), "binomial_cdf");
            c.probability(R(hypergeometric_cdf)(k, n, m, l), false, "hypergeometric_cdf");
            c.probability(R(gamma_cdf)(x, a), std::isnan(x), "gamma_cdf");
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
        const int routine = c.pick(12);
        SCOPED_TRACE(::testing::Message() << "call " << call << ", routine " << routine);
        if (c.pick(2)) one_call<float>(c, routine);
        else one_call<double>(c, routine);
        output.take();
        quiet.errors.take();
    }
    alarm(0);
    zorvs_random_option(1);
}

// The same bits, NaN included: what a routine must leave of its input.
template <class T>
bool same(const std::vector<T> &a, const std::vector<T> &b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

// Regressors of a general linear model by model order or by effects: a
// count of 0 with every failure, the same regressors in both output forms.
template <class T>
void glm_call(Caller &c) {
    using zorvs_test::glm;
    const int n = 1 + c.pick(8), n_class = c.pick(3), n_cont = c.pick(3), ld = n_class + n_cont + c.pick(2);
    std::vector<T> x(std::size_t(n) * std::max(ld, 1));
    for (std::size_t i = 0; ld > 0 && i < x.size(); ++i)
        x[i] = T(int(i) % ld < n_class && c.pick(6) ? 1 + c.pick(3) : c.value());
    const std::vector<T> before = x;
    int sizes[3], columns[9], effects = 1 + c.pick(3), total = 0;
    for (int e = 0; e < effects; ++e)
        for (int m = sizes[e] = 1 + c.pick(3); m > 0; --m) columns[total++] = c.pick(std::max(ld, 1));
    const int scheme = 1 + c.pick(3), order = 1 + c.pick(2);
    const bool by_effects = c.pick(2);
    auto call = [&](auto... out) {
        return by_effects ? glm<T>(n, x.data(), n_class, n_cont, ZORVS_X_COL_DIM, ld, ZORVS_DUMMY, scheme,
                                   ZORVS_INDICES_EFFECTS, effects, sizes, columns, out..., 0)
                          : glm<T>(n, x.data(), n_class, n_cont, ZORVS_X_COL_DIM, ld, ZORVS_DUMMY, scheme,
                                   ZORVS_MODEL_ORDER, order, out..., 0);
    };
    const int count = call();
    EXPECT_TRUE(!c.failed() || count == 0);
    EXPECT_TRUE(n_class + n_cont >= 1 || c.failed());
    if (count > 0 && !c.failed()) {
        T *made = nullptr;
        std::vector<T> mine(std::size_t(n) * (count + 1), T(-7)), packed;
        EXPECT_EQ(call(ZORVS_REGRESSORS, &made), count);
        EXPECT_EQ(call(ZORVS_REGRESSORS_USER, mine.data(), ZORVS_REGRESSORS_COL_DIM, count + 1), count);
        for (std::size_t i = 0; i < mine.size(); ++i)
            if (int(i) % (count + 1) < count) packed.push_back(mine[i]);
            else EXPECT_EQ(mine[i], T(-7));
        EXPECT_TRUE(made && same(packed, std::vector<T>(made, made + packed.size())));
        std::free(made);
    }
    EXPECT_TRUE(same(x, before));
}

// The regression fit with every output, frequencies, weights and repeated
// rows: a result and a record exactly when nothing failed; then the summary
// and the prediction of the record.
template <class T>
void regression_call(Caller &c) {
    const int n = 1 + c.pick(9), nv = 1 + c.pick(4), ld = nv + c.pick(2);
    std::vector<T> x(std::size_t(n) * ld), y(n), f(n), w(n);
    for (T &v : x) v = T(c.pick(4) ? 3 * c.unit() : c.value());
    for (int i = 0; i < n; ++i) {
        y[i] = T(c.pick(4) ? c.unit() : c.value());
        f[i] = T(c.pick(8) ? c.pick(3) : c.value());
        w[i] = T(c.pick(8) ? 2 * c.unit() : c.value());
    }
    for (int i = 1; c.pick(3) == 0 && i < n; ++i) x[i * ld] = x[(i - 1) * ld];
    const std::vector<T> before = x;
    const T *freq = c.pick(3) == 0 ? f.data() : nullptr, *wt = c.pick(3) == 0 ? w.data() : nullptr;
    const bool no_intercept = c.pick(3) == 0;
    T *aov = nullptr, *cov = nullptr, *means = nullptr, *res = nullptr;
    zorvs_test::Info<T> *info = nullptr;
    int rank = 0;
    auto call = [&](auto... more) {
        return zorvs_test::fit<T>(n, nv, x.data(), y.data(), ZORVS_X_COL_DIM, ld, ZORVS_FREQUENCIES, freq,
                                  ZORVS_WEIGHTS, wt, ZORVS_ANOVA_TABLE, &aov, ZORVS_COEF_COVARIANCES, &cov,
                                  ZORVS_X_MEAN, &means, ZORVS_RESIDUAL, &res, ZORVS_REGRESSION_INFO, &info, ZORVS_RANK,
                                  &rank, more..., 0);
    };
    T *b = no_intercept ? call(ZORVS_NO_INTERCEPT) : call(ZORVS_TOLERANCE, c.pick(4) ? 1e-5 : 2.0);
    // A result and a record together, and neither exactly after a failure.
    EXPECT_EQ(b == nullptr, c.failed());
    EXPECT_EQ(info == nullptr, b == nullptr);
    if (info) {
        EXPECT_EQ(info->n_parameters, nv + !no_intercept);
        EXPECT_LE(info->rank, info->n_parameters);
        EXPECT_LE(info->rows_missing, n);
    }
    EXPECT_TRUE(same(x, before));
    if (info) {  // the summary and prediction of whatever record came out: all their outputs or none
        T *tests = nullptr, *vif = nullptr, *lev = nullptr, *del = nullptr, *lo = nullptr, *hi = nullptr;
        c.log.clear();
        zorvs_test::summary<T>(info, ZORVS_COEF_T_TESTS, &tests, ZORVS_COEF_VIF, &vif, 0);
        EXPECT_EQ(tests == nullptr || vif == nullptr, c.failed());
        c.log.clear();
        T *pred = zorvs_test::predict<T>(info, n, x.data(), ZORVS_X_COL_DIM, ld, ZORVS_Y, y.data(), ZORVS_WEIGHTS,
                                         w.data(), ZORVS_LEVERAGE, &lev, ZORVS_DELETED_RESIDUAL, &del, ZORVS_SCHEFFE_CI,
                                         &lo, &hi, ZORVS_CONFIDENCE, 90.0, 0);
        EXPECT_EQ(pred == nullptr || lev == nullptr || lo == nullptr, c.failed());
        for (int i = 0; lev && pred && i < n; ++i)  // a residual known: the leverage clamped to 1
            EXPECT_FALSE(lev[i] > T(1) && std::isfinite(y[i] - pred[i]));
        for (T *p : {tests, vif, pred, lev, del, lo, hi}) std::free(p);
    }
    for (void *p : {(void *)b, (void *)aov, (void *)cov, (void *)means, (void *)res, (void *)info}) std::free(p);
}

// k-means, principal components and the permutations on odd sizes, NaN,
// infinities, zeros and repeated seeds: cluster numbers in 1..k or a
// terminal message; no eigenvalues only with a message of type 4 or above.
void multivariate_call(Caller &c) {
    const int m = 1 + c.pick(12), nv = 1 + c.pick(4), k = c.pick(6), n = 1 + c.pick(5);
    std::vector<double> x(m * nv), seeds(6 * nv), f(m), a(n * n);
    for (double &v : x) v = c.pick(10) < 3 ? c.real() : 10 * c.unit() - 5;
    for (double &v : seeds) v = c.pick(3) ? x[c.pick(int(x.size()))] : c.real();
    for (double &v : f) v = c.pick(8) ? 1 + c.pick(3) : c.real();
    int *cl = zorvs_d_cluster_k_means(m, nv, x.data(), k, seeds.data(), ZORVS_MAX_ITERATIONS, c.pick(4),
                                      ZORVS_FREQUENCIES, c.pick(2) ? f.data() : nullptr, 0);
    for (int i = 0; cl && i < m; ++i) EXPECT_TRUE(cl[i] >= 1 && cl[i] <= k);
    EXPECT_TRUE(cl || c.highest() == 5);
    std::free(cl);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j <= i; ++j) a[i * n + j] = a[j * n + i] = c.pick(6) ? c.value() : 0;
    c.log.clear();
    double *values = zorvs_d_principal_components(n, a.data(), c.pick(2) ? ZORVS_CORRELATION_MATRIX : 0, 0);
    EXPECT_EQ(values == nullptr, c.highest() >= 4);
    std::free(values);
    std::vector<int> p(n);
    for (int &e : p) e = c.pick(n + 1) - (c.pick(9) == 0);
    std::free(zorvs_d_permute_vector(n, a.data(), p.data(), 1 + c.pick(2), 0));
    std::free(zorvs_d_permute_matrix(n, n, a.data(), p.data(), 3 + c.pick(2), 0));
}

// ARMA by either method and differencing, on awkward series, orders, lags,
// backcasts and tolerances: no result only with a message of type 4 or
// above, a value that is not finite only with one of type 3 or above.
void series_call(Caller &c) {
    static const double awkward[] = {INFINITY, -INFINITY, 0.0, 1e-310, 1e300, -1e300, 1e38, 3e9, 1.0};
    const int n = c.pick(4) == 0 ? c.pick(6) : 5 + c.pick(120);
    double z[130], ar[4] = {c.unit() * 4 - 2, 0.1, 0.1, 0.1}, ma[4] = {c.unit() * 4 - 2, 0, 0, 0};
    for (double &v : z) v = c.pick(40) == 0 ? awkward[c.pick(9)] : (c.pick(8) == 0 ? 2.0 : c.unit() * 10);
    int p = c.pick(10) == 0 ? -1 : c.pick(4), q = c.pick(4), lags[8], orders[2] = {c.pick(4) - 1, c.pick(3)};
    for (int &l : lags) l = c.pick(6) == 0 ? c.pick(200) - 10 : 1 + c.pick(12);
    const int length = c.pick(5) == 0 ? c.pick(30) - 3 : 10, k = p + q + 1;
    const double tol = c.pick(3) == 0 ? awkward[c.pick(9)] : 1e-8, thr = c.pick(3) == 0 ? c.unit() : 0.0;
    double *x = nullptr;
    switch (c.pick(4)) {
        case 0: x = zorvs_d_arma(n, z, p, q, 0); break;
        case 1:
            x = zorvs_d_arma(n, z, p, q, ZORVS_LEAST_SQUARES, ZORVS_AR_LAGS, lags, ZORVS_MA_LAGS, lags + 4,
                             ZORVS_BACKCASTING, length, thr, ZORVS_CONVERGENCE_TOLERANCE, tol, ZORVS_MAX_ITERATIONS, 20, 0);
            break;
        case 2:
            x = zorvs_d_arma(n, z, p, q, ZORVS_LEAST_SQUARES, ZORVS_INITIAL_ESTIMATES, ar, ma, ZORVS_NO_CONSTANT,
                             ZORVS_MAX_ITERATIONS, 20, 0);
            break;
        default:
            x = zorvs_d_difference(n, z, 2, lags, ZORVS_ORDERS, orders, 0);
            EXPECT_EQ(x == nullptr, c.highest() >= 4) << "difference";
            std::free(x);
            return;
    }
    EXPECT_TRUE(x || c.highest() >= 4) << "arma: no result and no error";
    for (int i = 0; x && i < k; ++i)
        if (!std::isfinite(x[i])) {
            EXPECT_GE(c.highest(), 3) << "arma[" << i << "] = " << x[i] << " with no message";
            break;
        }
    std::free(x);
}

// One-way analysis of variance with any comparison method at odd levels,
// empty and negative group sizes: a p-value NaN or in [0, 1], each
// interval around its difference.  Student-Newman-Keuls on odd means,
// errors, degrees of freedom and levels: a grouping counts means that
// exist, and none only with a message of type 4 or above.
void anova_call(Caller &c) {
    static const int methods[] = {0, ZORVS_TUKEY_USER, ZORVS_DUNN_SIDAK_USER, ZORVS_BONFERRONI_USER,
                                  ZORVS_SCHEFFE_USER, ZORVS_ONE_AT_A_TIME_USER};
    static const double levels[] = {95, 90, 99.5, 30, 0, -1}, alphas[] = {0.01, 0.05, 0.2, 0.005};
    const int k = c.pick(6), method = methods[c.pick(6)];
    std::vector<int> n(k + 1);
    for (int &v : n) v = c.pick(12) ? c.pick(5) : -1;
    std::vector<double> y(24), rows(75, -7), table(15), means(k + 1);
    for (double &v : y) v = c.pick(4) ? 1 + c.unit() : c.value();
    const double p = zorvs_d_anova_oneway(k, n.data(), y.data(), ZORVS_ANOVA_TABLE_USER, table.data(),
                                          ZORVS_CONFIDENCE, levels[c.pick(6)],
                                          method == ZORVS_TUKEY_USER && c.pick(4) ? 0 : method, rows.data(), 0);
    c.probability(p, true, "anova_oneway");
    for (int r = 0; method && c.highest() < 4 && r < k * (k - 1) / 2; ++r)
        EXPECT_FALSE(rows[5 * r + 3] > rows[5 * r + 2] || rows[5 * r + 4] < rows[5 * r + 2]) << r;
    if (c.pick(25)) return;  // each grouping costs quantiles of the range
    c.log.clear();
    for (double &v : means) v = c.pick(3) ? 10 * c.unit() : c.value();
    int *eq = zorvs_d_multiple_comparisons(k, means.data(), c.pick(30) - 1, c.pick(5) ? c.unit() : -1, ZORVS_ALPHA,
                                           alphas[c.pick(4)], 0);
    EXPECT_EQ(eq == nullptr, c.highest() >= 4);
    for (int i = 0; eq && i < k - 1; ++i) EXPECT_TRUE(eq[i] >= 0 && eq[i] <= k - i) << i;
    std::free(eq);
}

// Contingency tables of odd shapes and entries with random keyword lists: a
// refused call (type 4 or 5 at user level) returns 0 and hands nothing
// over, any other gives a p-value NaN or in [0, 1].
void contingency_call(Caller &c) {
    const int r = 1 + c.pick(6), k = 1 + c.pick(6);
    std::vector<double> table(r * k), expected((r + 1) * (k + 1)), stats(115);
    static const double odd[] = {0, NAN, INFINITY, 1e300, 1e-300, -1, 0.5, 1e6};
    for (double &v : table) v = c.pick(10) ? c.pick(20) : odd[c.pick(8)];
    double *allocated = nullptr, x2 = 0, p = 0;
    int df = 0;
    const int pick = c.pick(4);
    zorvs_e1mes(0, 0, " ");  // no message on record at user level
    const double got =
        pick == 0   ? zorvs_d_contingency_table(r, k, table.data(), 0)
        : pick == 1 ? zorvs_d_contingency_table(r, k, table.data(), ZORVS_LRT, &df, &x2, &p, 0)
        : pick == 2 ? zorvs_d_contingency_table(r, k, table.data(), ZORVS_STATISTICS, &allocated, ZORVS_EXPECTED_USER,
                                                expected.data(), 0)
                    : zorvs_d_contingency_table(r, k, table.data(), ZORVS_CHI_SQUARED, &df, &x2, &p,
                                                ZORVS_STATISTICS_USER, stats.data(), ZORVS_CHI_SQUARED_CONTRIBUTIONS,
                                                &allocated, 0);
    const int type = zorvs_error_type();
    if (type == 4 || type == 5) EXPECT_TRUE(got == 0 && allocated == nullptr) << type << ", " << zorvs_error_code();
    else c.probability(got, true, "contingency_table");
    std::free(allocated);
}

// The statistics families, each a row: its calls and how many.
TEST(RandomCalls, StatisticsFamiliesSurviveAnyArguments) {
    const struct {
        const char *name;
        int calls;
        void (*call)(Caller &);
    } families[] = {
        {"regressors_for_glm", 800, [](Caller &c) { c.pick(2) ? glm_call<float>(c) : glm_call<double>(c); }},
        {"regression", 1200, [](Caller &c) { c.pick(2) ? regression_call<float>(c) : regression_call<double>(c); }},
        {"multivariate", 300, multivariate_call},
        {"series", 3000, series_call},
        {"anova", 300, anova_call},
        {"contingency_table", 400, contingency_call},
    };
    zorvs_test::Quiet quiet;
    Caller c;
    alarm(120);
    for (const auto &f : families)
        for (int call = 0; call < f.calls; ++call) {
            SCOPED_TRACE(::testing::Message() << f.name << " call " << call);
            c.log.clear();
            f.call(c);
            quiet.errors.take();
        }
    alarm(0);
}

}  // namespace
