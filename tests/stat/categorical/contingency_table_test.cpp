// Tests of the contingency table: chi-squared rows against R's chisq.test
// (tests/data/stat/categorical/make_contingency_chisq.R), the exact moments
// and the 23 measures with their standard errors against their formulas in
// 50-digit and rational arithmetic (make_contingency_measures.py), on the
// margins of HairEyeColor, UCBAdmissions and Titanic, a 2 x 2, a square and a
// fractional table; then the refusals, notes and warnings, and that a
// refused call writes nothing.
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

#include "data/stat/categorical/contingency_chisq_ref.inc"
#include "data/stat/categorical/contingency_measures_ref.inc"

ZORVS_TWIN_SUITE(ContingencyTable);

template <class T, class... Args>
T contingency(int r, int c, std::vector<T> &table, Args... args) {
    return twin<T>(zorvs_f_contingency_table, zorvs_d_contingency_table)(r, c, table.data(), args..., 0);
}

// Statistics to 1e-9 relative in double and to 2 epsilon in single (the
// single twin computes in double and rounds), relative to 0.01 at least: a
// measure that cancels to 0 keeps an absolute error of a few epsilon.
// P-values, as 1 minus a distribution function, to an absolute 5e-12 in
// double, the accuracy of the chi-squared distribution function in its
// asymptotic branch for an odd df, and to 1 epsilon in single.
template <class T>
double tolerance(double want, bool p_value) {
    const bool single = std::is_same_v<T, float>;
    return p_value ? (single ? 1.2e-7 : 5e-12) : (single ? 2.4e-7 : 1e-9) * std::fmax(std::fabs(want), 0.01);
}

// In the measures, column 4 (and column 3 of row 22, an exact p-value)
// holds p-values; the rest are statistics and standard errors.
TYPED_TEST(ContingencyTable, ChiSquaredAndMeasuresAgreeWithReferences) {
    using T = TypeParam;
    Quiet quiet;  // tables with small expected counts warn
    Worst stat("chi-squared statistics, expected, contributions, measures, standard errors (relative)");
    Worst prob("p-values (absolute)");
    // got against want, a p-value or a statistic
    auto check = [&](double got, double want, bool p_value, double floor = 0.01) {
        EXPECT_TRUE(agrees(got, want, tolerance<T>(want, p_value))) << got << " against " << want;
        if (!std::isnan(want)) (p_value ? prob : stat).add(p_value ? std::fabs(got - want) : relative_error(got, want, floor));
    };
    ASSERT_EQ(std::size(chi_refs), std::size(measure_refs));
    for (std::size_t k = 0; k < std::size(chi_refs); ++k) {
        const ChiRef &ref = chi_refs[k];
        const MeasureRef &m = measure_refs[k];
        SCOPED_TRACE(ref.name);
        std::vector<T> table(m.counts.begin(), m.counts.end()), expected((m.r + 1) * (m.c + 1)), chi(5);
        T *contributions = nullptr, *statistics = nullptr, x2 = 0, p = 0, g2 = 0, p_g2 = 0;
        int df = 0, df_g2 = 0;
        const T got = contingency<T>(m.r, m.c, table, ZORVS_CHI_SQUARED, &df, &x2, &p, ZORVS_LRT, &df_g2, &g2, &p_g2,
                                     ZORVS_EXPECTED_USER, expected.data(), ZORVS_CHI_SQUARED_CONTRIBUTIONS,
                                     &contributions, ZORVS_CHI_SQUARED_STATISTICS_USER, chi.data(), ZORVS_STATISTICS,
                                     &statistics);
        ASSERT_TRUE(contributions && statistics);
        EXPECT_TRUE(df == static_cast<int>(ref.df) && df_g2 == df && got == p);
        for (const auto &[v, want, p_value] : {std::tuple{x2, ref.x2, 0}, {g2, ref.g2, 0}, {p, ref.p, 1}, {p_g2, ref.p_g2, 1}})
            check(v, want, p_value);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            check(expected[i], ref.expected[i], false, 0);
            check(contributions[i], ref.contributions[i], false, 1e-6);
        }
        for (int i = 0; i < 5; ++i) check(chi[i], m.chi_statistics[i], false, 0);
        for (int i = 0; i < 23 * 5; ++i) {
            SCOPED_TRACE(::testing::Message() << "row " << i / 5 << " column " << i % 5);
            check(statistics[i], m.statistics[i], i % 5 == 4 || i == 22 * 5 + 3);
        }
        std::free(contributions);
        std::free(statistics);
        for (std::size_t i = 0; i < table.size(); ++i) EXPECT_EQ(table[i], T(m.counts[i])) << "table unchanged";
    }
}

