// blas_test.cpp - the vector and matrix kernels in both twins: every routine
// against a plain loop over the logical vector, for random lengths and every
// stride sign, bit for bit (the order of the additions is fixed); the scaled
// norm across its three ranges; rotations by their defining properties; the
// argument checks of the checking kernels as rows.
#include "support/tables.hpp"

#include "kernels/kernels.h"

namespace {

using namespace zorvs_test;

#define K ZORVS_TWIN

// Offset of logical element i (from 0) of a vector of n with stride inc,
// under the far-end rule.
long at(int n, int inc, int i) { return (inc < 0 ? static_cast<long>(1 - n) * inc : 0) + static_cast<long>(i) * inc; }

template <class T>
std::vector<T> random_vector(std::mt19937 &g, std::size_t size) {
    std::uniform_real_distribution<double> u(-2.0, 2.0);
    std::vector<T> v(size);
    for (auto &e : v) e = static_cast<T>(u(g));
    return v;
}

ZORVS_TWIN_SUITE(KernelTwin);

const int strides[] = {1, 2, 3, -1, -2, -3};

// dot, |x y|, x y z; copy, Hadamard product and rotation, far-end rule.
TYPED_TEST(KernelTwin, FarEndKernelsMatchPlainLoopsBitForBit) {
    using T = TypeParam;
    std::mt19937 g(11);
    for (int trial = 0; trial < 40; ++trial) {
        const int n = static_cast<int>(g() % 200);
        for (int incx : strides)
            for (int incy : strides) {
                int incz = strides[g() % 6];
                auto x = random_vector<T>(g, n * std::abs(incx) + 1), y = random_vector<T>(g, n * std::abs(incy) + 1),
                     z = random_vector<T>(g, n * std::abs(incz) + 1);
                auto X = [&](int i) { return x[at(n, incx, i)]; };
                auto Y = [&](int i) { return y[at(n, incy, i)]; };
                T d = 0, a = 0, t = 0;
                const T c = T(0.6), s = T(0.8);
                auto ye = y, ze = z, xr = x, yr = y;
                for (int i = 0; i < n; ++i) {
                    d = d + X(i) * Y(i);
                    a = a + std::fabs(X(i) * Y(i));
                    t = t + (X(i) * Y(i)) * z[at(n, incz, i)];
                    ye[at(n, incy, i)] = X(i);
                    ze[at(n, incz, i)] = X(i) * Y(i);
                    xr[at(n, incx, i)] = c * X(i) + s * Y(i);
                    yr[at(n, incy, i)] = c * Y(i) - s * X(i);
                }
                ASSERT_EQ(K(sdot, ddot)(n, x.data(), incx, y.data(), incy), d) << n << " " << incx << " " << incy;
                ASSERT_EQ(K(a1ot, da1ot)(n, x.data(), incx, y.data(), incy), a);
                ASSERT_EQ(K(sxyz, dxyz)(n, x.data(), incx, y.data(), incy, z.data(), incz), t);
                auto yc = y, zc = z;
                K(scopy, dcopy)(n, x.data(), incx, yc.data(), incy);
                ASSERT_EQ(yc, ye);
                K(shprod, dshprod)(&n, x.data(), &incx, y.data(), &incy, zc.data(), &incz);
                ASSERT_EQ(zc, ze);
                K(srot, drot)(n, x.data(), incx, y.data(), incy, c, s);
                ASSERT_EQ(x, xr);
                ASSERT_EQ(y, yr);
            }
    }
}

// Count rule (scal, set, sum, asum: elements 1, 1 + inc, ... from the
// pointer, nothing for a stride below 1) and walk rule (add, vcal: exactly n
// elements from the pointer, whatever the sign).
TYPED_TEST(KernelTwin, WalkCountAndBoundRules) {
    using T = TypeParam;
    std::mt19937 g(13);
    for (int n : {0, 1, 2, 7, 64, 129}) {
        for (int inc : {1, 2, 3, 0, -1}) {
            const auto x = random_vector<T>(g, n * std::max(inc, 1) + 2);
            auto s = x, se = x, st = x, ste = x;
            T sum = 0, asum = 0;
            for (int i = 0; inc > 0 && i < n; ++i) {
                se[i * inc] = T(1.5) * x[i * inc];
                ste[i * inc] = 4;
                sum = sum + x[i * inc];
                asum = asum + std::fabs(x[i * inc]);
            }
            K(sscal, dscal)(n, T(1.5), s.data(), inc);
            K(sset, dset)(n, T(4), st.data(), inc);
            ASSERT_EQ(s, se) << n << " " << inc;
            ASSERT_EQ(st, ste);
            ASSERT_EQ(K(ssum, dsum)(n, x.data(), inc), sum);
            ASSERT_EQ(K(sasum, dasum)(n, x.data(), inc), asum);
        }
        for (int inc : {2, -2}) {
            auto x = random_vector<T>(g, 2 * n + 2), xe = x;
            std::vector<T> y(2 * n + 2, 9), ye = y;
            const long start = inc > 0 ? 0 : 2 * n;
            for (int i = 0; i < n; ++i) {
                xe[start + long(i) * inc] += T(0.25);
                ye[start + long(i) * inc] = T(-3) * x[i];
            }
            K(svcal, dvcal)(n, T(-3), x.data(), 1, y.data() + start, inc);
            K(sadd, dadd)(n, T(0.25), x.data() + start, inc);
            ASSERT_EQ(x, xe);
            ASSERT_EQ(y, ye);
        }
    }
    int ix[5] = {1, 2, 3, 4, 5};
    EXPECT_EQ(zorvs_isum(3, ix, 2), 9);
    EXPECT_EQ(zorvs_isum(0, ix, 1), 0);
}

// Index (from 1) of the largest magnitude and of the first NaN; nothing
// compares greater than a NaN that came first.
TYPED_TEST(KernelTwin, IndexOfLargestMagnitudeAndFirstNaN) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    const T v[] = {1, -3, 3}, w[] = {1, 9, -2, 7, 8, -10}, u[] = {nan, 1, 5}, q[] = {2, nan, 5, nan};
    struct Row {
        int (*index)(int, const T *, int);
        int n;
        const T *x;
        int inc, want;
    };
    const auto iamax = K(isamax, idamax), ianan = K(isanan, idanan);
    const Row rows[] = {{iamax, 3, v, 1, 2},  {iamax, 0, v, 1, 0},  {iamax, 1, v, 1, 1},      {iamax, 3, v, 0, 1},
                        {iamax, 3, v, -1, 1}, {iamax, 3, w, 2, 3},  {iamax, 3, u, 1, 1},      {iamax, 4, q, 1, 3},
                        {ianan, 4, q, 1, 2},  {ianan, 2, q, 2, 0},  {ianan, 1, u, 1, 1},      {ianan, 2, q + 2, -2, 0},
                        {ianan, 3, q + 2, -1, 2}};
    for (const Row &r : rows) EXPECT_EQ(r.index(r.n, r.x, r.inc), r.want) << r.n << " " << r.inc << " " << r.want;
    EXPECT_EQ(K(sdot, ddot)(-4, nullptr, 1, nullptr, 1), 0);
}

