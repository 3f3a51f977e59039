// Tests of the sorting kernels: sorted keys and carried permutations against
// std::sort on random, sorted, reverse, all-equal and many-ties inputs up to
// 10^6 elements; sorts by absolute value; integer sorts; the permutation by
// cycles; the checks of n.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "frame/services.h"
#include "kernels/kernels.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

enum class Shape { random, sorted, reverse, equal, ties, organ, nearly };

template <class T>
std::vector<T> make_input(Shape shape, int n, unsigned seed) {
    std::mt19937 g(seed);
    std::vector<T> v(n);
    std::uniform_real_distribution<double> u(-1e3, 1e3);
    for (int i = 0; i < n; ++i) {
        switch (shape) {
        case Shape::random: v[i] = static_cast<T>(u(g)); break;
        case Shape::sorted: v[i] = static_cast<T>(i); break;
        case Shape::reverse: v[i] = static_cast<T>(n - i); break;
        case Shape::equal: v[i] = static_cast<T>(7); break;
        case Shape::ties: v[i] = static_cast<T>(static_cast<int>(g() % 5) - 2); break;
        case Shape::organ: v[i] = static_cast<T>(i < n / 2 ? i : n - i); break;
        case Shape::nearly: v[i] = static_cast<T>(i + ((g() % 100) == 0 ? static_cast<int>(g() % 1000) : 0)); break;
        }
    }
    return v;
}

const Shape shapes[] = {Shape::random, Shape::sorted, Shape::reverse, Shape::equal,
                        Shape::ties,   Shape::organ,  Shape::nearly};

template <class T>
class SortTwin : public ::testing::Test {};
using Reals = ::testing::Types<float, double>;
TYPED_TEST_SUITE(SortTwin, Reals);

template <class T>
void sort_plain(int n, const T *a, T *b) {
    if constexpr (std::is_same_v<T, float>)
        zorvs_svrgn(n, a, b);
    else
        zorvs_dsvrgn(n, a, b);
}
template <class T>
void sort_perm(int n, const T *a, T *b, int *p) {
    if constexpr (std::is_same_v<T, float>)
        zorvs_svrgp(n, a, b, p);
    else
        zorvs_dsvrgp(n, a, b, p);
}
template <class T>
void sort_abs(int n, const T *a, T *b) {
    if constexpr (std::is_same_v<T, float>)
        zorvs_svrbn(&n, a, b);
    else
        zorvs_dsvrbn(&n, a, b);
}

TYPED_TEST(SortTwin, KeysAndPermutationAgreeWithStdSort) {
    using T = TypeParam;
    for (int n : {1, 2, 3, 11, 12, 13, 100, 1000, 100000, 1000000}) {
        for (Shape s : shapes) {
            if (n == 1000000 && s != Shape::random && s != Shape::ties && s != Shape::nearly) continue;
            auto a = make_input<T>(s, n, 100 + n);
            auto expected = a;
            std::sort(expected.begin(), expected.end());
            std::vector<T> b(n);
            sort_plain(n, a.data(), b.data());
            ASSERT_EQ(b, expected) << "n " << n << " shape " << static_cast<int>(s);
            // in place, with the permutation carried
            std::vector<T> c = a;
            std::vector<int> p(n);
            std::iota(p.begin(), p.end(), 1);
            sort_perm(n, c.data(), c.data(), p.data());
            ASSERT_EQ(c, expected);
            std::vector<bool> seen(n, false);
            for (int i = 0; i < n; ++i) {
                ASSERT_GE(p[i], 1);
                ASSERT_LE(p[i], n);
                ASSERT_FALSE(seen[p[i] - 1]);
                seen[p[i] - 1] = true;
                ASSERT_EQ(a[p[i] - 1], c[i]);
            }
        }
    }
}

