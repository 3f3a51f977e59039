// umach.cpp - the three units through which the library reads and writes:
// 1 standard input, 2 standard output (matrix printing), 3 standard error
// (messages); and zorvs_output_file, the public keyword routine over them.

#include <cstdarg>
#include <cstdio>

#include "frame/frame.hpp"
#include "frame/services.h"
#include "zorvstat.h"

namespace {

struct Units {
    bool set = false;
    FILE *unit[3] = {nullptr, nullptr, nullptr};
};

constinit thread_local Units lv_unit;

void l_output_file(int first, va_list *list) {
    zorvs::KeywordReader reader(list, 0);
    for (int keyword = reader.take_fixed_keyword(first); keyword != 0; keyword = reader.keyword()) {
        switch (keyword) {
            case ZORVS_GET_ERROR_FILE: zorvs_umach(3, reader.pointer<FILE *>()); break;
            case ZORVS_GET_OUTPUT_FILE: zorvs_umach(2, reader.pointer<FILE *>()); break;
            case ZORVS_SET_ERROR_FILE: {
                FILE *f = reader.pointer<FILE>();
                zorvs_umach(-3, &f);
                break;
            }
            case ZORVS_SET_OUTPUT_FILE: {
                FILE *f = reader.pointer<FILE>();
                zorvs_umach(-2, &f);
                break;
            }
            default: reader.unknown(keyword, 103); return;
        }
    }
}

}  // namespace

extern "C" {

void zorvs_umach(int n, FILE **unit) {
    if (!lv_unit.set) {
        lv_unit.unit[0] = stdin;
        lv_unit.unit[1] = stdout;
        lv_unit.unit[2] = stderr;
        lv_unit.set = true;
    }
    if (n >= 1 && n <= 3) {
        if (unit) *unit = lv_unit.unit[n - 1];
    } else if (n >= -3 && n <= -1) {
        if (unit) lv_unit.unit[-n - 1] = *unit;
    } else {
        zorvs_e1sti(1, n);
        zorvs_ermes(5, 12010);
    }
}

void zorvs_output_file(int keyword, ...) {
    ZORVS_KEYWORD_ENTRY_VOID(keyword, "zorvs_output_file", l_output_file(keyword, &list));
}

}  // extern "C"
