// write_options.cpp - the options of the matrix output layer, the counted
// line writer and the small printers built on it.
//
// All output goes to unit 2 of zorvs_umach.  Option 3 is both a setting and
// the line count of the current page: 0 or more counts lines and begins a new
// page with a form feed when the count reaches the page length; -1 switches
// paging off; -2 (default) also drops the count and asks for a blank line
// before each matrix.
#include <cstdio>
#include <cstring>

#include "frame/frame.hpp"
#include "output/output.h"
#include "zorvstat.h"

namespace {

constexpr int lc_defaults[6] = {0, 1000, -2, 0, 0, 0};

// The one home of the layer's mutable state, one per thread.
struct WriteState {
    int option[6] = {0, 1000, -2, 0, 0, 0};
};
constinit thread_local WriteState lv_write;

FILE *output_unit() {
    FILE *unit = nullptr;
    zorvs_umach(2, &unit);
    return unit ? unit : stdout;
}

// One piece of a text, printed in slices of `width`.
void l_w3trl(const char *piece, int length, int width) {
    zorvs_e1psh("zorvs_w3trl");
    if (length == 0) {
        // An empty line is counted directly.
        std::fputs("\n", output_unit());
        if (lv_write.option[2] >= 0) ++lv_write.option[2];
    } else {
        for (int at = 0; at < length; at += width) {
            int n = length - at < width ? length - at : width;
            zorvs_write_line(n, piece + at);
        }
    }
    zorvs_e1pop("zorvs_w3trl");
}

}  // namespace

extern "C" void zorvs_w1opt(int option, int *value) {
    if (option >= 1 && option <= 6)
        *value = lv_write.option[option - 1];
    else if (option <= -1 && option >= -6)
        lv_write.option[-option - 1] = *value;
    else if (option == 0)
        std::memcpy(lv_write.option, lc_defaults, sizeof lc_defaults);
}

extern "C" void zorvs_write_options(int option, int *value) {
    zorvs_e1psh("zorvs_write_options");
    if (option < -6 || option > 6) {
        zorvs_e1sti(1, option);
        zorvs_ermes(5, 10019);
    } else if (option != 0 && !value) {
        zorvs_e1stl(1, "value");
        zorvs_e1sti(1, -1);
        zorvs_ermes(5, 150);
    } else if (option < 0) {
        static const char *const names[6] = {"ZORVS_SET_CENTERING", "ZORVS_SET_ROW_WRAP", "ZORVS_SET_PAGING",
                                             "ZORVS_SET_NAN_CHAR", "ZORVS_SET_TITLE_PAGE", "ZORVS_SET_FORMAT"};
        int v = *value;
        int k = -option;
        bool two_sided = k == 1 || k == 4 || k == 5 || k == 6;
        int lo = k == 3 ? -2 : 0;
        int hi = k == 6 ? 2 : 1;
        if (two_sided && (v < lo || v > hi)) {
            zorvs_e1sti(1, lo);
            zorvs_e1sti(2, hi);
            zorvs_e1sti(3, v);
            zorvs_e1stl(1, names[k - 1]);
            zorvs_ermes(5, 109);
        } else if (!two_sided && v < lo) {
            zorvs_e1sti(1, lo);
            zorvs_e1sti(2, v);
            zorvs_e1stl(1, names[k - 1]);
            zorvs_ermes(5, 110);
        }
    }
    if (zorvs_error_n1rty[0] == 0) zorvs_w1opt(option, value);
    zorvs_e1pop("zorvs_write_options");
}

extern "C" void zorvs_write_line(int n, const char *s) {
    FILE *unit = output_unit();
    int &count = lv_write.option[2];
    if (n == -1) {
        std::fputc('\f', unit);
        if (count >= 0) count = 0;
        return;
    }
    if (n < 1 || !s) return;
    if (count >= 0) {
        int length = 0;
        zorvs_page(2, &length);
        if (count >= length) {
            std::fputc('\f', unit);
            count = 0;
        }
        ++count;
    }
    std::fprintf(unit, "%*.*s\n", n, n, s);
}

extern "C" void zorvs_wrtrl(const char *text, int width) {
    zorvs_e1psh("zorvs_wrtrl");
    if (!text) {
        zorvs_e1stl(1, "text");
        zorvs_e1sti(1, -1);
        zorvs_ermes(5, 150);
    } else if (text[0] != '\0') {
        int length = static_cast<int>(std::strlen(text));
        if (width <= 0) {
            zorvs_e1sti(1, width);
            zorvs_ermes(5, 10011);
        } else if (length >= 256) {
            zorvs_e1sti(1, length);
            zorvs_ermes(5, 10012);
        } else {
            // Split at line feeds; a final line feed adds no line.
            int start = 0;
            while (start < length) {
                const char *nl = std::strchr(text + start, '\n');
                int end = nl ? static_cast<int>(nl - text) : length;
                l_w3trl(text + start, end - start, width);
                start = end + 1;
            }
        }
    }
    zorvs_e1pop("zorvs_wrtrl");
}

namespace {

// One-element matrices: a blank line, then the printer with all defaults,
// in a frame named after the entry point.
template <class T>
void l_write_scalar(const char *name, void (*print)(const char *, int, int, T *, ...), const char *title, T x) {
    zorvs::framed(name, [&] {
        zorvs_write_line(1, " ");
        print(title, 1, 1, &x, 0);
    });
}

}  // namespace

extern "C" void zorvs_wrrrs(const char *title, float x) { l_write_scalar(__func__, zorvs_f_write_matrix, title, x); }
extern "C" void zorvs_dwrrrs(const char *title, double x) { l_write_scalar(__func__, zorvs_d_write_matrix, title, x); }
extern "C" void zorvs_wrirs(const char *title, int x) { l_write_scalar(__func__, zorvs_i_write_matrix, title, x); }
