// blas_test.cpp - the vector and matrix kernels in both twins: every routine
// bit for bit (the order of the additions is fixed) against the results of
// make_blas_reference.py (tests/data/kernels/blas_reference.inc), for
// lengths up to 17 and every stride sign; the scaled norm across its three
// ranges against the exact norm; rotations by their defining properties; the
// argument checks of the checking kernels as rows.
#include "support/tables.hpp"

#include "kernels/kernels.h"

namespace {

using namespace zorvs_test;

#define K ZORVS_TWIN

// Offset of logical element i (from 0) of a vector of n with stride inc,
// under the far-end rule.
long at(int n, int inc, int i) { return (inc < 0 ? static_cast<long>(1 - n) * inc : 0) + static_cast<long>(i) * inc; }

// H of a modified rotation's parameter vector: h11, h21, h12, h22 by the flag.
template <class T>
std::array<T, 4> h(const T *p) {
    if (p[0] == -2) return {1, 0, 0, 1};
    if (p[0] == 0) return {1, p[2], p[3], 1};
    if (p[0] > 0) return {p[1], -1, 1, p[4]};
    return {p[1], p[2], p[3], p[4]};
}

ZORVS_TWIN_SUITE(KernelTwin);

#include "data/kernels/blas_reference.inc"

// Element k of input array s, the formula of make_blas_reference.py.
template <class T>
std::vector<T> input(int s, long size) {
    std::vector<T> v(size);
    for (long k = 0; k < size; ++k) v[k] = static_cast<T>(((k * 7919 + s * 104729) % 4001 - 2000) / 1000.0);
    return v;
}

// out must be `in` with the elements at pos(0), pos(1), ... replaced by the
// next `count` expected values, and nothing else changed.
template <class T, class P>
void expect_replaced(const std::vector<T> &out, std::vector<T> in, int count, P pos, const double *&want) {
    for (int i = 0; i < count; ++i) in[pos(i)] = static_cast<T>(*want++);
    ASSERT_EQ(out, in);
}

// Every kernel bit for bit against the reference (the additions in
// ascending order in one accumulator of the type), for lengths 0 to 17 and
// every stride sign.  Far-end rule (kind 0): dot, |x y|, x y z; copy,
// Hadamard product, rotation, modified rotation with each flag.  Count rule
// (1: scal, set, sum, asum: elements 1, 1 + inc, ... from the pointer,
// nothing for a stride below 1); walk rule (2: vcal, add: exactly n
// elements from the pointer, whatever the sign).  gemm (3), gemv (4) and
// ger (5) on column-major arrays with spare rows that must stay as they
// were; beta 0 overwrites without reading (the output starts NaN).  The
// triangular solve (6) in all eight forms.  The scaled norm (7) across its
// three ranges, against the exact norm.
TYPED_TEST(KernelTwin, KernelsMatchTheReferenceBitForBit) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN(), c = T(0.6), s = T(0.8);
    const T scalars[][2] = {{0, 0}, {1, 1}, {T(-0.75), -1}, {1, T(2.5)}, {T(-0.75), 0}};
    const T flags[][5] = {{-2, 9, 9, 9, 9}, {0, 9, 2, 3, 9}, {1, 2, 9, 9, 3}, {-1, 2, 3, 4, 5}};
    const char *trans[] = {"N", "t", "C"}, *transb[] = {"n", "T"};
    const char *forms[][3] = {{"U", "N", "n"}, {"U", "N", "U"}, {"u", "t", "n"}, {"U", "T", "u"},
                              {"l", "N", "N"}, {"L", "n", "U"}, {"L", "t", "n"}, {"l", "c", "U"}};
    for (const BlasCase &r : blas_cases) {
        SCOPED_TRACE(::testing::Message() << "case " << &r - blas_cases << " of blas_reference.inc, kind " << r.kind);
        const double *want = blas_expected[sizeof(T) == 8] + r.first;
        int n = r.n, m = r.m, k = r.k, incx = r.incx, incy = r.incy, incz = r.incz;
        auto far = [](int len, int inc) { return [=](int i) { return at(len, inc, i); }; };
        auto walk = [](long start, int inc) { return [=](int i) { return start + long(i) * inc; }; };
        if (r.kind == 0) {
            auto x = input<T>(1, n * std::abs(incx) + 1), y = input<T>(2, n * std::abs(incy) + 1);
            auto z = input<T>(3, n * std::abs(incz) + 1);
            EXPECT_EQ(K(sdot, ddot)(n, x.data(), incx, y.data(), incy), T(want[0]));
            EXPECT_EQ(K(a1ot, da1ot)(n, x.data(), incx, y.data(), incy), T(want[1]));
            EXPECT_EQ(K(sxyz, dxyz)(n, x.data(), incx, y.data(), incy, z.data(), incz), T(want[2]));
            want += 3;
            auto yc = y, zc = z, xr = x, yr = y, xm = x, ym = y;
            K(scopy, dcopy)(n, x.data(), incx, yc.data(), incy);
            K(shprod, dshprod)(&n, x.data(), &incx, y.data(), &incy, zc.data(), &incz);
            K(srot, drot)(n, xr.data(), incx, yr.data(), incy, c, s);
            K(srotm, drotm)(n, xm.data(), incx, ym.data(), incy, flags[r.option]);
            for (auto [out, in, inc] : {std::tuple{&yc, &y, incy}, {&zc, &z, incz}, {&xr, &x, incx}, {&yr, &y, incy},
                                        {&xm, &x, incx}, {&ym, &y, incy}})
                expect_replaced(*out, *in, n, far(n, inc), want);
        } else if (r.kind == 1) {
            const auto x = input<T>(1, n * std::max(incx, 1) + 2);
            auto sc = x, st = x;
            EXPECT_EQ(K(ssum, dsum)(n, x.data(), incx), T(want[0]));
            EXPECT_EQ(K(sasum, dasum)(n, x.data(), incx), T(want[1]));
            want += 2;
            K(sscal, dscal)(n, T(1.5), sc.data(), incx);
            K(sset, dset)(n, T(4), st.data(), incx);
            for (const auto *out : {&sc, &st}) expect_replaced(*out, x, incx > 0 ? n : 0, walk(0, incx), want);
        } else if (r.kind == 2) {
            auto x = input<T>(1, 2 * n + 2), xa = x;
            std::vector<T> y(2 * n + 2, 9), yc = y;
            const long start = incx > 0 ? 0 : 2 * n;
            K(svcal, dvcal)(n, T(-3), x.data(), 1, yc.data() + start, incx);
            K(sadd, dadd)(n, T(0.25), xa.data() + start, incx);
            for (auto [o, i] : {std::pair{&yc, &y}, {&xa, &x}}) expect_replaced(*o, *i, n, walk(start, incx), want);
        } else if (r.kind == 3) {  // incx: op(A), incy: op(B), incz: (alpha, beta)
            int lda = (incx ? k : m) + 2, ldb = (incy ? n : k) + 1, ldc = m + 3;
            auto a = input<T>(1, lda * (incx ? m : k)), b = input<T>(2, ldb * (incy ? k : n));
            auto cc = input<T>(3, ldc * n), ce = cc;
            auto block = [=](int i) { return i / m * ldc + i % m; };
            for (int i = 0; i < m * n && scalars[incz][1] == 0; ++i) cc[block(i)] = nan;
            K(sgemm, dsgemm)(trans[incx], 1, transb[incy], 1, &m, &n, &k, &scalars[incz][0], a.data(), &lda, b.data(),
                             &ldb, &scalars[incz][1], cc.data(), &ldc);
            expect_replaced(cc, ce, m * n, block, want);
        } else if (r.kind == 4) {
            const int lda = m + 1, lx = r.option ? m : n, ly = r.option ? n : m;
            const T alpha = T(1.25), beta = incx == incy ? T(0) : T(-0.5);
            auto a = input<T>(1, lda * n), x = input<T>(2, lx * std::abs(incx)), y = input<T>(3, ly * std::abs(incy));
            auto yc = y;
            for (int i = 0; i < ly && beta == 0; ++i) yc[at(ly, incy, i)] = nan;
            K(sgemv, dgemv)(trans[r.option], 1, &m, &n, &alpha, a.data(), &lda, x.data(), &incx, &beta, yc.data(),
                            &incy);
            expect_replaced(yc, y, ly, far(ly, incy), want);
        } else if (r.kind == 5) {
            const int lda = m + 1;
            auto a = input<T>(1, lda * n), x = input<T>(2, m * std::abs(incx)), y = input<T>(3, n * std::abs(incy));
            auto ac = a;
            K(sger, dger)(m, n, T(0.5), x.data(), incx, y.data(), incy, ac.data(), lda);
            expect_replaced(ac, a, m * n, [=](int i) { return i / m * lda + i % m; }, want);
        } else if (r.kind == 7) {  // within (n + 4) eps; incx: the power of 2 the inputs are scaled by
            auto x = input<T>(1, n);
            for (auto &e : x) e = std::ldexp(e, incx);
            const bool held = sizeof(T) == 8 || std::abs(incx) <= 120;  // a float cannot hold 2^1000
            if (held) { EXPECT_LE(std::fabs(K(snrm2, dnrm2)(n, x.data()) / *want - 1), (n + 4) * eps_of<T>); }
        } else {
            const int lda = n + 2;
            auto a = input<T>(1, lda * n), x = input<T>(2, n * std::abs(incx)), xc = x;
            for (int i = 0; i < n; ++i) a[i * lda + i] = T(3 + i % 3);  // well conditioned
            const char *const *f = forms[r.option];
            K(strsv, dtrsv)(f[0], f[1], f[2], n, a.data(), lda, xc.data(), incx);
            expect_replaced(xc, x, n, far(n, incx), want);
        }
    }
    int ix[5] = {1, 2, 3, 4, 5};
    EXPECT_EQ(zorvs_isum(3, ix, 2), 9);
    EXPECT_EQ(zorvs_isum(0, ix, 1), 0);
    EXPECT_EQ(K(sdot, ddot)(-4, nullptr, 1, nullptr, 1), 0);
    EXPECT_EQ(K(snrm2, dnrm2)(0, nullptr), 0);
    T z = 7;
    K(strsv, dtrsv)("U", "N", "N", 0, nullptr, 1, &z, 1);
    EXPECT_EQ(z, 7);
}

