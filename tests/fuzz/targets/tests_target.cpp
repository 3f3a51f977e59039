// tests_target.cpp - one-way analysis of variance with its multiple
// comparisons, the Student-Newman-Keuls test, contingency tables,
// chi-squared goodness of fit (with a distribution function that may
// misbehave), the sign, rank-sum and normality tests, on any data, sizes
// and keyword lists: p-values in [0, 1], W in [0, 1], group counts of
// means found alike within the groups left.
#include "fuzz_input.hpp"

namespace zorvs_fuzz::tests {

const Item anova_menu[] = {{ZORVS_ANOVA_TABLE, "a"}, {ZORVS_ANOVA_TABLE_USER, "o"}, {ZORVS_GROUP_COUNTS, "a"},
    {ZORVS_GROUP_COUNTS_USER, "k"}, {ZORVS_GROUP_MEANS, "a"}, {ZORVS_GROUP_MEANS_USER, "o"},
    {ZORVS_GROUP_STD_DEVS, "a"}, {ZORVS_GROUP_STD_DEVS_USER, "o"}, {ZORVS_CONFIDENCE, "r"}, {ZORVS_CONFIDENCE_ADR, "s"},
    {ZORVS_TUKEY, "a"}, {ZORVS_TUKEY_USER, "o"}, {ZORVS_DUNN_SIDAK, "a"}, {ZORVS_BONFERRONI_USER, "o"},
    {ZORVS_SCHEFFE, "a"}, {ZORVS_ONE_AT_A_TIME_USER, "o"}};
const Item snk_menu[] = {{ZORVS_ALPHA, "r"}, {ZORVS_RETURN_USER, "k"}};
const Item table_menu[] = {{ZORVS_CHI_SQUARED, "koo"}, {ZORVS_LRT, "koo"}, {ZORVS_EXPECTED, "a"},
    {ZORVS_EXPECTED_USER, "o"}, {ZORVS_CHI_SQUARED_CONTRIBUTIONS, "a"}, {ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER, "o"},
    {ZORVS_CHI_SQUARED_STATISTICS, "a"}, {ZORVS_CHI_SQUARED_STATISTICS_USER, "o"}, {ZORVS_STATISTICS, "a"},
    {ZORVS_STATISTICS_USER, "o"}};
const Item fit_menu[] = {{ZORVS_CUTPOINTS, "x"}, {ZORVS_FREQUENCIES, "X"}, {ZORVS_COUNTS, ""},
    {ZORVS_EXPECTED_GIVEN, "x"}, {ZORVS_N_PARAMETERS_ESTIMATED, "i"}, {ZORVS_CHI_SQUARED, "koo"}, {ZORVS_EXPECTED, "a"},
    {ZORVS_EXPECTED_USER, "o"}, {ZORVS_CHI_SQUARED_CONTRIBUTIONS, "a"}, {ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER, "o"},
    {ZORVS_CELL_COUNTS, "a"}, {ZORVS_CELL_COUNTS_USER, "o"}};
const Item sign_menu[] = {{ZORVS_PERCENTAGE, "r"}, {ZORVS_PERCENTAGE_ADR, "s"}, {ZORVS_PERCENTILE, "r"},
    {ZORVS_PERCENTILE_ADR, "s"}, {ZORVS_N_POSITIVE_DEVIATIONS, "k"}, {ZORVS_N_ZERO_DEVIATIONS, "k"}};
const Item rank_sum_menu[] = {{ZORVS_FUZZ, "r"}, {ZORVS_FUZZ_ADR, "s"}, {ZORVS_STAT, "a"}, {ZORVS_STAT_USER, "o"}};

template <class T>
void one(Input &in, Store<T> &s) {
    in.fill(s.data, 2600);
    Builder<T> b(in, s);
    switch (in.pick(7)) {
        case 0: {  // the p-value, or NaN where the table shows no F (no degrees of freedom, no spread)
            const int groups = in.count(20);
            in.fill_ints(s.ints, 40, -1, 10);
            b.add({ZORVS_ANOVA_TABLE_USER, "o"});
            s.out[0][8] = T(-7);  // the table's F
            const T p = call(F(anova_oneway), b.from(anova_menu, 5), groups, s.ints, s.data);
            return probability(p, "anova_oneway", s.out[0][8] == T(-7) || !std::isfinite(s.out[0][8]));
        }
        case 1: {
            const int groups = in.count(12), df = in.any_int();  // 30 groups take seconds
            const T se = T(in.real());
            int *r = call(F(multiple_comparisons), b.from(snk_menu, 2), groups, s.data, df, se);
            for (int i = 0; r && !failed() && i < groups - 1; ++i)
                require(r[i] >= 0 && r[i] <= groups - i, "multiple_comparisons", "more means alike than left", r[i]);
            break;
        }
        case 2: {
            const int rows = in.count(8), columns = in.count(8);
            for (int i = 0; i < 81; ++i) s.data[i] = in.one_in(10) ? T(in.real()) : T(in.pick(12));
            return probability(call(F(contingency_table), b.from(table_menu, 4), rows, columns, s.data), "contingency");
        }
        case 3: {
            // Distribution functions: a proper one, one outside [0, 1], one that decreases, one that gives NaN.
            T (*const cdfs[])(T) = {nullptr, [](T x) { return T(1) / (T(1) + std::exp(-x)); },
                                    [](T x) { return T(2) + x * x; },
                                    [](T x) { return T(1) - T(1) / (T(1) + std::exp(-x)); }, [](T) { return T(NAN); }};
            const int categories = in.count(12), n = in.count(200);
            if (in.one_in(2)) std::sort(s.data, s.data + 12);  // increasing cutpoints
            auto &l = b.from(fit_menu, 4);
            return probability(call(F(chi_squared_test), l, cdfs[in.pick(5)], categories, n, s.data + 16), "fit");
        }
        case 4: {
            auto &l = b.from(sign_menu, 4);
            return probability(call(F(sign_test), l, in.count(200), s.data), "sign_test");
        }
        case 5: {
            const int n1 = in.count(200), n2 = in.count(200);
            const T p = call(F(wilcoxon_rank_sum), b.from(rank_sum_menu, 3), n1, s.data, n2, s.data + 300);
            return probability(p, "wilcoxon_rank_sum");
        }
        default: {
            const int n = in.one_in(8) ? 1990 + in.pick(20) : in.count(60);
            T statistic = T(-7);
            const bool lilliefors = in.one_in(2);
            List l;  // the statistic's keyword and address only
            l.words[0] = lilliefors ? ZORVS_LILLIEFORS : ZORVS_SHAPIRO_WILK;
            l.words[1] = reinterpret_cast<std::intptr_t>(&statistic);
            l.n_words = 3;
            probability(call(F(normality_test), l, n, s.data), "normality_test");
            if (!lilliefors && statistic != T(-7))
                require(std::isnan(statistic) || (statistic >= 0 && statistic <= 1), "normality_test", "W", statistic);
        }
    }
}

}  // namespace zorvs_fuzz::tests

ZORVS_FUZZ_TARGET(tests)
