// cholesky_test.cpp - Cholesky factor, generalized triangular solves and
// inverse, the sweep operator and the small matrix utilities, in both twins.
// References are exact (tests/data/kernels/cholesky_reference.inc, made with
// rational arithmetic by make_cholesky_reference.py): matrices A = R'R built
// from integer triangles R, so that the factor, the solutions, the inverses
// and the swept matrices are known rationals.

#include "kernels/linalg.h"
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/kernels/cholesky_reference.inc"

// The first n values of a reference array in the twin's type.
template <class T>
std::vector<T> of(const double *v, int n) {
    return std::vector<T>(v, v + n);
}

template <class T>
double max_abs(const std::vector<T> &x) {
    double m = 0;
    for (T v : x) m = std::fmax(m, std::fabs(double(v)));
    return m;
}

template <class T>
int chfac(int n, const std::vector<T> &a, T tol, std::vector<T> &fac, int lda = 0) {
    int rank = -1;
    lda = lda ? lda : n;
    fac.assign(a.size(), T(-9));
    ZORVS_TWIN(chfac, dchfac)(&n, a.data(), &lda, &tol, &rank, fac.data(), &n);
    return rank;
}

template <class T>
int girts(int n, const std::vector<T> &r, int nb, const std::vector<T> &b, int ipath, std::vector<T> &x,
          std::vector<T> &rinv) {
    int rank = -1;
    x.assign(Index(n) * (nb ? nb : 1), T(-9));
    rinv.assign(Index(n) * n, T(-9));
    ZORVS_TWIN(girts, dgirts)(&n, r.data(), &n, &nb, b.data(), &n, &ipath, &rank, x.data(), &n, rinv.data(), &n);
    return rank;
}

template <class T>
void sweep(int k, int n, std::vector<T> &a, int irev, T tol, const std::vector<T> &d, std::vector<T> &isw) {
    ZORVS_TWIN(gswep, dgswep)(&k, &n, a.data(), &n, &irev, &tol, d.data(), isw.data());
}

ZORVS_TWIN_SUITE(CholeskyTwins);

TYPED_TEST(CholeskyTwins, FactorReproducesTheInputAndTheExactTriangle) {
    using T = TypeParam;
    for (const FactorCase &c : factor_cases) {
        const int n = c.n;
        const auto a = of<T>(c.a, n * n), r = of<T>(c.r, n * n);
        std::vector<T> fac;
        EXPECT_EQ(chfac<T>(n, a, T(100 * eps_of<T>), fac), c.rank) << n;
        // R'R against A, relative to the size of A; R against the exact triangle.
        double worst = 0, worst_r = 0;
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < n; ++i) {
                double s = 0;
                for (int k = 0; k < n; ++k) s += double(fac[Index(i) * n + k]) * fac[Index(j) * n + k];
                worst = std::fmax(worst, std::fabs(s - a[Index(j) * n + i]));
                worst_r = std::fmax(worst_r, std::fabs(double(fac[Index(j) * n + i]) - r[Index(j) * n + i]));
                if (i > j) { EXPECT_EQ(fac[Index(j) * n + i], T(0)); }
            }
        EXPECT_LE(worst, 8 * eps_of<T> * max_abs(a)) << n;
        EXPECT_LE(worst_r, 1e3 * n * eps_of<T> * max_abs(r)) << n;
    }
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

// Right-hand sides b = R z and c = R'z with z zero on dependent rows: every
// path solves them; paths 3 and 4 give the generalized inverse (R Rinv R =
// R) that is zero on dependent rows and columns; inconsistent systems warn.
TYPED_TEST(CholeskyTwins, GeneralizedSolveAndInverseInFourPaths) {
    using T = TypeParam;
    const double tol = 1e3 * eps_of<T>;
    const int n = 8;
    for (const SolveCase &sc : solve_cases) {
        const auto r = of<T>(sc.r, n * n), b = of<T>(sc.b, 2 * n), c = of<T>(sc.c, 2 * n);
        std::vector<T> x, rinv;
        Quiet q;
        for (int path = 1; path <= 4; ++path) {
            EXPECT_EQ(girts<T>(n, r, 2, path % 2 ? b : c, path, x, rinv), n - sc.dependent);
            EXPECT_EQ(zorvs_error_n1rty[1], 0) << path << " code " << zorvs_error_code();
            for (int k = 0; k < 2 * n; ++k) EXPECT_NEAR(x[k], sc.z[k], tol * 10) << "path " << path << " k " << k;
            for (int k = 0; path > 2 && k < n * n; ++k)
                EXPECT_TRUE(sc.rinv[k] ? agrees(rinv[k], sc.rinv[k], tol * 50) : rinv[k] == 0) << k << " " << rinv[k];
        }
        if (!sc.dependent) continue;
        // R x = b with b(3) not 0; R'x = c with a residual on row 6; a bad path.
        std::vector<T> bad = b, badc = c;
        bad[2] += T(1);
        badc[n + 5] += T(1);
        expect_rows({
            {ZORVS_CALL(girts<T>(n, r, 2, bad, 1, x, rinv)), any, 3, 11058, "i1=3 i2=1"},
            {ZORVS_CALL(x[2]), 0},
            {ZORVS_CALL(girts<T>(n, r, 2, badc, 4, x, rinv)), any, 3, 11059, "i1=6 i2=2"},
            {ZORVS_CALL(girts<T>(n, r, 1, b, 5, x, rinv)), any, 5, -1},
        });
    }
}

