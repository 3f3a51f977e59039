// library.cpp - the program's side of the library's error system.
//
// The library prints its messages on its error unit; here that unit is a
// memory stream, passed on to standard error after every call, so that the
// program knows what was said (the json output carries it) and can follow a
// failed call with its own exit status.  The library still ends the process
// itself on an INTERNAL message: an exit handler passes on what was printed.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "framework.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

FILE *lv_errors = nullptr;
char *lv_buffer = nullptr;
std::size_t lv_size = 0, lv_passed = 0;
std::vector<std::string> lv_messages;

}  // namespace

void library_flush() {
    if (!lv_errors) return;
    std::fflush(lv_errors);
    if (lv_size > lv_passed) {
        std::string text(lv_buffer + lv_passed, lv_size - lv_passed);
        lv_passed = lv_size;
        // The library opens each message with a line feed.
        std::size_t from = text.find_first_not_of('\n');
        if (from == std::string::npos) return;
        text.erase(0, from);
        while (!text.empty() && text.back() == '\n') text.pop_back();
        // The same message from the same routine again (one call per column,
        // say) is said once.
        if (!lv_messages.empty() && lv_messages.back() == text) return;
        std::fprintf(stderr, "%s\n", text.c_str());
        std::fflush(stderr);
        lv_messages.push_back(text);
    }
}

void library_setup() {
    if (lv_errors) return;
    lv_errors = open_memstream(&lv_buffer, &lv_size);
    if (!lv_errors) return;  // messages then go straight to standard error
    zorvs_output_file(ZORVS_SET_ERROR_FILE, lv_errors, 0);
    zorvs_error_options(ZORVS_SET_STOP, 4, 0, ZORVS_SET_STOP, 5, 0, 0);
    std::atexit(library_flush);
}

void library_check() {
    library_flush();
    int type = zorvs_error_type();
    if (type == 4 || type == 5 || type == 7 || type == 8) throw Failure(type, "");
}

const std::vector<std::string> &library_messages() { return lv_messages; }

void usage_error(const std::string &message) { throw Failure(status_usage, message); }
void data_error(const std::string &message) { throw Failure(status_data, message); }

}  // namespace zcli
