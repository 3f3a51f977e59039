// machine.cpp - the machine constants of both precisions and the integer
// constants, with their inquiry routines.
//
// The real constants are given by their IEEE 754 bit patterns, so that they
// are exact and independent of how a compiler rounds decimal literals.  The
// double at index 5 is the historical value of log10(2) whose low word is a
// copy of the high word (3FD34413 3FD34413); it is kept bit for bit, since
// tolerances computed from it are part of the library's results.

#include <bit>
#include <cstdint>

#include "frame/frame.hpp"
#include "frame/machine.h"
#include "frame/services.h"
#include "zorvstat.h"

namespace {

constexpr float f_bits(std::uint32_t b) { return std::bit_cast<float>(b); }
constexpr double d_bits(std::uint64_t b) { return std::bit_cast<double>(b); }

// The constants a body reads at compile time (twin.hpp) are the table's.
static_assert(zorvs::smallest<float>() == f_bits(0x00800000u) && zorvs::smallest<double>() == d_bits(0x0010000000000000ull));
static_assert(zorvs::largest<float>() == f_bits(0x7F7FFFFFu) && zorvs::largest<double>() == d_bits(0x7FEFFFFFFFFFFFFFull));
static_assert(zorvs::half_epsilon<float>() == f_bits(0x33800000u) &&
              zorvs::half_epsilon<double>() == d_bits(0x3CA0000000000000ull));
static_assert(zorvs::epsilon<float>() == f_bits(0x34000000u) && zorvs::epsilon<double>() == d_bits(0x3CB0000000000000ull));
static_assert(std::bit_cast<std::uint32_t>(zorvs::missing<float>()) == 0x7FFFFFFFu &&
              std::bit_cast<std::uint64_t>(zorvs::missing<double>()) == 0x7FFFFFFFFFFFFFFFull);
static_assert(zorvs::infinity<float>() == f_bits(0x7F800000u) && zorvs::infinity<double>() == d_bits(0x7FF0000000000000ull));

// Integer constants of zorvs_i_machine, index 0 to 12.
constexpr int lv_imachv[13] = {8, 2, 15, 32767, 31, 2147483647, 2, 24, -125, 128, 53, -1021, 1024};

// The table of zorvs_imach, index 1 to 12 as element 0 to 11: the same as
// zorvs_i_machine from index 4 on, with bits, characters and base of an
// integer in the first three.
struct IntegerTable {
    int filled = 0;
    int value[12] = {};
};
constinit thread_local IntegerTable lv_imach;

// Report an index outside [low, high] as (5, 132).
void bad_index(int low, int high, int i, const char *argument) {
    zorvs_e1sti(1, low);
    zorvs_e1sti(2, high);
    zorvs_e1sti(3, i);
    zorvs_e1stl(1, argument);
    zorvs_ermes(5, 132);
}

// The table of a twin, chosen by the type of the argument.
const float *real_table(float) { return zorvs_machine.f; }
const double *real_table(double) { return zorvs_machine.d; }

template <class T>
T real_constant(int i) {
    return real_table(T{})[i - 1];
}

// zorvs_f_machine and zorvs_d_machine: value routines with their own frame.
template <class T>
T l_machine(int i) {
    return zorvs::value_routine(zorvs::by_type<T>("zorvs_f_machine", "zorvs_d_machine"), [i]() -> T {
        if (i < 1 || i > 8) {
            bad_index(1, 8, i, "n");
            return T(0);
        }
        return real_constant<T>(i);
    });
}

// zorvs_amach and zorvs_dmach: the short forms, which report (5, 12009).
template <class T>
T l_amach(int i) {
    return zorvs::value_routine(zorvs::by_type<T>("zorvs_amach", "zorvs_dmach"), [i]() -> T {
        if (i < 1 || i > 8) {
            zorvs_e1sti(1, i);
            zorvs_ermes(5, 12009);
            return T(0);
        }
        return real_constant<T>(i);
    });
}

}  // namespace

extern "C" {

const struct zorvs_machine_t zorvs_machine = {
    {f_bits(0x00800000u), f_bits(0x7F7FFFFFu), f_bits(0x33800000u), f_bits(0x34000000u),
     f_bits(0x3E9A209Bu), f_bits(0x7FFFFFFFu), f_bits(0x7F800000u), f_bits(0xFF800000u)},
    {d_bits(0x0010000000000000ull), d_bits(0x7FEFFFFFFFFFFFFFull), d_bits(0x3CA0000000000000ull),
     d_bits(0x3CB0000000000000ull), d_bits(0x3FD344133FD34413ull), d_bits(0x7FFFFFFFFFFFFFFFull),
     d_bits(0x7FF0000000000000ull), d_bits(0xFFF0000000000000ull)}};

const float zorvs_F_NUMBER[12] = {0.0f, 1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, 8.0f, 9.0f, 10.0f, 0.5f};
const double zorvs_D_NUMBER[12] = {0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0, 10.0, 0.5};

float zorvs_f_machine(int n) { return l_machine<float>(n); }
double zorvs_d_machine(int n) { return l_machine<double>(n); }
float zorvs_amach(int i) { return l_amach<float>(i); }
double zorvs_dmach(int i) { return l_amach<double>(i); }

int zorvs_i_machine(int n) {
    return zorvs::value_routine("zorvs_i_machine", [n]() -> int {
        if (n < 0 || n > 12) {
            bad_index(0, 12, n, "n");
            return 0;
        }
        return lv_imachv[n];
    });
}

int zorvs_imach(int i) {
    if (i < 1 || i > 12) {
        zorvs_e1psh("zorvs_imach");
        bad_index(1, 12, i, "i");
        zorvs_e1pop("zorvs_imach");
        return 0;
    }
    if (!lv_imach.filled) {
        lv_imach.value[0] = 32;  // bits in an integer
        lv_imach.value[1] = 4;   // characters in an integer
        lv_imach.value[2] = 2;   // base of integers
        for (int k = 4; k <= 12; ++k) lv_imach.value[k - 1] = lv_imachv[k];
        lv_imach.filled = 1;
    }
    return lv_imach.value[i - 1];
}

}  // extern "C"
