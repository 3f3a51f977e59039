// Tests of the vector and matrix kernels: every routine against a plain loop
// over the logical vector, for random lengths and every stride sign, bit for
// bit (the order of the additions is fixed); the argument checks of the
// checking kernels; the scaled norm at the ends of the range; rotations by
// their defining properties.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "frame/services.h"
#include "kernels/kernels.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

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

template <class T>
struct Twin;
template <>
struct Twin<float> {
    static constexpr auto dot = zorvs_sdot;
    static constexpr auto a1ot = zorvs_a1ot;
    static constexpr auto xyz = zorvs_sxyz;
    static constexpr auto copy = zorvs_scopy;
    static constexpr auto rot = zorvs_srot;
    static constexpr auto hprod = zorvs_shprod;
    static constexpr auto scal = zorvs_sscal;
    static constexpr auto set = zorvs_sset;
    static constexpr auto add = zorvs_sadd;
    static constexpr auto vcal = zorvs_svcal;
    static constexpr auto sum = zorvs_ssum;
    static constexpr auto asum = zorvs_sasum;
    static constexpr auto iamax = zorvs_isamax;
    static constexpr auto ianan = zorvs_isanan;
    static constexpr auto nrm2 = zorvs_snrm2;
    static constexpr auto ger = zorvs_sger;
    static constexpr auto gemv = zorvs_sgemv;
    static constexpr auto gemm = zorvs_sgemm;
    static constexpr auto trsv = zorvs_strsv;
    static constexpr auto rotg = zorvs_srotg;
    static constexpr auto rotm = zorvs_srotm;
    static constexpr auto rotmg = zorvs_srotmg;
};
template <>
struct Twin<double> {
    static constexpr auto dot = zorvs_ddot;
    static constexpr auto a1ot = zorvs_da1ot;
    static constexpr auto xyz = zorvs_dxyz;
    static constexpr auto copy = zorvs_dcopy;
    static constexpr auto rot = zorvs_drot;
    static constexpr auto hprod = zorvs_dshprod;
    static constexpr auto scal = zorvs_dscal;
    static constexpr auto set = zorvs_dset;
    static constexpr auto add = zorvs_dadd;
    static constexpr auto vcal = zorvs_dvcal;
    static constexpr auto sum = zorvs_dsum;
    static constexpr auto asum = zorvs_dasum;
    static constexpr auto iamax = zorvs_idamax;
    static constexpr auto ianan = zorvs_idanan;
    static constexpr auto nrm2 = zorvs_dnrm2;
    static constexpr auto ger = zorvs_dger;
    static constexpr auto gemv = zorvs_dgemv;
    static constexpr auto gemm = zorvs_dsgemm;
    static constexpr auto trsv = zorvs_dtrsv;
    static constexpr auto rotg = zorvs_drotg;
    static constexpr auto rotm = zorvs_drotm;
    static constexpr auto rotmg = zorvs_drotmg;
};

template <class T>
class KernelTwin : public ::testing::Test {};
using Reals = ::testing::Types<float, double>;
TYPED_TEST_SUITE(KernelTwin, Reals);

const int strides[] = {1, 2, 3, -1, -2, -3};

TYPED_TEST(KernelTwin, FarEndReductionsMatchPlainLoopsBitForBit) {
    using T = TypeParam;
    std::mt19937 g(11);
    for (int trial = 0; trial < 40; ++trial) {
        int n = static_cast<int>(g() % 200);
        for (int incx : strides)
            for (int incy : strides) {
                int incz = strides[g() % 6];
                auto x = random_vector<T>(g, n * std::abs(incx) + 1);
                auto y = random_vector<T>(g, n * std::abs(incy) + 1);
                auto z = random_vector<T>(g, n * std::abs(incz) + 1);
                T d = 0, a = 0, t = 0;
                for (int i = 0; i < n; ++i) {
                    T xi = x[at(n, incx, i)], yi = y[at(n, incy, i)], zi = z[at(n, incz, i)];
                    d = d + xi * yi;
                    a = a + std::fabs(xi * yi);
                    t = t + (xi * yi) * zi;
                }
                ASSERT_EQ(Twin<T>::dot(n, x.data(), incx, y.data(), incy), d) << n << " " << incx << " " << incy;
                ASSERT_EQ(Twin<T>::a1ot(n, x.data(), incx, y.data(), incy), a);
                ASSERT_EQ(Twin<T>::xyz(n, x.data(), incx, y.data(), incy, z.data(), incz), t);
            }
    }
}

