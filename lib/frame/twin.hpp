// twin.hpp - what tells the float and the double twin of a routine apart:
// the constants of the real type, the choice of a value by type, and one
// overloaded name for a pair of C routines of the two twins.
//
// The constants are those of zorvs_f_machine / zorvs_d_machine (index 1 the
// smallest positive normal number, 2 the largest finite one, 3 half the
// spacing above 1, 4 that spacing, 6 the missing value, 7 infinity), worked
// out at compile time from std::numeric_limits, so that a body reads them
// without a call and without a frame; machine.cpp checks them against its
// table.  The missing value is the one exception: it is the library's own
// NaN with every mantissa bit set (0x7FFFFFFF, 0x7FFFFFFFFFFFFFFF), not the
// quiet NaN of numeric_limits, so that results keep the bit pattern the
// machine table gives out.
#ifndef ZORVS_FRAME_TWIN_HPP
#define ZORVS_FRAME_TWIN_HPP

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace zorvs {

// The constants by their index in the machine table.
template <class T> constexpr T smallest() { return std::numeric_limits<T>::min(); }              // 1
template <class T> constexpr T largest() { return std::numeric_limits<T>::max(); }               // 2
template <class T> constexpr T half_epsilon() { return std::numeric_limits<T>::epsilon() / 2; }  // 3
template <class T> constexpr T epsilon() { return std::numeric_limits<T>::epsilon(); }           // 4
template <class T> constexpr T infinity() { return std::numeric_limits<T>::infinity(); }         // 7

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
// Index from 0 of the first NaN among x[0], ..., x[n - 1]; -1 if there is
// none or n is below 1.
template <class T>
int first_missing(int n, const T *x) {
    for (int i = 0; i < n; ++i)
        if (is_missing(x[i])) return i;
    return -1;
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

// One name for the C routines of both twins: calling it calls the routine
// whose parameter list the arguments match, exactly as a pair of overloads
// would, so a template body names one routine for float and double:
//     inline constexpr Twins<zorvs_f_normal_cdf, zorvs_d_normal_cdf> normal_cdf{};
// The routines are template arguments: the call is a direct call.
template <auto Single, auto Double, class = decltype(Single), class = decltype(Double)>
struct Twins;
template <auto Single, auto Double, class RS, class... PS, class RD, class... PD>
struct Twins<Single, Double, RS (*)(PS...), RD (*)(PD...)> {
    RS operator()(PS... args) const { return Single(args...); }
    RD operator()(PD... args) const { return Double(args...); }
};

}  // namespace zorvs

#endif  // ZORVS_FRAME_TWIN_HPP
