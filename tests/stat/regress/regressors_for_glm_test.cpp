// Tests of the regressors of a general linear model: the three dummy
// schemes, model orders 1 and 2 and effects given by hand against R's
// model.matrix on mtcars (tests/data/stat/regress/make_regressors_glm.R), in
// both twins; the column order within a block, missing values per block and
// the edge cases counted by hand; every refusal with x left as it was.
#include "support/tables.hpp"

#include "stat/regress/twins.hpp"

namespace {

#include "data/stat/regress/regressors_glm_ref.inc"

using namespace zorvs_test;

ZORVS_TWIN_SUITE(GlmTwin);

const int n_cars = 32;
int class_columns[] = {0, 2};                      // cyl, gear
int by_hand_counts[] = {2, 3, 1};                  // (gear, cyl), (wt, hp, cyl), (hp)
int by_hand_columns[] = {2, 0, 1, 3, 0, 3};

TYPED_TEST(GlmTwin, AgreesWithModelMatrix) {
    using T = TypeParam;
    // Products of two continuous values round once in the routine's type and
    // once from R's double: a float cell may differ by one rounding.
    const double tol = std::is_same_v<T, float> ? 1.2e-7 : 0.0;
    std::vector<T> x(glm_x, glm_x + 4 * n_cars);
    const std::vector<T> before = x;
    for (const GlmCase &c : glm_cases) {
        SCOPED_TRACE(c.name);
        auto count = [&](auto... keys) {
            return c.order == 0 ? glm<T>(n_cars, x.data(), 2, 2, ZORVS_X_CLASS_COLUMNS, class_columns, ZORVS_DUMMY, c.scheme,
                                         ZORVS_INDICES_EFFECTS, 3, by_hand_counts, by_hand_columns, keys..., 0)
                                : glm<T>(n_cars, x.data(), 2, 2, ZORVS_X_CLASS_COLUMNS, class_columns, ZORVS_DUMMY, c.scheme,
                                         ZORVS_MODEL_ORDER, c.order, keys..., 0);
        };
        T *reg = nullptr;
        ASSERT_EQ(count(ZORVS_REGRESSORS, &reg), c.n_columns);
        ASSERT_NE(reg, nullptr);
        for (int i = 0; i < n_cars * c.n_columns; ++i)
            EXPECT_NEAR(reg[i], c.want[i], tol * std::fabs(c.want[i])) << "cell " << i;
        std::free(reg);
        EXPECT_EQ(x, before);
        EXPECT_EQ(count(), c.n_columns);  // counting alone
    }
}

// Cases counted by hand, as rows: the call (writing into cells prefilled
// with -99), the count, and the cells (NaN a NaN).  The class values are
// unsorted, so levels come from the sorted order; in an effect (a, b), b
// varies fastest.
TYPED_TEST(GlmTwin, CasesByHand) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN(), _ = -99;
    T ab[] = {7, 1, -2, 5, 3, 1, 7, 5}, az[] = {1, 2, nan, 3, 2, nan, 3, 4}, cont[] = {1, 2, 9, 3, 4, 9, 5, 6, 9};
    T one_level[] = {4, 4, 4}, classes[] = {1, 2, 3, 2};
    int pair_size[] = {2}, pair[] = {0, 1}, twice[] = {0, 0};
    auto effect = [&](int scheme) {
        return [&, scheme](T *got) {
            return glm<T>(4, ab, 2, 0, ZORVS_INDICES_EFFECTS, 1, pair_size, pair, ZORVS_DUMMY, scheme,
                          ZORVS_REGRESSORS_USER, got, 0);
        };
    };
    auto level = [&](int scheme) { return [&, scheme](T *) { return glm<T>(3, one_level, 1, 0, ZORVS_DUMMY, scheme, 0); }; };
    const struct {
        const char *what;
        std::function<int(T *)> call;
        int count;
        std::vector<T> cells;
    } rows[] = {
        // levels of a: -2, 3, 7; of b: 1, 5
        {"all levels", effect(1), 6, {0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1}},
        {"leave out last", effect(2), 2, {0, 0, 0, 0, 0, 1, 0, 0}},
        {"sum to zero", effect(3), 2, {-1, -1, -1, 0, 0, 1, 1, 1}},
        // class a, continuous z, order 2: a (3), z, z*z, a*z (3); a missing
        // value spoils only the blocks it enters
        {"missing values", [&](T *got) { return glm<T>(4, az, 1, 1, ZORVS_MODEL_ORDER, 2, ZORVS_REGRESSORS_USER, got, 0); },
         8, {1, 0, 0, 2, 4, 2, 0, 0, nan, nan, nan, 3, 9, nan, nan, nan,
             0, 1, 0, nan, nan, nan, nan, nan, 0, 0, 1, 4, 16, 0, 0, 4}},
        // only continuous columns: the caller's cells beyond them stay; an
        // allocated matrix of a wider stride holds NaN there
        {"continuous, user stride", [&](T *got) {
             return glm<T>(3, cont, 0, 2, ZORVS_X_COL_DIM, 3, ZORVS_REGRESSORS_USER, got, ZORVS_REGRESSORS_COL_DIM, 3, 0);
         }, 2, {1, 2, _, 3, 4, _, 5, 6, _}},
        {"continuous, allocated stride", [&](T *got) {
             T *wide = nullptr;
             const int n = glm<T>(3, cont, 0, 2, ZORVS_X_COL_DIM, 3, ZORVS_REGRESSORS, &wide, ZORVS_REGRESSORS_COL_DIM, 4, 0);
             std::copy(wide, wide + 12, got);
             return std::free(wide), n;
         }, 2, {1, 2, nan, nan, 3, 4, nan, nan, 5, 6, nan, nan}},
        {"one level, all levels", level(1), 1, {}},
        {"one level, leave out last", level(2), 0, {}},
        {"one level, sum to zero", level(3), 0, {}},
        {"order 2, one class column", [&](T *) { return glm<T>(4, classes, 1, 0, ZORVS_MODEL_ORDER, 2, 0); }, 3, {}},
        // a column twice in an effect: the class Kronecker square
        {"class squared", [&](T *got) {
             return glm<T>(4, classes, 1, 0, ZORVS_INDICES_EFFECTS, 1, pair_size, twice, ZORVS_REGRESSORS_USER, got, 0);
         }, 9, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0}},
    };
    for (const auto &r : rows) {
        std::vector<T> got(64, _);
        EXPECT_EQ(r.call(got.data()), r.count) << r.what;
        for (std::size_t i = 0; i < r.cells.size(); ++i)
            EXPECT_TRUE(agrees(got[i], r.cells[i])) << r.what << ", cell " << i << ": " << got[i];
    }
    EXPECT_EQ(one_level[2] + classes[3] + cont[8], 15);  // the data are not written
}