TYPED_TEST(KernelTwin, FarEndUpdatesMatchPlainLoops) {
    using T = TypeParam;
    std::mt19937 g(12);
    for (int trial = 0; trial < 30; ++trial) {
        int n = 1 + static_cast<int>(g() % 100);
        for (int incx : strides)
            for (int incy : strides) {
                int incz = strides[g() % 6];
                auto x = random_vector<T>(g, n * std::abs(incx));
                auto y = random_vector<T>(g, n * std::abs(incy));
                auto z = random_vector<T>(g, n * std::abs(incz));
                // copy
                auto yc = y, ye = y;
                for (int i = 0; i < n; ++i) ye[at(n, incy, i)] = x[at(n, incx, i)];
                Twin<T>::copy(n, x.data(), incx, yc.data(), incy);
                ASSERT_EQ(yc, ye);
                // Hadamard product
                auto zc = z, ze = z;
                for (int i = 0; i < n; ++i) ze[at(n, incz, i)] = x[at(n, incx, i)] * y[at(n, incy, i)];
                Twin<T>::hprod(&n, x.data(), &incx, y.data(), &incy, zc.data(), &incz);
                ASSERT_EQ(zc, ze);
                // rotation
                T c = static_cast<T>(0.6), s = static_cast<T>(0.8);
                auto xr = x, yr = y, xe = x, yre = y;
                for (int i = 0; i < n; ++i) {
                    T xi = x[at(n, incx, i)], yi = y[at(n, incy, i)];
                    xe[at(n, incx, i)] = c * xi + s * yi;
                    yre[at(n, incy, i)] = c * yi - s * xi;
                }
                Twin<T>::rot(n, xr.data(), incx, yr.data(), incy, c, s);
                ASSERT_EQ(xr, xe);
                ASSERT_EQ(yr, yre);
            }
    }
}

TYPED_TEST(KernelTwin, WalkCountAndBoundRules) {
    using T = TypeParam;
    std::mt19937 g(13);
    for (int n : {0, 1, 2, 7, 64, 129}) {
        for (int inc : {1, 2, 3}) {
            auto x = random_vector<T>(g, n * inc + 2);
            // count: elements 1, 1+inc, ... from the pointer
            auto s = x, se = x;
            Twin<T>::scal(n, static_cast<T>(1.5), s.data(), inc);
            for (int i = 0; i < n; ++i) se[i * inc] = static_cast<T>(1.5) * x[i * inc];
            ASSERT_EQ(s, se);
            auto st = x, ste = x;
            Twin<T>::set(n, static_cast<T>(4), st.data(), inc);
            for (int i = 0; i < n; ++i) ste[i * inc] = 4;
            ASSERT_EQ(st, ste);
            T sum = 0, asum = 0;
            for (int i = 0; i < n; ++i) {
                sum = sum + x[i * inc];
                asum = asum + std::fabs(x[i * inc]);
            }
            ASSERT_EQ(Twin<T>::sum(n, x.data(), inc), sum);
            ASSERT_EQ(Twin<T>::asum(n, x.data(), inc), asum);
        }
        // walk: exactly n elements from the pointer, whatever the sign
        for (int inc : {2, -2}) {
            auto x = random_vector<T>(g, 2 * n + 2);
            T *start = inc > 0 ? x.data() : x.data() + 2 * n;
            auto xe = x;
            Twin<T>::add(n, static_cast<T>(0.25), start, inc);
            for (int i = 0; i < n; ++i) {
                long k = (inc > 0 ? 0 : 2 * n) + static_cast<long>(i) * inc;
                xe[k] = xe[k] + static_cast<T>(0.25);
            }
            ASSERT_EQ(x, xe);
            std::vector<T> y(2 * n + 2, 9), ye = y;
            Twin<T>::vcal(n, static_cast<T>(-3), x.data(), 1, inc > 0 ? y.data() : y.data() + 2 * n, inc);
            for (int i = 0; i < n; ++i) ye[(inc > 0 ? 0 : 2 * n) + static_cast<long>(i) * inc] = static_cast<T>(-3) * x[i];
            ASSERT_EQ(y, ye);
        }
    }
    T x[6] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(Twin<T>::sum(3, x, 0), 0);
    EXPECT_EQ(Twin<T>::sum(3, x, -1), 0);
    EXPECT_EQ(Twin<T>::asum(3, x, 0), 0);  // count rule: nothing for a stride of 0
    Twin<T>::scal(3, 2, x, 2);             // elements 1, 3, 5
    EXPECT_EQ(x[0], 2);
    EXPECT_EQ(x[1], 2);
    EXPECT_EQ(x[2], 6);
    EXPECT_EQ(x[4], 10);
    EXPECT_EQ(x[5], 6);
    int ix[5] = {1, 2, 3, 4, 5};
    EXPECT_EQ(zorvs_isum(3, ix, 2), 9);
    EXPECT_EQ(zorvs_isum(0, ix, 1), 0);
}

