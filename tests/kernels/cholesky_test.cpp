// Cholesky, generalized triangular solves and inverse, the sweep operator and
// the small matrix utilities.  References are exact: matrices A = R'R built
// from integer triangles R, so that the factor, the solutions and the inverses
// are known rationals.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "frame/frame.hpp"
#include "frame/services.h"
#include "kernels/linalg.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

// A = R'R from an integer upper triangle R (n x n, column-major); rows listed
// in `dependent` are zero, which makes A singular of rank n - |dependent|.
template <class T>
void from_triangle(int n, const std::vector<int> &dependent, std::vector<T> &r, std::vector<T> &a, int seed = 1) {
    r.assign(std::size_t(n) * n, T(0));
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) {
            bool zero = false;
            for (int d : dependent) zero |= d == i;
            if (zero) continue;
            r[std::size_t(j) * n + i] = i == j ? T(2 + (i * seed) % 3) : T((i * 5 + j * 3 + seed) % 7 - 3);
        }
    a.assign(std::size_t(n) * n, T(0));
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            T s = 0;
            for (int k = 0; k < n; ++k) s += r[std::size_t(i) * n + k] * r[std::size_t(j) * n + k];
            a[std::size_t(j) * n + i] = s;
        }
}

template <class T>
double max_abs(const std::vector<T> &x) {
    double m = 0;
    for (T v : x) m = std::fmax(m, std::fabs(double(v)));
    return m;
}

template <class T>
void chfac(int n, const std::vector<T> &a, T tol, int &rank, std::vector<T> &fac) {
    fac.assign(a.size(), T(-9));
    if constexpr (std::is_same_v<T, float>)
        zorvs_chfac(&n, a.data(), &n, &tol, &rank, fac.data(), &n);
    else
        zorvs_dchfac(&n, a.data(), &n, &tol, &rank, fac.data(), &n);
}

template <class T>
class CholeskyTwins : public ::testing::Test {};
using Reals = ::testing::Types<float, double>;
TYPED_TEST_SUITE(CholeskyTwins, Reals);

