// compare.cpp - multiple comparisons of group means by the Student-Newman-
// Keuls test, zorvs_d_multiple_comparisons, on the means, the error mean
// square and its degrees of freedom of zorvs_d_anova_oneway.
//
// Operands as for `anova`.  The standard error of a mean is sqrt(MSE / n)
// with n the common group size; with groups of different sizes n is their
// harmonic mean (the usual approximation for unequal sizes, Kramer 1956),
// and a note says so.  The degrees of freedom are those of error, truncated
// to a whole number as the routine takes them.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    const std::size_t response = operand_column(ctx, 0, [&] { return first_numeric(ctx); });
    const std::size_t group = operand_column(ctx, 1, [&] { return first_text(ctx); });
    GroupedResponses g = grouped(ctx, response, group);
    const std::size_t groups = g.names.size();
    const int k = static_cast<int>(groups);
    std::vector<double> table(15), means(groups);
    std::vector<int> counts(groups);
    zorvs_d_anova_oneway(k, g.sizes.data(), g.y.data(), ZORVS_ANOVA_TABLE_USER, table.data(),
                         ZORVS_GROUP_COUNTS_USER, counts.data(), ZORVS_GROUP_MEANS_USER, means.data(), 0);
    library_check();

    double reciprocal = 0;
    bool equal = true;
    for (int c : counts) {
        reciprocal += 1.0 / c;
        equal = equal && c == counts[0];
    }
    const double n_mean = equal ? counts[0] : static_cast<double>(groups) / reciprocal;
    const double std_error = std::sqrt(table[7] / n_mean);
    const int df = static_cast<int>(table[1]);
    const double alpha = ctx.args.real("alpha", 0.01);
    std::vector<int> runs(groups > 1 ? groups - 1 : 1);
    zorvs_d_multiple_comparisons(k, means.data(), df, std_error, ZORVS_ALPHA, alpha, ZORVS_RETURN_USER, runs.data(), 0);
    library_check();

    // The routine reports on the means in ascending order.
    std::vector<std::size_t> order(groups);
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return means[a] < means[b]; });
    char head[96];
    std::snprintf(head, sizeof head, "Student-Newman-Keuls test at level %g", alpha);
    Matrix m = result(ctx.title(head), groups, 3);
    m.row_head = ctx.data.column(group).name;
    m.column_labels = {"count", "mean", "run"};
    for (std::size_t r = 0; r < groups; ++r) {
        m.row_labels.push_back(g.names[order[r]]);
        m.at(r, 0) = counts[order[r]];
        m.at(r, 1) = means[order[r]];
        m.at(r, 2) = r + 1 < groups ? runs[r] : std::nan("");
    }
    ctx.out->matrix(m);
    Matrix e = result("Error of a mean", 1, 3);
    e.row_labels = {ctx.data.column(response).name};
    e.column_labels = {"std. error", "df", "group size"};
    e.values = {std_error, static_cast<double>(df), n_mean};
    ctx.out->matrix(e);
    ctx.out->note("run: the number of sorted means from this one on that do not differ (0: in an earlier run).");
    for (std::size_t r = 0; r + 1 < groups; ++r) {
        if (runs[r] < 2) continue;
        std::string line = "Not different:";
        for (std::size_t s = r; s < r + static_cast<std::size_t>(runs[r]); ++s) line += " " + g.names[order[s]];
        ctx.out->note(line);
    }
    if (!equal) ctx.out->note("Groups of different sizes: the group size is their harmonic mean.");
    return status_ok;
}

}  // namespace

const Command compare_command{
    "compare",
    "multiple comparisons of group means (Student-Newman-Keuls)",
    "[RESPONSE [GROUP]]",
    "Student-Newman-Keuls test on the means of RESPONSE in the groups of GROUP\n"
    "(by default the first numeric and the first text column), with the\n"
    "standard error of a mean from the error mean square of the one-way\n"
    "analysis of variance: the sorted means and the runs of them that do not\n"
    "differ at the level --alpha.",
    "insectsprays.csv",
    {
        {"alpha", "A", "significance level, 0.01 to 0.1 (default 0.01)"},
    },
    run,
};

}  // namespace zcli
