// regress.hpp - the workers of regress.h as one overloaded name for both
// twins: zorvs::regress::grglm is zorvs_grglm for float and zorvs_dgrglm for
// double.  Each name calls the C routine itself, frame and messages included.
#ifndef ZORVS_STAT_REGRESS_REGRESS_HPP
#define ZORVS_STAT_REGRESS_REGRESS_HPP

#include "frame/twin.hpp"
#include "stat/regress/regress.h"

namespace zorvs::regress {

inline constexpr Twins<zorvs_grglm, zorvs_dgrglm> grglm{};
inline constexpr Twins<zorvs_g1aov, zorvs_dg1aov> g1aov{};
inline constexpr Twins<zorvs_rcovb, zorvs_drcovb> rcovb{};
inline constexpr Twins<zorvs_s1msq, zorvs_ds1msq> s1msq{};

}  // namespace zorvs::regress

#endif  // ZORVS_STAT_REGRESS_REGRESS_HPP
