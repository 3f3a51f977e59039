// fuzz_input.hpp - what every fuzz target shares: a reader that turns the
// fuzzer's bytes into arguments (counts, awkward reals, arrays), the storage
// the arguments point into, a keyword list built from a routine's menu of
// keywords with random values, the checks that make an impossible result a
// finding, and the entry point.  A target is a namespace zorvs_fuzz::NAME
// with one<T>(Input &, Store<T> &), closed by ZORVS_FUZZ_TARGET(NAME): that
// defines zorvs_fuzz_NAME(data, size), which the test program's corpus
// replay calls for each committed input, and, in the libFuzzer build
// (ZORVS_LIBFUZZER), LLVMFuzzerTestOneInput.
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
#include <type_traits>
#include <utility>

#include "frame/services.h"
#include "zorvstat.h"

// The twin of T of a routine: F(gamma) is zorvs_f_gamma for float.
#define F(name) ::zorvs_fuzz::twin<T>(zorvs_f_##name, zorvs_d_##name)

namespace zorvs_fuzz {

template <class T, class A, class B>
constexpr auto twin(A f, B d) {
    if constexpr (std::is_same_v<T, float>) return f;
    else return d;
}

// What a target writes down about the call under way, and the input's
// name (set by the replay), printed with a finding; the input itself
// replays the call.
inline char context[256];
inline const char *input_name = "";

// A finding: the routine returned what it may not.  abort() makes libFuzzer
// keep the input and fails the replay.
[[noreturn]] inline void finding(const char *routine, const char *what, double value) {
    std::fprintf(stderr, "FINDING %s: %s (%.17g), error type %d code %d; %s; input %s\n", routine, what, value,
                 zorvs_error_type(), zorvs_error_code(), context, input_name);
    std::abort();
}
// A value that must hold, unless the call left a message of type 3 or above.
inline void require(bool holds, const char *routine, const char *what, double value) {
    if (!holds && zorvs_error_type() < 3) finding(routine, what, value);
}
// A probability: in [0, 1], or NaN with a message (or from a NaN argument).
inline void probability(double p, const char *routine, bool nan_argument = false) {
    if (!(p >= 0 && p <= 1) && !(std::isnan(p) && (nan_argument || zorvs_error_type() >= 3)))
        finding(routine, "probability outside [0, 1]", p);
}
// A call that failed (a type above 3 other than 6, a note): its results,
// the caller's storage included, hold nothing to check.
inline bool failed() { return zorvs_error_type() > 3 && zorvs_error_type() != 6; }
// A result array: null only with a message of type 4 or above.
inline void result_or_failure(const void *r, const char *routine) {
    if (!r && zorvs_error_type() < 4) finding(routine, "no result and no failure", 0);
}
// Each element of a result passes `in_support`, unless the call failed.
template <class V, class P>
void each(const V *r, int n, P in_support, const char *routine, const char *what) {
    for (int i = 0; r && !failed() && i < n; ++i) require(in_support(r[i]), routine, what, double(r[i]));
}

// Awkward reals of the arguments, and of the arrays (fewer).
inline const double awkward[] = {NAN, INFINITY, -INFINITY, 0.0, -0.0, 1.0, -1.0, 0.5, 2.0, 1e-310, 1e300, -1e300, 1e38,
                                 3.5e38, 2147483648.0, 1e16, 100.0, 95.0, 0.01, 1e-8, 4.9e-324};
inline const double awkward_data[] = {NAN, INFINITY, -INFINITY, 0.0, -0.0, 1e-310, 1e300, -1e300, 1e38, 3.5e38, 1e16,
                                      4.9e-324};

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
        static const int odd[] = {0, -1, 1, 2, 3, 100, INT_MAX, INT_MIN, 1000000};
        return one_in(4) ? odd[pick(9)] : pick(64) - 8;
    }
    // Awkward reals, raw bit patterns, and ordinary values of either sign.
    // (Each read a statement of its own: the corpus was made by clang, which
    // reads the operands of one expression left to right; GCC need not.)
    double real() {
        switch (pick(8)) {
            case 0: return awkward[pick(21)];
            case 1: {
                std::uint64_t bits = word();
                bits = bits << 32 | word();
                double d;
                std::memcpy(&d, &bits, sizeof d);
                return d;
            }
            case 2: {
                const double fraction = word() / 4294967296.0;
                return std::ldexp(fraction, pick(200) - 100);
            }
            default: return (static_cast<int>(word() % 20001) - 10000) / 1000.0;
        }
    }
    // Data values from five bytes: a seed and a style (how often a value is
    // awkward, whether values are whole numbers), drawn by xorshift so that
    // the arrays leave the rest of the bytes to the calls' structure.
    template <class V>
    void fill(V *a, int n) {
        std::uint64_t s = std::uint64_t(word()) << 1 | 1;
        const int style = byte(), rare = 1 << (style & 7), whole = style & 8, spread = 1 + (style >> 4);
        for (int i = 0; i < n; ++i) {
            s ^= s >> 12, s ^= s << 25, s ^= s >> 27;
            const std::uint64_t r = s * 0x2545F4914F6CDD1Dull;
            if (static_cast<int>(r % 1024) < 1024 / rare / 8) a[i] = static_cast<V>(awkward_data[(r >> 10) % 12]);
            else if (whole) a[i] = static_cast<V>(static_cast<int>((r >> 20) % (2 * spread + 1)) - spread);
            else a[i] = static_cast<V>(static_cast<double>((r >> 11) % 2000001) / 1e6 - 1.0) * V(spread);
        }
    }
    void fill_ints(int *a, int n, int low, int high) {
        std::uint64_t s = std::uint64_t(word()) << 1 | 1;
        for (int i = 0; i < n; ++i) {
            s ^= s >> 12, s ^= s << 25, s ^= s >> 27;
            a[i] = low + static_cast<int>((s * 0x2545F4914F6CDD1Dull >> 33) % std::uint64_t(high - low + 1));
        }
    }

