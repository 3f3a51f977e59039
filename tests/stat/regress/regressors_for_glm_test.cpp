// Tests of the regressors of a general linear model: the three dummy
// schemes, model orders 1 and 2 and effects given by hand against R's
// model.matrix on mtcars (tests/data/stat/regress/make_regressors_glm.R), in
// both twins; the column order within a block, missing values per block and
// the edge cases counted by hand; every refusal with x left as it was.
#include "support/tables.hpp"

#include "stat/regress/twins.hpp"

namespace {

#include "data/stat/regress/regressors_glm_ref.inc"

using zorvs_test::CodeLog;
using zorvs_test::Quiet;

using zorvs_test::glm;

ZORVS_TWIN_SUITE(GlmTwin);

const int n_cars = 32;
int class_columns[] = {0, 2};                      // cyl, gear
int by_hand_counts[] = {2, 3, 1};                  // (gear, cyl), (wt, hp, cyl), (hp)
int by_hand_columns[] = {2, 0, 1, 3, 0, 3};

struct Case {
    const char *name;
    int order;  // 0: effects by hand
    int scheme;
    int n_columns;
    const double *want;
};
const Case cases[] = {
    {"order 1, all levels", 1, 1, glm_o1_s1_ncol, glm_o1_s1},
    {"order 1, leave out last", 1, 2, glm_o1_s2_ncol, glm_o1_s2},
    {"order 1, sum to zero", 1, 3, glm_o1_s3_ncol, glm_o1_s3},
    {"order 2, all levels", 2, 1, glm_o2_s1_ncol, glm_o2_s1},
    {"order 2, leave out last", 2, 2, glm_o2_s2_ncol, glm_o2_s2},
    {"order 2, sum to zero", 2, 3, glm_o2_s3_ncol, glm_o2_s3},
    {"effects, all levels", 0, 1, glm_ef_s1_ncol, glm_ef_s1},
    {"effects, leave out last", 0, 2, glm_ef_s2_ncol, glm_ef_s2},
    {"effects, sum to zero", 0, 3, glm_ef_s3_ncol, glm_ef_s3},
};

TYPED_TEST(GlmTwin, AgreesWithModelMatrix) {
    using T = TypeParam;
    // Products of two continuous values round once in the routine's type and
    // once from R's double: a float cell may differ by one rounding.
    const double tol = std::is_same_v<T, float> ? 1.2e-7 : 0.0;
    std::vector<T> x(glm_x, glm_x + 4 * n_cars);
    const std::vector<T> before = x;
    for (const Case &c : cases) {
        T *reg = nullptr;
        int n = c.order == 0 ? glm<T>(n_cars, x.data(), 2, 2, ZORVS_X_CLASS_COLUMNS, class_columns,
                                      ZORVS_INDICES_EFFECTS, 3, by_hand_counts, by_hand_columns, ZORVS_DUMMY,
                                      c.scheme, ZORVS_REGRESSORS, &reg, 0)
                             : glm<T>(n_cars, x.data(), 2, 2, ZORVS_X_CLASS_COLUMNS, class_columns,
                                      ZORVS_MODEL_ORDER, c.order, ZORVS_DUMMY, c.scheme, ZORVS_REGRESSORS, &reg, 0);
        ASSERT_EQ(n, c.n_columns) << c.name;
        ASSERT_NE(reg, nullptr) << c.name;
        for (int i = 0; i < n_cars * n; ++i)
            EXPECT_NEAR(reg[i], c.want[i], tol * std::fabs(c.want[i])) << c.name << ", row " << i / n << " col " << i % n;
        std::free(reg);
        EXPECT_EQ(x, before) << c.name;
        // Counting alone gives the same number.
        n = c.order == 0 ? glm<T>(n_cars, x.data(), 2, 2, ZORVS_X_CLASS_COLUMNS, class_columns, ZORVS_DUMMY, c.scheme,
                                  ZORVS_INDICES_EFFECTS, 3, by_hand_counts, by_hand_columns, 0)
                         : glm<T>(n_cars, x.data(), 2, 2, ZORVS_X_CLASS_COLUMNS, class_columns, ZORVS_DUMMY, c.scheme,
                                  ZORVS_MODEL_ORDER, c.order, 0);
        EXPECT_EQ(n, c.n_columns) << c.name;
    }
}

// Two class columns of 3 and 2 levels (values unsorted, so levels come from
// the sorted order) and the effect (a, b): b varies fastest.
TYPED_TEST(GlmTwin, BlockOrderAndSchemesByHand) {
    using T = TypeParam;
    T x[] = {7, 1,   //
             -2, 5,  //
             3, 1,   //
             7, 5};
    int effect_size[] = {2};
    int effect[] = {0, 1};
    struct Row {
        int scheme, n;
        std::vector<T> want;  // four rows
    } rows[] = {
        // levels of a: -2, 3, 7; of b: 1, 5.
        {1, 6, {0, 0, 0, 0, 1, 0, /**/ 0, 1, 0, 0, 0, 0, /**/ 0, 0, 1, 0, 0, 0, /**/ 0, 0, 0, 0, 0, 1}},
        {2, 2, {0, 0, /**/ 0, 0, /**/ 0, 1, /**/ 0, 0}},
        {3, 2, {-1, -1, /**/ -1, 0, /**/ 0, 1, /**/ 1, 1}},
    };
    for (const Row &r : rows) {
        std::vector<T> got(4 * r.n, T(-99));
        EXPECT_EQ(glm<T>(4, x, 2, 0, ZORVS_INDICES_EFFECTS, 1, effect_size, effect, ZORVS_DUMMY, r.scheme,
                         ZORVS_REGRESSORS_USER, got.data(), 0),
                  r.n);
        for (int i = 0; i < 4 * r.n; ++i) EXPECT_EQ(got[i], r.want[i]) << "scheme " << r.scheme << " cell " << i;
    }
}

TYPED_TEST(GlmTwin, MissingValuesSpoilOnlyTheirBlocks) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    // Class a, continuous z; order 2 under scheme 1: a (3), z, z*z, a*z (3).
    T x[] = {1, 2,    //
             nan, 3,  //
             2, nan,  //
             3, 4};
    T got[4 * 8];
    ASSERT_EQ(glm<T>(4, x, 1, 1, ZORVS_MODEL_ORDER, 2, ZORVS_REGRESSORS_USER, got, 0), 8);
    const T want[4][8] = {{1, 0, 0, 2, 4, 2, 0, 0},
                          {nan, nan, nan, 3, 9, nan, nan, nan},
                          {0, 1, 0, nan, nan, 0, nan, 0},  // placeholders; NaN cells checked below
                          {0, 0, 1, 4, 16, 0, 0, 4}};
    for (int i : {0, 1, 3})
        for (int j = 0; j < 8; ++j) {
            if (std::isnan(want[i][j]))
                EXPECT_TRUE(std::isnan(got[i * 8 + j])) << i << "," << j;
            else
                EXPECT_EQ(got[i * 8 + j], want[i][j]) << i << "," << j;
        }
    // Row 2: a is known, z is not: the a block stands, the rest is NaN.
    for (int j = 0; j < 3; ++j) EXPECT_EQ(got[16 + j], want[2][j]);
    for (int j = 3; j < 8; ++j) EXPECT_TRUE(std::isnan(got[16 + j])) << j;
}