// A consistent system whose dependent row's terms are large must not warn:
// the residual of row 10 is judged on the scale of the terms that make it
// (a fixed fault once judged it on the size of the result).  A relative
// change of the right-hand side well above rounding must warn, and leave
// the dependent unknown at 0.
TYPED_TEST(CholeskyTwins, DependentRowResidualIsJudgedOnTheScaleOfItsTerms) {
    using T = TypeParam;
    const int n = 12;
    std::vector<T> r(Index(n) * n, T(0)), x, rinv;
    Xorshift gen{7};
    auto next = [&] { return gen.unit() - 0.5; };
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i)
            if (i != 4 && i != 9) r[Index(j) * n + i] = T(i == j ? 3 + next() : next());
    const double change = sizeof(T) == 4 ? 1e-3 : 1e-9;
    Quiet q;
    for (int trial = 0; trial < 200; ++trial) {
        std::vector<T> z(n), c(n, T(0));
        for (int i = 0; i < n; ++i) z[i] = (i == 4 || i == 9) ? T(0) : T(100 * next());
        double terms = 0;  // of row 10: the sum of |r(h,10) z(h)|
        for (int i = 0; i < n; ++i)
            for (int h = 0; h <= i; ++h) c[i] += r[Index(i) * n + h] * z[h];
        for (int h = 0; h < 9; ++h) terms += std::fabs(double(r[Index(9) * n + h]) * z[h]);
        for (int path : {2, 4}) {
            EXPECT_EQ(girts<T>(n, r, 1, c, path, x, rinv), n - 2);
            EXPECT_EQ(zorvs_error_n1rty[1], 0) << "trial " << trial << " path " << path;
        }
        c[9] = T(double(c[9]) + change * terms);
        girts<T>(n, r, 1, c, 2, x, rinv);
        EXPECT_EQ(zorvs_error_n1rty[1], 3);
        EXPECT_EQ(slots("i1=10 i2=1"), "i1=10 i2=1");
        EXPECT_EQ(zorvs_error_code(), 11059);
        EXPECT_EQ(x[9], T(0));
    }
}

