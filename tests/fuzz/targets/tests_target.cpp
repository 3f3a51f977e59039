// tests_target.cpp - one-way analysis of variance with its multiple
// comparisons, the Student-Newman-Keuls test, contingency tables,
// chi-squared goodness of fit (with a distribution function that may
// misbehave), the sign, rank-sum and normality tests, on any data, sizes
// and keyword lists: p-values in [0, 1], W in [0, 1], group counts of
// means found alike within the groups left.
#include "fuzz_input.hpp"

namespace {

using zorvs_fuzz::Item;
using zorvs_fuzz::probability;
using zorvs_fuzz::require;

template <class T>
zorvs_fuzz::Store<T> store;

const Item anova_menu[] = {{ZORVS_ANOVA_TABLE, "a"},      {ZORVS_ANOVA_TABLE_USER, "o"},  {ZORVS_GROUP_COUNTS, "a"},
                           {ZORVS_GROUP_COUNTS_USER, "k"}, {ZORVS_GROUP_MEANS, "a"},       {ZORVS_GROUP_MEANS_USER, "o"},
                           {ZORVS_GROUP_STD_DEVS, "a"},    {ZORVS_GROUP_STD_DEVS_USER, "o"}, {ZORVS_CONFIDENCE, "r"},
                           {ZORVS_CONFIDENCE_ADR, "s"},    {ZORVS_TUKEY, "a"},             {ZORVS_TUKEY_USER, "o"},
                           {ZORVS_DUNN_SIDAK, "a"},        {ZORVS_BONFERRONI_USER, "o"},   {ZORVS_SCHEFFE, "a"},
                           {ZORVS_ONE_AT_A_TIME_USER, "o"}};
const Item snk_menu[] = {{ZORVS_ALPHA, "r"}, {ZORVS_RETURN_USER, "k"}};
const Item table_menu[] = {{ZORVS_CHI_SQUARED, "koo"},
                           {ZORVS_LRT, "koo"},
                           {ZORVS_EXPECTED, "a"},
                           {ZORVS_EXPECTED_USER, "o"},
                           {ZORVS_CHI_SQUARED_CONTRIBUTIONS, "a"},
                           {ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER, "o"},
                           {ZORVS_CHI_SQUARED_STATISTICS, "a"},
                           {ZORVS_CHI_SQUARED_STATISTICS_USER, "o"},
                           {ZORVS_STATISTICS, "a"},
                           {ZORVS_STATISTICS_USER, "o"}};
const Item fit_menu[] = {{ZORVS_CUTPOINTS, "x"},
                         {ZORVS_FREQUENCIES, "X"},
                         {ZORVS_COUNTS, ""},
                         {ZORVS_EXPECTED_GIVEN, "x"},
                         {ZORVS_N_PARAMETERS_ESTIMATED, "i"},
                         {ZORVS_CHI_SQUARED, "koo"},
                         {ZORVS_EXPECTED, "a"},
                         {ZORVS_EXPECTED_USER, "o"},
                         {ZORVS_CHI_SQUARED_CONTRIBUTIONS, "a"},
                         {ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER, "o"},
                         {ZORVS_CELL_COUNTS, "a"},
                         {ZORVS_CELL_COUNTS_USER, "o"}};
const Item sign_menu[] = {{ZORVS_PERCENTAGE, "r"},     {ZORVS_PERCENTAGE_ADR, "s"},       {ZORVS_PERCENTILE, "r"},
                          {ZORVS_PERCENTILE_ADR, "s"}, {ZORVS_N_POSITIVE_DEVIATIONS, "k"}, {ZORVS_N_ZERO_DEVIATIONS, "k"}};
const Item rank_sum_menu[] = {{ZORVS_FUZZ, "r"}, {ZORVS_FUZZ_ADR, "s"}, {ZORVS_STAT, "a"}, {ZORVS_STAT_USER, "o"}};

// Distribution functions for the goodness of fit: a proper one, one
// outside [0, 1], one that decreases, one that gives NaN.
template <class T>
T logistic(T x) { return T(1) / (T(1) + std::exp(-x)); }
template <class T>
T too_large(T x) { return T(2) + x * x; }
template <class T>
T decreasing(T x) { return T(1) - logistic(x); }
template <class T>
T missing(T) { return T(NAN); }

template <class T>
void one(zorvs_fuzz::Input &in) {
    using zorvs_fuzz::call;
    using zorvs_fuzz::twin;
    auto &s = store<T>;
    s.reset();
    in.fill(s.data, 2600);
    bool finite = true;
    for (int i = 0; i < 2600; ++i) finite = finite && std::isfinite(s.data[i]);
    zorvs_fuzz::Builder<T> b(in, s);
    switch (in.pick(7)) {
        case 0: {  // the p-value, or NaN where the table shows no F (no degrees of freedom, no spread)
            const int groups = in.count(20);
            in.fill_ints(s.ints, 40, -1, 10);
            b.add({ZORVS_ANOVA_TABLE_USER, "o"});
            T *table = s.out[0];
            table[8] = T(-7);
            auto &l = b.from(anova_menu, 5);
            const T p = call(twin<T>(zorvs_f_anova_oneway, zorvs_d_anova_oneway), l, groups, s.ints, s.data);
            const bool no_f = table[8] == T(-7) || !std::isfinite(table[8]);
            probability(p, "anova_oneway", no_f);
            break;
        }
        case 1: {
            const int groups = in.count(12), df = in.any_int();  // 30 groups take seconds
            const T se = T(in.real());
            auto &l = b.from(snk_menu, 2);
            int *r = call(twin<T>(zorvs_f_multiple_comparisons, zorvs_d_multiple_comparisons), l, groups, s.data, df, se);
            for (int i = 0; r && !zorvs_fuzz::failed() && i < groups - 1; ++i)
                require(r[i] >= 0 && r[i] <= groups - i, "multiple_comparisons", "more means alike than left", r[i]);
            s.free_result(r);
            break;
        }
        case 2: {
            const int rows = in.count(8), columns = in.count(8);
            for (int i = 0; i < 81; ++i) s.data[i] = in.one_in(10) ? T(in.real()) : T(in.pick(12));
            auto &l = b.from(table_menu, 4);
            const T p = call(twin<T>(zorvs_f_contingency_table, zorvs_d_contingency_table), l, rows, columns, s.data);
            probability(p, "contingency_table");
            break;
        }
        case 3: {
            T (*const cdfs[])(T) = {nullptr, logistic<T>, too_large<T>, decreasing<T>, missing<T>};
            const int categories = in.count(12), n = in.count(200);
            if (in.one_in(2)) std::sort(s.data, s.data + 12);  // increasing cutpoints
            auto &l = b.from(fit_menu, 4);
            const T p = call(twin<T>(zorvs_f_chi_squared_test, zorvs_d_chi_squared_test), l, cdfs[in.pick(5)],
                             categories, n, s.data + 16);
            probability(p, "chi_squared_test");
            break;
        }
        case 4: {
            auto &l = b.from(sign_menu, 4);
            probability(call(twin<T>(zorvs_f_sign_test, zorvs_d_sign_test), l, in.count(200), s.data), "sign_test");
            break;
        }
        case 5: {
            const int n1 = in.count(200), n2 = in.count(200);
            auto &l = b.from(rank_sum_menu, 3);
            probability(call(twin<T>(zorvs_f_wilcoxon_rank_sum, zorvs_d_wilcoxon_rank_sum), l, n1, s.data, n2, s.data + 300),
                        "wilcoxon_rank_sum");
            break;
        }
        default: {
            const int n = in.one_in(8) ? 1990 + in.pick(20) : in.count(60);
            T statistic = T(-7);
            const bool lilliefors = in.one_in(2);
            zorvs_fuzz::List l;  // the statistic's keyword and address only
            l.words[0] = lilliefors ? ZORVS_LILLIEFORS : ZORVS_SHAPIRO_WILK;
            l.words[1] = reinterpret_cast<std::intptr_t>(&statistic);
            l.n_words = 3;
            probability(call(twin<T>(zorvs_f_normality_test, zorvs_d_normality_test), l, n, s.data), "normality_test");
            if (!lilliefors && statistic != T(-7))
                require(std::isnan(statistic) || (statistic >= 0 && statistic <= 1), "normality_test", "W outside [0, 1]",
                        statistic);
        }
    }
    s.release();
}

}  // namespace

ZORVS_FUZZ_TWIN_TARGET(one)
