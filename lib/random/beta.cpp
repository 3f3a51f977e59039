// beta.cpp - beta deviates with shape parameters pin and qin.
//
// The method follows the parameters; every one draws its uniforms from the
// shared stream, and the number it draws is part of its behaviour:
// both below 1: Johnk (1964), "Erzeugung von betaverteilten und
//   gammaverteilten Zufallszahlen", Metrika 8, 5-15: x = u^(1/pin),
//   y = v^(1/qin), accepted when x + y <= 1, giving x/(x + y); two uniforms a
//   round.  When both inverse exponents exceed 4 the powers can underflow
//   together (u^4 stays normal in single precision for the smallest uniform),
//   so the round is carried in logarithms.
// either equal to 1: inversion of the closed distribution function, one
//   uniform per deviate: u^(1/pin) for qin = 1, 1 - u^(1/qin) for pin = 1.
// one below 1, the other above: the switching algorithm of Atkinson (1979),
//   "A family of switching algorithms for the computer generation of beta
//   random variates", Biometrika 66, 141-145.  With a < 1 < b the density
//   x^(a-1) (1-x)^(b-1) lies under x^(a-1) left of the switch point
//   t = (1 - a)/(b + 1 - a) and under t^(a-1) (1-x)^(b-1) right of it; the
//   first uniform chooses the piece and, rescaled, inverts it, the second
//   accepts, most often already against a linear lower bound of the ratio
//   (no logarithm).  Beta(b, a) is 1 - Beta(a, b).
// both above 1: algorithm BB of Cheng (1978), "Generating beta variates with
//   nonintegral shape parameters", CACM 21, 317-322, a log-logistic hat with
//   two squeezes (the constants log 4 and 1 + log 5), two uniforms a round.
//
// A deviate that is rejected 1000 rounds in a row (which no finite pair of
// shapes does in practice, but an infinite shape above 1 does) ends the
// routine with (5, 11035); it and the later results stay missing.
#include <cmath>
#include <cstddef>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "random/random.h"
#include "random/random.hpp"
#include "random/stream.hpp"
#include "zorvstat.h"

