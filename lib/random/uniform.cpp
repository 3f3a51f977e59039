// uniform.cpp - the shared uniform generator.
//
// A multiplicative congruential generator x := a*x mod (2^31 - 1) in six
// forms: the multipliers 16807 (Lewis, Goodman and Miller 1969; Park and
// Miller 1988), 397204094 and 950706376 (Fishman and Moore 1986), each plain
// or shuffled through a table of 128 entries (Bays and Durham 1976, as
// described by Knuth, TAOCP vol. 2, 3.2.2, algorithm B).  The larger
// multipliers may be split as 32768*hi + lo so that every product stays below
// 2^53 and double arithmetic with fmod is exact; the same exact residue is
// computed here in 64-bit integers, bit for bit the same stream.  Numbers are
// made in blocks: the states by interleaved chains of the jump-ahead
// x(k + j) = (a^j mod m)*x(k) mod m, the quotients x/divisor in a loop of
// their own.  Deviate routines read the stream through random/stream.hpp.
//
// The state is one record, zorvs_random_common, shared by the single and the
// double routines, so that both continue one stream.  Each precision keeps
// its own shuffle table and its own "table ready" flag: a table filled by the
// single routine says nothing about the double table, so the double routine
// fills its own on its first shuffled draw (the record's table_filled field
// is set when either table is ready).
#include <cmath>
#include <cstdint>
#include <ctime>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "random/random.h"
#include "random/stream.hpp"
#include "zorvstat.h"

extern "C" {
ZORVS_THREAD_LOCAL struct zorvs_random_state zorvs_random_common = {0.0, 0.0, 0, 0, 0};
}

namespace {

// File-scope state of the generator beside the shared record.
struct RandomState {
    int first_use = 1;
    int seeded = 0;
    int first_call[2] = {1, 1};    // per twin: call zorvs_r1int(0) once
    int table_ready[2] = {0, 0};   // per twin: its shuffle table is filled
    float table_single[128] = {};
    double table_double[128] = {};
};
constinit thread_local RandomState lv_random;

template <class T> constinit thread_local T *lv_uniform = nullptr;

template <class T>
constexpr int twin() {
    return std::is_same_v<T, float> ? 0 : 1;
}
template <class T>
T *table_of() {
    if constexpr (std::is_same_v<T, float>)
        return lv_random.table_single;
    else
        return lv_random.table_double;
}

void first_use() {
    if (!lv_random.first_use) return;
    // The first divisor in the sequence for which 2147483646/divisor, rounded
    // to single precision, is below one; x/divisor is then below one in both
    // precisions.
    double d = 2147483647.0;
    const double next[2] = {2147483655.0, 2147483711.0};
    int i = 0;
    while (!(static_cast<float>(2147483646.0 / d) < 1.0f)) d = (i < 2) ? next[i++] : d + 8.0;
    zorvs_random_common.divisor = d;
    zorvs_random_common.option = 1;
    zorvs_random_common.table_filled = 0;
    zorvs_random_common.reserved = 0;
    lv_random.first_use = 0;
}

void clock_seed() {
    int s;
    zorvs_r1clk(&s);
    zorvs_random_common.seed = s;
}

constexpr uint64_t multiplier(int option) {
    return option <= 2 ? 16807 : option <= 4 ? 397204094 : 950706376;
}

// Fill the twin's shuffle table with 128 fresh numbers.
template <class T>
void l_r1ins() {
    if (lv_random.first_call[twin<T>()]) {
        zorvs_r1int(0);
        lv_random.first_call[twin<T>()] = 0;
    }
    T *table = table_of<T>();
    const uint64_t a = multiplier(zorvs_random_common.option);
    const double d = zorvs_random_common.divisor;
    uint64_t x = static_cast<uint64_t>(zorvs_random_common.seed);
    for (int i = 0; i < 128; ++i) {
        x = zorvs::random_mulmod(a, x);
        table[i] = static_cast<T>(static_cast<double>(x) / d);
    }
    zorvs_random_common.seed = static_cast<double>(x);
}

template <class T>
void open_source(zorvs::UniformSource<T> &src) {
    if (lv_random.first_call[twin<T>()]) {
        zorvs_r1int(0);
        lv_random.first_call[twin<T>()] = 0;
    }
    const int option = zorvs_random_common.option;
    const bool shuffled = option % 2 == 0;
    if (shuffled && !lv_random.table_ready[twin<T>()]) {
        l_r1ins<T>();
        lv_random.table_ready[twin<T>()] = 1;
        zorvs_random_common.table_filled = 1;
    }
    src.x = static_cast<uint64_t>(zorvs_random_common.seed);
    src.power[0] = multiplier(option);
    for (int j = 1; j < zorvs::random_lanes; ++j) src.power[j] = zorvs::random_mulmod(src.power[j - 1], src.power[0]);
    src.divisor = zorvs_random_common.divisor;
    src.table = shuffled ? table_of<T>() : nullptr;
    src.pos = 0;
    src.len = 0;
    src.next_len = 8;
}

// The n states after x into xs, and x advanced to the last of them.  The
// step runs in interleaved chains by the jump-ahead
// x(k + j) = (a^j mod m)*x(k) mod m, an identity of modular arithmetic, so
// that the chains' multiplications overlap instead of waiting on each other;
// every state is still the exact residue of the one-step recurrence.  The
// quotients x/divisor follow in a separate loop that the compiler vectorizes
// (a division is correctly rounded at any width).
constexpr int kLanes = zorvs::random_lanes;
template <class T>
void make_block(uint64_t &x, const uint64_t (&power)[kLanes], double d, int n, uint32_t xs[], T u[]) {
    uint64_t y = x;
    int i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        for (int j = 0; j < kLanes; ++j) xs[i + j] = static_cast<uint32_t>(zorvs::random_mulmod(power[j], y));
        y = xs[i + kLanes - 1];
    }
    for (; i < n; ++i) {
        y = zorvs::random_mulmod(power[0], y);
        xs[i] = static_cast<uint32_t>(y);
    }
    x = y;
    for (i = 0; i < n; ++i) u[i] = static_cast<T>(static_cast<double>(xs[i]) / d);
}

