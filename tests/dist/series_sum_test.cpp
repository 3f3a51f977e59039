// The written-out Chebyshev sum of the hot paths against Clenshaw's loop, bit
// for bit, and the series lengths known at compile time against those the
// first use works out from the machine constants.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
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

template <class T>
auto bits(T v) {
    if constexpr (sizeof(T) == 4)
        return std::bit_cast<std::uint32_t>(v);
    else
        return std::bit_cast<std::uint64_t>(v);
}

template <int N, class T, std::size_t M>
void expect_same_sums(const SeriesTable<T, M> &table, const char *name) {
    SCOPED_TRACE(name);
    int differ = 0;
    for (T x : arguments<T>())
        if (bits(clenshaw_unrolled<N>(x, table.c)) != bits(clenshaw(x, table.c, N))) ++differ;
    EXPECT_EQ(differ, 0);
}

constexpr auto gam_d = rounded<double>(gamcs_data);
constexpr auto gam_f = rounded<float>(gamcs_data);
constexpr auto algm_d = rounded<double>(algmcs_data);
constexpr auto algm_f = rounded<float>(algmcs_data);

TEST(SeriesSum, WrittenOutSumIsClenshawsToTheBit) {
    expect_same_sums<erfcs_terms<double>>(lv_erfcs<double>, "erfcs double");
    expect_same_sums<erc2cs_terms<double>>(lv_erc2cs<double>, "erc2cs double");
    expect_same_sums<erfccs_terms<double>>(lv_erfccs<double>, "erfccs double");
    expect_same_sums<erfcs_terms<float>>(lv_erfcs<float>, "erfcs float");
    expect_same_sums<erc2cs_terms<float>>(lv_erc2cs<float>, "erc2cs float");
    expect_same_sums<erfccs_terms<float>>(lv_erfccs<float>, "erfccs float");
    // Lengths from 2 up, over a table whose terms do not vanish.
    expect_same_sums<2>(gam_d, "2 terms");
    expect_same_sums<3>(gam_d, "3 terms");
    expect_same_sums<15>(algm_d, "15 terms");
    expect_same_sums<42>(gam_d, "42 terms");
    expect_same_sums<42>(gam_f, "42 terms float");
    expect_same_sums<15>(algm_f, "15 terms float");
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
