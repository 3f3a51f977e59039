// ranks_test.cpp - ranks and scores in both twins: every tie rule and score
// against R's rank() and the published score formulas
// (tests/data/stat/describe/ranks_ref.inc, make_ranks.R) on precip, mtcars
// and airquality (with NA); random splitting by its defining property and
// its seed; the fuzz and infinities; the refusals as rows.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/describe/ranks_ref.inc"

ZORVS_TWIN_SUITE(RanksTwin);

// Rows of the references: tie rule (average, lowest, highest) by score.
const int tie_keys[] = {ZORVS_AVERAGE_TIE, ZORVS_LOWEST, ZORVS_HIGHEST};
const int score_keys[] = {ZORVS_RANKS, ZORVS_BLOM_SCORES, ZORVS_TUKEY_SCORES, ZORVS_VAN_DER_WAERDEN_SCORES,
                          ZORVS_SAVAGE_SCORES};

TYPED_TEST(RanksTwin, TieRulesAndScoresAgreeWithR) {
    using T = TypeParam;
    const auto ranks = ZORVS_TWIN(f_ranks, d_ranks);
    const double tol = std::is_same_v<T, float> ? 2e-6 : 1e-12;
    Worst worst(std::string("ranks and scores against R, ") + (std::is_same_v<T, float> ? "float" : "double"));
    const std::tuple<const double *, const double *, int> sets[] = {
        {ranks_precip_x, &ranks_precip_want[0][0][0], 70},
        {ranks_mpg_x, &ranks_mpg_want[0][0][0], 32},
        {ranks_ozone_x, &ranks_ozone_want[0][0][0], 153}};
    for (auto [data, want, n] : sets) {
        std::vector<T> x(data, data + n), user(n);
        for (int c = 0; c < 15; ++c, want += n) {
            // the defaults are rule 0 and score 0; the last goes to the caller's storage
            T *r = c == 0    ? ranks(n, x.data(), 0)
                   : c == 14 ? ranks(n, x.data(), ZORVS_HIGHEST, ZORVS_SAVAGE_SCORES, ZORVS_RETURN_USER, user.data(), 0)
                             : ranks(n, x.data(), tie_keys[c / 5], score_keys[c % 5], 0);
            for (int i = 0; i < n; ++i) {
                EXPECT_TRUE(agrees(r[i], want[i], tol * std::fmax(1, std::fabs(want[i])))) << n << " " << c << " " << i;
                worst.add(std::isnan(want[i]) ? 0 : relative_error(r[i], want[i], 1e-3));
            }
            if (r != user.data()) std::free(r);
        }
    }
}

// Random splitting puts each value between R's lowest and highest rank of
// its group, uses each place once, splits some group, gives the Savage
// score of the place it drew, and repeats from the same seed.
TYPED_TEST(RanksTwin, RandomSplitPermutesEachTieGroup) {
    using T = TypeParam;
    const auto ranks = ZORVS_TWIN(f_ranks, d_ranks);
    std::vector<T> x(std::begin(ranks_ozone_x), std::end(ranks_ozone_x));
    const int n = int(x.size()), m = 116;
    T *r[3];
    for (int k = 0; k < 3; ++k) {
        zorvs_random_seed_set(123457);
        r[k] = ranks(n, x.data(), ZORVS_RANDOM_SPLIT, k == 1 ? ZORVS_SAVAGE_SCORES : ZORVS_RANKS, 0);
    }
    std::vector<int> places;
    bool split = false;
    for (int i = 0; i < n; ++i) {
        const double lo = ranks_ozone_want[1][0][i], hi = ranks_ozone_want[2][0][i], a = r[0][i];
        if (std::isnan(lo)) continue;
        EXPECT_TRUE(a >= lo && a <= hi && a == r[2][i]) << i;
        double savage = 0;
        for (int j = m - int(a) + 1; j <= m; ++j) savage += 1.0 / j;
        EXPECT_NEAR(r[1][i], savage, 1e-6 * savage) << i;
        split |= a != lo;
        places.push_back(int(a));
    }
    std::sort(places.begin(), places.end());
    for (int k = 0; k < m; ++k) EXPECT_EQ(places.at(k), k + 1);
    EXPECT_TRUE(split);
    for (T *p : r) std::free(p);
}

