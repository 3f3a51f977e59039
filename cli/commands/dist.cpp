// dist.cpp - a distribution function, its inverse or a special function of
// the library at given arguments: `zorvstat dist t_cdf 2.1 10`.
//
// The name is the routine's name without its zorvs_d_ prefix; the
// arguments are its arguments in order.  Several values of the first
// argument may be given as a comma-separated list; the output is a table of
// one row per value.
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "command.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

// One function: how many arguments, which of them are whole numbers (a
// bit per argument), and the call.
struct Function {
    const char *name;
    const char *arguments;
    int arity;
    unsigned whole;
    double (*call)(const double *a);
};

int whole(double v) { return static_cast<int>(v); }

const Function functions[] = {
    {"normal_cdf", "x", 1, 0, [](const double *a) { return zorvs_d_normal_cdf(a[0]); }},
    {"normal_inverse_cdf", "p", 1, 0, [](const double *a) { return zorvs_d_normal_inverse_cdf(a[0]); }},
    {"t_cdf", "t df", 2, 0, [](const double *a) { return zorvs_d_t_cdf(a[0], a[1]); }},
    {"t_inverse_cdf", "p df", 2, 0, [](const double *a) { return zorvs_d_t_inverse_cdf(a[0], a[1]); }},
    {"chi_squared_cdf", "x df", 2, 0, [](const double *a) { return zorvs_d_chi_squared_cdf(a[0], a[1]); }},
    {"chi_squared_inverse_cdf", "p df", 2, 0,
     [](const double *a) { return zorvs_d_chi_squared_inverse_cdf(a[0], a[1]); }},
    {"F_cdf", "f df1 df2", 3, 0, [](const double *a) { return zorvs_d_F_cdf(a[0], a[1], a[2]); }},
    {"F_inverse_cdf", "p df1 df2", 3, 0, [](const double *a) { return zorvs_d_F_inverse_cdf(a[0], a[1], a[2]); }},
    {"beta_cdf", "x a b", 3, 0, [](const double *a) { return zorvs_d_beta_cdf(a[0], a[1], a[2]); }},
    {"beta_inverse_cdf", "p a b", 3, 0, [](const double *a) { return zorvs_d_beta_inverse_cdf(a[0], a[1], a[2]); }},
    {"gamma_cdf", "x a", 2, 0, [](const double *a) { return zorvs_d_gamma_cdf(a[0], a[1]); }},
    {"bivariate_normal_cdf", "x y rho", 3, 0,
     [](const double *a) { return zorvs_d_bivariate_normal_cdf(a[0], a[1], a[2]); }},
    {"poisson_cdf", "k theta", 2, 1, [](const double *a) { return zorvs_d_poisson_cdf(whole(a[0]), a[1]); }},
    {"binomial_cdf", "k n p", 3, 3,
     [](const double *a) { return zorvs_d_binomial_cdf(whole(a[0]), whole(a[1]), a[2]); }},
    {"hypergeometric_cdf", "k n m l", 4, 15,
     [](const double *a) { return zorvs_d_hypergeometric_cdf(whole(a[0]), whole(a[1]), whole(a[2]), whole(a[3])); }},
    {"erf", "x", 1, 0, [](const double *a) { return zorvs_d_erf(a[0]); }},
    {"erfc", "x", 1, 0, [](const double *a) { return zorvs_d_erfc(a[0]); }},
    {"gamma", "x", 1, 0, [](const double *a) { return zorvs_d_gamma(a[0]); }},
    {"log_gamma", "x", 1, 0, [](const double *a) { return zorvs_d_log_gamma(a[0]); }},
    {"beta", "a b", 2, 0, [](const double *a) { return zorvs_d_beta(a[0], a[1]); }},
    {"log_beta", "a b", 2, 0, [](const double *a) { return zorvs_d_log_beta(a[0], a[1]); }},
    {"gamma_incomplete", "a x", 2, 0, [](const double *a) { return zorvs_d_gamma_incomplete(a[0], a[1]); }},
    {"beta_incomplete", "x a b", 3, 0, [](const double *a) { return zorvs_d_beta_incomplete(a[0], a[1], a[2]); }},
};

int run(Context &ctx) {
    const auto &operands = ctx.args.operands();
    const Function *f = &choose(functions, operands.empty() ? "" : operands[0], "function",
                                +[](const Function &e) { return std::string(e.arguments); });
    if (static_cast<int>(operands.size()) != f->arity + 1)
        usage_error(std::string(f->name) + " takes " + std::to_string(f->arity) + " arguments: " + f->arguments);

    std::vector<std::string> names;
    std::istringstream in(f->arguments);
    for (std::string name; in >> name;) names.push_back(name);
    double a[4];
    for (int k = 1; k < f->arity; ++k) {
        a[k] = Arguments::real_operand(operands[k + 1], names[k]);
        if ((f->whole >> k & 1) && !(a[k] == std::floor(a[k]) && std::fabs(a[k]) < 2147483648.0))
            usage_error(names[k] + " must be a whole number, not '" + operands[k + 1] + "'");
    }
    std::vector<double> firsts;
    std::istringstream list(operands[1]);
    for (std::string item; std::getline(list, item, ',');) {
        double v = Arguments::real_operand(item, names[0]);
        if ((f->whole & 1) && !(v == std::floor(v) && std::fabs(v) < 2147483648.0))
            usage_error(names[0] + " must be a whole number, not '" + item + "'");
        firsts.push_back(v);
    }
    if (firsts.empty()) usage_error("no value of " + names[0]);

    Matrix m(ctx.title(f->name), firsts.size(), static_cast<std::size_t>(f->arity) + 1);
    m.column_labels = names;
    m.column_labels.push_back(f->name);
    m.row_labels.assign(firsts.size(), "");
    m.format = "%17.10w";
    for (std::size_t i = 0; i < firsts.size(); ++i) {
        a[0] = firsts[i];
        double v = f->call(a);
        library_check();
        for (int k = 0; k < f->arity; ++k) m.at(i, k) = a[k];
        m.at(i, f->arity) = v;
    }
    ctx.out->matrix(m);
    return status_ok;
}

}  // namespace

const Command dist_command{
    "dist",
    "a distribution function, its inverse, or a special function",
    "NAME ARG...",
    "The library's function NAME (its name without the zorvs_d_ prefix) at the\n"
    "arguments, in double precision: 'zorvstat dist t_cdf 2.1 10'.  The first\n"
    "argument may be a list, '0.9,0.95,0.99'.  'zorvstat dist' lists the names.",
    nullptr,
    {},
    run,
};

}  // namespace zcli
