// error.cpp - the error stack: frames of the routines in progress, raising of
// messages by type and code, the deferred message buffer, release of messages
// at the return to user level, the default printer with its wrapping and the
// traceback, and the settings of zorvs_error_options.
//
// A routine stores the values of a message in zorvs_error_param and raises it
// by (type, code).  Types 5 to 8 print where they are raised; types 1 to 4
// wait in one shared buffer until the routine that the user called returns.
// On that return the stop table may end the process, with the type as exit
// status.  The push is on the path of every routine: after the first call it
// does no allocation and no string work, and it keeps the name by pointer.

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "frame/error_stack.hpp"
#include "frame/frame.hpp"
#include "frame/services.h"
#include "zorvstat.h"

// Constant-initialised, so that it is ready before any constructor runs, in
// every thread.  {}: a constant initialiser for clang too.
constinit thread_local zorvs::ErrorStack zorvs::error_stack = {};

namespace {

using PrintProc = void (*)(int type, int code, const char *routine, const char *message);

using zorvs::ErrorFrame;

void l_error_print(int type, int code, const char *routine, const char *message);

// The rest of the mutable state of the error system; the frames, the top,
// the codes and the message buffer are in zorvs::error_stack.
struct ErrorState {
    std::size_t max_message_len = 256;
    int error_init = 0;
    PrintProc error_print = l_error_print;
    int full_traceback = 0;
    unsigned char print_status[9] = {0, 0, 0, 1, 1, 1, 1, 1, 1};
    unsigned char stop_status[9] = {0, 0, 0, 0, 1, 1, 0, 0, 1};
    unsigned char trace_status[9] = {0, 0, 0, 0, 0, 0, 0, 0, 1};
    char *owned_path = nullptr;  // copies made by zorvs_error_options
    char *owned_name = nullptr;
};

constinit thread_local ErrorState lv_error;
using zorvs::error_stack;

constexpr unsigned char lv_immead_status[9] = {0, 0, 0, 0, 0, 1, 1, 1, 1};
constexpr const char *lv_type_name[9] = {
    "INTERNAL", "NOTE    ", "ALERT   ", "WARNING ", "FATAL   ",
    "TERMINAL", "WARNING_IMMEDIATE", "FATAL_IMMEDIATE", "INTERNAL"};

constexpr const char lv_filler[] = "***         ";
constexpr int lv_filler_len = 12;
constexpr int lv_line_limit = 78;

ErrorFrame *base() { return &error_stack.frames[0]; }

void empty_message() {
    error_stack.end_message = 0;
    if (error_stack.message) error_stack.message[0] = '\0';
}

const char *message_text() { return error_stack.message ? error_stack.message : ""; }

// The end of a thread that used the error system: the blocks it holds for
// its thread go back, and its state is as before its first call, so that a
// call from a later destructor of the same thread starts it again.
struct ThreadEnd {
    ~ThreadEnd() {
        std::free(error_stack.message);
        error_stack.message = nullptr;
        error_stack.end_message = 0;
        std::free(error_stack.work);
        error_stack.work = nullptr;
        error_stack.work_capacity = error_stack.work_count = 0;
        if (zorvs_error_param.path == lv_error.owned_path) zorvs_error_param.path = nullptr;
        if (zorvs_error_param.name == lv_error.owned_name) zorvs_error_param.name = nullptr;
        std::free(lv_error.owned_path);
        std::free(lv_error.owned_name);
        lv_error.owned_path = lv_error.owned_name = nullptr;
        lv_error.max_message_len = 256;
        lv_error.error_init = 0;
    }
};

void initialise() {
    // Registered at the thread's first call; its destructor runs when the
    // thread ends (for the main thread, at exit).
    thread_local ThreadEnd end;
    (void)end;
    zorvs_signal();
    error_stack.message = static_cast<char *>(std::malloc(lv_error.max_message_len));
    if (error_stack.message) error_stack.message[0] = '\0';
    zorvs_error_param.path = nullptr;
    zorvs_error_param.name = nullptr;
    lv_error.error_init = 1;
}

FILE *error_file() {
    FILE *f = nullptr;
    zorvs_umach(3, &f);
    return f ? f : stderr;
}

// ---------------------------------------------------------------------------
// Traceback.  By default only the routines called from user level are listed,
// each with the error of the nearest frame above it that had one.
void print_traceback() {
    FILE *out = error_file();
    std::fprintf(out, "%s\n%s\n%s\n", "Here is a traceback of the calls in reverse order.",
                 "  Error Type        Error Code              Routine",
                 "  ----------        ----------              -------");
    const ErrorFrame *err = nullptr;
    for (ErrorFrame *f = error_stack.top(); f >= base(); --f) {
        if (f->type != 0) err = f;
        if (f != base() && (f - 1)->user == 0 && lv_error.full_traceback == 0) continue;
        const char *name = f->name ? f->name : "";
        if (err && f->user == 0) {
            std::fprintf(out, " %5s%-9s   %-25s %s\n", "ZORVS_", lv_type_name[err->type],
                         zorvs_find_name(err->code), name);
        } else {
            std::fprintf(out, " %5s%-9s   %-25s %s\n", "", "", "", name);
        }
        err = nullptr;
    }
}

// Print a message through the print procedure, then the traceback if the
// trace table asks for it.
void print_message(int type, int code, const char *text) {
    lv_error.error_print(type, code, error_stack.top()->name, text);
    if (lv_error.trace_status[type]) print_traceback();
}

[[noreturn]] void out_of_memory() {
    static const char fixed[] = "Out of memory in error handler.";
    print_message(8, 200, fixed);
    std::exit(error_stack.top()->type);
}

// Make sure at least `room` bytes are free behind the write position.
void reserve(std::size_t room) {
    while (lv_error.max_message_len - error_stack.end_message < room) {
        std::size_t len = lv_error.max_message_len * 2;
        char *p = static_cast<char *>(std::realloc(error_stack.message, len));
        if (!p) out_of_memory();
        error_stack.message = p;
        lv_error.max_message_len = len;
    }
}

void append(const char *s, std::size_t n) {
    reserve(n + 1);
    std::memcpy(error_stack.message + error_stack.end_message, s, n);
    error_stack.end_message += n;
    error_stack.message[error_stack.end_message] = '\0';
}

enum class SlotKind { integer, real, string, other };

SlotKind slot_kind(char letter) {
    switch (letter) {
        case 'i': case 'I': return SlotKind::integer;
        case 'r': case 'R': case 'd': case 'D': case 'f': case 'F': return SlotKind::real;
        case 's': case 'S': case 'l': case 'L': return SlotKind::string;
        default: return SlotKind::other;
    }
}

// A format given in a placeholder is used only if it is one conversion of the
// slot's kind, with flags, width and precision but no '*' and no length
// modifier other than 'l' for reals, so that a bad template cannot make
// printf read an argument of the wrong type.
bool format_fits(const char *fmt, SlotKind kind) {
    const char *p = fmt;
    if (*p++ != '%') return false;
    while (*p && std::strchr("-+ #0", *p)) ++p;
    while (*p >= '0' && *p <= '9') ++p;
    if (*p == '.') {
        ++p;
        while (*p >= '0' && *p <= '9') ++p;
    }
    if (kind == SlotKind::real && *p == 'l') ++p;
    if (!*p || p[1] != '\0') return false;
    switch (kind) {
        case SlotKind::integer: return std::strchr("diouxXc", *p) != nullptr;
        case SlotKind::real: return std::strchr("eEfFgGaA", *p) != nullptr;
        case SlotKind::string: return *p == 's';
        default: return false;
    }
}

// Expand one placeholder of the slot `digit` into `out` (512 bytes).
void expand_slot(char letter, int digit, const char *fmt, char *out, std::size_t size) {
    SlotKind kind = slot_kind(letter);
    if (kind == SlotKind::other) {
        std::snprintf(out, size, "%%(%c%c)", letter, '0' + digit);
        return;
    }
    static const char *const defaults[] = {"%d", "%e", "%s"};
    const char *use = defaults[static_cast<int>(kind)];
    if (fmt && format_fits(fmt, kind)) use = fmt;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    switch (kind) {
        case SlotKind::integer: std::snprintf(out, size, use, zorvs_error_param.i[digit]); break;
        case SlotKind::real: std::snprintf(out, size, use, zorvs_error_param.r[digit]); break;
        default: {
            const char *s = zorvs_error_param.l[digit];
            std::snprintf(out, size, use, s ? s : "(null)");
        }
    }
#pragma GCC diagnostic pop
}

// Copy the template into the message buffer, expanding %(xN), %(xN%fmt) and %/.
void l_parse_message(const char *text) {
    empty_message();
    if (!error_stack.message) out_of_memory();
    char temp[512];
    char fmt[128];
    const char *p = text;
    while (*p) {
        reserve(512);
        if (p[0] == '%' && p[1] == '/') {
            append("\n", 1);
            p += 2;
            continue;
        }
        if (p[0] == '%' && p[1] == '(' && p[2] != '\0' && p[3] >= '0' && p[3] <= '9') {
            char letter = p[2];
            int digit = p[3] - '0';
            if (p[4] == ')') {
                expand_slot(letter, digit, nullptr, temp, sizeof temp);
                append(temp, std::strlen(temp));
                p += 5;
                continue;
            }
            if (p[4] == '%') {
                // The format runs to the ')' and has at most 127 characters.
                std::size_t k = 0;
                while (k < 128 && p[4 + k] != '\0' && p[4 + k] != ')') ++k;
                const char *close = (k < 128 && p[4 + k] == ')') ? p + 4 + k : nullptr;
                if (close) {
                    std::memcpy(fmt, p + 4, k);
                    fmt[k] = '\0';
                    expand_slot(letter, digit, fmt, temp, sizeof temp);
                    append(temp, std::strlen(temp));
                    p = close + 1;
                    continue;
                }
            }
        }
        append(p, 1);
        ++p;
    }
}

// ---------------------------------------------------------------------------
// The default printer.  It names the public routine that the user called,
// not the routine that raised: it walks down to the first frame with `user`
// set and takes the frame directly above it.
void l_error_print(int type, int code, const char * /*routine*/, const char *message) {
    if (!message || !*message) return;
    ErrorFrame *f = error_stack.top();
    while (f > base() && !f->user) --f;
    const char *routine = (f == error_stack.top()) ? error_stack.top()->name : (f + 1)->name;
    if (!routine) routine = "";
    if (type < 0 || type > 8) type = 8;

    FILE *out = error_file();
    int column;
    if (type < 5) {
        column = std::fprintf(out, "\n*** %s Error %s from %s.  ", lv_type_name[type],
                              zorvs_find_name(code), routine);
    } else {
        column = std::fprintf(out, "\n*** %s Error from %s.  ", lv_type_name[type], routine);
    }
    if (column < 0) return;
    if (column >= lv_line_limit) {
        std::fprintf(out, "\n%s ", lv_filler);
        column = lv_filler_len;
    }

    // `p` is the rest of the text.  When `continued` is set, its first
    // character is the blank or line-feed that ended the line before, and it
    // reads as a blank.
    const char *p = message;
    bool continued = false;
    for (;;) {
        std::size_t len = std::strlen(p);
        bool fits = len + static_cast<std::size_t>(column) < lv_line_limit;
        std::size_t line_len = len;
        bool hard_cut = false;
        if (!fits) {
            std::size_t limit = static_cast<std::size_t>(lv_line_limit - column);
            std::size_t blank = 0;  // a break at position 0 would print an empty line
            for (std::size_t k = 1; k < limit && k < len; ++k)
                if (p[k] == ' ') blank = k;
            if (blank == 0) {
                if (column > lv_filler_len) {
                    std::fprintf(out, "\n%s ", lv_filler);
                    column = lv_filler_len;
                    continue;
                }
                // A word longer than any line: cut it at the margin.
                line_len = limit > 1 ? limit - 1 : 1;
                hard_cut = true;
            } else {
                line_len = blank;
            }
        }
        bool line_feed = false;
        for (std::size_t k = continued ? 1 : 0; k < line_len; ++k) {
            if (p[k] == '\n') {
                line_len = k;
                line_feed = true;
                hard_cut = false;
                break;
            }
        }
        if (continued && line_len > 0) {
            std::fputc(' ', out);
            std::fwrite(p + 1, 1, line_len - 1, out);
        } else {
            std::fwrite(p, 1, line_len, out);
        }
        std::fputc('\n', out);
        if (fits && !line_feed) break;
        std::fputs(lv_filler, out);
        column = lv_filler_len;
        p += line_len;
        continued = !hard_cut;
        if (hard_cut) {
            std::fputc(' ', out);
            column = lv_filler_len + 1;
        }
    }
    std::fputc('\n', out);
}

// Release of messages at the return to user level.
void release() {
    ErrorFrame *t = error_stack.top();
    const char *text = message_text();
    if (error_stack.at_checksum) error_stack.at_checksum(t->type, t->code, text);
    if (*text && lv_error.print_status[t->type]) print_message(t->type, t->code, text);
    if (lv_error.stop_status[t->type]) std::exit(t->type);
}

bool valid_option_type(int type) {
    if (type >= 1 && type <= 5) return true;
    zorvs_e1sti(1, 1);
    zorvs_e1sti(2, 5);
    zorvs_e1sti(3, type);
    zorvs_e1stl(1, "type");
    zorvs_ermes(5, 132);
    return false;
}

void replace_owned(char *&owned, char *&field, const char *value) {
    char *copy = nullptr;
    if (value) {
        std::size_t n = std::strlen(value) + 1;
        copy = static_cast<char *>(std::malloc(n));
        if (!copy) {
            zorvs_ermes(5, 200);
            return;
        }
        std::memcpy(copy, value, n);
    }
    if (owned && field == owned) field = nullptr;
    std::free(owned);
    owned = copy;
    field = copy;
}

void l_error_options(int first, va_list *list) {
    zorvs::KeywordReader reader(list, 0);
    int keyword = reader.take_fixed_keyword(first);
    while (keyword != 0) {
        switch (keyword) {
            case ZORVS_ERROR_MSG_NAME:
                replace_owned(lv_error.owned_name, zorvs_error_param.name, reader.pointer<const char>());
                break;
            case ZORVS_ERROR_MSG_PATH:
                replace_owned(lv_error.owned_path, zorvs_error_param.path, reader.pointer<const char>());
                break;
            case ZORVS_ERROR_PRINT_PROC: {
                PrintProc proc = reader.function<PrintProc>();
                lv_error.error_print = proc ? proc : l_error_print;
                break;
            }
            case ZORVS_FULL_TRACEBACK:
                lv_error.full_traceback = reader.integer();
                break;
            case ZORVS_GET_ERROR_FILE:
                zorvs_umach(3, reader.pointer<FILE *>());
                break;
            case ZORVS_SET_ERROR_FILE: {
                FILE *f = reader.pointer<FILE>();
                zorvs_umach(-3, &f);
                break;
            }
            case ZORVS_GET_PRINT:
            case ZORVS_GET_STOP:
            case ZORVS_GET_TRACE: {
                int type = reader.integer();
                int *setting = reader.pointer<int>();
                if (!valid_option_type(type)) break;
                unsigned char *table = keyword == ZORVS_GET_PRINT  ? lv_error.print_status
                                       : keyword == ZORVS_GET_STOP ? lv_error.stop_status
                                                                   : lv_error.trace_status;
                if (setting) *setting = table[type];
                break;
            }
            case ZORVS_SET_PRINT:
            case ZORVS_SET_STOP:
            case ZORVS_SET_TRACE: {
                int type = reader.integer();
                int setting = reader.integer();
                if (!valid_option_type(type)) break;
                unsigned char *table = keyword == ZORVS_SET_PRINT  ? lv_error.print_status
                                       : keyword == ZORVS_SET_STOP ? lv_error.stop_status
                                                                   : lv_error.trace_status;
                table[type] = static_cast<unsigned char>(setting != 0);
                break;
            }
            case ZORVS_SIGNAL_TRAPPING_ON:
                zorvs::set_trapping(1);
                break;
            case ZORVS_SIGNAL_TRAPPING_OFF:
                zorvs::set_trapping(0);
                break;
            default:
                reader.unknown(keyword, 103);
                return;
        }
        keyword = reader.keyword();
    }
}

// The push and pop beyond the plain case: the first call of the thread,
// the overflow of the stack, a pending trap, a frame with an event, a block
// or an observer.  Kept out of line so that the plain case saves no
// registers.
[[gnu::noinline, gnu::cold]] void push_rest(const char *name) {
    if (!lv_error.error_init) initialise();
    if (error_stack.top() == base()) empty_message();
    ++error_stack.depth;
    ErrorFrame *t = error_stack.top();
    *t = ErrorFrame{0, 0, 0, 0, name};
    zorvs_error_n1rty[0] = zorvs_error_n1rty[1] = 0;
    error_stack.n1rcd[0] = error_stack.n1rcd[1] = 0;
    if (t - base() >= ZORVS_STACK_FRAMES) {
        zorvs_e1sti(1, ZORVS_STACK_FRAMES - 1);
        zorvs_ermes(8, 60000);
    }
}

[[gnu::noinline, gnu::cold]] void pop_rest(const char *name) {
    if (!lv_error.error_init) initialise();
    if (zorvs_error_param.trapped) {
        zorvs_error_param.trapped = 0;
        while (error_stack.top() > base() &&
               !(name && error_stack.top()->name && std::strcmp(name, error_stack.top()->name) == 0))
            --error_stack.depth;
        // The blocks of the abandoned body and of the frames dropped above it.
        if (zorvs::owns_work(error_stack, error_stack.top())) zorvs::close_work(error_stack.top(), zorvs_error_n1rty[0], true);
    }
    ErrorFrame *t = error_stack.top();
    bool same = t != base() && name &&
                (t->name == name || (t->name && std::strcmp(t->name, name) == 0));
    if (!same) {
        zorvs_e1stl(1, name ? name : "(null)");
        zorvs_e1stl(2, t->name ? t->name : "(null)");
        zorvs_ermes(8, 60001);
        std::exit(t->type);  // not reached: type 8 ends the process in the raise
    }
    if (zorvs::owns_work(error_stack, t)) [[unlikely]] zorvs::close_work(t, zorvs_error_n1rty[0], false);
    ErrorFrame *below = t - 1;
    if (below->user) release();
    if (below->type <= t->type) {
        below->type = t->type;
        below->code = t->code;
        zorvs_error_n1rty[0] = t->type;
        error_stack.n1rcd[0] = t->code;
    } else {
        zorvs_error_n1rty[0] = 0;
        error_stack.n1rcd[0] = 0;
    }
    zorvs_error_n1rty[1] = t->type;
    error_stack.n1rcd[1] = t->code;
    error_stack.depth = static_cast<int>(below - error_stack.frames);
}

}  // namespace