TYPED_TEST(KernelTwin, IndexOfLargestMagnitudeAndFirstNaN) {
    using T = TypeParam;
    T v[] = {1, -3, 3};
    EXPECT_EQ(Twin<T>::iamax(3, v, 1), 2);
    EXPECT_EQ(Twin<T>::iamax(0, v, 1), 0);
    EXPECT_EQ(Twin<T>::iamax(1, v, 1), 1);
    EXPECT_EQ(Twin<T>::iamax(3, v, 0), 1);
    EXPECT_EQ(Twin<T>::iamax(3, v, -1), 1);
    T w[] = {1, 9, -2, 7, 8, -10};
    EXPECT_EQ(Twin<T>::iamax(3, w, 2), 3);  // 1, -2, 8
    T nan = std::numeric_limits<T>::quiet_NaN();
    T u[] = {nan, 1, 5};
    EXPECT_EQ(Twin<T>::iamax(3, u, 1), 1);  // nothing compares greater than a NaN that came first
    T q[] = {2, nan, 5, nan};
    EXPECT_EQ(Twin<T>::iamax(4, q, 1), 3);
    EXPECT_EQ(Twin<T>::ianan(4, q, 1), 2);
    EXPECT_EQ(Twin<T>::ianan(2, q, 2), 0);
    EXPECT_EQ(Twin<T>::ianan(1, u, 1), 1);
    EXPECT_EQ(Twin<T>::ianan(2, q + 2, -2), 0);
    EXPECT_EQ(Twin<T>::ianan(3, q + 2, -1), 2);
    EXPECT_EQ(Twin<T>::dot(0, v, 1, v, 1), 0);
    EXPECT_EQ(Twin<T>::dot(-4, nullptr, 1, nullptr, 1), 0);
    T y[] = {10, 20, 30};
    EXPECT_EQ(Twin<T>::dot(3, v, 1, y, -1), 1 * 30 + -3 * 20 + 3 * 10);
}

