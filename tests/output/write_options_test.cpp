// The output options, the counted line writer with its paging, text with line
// feeds, and scalars printed as one-element matrices.
#include "support/tables.hpp"

#include "output/output.h"

namespace {

using namespace zorvs_test;

TEST(WriteOptions, DefaultsSettingsAndRefusals) {
    // Option, its default, a value it takes, and a value it refuses with the
    // message's parameters; option 0 puts every default back.
    const struct { int option, fallback, good, bad, code; const char *slots; } cases[] = {
        {1, 0, 1, 2, 109, "i1=0 i2=1 i3=2 l1=ZORVS_SET_CENTERING"},
        {2, 1000, 7, -1, 110, "i1=0 i2=-1 l1=ZORVS_SET_ROW_WRAP"},
        {3, -2, 5, -3, 110, "i1=-2 i2=-3 l1=ZORVS_SET_PAGING"},
        {4, 0, 1, 5, 109, "i1=0 i2=1 i3=5 l1=ZORVS_SET_NAN_CHAR"},
        {5, 0, 1, -1, 109, "i1=0 i2=1 i3=-1 l1=ZORVS_SET_TITLE_PAGE"},
        {6, 0, 2, 3, 109, "i1=0 i2=2 i3=3 l1=ZORVS_SET_FORMAT"},
    };
    Quiet q;
    int unused = 0;
    for (const auto &c : cases) {
        EXPECT_EQ(write_option(c.option), c.fallback) << c.option;
        set_write_option(c.option, c.good);
        set_write_option(c.option, c.bad);
        EXPECT_EQ(zorvs_error_code(), c.code) << c.option;
        EXPECT_EQ(slots(c.slots), c.slots);
        EXPECT_EQ(write_option(c.option), c.good) << c.option;
        zorvs_write_options(0, &unused);
        EXPECT_EQ(write_option(c.option), c.fallback) << c.option;
    }
    for (int k : {7, -7}) {
        zorvs_write_options(k, &unused);
        EXPECT_EQ(zorvs_error_code(), 10019) << k;
    }
}

// The line writer: a count above 0 writes that many characters and a line
// end, -1 a form feed; with paging on (option 3 at 0 or more, the lines on
// the page) a form feed comes before the line that would pass the length.
TEST(WriteOptions, LinesAndPaging) {
    // the text shown is looked at where given
    const struct { int paging, lines, n; const char *text; int feeds, after; const char *shown = nullptr; } cases[] = {
        {0, 10, 4, "line", 0, 10},  {0, 11, 6, "eleven", 1, 1}, {-1, 35, 1, "x", 0, -1}, {-2, 35, 1, "x", 0, -2},
        {-2, 1, -1, "ignored", 1, -2}, {4, 1, -1, "ignored", 1, 0}, {-2, 1, 0, "nothing", 0, -2, ""},
        {-2, 1, -5, "nothing", 0, -2, ""}, {-2, 1, 3, "abcdef", 0, -2, "abc\n"}, {0, 1, 3, "abcdef", 0, 1, "abc\n"},
    };
    int length = 10;
    zorvs_page(-2, &length);
    for (const auto &c : cases) {
        UnitCapture out(false);
        set_write_option(3, c.paging);
        for (int k = 0; k < c.lines; ++k) zorvs_write_line(c.n, c.text);
        const std::string text = out.take();
        EXPECT_EQ(std::count(text.begin(), text.end(), '\f'), c.feeds) << c.paging << " " << c.text;
        EXPECT_EQ(write_option(3), c.after) << c.paging << " " << c.text;
        EXPECT_TRUE(!c.shown || text == c.shown) << text;
    }
}

TEST(WriteOptions, TextsAndScalars) {
    const struct { std::string text; int width; std::string printed; int code; } cases[] = {
        {"two\nwords", 20, "two\nwords\n", 0}, {"ends\n", 20, "ends\n", 0},  {"a\n\nb", 20, "a\n\nb\n", 0},
        {"abcdefghij", 4, "abcd\nefgh\nij\n", 0}, {"", 0, "", 0},        {"text", 0, "", 10011},
        {std::string(256, 'x'), 10, "", 10012}, {std::string(255, 'x'), 255, std::string(255, 'x') + "\n", 0},
    };
    Quiet q;
    for (const auto &c : cases) {
        UnitCapture out(false);
        zorvs_e1mes(0, 0, nullptr);
        zorvs_wrtrl(c.text.c_str(), c.width);
        EXPECT_EQ(out.take(), c.printed) << c.text;
        EXPECT_EQ(zorvs_error_code(), c.code) << c.text;
    }
    UnitCapture out(false);
    set_write_option(3, 0);
    zorvs_wrtrl("a\n\nb", 20);
    EXPECT_EQ(write_option(3), 3);  // the lines count for paging
    out.take();
    zorvs_wrrrs("x", 3.5f);
    zorvs_dwrrrs("y", 0.25);
    zorvs_wrirs("n", -42);
    EXPECT_EQ(out.take(), " \n \nx\n         3.5\n \n \ny\n        0.25\n \n \nn\n  -42\n");
}

}  // namespace
