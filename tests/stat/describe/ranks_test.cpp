// ranks_test.cpp - ranks and scores in both twins: every tie rule and score
// against R's rank() and the published score formulas
// (tests/data/stat/describe/ranks_ref.inc, make_ranks.R) on precip, mtcars
// and airquality (with NA); random splitting by its defining property and
// its reproducibility from the seed; the fuzz; the refusals as rows.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/describe/ranks_ref.inc"

template <class T>
class RanksTwin : public ::testing::Test {};
TYPED_TEST_SUITE(RanksTwin, Reals);

struct RankData {
    const char *name;
    std::vector<double> x;
    const double *want;  // want[tie][score][i] of the reference, flat
    int n;
};

template <std::size_t N>
RankData data_set(const char *name, const double (&x)[N], const double (&want)[3][5][N]) {
    return {name, std::vector<double>(x, x + N), &want[0][0][0], int(N)};
}

const int tie_keys[3] = {ZORVS_AVERAGE_TIE, ZORVS_LOWEST, ZORVS_HIGHEST};
const int score_keys[5] = {ZORVS_RANKS, ZORVS_BLOM_SCORES, ZORVS_TUKEY_SCORES, ZORVS_VAN_DER_WAERDEN_SCORES,
                           ZORVS_SAVAGE_SCORES};

TYPED_TEST(RanksTwin, TieRulesAndScoresAgreeWithR) {
    using T = TypeParam;
    const auto ranks = twin<T>(zorvs_f_ranks, zorvs_d_ranks);
    const double tol = std::is_same_v<T, float> ? 2e-6 : 1e-12;
    Worst worst(std::string("ranks and scores against R, ") + (std::is_same_v<T, float> ? "float" : "double"));
    for (const RankData &d : {data_set("precip", ranks_precip_x, ranks_precip_want),
                              data_set("mpg", ranks_mpg_x, ranks_mpg_want),
                              data_set("ozone", ranks_ozone_x, ranks_ozone_want)}) {
        std::vector<T> x(d.x.begin(), d.x.end()), user(d.n, T(-7));
        for (int tie = 0; tie < 3; ++tie) {
            for (int s = 0; s < 5; ++s) {
                SCOPED_TRACE(::testing::Message() << d.name << " tie " << tie << " score " << s);
                const double *want = d.want + (tie * 5 + s) * d.n;
                // the default keywords stand for rule 0 and score 0; the last
                // case of each data set goes to the caller's storage
                T *r = tie == 0 && s == 0 ? ranks(d.n, x.data(), 0)
                       : tie == 2 && s == 4
                           ? ranks(d.n, x.data(), tie_keys[tie], score_keys[s], ZORVS_RETURN_USER, user.data(), 0)
                           : ranks(d.n, x.data(), tie_keys[tie], score_keys[s], 0);
                ASSERT_NE(r, nullptr);
                for (int i = 0; i < d.n; ++i) {
                    EXPECT_TRUE(agrees(r[i], want[i], tol * std::fmax(1, std::fabs(want[i])))) << i << ": " << r[i];
                    if (!std::isnan(want[i])) worst.add(relative_error(r[i], want[i], 1e-3));
                }
                if (r != user.data()) std::free(r);
            }
        }
    }
    EXPECT_LE(worst.value(), tol);
}

// Random splitting: every value's rank lies between R's lowest and highest
// rank of its group, the ranks are 1..m once each, and the same seed gives
// the same split.  With each score the split permutes the scores of a group.
TYPED_TEST(RanksTwin, RandomSplitPermutesEachTieGroup) {
    using T = TypeParam;
    const auto ranks = twin<T>(zorvs_f_ranks, zorvs_d_ranks);
    std::vector<T> x(std::begin(ranks_ozone_x), std::end(ranks_ozone_x));
    const int n = int(x.size());
    zorvs_random_seed_set(123457);
    T *a = ranks(n, x.data(), ZORVS_RANDOM_SPLIT, 0);
    zorvs_random_seed_set(123457);
    T *b = ranks(n, x.data(), ZORVS_RANDOM_SPLIT, ZORVS_SAVAGE_SCORES, 0);
    zorvs_random_seed_set(123457);
    T *c = ranks(n, x.data(), ZORVS_RANDOM_SPLIT, 0);
    ASSERT_TRUE(a && b && c);
    std::vector<int> seen;
    bool split_somewhere = false;
    for (int i = 0; i < n; ++i) {
        const double lo = ranks_ozone_want[1][0][i], hi = ranks_ozone_want[2][0][i];
        if (std::isnan(lo)) {
            EXPECT_TRUE(std::isnan(a[i]) && std::isnan(b[i])) << i;
            continue;
        }
        EXPECT_TRUE(a[i] >= lo && a[i] <= hi && a[i] == std::floor(a[i])) << i;
        EXPECT_EQ(a[i], c[i]) << i;
        split_somewhere |= a[i] != lo && lo != hi;
        seen.push_back(int(a[i]));
    }
    std::sort(seen.begin(), seen.end());
    for (std::size_t k = 0; k < seen.size(); ++k) EXPECT_EQ(seen[k], int(k) + 1);
    EXPECT_TRUE(split_somewhere);
    // the Savage scores are the scores of the places a drew: sum 1/j, j = m-r+1..m
    const int m = int(seen.size());
    for (int i = 0; i < n; ++i) {
        if (std::isnan(a[i])) continue;
        double s = 0;
        for (int j = m - int(a[i]) + 1; j <= m; ++j) s += 1.0 / j;
        EXPECT_NEAR(b[i], s, 1e-5 * s) << i;
    }
    std::free(a), std::free(b), std::free(c);
}

