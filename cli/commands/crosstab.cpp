// crosstab.cpp - a two-way contingency table and its tests:
// zorvs_d_contingency_table with the Pearson and likelihood-ratio tests,
// expected counts, contributions, the chi-squared based statistics and the
// 23 measures of association.
//
// The table is made from two class columns, a cell counting its rows or,
// with --freq, the sum of their frequencies; levels stand in the order of
// their first appearance, and a row with a missing label or frequency is
// left out.  With --wide the data is the table itself: its numeric columns
// (or those named) are the columns of counts and its first text column, if
// any, labels the rows.  On the sample (counts of hair and eye colour by
// sex) the defaults are the columns Hair and Eye with the frequencies Freq.
#include <cmath>
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

const char *const measure_names[23] = {
    "gamma",          "Kendall tau-b",     "Stuart tau-c",        "Somers D (row)",   "Somers D (col)",
    "Pearson r",      "Spearman rho",      "GK tau (row)",        "GK tau (col)",     "uncertainty (sym)",
    "uncertainty (row)", "uncertainty (col)", "lambda (sym)",     "lambda (row)",     "lambda (col)",
    "lambda* (row)",  "lambda* (col)",     "linear trend",        "Kruskal-Wallis (rows)", "Kruskal-Wallis (cols)",
    "kappa",          "symmetry",          "sign symmetry",
};

struct Table {
    std::vector<std::string> rows, columns;
    std::vector<double> counts;   // rows x columns, row-major
};

Table long_table(Context &ctx) {
    const Data &data = ctx.data;
    const auto &ops = ctx.args.operands();
    std::size_t r, c;
    if (ops.size() >= 2) {
        r = data.find(ops[0]);
        c = data.find(ops[1]);
    } else if (ctx.common.file.empty() && ops.empty()) {
        r = data.find("Hair");
        c = data.find("Eye");
        if (ctx.common.freq_column.empty()) ctx.common.freq_column = "Freq";
    } else {
        usage_error("name the row and the column class columns (or use --wide)");
    }
    Data::Groups lr = data.groups(r), lc = data.groups(c);
    const double *f = ctx.frequencies();
    Table t{lr.levels, lc.levels, std::vector<double>(lr.levels.size() * lc.levels.size(), 0.0)};
    for (std::size_t i = 0; i < data.rows(); ++i) {
        if (lr.of_row[i] < 0 || lc.of_row[i] < 0 || (f && std::isnan(f[i]))) continue;
        t.counts[static_cast<std::size_t>(lr.of_row[i]) * lc.levels.size() + static_cast<std::size_t>(lc.of_row[i])] +=
            f ? f[i] : 1.0;
    }
    return t;
}

Table wide_table(const Context &ctx) {
    const Data &data = ctx.data;
    Table t;
    std::vector<std::size_t> columns = ctx.select(ctx.args.operands());
    for (std::size_t j : columns) t.columns.push_back(data.column(j).name);
    std::size_t label = data.columns();
    for (std::size_t j = 0; j < data.columns() && label == data.columns(); ++j)
        if (!data.column(j).numeric) label = j;
    std::vector<std::string> names = label < data.columns() ? data.labels(label) : std::vector<std::string>{};
    for (std::size_t i = 0; i < data.rows(); ++i) t.rows.push_back(names.empty() ? std::to_string(i + 1) : names[i]);
    t.counts = ctx.matrix(columns);
    return t;
}

Matrix labelled(const std::string &title, const Table &t, const double *values, bool margins) {
    const std::size_t nr = t.rows.size() + margins, nc = t.columns.size() + margins;
    Matrix m = result(title, nr, nc);
    m.values.assign(values, values + nr * nc);
    m.row_labels = t.rows;
    m.column_labels = t.columns;
    if (margins) {
        m.row_labels.push_back("total");
        m.column_labels.push_back("total");
    }
    return m;
}

int run(Context &ctx) {
    Table t = ctx.args.has("wide") ? wide_table(ctx) : long_table(ctx);
    const int nr = static_cast<int>(t.rows.size()), nc = static_cast<int>(t.columns.size());
    const std::size_t cells = static_cast<std::size_t>(nr + 1) * static_cast<std::size_t>(nc + 1);
    std::vector<double> expected(cells), contributions(cells), chi_stats(5), measures(23 * 5);
    int df = 0, df_lr = 0;
    double chi2 = 0, p = 0, g2 = 0, p_lr = 0;
    zorvs_d_contingency_table(nr, nc, t.counts.data(), ZORVS_CHI_SQUARED, &df, &chi2, &p, ZORVS_LRT, &df_lr, &g2, &p_lr,
                              ZORVS_EXPECTED_USER, expected.data(), ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER,
                              contributions.data(), ZORVS_CHI_SQUARED_STATISTICS_USER, chi_stats.data(),
                              ZORVS_STATISTICS_USER, measures.data(), 0);
    library_check();

    Matrix tests = result(ctx.title("Tests of independence"), 2, 3);
    tests.row_labels = {"Pearson chi-squared", "likelihood ratio G^2"};
    tests.column_labels = {"df", "statistic", "p-value"};
    tests.values = {static_cast<double>(df), chi2, p, static_cast<double>(df_lr), g2, p_lr};
    ctx.out->matrix(tests);
    ctx.out->matrix(labelled("Counts", t, t.counts.data(), false));
    ctx.out->matrix(labelled("Expected counts", t, expected.data(), true));
    ctx.out->matrix(labelled("Contributions to chi-squared", t, contributions.data(), true));
    Matrix s = result("Chi-squared statistics", 5, 1);
    s.row_labels = {"exact mean", "exact std. dev.", "phi", "contingency coef.", "Cramer's V"};
    s.column_labels = {"value"};
    s.values = chi_stats;
    ctx.out->matrix(s);
    Matrix a = result("Measures of association", 23, 5);
    a.row_labels.assign(measure_names, measure_names + 23);
    a.column_labels = {"statistic", "std. error", "s.e. (null)", "t", "p-value"};
    a.values = measures;
    ctx.out->matrix(a);
    return status_ok;
}

}  // namespace

const Command crosstab_command{
    "crosstab",
    "contingency table and its chi-squared tests",
    "[ROW COLUMN | COUNT-COLUMN...]",
    "Two-way table of the class columns ROW and COLUMN (cells count rows, or\n"
    "sum --freq), with Pearson's and the likelihood-ratio test of\n"
    "independence, expected counts, contributions to chi-squared, phi,\n"
    "Cramer's V and 23 measures of association.  With --wide the file is the\n"
    "table: the COUNT-COLUMNs (default: the numeric ones) hold the counts.",
    "haireyecolor.csv",
    {
        {"wide", "", "the file is the table of counts, one row per row of the table"},
    },
    run,
};

}  // namespace zcli
