// oneway_test.cpp - one-way analysis of variance in both twins: the table,
// the group statistics and the intervals of every method against R (aov,
// oneway.test, TukeyHSD and the interval formulas with qt, qf, qtukey) on
// four data sets and five edge cases (tests/data/stat/anova/oneway_ref.inc,
// make_oneway.R); the NIST StRD one-way construction on large constants
// against exact rational arithmetic (hard_data_ref.inc, make_hard_data.py);
// the refusals and the outputs' life as rows.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/anova/oneway_ref.inc"

#include "data/stat/anova/hard_data_ref.inc"

ZORVS_TWIN_SUITE(OnewayTwin);

const int method_keys[5] = {ZORVS_TUKEY_USER, ZORVS_DUNN_SIDAK_USER, ZORVS_BONFERRONI_USER, ZORVS_SCHEFFE_USER,
                            ZORVS_ONE_AT_A_TIME_USER};

// The error of got against want relative to scale (NaN matches NaN only),
// added to a family's worst and held to its tolerance.
void check(Worst &worst, double got, double want, double scale, double tol) {
    const double e = std::isnan(want) ? (std::isnan(got) ? 0 : 1) : std::fabs(got - want) / std::fabs(scale);
    worst.add(e);
    EXPECT_LE(e, tol) << got << " for " << want;
}

// Intervals: the t-based ones are as good as the t inverse (Hill's
// algorithm 396), about 1e-7 of the half width; TukeyHSD's as its qtukey.
TYPED_TEST(OnewayTwin, TableGroupsAndIntervalsAgreeWithR) {
    using T = TypeParam;
    const auto anova = twin<T>(zorvs_f_anova_oneway, zorvs_d_anova_oneway);
    const bool single = std::is_same_v<T, float>;
    const double tol = single ? 2e-5 : 1e-9, t_tol = single ? 5e-5 : 1e-7, hsd_tol = single ? 5e-5 : 1e-6;
    const std::string twin_name = single ? ", float" : ", double";
    Worst table_error("table, p-value, means, std devs vs R" + twin_name + ": relative error"),
        tukey_error("Tukey vs ptukey-solved q" + twin_name + ": error / half width"),
        hsd_error("Tukey vs TukeyHSD (qtukey)" + twin_name + ": error / half width"),
        t_error("Dunn-Sidak, Bonferroni, one at a time vs R" + twin_name + ": error / half width"),
        scheffe_error("Scheffe vs R" + twin_name + ": error / half width");
    Quiet q;
    for (const OnewayRef &r : oneway_refs) {
        SCOPED_TRACE(r.name);
        const int k = int(r.n.size());
        std::vector<T> y(r.y.begin(), r.y.end()), table(15), means(k), sds(k);
        std::vector<int> counts(k), n = r.n;
        const T p = anova(k, n.data(), y.data(), ZORVS_ANOVA_TABLE_USER, table.data(), ZORVS_GROUP_COUNTS_USER,
                          counts.data(), ZORVS_GROUP_MEANS_USER, means.data(), ZORVS_GROUP_STD_DEVS_USER, sds.data(), 0);
        EXPECT_EQ(zorvs_error_type(), 0);
        for (int e = 0; e < 15; ++e) check(table_error, table[e], r.table[e], r.table[e] ? r.table[e] : 1, tol);
        check(table_error, p, r.p_oneway_test, r.p_oneway_test, tol);
        EXPECT_EQ(std::vector<double>(counts.begin(), counts.end()), r.counts);
        for (int i = 0; i < k; ++i) {
            check(table_error, means[i], r.means[i], r.means[i], tol);
            check(table_error, sds[i], r.sds[i], r.sds[i], tol);
        }
        for (std::size_t m = 0; m < r.intervals.size(); ++m) {
            std::vector<T> rows(r.intervals[m].size());
            anova(k, n.data(), y.data(), ZORVS_CONFIDENCE, r.confidence, method_keys[m], rows.data(), 0);
            EXPECT_EQ(zorvs_error_type(), 0) << m;
            for (std::size_t c = 0; c < rows.size(); ++c) {
                const auto &want = r.intervals[m];
                const double half = 0.5 * (want[c - c % 5 + 4] - want[c - c % 5 + 3]);
                if (m == 0) {
                    check(tukey_error, rows[c], r.tukey_exact_q[c], half, tol);
                    check(hsd_error, rows[c], r.tukey_hsd[c], half, hsd_tol);
                } else {
                    check(m == 3 ? scheffe_error : t_error, rows[c], want[c], half, m == 3 ? tol : t_tol);
                }
            }
        }
    }
}