// Within (n + 4) eps of the long double norm across the three ranges, and
// finite and non-zero at the ends of the range.
TYPED_TEST(KernelTwin, NormInAllThreeRanges) {
    using T = TypeParam;
    std::mt19937 g(14);
    for (long double scale : {1e-300L, 1e-30L, 1e-20L, 1.0L, 1e20L, 1e30L, 1e300L}) {
        if (scale > std::numeric_limits<T>::max() / 1e3L || scale < std::numeric_limits<T>::min() * 1e3L) continue;
        for (int n : {1, 2, 5, 100}) {
            auto x = random_vector<T>(g, n);
            long double ref = 0;
            for (auto &e : x) {
                e = static_cast<T>(e * scale);
                ref += static_cast<long double>(e) * e;
            }
            ref = std::sqrt(ref);
            const long double got = K(snrm2, dnrm2)(n, x.data());
            EXPECT_LE(std::fabs(got - ref) / ref, (n + 4) * eps_of<T>) << double(scale) << " n " << n;
        }
    }
    const T big = sizeof(T) == 4 ? T(1e30) : T(1e300), small = sizeof(T) == 4 ? T(1e-30) : T(1e-300);
    const T pair_big[2] = {big, big}, pair_small[2] = {small, small};
    EXPECT_NEAR(K(snrm2, dnrm2)(2, pair_big) / (big * std::sqrt(T(2))), 1, 4 * eps_of<T>);
    EXPECT_NEAR(K(snrm2, dnrm2)(2, pair_small) / (small * std::sqrt(T(2))), 1, 4 * eps_of<T>);
    EXPECT_EQ(K(snrm2, dnrm2)(0, pair_big), 0);
}

