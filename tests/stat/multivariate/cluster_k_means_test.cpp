// Tests of k-means clustering against R's kmeans(algorithm = "Hartigan-Wong")
// (tests/data/stat/multivariate/make_cluster_k_means.R) on iris, USArrests,
// faithful and scaled mtcars with 2 to 5 clusters from the same seeds;
// frequencies and weights against replicated rows; missing values and ties
// worked by hand; every message the routine raises; caller storage; the stop.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/multivariate/cluster_k_means_ref.inc"

const DataSet &data_of(const char *name) {
    for (const DataSet &d : data_sets)
        if (std::strcmp(d.name, name) == 0) return d;
    std::abort();
}

ZORVS_TWIN_WRAPPER(k_means, cluster_k_means)

ZORVS_TWIN_SUITE(KMeansTwin);

// Same assignments and counts as R; means and sums of squares to 1e-10
// relative in double.  The float twin rounds its data to 24 bits; it must
// still find R's assignment on these well-separated data, with means and
// sums of squares to the rounding of their sums.
TYPED_TEST(KMeansTwin, AgreeWithR) {
    using T = TypeParam;
    const bool single = std::is_same_v<T, float>;
    const double tol = single ? 2e-5 : 1e-10;
    int same_assignments = 0;
    for (const Reference &r : references) {
        SCOPED_TRACE(std::string(r.set) + " k=" + std::to_string(r.k));
        const DataSet &d = data_of(r.set);
        std::vector<T> x(d.x.begin(), d.x.end()), seeds;
        for (int row : r.seed_rows)
            for (int j = 0; j < d.nv; ++j) seeds.push_back(x[row * d.nv + j]);
        std::vector<T> means(r.k * d.nv), ssq(r.k);
        std::vector<int> counts(r.k);
        int *clusters = k_means<T>(d.m, d.nv, x.data(), r.k, seeds.data(), ZORVS_CLUSTER_MEANS_USER, means.data(),
                                   ZORVS_CLUSTER_SSQ_USER, ssq.data(), ZORVS_CLUSTER_COUNTS_USER, counts.data(), 0);
        ASSERT_NE(clusters, nullptr);
        EXPECT_EQ(zorvs_n1rty(1), 0);
        const bool same = std::vector<int>(clusters, clusters + d.m) == r.clusters;
        std::free(clusters);
        same_assignments += same;
        if (single && !same) continue;  // counted below
        EXPECT_TRUE(same);
        EXPECT_EQ(counts, r.counts);
        double scale = 0;
        for (double v : r.means) scale = std::fmax(scale, std::fabs(v));
        for (std::size_t q = 0; q < means.size(); ++q)
            EXPECT_NEAR(means[q], r.means[q], tol * scale) << "mean " << q;
        for (int l = 0; l < r.k; ++l) EXPECT_NEAR(ssq[l], r.ssq[l], tol * r.ssq[l]) << "ssq " << l;
    }
    const int total = static_cast<int>(std::size(references));
    EXPECT_EQ(total, 32);
    EXPECT_GE(same_assignments, single ? total - 2 : total);
}

// A row of integer frequency f is f copies of the row; a weight scales the
// row's share of its means and sums of squares as a frequency does.
TEST(KMeans, FrequenciesAndWeightsAgreeWithReplicatedRows) {
    const DataSet &d = data_of("iris");
    const int k = 3;
    std::vector<double> x = d.x, seeds, f(d.m), replicated;
    for (int row : {0, 60, 120}) seeds.insert(seeds.end(), &x[row * d.nv], &x[row * d.nv] + d.nv);
    for (int i = 0; i < d.m; ++i) {
        f[i] = 1 + i % 3;
        for (int c = 0; c < f[i]; ++c) replicated.insert(replicated.end(), &x[i * d.nv], &x[i * d.nv] + d.nv);
    }
    // the clusters, then the means and sums of squares
    auto run = [&](std::vector<double> &x, int keyword, double *by) {
        const int m = int(x.size()) / d.nv;
        std::vector<double> r(m + k * d.nv + k);
        int *c = zorvs_d_cluster_k_means(m, d.nv, x.data(), k, seeds.data(), keyword, by, ZORVS_CLUSTER_MEANS_USER,
                                         &r[m], ZORVS_CLUSTER_SSQ_USER, &r[m + k * d.nv], 0);
        std::copy(c, c + m, r.begin());
        return std::free(c), r;
    };
    const auto by_f = run(x, ZORVS_FREQUENCIES, f.data()), by_w = run(x, ZORVS_WEIGHTS, f.data()),
               by_r = run(replicated, ZORVS_FREQUENCIES, nullptr);
    const int mr = int(replicated.size()) / d.nv;
    EXPECT_EQ(by_w, by_f);
    for (int i = 0, ir = 0; i < d.m; ir += static_cast<int>(f[i]), ++i) EXPECT_EQ(by_f[i], by_r[ir]) << i;
    for (int q = 0; q < k * d.nv + k; ++q) EXPECT_NEAR(by_f[d.m + q], by_r[mr + q], 1e-12 * std::fabs(by_r[mr + q])) << q;
}

