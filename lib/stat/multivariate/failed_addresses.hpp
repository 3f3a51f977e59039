// failed_addresses.hpp - the multivariate routines null the pointers given
// with ZORVS_X when the call fails, where the frame's pop leaves them
// unwritten; a trap leaves them unwritten as the pop does.
#ifndef ZORVS_MULTIVARIATE_FAILED_ADDRESSES_HPP
#define ZORVS_MULTIVARIATE_FAILED_ADDRESSES_HPP

#include "frame/frame.hpp"

namespace zorvs {

// After the body: if the call failed (a type above 3 at the routine's
// level), write null through each address given; null addresses are skipped.
template <class... P>
void null_failed_addresses(P **...addresses) {
    if (zorvs_error_n1rty[0] < 4) return;
    ((addresses ? static_cast<void>(*addresses = nullptr) : static_cast<void>(0)), ...);
}

}  // namespace zorvs

#endif  // ZORVS_MULTIVARIATE_FAILED_ADDRESSES_HPP
