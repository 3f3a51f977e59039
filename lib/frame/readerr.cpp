// readerr.cpp - texts and symbolic names of messages, from the binary
// message catalogue zorvs_e.bin.
//
// No message text is compiled into the library.  A code is
// file * 100000 + low part; the file number picks a catalogue file by name,
// found on a search path of directory prefixes (zorvs_error_param.path, else
// $ZORVSERRPATH, else "./:$HOME/:/usr/lib/:/usr/local/lib/") and mapped into
// memory read-only at the first lookup of one of its codes, so a process that
// raises no message never opens it.  When neither the caller nor the
// environment gives a path, the directory that the library itself was
// loaded from is tried after the default path, so that an installed library
// (and the one in a build tree) finds the catalogue that lies beside it.
//
// File layout (unsigned 16-bit words, either byte order):
//   0 magic 29432 (0x72F8) | 2 reserved | 4 count n | 6..11 reserved |
//   12 shift | 14 code table, n low parts ascending | 14+2n offset table,
//   n+1 offsets in units of 2^shift bytes | text area at T, where T is 4n+15
//   for shift 0, else 4n+16 rounded up to a multiple of 2^shift.
// A record is the template, a zero byte, the symbolic name, a zero byte.
//
// A file that cannot be read is reported once on the standard error stream
// and stays failed; its messages fall back to "Error code N.".
//
// The mapped files are shared by all threads and opened under one lock, with
// the search path in force in the thread that opens them; the last lookup,
// its cache and the texts handed back are per thread.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "frame/services.h"

