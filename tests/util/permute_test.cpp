// Tests of the public permutations: vectors and matrices permuted exactly,
// worked by hand; the caller's matrix as it was; caller storage; and the
// refusals (out of range, repeated entry, bad option, unknown keyword) that
// must leave the caller's arrays untouched.
#include "support/tables.hpp"

namespace {

using zorvs_test::Quiet;

ZORVS_TWIN_SUITE(PermuteTwin);

ZORVS_TWIN_WRAPPER(permute_vector, permute_vector)
ZORVS_TWIN_WRAPPER(permute_matrix, permute_matrix)

struct Case {
    int rows, columns;  // a vector when rows is 0
    std::vector<int> permutation;
    int permute;
    std::vector<double> expected;
};

// The data are 10 * row + column (a matrix) or 10 + i (a vector).
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
};

template <class T>
std::vector<T> data_of(const Case &c) {
    std::vector<T> x;
    if (c.rows == 0)
        for (int i = 0; i < c.columns; ++i) x.push_back(static_cast<T>(10 + i));
    else
        for (int i = 0; i < c.rows; ++i)
            for (int j = 0; j < c.columns; ++j) x.push_back(static_cast<T>(10 * i + j));
    return x;
}

template <class T>
T *run(const Case &c, std::vector<T> &x, std::vector<int> &p, T *user = nullptr) {
    if (c.rows == 0)
        return user ? permute_vector<T>(c.columns, x.data(), p.data(), c.permute, ZORVS_RETURN_USER, user, 0)
                    : permute_vector<T>(c.columns, x.data(), p.data(), c.permute, 0);
    return user ? permute_matrix<T>(c.rows, c.columns, x.data(), p.data(), c.permute, ZORVS_RETURN_USER, user, 0)
                : permute_matrix<T>(c.rows, c.columns, x.data(), p.data(), c.permute, 0);
}

// In the library's storage, the caller's, and the input itself (in place);
// the inputs kept otherwise.
TYPED_TEST(PermuteTwin, ExactAndInputsKept) {
    using T = TypeParam;
    for (const Case &c : cases) {
        for (int storage : {0, 1, 2}) {
            std::vector<T> x = data_of<T>(c), user(c.expected.size(), T(-1));
            const std::vector<T> before = x;
            std::vector<int> p = c.permutation;
            T *into = storage == 0 ? nullptr : storage == 1 ? user.data() : x.data();
            T *got = run<T>(c, x, p, into);
            ASSERT_NE(got, nullptr);
            EXPECT_EQ(zorvs_n1rty(1), 0);
            EXPECT_TRUE(!into || got == into);
            for (std::size_t i = 0; i < c.expected.size(); ++i)
                EXPECT_EQ(got[i], static_cast<T>(c.expected[i])) << "case " << c.rows << "x" << c.columns << " "
                                                                  << c.permute << " element " << i;
            EXPECT_TRUE(storage == 2 || x == before);
            EXPECT_EQ(p, c.permutation);
            if (!into) std::free(got);
        }
    }
}

// Refusals: (permutation, permute, expected code, i1, i2); the inputs and the
// caller's storage stay as they were.
struct Refusal { std::vector<int> permutation; int permute; int code, i1, i2; };
const Refusal refusals[] = {
    {{0, 3, 1}, ZORVS_FORWARD_PERMUTATION, 20422, 1, 3},
    {{-1, 0, 1}, ZORVS_BACKWARD_PERMUTATION, 20422, 0, 3},
    {{1, 1, 2}, ZORVS_BACKWARD_PERMUTATION, 20425, 1, 1},
    {{2, 0, 2}, ZORVS_FORWARD_PERMUTATION, 20425, 2, 2},
    {{2, 0, 2}, ZORVS_PERMUTE_ROWS, 20425, 2, 2},
    {{1, 1, 2}, ZORVS_PERMUTE_COLUMNS, 20425, 1, 1},
    {{0, 7, 1}, ZORVS_PERMUTE_COLUMNS, 20422, 1, 3},
    {{0, 1, 2}, ZORVS_PERMUTE_ROWS, 602, 0, 0},  // as a vector option
    {{0, 1, 2}, 0, 602, 0, 0},
};

TYPED_TEST(PermuteTwin, RefusedWithoutTouchingAnything) {
    using T = TypeParam;
    Quiet quiet;
    for (const Refusal &r : refusals) {
        const bool vector = r.permute <= ZORVS_BACKWARD_PERMUTATION || r.code == 602;
        Case c{vector ? 0 : 3, 3, r.permutation, r.permute, {}};
        std::vector<T> x = data_of<T>(c);
        const std::vector<T> before = x;
        std::vector<int> p = r.permutation;
        std::vector<T> user(9, T(-1));
        run<T>(c, x, p, user.data());
        EXPECT_EQ(zorvs_n1rty(1), 5);
        EXPECT_EQ(zorvs_error_code(), r.code) << r.permute;
        if (r.code != 602) {
            EXPECT_EQ(zorvs_error_param.i[1], r.i1);
            EXPECT_EQ(zorvs_error_param.i[2], r.i2);
        }
        EXPECT_EQ(x, before);
        EXPECT_EQ(p, r.permutation);
        EXPECT_EQ(user, std::vector<T>(9, T(-1)));
        // without caller storage nothing is returned either
        EXPECT_EQ(run<T>(c, x, p), nullptr);
        EXPECT_EQ(zorvs_error_code(), r.code);
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
