// eigen_test.cpp - symmetric eigensystems: values against LAPACK (numpy
// eigvalsh) and R's eigen (tests/data/kernels/eigen_reference.inc,
// make_eigen_reference.py), residuals and orthogonality on random, graded,
// repeated-value, singular and data covariance matrices up to 500 x 500;
// small exact cases; messages as rows.

#include "kernels/linalg.h"
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/kernels/eigen_reference.inc"

// The same integer formulas as make_eigen_reference.py.
double unit(long long i, long long j, long long seed) {
    unsigned long long h =
        static_cast<unsigned long long>((i * 7919 + j * 104729 + seed * 15485863)) * 2654435761ULL % 4294967296ULL;
    return (static_cast<long long>(h % 20001) - 10000) / 10000.0;
}

std::vector<double> test_matrix(int kind, int n, int seed) {
    std::vector<double> a(Index(n) * n);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) {
            double v = 0;
            if (kind == 0) {
                v = unit(i, j, seed);
            } else if (kind == 1) {  // exponent floor(-(i + j) 15 / n), as Python's //
                const int e = -((i + j) * 15);
                v = std::ldexp(unit(i, j, seed), e >= 0 ? e / n : -((-e + n - 1) / n));
            } else if (kind == 2) {
                v = (i / 4) == (j / 4) ? 1.0 : 0.0;
            } else {
                for (int r = 0; r < n / 4; ++r) v += double(((r * 31 + i * 17) % 7 - 3) * ((r * 31 + j * 17) % 7 - 3));
            }
            a[Index(j) * n + i] = a[Index(i) * n + j] = v;
        }
    return a;
}

// In units of n eps ||A||: the values against the reference (sorted), the
// residuals ||A v - lambda v|| of the vectors scaled to unit length; and
// max |V'V - I| in units of n eps.
struct Quality { double values = 0, residual = 0, orthogonal = 0; };

template <class T>
Quality assess(int n, const std::vector<T> &a, const std::vector<T> &eval, std::vector<T> evec, const double *reference) {
    const double eps = eps_of<T>;
    double norm = 0;
    for (int j = 0; j < n; ++j) {
        double s = 0;
        for (int i = 0; i < n; ++i) s += std::fabs(double(a[Index(j) * n + i]));
        norm = std::max(norm, s);
    }
    const double scale = n * eps * (norm == 0 ? 1 : norm);
    for (int j = 0; j < n; ++j) {
        double s = 0;
        for (int i = 0; i < n; ++i) s += double(evec[Index(j) * n + i]) * evec[Index(j) * n + i];
        for (int i = 0; i < n; ++i) evec[Index(j) * n + i] = T(evec[Index(j) * n + i] / std::sqrt(s));
    }
    Quality q;
    for (int j = 0; j < n; ++j) {
        double r2 = 0;
        for (int i = 0; i < n; ++i) {
            double s = -double(eval[j]) * evec[Index(j) * n + i];
            for (int k = 0; k < n; ++k) s += double(a[Index(k) * n + i]) * evec[Index(j) * n + k];
            r2 += s * s;
        }
        q.residual = std::max(q.residual, std::sqrt(r2) / scale);
        for (int k = 0; k <= j; ++k) {
            double s = 0;
            for (int i = 0; i < n; ++i) s += double(evec[Index(j) * n + i]) * evec[Index(k) * n + i];
            q.orthogonal = std::max(q.orthogonal, std::fabs(s - (j == k)) / (n * eps));
        }
    }
    std::vector<double> sorted(eval.begin(), eval.end());
    std::sort(sorted.begin(), sorted.end());
    for (int i = 0; reference && i < n; ++i) q.values = std::max(q.values, std::fabs(sorted[i] - reference[i]) / scale);
    return q;
}