namespace {

template <class T> constinit thread_local T *lv_beta = nullptr;

constexpr int max_rounds = 1000;

// Two uniforms of the twin's stream, widened.
template <class T>
void uniform_pair(zorvs::UniformSource<T> &src, double &u, double &v) {
    u = src.next();
    v = src.next();
}

// log(exp(a) + exp(b)) without overflow or underflow.
inline double log_sum(double a, double b) {
    const double hi = a > b ? a : b, lo = a > b ? b : a;
    return hi + std::log1p(std::exp(lo - hi));
}

// Johnk's method for pin, qin below 1.  Returns false after max_rounds.
template <class T>
bool johnk(zorvs::UniformSource<T> &src, double p, double q, double &x) {
    const double rp = 1.0 / p, rq = 1.0 / q;
    const bool in_logs = rp > 4.0 && rq > 4.0;
    for (int round = 0; round < max_rounds; ++round) {
        double u, v;
        uniform_pair<T>(src, u, v);
        if (in_logs) {
            const double lx = rp * std::log(u), ly = rq * std::log(v);
            const double ls = log_sum(lx, ly);
            if (ls <= 0.0) {
                x = std::exp(lx - ls);
                return true;
            }
        } else {
            const double a = std::pow(u, rp), b = std::pow(v, rq);
            const double s = a + b;
            if (s <= 1.0) {
                if (s > 0.0) {
                    x = a / s;
                    return true;
                }
                // Both powers underflow, which a uniform of a caller's
                // shuffle table can make happen (its entries may be as small
                // as the subnormals): the ratio from the logarithms.
                const double lx = rp * std::log(u), ly = rq * std::log(v);
                x = std::exp(lx - log_sum(lx, ly));
                return true;
            }
        }
    }
    return false;
}

// Atkinson's switching set-up for a < 1 < b.
struct Switching {
    double a, b, ra, rb, t, r, log_t, slope;
};

Switching switching_setup(double a, double b) {
    Switching s;
    s.a = a;
    s.b = b;
    s.ra = 1.0 / a;
    s.rb = 1.0 / b;
    s.t = (1.0 - a) / (b + 1.0 - a);
    s.log_t = std::log(s.t);
    // Bernoulli's inequality: (1 - x)^(b-1) >= 1 - max(b - 1, 1)*x.
    s.slope = b - 1.0 > 1.0 ? b - 1.0 : 1.0;
    // Areas under the two pieces, divided by t^(a-1): t/a and (1-t)^b/b.
    const double left = s.t / a, right = std::pow(1.0 - s.t, b) / b;
    s.r = left / (left + right);
    return s;
}

// One Beta(a, b) deviate as x and 1 - x, each formed where it is small, so
// that the mirrored Beta(b, a) keeps its digits near 0.
template <class T>
bool switching(zorvs::UniformSource<T> &src, const Switching &s, double &x, double &x_complement) {
    for (int round = 0; round < max_rounds; ++round) {
        double u, v;
        uniform_pair<T>(src, u, v);
        if (u <= s.r) {
            // x^(a-1) on (0, t), accepted with (1 - x)^(b-1).
            const double y = s.t * std::pow(u / s.r, s.ra);
            if (v <= 1.0 - s.slope * y || std::log(v) <= (s.b - 1.0) * std::log1p(-y)) {
                x = y;
                x_complement = 1.0 - y;
                return true;
            }
        } else {
            // (1 - x)^(b-1) on (t, 1), accepted with (x/t)^(a-1).
            // (t/x)^(1-a) >= t/x lets most points pass without a logarithm.
            const double yc = (1.0 - s.t) * std::pow((1.0 - u) / (1.0 - s.r), s.rb);
            if (v * (1.0 - yc) <= s.t || std::log(v) <= (s.a - 1.0) * (std::log1p(-yc) - s.log_t)) {
                x = 1.0 - yc;
                x_complement = yc;
                return true;
            }
        }
    }
    return false;
}

// Cheng's BB set-up with a = min(pin, qin) and b = max(pin, qin).
struct ChengBB {
    double a, b, alpha, beta, gamma;
};

ChengBB cheng_setup(double a, double b) {
    ChengBB c;
    c.a = a;
    c.b = b;
    c.alpha = a + b;
    // (alpha - 2) formed as (a - 1) + (b - 1): exact shapes just above 1 keep
    // their digits.
    c.beta = std::sqrt(((a - 1.0) + (b - 1.0)) / (2.0 * a * b - c.alpha));
    c.gamma = a + 1.0 / c.beta;
    return c;
}

// One deviate W/(b + W), the Beta(a, b) variate, and b/(b + W) its mirror.
template <class T>
bool cheng(zorvs::UniformSource<T> &src, const ChengBB &c, double &w_out) {
    const double log4 = 1.386294, one_log5 = 2.609438;
    for (int round = 0; round < max_rounds; ++round) {
        double u1, u2;
        uniform_pair<T>(src, u1, u2);
        const double v = c.beta * std::log(u1 / (1.0 - u1));
        const double w = c.a * std::exp(v);
        const double z = u1 * u1 * u2;
        const double r = c.gamma * v - log4;
        const double s = c.a + r - w;
        if (s + one_log5 >= 5.0 * z) {
            w_out = w;
            return true;
        }
        const double t = std::log(z);
        if (s > t) {
            w_out = w;
            return true;
        }
        if (r + c.alpha * std::log(c.alpha / (c.b + w)) >= t) {
            w_out = w;
            return true;
        }
    }
    return false;
}

// Deviate `index` (from 0) was rejected max_rounds times: give the stream
// back, report the deviate by its number from 1 and leave it and the rest
// missing.
template <class T>
void rejected(const zorvs::UniformSource<T> &src, int index, int n, T r[]) {
    zorvs::close_uniform_source(src);
    for (int i = index; i < n; ++i) r[i] = zorvs::missing<T>();
    zorvs_e1sti(1, index + 1);
    zorvs_ermes(5, 11035);
}

template <class T>
void l_rnbet(int n, T pin, T qin, T r[]) {
    const double p = pin, q = qin;
    if (p == 1.0 || q == 1.0) {
        zorvs::random::uniforms(n, r);
        if (q == 1.0) {
            const double rp = 1.0 / p;
            for (int i = 0; i < n; ++i) r[i] = static_cast<T>(std::pow(static_cast<double>(r[i]), rp));
        } else {
            // 1 - u^(1/q), without the cancellation near u = 1.
            const double rq = 1.0 / q;
            for (int i = 0; i < n; ++i) r[i] = static_cast<T>(-std::expm1(rq * std::log(static_cast<double>(r[i]))));
        }
        return;
    }
    // The rejection methods read the stream through a local source.
    double x, xc;
    zorvs::UniformSource<T> src;
    zorvs::open_uniform_source(src);
    if (p < 1.0 && q < 1.0) {
        for (int i = 0; i < n; ++i) {
            if (!johnk<T>(src, p, q, x)) return rejected(src, i, n, r);
            r[i] = static_cast<T>(x);
        }
    } else if (p > 1.0 && q > 1.0) {
        const bool mirror = q < p;
        const ChengBB c = mirror ? cheng_setup(q, p) : cheng_setup(p, q);
        for (int i = 0; i < n; ++i) {
            if (!cheng<T>(src, c, x)) return rejected(src, i, n, r);
            r[i] = static_cast<T>(mirror ? c.b / (c.b + x) : x / (c.b + x));
        }
    } else {
        const bool mirror = q < p;
        const Switching s = mirror ? switching_setup(q, p) : switching_setup(p, q);
        for (int i = 0; i < n; ++i) {
            if (!switching<T>(src, s, x, xc)) return rejected(src, i, n, r);
            r[i] = static_cast<T>(mirror ? xc : x);
        }
    }
    zorvs::close_uniform_source(src);
}

template <class T>
void l_random_beta(int n, T pin, T qin, va_list *list) {
    zorvs::OutputPair<T> result(lv_beta<T>);
    zorvs::KeywordReader kw(list, 3);
    if (!zorvs::read_return_user(kw, result)) {
        result.drop();
        return;
    }
    // A NaN shape is refused with the non-positive ones.
    if (!(pin > 0)) zorvs_ermes(5, 11033);
    if (!(qin > 0)) zorvs_ermes(5, 11034);
    int arg = 0;
    zorvs_c1iarg(n, "n_random", 1, 0, &arg);
    if (zorvs_n1rcd(0) != 0) return;
    if (!result.obtain(static_cast<std::size_t>(n))) return;
    l_rnbet<T>(n, pin, qin, result.data());
}

}  // namespace

extern "C" {

float *zorvs_f_random_beta(int n, float pin, float qin, ...) {
    ZORVS_KEYWORD_ENTRY(qin, "zorvs_f_random_beta", lv_beta<float>, l_random_beta<float>(n, pin, qin, &list));
}
double *zorvs_d_random_beta(int n, double pin, double qin, ...) {
    ZORVS_KEYWORD_ENTRY(qin, "zorvs_d_random_beta", lv_beta<double>, l_random_beta<double>(n, pin, qin, &list));
}

}  // extern "C"
