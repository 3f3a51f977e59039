// Tests of principal components against R's eigen() and prcomp()
// (tests/data/stat/multivariate/make_principal_components.R) on the
// covariance and correlation matrices of USArrests, iris, mtcars, longley
// and a singular matrix: eigenvalues, eigenvectors with the largest element
// positive, cumulative proportions, correlations with the variables and
// standard errors; then the sign rule, zero variances, negative eigenvalues,
// the refusals, storage, and the stop.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/multivariate/principal_components_ref.inc"

ZORVS_TWIN_WRAPPER(pca, principal_components)

ZORVS_TWIN_SUITE(PrincipalComponentsTwin);

// Relative to the largest eigenvalue for values and to 1 for the unit vectors
// and proportions: eigenvalues to 1e-12 of the largest (the singular pair's
// zero cannot be closer), vectors to 1e-10 in double; the float twin to the
// rounding of its data, magnified by the spread of the eigenvalues.
TYPED_TEST(PrincipalComponentsTwin, AgreeWithR) {
    using T = TypeParam;
    const bool single = std::is_same_v<T, float>;
    for (const Reference &r : references) {
        SCOPED_TRACE(r.name);
        const int n = r.n;
        const double scale = r.eigenvalues[0], value_tol = single ? 2e-5 : 1e-12;
        // The vector of an eigenvalue close to others is known only to the
        // ratio of the matrix's rounding to that gap.
        std::vector<T> a(r.a, r.a + n * n), vectors(n * n), correlations(n * n), cumulative(n), std_errors(n);
        const std::vector<T> before = a;
        T *values = pca<T>(n, a.data(), r.correlation ? ZORVS_CORRELATION_MATRIX : ZORVS_COVARIANCE_MATRIX,
                           ZORVS_EIGENVECTORS_USER, vectors.data(), ZORVS_CORRELATIONS_USER, correlations.data(),
                           ZORVS_CUM_PERCENT_USER, cumulative.data(), ZORVS_STD_DEV_USER, r.df, std_errors.data(), 0);
        ASSERT_NE(values, nullptr);
        EXPECT_TRUE(zorvs_n1rty(1) == 0 && a == before);
        for (int j = 0; j < n; ++j) {
            EXPECT_NEAR(values[j], r.eigenvalues[j], value_tol * scale) << "value " << j;
            EXPECT_NEAR(cumulative[j], r.cumulative[j], single ? 1e-5 : 1e-12) << "proportion " << j;
            EXPECT_NEAR(std_errors[j], r.std_errors[j], (single ? 2e-5 : 1e-12) * scale) << "std error " << j;
            double gap = 1e300;
            for (int k = 0; k < n; ++k)
                if (k != j) gap = std::fmin(gap, std::fabs(r.eigenvalues[k] - r.eigenvalues[j]) / scale);
            const double vector_tol = std::fmax(single ? 1e-5 : 1e-10, (single ? 1e-6 : 1e-15) / gap);
            // A zero eigenvalue comes out as a rounding error of either
            // sign, and its root scales the correlations of its component.
            const bool zero = r.eigenvalues[j] < value_tol * scale;
            for (int i = 0; i < n; ++i) {
                EXPECT_NEAR(vectors[i * n + j], r.vectors[i * n + j], vector_tol) << "vector " << j << " row " << i;
                EXPECT_NEAR(correlations[i * n + j], r.correlations[i * n + j],
                            (zero ? std::sqrt(2 * value_tol) : vector_tol) * std::sqrt(scale / r.a[i * n + i]))
                    << "correlation " << i << ", " << j;
            }
        }
        EXPECT_NEAR(cumulative[n - 1], 1.0, single ? 1e-6 : 1e-15);
        std::free(values);
    }
}

