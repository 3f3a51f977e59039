// cor.cpp - correlation, covariance or corrected SSCP matrix of columns:
// zorvs_d_covariances, with the means and the counts behind each pair.
//
// Missing values are left out pair by pair (pairwise complete, the library's
// elementwise mode) unless --listwise asks for complete rows only.
#include <string>
#include <vector>

#include "command.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    const Data &data = ctx.data;
    std::vector<std::size_t> columns = ctx.select(ctx.args.operands());
    bool covariance = ctx.args.has("covariance"), sscp = ctx.args.has("sscp");
    if (covariance && sscp) usage_error("--covariance and --sscp exclude each other");
    int missing = ctx.common.listwise ? ZORVS_MISSING_LISTWISE : ZORVS_MISSING_ELEMENTWISE;
    // The covariances are the routine's default: the missing-value keyword
    // then stands in the place of the kind.
    int kind = sscp ? ZORVS_CORRECTED_SSCP : covariance ? missing : ZORVS_CORRELATION_MATRIX;
    // All rows, row-major: the routine leaves out the missing values itself.
    int n = data.int_rows(), p = static_cast<int>(columns.size());
    std::vector<double> x(static_cast<std::size_t>(n) * p);
    for (int j = 0; j < p; ++j) {
        const double *column = data.numbers(columns[j]);
        for (int i = 0; i < n; ++i) x[static_cast<std::size_t>(i) * p + j] = column[i];
    }
    std::vector<double> matrix(p * p), means(p), counts(p * p);
    // A null frequency or weight array is the library's default (all 1).
    zorvs_d_covariances(n, p, x.data(), kind, missing,
                        ZORVS_FREQUENCIES, ctx.frequencies(), ZORVS_WEIGHTS, ctx.weights(), ZORVS_X_MEAN_USER,
                        means.data(), ZORVS_PAIR_COUNTS_USER, counts.data(), ZORVS_RETURN_USER, matrix.data(), 0);
    library_check();

    std::vector<std::string> names;
    for (std::size_t j : columns) names.push_back(data.column(j).name);
    const char *what = sscp ? "Corrected sums of squares and crossproducts"
                       : covariance ? "Covariances" : "Correlations";
    Matrix m(ctx.title(what), p, p);
    m.values = matrix;
    m.row_labels = m.column_labels = names;
    m.format = "%12.6w";
    ctx.out->matrix(m);
    Matrix mean("Means", 1, p);
    mean.values = means;
    mean.column_labels = names;
    mean.row_labels = {"mean"};
    mean.format = "%12.6w";
    ctx.out->matrix(mean);
    Matrix count("Observations of each pair", p, p);
    count.values = counts;
    count.row_labels = count.column_labels = names;
    ctx.out->matrix(count);
    return status_ok;
}

}  // namespace

const Command cor_command{
    "cor",
    "correlations, covariances or corrected SSCP of columns",
    "[COLUMN...]",
    "The correlation matrix of the columns (or with --covariance the\n"
    "variance-covariance matrix, with --sscp the corrected sums of squares and\n"
    "crossproducts), the means, and the number of observations behind each\n"
    "pair.  Missing values are left out pair by pair unless --listwise.",
    "stackloss.csv",
    {
        {"covariance", "", "the variance-covariance matrix"},
        {"sscp", "", "the corrected sums of squares and crossproducts"},
    },
    run,
};

}  // namespace zcli