// Index (from 1) of the largest magnitude and of the first NaN; nothing
// compares greater than a NaN that came first.
TYPED_TEST(KernelTwin, IndexOfLargestMagnitudeAndFirstNaN) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    const T v[] = {1, -3, 3}, w[] = {1, 9, -2, 7, 8, -10}, u[] = {nan, 1, 5}, q[] = {2, nan, 5, nan};
    const auto iamax = K(isamax, idamax), ianan = K(isanan, idanan);
    const std::tuple<int (*)(int, const T *, int), int, const T *, int, int> rows[] = {
        {iamax, 3, v, 1, 2},  {iamax, 0, v, 1, 0}, {iamax, 1, v, 1, 1}, {iamax, 3, v, 0, 1},       {iamax, 3, v, -1, 1},
        {iamax, 3, w, 2, 3},  {iamax, 3, u, 1, 1}, {iamax, 4, q, 1, 3}, {ianan, 4, q, 1, 2},       {ianan, 2, q, 2, 0},
        {ianan, 1, u, 1, 1},  {ianan, 2, q + 2, -2, 0}, {ianan, 3, q + 2, -1, 2}};
    for (auto [index, n, x, inc, want] : rows) EXPECT_EQ(index(n, x, inc), want) << n << " " << inc << " " << want;
}

