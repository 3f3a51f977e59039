// pending.cpp - commands named in the help whose analysis is not built yet.
// Each one answers "not yet built" with the usage status.  A command that is
// built moves out of here into cli/commands/<name>.cpp with its descriptor.
#include "command.hpp"

namespace zcli {
namespace {

int not_yet_built(Context &ctx) {
    usage_error(std::string("'") + ctx.command.name + "' is not yet built");
}

}  // namespace

const Command kmeans_command{"kmeans", "k-means clustering", "[COLUMN...]", "", "iris.csv", {},
                             not_yet_built};
const Command pca_command{"pca", "principal components", "[COLUMN...]", "", "iris.csv", {}, not_yet_built};

}  // namespace zcli
