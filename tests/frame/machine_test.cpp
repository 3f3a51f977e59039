// Machine constants and the process environment: the constant tables bit for
// bit, the inquiry routines and their messages, units, page, version strings,
// processor time and the null-pointer check.
#include "support/tables.hpp"

#include "frame/machine.h"

namespace {

// IEEE single and double from the compiler's own limits: smallest normal,
// largest finite, 2^-digits, spacing above 1, log10(2) rounded from its
// seven or sixteen digits, the quiet NaN of a missing value, +inf, -inf;
// the integer inquiries likewise.
TEST(Machine, ConstantTables) {
    using F = std::numeric_limits<float>;
    using D = std::numeric_limits<double>;
    const float f[8] = {F::min(), F::max(), F::epsilon() / 2, F::epsilon(), 0.30103f, F::quiet_NaN(), F::infinity(),
                        -F::infinity()};
    const double d[8] = {D::min(), D::max(), D::epsilon() / 2, D::epsilon(), 0.30102998001990605, D::quiet_NaN(),
                         D::infinity(), -D::infinity()};
    for (int i = 1; i <= 8; ++i) {
        for (float x : {zorvs_f_machine(i), zorvs_amach(i), zorvs_machine.f[i - 1]})
            EXPECT_TRUE(x == f[i - 1] || (std::isnan(x) && i == 6)) << i;
        for (double x : {zorvs_d_machine(i), zorvs_dmach(i), zorvs_machine.d[i - 1]})
            EXPECT_TRUE(x == d[i - 1] || (std::isnan(x) && i == 6)) << i;
    }
    const int i_machine[13] = {8, 2, 15, 32767, 31, INT_MAX, 2, F::digits, F::min_exponent, F::max_exponent,
                               D::digits, D::min_exponent, D::max_exponent};
    for (int i = 0; i <= 12; ++i) {
        EXPECT_EQ(zorvs_i_machine(i), i_machine[i]) << i;
        EXPECT_TRUE(i == 0 || zorvs_imach(i) == (i <= 3 ? std::vector{0, 32, 4, 2}[i] : i_machine[i])) << i;
    }
}

TEST(Machine, CallsAndTheirMessages) {
    static int v;
    static FILE *f;
    zorvs_test::expect_calls({
        {"f_machine(0)", [] { EXPECT_EQ(zorvs_f_machine(0), 0.0f); }, 5, 132, "i1=1 i2=8 i3=0 l1=n",
         "TERMINAL Error from zorvs_f_machine.  The argument n = 0 must be from 1 to 8."},
        {"d_machine(9)", [] { EXPECT_EQ(zorvs_d_machine(9), 0.0); }, 5, 132, "i1=1 i2=8 i3=9", "from zorvs_d_machine"},
        {"i_machine(-1)", [] { EXPECT_EQ(zorvs_i_machine(-1), 0); }, 5, 132, "i1=0 i2=12 i3=-1", "from zorvs_i_machine"},
        {"i_machine(13)", [] { zorvs_i_machine(13); }, 5, 132, "", "The argument n = 13 must be from 0 to 12."},
        {"imach(0)", [] { EXPECT_EQ(zorvs_imach(0), 0); }, 5, 132, "i1=1 i2=12 i3=0", "from zorvs_imach"},
        {"amach(9)", [] { EXPECT_EQ(zorvs_amach(9), 0.0f); }, 5, 12009, "i1=9", "from zorvs_amach"},
        {"dmach(0)", [] { EXPECT_EQ(zorvs_dmach(0), 0.0); }, 5, 12009, "i1=0", "from zorvs_dmach"},
        {"unit 4", [] { f = nullptr, zorvs_umach(4, &f); EXPECT_EQ(f, nullptr); }, 5, 12010, "i1=4"},
        {"unknown unit keyword", [] { zorvs_output_file(ZORVS_GET_OUTPUT_FILE, &f, 999, 0); EXPECT_EQ(f, stdout); },
         5, 103, "i1=999 i2=3"},
        {"version keyword", [] { EXPECT_EQ(zorvs_version(ZORVS_ALPHA), nullptr); }, 5, 103, "i2=1", "zorvs_version"},
        {"page width 9", [] { v = 9, zorvs_page(-1, &v); }, 5, 10021, "i1=9", "The page width 9 must be at least 10."},
        {"page length 9", [] { zorvs_page(-2, &v); }, 5, 10022, "i1=9"},
        {"page option 0", [] { zorvs_page(0, &v); }, 5, 10020},
        {"page option 3", [] { zorvs_page(3, &v), zorvs_page(-3, &v); EXPECT_EQ(v, 9); }, 5, 10020},
        {"null argument", [] { zorvs_null_pointer("title", -1, &v), zorvs_null_pointer("title", -1, nullptr); }, 5, 150, "l1=title"},
        {"null element", [] { zorvs_null_pointer("rlabel", 3, nullptr); }, 5, 151, "i1=3 l1=rlabel",
         "Element 3 of the array rlabel is a null pointer"},
    });
}

TEST(Machine, VersionsAndTime) {
    char *a = zorvs_version(ZORVS_LIBRARY_VERSION), *b = zorvs_version(ZORVS_LIBRARY_VERSION);
    char *compiler = zorvs_version(ZORVS_COMPILER_VERSION), *os = zorvs_version(ZORVS_OS_VERSION);
    EXPECT_STREQ(a, "ZORV Vostat Version 1.0");
    EXPECT_NE(a, b);  // each call a fresh copy for the caller
    EXPECT_NE(std::strstr(compiler, __VERSION__), nullptr) << compiler;
    EXPECT_EQ(std::strncmp(os, "Linux", 5), 0) << os;
    for (char *p : {a, b, compiler, os}) std::free(p);
    // Processor time moves with work: the inquiries themselves, until a tick
    // passes (bounded).
    double t0 = zorvs_ctime(), t1 = t0;
    for (long k = 0; k < 100000000L && t1 <= t0; ++k) t1 = zorvs_ctime();
    EXPECT_TRUE(t0 >= 0 && t1 > t0 && t1 - t0 < 60) << t0 << " " << t1;
}

}  // namespace
