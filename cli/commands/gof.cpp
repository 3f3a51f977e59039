// gof.cpp - Pearson's chi-squared test of goodness of fit of a column to a
// normal, exponential, uniform or Poisson distribution:
// zorvs_d_chi_squared_test with the distribution function.
//
// Parameters not given are estimated from the column (normal: mean and
// standard deviation with divisor n - 1; exponential and Poisson: mean;
// uniform: smallest and largest value) and counted as estimated, which
// takes one degree of freedom each.  The cells of a continuous
// distribution are --cells (default: n / 5 between 3 and 10) cells of equal
// probability under the fitted distribution; those of the Poisson
// distribution are 0, 1, ..., up to the last count whose upper tail still
// expects 5 observations, and the open cell above.  --cutpoints gives the
// cells instead.  --freq repeats the values.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

// The parameters of the distribution function that the library calls back;
// a plain function cannot carry them.
double lv_a = 0, lv_b = 1;

double normal_cdf(double x) { return zorvs_d_normal_cdf((x - lv_a) / lv_b); }
double exponential_cdf(double x) { return x <= 0 ? 0.0 : -std::expm1(-x / lv_a); }
double uniform_cdf(double x) { return x <= lv_a ? 0.0 : x >= lv_b ? 1.0 : (x - lv_a) / (lv_b - lv_a); }
double poisson_cdf(double x) { return x < 0 ? 0.0 : zorvs_d_poisson_cdf(static_cast<int>(std::min(std::floor(x), 1e9)), lv_a); }

const struct Distribution {
    const char *name;
} distributions[] = {{"normal"}, {"exponential"}, {"uniform"}, {"poisson"}};