TYPED_TEST(GlmTwin, EdgeCases) {
    using T = TypeParam;
    // Only continuous columns, order 1: the columns themselves, and the
    // caller's cells beyond them in a wider row stay.
    T x[] = {1, 2, 9, 3, 4, 9, 5, 6, 9};
    T got[] = {-1, -1, -7, -1, -1, -7, -1, -1, -7};
    EXPECT_EQ(glm<T>(3, x, 0, 2, ZORVS_X_COL_DIM, 3, ZORVS_REGRESSORS_USER, got, ZORVS_REGRESSORS_COL_DIM, 3, 0),
              2);
    const T want[] = {1, 2, -7, 3, 4, -7, 5, 6, -7};
    for (int i = 0; i < 9; ++i) EXPECT_EQ(got[i], want[i]) << i;
    // An allocated matrix with a wider stride holds NaN beyond the regressors.
    T *wide = nullptr;
    EXPECT_EQ(glm<T>(3, x, 0, 2, ZORVS_X_COL_DIM, 3, ZORVS_REGRESSORS, &wide, ZORVS_REGRESSORS_COL_DIM, 4, 0), 2);
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(wide[4], 3);
    EXPECT_TRUE(std::isnan(wide[3]));
    std::free(wide);
    // One class value under schemes 2 and 3: no regressor; under 1: one.
    T one_level[] = {4, 4, 4};
    for (int scheme : {1, 2, 3})
        EXPECT_EQ(glm<T>(3, one_level, 1, 0, ZORVS_DUMMY, scheme, 0), scheme == 1 ? 1 : 0) << scheme;
    // Order 2 with one class column and nothing else: its main effect only.
    T classes[] = {1, 2, 3, 2};
    EXPECT_EQ(glm<T>(4, classes, 1, 0, ZORVS_MODEL_ORDER, 2, 0), 3);
    // A column may stand twice in an effect: the class Kronecker square.
    int sizes[] = {2};
    int twice[] = {0, 0};
    T sq[4 * 9];
    ASSERT_EQ(glm<T>(4, classes, 1, 0, ZORVS_INDICES_EFFECTS, 1, sizes, twice, ZORVS_REGRESSORS_USER, sq, 0), 9);
    EXPECT_EQ(sq[9 + 4], 1);  // level 2 with itself
}