// n uniforms into r: blocks of quotients written in place, then for the
// shuffled forms each passes through the table in order.
template <class T>
void l_rnun(int n, T r[]) {
    zorvs::UniformSource<T> src;
    open_source(src);
    constexpr int block = zorvs::UniformSource<T>::block;
    for (int start = 0; start < n; start += block) {
        const int len = n - start < block ? n - start : block;
        T *out = r + start;
        make_block(src.x, src.power, src.divisor, len, src.xs, out);
        if (src.table) {
            T *table = src.table;
            for (int i = 0; i < len; ++i) {
                const unsigned k = src.xs[i] & 127u;  // fmod(x, 128)
                const T value = out[i];
                out[i] = table[k];
                table[k] = value;
            }
        }
    }
    zorvs_random_common.seed = static_cast<double>(src.x);
}

template <class T>
void l_random_uniform(int n, va_list *list) {
    zorvs::OutputPair<T> result(lv_uniform<T>);
    zorvs::KeywordReader kw(list, 1);
    if (!zorvs::read_return_user(kw, result)) return;
    int arg = 0;
    zorvs_c1iarg(n, "n_random", 1, 0, &arg);
    if (zorvs_n1rcd(0) != 0) {
        result.drop();
        return;
    }
    if (!result.obtain(static_cast<std::size_t>(n))) return;
    l_rnun<T>(n, result.data());
}

