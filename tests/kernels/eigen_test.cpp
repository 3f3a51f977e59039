// Symmetric eigensystem: values against LAPACK (numpy eigvalsh, R eigen),
// residuals and orthogonality on random, graded, repeated-value, singular and
// data covariance matrices up to 500 x 500; edge cases and messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "frame/frame.hpp"
#include "frame/services.h"
#include "kernels/linalg.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

#include "../data/kernels/eigen_reference.inc"

// The same integer formulas as make_eigen_reference.py.
double unit(long long i, long long j, long long seed) {
    unsigned long long h =
        static_cast<unsigned long long>((i * 7919 + j * 104729 + seed * 15485863)) * 2654435761ULL % 4294967296ULL;
    return (static_cast<long long>(h % 20001) - 10000) / 10000.0;
}

std::vector<double> test_matrix(int kind, int n, int seed) {
    std::vector<double> a(static_cast<std::size_t>(n) * n);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) {
            double v;
            if (kind == 0) {
                v = unit(i, j, seed);
            } else if (kind == 1) {
                int e = -((i + j) * 15);
                // Python's // floors.
                e = e >= 0 ? e / n : -((-e + n - 1) / n);
                v = std::ldexp(unit(i, j, seed), e);
            } else if (kind == 2) {
                v = (i / 4) == (j / 4) ? 1.0 : 0.0;
            } else {
                double s = 0;
                for (int r = 0; r < n / 4; ++r) s += double(((r * 31 + i * 17) % 7 - 3) * ((r * 31 + j * 17) % 7 - 3));
                v = s;
            }
            a[static_cast<std::size_t>(j) * n + i] = a[static_cast<std::size_t>(i) * n + j] = v;
        }
    return a;
}

struct Quality {
    double values;     // max |lambda - reference| / (n eps ||A||)
    double residual;   // max ||A v - lambda v|| / (n eps ||A||), v of unit length
    double orthogonal; // max |V'V - I| / (n eps)
};

template <class T>
Quality assess(int n, const std::vector<T> &a, std::vector<T> eval, std::vector<T> evec, const double *reference) {
    const double eps = std::numeric_limits<T>::epsilon();
    double norm = 0;
    for (int j = 0; j < n; ++j) {
        double s = 0;
        for (int i = 0; i < n; ++i) s += std::fabs(double(a[std::size_t(j) * n + i]));
        norm = std::max(norm, s);
    }
    if (norm == 0) norm = 1;
    const double scale = n * eps * norm;
    for (int j = 0; j < n; ++j) {
        double s = 0;
        for (int i = 0; i < n; ++i) s += double(evec[std::size_t(j) * n + i]) * evec[std::size_t(j) * n + i];
        s = std::sqrt(s);
        for (int i = 0; i < n; ++i) evec[std::size_t(j) * n + i] = T(evec[std::size_t(j) * n + i] / s);
    }
    Quality q{0, 0, 0};
    for (int j = 0; j < n; ++j) {
        double r2 = 0;
        for (int i = 0; i < n; ++i) {
            double s = -double(eval[j]) * evec[std::size_t(j) * n + i];
            for (int k = 0; k < n; ++k) s += double(a[std::size_t(k) * n + i]) * evec[std::size_t(j) * n + k];
            r2 += s * s;
        }
        q.residual = std::max(q.residual, std::sqrt(r2) / scale);
        for (int k = 0; k <= j; ++k) {
            double s = 0;
            for (int i = 0; i < n; ++i) s += double(evec[std::size_t(j) * n + i]) * evec[std::size_t(k) * n + i];
            q.orthogonal = std::max(q.orthogonal, std::fabs(s - (j == k)) / (n * eps));
        }
    }
    if (reference) {
        std::vector<double> sorted(eval.begin(), eval.end());
        std::sort(sorted.begin(), sorted.end());
        for (int i = 0; i < n; ++i) q.values = std::max(q.values, std::fabs(sorted[i] - reference[i]) / scale);
    }
    return q;
}

