// stream.hpp - the shared uniform generator read one number at a time.
//
// A deviate routine that draws uniforms one at a time inside a rejection
// loop opens a source: the seed, the multiplier, the divisor and the twin's
// shuffle table are read once from the shared state into a local record, the
// states and their quotients are made ahead in small blocks, and each draw
// is an inline load from the block (and, for the shuffled forms, the swap
// with the table).  Closing writes back the state of the last number drawn,
// so numbers made ahead and not drawn leave no trace.  The numbers are bit
// for bit those of zorvs_f_r1uni / zorvs_d_r1uni called once per number:
// opening does the same first-call and table-filling work, and every state
// is the exact residue of the one-step recurrence.
//
// While a source is open nothing else may draw from the shared generator.
// The record has no destructor: a trap that leaves the routine skips only the
// write-back of the seed.
#ifndef ZORVS_RANDOM_STREAM_HPP
#define ZORVS_RANDOM_STREAM_HPP

#include <cstdint>

#include "random/random.h"

namespace zorvs {

// The modulus 2^31 - 1 of the generator.
constexpr uint64_t random_modulus = 2147483647u;

// (a*x) mod (2^31 - 1) for 0 < a, x < 2^31 - 1.  With p = a*x <= (2^31 - 2)^2
// written as p = h*2^31 + l (l < 2^31, h < 2^31 - 2), 2^31 == 1 gives
// p == h + l, and h + l < 2*(2^31 - 1), so one conditional subtraction
// finishes the residue.  This equals the split fmod evaluation of the
// generator, whose products are all exact in double: both are the residue
// of a*x.
inline uint64_t random_mulmod(uint64_t a, uint64_t x) {
    const uint64_t p = a * x;
    uint64_t r = (p & random_modulus) + (p >> 31);
    if (r >= random_modulus) r -= random_modulus;
    return r;
}

// Number of interleaved chains of the jump-ahead (see uniform.cpp).
constexpr int random_lanes = 4;

template <class T>
struct UniformSource {
    static constexpr int block = 256;
    uint64_t x;                     // state of the last number made
    uint64_t power[random_lanes];   // a, a^2, ... mod m
    double divisor;
    T *table;                       // the twin's shuffle table, null for the plain forms
    int pos;                        // next number of the block to draw
    int len;                        // numbers made in the block
    int next_len;                   // size of the next block: grows to `block`
    uint32_t xs[block];             // the states of the block
    T u[block];                     // their quotients x/divisor

    // The next number, as the uniform routine returns it.
    T next() {
        if (pos == len) refill();
        const int i = pos++;
        if (!table) return u[i];
        const unsigned k = xs[i] & 127u;  // fmod(x, 128)
        const T out = table[k];
        table[k] = u[i];
        return out;
    }
    void refill();
};

// Open: first-call work of the twin, filling of its shuffle table when the
// option is shuffled and the table is not ready, then the state into src.
void open_uniform_source(UniformSource<float> &src);
void open_uniform_source(UniformSource<double> &src);

// Close: the state of the last number drawn back into the shared record.
template <class T>
void close_uniform_source(const UniformSource<T> &src) {
    zorvs_random_common.seed = static_cast<double>(src.pos > 0 ? src.xs[src.pos - 1] : src.x);
}

}  // namespace zorvs

#endif  // ZORVS_RANDOM_STREAM_HPP
