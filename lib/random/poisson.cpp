// poisson.cpp - Poisson deviates.
//
// theta < 15: inversion by sequential search up the cumulative
//   probabilities from exp(-theta), one uniform per deviate.
// theta >= 15: the PTPE method of Schmeiser and Kachitvichyanukul (1981),
//   the Poisson member of the triangle-parallelogram-exponential family of
//   Kachitvichyanukul and Schmeiser (1988), "Binomial random variate
//   generation", CACM 31, 216-222: a triangle about the mode accepted at
//   once, two parallelograms and two exponential tails, two uniforms per
//   round, and an exact test of the log probability ratio to the mode.
// Both set-ups are kept while theta stays the same between calls.
// The deviates are 32-bit integers: a theta above 2e9, where one could pass
// the largest int (2^31 - 1 lies 3300 standard deviations above 2e9), is
// refused like one not above 0.
#include <algorithm>
#include <climits>
#include <cmath>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "random/random.h"
#include "random/random.hpp"
#include "random/stream.hpp"
#include "zorvstat.h"

namespace {

constinit thread_local int *lv_poisson = nullptr;

constexpr float kLargestMean = 2e9f;

// The kept set-ups.  The inversion keeps the cumulative probabilities
// cum[0..count-1] made by the same recurrence as the search, up to the
// first term that vanishes in double precision: the search stops there.
constexpr int kInversionTable = 1024;
struct PoissonState {
    float inversion_theta = -1.0f;
    int count = 0;
    double cum[kInversionTable];
    float ptpe_theta = -1.0f;
    double m, xm, xl, xr, c, ll, lr, p1, p2, p3, p4, log_theta, log_fm;
    double tri_lo, tri_hi;  // counts whose whole bin has the triangle under f/f(m)
};
constinit thread_local PoissonState lv_poisson_setup{};

void ptpe_setup(float theta) {
    PoissonState &s = lv_poisson_setup;
    const double t = theta;
    s.ptpe_theta = theta;
    s.m = std::trunc(t);
    s.p1 = std::trunc(2.195 * std::sqrt(t) - 2.2) + 0.5;  // triangle half-width
    s.xm = s.m + 0.5;
    s.xl = s.xm - s.p1;
    s.xr = s.xm + s.p1;
    s.c = 0.133 + 8.56 / (6.83 + t);
    double a = (t - s.xl) / t;
    s.ll = a * (1.0 + 0.5 * a);  // left tail rate
    a = (s.xr - t) / s.xr;
    s.lr = a * (1.0 + 0.5 * a);  // right tail rate
    s.p2 = s.p1 * (1.0 + 2.0 * s.c);
    s.p3 = s.p2 + s.c / s.ll;
    s.p4 = s.p3 + s.c / s.lr;
    s.log_theta = std::log(t);
    s.log_fm = std::lgamma(s.m + 1.0);
    // The triangle is accepted without a test only where it lies under the
    // probabilities relative to the mode, f(k)/f(m), over the whole bin
    // [k, k + 1).  With these constants it does not everywhere: for theta
    // just below an integer (17.94, 30.99, 84.98, ...) it rises up to 0.8%
    // above f(k)/f(m) a few counts left of the mode.  Walk out from the mode
    // with the ratio recurrence and keep the contiguous run of safe counts;
    // triangle points outside it take the exact test.
    const double margin = 1.0 - 1e-9;
    double ratio = 1.0;
    s.tri_lo = s.m;
    for (double k = s.m - 1.0; k >= s.xl; k -= 1.0) {
        ratio *= (k + 1.0) / t;  // f(k)/f(k + 1)
        const double top = 1.0 - (s.xm - (k + 1.0)) / s.p1;  // triangle at the bin's right end
        if (top > ratio * margin) break;
        s.tri_lo = k;
    }
    ratio = 1.0;
    s.tri_hi = s.m;
    for (double k = s.m + 1.0; k < s.xr; k += 1.0) {
        ratio *= t / k;  // f(k)/f(k - 1)
        const double top = 1.0 - (k - s.xm) / s.p1;  // triangle at the bin's left end
        if (top > ratio * margin) break;
        s.tri_hi = k;
    }
}

// log of f(ix)/f(m) = theta^(ix - m) m!/ix!.
inline double log_ratio(const PoissonState &s, double ix) {
    return (ix - s.m) * s.log_theta + s.log_fm - std::lgamma(ix + 1.0);
}

int ptpe(zorvs::UniformSource<double> &src) {
    const PoissonState &s = lv_poisson_setup;
    for (;;) {
        const double u = src.next() * s.p4;
        double v = src.next();
        double ix;
        if (u <= s.p1) {  // triangle
            // x = xm + p1*(a - b) with a = u/p1 and b = v; given a - b,
            // min(a, b) is a uniform height under the triangle at x.
            const double ix = std::trunc(s.xm - s.p1 * v + u);
            if (ix >= s.tri_lo && ix <= s.tri_hi) return static_cast<int>(ix);
            const double y = std::min(u / s.p1, v);
            if (std::log(y) <= log_ratio(s, ix)) return static_cast<int>(ix);
            continue;
        }
        if (u <= s.p2) {  // parallelograms
            const double x = s.xl + (u - s.p1) / s.c;
            v = v * s.c + 1.0 - std::fabs(s.xm - x) / s.p1;
            if (v > 1.0 || v <= 0.0) continue;
            ix = std::trunc(x);
        } else if (u <= s.p3) {  // left tail
            // floor, not trunc: a point in (-1, 0) belongs to no count
            // and must be rejected, not taken as 0.
            ix = std::floor(s.xl + std::log(v) / s.ll);
            if (ix < 0) continue;
            v = v * (u - s.p2) * s.ll;
        } else {  // right tail
            ix = std::trunc(s.xr - std::log(v) / s.lr);
            if (ix > INT_MAX) continue;
            v = v * (u - s.p3) * s.lr;
        }
        // Exact test: v <= f(ix)/f(m).
        if (std::log(v) <= log_ratio(s, ix)) return static_cast<int>(ix);
    }
}

// Cumulative probabilities of the inversion, term by term as
// p(k) = p(k-1)*(theta/k) from exp(-theta), the quotient in the single
// precision of theta; a zero term ends the table (it ends the search).
void inversion_setup(float theta) {
    PoissonState &s = lv_poisson_setup;
    s.inversion_theta = theta;
    double p = std::exp(-static_cast<double>(theta)), cum = p;
    int k = 0;
    s.cum[0] = cum;
    while (p > 0.0 && k + 1 < kInversionTable) {
        ++k;
        p *= theta / k;
        cum += p;
        s.cum[k] = cum;
    }
    s.count = k + 1;
}

void l_rnpoi(int n, float theta, int r[]) {
    zorvs::UniformSource<double> src;
    if (theta < 15.0f) {
        const PoissonState &s = lv_poisson_setup;
        if (theta != s.inversion_theta) inversion_setup(theta);
        zorvs::open_uniform_source(src);
        const int last = s.count - 1;
        for (int i = 0; i < n; ++i) {
            const double u = src.next();
            int k = 0;
            while (k < last && u > s.cum[k]) ++k;
            r[i] = k;
        }
        zorvs::close_uniform_source(src);
        return;
    }
    if (theta != lv_poisson_setup.ptpe_theta) ptpe_setup(theta);
    zorvs::open_uniform_source(src);
    for (int i = 0; i < n; ++i) r[i] = ptpe(src);
    zorvs::close_uniform_source(src);
}

void l_random_poisson(int n, float theta, va_list *list) {
    zorvs::OutputPair<int> result(lv_poisson);
    zorvs::KeywordReader kw(list, 2);
    if (!zorvs::read_return_user(kw, result)) {
        result.drop();
        return;
    }
    int arg = 0;
    zorvs_c1iarg(n, "n_random", 1, 0, &arg);
    if (!(theta > 0)) {
        zorvs_e1std(1, static_cast<double>(theta));
        zorvs_ermes(5, 11032);
    } else if (theta > kLargestMean) {
        zorvs_e1std(1, static_cast<double>(theta));
        zorvs_e1std(2, static_cast<double>(kLargestMean));
        zorvs_ermes(5, 11044);
    }
    if (zorvs_n1rcd(0) != 0) return;
    if (!result.obtain(static_cast<std::size_t>(n))) return;
    l_rnpoi(n, theta, result.data());
}

}  // namespace

extern "C" int *zorvs_random_poisson(int n, float theta, ...) {
    ZORVS_KEYWORD_ENTRY(theta, "zorvs_random_poisson", lv_poisson, l_random_poisson(n, theta, &list));
}