private:
    const std::uint8_t *p_;
    std::size_t n_;
};

// The results of an input's calls (at most a few), freed after it.
inline const void *results[8];
inline int n_results = 0;

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
    bool finite(int n) const { return std::all_of(data, data + n, [](T v) { return std::isfinite(v); }); }
    bool holds(const void *r) const {
        const char *p = static_cast<const char *>(r), *self = reinterpret_cast<const char *>(this);
        return p >= self && p < self + sizeof *this;
    }
    // After an input: the blocks handed over through addresses, each the
    // routine's own, and the results of its calls that are not caller
    // storage from here, freed.
    void release() {
        for (int i = 0; i < 48; ++i) {
            if (holds(address[i])) finding("an output address", "set to caller storage, slot", i);
            std::free(address[i]);
            address[i] = nullptr;
        }
        for (int i = 0; i < std::min(n_results, 8); ++i)
            if (!holds(results[i])) std::free(const_cast<void *>(results[i]));
        n_address = n_out = n_int_out = n_scalar = n_results = 0;
    }
};
template <class T>
inline Store<T> store;

// A keyword list: the doubles and the ints and pointers apart (see the head
// of the file).
struct List {
    static constexpr int REALS = 6, WORDS = 40;
    double reals[8] = {};  // at most REALS used, the rest 0
    std::intptr_t words[WORDS] = {};
    int n_reals = 0, n_words = 0;
    bool has(int keyword) const { return std::find(words, words + n_words, keyword) != words + n_words; }
};

// One keyword of a routine's menu and what follows it:
//   i  an int (a size, a count, an option), d  a dimension (-2 to 40),
//   r  a real, x  a T array of data, X  the same or null, n  an int array,
//   o  caller storage of T, k  caller storage of int, a  the address of a
//   pointer that receives a block, s  a T in-out scalar, f  a format,
//   l  labels.
struct Item { int keyword; const char *args; };

inline const char *formats[] = {"%10.4W", "%5.1f", "%d", "%12.6w", "%g", "%40.30e", "%x", "", "%", "%-3.0W",
                                "%12.5e", "%200.100f", "%s", "%%", "%1.1W%1.1W"};
inline const char *label_texts[] = {"", "a", "two\nlines", "x\ny\nz", "a label that is too long for its field",
                                    "%d", "\t"};