template <class T>
void l_rnses(const T t[]) {
    const int tw = twin<T>();
    if (t[0] <= 0) {
        lv_random.table_ready[tw] = 0;
        zorvs_random_common.table_filled = lv_random.table_ready[1 - tw];
        return;
    }
    T *table = table_of<T>();
    // The good entries are taken and a refused one leaves its slot as it
    // was; a slot never filled (the table not yet ready) first gets the
    // generator's own number, as the first shuffled draw would give it, so
    // that no draw hands out a value outside (0, 1).
    bool refused = false;
    for (int i = 0; i < 128; ++i)
        refused = refused || !(t[i] > 0 && t[i] < 1);
    if (refused && !lv_random.table_ready[tw]) l_r1ins<T>();
    for (int i = 0; i < 128; ++i) {
        if (t[i] > 0 && t[i] < 1) {
            table[i] = t[i];
        } else {
            zorvs_e1std(1, static_cast<double>(t[i]));
            zorvs_e1sti(1, i + 1);
            zorvs_ermes(5, 11031);
        }
    }
    lv_random.table_ready[tw] = 1;
    zorvs_random_common.table_filled = 1;
}

}  // namespace

extern "C" {

void zorvs_r1clk(int *seed) {
    std::time_t now = std::time(nullptr);
    std::tm parts{};
    std::tm *t = gmtime_r(&now, &parts);
    if (!t) t = localtime_r(&now, &parts);
    int s = t ? 10000 * t->tm_hour + 100 * t->tm_min + t->tm_sec + 1 : 0;
    *seed = s < 2 ? 123457 : s;
}

void zorvs_r1int(int k) {
    first_use();
    if (k == -1) {
        lv_random.seeded = 1;
    } else if (k > 0) {
        zorvs_random_common.option = k;
    } else if (k == 0 && !lv_random.seeded) {
        clock_seed();
        lv_random.seeded = 1;
    }
}

int zorvs_random_seed_get(void) {
    first_use();
    if (!lv_random.seeded) {
        clock_seed();
        lv_random.seeded = 1;
    }
    return static_cast<int>(std::trunc(zorvs_random_common.seed + 0.5));
}

void zorvs_random_seed_set(int seed) {
    if (seed == 0) {
        // A seed of 0 asks for the clock, whether or not a seed was set.
        clock_seed();
        return;
    }
    first_use();
    if (seed < 0 || seed >= 2147483647) {
        // Out of range: ignored without a message, the stream goes on.
        if (!lv_random.seeded) {
            clock_seed();
            lv_random.seeded = 1;
        }
        return;
    }
    lv_random.seeded = 1;
    zorvs_random_common.seed = seed;
}

void zorvs_random_option(int generator_option) {
    zorvs::keyword_routine("zorvs_random_option", [&] {
        int arg = 0;
        zorvs_c1iarg(generator_option, "generator_option", 1, 6, &arg);
        if (zorvs_n1rcd(0) != 0) return;
        first_use();
        zorvs_random_common.option = generator_option;
    });
}

void zorvs_rnses(const float table[]) {
    zorvs::keyword_routine("zorvs_rnses", [&] { l_rnses<float>(table); });
}
void zorvs_drnses(const double table[]) {
    zorvs::keyword_routine("zorvs_drnses", [&] { l_rnses<double>(table); });
}

void zorvs_f_r1uni(int n, float r[]) { l_rnun<float>(n, r); }
void zorvs_d_r1uni(int n, double r[]) { l_rnun<double>(n, r); }

float *zorvs_f_random_uniform(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_f_random_uniform", lv_uniform<float>, l_random_uniform<float>(n, &list));
}
double *zorvs_d_random_uniform(int n, ...) {
    ZORVS_KEYWORD_ENTRY(n, "zorvs_d_random_uniform", lv_uniform<double>, l_random_uniform<double>(n, &list));
}

}  // extern "C"

namespace zorvs {

template <class T>
void UniformSource<T>::refill() {
    make_block(x, power, divisor, next_len, xs, u);
    pos = 0;
    len = next_len;
    if (next_len < block) next_len *= 2;
}
template struct UniformSource<float>;
template struct UniformSource<double>;

void open_uniform_source(UniformSource<float> &src) { open_source(src); }
void open_uniform_source(UniformSource<double> &src) { open_source(src); }

}  // namespace zorvs
