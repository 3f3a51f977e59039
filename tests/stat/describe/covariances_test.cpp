// covariances_test.cpp - covariance, SSCP and correlation matrices against R
// (tests/data/stat/describe/covariances_ref.inc, make_covariances.R: cov and
// cor with complete and pairwise-complete observations, cov.wt, repeated
// rows for frequencies, pooling within groups), NumAcc-style data at large
// offsets against exact rational sums (covariances_exact_ref.inc,
// make_covariances_exact.py), the optional outputs, and bad input as rows.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/describe/covariances_ref.inc"

#include "data/stat/describe/covariances_exact_ref.inc"

ZORVS_TWIN_SUITE(Covariances);

// Matrix and means of every case within 1e-10 relative in double (entries
// near 0 against a floor of 1e-12 of the matrix's largest), 1e-5 in single.
TYPED_TEST(Covariances, AgreeWithR) {
    using T = TypeParam;
    const double tol = sizeof(T) == 4 ? 1e-5 : 1e-10, floor = sizeof(T) == 4 ? 1e-3 : 1e-12;
    Worst worst(std::string("covariances against R, ") + (sizeof(T) == 4 ? "float" : "double"));
    Quiet q;
    static const int type_keyword[] = {ZORVS_COVARIANCE_MATRIX, ZORVS_CORRECTED_SSCP, ZORVS_CORRELATION_MATRIX};
    for (const CovarianceCase &c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<T> x(c.x.begin(), c.x.end()), f(c.frequencies.begin(), c.frequencies.end()),
            w(c.weights.begin(), c.weights.end()), means(c.means.size());
        T *m = ZORVS_TWIN(f_covariances, d_covariances)(
            c.n, c.p, x.data(), type_keyword[c.type], c.pairwise ? ZORVS_MISSING_ELEMENTWISE : ZORVS_MISSING_LISTWISE,
            ZORVS_FREQUENCIES, f.empty() ? nullptr : f.data(), ZORVS_WEIGHTS, w.empty() ? nullptr : w.data(),
            ZORVS_POOLED_GROUPS, c.n_groups, c.groups.data(), ZORVS_X_MEAN_USER, means.data(), 0);
        ASSERT_NE(m, nullptr);
        double largest = 0;
        for (double v : c.matrix) largest = std::max(largest, std::fabs(v));
        for (int k = 0; k < c.p * c.p; ++k) worst.expect_within(relative_error(m[k], c.matrix[k], floor * largest), tol);
        for (std::size_t k = 0; k < means.size(); ++k) EXPECT_LE(relative_error(means[k], c.means[k]), tol) << k;
        std::free(m);
    }
}

// NumAcc-style pairs at 1e8 and 1e12: the covariances to 1e-12 and the
// correlation to 1e-13 of the exact values, list-wise and (with a row of
// NaN added) pair-wise.
TEST(Covariances, LargeOffsetsKeepTheirDigits) {
    Worst worst("correlation at large offsets against exact sums");
    Quiet q;
    for (const ExactCase &c : exact_cases) {
        SCOPED_TRACE(c.name);
        std::vector<double> x = c.x;
        x.insert(x.begin() + 2 * 500, {NaN, NaN});
        for (int pairwise = 0; pairwise < 2; ++pairwise) {
            double *cov = zorvs_d_covariances(c.n + 1, 2, x.data(), pairwise ? ZORVS_MISSING_ELEMENTWISE : 0, 0);
            double *cor = zorvs_d_covariances(c.n + 1, 2, x.data(), ZORVS_CORRELATION_MATRIX,
                                              pairwise ? ZORVS_MISSING_ELEMENTWISE : 0, 0);
            for (int k : {0, 1, 2}) EXPECT_LE(relative_error(cov[k + k / 2], c.covariance[k]), 1e-12) << k;
            worst.expect_within(relative_error(cor[1], c.correlation), 1e-13);
            for (double *p : {cov, cor}) std::free(p);
        }
    }
}

