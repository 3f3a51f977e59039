// data.cpp - reading a CSV or TSV file with a header into columns.
//
// The file is read in blocks into one buffer and parsed record by record
// (RFC 4180 quoting: a field in double quotes may hold separators, line feeds
// and doubled quotes).  Numbers go straight into one array of doubles per
// column, so the memory held is the data as doubles: no row text is kept.
// The arrays grow by mremap, which moves pages instead of copying them, so
// growing never holds two copies.  Numbers are read by std::from_chars
// (correctly rounded, locale-free).
//
// A column starts numeric.  At its first field that is neither missing nor
// a number it turns into a text column: the values read so far become their
// shortest exact text, and the field's line is kept for the message a
// numeric use of the column gives.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "command.hpp"
#include "framework.hpp"

namespace zcli {

// A growing array of doubles in its own mapping.
struct ColumnBuffer {
    double *p = nullptr;
    std::size_t n = 0, capacity = 0;

    ~ColumnBuffer() {
        if (p) munmap(p, capacity * sizeof(double));
    }
    void push(double v) {
        if (n == capacity) grow();
        p[n++] = v;
    }
    void grow() {
        std::size_t wanted = capacity ? 2 * capacity : std::size_t(1) << 16;
        void *q = p ? mremap(p, capacity * sizeof(double), wanted * sizeof(double), MREMAP_MAYMOVE)
                    : mmap(nullptr, wanted * sizeof(double), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (q == MAP_FAILED) throw std::bad_alloc();
        p = static_cast<double *>(q);
        capacity = wanted;
    }
};

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

bool is_missing_token(const char *p, std::size_t n) {
    switch (n) {
        case 0: return true;
        case 1: return p[0] == '.';
        case 2: return std::memcmp(p, "NA", 2) == 0;
        case 3: return std::memcmp(p, "NaN", 3) == 0 || std::memcmp(p, "nan", 3) == 0 || std::memcmp(p, "N/A", 3) == 0;
        case 4: return std::memcmp(p, "NULL", 4) == 0 || std::memcmp(p, "null", 4) == 0;
        default: return false;
    }
}

// A field as a number: true with the value (NaN for missing), false for a
// field that is not a number.  Blanks around the number are allowed.
bool read_number(const char *p, std::size_t n, double &v) {
    while (n && (*p == ' ' || *p == '\t')) ++p, --n;
    while (n && (p[n - 1] == ' ' || p[n - 1] == '\t')) --n;
    if (is_missing_token(p, n)) {
        v = missing;
        return true;
    }
    if (*p == '+') {
        ++p, --n;
        if (n == 0 || *p == '-') return false;
    }
    auto r = std::from_chars(p, p + n, v);
    if (r.ptr != p + n) return false;
    if (r.ec == std::errc::result_out_of_range) {
        // Beyond the range of double: strtod gives the infinity or the zero.
        std::string copy(p, n);
        v = std::strtod(copy.c_str(), nullptr);
        return true;
    }
    return r.ec == std::errc();
}

// One parsed field: a piece of the buffer, or (quoted with doubled quotes)
// a scratch string.
struct Field {
    const char *p;
    std::size_t n;
};

}  // namespace

// The size of the read buffer: 4 MB, or ZORVSTAT_BLOCK bytes, which the
// tests set small so that records and fields cross its end everywhere.
std::size_t block_size() {
    const char *s = std::getenv("ZORVSTAT_BLOCK");
    long n = s ? std::atol(s) : 0;
    return n > 0 ? static_cast<std::size_t>(n) : std::size_t(1) << 22;
}

struct DataReader {
    Data &data;
    char sep;
    int fd;
    bool progress;
    std::string name;
    off_t total = 0;              // the file's size, 0 when unknown
    off_t done = 0;               // bytes read
    int shown = -1;               // progress shown so far (per cent or 64 MB steps)

    std::vector<char> buffer = std::vector<char>(block_size());
    std::size_t begin = 0, end = 0;
    bool eof = false;
    std::size_t line = 0;         // lines consumed
    bool header_done = false;
    std::vector<Field> fields;
    std::vector<std::string> scratch;

    DataReader(Data &d, char s, int f, bool pr, std::string nm) : data(d), sep(s), fd(f), progress(pr), name(std::move(nm)) {}

    void fill() {
        if (begin > 0) {
            std::memmove(buffer.data(), buffer.data() + begin, end - begin);
            end -= begin;
            begin = 0;
        }
        if (end == buffer.size()) buffer.resize(buffer.size() * 2);   // one record longer than the buffer
        while (end < buffer.size()) {
            ssize_t got = ::read(fd, buffer.data() + end, buffer.size() - end);
            if (got < 0) {
                if (errno == EINTR) continue;
                throw Failure(status_no_input, "cannot read " + name + ": " + std::strerror(errno));
            }
            if (got == 0) {
                eof = true;
                break;
            }
            end += static_cast<std::size_t>(got);
            done += got;
        }
        show_progress();
    }

