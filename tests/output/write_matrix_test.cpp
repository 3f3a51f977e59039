// Tests of the matrix printer: golden texts for what a user sees, paging of
// wide and long matrices, every failure, and the layout of `a` after a
// transposed print.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "frame/frame.hpp"
#include "frame/services.h"
#include "output/output.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

using zorvs_test::expect_golden;

void set_option(int k, int v) { zorvs_write_options(-k, &v); }
int option(int k) {
    int v = 0;
    zorvs_write_options(k, &v);
    return v;
}

// ------------------------------------------------------------ W resolution
TEST(WriteMatrix, ResolvedFormats) {
    EXPECT_STREQ(zorvs_fmtx(2.25f, 10, 4), "%10.3f");
    EXPECT_STREQ(zorvs_fmtx(0.0001f, 10, 4), "%10.3e");
    EXPECT_STREQ(zorvs_fmtx(12345678.0f, 10, 4), "%10.3e");
    EXPECT_STREQ(zorvs_fmtx(0.5f, 10, 4), "%10.4f");
    EXPECT_STREQ(zorvs_fmtx(0.1f, 10, 4), "%10.4f");
    EXPECT_STREQ(zorvs_fmtx(9.9996f, 10, 4), "%10.2f");  // rounds up to 10.00
    EXPECT_STREQ(zorvs_fmtx(0.0f, 10, 4), "%10.4f");
    EXPECT_STREQ(zorvs_fmtx(std::nanf(""), 10, 4), "%10.3e");
    EXPECT_STREQ(zorvs_fmtx(std::nanf(""), 5, 4), "%5f");
    EXPECT_STREQ(zorvs_fmtx(123.456f, 5, 4), "%5.0f");  // decimals give way first
    EXPECT_STREQ(zorvs_fmtx(1.0f, 12, 20), "%12.6f");   // float carries 7 digits
    EXPECT_STREQ(zorvs_dfmtx(1.0, 20, 20), "%20.14f");  // double carries 15
    EXPECT_STREQ(zorvs_dfmtx(0.0001, 40, 15), "%40.14e");
}

TEST(WriteMatrix, PrintPartRanges) {
    int s, c;
    zorvs_w12rl(0, 1, 5, 3, &s, &c);
    EXPECT_EQ(s * 10 + c, 15);
    zorvs_w12rl(1, 1, 5, 3, &s, &c);
    EXPECT_EQ(s * 10 + c, 13);
    zorvs_w12rl(2, 1, 5, 3, &s, &c);
    EXPECT_EQ(s * 10 + c, 12);
    zorvs_w12rl(-1, 1, 5, 3, &s, &c);
    EXPECT_EQ(s * 10 + c, 33);
    zorvs_w12rl(-2, 1, 5, 3, &s, &c);
    EXPECT_EQ(s * 10 + c, 42);
    zorvs_w12rl(2, 1, 5, 1, &s, &c);
    EXPECT_EQ(c, 0);
}

// ------------------------------------------------------------ golden texts
TEST(WriteMatrix, GoldenNumberForms) {
    zorvs_test::UnitCapture out(false);
    float whole[6] = {1, 2, 3, 4, 5, 6};
    zorvs_f_write_matrix("Whole numbers", 2, 3, whole, 0);
    float quarters[4] = {1.5f, 2.25f, 3, 4};
    zorvs_f_write_matrix("Trailing zeros dropped", 2, 2, quarters, 0);
    float columns[4] = {1.5f, 2.25f, 3.125f, 4};
    zorvs_f_write_matrix("Per column", 2, 2, columns, ZORVS_WRITE_FORMAT, "%10.4w", 0);
    float small = 0.0001f;
    zorvs_f_write_matrix("Small", 1, 1, &small, 0);
    double two[6] = {1.5, 2, 3.25, 4, 5.125, 6};
    zorvs_d_write_matrix("Two conversions", 2, 3, two, ZORVS_WRITE_FORMAT, "%8.3f%5d", 0);
    int ints[4] = {1, -20, 300, 4};
    zorvs_i_write_matrix("Integers", 2, 2, ints, 0);
    expect_golden("number_forms", out.take());
}