TYPED_TEST(CholeskyTwins, FactorReproducesTheInputAndTheExactTriangle) {
    using T = TypeParam;
    const double eps = std::numeric_limits<T>::epsilon();
    for (int n : {1, 2, 5, 12, 30}) {
        for (auto dep : {std::vector<int>{}, std::vector<int>{1}, std::vector<int>{0, 3, 4}}) {
            if (n < 6 && !dep.empty()) continue;
            std::vector<T> r, a, fac;
            from_triangle<T>(n, dep, r, a);
            int rank = -1;
            chfac<T>(n, a, T(100 * eps), rank, fac);
            EXPECT_EQ(rank, n - int(dep.size())) << n;
            for (int d : dep) EXPECT_EQ(fac[std::size_t(d) * n + d], T(0));
            // R'R against A, relative to the size of A; R against the exact triangle.
            double worst = 0, worst_r = 0;
            for (int j = 0; j < n; ++j)
                for (int i = 0; i < n; ++i) {
                    double s = 0;
                    for (int k = 0; k < n; ++k) s += double(fac[std::size_t(i) * n + k]) * fac[std::size_t(j) * n + k];
                    worst = std::fmax(worst, std::fabs(s - a[std::size_t(j) * n + i]));
                    worst_r = std::fmax(worst_r, std::fabs(double(fac[std::size_t(j) * n + i]) - r[std::size_t(j) * n + i]));
                    if (i > j) {
                        EXPECT_EQ(fac[std::size_t(j) * n + i], T(0));
                    }
                }
            EXPECT_LE(worst, 8 * eps * max_abs(a)) << n;
            EXPECT_LE(worst_r, 1e3 * n * eps * max_abs(r)) << n;
        }
    }
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

TYPED_TEST(CholeskyTwins, RankOneAndIndefinite) {
    using T = TypeParam;
    zorvs_test::Quiet q;
    // Rank one: v v' with v = (1, 2, -2).
    std::vector<T> a = {1, 2, -2, 2, 4, -4, -2, -4, 4}, fac;
    int rank = -1;
    chfac<T>(3, a, T(1e-5), rank, fac);
    EXPECT_EQ(rank, 1);
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
    const T want[] = {1, 0, 0, 2, 0, 0, -2, 0, 0};
    for (int k = 0; k < 9; ++k) EXPECT_NEAR(fac[k], want[k], 1e-6) << k;
    // Eigenvalues 3 and -1 in the leading 2 x 2: column 2 is the first bad one.
    std::vector<T> b = {1, 2, 0, 2, 1, 0, 0, 0, 5};
    chfac<T>(3, b, T(1e-5), rank, fac);
    EXPECT_EQ(zorvs_error_n1rty[1], 3);
    EXPECT_EQ(zorvs_error_code(), 20406);
    EXPECT_EQ(zorvs_error_param.i[1], 2);
    EXPECT_EQ(fac[4], T(0));
    EXPECT_EQ(rank, 2);
    // A dependent row that the next column contradicts: [[1,1,1],[1,1,0],[1,0,1]].
    std::vector<T> c = {1, 1, 1, 1, 1, 0, 1, 0, 1};
    chfac<T>(3, c, T(1e-5), rank, fac);
    EXPECT_EQ(zorvs_error_code(), 20406);
    EXPECT_EQ(zorvs_error_param.i[1], 3);
    // Tolerance outside [0, 1].
    chfac<T>(3, c, T(1.5), rank, fac);
    EXPECT_EQ(zorvs_error_n1rty[1], 5);
    EXPECT_EQ(zorvs_error_code(), 20405);
    EXPECT_DOUBLE_EQ(zorvs_error_param.r[1], double(T(1.5)));
    int n = 3, small = 2;
    T tol = 0;
    if constexpr (std::is_same_v<T, float>)
        zorvs_chfac(&n, c.data(), &small, &tol, &rank, fac.data(), &n);
    else
        zorvs_dchfac(&n, c.data(), &small, &tol, &rank, fac.data(), &n);
    EXPECT_EQ(zorvs_error_n1rty[1], 5);
}

// zorvs_girts through one signature for both twins.
template <class T>
void girts(int n, const std::vector<T> &r, int nb, const std::vector<T> &b, int ipath, int &rank, std::vector<T> &x,
           std::vector<T> &rinv) {
    x.assign(std::size_t(n) * (nb ? nb : 1), T(-9));
    rinv.assign(std::size_t(n) * n, T(-9));
    if constexpr (std::is_same_v<T, float>)
        zorvs_girts(&n, r.data(), &n, &nb, b.data(), &n, &ipath, &rank, x.data(), &n, rinv.data(), &n);
    else
        zorvs_dgirts(&n, r.data(), &n, &nb, b.data(), &n, &ipath, &rank, x.data(), &n, rinv.data(), &n);
}

TYPED_TEST(CholeskyTwins, GeneralizedSolveAndInverseInFourPaths) {
    using T = TypeParam;
    const double tol = 1e3 * std::numeric_limits<T>::epsilon();
    const int n = 8;
    for (auto dep : {std::vector<int>{}, std::vector<int>{2, 5}}) {
        std::vector<T> r, a;
        from_triangle<T>(n, dep, r, a, 3);
        // Right-hand sides b = R z and c = R'z with z zero on dependent rows.
        std::vector<T> z(2 * n), b(2 * n), c(2 * n);
        for (int k = 0; k < 2; ++k)
            for (int i = 0; i < n; ++i) {
                bool d = false;
                for (int v : dep) d |= v == i;
                z[k * n + i] = d ? T(0) : T((i * 3 + k * 5) % 9 - 4);
            }
        for (int k = 0; k < 2; ++k)
            for (int i = 0; i < n; ++i) {
                T s = 0, t = 0;
                for (int j = 0; j < n; ++j) {
                    s += r[std::size_t(j) * n + i] * z[k * n + j];
                    t += r[std::size_t(i) * n + j] * z[k * n + j];
                }
                b[k * n + i] = s;
                c[k * n + i] = t;
            }
        for (int path = 1; path <= 4; ++path) {
            zorvs_test::Quiet q;
            std::vector<T> x, rinv;
            int rank = -1;
            girts<T>(n, r, 2, path % 2 ? b : c, path, rank, x, rinv);
            EXPECT_EQ(zorvs_error_n1rty[1], 0) << path << " code " << zorvs_error_code() << " i1 " << zorvs_error_param.i[1] << " i2 " << zorvs_error_param.i[2];
            EXPECT_EQ(rank, n - int(dep.size()));
            for (int k = 0; k < 2 * n; ++k) EXPECT_NEAR(x[k], z[k], tol * 10) << "path " << path << " k " << k;
            if (path < 3) continue;
            // R Rinv R = R (a generalized inverse); Rinv is zero on dependent rows and columns.
            for (int j = 0; j < n; ++j)
                for (int i = 0; i < n; ++i) {
                    double s = 0;
                    for (int k = 0; k < n; ++k)
                        for (int l = 0; l < n; ++l)
                            s += double(r[std::size_t(k) * n + i]) * rinv[std::size_t(l) * n + k] * r[std::size_t(j) * n + l];
                    EXPECT_NEAR(s, r[std::size_t(j) * n + i], tol * 50);
                    for (int d : dep) {
                        if (i == d || j == d) {
                            EXPECT_EQ(rinv[std::size_t(j) * n + i], T(0));
                        }
                    }
                    if (i > j) {
                        EXPECT_EQ(rinv[std::size_t(j) * n + i], T(0));
                    }
                }
        }
        if (dep.empty()) continue;
        // Inconsistent systems: R x = b with b(3) not 0, R'x = c with a residual on row 6.
        zorvs_test::Quiet q;
        std::vector<T> x, rinv, bad = b;
        bad[2] += T(1);
        int rank = -1;
        girts<T>(n, r, 2, bad, 1, rank, x, rinv);
        EXPECT_EQ(zorvs_error_n1rty[1], 3);
        EXPECT_EQ(zorvs_error_code(), 11058);
        EXPECT_EQ(zorvs_error_param.i[1], 3);
        EXPECT_EQ(zorvs_error_param.i[2], 1);
        EXPECT_EQ(x[2], T(0));
        std::vector<T> badc = c;
        badc[n + 5] += T(1);
        girts<T>(n, r, 2, badc, 4, rank, x, rinv);
        EXPECT_EQ(zorvs_error_code(), 11059);
        EXPECT_EQ(zorvs_error_param.i[1], 6);
        EXPECT_EQ(zorvs_error_param.i[2], 2);
        // Bad path.
        girts<T>(n, r, 1, b, 5, rank, x, rinv);
        EXPECT_EQ(zorvs_error_n1rty[1], 5);
    }
}

template <class T>
void sweep(int k, int n, std::vector<T> &a, int irev, T tol, const std::vector<T> &d, std::vector<T> &isw) {
    if constexpr (std::is_same_v<T, float>)
        zorvs_gswep(&k, &n, a.data(), &n, &irev, &tol, d.data(), isw.data());
    else
        zorvs_dgswep(&k, &n, a.data(), &n, &irev, &tol, d.data(), isw.data());
}

TYPED_TEST(CholeskyTwins, DependentRowResidualIsJudgedOnTheScaleOfItsTerms) {
    using T = TypeParam;
    // A well-conditioned triangle with entries that do not round exactly and
    // rows 4 and 9 (from 0) zero; c = R'z rounded in T is consistent.  Its
    // rounding must not be reported; a change of 1e-3 (float) or 1e-9
    // (double) relative to the terms of row 10 must be, as (3, 11059) with
    // i1 = 10 and i2 = the right-hand side.
    const int n = 12, nb = 1;
    std::vector<T> r(std::size_t(n) * n, T(0));
    unsigned long long s = 7;
    auto next = [&] {
        s = s * 6364136223846793005ULL + 1442695040888963407ULL;
        return double(s >> 11) / 9007199254740992.0 - 0.5;
    };
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i)
            if (i != 4 && i != 9) r[std::size_t(j) * n + i] = T(i == j ? 3 + next() : next());
    const double change = std::is_same_v<T, float> ? 1e-3 : 1e-9;
    int warned = 0;
    for (int trial = 0; trial < 200; ++trial) {
        std::vector<T> z(n), c(n);
        for (int i = 0; i < n; ++i) z[i] = (i == 4 || i == 9) ? T(0) : T(100 * next());
        double terms = 0;  // of row 10: sum of |r(h,10) z(h)|
        for (int i = 0; i < n; ++i) {
            T t = 0;
            for (int h = 0; h <= i; ++h) t += r[std::size_t(i) * n + h] * z[h];
            c[i] = t;
            if (i == 9)
                for (int h = 0; h < i; ++h) terms += std::fabs(double(r[std::size_t(i) * n + h]) * z[h]);
        }
        zorvs_test::Quiet q;
        std::vector<T> x, rinv;
        int rank = -1;
        for (int path : {2, 4}) {
            girts<T>(n, r, nb, c, path, rank, x, rinv);
            warned += zorvs_error_n1rty[1] != 0;
        }
        EXPECT_EQ(rank, n - 2);
        std::vector<T> bad = c;
        bad[9] = T(double(c[9]) + change * terms);
        girts<T>(n, r, nb, bad, 2, rank, x, rinv);
        EXPECT_EQ(zorvs_error_n1rty[1], 3);
        EXPECT_EQ(zorvs_error_code(), 11059);
        EXPECT_EQ(zorvs_error_param.i[1], 10);
        EXPECT_EQ(zorvs_error_param.i[2], 1);
        EXPECT_EQ(x[9], T(0));
    }
    EXPECT_EQ(warned, 0);
}

