// registry.cpp - the commands of the program, in the order of the help.
// Each descriptor lives beside its command in cli/commands/.
#include "command.hpp"

namespace zcli {

const std::vector<const Command *> &registry() {
    static const std::vector<const Command *> commands = {
        &describe_command, &table_command,    &ttest_command,     &cor_command,       &rank_command,
        &regress_command,  &predict_command,  &anova_command,     &compare_command,   &crosstab_command,
        &gof_command,      &signtest_command, &ranksum_command,   &normality_command, &diff_command,
        &arma_command,     &forecast_command, &kmeans_command,    &pca_command,       &dist_command,
        &random_command,
    };
    return commands;
}

}  // namespace zcli
