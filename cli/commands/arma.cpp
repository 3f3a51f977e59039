// arma.cpp - ARMA(p, q) estimation of a series: zorvs_d_arma by the method
// of moments (default) or by least squares with backcasting.
//
// The series is the operand or the last numeric column, and must have no
// missing value.  Least squares adds the standard errors of the estimates
// (from the covariance table of the estimated parameters) and the residual
// sum of squares.
#include <cmath>
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    ArmaFit fit;
    arma_fit(ctx, false, fit);
    const std::size_t np = fit.parameters.size();
    const std::string model = "ARMA(" + std::to_string(fit.p) + ", " + std::to_string(fit.q) + ")";
    Matrix m = result(ctx.title(model + " of " + fit.name + (fit.least_squares ? ", least squares" : ", method of moments")),
                      np, fit.least_squares ? 2 : 1);
    m.row_labels = fit.labels;
    m.column_labels = {"estimate"};
    if (fit.least_squares) m.column_labels.push_back("std. error");
    // The covariance table covers the estimated parameters: the constant
    // only when it was estimated.
    const std::size_t skip = np - static_cast<std::size_t>(fit.k), k = static_cast<std::size_t>(fit.k);
    for (std::size_t j = 0; j < np; ++j) {
        m.at(j, 0) = fit.parameters[j];
        if (fit.least_squares) m.at(j, 1) = j < skip ? std::nan("") : std::sqrt(fit.covariances[(j - skip) * (k + 1)]);
    }
    ctx.out->matrix(m);
    Matrix s = result("Fit", fit.least_squares ? 3 : 2, 1);
    s.row_labels = {"mean", "innovation variance"};
    s.column_labels = {"value"};
    s.values = {fit.info.p->mean, fit.info.p->innovation_variance};
    if (fit.least_squares) {
        s.row_labels.push_back("residual sum of squares");
        s.values.push_back(fit.ss_residual);
    }
    ctx.out->matrix(s);
    if (fit.least_squares) {
        Matrix c = result("Covariances of the estimates", k, k);
        c.row_labels.assign(fit.labels.begin() + static_cast<long>(skip), fit.labels.end());
        c.column_labels = c.row_labels;
        c.values = fit.covariances;
        ctx.out->matrix(c);
    }
    Matrix a = result("Autocovariances", fit.autocov.size(), 1);
    a.row_head = "lag";
    for (std::size_t l = 0; l < fit.autocov.size(); ++l) a.row_labels.push_back(std::to_string(l));
    a.column_labels = {fit.name};
    a.values = fit.autocov;
    ctx.out->matrix(a);
    return status_ok;
}

}  // namespace

const Command arma_command{
    "arma",
    "ARMA model of a series",
    "[COLUMN]",
    "Estimates the constant, autoregressive and moving-average parameters of\n"
    "an ARMA(p, q) model of COLUMN (default: the last numeric column), by the\n"
    "method of moments or by least squares with backcasting, with the\n"
    "autocovariances of the series.  The moving-average parameters have Box\n"
    "and Jenkins' sign: z(t) = c + sum phi z(t-i) + a(t) - sum theta a(t-j).",
    "lakehuron.csv",
    arma_options(false),
    run,
};

}  // namespace zcli
