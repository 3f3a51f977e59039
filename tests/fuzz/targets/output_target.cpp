// output_target.cpp - the matrix printer in its three types and its keyword
// and plain forms, the line writers and the scalar printers, on any page
// size, output option, format, labels, print part, stride and size: the
// sanitizers look for reads and writes out of bounds and leaks.
#include "fuzz_input.hpp"

namespace zorvs_fuzz::output {

const Item write_menu[] = {{ZORVS_A_COL_DIM, "d"}, {ZORVS_WRITE_FORMAT, "f"}, {ZORVS_TRANSPOSE, ""},
    {ZORVS_PRINT_ALL, ""}, {ZORVS_PRINT_LOWER, ""}, {ZORVS_PRINT_LOWER_NO_DIAG, ""}, {ZORVS_PRINT_UPPER, ""},
    {ZORVS_PRINT_UPPER_NO_DIAG, ""}, {ZORVS_ROW_LABELS, "l"}, {ZORVS_ROW_NUMBER, ""}, {ZORVS_ROW_NUMBER_ZERO, ""},
    {ZORVS_NO_ROW_LABELS, ""}, {ZORVS_COL_LABELS, "l"}, {ZORVS_COL_NUMBER, ""}, {ZORVS_COL_NUMBER_ZERO, ""},
    {ZORVS_NO_COL_LABELS, ""}};

template <class T>
void one(Input &in, Store<T> &s) {
    static const int widths[] = {-1, 0, 1, 10, 20, 40, 78, 132, 255, 256, 1 << 30};
    static const int lengths[] = {-1, 0, 1, 10, 60, 1 << 30};
    int width = widths[in.pick(11)], length = lengths[in.pick(6)], value = in.pick(5) - 2;
    zorvs_page(-1, &width);
    zorvs_page(-2, &length);
    zorvs_write_options(-1 - in.pick(7), &value);
    in.fill(s.data, 1700);
    in.fill_ints(s.ints, 1700, -1000000, 1000000);
    const int rows = in.count(40), columns = in.count(40);
    char title[64] = {};
    for (int i = 0; i < 63; ++i)
        title[i] = static_cast<char>(in.one_in(4) ? '\n' : in.one_in(8) ? '%' : 'a' + in.pick(26));
    title[in.pick(63)] = 0;
    Builder<T> b(in, s);
    switch (in.pick(5)) {
        case 0: call(F(write_matrix), b.from(write_menu, 5), title, rows, columns, s.data); break;
        case 1: call(zorvs_i_write_matrix, b.from(write_menu, 5), title, rows, columns, s.ints); break;
        case 2: {
            static const char *labels[41];
            for (const char *&l : labels) l = label_texts[in.pick(7)];
            const int ld = in.one_in(4) ? in.pick(4) - 1 : columns + in.pick(4), part = in.pick(7) - 3;
            const char *format = in.one_in(4) ? nullptr : formats[in.pick(15)];
            char **rl = in.one_in(3) ? nullptr : const_cast<char **>(labels);
            char **cl = in.one_in(3) ? nullptr : const_cast<char **>(labels);
            const int row_mode = in.pick(6) - 1, col_mode = in.pick(6) - 1;
            if (in.one_in(2)) F(wrrrl)(title, rows, columns, s.data, ld, part, format, rl, cl, row_mode, col_mode);
            else zorvs_i_wrirl(title, rows, columns, s.ints, ld, part, format, rl, cl, row_mode, col_mode);
            break;
        }
        case 3:
            zorvs_write_line(in.pick(80) - 1, title);
            zorvs_wrtrl(title, in.pick(80) - 1);
            break;
        default:
            zorvs_wrrrs(title, float(in.real()));
            zorvs_dwrrrs(title, in.real());
            zorvs_wrirs(title, in.any_int());
    }
    zorvs_write_options(0, &value);  // all options and the page back to their defaults
    int page[] = {78, 60};
    zorvs_page(-1, &page[0]);
    zorvs_page(-2, &page[1]);
}

}  // namespace zorvs_fuzz::output

ZORVS_FUZZ_TARGET(output)