// Against the exact blocks inverse(A_SS), inverse(A_SS) A_ST and A_TT -
// A_TS inverse(A_SS) A_ST (S swept, T not): forward sweeps into S = {2, 5},
// then {2, 5, 1, 4}; reverse sweeps of 5 and 2 with others swept; then all
// rows (the inverse), back to none in another order (A returns), and one row
// twice from A (restores).
TYPED_TEST(CholeskyTwins, SweepsMatchTheExactBlocksForwardAndReverse) {
    using T = TypeParam;
    const int n = 6;
    const auto a = of<T>(sweep_a, n * n);
    std::vector<T> d(n), isw(n, T(1)), s = a;
    for (int i = 0; i < n; ++i) d[i] = a[i * (n + 1)];
    const std::vector<int> steps[] = {{2, 5}, {1, 4}, {5}, {2}, {3, 6, 2, 5}, {2, 4, 6, 1, 3, 5}, {2, 2}};
    for (int k = 0; k < 7; ++k) {
        if (k == 6) s = a;
        for (int row : steps[k]) sweep<T>(row, n, s, 1, T(1e-4), d, isw);
        // the upper triangle (not the T x S block) within 1e3 eps of the
        // step's largest element
        double worst = 0, scale = 0;
        for (int j = 0; j < n; ++j)
            for (int i = 0; i <= j; ++i) {
                const double want = sweep_steps[k][j * n + i];
                worst = std::isnan(want) ? worst : std::fmax(worst, std::fabs(s[j * n + i] - want));
                scale = std::isnan(want) ? scale : std::fmax(scale, std::fabs(want));
            }
        EXPECT_LE(worst, 1e3 * eps_of<T> * scale) << "step " << k;
        if (k == 3) { EXPECT_TRUE(s[0] > 0 && s[3 * (n + 1)] > 0 && isw[4] == T(1)); }
    }
    for (T v : isw) EXPECT_EQ(v, T(1));
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

// Refused pivots: X = (x1, x2, x3) with x1 = x2 + x3 + (0, 0, 0.1, 0),
// x2 = (10, 0, 0, 0), x3 = (0, 1, 0, 0): after rows 1 and 2, row 3 keeps
// 0.0099 of its diagonal, but with 3 swept row 1 would keep 9.9e-5 of its
// own: tol 1e-3 refuses, 1e-5 takes it (then B(1,1) = 1/0.01).  A row that
// is the sum of two others is refused, left alone or (irev 0) zeroed.
TYPED_TEST(CholeskyTwins, SweepRefusesDependentPivotsAndChecksRaise) {
    using T = TypeParam;
    const int n = 3;
    const std::vector<T> a = {T(101.01), 100, 1, 100, 100, 0, 1, 0, 1}, d = {T(101.01), 100, 1};
    std::vector<T> s = a, isw(n, T(1));
    for (int k : {1, 2}) sweep<T>(k, n, s, 1, T(1e-3), d, isw);
    const std::vector<T> before = s;
    sweep<T>(3, n, s, 1, T(1e-3), d, isw);
    EXPECT_TRUE(s == before && isw[2] == T(1));
    sweep<T>(3, n, s, 1, T(1e-5), d, isw);
    EXPECT_EQ(isw[2], T(-1));
    EXPECT_NEAR(double(s[0]), 100.0, 1e3 * eps_of<T> * 100 * 101);
    std::vector<T> x = {2, 1, 3, 1, 2, 3, 3, 3, 6}, dx = {2, 2, 6}, isx(n, T(1));
    for (int k : {1, 2}) sweep<T>(k, n, x, 1, T(1e-3), dx, isx);
    const std::vector<T> kept = x;
    sweep<T>(3, n, x, 1, T(1e-3), dx, isx);
    EXPECT_EQ(x, kept);
    sweep<T>(3, n, x, 0, T(1e-3), dx, isx);
    EXPECT_TRUE(x == std::vector<T>({kept[0], kept[1], kept[2], kept[3], kept[4], kept[5], 0, 0, 0}) && isx[2] == T(1));
    // Cholesky: eigenvalues 3 and -1 in the leading 2 x 2 of b: column 2 is
    // the first bad one; a dependent row of c that the next column
    // contradicts: column 3; rank one: v v' with v = (1, 2, -2).
    std::vector<T> neg = {2, -1, 6}, odd = {1, T(0.5), -1}, fac, rank_one = {1, 2, -2, 2, 4, -4, -2, -4, 4};
    const std::vector<T> b = {1, 2, 0, 2, 1, 0, 0, 0, 5}, c = {1, 1, 1, 1, 1, 0, 1, 0, 1};
    expect_rows({
        {ZORVS_CALL(chfac<T>(3, b, T(1e-5), fac)), 2, 3, 20406, "i1=2"},
        {ZORVS_CALL(fac[4]), 0},
        {ZORVS_CALL(chfac<T>(3, c, T(1e-5), fac)), any, 3, 20406, "i1=3"},
        {ZORVS_CALL(chfac<T>(3, c, T(1.5), fac)), any, 5, 20405, "r1=1.5"},
        {ZORVS_CALL(chfac<T>(3, c, T(0), fac, 2)), any, 5, -1},
        {ZORVS_CALL(chfac<T>(3, rank_one, T(1e-5), fac)), 1, 0},
        {ZORVS_CALL(fac == std::vector<T>({1, 0, 0, 2, 0, 0, -2, 0, 0})), 1},
        {ZORVS_DO(sweep<T>(1, n, x, 1, T(2), dx, isx)), any, 5, 20405},
        {ZORVS_DO(sweep<T>(1, n, x, 1, T(0.1), neg, isx)), any, 5, 20417, "i1=2"},
        {ZORVS_DO(sweep<T>(1, n, x, 1, T(0.1), dx, odd)), any, 5, 20418, "i1=2"},
        {ZORVS_DO(sweep<T>(4, n, x, 1, T(0.1), dx, isx)), any, 5, -1},
        {ZORVS_DO(sweep<T>(1, n, x, 2, T(0.1), dx, isx)), any, 5, -1},
    });
}

// B = A'A, copy, fill the lower triangle, the 1-norm, prime factors.
TEST(Cholesky, SmallUtilitiesAndTheirMessages) {
    int zero = 0, one = 1, two = 2, three = 3, nf = 0, f[9], e[9], p[9];
    double x = -3, b = 0, m[9] = {1, -9, -9, 2, 3, -9, -4, 5, 6}, c[9] = {0}, a[9] = {0}, norm = 0;
    float a32[] = {1, 2, 3, 4, 5, 6}, b22[4], cf[9] = {1, -9, -9, 2, 3, -9, -4, 5, 6}, copy[9], nfl = 0;
    auto factors = [&](int n) { return zorvs_prime(&n, &nf, f, e, p), nf; };
    expect_rows({
        {ZORVS_DO(zorvs_dmxtxf(&one, &one, &x, &one, &one, &b, &one)), any, 0},
        {ZORVS_CALL(b), 9},
        {ZORVS_DO(zorvs_mxtxf(&three, &two, a32, &three, &two, b22, &two)), any, 0},
        {ZORVS_CALL(b22[0] == 14 && b22[1] == 32 && b22[2] == 32 && b22[3] == 77), 1},
        {ZORVS_DO(zorvs_dcrgrg(&three, m, &three, c, &three)), any, 0},
        {ZORVS_CALL(std::equal(c, c + 9, m)), 1},
        {ZORVS_DO(zorvs_dcsfrg(&three, c, &three)), any, 0},
        {ZORVS_CALL(c[1] == 2 && c[2] == -4 && c[5] == 5), 1},
        {ZORVS_DO(zorvs_dnr1rr(&three, &three, c, &three, &norm)), any, 0},
        {ZORVS_CALL(norm), 15},  // |-4| + 5 + 6
        {ZORVS_DO(zorvs_csfrg(&three, cf, &three)), any, 0},
        {ZORVS_DO(zorvs_nr1rr(&two, &three, cf, &three, &nfl)), any, 0},
        {ZORVS_CALL(nfl), 9},  // |-4| + 5
        {ZORVS_DO(zorvs_crgrg(&three, cf, &three, copy, &three)), any, 0},
        {ZORVS_CALL(copy[7]), 5},
        {ZORVS_CALL(factors(360)), 3, 0},
        {ZORVS_CALL(f[0] == 2 && e[0] == 3 && p[0] == 8 && f[1] == 3 && p[1] == 9 && f[2] == 5), 1},
        {ZORVS_CALL(factors(2147483647)), 1, 0},
        {ZORVS_CALL(p[0]), 2147483647},
        {ZORVS_CALL(factors(15 * 1001 - 1)), 2, 0},  // 15014 = 2 * 7507
        {ZORVS_CALL(f[1]), 7507},
        {ZORVS_DO(zorvs_dmxtxf(&zero, &two, a, &three, &two, c, &two)), any, 5, 20136},
        {ZORVS_DO(zorvs_dmxtxf(&three, &two, a, &two, &two, c, &two)), any, 5, 20137},
        {ZORVS_DO(zorvs_dmxtxf(&three, &two, a, &three, &three, c, &three)), any, 5, 11278},
        {ZORVS_DO(zorvs_dmxtxf(&three, &two, a, &three, &two, c, &one)), any, 5, 11279, "i1=1 i2=2"},
        {ZORVS_DO(zorvs_dcrgrg(&three, a, &two, c, &three)), any, 5, 11280},
        {ZORVS_DO(zorvs_dcrgrg(&three, a, &three, c, &two)), any, 5, 11281},
        {ZORVS_DO(zorvs_dcsfrg(&zero, a, &three)), any, 5, 2025},
        {ZORVS_DO(zorvs_dcsfrg(&three, a, &two)), any, 5, 2026},
        {ZORVS_DO(zorvs_dnr1rr(&zero, &two, a, &three, &norm)), any, 5, 620},
        {ZORVS_DO(zorvs_dnr1rr(&two, &zero, a, &three, &norm)), any, 5, 621},
        {ZORVS_DO(zorvs_dnr1rr(&three, &two, a, &two, &norm)), any, 5, 20137},
    });
}

}  // namespace
