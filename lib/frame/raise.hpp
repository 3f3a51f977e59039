// raise.hpp - raising a message whose parameters are reals.
#ifndef ZORVS_FRAME_RAISE_HPP
#define ZORVS_FRAME_RAISE_HPP

#include "frame/services.h"

namespace zorvs {

// Store the reals as r1, r2, ... in order, then raise (type, code).  A float
// argument is widened to double exactly, as zorvs_e1str takes it.
template <class... Reals>
void raise(int type, int code, Reals... reals) {
    [[maybe_unused]] int slot = 0;
    (zorvs_e1str(++slot, static_cast<double>(reals)), ...);
    zorvs_ermes(type, code);
}

}  // namespace zorvs

#endif  // ZORVS_FRAME_RAISE_HPP