TYPED_TEST(KernelTwin, GivensRotationZeroesTheSecondComponent) {
    using T = TypeParam;
    const T eps = eps_of<T>;
    for (auto [a0, b0] : {std::pair<T, T>{3, 4}, {4, 3}, {-5, 2}, {T(1e-3), -7}, {0, 2}, {2, 0}, {0, 0}}) {
        T a = a0, b = b0, c = 5, s = 5;
        K(srotg, drotg)(&a, &b, &c, &s);
        EXPECT_NEAR(c * c + s * s, 1, 4 * eps);
        EXPECT_NEAR(c * a0 + s * b0, a, 4 * eps * std::fabs(a));
        EXPECT_NEAR(-s * a0 + c * b0, 0, 4 * eps * std::fabs(a));
        EXPECT_NEAR(std::fabs(a), std::hypot(a0, b0), 4 * eps * std::fabs(a));
        // b holds z: s if |a0| > |b0|, else 1/c (or 1; 0 for a zero pair, with c = 1)
        EXPECT_EQ(b, std::fabs(a0) > std::fabs(b0) ? s : a0 == 0 && b0 == 0 ? 0 : c != 0 ? 1 / c : 1);
    }
}

TYPED_TEST(KernelTwin, ModifiedRotationAppliesEachFlagAndZeroes) {
    using T = TypeParam;
    const T x[3] = {1, 2, 3}, y[3] = {4, 5, 6};
    const T flags[][5] = {{-2, 9, 9, 9, 9}, {0, 9, 2, 3, 9}, {1, 2, 9, 9, 3}, {-1, 2, 3, 4, 5}};
    // H of a parameter vector: h11, h21, h12, h22 by the flag.
    auto h = [](const T *p) -> std::array<T, 4> {
        if (p[0] == -2) return {1, 0, 0, 1};
        if (p[0] == 0) return {1, p[2], p[3], 1};
        if (p[0] > 0) return {p[1], -1, 1, p[4]};
        return {p[1], p[2], p[3], p[4]};
    };
    for (const auto &p : flags) {
        T xs[3] = {x[0], x[1], x[2]}, ys[3] = {y[0], y[1], y[2]};
        K(srotm, drotm)(3, xs, 1, ys, -1, p);
        const auto m = h(p);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(xs[i], m[0] == 1 && m[2] == 0 ? x[i] : x[i] * m[0] + y[2 - i] * m[2]);
            EXPECT_EQ(ys[2 - i], m[1] == 0 && m[3] == 1 ? y[2 - i] : x[i] * m[1] + y[2 - i] * m[3]);
        }
    }
    // Construction: applied to (x1, y1) the rotation zeroes y1 and keeps the
    // weighted squares: d1 x1^2 + d2 y1^2 = d1' x1'^2.
    const T cases[][4] = {{1, 1, 3, 4}, {2, 0.5f, 1, 3}, {1, 1, 1e-5f, 1}, {1e-9f, 1, 1, 1e3f}, {3, 2, 5, -1e-4f}};
    for (const auto &k : cases) {
        T d1 = k[0], d2 = k[1], x1 = k[2], param[5] = {};
        K(srotmg, drotmg)(&d1, &d2, &x1, k[3], param);
        const auto m = h(param);
        const T nx = m[0] * k[2] + m[2] * k[3], ny = m[1] * k[2] + m[3] * k[3];
        EXPECT_NEAR(ny, 0, 8 * eps_of<T> * std::fabs(nx));
        EXPECT_NEAR(nx / x1, 1, 8 * eps_of<T>);
        EXPECT_NEAR(double(d1) * x1 * x1 / (double(k[0]) * k[2] * k[2] + double(k[1]) * k[3] * k[3]), 1, 16 * eps_of<T>);
    }
    T d1 = 1, d2 = 1, x1 = 2, param[5] = {};
    K(srotmg, drotmg)(&d1, &d2, &x1, 0, param);
    EXPECT_EQ(param[0], -2);
    d1 = -1;
    K(srotmg, drotmg)(&d1, &d2, &x1, 1, param);
    EXPECT_EQ(param[0], -1);
    EXPECT_EQ(d1, 0);
    EXPECT_EQ(x1, 0);
}