// Messages: (type, code) of each call, in order of raising, and the slots of
// the last.  "keys" 1 asks for the Pearson triple only.
TYPED_TEST(ContingencyTable, RefusalsWarningsAndNotes) {
    using T = TypeParam;
    struct Row {
        const char *what;
        int r, c;
        std::vector<double> counts;
        std::vector<std::pair<int, int>> codes;
        const char *slots;
        int keys = 0;
    };
    // Both symmetry rows empty, then a zero null error in rows 0 to 6 (in
    // rows 0 to 4 only for a 3 x 3 diagonal).
    const std::vector<std::pair<int, int>> diagonal = {{6, 11131}, {6, 11132}, {6, 11149}, {6, 11149}, {6, 11149},
                                                       {6, 11149}, {6, 11149}, {6, 11134}, {6, 11133}};
    const Row rows[] = {
        {"1 x 3", 1, 3, {1, 2, 3}, {{5, 11136}}, "i1=1 l1=n_rows"},
        {"3 x 1", 3, 1, {1, 2, 3}, {{5, 11136}}, "i1=1 l1=n_columns"},
        {"negative, columns first", 2, 2, {1, -2, -3, 4}, {{5, 11140}}, "i1=2 i2=1 r1=-3"},
        {"NaN", 2, 2, {1, 2, 3, nan}, {{5, 11140}}, "i1=2 i2=2 r1=nan"},
        {"zero row", 3, 2, {1, 2, 0, 0, 3, 4}, {{5, 11141}}, ""},
        {"zero column", 2, 3, {1, 0.0005, 2, 3, 0.0004, 4}, {{5, 11141}}, ""},
        {"small, df 36", 7, 7, std::vector<double>(49, 1.0), {{3, 11145}}, ""},
        {"small, none below 2", 2, 2, {3, 3, 3, 3}, {{3, 11147}}, ""},
        {"small, one below 2", 2, 2, {1, 2, 2, 3}, {{3, 11146}}, "i1=2"},
        {"small, one below 1", 2, 2, {1, 1, 1, 10}, {{3, 11146}}, "i1=1"},
        // The warning on small expected counts waits for the return and is
        // displaced there by the later immediate message.
        {"N = 3", 2, 2, {1, 0.5, 0.5, 1}, {{6, 11148}}, ""},
        {"diagonal", 2, 2, {50, 0, 0, 50}, diagonal, "l1=table l2=Somer(col) i1=4 i2=3 i3=4 i4=4"},
        {"diagonal, Pearson only", 2, 2, {50, 0, 0, 50}, {}, "", 1},
        {"3 x 3 diagonal", 3, 3, {10, 0, 0, 0, 10, 0, 0, 0, 10}, {diagonal.begin(), diagonal.end() - 2}, ""},
        {"empty symmetric pair", 3, 3, {5, 0, 2, 0, 6, 3, 1, 4, 7}, {{6, 11131}}, "i1=21"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        Quiet quiet;
        CodeLog log;
        std::vector<T> table(row.counts.begin(), row.counts.end());
        T x2 = -1, p = -1;
        int df = -1;
        const T got = row.keys == 1 ? contingency<T>(row.r, row.c, table, ZORVS_CHI_SQUARED, &df, &x2, &p)
                                    : contingency<T>(row.r, row.c, table);
        // Immediate messages (types 5, 6) are logged when raised, and the
        // return logs the latest message once more.
        std::vector<std::pair<int, int>> want = row.codes;
        if (!want.empty() && want.back().first >= 5) want.push_back(want.back());
        EXPECT_EQ(log.entries(), want);

        EXPECT_EQ(slots(row.slots), row.slots);
        if (!row.codes.empty() && row.codes[0].first == 5) {
            EXPECT_EQ(got, T(0));
        }
        for (std::size_t i = 0; i < table.size(); ++i)
            EXPECT_TRUE(agrees(table[i], static_cast<T>(row.counts[i]))) << "table unchanged";
    }
}

// A refused call writes nothing: not the caller's arrays, not the triples,
// not the addresses; so also when the n-th allocation fails.  An unknown
// keyword is refused with its position, a null table by name.
TYPED_TEST(ContingencyTable, RefusedCallWritesNothing) {
    using T = TypeParam;
    std::vector<T> table = {1, 2, 3, -1}, user(9, T(7)), stats(115, T(7));
    T sentinel = 7, *expected = &sentinel, x2 = 7, p = 7;
    int df = 7;
    auto untouched = [&] {
        return expected == &sentinel && user == std::vector<T>(9, T(7)) && stats == std::vector<T>(115, T(7)) &&
               df == 7 && x2 == T(7) && p == T(7);
    };
    expect_rows({
        {ZORVS_CALL(contingency<T>(2, 2, table, ZORVS_EXPECTED, &expected, ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER,
                                   user.data(), ZORVS_STATISTICS_USER, stats.data(), ZORVS_CHI_SQUARED, &df, &x2, &p)),
         0, 5, 11140},
        {ZORVS_CALL(untouched()), 1, -1},
        {ZORVS_CALL(contingency<T>(2, 2, table, ZORVS_CHI_SQUARED, &df, &x2, &p, 99999)), 0, 5, 11001, "i1=99999 i2=8"},
        {ZORVS_CALL(ZORVS_TWIN(f_contingency_table, d_contingency_table)(2, 2, nullptr, 0)), 0, 5, 150, "l1=table"},
    });
    Quiet quiet;
    table[3] = 4;
    for (int nth = 1;; ++nth) {
        zorvs::allocation_failure_countdown = nth;
        const T got = contingency<T>(2, 2, table, ZORVS_EXPECTED, &expected, ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER,
                                     user.data(), ZORVS_STATISTICS_USER, stats.data(), ZORVS_CHI_SQUARED, &df, &x2, &p);
        if (zorvs::allocation_failure_countdown > 0) break;  // no n-th allocation: the results stand
        EXPECT_TRUE(got == 0 && zorvs_error_code() >= 200 && zorvs_error_code() <= 202 && untouched()) << nth;
    }
    zorvs::allocation_failure_countdown = 0;
    std::free(expected);
}

}  // namespace