TYPED_TEST(SortTwin, AbsoluteValuesKeepTheirSigns) {
    using T = TypeParam;
    T a[3] = {-3, 1, 2}, b[3];
    sort_abs(3, a, b);
    EXPECT_EQ(b[0], 1);
    EXPECT_EQ(b[1], 2);
    EXPECT_EQ(b[2], -3);
    for (int n : {50, 20000}) {
        auto v = make_input<T>(Shape::random, n, 7);
        for (int i = 0; i < n; i += 3) v[i] = -v[i + 1 < n ? i + 1 : i];  // equal magnitudes of both signs
        std::vector<T> out(n);
        sort_abs(n, v.data(), out.data());
        auto mags = v;
        for (auto &e : mags) e = std::fabs(e);
        std::sort(mags.begin(), mags.end());
        for (int i = 0; i < n; ++i) ASSERT_EQ(std::fabs(out[i]), mags[i]);
        auto s1 = v, s2 = out;
        std::sort(s1.begin(), s1.end());
        std::sort(s2.begin(), s2.end());
        ASSERT_EQ(s1, s2);  // the same multiset of signed values
        // with the signs carried through the permutation
        std::vector<int> p(n);
        std::iota(p.begin(), p.end(), 1);
        std::vector<T> r(n);
        zorvs::l_svrbp(&n, v.data(), r.data(), p.data());
        for (int i = 0; i < n; ++i) {
            ASSERT_EQ(std::fabs(r[i]), mags[i]);
            ASSERT_EQ(r[i], v[p[i] - 1]);
        }
    }
    int n = 3;
    T ra[3] = {-3, 1, 2}, rb[3];
    int ip[3] = {1, 2, 3};
    zorvs::l_svrbp(&n, ra, rb, ip);
    EXPECT_EQ(rb[0], 1);
    EXPECT_EQ(rb[1], 2);
    EXPECT_EQ(rb[2], -3);
    EXPECT_EQ(ip[0], 2);
    EXPECT_EQ(ip[1], 3);
    EXPECT_EQ(ip[2], 1);
}

TEST(SortIntegers, KeysAndPermutationAgreeWithStdSort) {
    std::mt19937 g(3);
    for (int n : {1, 5, 12, 1000, 300000}) {
        std::vector<int> a(n);
        for (auto &e : a) e = static_cast<int>(g() % 50) - 25;
        auto expected = a;
        std::sort(expected.begin(), expected.end());
        std::vector<int> b(n), p(n);
        std::iota(p.begin(), p.end(), 1);
        zorvs_svigp(&n, a.data(), b.data(), p.data());
        ASSERT_EQ(b, expected);
        for (int i = 0; i < n; ++i) ASSERT_EQ(a[p[i] - 1], b[i]);
        std::vector<int> c(n), q(n);
        std::iota(q.begin(), q.end(), 1);
        zorvs_dsvigp(&n, a.data(), c.data(), q.data());
        EXPECT_EQ(c, b);
        EXPECT_EQ(q, p);
        std::vector<int> d = a;
        zorvs::l_svign(n, d.data(), d.data());
        ASSERT_EQ(d, expected);
    }
}

TEST(SortPermutation, GatherAndScatterByCycles) {
    int n = 3, path1 = 1, path2 = 2;
    float x[3] = {1, 2, 3}, out[3];
    int p[3] = {2, 3, 1};
    zorvs_permu(&n, x, p, &path1, out);
    EXPECT_EQ(out[0], 2);
    EXPECT_EQ(out[1], 3);
    EXPECT_EQ(out[2], 1);
    EXPECT_EQ(p[0], 2);
    EXPECT_EQ(p[1], 3);
    EXPECT_EQ(p[2], 1);
    zorvs_permu(&n, x, p, &path2, out);
    EXPECT_EQ(out[0], 3);
    EXPECT_EQ(out[1], 1);
    EXPECT_EQ(out[2], 2);
    // random permutations of many cycles, in place, both twins and integers
    std::mt19937 g(5);
    for (int m : {1, 2, 10, 1000, 100000}) {
        std::vector<int> perm(m);
        std::iota(perm.begin(), perm.end(), 1);
        std::shuffle(perm.begin(), perm.end(), g);
        std::vector<double> v(m);
        for (int i = 0; i < m; ++i) v[i] = i * 1.5;
        std::vector<double> gathered = v, scattered = v;
        auto keep = perm;
        zorvs_dpermu(&m, gathered.data(), perm.data(), &path1, gathered.data());
        zorvs_dpermu(&m, scattered.data(), perm.data(), &path2, scattered.data());
        ASSERT_EQ(perm, keep);
        for (int i = 0; i < m; ++i) {
            ASSERT_EQ(gathered[i], v[perm[i] - 1]);
            ASSERT_EQ(scattered[perm[i] - 1], v[i]);
        }
        std::vector<int> iv(m), io(m);
        std::iota(iv.begin(), iv.end(), 100);
        zorvs::l_permu(&m, iv.data(), perm.data(), &path1, io.data());
        for (int i = 0; i < m; ++i) ASSERT_EQ(io[i], iv[perm[i] - 1]);
    }
}

