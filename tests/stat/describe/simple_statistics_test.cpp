// simple_statistics_test.cpp - simple statistics: hard data against exact
// moments (tests/data/stat/describe/simple_statistics_ref.inc,
// make_simple_statistics.py, which also gives the t and chi-squared
// quantiles of the limits), the table's layout and confidence limits, and
// the special cases (one observation, a constant column, missing values,
// weights and frequencies) and bad input as rows.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/describe/simple_statistics_ref.inc"
const double quantiles[] = {SIMPLE_STATISTICS_QUANTILES};

enum { MEAN, VAR, SD, SKEW, KURT, MIN, MAX, RANGE, CV, COUNT, MLO, MHI, VLO, VHI, MED, MAD, SCALE };

// The set's statistics in twin T, with its frequencies and weights (none
// given: the common case's pass of its own).
template <class T>
T *statistics(const ReferenceSet &set, std::vector<T> &x) {
    std::vector<T> f(set.frequencies.begin(), set.frequencies.end()), w(set.weights.begin(), set.weights.end());
    return twin<T>(zorvs_f_simple_statistics, zorvs_d_simple_statistics)(
        set.n, 1, x.data(), ZORVS_FREQUENCIES, f.empty() ? nullptr : f.data(), ZORVS_WEIGHTS, w.empty() ? nullptr : w.data(), 0);
}

// Measured: at least 15.5 digits for the mean and 15 for the variance and
// standard deviation on every set, pinned with a digit to spare; skewness
// and kurtosis near 0 compared absolutely; the data left as they were.  The
// single twin on the modest sets within 2e-5.
TEST(SimpleStatistics, HardDataAgreesWithExactMomentsInBothTwins) {
    Quiet q;
    const double bars[5] = {3.16e-15, 1e-14, 1e-14, 1e-13, 1e-13};
    for (const auto &set : reference_sets) {
        SCOPED_TRACE(set.name);
        std::vector<double> x = set.x;
        std::vector<float> xf(set.x.begin(), set.x.end());
        const bool modest = set.name == std::string("small_integers") || set.name == std::string("weights");
        double *t = statistics(set, x);
        float *tf = modest ? statistics(set, xf) : nullptr;
        ASSERT_NE(t, nullptr);
        // relative for the mean, variance and sd, absolute near 0 for skewness and kurtosis
        for (int k = 0; k < 5; ++k) {
            const double floor = k < 3 ? 0 : 1;
            EXPECT_LE(relative_error(t[k], set.exact[k], floor), bars[k]) << k;
            if (tf) { EXPECT_LE(relative_error(tf[k], set.exact[k], 1), 2e-5) << k; }
        }
        EXPECT_EQ(t[COUNT], set.exact[5]);
        EXPECT_EQ(x, set.x);
        std::free(t);
        std::free(tf);
    }
    EXPECT_EQ(q.errors.text(), "");
}

// Two variables, the small integers and their negatives times 2, in a data
// set of three columns and a table of four: the third column is not read,
// and the table's columns beyond the variables stay the caller's.  Other
// levels by value and by address; 0 leaves the rows NaN.
TEST(SimpleStatistics, TableLayoutAndConfidenceLimits) {
    const ReferenceSet &ints = reference_sets[6];
    ASSERT_EQ(ints.name, std::string("small_integers"));
    const int n = ints.n;
    std::vector<double> x(n * 3, 77.0), table(17 * 4, -1.0);
    for (int i = 0; i < n; ++i) x[i * 3] = ints.x[i], x[i * 3 + 1] = -2 * ints.x[i];
    const std::vector<double> before = x;
    const double mean = ints.exact[0], var = ints.exact[1], sd = ints.exact[2], half = quantiles[0] * sd / std::sqrt(15.0);
    double *t = zorvs_d_simple_statistics(n, 2, x.data(), ZORVS_X_COL_DIM, 3, ZORVS_STAT_COL_DIM, 4,
                                          ZORVS_MEDIAN_AND_SCALE, ZORVS_RETURN_USER, table.data(), 0);
    ASSERT_EQ(t, table.data());
    EXPECT_EQ(x, before);
    const struct {
        int row, column;
        double want, tol;
    } cells[] = {{MEAN, 0, mean, 1e-14 * mean}, {MEAN, 1, -2 * mean, 1e-14 * mean}, {SD, 1, 2 * sd, 1e-13 * sd},
                 {MIN, 0, 1, 0}, {MAX, 0, 9, 0}, {RANGE, 1, 16, 0}, {CV, 0, sd / mean, 1e-13}, {COUNT, 1, 15, 0},
                 {MLO, 0, mean - half, 1e-6}, {MHI, 0, mean + half, 1e-6}, {VLO, 0, var * 14 / quantiles[1], 1e-6 * var},
                 {VHI, 0, var * 14 / quantiles[2], 1e-6 * var}, {MED, 0, 5, 0}, {MAD, 0, 2, 0}, {MED, 1, -10, 0},
                 {MAD, 1, 4, 0}, {SCALE, 0, 2 / quantiles[6], 1e-6}};
    for (const auto &c : cells) EXPECT_NEAR(t[c.row * 4 + c.column], c.want, c.tol) << c.row << ", " << c.column;
    for (int row = 0; row < 17; ++row) EXPECT_TRUE(t[row * 4 + 2] == -1.0 && t[row * 4 + 3] == -1.0) << row;
    double level = 90.0;
    double *u = zorvs_d_simple_statistics(n, 2, x.data(), ZORVS_X_COL_DIM, 3, ZORVS_CONFIDENCE_MEANS_ADR, &level,
                                          ZORVS_CONFIDENCE_VARIANCES, 0.0, 0);
    EXPECT_NEAR(u[MHI * 2], mean + quantiles[3] * sd / std::sqrt(15.0), 1e-6);
    EXPECT_TRUE(std::isnan(u[VLO * 2]) && std::isnan(u[VHI * 2 + 1]));
    std::free(u);
}

