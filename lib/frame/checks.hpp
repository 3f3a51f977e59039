// checks.hpp - the real argument checks and the safe arithmetic of checks.h
// as one overloaded name for both twins, so that a template body calls
// zorvs::check::c1div(a, b, &r) and the argument type picks zorvs_c1div or
// zorvs_dc1div.  Each name calls the C routine itself, frame and messages
// included; the integer checks have one C name and need none.
#ifndef ZORVS_FRAME_CHECKS_HPP
#define ZORVS_FRAME_CHECKS_HPP

#include "frame/checks.h"
#include "frame/twin.hpp"

namespace zorvs::check {

inline constexpr Twins<zorvs_c1ge0, zorvs_dc1ge0> c1ge0{};

// a / b with NaN, infinities and 0 where a plain division would trap or
// mislead; divide gives the quotient as a value.
inline constexpr Twins<zorvs_c1div, zorvs_dc1div> c1div{};
template <class T>
T divide(T a, T b) {
    T result;
    c1div(a, b, &result);
    return result;
}

inline constexpr Twins<zorvs_c1cip, zorvs_dc1cip> c1cip{};
inline constexpr Twins<zorvs_c1r, zorvs_dc1r> c1r{};
inline constexpr Twins<zorvs_c1wfr, zorvs_dc1wfr> c1wfr{};

// Frequency f and weight w of observation i (from 0) by the frequency
// reader c1wfr: 1.0 for an array not given.  Returns the reader's
// status: 0 use the observation, 1 zero frequency (skip silently), 2 a
// missing frequency or weight (skip, and counted in *n_missing unless it is
// null), 3 a negative one, raised as (4, 11054) or (4, 11056) with
// i1 = first_row + i + 1 (first_row: the rows before this block of data).
template <class T>
int frequency_and_weight(const T *frequencies, const T *weights, long i, T &f, T &w, int *n_missing,
                         long first_row = 0) {
    f = T(1);
    w = T(1);
    if (!frequencies && !weights) return 0;
    T row[2];
    int ifrq = 0, iwt = 0, n = 0, nmiss = 0, status = 0;
    if (frequencies) {
        row[n++] = frequencies[i];
        ifrq = n;
    }
    if (weights) {
        row[n++] = weights[i];
        iwt = n;
    }
    zorvs::check::c1wfr(1, static_cast<int>(first_row + i + 1), row, 1, 1, 1, ifrq, iwt, 0, &nmiss, &f, &w, &status);
    if (status == 2 && n_missing) ++*n_missing;
    return status;
}

}  // namespace zorvs::check

#endif  // ZORVS_FRAME_CHECKS_HPP
