// Simple statistics: accuracy on hard data against exact moments, weights
// and frequencies, both missing-value treatments, the type 6 finishing
// messages, confidence limits, median rows, and bad input.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

using zorvs_test::CodeLog;
using zorvs_test::Quiet;

struct ReferenceSet {
    const char *name;
    int n;
    std::vector<double> x, frequencies, weights;
    double exact[6];  // mean, variance, sd, skewness, excess kurtosis, count
};

const ReferenceSet reference_sets[] = {
#include "data/stat/describe/simple_statistics_ref.inc"
};

const double quantiles[] = {SIMPLE_STATISTICS_QUANTILES};

constexpr int rows14 = 14;
const double nan_d = std::nan("");

enum { MEAN, VAR, SD, SKEW, KURT, MIN, MAX, RANGE, CV, COUNT, MLO, MHI, VLO, VHI, MED, MAD, SCALE };

double cell(const double *t, int row, int j, int ld) { return t[row * ld + j]; }

// Significant digits of agreement of `got` with `exact`.
double digits(double got, double exact) {
    if (got == exact) return 17;
    return -std::log10(std::fabs(got - exact) / std::fabs(exact));
}

class SimpleStatistics : public ::testing::Test {
protected:
    void SetUp() override { zorvs_e1mes(0, 0, nullptr); }
};

TEST_F(SimpleStatistics, HardDataAgreesWithExactMoments) {
    Quiet q;  // constant-looking data may raise type 6 notes; none expected here
    for (const auto &set : reference_sets) {
        std::vector<double> x = set.x;
        std::vector<double> f = set.frequencies, w = set.weights;
        double *t;
        if (!f.empty() && !w.empty())
            t = zorvs_d_simple_statistics(set.n, 1, x.data(), ZORVS_FREQUENCIES, f.data(), ZORVS_WEIGHTS, w.data(), 0);
        else if (!f.empty())
            t = zorvs_d_simple_statistics(set.n, 1, x.data(), ZORVS_FREQUENCIES, f.data(), 0);
        else if (!w.empty())
            t = zorvs_d_simple_statistics(set.n, 1, x.data(), ZORVS_WEIGHTS, w.data(), 0);
        else
            t = zorvs_d_simple_statistics(set.n, 1, x.data(), 0);
        ASSERT_NE(t, nullptr) << set.name;
        // Measured: at least 15.5 digits for the mean and 15 for the variance
        // and standard deviation on every set; pinned with a digit to spare.
        EXPECT_GE(digits(t[MEAN], set.exact[0]), 14.5) << set.name;
        EXPECT_GE(digits(t[VAR], set.exact[1]), 14.0) << set.name;
        EXPECT_GE(digits(t[SD], set.exact[2]), 14.0) << set.name;
        // Skewness and kurtosis near 0 are compared absolutely.
        EXPECT_NEAR(t[SKEW], set.exact[3], 1e-13 * std::max(1.0, std::fabs(set.exact[3]))) << set.name;
        EXPECT_NEAR(t[KURT], set.exact[4], 1e-13 * std::max(1.0, std::fabs(set.exact[4]))) << set.name;
        EXPECT_EQ(t[COUNT], set.exact[5]) << set.name;
        EXPECT_EQ(x, set.x) << set.name;
        std::free(t);
    }
    EXPECT_EQ(q.errors.text(), "");
}

TEST_F(SimpleStatistics, SingleTwinOnModestData) {
    for (const auto &set : reference_sets) {
        if (std::string(set.name) != "small_integers" && std::string(set.name) != "weights") continue;
        std::vector<float> x(set.x.begin(), set.x.end());
        std::vector<float> w(set.weights.begin(), set.weights.end());
        float *t = w.empty() ? zorvs_f_simple_statistics(set.n, 1, x.data(), 0)
                             : zorvs_f_simple_statistics(set.n, 1, x.data(), ZORVS_WEIGHTS, w.data(), 0);
        ASSERT_NE(t, nullptr);
        for (int k = 0; k < 5; ++k)
            EXPECT_NEAR(t[k], set.exact[k], 2e-5 * std::max(1.0, std::fabs(set.exact[k]))) << set.name << k;
        std::free(t);
    }
}

