// multiple_comparisons_test.cpp - the Student-Newman-Keuls test in both
// twins: groupings identical to the procedure built with R's qtukey
// (tests/data/stat/anova/multiple_comparisons_ref.inc,
// make_multiple_comparisons.R) on group means of R's data sets and on
// random means, in the given order and, at one level, reversed; the edge cases and the
// checks as rows.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/anova/multiple_comparisons_ref.inc"

ZORVS_TWIN_SUITE(SnkTwin);

TYPED_TEST(SnkTwin, GroupingsAgreeWithR) {
    using T = TypeParam;
    const auto snk = twin<T>(zorvs_f_multiple_comparisons, zorvs_d_multiple_comparisons);
    for (const SnkRef &r : snk_refs) {
        SCOPED_TRACE(std::string(r.name) + ", alpha " + std::to_string(r.alpha));
        std::vector<T> means(r.means.begin(), r.means.end());
        const std::vector<T> given = means;
        // the reversed order once per case: each quantile costs ~60 ms
        for (int order = 0; order < (r.alpha == 0.05 ? 2 : 1); ++order) {
            int *eq = snk(int(means.size()), means.data(), r.df, T(r.std_error), ZORVS_ALPHA, r.alpha, 0);
            ASSERT_NE(eq, nullptr);
            EXPECT_EQ(std::vector<int>(eq, eq + means.size() - 1), r.equal_means) << "order " << order;
            std::free(eq);
            EXPECT_EQ(order == 0 ? means : std::vector<T>(means.rbegin(), means.rend()), given);  // untouched
            std::reverse(means.begin(), means.end());
        }
    }
}

TYPED_TEST(SnkTwin, EdgeCasesAndChecks) {
    using T = TypeParam;
    const auto snk = twin<T>(zorvs_f_multiple_comparisons, zorvs_d_multiple_comparisons);
    T two[2] = {1, 2}, equal[4] = {3, 3, 3, 3}, with_nan[3] = {1, zorvs::missing<T>(), 2};
    int user[3] = {-5, -5, -5};
    std::vector<int> got;
    auto call = [&](int k, T *means, int df, T se, auto... keys) {
        int *eq = snk(k, means, df, se, keys..., 0);
        got = eq ? std::vector<int>(eq, eq + std::max(k - 1, 0)) : std::vector<int>{};
        if (eq && eq != user) std::free(eq);
        return eq != nullptr;
    };
    CodeLog log;
    // q(0.99; 2, 10) = 4.48203 and q(0.9; 2, 10) = 2.56321 (R's qtukey): a range of 1
    // is within q times a standard error of 0.23 and 0.40, not of 0.22 and 0.38
    expect_rows({
        {ZORVS_CALL(call(2, two, 10, T(0.23)) && got == std::vector<int>{2}), 1, 0, 0},
        {ZORVS_CALL(call(2, two, 10, T(0.22)) && got == std::vector<int>{0}), 1, 0, 0},
        {ZORVS_CALL(call(2, two, 10, T(0.40), ZORVS_ALPHA, 0.1) && got == std::vector<int>{2}), 1, 0, 0},
        {ZORVS_CALL(call(2, two, 10, T(0.38), ZORVS_ALPHA, 0.1) && got == std::vector<int>{0}), 1, 0, 0},
        {ZORVS_CALL(call(4, equal, 5, T(0), ZORVS_RETURN_USER, user) && got == std::vector<int>({4, 0, 0}) &&
                    user[0] == 4), 1, 0, 0},
        // the checks, each raised in turn; the last one's code stays
        {ZORVS_CALL(call(1, two, 10, T(1))), 0, 5, 11150, "i1=1"},
        {ZORVS_CALL(call(2, two, 10, T(-1))), 0, 5, 11151, "r1=-1"},
        {ZORVS_CALL(call(2, two, 0, T(1))), 0, 5, 11152, "r1=0"},
        {ZORVS_CALL(call(2, two, 10, T(1), ZORVS_ALPHA, 0.2)), 0, 5, 11153, "r1~0.2"},
        {ZORVS_CALL(call(2, two, 10, T(1), ZORVS_ALPHA, 0.0099)), 0, 5, 11153, "r1~0.0099"},
        {ZORVS_CALL((log.clear(), call(0, two, 0, T(-1), ZORVS_ALPHA, 0.5)) ||
                    !(log.has(5, 11150) && log.has(5, 11151) && log.has(5, 11152))), 0, 5, 11153},
        {ZORVS_CALL(call(3, with_nan, 10, T(1))), 0, 5, 11154, "i1=1"},
        {ZORVS_CALL(call(2, two, 10, T(1), 12345)), 0, 5, 11001, "i1=12345 i2=5"},
        {ZORVS_CALL((zorvs::allocation_failure_countdown = 1, call(2, two, 10, T(1)))), 0, 5, 200},
    });
}

}  // namespace
