// beta_incomplete.cpp - the regularised incomplete beta ratio I_x(a, b).
//
// Fullerton's FNLIB method (after Bosten and Battiste, remark on algorithm
// 179, CACM 17 (1974) 156): with the arguments exchanged so that the series
// converges fast (y = 1 - x, a <-> b when x >= 0.2 unless b <= a and
// x < 0.8), I_y(p, q) is the sum of an infinite series in y for the
// fractional part ps of q,
//   y^p / (p B(ps, p)) * (1 + p sum_i (1-ps)_i y^i / (i! (p+i))),
// and a finite sum of int(q) terms y^p (1-y)^(q-i) / (q B(p, q)) ... built by
// recurrence, with a scale counter that keeps single terms from underflow.
// The underflow threshold of the first term is 0.95 log(smallest), a little
// inside the range, so that exp() of it never lands among the subnormals.
#include <algorithm>
#include <cmath>

#include "dist/continuous_support.hpp"

namespace {

namespace zc = zorvs::continuous;

template <class T>
struct BetaConstants {
    T eps = 0, alneps = 0, sml = 0, alnsml = 0;
};
template <class T>
BetaConstants<T> lv_beta_constants;

template <class T>
T l_beta_incomplete(T x, T a, T b) {
    BetaConstants<T> &k = lv_beta_constants<T>;
    if (k.eps == 0) {
        k.eps = zc::epsilon<T>() / 2;
        k.alneps = std::log(k.eps);
        k.sml = zc::smallest<T>();
        k.alnsml = T(0.95) * std::log(k.sml);
    }
    bool bad = false;
    if (!(x >= 0 && x <= 1)) {
        zorvs_e1stl(1, "x");
        zc::raise_reals(5, 120, 0, 1, x);
        bad = true;
    }
    if (!(a > 0) || !(b > 0)) {
        zc::raise_reals(5, 9031, a, b);
        bad = true;
    }
    if (bad) return zc::nan<T>();

    T y = x, p = a, q = b;
    bool swapped = false;
    if (!(b <= a && x < T(0.8)) && x >= T(0.2)) {
        y = 1 - x;
        p = b;
        q = a;
        swapped = true;
    }

    if ((p + q) * y / (p + 1) < k.eps) {
        T r = 0;
        T xb = p * std::log(std::max(y, k.sml)) - std::log(p) - zc::log_beta<T>(p, q);
        if (xb > k.alnsml && y != 0) r = std::exp(xb);
        return swapped ? 1 - r : r;
    }

    // The infinite sum in y for the fractional part of q.
    T ps = q - std::trunc(q);
    if (ps == 0) ps = 1;
    T xb = p * std::log(y) - zc::log_beta<T>(ps, p) - std::log(p);
    T s = 0;
    if (xb >= k.alnsml) {
        s = std::exp(xb);
        T term = s * p;
        if (ps != 1) {
            int n = static_cast<int>(std::max(k.alneps / std::log(y), T(4)));
            for (int i = 1; i <= n; ++i) {
                T xi = static_cast<T>(i);
                term = term * (xi - ps) * y / xi;
                s += term / (p + xi);
            }
        }
    }

    // The finite sum for the integer part of q.
    if (q > 1) {
        xb = p * std::log(y) + q * std::log(1 - y) - zc::log_beta<T>(p, q) - std::log(q);
        int ib = static_cast<int>(std::max(xb / k.alnsml, T(0)));
        T term = std::exp(xb - static_cast<T>(ib) * k.alnsml);
        T c = 1 / (1 - y);
        T p1 = q * c / (p + q - 1);
        T fin = 0;
        int n = static_cast<int>(q);
        if (q == static_cast<T>(n)) --n;
        for (int i = 1; i <= n; ++i) {
            if (p1 <= 1 && term / k.eps <= fin) break;
            T xi = static_cast<T>(i);
            term = (q - xi + 1) * c * term / (p + q - xi);
            if (term > 1) {
                --ib;
                term *= k.sml;
            }
            if (ib == 0) fin += term;
        }
        s += fin;
    }
    if (swapped) s = 1 - s;
    return std::clamp(s, T(0), T(1));
}

}  // namespace

extern "C" {

float zorvs_f_beta_incomplete(float x, float a, float b) {
    return zorvs::value_routine("zorvs_f_beta_incomplete", [&] { return l_beta_incomplete<float>(x, a, b); });
}
double zorvs_d_beta_incomplete(double x, double a, double b) {
    return zorvs::value_routine("zorvs_d_beta_incomplete", [&] { return l_beta_incomplete<double>(x, a, b); });
}

}  // extern "C"
