// random.cpp - deviates from the library's generators, in its shared
// stream: `zorvstat random normal 10 --seed 123457`.
//
// Without --seed the library seeds itself from the clock; the seed in use
// is shown in a note (and the json notes) so that the run can be repeated.
#include <string>
#include <vector>

#include "command.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

struct Generator {
    const char *name;
    const char *parameters;
    int arity;
};
const Generator generators[] = {
    {"uniform", "", 0}, {"normal", "", 0},         {"exponential", "", 0},
    {"gamma", "a", 1},  {"beta", "p q", 2},        {"poisson", "theta", 1},
};

int run(Context &ctx) {
    const auto &operands = ctx.args.operands();
    const Generator *g = &choose(generators, operands.empty() ? "" : operands[0], "generator",
                                 +[](const Generator &e) { return std::string("N ") + e.parameters; });
    if (static_cast<int>(operands.size()) != g->arity + 2)
        usage_error(std::string(g->name) + " takes N" + (g->arity ? std::string(" ") + g->parameters : "") +
                    " as operands");
    int n = Arguments::integer_operand(operands[1], "N");
    if (n < 1) usage_error("N must be at least 1, not '" + operands[1] + "'");
    double p1 = g->arity > 0 ? Arguments::real_operand(operands[2], "the first parameter") : 0.0;
    double p2 = g->arity > 1 ? Arguments::real_operand(operands[3], "the second parameter") : 0.0;

    if (ctx.args.has("generator")) {
        zorvs_random_option(ctx.args.integer("generator", 1));
        library_check();
    }
    if (ctx.args.has("seed")) {
        zorvs_random_seed_set(ctx.args.integer("seed", 0));
        library_check();
    }
    int seed = zorvs_random_seed_get();
    library_check();

    Matrix m(ctx.title(std::string("Random ") + g->name + " deviates"), static_cast<std::size_t>(n), 1);
    m.column_labels = {g->name};
    std::string kind = operands[0];
    if (kind == "poisson") {
        std::vector<int> k(n);
        zorvs_random_poisson(n, static_cast<float>(p1), ZORVS_RETURN_USER, k.data(), 0);
        library_check();
        for (int i = 0; i < n; ++i) m.values[i] = k[i];
    } else {
        double *x = m.values.data();
        if (kind == "uniform") zorvs_d_random_uniform(n, ZORVS_RETURN_USER, x, 0);
        else if (kind == "normal") zorvs_d_random_normal(n, ZORVS_RETURN_USER, x, 0);
        else if (kind == "exponential") zorvs_d_random_exponential(n, ZORVS_RETURN_USER, x, 0);
        else if (kind == "gamma") zorvs_d_random_gamma(n, p1, ZORVS_RETURN_USER, x, 0);
        else zorvs_d_random_beta(n, p1, p2, ZORVS_RETURN_USER, x, 0);
        library_check();
        m.format = "%17.10w";
    }
    ctx.out->matrix(m);
    ctx.out->note("Seed " + std::to_string(seed) + " (--seed " + std::to_string(seed) + " repeats the run).");
    return status_ok;
}

}  // namespace

const Command random_command{
    "random",
    "random deviates from the library's generators, seeded",
    "NAME N [PARAMETER...]",
    "N deviates of uniform, normal, exponential, gamma A, beta P Q or\n"
    "poisson THETA, from the library's shared stream.",
    nullptr,
    {
        {"seed", "S", "seed of the stream (default: from the clock, shown in a note)"},
        {"generator", "K", "the generator, 1 to 6 (multiplier, with or without shuffling)"},
    },
    run,
};

}  // namespace zcli
