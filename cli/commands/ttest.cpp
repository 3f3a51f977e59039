#include "command.hpp"

namespace zcli {
namespace {
int run(Context &ctx) { usage_error(std::string("'") + ctx.command.name + "' is not yet built"); }
}  // namespace
const Command ttest_command{"ttest", "TODO", "[COLUMN...]", "", "sleep.csv", {}, run};
}  // namespace zcli