int run(Context &ctx) {
    const std::size_t column = operand_column(ctx, 0, [&] { return first_numeric(ctx); });
    const double *x = ctx.data.numbers(column);
    const double *f = ctx.frequencies();
    const int n = ctx.data.int_rows();
    auto given = ctx.args.value("dist");
    const int dist = given ? static_cast<int>(&choose(distributions, *given, "distribution") - distributions) : 0;

    // Moments of the present values, with their frequencies.
    double count = 0, sum = 0, lo = INFINITY, hi = -INFINITY;
    for (int i = 0; i < n; ++i) {
        const double w = f ? f[i] : 1.0;
        if (std::isnan(x[i]) || std::isnan(w) || w <= 0) continue;
        count += w;
        sum += w * x[i];
        lo = std::min(lo, x[i]);
        hi = std::max(hi, x[i]);
    }
    if (count < 2) data_error(ctx.data.source() + ": '" + ctx.data.column(column).name + "' has fewer than 2 values");
    const double mean = sum / count;
    double ss = 0;
    for (int i = 0; i < n; ++i) {
        const double w = f ? f[i] : 1.0;
        if (!std::isnan(x[i]) && !std::isnan(w) && w > 0) ss += w * (x[i] - mean) * (x[i] - mean);
    }
    int estimated = 0;
    auto parameter = [&](const char *name, double estimate) {
        if (ctx.args.has(name)) return ctx.args.real(name, estimate);
        ++estimated;
        return estimate;
    };
    double (*cdf)(double) = nullptr;
    std::vector<std::string> names;
    switch (dist) {
        case 0:
            lv_a = parameter("mean", mean);
            lv_b = parameter("sd", std::sqrt(ss / (count - 1)));
            names = {"mean", "std. dev."};
            cdf = normal_cdf;
            break;
        case 1:
            lv_a = parameter("mean", mean);
            names = {"mean"};
            cdf = exponential_cdf;
            break;
        case 2:
            lv_a = parameter("min", lo);
            lv_b = parameter("max", hi);
            names = {"min", "max"};
            cdf = uniform_cdf;
            break;
        default:
            lv_a = parameter("mean", mean);
            names = {"mean"};
            cdf = poisson_cdf;
            break;
    }
    if (!(lv_b > lv_a) && dist == 2) usage_error("the uniform distribution needs min below max");
    if (!(lv_a > 0) && (dist == 1 || dist == 3)) usage_error("the mean must be above 0");
    if (!(lv_b > 0) && dist == 0) usage_error("the standard deviation must be above 0");

    std::vector<double> cut;
    if (ctx.args.has("cutpoints")) {
        for (const std::string &c : option_list(ctx.args, "cutpoints")) cut.push_back(Arguments::real_operand(c, "--cutpoints"));
    } else if (dist == 3) {
        for (int k = 0; k < 1000 && count * (1 - poisson_cdf(k)) >= 5; ++k) cut.push_back(k);
        if (cut.empty()) cut.push_back(0);
    } else {
        const int cells = ctx.args.integer("cells", std::clamp(static_cast<int>(count / 5), 3, 10));
        if (cells < 2) usage_error("--cells must be 2 or more");
        for (int k = 1; k < cells; ++k) {
            const double p = static_cast<double>(k) / cells;
            cut.push_back(dist == 0   ? lv_a + lv_b * zorvs_d_normal_inverse_cdf(p)
                          : dist == 1 ? -lv_a * std::log1p(-p)
                                      : lv_a + (lv_b - lv_a) * p);
        }
    }
    const int k = static_cast<int>(cut.size()) + 1;
    std::vector<double> expected(static_cast<std::size_t>(k)), contributions(expected), observed(expected);
    int df = 0;
    double chi2 = 0, p = 0;
    zorvs_d_chi_squared_test(cdf, k, n, const_cast<double *>(x), ZORVS_CUTPOINTS, cut.data(), ZORVS_FREQUENCIES,
                             const_cast<double *>(f), ZORVS_N_PARAMETERS_ESTIMATED, estimated, ZORVS_CHI_SQUARED, &df,
                             &chi2, &p, ZORVS_EXPECTED_USER, expected.data(), ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER,
                             contributions.data(), ZORVS_CELL_COUNTS_USER, observed.data(), 0);
    library_check();

    const std::string &name = ctx.data.column(column).name;
    Matrix t = result(ctx.title("Chi-squared test of fit of " + name + " to the " + distributions[dist].name + " distribution"), 1, 3);
    t.row_labels = {name};
    t.column_labels = {"df", "chi-squared", "p-value"};
    t.values = {static_cast<double>(df), chi2, p};
    ctx.out->matrix(t);
    Matrix par = result("Parameters", names.size(), 1);
    par.row_labels = names;
    par.column_labels = {"value"};
    par.values = {lv_a};
    if (names.size() > 1) par.values.push_back(lv_b);
    ctx.out->matrix(par);
    if (estimated) ctx.out->note(std::to_string(estimated) + " parameter(s) estimated from the data.");
    Matrix cells = result("Cells", static_cast<std::size_t>(k), 5);
    cells.column_labels = {"lower", "upper", "observed", "expected", "contribution"};
    cells.row_head = "cell";
    for (std::size_t c = 0; c < static_cast<std::size_t>(k); ++c) {
        cells.row_labels.push_back(std::to_string(c + 1));
        cells.at(c, 0) = c == 0 ? -INFINITY : cut[c - 1];
        cells.at(c, 1) = c + 1 == static_cast<std::size_t>(k) ? INFINITY : cut[c];
        cells.at(c, 2) = observed[c];
        cells.at(c, 3) = expected[c];
        cells.at(c, 4) = contributions[c];
    }
    ctx.out->matrix(cells);
    ctx.out->note("Cell c holds the values above its lower and up to its upper bound.");
    return status_ok;
}

}  // namespace

const Command gof_command{
    "gof",
    "chi-squared goodness of fit to a distribution",
    "[COLUMN]",
    "Pearson's chi-squared test of the fit of COLUMN (default: the first\n"
    "numeric one) to a normal, exponential, uniform or Poisson distribution,\n"
    "with parameters given or estimated from the data (each estimated one\n"
    "takes a degree of freedom): the statistic, the cells with observed and\n"
    "expected counts and their contributions.",
    "precip.csv",
    {
        {"dist", "NAME", "normal (default), exponential, uniform, poisson"},
        {"mean", "M", "mean of the normal, exponential or Poisson distribution"},
        {"sd", "S", "standard deviation of the normal distribution"},
        {"min", "A", "lower end of the uniform distribution"},
        {"max", "B", "upper end of the uniform distribution"},
        {"cells", "K", "number of cells of equal probability (continuous distributions)"},
        {"cutpoints", "LIST", "the cells' upper bounds, comma-separated, increasing"},
    },
    run,
};

}  // namespace zcli
