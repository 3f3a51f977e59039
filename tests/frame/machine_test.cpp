// Machine constants and the process environment: the constant tables bit for
// bit, the inquiry routines and their messages, units, page, version strings,
// processor time and the null-pointer check.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "frame/machine.h"
#include "frame/services.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

std::uint32_t bits(float x) { return std::bit_cast<std::uint32_t>(x); }
std::uint64_t bits(double x) { return std::bit_cast<std::uint64_t>(x); }

// The slots of the last message, as one string: "i1 i2 i3 | l1".
std::string int_slots(int n) {
    std::string s;
    for (int k = 1; k <= n; ++k) s += std::to_string(zorvs_error_param.i[k]) + " ";
    return s;
}

// A printed message with its continuation lines joined again.
std::string flat(std::string s) {
    const std::string wrap = "\n***          ";
    for (std::size_t k; (k = s.find(wrap)) != std::string::npos;) s.replace(k, wrap.size(), " ");
    return s;
}

// ---------------------------------------------------------------------------
// Constant tables

TEST(MachineConstants, RealTablesHoldTheIeeeValues) {
    using F = std::numeric_limits<float>;
    using D = std::numeric_limits<double>;
    // Checked against the language's own description of the formats.
    EXPECT_EQ(zorvs_f_machine(1), F::min());
    EXPECT_EQ(zorvs_f_machine(2), F::max());
    EXPECT_EQ(zorvs_f_machine(3), F::epsilon() / 2);
    EXPECT_EQ(zorvs_f_machine(4), F::epsilon());
    EXPECT_EQ(zorvs_f_machine(5), static_cast<float>(std::log10(2.0)));
    EXPECT_EQ(zorvs_f_machine(7), F::infinity());
    EXPECT_EQ(zorvs_f_machine(8), -F::infinity());
    EXPECT_EQ(zorvs_d_machine(1), D::min());
    EXPECT_EQ(zorvs_d_machine(2), D::max());
    EXPECT_EQ(zorvs_d_machine(3), D::epsilon() / 2);
    EXPECT_EQ(zorvs_d_machine(4), D::epsilon());
    EXPECT_EQ(zorvs_d_machine(7), D::infinity());
    EXPECT_EQ(zorvs_d_machine(8), -D::infinity());
    // The bit patterns.
    const std::uint32_t fb[8] = {0x00800000u, 0x7F7FFFFFu, 0x33800000u, 0x34000000u,
                                 0x3E9A209Bu, 0x7FFFFFFFu, 0x7F800000u, 0xFF800000u};
    const std::uint64_t db[8] = {0x0010000000000000ull, 0x7FEFFFFFFFFFFFFFull, 0x3CA0000000000000ull,
                                 0x3CB0000000000000ull, 0x3FD344133FD34413ull, 0x7FFFFFFFFFFFFFFFull,
                                 0x7FF0000000000000ull, 0xFFF0000000000000ull};
    for (int i = 1; i <= 8; ++i) {
        EXPECT_EQ(bits(zorvs_f_machine(i)), fb[i - 1]) << i;
        EXPECT_EQ(bits(zorvs_amach(i)), fb[i - 1]) << i;
        EXPECT_EQ(bits(zorvs_machine.f[i - 1]), fb[i - 1]) << i;
        EXPECT_EQ(bits(zorvs_d_machine(i)), db[i - 1]) << i;
        EXPECT_EQ(bits(zorvs_dmach(i)), db[i - 1]) << i;
        EXPECT_EQ(bits(zorvs_machine.d[i - 1]), db[i - 1]) << i;
    }
}

TEST(MachineConstants, MissingValueAndTheHistoricalLog10) {
    EXPECT_TRUE(std::isnan(zorvs_f_machine(6)));
    EXPECT_TRUE(std::isnan(zorvs_d_machine(6)));
    EXPECT_TRUE(std::isnan(static_cast<double>(zorvs_f_machine(6))));
    // 0.30102998001990605, not the nearest double to log10(2).
    EXPECT_EQ(zorvs_d_machine(5), 0.30102998001990605);
    EXPECT_NE(zorvs_d_machine(5), std::log10(2.0));
    EXPECT_EQ(bits(std::log10(2.0)), 0x3FD34413509F79FFull);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(zorvs_f_machine(6)), 0x7FFFFFFFu);
}

TEST(MachineConstants, SmallNumberTables) {
    for (int i = 0; i <= 10; ++i) {
        EXPECT_EQ(zorvs_F_NUMBER[i], static_cast<float>(i));
        EXPECT_EQ(zorvs_D_NUMBER[i], static_cast<double>(i));
    }
    EXPECT_EQ(zorvs_F_NUMBER[11], 0.5f);
    EXPECT_EQ(zorvs_D_NUMBER[11], 0.5);
}

