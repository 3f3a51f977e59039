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

struct ChiRef {
    const char *name;
    double x2, df, p, g2, p_g2;
    std::vector<double> expected, contributions;
};
const ChiRef chi_refs[] = {
#include "data/stat/categorical/contingency_chisq_ref.inc"
};
struct MeasureRef {
    const char *name;
    int r, c;
    std::vector<double> counts, chi_statistics, statistics;
};
const MeasureRef measure_refs[] = {
#include "data/stat/categorical/contingency_measures_ref.inc"
};

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

TYPED_TEST(ContingencyTable, ChiSquaredAgreesWithR) {
    using T = TypeParam;
    Quiet quiet;  // tables with small expected counts warn
    Worst stat("chi-squared statistics, expected, contributions (relative)"), prob("p-values (absolute)");
    ASSERT_EQ(std::size(chi_refs), std::size(measure_refs));
    for (std::size_t k = 0; k < std::size(chi_refs); ++k) {
        const ChiRef &ref = chi_refs[k];
        const MeasureRef &m = measure_refs[k];
        SCOPED_TRACE(ref.name);
        std::vector<T> table(m.counts.begin(), m.counts.end());
        std::vector<T> expected((m.r + 1) * (m.c + 1));
        T *contributions = nullptr, x2 = 0, p = 0, g2 = 0, p_g2 = 0;
        int df = 0, df_g2 = 0;
        const T got = contingency<T>(m.r, m.c, table, ZORVS_CHI_SQUARED, &df, &x2, &p, ZORVS_LRT, &df_g2, &g2, &p_g2,
                                     ZORVS_EXPECTED_USER, expected.data(), ZORVS_CHI_SQUARED_CONTRIBUTIONS,
                                     &contributions);
        ASSERT_NE(contributions, nullptr);
        EXPECT_EQ(df, static_cast<int>(ref.df));
        EXPECT_EQ(df_g2, df);
        EXPECT_EQ(got, p);
        const double values[][3] = {{x2, ref.x2, 0}, {g2, ref.g2, 0}, {p, ref.p, 1}, {p_g2, ref.p_g2, 1}};
        for (const auto &v : values) {
            EXPECT_NEAR(v[0], v[1], tolerance<T>(v[1], v[2] != 0)) << (&v - values);
            (v[2] != 0 ? prob : stat).add(v[2] != 0 ? std::fabs(v[0] - v[1]) : relative_error(v[0], v[1]));
        }
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_NEAR(expected[i], ref.expected[i], tolerance<T>(ref.expected[i], false)) << i;
            EXPECT_NEAR(contributions[i], ref.contributions[i], tolerance<T>(ref.contributions[i], false)) << i;
            stat.add(relative_error(expected[i], ref.expected[i]));
            stat.add(relative_error(contributions[i], ref.contributions[i], 1e-6));
        }
        std::free(contributions);
        for (std::size_t i = 0; i < table.size(); ++i) EXPECT_EQ(table[i], T(m.counts[i])) << "table unchanged";
    }
}

// Column 4 of the statistics (and col 3 of row 22, an exact p-value) are
// p-values; the rest are statistics and standard errors.
TYPED_TEST(ContingencyTable, MeasuresAgreeWithTheirFormulas) {
    using T = TypeParam;
    Quiet quiet;  // tables with small expected counts warn
    Worst stat("measures and standard errors (relative)"), prob("their p-values (absolute)");
    for (const MeasureRef &m : measure_refs) {
        SCOPED_TRACE(m.name);
        std::vector<T> table(m.counts.begin(), m.counts.end()), chi(5), statistics(23 * 5, T(-1));
        T *allocated = nullptr;
        contingency<T>(m.r, m.c, table, ZORVS_CHI_SQUARED_STATISTICS_USER, chi.data(), ZORVS_STATISTICS, &allocated);
        ASSERT_NE(allocated, nullptr);
        for (int k = 0; k < 5; ++k) {
            EXPECT_TRUE(agrees(chi[k], m.chi_statistics[k], tolerance<T>(m.chi_statistics[k], false))) << k;
            if (!std::isnan(m.chi_statistics[k])) stat.add(relative_error(chi[k], m.chi_statistics[k]));
        }
        for (int k = 0; k < 23 * 5; ++k) {
            const double want = m.statistics[k], got = allocated[k];
            const bool p_value = k % 5 == 4 || k == 22 * 5 + 3;
            SCOPED_TRACE(::testing::Message() << "row " << k / 5 << " column " << k % 5);
            EXPECT_TRUE(agrees(got, want, tolerance<T>(want, p_value))) << got << " against " << want;
            if (!std::isnan(want)) (p_value ? prob : stat).add(p_value ? std::fabs(got - want) : relative_error(got, want, 0.01));
        }
        std::free(allocated);
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
    Quiet quiet;
    std::vector<T> table = {1, 2, 3, -1};
    for (int nth = 0; nth <= 12; ++nth) {
        SCOPED_TRACE(nth);
        std::vector<T> user(9, T(7)), stats(115, T(7));
        T sentinel = 7, *expected = &sentinel, x2 = 7, p = 7;
        int df = 7;
        zorvs_e1mes(0, 0, " ");  // no message on record
        zorvs::allocation_failure_countdown = nth;
        const T got = contingency<T>(2, 2, table, ZORVS_EXPECTED, &expected, ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER,
                                     user.data(), ZORVS_STATISTICS_USER, stats.data(), ZORVS_CHI_SQUARED, &df, &x2, &p);
        zorvs::allocation_failure_countdown = 0;
        table[3] = 4;  // valid from the second call on
        if (nth > 0 && zorvs_error_type() < 4) {
            std::free(expected);
            break;  // every allocation had
        }
        EXPECT_EQ(got, T(0));
        EXPECT_TRUE(nth == 0 ? zorvs_error_code() == 11140 : zorvs_error_code() >= 200 && zorvs_error_code() <= 202);
        EXPECT_EQ(expected, &sentinel);
        EXPECT_EQ(user, std::vector<T>(9, T(7)));
        EXPECT_EQ(stats, std::vector<T>(115, T(7)));
        EXPECT_TRUE(df == 7 && x2 == T(7) && p == T(7));
    }
    int df = 0;
    T x2 = 0, p = 0;
    EXPECT_EQ(contingency<T>(2, 2, table, ZORVS_CHI_SQUARED, &df, &x2, &p, 99999), T(0));
    EXPECT_EQ(zorvs_error_code(), 11001);
    EXPECT_EQ(slots("i1=99999 i2=8"), "i1=99999 i2=8");
    EXPECT_EQ(twin<T>(zorvs_f_contingency_table, zorvs_d_contingency_table)(2, 2, nullptr, 0), T(0));
    EXPECT_EQ(zorvs_error_code(), 150);
    EXPECT_EQ(slots("l1=table"), "l1=table");
}

}  // namespace