namespace {

constexpr std::uint16_t lv_magic = 29432;
constexpr const char lv_default_path[] = "./:$HOME/:/usr/lib/:/usr/local/lib/";
constexpr const char *lv_filename[] = {"zorvs_e.bin", "tqerr.bin", "XXXXXX.bin"};
constexpr int lv_file_count = 3;

enum FileStatus { not_opened = 0, failed = 1, ready = 2 };

// State of one catalogue file.
struct FileState {
    int status;
    int fd;
    struct stat stat_buf;
    std::uint16_t header[7];
    const std::uint16_t *code_table;
    const std::uint16_t *offset_table;
    int text_start;
    const char *base;
    int swapped;
};

// The catalogue files, shared by all threads: opened and mapped once, by the
// first thread that looks a code up in them, under `lock`; read-only after.
struct CatalogueState {
    std::mutex lock;
    FileState **state = nullptr;  // by file number, grown on demand
    int file_num_max = -1;
    char *path_copy = nullptr;      // the search path chosen at the first open
    bool path_built_in = false;     // path_copy is the built-in default path
    char candidate[4096] = {};      // the file name being tried
};
constinit CatalogueState lv_catalogue;

// Per thread: the last lookup and the texts returned to the caller, which
// stay valid until the thread's next lookup.
struct LookupState {
    FileState *cur = nullptr;       // file of the last lookup
    int file_number = 0;            // file number of the last lookup
    const char *read_error = "";    // text of the last failure
    char special_message[320] = {}; // fallback text
    char name[32] = {};             // symbolic name returned by zorvs_find_name
    int cached_code = 0;            // one-entry lookup cache
    int cached_index = 0;
    bool cache_valid = false;
};
constinit thread_local LookupState lv_lookup;

std::uint16_t swap16(std::uint16_t v) { return static_cast<std::uint16_t>((v >> 8) | (v << 8)); }

// stat() the candidate and, if it exists, open it read-only.
bool l_look_for_file(FileState *s, const char *candidate) {
    if (stat(candidate, &s->stat_buf) != 0) return false;
    s->fd = open(candidate, O_RDONLY);
    return true;
}

// Walk the search path; true when a candidate was accepted by stat().
// An entry "$VAR/rest" stands for the value of VAR followed by "/rest"; an
// entry naming a variable that is not set is skipped.  The file name follows
// each prefix directly, so a prefix brings its own "/".
bool l_parse_path(FileState *s, const char *path, const char *file) {
    char *out = lv_catalogue.candidate;
    const std::size_t size = sizeof lv_catalogue.candidate;
    const char *p = path;
    while (true) {
        const char *end = std::strchr(p, ':');
        std::size_t len = end ? static_cast<std::size_t>(end - p) : std::strlen(p);
        const char *prefix = p;
        std::size_t prefix_len = len;
        bool usable = true;
        char variable[256];
        if (len > 0 && p[0] == '$') {
            std::size_t k = 1;
            while (k < len && p[k] != '/') ++k;
            std::size_t vlen = k - 1;
            if (vlen == 0 || vlen >= sizeof variable) {
                usable = false;
            } else {
                std::memcpy(variable, p + 1, vlen);
                variable[vlen] = '\0';
                const char *value = std::getenv(variable);
                if (!value) {
                    usable = false;
                } else {
                    // value followed by the rest of the entry
                    std::size_t value_len = std::strlen(value);
                    std::size_t rest_len = len - k;
                    if (value_len + rest_len + std::strlen(file) + 1 > size) {
                        usable = false;
                    } else {
                        std::memcpy(out, value, value_len);
                        std::memcpy(out + value_len, p + k, rest_len);
                        std::strcpy(out + value_len + rest_len, file);
                    }
                }
            }
        } else if (prefix_len + std::strlen(file) + 1 > size) {
            usable = false;
        } else {
            std::memcpy(out, prefix, prefix_len);
            std::strcpy(out + prefix_len, file);
        }
        if (usable && l_look_for_file(s, out)) return true;
        if (!end) return false;
        p = end + 1;
    }
}

// Try the directory of the loaded library (or of the program it is linked
// into) for the file.
bool l_look_beside_library(FileState *s, const char *file) {
    Dl_info info;
    if (dladdr(reinterpret_cast<void *>(&l_look_for_file), &info) == 0 || !info.dli_fname) return false;
    const char *slash = std::strrchr(info.dli_fname, '/');
    if (!slash) return false;
    std::size_t dir_len = static_cast<std::size_t>(slash - info.dli_fname) + 1;
    if (dir_len + std::strlen(file) + 1 > sizeof lv_catalogue.candidate) return false;
    std::memcpy(lv_catalogue.candidate, info.dli_fname, dir_len);
    std::strcpy(lv_catalogue.candidate + dir_len, file);
    return l_look_for_file(s, lv_catalogue.candidate);
}

// Open, map and check one catalogue file; on failure print the notice once
// and mark the file failed.
void l_open_error_file(FileState *s) {
    const char *path = zorvs_error_param.path;
    bool built_in = path && path == lv_catalogue.path_copy && lv_catalogue.path_built_in;
    if (!path) {
        const char *env = std::getenv("ZORVSERRPATH");
        path = env ? env : lv_default_path;
        built_in = !env;
        std::size_t n = std::strlen(path) + 1;
        char *copy = static_cast<char *>(std::malloc(n));
        if (copy) {
            std::memcpy(copy, path, n);
            std::free(lv_catalogue.path_copy);
            lv_catalogue.path_copy = copy;
            lv_catalogue.path_built_in = built_in;
            zorvs_error_param.path = copy;
            path = copy;
        }
    }
    const char *file = zorvs_error_param.name ? zorvs_error_param.name : "";
    const char *failure = nullptr;
    s->fd = -1;
    s->base = nullptr;
    std::size_t length = 0;

    bool found = l_parse_path(s, path, file) || (built_in && l_look_beside_library(s, file));
    if (!found || s->fd < 0) {
        if (s->fd >= 0) close(s->fd);
        failure = "File not found";
    } else {
        length = static_cast<std::size_t>(s->stat_buf.st_size);
        void *map = length > 0 ? mmap(nullptr, length, PROT_READ, MAP_PRIVATE, s->fd, 0) : MAP_FAILED;
        close(s->fd);
        s->fd = -1;
        if (map == MAP_FAILED) {
            failure = "Error in mmap";
        } else {
            s->base = static_cast<const char *>(map);
        }
    }

    if (!failure) {
        if (length < 14) {
            failure = "File is not in zorverr.bin format";
        } else {
            std::memcpy(s->header, s->base, 14);
            if (s->header[0] == lv_magic) {
                s->swapped = 0;
            } else if (swap16(s->header[0]) == lv_magic) {
                for (auto &w : s->header) w = swap16(w);
                s->swapped = 1;
            } else {
                failure = "File is not in zorverr.bin format";
            }
        }
    }

    std::size_t n = 0;
    int shift = 0;
    if (!failure) {
        n = s->header[2];
        shift = s->header[6];
        // The tables must lie inside the file and the unit be a sane size.
        if (14 + 4 * n + 2 > length || shift > 15) failure = "File is not in zorverr.bin format";
    }

    if (!failure) {
        s->code_table = reinterpret_cast<const std::uint16_t *>(s->base + 14);
        s->offset_table = reinterpret_cast<const std::uint16_t *>(s->base + 14 + 2 * n);
        if (s->swapped) {
            char *codes = static_cast<char *>(std::malloc(2 * n + 1));
            char *offsets = static_cast<char *>(std::malloc(2 * n + 2));
            if (!codes || !offsets) {
                std::free(codes);
                std::free(offsets);
                failure = "Out-of-space";
            } else {
                swab(s->base + 14, codes, static_cast<ssize_t>(2 * n));
                swab(s->base + 14 + 2 * n, offsets, static_cast<ssize_t>(2 * n + 2));
                s->code_table = reinterpret_cast<const std::uint16_t *>(codes);
                s->offset_table = reinterpret_cast<const std::uint16_t *>(offsets);
            }
        }
    }

    if (failure) {
        if (s->base) munmap(const_cast<char *>(s->base), length);
        s->base = nullptr;
        lv_lookup.read_error = failure;
        std::fprintf(stderr, "Error in reading %s\n%s.\n", file, failure);
        s->status = failed;
        return;
    }

    if (shift == 0) {
        s->text_start = static_cast<int>(4 * n + 15);
    } else {
        std::size_t unit = std::size_t{1} << shift;
        std::size_t t = 4 * n + 16;
        s->text_start = static_cast<int>((t + unit - 1) / unit * unit);
    }
    s->status = ready;
}

int l_compare(const void *key, const void *entry) {
    std::uint16_t a = *static_cast<const std::uint16_t *>(key);
    std::uint16_t b = *static_cast<const std::uint16_t *>(entry);
    return a < b ? -1 : (a > b ? 1 : 0);
}

// Index of the code in its file, -1 if it has none, -2 if no memory.
int l_find(int code) {
    int number = code / 100000;
    int low = code % 100000;
    // Only the named files exist; a negative code or a low part that does
    // not fit the 16-bit table has no entry.
    if (code < 0 || number >= lv_file_count || low > 65535) return -1;
    lv_lookup.file_number = number;
    zorvs_error_param.name = const_cast<char *>(lv_filename[number]);
    std::lock_guard<std::mutex> hold(lv_catalogue.lock);

    if (number > lv_catalogue.file_num_max) {
        auto grown = static_cast<FileState **>(
            std::realloc(lv_catalogue.state, static_cast<std::size_t>(number + 1) * sizeof(FileState *)));
        if (!grown) return -2;
        for (int k = lv_catalogue.file_num_max + 1; k <= number; ++k) grown[k] = nullptr;
        lv_catalogue.state = grown;
        lv_catalogue.file_num_max = number;
    }
    if (!lv_catalogue.state[number]) {
        auto s = static_cast<FileState *>(std::calloc(1, sizeof(FileState)));
        if (!s) return -2;
        s->status = not_opened;
        lv_catalogue.state[number] = s;
    }
    FileState *s = lv_catalogue.state[number];
    lv_lookup.cur = s;
    if (s->status == not_opened) l_open_error_file(s);
    if (s->status != ready) return -1;

    std::uint16_t key = static_cast<std::uint16_t>(low);
    const void *hit = std::bsearch(&key, s->code_table, s->header[2], sizeof(std::uint16_t), l_compare);
    if (!hit) return -1;
    return static_cast<int>(static_cast<const std::uint16_t *>(hit) - s->code_table);
}

// The lookup shared by the three entry points, through the one-entry cache.
int l_index(int code) {
    if (lv_lookup.cache_valid && lv_lookup.cached_code == code) return lv_lookup.cached_index;
    int index = l_find(code);
    lv_lookup.cached_code = code;
    lv_lookup.cached_index = index;
    lv_lookup.cache_valid = true;
    return index;
}

// The record of an entry of the current file, or null if it does not lie
// whole inside the mapping (a damaged file).
const char *l_record(int index) {
    FileState *s = lv_lookup.cur;
    if (!s || s->status != ready || !s->base) return nullptr;
    std::size_t length = static_cast<std::size_t>(s->stat_buf.st_size);
    std::size_t start = static_cast<std::size_t>(s->text_start) +
                        (static_cast<std::size_t>(s->offset_table[index]) << s->header[6]);
    if (start >= length) return nullptr;
    const char *text = s->base + start;
    const void *end = std::memchr(text, '\0', length - start);
    if (!end) return nullptr;
    const char *name = static_cast<const char *>(end) + 1;
    std::size_t rest = length - static_cast<std::size_t>(name - s->base);
    if (rest == 0 || !std::memchr(name, '\0', rest)) return nullptr;
    return text;
}

const char *l_text_of(int code) {
    int index = l_index(code);
    if (index >= 0) {
        if (const char *text = l_record(index)) return text;
        index = -1;
    }
    if (index == -2) {
        lv_lookup.read_error = "Out-of-memory";
        const char *file = zorvs_error_param.name ? zorvs_error_param.name : lv_filename[0];
        std::snprintf(lv_lookup.special_message, sizeof lv_lookup.special_message,
                      "Error in reading %.200s for error message %d.\n%s.\n", file, code,
                      lv_lookup.read_error);
        if (lv_lookup.cur) {
            std::lock_guard<std::mutex> hold(lv_catalogue.lock);
            lv_lookup.cur->status = failed;
        }
        return lv_lookup.special_message;
    }
    std::snprintf(lv_lookup.special_message, sizeof lv_lookup.special_message, "Error code %ld.",
                  static_cast<long>(code));
    return lv_lookup.special_message;
}

}  // namespace

extern "C" {

char *zorvs_find_message(int code) { return const_cast<char *>(l_text_of(code)); }

char *zorvs_find_name(int code) {
    int index = l_index(code);
    const char *text = index >= 0 ? l_record(index) : nullptr;
    if (text) {
        const char *name = text + std::strlen(text) + 1;
        std::snprintf(lv_lookup.name, sizeof lv_lookup.name, "%s", name);
    } else {
        std::snprintf(lv_lookup.name, sizeof lv_lookup.name, "%ld", static_cast<long>(code));
    }
    return lv_lookup.name;
}

void zorvs_ermes(int type, int code) { zorvs_e1mes(type, code, l_text_of(code)); }

}  // extern "C"