// Givens: c^2 + s^2 = 1, the rotation takes (a, b) to (r, 0) with |r| the
// hypotenuse, and b comes back as z: s if |a0| > |b0|, else 1/c (or 1; 0 for
// a zero pair, with c = 1).  Modified: applied to (x1, y1) the rotation
// zeroes y1 and keeps the weighted squares: d1 x1^2 + d2 y1^2 = d1' x1'^2.
TYPED_TEST(KernelTwin, RotationsZeroTheSecondComponent) {
    using T = TypeParam;
    const T eps = eps_of<T>;
    for (auto [a0, b0] : {std::pair<T, T>{3, 4}, {4, 3}, {-5, 2}, {T(1e-3), -7}, {0, 2}, {2, 0}, {0, 0}}) {
        T a = a0, b = b0, c = 5, s = 5;
        K(srotg, drotg)(&a, &b, &c, &s);
        EXPECT_NEAR(c * c + s * s, 1, 4 * eps);
        EXPECT_NEAR(c * a0 + s * b0, a, 4 * eps * std::fabs(a));
        EXPECT_NEAR(-s * a0 + c * b0, 0, 4 * eps * std::fabs(a));
        EXPECT_NEAR(std::fabs(a), std::hypot(a0, b0), 4 * eps * std::fabs(a));
        EXPECT_EQ(b, std::fabs(a0) > std::fabs(b0) ? s : a0 == 0 && b0 == 0 ? 0 : c != 0 ? 1 / c : 1);
    }
    const T cases[][4] = {{1, 1, 3, 4},        {2, 0.5f, 1, 3}, {1, 1, 1e-5f, 1}, {1e-9f, 1, 1, 1e3f},
                          {3, 2, 5, -1e-4f}, {1, 1, 2, 0},    {-1, 1, 2, 1}};
    for (const auto &k : cases) {
        T d1 = k[0], d2 = k[1], x1 = k[2], param[5] = {};
        K(srotmg, drotmg)(&d1, &d2, &x1, k[3], param);
        if (k[3] == 0 || k[0] < 0) {  // y1 = 0: the identity; d1 < 0: everything zeroed
            EXPECT_TRUE(k[3] == 0 ? param[0] == -2 : param[0] == -1 && d1 == 0 && x1 == 0);
            continue;
        }
        const auto m = h(param);
        const T nx = m[0] * k[2] + m[2] * k[3], ny = m[1] * k[2] + m[3] * k[3];
        EXPECT_NEAR(ny, 0, 8 * eps * std::fabs(nx));
        EXPECT_NEAR(nx / x1, 1, 8 * eps);
        EXPECT_NEAR(double(d1) * x1 * x1 / (double(k[0]) * k[2] * k[2] + double(k[1]) * k[3] * k[3]), 1, 16 * eps);
    }
}

