// forecast.cpp - forecasts of an ARMA model with probability limits and
// psi weights: zorvs_d_arma by least squares (the forecasts need the
// fit's residuals), then zorvs_d_arma_forecast from its record.
#include <cstdio>
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    ArmaFit fit;
    arma_fit(ctx, true, fit);
    const int leads = ctx.args.integer("leads", 10);
    const double confidence = ctx.args.real("confidence", 95.0);
    const std::size_t h = leads > 0 ? static_cast<std::size_t>(leads) : 0;
    std::vector<double> table(3 * h + 1), psi(h + 1);
    zorvs_d_arma_forecast(fit.info.get(), leads, ZORVS_CONFIDENCE, confidence, ZORVS_PSI_WEIGHTS_USER, psi.data(),
                          ZORVS_RETURN_USER, table.data(), 0);
    library_check();

    Matrix par = result("ARMA(" + std::to_string(fit.p) + ", " + std::to_string(fit.q) + ") of " + fit.name +
                            ", least squares",
                        fit.parameters.size(), 1);
    par.row_labels = fit.labels;
    par.column_labels = {"estimate"};
    par.values = fit.parameters;
    char level[32];
    std::snprintf(level, sizeof level, "%g", confidence);
    Matrix f = result(ctx.title("Forecasts of " + fit.name), h, 4);
    f.row_head = "lead";
    f.column_labels = {"forecast", std::string("lower ") + level + "%", std::string("upper ") + level + "%", "psi"};
    for (std::size_t i = 0; i < h; ++i) {
        f.row_labels.push_back(std::to_string(i + 1));
        for (std::size_t j = 0; j < 3; ++j) f.at(i, j) = table[3 * i + j];
        f.at(i, 3) = psi[i];
    }
    ctx.out->matrix(f);
    ctx.out->matrix(par);
    return status_ok;
}

}  // namespace

const Command forecast_command{
    "forecast",
    "forecasts of an ARMA model with their limits",
    "[COLUMN]",
    "Fits an ARMA(p, q) model to COLUMN (default: the last numeric column) by\n"
    "least squares and forecasts it --leads steps past its end, with\n"
    "probability limits and the psi weights of the model.",
    "lakehuron.csv",
    [] {
        std::vector<OptionForm> o = {
            {"leads", "H", "number of forecasts (default 10)"},
            {"confidence", "P", "confidence level of the limits, per cent (default 95)"},
        };
        for (OptionForm &a : arma_options(true)) o.push_back(a);
        return o;
    }(),
    run,
};

}  // namespace zcli
