// framework.hpp - the framework's own pieces that commands do not use.
#ifndef ZORVSTAT_CLI_FRAMEWORK_HPP
#define ZORVSTAT_CLI_FRAMEWORK_HPP

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "command.hpp"

namespace zcli {

// An output that keeps everything until finish() writes it to `f`; false
// when the writing failed.
class BufferedOutput : public Output {
public:
    virtual bool finish(FILE *f) = 0;
};
std::unique_ptr<BufferedOutput> make_output(const Context &ctx);

// The library's error unit goes into a buffer that library_check() and
// library_flush() pass on to standard error; stops of FATAL and TERMINAL
// messages are off, so the program reports them with its own status.
void library_setup();
void library_flush();
// The message texts passed on so far (for the json output).
const std::vector<std::string> &library_messages();

}  // namespace zcli

#endif
