// The matrix printer: golden texts of what a user sees, paging of wide and
// long matrices cell by cell, every failure, and the layout of `a` after a
// transposed print.
#include "support/tables.hpp"

#include "output/output.h"

namespace {

using namespace zorvs_test;

void page(int width, int length = 0) { zorvs_page(-1, &width), length ? zorvs_page(-2, &length) : void(); }

// The W format resolved for a value (the part of a row a triangle prints
// shows in triangles.txt and triangle_blocks.txt).
TEST(WriteMatrix, ResolvedFormats) {
    const float nan = std::nanf("");
    const struct { double x; int width, digits; bool twin_d; const char *format; } formats[] = {
        {2.25, 10, 4, false, "%10.3f"}, {0.0001, 10, 4, false, "%10.3e"}, {12345678.0, 10, 4, false, "%10.3e"},
        {0.5, 10, 4, false, "%10.4f"},  {0.1, 10, 4, false, "%10.4f"},    {9.9996, 10, 4, false, "%10.2f"},
        {0.0, 10, 4, false, "%10.4f"},  {nan, 10, 4, false, "%10.3e"},    {nan, 5, 4, false, "%5f"},
        {123.456, 5, 4, false, "%5.0f"},  // decimals give way first
        {1.0, 12, 20, false, "%12.6f"}, {1.0, 20, 20, true, "%20.14f"},   {0.0001, 40, 15, true, "%40.14e"},
    };
    for (const auto &f : formats)
        EXPECT_STREQ(f.twin_d ? zorvs_dfmtx(f.x, f.width, f.digits) : zorvs_fmtx(float(f.x), f.width, f.digits),
                     f.format) << f.x;
}

const char *const labels[] = {"first", "second"}, *const heads[] = {"Row", "Alpha", "Beta", "Gamma"};
const char *const tall[] = {"one",
                            "a b c d e f g h i j k l m n o p q r s t u v w x y z "
                            "a b c d e f g h i j k l m n o p q r s t u v w x y z",
                            "three"};
double d6[6] = {1.5, 2, 3.25, 4, 5.125, 6}, d9[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
double wide[8] = {1.5, 2.25, 3, 4, 123456789.125, 2.5, 98765432.25, 7};

template <class T, class... K>
void write(int rows, int cols, T *a, K... keywords) {
    if constexpr (std::is_same_v<T, float>) zorvs_f_write_matrix("t", rows, cols, a, keywords..., 0);
    else if constexpr (std::is_same_v<T, double>) zorvs_d_write_matrix("t", rows, cols, a, keywords..., 0);
    else zorvs_i_write_matrix("t", rows, cols, a, keywords..., 0);
}

// Each golden text: the page (width, length, paging option) and the prints.
const struct { const char *name; int width, length, paging; void (*print)(); } golden[] = {
    {"number_forms", 78, 60, -2, [] {
         float whole[6] = {1, 2, 3, 4, 5, 6}, quarters[4] = {1.5f, 2.25f, 3, 4}, columns[4] = {1.5f, 2.25f, 3.125f, 4},
               small = 0.0001f;
         int ints[4] = {1, -20, 300, 4};
         zorvs_f_write_matrix("Whole numbers", 2, 3, whole, 0);
         zorvs_f_write_matrix("Trailing zeros dropped", 2, 2, quarters, 0);
         zorvs_f_write_matrix("Per column", 2, 2, columns, ZORVS_WRITE_FORMAT, "%10.4w", 0);
         zorvs_f_write_matrix("Small", 1, 1, &small, 0);
         zorvs_d_write_matrix("Two conversions", 2, 3, d6, ZORVS_WRITE_FORMAT, "%8.3f%5d", 0);
         zorvs_i_write_matrix("Integers", 2, 2, ints, 0);
         zorvs_i_write_matrix("Integers, transposed", 2, 2, ints, ZORVS_TRANSPOSE, 0);
         zorvs_f_write_matrix("Whole numbers, transposed", 2, 3, whole, ZORVS_TRANSPOSE, 0);
         zorvs_d_write_matrix("Width 40", 1, 2, d6, ZORVS_WRITE_FORMAT, "%40.3f", 0);
         // the keyword-free forms print what the keyword forms above print
         zorvs_f_wrrrl("Trailing zeros dropped", 2, 2, quarters, 2, 0, "%10.4W", nullptr, nullptr, 1, 1);
         zorvs_i_wrirl("Integers without column numbers", 2, 2, ints, 2, 0, "%10.4W", nullptr, nullptr, 1, 0);
     }},
    {"nan_and_infinity", 78, 60, -2, [] {
         double a[6] = {1.5, NaN, 2.25, Inf, -Inf, 3};
         float big[2] = {3e9f, 1};
         zorvs_d_write_matrix("Dots", 2, 3, a, 0);
         set_write_option(4, 1);
         zorvs_d_write_matrix("Blanks", 2, 3, a, 0);
         zorvs_f_write_matrix("Out of int range", 1, 2, big, ZORVS_WRITE_FORMAT, "%12d", 0);
     }},
    {"triangles", 78, 60, -2, [] {
         zorvs_d_write_matrix("Lower", 3, 3, d9, ZORVS_PRINT_LOWER, 0);
         zorvs_d_wrrrl("Lower", 3, 3, d9, 3, -1, "%10.4W", nullptr, nullptr, 1, 1);  // the same, keyword-free
         zorvs_d_write_matrix("Lower without diagonal", 3, 3, d9, ZORVS_PRINT_LOWER_NO_DIAG, 0);
         zorvs_d_write_matrix("Upper", 3, 3, d9, ZORVS_PRINT_UPPER, 0);
         zorvs_d_write_matrix("Upper without diagonal", 3, 3, d9, ZORVS_PRINT_UPPER_NO_DIAG, 0);
         zorvs_d_write_matrix("Upper of the transpose", 3, 3, d9, ZORVS_PRINT_UPPER, ZORVS_TRANSPOSE, 0);
         zorvs_d_write_matrix("Lower of the transpose", 3, 3, d9, ZORVS_PRINT_LOWER, ZORVS_TRANSPOSE, 0);
     }},
    {"labels_and_empty", 78, 60, -2, [] {
         zorvs_d_write_matrix("Text labels", 2, 3, d9, ZORVS_ROW_LABELS, labels, ZORVS_COL_LABELS, heads, 0);
         zorvs_d_write_matrix("Numbers from 0", 2, 3, d9, ZORVS_ROW_NUMBER_ZERO, ZORVS_COL_NUMBER_ZERO, 0);
         zorvs_d_write_matrix("No labels", 2, 3, d9, ZORVS_NO_ROW_LABELS, ZORVS_NO_COL_LABELS, 0);
         zorvs_d_write_matrix("Stride 3, two columns", 2, 2, d9, ZORVS_A_COL_DIM, 3, 0);
         zorvs_d_write_matrix("No rows", 0, 3, d9, 0);
         zorvs_d_write_matrix("No columns", 2, 0, d9, 0);
         set_write_option(1, 1);
         zorvs_d_write_matrix("Centred", 2, 3, d9, 0);
     }},
    // A conversion without a width is planned at 10 characters; longer cells
    // push the rest of the row right, and past the page width the row goes
    // on in continuation lines under the cells.
    {"continuation", 40, 60, -2, [] {
         float f[8] = {1.5f, 2.25f, 3, 4, 12345678.0f, 2.5f, 9876543.0f, 7};
         int n[6] = {-2000000000, -2000000000, 1, 2, -1000000000, 5};
         double t[9] = {123456789.5, 0, 0, 1, 2, 0, 123456789.5, 123456789.5, 3};
         const char *rows[] = {"short", "total of the first part"};
         zorvs_d_write_matrix("Numbered rows", 2, 4, wide, ZORVS_WRITE_FORMAT, "%.6f", 0);
         zorvs_f_write_matrix("No row labels", 2, 4, f, ZORVS_WRITE_FORMAT, "%.6f", ZORVS_NO_ROW_LABELS, 0);
         page(36);
         zorvs_d_write_matrix("Long row label", 2, 4, wide, ZORVS_WRITE_FORMAT, "%.6f", ZORVS_ROW_LABELS, rows, 0);
         page(25);
         zorvs_i_write_matrix("Integers", 3, 2, n, ZORVS_WRITE_FORMAT, "% d", 0);
         page(40);
         zorvs_d_write_matrix("Lower triangle", 3, 3, t, ZORVS_WRITE_FORMAT, "%.6f", ZORVS_PRINT_LOWER, 0);
         set_write_option(1, 1);
         zorvs_d_write_matrix("Centred", 2, 4, wide, ZORVS_WRITE_FORMAT, "%.6f", 0);
         // each further continuation line of a row stands one place further
         // in: four columns planned at 12 fill the page, cells of 40 go one a line
         page(78);
         set_write_option(1, 0);
         double big[4] = {1e32, 1e32, 1e32, 1e32};
         zorvs_d_write_matrix("t", 1, 4, big, ZORVS_WRITE_FORMAT, "%.6f", ZORVS_ROW_NUMBER, ZORVS_NO_COL_LABELS, 0);
     }},
    // Paging counts continuation lines and the lines of a long row label; a
    // row taller than a page is broken where the page ends.
    {"continuation_paging", 40, 10, 0, [] {
         std::vector<double> d(24);
         for (int k = 0; k < 24; ++k) d[k] = k % 2 ? 1.5 + k : 123456789.125 * (k + 1);
         zorvs_d_write_matrix("Paged", 6, 4, d.data(), ZORVS_WRITE_FORMAT, "%.6f", 0);
         page(36);
         zorvs_d_write_matrix("Tall row", 3, 4, d.data(), ZORVS_WRITE_FORMAT, "%.6f", ZORVS_ROW_LABELS, tall, 0);
     }},
    // Paging off: the row wrap sets the rows each column group prints.
    {"row_wrap", 40, 60, -2, [] {
         float a[25];
         for (int k = 0; k < 25; ++k) a[k] = float(k + 1);
         set_write_option(2, 2);
         zorvs_f_write_matrix("Row wrap 2", 5, 5, a, 0);
         zorvs_f_write_matrix("Fits", 5, 2, a, 0);
     }},
    // Paging on: heads on each page, column group by column group, the
    // title on each page with option 5.
    {"paged", 40, 10, 0, [] {
         int n[24];
         double d[35];
         for (int k = 0; k < 35; ++k) d[k] = k + 0.5;
         for (int k = 0; k < 24; ++k) n[k] = k + 1;
         zorvs_i_write_matrix("Long", 12, 2, n, 0);
         zorvs_d_write_matrix("Wide", 7, 5, d, 0);
         set_write_option(5, 1);
         zorvs_d_write_matrix("Title on each page", 7, 5, d, 0);
     }},
    // Blocks of a triangle with nothing to print are skipped.
    {"triangle_blocks", 40, 12, 0, [] {
         double a[36];
         for (int k = 0; k < 36; ++k) a[k] = k + 1;
         zorvs_d_write_matrix("Lower", 6, 6, a, ZORVS_PRINT_LOWER, 0);
         zorvs_d_write_matrix("Upper without diagonal", 6, 6, a, ZORVS_PRINT_UPPER_NO_DIAG, 0);
     }},
};

TEST(WriteMatrix, GoldenTexts) {
    for (const auto &g : golden) {
        SCOPED_TRACE(g.name);
        UnitCapture out(false);
        int unused = 0;
        zorvs_write_options(0, &unused);
        page(g.width, g.length);
        set_write_option(3, g.paging);
        g.print();
        const std::string text = out.take();
        expect_golden(g.name, text);
        // with paging on: no page longer than its length, option 3 the count of the last page's lines
        const auto pages = split(text, '\f');
        for (const auto &p : pages) EXPECT_TRUE(g.paging < 0 || split(p).size() <= std::size_t(g.length));
        EXPECT_TRUE(g.paging < 0 || write_option(3) == int(split(pages.back()).size()));
    }
}

double a4[4] = {1, 2, 3, 4};
float f6[6] = {1, 2, 3, 4, 5, 6};
const char *const short_rows[] = {"a", nullptr}, *const two_of_three[] = {"a", "b", nullptr};

// Every failure, with nothing printed but the blank lines before a matrix,
// and the layout of a transposed `a` back as it was.
TEST(WriteMatrix, Failures) {
    static int n2[2] = {1, 2};
    std::vector<CallCase> cases = {
        {"%f", [] { write(1, 2, a4, ZORVS_WRITE_FORMAT, "%f"); }, 5, 10001, "l1=%f"},
        {"x%10.4W", [] { write(1, 2, a4, ZORVS_WRITE_FORMAT, "x%10.4W"); }, 5, 10002, "l1=x%10.4W"},
        {"%10.4Wx", [] { write(1, 2, a4, ZORVS_WRITE_FORMAT, "%10.4Wx"); }, 5, 10002, "l1=%10.4Wx"},
        {"abcd", [] { write(1, 2, a4, ZORVS_WRITE_FORMAT, "abcd"); }, 5, 10003, "l1=abcd"},
        {"%*.4f", [] { write(1, 2, a4, ZORVS_WRITE_FORMAT, "%*.4f"); }, 5, 10004, "l1=%*"},
        {"%41.3f", [] { write(1, 2, a4, ZORVS_WRITE_FORMAT, "%41.3f"); }, 5, 10005, "l1=%41.3f"},
        {"%8.9f", [] { write(1, 2, a4, ZORVS_WRITE_FORMAT, "%8.9f"); }, 5, 10006, "l1=%8.9f"},
        {"%10.4q", [] { write(1, 2, a4, ZORVS_WRITE_FORMAT, "%10.4q"); }, 5, 10007, "l1=%10.4q"},
        {"integer with f", [] { write(1, 2, n2, ZORVS_WRITE_FORMAT, "%10.4f"); }, 5, 10007},
        {"two triangles", [] { write(2, 2, a4, ZORVS_PRINT_LOWER, ZORVS_PRINT_UPPER); }, 5, 10013},
        {"two row forms", [] { write(2, 2, a4, ZORVS_ROW_NUMBER, ZORVS_NO_ROW_LABELS); }, 5, 10014},
        {"two column forms", [] { write(2, 2, a4, ZORVS_COL_NUMBER, ZORVS_COL_NUMBER_ZERO); }, 5, 10015},
        {"unknown keyword", [] { write(2, 2, a4, 99999); }, 5, 103, "i1=99999 i2=5"},
        {"rows -1", [] { write(-1, 2, a4); }, 5, 603},
        {"columns -1", [] { write(2, -1, a4); }, 5, 603},
        {"stride below rows", [] { write(2, 3, a4, ZORVS_A_COL_DIM, 2); }, 5, 601},
        {"stride 0", [] { write(2, 2, a4, ZORVS_A_COL_DIM, 0); }, 5, 603},
        {"null title", [] { zorvs_d_write_matrix(nullptr, 2, 2, a4, 0); }, 5, 150, "l1=title"},
        {"null matrix", [] { write<double>(2, 2, nullptr); }, 5, 150},
        {"null row label", [] { write(2, 2, a4, ZORVS_ROW_LABELS, short_rows); }, 5, 151, "i1=1"},
        {"null column labels", [] { write(2, 2, a4, ZORVS_COL_LABELS, nullptr); }, 5, 150, "l1=clabel"},
        {"3 row labels for the transpose of 2 x 3", [] { write(2, 3, d6, ZORVS_ROW_LABELS, two_of_three, ZORVS_TRANSPOSE); },
         5, 151, "i1=2"},
        {"page too narrow", [] { page(15), write(2, 2, a4); }, 5, 10009, "i1=15 i2=17"},
        {"field too wide for the page", [] { page(15), write(2, 2, a4, ZORVS_WRITE_FORMAT, "%14.4W"); }, 5, 10008, "i3=14"},
        {"page too wide", [] { page(256), write(2, 2, a4); }, 5, 10010, "i1=256"},
        {"transposed, page too narrow", [] { page(12), write(2, 3, f6, ZORVS_TRANSPOSE); }, 5, 10009},
        {"transposed, bad format", [] { write(2, 3, f6, ZORVS_TRANSPOSE, ZORVS_WRITE_FORMAT, "%10.4q"); }, 5, 10007},
        {"transposed, allocation failure",
         [] { page(78), zorvs::allocation_failure_countdown = 1, write(2, 3, f6, ZORVS_TRANSPOSE); }, 5, 201},
    };
    UnitCapture out(false);
    expect_calls(cases);
    zorvs::allocation_failure_countdown = 0;
    for (char c : out.take()) EXPECT_TRUE(c == ' ' || c == '\n');
    for (int k = 0; k < 6; ++k) EXPECT_EQ(f6[k], k + 1);
    page(78);
    double d[8] = {1, 2, 3, 0, 4, 5, 6, 0};
    write(2, 3, d, ZORVS_TRANSPOSE, ZORVS_A_COL_DIM, 4);
    EXPECT_TRUE(d[2] == 3 && d[4] == 4 && d[7] == 0);
}

}  // namespace