TEST_F(SimpleStatistics, TableLayoutAndConfidenceLimits) {
    // Two variables: the small integers and their negatives times 2.
    const ReferenceSet *ints = nullptr;
    for (const auto &set : reference_sets)
        if (std::string(set.name) == "small_integers") ints = &set;
    ASSERT_NE(ints, nullptr);
    const int n = ints->n;
    std::vector<double> x(n * 3, 77.0);  // a third column the call must not read
    for (int i = 0; i < n; ++i) {
        x[i * 3] = ints->x[i];
        x[i * 3 + 1] = -2 * ints->x[i];
    }
    const std::vector<double> before = x;
    std::vector<double> table(17 * 4, -1.0);
    double *t = zorvs_d_simple_statistics(n, 2, x.data(), ZORVS_X_COL_DIM, 3, ZORVS_STAT_COL_DIM, 4,
                                          ZORVS_MEDIAN_AND_SCALE, ZORVS_RETURN_USER, table.data(), 0);
    ASSERT_EQ(t, table.data());
    EXPECT_EQ(x, before);
    const double mean = ints->exact[0], sd = ints->exact[2], var = ints->exact[1];
    EXPECT_NEAR(cell(t, MEAN, 0, 4), mean, 1e-14 * mean);
    EXPECT_NEAR(cell(t, MEAN, 1, 4), -2 * mean, 1e-14 * mean);
    EXPECT_NEAR(cell(t, SD, 1, 4), 2 * sd, 1e-13 * sd);
    EXPECT_EQ(cell(t, MIN, 0, 4), 1.0);
    EXPECT_EQ(cell(t, MAX, 0, 4), 9.0);
    EXPECT_EQ(cell(t, RANGE, 1, 4), 16.0);
    EXPECT_NEAR(cell(t, CV, 0, 4), sd / mean, 1e-13);
    EXPECT_EQ(cell(t, COUNT, 1, 4), 15.0);
    const double half = quantiles[0] * sd / std::sqrt(15.0);
    EXPECT_NEAR(cell(t, MLO, 0, 4), mean - half, 1e-6);
    EXPECT_NEAR(cell(t, MHI, 0, 4), mean + half, 1e-6);
    EXPECT_NEAR(cell(t, VLO, 0, 4), var * 14 / quantiles[1], 1e-6 * var);
    EXPECT_NEAR(cell(t, VHI, 0, 4), var * 14 / quantiles[2], 1e-6 * var);
    EXPECT_EQ(cell(t, MED, 0, 4), 5.0);
    EXPECT_EQ(cell(t, MAD, 0, 4), 2.0);
    EXPECT_EQ(cell(t, MED, 1, 4), -10.0);
    EXPECT_EQ(cell(t, MAD, 1, 4), 4.0);
    EXPECT_NEAR(cell(t, SCALE, 0, 4), 2.0 / quantiles[6], 1e-6);
    // The columns beyond the variables are the caller's and stay.
    for (int row = 0; row < 17; ++row) {
        EXPECT_EQ(cell(t, row, 2, 4), -1.0) << row;
        EXPECT_EQ(cell(t, row, 3, 4), -1.0) << row;
    }
    // Other levels, by value and by address; 0 leaves the rows NaN.
    double level = 90.0;
    double *u = zorvs_d_simple_statistics(n, 2, x.data(), ZORVS_X_COL_DIM, 3, ZORVS_CONFIDENCE_MEANS_ADR, &level,
                                          ZORVS_CONFIDENCE_VARIANCES, 0.0, 0);
    ASSERT_NE(u, nullptr);
    EXPECT_NEAR(cell(u, MHI, 0, 2), mean + quantiles[3] * sd / std::sqrt(15.0), 1e-6);
    EXPECT_TRUE(std::isnan(cell(u, VLO, 0, 2)));
    EXPECT_TRUE(std::isnan(cell(u, VHI, 1, 2)));
    std::free(u);
}

