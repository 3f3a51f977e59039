// fuzz_input.hpp - what every libFuzzer target shares: the library set up
// with its stops off and its units on /dev/null, a reader that turns the
// fuzzer's bytes into arguments (counts, strides, awkward reals, arrays), a
// keyword list built from a routine's menu of keywords with random values,
// and the checks that make an impossible result a crash the fuzzer keeps.
//
// The keyword list: a routine reads its keywords with va_arg, and which
// types follow which keyword is only known at run time here.  On the x86-64
// System V ABI a variadic callee takes each int or pointer from the general
// register area and then the stack, and each double from the vector register
// area, independently.  So the list goes as up to eight doubles (all in
// vector registers) followed by the ints and pointers in order; the routine
// reads each kind in its own order, which is the order the list was built
// in.  Other ABIs do not split the kinds, hence the guard.
#ifndef ZORVS_FUZZ_INPUT_HPP
#define ZORVS_FUZZ_INPUT_HPP

#if !defined(__x86_64__) || defined(_WIN32)
#error "the fuzz targets pass keyword lists by the x86-64 System V variadic convention"
#endif

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "frame/services.h"
#include "zorvstat.h"

namespace zorvs_fuzz {

// The routine of twin T.
template <class T, class F, class D>
constexpr auto twin(F f, D d) {
    if constexpr (std::is_same_v<T, float>) return f;
    else return d;
}

// No message on record: zorvs_error_type() then gives the highest type of
// the calls made since, not of an earlier input's.
inline void fresh() { zorvs_e1mes(0, 0, nullptr); }

// Each input: no message on record; once per process: stops off, messages
// and printed matrices to /dev/null.
inline void quiet_library() {
    fresh();
    static bool done = false;
    if (done) return;
    done = true;
    zorvs_error_options(ZORVS_SET_STOP, 4, 0, ZORVS_SET_STOP, 5, 0, 0);
    FILE *null = std::fopen("/dev/null", "w");
    zorvs_output_file(ZORVS_SET_ERROR_FILE, null, 0);
    zorvs_output_file(ZORVS_SET_OUTPUT_FILE, null, 0);
}

// What a target writes down about the call under way, printed with a finding.
inline char context[256];

// A finding: the routine returned what it may not.  abort() makes libFuzzer
// keep the input.
[[noreturn]] inline void finding(const char *routine, const char *what, double value) {
    std::fprintf(stderr, "FINDING %s: %s (%.17g), error type %d code %d; %s\n", routine, what, value,
                 zorvs_error_type(), zorvs_error_code(), context);
    std::abort();
}
// A value that must hold, unless the call left a message of type 3 or above.
inline void require(bool holds, const char *routine, const char *what, double value) {
    if (!holds && zorvs_error_type() < 3) finding(routine, what, value);
}
// A probability: in [0, 1], or NaN with a message (or from a NaN argument).
inline void probability(double p, const char *routine, bool nan_argument = false) {
    if (p >= 0 && p <= 1) return;
    if (std::isnan(p) && (nan_argument || zorvs_error_type() >= 3)) return;
    finding(routine, "probability outside [0, 1]", p);
}
// A call that failed (a type above 3 other than 6): its results, the
// caller's storage included, hold nothing to check.
inline bool failed() { return zorvs_error_type() > 3 && zorvs_error_type() != 6; }

// A result array: null only with a message of type 4 or above.
inline void result_or_failure(const void *r, const char *routine) {
    if (!r && zorvs_error_type() < 4) finding(routine, "no result and no failure", 0);
}

// The bytes as arguments; past the end every read gives 0.
class Input {
public:
    Input(const std::uint8_t *data, std::size_t size) : p_(data), n_(size) {}