// Special cases: each call's table cells (row, variable: value, NaN a NaN)
// and the notes of type 6 it gives.
struct Special {
    const char *what;
    std::function<double *()> call;
    int variables;
    std::vector<std::array<double, 3>> cells;
    std::vector<int> notes = {}, no_notes = {};
};

TEST(SimpleStatistics, SpecialCasesAsRows) {
    double one[] = {4.5, -1.0}, same[] = {3.0, 3.0, 3.0, 3.0}, x[] = {1, 2, 100, 3}, w[] = {1, 1, 0, 1};
    double y[] = {1, 5, 6}, f[] = {2.5, 1, 1}, ones[] = {1, 1, 1, 1}, billions[] = {1, 1, 3e9};
    double m[] = {1.0, 10.0, NaN, 2.0, NaN, NaN, 3.0, 30.0, NaN, 4.0, 40.0, NaN};
    const std::vector<double> m_before(m, m + 12);
    const Special rows[] = {
        {"one observation", [&] { return zorvs_d_simple_statistics(1, 2, one, 0); }, 2,
         {{MEAN, 0, 4.5}, {MIN, 1, -1}, {MAX, 1, -1}, {COUNT, 0, 1}, {VAR, 0, NaN}, {SD, 0, NaN}, {SKEW, 0, NaN},
          {KURT, 0, NaN}, {RANGE, 0, NaN}, {CV, 0, NaN}, {MLO, 0, NaN}, {MHI, 0, NaN}, {VLO, 0, NaN}, {VHI, 0, NaN}},
         {11067}},
        {"constant column", [&] { return zorvs_d_simple_statistics(4, 1, same, 0); }, 1,
         {{VAR, 0, 0}, {SD, 0, 0}, {SKEW, 0, 0}, {KURT, 0, 0}, {RANGE, 0, 0}, {CV, 0, 0}, {MLO, 0, 3}, {VHI, 0, 0}},
         {11076}},
        // element-wise: a column of NaN has count 0, mean 0, range 0, and
        // extremes and spread NaN
        {"element-wise", [&] { return zorvs_d_simple_statistics(4, 3, m, ZORVS_MISSING_ELEMENTWISE, 0); }, 3,
         {{COUNT, 0, 4}, {COUNT, 1, 3}, {MEAN, 1, 80.0 / 3}, {COUNT, 2, 0}, {MEAN, 2, 0}, {RANGE, 2, 0}, {VAR, 2, NaN},
          {SKEW, 2, NaN}, {KURT, 2, NaN}, {MIN, 2, NaN}, {MAX, 2, NaN}, {CV, 2, NaN}, {MLO, 2, NaN}, {VHI, 2, NaN}},
         {11288, 11072}, {11062}},
        // list-wise, the first two variables, through the general drive
        // (frequencies): only rows without a NaN count
        {"list-wise",
         [&] { return zorvs_d_simple_statistics(4, 2, m, ZORVS_X_COL_DIM, 3, ZORVS_MEDIAN, ZORVS_FREQUENCIES, ones, 0); }, 2,
         {{COUNT, 0, 3}, {COUNT, 1, 3}, {MEAN, 0, 8.0 / 3}, {MED, 0, 3}, {MED, 1, 30}},
         {11062}, {11288}},
        {"zero weight counts", [&] { return zorvs_d_simple_statistics(4, 1, x, ZORVS_WEIGHTS, w, 0); }, 1,
         {{COUNT, 0, 4}, {MAX, 0, 100}, {MEAN, 0, 2}}},
        // fractional frequencies count, but repeat by truncation: 1, 1, 5, 6
        {"fractional frequencies", [&] { return zorvs_d_simple_statistics(3, 1, y, ZORVS_FREQUENCIES, f, ZORVS_MEDIAN, 0); },
         1, {{COUNT, 0, 4.5}, {MED, 0, 3}}},
        // a frequency of billions: the median and the deviation of 3e9 + 2 values, without their memory
        {"billions", [&] { return zorvs_d_simple_statistics(3, 1, y, ZORVS_FREQUENCIES, billions, ZORVS_MEDIAN_AND_SCALE, 0); },
         1, {{COUNT, 0, 3e9 + 2}, {MED, 0, 6}, {MAD, 0, 0}}},
    };
    Quiet q;
    CodeLog log;
    for (const Special &r : rows) {
        SCOPED_TRACE(r.what);
        log.clear();
        double *t = r.call();
        ASSERT_NE(t, nullptr);
        for (const auto &[row, column, want] : r.cells)
            EXPECT_TRUE(agrees(t[int(row) * r.variables + int(column)], want, 9e-16 * std::fabs(want))) << row << ", " << column;
        for (int code : r.notes) EXPECT_TRUE(log.has(6, code)) << code;
        for (int code : r.no_notes) EXPECT_FALSE(log.has_code(code)) << code;
        std::free(t);
    }
    EXPECT_EQ(0, std::memcmp(m, m_before.data(), sizeof m));
}

