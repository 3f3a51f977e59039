// gamma.cpp - gamma deviates with shape a and scale 1.
//
// a > 1: the method of Schmeiser and Lal (1980), "Squeeze methods for
//   generating gamma variates", JASA 75, 679-682.  With the mode x3 = a - 1
//   and the inflection points x2, x4 = x3 -/+ sqrt(x3), the density relative
//   to its mode, f(x) = exp(x3*log(x/x3) + x3 - x), is covered by four
//   rectangles under f (accepted at once, one uniform), two concave pieces
//   between the inflection points (chord squeeze, two uniforms), two
//   triangles over the convex pieces out to x1 and x5 (three uniforms) and
//   two exponential tails tangent to log f at x1 and x5 (two uniforms).
//   A point under a lower bound of f (tangents where f is convex, a
//   series bound of log f between the inflection points) is accepted at
//   once; the others end with the exact test log(w) <= x3*log(y/x3) + x3 - y.
//   Shapes above 1e12 are beyond the method: NaN deviates and a warning.
// a = 1: -log(u).  a = 0.5: z^2/2 with z normal.
// a < 1: Ahrens and Dieter (1974), "Computer methods for sampling from
//   gamma, beta, Poisson and binomial distributions", Computing 12, 223-246,
//   algorithm GS.
#include <cfloat>
#include <cmath>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "random/random.h"
#include "random/random.hpp"
#include "random/stream.hpp"
#include "zorvstat.h"

