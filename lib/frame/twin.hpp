// twin.hpp - what tells the float and the double twin of a routine apart:
// the constants of the real type and the choice of a value by type.
//
// The constants are those of zorvs_f_machine / zorvs_d_machine (indices 1 to
// 4, 6 and 7), worked out at compile time from std::numeric_limits, so that a
// body reads them without a call and without a frame.  The missing value is
// the one exception: it is the library's own NaN with every mantissa bit set
// (0x7FFFFFFF, 0x7FFFFFFFFFFFFFFF), not the quiet NaN of numeric_limits, so
// that results keep the bit pattern the machine table gives out.
#ifndef ZORVS_FRAME_TWIN_HPP
#define ZORVS_FRAME_TWIN_HPP

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace zorvs {

// The smallest positive normal number (index 1).
template <class T>
constexpr T smallest() {
    return std::numeric_limits<T>::min();
}
// The largest finite number (index 2).
template <class T>
constexpr T largest() {
    return std::numeric_limits<T>::max();
}
// 2^-digits: the unit roundoff, half the spacing above 1 (index 3).
template <class T>
constexpr T half_epsilon() {
    return std::numeric_limits<T>::epsilon() / 2;
}
// The spacing of the numbers above 1: 2^-23, 2^-52 (index 4).
template <class T>
constexpr T epsilon() {
    return std::numeric_limits<T>::epsilon();
}
// +infinity (index 7).
template <class T>
constexpr T infinity() {
    return std::numeric_limits<T>::infinity();
}

// The library's missing value (index 6): every bit but the sign set.
template <class T>
constexpr T missing() {
    static_assert(std::numeric_limits<T>::is_iec559);
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    return std::bit_cast<T>(static_cast<Bits>(~Bits{0} >> 1));
}
// The NaN test, widened to double.
template <class T>
bool is_missing(T x) {
    return std::isnan(static_cast<double>(x));
}

// A value chosen by the twin: by_type<T>(single, dbl) for float and double,
// the third for int.  It names the routine of a twin,
// by_type<T>("zorvs_f_x", "zorvs_d_x"), and carries the few settings that
// differ by precision without being a machine constant.
template <class T, class V>
constexpr V by_type(V single, V dbl, V integer = V{}) {
    if constexpr (std::is_same_v<T, float>)
        return single;
    else if constexpr (std::is_same_v<T, double>)
        return dbl;
    else
        return integer;
}

}  // namespace zorvs

#endif  // ZORVS_FRAME_TWIN_HPP