// The checks of ger, gemv and gemm in their order, each naming the routine;
// nothing computed.
TEST(KernelChecks, GerGemvGemmRaiseInTheirOrder) {
    float a[16] = {}, x[4] = {1, 1, 1, 1}, y[4] = {5, 5, 5, 5}, c[4] = {9, 9, 9, 9}, alpha = 1, beta = 0;
    double da[4] = {}, dx[2] = {1, 1}, dy[2] = {5, 5}, dalpha = 1, dbeta = 0;
    int m = 2, n = 2, k = 2, lda = 2, one = 1, zero = 0, neg = -3, negk = -1, ld1 = 1;
    auto gemm = [&](const char *ta, const char *tb, int *mm, int *nn, int *kk, int *la, int *lb, int *lc) {
        zorvs_sgemm(ta, 1, tb, 1, mm, nn, kk, &alpha, a, la, a, lb, &beta, c, lc);
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
        {ZORVS_DO(gemm("N", "N", &neg, &n, &k, &lda, &lda, &lda)), any, 5, 2033, "i1=-3", 0, "zorvs_sgemm"},
        {ZORVS_DO(gemm("N", "N", &m, &neg, &k, &lda, &lda, &lda)), any, 5, 2014, "i1=-3"},
        {ZORVS_DO(gemm("N", "N", &m, &n, &negk, &lda, &lda, &lda)), any, 5, 11282, "i1=-1"},
        {ZORVS_DO(gemm("N", "N", &m, &n, &k, &lda, &lda, &ld1)), any, 5, 11283, "i1=1 i2=2"},
        {ZORVS_DO(gemm("N", "N", &m, &n, &k, &ld1, &lda, &lda)), any, 5, 11284, "i1=1 i2=2"},
        {ZORVS_DO(gemm("Q", "N", &m, &n, &k, &lda, &lda, &lda)), any, 5, 11286, "l1=Q"},
        {ZORVS_DO(gemm("T", "N", &m, &n, &k, &ld1, &lda, &lda)), any, 5, 11285, "i1=1 i2=2"},
        {ZORVS_DO(gemm("N", "N", &m, &n, &k, &lda, &ld1, &lda)), any, 5, 11287, "i1=1 i2=2"},
        {ZORVS_DO(gemm("N", "z", &m, &n, &k, &lda, &lda, &lda)), any, 5, 11286, "l1=z"},
        {ZORVS_DO(gemm("N", "c", &m, &n, &k, &lda, &ld1, &lda)), any, 5, 11281, "i1=1 i2=2"},
        // the character comparison looks at the first letter only
        {ZORVS_CALL(zorvs_l1ame("t", 1, "T")), 1},
        {ZORVS_CALL(zorvs_l1ame("Transpose", 9, "t")), 1},
        {ZORVS_CALL(zorvs_l1ame("N", 1, "T")), 0},
    });
    EXPECT_TRUE(std::all_of(a, a + 16, [](float e) { return e == 0; }) && y[0] == 5 && dy[0] == 5);
    EXPECT_TRUE(std::all_of(c, c + 4, [](float e) { return e == 9; }));
}

}  // namespace
