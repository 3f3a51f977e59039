// The split Chebyshev sum of the hot paths against an extended-precision
// Clenshaw sum and Clenshaw's loop, and the series lengths known at compile
// time against those the first use works out from the machine constants.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <vector>

#include "dist/special.h"
#include "dist/special_detail.hpp"

namespace {

using namespace zorvs::special;

// Arguments in [-1, 1]: the ends, signed zeros, tiny values, and a dense
// pseudo-random spread.
template <class T>
std::vector<T> arguments() {
    std::vector<T> x = {T(-1), T(1), T(0), -T(0), T(1e-30), T(-1e-30), T(0.5), T(-0.5)};
    std::uint64_t s = 0x9E3779B97F4A7C15ull;
    for (int i = 0; i < 20000; ++i) {
        s ^= s << 13;
        s ^= s >> 7;
        s ^= s << 17;
        x.push_back(static_cast<T>(static_cast<double>(s >> 11) * 0x1.0p-52 - 1));
    }
    return x;
}

// The exact sum of the rounded coefficients, by Clenshaw's recurrence in
// long double (11 more bits than double on this target; the sums here lose
// far fewer).
template <class T>
long double reference_sum(T x, const T *cs, int n) {
    long double b0 = 0, b1 = 0, b2 = 0;
    const long double lx = x;
    for (int i = n - 1; i >= 0; --i) {
        b2 = b1;
        b1 = b0;
        b0 = 2 * lx * b1 - b2 + static_cast<long double>(cs[i]);
    }
    return 0.5L * (b0 - b2);
}

// Largest error of the split sum and of Clenshaw's loop, in units of eps
// times the sum of the coefficients' magnitudes (the scale of the partial
// sums either way).  The split sum stays within 4 such units and within
// 4 units of the loop's own largest error.
template <int N, class T, std::size_t M>
void expect_accurate_split(const SeriesTable<T, M> &table, const char *name) {
    SCOPED_TRACE(name);
    const long double eps = std::numeric_limits<T>::epsilon();
    long double scale = 0;
    for (int i = 0; i < N; ++i) scale += std::fabs(static_cast<long double>(table.c[i]));
    long double worst_split = 0, worst_loop = 0;
    for (T x : arguments<T>()) {
        const long double ref = reference_sum(x, table.c, N);
        worst_split = std::max(worst_split, std::fabs(clenshaw_split<N>(x, table.c) - ref) / (eps * scale));
        worst_loop = std::max(worst_loop, std::fabs(clenshaw(x, table.c, N) - ref) / (eps * scale));
    }
    EXPECT_LE(worst_split, 4.0L);
    EXPECT_LE(worst_split, worst_loop + 4.0L);
    std::printf("[measure] %s, %d terms: largest error of the split sum %.2Lf, of the loop %.2Lf "
                "(eps times the sum of |c|)\n", name, N, worst_split, worst_loop);
}

constexpr auto gam_d = rounded<double>(gamcs_data);
constexpr auto gam_f = rounded<float>(gamcs_data);
constexpr auto algm_d = rounded<double>(algmcs_data);
constexpr auto algm_f = rounded<float>(algmcs_data);
constexpr auto alnr_d = rounded<double>(alnrcs_data);

TEST(SeriesSum, SplitSumIsAsAccurateAsClenshaws) {
    expect_accurate_split<erfcs_terms<double>>(lv_erfcs<double>, "erfcs double");
    expect_accurate_split<erc2cs_terms<double>>(lv_erc2cs<double>, "erc2cs double");
    expect_accurate_split<erfccs_terms<double>>(lv_erfccs<double>, "erfccs double");
    expect_accurate_split<erfcs_terms<float>>(lv_erfcs<float>, "erfcs float");
    expect_accurate_split<erc2cs_terms<float>>(lv_erc2cs<float>, "erc2cs float");
    expect_accurate_split<erfccs_terms<float>>(lv_erfccs<float>, "erfccs float");
    // Even and odd lengths from 2 up, over tables whose terms do not vanish.
    expect_accurate_split<2>(gam_d, "2 terms");
    expect_accurate_split<3>(gam_d, "3 terms");
    expect_accurate_split<15>(algm_d, "15 terms");
    expect_accurate_split<42>(gam_d, "42 terms");
    expect_accurate_split<43>(alnr_d, "43 terms");
    expect_accurate_split<42>(gam_f, "42 terms float");
    expect_accurate_split<15>(algm_f, "15 terms float");
}

// At x = 1 every T_i is 1, at x = -1 they alternate, at 0 they are
// 1, 0, -1, 0, 1, ...: the split sum there is the plain signed sum.
TEST(SeriesSum, SplitSumAtTheEndsAndTheMiddle) {
    const double c[5] = {2.0, 0.5, 0.25, 0.125, 0.0625};
    EXPECT_EQ(clenshaw_split<5>(1.0, c), 1.0 + 0.5 + 0.25 + 0.125 + 0.0625);
    EXPECT_EQ(clenshaw_split<5>(-1.0, c), 1.0 - 0.5 + 0.25 - 0.125 + 0.0625);
    EXPECT_EQ(clenshaw_split<5>(0.0, c), 1.0 - 0.25 + 0.0625);
    EXPECT_EQ(clenshaw_split<4>(1.0, c), 1.0 + 0.5 + 0.25 + 0.125);
    EXPECT_EQ(clenshaw_split<2>(-1.0, c), 1.0 - 0.5);
}

template <class T, std::size_t N>
int first_use_length(const SeriesTable<T, N> &table, int nos, double scale) {
    if constexpr (sizeof(T) == 4)
        return zorvs_inits(table.c, nos, static_cast<float>(T(scale) * zorvs_f_machine(3)));
    else
        return zorvs_initds(table.c, nos, static_cast<float>(T(scale) * zorvs_d_machine(3)));
}

template <class T>
void expect_lengths_agree() {
    constexpr auto gam = rounded<T>(gamcs_data);
    constexpr auto algm = rounded<T>(algmcs_data);
    constexpr auto alnr = rounded<T>(alnrcs_data);
    EXPECT_EQ(expected_terms(gam, 0.1), first_use_length(gam, 42, 0.1));
    EXPECT_EQ(expected_terms(algm, 1.0), first_use_length(algm, 15, 1.0));
    constexpr int alnr_nos = sizeof(T) == 4 ? 23 : 43;  // the terms log(1+x) looks at
    EXPECT_EQ(expected_terms(alnr, 0.1, alnr_nos), first_use_length(alnr, alnr_nos, 0.1));
    EXPECT_EQ(erfcs_terms<T>, first_use_length(lv_erfcs<T>, 21, 0.1));
    EXPECT_EQ(erc2cs_terms<T>, first_use_length(lv_erc2cs<T>, 49, 0.1));
    EXPECT_EQ(erfccs_terms<T>, first_use_length(lv_erfccs<T>, 59, 0.1));
}

TEST(SeriesSum, CompileTimeLengthsAreTheFirstUseLengths) {
    expect_lengths_agree<double>();
    expect_lengths_agree<float>();
    // And the routines keep those lengths after their first use.
    zorvs_d_erfc(3.0);
    zorvs_f_erfc(3.0f);
    EXPECT_EQ(lv_erfc_bounds<double>.nterf, erfcs_terms<double>);
    EXPECT_EQ(lv_erfc_bounds<double>.nterc2, erc2cs_terms<double>);
    EXPECT_EQ(lv_erfc_bounds<double>.nterfc, erfccs_terms<double>);
    EXPECT_EQ(lv_erfc_bounds<float>.nterf, erfcs_terms<float>);
    EXPECT_EQ(lv_erfc_bounds<float>.nterc2, erc2cs_terms<float>);
    EXPECT_EQ(lv_erfc_bounds<float>.nterfc, erfccs_terms<float>);
}

}  // namespace