    void show_progress() {
        if (!progress) return;
        int step = total > (off_t(64) << 20) ? static_cast<int>(100 * done / total)
                                             : static_cast<int>(done >> 26);   // 64 MB steps when the size is unknown
        if (total && total <= (off_t(64) << 20)) return;
        if (step == shown || (!total && step == 0)) return;
        shown = step;
        if (total) std::fprintf(stderr, "\rzorvstat: reading %s: %3d%%", name.c_str(), step);
        else std::fprintf(stderr, "\rzorvstat: reading %s: %lld MB", name.c_str(), static_cast<long long>(done >> 20));
        std::fflush(stderr);
    }

    void end_progress() {
        if (progress && shown >= 0) std::fprintf(stderr, "\r\033[K");
    }

    [[noreturn]] void malformed(const std::string &what, std::size_t at_line) {
        data_error(name + ", line " + std::to_string(at_line) + ": " + what);
    }

    // Parse the record at s; the position after it, or null when the buffer
    // ends inside it before the end of the input.  `lines` gets the number
    // of line feeds in it.
    const char *parse_record(const char *s, const char *e, std::size_t &lines) {
        fields.clear();
        lines = 0;
        std::size_t k = 0;
        const char *p = s;
        for (;;) {
            if (p < e && *p == '"') {
                if (k >= scratch.size()) scratch.resize(k + 1);
                std::string &out = scratch[k];
                out.clear();
                const char *q = p + 1;
                for (;;) {
                    const char *quote = static_cast<const char *>(std::memchr(q, '"', e - q));
                    if (!quote) {
                        if (!eof) return nullptr;
                        malformed("a quoted field has no closing quote", line + 1);
                    }
                    for (const char *c = q; c < quote; ++c) lines += *c == '\n';
                    out.append(q, quote);
                    if (quote + 1 == e && !eof) return nullptr;
                    if (quote + 1 < e && quote[1] == '"') {
                        out += '"';
                        q = quote + 2;
                        continue;
                    }
                    p = quote + 1;
                    break;
                }
                if (p < e && *p == '\r' && (p + 1 == e || p[1] == '\n')) ++p;
                if (p == e && !eof) return nullptr;   // what follows the quote is still to come
                if (p < e && *p != sep && *p != '\n')
                    malformed("a character follows a closing quote", line + 1 + lines);
                fields.push_back({nullptr, k});
            } else {
                const char *f = p;
                while (f < e && *f != sep && *f != '\n') ++f;
                if (f == e && !eof) return nullptr;
                const char *last = f;
                if (last > p && last[-1] == '\r') --last;
                fields.push_back({p, static_cast<std::size_t>(last - p)});
                p = f;
            }
            ++k;
            if (p < e && *p == sep) {
                ++p;
                continue;
            }
            if (p < e) {   // the line feed
                ++lines;
                ++p;
            }
            return p;
        }
    }

    std::string field_text(const Field &f) const {
        return f.p ? std::string(f.p, f.n) : scratch[f.n];
    }

    void header() {
        if (fields.size() == 1 && fields[0].p && fields[0].n == 0) return;   // blank line before the header
        for (std::size_t j = 0; j < fields.size(); ++j) {
            Column c;
            c.name = field_text(fields[j]);
            if (c.name.empty()) c.name = "V" + std::to_string(j + 1);
            data.columns_.push_back(std::move(c));
            data.buffers_.push_back(new ColumnBuffer);
        }
        header_done = true;
    }

    void to_text(std::size_t j, const std::string &first, std::size_t at_line) {
        Column &c = data.columns_[j];
        ColumnBuffer *b = data.buffers_[j];
        c.numeric = false;
        c.first_text_line = at_line;
        c.first_text = first;
        c.text.reserve(data.rows_ + 1);
        for (std::size_t i = 0; i < b->n; ++i) c.text.push_back(shortest(b->p[i]));
        delete b;
        data.buffers_[j] = nullptr;
    }