    std::uint8_t byte() { return n_ ? (--n_, *p_++) : 0; }
    std::uint32_t word() {
        std::uint32_t w = 0;
        for (int i = 0; i < 4; ++i) w = w << 8 | byte();
        return w;
    }
    int pick(int n) { return n > 0 ? static_cast<int>(byte() % n) : 0; }
    bool one_in(int n) { return pick(n) == 0; }
    // A count from 0 to small, -1 now and then.
    int count(int small) { return one_in(16) ? -1 : pick(small + 1); }
    // An int of any size: the keyword values that are not array sizes.
    int any_int() {
        static const int awkward[] = {0, -1, 1, 2, 3, 100, INT_MAX, INT_MIN, 1000000};
        return one_in(4) ? awkward[pick(9)] : pick(64) - 8;
    }
    // Awkward reals, raw bit patterns, and ordinary values of either sign.
    double real() {
        static const double awkward[] = {NAN, INFINITY, -INFINITY, 0.0, -0.0, 1.0, -1.0, 0.5, 2.0, 1e-310,
                                         1e300, -1e300, 1e38, 3.5e38, 2147483648.0, 1e16, 100.0, 95.0, 0.01,
                                         1e-8, 4.9e-324};
        switch (pick(8)) {
            case 0: return awkward[pick(21)];
            case 1: {
                std::uint64_t bits = static_cast<std::uint64_t>(word()) << 32 | word();
                double d;
                std::memcpy(&d, &bits, sizeof d);
                return d;
            }
            case 2: return std::ldexp(static_cast<double>(word()) / 4294967296.0, pick(200) - 100);
            default: return (static_cast<int>(word() % 20001) - 10000) / 1000.0;
        }
    }
    // Data values from five bytes: a seed and a style (how often a value is
    // awkward, whether values are whole numbers), drawn by xorshift so that
    // the arrays leave the rest of the bytes to the calls' structure.
    template <class T>
    void fill(T *a, int n) {
        static const double awkward[] = {NAN, INFINITY, -INFINITY, 0.0, -0.0, 1e-310, 1e300, -1e300, 1e38, 3.5e38,
                                         1e16, 4.9e-324};
        std::uint64_t s = (static_cast<std::uint64_t>(word()) << 1) | 1;
        const int style = byte(), rare = 1 << (style & 7), whole = style & 8, spread = 1 + (style >> 4);
        for (int i = 0; i < n; ++i) {
            s ^= s >> 12, s ^= s << 25, s ^= s >> 27;
            const std::uint64_t r = s * 0x2545F4914F6CDD1Dull;
            if (static_cast<int>(r % 1024) < 1024 / rare / 8) a[i] = static_cast<T>(awkward[(r >> 10) % 12]);
            else if (whole) a[i] = static_cast<T>(static_cast<int>((r >> 20) % (2 * spread + 1)) - spread);
            else a[i] = static_cast<T>(static_cast<double>((r >> 11) % 2000001) / 1e6 - 1.0) * T(spread);
        }
    }
    void fill_ints(int *a, int n, int low, int high) {
        std::uint64_t s = (static_cast<std::uint64_t>(word()) << 1) | 1;
        const int width = high - low + 1;
        for (int i = 0; i < n; ++i) {
            s ^= s >> 12, s ^= s << 25, s ^= s >> 27;
            a[i] = low + static_cast<int>((s * 0x2545F4914F6CDD1Dull >> 33) % static_cast<std::uint64_t>(width));
        }
    }
    std::size_t left() const { return n_; }

private:
    const std::uint8_t *p_;
    std::size_t n_;
};

// Storage the arguments point into, large enough for every array the capped
// sizes describe (a target never passes a count beyond it).
template <class T>
struct Store {
    static constexpr int N = 1 << 15;
    T data[N];          // input values
    int ints[N];        // input index arrays: lags, groups, columns, orders
    T out[8][N];        // caller storage for results
    int int_out[4][N];  // caller storage for int results
    void *address[48];  // blocks a routine hands over
    T scalars[16];      // in-out reals (T *)
    int n_address = 0, n_out = 0, n_int_out = 0, n_scalar = 0;
    void reset() {
        n_address = n_out = n_int_out = n_scalar = 0;
        for (void *&a : address) a = nullptr;
    }
    bool holds(const void *r) const {
        const char *p = static_cast<const char *>(r), *self = reinterpret_cast<const char *>(this);
        return p >= self && p < self + sizeof *this;
    }
    // The blocks handed over through addresses: each the routine's own.
    void release() {
        for (int i = 0; i < 48; ++i) {
            if (holds(address[i])) finding("an output address", "set to caller storage, slot", i);
            std::free(address[i]);
            address[i] = nullptr;
        }
    }
    // A routine's result: freed unless it is caller storage from here.
    void free_result(void *r) {
        if (!holds(r)) std::free(r);
    }
};

// A keyword list under construction: the doubles and the ints and pointers
// apart (see the head of the file).
struct List {
    static constexpr int REALS = 6, WORDS = 40;
    double reals[8] = {};  // at most REALS used, the rest 0
    std::intptr_t words[WORDS] = {};
    int n_reals = 0, n_words = 0;
};

// Whether the list holds the keyword.
inline bool has(const List &l, int keyword) {
    for (int i = 0; i < l.n_words; ++i)
        if (l.words[i] == keyword) return true;
    return false;
}

// One keyword of a routine's menu and what follows it:
//   i  an int (a size, a count, an option), d  a dimension (-2 to 40),
//   r  a real, x  a T array of data, X  the same or null, n  an int array,
//   o  caller storage of T, k  caller storage of int, a  the address of a
//   pointer that receives a block, s  a T in-out scalar, f  a format,
//   l  labels.
struct Item {
    int keyword;
    const char *args;
};

inline const char *formats[] = {"%10.4W", "%5.1f", "%d", "%12.6w", "%g", "%40.30e", "%x", "", "%", "%-3.0W",
                                "%12.5e", "%200.100f", "%s", "%%", "%1.1W%1.1W"};
inline const char *label_texts[] = {"", "a", "two\nlines", "x\ny\nz", "a label that is too long for its field",
                                    "%d", "\t"};

template <class T>
class Builder {
public:
    Builder(Input &in, Store<T> &s) : in_(in), s_(s) {}