// Worked by hand, as rows: a tie, a missing value, strides, x_columns and
// allocated outputs.  The point 1 is as far from 0 as from 2: it goes to
// cluster 1, and the transfers leave it there (its removal from a cluster
// of two saves 0.25 * 2 = 0.5, joining the other costs 1 * 1/2 = 0.5, not
// less).  In rows of 3 (the third column unused), the second variable
// missing in a row that lies by its first next to cluster 2 adds to the
// mean of the first variable only.  x_columns picks columns 2 and 0, means
// in rows of 4; two clusters settle in one pass.
TYPED_TEST(KMeansTwin, HandCases) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    std::vector<T> x1{0, 1, 2}, s1{0, 2}, x2{0, 0, -9, 0.5, 1, -9, 10, 10, -9, 11, 11, -9, 10.5, nan, -9},
        s2{0, 0, 10, 10}, x3{0, 99, 0, 1, 99, 1, 9, 99, 9, 10, 99, 10}, m3(8, -1);
    T *means = nullptr, *ssq = nullptr;
    int *counts = nullptr, *c = nullptr, columns[2] = {2, 0}, result[4];
    expect_rows({
        {ZORVS_CALL(holds(c = k_means<T>(3, 1, x1.data(), 2, s1.data(), 0), 1, 1, 2)), 1, 0, 0},
        {ZORVS_DO(std::free(c)), any, -1},
        {ZORVS_CALL(holds(c = k_means<T>(5, 2, x2.data(), 2, s2.data(), ZORVS_X_COL_DIM, 3, ZORVS_CLUSTER_MEANS, &means,
                                         ZORVS_CLUSTER_SSQ, &ssq, ZORVS_CLUSTER_COUNTS, &counts, 0),
                          1, 1, 2, 2, 2)), 1, 0, 0},
        {ZORVS_CALL(holds(means, 0.25, 0.5, 10.5, 10.5) && holds(counts, 2, 3) && holds(ssq, 0.125 + 0.5, 0.5 + 0.5)), 1},
        {ZORVS_DO((std::free(c), std::free(means), std::free(ssq), std::free(counts))), any, -1},
        {ZORVS_CALL(k_means<T>(4, 2, x3.data(), 2, s2.data(), ZORVS_X_COL_DIM, 3, ZORVS_X_COLUMNS, columns,
                               ZORVS_CLUSTER_MEANS_USER, m3.data(), ZORVS_CLUSTER_MEANS_COL_DIM, 4, ZORVS_RETURN_USER,
                               result, ZORVS_MAX_ITERATIONS, 1, 0) == result), 1, 0, 0},
        {ZORVS_CALL(holds(result, 1, 1, 2, 2) && holds(m3.data(), 0.5, 0.5, -1, -1, 9.5, 9.5, -1, -1)), 1},
    });
}