TEST(Eigen, GeneratedMatricesAgainstLapackBothSolvers) {
    for (const auto &c : eigen_cases) {
        const int n = c.n;
        auto a = test_matrix(c.kind, n, c.seed);
        std::vector<double> eval(n), evec(std::size_t(n) * n), work(2 * n);
        std::vector<int> iwork(n);
        zorvs_de2csf(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data());
        Quality q2 = assess(n, a, eval, evec, c.values);
        zorvs_de5csf(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data(), iwork.data());
        Quality q5 = assess(n, a, eval, evec, c.values);
        for (int i = 1; i < n; ++i) ASSERT_GE(std::fabs(eval[i - 1]), std::fabs(eval[i])) << "n " << n;
        std::printf("[ eigen    ] kind %d n %3d  e2csf values %.3f residual %.3f orth %.3f | "
                    "e5csf values %.3f residual %.3f orth %.3f  (units n eps ||A||)\n",
                    c.kind, n, q2.values, q2.residual, q2.orthogonal, q5.values, q5.residual, q5.orthogonal);
        for (const Quality &q : {q2, q5}) {
            EXPECT_LT(q.values, 1.0) << "kind " << c.kind << " n " << n;
            EXPECT_LT(q.residual, 1.0) << "kind " << c.kind << " n " << n;
            EXPECT_LT(q.orthogonal, 1.0) << "kind " << c.kind << " n " << n;
        }
        EXPECT_EQ(zorvs_error_n1rty[1], 0);
    }
}

TEST(Eigen, CovariancesOfRealDataAgainstR) {
    for (const auto &c : data_covariances) {
        const int n = c.n;
        std::vector<double> a(c.cov, c.cov + std::size_t(n) * n);
        std::vector<double> eval(n), evec(std::size_t(n) * n), work(2 * n);
        std::vector<int> iwork(n);
        zorvs_de5csf(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data(), iwork.data());
        // R gives the values in decreasing order; all are positive here.
        std::vector<double> ascending(c.values, c.values + n);
        std::reverse(ascending.begin(), ascending.end());
        Quality q = assess(n, a, eval, evec, ascending.data());
        EXPECT_LT(q.values, 1.0) << c.name;
        EXPECT_LT(q.residual, 2.0) << c.name;
        EXPECT_LT(q.orthogonal, 2.0) << c.name;
        for (int i = 0; i < n; ++i) EXPECT_NEAR(eval[i], c.values[i], 4 * n * 2.2e-16 * std::fabs(c.values[0])) << c.name;
        zorvs_de2csf(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data());
        q = assess(n, a, eval, evec, ascending.data());
        EXPECT_LT(q.values, 1.0) << c.name;
    }
}

TEST(Eigen, SinglePrecisionTwins) {
    const int n = 50;
    auto ad = test_matrix(0, n, 4);
    std::vector<float> a(ad.begin(), ad.end());
    std::vector<float> eval(n), evec(std::size_t(n) * n), work(2 * n);
    std::vector<int> iwork(n);
    const double *reference = eigen_cases[3].values;  // (0, 50, 4)
    zorvs_e2csf(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data());
    Quality q = assess(n, a, eval, evec, nullptr);
    EXPECT_LT(q.residual, 2.0);
    EXPECT_LT(q.orthogonal, 2.0);
    std::vector<double> sorted(eval.begin(), eval.end());
    std::sort(sorted.begin(), sorted.end());
    for (int i = 0; i < n; ++i) EXPECT_NEAR(sorted[i], reference[i], 2.0 * n * 1.2e-7 * 10);
    zorvs_e5csf(&n, a.data(), &n, eval.data(), evec.data(), &n, work.data(), iwork.data());
    q = assess(n, a, eval, evec, nullptr);
    EXPECT_LT(q.residual, 2.0);
    for (int i = 1; i < n; ++i) EXPECT_GE(std::fabs(eval[i - 1]), std::fabs(eval[i]));
}