// Refused: a count of 0, x as it was, the caller's pointer not written.
TEST(Glm, RefusalsLeaveXAndTheCallersPointer) {
    double x[] = {1, 2, 3, 4, 5, 6}, sentinel = 0, *reg = &sentinel;
    int zero[] = {0}, two[] = {2}, pair[] = {0, 1}, far[] = {0, 5}, bad_class[] = {4};
    auto no = [&](int n, int n_class, int n_continuous, auto... keys) {
        const int count = zorvs_d_regressors_for_glm(n, x, n_class, n_continuous, keys..., 0);
        return count == 0 && x[0] == 1 && x[5] == 6 && reg == &sentinel;
    };
    const int effects = ZORVS_INDICES_EFFECTS, regs = ZORVS_REGRESSORS;
    expect_rows({
        {ZORVS_CALL(no(0, 1, 1, regs, &reg)), 1, 5, 603},
        {ZORVS_CALL(no(3, -1, 2, regs, &reg)), 1, 5, 603},
        {ZORVS_CALL(no(3, 0, 0, regs, &reg)), 1, 5, 20234},
        {ZORVS_CALL(no(3, 1, 1, ZORVS_MODEL_ORDER, 3, regs, &reg)), 1, 5, 20230, "i1=3"},
        {ZORVS_CALL(no(3, 1, 1, ZORVS_DUMMY, 0, regs, &reg)), 1, 5, 20232},
        {ZORVS_CALL(no(3, 1, 1, ZORVS_X_COL_DIM, 1)), 1, 5, 20233},
        {ZORVS_CALL(no(3, 1, 1, ZORVS_MODEL_ORDER, 1, effects, 1, two, pair, regs, &reg)), 1, 5, 11117},
        {ZORVS_CALL(no(3, 1, 1, effects, 1, zero, pair, regs, &reg)), 1, 5, 20237},
        {ZORVS_CALL(no(3, 1, 1, effects, 1, two, far, regs, &reg)), 1, 5, 20238, "i1=1 i2=5 i3=2"},
        {ZORVS_CALL(no(3, 1, 1, ZORVS_X_CLASS_COLUMNS, bad_class, regs, &reg)), 1, 5, 20235},
        {ZORVS_CALL(no(3, 1, 1, regs, &reg, ZORVS_REGRESSORS_COL_DIM, 1)), 1, 5, 601},
        {ZORVS_CALL(no(3, 1, 1, 99)), 1, 5, 11001},
    });
}

}  // namespace
