// signtest.cpp - the sign test of a percentile: zorvs_d_sign_test.
//
// Operands: COLUMN, or COLUMN MINUS for the paired differences COLUMN -
// MINUS (a row with either missing is missing).  Without operands: the
// only numeric column, or the differences of the first two, second minus
// first.  The result is the binomial probability of at least the observed
// number of values above the percentile value Q (default 0), when the
// probability of a value below it is P (default 0.5: Q is the median).
#include <cmath>
#include <cstdio>
#include <utility>
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    const auto &ops = ctx.args.operands();
    std::vector<std::size_t> columns;
    for (const std::string &o : ops) columns.push_back(ctx.data.find(o));
    if (columns.empty()) {
        columns = ctx.select({});
        if (columns.size() > 2) columns.resize(2);
        if (columns.size() == 2) std::swap(columns[0], columns[1]);
    }
    if (columns.size() > 2) usage_error("give one column, or two for their paired differences");
    const int n = ctx.data.int_rows();
    const double *a = ctx.data.numbers(columns[0]);
    std::vector<double> x(a, a + n);
    std::string name = ctx.data.column(columns[0]).name;
    if (columns.size() == 2) {
        const double *b = ctx.data.numbers(columns[1]);
        for (int i = 0; i < n; ++i) x[static_cast<std::size_t>(i)] -= b[i];
        name += " - " + ctx.data.column(columns[1]).name;
    }
    const double q = ctx.args.real("percentile", 0.0), p = ctx.args.real("percentage", 0.5);
    int positive = 0, zero = 0;
    const double prob = zorvs_d_sign_test(n, x.data(), ZORVS_PERCENTILE, q, ZORVS_PERCENTAGE, p,
                                          ZORVS_N_POSITIVE_DEVIATIONS, &positive, ZORVS_N_ZERO_DEVIATIONS, &zero, 0);
    library_check();
    double missing = 0;
    for (double v : x) missing += std::isnan(v);
    const double used = n - missing - zero;
    Matrix m = result(ctx.title("Sign test"), 1, 6);
    m.row_labels = {name};
    m.column_labels = {"percentile", "above", "equal", "below", "missing", "P(>= above)"};
    m.values = {q, static_cast<double>(positive), static_cast<double>(zero), used - positive, missing, prob};
    ctx.out->matrix(m);
    char line[160];
    std::snprintf(line, sizeof line,
                  "The probability of %d or more of %g values above %g when each lies below it with probability %g.",
                  positive, used, q, p);
    ctx.out->note(line);
    return status_ok;
}

}  // namespace

const Command signtest_command{
    "signtest",
    "sign test of a median or other percentile",
    "[COLUMN [MINUS]]",
    "Sign test that the value --percentile (default 0) is the --percentage\n"
    "point (default 0.5, the median) of COLUMN, or of the paired differences\n"
    "COLUMN - MINUS: the counts above, at and below it and the binomial\n"
    "probability of at least as many above.  Without operands: the only\n"
    "numeric column, or the second of the first two less the first.",
    "sleep_paired.csv",
    {
        {"percentile", "Q", "the hypothesised percentile value (default 0)"},
        {"percentage", "P", "the probability of a value below it, 0 to 1 (default 0.5)"},
    },
    run,
};

}  // namespace zcli
