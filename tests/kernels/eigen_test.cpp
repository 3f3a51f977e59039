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

// Kind 0: uniform in [-1, 1]; 1: graded, scaled by 2^floor(-15 (i + j) / n);
// 2: blocks of ones on the diagonal (repeated values); 3: a singular sum of
// n / 4 outer products of small integers.
std::vector<double> test_matrix(int kind, int n, int seed) {
    std::vector<double> a(Index(n) * n);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) {
            double v = kind == 0   ? unit(i, j, seed)
                       : kind == 1 ? std::ldexp(unit(i, j, seed), -(((i + j) * 15 + n - 1) / n))
                       : kind == 2 ? double(i / 4 == j / 4)
                                   : 0.0;
            for (int r = 0; kind == 3 && r < n / 4; ++r)
                v += double(((r * 31 + i * 17) % 7 - 3) * ((r * 31 + j * 17) % 7 - 3));
            a[Index(j) * n + i] = a[Index(i) * n + j] = v;
        }
    return a;
}

// In units of n eps ||A||: the values against the reference (sorted), the
// residuals ||A v - lambda v|| of the vectors scaled to unit length; and
// max |V'V - I| in units of n eps.
struct Quality { double values = 0, residual = 0, orthogonal = 0; };

template <class T>
Quality assess(int n, const std::vector<T> &a, const std::vector<T> &eval, std::vector<T> evec,
               const double *reference) {
    const double eps = eps_of<T>;
    auto A = [&](int i, int j) { return double(a[Index(j) * n + i]); };
    auto V = [&](int i, int j) -> T & { return evec[Index(j) * n + i]; };
    double norm = 0;
    for (int j = 0; j < n; ++j) {
        double s = 0, length = 0;
        for (int i = 0; i < n; ++i) s += std::fabs(A(i, j));
        for (int i = 0; i < n; ++i) length += double(V(i, j)) * V(i, j);
        for (int i = 0; i < n; ++i) V(i, j) = T(V(i, j) / std::sqrt(length));
        norm = std::max(norm, s);
    }
    const double scale = n * eps * (norm == 0 ? 1 : norm);
    Quality q;
    for (int j = 0; j < n; ++j) {
        double r2 = 0;
        for (int i = 0; i < n; ++i) {
            double s = -double(eval[j]) * V(i, j);
            for (int k = 0; k < n; ++k) s += A(i, k) * V(k, j);
            r2 += s * s;
        }
        q.residual = std::max(q.residual, std::sqrt(r2) / scale);
        for (int k = 0; k <= j; ++k) {
            double s = 0;
            for (int i = 0; i < n; ++i) s += double(V(i, j)) * V(i, k);
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
Quality solve(bool sorted, int n, const std::vector<T> &a, std::vector<T> &eval, const double *reference) {
    std::vector<T> evec(Index(n) * n), work(2 * Index(n));
    std::vector<int> iwork(n);
    eval.assign(n, T(0));
    if (sorted) ZORVS_TWIN(e5csf, de5csf)(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data(), iwork.data());
    else ZORVS_TWIN(e2csf, de2csf)(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data());
    for (int i = 1; sorted && i < n; ++i) EXPECT_GE(std::fabs(eval[i - 1]), std::fabs(eval[i])) << "n " << n;
    return assess(n, a, eval, evec, reference);
}

// Both twins of both solvers on the generated matrices (the float twins on
// the matrix of 50, their values within 20 n float eps), then the data
// covariances, whose values R gives in decreasing order (all positive).
TEST(Eigen, GeneratedMatricesAndDataCovariancesAgainstReferenceBothSolvers) {
    std::vector<double> eval;
    std::vector<float> fval;
    for (const auto &c : eigen_cases) {
        const auto a = test_matrix(c.kind, c.n, c.seed);
        for (const bool sorted : {false, true}) {
            const Quality q = solve(sorted, c.n, a, eval, c.values);
            std::printf("[measure] eigen kind %d n %3d %s: values %.3f residual %.3f orthogonality %.3f "
                        "(units n eps ||A||)\n", c.kind, c.n, sorted ? "e5csf" : "e2csf", q.values, q.residual,
                        q.orthogonal);
            EXPECT_TRUE(q.values < 1 && q.residual < 1 && q.orthogonal < 1) << "kind " << c.kind << " n " << c.n;
            if (c.kind != 0 || c.n != 50) continue;
            const Quality f = solve(sorted, c.n, std::vector<float>(a.begin(), a.end()), fval, nullptr);
            EXPECT_TRUE(f.residual < 2 && (sorted || f.orthogonal < 2)) << f.residual << " " << f.orthogonal;
            std::sort(fval.begin(), fval.end());
            for (int i = 0; i < c.n; ++i) EXPECT_NEAR(fval[i], c.values[i], 20 * c.n * 1.2e-7);
        }
    }
    for (const auto &c : data_covariances) {
        const std::vector<double> a(c.cov, c.cov + Index(c.n) * c.n);
        const std::vector<double> ascending(std::reverse_iterator(c.values + c.n), std::reverse_iterator(c.values));
        const Quality q = solve(true, c.n, a, eval, ascending.data());
        EXPECT_TRUE(q.values < 1 && q.residual < 2 && q.orthogonal < 2) << c.name;
        for (int i = 0; i < c.n; ++i) EXPECT_NEAR(eval[i], c.values[i], 4 * c.n * 2.2e-16 * c.values[0]) << c.name;
        EXPECT_LT(solve(false, c.n, a, eval, ascending.data()).values, 1.0) << c.name;
    }
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
    double a[4] = {1, 0, 0, 1}, eval[2], evec[4], work[4], null[4] = {};
    float af[4] = {1, 0, 0, 1}, ef[2], vf[4], wf[4];
    int iwork[2], zero = 0, one = 1, two = 2;
    std::vector<int> order, all = {1, 2, 3};
    expect_rows({
        {ZORVS_DO(zorvs_de5csf(&two, null, &two, eval, evec, &two, work, iwork)), any, 0},
        {ZORVS_CALL(holds(eval, 0, 0) && holds(evec, 1, 0, 0, 1)), 1},  // the zero matrix: 0 and the identity
        {ZORVS_DO(zorvs_de2csf(&zero, a, &two, eval, evec, &two, work)), any, 5, 20407, "i1=0"},
        {ZORVS_DO(zorvs_de2csf(&two, a, &one, eval, evec, &two, work)), any, 5, 20408, "i1=1 i2=2"},
        {ZORVS_DO(zorvs_e2csf(&two, af, &two, ef, vf, &one, wf)), any, 5, 20409},
        {ZORVS_DO(zorvs_de5csf(&two, a, &one, eval, evec, &two, work, iwork)), any, 5, -1},
        {ZORVS_DO(zorvs_e5csf(&two, af, &two, ef, vf, &one, wf, iwork)), any, 5, -1, "", 0, "e5csf"},
        {ZORVS_CALL(block_warning(std::nan(""), false, order)), any, 4, 20410},
        {ZORVS_CALL(block_warning(NaN, true, order) && order == all), 1, 3, 20103, "", 0, "from zorvs_de5csf."},
        {ZORVS_CALL(block_warning(Inf, true, order) && order == all), 1, 3, 20103},
        {ZORVS_CALL(block_warning(float(NaN), true, order) && order == all), 1, 3, 20103, "", 0, "from zorvs_e5csf."},
        {ZORVS_CALL(block_warning(-float(Inf), true, order) && order == all), 1, 3, 20103},
    });
}

}  // namespace
