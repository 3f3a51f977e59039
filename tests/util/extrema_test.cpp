// Extrema: tie rules, NaN handling and the list routines through the frame.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "util/util.h"
#include "zorvstat.h"

namespace {

const double nan_d = std::numeric_limits<double>::quiet_NaN();

TEST(Extrema, PairsTakeTheSecondOnTies) {
    EXPECT_EQ(zorvs_d_max(1.0, 2.0), 2.0);
    EXPECT_EQ(zorvs_f_min(-1.0f, 2.0f), -1.0f);
    EXPECT_EQ(zorvs_i_max(3, 3), 3);
    // a > b is false against NaN, so b comes back.
    EXPECT_EQ(zorvs_d_max(nan_d, 5.0), 5.0);
    EXPECT_TRUE(std::isnan(zorvs_d_min(5.0, nan_d)));
}

TEST(Extrema, IndexOfFirstOfEqualExtremes) {
    const float x[] = {1, 7, 3, 7, -2, -2};
    EXPECT_EQ(zorvs_ismax(6, x, 1), 2);
    EXPECT_EQ(zorvs_ismin(6, x, 1), 5);
    EXPECT_EQ(zorvs_ismax(0, x, 1), 0);
    EXPECT_EQ(zorvs_ismax(1, x, 1), 1);
    // Stride 2 sees 1, 3, -2.
    EXPECT_EQ(zorvs_ismax(3, x, 2), 2);
    EXPECT_EQ(zorvs_ismin(3, x, 2), 3);
    const double d[] = {4, 4, 9, 9};
    EXPECT_EQ(zorvs_dismax(4, d, 1), 3);
    EXPECT_EQ(zorvs_dismin(4, d, 1), 1);
    const int ix[] = {5, -1, 8, 8, -1};
    int n = 5, one = 1, two = 2;
    EXPECT_EQ(zorvs_iimax(&n, ix, &one), 3);
    EXPECT_EQ(zorvs_iimin(&n, ix, &one), 2);
    n = 3;
    EXPECT_EQ(zorvs_iimax(&n, ix, &two), 2);
}

TEST(Extrema, MaximumIndexPassesOverNaN) {
    const double x[] = {nan_d, -3.0, 2.0, 3.0, -4.0};
    int index = 99;
    zorvs_d_maximum_index(5, x, 1, &index);
    EXPECT_EQ(index, 4);
    zorvs_d_maximum_index(4, x, 1, &index);
    EXPECT_EQ(index, 1);  // |3| ties |-3|: the first stays
    zorvs_d_maximum_index(3, x, 2, &index);
    EXPECT_EQ(index, 2);  // nan, 2, -4
    const double all_nan[] = {nan_d, nan_d};
    zorvs_d_maximum_index(2, all_nan, 1, &index);
    EXPECT_EQ(index, -1);
    zorvs_d_maximum_index(0, x, 1, &index);
    EXPECT_EQ(index, -1);
    const float f[] = {1.0f, -8.5f, 8.5f};
    zorvs_f_maximum_index(3, f, 1, &index);
    EXPECT_EQ(index, 1);
}

TEST(Extrema, ListRoutinesReadRealsAsDouble) {
    EXPECT_EQ(zorvs_f_vmax(3, 1.0, 2.5, -4.0), 2.5f);
    EXPECT_EQ(zorvs_f_vmin(3, 1.0, 2.5, -4.0), -4.0f);
    // A float argument is promoted by the call and read in 8 bytes.
    float a = 0.25f, b = 0.75f;
    EXPECT_EQ(zorvs_f_vmax(2, a, b), 0.75f);
    EXPECT_EQ(zorvs_d_vmax(4, 1.0, 1e300, -1e300, 5.0), 1e300);
    EXPECT_EQ(zorvs_d_vmin(1, 42.0), 42.0);
    EXPECT_EQ(zorvs_i_vmax(5, 3, 9, -2, 9, 0), 9);
    EXPECT_EQ(zorvs_i_vmin(3, 3, 9, -2), -2);
}

TEST(Extrema, ListOfNothingIsZero) {
    EXPECT_EQ(zorvs_f_vmax(0), 0.0f);
    EXPECT_EQ(zorvs_d_vmin(-3), 0.0);
    EXPECT_EQ(zorvs_i_vmax(0), 0);
    EXPECT_EQ(zorvs_error_type(), 0);
    EXPECT_EQ(zorvs_error_code(), 0);
}

TEST(Extrema, NaNInListFollowsStrictComparison) {
    // A NaN first stays, since nothing compares greater than it.
    EXPECT_TRUE(std::isnan(zorvs_d_vmax(3, nan_d, 1.0, 2.0)));
    // A NaN later never replaces the best.
    EXPECT_EQ(zorvs_d_vmax(3, 1.0, nan_d, 2.0), 2.0);
}

}  // namespace