TEST(WriteMatrix, GoldenNanAndInfinity) {
    zorvs_test::UnitCapture out(false);
    double a[6] = {1.5, std::nan(""), 2.25, std::numeric_limits<double>::infinity(),
                   -std::numeric_limits<double>::infinity(), 3};
    zorvs_d_write_matrix("Dots", 2, 3, a, 0);
    set_option(4, 1);
    zorvs_d_write_matrix("Blanks", 2, 3, a, 0);
    float big[2] = {3e9f, 1};
    zorvs_f_write_matrix("Out of int range", 1, 2, big, ZORVS_WRITE_FORMAT, "%12d", 0);
    expect_golden("nan_and_infinity", out.take());
}

TEST(WriteMatrix, GoldenTriangles) {
    zorvs_test::UnitCapture out(false);
    double a[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    zorvs_d_write_matrix("Lower", 3, 3, a, ZORVS_PRINT_LOWER, 0);
    zorvs_d_write_matrix("Lower without diagonal", 3, 3, a, ZORVS_PRINT_LOWER_NO_DIAG, 0);
    zorvs_d_write_matrix("Upper", 3, 3, a, ZORVS_PRINT_UPPER, 0);
    zorvs_d_write_matrix("Upper without diagonal", 3, 3, a, ZORVS_PRINT_UPPER_NO_DIAG, 0);
    zorvs_d_write_matrix("Upper of the transpose", 3, 3, a, ZORVS_PRINT_UPPER, ZORVS_TRANSPOSE, 0);
    zorvs_d_write_matrix("Lower of the transpose", 3, 3, a, ZORVS_PRINT_LOWER, ZORVS_TRANSPOSE, 0);
    expect_golden("triangles", out.take());
}

TEST(WriteMatrix, GoldenLabelsAndEmpty) {
    zorvs_test::UnitCapture out(false);
    double a[6] = {1, 2, 3, 4, 5, 6};
    const char *rows[] = {"first", "second"};
    const char *cols[] = {"Row", "Alpha", "Beta", "Gamma"};
    zorvs_d_write_matrix("Text labels", 2, 3, a, ZORVS_ROW_LABELS, rows, ZORVS_COL_LABELS, cols, 0);
    zorvs_d_write_matrix("Numbers from 0", 2, 3, a, ZORVS_ROW_NUMBER_ZERO, ZORVS_COL_NUMBER_ZERO, 0);
    zorvs_d_write_matrix("No labels", 2, 3, a, ZORVS_NO_ROW_LABELS, ZORVS_NO_COL_LABELS, 0);
    zorvs_d_write_matrix("Stride 3, two columns", 2, 2, a, ZORVS_A_COL_DIM, 3, 0);
    zorvs_d_write_matrix("No rows", 0, 3, a, 0);
    zorvs_d_write_matrix("No columns", 2, 0, a, 0);
    set_option(1, 1);
    zorvs_d_write_matrix("Centred", 2, 3, a, 0);
    expect_golden("labels_and_empty", out.take());
}

TEST(WriteMatrix, GoldenWidthLimit) {
    zorvs_test::UnitCapture out(false);
    double x[2] = {1.25, 2.5};
    zorvs_d_write_matrix("Width 40", 1, 2, x, ZORVS_WRITE_FORMAT, "%40.3f", 0);
    expect_golden("width_40", out.take());
    zorvs_test::Quiet q;
    zorvs_d_write_matrix("Width 41", 1, 2, x, ZORVS_WRITE_FORMAT, "%41.3f", 0);
    EXPECT_EQ(zorvs_error_code(), 10005);
    EXPECT_STREQ(zorvs_error_param.l[1], "%41.3f");
    EXPECT_EQ(out.take(), "");
}

TEST(WriteMatrix, KeywordFreeFormsMatchKeywordForms) {
    zorvs_test::UnitCapture out(false);
    float a[4] = {1.5f, 2, 3, 4};
    zorvs_f_write_matrix("t", 2, 2, a, ZORVS_PRINT_LOWER, 0);
    std::string keyword = out.take();
    zorvs_f_wrrrl("t", 2, 2, a, 2, -1, "%10.4W", nullptr, nullptr, 1, 1);
    EXPECT_EQ(out.take(), keyword);
    double d[4] = {1.5, 2, 3, 4};
    zorvs_d_write_matrix("t", 2, 2, d, ZORVS_PRINT_LOWER, 0);
    keyword = out.take();
    zorvs_d_wrrrl("t", 2, 2, d, 2, -1, "%10.4W", nullptr, nullptr, 1, 1);
    EXPECT_EQ(out.take(), keyword);
    int n[4] = {1, 2, 3, 4};
    zorvs_i_write_matrix("t", 2, 2, n, ZORVS_NO_COL_LABELS, 0);
    keyword = out.take();
    zorvs_i_wrirl("t", 2, 2, n, 2, 0, "%10.4W", nullptr, nullptr, 1, 0);
    EXPECT_EQ(out.take(), keyword);
}

// ------------------------------------------------------------ paging
std::vector<std::string> split_lines(const std::string &text) {
    std::vector<std::string> lines;
    std::string cur;
    for (char c : text) {
        if (c == '\n') {
            lines.push_back(cur);
            cur.clear();
        } else {
            cur += c;
        }
    }
    return lines;
}

TEST(WriteMatrix, WideMatrixWrapsWholeColumns) {
    zorvs_test::UnitCapture out(false);
    std::vector<double> a(3 * 40);
    for (int k = 0; k < 3 * 40; ++k) a[k] = 1000 + k + 0.5;
    zorvs_d_write_matrix("Wide", 3, 40, a.data(), ZORVS_WRITE_FORMAT, "%10.1f", 0);
    std::string text = out.take();
    int width = 0;
    zorvs_page(1, &width);
    int head_lines = 0;
    for (const auto &line : split_lines(text)) {
        EXPECT_LE(static_cast<int>(line.size()), width);
        if (line.rfind("      ", 0) == 0 && line.find('.') == std::string::npos) ++head_lines;
    }
    // Every value appears whole, once.
    for (int k = 0; k < 3 * 40; ++k) {
        char cell[32];
        std::snprintf(cell, sizeof cell, "%.1f", a[k]);
        EXPECT_NE(text.find(cell), std::string::npos) << cell;
    }
    // Each column group repeats the head.
    int groups = 0;
    for (const auto &line : split_lines(text))
        if (line.find("  1  ") != std::string::npos || line.rfind("            1", 0) == 0) ++groups;
    EXPECT_GE(head_lines, 3);
}

TEST(WriteMatrix, LongMatrixPagesWithHeads) {
    zorvs_test::UnitCapture out(false);
    int length = 30;
    zorvs_page(-2, &length);
    set_option(3, 0);
    std::vector<int> a(200 * 2);
    for (int k = 0; k < 400; ++k) a[k] = k;
    zorvs_i_write_matrix("Long", 200, 2, a.data(), 0);
    std::string text = out.take();
    // Pages: split at form feeds; none longer than the page; each has the head.
    std::vector<std::string> pages;
    std::string cur;
    for (char c : text) {
        if (c == '\f') {
            pages.push_back(cur);
            cur.clear();
        } else {
            cur += c;
        }
    }
    pages.push_back(cur);
    ASSERT_GE(pages.size(), 7u);
    int rows_seen = 0;
    for (const auto &page : pages) {
        auto lines = split_lines(page);
        EXPECT_LE(static_cast<int>(lines.size()), length);
        bool head = false;
        for (const auto &line : lines) {
            if (line.find("  1    2") != std::string::npos) head = true;
            int r, x, y;
            if (std::sscanf(line.c_str(), "%d %d %d", &r, &x, &y) == 3) {
                EXPECT_EQ(x, 2 * (r - 1));
                EXPECT_EQ(r, rows_seen + 1);
                rows_seen = r;
            }
        }
        EXPECT_TRUE(head);
    }
    EXPECT_EQ(rows_seen, 200);
    // The count of the last page is in option 3.
    EXPECT_EQ(option(3), static_cast<int>(split_lines(pages.back()).size()));
}

TEST(WriteMatrix, WideAndLongWithTitleOnEachPage) {
    zorvs_test::UnitCapture out(false);
    int length = 25;
    zorvs_page(-2, &length);
    set_option(3, 0);
    set_option(5, 1);
    std::vector<float> a(200 * 40);
    for (int k = 0; k < 200 * 40; ++k) a[k] = static_cast<float>(k % 97) + 0.25f;
    zorvs_f_write_matrix("Both", 200, 40, a.data(), 0);
    std::string text = out.take();
    std::vector<std::string> pages;
    std::string cur;
    for (char c : text) {
        if (c == '\f') {
            pages.push_back(cur);
            cur.clear();
        } else {
            cur += c;
        }
    }
    pages.push_back(cur);
    int width = 0;
    zorvs_page(1, &width);
    int cells = 0;
    for (const auto &page : pages) {
        auto lines = split_lines(page);
        EXPECT_LE(static_cast<int>(lines.size()), length);
        bool title = false;
        for (const auto &line : lines) {
            EXPECT_LE(static_cast<int>(line.size()), width);
            if (line == "Both") title = true;
            for (std::size_t p = line.find(".25"); p != std::string::npos; p = line.find(".25", p + 1)) ++cells;
        }
        if (!page.empty()) {
            EXPECT_TRUE(title);
        }
    }
    EXPECT_EQ(cells, 200 * 40);
    EXPECT_EQ(option(3), static_cast<int>(split_lines(pages.back()).size()));
}

// ------------------------------------------------------------ failures
TEST(WriteMatrix, FormatErrors) {
    zorvs_test::Quiet q;
    zorvs_test::UnitCapture out(false);
    double a[2] = {1, 2};
    struct Case {
        const char *format;
        int code;
        const char *l1;
    } cases[] = {
        {"%f", 10001, "%f"},         {"x%10.4W", 10002, "x%10.4W"}, {"%10.4Wx", 10002, "%10.4Wx"},
        {"abcd", 10003, "abcd"},     {"%*.4f", 10004, "%*"},        {"%41.3f", 10005, "%41.3f"},
        {"%8.9f", 10006, "%8.9f"},   {"%10.4q", 10007, "%10.4q"},
    };
    for (const auto &c : cases) {
        zorvs_d_write_matrix("t", 1, 2, a, ZORVS_WRITE_FORMAT, c.format, 0);
        EXPECT_EQ(zorvs_error_type(), 5) << c.format;
        EXPECT_EQ(zorvs_error_code(), c.code) << c.format;
        EXPECT_STREQ(zorvs_error_param.l[1], c.l1) << c.format;
    }
    int n[2] = {1, 2};
    zorvs_i_write_matrix("t", 1, 2, n, ZORVS_WRITE_FORMAT, "%10.4f", 0);
    EXPECT_EQ(zorvs_error_code(), 10007);
    // Nothing but the blank lines before the matrices was printed.
    for (char c : out.take()) EXPECT_TRUE(c == ' ' || c == '\n');
}

TEST(WriteMatrix, KeywordAndArgumentErrors) {
    zorvs_test::Quiet q;
    zorvs_test::UnitCapture out(false);
    double a[4] = {1, 2, 3, 4};
    zorvs_d_write_matrix("t", 2, 2, a, ZORVS_PRINT_LOWER, ZORVS_PRINT_UPPER, 0);
    EXPECT_EQ(zorvs_error_code(), 10013);
    zorvs_d_write_matrix("t", 2, 2, a, ZORVS_ROW_NUMBER, ZORVS_NO_ROW_LABELS, 0);
    EXPECT_EQ(zorvs_error_code(), 10014);
    zorvs_d_write_matrix("t", 2, 2, a, ZORVS_COL_NUMBER, ZORVS_COL_NUMBER_ZERO, 0);
    EXPECT_EQ(zorvs_error_code(), 10015);
    zorvs_d_write_matrix("t", 2, 2, a, 99999, 0);
    EXPECT_EQ(zorvs_error_code(), 103);
    EXPECT_EQ(zorvs_error_param.i[1], 99999);
    EXPECT_EQ(zorvs_error_param.i[2], 5);
    zorvs_d_write_matrix("t", -1, 2, a, 0);
    EXPECT_EQ(zorvs_error_type(), 5);
    zorvs_d_write_matrix("t", 2, -1, a, 0);
    EXPECT_EQ(zorvs_error_type(), 5);
    zorvs_d_write_matrix("t", 2, 3, a, ZORVS_A_COL_DIM, 2, 0);
    EXPECT_EQ(zorvs_error_code(), 601);
    zorvs_d_write_matrix("t", 2, 2, a, ZORVS_A_COL_DIM, 0, 0);
    EXPECT_EQ(zorvs_error_type(), 5);
    zorvs_d_write_matrix(nullptr, 2, 2, a, 0);
    EXPECT_EQ(zorvs_error_code(), 150);
    EXPECT_STREQ(zorvs_error_param.l[1], "title");
    zorvs_d_write_matrix("t", 2, 2, nullptr, 0);
    EXPECT_EQ(zorvs_error_code(), 150);
    const char *rows[] = {"a", nullptr};
    zorvs_d_write_matrix("t", 2, 2, a, ZORVS_ROW_LABELS, rows, 0);
    EXPECT_EQ(zorvs_error_code(), 151);
    EXPECT_EQ(zorvs_error_param.i[1], 1);
    zorvs_d_write_matrix("t", 2, 2, a, ZORVS_COL_LABELS, nullptr, 0);
    EXPECT_EQ(zorvs_error_code(), 150);
    EXPECT_STREQ(zorvs_error_param.l[1], "clabel");
    // A row label list of 3 is needed for the transpose of a 2 x 3 matrix.
    double b[6] = {1, 2, 3, 4, 5, 6};
    const char *two[] = {"a", "b", nullptr};
    zorvs_d_write_matrix("t", 2, 3, b, ZORVS_ROW_LABELS, two, ZORVS_TRANSPOSE, 0);
    EXPECT_EQ(zorvs_error_code(), 151);
    EXPECT_EQ(zorvs_error_param.i[1], 2);
}

TEST(WriteMatrix, PageErrors) {
    zorvs_test::Quiet q;
    zorvs_test::UnitCapture out(false);
    double a[4] = {1, 2, 3, 4};
    int width = 15;
    zorvs_page(-1, &width);
    zorvs_d_write_matrix("t", 2, 2, a, 0);
    EXPECT_EQ(zorvs_error_code(), 10009);
    EXPECT_EQ(zorvs_error_param.i[1], 15);
    EXPECT_EQ(zorvs_error_param.i[2], 1 + 10 + 6);
    zorvs_d_write_matrix("t", 2, 2, a, ZORVS_WRITE_FORMAT, "%14.4W", 0);
    EXPECT_EQ(zorvs_error_code(), 10008);
    EXPECT_EQ(zorvs_error_param.i[3], 14);
    width = 256;
    zorvs_page(-1, &width);
    zorvs_d_write_matrix("t", 2, 2, a, 0);
    EXPECT_EQ(zorvs_error_code(), 10010);
    EXPECT_EQ(zorvs_error_param.i[1], 256);
}

TEST(WriteMatrix, FailureStopsByDefault) {
    double a[2] = {1, 2};
    EXPECT_EXIT(zorvs_d_write_matrix("t", 1, 2, a, ZORVS_WRITE_FORMAT, "%41.3f", 0),
                ::testing::ExitedWithCode(5), "10005|zorvs_d_write_matrix");
}

// ------------------------------------------------------------ transpose
TEST(WriteMatrix, TransposeRestoresLayoutAlsoAfterError) {
    zorvs_test::UnitCapture out(false);
    float f[6] = {1, 2, 3, 4, 5, 6};
    double d[8] = {1, 2, 3, 0, 4, 5, 6, 0};
    int n[6] = {1, 2, 3, 4, 5, 6};
    zorvs_f_write_matrix("t", 2, 3, f, ZORVS_TRANSPOSE, 0);
    std::string transposed = out.take();
    EXPECT_NE(transposed.find("1           1           4"), std::string::npos) << transposed;
    zorvs_d_write_matrix("t", 2, 3, d, ZORVS_TRANSPOSE, ZORVS_A_COL_DIM, 4, 0);
    zorvs_i_write_matrix("t", 2, 3, n, ZORVS_TRANSPOSE, 0);
    for (int k = 0; k < 6; ++k) {
        EXPECT_EQ(f[k], k + 1);
        EXPECT_EQ(n[k], k + 1);
    }
    const double d0[8] = {1, 2, 3, 0, 4, 5, 6, 0};
    for (int k = 0; k < 8; ++k) EXPECT_EQ(d[k], d0[k]);
    zorvs_test::Quiet q;
    int width = 12;
    zorvs_page(-1, &width);
    zorvs_f_write_matrix("t", 2, 3, f, ZORVS_TRANSPOSE, 0);
    EXPECT_EQ(zorvs_error_code(), 10009);
    zorvs_f_write_matrix("t", 2, 3, f, ZORVS_TRANSPOSE, ZORVS_WRITE_FORMAT, "%10.4q", 0);
    EXPECT_EQ(zorvs_error_code(), 10007);
    for (int k = 0; k < 6; ++k) EXPECT_EQ(f[k], k + 1);
}

TEST(WriteMatrix, AllocationFailureLeavesNothingBehind) {
    zorvs_test::Quiet q;
    zorvs_test::UnitCapture out(false);
    float f[6] = {1, 2, 3, 4, 5, 6};
    zorvs::allocation_failure_countdown = 1;
    zorvs_f_write_matrix("t", 2, 3, f, ZORVS_TRANSPOSE, 0);
    zorvs::allocation_failure_countdown = 0;
    EXPECT_EQ(zorvs_error_type(), 5);
    for (int k = 0; k < 6; ++k) EXPECT_EQ(f[k], k + 1);
}

// ------------------------------------------------------------ continuation lines
// The tests below set the page and the options they need, so they do not lean
// on what an earlier test in the same process left behind.
void page_setup(int width, int length, int paging) {
    zorvs_write_options(0, &paging);
    zorvs_page(-1, &width);
    zorvs_page(-2, &length);
    set_option(3, paging);
}

std::vector<std::string> split_pages(const std::string &text) {
    std::vector<std::string> pages;
    std::string cur;
    for (char c : text) {
        if (c == '\f') {
            pages.push_back(cur);
            cur.clear();
        } else {
            cur += c;
        }
    }
    pages.push_back(cur);
    return pages;
}

// A conversion without a width ("%.6f", "% d") is planned at 10 characters;
// cells that come out longer push the rest of their row right, and past the
// page width the row goes on in continuation lines under the cells.
TEST(WriteMatrix, GoldenContinuationLines) {
    zorvs_test::UnitCapture out(false);
    page_setup(40, 60, -2);
    double d[8] = {1.5, 2.25, 3, 4, 123456789.125, 2.5, 98765432.25, 7};
    zorvs_d_write_matrix("Numbered rows", 2, 4, d, ZORVS_WRITE_FORMAT, "%.6f", 0);
    float f[8] = {1.5f, 2.25f, 3, 4, 12345678.0f, 2.5f, 9876543.0f, 7};
    zorvs_f_write_matrix("No row labels", 2, 4, f, ZORVS_WRITE_FORMAT, "%.6f", ZORVS_NO_ROW_LABELS, 0);
    const char *rows[] = {"short", "total of the first part"};
    int width = 36;
    zorvs_page(-1, &width);
    zorvs_d_write_matrix("Long row label", 2, 4, d, ZORVS_WRITE_FORMAT, "%.6f", ZORVS_ROW_LABELS, rows, 0);
    int n[6] = {-2000000000, -2000000000, 1, 2, -1000000000, 5};
    width = 25;
    zorvs_page(-1, &width);
    zorvs_i_write_matrix("Integers", 3, 2, n, ZORVS_WRITE_FORMAT, "% d", 0);
    width = 40;
    zorvs_page(-1, &width);
    double t[9] = {123456789.5, 0, 0, 1, 2, 0, 123456789.5, 123456789.5, 3};
    zorvs_d_write_matrix("Lower triangle", 3, 3, t, ZORVS_WRITE_FORMAT, "%.6f", ZORVS_PRINT_LOWER, 0);
    set_option(1, 1);
    zorvs_d_write_matrix("Centred", 2, 4, d, ZORVS_WRITE_FORMAT, "%.6f", 0);
    expect_golden("continuation", out.take());
}

// The indent grows by one position for each continuation line of a row.
TEST(WriteMatrix, ContinuationIndentGrows) {
    zorvs_test::UnitCapture out(false);
    page_setup(60, 60, -2);
    // Five columns planned at 12 each fill 61 of the 60 columns with the row
    // label, so four stand in a group; cells of 40 characters go one a line.
    double a[4] = {1e32, 1e32, 1e32, 1e32};
    zorvs_d_write_matrix("t", 1, 4, a, ZORVS_WRITE_FORMAT, "%.6f", ZORVS_ROW_NUMBER, ZORVS_NO_COL_LABELS, 0);
    auto lines = split_lines(out.take());
    ASSERT_EQ(lines.size(), 6u);  // blank line, title, 4 lines of the row
    std::string cell = "100000000000000005366162204393472.000000";
    ASSERT_EQ(cell.size(), 40u);
    EXPECT_EQ(lines[2], "1  " + cell);
    for (int k = 1; k < 4; ++k) EXPECT_EQ(lines[2 + k], std::string(1 + k + 2, ' ') + cell) << k;
}

// Paging counts continuation lines and the further lines of a long row label:
// blocks break between rows, and a row taller than a page is broken where the
// page ends.
TEST(WriteMatrix, GoldenContinuationPaging) {
    zorvs_test::UnitCapture out(false);
    page_setup(40, 10, 0);
    std::vector<double> d(6 * 4);
    for (int k = 0; k < 24; ++k) d[k] = k % 2 ? 1.5 + k : 123456789.125 * (k + 1);
    zorvs_d_write_matrix("Paged", 6, 4, d.data(), ZORVS_WRITE_FORMAT, "%.6f", 0);
    // Eleven lines of row label and a continuation line: more than a page holds under the head.
    const char *rows[] = {"one",
                          "a b c d e f g h i j k l m n o p q r s t u v w x y z "
                          "a b c d e f g h i j k l m n o p q r s t u v w x y z",
                          "three"};
    int width = 36;
    zorvs_page(-1, &width);
    zorvs_d_write_matrix("Tall row", 3, 4, d.data(), ZORVS_WRITE_FORMAT, "%.6f", ZORVS_ROW_LABELS, rows, 0);
    std::string text = out.take();
    expect_golden("continuation_paging", text);
    auto pages = split_pages(text);
    for (const auto &page : pages) EXPECT_LE(split_lines(page).size(), 10u);
    EXPECT_EQ(option(3), static_cast<int>(split_lines(pages.back()).size()));
}

// ------------------------------------------------------------ controller
// Paging off and columns wrapped: the row wrap sets the rows in hand, and each
// column group prints them before the next rows.
TEST(WriteMatrix, GoldenRowWrap) {
    zorvs_test::UnitCapture out(false);
    page_setup(40, 60, -2);
    set_option(2, 2);
    float a[25];
    for (int k = 0; k < 25; ++k) a[k] = static_cast<float>(k + 1);
    zorvs_f_write_matrix("Row wrap 2", 5, 5, a, 0);
    // The whole width fits: the row wrap still ends a block with paging off.
    zorvs_f_write_matrix("Fits", 5, 2, a, 0);
    expect_golden("row_wrap", out.take());
}

// Paging on: a long matrix in pages with its head on each; a wide one in
// pages of the rows that fit under the head, column group by column group;
// the title on each page with option 5.
TEST(WriteMatrix, GoldenPaged) {
    zorvs_test::UnitCapture out(false);
    page_setup(40, 10, 0);
    int n[24];
    for (int k = 0; k < 24; ++k) n[k] = k + 1;
    zorvs_i_write_matrix("Long", 12, 2, n, 0);
    double d[35];
    for (int k = 0; k < 35; ++k) d[k] = k + 0.5;
    zorvs_d_write_matrix("Wide", 7, 5, d, 0);
    set_option(5, 1);
    zorvs_d_write_matrix("Title on each page", 7, 5, d, 0);
    std::string text = out.take();
    expect_golden("paged", text);
    auto pages = split_pages(text);
    for (const auto &page : pages) EXPECT_LE(split_lines(page).size(), 10u);
    EXPECT_EQ(option(3), static_cast<int>(split_lines(pages.back()).size()));
}

// A triangle that spans several column groups and pages: blocks with nothing
// to print are skipped, and each block is cut to its printable rows and columns.
TEST(WriteMatrix, GoldenTriangleInBlocks) {
    zorvs_test::UnitCapture out(false);
    page_setup(40, 12, 0);
    double a[36];
    for (int k = 0; k < 36; ++k) a[k] = k + 1;
    zorvs_d_write_matrix("Lower", 6, 6, a, ZORVS_PRINT_LOWER, 0);
    zorvs_d_write_matrix("Upper without diagonal", 6, 6, a, ZORVS_PRINT_UPPER_NO_DIAG, 0);
    std::string text = out.take();
    expect_golden("triangle_blocks", text);
    EXPECT_EQ(option(3), static_cast<int>(split_lines(split_pages(text).back()).size()));
}

// A 200 x 40 matrix on pages of 23 lines, in all three types, as given and as
// the transpose of its 40 x 200 layout: every page holds at most 23 lines;
// every block of rows stands under a head of column numbers; each cell shows
// up once, whole, under its column; the count in option 3 is the length of
// the last page; a transposed matrix comes back in its old layout.
template <class T>
void check_paged_print(bool transpose) {
    const int rows = 200, cols = 40, length = 23;
    zorvs_test::UnitCapture out(false);
    page_setup(78, length, 0);
    std::vector<T> a(rows * cols);
    auto value = [](int i, int j) { return static_cast<T>(100000 + 100 * i + j) + static_cast<T>(0.5); };
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < cols; ++j) (transpose ? a[j * rows + i] : a[i * cols + j]) = value(i, j);
    std::vector<T> before = a;
    const char *format = std::is_same_v<T, int> ? "%7d" : "%10.1f";
    if constexpr (std::is_same_v<T, float>) {
        if (transpose)
            zorvs_f_write_matrix("t", cols, rows, a.data(), ZORVS_TRANSPOSE, ZORVS_WRITE_FORMAT, format, 0);
        else
            zorvs_f_write_matrix("t", rows, cols, a.data(), ZORVS_WRITE_FORMAT, format, 0);
    } else if constexpr (std::is_same_v<T, double>) {
        if (transpose)
            zorvs_d_write_matrix("t", cols, rows, a.data(), ZORVS_TRANSPOSE, ZORVS_WRITE_FORMAT, format, 0);
        else
            zorvs_d_write_matrix("t", rows, cols, a.data(), ZORVS_WRITE_FORMAT, format, 0);
    } else {
        if (transpose)
            zorvs_i_write_matrix("t", cols, rows, a.data(), ZORVS_TRANSPOSE, ZORVS_WRITE_FORMAT, format, 0);
        else
            zorvs_i_write_matrix("t", rows, cols, a.data(), ZORVS_WRITE_FORMAT, format, 0);
    }
    EXPECT_TRUE(a == before);
    std::string text = out.take();
    auto pages = split_pages(text);
    std::vector<int> seen(rows * cols, 0);
    for (const auto &page : pages) {
        auto lines = split_lines(page);
        EXPECT_LE(static_cast<int>(lines.size()), length);
        std::vector<int> head;  // column numbers of the block in hand, from 1
        bool first = true, last_was_head = false;
        for (const auto &line : lines) {
            EXPECT_LE(static_cast<int>(line.size()), 78);
            if (line == "t" || line == " ") continue;
            std::vector<double> numbers;
            const char *p = line.c_str();
            char *end;
            for (double x = std::strtod(p, &end); end != p; x = std::strtod(p, &end)) {
                numbers.push_back(x);
                p = end;
            }
            ASSERT_FALSE(numbers.empty()) << line;
            last_was_head = numbers.back() <= cols;
            // A page that goes on with the matrix begins with a head.
            EXPECT_TRUE(!first || last_was_head) << line;
            first = false;
            if (last_was_head) {
                head.clear();
                for (double x : numbers) head.push_back(static_cast<int>(x));
                continue;
            }
            // A row: its number, then one cell for each column of the head.
            ASSERT_EQ(numbers.size(), head.size() + 1) << line;
            int i = static_cast<int>(numbers[0]) - 1;
            for (std::size_t k = 0; k < head.size(); ++k) {
                int j = head[k] - 1;
                EXPECT_EQ(numbers[k + 1], static_cast<double>(value(i, j))) << line;
                ++seen[i * cols + j];
            }
        }
        // A page never ends on a head cut from its rows.
        EXPECT_FALSE(last_was_head);
    }
    for (int k = 0; k < rows * cols; ++k) EXPECT_EQ(seen[k], 1) << k;
    EXPECT_EQ(option(3), static_cast<int>(split_lines(pages.back()).size()));
}

TEST(WriteMatrix, PagedWideAndLongKeepsEveryCell) {
    check_paged_print<float>(false);
    check_paged_print<double>(false);
    check_paged_print<int>(false);
    check_paged_print<float>(true);
    check_paged_print<double>(true);
    check_paged_print<int>(true);
}

}  // namespace
