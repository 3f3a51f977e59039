#include "command.hpp"

namespace zcli {
namespace {
int run(Context &ctx) { usage_error(std::string("'") + ctx.command.name + "' is not yet built"); }
}  // namespace
const Command cor_command{"cor", "TODO", "[COLUMN...]", "", "stackloss.csv", {}, run};
}  // namespace zcli