template <class T>
class SweepTwins : public ::testing::Test {};
TYPED_TEST_SUITE(SweepTwins, Reals);

// With S the swept rows (isw = -1) and T the rest, the swept matrix B must
// satisfy A_SS B_SS = I, A_SS B_ST = A_ST and B_TT = A_TT - A_TS B_ST; checked
// through these products, in double, without forming an inverse.
template <class T>
double sweep_identity_error(int n, const std::vector<T> &a, const std::vector<T> &b, const std::vector<T> &isw) {
    auto A = [&](int i, int j) { return double(a[std::size_t(j) * n + i]); };
    auto B = [&](int i, int j) { return double(i <= j ? b[std::size_t(j) * n + i] : b[std::size_t(i) * n + j]); };
    auto swept = [&](int i) { return isw[i] < T(0); };
    double worst = 0;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            double want, got = 0;
            if (swept(i) && swept(j)) {  // (A_SS B_SS)(i,j) = delta
                for (int k = 0; k < n; ++k)
                    if (swept(k)) got += A(i, k) * B(k, j);
                want = i == j;
            } else if (swept(i)) {  // (A_SS B_ST)(i,j) = A(i,j)
                for (int k = 0; k < n; ++k)
                    if (swept(k)) got += A(i, k) * B(k, j);
                want = A(i, j);
            } else if (!swept(j)) {  // B(i,j) + (A_TS B_ST)(i,j) = A(i,j)
                got = B(i, j);
                for (int k = 0; k < n; ++k)
                    if (swept(k)) got += A(i, k) * B(k, j);
                want = A(i, j);
            } else {
                continue;  // the T x S half mirrors the S x T one
            }
            worst = std::fmax(worst, std::fabs(got - want));
        }
    return worst;
}

