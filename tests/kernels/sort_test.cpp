// sort_test.cpp - the sorting kernels: sorted keys and carried permutations
// against std::sort on random, sorted, reverse, all-equal and many-ties
// inputs up to 10^6 elements, in the float, double and integer forms, and
// by absolute value; the checks of the sorts and of the permutation by
// cycles as rows (its results are those of the public permutations, tested
// with util/).
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
    for (int i = 0; i < n; ++i)
        v[i] = T(shape == Shape::random    ? u(g)
                 : shape == Shape::sorted  ? i
                 : shape == Shape::reverse ? n - i
                 : shape == Shape::equal   ? 7
                 : shape == Shape::ties    ? int(g() % 5) - 2
                 : shape == Shape::organ   ? (i < n / 2 ? i : n - i)
                                           : i + ((g() % 100) == 0 ? int(g() % 1000) : 0));
    return v;
}

// p is a permutation of 1..n taking a to sorted: a[p[i] - 1] = sorted[i].
template <class T>
void expect_permutation(const std::vector<int> &p, const std::vector<T> &a, const std::vector<T> &sorted) {
    std::vector<int> q = p;
    std::sort(q.begin(), q.end());
    for (std::size_t i = 0; i < q.size(); ++i) ASSERT_EQ(q[i], int(i) + 1);
    for (std::size_t i = 0; i < p.size(); ++i) ASSERT_EQ(a[p[i] - 1], sorted[i]) << i;
}

// The keys-only and the carrying sort of each type; the integer sort with a
// permutation has two names, taken in turn.
void keys(int n, const float *a, float *b) { zorvs_svrgn(n, a, b); }
void keys(int n, const double *a, double *b) { zorvs_dsvrgn(n, a, b); }
void keys(int n, const int *a, int *b) { zorvs::l_svign(n, a, b); }
void carry(int n, float *a, float *b, int *p) { zorvs_svrgp(n, a, b, p); }
void carry(int n, double *a, double *b, int *p) { zorvs_dsvrgp(n, a, b, p); }
void carry(int n, int *a, int *b, int *p) { n % 2 ? zorvs_svigp(&n, a, b, p) : zorvs_dsvigp(&n, a, b, p); }

template <class T>
class SortKeys : public ::testing::Test {};
using Keys = ::testing::Types<float, double, int>;
TYPED_TEST_SUITE(SortKeys, Keys);

TYPED_TEST(SortKeys, KeysAndPermutationAgreeWithStdSort) {
    using T = TypeParam;
    for (int n : {1, 2, 3, 11, 12, 13, 100, 1000, 100000, 1000000})
        for (Shape s = Shape::random; s <= Shape::nearly; s = Shape(int(s) + 1)) {
            if (n == 1000000 && s != Shape::random && s != Shape::ties && s != Shape::nearly) continue;
            const auto a = make_input<T>(s, n, 100 + n);
            auto expected = a;
            std::sort(expected.begin(), expected.end());
            std::vector<T> b(n), c = a;
            keys(n, a.data(), b.data());
            ASSERT_EQ(b, expected) << "n " << n << " shape " << int(s);
            std::vector<int> p(n);
            std::iota(p.begin(), p.end(), 1);
            carry(n, c.data(), c.data(), p.data());  // in place
            ASSERT_EQ(c, expected);
            expect_permutation(p, a, c);
            if constexpr (!std::is_same_v<T, int>) {
                // by magnitude, the signs kept, with equal magnitudes of both signs
                auto v = a;
                for (int i = 0; i < n; i += 3) v[i] = -v[i + 1 < n ? i + 1 : i];
                std::vector<T> out(n), m(n);  // the sorted magnitudes
                std::transform(v.begin(), v.end(), m.begin(), [](T e) { return std::fabs(e); });
                std::sort(m.begin(), m.end());
                ZORVS_TWIN(svrbn, dsvrbn)(&n, v.data(), out.data());
                std::iota(p.begin(), p.end(), 1);
                zorvs::l_svrbp(&n, v.data(), c.data(), p.data());
                for (int i = 0; i < n; ++i) ASSERT_TRUE(std::fabs(out[i]) == m[i] && std::fabs(c[i]) == m[i]) << i;
                expect_permutation(p, v, c);
                std::sort(v.begin(), v.end());
                std::sort(out.begin(), out.end());
                ASSERT_EQ(v, out);  // the keys-only sort keeps the signed values
            }
        }
}

// Bad counts and entries: nothing sorted; a bad permutation entry reported
// from zero, the permutation restored and x copied only; a repeated entry,
// on either path, reported with nothing moved and nothing read outside the
// arrays (the scatter walk used to run off them); a good call after a
// failure sorts again.
TEST(SortChecks, BadCountsAndEntriesRaiseAndSortNothing) {
    float a[2] = {2, 1}, b[2] = {9, 9}, x[3] = {1, 2, 3}, out[3];
    int p[2] = {1, 2}, ia[2] = {2, 1}, ib[2], zero = 0, three = 3, path = 1, path2 = 2, bad[3] = {2, 4, 1};
    double dx[3] = {1, 2, 3}, dout[3];
    int twice[3] = {2, 2, 3}, ix[3] = {7, 8, 9}, cycle[3] = {2, 3, 1}, iout[3];
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
        {ZORVS_DO(zorvs::l_permu(&three, ix, cycle, &path, iout)), any, 0},
        {ZORVS_CALL(holds(iout, 8, 9, 7)), 1},
        {ZORVS_DO(zorvs_svrgn(2, a, b)), any, 0},
        {ZORVS_CALL(b[0] == 1 && b[1] == 2), 1},
    });
}

}  // namespace
