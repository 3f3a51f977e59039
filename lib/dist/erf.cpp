// erf.cpp - the error function and its complement, after Fullerton's FNLIB
// (erf, erfc; Los Alamos 1977).
//
// |x| <= 1: erf(x) = x (1 + c(2x^2 - 1)) with the Chebyshev series erfcs.
// |x| > 1: erfc(x) = exp(-x^2)/|x| (0.5 + c(t)) with the series erc2cs on
// 1 < x^2 <= 4 (t = (8/x^2 - 5)/3) and erfccs on x^2 > 4 (t = 8/x^2 - 1),
// which keeps full relative accuracy far into the upper tail; for x < 0,
// erfc(x) = 2 - erfc(-x).  erf(x) = 1 - erfc(x) above 1.
#include "dist/special_detail.hpp"

namespace zorvs::special {

template <class T>
void erfc_first_use() {
    ErfcBounds<T> &c = lv_erfc_bounds<T>;
    if (c.nterf != 0) return;
    const T u = half_epsilon<T>(), s = smallest<T>();
    const float eta = static_cast<float>(T(0.1) * u);
    c.nterfc = initds_checked(lv_erfccs<T>.c, 59, eta);
    c.nterc2 = initds_checked(lv_erc2cs<T>.c, 49, eta);
    c.xsml = -std::sqrt(-std::log(T(sqrtpi) * u));
    const T r = std::sqrt(-std::log(T(sqrtpi) * s));
    c.xmax = r - T(0.5) * std::log(r) / r - T(0.01);
    c.sqeps = std::sqrt(2 * u);
    c.nterf = initds_checked(lv_erfcs<T>.c, 21, eta);
}

template void erfc_first_use<float>();
template void erfc_first_use<double>();

namespace {

// First-use bounds of erf; nterf = 0 means not yet worked out.
template <class T>
struct ErfBounds {
    int nterf;
    T xbig;   // above it erf is +-1 to working precision
    T sqeps;  // below it erf is 2x/sqrt(pi)
};
template <class T>
constinit thread_local ErfBounds<T> lv_erf_bounds{};

template <class T>
T l_erf(T x) {
    ErfBounds<T> &e = lv_erf_bounds<T>;
    if (e.nterf == 0) {
        const T u = half_epsilon<T>();
        e.xbig = std::sqrt(-std::log(T(sqrtpi) * u));
        e.sqeps = std::sqrt(2 * u);
        e.nterf = initds_checked(lv_erfcs<T>.c, 21, static_cast<float>(T(0.1) * u));
    }
    const T y = std::fabs(x);
    if (std::isnan(y)) return x;  // a missing argument stays missing
    if (y <= 1) {
        if (y <= e.sqeps) return 2 * x / T(sqrtpi);
        return x * (1 + clenshaw_split_expecting<erfcs_terms<T>>(2 * x * x - 1, lv_erfcs<T>.c, e.nterf));
    }
    if (y <= e.xbig) {
        bool underflow = false;
        return std::copysign(1 - erfc_core(y, &underflow), x);
    }
    return std::copysign(T(1), x);
}

template <class T>
T l_erfc(T x) {
    bool underflow = false;
    const T value = erfc_core(x, &underflow);
    if (underflow) raise(2, 9015, x, lv_erfc_bounds<T>.xmax);
    return value;
}

}  // namespace
}  // namespace zorvs::special

extern "C" float zorvs_f_erf(float x) { ZORVS_VALUE_ENTRY(zorvs::special::l_erf(x)); }
extern "C" double zorvs_d_erf(double x) { ZORVS_VALUE_ENTRY(zorvs::special::l_erf(x)); }
extern "C" float zorvs_f_erfc(float x) { ZORVS_VALUE_ENTRY(zorvs::special::l_erfc(x)); }
extern "C" double zorvs_d_erfc(double x) { ZORVS_VALUE_ENTRY(zorvs::special::l_erfc(x)); }