// Refused: a count of 0, x as it was, the caller's pointer not written.
TEST(Glm, RefusalsLeaveXAndTheCallersPointer) {
    double x[] = {1, 2, 3, 4, 5, 6}, sentinel = 0, *reg = &sentinel;
    int zero[] = {0}, two[] = {2}, pair[] = {0, 1}, far[] = {0, 5}, bad_class[] = {4};
    auto refused = [&](int count) { return count == 0 && x[0] == 1 && x[5] == 6 && reg == &sentinel; };
    auto by_effects = [&](int *sizes, int *columns) {
        return zorvs_d_regressors_for_glm(3, x, 1, 1, ZORVS_INDICES_EFFECTS, 1, sizes, columns, ZORVS_REGRESSORS, &reg, 0);
    };
    zorvs_test::expect_rows({
        {ZORVS_CALL(refused(zorvs_d_regressors_for_glm(0, x, 1, 1, ZORVS_REGRESSORS, &reg, 0))), 1, 5, 603},
        {ZORVS_CALL(refused(zorvs_d_regressors_for_glm(3, x, -1, 2, ZORVS_REGRESSORS, &reg, 0))), 1, 5, 603},
        {ZORVS_CALL(refused(zorvs_d_regressors_for_glm(3, x, 0, 0, ZORVS_REGRESSORS, &reg, 0))), 1, 5, 20234},
        {ZORVS_CALL(refused(zorvs_d_regressors_for_glm(3, x, 1, 1, ZORVS_MODEL_ORDER, 3, ZORVS_REGRESSORS, &reg, 0))), 1,
         5, 20230, "i1=3"},
        {ZORVS_CALL(refused(zorvs_d_regressors_for_glm(3, x, 1, 1, ZORVS_DUMMY, 0, ZORVS_REGRESSORS, &reg, 0))), 1, 5,
         20232},
        {ZORVS_CALL(refused(zorvs_d_regressors_for_glm(3, x, 1, 1, ZORVS_X_COL_DIM, 1, 0))), 1, 5, 20233},
        {ZORVS_CALL(refused(zorvs_d_regressors_for_glm(3, x, 1, 1, ZORVS_MODEL_ORDER, 1, ZORVS_INDICES_EFFECTS, 1, two,
                                                       pair, ZORVS_REGRESSORS, &reg, 0))), 1, 5, 11117},
        {ZORVS_CALL(refused(by_effects(zero, pair))), 1, 5, 20237},
        {ZORVS_CALL(refused(by_effects(two, far))), 1, 5, 20238, "i1=1 i2=5 i3=2"},
        {ZORVS_CALL(refused(zorvs_d_regressors_for_glm(3, x, 1, 1, ZORVS_X_CLASS_COLUMNS, bad_class, ZORVS_REGRESSORS,
                                                       &reg, 0))), 1, 5, 20235},
        {ZORVS_CALL(refused(zorvs_d_regressors_for_glm(3, x, 1, 1, ZORVS_REGRESSORS, &reg, ZORVS_REGRESSORS_COL_DIM, 1,
                                                       0))), 1, 5, 601},
        {ZORVS_CALL(refused(zorvs_d_regressors_for_glm(3, x, 1, 1, 99, 0))), 1, 5, 11001},
    });
}

// Each allocation in turn fails: the call either ends with an out-of-memory
// message, a count of 0 and the caller's pointer untouched, or (where the
// transposition falls back to its cycle method) gives the full result; x
// comes back as it was either way.
TEST(Glm, EveryFailingAllocationIsCleanedUp) {
    Quiet q;
    CodeLog codes;
    std::vector<double> x(glm_x, glm_x + 4 * n_cars);
    const std::vector<double> before = x;
    int refused = 0;
    for (int failing = 1; failing <= 12; ++failing) {
        double *reg = nullptr;
        zorvs::allocation_failure_countdown = failing;
        const int n = zorvs_d_regressors_for_glm(n_cars, x.data(), 2, 2, ZORVS_X_CLASS_COLUMNS, class_columns,
                                                 ZORVS_MODEL_ORDER, 2, ZORVS_REGRESSORS, &reg, 0);
        zorvs::allocation_failure_countdown = 0;
        const bool out_of_memory = codes.has(5, 200) || codes.has(5, 202);
        refused += out_of_memory;
        if (out_of_memory) {
            EXPECT_EQ(n, 0) << failing;
            EXPECT_EQ(reg, nullptr) << failing;
        } else {
            EXPECT_EQ(n, glm_o2_s1_ncol) << failing;
            ASSERT_NE(reg, nullptr) << failing;
            EXPECT_EQ(reg[n_cars * n - 1], glm_o2_s1[n_cars * n - 1]) << failing;
        }
        EXPECT_EQ(x, before) << failing;
        std::free(reg);
        codes.clear();
    }
    EXPECT_GE(refused, 5);
}

}  // namespace