// Norm: within a few eps of the double (or long double) reference across the
// three ranges, and finite and non-zero at the ends of the range.
TYPED_TEST(KernelTwin, NormInAllThreeRanges) {
    using T = TypeParam;
    const long double eps = std::numeric_limits<T>::epsilon();
    std::mt19937 g(14);
    for (long double scale : {1e-300L, 1e-30L, 1e-20L, 1.0L, 1e20L, 1e30L, 1e300L}) {
        if (scale > std::numeric_limits<T>::max() / 1e3L || scale < std::numeric_limits<T>::min() * 1e3L) continue;
        for (int n : {1, 2, 5, 100}) {
            auto x = random_vector<T>(g, n);
            for (auto &e : x) e = static_cast<T>(e * scale);
            long double ref = 0;
            for (T e : x) ref += static_cast<long double>(e) * e;
            ref = std::sqrt(ref);
            long double got = Twin<T>::nrm2(n, x.data());
            EXPECT_LE(std::fabs(got - ref) / ref, (n + 4) * eps) << "scale " << static_cast<double>(scale) << " n " << n;
        }
    }
    T big[2] = {static_cast<T>(1e30), static_cast<T>(1e30)};
    T small[2] = {static_cast<T>(1e-30), static_cast<T>(1e-30)};
    if constexpr (std::is_same_v<T, float>) {
        EXPECT_TRUE(std::isfinite(Twin<T>::nrm2(2, big)));
        EXPECT_NEAR(Twin<T>::nrm2(2, big) / 1.41421356e30f, 1.0f, 1e-6f);
        EXPECT_GT(Twin<T>::nrm2(2, small), 0.0f);
        EXPECT_NEAR(Twin<T>::nrm2(2, small) / 1.41421356e-30f, 1.0f, 1e-6f);
    } else {
        T huge[2] = {1e300, 1e300}, tiny[2] = {1e-300, 1e-300};
        EXPECT_NEAR(Twin<T>::nrm2(2, huge) / 1.4142135623730951e300, 1.0, 1e-15);
        EXPECT_NEAR(Twin<T>::nrm2(2, tiny) / 1.4142135623730951e-300, 1.0, 1e-15);
    }
    EXPECT_EQ(Twin<T>::nrm2(0, big), 0);
}

TYPED_TEST(KernelTwin, GivensRotationZeroesTheSecondComponent) {
    using T = TypeParam;
    const T eps = std::numeric_limits<T>::epsilon();
    for (auto [a0, b0] : {std::pair<T, T>{3, 4}, {4, 3}, {-5, 2}, {1e-3f, -7}, {0, 2}, {2, 0}}) {
        T a = a0, b = b0, c, s;
        Twin<T>::rotg(&a, &b, &c, &s);
        EXPECT_NEAR(c * c + s * s, 1, 4 * eps);
        EXPECT_NEAR(c * a0 + s * b0, a, 4 * eps * std::fabs(a));
        EXPECT_NEAR(-s * a0 + c * b0, 0, 4 * eps * std::fabs(a));
        EXPECT_NEAR(std::fabs(a), std::hypot(a0, b0), 4 * eps * std::fabs(a));
        // b holds z: s if |a0| > |b0|, else 1/c (or 1)
        if (std::fabs(a0) > std::fabs(b0))
            EXPECT_EQ(b, s);
        else
            EXPECT_EQ(b, c != 0 ? 1 / c : 1);
    }
    T a = 0, b = 0, c = 5, s = 5;
    Twin<T>::rotg(&a, &b, &c, &s);
    EXPECT_EQ(c, 1);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(a, 0);
    EXPECT_EQ(b, 0);
}