// The refusals, as rows: what is changed from a good call on six rows of
// two columns (a third for the strided cases): clusters, variables, stride,
// iterations, columns, the frequency and weight of row 0 (+0.0: none given;
// -0.0: a zero frequency), a seed far off; then the expected (type, code).
// A refusal hands nothing over; the data and seeds stay as they were.
TEST(KMeans, Refusals) {
    auto km = [](int k, int nv, int x_col_dim, int max_iterations, std::vector<int> x_columns, double frequency0,
                 double weight0, bool far_seed) {
        std::vector<double> x{0, 0, 0.4, 0.2, 5, 5, 5.5, 4, 2.6, 2.4, 9, 9}, f(6, 1), w(6, 1);
        std::vector<double> seeds{0, 0, 0, 9, 9, 0, far_seed ? 100 : 2.4, far_seed ? 100 : 2.6, 0};
        f[0] = frequency0;
        w[0] = weight0;
        const std::vector<double> before = x, seeds_before = seeds;
        double *ssq = &x[0];
        int *c = zorvs_d_cluster_k_means(
            6, nv, x.data(), k, seeds.data(), ZORVS_X_COL_DIM, x_col_dim, ZORVS_MAX_ITERATIONS, max_iterations,
            ZORVS_CLUSTER_SEEDS_COL_DIM, 3, ZORVS_CLUSTER_MEANS_COL_DIM, 3, ZORVS_CLUSTER_SSQ, &ssq,
            ZORVS_X_COLUMNS, x_columns.empty() ? nullptr : x_columns.data(),
            ZORVS_FREQUENCIES, frequency0 != 0 || std::signbit(frequency0) ? f.data() : nullptr,
            ZORVS_WEIGHTS, weight0 != 0 ? w.data() : nullptr, 0);
        const bool refused = zorvs_n1rty(1) >= 4, kept = x == before && seeds == seeds_before;
        const bool handed = (c != nullptr) == !refused && (ssq != nullptr) == !refused;
        std::free(c);
        if (!refused) std::free(ssq);
        return kept && handed;
    };
    double x[4] = {0, 1, 2, 3};
    expect_rows({
        {ZORVS_CALL(km(1, 2, 2, 30, {}, 0, 0, false)), 1, 5, 20080},  // one cluster
        {ZORVS_CALL(km(7, 2, 2, 30, {}, 0, 0, false)), 1, 5, 20080},  // more clusters than rows
        {ZORVS_CALL(km(2, 2, 2, 30, {}, -0.0, 0, false)), 1, 5, 20081},  // a zero frequency
        {ZORVS_CALL(km(2, 2, 2, 30, {}, 0, NAN, false)), 1, 5, 20082},  // a NaN weight
        {ZORVS_CALL(km(3, 2, 2, 30, {}, 0, 0, true)), 1, 5, 20083},  // an empty cluster
        {ZORVS_CALL(km(2, 2, 2, 30, {0, 3}, 1, 1, false)), 1, 5, 20090},  // the weight column among x_columns
        {ZORVS_CALL(km(2, 2, 2, 30, {2, 1}, 1, 0, false)), 1, 5, 20091},  // the frequency column among them
        {ZORVS_CALL(km(2, 3, 2, 30, {0, 1, 1}, 1, 1, false)), 1, 5, 20092},  // too many columns, both given
        {ZORVS_CALL(km(2, 3, 2, 30, {0, 1, 1}, 0, 1, false)), 1, 5, 20093},  // too many, one given
        {ZORVS_CALL(km(2, 3, 2, 30, {0, 1, 1}, 0, 0, false)), 1, 5, 20094},  // too many
        {ZORVS_CALL(km(2, 2, 2, 30, {0, 5}, 0, 0, false)), 1, 5, 602},  // a column out of range
        {ZORVS_CALL(km(2, 2, 2, 0, {}, 0, 0, false)), 1, 5, 603},  // no iterations
        {ZORVS_CALL(km(2, 2, 0, 30, {}, 0, 0, false)), 1, 5, 603},  // a bad stride
        {ZORVS_CALL(km(3, 2, 2, 1, {}, 0, 0, false)), 1, 3, 20084},  // no convergence in one pass
        {ZORVS_CALL(zorvs_d_cluster_k_means(4, 1, x, 2, x, ZORVS_STD_DEV, 0) == nullptr), 1, 5, 11001},
    });
}

}  // namespace