// The NIST StRD one-way construction on 1, 1e6, 1e12 and 1e13, built as the
// script builds it: sums of squares, mean squares and F to 9 digits at least.
TEST(OnewayHardData, NistConstructionAgreesWithExactArithmetic) {
    const double centres[9] = {0.4, 0.3, 0.5, 0.3, 0.5, 0.3, 0.5, 0.3, 0.5};
    Worst worst("NIST one-way construction, double: relative error of SS, MS and F");
    for (const HardRef &r : hard_refs) {
        SCOPED_TRACE(r.name);
        std::vector<double> y;
        std::vector<int> n(9, r.per_group);
        for (double d : centres) {
            y.push_back(r.constant + d);
            // alternately the doubles 0.1 below and above the centre
            const double below = d == 0.4 ? 0.3 : d == 0.3 ? 0.2 : 0.4, above = d == 0.4 ? 0.5 : d == 0.3 ? 0.4 : 0.6;
            for (int j = 0; j < r.per_group - 1; ++j) y.push_back(r.constant + (j % 2 == 0 ? below : above));
        }
        double table[15];
        zorvs_d_anova_oneway(9, n.data(), y.data(), ZORVS_ANOVA_TABLE_USER, table, 0);
        const double want[5] = {r.ss_between, r.ss_within, r.ms_between, r.ms_within, r.f};
        const int entry[5] = {3, 4, 6, 7, 8};
        for (int e = 0; e < 5; ++e) check(worst, table[entry[e]], want[e], want[e], 1e-9);
    }
}