TYPED_TEST(KernelTwin, ModifiedRotationAppliesEachFlagAndZeroes) {
    using T = TypeParam;
    T x[3] = {1, 2, 3}, y[3] = {4, 5, 6};
    const T flags[][5] = {{-2, 9, 9, 9, 9}, {0, 9, 2, 3, 9}, {1, 2, 9, 9, 3}, {-1, 2, 3, 4, 5}};
    for (const auto &p : flags) {
        T xs[3], ys[3];
        std::memcpy(xs, x, sizeof x);
        std::memcpy(ys, y, sizeof y);
        Twin<T>::rotm(3, xs, 1, ys, -1, p);
        for (int i = 0; i < 3; ++i) {
            T w = x[i], z = y[2 - i], ex, ey;
            if (p[0] == -2) { ex = w; ey = z; }
            else if (p[0] == 0) { ex = w + z * p[3]; ey = w * p[2] + z; }
            else if (p[0] > 0) { ex = w * p[1] + z; ey = -w + p[4] * z; }
            else { ex = w * p[1] + z * p[3]; ey = w * p[2] + z * p[4]; }
            EXPECT_EQ(xs[i], ex);
            EXPECT_EQ(ys[2 - i], ey);
        }
    }
    // Construction: applied to (x1, y1) the rotation zeroes y1, and the
    // weighted squares are kept: d1 x1^2 + d2 y1^2 = d1' x1'^2.
    const T eps = std::numeric_limits<T>::epsilon();
    const T cases[][4] = {{1, 1, 3, 4}, {2, 0.5f, 1, 3}, {1, 1, 1e-5f, 1}, {1e-9f, 1, 1, 1e3f}, {3, 2, 5, -1e-4f}};
    for (const auto &k : cases) {
        T d1 = k[0], d2 = k[1], x1 = k[2], y1 = k[3];
        T param[5] = {};
        Twin<T>::rotmg(&d1, &d2, &x1, y1, param);
        T h11, h12, h21, h22;
        if (param[0] == -1) { h11 = param[1]; h21 = param[2]; h12 = param[3]; h22 = param[4]; }
        else if (param[0] == 0) { h11 = 1; h21 = param[2]; h12 = param[3]; h22 = 1; }
        else { h11 = param[1]; h21 = -1; h12 = 1; h22 = param[4]; }
        T nx = h11 * k[2] + h12 * k[3];
        T ny = h21 * k[2] + h22 * k[3];
        EXPECT_NEAR(ny, 0, 8 * eps * std::fabs(nx));
        EXPECT_NEAR(nx / x1, 1, 8 * eps);
        double before = double(k[0]) * k[2] * k[2] + double(k[1]) * k[3] * k[3];
        EXPECT_NEAR(double(d1) * x1 * x1 / before, 1, 16 * eps);
    }
    T d1 = 1, d2 = 1, x1 = 2, param[5] = {};
    Twin<T>::rotmg(&d1, &d2, &x1, 0, param);
    EXPECT_EQ(param[0], -2);
    d1 = -1;
    Twin<T>::rotmg(&d1, &d2, &x1, 1, param);
    EXPECT_EQ(param[0], -1);
    EXPECT_EQ(d1, 0);
    EXPECT_EQ(x1, 0);
}

// Column-major reference products, with the additions in the kernels' order.
template <class T>
void ref_gemm(bool ta, bool tb, int m, int n, int k, T alpha, const std::vector<T> &a, int lda,
              const std::vector<T> &b, int ldb, T beta, std::vector<T> &c, int ldc) {
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i) {
            T &e = c[j * ldc + i];
            if (beta == 0) e = 0;
            else if (beta == -1) e = -e;
            else if (beta != 1) e = beta * e;
        }
    if (alpha == 0) return;
    for (int l = 0; l < k; ++l)
        for (int j = 0; j < n; ++j) {
            T t = alpha * (tb ? b[l * ldb + j] : b[j * ldb + l]);
            for (int i = 0; i < m; ++i) c[j * ldc + i] = c[j * ldc + i] + t * (ta ? a[i * lda + l] : a[l * lda + i]);
        }
}

