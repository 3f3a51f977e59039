// normality.cpp - tests of normality of a column: Shapiro-Wilk's W
// (default) or Lilliefors' test, zorvs_d_normality_test.  Missing values
// are left out by the routine.
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    std::vector<std::size_t> columns = ctx.select(ctx.args.operands());
    const bool lilliefors = ctx.args.has("lilliefors");
    const int n = ctx.data.int_rows();
    Matrix m = result(ctx.title(lilliefors ? "Lilliefors test of normality" : "Shapiro-Wilk test of normality"),
                      columns.size(), 2);
    m.column_labels = {lilliefors ? "D" : "W", "p-value"};
    for (std::size_t k = 0; k < columns.size(); ++k) {
        double *x = const_cast<double *>(ctx.data.numbers(columns[k]));
        double statistic = 0;
        const double p = zorvs_d_normality_test(n, x, lilliefors ? ZORVS_LILLIEFORS : ZORVS_SHAPIRO_WILK, &statistic, 0);
        library_check();
        m.row_labels.push_back(ctx.data.column(columns[k]).name);
        m.at(k, 0) = statistic;
        m.at(k, 1) = p;
    }
    ctx.out->matrix(m);
    if (lilliefors) ctx.out->note("Lilliefors p-values are 0.01 below 0.01 and 0.5 above 0.1.");
    return status_ok;
}

}  // namespace

const Command normality_command{
    "normality",
    "Shapiro-Wilk and Lilliefors tests of normality",
    "[COLUMN...]",
    "Shapiro-Wilk's W test (3 to 2000 values) or, with --lilliefors, the\n"
    "Lilliefors test (5 or more) that each COLUMN (default: every numeric\n"
    "column) comes from a normal distribution; missing values are left out.",
    "precip.csv",
    {
        {"lilliefors", "", "Lilliefors' test with the Dallal-Wilkinson p-value"},
    },
    run,
};

}  // namespace zcli
