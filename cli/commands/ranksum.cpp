// ranksum.cpp - the Wilcoxon rank-sum test of two samples:
// zorvs_d_wilcoxon_rank_sum with its ten statistics.
//
// Operands: RESPONSE GROUP, GROUP with exactly two levels (the first to
// appear is sample 1); without them the first numeric column grouped by
// the first text column.  --fuzz sets the tolerance under which sorted
// neighbours count as tied.
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

const char *const stat_names[10] = {
    "W (ties low)",  "n1 (N+1) - W low",   "P (ties low)",   "W (ties high)", "n1 (N+1) - W high",
    "P (ties high)", "W (midranks)",      "std. dev. of W", "z",             "two-sided p",
};

int run(Context &ctx) {
    const std::size_t response = operand_column(ctx, 0, [&] { return first_numeric(ctx); });
    const std::size_t group = operand_column(ctx, 1, [&] { return first_text(ctx); });
    GroupedResponses g = grouped(ctx, response, group);
    if (g.names.size() != 2)
        data_error("the group column '" + ctx.data.column(group).name + "' must hold two groups, not " +
                   std::to_string(g.names.size()));
    std::vector<double> stats(10);
    double *x = g.y.data(), *y = g.y.data() + g.sizes[0];
    if (ctx.args.has("fuzz"))
        zorvs_d_wilcoxon_rank_sum(g.sizes[0], x, g.sizes[1], y, ZORVS_FUZZ, ctx.args.real("fuzz", 0.0),
                                  ZORVS_STAT_USER, stats.data(), 0);
    else
        zorvs_d_wilcoxon_rank_sum(g.sizes[0], x, g.sizes[1], y, ZORVS_STAT_USER, stats.data(), 0);
    library_check();
    Matrix m = result(ctx.title("Wilcoxon rank-sum test of " + ctx.data.column(response).name + ": " + g.names[0] +
                                " against " + g.names[1]),
                      10, 1);
    m.row_labels.assign(stat_names, stat_names + 10);
    m.column_labels = {"value"};
    m.values = stats;
    ctx.out->matrix(m);
    ctx.out->note("W is the rank sum of " + g.names[0] + "; P are one-sided probabilities with Edgeworth's correction.");
    return status_ok;
}

}  // namespace

const Command ranksum_command{
    "ranksum",
    "Wilcoxon rank-sum test of two samples",
    "[RESPONSE [GROUP]]",
    "Wilcoxon rank-sum test of RESPONSE between the two groups of GROUP (by\n"
    "default the first numeric and the first text column): the rank sums\n"
    "with ties given the lowest, highest and middle ranks, one-sided\n"
    "probabilities, and the normal approximation with its two-sided p-value.",
    "toothgrowth.csv",
    {
        {"fuzz", "F", "sorted values at most F apart are tied (default 100 eps times the largest)"},
    },
    run,
};

}  // namespace zcli