namespace {

template <class T> constinit thread_local T *lv_gamma = nullptr;

// Set-up of the Schmeiser-Lal hat for one shape.
struct Hat {
    double x1, x2, x3, x4, x5, f1, f2, f4, f5, ll, lr;
    double p1, p2, p3, p4, p5, p6, p7, p8, p9, p10;
    double d1, d2, d4, d5;  // slopes f'(x) = f(x)*(x3/x - 1) at x1, x2, x4, x5
    double rect_x[4], rect_p[4], rect_f[4];  // left end, area before, height
};

// log of the density relative to the mode.
inline double log_f(double x, double x3) { return x > 0 ? x3 * std::log(x / x3) + x3 - x : -HUGE_VAL; }

template <class T>
bool hat_setup(double a, Hat &h) {
    const double eps = zorvs::epsilon<T>();
    const double big = std::log(static_cast<double>(zorvs::largest<T>())) + 1.0;
    h.x3 = a - 1.0;
    const double s = std::sqrt(h.x3);
    h.x4 = h.x3 + s;
    h.x5 = h.x4 * (1.0 + 1.0 / s);
    if (s * (1.0 + eps) < h.x3) {
        h.x2 = h.x3 - s;
        h.x1 = h.x2 * (1.0 - 1.0 / s);
    } else {
        // The left inflection point is not positive: the first piece starts at 0.
        h.x2 = 0.0;
        h.x1 = 0.0;
    }
    const double e1 = log_f(h.x1, h.x3), e2 = log_f(h.x2, h.x3), e4 = log_f(h.x4, h.x3),
                 e5 = log_f(h.x5, h.x3);
    if (std::fabs(e4) >= big || std::fabs(e5) >= big || (h.x1 > 0 && std::fabs(e1) >= big)) return false;
    h.f1 = std::exp(e1);
    h.f2 = std::exp(e2);
    h.f4 = std::exp(e4);
    h.f5 = std::exp(e5);
    // Slopes of log f at x1 and x5: the tails' exponential rates.
    h.ll = h.x1 > 0 ? h.x3 / h.x1 - 1.0 : 0.0;
    h.lr = 1.0 - h.x3 / h.x5;
    h.p1 = h.f2 * (h.x3 - h.x2);
    h.p2 = h.p1 + h.f4 * (h.x4 - h.x3);
    h.p3 = h.p2 + h.f1 * (h.x2 - h.x1);
    h.p4 = h.p3 + h.f5 * (h.x5 - h.x4);
    h.p5 = h.p4 + (1.0 - h.f2) * (h.x3 - h.x2);
    h.p6 = h.p5 + (1.0 - h.f4) * (h.x4 - h.x3);
    h.p7 = h.p6 + 0.5 * (h.f2 - h.f1) * (h.x2 - h.x1);
    h.p8 = h.p7 + 0.5 * (h.f4 - h.f5) * (h.x5 - h.x4);
    h.p9 = h.p8 + (h.ll > 0 ? h.f1 / h.ll : 0.0);
    h.p10 = h.p9 + h.f5 / h.lr;
    const double rx[4] = {h.x2, h.x3, h.x1, h.x4}, rp[4] = {0.0, h.p1, h.p2, h.p3}, rf[4] = {h.f2, h.f4, h.f1, h.f5};
    for (int i = 0; i < 4; ++i) {
        h.rect_x[i] = rx[i];
        h.rect_p[i] = rp[i];
        h.rect_f[i] = rf[i];
    }
    h.d1 = h.x1 > 0 ? h.f1 * h.ll : 0.0;
    h.d2 = h.x2 > 0 ? h.f2 * (h.x3 / h.x2 - 1.0) : 0.0;
    h.d4 = h.f4 * (h.x3 / h.x4 - 1.0);
    h.d5 = -h.f5 * h.lr;
    return true;
}

// A lower bound of f(x), cheap beside the logarithms of the exact test.
// Outside the inflection points f is convex and lies above its tangents at
// x1, x2 (left) and x4, x5 (right).  Between them, with z = x/x3 - 1,
// log f = x3*(log(1 + z) - z) >= q, where log(1 + z) >= z - z^2/(2(1 + z))
// for z <= 0 and >= z - z^2/2 for z >= 0, so q = -(x - x3)^2/(2x) left of
// the mode and -(x - x3)^2/(2 x3) right of it; and exp(q) >= 1 + q + q^2/2
// + q^3/6.
inline double f_lower(const Hat &h, double x) {
    if (x < h.x2) {
        const double t1 = h.f1 + h.d1 * (x - h.x1), t2 = h.f2 + h.d2 * (x - h.x2);
        return t1 > t2 ? t1 : t2;
    }
    if (x > h.x4) {
        const double t4 = h.f4 + h.d4 * (x - h.x4), t5 = h.f5 + h.d5 * (x - h.x5);
        return t4 > t5 ? t4 : t5;
    }
    const double e = x - h.x3;
    const double q = -e * e / (2.0 * (x < h.x3 ? x : h.x3));
    return 1.0 + q * (1.0 + q * (0.5 + q / 6.0));
}

template <class T>
double schmeiser_lal(const Hat &h, zorvs::UniformSource<T> &s) {
    for (;;) {
        double u = s.next() * h.p10;
        if (u <= h.p4) {
            // Rectangles under the density, chosen by counting instead of a
            // chain of branches that the processor cannot predict.
            const int i = (u > h.p1) + (u > h.p2) + (u > h.p3);
            return h.rect_x[i] + (u - h.rect_p[i]) / h.rect_f[i];
        }
        const double w = s.next();
        double x, v;  // candidate and its height relative to the mode
        if (u <= h.p5) {  // concave piece left of the mode, under height 1
            const double t = (u - h.p4) / (h.p5 - h.p4);
            x = h.x2 + (h.x3 - h.x2) * w;
            if (t <= w) return x;  // below the chord
            v = h.f2 + (1.0 - h.f2) * t;
        } else if (u <= h.p6) {  // concave piece right of the mode
            const double t = (u - h.p5) / (h.p6 - h.p5);
            x = h.x3 + (h.x4 - h.x3) * w;
            if (t <= 1.0 - w) return x;
            v = h.f4 + (1.0 - h.f4) * t;
        } else if (u <= h.p8) {  // triangles over the convex pieces
            const double w2 = s.next();
            const double hi = w > w2 ? w : w2, lo = w > w2 ? w2 : w;
            if (u <= h.p7) {
                x = h.x1 + (h.x2 - h.x1) * hi;
                v = h.f1 + (h.f2 - h.f1) * lo;
            } else {
                x = h.x5 - (h.x5 - h.x4) * hi;
                v = h.f5 + (h.f4 - h.f5) * lo;
            }
        } else if (u <= h.p9) {  // left exponential tail
            const double t = (h.p9 - u) / (h.p9 - h.p8);
            x = h.x1 + std::log(w) / h.ll;
            if (x <= 0) continue;
            v = h.f1 * w * t;
        } else {  // right exponential tail
            const double t = (h.p10 - u) / (h.p10 - h.p9);
            x = h.x5 - std::log(w) / h.lr;
            v = h.f5 * w * t;
        }
        if (v <= f_lower(h, x)) return x;  // squeeze
        if (v > 0 && std::log(v) <= h.x3 * std::log(x / h.x3) + h.x3 - x) return x;
    }
}

// The hat of the last shape, per twin: kept while the shape stays.
template <class T> struct KeptHat {
    T a = 0;
    Hat hat;
};
template <class T> constinit thread_local KeptHat<T> lv_hat{};

// Largest shape the Schmeiser-Lal method serves.  Its exact test works out
// log f = x3*log(y/x3) + x3 - y, which keeps a rounding of about a*eps (2e-4
// at 1e12); beyond, the hat degenerates: at 1e16 sqrt(x3) is a few units of
// x3's last place and the deviates are visibly wrong, near 1e20 the set-up
// fails, and at 1e33 (or an infinite shape) no round is ever accepted.
constexpr double kSchmeiserLalShapeLimit = 1e12;

template <class T>
void l_rngam(int n, T a, T r[]) {
    const double ad = a;
    if (ad > kSchmeiserLalShapeLimit) {
        for (int i = 0; i < n; ++i) r[i] = std::numeric_limits<T>::quiet_NaN();
        zorvs_e1std(1, ad);
        zorvs_e1std(2, kSchmeiserLalShapeLimit);
        zorvs_ermes(3, 11043);
        return;
    }
    if (ad > 1.0) {
        KeptHat<T> &kept = lv_hat<T>;
        if (a != kept.a) {
            if (!hat_setup<T>(ad, kept.hat)) {
                kept.a = 0;
                zorvs_e1psh("l_rngam ");
                zorvs_e1std(1, ad);
                zorvs_ermes(5, 11037);
                zorvs_e1pop("l_rngam ");
                return;
            }
            kept.a = a;
        }
        const Hat h = kept.hat;
        zorvs::UniformSource<T> s;
        zorvs::open_uniform_source(s);
        for (int i = 0; i < n; ++i) r[i] = static_cast<T>(schmeiser_lal<T>(h, s));
        zorvs::close_uniform_source(s);
    } else if (ad == 1.0) {
        zorvs::random::uniforms(n, r);
        for (int i = 0; i < n; ++i) r[i] = -std::log(r[i]);
    } else if (ad == 0.5) {
        zorvs::random::normals(n, r);
        for (int i = 0; i < n; ++i) r[i] = static_cast<T>(0.5) * r[i] * r[i];
    } else {
        // Algorithm GS: a mixture of the power density below 1 and the
        // exponential tail above, accepted against e^-x or x^(a-1).
        const double e = 2.7182818284590451;
        const double b = (e + ad) / e, ra = 1.0 / ad;
        const double log_small = std::log(static_cast<double>(zorvs::smallest<T>()));
        const double small = zorvs::smallest<T>();
        zorvs::UniformSource<T> s;
        zorvs::open_uniform_source(s);
        for (int i = 0; i < n; ++i) {
            for (;;) {
                const T u1 = s.next();
                const T u2 = s.next();
                const double w = -std::log(static_cast<double>(u1));
                const double p = b * u2;
                double x, test;
                if (p <= 1.0) {
                    const double lx = ra * std::log(p);
                    x = lx < log_small ? small : std::exp(lx);
                    test = x;
                } else {
                    x = -std::log((b - p) / ad);
                    test = -(ad - 1.0) * std::log(x);
                }
                if (test <= w) {
                    r[i] = static_cast<T>(x);
                    break;
                }
            }
        }
        zorvs::close_uniform_source(s);
    }
}

template <class T>
void l_random_gamma(int n, T a, va_list *list) {
    zorvs::OutputPair<T> result(lv_gamma<T>);
    zorvs::KeywordReader kw(list, 2);
    if (!zorvs::read_return_user(kw, result)) {
        result.drop();
        return;
    }
    int arg = 0;
    zorvs_c1iarg(n, "n_random", 1, 0, &arg);
    if (!(a > 0)) {
        zorvs_e1std(1, static_cast<double>(a));
        zorvs_ermes(5, 11036);
    }
    if (zorvs_n1rcd(0) != 0) return;
    if (!result.obtain(static_cast<std::size_t>(n))) return;
    l_rngam<T>(n, a, result.data());
}

}  // namespace

extern "C" {

float *zorvs_f_random_gamma(int n, float a, ...) {
    ZORVS_KEYWORD_ENTRY(a, "zorvs_f_random_gamma", lv_gamma<float>, l_random_gamma<float>(n, a, &list));
}
double *zorvs_d_random_gamma(int n, double a, ...) {
    ZORVS_KEYWORD_ENTRY(a, "zorvs_d_random_gamma", lv_gamma<double>, l_random_gamma<double>(n, a, &list));
}

}  // extern "C"