// Refusals, the keyword forms and the outputs' life, with stops off.
TYPED_TEST(OnewayTwin, RefusalsAndOutputs) {
    using T = TypeParam;
    const auto anova = twin<T>(zorvs_f_anova_oneway, zorvs_d_anova_oneway);
    const OnewayRef &plant = oneway_refs[0], &with_nan = oneway_refs[4], &no_c = oneway_refs[6],
                    &alone = oneway_refs[8];
    std::vector<T> y(plant.y.begin(), plant.y.end()), y_nan(with_nan.y.begin(), with_nan.y.end()),
        y_no_c(no_c.y.begin(), no_c.y.end()), rows(75, T(-7)), table(15, T(-7)), equal(6, T(2));
    std::vector<int> n = plant.n, n_no_c = no_c.n, bad{10, -1, 20}, one{10}, equal_n{1, 2, 3}, n_ones{1, 1, 1};
    T *got = nullptr, *given = nullptr, level = T(99.5), sds[3];
    int *counts = nullptr;
    const std::string all_methods =
        "ZORVS_TUKEY, ZORVS_DUNN_SIDAK, ZORVS_BONFERRONI, ZORVS_SCHEFFE, and ZORVS_ONE_AT_A_TIME";
    auto untouched = [&] { return table[0] == T(-7) && rows[0] == T(-7); };
    // the p-value of groups n of responses y, and of PlantGrowth
    auto a = [&](std::vector<int> &n, std::vector<T> &y, auto... keys) {
        return double(anova(int(n.size()), n.data(), y.data(), keys..., 0));
    };
    auto p = [&](auto... keys) { return a(n, y, keys...); };
    const int tab = ZORVS_ANOVA_TABLE_USER;
    const double p_plant = plant.table[9], tol = std::is_same_v<T, float> ? 1e-5 : 1e-12;
    expect_rows({
        // two comparison keywords, or one twice: nothing computed, nothing returned
        {ZORVS_CALL(p(ZORVS_TUKEY, &got, ZORVS_SCHEFFE_USER, rows.data(), tab, table.data())), NaN, 5, 11117},
        {ZORVS_CALL(untouched() && got == nullptr && std::string(zorvs_error_param.l[1]) == all_methods), 1, -1},
        {ZORVS_CALL(p(ZORVS_BONFERRONI_USER, rows.data(), ZORVS_BONFERRONI_USER, rows.data())), NaN, 5, 11117},
        {ZORVS_CALL(a(bad, y, tab, table.data())), NaN, 5, 11127, "i1=1 i2=-1 i3=2"},
        {ZORVS_CALL(untouched()), 1, -1},
        {ZORVS_CALL(anova(0, n.data(), y.data(), 0)), NaN, 5, 603, "l1=n_groups"},
        {ZORVS_CALL(p(99999)), NaN, 5, 11001, "i1=99999 i2=4"},
        // comparisons refused: missing responses, an empty group, one group
        // (the p-value stands, the pointer is nulled, the caller's table kept)
        {ZORVS_CALL(a(n, y_nan, tab, table.data(), ZORVS_TUKEY, &got)), with_nan.table[9], 5, 11220, "", tol * with_nan.table[9]},
        {ZORVS_CALL(got == nullptr && relative_error(table[9], with_nan.table[9]) < tol), 1, -1},
        {ZORVS_CALL(a(n_no_c, y_no_c, ZORVS_SCHEFFE_USER, rows.data())), no_c.table[9], 5, 11157, "i1=3 i2=0", tol * no_c.table[9]},
        {ZORVS_CALL(a(one, y, ZORVS_ONE_AT_A_TIME, &got)), NaN, 5, 11150, "i1=1"},
        {ZORVS_CALL(got == nullptr && alone.intervals.empty()), 1, -1},
        // one response a group leaves no degrees of freedom within groups
        {ZORVS_CALL(a(n_ones, y, ZORVS_BONFERRONI_USER, rows.data())), any, 5, 11160, "r1=0"},
        // Tukey's level from 90 to 99 only; the others take any percentage
        {ZORVS_CALL(p(ZORVS_CONFIDENCE, 99.5, ZORVS_TUKEY_USER, rows.data())), p_plant, 5, 11159, "r1=99.5", tol},
        {ZORVS_CALL(p(ZORVS_CONFIDENCE, 89.0, ZORVS_TUKEY_USER, rows.data())), p_plant, 5, 11159, "r1=89", tol},
        {ZORVS_CALL(p(ZORVS_CONFIDENCE, 99.5, ZORVS_BONFERRONI_USER, rows.data())), p_plant, 0, 0, "", tol},
        {ZORVS_CALL(rows[0] == 1 && rows[1] == 2 && rows[3] < rows[2] && rows[4] > rows[2]), 1, -1},
        {ZORVS_CALL(p(ZORVS_CONFIDENCE, 100.0, ZORVS_DUNN_SIDAK_USER, rows.data())), p_plant, 5, 20403, "l1=CONPER", tol},
        // a low level warns and the intervals stand; a level of 0 gives width 0
        {ZORVS_CALL(p(ZORVS_CONFIDENCE, 30.0, ZORVS_SCHEFFE, &got)), p_plant, 6, 20404, "r1=30", tol},
        {ZORVS_CALL(got != nullptr && got[3] < got[2]), 1, -1},
        {ZORVS_DO(std::free(got)), any, -1},
        {ZORVS_CALL(p(ZORVS_CONFIDENCE, 0.0, ZORVS_SCHEFFE_USER, rows.data())), p_plant, 0, 0, "", tol},
        {ZORVS_CALL(rows[3] == rows[2] && rows[4] == rows[2]), 1, -1},
        // the level by address; the pointer forms of every output
        {ZORVS_CALL(p(ZORVS_CONFIDENCE_ADR, &level, ZORVS_TUKEY_USER, rows.data())), any, 5, 11159, "r1=99.5"},
        {ZORVS_CALL(p(ZORVS_ANOVA_TABLE, &given, ZORVS_GROUP_COUNTS, &counts, ZORVS_GROUP_MEANS, &got)), p_plant, 0, 0, "", tol},
        {ZORVS_CALL(given[1] == 27 && counts[2] == 10 && std::fabs(got[2] - T(5.526)) < 1e-5), 1, -1},
        {ZORVS_DO((std::free(given), std::free(counts), std::free(got))), any, -1},
        // all responses equal: no variation, F and p NaN, std devs 0 where a
        // group has two responses or more
        {ZORVS_CALL(a(equal_n, equal, tab, table.data(), ZORVS_GROUP_STD_DEVS_USER, sds)), NaN, 0, 0},
        {ZORVS_CALL(table[3] + table[4] == 0 && std::isnan(table[8]) && std::isnan(sds[0]) && sds[1] + sds[2] == 0), 1},
        // failed allocations: the table, then the work table
        {ZORVS_CALL((zorvs::allocation_failure_countdown = 1, p(ZORVS_ANOVA_TABLE, &got))), NaN, 5, 200},
        {ZORVS_CALL((zorvs::allocation_failure_countdown = 2, p(0))), NaN, 5, 200},
    });
}

}  // namespace