TEST(SortChecks, BadCountsAndEntriesRaiseAndSortNothing) {
    zorvs_test::Quiet q;
    float a[2] = {2, 1}, b[2] = {9, 9};
    zorvs_svrgn(0, a, b);
    EXPECT_EQ(zorvs_n1rcd(1), 615);
    EXPECT_EQ(zorvs_error_param.i[1], 0);
    EXPECT_EQ(b[0], 9);
    int p[2] = {1, 2};
    zorvs_svrgp(-4, a, b, p);
    EXPECT_EQ(zorvs_n1rcd(1), 616);
    EXPECT_EQ(zorvs_error_param.i[1], -4);
    int n = 0;
    zorvs_svrbn(&n, a, b);
    EXPECT_EQ(zorvs_n1rcd(1), 614);
    int ia[2] = {2, 1}, ib[2];
    zorvs_svigp(&n, ia, ib, p);
    EXPECT_EQ(zorvs_n1rcd(1), 20426);
    zorvs::l_svrbp(&n, a, b, p);
    EXPECT_EQ(zorvs_error_n1rty[1], 5);
    EXPECT_TRUE(zorvs_n1rcd(1) == 602 || zorvs_n1rcd(1) == 603);
    // a bad permutation entry: reported from zero, permutation restored, x copied only
    int m = 3, path = 1;
    float x[3] = {1, 2, 3}, out[3];
    int bad[3] = {2, 4, 1};
    zorvs_permu(&m, x, bad, &path, out);
    EXPECT_EQ(zorvs_n1rcd(1), 20422);
    EXPECT_EQ(zorvs_error_param.i[1], 1);
    EXPECT_EQ(zorvs_error_param.i[2], 3);
    EXPECT_EQ(zorvs_error_param.i[3], 3);
    EXPECT_EQ(bad[0], 2);
    EXPECT_EQ(bad[1], 4);
    EXPECT_EQ(bad[2], 1);
    EXPECT_EQ(out[0], 1);
    EXPECT_EQ(out[2], 3);
    // a repeated entry, on either path: reported, nothing moved, nothing read
    // outside the arrays (the scatter walk used to run off them)
    for (int repeat_path : {1, 2}) {
        double dx[3] = {1, 2, 3}, dout[3];
        int twice[3] = {2, 2, 3};
        zorvs_dpermu(&m, dx, twice, &repeat_path, dout);
        EXPECT_EQ(zorvs_n1rcd(1), 20425);
        EXPECT_EQ(zorvs_error_param.i[1], 1);
        EXPECT_EQ(zorvs_error_param.i[2], 1);
        EXPECT_EQ(twice[0], 2);
        EXPECT_EQ(twice[1], 2);
        EXPECT_EQ(dout[0], 1);
        EXPECT_EQ(dout[1], 2);
    }
    // after a failure a good call sorts again
    zorvs_svrgn(2, a, b);
    EXPECT_EQ(b[0], 1);
    EXPECT_EQ(b[1], 2);
}

TEST(SortChecks, BadCountStopsTheProcessByDefault) {
    auto call = [] {
        float a[1] = {0};
        zorvs_svrgn(0, a, a);
        std::exit(0);
    };
    EXPECT_EXIT(call(), ::testing::ExitedWithCode(5), "zorvs_svrgn");
}

}  // namespace
