// sort_test.cpp - the sorting kernels: sorted keys and carried permutations
// against std::sort on random, sorted, reverse, all-equal and many-ties
// inputs up to 10^6 elements, in both twins; sorts by absolute value;
// integer sorts; the permutation by cycles; the checks as rows.
#include "support/tables.hpp"

#include "kernels/kernels.h"

namespace {

using namespace zorvs_test;

enum class Shape { random, sorted, reverse, equal, ties, organ, nearly };

template <class T>
std::vector<T> make_input(Shape shape, int n, unsigned seed) {
    std::mt19937 g(seed);
    std::uniform_real_distribution<double> u(-1e3, 1e3);
    std::vector<T> v(n);
    for (int i = 0; i < n; ++i) {
        switch (shape) {
            case Shape::random: v[i] = T(u(g)); break;
            case Shape::sorted: v[i] = T(i); break;
            case Shape::reverse: v[i] = T(n - i); break;
            case Shape::equal: v[i] = T(7); break;
            case Shape::ties: v[i] = T(int(g() % 5) - 2); break;
            case Shape::organ: v[i] = T(i < n / 2 ? i : n - i); break;
            case Shape::nearly: v[i] = T(i + ((g() % 100) == 0 ? int(g() % 1000) : 0)); break;
        }
    }
    return v;
}

// p is a permutation of 1..n taking a to sorted: a[p[i] - 1] = sorted[i].
template <class T>
void expect_permutation(const std::vector<int> &p, const std::vector<T> &a, const std::vector<T> &sorted) {
    std::vector<bool> seen(p.size(), false);
    for (std::size_t i = 0; i < p.size(); ++i) {
        ASSERT_TRUE(p[i] >= 1 && p[i] <= int(p.size()) && !seen[p[i] - 1]) << i;
        seen[p[i] - 1] = true;
        ASSERT_EQ(a[p[i] - 1], sorted[i]) << i;
    }
}

ZORVS_TWIN_SUITE(SortTwin);

TYPED_TEST(SortTwin, KeysAndPermutationAgreeWithStdSort) {
    using T = TypeParam;
    for (int n : {1, 2, 3, 11, 12, 13, 100, 1000, 100000, 1000000}) {
        for (Shape s : {Shape::random, Shape::sorted, Shape::reverse, Shape::equal, Shape::ties, Shape::organ,
                        Shape::nearly}) {
            if (n == 1000000 && s != Shape::random && s != Shape::ties && s != Shape::nearly) continue;
            const auto a = make_input<T>(s, n, 100 + n);
            auto expected = a;
            std::sort(expected.begin(), expected.end());
            std::vector<T> b(n), c = a;
            ZORVS_TWIN(svrgn, dsvrgn)(n, a.data(), b.data());
            ASSERT_EQ(b, expected) << "n " << n << " shape " << int(s);
            std::vector<int> p(n);
            std::iota(p.begin(), p.end(), 1);
            ZORVS_TWIN(svrgp, dsvrgp)(n, c.data(), c.data(), p.data());  // in place
            ASSERT_EQ(c, expected);
            expect_permutation(p, a, c);
        }
    }
}

// By magnitude, the signs kept, with equal magnitudes of both signs.
TYPED_TEST(SortTwin, AbsoluteValuesKeepTheirSigns) {
    using T = TypeParam;
    for (int n : {3, 50, 20000}) {
        auto v = make_input<T>(Shape::random, n, 7);
        for (int i = 0; i < n; i += 3) v[i] = -v[i + 1 < n ? i + 1 : i];
        if (n == 3) v = {-3, 1, 2};
        std::vector<T> out(n), r(n), mags(n);
        std::transform(v.begin(), v.end(), mags.begin(), [](T e) { return std::fabs(e); });
        std::sort(mags.begin(), mags.end());
        ZORVS_TWIN(svrbn, dsvrbn)(&n, v.data(), out.data());
        std::vector<int> p(n);
        std::iota(p.begin(), p.end(), 1);
        zorvs::l_svrbp(&n, v.data(), r.data(), p.data());
        for (int i = 0; i < n; ++i) {
            ASSERT_EQ(std::fabs(out[i]), mags[i]);
            ASSERT_EQ(std::fabs(r[i]), mags[i]);
        }
        expect_permutation(p, v, r);
        auto s1 = v, s2 = out;
        std::sort(s1.begin(), s1.end());
        std::sort(s2.begin(), s2.end());
        ASSERT_EQ(s1, s2);  // the same multiset of signed values
        if (n == 3) { EXPECT_EQ(p, (std::vector<int>{2, 3, 1})); }
    }
}

TEST(SortIntegers, KeysAndPermutationAgreeWithStdSort) {
    std::mt19937 g(3);
    for (int n : {1, 5, 12, 1000, 300000}) {
        std::vector<int> a(n), b(n), c(n), p(n), q(n);
        for (auto &e : a) e = int(g() % 50) - 25;
        auto expected = a, d = a;
        std::sort(expected.begin(), expected.end());
        std::iota(p.begin(), p.end(), 1);
        std::iota(q.begin(), q.end(), 1);
        zorvs_svigp(&n, a.data(), b.data(), p.data());
        zorvs_dsvigp(&n, a.data(), c.data(), q.data());
        zorvs::l_svign(n, d.data(), d.data());
        ASSERT_EQ(b, expected);
        expect_permutation(p, a, b);
        EXPECT_EQ(c, b);
        EXPECT_EQ(q, p);
        ASSERT_EQ(d, expected);
    }
}

// Gather (path 1: out[i] = x[p[i]]) and scatter (path 2: out[p[i]] = x[i]),
// in place, over random permutations of many cycles; p comes back unchanged.
TEST(SortPermutation, GatherAndScatterByCycles) {
    std::mt19937 g(5);
    int path1 = 1, path2 = 2;
    for (int m : {3, 1, 2, 10, 1000, 100000}) {
        std::vector<int> perm(m);
        std::iota(perm.begin(), perm.end(), 1);
        std::shuffle(perm.begin(), perm.end(), g);
        if (m == 3) perm = {2, 3, 1};
        const auto keep = perm;
        std::vector<double> v(m), gathered(m), scattered(m);
        std::vector<float> fv(m), fout(m);
        std::vector<int> iv(m), io(m);
        for (int i = 0; i < m; ++i) gathered[i] = scattered[i] = v[i] = i * 1.5, fv[i] = float(i + 1), iv[i] = 100 + i;
        zorvs_dpermu(&m, gathered.data(), perm.data(), &path1, gathered.data());
        zorvs_dpermu(&m, scattered.data(), perm.data(), &path2, scattered.data());
        zorvs_permu(&m, fv.data(), perm.data(), &path1, fout.data());
        zorvs::l_permu(&m, iv.data(), perm.data(), &path1, io.data());
        ASSERT_EQ(perm, keep);
        for (int i = 0; i < m; ++i) {
            ASSERT_EQ(gathered[i], v[perm[i] - 1]);
            ASSERT_EQ(scattered[perm[i] - 1], v[i]);
            ASSERT_EQ(fout[i], fv[perm[i] - 1]);
            ASSERT_EQ(io[i], iv[perm[i] - 1]);
        }
    }
}

// Bad counts and entries: nothing sorted; a bad permutation entry reported
// from zero, the permutation restored and x copied only; a good call after
// a failure sorts again.
TEST(SortChecks, BadCountsAndEntriesRaiseAndSortNothing) {
    float a[2] = {2, 1}, b[2] = {9, 9}, x[3] = {1, 2, 3}, out[3];
    int p[2] = {1, 2}, ia[2] = {2, 1}, ib[2], zero = 0, three = 3, path = 1, path2 = 2, bad[3] = {2, 4, 1};
    // a repeated entry, on either path: reported, nothing moved, nothing read
    // outside the arrays (the scatter walk used to run off them)
    double dx[3] = {1, 2, 3}, dout[3];
    int twice[3] = {2, 2, 3};
    expect_rows({
        {ZORVS_DO(zorvs_svrgn(0, a, b)), any, 5, 615, "i1=0"},
        {ZORVS_CALL(b[0]), 9},
        {ZORVS_DO(zorvs_svrgp(-4, a, b, p)), any, 5, 616, "i1=-4"},
        {ZORVS_DO(zorvs_svrbn(&zero, a, b)), any, 5, 614},
        {ZORVS_DO(zorvs_svigp(&zero, ia, ib, p)), any, 5, 20426},
        {ZORVS_DO(zorvs::l_svrbp(&zero, a, b, p)), any, 5, -1},
        {ZORVS_DO(zorvs_permu(&three, x, bad, &path, out)), any, 5, 20422, "i1=1 i2=3 i3=3"},
        {ZORVS_CALL(bad[0] == 2 && bad[1] == 4 && bad[2] == 1 && out[0] == 1 && out[2] == 3), 1},
        {ZORVS_DO(zorvs_dpermu(&three, dx, twice, &path, dout)), any, 5, 20425, "i1=1 i2=1"},
        {ZORVS_DO(zorvs_dpermu(&three, dx, twice, &path2, dout)), any, 5, 20425, "i1=1 i2=1"},
        {ZORVS_CALL(twice[0] == 2 && twice[1] == 2 && dout[0] == 1 && dout[1] == 2), 1},
        {ZORVS_DO(zorvs_svrgn(2, a, b)), any, 0},
        {ZORVS_CALL(b[0] == 1 && b[1] == 2), 1},
    });
}

}  // namespace