TEST(MachineConstants, IntegerTables) {
    const int i_machine[13] = {8, 2, 15, 32767, 31, 2147483647, 2, 24, -125, 128, 53, -1021, 1024};
    for (int i = 0; i <= 12; ++i) EXPECT_EQ(zorvs_i_machine(i), i_machine[i]) << i;
    const int imach[12] = {32, 4, 2, 31, 2147483647, 2, 24, -125, 128, 53, -1021, 1024};
    for (int i = 1; i <= 12; ++i) EXPECT_EQ(zorvs_imach(i), imach[i - 1]) << i;
    // The entries agree with the formats they describe.
    EXPECT_EQ(zorvs_i_machine(5), std::numeric_limits<int>::max());
    EXPECT_EQ(zorvs_i_machine(7), std::numeric_limits<float>::digits);
    EXPECT_EQ(zorvs_i_machine(10), std::numeric_limits<double>::digits);
    EXPECT_EQ(zorvs_i_machine(8), std::numeric_limits<float>::min_exponent);
    EXPECT_EQ(zorvs_i_machine(12), std::numeric_limits<double>::max_exponent);
    EXPECT_EQ(zorvs_i_machine(3), std::numeric_limits<short>::max());
}

// ---------------------------------------------------------------------------
// Indices out of range

TEST(MachineInquiry, RealIndexOutOfRangeRaisesWithItsBounds) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    EXPECT_EQ(zorvs_f_machine(0), 0.0f);
    EXPECT_TRUE(log.has(5, 132));
    EXPECT_EQ(int_slots(3), "1 8 0 ");
    EXPECT_STREQ(zorvs_error_param.l[1], "n");
    EXPECT_EQ(zorvs_d_machine(9), 0.0);
    EXPECT_EQ(int_slots(3), "1 8 9 ");
    EXPECT_EQ(zorvs_error_code(), 132);
    std::string out = flat(q.errors.take());
    EXPECT_NE(out.find("from zorvs_f_machine"), std::string::npos) << out;
    EXPECT_NE(out.find("from zorvs_d_machine"), std::string::npos) << out;
    EXPECT_NE(out.find("n = 9 must be from 1 to 8"), std::string::npos) << out;
}

TEST(MachineInquiry, IntegerAndShortFormsOutOfRange) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    EXPECT_EQ(zorvs_i_machine(-1), 0);
    EXPECT_EQ(int_slots(3), "0 12 -1 ");
    EXPECT_EQ(zorvs_imach(0), 0);
    EXPECT_EQ(int_slots(3), "1 12 0 ");
    EXPECT_EQ(zorvs_imach(13), 0);
    EXPECT_EQ(zorvs_amach(9), 0.0f);
    EXPECT_TRUE(log.has(5, 12009));
    EXPECT_EQ(zorvs_error_param.i[1], 9);
    EXPECT_EQ(zorvs_dmach(0), 0.0);
    EXPECT_EQ(zorvs_error_code(), 12009);
    std::string out = flat(q.errors.take());
    EXPECT_NE(out.find("from zorvs_i_machine"), std::string::npos);
    EXPECT_NE(out.find("from zorvs_imach"), std::string::npos);
    EXPECT_NE(out.find("from zorvs_dmach"), std::string::npos);
}

TEST(MachineInquiry, StopsTheProcessByDefault) {
    EXPECT_EXIT(zorvs_f_machine(0), ::testing::ExitedWithCode(5),
                "TERMINAL Error from zorvs_f_machine\\.  The argument n = 0 must be from 1\n"
                "\\*\\*\\*          to 8\\.");
}

TEST(MachineInquiry, ValidCallLeavesNoError) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    for (int i = 1; i <= 8; ++i) {
        zorvs_f_machine(i);
        zorvs_d_machine(i);
    }
    EXPECT_TRUE(log.entries().empty());
    EXPECT_EQ(q.errors.take(), "");
}

// ---------------------------------------------------------------------------
// Units

TEST(EnvironmentUnits, OutputUnitRedirectsAndReadsBack) {
    FILE *before = nullptr;
    zorvs_umach(2, &before);
    EXPECT_EQ(before, stdout);
    FILE *in = nullptr;
    zorvs_umach(1, &in);
    EXPECT_EQ(in, stdin);
    FILE *f = std::tmpfile();
    ASSERT_NE(f, nullptr);
    zorvs_umach(-2, &f);
    FILE *g = nullptr;
    zorvs_output_file(ZORVS_GET_OUTPUT_FILE, &g, 0);
    EXPECT_EQ(g, f);
    zorvs_output_file(ZORVS_SET_OUTPUT_FILE, stdout, 0);
    zorvs_umach(2, &g);
    EXPECT_EQ(g, stdout);
    std::fclose(f);
}

TEST(EnvironmentUnits, BadUnitNumberAndUnknownKeyword) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    FILE *f = nullptr;
    zorvs_umach(4, &f);
    EXPECT_TRUE(log.has(5, 12010));
    EXPECT_EQ(zorvs_error_param.i[1], 4);
    EXPECT_EQ(f, nullptr);
    zorvs_output_file(ZORVS_GET_OUTPUT_FILE, &f, 999, 0);
    EXPECT_TRUE(log.has(5, 103));
    EXPECT_EQ(zorvs_error_param.i[1], 999);
    EXPECT_EQ(zorvs_error_param.i[2], 3);
    EXPECT_EQ(f, stdout);
}