// Refusals and warnings: the (type, code) and parameters, and the caller's
// storage left as it was after a terminal error.  Then the layout and the
// optional outputs: a leading dimension wider than the matrix leaves the
// caller's extra column alone; the pair counts and means of an element-wise
// call on 3 x 2 data with one NaN (x1 = 1, 3, 5: variance 4; x2 = 2, 7:
// variance 12.5; the pairs (1, 2), (5, 7): covariance 10).
TEST(Covariances, BadInputAndLayoutAsRows) {
    double y[] = {1, 2, 3, NaN, 5, 7}, table[6] = {-1, -1, -1, -1, -1, -1}, *counts = nullptr, *means = nullptr;
    double x[] = {1, 2, 2, 1, 3, 5, 4, 4}, mine[4] = {-7, -7, -7, -7}, negative[] = {1, 1, -2, 1},
           all_nan[] = {NaN, 1, 2, NaN}, constant[] = {1, 2, 1, 3, 1, 5, 1, 4}, thin[] = {1, NaN, 2, NaN, NaN, 3, NaN, 4};
    int groups[] = {0, 1, 1, 5}, out_of_group[] = {-1, 0, 0, 0};
    float xf[] = {1, 2, 3, 4}, negf[] = {1, -1};
    const auto untouched = [&] { return mine[0] == -7 && mine[3] == -7; };
    // the matrix of x (n rows of two), null
    auto cov = [&](int n, double *x, auto... keys) { return zorvs_d_covariances(n, 2, x, keys..., 0); };
    auto no = [&](int n, double *x, auto... keys) { return cov(n, x, keys...) == nullptr; };
    // the caller's matrix back and left as it was
    auto kept = [&](int n, double *x, auto... keys) { return cov(n, x, keys..., ZORVS_RETURN_USER, mine) == mine && untouched(); };
    const int pooled = ZORVS_POOLED_GROUPS, pairwise = ZORVS_MISSING_ELEMENTWISE, user = ZORVS_RETURN_USER;
    expect_rows({
        {ZORVS_CALL(kept(4, x, ZORVS_WEIGHTS, negative)), 1, 4, 11056, "i1=1 i2=3 r1=-2"},
        {ZORVS_CALL(no(4, x, ZORVS_FREQUENCIES, negative)), 1, 4, 11054},
        {ZORVS_CALL(zorvs_f_covariances(2, 2, xf, ZORVS_FREQUENCIES, negf, 0) == nullptr), 1, 4, 11054},
        {ZORVS_CALL(kept(2, all_nan)), 1, 5, 21104, "i1=0"},
        {ZORVS_CALL(kept(1, x)), 1, 5, 21104, "i1=1"},
        {ZORVS_CALL(kept(4, x, pooled, 2, groups)), 1, 5, 21107, "i1=4 i2=5 i3=1"},
        {ZORVS_CALL(no(4, x, pooled, 0, groups)), 1, 5, -1, "l1=n_groups"},
        {ZORVS_CALL(no(4, x, ZORVS_CORRELATION_MATRIX, ZORVS_CORRECTED_SSCP)), 1, 5, 11117},
        {ZORVS_CALL(no(0, x)), 1, 5, 603},
        {ZORVS_CALL(no(4, x, ZORVS_X_COL_DIM, 1)), 1, 5, 601},
        {ZORVS_CALL(no(4, x, ZORVS_X_COL_DIM, 2, 99)), 1, 5, 11001},
        // warnings keep the matrix
        {ZORVS_CALL(cov(4, constant, ZORVS_CORRELATION_MATRIX, user, mine)[1]), NaN, 3, 21106, "i1=1"},
        {ZORVS_CALL(cov(4, thin, pairwise, user, mine)[1]), NaN, 3, 21105, "i1=1"},
        {ZORVS_CALL(mine[0] == 0.5 && mine[3] == 0.5), 1},
        {ZORVS_CALL(no(4, thin)), 1, 5, 21104},
        {ZORVS_CALL(cov(3, x + 2, pooled, 1, out_of_group, user, mine)[0]), 0.5, 0, 0},
        {ZORVS_CALL(no(2, all_nan, pairwise)), 1, 5, 21104},
        {ZORVS_CALL(cov(3, y, pairwise, ZORVS_COV_COL_DIM, 3, user, table, ZORVS_PAIR_COUNTS, &counts, ZORVS_X_MEAN, &means) == table),
         1, 3, 11288},
        {ZORVS_CALL(holds(table, 4, 10, -1, 10, 12.5, -1) && holds(counts, 3, 2, 2, 2) && holds(means, 3, 4.5)), 1},
        {ZORVS_DO((std::free(counts), std::free(means))), any, -1},
    });
}

}  // namespace