extern "C" {

void zorvs_e1psh(const char *name) {
    if (zorvs::push_plain(zorvs::thread_stack(), name)) [[likely]] return;
    push_rest(name);
}

void zorvs_e1pop(const char *name) {
    if (zorvs::pop_plain(zorvs::thread_stack(), name)) [[likely]] return;
    pop_rest(name);
}

void zorvs_e1mes(int type, int code, const char *text) {
    if (!lv_error.error_init) initialise();
    ErrorFrame *t = error_stack.top();
    if (type < -1 || type > 8) {
        static const char form[] = "Error type must be -1,...,8, but type = %d.  Message = \"%s\"";
        const char *shown = text ? text : "";
        std::size_t need = sizeof form + 16 + std::strlen(shown);
        empty_message();
        reserve(need);
        std::snprintf(error_stack.message, lv_error.max_message_len, form, type, shown);
        print_message(8, 160, error_stack.message);
        std::exit(t->type);
    }
    if (type == -1 && code == -1) {
        type = t->type;
        code = t->code;
    }
    if (type == -1) {
        if (code >= 1) t->code = code;
    } else if (type == 0 && code == 0) {
        empty_message();
        t->type = 0;
        t->code = 0;
    } else {
        t->type = static_cast<unsigned char>(type);
        t->code = code;
        if (!text || std::strcmp(text, " ") == 0)
            empty_message();
        else
            l_parse_message(text);
        if (lv_immead_status[type]) {
            if (error_stack.at_checksum) error_stack.at_checksum(type, code, message_text());
            if (lv_error.print_status[type]) print_message(type, code, message_text());
            empty_message();
        }
        if (t->type == 8) std::exit(8);
    }
    zorvs_error_n1rty[0] = t->type;
    error_stack.n1rcd[0] = t->code;
}

void zorvs_e1sti(int n, int value) {
    if (n >= 1 && n <= 9) zorvs_error_param.i[n] = value;
}

void zorvs_e1str(int n, double value) {
    if (n >= 1 && n <= 9) zorvs_error_param.r[n] = value;
}

void zorvs_e1std(int n, double value) {
    if (n >= 1 && n <= 9) zorvs_error_param.r[n] = value;
}

void zorvs_e1stl(int n, const char *s) {
    int k = n < 0 ? -n : n;
    if (k >= 1 && k <= 9) zorvs_error_param.l[k] = s;
}

void zorvs_e1usr(const char *state) {
    if (!lv_error.error_init) initialise();
    bool on = state && state[0] && (state[1] == 'N' || state[1] == 'n');
    error_stack.top()->user = on ? 1 : 0;
}

void zorvs_e1pos(int type, int *print, int *stop) {
    if (type == 0) {
        for (int k = 1; k <= 8; ++k) {
            if (print && *print >= 0) lv_error.print_status[k] = static_cast<unsigned char>(*print != 0);
            if (stop && *stop >= 0) lv_error.stop_status[k] = static_cast<unsigned char>(*stop != 0);
        }
    } else if (type >= 1 && type <= 8) {
        if (print && *print > 0) lv_error.print_status[type] = 1;
        if (stop && *stop > 0) lv_error.stop_status[type] = 1;
    } else if (type >= -8 && type <= -1) {
        if (print) *print = lv_error.print_status[-type];
        if (stop) *stop = lv_error.stop_status[-type];
    } else {
        static const char name[] = "zorvs_e1pos";
        zorvs_e1psh(name);
        zorvs_e1sti(1, -8);
        zorvs_e1sti(2, 8);
        zorvs_e1sti(3, type);
        zorvs_e1stl(1, "type");
        zorvs_ermes(5, 132);
        zorvs_e1pop(name);
    }
}

static int checked_level(int level) {
    if (level == 0 || level == 1) return level;
    zorvs_e1sti(1, 0);
    zorvs_e1sti(2, 1);
    zorvs_e1sti(3, level);
    zorvs_e1stl(1, "level");
    zorvs_ermes(8, 122);
    return 0;
}

int zorvs_n1rty(int level) { return zorvs_error_n1rty[checked_level(level)]; }

int zorvs_n1rcd(int level) { return error_stack.n1rcd[checked_level(level)]; }

int zorvs_error_type(void) { return error_stack.top()->type; }

int zorvs_error_code(void) { return error_stack.n1rcd[1]; }

void zorvs_set_at_checksum(void (*f)(int, int, const char *)) { error_stack.at_checksum = f; }

struct zorvs_error_param_t *zorvs_error_param_address(void) { return &error_stack.param; }

int *zorvs_error_n1rty_address(void) { return error_stack.n1rty; }

int *zorvs_got_environ_address(void) { return &error_stack.got_environ; }

void zorvs_error_options(int keyword, ...) {
    ZORVS_KEYWORD_ENTRY_VOID(keyword, "zorvs_error_options", l_error_options(keyword, &list));
}

}  // extern "C"
