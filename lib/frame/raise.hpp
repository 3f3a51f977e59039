// raise.hpp - raising a message together with its parameters.
#ifndef ZORVS_FRAME_RAISE_HPP
#define ZORVS_FRAME_RAISE_HPP

#include <type_traits>

#include "frame/services.h"

namespace zorvs {

// Store the parameters, then raise (type, code): the integers as i1, i2, ...
// and the reals as r1, r2, ..., each kind numbered in its own order.  A float
// is widened to double exactly, as zorvs_e1str takes it; a real parameter
// that is a whole number is written as a real (0.0, not 0).
template <class... Params>
void raise(int type, int code, Params... params) {
    static_assert(((std::is_integral_v<Params> || std::is_floating_point_v<Params>) && ...));
    [[maybe_unused]] int integers = 0, reals = 0;
    ([&] {
        if constexpr (std::is_integral_v<Params>) zorvs_e1sti(++integers, params);
        else zorvs_e1str(++reals, static_cast<double>(params));
    }(), ...);
    zorvs_ermes(type, code);
}

}  // namespace zorvs

#endif  // ZORVS_FRAME_RAISE_HPP