// gemm, gemv and ger against column-major loops with the additions in the
// kernels' order; beta 0 overwrites without reading.
TYPED_TEST(KernelTwin, MatrixProductsMatchReferenceLoops) {
    using T = TypeParam;
    std::mt19937 g(15);
    for (int trial = 0; trial < 30; ++trial) {
        int m = 1 + g() % 9, n = 1 + g() % 9, k = 1 + g() % 9;
        for (const char *ta : {"N", "t", "C"})
            for (const char *tb : {"n", "T"}) {
                const bool tra = *ta != 'N', trb = *tb != 'n';
                int lda = (tra ? k : m) + 2, ldb = (trb ? n : k) + 1, ldc = m + 3;
                auto a = random_vector<T>(g, lda * (tra ? m : k)), b = random_vector<T>(g, ldb * (trb ? k : n)),
                     c = random_vector<T>(g, ldc * n);
                for (T alpha : {T(0), T(1), T(-0.75)})
                    for (T beta : {T(0), T(1), T(-1), T(2.5)}) {
                        auto cc = c, ce = c;
                        for (int j = 0; j < n; ++j)
                            for (int i = 0; i < m; ++i) {
                                T &e = ce[j * ldc + i];
                                e = beta == 0 ? 0 : beta == -1 ? -e : beta == 1 ? e : beta * e;
                            }
                        for (int l = 0; alpha != 0 && l < k; ++l)
                            for (int j = 0; j < n; ++j) {
                                const T t = alpha * (trb ? b[l * ldb + j] : b[j * ldb + l]);
                                for (int i = 0; i < m; ++i)
                                    ce[j * ldc + i] = ce[j * ldc + i] + t * (tra ? a[i * lda + l] : a[l * lda + i]);
                            }
                        K(sgemm, dsgemm)(ta, 1, tb, 1, &m, &n, &k, &alpha, a.data(), &lda, b.data(), &ldb, &beta,
                                         cc.data(), &ldc);
                        ASSERT_EQ(cc, ce) << ta << tb << " " << alpha << " " << beta;
                    }
            }
        int lda = m + 1;
        auto a = random_vector<T>(g, lda * n);
        for (int incx : strides)
            for (int incy : strides) {
                for (const char *tr : {"N", "T", "c"}) {
                    const bool t = *tr != 'N';
                    const int lx = t ? m : n, ly = t ? n : m;
                    auto x = random_vector<T>(g, lx * std::abs(incx)), y = random_vector<T>(g, ly * std::abs(incy));
                    T alpha = T(1.25), beta = T(-0.5);
                    auto yc = y, ye = y;
                    auto Y = [&](int i) -> T & { return ye[at(ly, incy, i)]; };
                    for (int i = 0; i < ly; ++i) Y(i) = beta * Y(i);
                    for (int j = 0; j < n; ++j) {
                        T d = t ? 0 : alpha * x[at(lx, incx, j)];
                        if (t) {
                            for (int i = 0; i < m; ++i) d = d + a[j * lda + i] * x[at(lx, incx, i)];
                            Y(j) = Y(j) + alpha * d;
                        } else {
                            for (int i = 0; i < m; ++i) Y(i) = Y(i) + d * a[j * lda + i];
                        }
                    }
                    K(sgemv, dgemv)(tr, 1, &m, &n, &alpha, a.data(), &lda, x.data(), &incx, &beta, yc.data(), &incy);
                    ASSERT_EQ(yc, ye);
                }
                auto x = random_vector<T>(g, m * std::abs(incx)), y = random_vector<T>(g, n * std::abs(incy));
                auto ac = a, ae = a;
                for (int j = 0; j < n; ++j)
                    for (int i = 0; i < m; ++i) ae[j * lda + i] = ae[j * lda + i] + x[at(m, incx, i)] * (T(0.5) * y[at(n, incy, j)]);
                K(sger, dger)(m, n, T(0.5), x.data(), incx, y.data(), incy, ac.data(), lda);
                ASSERT_EQ(ac, ae);
            }
    }
    int m = 2, n = 2, k = 1, ld = 2, inc = 1;
    T one = 1, zero = 0;
    std::vector<T> a{1, 2}, b{3, 4}, c(4, std::numeric_limits<T>::quiet_NaN()), y(2, c[0]), x{1, 1};
    K(sgemm, dsgemm)("N", 1, "N", 1, &m, &n, &k, &one, a.data(), &ld, b.data(), &k, &zero, c.data(), &ld);
    EXPECT_EQ(c, (std::vector<T>{3, 6, 4, 8}));
    K(sgemv, dgemv)("N", 1, &m, &n, &one, c.data(), &ld, x.data(), &inc, &zero, y.data(), &inc);
    EXPECT_EQ(y, (std::vector<T>{7, 14}));
}

