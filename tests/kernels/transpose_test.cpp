// transpose_test.cpp - transposition against the plain loop: every small
// shape by both in-place methods (block copy, and permutation cycles when the
// buffer cannot be had), out of place, the doubling products for matrices
// beyond the integer range, the three twins; bad shapes as rows.

#include "kernels/linalg.h"
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

template <class T>
std::vector<T> filled(int nra, int nca) {
    std::vector<T> a(static_cast<std::size_t>(nra) * nca);
    for (std::size_t k = 0; k < a.size(); ++k) a[k] = static_cast<T>(k * 7 % 1009) + static_cast<T>(k);
    return a;
}

template <class T>
std::vector<T> naive(int nra, int nca, const std::vector<T> &a) {
    std::vector<T> t(a.size());
    for (int i = 0; i < nra; ++i)
        for (int j = 0; j < nca; ++j) t[std::size_t(j) * nra + i] = a[std::size_t(i) * nca + j];
    return t;
}

// The routine of the twin in place, with its buffer given or refused, and
// out of place; each against the plain loop.
template <class T>
void expect_transposed(void (*routine)(int, int, const T *, T *), int nra, int nca) {
    const auto a = filled<T>(nra, nca), want = naive(nra, nca, a);
    for (const bool refuse : {false, true}) {
        auto b = a;
        zorvs::allocation_failure_countdown = refuse ? 1 : 0;
        routine(nra, nca, b.data(), b.data());
        zorvs::allocation_failure_countdown = 0;
        ASSERT_EQ(b, want) << nra << " x " << nca << (refuse ? " by cycles" : "");
    }
    std::vector<T> out(a.size());
    routine(nra, nca, a.data(), out.data());
    ASSERT_EQ(out, want) << nra << " x " << nca << " out of place";
}

// Every shape in the three twins; then a bound below nra*nca, which sends
// every product through doubling and adding as a matrix beyond the integer
// range would; and the bad shapes.
TEST(Transpose, EveryShapeBothPathsTheTwinsAndBadShapes) {
    for (int nra = 1; nra <= 97; nra += (nra < 24 ? 1 : 7))
        for (int nca = 1; nca <= 131; nca += (nca < 24 ? 1 : 9)) expect_transposed(zorvs_d_m1ran, nra, nca);
    for (auto [nra, nca] : {std::pair{1000, 999}, {1024, 768}, {997, 1013}, {2048, 3}, {300, 5000}, {7, 7}})
        expect_transposed(zorvs_f_m1ran, nra, nca);
    for (auto [nra, nca] : {std::pair{3, 5}, {5, 3}, {1, 9}, {9, 1}}) expect_transposed(zorvs_i_m1ran, nra, nca);
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
    for (auto [nra, nca] : {std::pair{3, 5}, {17, 29}, {64, 96}, {97, 131}, {400, 301}}) {
        const auto a = filled<double>(nra, nca), want = naive(nra, nca, a);
        for (long long bound : {static_cast<long long>(nra) * nca - 1, 2LL, 1LL}) {
            auto b = a;
            zorvs_d_m1ran_cycles(nra, nca, b.data(), bound);
            EXPECT_EQ(b, want) << nra << " x " << nca << " bound " << bound;
        }
    }
    float x[4] = {1, 2, 3, 4};
    expect_rows({
        {ZORVS_DO(zorvs_f_m1ran(0, 4, x, x)), any, 5, 620, "i1=0", 0, "M1RAN_"},
        {ZORVS_DO(zorvs_d_m1ran(2, -3, nullptr, nullptr)), any, 5, 621, "i1=-3"},
        {ZORVS_CALL(x[1]), 2},
    });
}

}  // namespace
