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
#include <cmath>
#include <climits>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "random/random.h"
#include "zorvstat.h"

namespace {

int *lv_poisson = nullptr;

// The kept set-ups.
struct PoissonState {
    float inversion_theta = -1.0f;
    double p0 = 0.0;
    float ptpe_theta = -1.0f;
    double m, xm, xl, xr, c, ll, lr, p1, p2, p3, p4, log_theta, log_fm;
};
PoissonState lv_poisson_setup;

double uniform() {
    double u;
    zorvs_d_r1uni(1, &u);
    return u;
}

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
}

int ptpe() {
    const PoissonState &s = lv_poisson_setup;
    for (;;) {
        const double u = uniform() * s.p4;
        double v = uniform();
        double ix;
        if (u <= s.p1) return static_cast<int>(s.xm - s.p1 * v + u);  // triangle
        if (u <= s.p2) {  // parallelograms
            const double x = s.xl + (u - s.p1) / s.c;
            v = v * s.c + 1.0 - std::fabs(s.xm - x) / s.p1;
            if (v > 1.0 || v <= 0.0) continue;
            ix = std::trunc(x);
        } else if (u <= s.p3) {  // left tail
            ix = std::trunc(s.xl + std::log(v) / s.ll);
            if (ix < 0) continue;
            v = v * (u - s.p2) * s.ll;
        } else {  // right tail
            ix = std::trunc(s.xr - std::log(v) / s.lr);
            if (ix > INT_MAX) continue;
            v = v * (u - s.p3) * s.lr;
        }
        // Exact test: v <= f(ix)/f(m) = theta^(ix-m) m!/ix!.
        if (std::log(v) <= (ix - s.m) * s.log_theta + s.log_fm - std::lgamma(ix + 1.0))
            return static_cast<int>(ix);
    }
}

void l_rnpoi(int n, float theta, int r[]) {
    if (theta < 15.0f) {
        PoissonState &s = lv_poisson_setup;
        if (theta != s.inversion_theta) {
            s.inversion_theta = theta;
            s.p0 = std::exp(-static_cast<double>(theta));
        }
        for (int i = 0; i < n; ++i) {
            const double u = uniform();
            double p = s.p0, cum = p;
            int k = 0;
            // The search stops where the terms vanish in double precision.
            while (u > cum && p > 0.0) {
                ++k;
                p *= theta / k;
                cum += p;
            }
            r[i] = k;
        }
        return;
    }
    if (theta != lv_poisson_setup.ptpe_theta) ptpe_setup(theta);
    for (int i = 0; i < n; ++i) r[i] = ptpe();
}

void l_random_poisson(int n, float theta, va_list *list) {
    zorvs::KeywordReader kw(list, 2);
    bool user = false;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
        case ZORVS_RETURN_USER:
            lv_poisson = kw.pointer<int>();
            user = true;
            break;
        default: kw.unknown(k); lv_poisson = nullptr; return;
        }
    }
    int arg = 0;
    zorvs_c1iarg(n, "n_random", 1, 0, &arg);
    if (!(theta > 0)) {
        zorvs_e1std(1, static_cast<double>(theta));
        zorvs_ermes(5, 11032);
    }
    if (zorvs_n1rcd(0) != 0) {
        if (!user) lv_poisson = nullptr;
        return;
    }
    if (!user) {
        lv_poisson = zorvs::allocate<int>(static_cast<std::size_t>(n));
        if (!lv_poisson) return;
    }
    l_rnpoi(n, theta, lv_poisson);
    zorvs::exit_test(lv_poisson, user);
}

}  // namespace

extern "C" int *zorvs_random_poisson(int n, float theta, ...) {
    ZORVS_KEYWORD_ENTRY(theta, "zorvs_random_poisson", lv_poisson, l_random_poisson(n, theta, &list));
}