// The common case (list-wise, neither weights nor frequencies) runs a
// vectorised pass of its own: for 1 to 12 variables (the vector widths and
// their remainders), in both twins, columns j of (j + 1) times the small
// integers, a last row holding a NaN passed over, and a leading dimension
// wider than the variables.
ZORVS_TWIN_SUITE(SimpleStatisticsTwin);

TYPED_TEST(SimpleStatisticsTwin, VectorisedPassForAnyNumberOfVariables) {
    using T = TypeParam;
    const ReferenceSet &ints = reference_sets[6];
    const int n = ints.n + 1, ld = 13;
    const double tol = sizeof(T) == 4 ? 1e-6 : 1e-14;
    Quiet q;
    for (int nv : {1, 2, 3, 4, 5, 7, 8, 9, 12}) {
        std::vector<T> x(Index(n) * ld, T(7));
        for (int i = 0; i < ints.n; ++i)
            for (int j = 0; j < nv; ++j) x[i * ld + j] = T(ints.x[i] * (j + 1));
        x[ints.n * ld + nv - 1] = T(NaN);
        T *t = ZORVS_TWIN(f_simple_statistics, d_simple_statistics)(n, nv, x.data(), ZORVS_X_COL_DIM, ld, ZORVS_MEDIAN_AND_SCALE, 0);
        for (int j = 0; j < nv; ++j) {
            SCOPED_TRACE(::testing::Message() << nv << " variables, " << j);
            for (int k : {MEAN, SD, SKEW, KURT})
                EXPECT_LE(relative_error(t[k * nv + j], ints.exact[k] * (k == MEAN || k == SD ? j + 1 : 1), 1), tol) << k;
            EXPECT_TRUE(t[COUNT * nv + j] == 15 && t[MED * nv + j] == T(5 * (j + 1)) && t[MAD * nv + j] == T(2 * (j + 1)));
        }
        std::free(t);
    }
}

// Bad input: the message, a null result (the caller's storage back), the
// data untouched.
TEST(SimpleStatistics, BadInputAsRows) {
    double x[] = {1, 2, 3, 4}, good[] = {1, 1, 1, 1}, negative[] = {1, -2, 1, 1}, mine[14];
    float xf[] = {1, 2, 3}, negf[] = {1, 1, -1};
    auto no = [&](int n, int nv, auto... keys) { return zorvs_d_simple_statistics(n, nv, x, keys..., 0) == nullptr; };
    const int med = ZORVS_MEDIAN;
    expect_rows({
        {ZORVS_CALL(no(4, 1, ZORVS_FREQUENCIES, negative)), 1, 4, 11054, "i1=1 i2=2 r1=-2"},
        {ZORVS_CALL(no(4, 1, ZORVS_WEIGHTS, negative)), 1, 4, 11056},
        {ZORVS_CALL(no(1, 1, ZORVS_FREQUENCIES, good)), 1, 5, 11063},
        {ZORVS_CALL(no(4, 1, ZORVS_CONFIDENCE_MEANS, 100.0)), 1, 5, 11064, "r1=100"},
        {ZORVS_CALL(no(4, 1, ZORVS_CONFIDENCE_VARIANCES, 250.0)), 1, 5, 11065},
        {ZORVS_CALL(no(4, 1, med, ZORVS_MEDIAN_AND_SCALE)), 1, 5, 11117},
        {ZORVS_CALL(no(4, 1, med, med)), 1, 5, 11117},
        {ZORVS_CALL(no(4, 1, 12)), 1, 5, 11001},
        {ZORVS_CALL(no(0, 1)), 1, 5, 603},
        {ZORVS_CALL(no(2, 2, ZORVS_X_COL_DIM, 1)), 1, 5, 601},
        {ZORVS_CALL(x[0] == 1 && x[1] == 2 && x[2] == 3 && x[3] == 4), 1},
        {ZORVS_CALL(zorvs_f_simple_statistics(3, 1, xf, ZORVS_WEIGHTS, negf, 0) == nullptr && xf[2] == 3), 1, 4, 11056},
        {ZORVS_CALL(zorvs_d_simple_statistics(4, 1, x, ZORVS_RETURN_USER, mine, med, med, 0) == mine), 1, 5, 11117},
    });
}

}  // namespace
