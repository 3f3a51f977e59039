// studentized_range.cpp - the studentized range distribution and its inverse.
//
// Q = R / S, R the range of k independent standard normal variables and
// nu S^2 an independent chi-squared variable with nu degrees of freedom.
// The distribution function is the double integral of Copenhaver and
// Holland (M. D. Copenhaver and B. S. Holland 1988, "Computation of the
// distribution of the maximum studentized range statistic with application
// to multiple significance testing of simple effects", J. Statist. Comput.
// Simul. 30, 1-15):
//
//     P(Q <= q) = int_0^inf f_nu(s) W(q s) ds,
//     W(w)      = k int phi(z) [Phi(z + w) - Phi(z)]^(k-1) dz,
//
// f_nu the density of S.  Both integrals use 16-point Gauss-Legendre rules on
// panels: the inner one over z in [-8.5, 8.5] (outside, phi carries less
// than 1e-17), the outer one over the range of S that holds all but ~1e-20 of
// its mass (Wilson-Hilferty bounds at 10 standard deviations).  The
// difference Phi(z + w) - Phi(z) is formed from whichever tails are small,
// and its power from log1p, so W keeps its digits near 1 for many means.
// log f_nu is written with the Stirling correction of log Gamma(nu / 2), so
// that no terms of size nu cancel for large nu; beyond 1e12 degrees of
// freedom S is taken as 1 (the error is of order 1/nu).
//
// The inverse solves P(Q <= q) = p by Brent's method (R. P. Brent 1973,
// "Algorithms for Minimization without Derivatives", ch. 4) on a bracket
// found by steps from a start near the normal-theory quantile.
//
// Both twins compute in double and round once.
#include <cmath>

#include "dist/discrete.h"
#include "frame/frame.hpp"
#include "zorvstat.h"