TEST_F(SimpleStatistics, OneObservation) {
    Quiet q;
    CodeLog codes;
    double x[] = {4.5, -1.0};
    double *t = zorvs_d_simple_statistics(1, 2, x, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_TRUE(codes.has(6, 11067));
    EXPECT_EQ(zorvs_error_type(), 6);
    EXPECT_EQ(t[MEAN * 2], 4.5);
    EXPECT_EQ(t[MIN * 2 + 1], -1.0);
    EXPECT_EQ(t[MAX * 2 + 1], -1.0);
    EXPECT_EQ(t[COUNT * 2], 1.0);
    for (int row : {VAR, SD, SKEW, KURT, RANGE, CV, MLO, MHI, VLO, VHI}) EXPECT_TRUE(std::isnan(t[row * 2])) << row;
    std::free(t);
}

TEST_F(SimpleStatistics, ConstantColumn) {
    Quiet q;
    CodeLog codes;
    double x[] = {3.0, 3.0, 3.0, 3.0};
    double *t = zorvs_d_simple_statistics(4, 1, x, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_TRUE(codes.has(6, 11076));
    for (int row : {VAR, SD, SKEW, KURT, RANGE, CV}) EXPECT_EQ(t[row], 0.0) << row;
    EXPECT_EQ(t[MLO], 3.0);
    EXPECT_EQ(t[VHI], 0.0);
    std::free(t);
}

TEST_F(SimpleStatistics, MissingValuesListwiseAndElementwise) {
    Quiet q;
    CodeLog codes;
    double x[] = {1.0, 10.0, nan_d,  //
                  2.0, nan_d, nan_d,  //
                  3.0, 30.0, nan_d,  //
                  4.0, 40.0, nan_d};
    const std::vector<double> before(x, x + 12);
    double *t = zorvs_d_simple_statistics(4, 3, x, ZORVS_MISSING_ELEMENTWISE, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(cell(t, COUNT, 0, 3), 4.0);
    EXPECT_EQ(cell(t, COUNT, 1, 3), 3.0);
    EXPECT_DOUBLE_EQ(cell(t, MEAN, 1, 3), 80.0 / 3);
    // The column of NaN: count 0, mean 0, range 0, extremes and spread NaN.
    EXPECT_EQ(cell(t, COUNT, 2, 3), 0.0);
    EXPECT_EQ(cell(t, MEAN, 2, 3), 0.0);
    EXPECT_EQ(cell(t, RANGE, 2, 3), 0.0);
    for (int row : {VAR, SD, SKEW, KURT, MIN, MAX, CV, MLO, MHI, VLO, VHI})
        EXPECT_TRUE(std::isnan(cell(t, row, 2, 3))) << row;
    EXPECT_TRUE(codes.has(6, 11288));
    EXPECT_TRUE(codes.has(6, 11072));
    EXPECT_FALSE(codes.has_code(11062));
    std::free(t);
    codes.clear();

    // List-wise, the first two variables: rows 1 and 3 survive... only rows
    // without a NaN count, for every variable alike.
    t = zorvs_d_simple_statistics(4, 2, x, ZORVS_X_COL_DIM, 3, ZORVS_MEDIAN, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(cell(t, COUNT, 0, 2), 3.0);
    EXPECT_EQ(cell(t, COUNT, 1, 2), 3.0);
    EXPECT_DOUBLE_EQ(cell(t, MEAN, 0, 2), 8.0 / 3);
    EXPECT_EQ(cell(t, MED, 0, 2), 3.0);
    EXPECT_EQ(cell(t, MED, 1, 2), 30.0);
    EXPECT_TRUE(codes.has(6, 11062));
    EXPECT_FALSE(codes.has_code(11288));
    std::free(t);
    EXPECT_EQ(0, std::memcmp(x, before.data(), sizeof x));
}

TEST_F(SimpleStatistics, ZeroWeightCountsButDoesNotMoveTheMean) {
    double x[] = {1.0, 2.0, 100.0, 3.0};
    double w[] = {1.0, 1.0, 0.0, 1.0};
    double *t = zorvs_d_simple_statistics(4, 1, x, ZORVS_WEIGHTS, w, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t[COUNT], 4.0);
    EXPECT_EQ(t[MAX], 100.0);
    EXPECT_EQ(t[MEAN], 2.0);
    std::free(t);
}

TEST_F(SimpleStatistics, FractionalFrequenciesCountButRepeatByTruncation) {
    double x[] = {1.0, 5.0, 6.0};
    double f[] = {2.5, 1.0, 1.0};
    double *t = zorvs_d_simple_statistics(3, 1, x, ZORVS_FREQUENCIES, f, ZORVS_MEDIAN, 0);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t[COUNT], 4.5);
    EXPECT_EQ(t[MED], 3.0);  // 1, 1, 5, 6
    std::free(t);
}

TEST_F(SimpleStatistics, BadInputGivesMessageAndNullAndKeepsX) {
    Quiet q;
    CodeLog codes;
    double x[] = {1.0, 2.0, 3.0, 4.0};
    const std::vector<double> before(x, x + 4);
    double good[] = {1.0, 1.0, 1.0, 1.0};
    double negative[] = {1.0, -2.0, 1.0, 1.0};
    auto expect_refused = [&](double *result, int type, int code) {
        EXPECT_EQ(result, nullptr) << code;
        EXPECT_TRUE(codes.has(type, code)) << code;
        EXPECT_EQ(zorvs_error_code(), code);
        EXPECT_EQ(std::vector<double>(x, x + 4), before) << code;
        codes.clear();
    };
    expect_refused(zorvs_d_simple_statistics(4, 1, x, ZORVS_FREQUENCIES, negative, 0), 4, 11054);
    EXPECT_EQ(zorvs_error_param.i[1], 1);
    EXPECT_EQ(zorvs_error_param.i[2], 2);
    EXPECT_EQ(zorvs_error_param.r[1], -2.0);
    expect_refused(zorvs_d_simple_statistics(4, 1, x, ZORVS_WEIGHTS, negative, 0), 4, 11056);
    expect_refused(zorvs_d_simple_statistics(1, 1, x, ZORVS_FREQUENCIES, good, 0), 5, 11063);
    expect_refused(zorvs_d_simple_statistics(4, 1, x, ZORVS_CONFIDENCE_MEANS, 100.0, 0), 5, 11064);
    EXPECT_EQ(zorvs_error_param.r[1], 100.0);
    expect_refused(zorvs_d_simple_statistics(4, 1, x, ZORVS_CONFIDENCE_VARIANCES, 250.0, 0), 5, 11065);
    expect_refused(zorvs_d_simple_statistics(4, 1, x, ZORVS_MEDIAN, ZORVS_MEDIAN_AND_SCALE, 0), 5, 11117);
    expect_refused(zorvs_d_simple_statistics(4, 1, x, ZORVS_MEDIAN, ZORVS_MEDIAN, 0), 5, 11117);
    expect_refused(zorvs_d_simple_statistics(4, 1, x, 12, 0), 5, 11001);
    expect_refused(zorvs_d_simple_statistics(0, 1, x, 0), 5, 603);
    expect_refused(zorvs_d_simple_statistics(2, 2, x, ZORVS_X_COL_DIM, 1, 0), 5, 601);
    float xf[] = {1, 2, 3};
    float negf[] = {1, 1, -1};
    EXPECT_EQ(zorvs_f_simple_statistics(3, 1, xf, ZORVS_WEIGHTS, negf, 0), nullptr);
    EXPECT_EQ(zorvs_error_code(), 11056);
    EXPECT_EQ(xf[2], 3.0f);
    // Caller storage comes back, with the error on record.
    double mine[14];
    EXPECT_EQ(zorvs_d_simple_statistics(4, 1, x, ZORVS_RETURN_USER, mine, ZORVS_MEDIAN, ZORVS_MEDIAN, 0), mine);
}

TEST_F(SimpleStatistics, NegativeFrequencyStopsTheProcess) {
    double x[] = {1.0, 2.0, 3.0};
    double f[] = {1.0, 1.0, -1.0};
    EXPECT_EXIT(zorvs_d_simple_statistics(3, 1, x, ZORVS_FREQUENCIES, f, 0), ::testing::ExitedWithCode(4),
                "FATAL    Error [A-Z0-9_]+ from zorvs_d_simple_statistics\\.");
}

}  // namespace

// The common case (list-wise, no frequencies or weights) runs a vectorised
// pass of its own; frequencies of 1.0 take the general row-by-row drive with
// the same arithmetic.  Both must give the same table to the bit, in both
// twins, for any number of variables (vector widths and their remainders),
// with rows holding NaN passed over, an offset data set, and a leading
// dimension wider than the variables.
template <class T, class F>
void expect_same_table_both_drives(F call) {
    Quiet q;
    const int n = 257, ld = 13;
    for (int nv : {1, 2, 3, 4, 5, 7, 8, 9, 12}) {
        std::vector<T> x(static_cast<std::size_t>(n) * ld), ones(n, T(1));
        unsigned state = 12345u + static_cast<unsigned>(nv);
        for (T &v : x) {
            state = state * 1103515245u + 12345u;
            v = T(1e4) + static_cast<T>((state >> 8) % 100000) / T(977);
        }
        x[5 * ld + nv - 1] = std::numeric_limits<T>::quiet_NaN();
        x[0] = std::numeric_limits<T>::quiet_NaN();
        const std::vector<T> before = x;
        T *plain = call(n, nv, x.data(), ZORVS_X_COL_DIM, ld, ZORVS_MEDIAN_AND_SCALE, 0);
        T *general = call(n, nv, x.data(), ZORVS_X_COL_DIM, ld, ZORVS_MEDIAN_AND_SCALE, ZORVS_FREQUENCIES,
                          ones.data(), 0);
        ASSERT_TRUE(plain && general) << nv;
        EXPECT_EQ(std::memcmp(plain, general, sizeof(T) * 17 * nv), 0) << "variables " << nv;
        EXPECT_EQ(plain[COUNT * nv], T(n - 2));
        EXPECT_EQ(std::memcmp(x.data(), before.data(), sizeof(T) * x.size()), 0);
        std::free(plain);
        std::free(general);
        q.errors.take();
    }
}

TEST_F(SimpleStatistics, VectorisedPassEqualsGeneralDriveToTheBit) {
    expect_same_table_both_drives<double>(
        [](int n, int nv, double *x, auto... rest) { return zorvs_d_simple_statistics(n, nv, x, rest...); });
    expect_same_table_both_drives<float>(
        [](int n, int nv, float *x, auto... rest) { return zorvs_f_simple_statistics(n, nv, x, rest...); });
}