TYPED_TEST(SweepTwins, SweepingAllRowsGivesTheInverseAndTwiceRestores) {
    using T = TypeParam;
    const double eps = std::numeric_limits<T>::epsilon();
    const int n = 6;
    std::vector<T> r, a;
    from_triangle<T>(n, {}, r, a, 2);
    std::vector<T> d(n), isw(n, T(1)), s = a;
    for (int i = 0; i < n; ++i) d[i] = a[i * (n + 1)];
    for (int k : {3, 1, 6, 2, 5, 4}) sweep<T>(k, n, s, 1, T(1e-4), d, isw);
    for (T v : isw) EXPECT_EQ(v, T(-1));
    // Upper triangle of the inverse: A S = I.
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            double sum = 0;
            for (int k = 0; k < n; ++k) {
                T skj = k <= j ? s[std::size_t(j) * n + k] : s[std::size_t(k) * n + j];
                sum += double(a[std::size_t(k) * n + i]) * skj;
            }
            EXPECT_NEAR(sum, i == j, 1e4 * eps);
        }
    // Sweep back in another order: the upper triangle returns.
    for (int k : {2, 4, 6, 1, 3, 5}) sweep<T>(k, n, s, 1, T(1e-4), d, isw);
    for (T v : isw) EXPECT_EQ(v, T(1));
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) EXPECT_NEAR(s[std::size_t(j) * n + i], a[std::size_t(j) * n + i], 1e3 * eps * max_abs(a));
    // One row twice: restores.
    s = a;
    sweep<T>(2, n, s, 1, T(0), d, isw);
    sweep<T>(2, n, s, 1, T(0), d, isw);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) EXPECT_NEAR(s[std::size_t(j) * n + i], a[std::size_t(j) * n + i], 100 * eps * max_abs(a));
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

