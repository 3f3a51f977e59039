// analysis.cpp - pieces shared by the analysis commands; see analysis.hpp.
#include "analysis.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numeric>

namespace zcli {

std::vector<std::string> option_list(const Arguments &args, std::string_view name) {
    std::vector<std::string> out;
    auto v = args.value(name);
    if (!v) return out;
    std::size_t start = 0;
    for (;;) {
        std::size_t comma = v->find(',', start);
        out.push_back(v->substr(start, comma == std::string::npos ? std::string::npos : comma - start));
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    return out;
}

std::vector<int> integer_list(const Arguments &args, std::string_view name, std::vector<int> fallback) {
    std::vector<std::string> words = option_list(args, name);
    if (words.empty()) return fallback;
    std::vector<int> out;
    for (const std::string &w : words) out.push_back(Arguments::integer_operand(w, "--" + std::string(name)));
    return out;
}

Matrix result(std::string title, std::size_t rows, std::size_t columns) {
    Matrix m(std::move(title), rows, columns);
    m.format = "%12.5g";
    return m;
}

std::size_t first_numeric(const Context &ctx) {
    std::vector<std::size_t> numeric = ctx.select({});
    return numeric.front();
}

std::size_t first_text(const Context &ctx) {
    for (std::size_t j = 0; j < ctx.data.columns(); ++j)
        if (!ctx.data.column(j).numeric) return j;
    data_error(ctx.data.source() + " has no text column to take the groups from: name the group column");
}

Data::Groups sorted_groups(const Data &data, std::size_t column) {
    Data::Groups g = data.groups(column);
    const bool numeric = data.column(column).numeric;
    std::vector<double> value(g.levels.size());
    for (std::size_t k = 0; k < g.levels.size(); ++k) value[k] = std::strtod(g.levels[k].c_str(), nullptr);
    std::vector<std::size_t> order(g.levels.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return numeric ? value[a] < value[b] : g.levels[a] < g.levels[b];
    });
    std::vector<int> place(order.size());
    std::vector<std::string> levels(order.size());
    for (std::size_t k = 0; k < order.size(); ++k) {
        place[order[k]] = static_cast<int>(k);
        levels[k] = g.levels[order[k]];
    }
    for (int &r : g.of_row)
        if (r >= 0) r = place[static_cast<std::size_t>(r)];
    g.levels = std::move(levels);
    return g;
}

GroupedResponses grouped(const Context &ctx, std::size_t response, std::size_t group) {
    const double *y = ctx.data.numbers(response);
    ctx.data.int_rows();
    Data::Groups lv = ctx.data.groups(group);
    GroupedResponses g;
    g.names = lv.levels;
    g.sizes.assign(lv.levels.size(), 0);
    std::vector<std::vector<double>> by(lv.levels.size());
    for (std::size_t i = 0; i < ctx.data.rows(); ++i) {
        int k = lv.of_row[i];
        if (k < 0 || (ctx.common.listwise && std::isnan(y[i]))) continue;
        by[k].push_back(y[i]);
    }
    for (std::size_t k = 0; k < by.size(); ++k) {
        g.sizes[k] = static_cast<int>(by[k].size());
        g.y.insert(g.y.end(), by[k].begin(), by[k].end());
    }
    if (g.names.empty()) data_error(ctx.data.source() + ": the group column '" + ctx.data.column(group).name + "' is empty");
    return g;
}

void anova_output(Output &out, const double table[15], const std::string &title, const std::string &between) {
    const double nan = std::nan("");
    Matrix sources = result(title, 3, 5);
    sources.row_labels = {between, "error", "total"};
    sources.column_labels = {"df", "sum of sq.", "mean sq.", "F", "p-value"};
    sources.row_head = "source";
    const double cells[15] = {table[0], table[3], table[6], table[8], table[9],
                              table[1], table[4], table[7], nan,      nan,
                              table[2], table[5], nan,      nan,      nan};
    sources.values.assign(cells, cells + 15);
    out.matrix(sources);
    Matrix fit = result("Summary of the fit", 5, 1);
    fit.row_labels = {"R-squared (%)", "adjusted R-squared (%)", "std. dev. of error", "mean of response",
                      "coef. of variation (%)"};
    fit.column_labels = {"value"};
    fit.values.assign(table + 10, table + 15);
    out.matrix(fit);
}

namespace {

// The labels of the regressor columns of one column of an effect: a class
// variable's dummies under the scheme (1 all levels, 2 and 3 all but the
// last), a continuous column's name.
std::vector<std::string> column_block(const std::string &name, const std::vector<std::string> *levels, int dummy) {
    if (!levels) return {name};
    std::vector<std::string> out;
    std::size_t used = dummy == 1 ? levels->size() : (levels->empty() ? 0 : levels->size() - 1);
    for (std::size_t k = 0; k < used; ++k) out.push_back(name + "=" + (*levels)[k]);
    return out;
}

// The labels of one effect's block: the Kronecker order of the library,
// the effect's last column varying fastest.
std::vector<std::string> effect_block(const std::vector<std::vector<std::string>> &parts) {
    std::vector<std::string> out = {""};
    for (const auto &part : parts) {
        std::vector<std::string> next;
        for (const std::string &head : out)
            for (const std::string &p : part) next.push_back(head.empty() ? p : head + "*" + p);
        out = next;
    }
    return out;
}

}  // namespace

Design regression_design(const Context &ctx, const Data *extra) {
    const Data &data = ctx.data;
    const auto &ops = ctx.args.operands();
    Design d;
    std::vector<std::size_t> except;
    if (!ctx.common.freq_column.empty()) except.push_back(data.find(ctx.common.freq_column));
    if (!ctx.common.weight_column.empty()) except.push_back(data.find(ctx.common.weight_column));
    if (ops.empty()) {
        std::vector<std::size_t> numeric = data.numeric_columns(except);
        if (numeric.size() < 2) data_error(data.source() + " needs a response and a regressor: name them");
        d.response = numeric.back();
        d.columns.assign(numeric.begin(), numeric.end() - 1);
    } else {
        d.response = data.find(ops[0]);
        if (ops.size() == 1) {
            for (std::size_t j : data.numeric_columns(except))
                if (j != d.response) d.columns.push_back(j);
        } else {
            for (std::size_t k = 1; k < ops.size(); ++k) d.columns.push_back(data.find(ops[k]));
        }
    }
    // Class columns: among the regressors, or added after them.
    std::vector<char> is_class(d.columns.size(), 0);
    for (const std::string &name : option_list(ctx.args, "class")) {
        std::size_t c = data.find(name);
        auto it = std::find(d.columns.begin(), d.columns.end(), c);
        if (it == d.columns.end()) {
            d.columns.push_back(c);
            is_class.push_back(1);
        } else {
            is_class[static_cast<std::size_t>(it - d.columns.begin())] = 1;
        }
    }
    for (std::size_t j : d.columns)
        if (j == d.response) usage_error("the response '" + data.column(j).name + "' is also a regressor");
    if (d.columns.empty()) data_error(data.source() + " has no regressor for '" + data.column(d.response).name + "'");
    d.response_name = data.column(d.response).name;
    d.intercept = !ctx.args.has("no-intercept");
    const int order = ctx.args.integer("order", 1);
    if (order != 1 && order != 2) usage_error("--order must be 1 or 2");
    static const struct {
        const char *name;
        int scheme;
    } schemes[] = {{"all", 1}, {"leave-last", 2}, {"sum-zero", 3}};
    auto given = ctx.args.value("dummy");
    const int dummy = given ? choose(schemes, *given, "dummy scheme").scheme : d.intercept ? 2 : 1;

    const double *response = data.numbers(d.response);
    d.n_rows = data.int_rows();
    d.n_extra = extra ? extra->int_rows() : 0;
    d.y.assign(response, response + data.rows());
    const std::size_t m = d.columns.size(), n_all = data.rows() + static_cast<std::size_t>(d.n_extra);
    std::vector<double> x(n_all * m);
    std::vector<std::vector<std::string>> class_levels(m);
    std::vector<int> class_positions;
    for (std::size_t j = 0; j < m; ++j) {
        const std::size_t c = d.columns[j];
        const std::string &name = data.column(c).name;
        const std::size_t extra_c = extra ? extra->find(name) : 0;
        if (is_class[j]) {
            // Codes 0, 1, ... in the sorted order of the data's levels.
            Data::Groups lv = sorted_groups(data, c);
            class_levels[j] = lv.levels;
            class_positions.push_back(static_cast<int>(j));
            for (std::size_t i = 0; i < data.rows(); ++i)
                x[i * m + j] = lv.of_row[i] < 0 ? std::nan("") : lv.of_row[i];
            if (extra) {
                std::vector<std::string> labels = extra->labels(extra_c);
                for (std::size_t i = 0; i < labels.size(); ++i) {
                    double code = std::nan("");
                    if (!labels[i].empty()) {
                        auto it = std::find(lv.levels.begin(), lv.levels.end(), labels[i]);
                        if (it == lv.levels.end())
                            data_error(extra->source() + ": level '" + labels[i] + "' of '" + name + "' is not in " +
                                       data.source());
                        code = static_cast<double>(it - lv.levels.begin());
                    }
                    x[(data.rows() + i) * m + j] = code;
                }
            }
        } else {
            const double *v = data.numbers(c);
            for (std::size_t i = 0; i < data.rows(); ++i) x[i * m + j] = v[i];
            if (extra) {
                const double *e = extra->numbers(extra_c);
                for (std::size_t i = 0; i < extra->rows(); ++i) x[(data.rows() + i) * m + j] = e[i];
            }
        }
    }
    if (class_positions.empty() && order == 1) {
        d.x = std::move(x);
        d.n_regressors = static_cast<int>(m);
        for (std::size_t c : d.columns) d.labels.push_back(data.column(c).name);
        return d;
    }

    // Effects in the library's order: the columns; with order 2 then the
    // square of each continuous column, then each pair i < j.
    std::vector<std::vector<std::size_t>> effects;
    for (std::size_t j = 0; j < m; ++j) effects.push_back({j});
    if (order == 2) {
        for (std::size_t j = 0; j < m; ++j)
            if (!is_class[j]) effects.push_back({j, j});
        for (std::size_t i = 0; i < m; ++i)
            for (std::size_t j = i + 1; j < m; ++j) effects.push_back({i, j});
    }
    for (const auto &e : effects) {
        std::vector<std::vector<std::string>> parts;
        for (std::size_t j : e)
            parts.push_back(column_block(data.column(d.columns[j]).name, is_class[j] ? &class_levels[j] : nullptr, dummy));
        if (e.size() == 2 && e[0] == e[1]) parts = {{data.column(d.columns[e[0]]).name + "^2"}};
        for (std::string &l : effect_block(parts)) d.labels.push_back(std::move(l));
    }

    const int n_class = static_cast<int>(class_positions.size()), n_cont = static_cast<int>(m) - n_class;
    int no_class = 0;
    double *regressors = nullptr;
    int count = zorvs_d_regressors_for_glm(static_cast<int>(n_all), x.data(), n_class, n_cont, ZORVS_X_CLASS_COLUMNS,
                                           n_class ? class_positions.data() : &no_class, ZORVS_MODEL_ORDER, order,
                                           ZORVS_DUMMY, dummy, ZORVS_REGRESSORS, &regressors, 0);
    Owned<double> owned(regressors);
    library_check();
    if (count != static_cast<int>(d.labels.size()))
        throw Failure(status_software, "regressor labels do not match the design");
    d.n_regressors = count;
    d.x.assign(regressors, regressors + n_all * static_cast<std::size_t>(count));
    return d;
}

std::vector<OptionForm> design_options() {
    return {
        {"class", "COLS", "regressors that are class variables, comma-separated"},
        {"dummy", "SCHEME", "dummies of a class: all, leave-last (default with intercept), sum-zero"},
        {"order", "N", "1: main effects (default); 2: also squares and products of pairs"},
        {"no-intercept", "", "fit no intercept"},
        {"tolerance", "T", "rank tolerance (default 100 eps)"},
    };
}

void regression_fit(const Context &ctx, Design &d, double *coef, double *anova, double *residuals,
                    zorvs_d_regression_info **info) {
    // The library's own default tolerance, 100 eps, unless given.
    const double tolerance = ctx.args.real("tolerance", 100 * DBL_EPSILON);
    double *f = const_cast<double *>(ctx.frequencies()), *w = const_cast<double *>(ctx.weights());
    if (d.intercept)
        zorvs_d_regression(d.n_rows, d.n_regressors, d.x.data(), d.y.data(), ZORVS_TOLERANCE, tolerance,
                           ZORVS_FREQUENCIES, f, ZORVS_WEIGHTS, w, ZORVS_REGRESSION_INFO, info,
                           ZORVS_ANOVA_TABLE_USER, anova, ZORVS_RESIDUAL_USER, residuals, ZORVS_RETURN_USER, coef, 0);
    else
        zorvs_d_regression(d.n_rows, d.n_regressors, d.x.data(), d.y.data(), ZORVS_NO_INTERCEPT, ZORVS_TOLERANCE,
                           tolerance, ZORVS_FREQUENCIES, f, ZORVS_WEIGHTS, w, ZORVS_REGRESSION_INFO, info,
                           ZORVS_ANOVA_TABLE_USER, anova, ZORVS_RESIDUAL_USER, residuals, ZORVS_RETURN_USER, coef, 0);
    library_check();
}

std::size_t series_column(const Context &ctx) {
    return operand_column(ctx, 0, [&] { return ctx.select({}).back(); });
}

void arma_fit(const Context &ctx, bool least_squares, ArmaFit &fit) {
    const std::size_t column = series_column(ctx);
    fit.name = ctx.data.column(column).name;
    const int n = ctx.data.int_rows();
    std::vector<double> z(ctx.data.numbers(column), ctx.data.numbers(column) + n);
    fit.p = ctx.args.integer("p", 1);
    fit.q = ctx.args.integer("q", 1);
    fit.least_squares = least_squares || ctx.args.has("least-squares");
    const bool constant = !ctx.args.has("no-constant");
    if (!fit.least_squares)
        for (const char *o : {"no-constant", "ar-lags", "ma-lags", "backcast", "tolerance", "max-iterations"})
            if (ctx.args.has(o)) usage_error(std::string("--") + o + " serves the least-squares fit: add --least-squares");
    std::vector<int> ar_default, ma_default;
    for (int i = 1; i <= fit.p; ++i) ar_default.push_back(i);
    for (int j = 1; j <= fit.q; ++j) ma_default.push_back(j);
    fit.ar_lags = integer_list(ctx.args, "ar-lags", ar_default);
    fit.ma_lags = integer_list(ctx.args, "ma-lags", ma_default);
    if (fit.p >= 0 && fit.ar_lags.size() != static_cast<std::size_t>(fit.p)) usage_error("--ar-lags must list p lags");
    if (fit.q >= 0 && fit.ma_lags.size() != static_cast<std::size_t>(fit.q)) usage_error("--ma-lags must list q lags");
    const std::size_t np = static_cast<std::size_t>(std::max(fit.p, 0) + std::max(fit.q, 0) + 1);
    fit.parameters.assign(np, std::nan(""));
    fit.autocov.assign(np + 1, std::nan(""));
    fit.k = static_cast<int>(np) - (constant ? 0 : 1);
    fit.covariances.assign(static_cast<std::size_t>(fit.k) * static_cast<std::size_t>(fit.k), std::nan(""));
    void *info = nullptr;
    int lag_none = 0;
    double *ar = fit.parameters.data() + 1, *ma = ar + std::max(fit.p, 0);
    if (!fit.least_squares) {
        zorvs_d_arma(n, z.data(), fit.p, fit.q, ZORVS_AUTOCOV_USER, fit.autocov.data(), ZORVS_ARMA_INFO, &info,
                     ZORVS_RETURN_USER, fit.parameters.data(), ar, ma, 0);
    } else {
        // The library's defaults, given explicitly: 10 backcasts with
        // threshold 0, tolerance max(1e-9, eps^(2/3)), 200 iterations.
        const double tolerance = ctx.args.real("tolerance", std::max(1.0e-9, std::cbrt(DBL_EPSILON * DBL_EPSILON)));
        zorvs_d_arma(n, z.data(), fit.p, fit.q, ZORVS_LEAST_SQUARES, constant ? ZORVS_CONSTANT : ZORVS_NO_CONSTANT,
                     ZORVS_AR_LAGS, fit.p > 0 ? fit.ar_lags.data() : &lag_none, ZORVS_MA_LAGS,
                     fit.q > 0 ? fit.ma_lags.data() : &lag_none, ZORVS_BACKCASTING, ctx.args.integer("backcast", 10),
                     0.0, ZORVS_CONVERGENCE_TOLERANCE, tolerance, ZORVS_MAX_ITERATIONS,
                     ctx.args.integer("max-iterations", 200), ZORVS_PARAM_EST_COV_USER, fit.covariances.data(),
                     ZORVS_SS_RESIDUAL, &fit.ss_residual, ZORVS_AUTOCOV_USER, fit.autocov.data(), ZORVS_ARMA_INFO,
                     &info, ZORVS_RETURN_USER, fit.parameters.data(), ar, ma, 0);
    }
    fit.info.p = static_cast<zorvs_arma_info *>(info);
    library_check();
    fit.labels = {"constant"};
    for (int i = 0; i < fit.p; ++i) fit.labels.push_back("AR(" + std::to_string(fit.ar_lags[static_cast<std::size_t>(i)]) + ")");
    for (int j = 0; j < fit.q; ++j) fit.labels.push_back("MA(" + std::to_string(fit.ma_lags[static_cast<std::size_t>(j)]) + ")");
}

std::vector<OptionForm> arma_options(bool forecast) {
    const std::string ls = forecast ? "" : " (least squares)";
    std::vector<OptionForm> o = {
        {"p", "P", "autoregressive order (default 1)"},
        {"q", "Q", "moving-average order (default 1)"},
        {"no-constant", "", "fit no constant" + ls},
        {"ar-lags", "LIST", "lags of the autoregressive parameters, default 1..p" + ls},
        {"ma-lags", "LIST", "lags of the moving-average parameters, default 1..q" + ls},
        {"backcast", "L", "backcast length, default 10" + ls},
        {"tolerance", "T", "convergence tolerance of the search" + ls},
        {"max-iterations", "N", "limit of the search, default 200" + ls},
    };
    if (!forecast) o.insert(o.begin() + 2, {"least-squares", "", "least squares started from the moments estimate"});
    return o;
}

}  // namespace zcli