TEST(Eigen, SmallCasesAndVectorScaling) {
    // n = 1.
    int one = 1;
    double a1 = -3.5, v1 = 0, e1 = 0, w1[2];
    int iw1;
    zorvs_de2csf(&one, &a1, &one, &e1, &v1, &one, w1);
    EXPECT_EQ(e1, -3.5);
    EXPECT_EQ(v1, 1.0);
    zorvs_de5csf(&one, &a1, &one, &e1, &v1, &one, w1, &iw1);
    EXPECT_EQ(e1, -3.5);
    EXPECT_EQ(v1, 1.0);
    // A = 1 u u' + 3 w w' with u = (0.6, -0.8), w = (0.8, 0.6): the vector of 1
    // comes back as (-0.75, 1), that of 3 as (1, 0.75).
    int two = 2;
    double a[] = {0.6 * 0.6 + 3 * 0.8 * 0.8, -0.6 * 0.8 + 3 * 0.8 * 0.6, -0.6 * 0.8 + 3 * 0.8 * 0.6,
                  0.8 * 0.8 + 3 * 0.6 * 0.6};
    double eval[2], evec[4], work[4];
    zorvs_de2csf(&two, a, &two, eval, evec, &two, work);
    int k1 = std::fabs(eval[0] - 1) < 1e-12 ? 0 : 1;
    EXPECT_NEAR(eval[k1], 1.0, 1e-15);
    EXPECT_NEAR(eval[1 - k1], 3.0, 4e-15);
    EXPECT_NEAR(evec[2 * k1], -0.75, 1e-15);
    EXPECT_EQ(evec[2 * k1 + 1], 1.0);
    EXPECT_EQ(evec[2 * (1 - k1)], 1.0);
    EXPECT_NEAR(evec[2 * (1 - k1) + 1], 0.75, 1e-15);
    // The identity and a diagonal matrix: values in place, vectors the unit ones.
    const int n = 5;
    double d[25] = {0}, id[25] = {0}, ev[5], vec[25], w[10];
    const double diag[] = {4, -1, 7, 0, 2};
    for (int i = 0; i < n; ++i) {
        d[i * 6] = diag[i];
        id[i * 6] = 1;
    }
    zorvs_de2csf(&n, d, &n, ev, vec, &n, w);
    for (int i = 0; i < n; ++i) {
        EXPECT_EQ(ev[i], diag[i]);
        for (int j = 0; j < n; ++j) EXPECT_EQ(vec[i * 5 + j], i == j ? 1.0 : 0.0);
    }
    zorvs_de2csf(&n, id, &n, ev, vec, &n, w);
    for (int i = 0; i < n; ++i) EXPECT_EQ(ev[i], 1.0);
    // Sorted: 7, 4, 2, -1, 0 by magnitude.
    int iwork[5];
    zorvs_de5csf(&n, d, &n, ev, vec, &n, w, iwork);
    const double want[] = {7, 4, 2, -1, 0};
    for (int i = 0; i < n; ++i) EXPECT_EQ(ev[i], want[i]);
    EXPECT_EQ(std::fabs(vec[0 * 5 + 2]), 1.0);
    // The zero matrix: values 0, vectors the identity.
    double z[25] = {0};
    zorvs_de5csf(&n, z, &n, ev, vec, &n, w, iwork);
    for (int i = 0; i < n; ++i) EXPECT_EQ(ev[i], 0.0);
    EXPECT_EQ(vec[6], 1.0);
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

TEST(Eigen, ArgumentErrors) {
    zorvs_test::Quiet q;
    double a[4] = {1, 0, 0, 1}, eval[2], evec[4], work[4];
    int iwork[2];
    int zero = 0, one = 1, two = 2;
    zorvs_de2csf(&zero, a, &two, eval, evec, &two, work);
    EXPECT_EQ(zorvs_error_code(), 20407);
    EXPECT_EQ(zorvs_error_param.i[1], 0);
    zorvs_de2csf(&two, a, &one, eval, evec, &two, work);
    EXPECT_EQ(zorvs_error_code(), 20408);
    EXPECT_EQ(zorvs_error_param.i[1], 1);
    EXPECT_EQ(zorvs_error_param.i[2], 2);
    float af[4] = {1, 0, 0, 1}, ef[2], vf[4], wf[4];
    zorvs_e2csf(&two, af, &two, ef, vf, &one, wf);
    EXPECT_EQ(zorvs_error_code(), 20409);
    EXPECT_EQ(zorvs_error_n1rty[1], 5);
    zorvs_de5csf(&two, a, &one, eval, evec, &two, work, iwork);
    EXPECT_EQ(zorvs_error_n1rty[1], 5);
    zorvs_e5csf(&two, af, &two, ef, vf, &one, wf, iwork);
    EXPECT_EQ(zorvs_error_n1rty[1], 5);
    EXPECT_NE(q.errors.take().find("e5csf"), std::string::npos);
}

TEST(Eigen, NaNInputEndsTheQLIterationsWithAFatalMessage) {
    zorvs_test::Quiet q;
    const double nan = std::nan("");
    double a[9] = {1, 2, nan, 2, 1, 0.5, nan, 0.5, 3}, eval[3], evec[9], work[6];
    int three = 3;
    zorvs_de2csf(&three, a, &three, eval, evec, &three, work);
    EXPECT_EQ(zorvs_error_code(), 20410);
    EXPECT_EQ(zorvs_error_n1rty[1], 4);
}

// In the sorted solver a NaN or an infinity (infinity over the scale is
// NaN) leaves a tridiagonal block whose iterations cannot converge: a
// warning (3, 20103), no stop, and the values and vectors as they stand,
// still ordered and with a full permutation in iwork.
template <class T>
void expect_block_warning(T bad) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    T a[9] = {1, 2, bad, 2, 1, T(0.5), bad, T(0.5), 3}, eval[3], evec[9], work[6];
    int three = 3, iwork[3] = {0, 0, 0};
    if constexpr (std::is_same_v<T, float>)
        zorvs_e5csf(&three, a, &three, eval, evec, &three, work, iwork);
    else
        zorvs_de5csf(&three, a, &three, eval, evec, &three, work, iwork);
    EXPECT_EQ(zorvs_error_n1rty[1], 3);
    EXPECT_EQ(zorvs_error_code(), 20103);
    EXPECT_TRUE(log.has(3, 20103));
    EXPECT_EQ(log.entries().size(), 1u);
    const std::string text = q.errors.take();
    const std::string head = std::is_same_v<T, float> ? "Error EIGEN_BLOCK_NO_CONVERGENCE from zorvs_e5csf."
                                                      : "Error EIGEN_BLOCK_NO_CONVERGENCE from zorvs_de5csf.";
    EXPECT_EQ(text.find("*** WARNING "), 1u) << text;
    EXPECT_NE(text.find(head), std::string::npos) << text;
    for (T v : eval) EXPECT_TRUE(std::isnan(v));
    std::vector<int> order(iwork, iwork + 3);
    std::sort(order.begin(), order.end());
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(Eigen, NaNOrInfinityInTheSortedSolverWarnsOfABlockThatDidNotConverge) {
    expect_block_warning(std::numeric_limits<double>::quiet_NaN());
    expect_block_warning(std::numeric_limits<double>::infinity());
    expect_block_warning(std::numeric_limits<float>::quiet_NaN());
    expect_block_warning(-std::numeric_limits<float>::infinity());
}

TEST(EigenDeathTest, BadOrderStops) {
    double a = 1, e, v, w[2];
    int zero = 0;
    EXPECT_EXIT(zorvs_de2csf(&zero, &a, &zero, &e, &v, &zero, w), ::testing::ExitedWithCode(5), "20407|e2csf");
}

}  // namespace
