#include "command.hpp"

namespace zcli {
namespace {
int run(Context &ctx) { usage_error(std::string("'") + ctx.command.name + "' is not yet built"); }
}  // namespace
const Command rank_command{"rank", "TODO", "[COLUMN...]", "", "cars.csv", {}, run};
}  // namespace zcli
