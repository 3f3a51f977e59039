// write_matrix.cpp - the matrix printer.
//
// Prints a row-major matrix with a title and row and column labels on pages
// of the set width and length, wrapping the columns that do not fit.  Besides
// the printf conversions, a format may use `W`, which picks from the values a
// fixed or exponent format showing a given number of significant digits in a
// field of a given width (the whole matrix shares it, and common trailing
// zeros are dropped), and `w`, which does the same column by column.
//
// A controller hands out the blocks to print, one per call: groups of rows
// when the whole width fits the page; else groups of whole columns, each
// printed for the rows in hand (those that fit a page, or the row wrap with
// paging off) before the next rows.  A row whose cells outgrow their planned
// fields goes on in continuation lines; the controller counts those, and the
// further lines of long row labels, when it fits rows to the page.
//
// No object with a destructor lives here: work arrays come from
// zorvs::allocate and are freed on every path.
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "kernels/linalg.hpp"
#include "output/output.h"
#include "zorvstat.h"

namespace {

constexpr int lc_max_conv = 48;   // room for one conversion's text
constexpr int lc_line = 256;      // label and title texts
// The line buffer: the widest page (255) and what a cell that outgrows its
// field may push past it (see l_row_lines).
constexpr int lc_line_buffer = lc_line + 64;

struct Conversion {
    char text[lc_max_conv];       // the conversion as written, e.g. "%10.4W"
    char letter;
    int width;                    // -1 if missing
    int precision;                // -1 if missing
};

// ----------------------------------------------------------------- format check
void check_conversion(const char *format, int &at, const char *letters, Conversion *out, int &max_width,
                      int &n_w, bool &ok) {
    int begin = at;
    ++at;  // the '%'
    while (format[at] && std::strchr("+-#0 ", format[at])) ++at;
    auto conversion_text = [&](int end) {
        thread_local char piece[lc_max_conv];
        int n = end - begin < lc_max_conv - 1 ? end - begin : lc_max_conv - 1;
        std::memcpy(piece, format + begin, n);
        piece[n] = '\0';
        return piece;
    };
    if (format[at] == '*') {
        zorvs_e1stl(1, conversion_text(at + 1));
        zorvs_ermes(5, 10004);
        ok = false;
        return;
    }
    int width = -1;
    if (format[at] >= '0' && format[at] <= '9') {
        width = 0;
        while (format[at] >= '0' && format[at] <= '9') {
            if (width < 1000) width = width * 10 + (format[at] - '0');
            ++at;
        }
    }
    int precision = -1;
    if (format[at] == '.') {
        ++at;
        precision = 0;
        while (format[at] >= '0' && format[at] <= '9') {
            if (precision < 1000) precision = precision * 10 + (format[at] - '0');
            ++at;
        }
    }
    char letter = format[at];
    int end = letter ? at + 1 : at;
    if (width >= 41) {
        zorvs_e1stl(1, conversion_text(end));
        zorvs_ermes(5, 10005);
        ok = false;
        return;
    }
    if (precision > (width < 0 ? 10 : width)) {
        zorvs_e1stl(1, conversion_text(end));
        zorvs_ermes(5, 10006);
        ok = false;
        return;
    }
    if (!letter || !std::strchr(letters, letter)) {
        zorvs_e1stl(1, conversion_text(end));
        zorvs_ermes(5, 10007);
        ok = false;
        return;
    }
    at = end;
    int counted = width < 0 ? 10 : width;
    if (counted > max_width) max_width = counted;
    if (letter == 'W' || letter == 'w') ++n_w;
    if (out) {
        std::memcpy(out->text, conversion_text(end), lc_max_conv);
        out->letter = letter;
        out->width = width;
        out->precision = precision;
    }
}

// Scan a whole format; conversions go to `out` if given.  Returns false on error.
bool scan_format(const char *format, const char *letters, int *max_width, int *n_conv, int *n_w,
                 Conversion *out) {
    *max_width = 0;
    *n_conv = 0;
    *n_w = 0;
    int length = static_cast<int>(std::strlen(format));
    if (length < 3) {
        zorvs_e1stl(1, format);
        zorvs_ermes(5, 10001);
        return false;
    }
    if (!std::strchr(format, '%')) {
        zorvs_e1stl(1, format);
        zorvs_ermes(5, 10003);
        return false;
    }
    int at = 0;
    bool ok = true;
    while (format[at]) {
        if (format[at] != '%') {
            zorvs_e1stl(1, format);
            zorvs_ermes(5, 10002);
            return false;
        }
        check_conversion(format, at, letters, out ? out + *n_conv : nullptr, *max_width, *n_w, ok);
        if (!ok) return false;
        ++*n_conv;
    }
    return true;
}

// ----------------------------------------------------------------- W resolution
template <class T>
constexpr int significant_limit() {
    // Decimal digits the type carries: 7 in float, 15 in double.
    return zorvs::by_type<T>(7, 15, 15);
}

// Format for a value of size |x|: fixed with enough decimals for `digits`
// significant digits, or exponent form when the field is too narrow or the
// value is very small or very large.
template <class T>
const char *fmtx(double x, int width, int digits) {
    thread_local char buffer[lc_max_conv];
    int sig = digits < significant_limit<T>() ? digits : significant_limit<T>();
    if (sig < 1) sig = 1;
    double ax = std::fabs(x);
    bool exponent = false;
    int left = 1, decimals = 0;
    if (std::isnan(x)) {
        if (width >= 7)
            exponent = true;
        else {
            std::snprintf(buffer, sizeof buffer, "%%%df", width);
            return buffer;
        }
    } else if (width >= 7 && ((ax > 0 && ax < 0.001) || ax >= 10000000.0)) {
        exponent = true;
    } else if (ax == 0) {
        decimals = sig;
        left = 1;
    } else if (ax >= 1) {
        int k = static_cast<int>(std::floor(std::log10(ax)));
        left = k + 1;
        decimals = sig - (k + 1);
        if (decimals > 0 && ax + 0.5 * std::pow(10.0, k + 1 - sig) >= std::pow(10.0, k + 1)) {
            ++left;
            --decimals;
        }
    } else {
        double lg = -std::log10(ax);
        int m = static_cast<int>(std::floor(lg));
        decimals = sig + m;
        left = 1;
        if (lg == std::floor(lg) || ax + 0.5 * std::pow(10.0, -decimals) >= std::pow(10.0, -m)) --decimals;
    }
    if (!exponent) {
        if (decimals < 0) decimals = 0;
        while (left + decimals + 2 > width) {
            if (width >= 7) {
                exponent = true;
                break;
            }
            if (decimals > 0)
                --decimals;
            else if (left > 0)
                --left;
            else
                break;
        }
    }
    if (exponent) {
        int e = sig - 1 < width - 7 ? sig - 1 : width - 7;
        if (e < 0) e = 0;
        std::snprintf(buffer, sizeof buffer, "%%%d.%de", width, e);
    } else {
        std::snprintf(buffer, sizeof buffer, "%%%d.%df", width, decimals);
    }
    return buffer;
}

}  // namespace