// Fuzz chains and infinities tie; the refusals: a message, a null result,
// the caller's storage as it was.
TYPED_TEST(RanksTwin, TiesAndRefusals) {
    using T = TypeParam;
    const auto ranks = ZORVS_TWIN(f_ranks, d_ranks);
    const T inf = std::numeric_limits<T>::infinity(), half = T(0.5);
    std::vector<T> x{3, 1, 2}, user(3, T(42)), none(2, zorvs::missing<T>()), f{0, T(0.5), 1, 3}, y{inf, -inf, inf, 0};
    auto null = [](T *t) { return t == nullptr; };
    auto is = [](T *t, auto... v) {
        const bool h = holds(t, v...);
        return std::free(t), h;
    };
    auto kept = [&](T *t) { return t == user.data() && user[0] == 42 && user[2] == 42; };
    expect_rows({
        {ZORVS_CALL(is(ranks(4, f.data(), ZORVS_FUZZ, 0.5, 0), 2, 2, 2, 4)), 1, 0, 0},
        {ZORVS_CALL(is(ranks(4, f.data(), ZORVS_FUZZ_ADR, &half, ZORVS_HIGHEST, 0), 3, 3, 3, 4)), 1, 0, 0},
        {ZORVS_CALL(is(ranks(4, f.data(), ZORVS_FUZZ, 0.25, 0), 1, 2, 3, 4)), 1, 0, 0},
        {ZORVS_CALL(is(ranks(4, y.data(), 0), 3.5, 1, 3.5, 2)), 1, 0, 0},
        {ZORVS_CALL(is(ranks(1, f.data(), ZORVS_BLOM_SCORES, 0), 0)), 1, 0, 0},
        {ZORVS_CALL(null(ranks(0, x.data(), 0))), 1, 5, 11002, "i1=0"},
        {ZORVS_CALL(null(ranks(3, x.data(), ZORVS_LOWEST, ZORVS_HIGHEST, 0))), 1, 5, 11117},
        {ZORVS_CALL(null(ranks(3, x.data(), ZORVS_BLOM_SCORES, ZORVS_BLOM_SCORES, 0))), 1, 5, 11117},
        {ZORVS_CALL(null(ranks(3, x.data(), ZORVS_FUZZ, -1.0, 0))), 1, 5, 11120, "r1=-1"},
        {ZORVS_CALL(null(ranks(3, x.data(), ZORVS_FUZZ, NaN, 0))), 1, 5, 11120},
        {ZORVS_CALL(null(ranks(3, x.data(), 77777, 0))), 1, 5, 11001, "i1=77777 i2=3"},
        {ZORVS_CALL(null(ranks(3, nullptr, 0))), 1, 5, 150, "l1=x"},
        {ZORVS_CALL(kept(ranks(-2, x.data(), ZORVS_RETURN_USER, user.data(), 0))), 1, 5, 11002},
        // a failed work array after the caller's storage was taken (each failure sets the countdown back to 0)
        {ZORVS_CALL((zorvs::allocation_failure_countdown = 1, kept(ranks(3, x.data(), ZORVS_RETURN_USER, user.data(), 0)))), 1, 5, 201, "l1=n_observations"},
        {ZORVS_CALL((zorvs::allocation_failure_countdown = 5, kept(ranks(3, x.data(), ZORVS_RANDOM_SPLIT, ZORVS_RETURN_USER, user.data(), 0)))), 1, 5, 201},
        {ZORVS_CALL(std::isnan(ranks(2, none.data(), ZORVS_RETURN_USER, user.data(), 0)[1])), 1, 3, 21200, "i1=2"},
    });
}

}  // namespace