// The fuzz chains neighbours; infinities tie with each other; one value.
TYPED_TEST(RanksTwin, FuzzInfinitiesAndOneValue) {
    using T = TypeParam;
    const auto ranks = twin<T>(zorvs_f_ranks, zorvs_d_ranks);
    const T inf = std::numeric_limits<T>::infinity();
    T fuzz = T(0.5);
    struct Row {
        std::vector<T> x;
        std::function<T *(int, T *)> call;
        std::vector<double> want;
    };
    const std::vector<Row> rows = {
        {{0, T(0.5), 1, 3}, [&](int n, T *x) { return ranks(n, x, ZORVS_FUZZ, 0.5, 0); }, {2, 2, 2, 4}},
        {{0, T(0.5), 1, 3}, [&](int n, T *x) { return ranks(n, x, ZORVS_FUZZ_ADR, &fuzz, ZORVS_HIGHEST, 0); }, {3, 3, 3, 4}},
        {{0, T(0.5), 1, 3}, [&](int n, T *x) { return ranks(n, x, ZORVS_FUZZ, 0.25, 0); }, {1, 2, 3, 4}},
        {{inf, -inf, inf, 0}, [&](int n, T *x) { return ranks(n, x, 0); }, {3.5, 1, 3.5, 2}},
        {{5}, [&](int n, T *x) { return ranks(n, x, ZORVS_BLOM_SCORES, 0); }, {0}},
        {{5}, [&](int n, T *x) { return ranks(n, x, ZORVS_SAVAGE_SCORES, 0); }, {1}},
    };
    for (const Row &r : rows) {
        auto x = r.x;
        T *got = r.call(int(x.size()), x.data());
        ASSERT_NE(got, nullptr);
        EXPECT_EQ(std::vector<double>(got, got + x.size()), r.want);
        std::free(got);
    }
}

// Refusals: the message, a null result, the caller's storage untouched.
TYPED_TEST(RanksTwin, RefusalsLeaveCallerStorageAlone) {
    using T = TypeParam;
    const auto ranks = twin<T>(zorvs_f_ranks, zorvs_d_ranks);
    const T nan = zorvs::missing<T>();
    std::vector<T> x{3, 1, 2}, user(3, T(42)), all_missing{nan, nan};
    auto null = [](T *t) { return t == nullptr; };
    auto untouched = [&] { return user[0] == 42 && user[1] == 42 && user[2] == 42; };
    expect_rows({
        {ZORVS_CALL(null(ranks(0, x.data(), 0))), 1, 5, 11002, "i1=0"},
        {ZORVS_CALL(null(ranks(3, x.data(), ZORVS_LOWEST, ZORVS_HIGHEST, 0))), 1, 5, 11117},
        {ZORVS_CALL(null(ranks(3, x.data(), ZORVS_BLOM_SCORES, ZORVS_BLOM_SCORES, 0))), 1, 5, 11117},
        {ZORVS_CALL(null(ranks(3, x.data(), ZORVS_FUZZ, -1.0, 0))), 1, 5, 11120, "r1=-1"},
        {ZORVS_CALL(null(ranks(3, x.data(), ZORVS_FUZZ, double(NaN), 0))), 1, 5, 11120},
        {ZORVS_CALL(null(ranks(3, x.data(), 77777, 0))), 1, 5, 11001, "i1=77777 i2=3"},
        {ZORVS_CALL(ranks(-2, x.data(), ZORVS_RETURN_USER, user.data(), 0) == user.data() && untouched()), 1, 5, 11002},
        // a failed work array after the result was had: caller's storage as it was
        {ZORVS_CALL(zorvs::allocation_failure_countdown = 1), 1},
        {ZORVS_CALL(ranks(3, x.data(), ZORVS_RETURN_USER, user.data(), 0) == user.data() && untouched()), 1, 5, 201,
         "i1=3 l1=n_observations"},
        {ZORVS_CALL(zorvs::allocation_failure_countdown = 5), 5},
        {ZORVS_CALL(ranks(3, x.data(), ZORVS_RANDOM_SPLIT, ZORVS_RETURN_USER, user.data(), 0) == user.data() &&
                    untouched()),
         1, 5, 201},
        {ZORVS_CALL(zorvs::allocation_failure_countdown = 0), 0},
        // all missing: a warning and all NaN
        {ZORVS_CALL(std::isnan(ranks(2, all_missing.data(), ZORVS_RETURN_USER, user.data(), 0)[1])), 1, 3, 21200,
         "i1=2"},
    });
}

}  // namespace