// Both solvers of twin T on a: e2csf (values as they come) and e5csf
// (sorted by decreasing magnitude).
template <class T>
Quality solve(bool sorted, int n, const std::vector<T> &a, std::vector<T> &eval, const double *reference,
              std::vector<T> *vectors = nullptr) {
    std::vector<T> evec(Index(n) * n), work(2 * Index(n));
    std::vector<int> iwork(n);
    eval.assign(n, T(0));
    if (sorted) ZORVS_TWIN(e5csf, de5csf)(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data(), iwork.data());
    else ZORVS_TWIN(e2csf, de2csf)(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data());
    for (int i = 1; sorted && i < n; ++i) EXPECT_GE(std::fabs(eval[i - 1]), std::fabs(eval[i])) << "n " << n;
    if (vectors) *vectors = evec;
    return assess(n, a, eval, evec, reference);
}

TEST(Eigen, GeneratedMatricesAndDataCovariancesAgainstReferenceBothSolvers) {
    std::vector<double> eval;
    for (const auto &c : eigen_cases) {
        const auto a = test_matrix(c.kind, c.n, c.seed);
        for (const bool sorted : {false, true}) {
            const Quality q = solve(sorted, c.n, a, eval, c.values);
            std::printf("[measure] eigen kind %d n %3d %s: values %.3f residual %.3f orthogonality %.3f "
                        "(units n eps ||A||)\n", c.kind, c.n, sorted ? "e5csf" : "e2csf", q.values, q.residual,
                        q.orthogonal);
            EXPECT_LT(q.values, 1.0) << "kind " << c.kind << " n " << c.n;
            EXPECT_LT(q.residual, 1.0) << "kind " << c.kind << " n " << c.n;
            EXPECT_LT(q.orthogonal, 1.0) << "kind " << c.kind << " n " << c.n;
        }
    }
    // R gives the values in decreasing order; all are positive here.
    for (const auto &c : data_covariances) {
        const std::vector<double> a(c.cov, c.cov + Index(c.n) * c.n);
        std::vector<double> ascending(c.values, c.values + c.n);
        std::reverse(ascending.begin(), ascending.end());
        const Quality q = solve(true, c.n, a, eval, ascending.data());
        EXPECT_LT(q.values, 1.0) << c.name;
        EXPECT_LT(q.residual, 2.0) << c.name;
        EXPECT_LT(q.orthogonal, 2.0) << c.name;
        for (int i = 0; i < c.n; ++i) EXPECT_NEAR(eval[i], c.values[i], 4 * c.n * 2.2e-16 * c.values[0]) << c.name;
        EXPECT_LT(solve(false, c.n, a, eval, ascending.data()).values, 1.0) << c.name;
    }
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

TEST(Eigen, SingleTwinsOnTheMatrixOf50) {
    const int n = 50;
    const auto ad = test_matrix(0, n, 4);
    const std::vector<float> a(ad.begin(), ad.end());
    std::vector<float> eval;
    const double *reference = eigen_cases[3].values;  // (0, 50, 4)
    for (const bool sorted : {false, true}) {
        const Quality q = solve(sorted, n, a, eval, nullptr);
        EXPECT_LT(q.residual, 2.0);
        if (sorted) continue;
        EXPECT_LT(q.orthogonal, 2.0);
        std::sort(eval.begin(), eval.end());
        for (int i = 0; i < n; ++i) EXPECT_NEAR(eval[i], reference[i], 2.0 * n * 1.2e-7 * 10);
    }
}

// A = 1 u u' + 3 w w' with u = (0.6, -0.8), w = (0.8, 0.6): the vector of 1
// comes back as (-0.75, 1), that of 3 as (1, 0.75) (largest component 1);
// a diagonal matrix keeps its values in place with the unit vectors (sorted:
// by magnitude); the zero matrix gives 0 and the identity.
TEST(Eigen, SmallCasesAndVectorScaling) {
    const double off = -0.6 * 0.8 + 3 * 0.8 * 0.6;
    std::vector<double> d(25, 0.0), zero(25, 0.0), identity(25, 0.0), eval, vec;
    for (int i = 0; i < 5; ++i) d[i * 6] = std::vector<double>{4, -1, 7, 0, 2}[i], identity[i * 6] = 1;
    const struct { bool sorted; int n; std::vector<double> a, values, vectors; } cases[] = {
        {false, 1, {-3.5}, {-3.5}, {1}},
        {false, 2, {0.6 * 0.6 + 3 * 0.8 * 0.8, off, off, 0.8 * 0.8 + 3 * 0.6 * 0.6}, {3, 1}, {1, 0.75, -0.75, 1}},
        {false, 5, d, {4, -1, 7, 0, 2}, identity},
        {false, 5, identity, {1, 1, 1, 1, 1}, identity},
        {true, 5, zero, {0, 0, 0, 0, 0}, identity},
    };
    for (const auto &c : cases) {
        solve(c.sorted, c.n, c.a, eval, nullptr, &vec);
        for (int i = 0; i < c.n; ++i) EXPECT_NEAR(eval[i], c.values[i], 4e-15) << c.n << " value " << i;
        for (int i = 0; i < c.n * c.n; ++i) EXPECT_NEAR(vec[i], c.vectors[i], 1e-15) << c.n << " vector " << i;
    }
    solve(true, 5, d, eval, nullptr, &vec);
    EXPECT_EQ(eval, (std::vector<double>{7, 4, 2, -1, 0}));
    EXPECT_EQ(std::fabs(vec[2]), 1.0);
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

// In the sorted solver a NaN or an infinity (infinity over the scale is NaN)
// leaves a tridiagonal block whose iterations cannot converge: a warning
// (3, 20103) naming the routine, no stop, and the values and vectors as they
// stand, with a full permutation in iwork.  The unsorted solver ends its QL
// iterations with a fatal message.
template <class T>
double block_warning(T bad, bool sorted, std::vector<int> &order) {
    T a[9] = {1, 2, bad, 2, 1, T(0.5), bad, T(0.5), 3}, eval[3] = {}, evec[9], work[6];
    int three = 3, iwork[3] = {0, 0, 0};
    if (sorted) ZORVS_TWIN(e5csf, de5csf)(&three, a, &three, eval, evec, &three, work, iwork);
    else ZORVS_TWIN(e2csf, de2csf)(&three, a, &three, eval, evec, &three, work);
    order.assign(iwork, iwork + 3);
    std::sort(order.begin(), order.end());
    return std::isnan(eval[0]) && std::isnan(eval[1]) && std::isnan(eval[2]);
}

TEST(Eigen, MessagesAsRows) {
    double a[4] = {1, 0, 0, 1}, eval[2], evec[4], work[4];
    float af[4] = {1, 0, 0, 1}, ef[2], vf[4], wf[4];
    int iwork[2], zero = 0, one = 1, two = 2;
    std::vector<int> order;
    const std::vector<int> all = {1, 2, 3};
    expect_rows({
        {ZORVS_DO(zorvs_de2csf(&zero, a, &two, eval, evec, &two, work)), any, 5, 20407, "i1=0"},
        {ZORVS_DO(zorvs_de2csf(&two, a, &one, eval, evec, &two, work)), any, 5, 20408, "i1=1 i2=2"},
        {ZORVS_DO(zorvs_e2csf(&two, af, &two, ef, vf, &one, wf)), any, 5, 20409},
        {ZORVS_DO(zorvs_de5csf(&two, a, &one, eval, evec, &two, work, iwork)), any, 5, -1},
        {ZORVS_DO(zorvs_e5csf(&two, af, &two, ef, vf, &one, wf, iwork)), any, 5, -1, "", 0, "e5csf"},
        {ZORVS_CALL(block_warning(std::nan(""), false, order)), any, 4, 20410},
        {ZORVS_CALL(block_warning(NaN, true, order) && order == all), 1, 3, 20103, "", 0,
         "Error EIGEN_BLOCK_NO_CONVERGENCE from zorvs_de5csf."},
        {ZORVS_CALL(block_warning(Inf, true, order) && order == all), 1, 3, 20103},
        {ZORVS_CALL(block_warning(std::numeric_limits<float>::quiet_NaN(), true, order) && order == all), 1, 3, 20103,
         "", 0, "Error EIGEN_BLOCK_NO_CONVERGENCE from zorvs_e5csf."},
        {ZORVS_CALL(block_warning(-std::numeric_limits<float>::infinity(), true, order) && order == all), 1, 3, 20103},
    });
}

}  // namespace
