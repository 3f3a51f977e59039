// Tests of the streaming weighted means and sums of squares: rows added one
// at a time against a two-pass computation in long double on data with a
// large common offset, strides of both signs, weights of 0.0, and the two
// refusals.
#include "stat/regress/regress.hpp"
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

ZORVS_TWIN_SUITE(SumsOfSquares);

// Three variables (offsets 0, 1e6 and -3e3) over 200 rows with weights in
// [0, 2), every tenth 0.0; x is stored with stride 2 and the means and sums
// with strides -1 and 3.  The two-pass values in long double of the very
// numbers given are the reference.
TYPED_TEST(SumsOfSquares, AgreesWithTwoPassWeightedSums) {
    using T = TypeParam;
    const int n = 3, rows = 200, incx = 2, incm = -1, incs = 3;
    const double offset[n] = {0.0, 1e6, -3e3};
    Xorshift g{42};
    std::vector<T> x(static_cast<Index>(rows) * 2 * n), w(rows);  // row r at x[2 n r], its variables 2 apart
    for (int r = 0; r < rows; ++r) {
        w[r] = r % 10 == 0 ? T(0) : static_cast<T>(2 * g.unit());
        for (int i = 0; i < n; ++i) x[Index(2 * (r * n + i))] = static_cast<T>(offset[i] + 10 * g.unit());
    }
    T sumwt = 0, mean[n] = {}, ss[3 * n] = {};
    for (int r = 0; r < rows; ++r) zorvs::regress::s1msq(&n, &x[Index(2 * r * n)], &incx, &w[r], &sumwt, mean, &incm, ss, &incs);
    EXPECT_EQ(zorvs_error_type(), 0);
    long double sw = std::accumulate(w.begin(), w.end(), 0.0L);
    EXPECT_NEAR(sumwt, static_cast<double>(sw), 1e-12 * static_cast<double>(sw) + 4 * eps_of<T> * sw);
    for (int i = 0; i < n; ++i) {
        long double m = 0, s = 0;
        for (int r = 0; r < rows; ++r) m += w[r] * static_cast<long double>(x[Index(2 * (r * n + i))]) / sw;
        for (int r = 0; r < rows; ++r) s += w[r] * (x[Index(2 * (r * n + i))] - m) * (x[Index(2 * (r * n + i))] - m);
        SCOPED_TRACE(i);
        // A negative stride puts variable i at the far end.
        EXPECT_NEAR(mean[n - 1 - i], static_cast<double>(m), 64 * eps_of<T> * std::fabs(static_cast<double>(m)));
        // Each deviation carries about eps |mean| of rounding, so the sum's
        // relative error is of the order eps |mean| / sd.
        const double sd = std::sqrt(static_cast<double>(s / sw)), cond = 1 + std::fabs(static_cast<double>(m)) / sd;
        EXPECT_NEAR(ss[incs * i], static_cast<double>(s), 16 * eps_of<T> * cond * static_cast<double>(s));
    }
}

TYPED_TEST(SumsOfSquares, WeightZeroAndRefusals) {
    using T = TypeParam;
    T x[2] = {5, 7}, mean[2] = {1, 2}, ss[2] = {3, 4};
    T sumwt = 2, zero = 0, one = 1, minus = -1;
    int two = 2, none = 0, inc = 1;
    auto untouched = [&] { return sumwt == 2 && mean[0] == 1 && mean[1] == 2 && ss[0] == 3 && ss[1] == 4; };
    auto add = [&](int *count, T *w) {
        zorvs::regress::s1msq(count, x, &inc, w, &sumwt, mean, &inc, ss, &inc);
        return untouched() ? 1.0 : 0.0;
    };
    expect_rows({
        {ZORVS_CALL(add(&two, &zero)), 1.0},
        {ZORVS_CALL(add(&none, &one)), 1.0, 5, 11124, "i1=0", 0, "zorvs_s1msq"},
        {ZORVS_CALL((sumwt = -1, add(&two, &one))), 0.0, 5, 11125, "r1=-1", 0, "zorvs_s1msq"},
        // a running weight that returns to zero leaves the sums alone
        {ZORVS_CALL((sumwt = 1, mean[0] = 1, add(&two, &minus), sumwt == 0 && mean[0] == 1)), 1, 0, 0},
    });
}

}  // namespace