extern "C" void zorvs_w12rl(int itring, int first, int last, int column, int *start, int *count) {
    int s = first, e = last;
    switch (itring) {
    case 1: e = column < last ? column : last; break;
    case 2: e = column - 1 < last ? column - 1 : last; break;
    case -1: s = column > first ? column : first; break;
    case -2: s = column + 1 > first ? column + 1 : first; break;
    default: break;
    }
    *start = s;
    *count = e - s + 1 < 0 ? 0 : e - s + 1;
}

extern "C" const char *zorvs_fmtx(float x, int width, int digits) { return fmtx<float>(x, width, digits); }
extern "C" const char *zorvs_dfmtx(double x, int width, int digits) { return fmtx<double>(x, width, digits); }

extern "C" void zorvs_write_format(const char *format, const char *letters, int *max_width, int *n_conversions,
                                   int *n_w) {
    zorvs_e1psh("zorvs_write_format");
    scan_format(format, letters, max_width, n_conversions, n_w, nullptr);
    zorvs_e1pop("zorvs_write_format");
}

namespace {

// Is element (i, j) (1-based, of the matrix as printed) inside the print part?
bool in_part(int itring, int i, int j) {
    int start, count;
    zorvs_w12rl(itring, 1, 1 << 30, j, &start, &count);
    return i >= start && i < start + count;
}

// Resolve `W` over the columns of `cols` (a flag per column) of the print part:
// an integer format if all values are whole, else zorvs_fmtx on the largest,
// with the decimals common trailing zeros allow dropped (l_f3trr_f).
template <class T>
void l_fmtrr_f(int n_rows, int n_columns, const T *a, int lda, int itring, const char *use, int width, int digits,
               char *result) {
    double largest = 0;
    bool any = false, whole = true;
    double lo = -1e300, hi = 1e300;
    if (!std::is_same_v<T, float> || width < 39) {
        lo = -std::pow(10.0, width - 1);
        hi = std::pow(10.0, width);
    } else {
        whole = false;
    }
    for (int j = 1; j <= n_columns; ++j) {
        if (!use[j - 1]) continue;
        for (int i = 1; i <= n_rows; ++i) {
            if (!in_part(itring, i, j)) continue;
            double x = static_cast<double>(a[(i - 1) * lda + (j - 1)]);
            if (std::isnan(x) || std::isinf(x)) continue;
            any = true;
            if (std::fabs(x) > largest) largest = std::fabs(x);
            if (x != std::floor(x) || !(x > lo && x < hi) || std::fabs(x) > 2147483647.0) whole = false;
        }
    }
    if (!any) {
        std::snprintf(result, lc_max_conv, "%s", fmtx<T>(NAN, width, digits));
        return;
    }
    if (whole) {
        std::snprintf(result, lc_max_conv, "%%%dd", width);
        return;
    }
    std::snprintf(result, lc_max_conv, "%s", fmtx<T>(largest, width, digits));
    int n = static_cast<int>(std::strlen(result));
    if (result[n - 1] != 'f') return;
    // l_f3trr_f: drop the decimals that end in zero for every element.
    int d = std::atoi(std::strchr(result, '.') + 1);
    while (d > 0) {
        bool all_zero = true;
        for (int j = 1; j <= n_columns && all_zero; ++j) {
            if (!use[j - 1]) continue;
            for (int i = 1; i <= n_rows; ++i) {
                if (!in_part(itring, i, j)) continue;
                double x = static_cast<double>(a[(i - 1) * lda + (j - 1)]);
                if (std::isnan(x) || std::isinf(x)) continue;
                double r = std::round(x * std::pow(10.0, d));
                if (std::fmod(r, 10.0) != 0) {
                    all_zero = false;
                    break;
                }
            }
        }
        if (!all_zero) break;
        --d;
    }
    std::snprintf(result, lc_max_conv, "%%%d.%df", width, d);
}

// One cell, zorvs_w1iss: at most 40 characters into `out`.
template <class T>
void l_w1iss(T value, const char *format, int width, char *out) {
    int nan_blank = 0;
    zorvs_w1opt(4, &nan_blank);
    if (width > 40) width = 40;
    int n = static_cast<int>(std::strlen(format));
    char letter = format[n - 1];
    double x = static_cast<double>(value);
    auto fill = [&](char c) {
        std::memset(out, c, width);
        out[width] = '\0';
    };
    if (std::isnan(x)) return fill(nan_blank == 1 ? ' ' : '.');
    if (std::isinf(x)) return fill(x > 0 ? '+' : '-');
    char text[128];
    if (std::strchr("diouxX", letter)) {
        double t = std::trunc(x);
        if (t > 2147483647.0 || t < -2147483648.0) return fill('*');
        std::snprintf(text, sizeof text, format, static_cast<int>(t));
    } else {
        std::snprintf(text, sizeof text, format, x);
    }
    std::size_t len = std::strlen(text);
    if (static_cast<int>(len) > width) return fill('*');
    std::memcpy(out, text, len + 1);  // len is at most width, at most 40
}

// Pieces of a label or title broken to `width`: at line feeds, at blanks, else
// at a character that is not a letter or digit within the last `unit`
// characters, else cut at `width` (l_w4rrl).  Returns the number of lines and
// fills starts/ends (exclusive) if given.
int l_w4rrl(const char *text, int width, int unit, int *starts, int *ends, int room) {
    int lines = 0;
    int at = 0;
    int length = static_cast<int>(std::strlen(text));
    if (width < 1) width = 1;
    while (at < length || lines == 0) {
        int end = at;
        while (end < length && text[end] != '\n' && end - at < width) ++end;
        int next = end;
        if (end < length && text[end] == '\n') {
            next = end + 1;
        } else if (end < length) {
            // Too long: look back for a blank, then for a non-alphanumeric.
            int cut = -1;
            for (int k = end; k > at; --k)
                if (text[k] == ' ') {
                    cut = k;
                    break;
                }
            if (cut > at) {
                end = cut;
                next = cut + 1;
            } else {
                for (int k = end - 1; k > at && k >= end - unit; --k)
                    if (!std::isalnum(static_cast<unsigned char>(text[k]))) {
                        cut = k + 1;
                        break;
                    }
                if (cut > at) end = next = cut;
            }
        }
        if (starts && lines < room) {
            starts[lines] = at;
            ends[lines] = end;
        }
        ++lines;
        at = next;
        if (at >= length) break;
    }
    return lines;
}

struct Layout {
    int page_width, page_length, center, row_wrap, title_page;
    int row_mode, col_mode;
    int row_width;        // width of the row-label field
    int row_unit;
    int col_label_limit;  // widest a column label may be
    int title_lines;
};

// Everything the printer needs about one call.
template <class T>
struct Job {
    const char *title;
    int n_rows, n_columns, lda, itring;
    const T *a;
    char **row_labels, **col_labels;
    Conversion *conv;
    int n_conv;
    char (*cell_format)[lc_max_conv];  // per column
    int *field;                        // per column: field width the layout plans with
    int *cell_limit;                   // per column: longest text a cell may take
    int *column_width;                 // per column: field and label
    bool variable_cells;               // some column has no written width: cells may outgrow the plan
    Layout lay;
    char *line;
};

void put_line(const char *line, int length) {
    if (length > lc_line_buffer) length = lc_line_buffer;
    while (length > 0 && line[length - 1] == ' ') --length;
    if (length == 0) {
        zorvs_write_line(1, " ");
        return;
    }
    zorvs_write_line(length, line);
}

void format_label(int mode, char **labels, int index, char *out, int size) {
    if (mode == 1)
        std::snprintf(out, size, "%d", index + 1);
    else if (mode == 3)
        std::snprintf(out, size, "%d", index);
    else if (mode == 2 && labels && labels[index])
        std::snprintf(out, size, "%s", labels[index]);
    else
        out[0] = '\0';
}

template <class T>
int head_lines(Job<T> &job, int c0, int c1, bool with_title) {
    int lines = with_title ? job.lay.title_lines : 0;
    int label_lines = 0;
    if (job.lay.col_mode != 0) {
        label_lines = 1;
        for (int j = c0; j <= c1; ++j) {
            char text[lc_line];
            format_label(job.lay.col_mode, job.col_labels ? job.col_labels + 1 : nullptr, j, text, lc_line);
            int n = l_w4rrl(text, job.column_width[j], job.column_width[j] / 3 + 1, nullptr, nullptr, 0);
            if (n > label_lines) label_lines = n;
        }
        if (job.lay.col_mode == 2 && job.lay.row_mode != 0 && job.col_labels[0]) {
            int n = l_w4rrl(job.col_labels[0], job.lay.row_width, job.lay.row_unit, nullptr, nullptr, 0);
            if (n > label_lines) label_lines = n;
        }
    }
    return lines + label_lines;
}

template <class T>
int block_width(Job<T> &job, int c0, int c1) {
    int w = job.lay.row_width;
    for (int j = c0; j <= c1; ++j) w += 2 + job.column_width[j];
    return w;
}

template <class T>
int margin_of(Job<T> &job, int width) {
    if (!job.lay.center) return 0;
    int room = job.lay.page_width - width;
    return room > 0 ? room / 2 : 0;
}

void clear_line(char *line) { std::memset(line, ' ', lc_line_buffer); }

// Text into the line buffer at `at`, clipped to the buffer.  The layout
// keeps every line within it; the clip keeps a line the layout did not
// foresee (such as the head of a matrix without rows once was) from writing
// past it.
void place(char *line, int at, const char *text, int len) {
    if (at < 0 || at >= lc_line_buffer) return;
    if (len > lc_line_buffer - at) len = lc_line_buffer - at;
    if (len > 0) std::memcpy(line + at, text, len);
}

// Title lines (zorvs_write_title), each centred on the page if asked.
template <class T>
void write_title(Job<T> &job) {
    int starts[64], ends[64];
    if (job.title[0] == '\0') return;
    int n = l_w4rrl(job.title, job.lay.page_width, job.lay.page_width / 3 + 1, starts, ends, 64);
    for (int k = 0; k < n && k < 64; ++k) {
        int len = ends[k] - starts[k];
        int m = 0;
        if (job.lay.center) {
            int room = job.lay.page_width - len;
            m = room > 0 ? room / 2 : 0;
        }
        clear_line(job.line);
        place(job.line, m, job.title + starts[k], len);
        put_line(job.line, m + len);
    }
}

// Column labels, right-aligned over their fields (zorvs_write_labels).
template <class T>
void write_labels(Job<T> &job, int c0, int c1, int margin) {
    if (job.lay.col_mode == 0) return;
    int lines = head_lines(job, c0, c1, false);
    for (int k = 0; k < lines; ++k) {
        clear_line(job.line);
        int pos = margin;
        if (job.lay.col_mode == 2 && job.lay.row_mode != 0 && job.col_labels[0]) {
            int starts[64], ends[64];
            int n = l_w4rrl(job.col_labels[0], job.lay.row_width, job.lay.row_unit, starts, ends, 64);
            if (k < n && k < 64) place(job.line, pos, job.col_labels[0] + starts[k], ends[k] - starts[k]);
        }
        pos += job.lay.row_width;
        for (int j = c0; j <= c1; ++j) {
            pos += 2;
            char text[lc_line];
            format_label(job.lay.col_mode, job.col_labels ? job.col_labels + 1 : nullptr, j, text, lc_line);
            int starts[64], ends[64];
            int cw = job.column_width[j];
            int n = l_w4rrl(text, cw, cw / 3 + 1, starts, ends, 64);
            // Labels sit on the last lines of the head, right-aligned.
            int row = k - (lines - n);
            if (row >= 0 && row < 64) {
                int len = ends[row] - starts[row];
                place(job.line, pos + cw - len, text + starts[row], len);
            }
            pos += cw;
        }
        put_line(job.line, pos);
    }
}

// Last column of c0..c1 that holds a printable element of row i, or c0 - 1.
template <class T>
int last_printable(Job<T> &job, int i, int c0, int c1) {
    if (job.itring == 0) return c1;
    for (int j = c1; j >= c0; --j)
        if (in_part(job.itring, i + 1, j + 1)) return j;
    return c0 - 1;
}

template <class T>
bool row_printable(Job<T> &job, int i, int c0, int c1) {
    return last_printable(job, i, c0, c1) >= c0;
}

// One row of a block (zorvs_w8rrl and step 4 of l_w3rrl_f): the first line of
// the row label, then the cells of c0..c1 from the left, each in its field
// behind 2 blanks.  A cell that outgrows its planned field pushes the rest of
// the row right; when the next field would pass the page width the line is
// flushed and the row goes on in a continuation line, under the cells, indented
// by one more position each time and back to no indent after 5 steps.  Further
// lines of a long row label follow alone.  With `emit` false nothing is printed
// and only the lines are counted, so the controller can fit rows to the page.
template <class T>
int l_row_lines(Job<T> &job, int i, int c0, int c1, int margin, bool emit) {
    Layout &lay = job.lay;
    char label[lc_line];
    format_label(lay.row_mode, job.row_labels, i, label, lc_line);
    int starts[64], ends[64];
    int label_lines = l_w4rrl(label, lay.row_width > 0 ? lay.row_width : 1, lay.row_unit, starts, ends, 64);
    if (lay.row_mode == 0) label_lines = 1;
    int lines = 1;
    int last = last_printable(job, i, c0, c1);
    if (emit) {
        clear_line(job.line);
        if (lay.row_mode != 0) {
            int len = ends[0] - starts[0];
            int at = lay.row_mode == 2 ? margin : margin + lay.row_width - len;
            place(job.line, at, label + starts[0], len);
        }
    }
    if (emit || job.variable_cells) {
        int pos = margin + lay.row_width;
        int indent = 0;
        bool placed = false;  // a field stands on the current line
        for (int j = c0; j <= last; ++j) {
            char cell[48];
            int len;
            if (in_part(job.itring, i + 1, j + 1)) {
                l_w1iss(job.a[i * job.lda + j], job.cell_format[j], job.cell_limit[j], cell);
                len = static_cast<int>(std::strlen(cell));
            } else {
                len = job.field[j] < 40 ? job.field[j] : 40;
                std::memset(cell, ' ', len);
            }
            int field = job.column_width[j] > len ? job.column_width[j] : len;
            if (placed && pos + 2 + field > lay.page_width) {
                if (emit) {
                    put_line(job.line, pos);
                    clear_line(job.line);
                }
                ++lines;
                indent = indent == 5 ? 0 : indent + 1;
                pos = margin + lay.row_width + indent;
                placed = false;
            }
            pos += 2;
            if (emit) place(job.line, pos + field - len, cell, len);
            pos += field;
            placed = true;
        }
        if (emit) put_line(job.line, pos);
    }
    for (int k = 1; k < label_lines && k < 64; ++k) {
        if (emit) {
            clear_line(job.line);
            place(job.line, margin, label + starts[k], ends[k] - starts[k]);
            put_line(job.line, margin + ends[k] - starts[k]);
        }
        ++lines;
    }
    return lines;
}

// l_w11rl: cut the block r0..r1 x c0..c1 of a triangular print part to the
// rows and columns that hold printable elements.  False if there are none.
template <class T>
bool l_w11rl(Job<T> &job, int &r0, int &r1, int &c0, int &c1) {
    if (job.itring == 0) return r0 <= r1 && c0 <= c1;
    while (r0 <= r1 && !row_printable(job, r0, c0, c1)) ++r0;
    while (r1 >= r0 && !row_printable(job, r1, c0, c1)) --r1;
    if (r0 > r1) return false;
    auto column_printable = [&](int j) {
        for (int i = r0; i <= r1; ++i)
            if (in_part(job.itring, i + 1, j + 1)) return true;
        return false;
    };
    while (c0 <= c1 && !column_printable(c0)) ++c0;
    while (c1 >= c0 && !column_printable(c1)) --c1;
    return c0 <= c1;
}

// What the controller hands the block printer.
struct Block {
    int r0, r1, c0, c1;  // rows and columns, from 0; r1 < r0 for a head alone
    int rows;            // rows of the block; -1 after the last block
    bool title;          // the title heads the block
};

// The controller's memory, a variable of the caller.  State 0 is the first
// call and the end; 50: no rows, the blocks are heads alone, one per column
// group; 70: the whole width fits and the blocks are groups of rows; 120:
// columns wrap and the rows in hand are those that fit a page; 200: columns
// wrap and the row wrap alone sets the rows in hand.
struct Controller {
    int state;
    int next_row;            // first row of the next block
    int hand_first;          // rows in hand (states 120 and 200) ...
    int hand_last;           // ... -1 until the first column group has set it
    int c0, c1;              // the column group
    bool first_block;
};

// The column group that starts at c0: whole columns from the left, each with
// its field or label width and 2 blanks, while the page width is not passed.
template <class T>
int column_group_end(Job<T> &job, int c0) {
    int c1 = c0;
    int w = job.lay.row_width + 2 + job.column_width[c0];
    while (c1 + 1 < job.n_columns && w + 2 + job.column_width[c1 + 1] <= job.lay.page_width) {
        ++c1;
        w += 2 + job.column_width[c1];
    }
    return c1;
}

// One block of rows from `first` to at most `last` in columns c0..c1: skip the
// rows with nothing to print, part the block from the one before by a blank
// line or, if the page cannot hold the head and one row, a form feed, then
// take the rows the page and the row wrap allow.  Returns the row after the
// rows taken; b.rows is 0 if nothing in the range is printable.
template <class T>
int l_next_block(Job<T> &job, Controller &s, int first, int last, int c0, int c1, Block &b) {
    Layout &lay = job.lay;
    b.rows = 0;
    while (first <= last && !row_printable(job, first, c0, c1)) ++first;
    if (first > last) return last + 1;
    int count = 0;
    zorvs_w1opt(3, &count);
    bool paging = count >= 0;
    int head = head_lines(job, c0, c1, s.first_block);
    int first_lines = l_row_lines(job, first, c0, c1, 0, false);
    if (!s.first_block) {
        if (paging && count > 0 && count + 1 + head + first_lines > lay.page_length) {
            zorvs_write_line(-1, "");
            count = 0;
        } else {
            zorvs_write_line(1, " ");
            if (paging) ++count;
        }
    } else if (paging && count > 0 && count + head + first_lines > lay.page_length) {
        zorvs_write_line(-1, "");
        count = 0;
    }
    b.title = s.first_block || (paging && count == 0 && lay.title_page);
    s.first_block = false;
    head = head_lines(job, c0, c1, b.title);
    int room = paging ? lay.page_length - count - head : 1 << 30;
    int r = first, used = 0, n = 0;
    while (r <= last && n < lay.row_wrap) {
        int h = row_printable(job, r, c0, c1) ? l_row_lines(job, r, c0, c1, 0, false) : 0;
        if (n > 0 && used + h > room) break;
        used += h;
        ++n;
        ++r;
    }
    b.r0 = first;
    b.r1 = r - 1;
    b.c0 = c0;
    b.c1 = c1;
    l_w11rl(job, b.r0, b.r1, b.c0, b.c1);
    b.rows = b.r1 - b.r0 + 1;
    return r;
}

// zorvs_write_controller: called repeatedly, it says what to print next.
template <class T>
void zorvs_write_controller(Job<T> &job, Controller &s, Block &b) {
    if (s.state == 0) {
        // First call: the labels are measured; choose the layout.
        s.first_block = true;
        s.next_row = 0;
        s.hand_first = 0;
        s.hand_last = -1;
        s.c0 = 0;
        if (job.n_rows == 0 || job.n_columns == 0) {
            // The title and the labels alone, the labels wrapped in column
            // groups like the columns of a matrix with rows.
            int count = 0;
            zorvs_w1opt(3, &count);
            s.c1 = job.n_columns > 0 ? column_group_end(job, 0) : -1;
            if (count > 0 && count + head_lines(job, 0, s.c1, true) + 1 > job.lay.page_length)
                zorvs_write_line(-1, "");
            s.first_block = false;
            s.state = 50;
            b = Block{0, -1, 0, s.c1, 0, true};
            return;
        }
        s.c1 = column_group_end(job, 0);
        int count = 0;
        zorvs_w1opt(3, &count);
        s.state = s.c1 == job.n_columns - 1 ? 70 : count >= 0 ? 120 : 200;
    }
    if (s.state == 50) {
        // The next group of labels of a matrix without rows, parted from the
        // group before like a block of rows.
        s.c0 = s.c1 + 1;
        if (s.c0 < job.n_columns) {
            s.c1 = column_group_end(job, s.c0);
            int count = 0;
            zorvs_w1opt(3, &count);
            const bool paging = count >= 0;
            if (paging && count > 0 && count + 1 + head_lines(job, s.c0, s.c1, false) > job.lay.page_length) {
                zorvs_write_line(-1, "");
                count = 0;
            } else {
                zorvs_write_line(1, " ");
            }
            b = Block{0, -1, s.c0, s.c1, 0, paging && count == 0 && job.lay.title_page != 0};
            return;
        }
        s.state = 0;
        b.rows = -1;
        return;
    }
    for (;;) {
        if (s.state == 70) {
            if (s.next_row >= job.n_rows) break;
            s.next_row = l_next_block(job, s, s.next_row, job.n_rows - 1, 0, job.n_columns - 1, b);
            if (b.rows > 0) return;
            continue;
        }
        // States 120 and 200: the first column group sets the rows in hand;
        // the other groups print those rows; then the next rows.
        if (s.hand_first >= job.n_rows) break;
        bool setting = s.hand_last < 0;
        int last = setting ? job.n_rows - 1 : s.hand_last;
        int next = l_next_block(job, s, s.next_row, last, s.c0, s.c1, b);
        if (setting) s.hand_last = next - 1;
        s.next_row = next;
        if (s.next_row > s.hand_last) {
            s.c0 = s.c1 + 1;
            if (s.c0 >= job.n_columns) {
                s.c0 = 0;
                s.hand_first = s.hand_last + 1;
                s.hand_last = -1;
            }
            s.c1 = column_group_end(job, s.c0);
            s.next_row = s.hand_first;
        }
        if (b.rows > 0) return;
    }
    s.state = 0;
    b.rows = -1;
}

// l_w3rrl_f: print one block, its head and its rows.
template <class T>
void l_w3rrl_f(Job<T> &job, const Block &b) {
    int margin = margin_of(job, block_width(job, b.c0, b.c1));
    if (b.title) write_title(job);
    write_labels(job, b.c0, b.c1, margin);
    for (int i = b.r0; i <= b.r1; ++i)
        if (row_printable(job, i, b.c0, b.c1)) l_row_lines(job, i, b.c0, b.c1, margin, true);
}

template <class T>
void print_blocks(Job<T> &job) {
    Controller s{};
    Block b{};
    for (;;) {
        zorvs_write_controller(job, s, b);
        if (b.rows < 0) break;
        l_w3rrl_f(job, b);
    }
}

// The body shared by the keyword and the plain forms.
template <class T>
void l_write_matrix(const char *title, int n_rows, int n_columns, T *a, int lda, int itring, const char *format,
                    char **row_labels, char **col_labels, int row_mode, int col_mode, bool transpose) {
    const char *letters = std::is_same_v<T, int> ? "WdiouxX" : "wWeEfgGdiouxX";
    int arg_no = 0;
    zorvs_c1iarg(n_rows, "nra", 0, -1, &arg_no);
    zorvs_c1iarg(lda, "a_col_dim", 1, -1, &arg_no);
    if (n_columns > lda && lda >= 1) zorvs_c12ile(n_columns, "nca", lda, "a_col_dim", &arg_no);
    zorvs_c1iarg(n_columns, "nca", 0, -1, &arg_no);
    zorvs_null_pointer("title", -1, title);
    if (n_rows > 0 && n_columns > 0) zorvs_null_pointer("a", -1, a);
    int pr = transpose ? n_columns : n_rows;   // rows as printed
    int pc = transpose ? n_rows : n_columns;   // columns as printed
    if (row_mode == 2) {
        zorvs_null_pointer("rlabel", -1, row_labels);
        if (row_labels)
            for (int i = 0; i < pr; ++i) zorvs_null_pointer("rlabel", i, row_labels[i]);
    }
    if (col_mode == 2) {
        zorvs_null_pointer("clabel", -1, col_labels);
        if (col_labels)
            for (int j = 0; j <= pc; ++j) zorvs_null_pointer("clabel", j, col_labels[j]);
    }
    if (zorvs_error_n1rty[0] != 0) return;

    if (!format) {
        int f = 0;
        zorvs_w1opt(6, &f);
        format = f == 1 ? "%12.6W" : f == 2 ? "%12.5e" : "%10.4W";
    }
    int max_width = 0, n_conv = 0, n_w = 0;
    zorvs_e1psh("zorvs_write_format");
    bool ok = scan_format(format, letters, &max_width, &n_conv, &n_w, nullptr);
    zorvs_e1pop("zorvs_write_format");
    if (!ok) return;

    Job<T> job{};
    job.title = title;
    job.n_rows = pr;
    job.n_columns = pc;
    job.itring = itring;
    job.row_labels = row_labels;
    job.col_labels = col_labels;

    Layout &lay = job.lay;
    zorvs_page(1, &lay.page_width);
    zorvs_page(2, &lay.page_length);
    zorvs_w1opt(1, &lay.center);
    zorvs_w1opt(2, &lay.row_wrap);
    if (lay.row_wrap < 1) lay.row_wrap = 1000;
    zorvs_w1opt(5, &lay.title_page);
    int count = 0;
    zorvs_w1opt(3, &count);
    if (count > 0 || count == -2) zorvs_write_line(1, " ");
    zorvs_w1opt(3, &count);
    // A page already full starts a new one: the form feed that the next counted
    // line would print comes now, so the controller plans on an empty page.
    if (count >= 0 && count >= lay.page_length) zorvs_write_line(-1, "");
    lay.row_mode = row_mode >= 0 ? row_mode : (pr == 1 ? 0 : 1);
    lay.col_mode = col_mode >= 0 ? col_mode : (pc == 1 ? 0 : 1);

    // Layout checks (zorvs_write_initialize).
    // In 64 bits: the page width is checked against its limit further down.
    int row_limit = static_cast<int>(pc == 1 ? 2LL * lay.page_width / 3 : lay.page_width / 4);
    lay.row_unit = row_limit / 3 > 0 ? row_limit / 3 : 1;
    int col_limit = max_width + max_width / 2;
    if (col_limit < 15) col_limit = 15;
    if (col_limit > 83) col_limit = 83;
    if (lay.col_mode == 1 || lay.col_mode == 3) col_limit = 40;
    lay.col_label_limit = col_limit;
    lay.row_width = 0;
    if (lay.row_mode != 0) {
        for (int i = 0; i < pr; ++i) {
            char text[lc_line];
            format_label(lay.row_mode, row_labels, i, text, lc_line);
            int starts[64], ends[64];
            int n = l_w4rrl(text, row_limit > 0 ? row_limit : 1, lay.row_unit, starts, ends, 64);
            for (int k = 0; k < n && k < 64; ++k)
                if (ends[k] - starts[k] > lay.row_width) lay.row_width = ends[k] - starts[k];
        }
        if (lay.col_mode == 2 && col_labels && col_labels[0]) {
            int len = static_cast<int>(std::strlen(col_labels[0]));
            if (len > lay.row_width) lay.row_width = len < row_limit ? len : row_limit;
        }
    }
    int widest_label = 0;
    if (lay.col_mode != 0)
        for (int j = 0; j < pc; ++j) {
            char text[lc_line];
            format_label(lay.col_mode, col_labels ? col_labels + 1 : nullptr, j, text, lc_line);
            int len = static_cast<int>(std::strlen(text));
            if (len > col_limit) len = col_limit;
            if (len > widest_label) widest_label = len;
        }
    int column_need = widest_label > max_width ? widest_label : max_width;
    int need = lay.row_width + column_need + 6;
    if (lay.page_width < need) {
        if (max_width < 12) {
            zorvs_e1sti(1, lay.page_width);
            zorvs_e1sti(2, need);
            zorvs_ermes(5, 10009);
        } else {
            zorvs_e1sti(1, lay.page_width);
            zorvs_e1sti(2, need);
            zorvs_e1sti(3, max_width);
            zorvs_ermes(5, 10008);
        }
        return;
    }
    if (lay.page_width > 255) {
        zorvs_e1sti(1, lay.page_width);
        zorvs_ermes(5, 10010);
        return;
    }
    lay.title_lines = l_w4rrl(title, lay.page_width, lay.page_width / 3 + 1, nullptr, nullptr, 0);
    if (title[0] == '\0') lay.title_lines = 0;

    // Work arrays, freed by the pop of the routine's frame.
    int ncol = pc > 0 ? pc : 1;
    job.conv = zorvs::workspace<Conversion>(n_conv, "format");
    job.cell_format = reinterpret_cast<char (*)[lc_max_conv]>(zorvs::workspace<char>(ncol * lc_max_conv, "nca"));
    job.field = zorvs::workspace<int>(ncol, "nca");
    job.cell_limit = zorvs::workspace<int>(ncol, "nca");
    job.column_width = zorvs::workspace<int>(ncol, "nca");
    job.line = zorvs::workspace<char>(lc_line_buffer, "line");
    char *use = zorvs::workspace<char>(ncol, "nca");
    if (!job.conv || !job.cell_format || !job.field || !job.cell_limit || !job.column_width || !job.line || !use)
        return;
    scan_format(format, letters, &max_width, &n_conv, &n_w, job.conv);

    // A matrix without rows or columns has no elements to move, and `a` may
    // be null.
    transpose = transpose && n_rows > 0 && n_columns > 0;
    if (transpose) {
        zorvs::linalg::m1ran(n_rows, lda, a, a);
        job.lda = n_rows > 0 ? n_rows : 1;
    } else {
        job.lda = lda;
    }
    job.a = a;

    // Resolve each column's format.
    for (int c = 0; c < n_conv; ++c) {
        Conversion &cv = job.conv[c];
        int width = cv.width < 0 ? 10 : cv.width;
        if (cv.letter == 'W' || cv.letter == 'w') {
            int digits = cv.precision < 0 ? 4 : cv.precision;
            if (std::is_same_v<T, int>) {
                // Integers: as wide as the largest value and its sign, whatever the
                // width written.
                long long big = 0;
                for (int j = c; j < pc; j += n_conv)
                    for (int i = 0; i < pr; ++i)
                        if (in_part(itring, i + 1, j + 1)) {
                            long long v = static_cast<long long>(job.a[i * job.lda + j]);
                            long long m = v < 0 ? -v * 10 : v;
                            if (m > big) big = m;
                        }
                int digits_needed = 1;
                for (long long t = big; t >= 10; t /= 10) ++digits_needed;
                int w = digits_needed;
                for (int j = c; j < pc; j += n_conv) {
                    std::snprintf(job.cell_format[j], lc_max_conv, "%%%dd", w);
                    job.field[j] = w;
                    job.cell_limit[j] = w;
                }
            } else if (cv.letter == 'W') {
                std::memset(use, 0, ncol);
                for (int j = c; j < pc; j += n_conv) use[j] = 1;
                char resolved[lc_max_conv];
                l_fmtrr_f(pr, pc, job.a, job.lda, itring, use, width, digits, resolved);
                for (int j = c; j < pc; j += n_conv) {
                    std::memcpy(job.cell_format[j], resolved, lc_max_conv);
                    job.field[j] = width;
                    job.cell_limit[j] = width;
                }
            } else {
                for (int j = c; j < pc; j += n_conv) {
                    std::memset(use, 0, ncol);
                    use[j] = 1;
                    l_fmtrr_f(pr, pc, job.a, job.lda, itring, use, width, digits, job.cell_format[j]);
                    job.field[j] = width;
                    job.cell_limit[j] = width;
                }
            }
        } else {
            for (int j = c; j < pc; j += n_conv) {
                std::memcpy(job.cell_format[j], cv.text, lc_max_conv);
                // A conversion without a width is planned at 10, as the format
                // check counts it; its cells print whole, up to 40 characters,
                // and a row they push past the page goes on in a continuation line.
                job.field[j] = cv.width < 0 ? 10 : cv.width;
                job.cell_limit[j] = cv.width < 0 ? 40 : cv.width;
                if (cv.width < 0) job.variable_cells = true;
            }
        }
    }
    for (int j = 0; j < pc; ++j) {
        int w = job.field[j];
        if (lay.col_mode != 0) {
            char text[lc_line];
            format_label(lay.col_mode, col_labels ? col_labels + 1 : nullptr, j, text, lc_line);
            int len = static_cast<int>(std::strlen(text));
            if (len > col_limit) len = col_limit;
            if (len > w) w = len;
        }
        job.column_width[j] = w;
    }

    print_blocks(job);

    if (transpose) {
        zorvs::linalg::m1ran(lda, n_rows, a, a);
    }
}

// Keyword reading of the public forms.
template <class T>
void l_keywords(const char *title, int n_rows, int n_columns, T *a, va_list *list) {
    zorvs::KeywordReader kw(list, 4);
    int lda = -1, itring = 0, row_mode = -1, col_mode = -1;
    bool part_set = false, row_set = false, col_set = false, transpose = false;
    const char *format = nullptr;
    char **row_labels = nullptr, **col_labels = nullptr;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        int group = 0;  // 1 part, 2 rows, 3 columns
        switch (k) {
        case ZORVS_A_COL_DIM: lda = kw.integer(); break;
        case ZORVS_WRITE_FORMAT: format = kw.pointer<char>(); break;
        case ZORVS_TRANSPOSE: transpose = true; break;
        case ZORVS_PRINT_ALL: itring = 0; group = 1; break;
        case ZORVS_PRINT_UPPER: itring = 1; group = 1; break;
        case ZORVS_PRINT_UPPER_NO_DIAG: itring = 2; group = 1; break;
        case ZORVS_PRINT_LOWER: itring = -1; group = 1; break;
        case ZORVS_PRINT_LOWER_NO_DIAG: itring = -2; group = 1; break;
        case ZORVS_ROW_LABELS: row_labels = kw.pointer<char *>(); row_mode = 2; group = 2; break;
        case ZORVS_ROW_NUMBER: row_mode = 1; group = 2; break;
        case ZORVS_ROW_NUMBER_ZERO: row_mode = 3; group = 2; break;
        case ZORVS_NO_ROW_LABELS: row_mode = 0; group = 2; break;
        case ZORVS_COL_LABELS: col_labels = kw.pointer<char *>(); col_mode = 2; group = 3; break;
        case ZORVS_COL_NUMBER: col_mode = 1; group = 3; break;
        case ZORVS_COL_NUMBER_ZERO: col_mode = 3; group = 3; break;
        case ZORVS_NO_COL_LABELS: col_mode = 0; group = 3; break;
        default: kw.unknown(k, 103); continue;
        }
        bool *seen = group == 1 ? &part_set : group == 2 ? &row_set : group == 3 ? &col_set : nullptr;
        if (seen) {
            if (*seen) {
                zorvs_ermes(5, group == 1 ? 10013 : group == 2 ? 10014 : 10015);
                return;
            }
            *seen = true;
        }
    }
    if (lda < 0 && lda != -1) lda = -1;
    if (lda == -1) lda = n_columns > 0 ? n_columns : 1;
    l_write_matrix(title, n_rows, n_columns, a, lda, itring, format, row_labels, col_labels, row_mode,
                   col_mode, transpose);
}

