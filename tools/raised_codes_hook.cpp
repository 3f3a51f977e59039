// raised_codes_hook.cpp - built into the test program of the coverage build
// only.  The program is linked with --wrap=zorvs_e1mes, so every message the
// library (or a test) raises passes through here first; when ZORVS_CODE_LOG
// names a file, one line "type code test" is appended to it for each raise
// of type 1 to 8, then the raise goes on as usual.  tools/raised_codes.sh
// reads the file.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

extern "C" void __real_zorvs_e1mes(int type, int code, const char *text);

namespace {

void log_raise(int type, int code) {
    static const char *path = std::getenv("ZORVS_CODE_LOG");
    if (!path || !*path) return;
    std::string test = "-";
    if (const auto *info = ::testing::UnitTest::GetInstance()->current_test_info())
        test = std::string(info->test_suite_name()) + "." + info->name();
    char line[512];
    int n = std::snprintf(line, sizeof line, "%d %d %s\n", type, code, test.c_str());
    if (n <= 0) return;
    if (n >= static_cast<int>(sizeof line)) n = sizeof line - 1;
    // One write with O_APPEND a line: the tests run in parallel processes,
    // and a raise of type 8 ends the process right after.
    int fd = open(path, O_WRONLY | O_APPEND | O_CREAT, 0644);
    if (fd < 0) return;
    ssize_t written = write(fd, line, static_cast<std::size_t>(n));
    (void)written;
    close(fd);
}

}  // namespace

extern "C" void __wrap_zorvs_e1mes(int type, int code, const char *text) {
    if (type >= 1 && type <= 8 && code > 0)
        log_raise(type, code);
    else if (type < -1 || type > 8)
        log_raise(8, 160);  // the raise refuses the type and reports 160
    __real_zorvs_e1mes(type, code, text);
}
