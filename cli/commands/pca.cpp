// pca.cpp - principal components: the correlation (default) or covariance
// matrix of the columns from zorvs_d_covariances, then
// zorvs_d_principal_components with the eigenvectors, cumulative
// proportions, standard errors of the eigenvalues and the correlations of
// the variables with the components.
//
// Rows with a missing value in any of the columns are left out (the
// routine's list-wise default).  The degrees of freedom of the matrix, for
// the standard errors, are the rows used less one.
#include <cmath>
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    std::vector<std::size_t> columns = ctx.select(ctx.args.operands());
    std::vector<double> x = ctx.matrix(columns);
    const std::size_t nv = columns.size(), rows = x.size() / nv;
    ctx.data.int_rows();   // the rows fit an int, so do those kept
    const int n = static_cast<int>(rows), p = static_cast<int>(nv);
    const bool covariance = ctx.args.has("covariance");
    std::vector<double> matrix(nv * nv), counts(nv * nv);
    double *f = const_cast<double *>(ctx.frequencies()), *w = const_cast<double *>(ctx.weights());
    if (covariance)
        zorvs_d_covariances(n, p, x.data(), ZORVS_FREQUENCIES, f, ZORVS_WEIGHTS, w, ZORVS_PAIR_COUNTS_USER,
                            counts.data(), ZORVS_RETURN_USER, matrix.data(), 0);
    else
        zorvs_d_covariances(n, p, x.data(), ZORVS_CORRELATION_MATRIX, ZORVS_FREQUENCIES, f, ZORVS_WEIGHTS, w,
                            ZORVS_PAIR_COUNTS_USER, counts.data(), ZORVS_RETURN_USER, matrix.data(), 0);
    library_check();
    // The sum of frequencies of the rows used, less one.
    const int df = static_cast<int>(std::lround(counts[0])) - 1;
    std::vector<double> values(nv), vectors(nv * nv), correlations(nv * nv), cum(nv), se(nv);
    zorvs_d_principal_components(p, matrix.data(), covariance ? ZORVS_COVARIANCE_MATRIX : ZORVS_CORRELATION_MATRIX,
                                 ZORVS_EIGENVECTORS_USER, vectors.data(), ZORVS_CORRELATIONS_USER, correlations.data(),
                                 ZORVS_CUM_PERCENT_USER, cum.data(), ZORVS_STD_DEV_USER, df, se.data(),
                                 ZORVS_RETURN_USER, values.data(), 0);
    library_check();

    std::vector<std::string> names, components;
    for (std::size_t c : columns) names.push_back(ctx.data.column(c).name);
    for (std::size_t j = 0; j < nv; ++j) components.push_back("PC" + std::to_string(j + 1));
    Matrix e = result(ctx.title(std::string("Principal components of the ") + (covariance ? "covariance" : "correlation") +
                                " matrix"),
                      nv, 3);
    e.row_labels = components;
    e.column_labels = {"eigenvalue", "cum. proportion", "std. error"};
    for (std::size_t j = 0; j < nv; ++j) {
        e.at(j, 0) = values[j];
        e.at(j, 1) = cum[j];
        e.at(j, 2) = se[j];
    }
    ctx.out->matrix(e);
    Matrix v = result("Eigenvectors", nv, nv);
    v.row_labels = names;
    v.column_labels = components;
    v.values = vectors;
    ctx.out->matrix(v);
    Matrix c = result("Correlations of the variables with the components", nv, nv);
    c.row_labels = names;
    c.column_labels = components;
    c.values = correlations;
    ctx.out->matrix(c);
    ctx.out->note("Standard errors of the eigenvalues on " + std::to_string(df) + " degrees of freedom.");
    return status_ok;
}

}  // namespace

const Command pca_command{
    "pca",
    "principal components",
    "[COLUMN...]",
    "Principal components of the correlation matrix (or, with --covariance,\n"
    "the covariance matrix) of the COLUMNs (default: every numeric column):\n"
    "eigenvalues with cumulative proportions and standard errors,\n"
    "eigenvectors, and the correlations of the variables with the components.\n"
    "Rows with a missing value are left out.",
    "iris.csv",
    {
        {"covariance", "", "analyse the covariance matrix instead of the correlations"},
    },
    run,
};

}  // namespace zcli
