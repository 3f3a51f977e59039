// anova.cpp - one-way analysis of variance: zorvs_d_anova_oneway with its
// table, the group statistics and, on request, simultaneous confidence
// intervals on all differences of group means.
//
// Operands: the response and the group column; without them the first
// numeric column grouped by the first text column.  Groups are taken in
// the order of their first appearance in the file, and a row with no group
// is left out; a missing response is passed on as NaN, which the library
// leaves out of its group (and which rules out the comparisons).
#include <cstdio>
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

const struct Method {
    const char *name;
    int keyword;   // the _USER form of the method's keyword
    const char *title;
} methods[] = {
    {"tukey", ZORVS_TUKEY_USER, "Tukey"},
    {"dunn-sidak", ZORVS_DUNN_SIDAK_USER, "Dunn-Sidak"},
    {"bonferroni", ZORVS_BONFERRONI_USER, "Bonferroni"},
    {"scheffe", ZORVS_SCHEFFE_USER, "Scheffe"},
    {"one-at-a-time", ZORVS_ONE_AT_A_TIME_USER, "one-at-a-time"},
};

int run(Context &ctx) {
    const std::size_t response = operand_column(ctx, 0, [&] { return first_numeric(ctx); });
    const std::size_t group = operand_column(ctx, 1, [&] { return first_text(ctx); });
    GroupedResponses g = grouped(ctx, response, group);
    const int k = static_cast<int>(g.names.size());
    const std::size_t groups = g.names.size(), pairs = groups * (groups - 1) / 2;
    auto given = ctx.args.value("method");
    const Method *method = given ? &choose(methods, *given, "method") : nullptr;
    const double confidence = ctx.args.real("confidence", 95.0);

    std::vector<double> table(15), means(groups), sds(groups), intervals(pairs * 5 + 1);
    std::vector<int> counts(groups);
    if (!method)
        zorvs_d_anova_oneway(k, g.sizes.data(), g.y.data(), ZORVS_ANOVA_TABLE_USER, table.data(),
                             ZORVS_GROUP_COUNTS_USER, counts.data(), ZORVS_GROUP_MEANS_USER, means.data(),
                             ZORVS_GROUP_STD_DEVS_USER, sds.data(), 0);
    else
        zorvs_d_anova_oneway(k, g.sizes.data(), g.y.data(), ZORVS_ANOVA_TABLE_USER, table.data(),
                             ZORVS_GROUP_COUNTS_USER, counts.data(), ZORVS_GROUP_MEANS_USER, means.data(),
                             ZORVS_GROUP_STD_DEVS_USER, sds.data(), ZORVS_CONFIDENCE, confidence, method->keyword,
                             intervals.data(), 0);
    library_check();

    const std::string &name = ctx.data.column(response).name;
    anova_output(*ctx.out, table.data(), ctx.title("Analysis of variance of " + name), "between groups");
    Matrix stats = result("Groups", groups, 3);
    stats.row_head = ctx.data.column(group).name;
    stats.row_labels = g.names;
    stats.column_labels = {"count", "mean", "std. dev."};
    for (std::size_t i = 0; i < groups; ++i) {
        stats.at(i, 0) = counts[i];
        stats.at(i, 1) = means[i];
        stats.at(i, 2) = sds[i];
    }
    ctx.out->matrix(stats);
    if (method) {
        char level[32];
        std::snprintf(level, sizeof level, "%g", confidence);
        Matrix c = result(std::string(method->title) + " intervals (" + level + " per cent)", pairs, 3);
        c.row_head = "difference";
        c.column_labels = {"estimate", "lower", "upper"};
        for (std::size_t r = 0; r < pairs; ++r) {
            // Group numbers come back from 1, as reals.
            const auto i = static_cast<std::size_t>(intervals[5 * r]) - 1, j = static_cast<std::size_t>(intervals[5 * r + 1]) - 1;
            c.row_labels.push_back(g.names[i] + " - " + g.names[j]);
            for (std::size_t m = 0; m < 3; ++m) c.at(r, m) = intervals[5 * r + 2 + m];
        }
        ctx.out->matrix(c);
    }
    return status_ok;
}

}  // namespace

const Command anova_command{
    "anova",
    "one-way analysis of variance",
    "[RESPONSE [GROUP]]",
    "Analysis of variance of RESPONSE between the groups of GROUP (columns by\n"
    "name or number from 1; by default the first numeric and the first text\n"
    "column): the table, the count, mean and standard deviation of each\n"
    "group, and with --method simultaneous confidence intervals on all\n"
    "pairwise differences of means.",
    "plantgrowth.csv",
    {
        {"method", "M", "intervals: tukey, dunn-sidak, bonferroni, scheffe, one-at-a-time"},
        {"confidence", "P", "confidence level of the intervals, per cent (default 95)"},
    },
    run,
};

}  // namespace zcli