template <class T>
void l_plain(const char *name, const char *title, int n_rows, int n_columns, T *a, int lda, int itring,
             const char *format, char **row_labels, char **col_labels, int row_mode, int col_mode) {
    zorvs::keyword_routine(name, [&] {
        l_write_matrix(title, n_rows, n_columns, a, lda, itring, format, row_labels, col_labels, row_mode,
                       col_mode, false);
    });
}

}  // namespace

extern "C" void zorvs_f_write_matrix(const char *title, int n_rows, int n_columns, float *a, ...) {
    va_list list;
    va_start(list, a);
    zorvs::keyword_routine("zorvs_f_write_matrix", [&] { l_keywords<float>(title, n_rows, n_columns, a, &list); });
    va_end(list);
}

extern "C" void zorvs_d_write_matrix(const char *title, int n_rows, int n_columns, double *a, ...) {
    va_list list;
    va_start(list, a);
    zorvs::keyword_routine("zorvs_d_write_matrix", [&] { l_keywords<double>(title, n_rows, n_columns, a, &list); });
    va_end(list);
}

extern "C" void zorvs_i_write_matrix(const char *title, int n_rows, int n_columns, int *a, ...) {
    va_list list;
    va_start(list, a);
    zorvs::keyword_routine("zorvs_i_write_matrix", [&] { l_keywords<int>(title, n_rows, n_columns, a, &list); });
    va_end(list);
}

extern "C" void zorvs_f_wrrrl(const char *title, int n_rows, int n_columns, float *a, int a_col_dim, int itring,
                              const char *format, char **row_labels, char **col_labels, int row_mode,
                              int col_mode) {
    l_plain<float>("zorvs_f_wrrrl", title, n_rows, n_columns, a, a_col_dim, itring, format, row_labels, col_labels,
                   row_mode, col_mode);
}

extern "C" void zorvs_d_wrrrl(const char *title, int n_rows, int n_columns, double *a, int a_col_dim, int itring,
                              const char *format, char **row_labels, char **col_labels, int row_mode,
                              int col_mode) {
    l_plain<double>("zorvs_d_wrrrl", title, n_rows, n_columns, a, a_col_dim, itring, format, row_labels,
                    col_labels, row_mode, col_mode);
}

extern "C" void zorvs_i_wrirl(const char *title, int n_rows, int n_columns, int *a, int a_col_dim, int itring,
                              const char *format, char **row_labels, char **col_labels, int row_mode,
                              int col_mode) {
    l_plain<int>("zorvs_i_wrirl", title, n_rows, n_columns, a, a_col_dim, itring, format, row_labels, col_labels,
                 row_mode, col_mode);
}
