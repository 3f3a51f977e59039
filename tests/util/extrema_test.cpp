// Extrema: tie rules, NaN handling and the list routines through the frame.
#include "support/tables.hpp"

#include "util/util.h"

namespace {

const double nan = std::nan("");
const float x[] = {1, 7, 3, 7, -2, -2};
const double d[] = {4, 4, 9, 9}, signs[] = {nan, -3.0, 2.0, 3.0, -4.0}, all_nan[] = {nan, nan};
const float fsigns[] = {1.0f, -8.5f, 8.5f};
const int ix[] = {5, -1, 8, 8, -1};
int five = 5, three = 3, one = 1, two = 2;

template <class T>
int maximum_index(int n, const T *v, int stride) {
    int index = 99;
    zorvs_test::twin<T>(zorvs_f_maximum_index, zorvs_d_maximum_index)(n, v, stride, &index);
    return index;
}

TEST(Extrema, Table) {
    const struct { const char *what; double got, expected; } cases[] = {
        // Pairs: a > b picks a, so ties and a NaN give b.
        {"d_max", zorvs_d_max(1.0, 2.0), 2.0}, {"f_min", zorvs_f_min(-1.0f, 2.0f), -1.0f},
        {"i_max tie", double(zorvs_i_max(3, 3)), 3}, {"d_max NaN first", zorvs_d_max(nan, 5.0), 5.0},
        {"d_min NaN second", zorvs_d_min(5.0, nan), nan},
        // Indices from 1 of the first of equal extremes; stride 2 sees 1, 3, -2.
        {"ismax", double(zorvs_ismax(6, x, 1)), 2}, {"ismin", double(zorvs_ismin(6, x, 1)), 5},
        {"ismax n 0", double(zorvs_ismax(0, x, 1)), 0}, {"ismax n 1", double(zorvs_ismax(1, x, 1)), 1},
        {"ismax stride 2", double(zorvs_ismax(3, x, 2)), 2}, {"ismin stride 2", double(zorvs_ismin(3, x, 2)), 3},
        {"dismax", double(zorvs_dismax(4, d, 1)), 3}, {"dismin", double(zorvs_dismin(4, d, 1)), 1},
        {"iimax", double(zorvs_iimax(&five, ix, &one)), 3}, {"iimin", double(zorvs_iimin(&five, ix, &one)), 2},
        {"iimax stride 2", double(zorvs_iimax(&three, ix, &two)), 2},
        // Largest magnitude from 0, passing over NaN; -1 if there is none.
        {"maximum_index", double(maximum_index(5, signs, 1)), 4},
        {"maximum_index |3| ties |-3|", double(maximum_index(4, signs, 1)), 1},
        {"maximum_index stride 2", double(maximum_index(3, signs, 2)), 2},
        {"maximum_index all NaN", double(maximum_index(2, all_nan, 1)), -1},
        {"maximum_index n 0", double(maximum_index(0, signs, 1)), -1},
        {"f_maximum_index", double(maximum_index(3, fsigns, 1)), 1},
        // Lists read every real as a double (a float argument is promoted).
        {"f_vmax", zorvs_f_vmax(3, 1.0, 2.5, -4.0), 2.5}, {"f_vmin", zorvs_f_vmin(3, 1.0, 2.5, -4.0), -4.0},
        {"f_vmax of floats", zorvs_f_vmax(2, 0.25f, 0.75f), 0.75},
        {"d_vmax", zorvs_d_vmax(4, 1.0, 1e300, -1e300, 5.0), 1e300}, {"d_vmin one", zorvs_d_vmin(1, 42.0), 42.0},
        {"i_vmax", double(zorvs_i_vmax(5, 3, 9, -2, 9, 0)), 9}, {"i_vmin", double(zorvs_i_vmin(3, 3, 9, -2)), -2},
        {"f_vmax of none", zorvs_f_vmax(0), 0}, {"d_vmin of none", zorvs_d_vmin(-3), 0},
        {"i_vmax of none", double(zorvs_i_vmax(0)), 0},
        // A NaN first stays, since nothing compares greater; a later one never wins.
        {"d_vmax NaN first", zorvs_d_vmax(3, nan, 1.0, 2.0), nan}, {"d_vmax NaN later", zorvs_d_vmax(3, 1.0, nan, 2.0), 2.0},
    };
    for (const auto &c : cases) EXPECT_TRUE(zorvs_test::agrees(c.got, c.expected)) << c.what << ": " << c.got;
    EXPECT_EQ(zorvs_error_type(), 0);
}

}  // namespace
