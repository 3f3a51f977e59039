// analysis.hpp - pieces shared by the analysis commands (regress, predict,
// anova, compare, crosstab, gof, signtest, ranksum, normality, diff, arma,
// forecast, kmeans, pca): option lists, groups of a response, and the
// layout of an analysis of variance table.
#ifndef ZORVSTAT_CLI_ANALYSIS_HPP
#define ZORVSTAT_CLI_ANALYSIS_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "command.hpp"
#include "zorvstat.h"

namespace zcli {

// A comma-separated option value ("1,12") as its pieces; absent: empty.
std::vector<std::string> option_list(const Arguments &args, std::string_view name);
// The same read as whole numbers (usage error naming the option otherwise).
std::vector<int> integer_list(const Arguments &args, std::string_view name, std::vector<int> fallback);

// A titled matrix for results, printed with five significant digits
// (small p-values keep theirs) in the text output.
Matrix result(std::string title, std::size_t rows, std::size_t columns);

// The defaults of a response and a group: the first numeric column (not
// --freq or --weight) and the first text column (data error if none).
std::size_t first_numeric(const Context &ctx);
std::size_t first_text(const Context &ctx);
// The operand at `index`, found, or `fallback()` when there are fewer.
template <class F>
std::size_t operand_column(const Context &ctx, std::size_t index, F fallback) {
    const auto &ops = ctx.args.operands();
    return index < ops.size() ? ctx.data.find(ops[index]) : fallback();
}

// The groups of a class column with its levels in ascending order
// (numerically for a numeric column): the order in which the library codes
// class values.
Data::Groups sorted_groups(const Data &data, std::size_t column);

// The responses of `response` grouped by the levels of `group` (in order of
// first appearance), group after group, rows in file order; rows with no
// group are left out.  With --listwise rows with a missing response too.
struct GroupedResponses {
    std::vector<std::string> names;
    std::vector<int> sizes;
    std::vector<double> y;
};
GroupedResponses grouped(const Context &ctx, std::size_t response, std::size_t group);

// The 15 entries of an analysis of variance table as two matrices: the
// sources (between / error / total by degrees of freedom, sums of squares,
// mean squares, F, p-value) and the summary of the fit.
void anova_output(Output &out, const double table[15], const std::string &title, const std::string &between);

// ---------------------------------------------------------------- regression
// The regressors of `regress` and `predict` from the operands and --class,
// --dummy, --order, --no-intercept: the response and regressor columns of
// the data, and the design matrix of the data's rows followed by the rows
// of `extra` (new rows to predict, read by column name; null for none).
struct Design {
    std::string response_name;
    std::size_t response = 0;
    std::vector<std::size_t> columns;        // the regressor columns, in operand order
    std::vector<std::string> labels;         // one per regressor
    std::vector<double> x;                   // (rows + extra rows) x n_regressors, row-major
    std::vector<double> y;                   // the data's rows
    int n_rows = 0, n_extra = 0, n_regressors = 0;
    bool intercept = true;
};
Design regression_design(const Context &ctx, const Data *extra = nullptr);
// The options of the model, for the commands' descriptors.
std::vector<OptionForm> design_options();
// The fit of the data's rows: coefficients (intercept first), the analysis
// of variance table (15), residuals (n_rows) and the record, with --freq,
// --weight and --tolerance.
void regression_fit(const Context &ctx, Design &d, double *coef, double *anova, double *residuals,
                    zorvs_d_regression_info **info);

// ---------------------------------------------------------------- series
// The series of a time-series command: the operand, or the last numeric
// column (series files hold a time column first).
std::size_t series_column(const Context &ctx);

// An ARMA fit by zorvs_d_arma with the options --p, --q, and for least
// squares (`least_squares`, or --least-squares) --no-constant, --ar-lags,
// --ma-lags, --backcast, --tolerance, --max-iterations.
struct ArmaFit {
    std::string name;                 // the series' column
    int p = 0, q = 0, k = 0;          // k: the parameters estimated (least squares)
    bool least_squares = false;
    std::vector<int> ar_lags, ma_lags;
    std::vector<double> parameters;   // constant, phi, theta
    std::vector<double> covariances;  // k x k (least squares)
    std::vector<double> autocov;      // lags 0 to p + q + 1
    double ss_residual = 0;
    Owned<zorvs_arma_info> info;
    std::vector<std::string> labels;  // of the parameters
};
void arma_fit(const Context &ctx, bool least_squares, ArmaFit &fit);
// The options of the fit, for the commands' descriptors; `forecast`: least
// squares always.
std::vector<OptionForm> arma_options(bool forecast);

}  // namespace zcli

#endif
