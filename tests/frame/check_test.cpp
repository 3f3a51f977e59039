// Argument checks: each check's pass or message with its parameters and the
// counting of arguments; the safe division, the frequency reader, the safe
// F and t ratios (a stop at the pop of the user's routine is in frame_test.cpp).
#include "support/tables.hpp"

#include "dist/continuous.h"
#include "frame/checks.h"

namespace {

using zorvs_test::agrees;
using zorvs_test::slots;

const double nan = std::nan(""), inf = std::numeric_limits<double>::infinity();

const double r_bad[] = {1, 0, 0, 2, 0, 0, 3, 4, 5};  // row 2: zero diagonal, 4 and 5 to its right
const float r_good[] = {1, 0, 0, 2, 0, 0, 3, 0, 5};
const int indcl[] = {1, 4}, nvef[] = {1, 2}, indef[] = {1, 2, 3}, bad_nvef[] = {0, 2}, bad_indef[] = {1, 5, 2};

const struct {
    void (*call)(int *arg);
    int type, code;     // (0, 0): the check passes
    const char *slots;  // parameters stored for the message
    int counted;        // added to the argument counter (-1: not checked)
} check_cases[] = {
    {[](int *a) { zorvs_c1iarg(3, "n", 1, 0, a); }, 0, 0, "", 1},
    {[](int *a) { zorvs_c1iarg(0, "n", 1, 0, a); }, 5, 603, "i1=0 i2=1 l1=n", 1},
    {[](int *a) { zorvs_c1iarg(5, "k", 1, 4, a); }, 5, 602, "i3=4 l1=k", 1},
    {[](int *a) { zorvs_c1iarg(2, "k", 2, 2, a); }, 0, 0, "", 1},  // lo = hi: one valid value
    {[](int *a) { zorvs_c1iarg(3, "k", 2, 2, a); }, 5, 602, "", 1},
    {[](int *a) { zorvs_c12ile(3, "n", 3, "ld", a); }, 0, 0, "", 1},
    {[](int *a) { zorvs_c12ile(4, "n", 3, "ld", a); }, 5, 601, "l2=ld", 1},
    {[](int *a) { zorvs_c1dim(1, 2, "n", 5, "ldx", a); }, 0, 0, "", 3},
    {[](int *a) { zorvs_c1dim(1, 0, "n", 0, "ldx", a); }, 5, 603, "", 3},
    // A name starting with '*' waives the test of n and prints without the '*'.
    {[](int *a) { zorvs_c1dim(1, 0, "*x", 5, "ldx", a); }, 0, 0, "", 3},
    {[](int *a) { zorvs_c1dim(0, 7, "*x", 5, "ldx", a); }, 5, 601, "l1=x", 3},
    {[](int *a) { zorvs_c1ind(1, 9, "n", 0, "ld", a); }, 0, 0, "", 2},  // no upper bound for ld < 1
    {[](int *a) { zorvs_c1ind(1, 9, "n", 8, "ld", a); }, 5, 601, "", 2},
    {[](int *a) { zorvs_dc1ge0(0.0, "x", a); }, 0, 0, "", 1},
    {[](int *a) { zorvs_c1ge0(-0.5f, "y", a); }, 5, 11061, "r1=-0.5 l1=y", 1},
    {[](int *a) { zorvs_dc1cip("confidence", 0.0, a, a); }, 0, 0, "", 2},
    {[](int *a) { zorvs_dc1cip("confidence", 50.0, a, a); }, 0, 0, "", 2},
    {[](int *a) { zorvs_dc1cip("confidence", 99.99, a, a); }, 0, 0, "", 2},
    {[](int *a) { zorvs_dc1cip("confidence", 25.0, a, a); }, 6, 20404, "", 2},
    {[](int *a) { zorvs_c1cip("confidence", 100.0f, a, a); }, 5, 20403, "", 2},
    {[](int *a) { zorvs_dc1cip("confidence", -1.0, a, a); }, 5, 20403, "r1=-1", 2},
    {[](int *a) { zorvs_dc1r(3, r_bad, 3, a); }, 5, 11060, "i1=2 i2=3 r1=0 r2=4", 0},
    {[](int *a) { zorvs_c1r(3, r_good, 3, a); }, 0, 0, "", 1},
    {[](int *a) { zorvs_c1ef(3, 2, indcl, 2, nvef, indef, a); }, 5, 20235, "i1=2 i2=4", -1},
    {[](int *a) { zorvs_c1ef(4, 2, indcl, 2, bad_nvef, indef, a); }, 5, 20237, "", -1},
    {[](int *a) { zorvs_c1ef(4, 2, indcl, 2, nvef, bad_indef, a); }, 5, 20238, "i1=2", -1},
    {[](int *a) { zorvs_c1ef(0, 0, nullptr, 0, nullptr, nullptr, a); }, 5, 603, "l1=NCOL", -1},
};

// The checks run inside a frame, so that their messages belong to a routine.
TEST(Check, EachCheck) {
    zorvs_test::Quiet q;
    zorvs_e1psh("zorvs_checked_routine");
    for (const auto &c : check_cases) {
        SCOPED_TRACE(&c - check_cases);
        zorvs_e1mes(0, 0, nullptr);
        int arg = 10;
        c.call(&arg);
        EXPECT_EQ(zorvs_n1rty(0), c.type);
        EXPECT_EQ(zorvs_n1rcd(0), c.code);
        EXPECT_EQ(slots(c.slots), c.slots);
        if (c.counted >= 0) {
            EXPECT_EQ(arg, 10 + c.counted);
        }
    }
    zorvs_e1pop("zorvs_checked_routine");
}

// The safe division, and the safe F and t ratios with their upper and
// two-sided tail probabilities (references from R: pf(2, 3, 10, lower = FALSE),
// 2 * pt(-2, 10), 2 * pt(-3, 4)).  Kinds '/', 'F' and 'T', and '|', 'f' and 't'
// for the float twins.
TEST(CheckArithmetic, DivisionAndRatios) {
    const struct { char kind; double a, b; int df1, df2; double ratio, p, tolerance; } cases[] = {
        {'/', 0, 0, 0, 0, nan, 0, 0},
        {'/', 1, 0, 0, 0, inf, 0, 0},
        {'/', -1, 0, 0, 0, -inf, 0, 0},
        {'/', 1e300, 1e-300, 0, 0, inf, 0, 0},
        {'/', -1e300, 1e-10, 0, 0, -inf, 0, 0},
        {'/', 1e-300, 1e100, 0, 0, 0, 0, 0},
        {'/', 6, 3, 0, 0, 2, 0, 0},
        {'/', nan, 3, 0, 0, nan, 0, 0},
        {'|', 1e30, 1e-20, 0, 0, inf, 0, 0},
        {'|', 3, -0.5, 0, 0, -6, 0, 0},
        {'F', 4, 2, 3, 10, 2, 0.178007407375175, 1e-12},
        {'F', 1, 0, 3, 10, inf, 0, 0},
        {'F', 0, 0, 3, 10, nan, nan, 0},
        {'F', 2, 1, 0, 10, 2, nan, 0},
        {'F', nan, 1, 3, 10, nan, nan, 0},
        {'f', 4, 2, 3, 10, 2, 0.1780074, 1e-5},
        {'T', -4, 2, 10, 0, -2, 0.0733880347707404, 1e-12},
        {'T', -1, 0, 10, 0, -inf, 0, 0},
        {'T', 1, 2, 0, 0, 0.5, nan, 0},
        {'T', 0, 0, 5, 0, nan, nan, 0},
        {'t', 3, 1, 4, 0, 3, 0.0399420, 1e-5},
    };
    zorvs_test::Quiet q;
    for (const auto &c : cases) {
        SCOPED_TRACE(::testing::Message() << c.kind << " " << c.a << " " << c.b);
        double ratio = 0, p = 0;
        float fr = 0, fp = 0;
        switch (c.kind) {
            case '/': zorvs_dc1div(c.a, c.b, &ratio); break;
            case '|': zorvs_c1div(static_cast<float>(c.a), static_cast<float>(c.b), &fr); break;
            case 'F': zorvs_dc1f(c.a, c.b, c.df1, c.df2, &ratio, &p); break;
            case 'T': zorvs_dc1t(c.a, c.b, c.df1, &ratio, &p); break;
            case 'f': zorvs_c1f(c.a, c.b, c.df1, c.df2, &fr, &fp); break;
            default: zorvs_c1t(c.a, c.b, c.df1, &fr, &fp);
        }
        if (std::strchr("|ft", c.kind)) ratio = fr, p = fp;
        EXPECT_TRUE(agrees(ratio, c.ratio)) << ratio;
        EXPECT_TRUE(agrees(p, c.p, c.tolerance)) << p;
        EXPECT_EQ(zorvs_error_type(), 0);
    }
}

// One row's frequency and weight from columns 2 and 3 of a 5 x 3 matrix:
// rows (1, 1, 2), (2, 0, NaN), (3, NaN, NaN), (4, -2, 1), (5, 6, -4).
ZORVS_TWIN_SUITE(FrequencyReader);
TYPED_TEST(FrequencyReader, RowByRow) {
    using T = TypeParam;
    const T x[] = {1, 2, 3, 4, 5, 1, 0, T(nan), -2, 6, 2, T(nan), T(nan), 1, -4};
    // The count of missing rows, nmiss, runs on from row to row.
    const struct {
        int ido, group, row, sign, ifrq, iwt, status, nmiss, type, code; double freq, weight; const char *slots;
    } cases[] = {
        {0, 0, 1, 1, 2, 3, 0, 0, 0, 0, 1, 2, ""},
        {0, 0, 2, 1, 2, 3, 1, 0, 0, 0, 0, nan, ""},  // zero frequency: not missing
        {0, 0, 3, 1, 2, 3, 2, 1, 0, 0, nan, nan, ""},
        {0, 0, 1, -1, 2, 3, 0, 1, 0, 0, -1, 2, ""},  // removing a row turns the sign
        {0, 0, 3, -1, 2, 3, 2, 0, 0, 0, nan, nan, ""},
        {0, 0, 4, 1, 0, 0, 0, 0, 0, 0, 1, 1, ""},  // no columns: 1 and 1
        {0, 0, 4, 1, 2, 0, 3, 0, 4, 11055, -2, 1, "i1=4 r1=-2"},
        {2, 7, 5, 1, 2, 3, 3, 0, 4, 11056, 6, -4, "i2=7 r1=-4"},
        {0, 0, 5, 1, 0, 3, 3, 0, 4, 11057, 1, -4, ""},
        {1, 3, 4, 1, 2, 0, 3, 0, 4, 11054, -2, 1, ""},
    };
    zorvs_test::Quiet q;
    zorvs_e1psh("zorvs_checked_routine");
    int nmiss = 0;
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        zorvs_e1mes(0, 0, nullptr);
        int status = -1;
        T f = 0, w = 0;
        zorvs_test::twin<T>(zorvs_c1wfr, zorvs_dc1wfr)(c.ido, c.group, x, 5, c.row, c.sign, c.ifrq, c.iwt, 0, &nmiss, &f,
                                                       &w, &status);
        EXPECT_EQ(std::make_pair(status, nmiss), std::make_pair(c.status, c.nmiss));
        EXPECT_TRUE(status == 1 || status == 2 || (agrees(f, c.freq) && agrees(w, c.weight))) << f << " " << w;
        EXPECT_EQ(std::make_pair(zorvs_n1rty(0), zorvs_n1rcd(0)), std::make_pair(c.type, c.code));
        EXPECT_EQ(slots(c.slots), c.slots);
    }
    zorvs_e1pop("zorvs_checked_routine");
}

}  // namespace