// Edge cases worked by hand, as rows: matrix (row-major, n = 2 or 3),
// correlation or not, expected eigenvalues, expected first vector, expected
// correlations of row 0, expected (type, code) at the end.
struct Edge {
    const char *what;
    int n, correlation;
    std::vector<double> a, values, first_vector, correlation_row0;
    int type, code;
};
const double h = std::sqrt(0.5);
const Edge edges[] = {
    // the solver's vector for 4 is (-1, -1)/sqrt 2 or (1, 1)/sqrt 2: always given as the positive one
    {"sign", 2, 0, {2, 2, 2, 2}, {4, 0}, {h, h}, {1, 0}, 0, 0},
    {"sign of a negative leader", 2, 0, {1, -2, -2, 4}, {5, 0}, {-1 / std::sqrt(5.0), 2 / std::sqrt(5.0)}, {-1, 0}, 0, 0},
    {"zero variance", 3, 0, {0, 0, 0, 0, 4, 0, 0, 0, 1}, {4, 1, 0}, {0, 1, 0}, {NAN, NAN, NAN}, 0, 0},
    {"correlation 1", 2, 1, {1, 1, 1, 1}, {2, 0}, {h, h}, {1, 0}, 0, 0},
    {"slightly negative", 2, 0, {1, 1 + 1e-14, 1 + 1e-14, 1}, {2 + 1e-14, -1e-14}, {h, h}, {1, 0}, 0, 0},
    {"negative", 2, 0, {1, 2, 2, 1}, {3, -1}, {h, h}, {std::sqrt(1.5), 0}, 3, 20102},
    {"negative diagonal", 2, 0, {1, 0, 0, -1}, {}, {}, {}, 5, 20100},
    {"one variable", 1, 0, {2}, {}, {}, {}, 5, 603},
};

TEST(PrincipalComponents, EdgeCases) {
    Quiet quiet;
    for (const Edge &e : edges) {
        SCOPED_TRACE(e.what);
        std::vector<double> a = e.a, vectors(e.n * e.n, -7), correlations(e.n * e.n, -7);
        double *values = zorvs_d_principal_components(
            e.n, a.data(), e.correlation ? ZORVS_CORRELATION_MATRIX : ZORVS_COVARIANCE_MATRIX,
            ZORVS_EIGENVECTORS_USER, vectors.data(), ZORVS_CORRELATIONS_USER, correlations.data(), 0);
        EXPECT_TRUE(zorvs_n1rty(1) == e.type && zorvs_error_code() == e.code && (values == nullptr) == (e.type >= 4));
        for (int j = 0; values && e.type < 4 && j < e.n; ++j) {
            EXPECT_NEAR(values[j], e.values[j], 1e-15 * e.values[0]);
            EXPECT_NEAR(vectors[j * e.n], e.first_vector[j], 1e-15);
            EXPECT_TRUE(agrees(correlations[j], e.correlation_row0[j], 1e-7)) << j;
        }
        std::free(values);
    }
}

// Allocated outputs, df below 1 (taken as 100: a warning), stride, the
// caller's storage, and the refusals, which free what they allocated and
// null the caller's pointers.
TEST(PrincipalComponents, StorageAndChecks) {
    double a[6] = {4, 2, -9, 2, 3, -9}, *v = nullptr, *cr = nullptr, *cum = nullptr, *se = nullptr, *values = nullptr;
    const double l1 = 3.5 + std::sqrt(4.25), l2 = 3.5 - std::sqrt(4.25);
    float f[4] = {1, 0.5f, 0.5f, 1}, user[2] = {-1, -1};
    expect_rows({
        {ZORVS_CALL((values = zorvs_d_principal_components(2, a, ZORVS_COV_COL_DIM, 3, ZORVS_EIGENVECTORS, &v,
                                                           ZORVS_CORRELATIONS, &cr, ZORVS_CUM_PERCENT, &cum,
                                                           ZORVS_STD_DEV, 0, &se, 0))[0]), l1, 3, 20101, "", 1e-14},
        {ZORVS_CALL(values[1]), l2, -1, 0, "", 1e-14},
        {ZORVS_CALL(cum[0]), l1 / 7, -1, 0, "", 1e-15},
        {ZORVS_CALL(se[0]), l1 * std::sqrt(0.02), -1, 0, "", 1e-14},
        {ZORVS_CALL(v[0] * v[0] + v[2] * v[2]), 1, -1, 0, "", 1e-15},
        {ZORVS_DO((std::free(values), std::free(v), std::free(cr), std::free(cum), std::free(se), v = a)), any, -1},
        {ZORVS_CALL(zorvs_f_principal_components(2, f, ZORVS_RETURN_USER, user, 0) == user), 1, 0, 0},
        {ZORVS_CALL(user[0]), 1.5, -1, 0, "", 1e-6},
        {ZORVS_CALL(!zorvs_d_principal_components(2, a, ZORVS_COV_COL_DIM, 1, ZORVS_EIGENVECTORS, &v, 0) && !v), 1, 5, 601},
        {ZORVS_CALL(zorvs_d_principal_components(0, a, 0) == nullptr), 1, 5, 603},
        {ZORVS_CALL(zorvs_d_principal_components(2, a, ZORVS_X_COL_DIM, 2, 0) == nullptr), 1, 5, 11001},
    });
}

}  // namespace
