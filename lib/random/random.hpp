// random.hpp - what the deviate routines share: the generators they build
// on, as one overloaded name for both twins (zorvs::random::uniforms(n, r)
// is zorvs_f_r1uni for a float array and zorvs_d_r1uni for a double one, so
// that both continue the one shared stream exactly as the C names do), and
// the reading of a generator's keyword list.
#ifndef ZORVS_RANDOM_RANDOM_HPP
#define ZORVS_RANDOM_RANDOM_HPP

#include "frame/frame.hpp"
#include "frame/twin.hpp"
#include "random/random.h"
#include "zorvstat.h"

namespace zorvs::random {

// n uniforms into r, without the keyword frame (n >= 1).
inline constexpr Twins<zorvs_f_r1uni, zorvs_d_r1uni> uniforms{};

// n standard normal deviates into the caller's r, through the public
// routine and its frame (ZORVS_RETURN_USER).
inline void normals(int n, float r[]) { zorvs_f_random_normal(n, ZORVS_RETURN_USER, r, 0); }
inline void normals(int n, double r[]) { zorvs_d_random_normal(n, ZORVS_RETURN_USER, r, 0); }

// The keyword list of a generator, which knows ZORVS_RETURN_USER alone:
// its array becomes the result and user is set.  An unknown keyword is
// reported (5, 11001) and leaves the result null; the answer is then false
// and the body returns at once.
template <class T>
bool read_keywords(KeywordReader &kw, T *&result, bool &user) {
    user = false;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        if (k != ZORVS_RETURN_USER) {
            kw.unknown(k);
            result = nullptr;
            return false;
        }
        result = kw.pointer<T>();
        user = true;
    }
    return true;
}

}  // namespace zorvs::random

#endif  // ZORVS_RANDOM_RANDOM_HPP