template <class T>
class Builder {
public:
    Builder(Input &in, Store<T> &s) : in_(in), s_(s) {}
    // Up to `most` items drawn from the menu, now and then a keyword the
    // routine does not know: (5, 11001).
    template <std::size_t M>
    List &from(const Item (&menu)[M], int most = 6) {
        for (int i = in_.pick(most + 1); i > 0; --i)
            if (in_.one_in(40)) word(in_.one_in(2) ? 30000 + in_.pick(30000) : -1 - in_.pick(1000));
            else add(menu[in_.pick(static_cast<int>(M))]);
        word(0);
        return l_;
    }
    void add(const Item &item) {
        const int reals = int(std::count(item.args, item.args + std::strlen(item.args), 'r'));
        const int words = 1 + int(std::strlen(item.args)) - reals;
        if (l_.n_reals + reals > List::REALS || l_.n_words + words + 1 > List::WORDS) return;
        word(item.keyword);
        for (const char *a = item.args; *a; ++a) argument(*a);
    }

private:
    void word(std::intptr_t w) { l_.words[l_.n_words++] = w; }
    void pointer(const void *p) { word(reinterpret_cast<std::intptr_t>(p)); }
    void argument(char kind) {
        static const char *labels[64];
        switch (kind) {
            case 'i': return word(in_.any_int());
            case 'd': return word(in_.pick(43) - 2);
            case 'r': l_.reals[l_.n_reals++] = in_.real(); return;
            case 'x': return pointer(s_.data + in_.pick(64));
            case 'X': return pointer(in_.one_in(4) ? nullptr : s_.data + in_.pick(64));
            case 'n': return pointer(s_.ints + in_.pick(16));
            case 'o': return pointer(s_.out[s_.n_out++ % 8]);
            case 'k': return pointer(s_.int_out[s_.n_int_out++ % 4]);
            case 'a': return pointer(&s_.address[s_.n_address++ % 48]);
            case 's': return pointer(&(s_.scalars[s_.n_scalar++ % 16] = static_cast<T>(in_.real())));
            case 'f': return pointer(formats[in_.pick(15)]);
            case 'l':
                for (const char *&l : labels) l = label_texts[in_.pick(7)];
                return pointer(labels);
            default: std::abort();  // a menu written wrong
        }
    }
    Input &in_;
    Store<T> &s_;
    List l_;
};

template <class P>
P *kept(P *r) {
    results[n_results++ % 8] = r;
    return r;
}
template <class R, class... A, std::size_t... D, std::size_t... W>
R call_list(R (*f)(A..., ...), const List &l, std::index_sequence<D...>, std::index_sequence<W...>, A... a) {
    zorvs_e1mes(0, 0, nullptr);  // no message on record: the error type is this call's
    if constexpr (std::is_pointer_v<R>) return kept(f(a..., l.reals[D]..., l.words[W]...));
    else return f(a..., l.reals[D]..., l.words[W]...);
}
// f(fixed..., keyword list) with no message on record before: the list's
// doubles fill the vector registers that the fixed arguments leave, then its
// ints and pointers follow.  A pointer it returns is freed after the input.
template <class R, class... A>
R call(R (*f)(A..., ...), const List &l, std::type_identity_t<A>... a) {
    constexpr int free_vector = 8 - (0 + ... + int(std::is_floating_point_v<A>));
    static_assert(free_vector >= List::REALS, "fixed reals leave too few vector registers");
    return call_list<R, A...>(f, l, std::make_index_sequence<free_vector>(), std::make_index_sequence<List::WORDS>(),
                              a...);
}

// One input: no message on record, the first byte chooses float or double.
// Under libFuzzer the library's stops go off and its units to /dev/null
// first (the replay sets them around the whole corpus).
inline int run(const std::uint8_t *data, std::size_t size, void (*single)(Input &, Store<float> &),
               void (*twice)(Input &, Store<double> &)) {
#ifdef ZORVS_LIBFUZZER
    static FILE *const null = std::fopen("/dev/null", "w");
    zorvs_error_options(ZORVS_SET_STOP, 4, 0, ZORVS_SET_STOP, 5, 0, 0);
    zorvs_output_file(ZORVS_SET_ERROR_FILE, null, ZORVS_SET_OUTPUT_FILE, null, 0);
#endif
    zorvs_e1mes(0, 0, nullptr);
    Input in(data, size);
    if (in.byte() & 1) single(in, store<float>), store<float>.release();
    else twice(in, store<double>), store<double>.release();
    return 0;
}

}  // namespace zorvs_fuzz

// The entry point zorvs_fuzz_NAME of target NAME (libfuzzer_main.cpp makes
// it LLVMFuzzerTestOneInput in the libFuzzer build).
#define ZORVS_FUZZ_TARGET(name)                                                                    \
    int zorvs_fuzz_##name(const std::uint8_t *d, std::size_t n) {                                  \
        return zorvs_fuzz::run(d, n, zorvs_fuzz::name::one<float>, zorvs_fuzz::name::one<double>); \
    }

#endif  // ZORVS_FUZZ_INPUT_HPP