// Substitution in the kernel's order, and op(A) x reproduces the right side.
TYPED_TEST(KernelTwin, TriangularSolveInAllEightForms) {
    using T = TypeParam;
    std::mt19937 g(16);
    for (int n : {1, 2, 5, 17}) {
        const int lda = n + 2;
        auto a = random_vector<T>(g, lda * n);
        for (int i = 0; i < n; ++i) a[i * lda + i] = T(3 + i % 3);  // well conditioned
        auto A = [&](int i, int j) { return a[j * lda + i]; };
        for (const char *uplo : {"U", "l"})
            for (const char *trans : {"N", "t"})
                for (const char *diag : {"n", "U"})
                    for (int incx : strides) {
                        const bool up = *uplo == 'U', tr = *trans == 't', nonunit = *diag == 'n', back = up != tr;
                        auto x = random_vector<T>(g, n * std::abs(incx)), xe = x, xc = x;
                        auto X = [&](int i) -> T & { return xe[at(n, incx, i)]; };
                        for (int s = 0; s < n; ++s) {
                            const int i = back ? n - 1 - s : s;
                            T d = 0;
                            for (int j = back ? i + 1 : 0; j < (back ? n : i); ++j)
                                d = d + (up == back ? A(i, j) : A(j, i)) * X(j);
                            X(i) = nonunit ? (X(i) - d) / A(i, i) : X(i) - d;
                        }
                        K(strsv, dtrsv)(uplo, trans, diag, n, a.data(), lda, xc.data(), incx);
                        ASSERT_EQ(xc, xe) << uplo << trans << diag << incx;
                        for (int i = 0; i < n; ++i) {
                            double r = 0;
                            for (int j = 0; j < n; ++j)
                                if (up ? (tr ? j <= i : j >= i) : (tr ? j >= i : j <= i))
                                    r += (i == j && !nonunit ? 1.0 : tr ? A(j, i) : A(i, j)) * xc[at(n, incx, j)];
                            EXPECT_NEAR(r, x[at(n, incx, i)], 1e3 * eps_of<T>);
                        }
                    }
    }
    T z = 7;
    K(strsv, dtrsv)("U", "N", "N", 0, nullptr, 1, &z, 1);
    EXPECT_EQ(z, 7);
}

