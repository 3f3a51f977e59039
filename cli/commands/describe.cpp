// describe.cpp - summary statistics of columns: zorvs_d_simple_statistics
// on each column, with a row of missing counts.
//
// Missing values are left out column by column: each column is summarised
// over its own present values, one call per column.  With --listwise the
// rows with a missing value in any selected column (or frequency or
// weight) are left out of every column; then the columns are compacted one
// at a time, so the memory beyond the data is one column.  The columns are
// read where they lie: no row-major copy of the whole data is made.
#include <cmath>
#include <string>
#include <vector>

#include "command.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

const char *const statistic_names[] = {
    "mean", "variance", "std. dev.", "skewness", "kurtosis", "minimum", "maximum", "range", "coef. var.",
    "count", "lower CL mean", "upper CL mean", "lower CL var.", "upper CL var.", "median", "MAD", "robust scale",
};

int run(Context &ctx) {
    const Data &data = ctx.data;
    std::vector<std::size_t> columns = ctx.select(ctx.args.operands());
    const double *f = ctx.frequencies(), *w = ctx.weights();
    double confidence = ctx.args.real("confidence", 95.0);
    bool median = ctx.args.has("median");
    const std::size_t n_stats = median ? 17 : 14;
    data.int_rows();
    for (std::size_t j : columns) data.numbers(j);   // a text column is an error before any work

    // The rows kept by --listwise.
    std::vector<std::size_t> kept;
    bool compact = ctx.common.listwise;
    if (compact) {
        for (std::size_t i = 0; i < data.rows(); ++i) {
            bool complete = !(f && std::isnan(f[i])) && !(w && std::isnan(w[i]));
            for (std::size_t k = 0; k < columns.size() && complete; ++k) complete = !std::isnan(data.numbers(columns[k])[i]);
            if (complete) kept.push_back(i);
        }
    }
    auto gather = [&](const double *x) {
        std::vector<double> v(kept.size());
        for (std::size_t i = 0; i < kept.size(); ++i) v[i] = x[kept[i]];
        return v;
    };
    std::vector<double> f_kept, w_kept;
    if (compact && f) f_kept = gather(f);
    if (compact && w) w_kept = gather(w);
    int n = static_cast<int>(compact ? kept.size() : data.rows());

    Matrix table(ctx.title("Summary of " + data.source()), n_stats + 1, columns.size());
    table.format = "%12.6g";   // the rows differ in scale: six significant digits in each cell
    for (std::size_t s = 0; s < n_stats; ++s) table.row_labels.push_back(statistic_names[s]);
    table.row_labels.push_back("missing");
    for (std::size_t k = 0; k < columns.size(); ++k) {
        const double *column = data.numbers(columns[k]);
        std::vector<double> column_kept;
        if (compact) column_kept = gather(column);
        double *x = const_cast<double *>(compact ? column_kept.data() : column);
        double *freq = const_cast<double *>(compact ? (f ? f_kept.data() : nullptr) : f);
        double *weight = const_cast<double *>(compact ? (w ? w_kept.data() : nullptr) : w);
        std::vector<double> stats(n_stats);
        // A null frequency or weight array is the library's default (all 1);
        // elementwise is the default for one column, named where no median
        // is asked for so that the list has a fixed shape.
        zorvs_d_simple_statistics(n, 1, x, ZORVS_CONFIDENCE_MEANS, confidence, ZORVS_CONFIDENCE_VARIANCES, confidence,
                                  ZORVS_FREQUENCIES, freq, ZORVS_WEIGHTS, weight,
                                  median ? ZORVS_MEDIAN_AND_SCALE : ZORVS_MISSING_ELEMENTWISE, ZORVS_RETURN_USER,
                                  stats.data(), 0);
        library_check();
        for (std::size_t s = 0; s < n_stats; ++s) table.at(s, k) = stats[s];
        double n_missing = 0;
        for (int i = 0; i < n; ++i) n_missing += std::isnan(x[i]);
        table.at(n_stats, k) = n_missing;
        table.column_labels.push_back(data.column(columns[k]).name);
    }
    ctx.out->matrix(table);
    return status_ok;
}

}  // namespace

const Command describe_command{
    "describe",
    "summary statistics of columns (missing values left out column by column)",
    "[COLUMN...]",
    "Mean, variance, standard deviation, skewness, excess kurtosis, extremes,\n"
    "range, coefficient of variation, count, confidence limits of the mean\n"
    "(Student's t) and of the variance (chi-squared) of each column, and the\n"
    "number of missing values.  COLUMN is a name or a number from 1; without\n"
    "one, every numeric column but the --freq and --weight columns.",
    "iris.csv",
    {
        {"median", "", "add the median, the median absolute deviation and its normal scale"},
        {"confidence", "P", "confidence level of the limits, per cent (default 95)"},
    },
    run,
};

}  // namespace zcli
