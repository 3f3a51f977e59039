// ttest.cpp - t and chi-squared inference on one normal sample
// (zorvs_d_normal_one_sample), or t (pooled and Welch) and F inference on
// two (zorvs_d_normal_two_sample).
//
// One column is one sample; two columns are two samples; one column with
// --by GROUP is split by the two values of GROUP (in order of first
// appearance).  Missing values are left out by the routines themselves,
// sample by sample, with their warning.
#include <cmath>
#include <string>
#include <vector>

#include "command.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

// The column's values (present and missing) of the rows in group `level`,
// or of all rows when `groups` is null.
std::vector<double> sample_of(const Data &data, std::size_t column, const Data::Groups *groups, int level) {
    const double *x = data.numbers(column);
    std::vector<double> out;
    for (std::size_t i = 0; i < data.rows(); ++i)
        if (!groups || groups->of_row[i] == level) out.push_back(x[i]);
    return out;
}

int run(Context &ctx) {
    const Data &data = ctx.data;
    std::vector<std::string> operands = ctx.args.operands();
    double confidence = ctx.args.real("confidence", 95.0);
    std::vector<std::size_t> columns;
    if (operands.empty()) columns = {ctx.select({}).front()};
    else columns = ctx.select(operands);
    if (columns.size() > 2) usage_error("ttest takes one or two columns");

    std::vector<std::vector<double>> samples;
    std::vector<std::string> names;
    if (auto by = ctx.args.value("by")) {
        if (columns.size() != 1) usage_error("--by splits one column");
        std::size_t g = data.find(*by);
        Data::Groups groups = data.groups(g);
        if (groups.levels.size() != 2)
            data_error("--by column '" + data.column(g).name + "' must hold two groups, not " +
                       std::to_string(groups.levels.size()));
        for (int level = 0; level < 2; ++level) {
            samples.push_back(sample_of(data, columns[0], &groups, level));
            names.push_back(data.column(g).name + "=" + groups.levels[level]);
        }
    } else {
        for (std::size_t j : columns) {
            samples.push_back(sample_of(data, j, nullptr, 0));
            names.push_back(data.column(j).name);
        }
    }

    if (samples.size() == 1) {
        double mu0 = ctx.args.real("mean", 0.0), var0 = ctx.args.real("variance", 1.0);
        double r[17];
        zorvs_d_normal_one_sample(static_cast<int>(samples[0].size()), samples[0].data(), ZORVS_CONFIDENCE_MEANS,
                                  confidence, ZORVS_CONFIDENCE_VARIANCES, confidence, ZORVS_HYPOTHESIZED_MEAN, mu0,
                                  ZORVS_HYPOTHESIZED_VARIANCE, var0, ZORVS_RETURN_USER, r, 0);
        library_check();
        Matrix s(ctx.title("One sample: " + names[0]), 1, 5);
        s.column_labels = {"count", "mean", "variance", "std. dev.", "df"};
        s.row_labels = {names[0]};
        for (int k = 0; k < 5; ++k) s.values[k] = r[k];
        s.format = "%12.6w";
        ctx.out->matrix(s);
        Matrix t("Tests of the mean (t) and the variance (chi-squared)", 2, 7);
        t.row_labels = {"mean = " + shortest(mu0), "variance = " + shortest(var0)};
        t.column_labels = {"statistic", "p two-sided", "P(<= stat)", "P(>= stat)", "lower CL", "upper CL", "level"};
        double rows[2][7] = {{r[9], r[10], r[11], r[12], r[5], r[6], confidence},
                             {r[13], r[14], r[15], r[16], r[7], r[8], confidence}};
        for (int i = 0; i < 2; ++i)
            for (int k = 0; k < 7; ++k) t.at(i, k) = rows[i][k];
        t.format = "%12.6w";
        ctx.out->matrix(t);
        return status_ok;
    }

    double d0 = ctx.args.real("difference", 0.0), ratio0 = ctx.args.real("ratio", 1.0);
    double r[30];
    zorvs_d_normal_two_sample(static_cast<int>(samples[0].size()), samples[0].data(),
                              static_cast<int>(samples[1].size()), samples[1].data(), ZORVS_CONFIDENCE_MEANS,
                              confidence, ZORVS_CONFIDENCE_VARIANCES, confidence, ZORVS_HYPOTHESIZED_DIFFERENCE, d0,
                              ZORVS_HYPOTHESIZED_RATIO, ratio0, ZORVS_RETURN_USER, r, 0);
    library_check();
    Matrix s(ctx.title("Two samples"), 2, 3);
    s.row_labels = names;
    s.column_labels = {"count", "mean", "variance"};
    for (int i = 0; i < 2; ++i) {
        s.at(i, 0) = r[i];
        s.at(i, 1) = r[2 + i];
        s.at(i, 2) = r[4 + i];
    }
    s.format = "%12.6w";
    ctx.out->matrix(s);
    Matrix t("Difference of means = " + shortest(d0) + " (t), ratio of variances = " + shortest(ratio0) + " (F)", 3, 8);
    t.row_labels = {"pooled t", "Welch t", "F"};
    t.column_labels = {"statistic", "df", "df2", "p two-sided", "P(<= stat)", "P(>= stat)", "lower CL", "upper CL"};
    double rows[3][8] = {{r[11], r[8], NAN, r[12], r[13], r[14], r[9], r[10]},
                         {r[18], r[15], NAN, r[19], r[20], r[21], r[16], r[17]},
                         {r[22], r[23], r[24], r[27], r[28], r[29], r[25], r[26]}};
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 8; ++k) t.at(i, k) = rows[i][k];
    t.format = "%12.6w";
    ctx.out->matrix(t);
    ctx.out->note("Difference of means " + shortest(r[6]) + ", pooled variance " + shortest(r[7]) +
                  "; limits at " + shortest(confidence) + "%.");
    return status_ok;
}

}  // namespace

const Command ttest_command{
    "ttest",
    "t tests of one or two normal samples, and tests of their variances",
    "[COLUMN [COLUMN]]",
    "One column: Student's t test and interval of the mean, chi-squared test\n"
    "and interval of the variance.  Two columns, or one split by --by GROUP:\n"
    "pooled and Welch t tests and intervals of the difference of means, F test\n"
    "and interval of the ratio of variances.",
    "sleep.csv",
    {
        {"by", "GROUP", "split the column into two samples by the two values of GROUP"},
        {"mean", "MU0", "hypothesised mean of one sample (default 0)"},
        {"variance", "S2", "hypothesised variance of one sample (default 1)"},
        {"difference", "D0", "hypothesised difference of two means (default 0)"},
        {"ratio", "R0", "hypothesised ratio of two variances (default 1)"},
        {"confidence", "P", "confidence level of the limits, per cent (default 95)"},
    },
    run,
};

}  // namespace zcli
