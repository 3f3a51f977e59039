// diff.cpp - differences of a series: zorvs_d_difference with the operators
// (1 - B^period)^order.
//
// The series is the operand or the last numeric column, and must have no
// missing value.  The observations lost at the head stay as missing values
// unless --exclude-first drops them.
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    const std::size_t column = series_column(ctx);
    const int n = ctx.data.int_rows();
    std::vector<int> periods = integer_list(ctx.args, "periods", {1});
    std::vector<int> orders = integer_list(ctx.args, "orders", std::vector<int>(periods.size(), 1));
    if (orders.size() != periods.size()) usage_error("--orders must give one order per period");
    const bool exclude = ctx.args.has("exclude-first");
    std::vector<double> w(static_cast<std::size_t>(n) + 1);
    int lost = 0;
    zorvs_d_difference(n, const_cast<double *>(ctx.data.numbers(column)), static_cast<int>(periods.size()),
                       periods.data(), ZORVS_ORDERS, orders.data(), ZORVS_NUM_LOST, &lost,
                       exclude ? ZORVS_EXCLUDE_FIRST : ZORVS_SET_FIRST_TO_NAN, ZORVS_RETURN_USER, w.data(), 0);
    library_check();
    const std::size_t kept = exclude ? static_cast<std::size_t>(n > lost ? n - lost : 0) : static_cast<std::size_t>(n);
    std::string op;
    for (std::size_t k = 0; k < periods.size(); ++k)
        op += "(1 - B^" + std::to_string(periods[k]) + ")" + (orders[k] == 1 ? "" : "^" + std::to_string(orders[k]));
    const std::string &name = ctx.data.column(column).name;
    Matrix m = result(ctx.title(op + " " + name), kept, 1);
    m.row_head = "row";
    for (std::size_t i = 0; i < kept; ++i) m.row_labels.push_back(std::to_string(i + 1 + (exclude ? static_cast<std::size_t>(lost) : 0)));
    m.column_labels = {name};
    m.values.assign(w.begin(), w.begin() + static_cast<long>(kept));
    ctx.out->matrix(m);
    ctx.out->value("Observations lost", lost);
    return status_ok;
}

}  // namespace

const Command diff_command{
    "diff",
    "differences of a series",
    "[COLUMN]",
    "Applies the differencing operators (1 - B^period)^order to COLUMN\n"
    "(default: the last numeric column), the last operator first: with\n"
    "--periods 1,12 the monthly series' seasonal and first differences.  The\n"
    "rows keep their numbers; lost ones are missing unless --exclude-first.",
    "airpassengers.csv",
    {
        {"periods", "LIST", "periods of the operators, comma-separated (default 1)"},
        {"orders", "LIST", "how often each operator is applied (default 1 each)"},
        {"exclude-first", "", "leave out the observations lost at the head"},
    },
    run,
};

}  // namespace zcli
