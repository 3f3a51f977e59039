// regress.cpp - linear regression: zorvs_d_regression for the fit and its
// analysis of variance table, zorvs_d_regression_summary for the t tests
// and inflation factors; with class columns or a second-order model the
// regressors come from zorvs_d_regressors_for_glm.
//
// Operands: the response, then the regressors; none: the last numeric
// column on all other numeric columns (the --freq and --weight columns
// left out).  --class names regressors that are class variables, text or
// numbers; the library codes their distinct values in ascending order, and
// the level labels follow that order.  The default dummy scheme leaves the
// last level out when an intercept is fitted (so the design has full rank)
// and keeps all levels without one.
#include <cmath>
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    Design d = regression_design(ctx);
    const int n = d.n_rows, k = d.n_regressors;
    const int p = k + (d.intercept ? 1 : 0);
    std::vector<double> anova(15), coef(static_cast<std::size_t>(p)), tests(4 * static_cast<std::size_t>(p)),
        vif(static_cast<std::size_t>(p)), residuals(static_cast<std::size_t>(n));
    zorvs_d_regression_info *info_p = nullptr;
    const bool want_residuals = ctx.args.has("residuals");
    regression_fit(ctx, d, coef.data(), anova.data(), residuals.data(), &info_p);
    Owned<zorvs_d_regression_info> info(info_p);
    zorvs_d_regression_summary(info.get(), ZORVS_COEF_T_TESTS_USER, tests.data(), ZORVS_COEF_VIF_USER, vif.data(), 0);
    library_check();

    Matrix c = result(ctx.title("Coefficients of " + d.response_name), static_cast<std::size_t>(p), 5);
    c.column_labels = {"estimate", "std. error", "t", "p-value", "VIF"};
    c.row_head = "term";
    if (d.intercept) c.row_labels.push_back("intercept");
    c.row_labels.insert(c.row_labels.end(), d.labels.begin(), d.labels.end());
    for (int j = 0; j < p; ++j) {
        for (int m = 0; m < 4; ++m) c.at(static_cast<std::size_t>(j), static_cast<std::size_t>(m)) = tests[4 * j + m];
        c.at(static_cast<std::size_t>(j), 4) = vif[static_cast<std::size_t>(j)];
    }
    ctx.out->matrix(c);
    anova_output(*ctx.out, anova.data(), "Analysis of variance", "regression");
    if (want_residuals) {
        Matrix r = result("Residuals", static_cast<std::size_t>(n), 1);
        r.column_labels = {"residual"};
        r.row_head = "row";
        r.values = residuals;
        ctx.out->matrix(r);
    }
    return status_ok;
}

}  // namespace

const Command regress_command{
    "regress",
    "linear regression with its summary and coefficient tests",
    "[RESPONSE [REGRESSOR...]]",
    "Least-squares fit of RESPONSE on the REGRESSORs (columns by name or number\n"
    "from 1): coefficients with standard errors, t tests and variance inflation\n"
    "factors, and the analysis of variance table.  Without operands, the last\n"
    "numeric column on the others.  Class regressors (--class) enter as dummy\n"
    "variables of their levels in ascending order; rows with a missing value\n"
    "are left out of the fit.",
    "stackloss.csv",
    [] {
        std::vector<OptionForm> o = design_options();
        o.push_back({"residuals", "", "also print the residual of each row"});
        return o;
    }(),
    run,
};

}  // namespace zcli
