// Transposition: every small shape, both in-place paths (block copy and
// permutation cycles), the doubling-product path, the three twins, errors.
#include <gtest/gtest.h>

#include <vector>

#include "frame/frame.hpp"
#include "frame/services.h"
#include "support/capture.hpp"
#include "kernels/linalg.h"
#include "zorvstat.h"

namespace {

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
        for (int j = 0; j < nca; ++j) t[static_cast<std::size_t>(j) * nra + i] = a[static_cast<std::size_t>(i) * nca + j];
    return t;
}

// Runs the in-place routine with the allocation either given or refused.
template <class T, class F>
std::vector<T> in_place(F routine, int nra, int nca, std::vector<T> a, bool refuse) {
    if (refuse) zorvs::allocation_failure_countdown = 1;
    routine(nra, nca, a.data(), a.data());
    zorvs::allocation_failure_countdown = 0;
    return a;
}

TEST(Transpose, EveryShapeUpTo97By131BothPaths) {
    for (int nra = 1; nra <= 97; nra += (nra < 24 ? 1 : 7)) {
        for (int nca = 1; nca <= 131; nca += (nca < 24 ? 1 : 9)) {
            auto a = filled<double>(nra, nca);
            auto want = naive(nra, nca, a);
            ASSERT_EQ(in_place(zorvs_d_m1ran, nra, nca, a, false), want) << nra << " x " << nca;
            ASSERT_EQ(in_place(zorvs_d_m1ran, nra, nca, a, true), want) << nra << " x " << nca << " cycles";
            std::vector<double> out(a.size());
            zorvs_d_m1ran(nra, nca, a.data(), out.data());
            ASSERT_EQ(out, want);
        }
    }
    // The cycle method on every shape outright, including the largest corner.
    for (int nra = 1; nra <= 97; ++nra)
        for (int nca : {1, 2, 3, 5, 64, 127, 128, 130, 131}) {
            auto a = filled<int>(nra, nca);
            auto want = naive(nra, nca, a);
            zorvs_i_m1ran_cycles(nra, nca, a.data(), 2147483647LL);
            ASSERT_EQ(a, want) << nra << " x " << nca;
        }
}

TEST(Transpose, LargeShapesByCycles) {
    const int shapes[][2] = {{1000, 999}, {1024, 768}, {997, 1013}, {2048, 3}, {300, 5000}};
    for (auto &s : shapes) {
        auto a = filled<float>(s[0], s[1]);
        auto want = naive(s[0], s[1], a);
        EXPECT_EQ(in_place(zorvs_f_m1ran, s[0], s[1], a, true), want) << s[0] << " x " << s[1];
        EXPECT_EQ(in_place(zorvs_f_m1ran, s[0], s[1], a, false), want) << s[0] << " x " << s[1];
    }
}

TEST(Transpose, ProductsModuloNByDoublingAgreeWithDirect) {
    // A bound below nra*nca sends every product through doubling and adding,
    // as a matrix beyond the integer range would.
    const int shapes[][2] = {{3, 5}, {17, 29}, {64, 96}, {97, 131}, {400, 301}};
    for (auto &s : shapes) {
        auto a = filled<double>(s[0], s[1]);
        auto want = naive(s[0], s[1], a);
        for (long long bound : {static_cast<long long>(s[0]) * s[1] - 1, 2LL, 1LL}) {
            auto b = a;
            zorvs_d_m1ran_cycles(s[0], s[1], b.data(), bound);
            EXPECT_EQ(b, want) << s[0] << " x " << s[1] << " bound " << bound;
        }
    }
}

TEST(Transpose, SquareOneByNAndTwins) {
    // Square in place and out of place.
    auto sq = filled<float>(7, 7);
    auto want = naive(7, 7, sq);
    std::vector<float> out(49);
    zorvs_f_m1ran(7, 7, sq.data(), out.data());
    EXPECT_EQ(out, want);
    zorvs_f_m1ran(7, 7, sq.data(), sq.data());
    EXPECT_EQ(sq, want);
    // 1 x n and n x 1: the values stay where they are.
    auto row = filled<int>(1, 9);
    auto copy = row;
    zorvs_i_m1ran(1, 9, row.data(), row.data());
    EXPECT_EQ(row, copy);
    zorvs_i_m1ran(9, 1, row.data(), row.data());
    EXPECT_EQ(row, copy);
    // 3 x 5 with and without the allocation, then back.
    auto a = filled<int>(3, 5);
    auto with = in_place(zorvs_i_m1ran, 3, 5, a, false);
    auto without = in_place(zorvs_i_m1ran, 3, 5, a, true);
    EXPECT_EQ(with, without);
    EXPECT_EQ(with, (std::vector<int>{a[0], a[5], a[10], a[1], a[6], a[11], a[2], a[7], a[12], a[3], a[8], a[13], a[4], a[9], a[14]}));
    zorvs_i_m1ran(5, 3, with.data(), with.data());
    EXPECT_EQ(with, a);
    EXPECT_EQ(zorvs_error_n1rty[1], 0);
}

TEST(Transpose, BadShapesRaise620And621) {
    zorvs_test::Quiet q;
    float x[4] = {1, 2, 3, 4};
    zorvs_f_m1ran(0, 4, x, x);
    EXPECT_EQ(zorvs_error_n1rty[1], 5);
    EXPECT_EQ(zorvs_error_code(), 620);
    EXPECT_EQ(zorvs_error_param.i[1], 0);
    zorvs_d_m1ran(2, -3, nullptr, nullptr);
    EXPECT_EQ(zorvs_error_code(), 621);
    EXPECT_EQ(zorvs_error_param.i[1], -3);
    EXPECT_EQ(x[1], 2.0f);
    EXPECT_NE(q.errors.take().find("M1RAN_"), std::string::npos);
}

TEST(TransposeDeathTest, BadShapeStopsTheProcess) {
    EXPECT_EXIT(zorvs_i_m1ran(-1, 2, nullptr, nullptr), ::testing::ExitedWithCode(5), "620|M1RAN_I");
}

}  // namespace
