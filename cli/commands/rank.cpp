// rank.cpp - ranks or normal and exponential scores of columns:
// zorvs_d_ranks on each column, one row per row of the data.
//
// A missing value keeps a missing rank; the others are ranked among
// themselves.  Ties take the rule of --ties; --random-seed seeds the
// library's generator for the random split of ties.
#include <string>
#include <vector>

#include "command.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

struct Choice {
    const char *name;
    int keyword;
};
const Choice tie_rules[] = {{"average", ZORVS_AVERAGE_TIE}, {"lowest", ZORVS_LOWEST},
                            {"highest", ZORVS_HIGHEST}, {"random", ZORVS_RANDOM_SPLIT}};
const Choice score_kinds[] = {{"ranks", ZORVS_RANKS},
                              {"blom", ZORVS_BLOM_SCORES},
                              {"tukey", ZORVS_TUKEY_SCORES},
                              {"vdw", ZORVS_VAN_DER_WAERDEN_SCORES},
                              {"savage", ZORVS_SAVAGE_SCORES}};

int run(Context &ctx) {
    const Data &data = ctx.data;
    std::vector<std::size_t> columns = ctx.select(ctx.args.operands());
    int ties = choose(tie_rules, ctx.args.value("ties").value_or("average"), "tie rule").keyword;
    int scores = choose(score_kinds, ctx.args.value("scores").value_or("ranks"), "kind of score").keyword;
    double fuzz = ctx.args.real("fuzz", 0.0);
    if (ctx.args.has("seed")) zorvs_random_seed_set(ctx.args.integer("seed", 0));
    library_check();
    int n = data.int_rows();
    Matrix m(ctx.title(std::string(scores == ZORVS_RANKS ? "Ranks" : "Scores") + " of " + data.source()), data.rows(),
             columns.size());
    std::vector<double> r(data.rows());
    for (std::size_t k = 0; k < columns.size(); ++k) {
        double *x = const_cast<double *>(data.numbers(columns[k]));   // read, not written
        zorvs_d_ranks(n, x, ties, scores, ZORVS_FUZZ, fuzz, ZORVS_RETURN_USER, r.data(), 0);
        library_check();
        for (std::size_t i = 0; i < data.rows(); ++i) m.at(i, k) = r[i];
        m.column_labels.push_back(data.column(columns[k]).name);
    }
    if (scores != ZORVS_RANKS) m.format = "%12.6w";
    ctx.out->matrix(m);
    return status_ok;
}

}  // namespace

const Command rank_command{
    "rank",
    "ranks, or normal and exponential scores, of columns",
    "[COLUMN...]",
    "The rank of each value of each column among its present values (a\n"
    "missing value keeps a missing rank), or its Blom, Tukey, Van der Waerden\n"
    "or Savage score.",
    "cars.csv",
    {
        {"ties", "RULE", "average (default), lowest, highest or random"},
        {"scores", "KIND", "ranks (default), blom, tukey, vdw (Van der Waerden) or savage"},
        {"fuzz", "F", "values within F of their sorted neighbour are tied (default 0)"},
        {"seed", "S", "seed of the library's generator (random split of ties)"},
    },
    run,
};

}  // namespace zcli