    // Up to `most` items drawn from the menu, now and then an unknown keyword.
    template <std::size_t M>
    List &from(const Item (&menu)[M], int most = 6) {
        const int items = in_.pick(most + 1);
        for (int i = 0; i < items; ++i) {
            if (in_.one_in(40)) {  // a keyword the routine does not know: (5, 11001)
                word(in_.one_in(2) ? 30000 + in_.pick(30000) : -1 - in_.pick(1000));
                continue;
            }
            add(menu[in_.pick(static_cast<int>(M))]);
        }
        return end();
    }
    void add(const Item &item) {
        int reals = 0, words = 1;
        for (const char *a = item.args; *a; ++a) (*a == 'r' ? reals : words) += 1;
        if (list_.n_reals + reals > List::REALS || list_.n_words + words + 1 > List::WORDS) return;
        word(item.keyword);
        for (const char *a = item.args; *a; ++a) argument(*a);
    }
    List &end() {
        word(0);
        // The list, for the report of a finding: ints and keywords, then reals.
        int at = std::snprintf(context, sizeof context, "list");
        for (int i = 0; i < list_.n_words && at < 200; ++i)
            at += std::snprintf(context + at, sizeof context - at, " %ld", static_cast<long>(list_.words[i] >> 48 ? -9 : list_.words[i]));
        for (int i = 0; i < list_.n_reals && at < 240; ++i)
            at += std::snprintf(context + at, sizeof context - at, " r%.3g", list_.reals[i]);
        return list_;
    }
    List &list() { return list_; }

private:
    void word(std::intptr_t w) { list_.words[list_.n_words++] = w; }
    void pointer(const void *p) { word(reinterpret_cast<std::intptr_t>(p)); }
    void argument(char kind) {
        switch (kind) {
            case 'i': word(in_.any_int()); break;
            case 'd': word(in_.pick(43) - 2); break;
            case 'r': list_.reals[list_.n_reals++] = in_.real(); break;
            case 'x': pointer(s_.data + in_.pick(64)); break;
            case 'X': pointer(in_.one_in(4) ? nullptr : s_.data + in_.pick(64)); break;
            case 'n': pointer(s_.ints + in_.pick(16)); break;
            case 'o': pointer(s_.out[s_.n_out++ % 8]); break;
            case 'k': pointer(s_.int_out[s_.n_int_out++ % 4]); break;
            case 'a': pointer(&s_.address[s_.n_address++ % 48]); break;
            case 's': {
                T *v = &s_.scalars[s_.n_scalar++ % 16];
                *v = static_cast<T>(in_.real());
                pointer(v);
                break;
            }
            case 'f': pointer(formats[in_.pick(15)]); break;
            case 'l': {
                static const char *labels[64];
                for (const char *&l : labels) l = label_texts[in_.pick(7)];
                pointer(labels);
                break;
            }
            default: std::abort();  // a menu written wrong
        }
    }
    Input &in_;
    Store<T> &s_;
    List list_;
};

namespace detail {
template <class... A>
constexpr int vector_registers_taken() {
    return (0 + ... + static_cast<int>(std::is_floating_point_v<A>));
}
template <class R, class... A, std::size_t... D, std::size_t... W>
R call(R (*f)(A..., ...), const List &l, std::index_sequence<D...>, std::index_sequence<W...>, A... a) {
    fresh();
    return f(a..., l.reals[D]..., l.words[W]...);
}
}  // namespace detail

// f(fixed..., keyword list) with no message on record before: the list's
// doubles fill the vector registers that the fixed arguments leave, then its
// ints and pointers follow.
template <class R, class... A>
R call(R (*f)(A..., ...), const List &l, std::type_identity_t<A>... a) {
    constexpr int free_vector = 8 - detail::vector_registers_taken<A...>();
    static_assert(free_vector >= List::REALS, "fixed reals leave too few vector registers");
    return detail::call<R, A...>(f, l, std::make_index_sequence<free_vector>(),
                                 std::make_index_sequence<List::WORDS>(), a...);
}

}  // namespace zorvs_fuzz

// The entry point of a target whose one<T>(Input &) fuzzes one twin: the
// first byte chooses float or double.
#define ZORVS_FUZZ_TWIN_TARGET(one)                                                  \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) { \
        zorvs_fuzz::quiet_library();                                                 \
        zorvs_fuzz::Input in(data, size);                                            \
        if (in.byte() & 1)                                                           \
            one<float>(in);                                                          \
        else                                                                         \
            one<double>(in);                                                         \
        return 0;                                                                    \
    }

#endif  // ZORVS_FUZZ_INPUT_HPP
