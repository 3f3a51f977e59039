// predict.cpp - predictions of a linear regression with their limits and,
// for the rows of the fit, the case statistics: zorvs_d_regression for the
// fit, zorvs_d_regression_prediction for each row.
//
// The model is given as to `regress` (operands, --class, --order,
// --no-intercept, --freq, --weight).  The rows predicted are those of the
// data, with their responses (residuals, leverage, standardised and
// deleted residuals, Cook's D, DFFITS) and their weights; with --new FILE
// the rows of that file instead, read by the regressors' column names,
// with leverage but no response.  A class level of the new rows that the
// data lacks is a data error.
#include <cstdio>
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    Data fresh;
    const bool new_rows = ctx.args.has("new");
    if (new_rows) {
        // The separator as for the data: given, else by the file's name.
        const std::string path = *ctx.args.value("new");
        char sep = ctx.common.separator;
        auto ends = [&](const char *e) { return path.size() >= 4 && path.compare(path.size() - 4, 4, e) == 0; };
        if (!sep) sep = ends(".tsv") || ends(".tab") ? '\t' : ',';
        fresh.read_file(path, sep, false);
    }
    Design d = regression_design(ctx, new_rows ? &fresh : nullptr);
    const int p = d.n_regressors + (d.intercept ? 1 : 0);
    std::vector<double> anova(15), coef(static_cast<std::size_t>(p)), residuals(static_cast<std::size_t>(d.n_rows));
    zorvs_d_regression_info *info_p = nullptr;
    regression_fit(ctx, d, coef.data(), anova.data(), residuals.data(), &info_p);
    Owned<zorvs_d_regression_info> info(info_p);

    const int n = new_rows ? d.n_extra : d.n_rows;
    const std::size_t rows = static_cast<std::size_t>(n);
    double *x = d.x.data() + (new_rows ? static_cast<std::size_t>(d.n_rows) * static_cast<std::size_t>(d.n_regressors) : 0);
    const double confidence = ctx.args.real("confidence", 95.0);
    std::vector<double> yhat(rows), lo_mean(rows), hi_mean(rows), lo_new(rows), hi_new(rows), leverage(rows),
        res(rows), std_res(rows), del_res(rows), cooks(rows), dffits(rows), lo_s(rows), hi_s(rows);
    if (new_rows)
        zorvs_d_regression_prediction(info.get(), n, x, ZORVS_CONFIDENCE, confidence, ZORVS_SCHEFFE_CI_USER,
                                      lo_s.data(), hi_s.data(), ZORVS_CI_POP_MEAN_USER, lo_mean.data(), hi_mean.data(), ZORVS_CI_NEW_SAMPLE_USER, lo_new.data(),
                                      hi_new.data(), ZORVS_LEVERAGE_USER, leverage.data(), ZORVS_RETURN_USER,
                                      yhat.data(), 0);
    else {
        // The weights of the rows, if any; the library takes no null array.
        std::vector<double> w(rows, 1.0);
        if (const double *given = ctx.weights()) w.assign(given, given + rows);
        zorvs_d_regression_prediction(info.get(), n, x, ZORVS_Y, d.y.data(), ZORVS_WEIGHTS, w.data(),
                                      ZORVS_CONFIDENCE, confidence, ZORVS_SCHEFFE_CI_USER, lo_s.data(), hi_s.data(),
                                      ZORVS_CI_POP_MEAN_USER, lo_mean.data(), hi_mean.data(), ZORVS_CI_NEW_SAMPLE_USER, lo_new.data(), hi_new.data(),
                                      ZORVS_LEVERAGE_USER, leverage.data(), ZORVS_RESIDUAL_USER, res.data(),
                                      ZORVS_STANDARDIZED_RESIDUAL_USER, std_res.data(), ZORVS_DELETED_RESIDUAL_USER,
                                      del_res.data(), ZORVS_COOKSD_USER, cooks.data(), ZORVS_DFFITS_USER,
                                      dffits.data(), ZORVS_RETURN_USER, yhat.data(), 0);
    }
    library_check();

    std::vector<std::string> numbers;
    for (std::size_t i = 0; i < rows; ++i) numbers.push_back(std::to_string(i + 1));
    char level[32];
    std::snprintf(level, sizeof level, "%g", confidence);
    const bool scheffe = ctx.args.has("scheffe");
    Matrix pred = result(ctx.title("Predictions of " + d.response_name), rows, (new_rows ? 5 : 6) + (scheffe ? 2 : 0));
    pred.row_head = "row";
    pred.row_labels = numbers;
    std::vector<const std::vector<double> *> cols = {&yhat, &lo_mean, &hi_mean, &lo_new, &hi_new};
    pred.column_labels = {"predicted", "lower mean", "upper mean", "lower new", "upper new"};
    if (scheffe) {
        cols.insert(cols.end(), {&lo_s, &hi_s});
        pred.column_labels.insert(pred.column_labels.end(), {"lower Scheffe", "upper Scheffe"});
    }
    if (!new_rows) {
        cols.insert(cols.begin(), &d.y);
        pred.column_labels.insert(pred.column_labels.begin(), d.response_name);
    }
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t j = 0; j < cols.size(); ++j) pred.at(i, j) = (*cols[j])[i];
    ctx.out->matrix(pred);
    ctx.out->note(std::string("Limits at ") + level + " per cent for the mean and for a new observation" +
                  (scheffe ? ", and Scheffe's simultaneous limits for the mean." : "."));

    Matrix cases = result(new_rows ? "Leverage" : "Case statistics", rows, new_rows ? 1 : 6);
    cases.row_head = "row";
    cases.row_labels = numbers;
    if (new_rows) {
        cases.column_labels = {"leverage"};
        cases.values = leverage;
    } else {
        cases.column_labels = {"residual", "leverage", "std. residual", "deleted res.", "Cook's D", "DFFITS"};
        const std::vector<double> *c[] = {&res, &leverage, &std_res, &del_res, &cooks, &dffits};
        for (std::size_t i = 0; i < rows; ++i)
            for (std::size_t j = 0; j < 6; ++j) cases.at(i, j) = (*c[j])[i];
    }
    ctx.out->matrix(cases);
    return status_ok;
}

}  // namespace

const Command predict_command{
    "predict",
    "predictions and their limits from a linear regression",
    "[RESPONSE [REGRESSOR...]]",
    "Fits RESPONSE on the REGRESSORs as 'regress' does and predicts each row:\n"
    "the predicted value, limits for the mean and for a new observation, and\n"
    "the case statistics (residual, leverage, standardised and deleted\n"
    "residuals, Cook's distance, DFFITS).  With --new FILE the rows of FILE\n"
    "are predicted instead (columns by the regressors' names).",
    "cars.csv",
    [] {
        std::vector<OptionForm> o = {
            {"new", "FILE", "predict the rows of FILE (CSV or TSV with the regressors' columns)"},
            {"confidence", "P", "confidence level of the limits, per cent (default 95)"},
            {"scheffe", "", "also Scheffe's simultaneous limits for the mean"},
        };
        for (OptionForm &d : design_options()) o.push_back(d);
        return o;
    }(),
    run,
};

}  // namespace zcli
