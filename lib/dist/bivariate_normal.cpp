// bivariate_normal.cpp - the bivariate normal distribution function of two
// unit normals with correlation rho, through Owen's T function:
//
//   P(X <= x, Y <= y) = (Phi(x) + Phi(y))/2 - T(x, ax) - T(y, ay) - [corr]
//   with ax = (y/x - rho)/sqrt(1 - rho^2), ay = (x/y - rho)/sqrt(1 - rho^2),
//
// Owen (1956), "Tables for computing bivariate normal probabilities", Ann.
// Math. Statist. 27, 1075-1090.  T(h, a) is summed from Owen's series in
// powers of a^2 and h^2/2 (Owen 1956, eq. 2.6), whose terms are built by
// recurrence until they fall below the working precision; a vanishing
// h or a and a very large a are handled in closed form, and a large a h
// with a > 1 by Owen's identity that exchanges h and a h.
#include "dist/special_detail.hpp"

namespace {
using namespace zorvs::special;

// First-use constants of Owen's T in each twin.
template <class T>
struct OwenConstants {
    T twopi;     // four times asin(1)
    T rtwopi;    // 1/(2 pi)
    T eps;       // spacing above 1
    T lim;       // -log(smallest) - eps: above it exp(-h^2/2) underflows
    T big;       // largest^(1/4)
    T bigbylog;  // big / log(big): above it a counts as infinite
};
template <class T>
constinit thread_local OwenConstants<T> lv_owen{};

// Owen's T(h, a) for pointers to h and a.
template <class T>
T l_b1nnt(const T *h, const T *a) {
    OwenConstants<T> &k = lv_owen<T>;
    if (k.twopi == 0) {
        k.eps = epsilon<T>();
        k.lim = -std::log(smallest<T>()) - k.eps;
        k.big = std::sqrt(std::sqrt(largest<T>()));
        k.bigbylog = k.big / std::log(k.big);
        k.rtwopi = 1 / (4 * std::asin(T(1)));
        k.twopi = 4 * std::asin(T(1));
    }
    const T b = std::fabs(*h), c = std::fabs(*a);
    // A missing h or a gives a missing T; the series below would not end.
    if (std::isnan(b) || std::isnan(c)) return zorvs::missing<T>();
    T result;
    if (c == 0) {
        result = 0;
    } else if (c > k.bigbylog) {
        result = T(0.5) * (1 - normal_cdf_core(b));
    } else {
        const T A = std::atan(c);
        if (b == 0) {
            result = A * k.rtwopi;
        } else if (c * b > 4 && c > 1) {
            // Owen's (1956) identity for h, a > 0,
            //   T(h, a) = (Q(h) + Q(ah))/2 - Q(h) Q(ah) - T(ah, 1/a),
            // Q the upper tail; the second call has a < 1 and takes the series.
            const T ch = c * b, rc = 1 / c;
            const T qh = normal_cdf_core(-b), qa = normal_cdf_core(-ch);
            result = T(0.5) * (qh + qa) - qh * qa - l_b1nnt(&ch, &rc);
        } else {
            const T q = T(0.5) * b * b;
            if (q > k.lim) {
                result = 0;
            } else {
                const T E = std::exp(-q);
                const T c2 = c * c;
                T s = 0, d = 1, t1 = c * q, t2 = c * q * q * T(0.5);
                T m = 3;
                const T r = c2 * c2 * q * q;
                T R;
                for (;;) {
                    T w = t2, g = w, kk = m;
                    while (w > g * k.eps) {
                        w = w * q / kk;
                        kk += 1;
                        g += w;
                    }
                    T B = g * c2 / (d + 2);
                    s = s + (g + t1) / d - B;
                    R = A - s * E;
                    t1 = t1 * r / ((m - 1) * m);
                    t2 = t2 * r / ((m + 1) * m);
                    m += 2;
                    d += 4;
                    B = B * E;
                    // A term that has vanished ends the series too: for an R
                    // among the subnormals eps R is 0 and no B is below it.
                    if (B == 0 || (R > 0 ? B < k.eps * R : B < k.eps)) break;
                }
                result = R * k.rtwopi;
            }
        }
    }
    return *a < 0 ? -result : result;
}

// Lower distribution function for unit normals: the smaller tail directly.
template <class T>
T lower(T x) {
    return x <= 0 ? normal_cdf_core(x) : 1 - normal_cdf_core(-x);
}

template <class T>
T l_bnrdf(const T *px, const T *py, const T *prho) {
    const T x = *px, y = *py, rho = *prho;
    if (!(std::fabs(rho) <= 1)) {
        raise(5, 20030, rho);
        return zorvs::missing<T>();
    }
    // A missing x or y gives a missing probability, without a message (the
    // clamps below would turn NaN into a bound).
    if (std::isnan(x) || std::isnan(y)) return zorvs::missing<T>();
    if (std::fabs(rho) == 1) {
        raise(6, 20031);
        if (rho > 0) return normal_cdf_core(std::fmin(x, y));
        return std::fmax(normal_cdf_core(x) + normal_cdf_core(y) - 1, T(0));
    }
    const T k = 1 / std::sqrt(1 - rho * rho);
    const T P = x * y;
    T ax = 0, ay = 0, tx = 0, ty = 0;
    bool need_x = true, need_y = true;
    if (x == 0 && y == 0) {
        ax = ay = k * (1 - rho);
    } else if (x == 0) {
        ay = -k * rho;
        tx = y < 0 ? T(-0.25) : T(0.25);
        need_x = false;
    } else if (y == 0) {
        ax = -k * rho;
        ty = x < 0 ? T(-0.25) : T(0.25);
        need_y = false;
    } else {
        ax = k * (y / x - rho);
        ay = k * (x / y - rho);
    }
    if (need_x) tx = l_b1nnt(&x, &ax);
    if (need_y) ty = l_b1nnt(&y, &ay);
    T R = T(0.5) * (lower(x) + lower(y)) - tx - ty;
    if (P < 0 || (P == 0 && x + y < 0)) R -= T(0.5);
    return std::fmax(T(0), std::fmin(R, T(1)));
}

}  // namespace

extern "C" float zorvs_f_bivariate_normal_cdf(float x, float y, float rho) { ZORVS_VALUE_ENTRY(l_bnrdf(&x, &y, &rho)); }
extern "C" double zorvs_d_bivariate_normal_cdf(double x, double y, double rho) {
    ZORVS_VALUE_ENTRY(l_bnrdf(&x, &y, &rho));
}
