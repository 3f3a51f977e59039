// Tests of the public permutations: vectors and matrices permuted exactly,
// worked by hand, into the library's storage, the caller's or the input
// itself; the caller's arrays as they were; and the refusals (out of range,
// repeated entry, bad option, unknown keyword) that must leave them untouched.
#include "support/tables.hpp"

namespace {

using zorvs_test::Quiet;

ZORVS_TWIN_SUITE(PermuteTwin);

ZORVS_TWIN_WRAPPER(permute_vector, permute_vector)
ZORVS_TWIN_WRAPPER(permute_matrix, permute_matrix)

// The data are 10 * row + column (a matrix) or 10 + i (a vector); a row
// without expected values is refused with (5, code) and the slots given.
struct Case {
    int rows, columns;  // a vector when rows is 0
    std::vector<int> permutation;
    int permute;
    std::vector<double> expected;
    int code = 0;
    const char *slots = "";
};

const Case cases[] = {
    {0, 1, {0}, ZORVS_FORWARD_PERMUTATION, {10}},
    {0, 4, {2, 0, 3, 1}, ZORVS_FORWARD_PERMUTATION, {12, 10, 13, 11}},
    {0, 4, {2, 0, 3, 1}, ZORVS_BACKWARD_PERMUTATION, {11, 13, 10, 12}},
    {0, 5, {1, 2, 0, 4, 3}, ZORVS_FORWARD_PERMUTATION, {11, 12, 10, 14, 13}},
    {0, 5, {1, 2, 0, 4, 3}, ZORVS_BACKWARD_PERMUTATION, {12, 10, 11, 14, 13}},
    {3, 2, {2, 0, 1}, ZORVS_PERMUTE_ROWS, {20, 21, 0, 1, 10, 11}},
    {2, 3, {2, 0, 1}, ZORVS_PERMUTE_COLUMNS, {1, 2, 0, 11, 12, 10}},
    {1, 3, {0}, ZORVS_PERMUTE_ROWS, {0, 1, 2}},
    {3, 1, {0}, ZORVS_PERMUTE_COLUMNS, {0, 10, 20}},
    {0, 3, {0, 3, 1}, ZORVS_FORWARD_PERMUTATION, {}, 20422, "i1=1 i2=3"},
    {0, 3, {-1, 0, 1}, ZORVS_BACKWARD_PERMUTATION, {}, 20422, "i1=0 i2=3"},
    {0, 3, {1, 1, 2}, ZORVS_BACKWARD_PERMUTATION, {}, 20425, "i1=1 i2=1"},
    {0, 3, {2, 0, 2}, ZORVS_FORWARD_PERMUTATION, {}, 20425, "i1=2 i2=2"},
    {3, 3, {2, 0, 2}, ZORVS_PERMUTE_ROWS, {}, 20425, "i1=2 i2=2"},
    {3, 3, {1, 1, 2}, ZORVS_PERMUTE_COLUMNS, {}, 20425, "i1=1 i2=1"},
    {3, 3, {0, 7, 1}, ZORVS_PERMUTE_COLUMNS, {}, 20422, "i1=1 i2=3"},
    {0, 3, {0, 1, 2}, ZORVS_PERMUTE_ROWS, {}, 602},  // a matrix option for a vector
    {0, 3, {0, 1, 2}, 0, {}, 602},
};

template <class T>
std::vector<T> data_of(const Case &c) {
    std::vector<T> x;
    for (int i = 0; i < std::max(c.rows, 1); ++i)
        for (int j = 0; j < c.columns; ++j) x.push_back(static_cast<T>(c.rows ? 10 * i + j : 10 + j));
    return x;
}

// Into the caller's storage if `user` is given (the keyword list ends at
// the first 0 otherwise).
template <class T>
T *run(const Case &c, std::vector<T> &x, std::vector<int> &p, T *user) {
    const int into = user ? ZORVS_RETURN_USER : 0;
    return c.rows ? permute_matrix<T>(c.rows, c.columns, x.data(), p.data(), c.permute, into, user, 0)
                  : permute_vector<T>(c.columns, x.data(), p.data(), c.permute, into, user, 0);
}

// Each row in the library's storage, the caller's and in place; the
// permutation is kept, and the data unless permuted in place.
TYPED_TEST(PermuteTwin, ExactOrRefusedAndInputsKept) {
    using T = TypeParam;
    Quiet quiet;
    for (const Case &c : cases)
        for (int storage : {0, 1, 2}) {
            SCOPED_TRACE(::testing::Message() << c.rows << "x" << c.columns << " " << c.permute << " " << storage);
            std::vector<T> x = data_of<T>(c), user(9, T(-1));
            const std::vector<T> before = x;
            std::vector<int> p = c.permutation;
            T *into = storage == 0 ? nullptr : storage == 1 ? user.data() : x.data();
            zorvs_e1mes(0, 0, nullptr);
            T *got = run<T>(c, x, p, into);
            EXPECT_EQ(p, c.permutation);
            EXPECT_EQ(zorvs_n1rty(1), c.code ? 5 : 0);
            EXPECT_EQ(zorvs_error_code(), c.code);
            EXPECT_EQ(zorvs_test::slots(c.slots), c.slots);
            EXPECT_TRUE(x == before || (!c.code && storage == 2));
            if (c.code) {
                EXPECT_TRUE(into || got == nullptr);
                EXPECT_EQ(user, std::vector<T>(9, T(-1)));
                continue;
            }
            ASSERT_TRUE(got != nullptr && (!into || got == into));
            for (std::size_t i = 0; i < c.expected.size(); ++i) EXPECT_EQ(got[i], static_cast<T>(c.expected[i])) << i;
            if (!into) std::free(got);
        }
    std::vector<T> x{1, 2};
    int p[2] = {1, 0};
    zorvs_test::expect_rows({
        {ZORVS_CALL(permute_vector<T>(0, x.data(), p, 1, 0) == nullptr), 1, 5, 603},
        {ZORVS_CALL(permute_matrix<T>(2, 0, x.data(), p, 3, 0) == nullptr), 1, 5, 603},
        {ZORVS_CALL(permute_vector<T>(2, x.data(), p, 1, ZORVS_X_COL_DIM, 2, 0) == nullptr), 1, 5, 11001},
    });
}

}  // namespace