// The checks of ger, gemv and gemm in their order, each naming the routine;
// nothing computed.
TEST(KernelChecks, GerGemvGemmRaiseInTheirOrder) {
    float a[16] = {}, x[4] = {1, 1, 1, 1}, y[4] = {5, 5, 5, 5}, c[4] = {9, 9, 9, 9}, alpha = 1, beta = 0;
    double da[4] = {}, dx[2] = {1, 1}, dy[2] = {5, 5}, dalpha = 1, dbeta = 0;
    int m = 2, n = 2, k = 2, lda = 2, one = 1, zero = 0, neg = -3, negk = -1, ld1 = 1;
    auto gemm = [&](const char *ta, const char *tb, int *mm, int *nn, int *kk, int *la, int *lb, int *lc) {
        zorvs_sgemm(ta, 1, tb, 1, mm, nn, kk, &alpha, a, la, a, lb, &beta, c, lc);
        return 0;
    };
    expect_rows({
        {ZORVS_DO(zorvs_sger(-1, -1, 1, x, 0, y, 0, a, 0)), any, 5, 2033, "i1=-1", 0, "zorvs_sger"},
        {ZORVS_DO(zorvs_sger(2, -1, 1, x, 0, y, 0, a, 0)), any, 5, 2014, "i1=-1", 0, "zorvs_sger"},
        {ZORVS_DO(zorvs_sger(3, 2, 1, x, 0, y, 0, a, 2)), any, 5, 1020, "i1=2 i2=3", 0, "zorvs_sger"},
        {ZORVS_DO(zorvs_sger(0, 2, 1, x, 0, y, 0, a, 0)), any, 5, 1020, "i1=0 i2=0", 0, "zorvs_sger"},
        {ZORVS_DO(zorvs_sger(2, 2, 1, x, 0, y, 0, a, 2)), any, 5, 2015, "i1=0", 0, "zorvs_sger"},
        {ZORVS_DO(zorvs_sger(2, 2, 1, x, 1, y, 0, a, 2)), any, 5, 2016, "i1=0", 0, "zorvs_sger"},
        {ZORVS_DO(zorvs_sgemv("N", 1, &neg, &n, &alpha, a, &lda, x, &one, &beta, y, &one)), any, 5, 2033, "i1=-3", 0,
         "zorvs_sgemv"},
        {ZORVS_DO(zorvs_sgemv("N", 1, &m, &neg, &alpha, a, &lda, x, &one, &beta, y, &one)), any, 5, 2014, "i1=-3"},
        {ZORVS_DO(zorvs_sgemv("N", 1, &m, &n, &alpha, a, &ld1, x, &one, &beta, y, &one)), any, 5, 1020, "i1=1 i2=2"},
        {ZORVS_DO(zorvs_sgemv("N", 1, &m, &n, &alpha, a, &lda, x, &zero, &beta, y, &one)), any, 5, 2015, "i1=0"},
        {ZORVS_DO(zorvs_sgemv("N", 1, &m, &n, &alpha, a, &lda, x, &one, &beta, y, &zero)), any, 5, 2016, "i1=0"},
        {ZORVS_DO(zorvs_sgemv("X", 1, &m, &n, &alpha, a, &lda, x, &one, &beta, y, &one)), any, 5, 20139, "l1=X"},
        {ZORVS_DO(zorvs_dgemv("x", 1, &m, &n, &dalpha, da, &lda, dx, &one, &dbeta, dy, &one)), any, 5, 20139, "", 0,
         "zorvs_sgemv"},
        {ZORVS_CALL(gemm("N", "N", &neg, &n, &k, &lda, &lda, &lda)), any, 5, 2033, "i1=-3", 0, "zorvs_sgemm"},
        {ZORVS_CALL(gemm("N", "N", &m, &neg, &k, &lda, &lda, &lda)), any, 5, 2014, "i1=-3"},
        {ZORVS_CALL(gemm("N", "N", &m, &n, &negk, &lda, &lda, &lda)), any, 5, 11282, "i1=-1"},
        {ZORVS_CALL(gemm("N", "N", &m, &n, &k, &lda, &lda, &ld1)), any, 5, 11283, "i1=1 i2=2"},
        {ZORVS_CALL(gemm("N", "N", &m, &n, &k, &ld1, &lda, &lda)), any, 5, 11284, "i1=1 i2=2"},
        {ZORVS_CALL(gemm("Q", "N", &m, &n, &k, &lda, &lda, &lda)), any, 5, 11286, "l1=Q"},
        {ZORVS_CALL(gemm("T", "N", &m, &n, &k, &ld1, &lda, &lda)), any, 5, 11285, "i1=1 i2=2"},
        {ZORVS_CALL(gemm("N", "N", &m, &n, &k, &lda, &ld1, &lda)), any, 5, 11287, "i1=1 i2=2"},
        {ZORVS_CALL(gemm("N", "z", &m, &n, &k, &lda, &lda, &lda)), any, 5, 11286, "l1=z"},
        {ZORVS_CALL(gemm("N", "c", &m, &n, &k, &lda, &ld1, &lda)), any, 5, 11281, "i1=1 i2=2"},
        // the character comparison looks at the first letter only
        {ZORVS_CALL(zorvs_l1ame("t", 1, "T")), 1},
        {ZORVS_CALL(zorvs_l1ame("Transpose", 9, "t")), 1},
        {ZORVS_CALL(zorvs_l1ame("N", 1, "T")), 0},
    });
    for (float e : a) EXPECT_EQ(e, 0.0f);
    for (float e : c) EXPECT_EQ(e, 9.0f);
    EXPECT_EQ(y[0], 5.0f);
    EXPECT_EQ(dy[0], 5.0);
}

}  // namespace