TYPED_TEST(SweepTwins, PartlySweptBlocksForwardAndReverse) {
    using T = TypeParam;
    const double eps = std::numeric_limits<T>::epsilon();
    const int n = 6;
    std::vector<T> r, a;
    from_triangle<T>(n, {}, r, a, 3);
    std::vector<T> d(n), isw(n, T(1)), s = a;
    for (int i = 0; i < n; ++i) d[i] = a[i * (n + 1)];
    const double bound = 1e4 * eps * max_abs(a);
    // Forward sweeps into S = {2, 5}, then {2, 5, 1, 4}, then a reverse sweep
    // of 5 with others swept, leaving {2, 1, 4}, and of 2, leaving {1, 4}.
    for (int k : {2, 5}) sweep<T>(k, n, s, 1, T(1e-4), d, isw);
    EXPECT_LE(sweep_identity_error(n, a, s, isw), bound);
    for (int k : {1, 4}) sweep<T>(k, n, s, 1, T(1e-4), d, isw);
    EXPECT_LE(sweep_identity_error(n, a, s, isw), bound);
    sweep<T>(5, n, s, 1, T(1e-4), d, isw);
    EXPECT_EQ(isw[4], T(1));
    EXPECT_LE(sweep_identity_error(n, a, s, isw), bound);
    sweep<T>(2, n, s, 1, T(1e-4), d, isw);
    EXPECT_LE(sweep_identity_error(n, a, s, isw), bound);
    // The swept diagonal holds the inverse of A_SS: positive.
    EXPECT_GT(s[0], T(0));
    EXPECT_GT(s[3 * (n + 1)], T(0));
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

TYPED_TEST(SweepTwins, AnEarlierRowLosingItsResidualRefusesThePivot) {
    using T = TypeParam;
    // X = (x1, x2, x3) with x1 = x2 + x3 + (0, 0, 0.1, 0), x2 = (10, 0, 0, 0),
    // x3 = (0, 1, 0, 0).  After rows 1 and 2, row 3 keeps 0.0099 of its
    // diagonal 1, but with 3 swept row 1 would keep only 0.01 of 101.01
    // (9.9e-5 of it).  So tol 1e-3 refuses the sweep of 3, tol 1e-5 takes it.
    const int n = 3;
    const std::vector<T> a = {T(101.01), 100, 1, 100, 100, 0, 1, 0, 1};
    const std::vector<T> d = {T(101.01), 100, 1};
    std::vector<T> s = a, isw(n, T(1));
    sweep<T>(1, n, s, 1, T(1e-3), d, isw);
    sweep<T>(2, n, s, 1, T(1e-3), d, isw);
    const std::vector<T> before = s;
    sweep<T>(3, n, s, 1, T(1e-3), d, isw);
    EXPECT_EQ(s, before);
    EXPECT_EQ(isw[2], T(1));
    sweep<T>(3, n, s, 1, T(1e-5), d, isw);
    EXPECT_EQ(isw[2], T(-1));
    // Now B = inverse(A); its (1,1) element is 1/0.01 = 100.
    EXPECT_NEAR(double(s[0]), 100.0, 1e3 * std::numeric_limits<T>::epsilon() * 100 * 101);
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

TYPED_TEST(SweepTwins, DependentRowIsRefusedAndChecksRaise) {
    using T = TypeParam;
    // Row 3 = row 1 + row 2 in X, so A = X'X is singular on the third pivot.
    const int n = 3;
    std::vector<T> a = {2, 1, 3, 1, 2, 3, 3, 3, 6};
    std::vector<T> d = {2, 2, 6}, isw(n, T(1));
    sweep<T>(1, n, a, 1, T(1e-3), d, isw);
    sweep<T>(2, n, a, 1, T(1e-3), d, isw);
    std::vector<T> before = a;
    sweep<T>(3, n, a, 1, T(1e-3), d, isw);  // refused, left alone
    EXPECT_EQ(a, before);
    EXPECT_EQ(isw[2], T(1));
    sweep<T>(3, n, a, 0, T(1e-3), d, isw);  // refused, row and column zeroed
    EXPECT_EQ(a[6], T(0));
    EXPECT_EQ(a[7], T(0));
    EXPECT_EQ(a[8], T(0));
    EXPECT_EQ(a[0], before[0]);
    EXPECT_EQ(isw[2], T(1));
    zorvs_test::Quiet q;
    sweep<T>(1, n, a, 1, T(2), d, isw);
    EXPECT_EQ(zorvs_error_code(), 20405);
    std::vector<T> neg = {2, -1, 6};
    sweep<T>(1, n, a, 1, T(0.1), neg, isw);
    EXPECT_EQ(zorvs_error_code(), 20417);
    EXPECT_EQ(zorvs_error_param.i[1], 2);
    std::vector<T> odd = {1, T(0.5), -1};
    sweep<T>(1, n, a, 1, T(0.1), d, odd);
    EXPECT_EQ(zorvs_error_code(), 20418);
    EXPECT_EQ(zorvs_error_param.i[1], 2);
    sweep<T>(4, n, a, 1, T(0.1), d, isw);
    EXPECT_EQ(zorvs_error_n1rty[1], 5);
    sweep<T>(1, n, a, 2, T(0.1), d, isw);
    EXPECT_EQ(zorvs_error_n1rty[1], 5);
}

TEST(Cholesky, SmallUtilities) {
    // B = A'A.
    int one = 1, three = 3, two = 2;
    double x = -3, b = 0;
    zorvs_dmxtxf(&one, &one, &x, &one, &one, &b, &one);
    EXPECT_EQ(b, 9.0);
    float a32[] = {1, 2, 3, 4, 5, 6}, b22[4];
    zorvs_mxtxf(&three, &two, a32, &three, &two, b22, &two);
    EXPECT_EQ(b22[0], 14.0f);
    EXPECT_EQ(b22[1], 32.0f);
    EXPECT_EQ(b22[2], 32.0f);
    EXPECT_EQ(b22[3], 77.0f);
    // Copy, fill, norm.
    double m[9] = {1, -9, -9, 2, 3, -9, -4, 5, 6}, c[9] = {0};
    zorvs_dcrgrg(&three, m, &three, c, &three);
    for (int k = 0; k < 9; ++k) EXPECT_EQ(c[k], m[k]);
    zorvs_dcsfrg(&three, c, &three);
    EXPECT_EQ(c[1], 2.0);
    EXPECT_EQ(c[2], -4.0);
    EXPECT_EQ(c[5], 5.0);
    double norm = 0;
    zorvs_dnr1rr(&three, &three, c, &three, &norm);
    EXPECT_EQ(norm, 15.0);  // |-4| + 5 + 6
    float cf[9];
    for (int k = 0; k < 9; ++k) cf[k] = float(m[k]);
    zorvs_csfrg(&three, cf, &three);
    float nf = 0;
    zorvs_nr1rr(&two, &three, cf, &three, &nf);
    EXPECT_EQ(nf, 9.0f);  // |-4| + 5
    float copy[9];
    zorvs_crgrg(&three, cf, &three, copy, &three);
    EXPECT_EQ(copy[7], 5.0f);
    // Primes.
    int n = 360, nf2 = 0, f[9], e[9], p[9];
    zorvs_prime(&n, &nf2, f, e, p);
    ASSERT_EQ(nf2, 3);
    EXPECT_EQ(f[0], 2);
    EXPECT_EQ(e[0], 3);
    EXPECT_EQ(p[0], 8);
    EXPECT_EQ(f[1], 3);
    EXPECT_EQ(p[1], 9);
    EXPECT_EQ(f[2], 5);
    n = 2147483647;  // prime
    zorvs_prime(&n, &nf2, f, e, p);
    EXPECT_EQ(nf2, 1);
    EXPECT_EQ(p[0], 2147483647);
    n = 15 * 1001 - 1;  // 15014 = 2 * 7507
    zorvs_prime(&n, &nf2, f, e, p);
    EXPECT_EQ(nf2, 2);
    EXPECT_EQ(f[1], 7507);
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

TEST(Cholesky, UtilityMessages) {
    zorvs_test::Quiet q;
    int zero = 0, one = 1, two = 2, three = 3;
    double a[9] = {0}, b[9] = {0}, norm;
    zorvs_dmxtxf(&zero, &two, a, &three, &two, b, &two);
    EXPECT_EQ(zorvs_error_code(), 20136);
    zorvs_dmxtxf(&three, &two, a, &two, &two, b, &two);
    EXPECT_EQ(zorvs_error_code(), 20137);
    zorvs_dmxtxf(&three, &two, a, &three, &three, b, &three);
    EXPECT_EQ(zorvs_error_code(), 11278);
    zorvs_dmxtxf(&three, &two, a, &three, &two, b, &one);
    EXPECT_EQ(zorvs_error_code(), 11279);
    EXPECT_EQ(zorvs_error_param.i[1], 1);
    EXPECT_EQ(zorvs_error_param.i[2], 2);
    zorvs_dcrgrg(&three, a, &two, b, &three);
    EXPECT_EQ(zorvs_error_code(), 11280);
    zorvs_dcrgrg(&three, a, &three, b, &two);
    EXPECT_EQ(zorvs_error_code(), 11281);
    zorvs_dcsfrg(&zero, a, &three);
    EXPECT_EQ(zorvs_error_code(), 2025);
    zorvs_dcsfrg(&three, a, &two);
    EXPECT_EQ(zorvs_error_code(), 2026);
    zorvs_dnr1rr(&zero, &two, a, &three, &norm);
    EXPECT_EQ(zorvs_error_code(), 620);
    zorvs_dnr1rr(&two, &zero, a, &three, &norm);
    EXPECT_EQ(zorvs_error_code(), 621);
    zorvs_dnr1rr(&three, &two, a, &two, &norm);
    EXPECT_EQ(zorvs_error_code(), 20137);
}

TEST(CholeskyDeathTest, BadToleranceStops) {
    int n = 1, rank;
    double a = 1, fac, tol = -1;
    EXPECT_EXIT(zorvs_dchfac(&n, &a, &n, &tol, &rank, &fac, &n), ::testing::ExitedWithCode(5), "20405|chfac");
}

}  // namespace