// ---------------------------------------------------------------------------
// Page

TEST(EnvironmentPage, DefaultsSettingAndRefusals) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    int w = 0, l = 0;
    zorvs_page(1, &w);
    zorvs_page(2, &l);
    EXPECT_EQ(w, 78);
    EXPECT_EQ(l, 60);
    int v = 100;
    zorvs_page(-1, &v);
    v = 10;
    zorvs_page(-2, &v);
    zorvs_page(1, &w);
    zorvs_page(2, &l);
    EXPECT_EQ(w, 100);
    EXPECT_EQ(l, 10);
    EXPECT_TRUE(log.entries().empty());

    v = 9;
    zorvs_page(-1, &v);
    EXPECT_TRUE(log.has(5, 10021));
    EXPECT_EQ(zorvs_error_param.i[1], 9);
    zorvs_page(-2, &v);
    EXPECT_TRUE(log.has(5, 10022));
    zorvs_page(0, &v);
    EXPECT_TRUE(log.has(5, 10020));
    zorvs_page(3, &v);
    zorvs_page(-3, &v);
    EXPECT_EQ(v, 9);
    zorvs_page(1, &w);
    zorvs_page(2, &l);
    EXPECT_EQ(w, 100);  // unchanged by the refused settings
    EXPECT_EQ(l, 10);
    EXPECT_NE(flat(q.errors.take()).find("The page width 9 must be at least 10."), std::string::npos);
    v = 78;
    zorvs_page(-1, &v);
    v = 60;
    zorvs_page(-2, &v);
}

// ---------------------------------------------------------------------------
// Version strings

TEST(EnvironmentVersion, StringsAreFreshCopies) {
    char *a = zorvs_version(ZORVS_LIBRARY_VERSION);
    char *b = zorvs_version(ZORVS_LIBRARY_VERSION);
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_NE(a, b);
    EXPECT_STREQ(a, "ZORV Vostat Version 1.0");
    EXPECT_STREQ(a, b);
    a[0] = 'X';  // the caller's own copy
    char *c = zorvs_version(ZORVS_LIBRARY_VERSION);
    EXPECT_EQ(c[0], 'Z');
    char *compiler = zorvs_version(ZORVS_COMPILER_VERSION);
    char *os = zorvs_version(ZORVS_OS_VERSION);
    ASSERT_NE(compiler, nullptr);
    ASSERT_NE(os, nullptr);
#if defined(__GNUC__) && !defined(__clang__)
    EXPECT_NE(std::strstr(compiler, __VERSION__), nullptr) << compiler;
#endif
#if defined(__linux__)
    EXPECT_EQ(std::strncmp(os, "Linux", 5), 0) << os;
#endif
    for (char *p : {a, b, c, compiler, os}) std::free(p);
}

TEST(EnvironmentVersion, UnknownKeywordGivesNull) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    EXPECT_EQ(zorvs_version(ZORVS_ALPHA), nullptr);
    EXPECT_TRUE(log.has(5, 103));
    EXPECT_EQ(zorvs_error_param.i[1], ZORVS_ALPHA);
    EXPECT_EQ(zorvs_error_param.i[2], 1);
    EXPECT_NE(q.errors.take().find("zorvs_version"), std::string::npos);
}

// ---------------------------------------------------------------------------
// Processor time and the null-pointer check

TEST(EnvironmentProcess, ProcessorTimeGrowsWithWork) {
    double t0 = zorvs_ctime();
    EXPECT_GE(t0, 0.0);
    volatile double sink = 0.0;
    double t1 = t0;
    // Spin until the clock has moved at least one tick (bounded).
    for (long k = 0; k < 2000000000L && t1 <= t0; ++k) {
        sink = sink + std::sqrt(static_cast<double>(k));
        if ((k & 0xFFFFF) == 0) t1 = zorvs_ctime();
    }
    EXPECT_GT(t1, t0);
    EXPECT_LT(t1 - t0, 60.0);
}

TEST(EnvironmentProcess, NullPointerCheck) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    int x = 0;
    zorvs_e1psh("zorvs_f_write_matrix");
    zorvs_null_pointer("title", -1, &x);
    EXPECT_TRUE(log.entries().empty());
    zorvs_null_pointer("title", -1, nullptr);
    EXPECT_TRUE(log.has(5, 150));
    EXPECT_STREQ(zorvs_error_param.l[1], "title");
    zorvs_null_pointer("rlabel", 3, nullptr);
    EXPECT_TRUE(log.has(5, 151));
    EXPECT_EQ(zorvs_error_param.i[1], 3);
    zorvs_e1pop("zorvs_f_write_matrix");
    std::string out = flat(q.errors.take());
    EXPECT_NE(out.find("The argument title is a null pointer"), std::string::npos) << out;
    EXPECT_NE(out.find("Element 3 of the array rlabel is a null pointer"), std::string::npos) << out;
}

}  // namespace
