// capture.hpp - test helpers: capture what the library prints on its error
// unit (or output unit), and switch the stops off for the length of a test.
#ifndef ZORVS_TEST_CAPTURE_HPP
#define ZORVS_TEST_CAPTURE_HPP

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "frame/services.h"
#include "zorvstat.h"

namespace zorvs_test {

// Everything the library writes to one of its units while the object lives.
class UnitCapture {
public:
    explicit UnitCapture(bool error_unit = true) : error_unit_(error_unit) {
        stream_ = open_memstream(&buffer_, &size_);
        zorvs_output_file(error_unit_ ? ZORVS_GET_ERROR_FILE : ZORVS_GET_OUTPUT_FILE, &previous_, 0);
        zorvs_output_file(error_unit_ ? ZORVS_SET_ERROR_FILE : ZORVS_SET_OUTPUT_FILE, stream_, 0);
    }
    ~UnitCapture() {
        zorvs_output_file(error_unit_ ? ZORVS_SET_ERROR_FILE : ZORVS_SET_OUTPUT_FILE, previous_, 0);
        std::fclose(stream_);
        std::free(buffer_);
    }
    UnitCapture(const UnitCapture &) = delete;
    UnitCapture &operator=(const UnitCapture &) = delete;

    // The text written since the object was made, or since the last take().
    std::string text() {
        std::fflush(stream_);
        return std::string(buffer_ + consumed_, size_ - consumed_);
    }
    // The same, and start again from empty.
    std::string take() {
        std::string t = text();
        consumed_ = size_;
        return t;
    }

private:
    bool error_unit_;
    FILE *stream_ = nullptr, *previous_ = nullptr;
    char *buffer_ = nullptr;
    std::size_t size_ = 0, consumed_ = 0;
};

// Types 4 and 5 do not stop the process while the object lives.
class NoStop {
public:
    NoStop() {
        zorvs_error_options(ZORVS_GET_STOP, 4, &fatal_, ZORVS_GET_STOP, 5, &terminal_, 0);
        zorvs_error_options(ZORVS_SET_STOP, 4, 0, ZORVS_SET_STOP, 5, 0, 0);
    }
    ~NoStop() { zorvs_error_options(ZORVS_SET_STOP, 4, fatal_, ZORVS_SET_STOP, 5, terminal_, 0); }

private:
    int fatal_ = 1, terminal_ = 1;
};

// The (type, code) of every message raised at once (types 5 to 8) and of
// every release at the return to user level, while the object lives.
// Texts change with the catalogue; codes do not, so tests look for codes.
class CodeLog {
public:
    CodeLog() {
        log_.clear();
        zorvs_set_at_checksum(&record);
    }
    ~CodeLog() { zorvs_set_at_checksum(nullptr); }
    CodeLog(const CodeLog &) = delete;
    CodeLog &operator=(const CodeLog &) = delete;

    bool has(int type, int code) const { return std::count(log_.begin(), log_.end(), std::pair(type, code)) > 0; }
    bool has_code(int code) const {
        return std::any_of(log_.begin(), log_.end(), [code](const auto &e) { return e.second == code; });
    }
    const std::vector<std::pair<int, int>> &entries() const { return log_; }
    void clear() { log_.clear(); }

private:
    static void record(int type, int code, const char *) {
        if (type != 0) log_.emplace_back(type, code);
    }
    static inline std::vector<std::pair<int, int>> log_;
};

// Messages captured and stops off: the usual setting of a test that checks
// what a routine reports.
struct Quiet {
    NoStop no_stop;
    UnitCapture errors{true};
};

// The parameter slots of the last message named in `wanted` ("i1=1 r2=0.5
// l1=n"), each with the value it holds now: a row's expected slots compare
// with one EXPECT_EQ(slots(wanted), wanted).  Reals print with %g.
inline std::string slots(const std::string &wanted) {
    std::istringstream in(wanted);
    std::string out, item;
    while (in >> item) {
        const int k = item[1] - '0';
        char real[32];
        std::snprintf(real, sizeof real, "%g", zorvs_error_param.r[k]);
        const char *l = zorvs_error_param.l[k] ? zorvs_error_param.l[k] : "(null)";
        out += (out.empty() ? "" : " ") + item.substr(0, 3) +
               (item[0] == 'i' ? std::to_string(zorvs_error_param.i[k]) : item[0] == 'r' ? real : l);
    }
    return out;
}

// An output option of zorvs_write_options, read and set.
inline int write_option(int k) { return zorvs_write_options(k, &k), k; }
inline void set_write_option(int k, int v) { zorvs_write_options(-k, &v); }

// A printed message with its continuation lines joined again.
inline std::string flat(std::string s) {
    const std::string wrap = "\n***          ";
    for (std::size_t k; (k = s.find(wrap)) != std::string::npos;) s.replace(k, wrap.size(), " ");
    return s;
}

// A row of a table of calls from user level: what the call raises, with
// the message's parameters and a piece of its printed text.
struct CallCase {
    const char *what;
    std::function<void()> call;  // may check its results itself
    int type, code;              // 0, 0: nothing raised
    const char *slots = "";      // as for slots()
    const char *shows = "";      // in the printed text, continuation lines joined
};

// Runs each row from a clean state, with stops off and messages captured.
inline void expect_calls(const std::vector<CallCase> &cases) {
    for (const CallCase &c : cases) {
        SCOPED_TRACE(c.what);
        zorvs_e1mes(0, 0, nullptr);
        Quiet q;
        CodeLog log;
        c.call();
        EXPECT_TRUE(c.type ? log.has(c.type, c.code) : log.entries().empty()) << "last raised: " << zorvs_n1rcd(1);
        EXPECT_EQ(slots(c.slots), c.slots);
        const std::string printed = flat(q.errors.take());
        EXPECT_NE(printed.find(c.shows), std::string::npos) << printed;
    }
}

// A result agrees with its expected value: both NaN, equal (infinities
// too), or within the absolute tolerance.
inline bool agrees(double actual, double expected, double tolerance = 0) {
    if (expected != expected) return actual != actual;
    return actual == expected || (actual - expected <= tolerance && expected - actual <= tolerance);
}

// A text cut at each `separator`; the piece after the last one is kept only
// if it is not empty (lines: "a\nb\n" gives a, b; pages: a\fb gives a, b).
inline std::vector<std::string> split(const std::string &text, char separator = '\n') {
    std::vector<std::string> parts(1);
    for (char c : text) {
        if (c == separator) parts.emplace_back();
        else parts.back() += c;
    }
    if (parts.back().empty() && separator == '\n') parts.pop_back();
    return parts;
}

// The bytes of a file.
inline std::string read_all(const std::string &path) {
    std::ostringstream s;
    s << std::ifstream(path, std::ios::binary).rdbuf();
    return s.str();
}

// Compare printed output with the expected text tests/data/output/NAME.txt.
// With ZORVS_WRITE_GOLDEN set in the environment the text is (re)written
// instead; every such text is read by eye before it is committed.
inline void expect_golden(const std::string &name, const std::string &text) {
    std::string path = std::string(ZORVS_TEST_DATA_DIR) + "/output/" + name + ".txt";
    if (std::getenv("ZORVS_WRITE_GOLDEN")) {
        std::ofstream(path, std::ios::binary) << text;
        return;
    }
    ASSERT_TRUE(std::ifstream(path)) << "missing expected text " << path;
    EXPECT_EQ(read_all(path), text) << "output differs from " << path;
}

}  // namespace zorvs_test

#endif  // ZORVS_TEST_CAPTURE_HPP
