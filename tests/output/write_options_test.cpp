// Tests of the output options, the counted line writer and its paging.
#include <gtest/gtest.h>

#include <string>

#include "frame/services.h"
#include "output/output.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

int option(int k) {
    int v = 0;
    zorvs_write_options(k, &v);
    return v;
}

void set_option(int k, int v) { zorvs_write_options(-k, &v); }

int count_char(const std::string &s, char c) {
    int n = 0;
    for (char x : s) n += x == c;
    return n;
}

TEST(WriteOptions, DefaultsSetAndReset) {
    EXPECT_EQ(option(1), 0);
    EXPECT_EQ(option(2), 1000);
    EXPECT_EQ(option(3), -2);
    EXPECT_EQ(option(4), 0);
    EXPECT_EQ(option(5), 0);
    EXPECT_EQ(option(6), 0);
    set_option(1, 1);
    set_option(2, 7);
    set_option(3, 5);
    set_option(6, 2);
    EXPECT_EQ(option(1), 1);
    EXPECT_EQ(option(2), 7);
    EXPECT_EQ(option(3), 5);
    EXPECT_EQ(option(6), 2);
    int unused = 0;
    zorvs_write_options(0, &unused);
    EXPECT_EQ(option(1), 0);
    EXPECT_EQ(option(2), 1000);
    EXPECT_EQ(option(3), -2);
    EXPECT_EQ(option(6), 0);
}

TEST(WriteOptions, BadValuesRaiseAndKeepOldValue) {
    zorvs_test::Quiet q;
    struct Case {
        int option, value, code, i1, i2;
        const char *name;
    } cases[] = {
        {1, 2, 109, 0, 1, "ZORVS_SET_CENTERING"}, {2, -1, 110, 0, -1, "ZORVS_SET_ROW_WRAP"},
        {3, -3, 110, -2, -3, "ZORVS_SET_PAGING"}, {4, 5, 109, 0, 1, "ZORVS_SET_NAN_CHAR"},
        {5, -1, 109, 0, 1, "ZORVS_SET_TITLE_PAGE"}, {6, 3, 109, 0, 2, "ZORVS_SET_FORMAT"},
    };
    for (const auto &c : cases) {
        int before = option(c.option);
        int v = c.value;
        zorvs_write_options(-c.option, &v);
        EXPECT_EQ(zorvs_error_type(), 5) << c.name;
        EXPECT_EQ(zorvs_error_code(), c.code) << c.name;
        EXPECT_EQ(zorvs_error_param.i[1], c.i1) << c.name;
        EXPECT_EQ(zorvs_error_param.i[2], c.i2) << c.name;
        if (c.code == 109) {
            EXPECT_EQ(zorvs_error_param.i[3], c.value) << c.name;
        }
        EXPECT_STREQ(zorvs_error_param.l[1], c.name);
        EXPECT_EQ(option(c.option), before) << c.name;
    }
    int v = 0;
    zorvs_write_options(7, &v);
    EXPECT_EQ(zorvs_error_code(), 10019);
    zorvs_write_options(-7, &v);
    EXPECT_EQ(zorvs_error_code(), 10019);
}

TEST(WriteOptions, OptionOutOfRangeStopsByDefault) {
    int v = 0;
    EXPECT_EXIT(zorvs_write_options(9, &v), ::testing::ExitedWithCode(5), "10019|zorvs_write_options");
}

TEST(WriteOptions, PagingFormFeedAfterPageLength) {
    zorvs_test::UnitCapture out(false);
    int length = 10;
    zorvs_page(-2, &length);
    set_option(3, 0);
    for (int k = 0; k < 10; ++k) zorvs_write_line(4, "line");
    EXPECT_EQ(count_char(out.text(), '\f'), 0);
    EXPECT_EQ(option(3), 10);
    zorvs_write_line(6, "eleven");
    std::string text = out.take();
    EXPECT_EQ(count_char(text, '\f'), 1);
    EXPECT_NE(text.find("\feleven\n"), std::string::npos);
    EXPECT_EQ(option(3), 1);
}

TEST(WriteOptions, NoFormFeedWithoutCounting) {
    zorvs_test::UnitCapture out(false);
    int length = 10;
    zorvs_page(-2, &length);
    for (int mode : {-1, -2}) {
        set_option(3, mode);
        for (int k = 0; k < 35; ++k) zorvs_write_line(1, "x");
        EXPECT_EQ(count_char(out.take(), '\f'), 0);
        EXPECT_EQ(option(3), mode);
    }
}

TEST(WriteOptions, PageFeedAndOddCounts) {
    zorvs_test::UnitCapture out(false);
    zorvs_write_line(-1, "ignored");
    EXPECT_EQ(out.take(), "\f");
    EXPECT_EQ(option(3), -2);
    set_option(3, 4);
    zorvs_write_line(-1, "ignored");
    EXPECT_EQ(option(3), 0);
    zorvs_write_line(0, "nothing");
    zorvs_write_line(-5, "nothing");
    EXPECT_EQ(out.take(), "\f");
    zorvs_write_line(3, "abcdef");
    EXPECT_EQ(out.take(), "abc\n");
    EXPECT_EQ(option(3), 1);
}

TEST(WriteOptions, TextWithLineFeeds) {
    zorvs_test::UnitCapture out(false);
    zorvs_wrtrl("two\nwords", 20);
    EXPECT_EQ(out.take(), "two\nwords\n");
    zorvs_wrtrl("ends\n", 20);
    EXPECT_EQ(out.take(), "ends\n");
    zorvs_wrtrl("a\n\nb", 20);
    EXPECT_EQ(out.take(), "a\n\nb\n");
    zorvs_wrtrl("abcdefghij", 4);
    EXPECT_EQ(out.take(), "abcd\nefgh\nij\n");
    zorvs_wrtrl("", 0);
    EXPECT_EQ(out.take(), "");
    set_option(3, 0);
    zorvs_wrtrl("a\n\nb", 20);
    EXPECT_EQ(option(3), 3);
}

TEST(WriteOptions, TextErrors) {
    zorvs_test::Quiet q;
    zorvs_test::UnitCapture out(false);
    zorvs_wrtrl("text", 0);
    EXPECT_EQ(zorvs_error_code(), 10011);
    std::string long_text(256, 'x');
    zorvs_wrtrl(long_text.c_str(), 10);
    EXPECT_EQ(zorvs_error_code(), 10012);
    EXPECT_EQ(out.take(), "");
    std::string fits(255, 'x');
    zorvs_wrtrl(fits.c_str(), 255);
    EXPECT_EQ(out.take(), fits + "\n");
}

TEST(WriteOptions, ScalarsPrintAsOneElementMatrices) {
    zorvs_test::UnitCapture out(false);
    zorvs_wrrrs("x", 3.5f);
    zorvs_dwrrrs("y", 0.25);
    zorvs_wrirs("n", -42);
    std::string text = out.take();
    EXPECT_EQ(text, " \n \nx\n         3.5\n \n \ny\n        0.25\n \n \nn\n  -42\n");
}

}  // namespace
