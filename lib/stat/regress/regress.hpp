// regress.hpp - the workers of regress.h as one overloaded name for both
// twins: zorvs::regress::grglm is zorvs_grglm for float and zorvs_dgrglm for
// double.  Each name calls the C routine itself, frame and messages included.
#ifndef ZORVS_STAT_REGRESS_REGRESS_HPP
#define ZORVS_STAT_REGRESS_REGRESS_HPP

#include "frame/frame.hpp"
#include "frame/twin.hpp"
#include "stat/regress/regress.h"

namespace zorvs::regress {

inline constexpr Twins<zorvs_grglm, zorvs_dgrglm> grglm{};
inline constexpr Twins<zorvs_g1aov, zorvs_dg1aov> g1aov{};
inline constexpr Twins<zorvs_rcovb, zorvs_drcovb> rcovb{};
inline constexpr Twins<zorvs_s1msq, zorvs_ds1msq> s1msq{};

// The caller's array of an output pair, read from the keyword list; a null
// one is refused with (5, 104), l1 = the output's short name, l2 = keyword.
template <class T>
void take_user_array(KeywordReader &kw, OutputPair<T> &out, const char *short_name, const char *keyword) {
    T *p = kw.pointer<T>();
    out.take_user(p);
    if (!p) {
        zorvs_e1stl(1, short_name);
        zorvs_e1stl(2, keyword);
        zorvs_ermes(5, 104);
    }
}

// Has the routine on top of the error stack failed: a type above 3 of its
// own, other than an immediate warning (6)?  A clean call of a worker clears
// the latest-event record, not the frame's own type.
inline bool failed_here() {
    const int type = error_stack.top()->type;
    return type > 3 && type != 6;
}

}  // namespace zorvs::regress

#endif  // ZORVS_STAT_REGRESS_REGRESS_HPP