namespace {

constexpr int gl_half = 8;
constexpr double gl_node[gl_half] = {0.09501250983763745, 0.2816035507792589, 0.45801677765722737,
                                     0.6178762444026438,  0.755404408355003,  0.8656312023878318,
                                     0.9445750230732326,  0.9894009349916499};
constexpr double gl_weight[gl_half] = {0.18945061045506859, 0.1826034150449236,  0.16915651939500262,
                                       0.14959598881657676, 0.12462897125553403, 0.09515851168249259,
                                       0.062253523938647706, 0.027152459411754037};

constexpr double inner_low = -8.5, inner_high = 8.5;
constexpr int inner_panels = 17;
constexpr int inner_nodes = inner_panels * 2 * gl_half;
constexpr int outer_panels = 12;
constexpr double infinite_df = 1e12;
constexpr double ln_sqrt_2pi = 0.91893853320467274178;

// Upper normal tail Q(x) = 1 - Phi(x).
double upper_tail(double x) { return 0.5 * std::erfc(x * 0.70710678118654752440); }

// Node tables of the inner rule: z, weight * phi(z), Q(-z) = Phi(z), Q(z).
struct InnerRule {
    double z[inner_nodes];
    double wphi[inner_nodes];
    double below[inner_nodes];  // Phi(z)
    double above[inner_nodes];  // 1 - Phi(z)
};

// The tables depend on nothing but the rule: worked out once per process, at
// the first use in any thread, under the guard of a function-local static.
InnerRule make_inner_rule() {
    InnerRule r;
    const double h = (inner_high - inner_low) / inner_panels;
    int n = 0;
    for (int p = 0; p < inner_panels; ++p) {
        double mid = inner_low + (p + 0.5) * h;
        for (int i = 0; i < gl_half; ++i) {
            for (int sign = -1; sign <= 1; sign += 2) {
                double z = mid + sign * 0.5 * h * gl_node[i];
                r.z[n] = z;
                r.wphi[n] = 0.5 * h * gl_weight[i] * std::exp(-0.5 * z * z - ln_sqrt_2pi);
                r.below[n] = upper_tail(-z);
                r.above[n] = upper_tail(z);
                ++n;
            }
        }
    }
    return r;
}

const InnerRule &inner_rule() {
    static const InnerRule rule = make_inner_rule();
    return rule;
}

// W(w) = P(range of k standard normals <= w).
double range_cdf(double w, double k) {
    if (w <= 0) return 0;
    // 1 - W(w) <= k P(|Z| > w / 2) = 2 k Q(w / 2): below 1e-20 for w >= 20
    // and k <= 1e4.
    if (w >= 20 && k <= 1e4) return 1;
    const InnerRule &r = inner_rule();
    double sum = 0;
    for (int i = 0; i < inner_nodes; ++i) {
        double z = r.z[i], log_d;
        if (z >= 0) {
            double d = r.above[i] - upper_tail(z + w);
            if (d <= 0) continue;
            log_d = std::log(d);
        } else if (z + w <= 0) {
            double d = upper_tail(-z - w) - r.below[i];
            if (d <= 0) continue;
            log_d = std::log(d);
        } else {
            log_d = std::log1p(-(r.below[i] + upper_tail(z + w)));
        }
        sum += r.wphi[i] * std::exp((k - 1) * log_d);
    }
    sum *= k;
    return sum < 1 ? sum : 1.0;
}

// lgamma(h) - ((h - 1/2) log h - h + log sqrt(2 pi)).
double gamma_correction(double h) {
    if (h < 15) return std::lgamma(h) - ((h - 0.5) * std::log(h) - h + ln_sqrt_2pi);
    double hh = h * h;
    return (1.0 / 12 - (1.0 / 360 - (1.0 / 1260 - 1.0 / (1680 * hh)) / hh) / hh) / h;
}

// P(Q <= q); *mass receives the outer rule's integral of f_nu (1 when exact).
double studentized_range_cdf(double q, double k, double nu, double *mass) {
    *mass = 1;
    if (q <= 0) return 0;
    if (q == zorvs::infinity<double>()) return 1;
    if (nu > infinite_df) return range_cdf(q, k);
    // log f(s) = c + (nu - 1) log s - nu (s^2 - 1) / 2, c = log f(1) + ... below.
    const double h = 0.5 * nu;
    const double c = 0.5 * std::log(h) + std::log(2.0) - ln_sqrt_2pi - gamma_correction(h);
    // Wilson-Hilferty: nu S^2 / nu is near (1 - a +- z sqrt(a))^3, a = 2 / (9 nu).
    const double a = 2.0 / (9.0 * nu), spread = 10.0 * std::sqrt(a);
    double lo = 1 - a - spread, hi = 1 - a + spread;
    double s_lo = lo > 0 ? std::sqrt(lo * lo * lo) : 0.0;
    double s_hi = std::sqrt(hi * hi * hi);
    // Panels: equal parts of the range of S, split further where W(q s)
    // climbs from 0 to 1 (q s from 0.25 to 12), which for small nu and large
    // q is a sliver near s = 0 that equal panels would miss.
    double breaks[outer_panels + 40];
    int nb = 0;
    for (int p = 0; p <= outer_panels; ++p) breaks[nb++] = s_lo + (s_hi - s_lo) * p / outer_panels;
    for (double w = 0.25; w <= 12.0; w *= 1.4142135623730951) {
        double s = w / q;
        if (s > s_lo && s < s_hi) breaks[nb++] = s;
    }
    for (int i = 1; i < nb; ++i)  // insertion sort of a short list
        for (int j = i; j > 0 && breaks[j] < breaks[j - 1]; --j) {
            double t = breaks[j];
            breaks[j] = breaks[j - 1];
            breaks[j - 1] = t;
        }
    double sum = 0, density_sum = 0;
    for (int p = 0; p + 1 < nb; ++p) {
        double width = breaks[p + 1] - breaks[p];
        if (width <= 0) continue;
        double mid = 0.5 * (breaks[p] + breaks[p + 1]);
        for (int i = 0; i < gl_half; ++i) {
            for (int sign = -1; sign <= 1; sign += 2) {
                double s = mid + sign * 0.5 * width * gl_node[i];
                double log_f = c + (nu - 1) * std::log(s) - 0.5 * nu * (s - 1) * (s + 1);
                double wf = 0.5 * width * gl_weight[i] * std::exp(log_f);
                density_sum += wf;
                if (wf > 1e-22) sum += wf * range_cdf(q * s, k);
            }
        }
    }
    *mass = density_sum;
    return sum < 1 ? sum : 1.0;
}

// The checks common to both routines; true when the arguments may be used.
bool means_and_df_valid(double k, double nu) {
    bool ok = true;
    if (!(k >= 2)) {
        zorvs_e1str(1, k);
        zorvs_ermes(5, 9065);
        ok = false;
    }
    if (!(nu >= 2)) {
        zorvs_e1str(1, nu);
        zorvs_ermes(5, 9066);
        ok = false;
    }
    return ok;
}

template <class T>
T l_srdf(T q_in, T k_in, T nu_in) {
    const double q = q_in, k = k_in, nu = nu_in;
    if (!means_and_df_valid(k, nu)) return zorvs::missing<T>();
    double mass = 1;
    double p = std::isnan(q) ? q : studentized_range_cdf(q, k, nu, &mass);
    if (std::isnan(p) || std::fabs(mass - 1) > 1e-10) {
        zorvs_e1str(1, q);
        zorvs_ermes(3, 9069);
    }
    return static_cast<T>(p);
}

template <class T>
T l_srin(T p_in, T nu_in, T k_in) {
    const double p = p_in, k = k_in, nu = nu_in;
    bool ok = means_and_df_valid(k, nu);
    if (!(p > 0 && p < 1)) {
        zorvs_e1str(1, p);
        zorvs_ermes(5, 9067);
        ok = false;
    }
    if (!ok) return zorvs::missing<T>();

    double mass;
    auto f = [&](double q) { return studentized_range_cdf(q, k, nu, &mass) - p; };
    // Bracket: from q = 1 in steps of 1.5x until the sign changes.
    double a = 1.0, fa = f(a);
    double b = a, fb = fa;
    int steps = 0;
    if (fa < 0) {
        while (fb < 0 && steps < 200) {
            a = b;
            fa = fb;
            b *= 1.5;
            fb = f(b);
            ++steps;
        }
    } else {
        while (fa > 0 && steps < 200) {
            b = a;
            fb = fa;
            a /= 1.5;
            fa = f(a);
            ++steps;
        }
    }
    if (fa > 0 || fb < 0) {
        zorvs_e1str(1, p);
        zorvs_e1str(2, b);
        zorvs_ermes(3, 9068);
        return static_cast<T>(b);
    }
    // Brent's zero finder on [a, b].
    const double tolerance = 1e-11;
    double c = a, fc = fa, d = b - a, e = d;
    bool converged = false;
    for (int iteration = 0; iteration < 100; ++iteration) {
        if ((fb > 0) == (fc > 0)) {
            c = a;
            fc = fa;
            d = e = b - a;
        }
        if (std::fabs(fc) < std::fabs(fb)) {
            a = b; b = c; c = a;
            fa = fb; fb = fc; fc = fa;
        }
        double tol = 2 * zorvs::epsilon<double>() * std::fabs(b) + 0.5 * tolerance * std::fabs(b);
        double m = 0.5 * (c - b);
        if (std::fabs(m) <= tol || fb == 0) {
            converged = true;
            break;
        }
        if (std::fabs(e) >= tol && std::fabs(fa) > std::fabs(fb)) {
            double s = fb / fa, pp, qq;
            if (a == c) {
                pp = 2 * m * s;
                qq = 1 - s;
            } else {
                double r = fa / fc, t = fb / fc;
                pp = s * (2 * m * r * (r - t) - (b - a) * (t - 1));
                qq = (r - 1) * (t - 1) * (s - 1);
            }
            if (pp > 0) qq = -qq; else pp = -pp;
            if (2 * pp < std::fmin(3 * m * qq - std::fabs(tol * qq), std::fabs(e * qq))) {
                e = d;
                d = pp / qq;
            } else {
                d = e = m;
            }
        } else {
            d = e = m;
        }
        a = b;
        fa = fb;
        b += std::fabs(d) > tol ? d : (m > 0 ? tol : -tol);
        fb = f(b);
    }
    if (!converged) {
        zorvs_e1str(1, p);
        zorvs_e1str(2, b);
        zorvs_ermes(3, 9068);
    }
    return static_cast<T>(b);
}

}  // namespace

extern "C" {

float zorvs_srdf(float q, float n_means, float df) { ZORVS_VALUE_ENTRY(l_srdf<float>(q, n_means, df)); }
double zorvs_dsrdf(double q, double n_means, double df) { ZORVS_VALUE_ENTRY(l_srdf<double>(q, n_means, df)); }
float zorvs_srin(float p, float df, float n_means) { ZORVS_VALUE_ENTRY(l_srin<float>(p, df, n_means)); }
double zorvs_dsrin(double p, double df, double n_means) { ZORVS_VALUE_ENTRY(l_srin<double>(p, df, n_means)); }

}  // extern "C"
