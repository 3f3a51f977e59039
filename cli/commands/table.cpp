// table.cpp - one-way frequency table of a column: zorvs_d_table_oneway.
//
// A numeric column is counted in K equal intervals spanning its values
// (default 10), in K intervals with two open ends around --bounds LO,HI, or
// between given --cutpoints.  A text column is counted by label: the labels
// become the codes 1..L in order of first appearance, counted with the
// class marks 1..L (so does a numeric column with --distinct).  Missing values are left out (the routine takes none)
// and their number shown in a note.
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "command.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

std::vector<double> number_list(const std::string &text, const char *what) {
    std::vector<double> out;
    std::stringstream in(text);
    std::string item;
    while (std::getline(in, item, ',')) out.push_back(Arguments::real_operand(item, what));
    return out;
}

int run(Context &ctx) {
    const Data &data = ctx.data;
    const auto &operands = ctx.args.operands();
    if (operands.size() > 1) usage_error("one column is counted at a time");
    std::size_t column = operands.empty() ? ctx.select({}).front() : data.find(operands.front());
    const Column &c = data.column(column);
    std::size_t n_missing = 0;
    std::vector<double> x;
    Matrix table(ctx.title("Frequencies of " + c.name), 0, 0);

    if (!c.numeric || ctx.args.has("distinct")) {
        Data::Groups groups = data.groups(column);
        const std::vector<std::string> &levels = groups.levels;
        for (int place : groups.of_row) {
            if (place < 0) ++n_missing;
            else x.push_back(place + 1);
        }
        if (x.empty()) data_error("column '" + c.name + "' has no values");
        std::vector<double> marks(levels.size()), counts(levels.size());
        for (std::size_t k = 0; k < levels.size(); ++k) marks[k] = static_cast<double>(k + 1);
        zorvs_d_table_oneway(static_cast<int>(x.size()), x.data(), static_cast<int>(levels.size()), ZORVS_CLASS_MARKS,
                             marks.data(), ZORVS_RETURN_USER, counts.data(), 0);
        library_check();
        table = Matrix(table.title, levels.size(), 1);
        table.row_labels = levels;
        table.column_labels = {"count"};
        table.row_head = c.name;
        table.values = counts;
    } else {
        const double *v = data.numbers(column);
        for (std::size_t i = 0; i < data.rows(); ++i) {
            if (std::isnan(v[i])) ++n_missing;
            else x.push_back(v[i]);
        }
        int n = static_cast<int>(x.size());
        int k = ctx.args.integer("intervals", 10);
        std::vector<double> edges;   // the cells' lower and upper edges
        std::vector<double> counts;
        if (auto cut = ctx.args.value("cutpoints")) {
            std::vector<double> points = number_list(*cut, "--cutpoints");
            k = static_cast<int>(points.size()) + 1;
            counts.resize(k);
            zorvs_d_table_oneway(n, x.data(), k, ZORVS_CUTPOINTS, points.data(), ZORVS_RETURN_USER, counts.data(), 0);
            library_check();
            edges.push_back(-INFINITY);
            edges.insert(edges.end(), points.begin(), points.end());
            edges.push_back(INFINITY);
        } else if (auto b = ctx.args.value("bounds")) {
            std::vector<double> bounds = number_list(*b, "--bounds");
            if (bounds.size() != 2) usage_error("--bounds takes two numbers, LO,HI");
            counts.resize(k > 0 ? k : 0);
            zorvs_d_table_oneway(n, x.data(), k, ZORVS_KNOWN_BOUNDS, bounds[0], bounds[1], ZORVS_RETURN_USER,
                                 counts.data(), 0);
            library_check();
            double width = (bounds[1] - bounds[0]) / (k - 2);
            edges.push_back(-INFINITY);
            for (int j = 0; j <= k - 2; ++j) edges.push_back(j == k - 2 ? bounds[1] : bounds[0] + j * width);
            edges.push_back(INFINITY);
        } else {
            double lo = NAN, hi = NAN;
            counts.resize(k > 0 ? k : 0);
            zorvs_d_table_oneway(n, x.data(), k, ZORVS_DATA_BOUNDS, &lo, &hi, ZORVS_RETURN_USER, counts.data(), 0);
            library_check();
            double width = (hi - lo) / k;
            for (int j = 0; j <= k; ++j) edges.push_back(j == k ? hi : lo + j * width);
        }
        table = Matrix(table.title, static_cast<std::size_t>(k), 3);
        table.column_labels = {"lower", "upper", "count"};
        table.row_head = "cell";
        for (int j = 0; j < k; ++j) {
            table.at(j, 0) = edges[j];
            table.at(j, 1) = edges[j + 1];
            table.at(j, 2) = counts[j];
        }
        table.format = "%12.6w";
    }
    ctx.out->matrix(table);
    if (n_missing) ctx.out->note(std::to_string(n_missing) + " missing values left out.");
    return status_ok;
}

}  // namespace

const Command table_command{
    "table",
    "one-way frequency table of a column",
    "[COLUMN]",
    "Counts of a numeric column in intervals (equal ones spanning the data,\n"
    "--bounds with two open-ended cells, or --cutpoints), or of a text column\n"
    "by label.  COLUMN defaults to the first numeric column.",
    "faithful.csv",
    {
        {"intervals", "K", "number of cells (default 10; with --bounds, two of them open-ended)"},
        {"bounds", "LO,HI", "K - 2 equal cells between LO and HI, and one below and one above"},
        {"cutpoints", "C1,C2,...", "cells between increasing cutpoints, the first and last open-ended"},
        {"distinct", "", "count each distinct value, as for a text column"},
    },
    run,
};

}  // namespace zcli