TYPED_TEST(KernelTwin, MatrixProductsMatchReferenceLoops) {
    using T = TypeParam;
    std::mt19937 g(15);
    for (int trial = 0; trial < 30; ++trial) {
        int m = 1 + g() % 9, n = 1 + g() % 9, k = 1 + g() % 9;
        for (const char *ta : {"N", "t", "C"})
            for (const char *tb : {"n", "T"}) {
                bool tra = *ta != 'N' && *ta != 'n', trb = *tb != 'N' && *tb != 'n';
                int lda = (tra ? k : m) + 2, ldb = (trb ? n : k) + 1, ldc = m + 3;
                auto a = random_vector<T>(g, lda * (tra ? m : k));
                auto b = random_vector<T>(g, ldb * (trb ? k : n));
                auto c = random_vector<T>(g, ldc * n);
                for (T alpha : {T(0), T(1), T(-0.75)})
                    for (T beta : {T(0), T(1), T(-1), T(2.5)}) {
                        auto cc = c, ce = c;
                        Twin<T>::gemm(ta, 1, tb, 1, &m, &n, &k, &alpha, a.data(), &lda, b.data(), &ldb, &beta,
                                      cc.data(), &ldc);
                        if (!(alpha == 0 && beta == 1)) ref_gemm(tra, trb, m, n, k, alpha, a, lda, b, ldb, beta, ce, ldc);
                        ASSERT_EQ(cc, ce) << ta << tb << " " << alpha << " " << beta;
                    }
            }
        // gemv and ger with every stride sign
        int lda = m + 1;
        auto a = random_vector<T>(g, lda * n);
        for (int incx : strides)
            for (int incy : strides) {
                for (const char *tr : {"N", "T", "c"}) {
                    bool t = *tr != 'N';
                    int lx = t ? m : n, ly = t ? n : m;
                    auto x = random_vector<T>(g, lx * std::abs(incx));
                    auto y = random_vector<T>(g, ly * std::abs(incy));
                    T alpha = static_cast<T>(1.25), beta = static_cast<T>(-0.5);
                    auto yc = y, ye = y;
                    for (int i = 0; i < ly; ++i) ye[at(ly, incy, i)] = beta * ye[at(ly, incy, i)];
                    if (!t) {
                        for (int j = 0; j < n; ++j) {
                            T tmp = alpha * x[at(lx, incx, j)];
                            for (int i = 0; i < m; ++i) ye[at(ly, incy, i)] = ye[at(ly, incy, i)] + tmp * a[j * lda + i];
                        }
                    } else {
                        for (int j = 0; j < n; ++j) {
                            T d = 0;
                            for (int i = 0; i < m; ++i) d = d + a[j * lda + i] * x[at(lx, incx, i)];
                            ye[at(ly, incy, j)] = ye[at(ly, incy, j)] + alpha * d;
                        }
                    }
                    Twin<T>::gemv(tr, 1, &m, &n, &alpha, a.data(), &lda, x.data(), &incx, &beta, yc.data(), &incy);
                    ASSERT_EQ(yc, ye);
                }
                auto x = random_vector<T>(g, m * std::abs(incx));
                auto y = random_vector<T>(g, n * std::abs(incy));
                auto ac = a, ae = a;
                T alpha = static_cast<T>(0.5);
                for (int j = 0; j < n; ++j) {
                    T tmp = alpha * y[at(n, incy, j)];
                    for (int i = 0; i < m; ++i) ae[j * lda + i] = ae[j * lda + i] + x[at(m, incx, i)] * tmp;
                }
                Twin<T>::ger(m, n, alpha, x.data(), incx, y.data(), incy, ac.data(), lda);
                ASSERT_EQ(ac, ae);
            }
    }
    // beta 0 overwrites NaNs without reading them
    int m = 2, n = 2, k = 1, ld = 2;
    T one = 1, zero = 0;
    std::vector<T> a{1, 2}, b{3, 4}, c(4, std::numeric_limits<T>::quiet_NaN());
    Twin<T>::gemm("N", 1, "N", 1, &m, &n, &k, &one, a.data(), &ld, b.data(), &k, &zero, c.data(), &ld);
    EXPECT_EQ(c, (std::vector<T>{3, 6, 4, 8}));
    std::vector<T> y(2, std::numeric_limits<T>::quiet_NaN()), x{1, 1};
    int inc = 1;
    Twin<T>::gemv("N", 1, &m, &n, &one, c.data(), &ld, x.data(), &inc, &zero, y.data(), &inc);
    EXPECT_EQ(y, (std::vector<T>{7, 14}));
}

