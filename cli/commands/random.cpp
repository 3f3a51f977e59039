#include "command.hpp"

namespace zcli {
namespace {
int run(Context &ctx) { usage_error(std::string("'") + ctx.command.name + "' is not yet built"); }
}  // namespace
const Command random_command{"random", "TODO", "", "", nullptr, {}, run};
}  // namespace zcli
