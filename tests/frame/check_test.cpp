// Argument checks: each check's pass, its message and parameters, and the
// counting of arguments; the safe division and the frequency reader.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/services.h"
#include "support/capture.hpp"

namespace {

using zorvs_test::CodeLog;
using zorvs_test::Quiet;

// Runs checks inside a frame, so that their messages belong to a routine.
class Check : public ::testing::Test {
protected:
    void SetUp() override {
        zorvs_e1mes(0, 0, nullptr);
        zorvs_e1psh("zorvs_checked_routine");
    }
    void TearDown() override { zorvs_e1pop("zorvs_checked_routine"); }
    int last_code() const { return zorvs_n1rcd(0); }
    int last_type() const { return zorvs_n1rty(0); }
    void clear() { zorvs_e1mes(0, 0, nullptr); }
    Quiet q;
    int arg = 10;
};

TEST_F(Check, IntegerArgumentBothForms) {
    zorvs_c1iarg(3, "n", 1, 0, &arg);
    EXPECT_EQ(last_type(), 0);
    EXPECT_EQ(arg, 11);
    zorvs_c1iarg(0, "n", 1, 0, &arg);
    EXPECT_EQ(last_code(), 603);
    EXPECT_EQ(last_type(), 5);
    EXPECT_EQ(zorvs_error_param.i[1], 0);
    EXPECT_EQ(zorvs_error_param.i[2], 1);
    EXPECT_STREQ(zorvs_error_param.l[1], "n");
    EXPECT_EQ(arg, 12);
    clear();
    zorvs_c1iarg(5, "k", 1, 4, &arg);
    EXPECT_EQ(last_code(), 602);
    EXPECT_EQ(zorvs_error_param.i[3], 4);
    clear();
    // lo equal to hi is the range form with one valid value.
    zorvs_c1iarg(2, "k", 2, 2, &arg);
    EXPECT_EQ(last_type(), 0);
    zorvs_c1iarg(3, "k", 2, 2, &arg);
    EXPECT_EQ(last_code(), 602);
    EXPECT_EQ(arg, 15);
}

TEST_F(Check, OrderAndDimensions) {
    zorvs_c12ile(3, "n", 3, "ld", &arg);
    EXPECT_EQ(last_type(), 0);
    zorvs_c12ile(4, "n", 3, "ld", &arg);
    EXPECT_EQ(last_code(), 601);
    EXPECT_STREQ(zorvs_error_param.l[2], "ld");
    clear();
    arg = 0;
    // c1dim counts three items, whatever happens.
    zorvs_c1dim(1, 2, "n", 5, "ldx", &arg);
    EXPECT_EQ(arg, 3);
    EXPECT_EQ(last_type(), 0);
    zorvs_c1dim(1, 0, "n", 0, "ldx", &arg);
    EXPECT_EQ(arg, 6);
    EXPECT_EQ(last_code(), 603);
    clear();
    // A name starting with '*' waives the test of n and prints without the '*'.
    zorvs_c1dim(1, 0, "*x", 5, "ldx", &arg);
    EXPECT_EQ(last_type(), 0);
    EXPECT_EQ(arg, 9);
    zorvs_c1dim(0, 7, "*x", 5, "ldx", &arg);
    EXPECT_EQ(last_code(), 601);
    EXPECT_STREQ(zorvs_error_param.l[1], "x");
    clear();
    arg = 0;
    zorvs_c1ind(1, 9, "n", 0, "ld", &arg);  // no upper bound when ld is below 1
    EXPECT_EQ(last_type(), 0);
    zorvs_c1ind(1, 9, "n", 8, "ld", &arg);
    EXPECT_EQ(last_code(), 601);
    EXPECT_EQ(arg, 4);
}

TEST_F(Check, NonNegativeAndConfidence) {
    CodeLog codes;
    zorvs_dc1ge0(0.0, "x", &arg);
    zorvs_c1ge0(-0.5f, "y", &arg);
    EXPECT_EQ(last_code(), 11061);
    EXPECT_EQ(zorvs_error_param.r[1], -0.5);
    EXPECT_STREQ(zorvs_error_param.l[1], "y");
    clear();
    int a1 = 0, a2 = 100;
    for (double level : {0.0, 50.0, 95.0, 99.99}) {
        zorvs_dc1cip("confidence", level, &a1, &a2);
        EXPECT_EQ(last_type(), 0) << level;
    }
    zorvs_dc1cip("confidence", 25.0, &a1, &a2);
    EXPECT_TRUE(codes.has(6, 20404));
    zorvs_c1cip("confidence", 100.0f, &a1, &a2);
    EXPECT_TRUE(codes.has(5, 20403));
    zorvs_dc1cip("confidence", -1.0, &a1, &a2);
    EXPECT_EQ(zorvs_error_param.r[1], -1.0);
    EXPECT_EQ(a1, 7);
    EXPECT_EQ(a2, 107);
}

TEST_F(Check, UpperTriangularStopsAtTheFirstBadElement) {
    // Column-major 3 x 3; row 2 has a zero diagonal and 4 and 5 to its right.
    const double r[] = {1, 0, 0, 2, 0, 0, 3, 4, 5};
    zorvs_dc1r(3, r, 3, &arg);
    EXPECT_EQ(last_code(), 11060);
    EXPECT_EQ(zorvs_error_param.i[1], 2);
    EXPECT_EQ(zorvs_error_param.i[2], 3);
    EXPECT_EQ(zorvs_error_param.r[1], 0.0);
    EXPECT_EQ(zorvs_error_param.r[2], 4.0);
    EXPECT_EQ(arg, 10);
    clear();
    const float good[] = {1, 0, 0, 2, 0, 0, 3, 0, 5};
    zorvs_c1r(3, good, 3, &arg);
    EXPECT_EQ(last_type(), 0);
    EXPECT_EQ(arg, 11);
}

TEST_F(Check, EffectsOfALinearModel) {
    const int indcl[] = {1, 4};
    const int nvef[] = {1, 2};
    const int indef[] = {1, 2, 3};
    zorvs_c1ef(3, 2, indcl, 2, nvef, indef, &arg);
    EXPECT_EQ(last_code(), 20235);
    EXPECT_EQ(zorvs_error_param.i[1], 2);
    EXPECT_EQ(zorvs_error_param.i[2], 4);
    clear();
    const int bad_nvef[] = {0, 2};
    zorvs_c1ef(4, 2, indcl, 2, bad_nvef, indef, &arg);
    EXPECT_EQ(last_code(), 20237);
    clear();
    const int bad_indef[] = {1, 5, 2};
    zorvs_c1ef(4, 2, indcl, 2, nvef, bad_indef, &arg);
    EXPECT_EQ(last_code(), 20238);
    EXPECT_EQ(zorvs_error_param.i[1], 2);
    clear();
    zorvs_c1ef(0, 0, nullptr, 0, nullptr, nullptr, &arg);
    EXPECT_EQ(last_code(), 603);
    EXPECT_STREQ(zorvs_error_param.l[1], "NCOL");
}

TEST(CheckSafeDivision, GuardsAgainstTrapsAndUnderflow) {
    double r;
    zorvs_dc1div(0.0, 0.0, &r);
    EXPECT_TRUE(std::isnan(r));
    zorvs_dc1div(1.0, 0.0, &r);
    EXPECT_EQ(r, std::numeric_limits<double>::infinity());
    zorvs_dc1div(-1.0, 0.0, &r);
    EXPECT_EQ(r, -std::numeric_limits<double>::infinity());
    zorvs_dc1div(1e300, 1e-300, &r);
    EXPECT_EQ(r, std::numeric_limits<double>::infinity());
    zorvs_dc1div(-1e300, 1e-10, &r);
    EXPECT_EQ(r, -std::numeric_limits<double>::infinity());
    zorvs_dc1div(1e-300, 1e100, &r);
    EXPECT_EQ(r, 0.0);
    zorvs_dc1div(6.0, 3.0, &r);
    EXPECT_EQ(r, 2.0);
    zorvs_dc1div(std::nan(""), 3.0, &r);
    EXPECT_TRUE(std::isnan(r));
    float f;
    zorvs_c1div(1e30f, 1e-20f, &f);
    EXPECT_EQ(f, std::numeric_limits<float>::infinity());
    zorvs_c1div(3.0f, -0.5f, &f);
    EXPECT_EQ(f, -6.0f);
}

class CheckFrequencyReader : public Check {};

TEST_F(CheckFrequencyReader, StatusOfEachKindOfRow) {
    const double nan = std::nan("");
    // Column-major 4 rows x 3 columns: data, frequency, weight.
    const double x[] = {1, 2, 3, 4,  //
                        1, 0, nan, -2,  //
                        2, nan, nan, 1};
    int nmiss = 0, status = -1;
    double f = 0, w = 0;
    zorvs_dc1wfr(0, 0, x, 4, 1, 1, 2, 3, 0, &nmiss, &f, &w, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(f, 1.0);
    EXPECT_EQ(w, 2.0);
    // Zero frequency with a missing weight: the row does not count, nothing is missing.
    zorvs_dc1wfr(0, 0, x, 4, 2, 1, 2, 3, 0, &nmiss, &f, &w, &status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(nmiss, 0);
    // NaN in both: missing once.
    zorvs_dc1wfr(0, 0, x, 4, 3, 1, 2, 3, 0, &nmiss, &f, &w, &status);
    EXPECT_EQ(status, 2);
    EXPECT_EQ(nmiss, 1);
    // Removing a row counts down and turns the frequency's sign.
    zorvs_dc1wfr(0, 0, x, 4, 1, -1, 2, 3, 0, &nmiss, &f, &w, &status);
    EXPECT_EQ(f, -1.0);
    zorvs_dc1wfr(0, 0, x, 4, 3, -1, 2, 3, 0, &nmiss, &f, &w, &status);
    EXPECT_EQ(nmiss, 0);
    // No columns: frequency and weight 1.
    zorvs_dc1wfr(0, 0, x, 4, 4, 1, 0, 0, 0, &nmiss, &f, &w, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(f, 1.0);
    EXPECT_EQ(w, 1.0);
}

TEST_F(CheckFrequencyReader, NegativeValuesAreFatalWithTheRightPair) {
    CodeLog codes;
    const float x[] = {5, 6, -3, 2, 1, -4};  // 2 rows: data, frequency, weight
    int nmiss = 0, status = 0;
    float f, w;
    zorvs_c1wfr(0, 0, x, 2, 1, 1, 2, 0, 0, &nmiss, &f, &w, &status);
    EXPECT_EQ(status, 3);
    EXPECT_EQ(last_code(), 11055);
    EXPECT_EQ(last_type(), 4);
    EXPECT_EQ(zorvs_error_param.i[1], 1);
    EXPECT_EQ(zorvs_error_param.r[1], -3.0);
    clear();
    zorvs_c1wfr(2, 7, x, 2, 2, 1, 2, 3, 0, &nmiss, &f, &w, &status);
    EXPECT_EQ(status, 3);
    EXPECT_EQ(last_code(), 11056);
    EXPECT_EQ(zorvs_error_param.i[2], 7);
    EXPECT_EQ(zorvs_error_param.r[1], -4.0);
    clear();
    zorvs_c1wfr(0, 0, x, 2, 2, 1, 0, 3, 0, &nmiss, &f, &w, &status);
    EXPECT_EQ(last_code(), 11057);
    clear();
    zorvs_c1wfr(1, 3, x, 2, 1, 1, 2, 0, 0, &nmiss, &f, &w, &status);
    EXPECT_EQ(last_code(), 11054);
}

// With the default stops, a failed check ends the process at the pop of the
// routine the user called, with the type as exit status and every failed
// check printed first; a negative frequency (type 4) stops the same way.
TEST(CheckStops, FailedChecksStopAtThePopOfTheUsersRoutine) {
    EXPECT_EXIT(
        {
            zorvs::keyword_routine("zorvs_checked_routine", [] {
                int arg_no = 0;
                zorvs_c1iarg(0, "n", 1, 0, &arg_no);
                zorvs_c12ile(9, "n", 3, "ld", &arg_no);
            });
            std::exit(0);
        },
        ::testing::ExitedWithCode(5), "TERMINAL Error from zorvs_checked_routine\\..*TERMINAL Error from zorvs_checked_routine\\.");
    EXPECT_EXIT(
        {
            zorvs::keyword_routine("zorvs_checked_routine", [] {
                double x[2] = {1.0, -2.0};
                double f, w;
                int nmiss = 0, status = 0;
                zorvs_dc1wfr(0, 0, x, 1, 1, 1, 2, 0, 0, &nmiss, &f, &w, &status);
            });
            std::exit(0);
        },
        ::testing::ExitedWithCode(4), "FATAL    Error [A-Z0-9_]+ from zorvs_checked_routine\\.");
}

}  // namespace