    void record(std::size_t at_line) {
        if (!header_done) {
            header();
            return;
        }
        std::size_t nc = data.columns_.size();
        if (fields.size() == 1 && fields[0].p && fields[0].n == 0) return;   // a blank line
        if (fields.size() != nc)
            malformed(std::to_string(fields.size()) + " fields where the header has " + std::to_string(nc), at_line);
        for (std::size_t j = 0; j < nc; ++j) {
            const Field &f = fields[j];
            const char *p = f.p ? f.p : scratch[f.n].data();
            std::size_t n = f.p ? f.n : scratch[f.n].size();
            if (ColumnBuffer *b = data.buffers_[j]) {
                double v;
                if (read_number(p, n, v)) {
                    b->push(v);
                    continue;
                }
                to_text(j, std::string(p, n), at_line);
            }
            std::string text(p, n);
            data.columns_[j].text.push_back(is_missing_token(p, n) ? std::string() : std::move(text));
        }
        ++data.rows_;
    }

    void run() {
        bool first = true;
        while (!eof) {
            fill();
            if (first && end - begin >= 3 && std::memcmp(buffer.data(), "\xEF\xBB\xBF", 3) == 0) begin = 3;
            first = false;
            const char *e = buffer.data() + end;
            while (begin < end) {
                std::size_t lines;
                const char *next = parse_record(buffer.data() + begin, e, lines);
                if (!next) break;
                record(line + 1);
                line += lines;
                begin = static_cast<std::size_t>(next - buffer.data());
            }
        }
        end_progress();
        if (!header_done) data_error(name + " is empty: a header line is needed");
        for (std::size_t j = 0; j < data.columns_.size(); ++j)
            if (data.buffers_[j]) data.columns_[j].values = data.buffers_[j]->p;
    }
};

Data::Data() = default;
Data::~Data() {
    for (ColumnBuffer *b : buffers_) delete b;
}

void Data::read_stream(int fd, const std::string &name, char separator, bool progress) {
    source_ = name;
    DataReader reader(*this, separator, fd, progress, name);
    struct stat st;
    if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) reader.total = st.st_size;
    reader.run();
}

void Data::read_file(const std::string &path, char separator, bool progress, const std::string &shown_as) {
    int fd = ::open(path.c_str(), O_RDONLY);
    if (fd < 0) {
        std::string hint = errno == ENOENT ? " (a command's first word is its file; --sample keeps the sample)" : "";
        throw Failure(status_no_input, "cannot open '" + path + "': " + std::strerror(errno) + hint);
    }
    struct Closer {
        int fd;
        ~Closer() { ::close(fd); }
    } closer{fd};
    read_stream(fd, "'" + path + "'", separator, progress);
    source_ = shown_as.empty() ? path : shown_as;
}

int Data::int_rows() const {
    if (rows_ > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        data_error(source_ + " has " + std::to_string(rows_) + " rows, more than a library routine takes");
    return static_cast<int>(rows_);
}

std::size_t Data::find(std::string_view selection) const {
    for (std::size_t j = 0; j < columns_.size(); ++j)
        if (columns_[j].name == selection) return j;
    std::size_t number = 0;
    auto r = std::from_chars(selection.data(), selection.data() + selection.size(), number);
    if (!selection.empty() && r.ec == std::errc() && r.ptr == selection.data() + selection.size() && number >= 1 &&
        number <= columns_.size())
        return number - 1;
    std::string names;
    for (const Column &c : columns_) names += (names.empty() ? "" : ", ") + c.name;
    data_error("no column '" + std::string(selection) + "' in " + source_ + " (columns: " + names + ")");
}

const double *Data::numbers(std::size_t index) const {
    const Column &c = columns_[index];
    if (!c.numeric)
        data_error("column '" + c.name + "' of " + source_ + " is not numeric: line " +
                   std::to_string(c.first_text_line) + " holds '" + c.first_text + "'");
    return c.values;
}

std::vector<std::string> Data::labels(std::size_t index) const {
    const Column &c = columns_[index];
    if (!c.numeric) return c.text;
    std::vector<std::string> out(rows_);
    for (std::size_t i = 0; i < rows_; ++i) out[i] = shortest(c.values[i]);
    return out;
}

Data::Groups Data::groups(std::size_t index) const {
    Groups g;
    std::vector<std::string> labels = this->labels(index);
    std::map<std::string, int> place;
    g.of_row.reserve(labels.size());
    for (const std::string &label : labels) {
        if (label.empty()) {
            g.of_row.push_back(-1);
            continue;
        }
        auto [it, fresh] = place.emplace(label, static_cast<int>(g.levels.size()));
        if (fresh) g.levels.push_back(label);
        g.of_row.push_back(it->second);
    }
    return g;
}

std::vector<std::size_t> Data::numeric_columns(const std::vector<std::size_t> &except) const {
    std::vector<std::size_t> out;
    for (std::size_t j = 0; j < columns_.size(); ++j) {
        bool skip = !columns_[j].numeric;
        for (std::size_t e : except) skip = skip || e == j;
        if (!skip) out.push_back(j);
    }
    return out;
}

}  // namespace zcli