TYPED_TEST(KernelTwin, TriangularSolveInAllEightForms) {
    using T = TypeParam;
    std::mt19937 g(16);
    for (int n : {1, 2, 5, 17}) {
        int lda = n + 2;
        auto a = random_vector<T>(g, lda * n);
        for (int i = 0; i < n; ++i) a[i * lda + i] = static_cast<T>(3 + i % 3);  // well conditioned
        for (const char *uplo : {"U", "l"})
            for (const char *trans : {"N", "t"})
                for (const char *diag : {"n", "U"})
                    for (int incx : strides) {
                        bool up = *uplo == 'U', tr = *trans == 't', nonunit = *diag == 'n';
                        auto x = random_vector<T>(g, n * std::abs(incx));
                        auto xe = x;
                        auto A = [&](int i, int j) { return a[j * lda + i]; };
                        auto X = [&](int i) -> T & { return xe[at(n, incx, i)]; };
                        bool backward = up != tr;
                        for (int s = 0; s < n; ++s) {
                            int i = backward ? n - 1 - s : s;
                            T d = 0;
                            if (backward)
                                for (int j = i + 1; j < n; ++j) d = d + (up ? A(i, j) : A(j, i)) * X(j);
                            else
                                for (int j = 0; j < i; ++j) d = d + (up ? A(j, i) : A(i, j)) * X(j);
                            T v = X(i) - d;
                            if (nonunit) v = v / A(i, i);
                            X(i) = v;
                        }
                        auto xc = x;
                        Twin<T>::trsv(uplo, trans, diag, n, a.data(), lda, xc.data(), incx);
                        ASSERT_EQ(xc, xe) << uplo << trans << diag << incx;
                        // and it is a solve: op(A) xc reproduces x
                        for (int i = 0; i < n; ++i) {
                            double r = 0;
                            for (int j = 0; j < n; ++j) {
                                bool in = up ? (tr ? j <= i : j >= i) : (tr ? j >= i : j <= i);
                                if (!in) continue;
                                double aij = (i == j && !nonunit) ? 1.0 : (tr ? A(j, i) : A(i, j));
                                r += aij * xc[at(n, incx, j)];
                            }
                            EXPECT_NEAR(r, x[at(n, incx, i)], 1e3 * std::numeric_limits<T>::epsilon());
                        }
                    }
    }
    T z = 7;
    Twin<T>::trsv("U", "N", "N", 0, nullptr, 1, &z, 1);
    EXPECT_EQ(z, 7);
}

// Argument checks: code, parameters and the routine named in the message;
// nothing computed.
struct CheckCase {
    int m, n, k, lda, ldb, ldc, incx, incy;
    const char *ta, *tb;
    int code, i1, i2;
};

TEST(KernelChecks, GerGemvGemmRaiseInTheirOrder) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    float a[16] = {}, x[4] = {1, 1, 1, 1}, y[4] = {5, 5, 5, 5};
    auto expect = [&](int code, int i1, int i2, const char *name) {
        EXPECT_EQ(zorvs_error_n1rty[1], 5) << code;
        EXPECT_EQ(zorvs_n1rcd(1), code);
        if (i1 != -999) {
            EXPECT_EQ(zorvs_error_param.i[1], i1) << code;
        }
        if (i2 != -999) {
            EXPECT_EQ(zorvs_error_param.i[2], i2) << code;
        }
        std::string text = q.errors.take();
        EXPECT_NE(text.find(name), std::string::npos) << code << ": " << text;
    };
    // zorvs_sger
    zorvs_sger(-1, -1, 1, x, 0, y, 0, a, 0);
    expect(2033, -1, -999, "zorvs_sger");
    zorvs_sger(2, -1, 1, x, 0, y, 0, a, 0);
    expect(2014, -1, -999, "zorvs_sger");
    zorvs_sger(3, 2, 1, x, 0, y, 0, a, 2);
    expect(1020, 2, 3, "zorvs_sger");
    zorvs_sger(0, 2, 1, x, 0, y, 0, a, 0);
    expect(1020, 0, 0, "zorvs_sger");
    zorvs_sger(2, 2, 1, x, 0, y, 0, a, 2);
    expect(2015, 0, -999, "zorvs_sger");
    zorvs_sger(2, 2, 1, x, 1, y, 0, a, 2);
    expect(2016, 0, -999, "zorvs_sger");
    for (float e : a) EXPECT_EQ(e, 0.0f);
    // zorvs_sgemv / zorvs_dgemv
    int m = 2, n = 2, lda = 2, one = 1, zero = 0, neg = -3, small = 1;
    float alpha = 1, beta = 0;
    zorvs_sgemv("N", 1, &neg, &n, &alpha, a, &lda, x, &one, &beta, y, &one);
    expect(2033, -3, -999, "zorvs_sgemv");
    zorvs_sgemv("N", 1, &m, &neg, &alpha, a, &lda, x, &one, &beta, y, &one);
    expect(2014, -3, -999, "zorvs_sgemv");
    zorvs_sgemv("N", 1, &m, &n, &alpha, a, &small, x, &one, &beta, y, &one);
    expect(1020, 1, 2, "zorvs_sgemv");
    zorvs_sgemv("N", 1, &m, &n, &alpha, a, &lda, x, &zero, &beta, y, &one);
    expect(2015, 0, -999, "zorvs_sgemv");
    zorvs_sgemv("N", 1, &m, &n, &alpha, a, &lda, x, &one, &beta, y, &zero);
    expect(2016, 0, -999, "zorvs_sgemv");
    zorvs_sgemv("X", 1, &m, &n, &alpha, a, &lda, x, &one, &beta, y, &one);
    expect(20139, -999, -999, "zorvs_sgemv");
    EXPECT_STREQ(zorvs_error_param.l[1], "X");
    EXPECT_EQ(y[0], 5.0f);  // y left alone
    double da[4] = {}, dx[2] = {1, 1}, dy[2] = {5, 5}, dalpha = 1, dbeta = 0;
    zorvs_dgemv("x", 1, &m, &n, &dalpha, da, &lda, dx, &one, &dbeta, dy, &one);
    expect(20139, -999, -999, "zorvs_sgemv");
    EXPECT_EQ(dy[0], 5.0);
    // zorvs_sgemm
    int k = 2, negk = -1, ld1 = 1;
    float c[4] = {9, 9, 9, 9};
    auto gemm = [&](const char *ta, const char *tb, int *mm, int *nn, int *kk, int *la, int *lb, int *lc) {
        zorvs_sgemm(ta, 1, tb, 1, mm, nn, kk, &alpha, a, la, a, lb, &beta, c, lc);
    };
    gemm("N", "N", &neg, &n, &k, &lda, &lda, &lda);
    expect(2033, -3, -999, "zorvs_sgemm");
    gemm("N", "N", &m, &neg, &k, &lda, &lda, &lda);
    expect(2014, -3, -999, "zorvs_sgemm");
    gemm("N", "N", &m, &n, &negk, &lda, &lda, &lda);
    expect(11282, -1, -999, "zorvs_sgemm");
    gemm("N", "N", &m, &n, &k, &lda, &lda, &ld1);
    expect(11283, 1, 2, "zorvs_sgemm");
    gemm("N", "N", &m, &n, &k, &ld1, &lda, &lda);
    expect(11284, 1, 2, "zorvs_sgemm");
    gemm("Q", "N", &m, &n, &k, &lda, &lda, &lda);
    expect(11286, -999, -999, "zorvs_sgemm");
    EXPECT_STREQ(zorvs_error_param.l[1], "Q");
    gemm("T", "N", &m, &n, &k, &ld1, &lda, &lda);
    expect(11285, 1, 2, "zorvs_sgemm");
    gemm("N", "N", &m, &n, &k, &lda, &ld1, &lda);
    expect(11287, 1, 2, "zorvs_sgemm");
    gemm("N", "z", &m, &n, &k, &lda, &lda, &lda);
    expect(11286, -999, -999, "zorvs_sgemm");
    EXPECT_STREQ(zorvs_error_param.l[1], "z");
    gemm("N", "c", &m, &n, &k, &lda, &ld1, &lda);
    expect(11281, 1, 2, "zorvs_sgemm");
    for (float e : c) EXPECT_EQ(e, 9.0f);
    EXPECT_TRUE(log.has(5, 11281));
    EXPECT_TRUE(log.has(5, 20139));
}

TEST(KernelChecks, CheckingKernelStopsTheProcessByDefault) {
    auto call = [] {
        float a[4] = {}, x[2] = {}, y[2] = {};
        zorvs_sger(-1, 2, 1, x, 1, y, 1, a, 2);
        std::exit(0);
    };
    EXPECT_EXIT(call(), ::testing::ExitedWithCode(5), "zorvs_sger");
}

TEST(KernelChecks, CharacterComparisonLooksAtTheFirstLetterOnly) {
    EXPECT_TRUE(zorvs_l1ame("t", 1, "T"));
    EXPECT_TRUE(zorvs_l1ame("Transpose", 9, "t"));
    EXPECT_FALSE(zorvs_l1ame("N", 1, "T"));
}

}  // namespace
