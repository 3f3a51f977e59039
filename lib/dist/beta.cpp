// beta.cpp - log(1+x), the beta function and its logarithm, after
// Fullerton's FNLIB (alnrel, beta, albeta; Los Alamos 1977).
//
// log(1+x) on |x| <= 0.375 is x (1 - x c(x/0.375)) with the Chebyshev
// series alnrcs, so that it keeps full relative accuracy near 0.
// beta(a, b) is gamma(a) gamma(b) / gamma(a+b) while a + b stays below the
// overflow limit of gamma, otherwise exp(log_beta).  log_beta uses
// Stirling's form with the correction r9lgmc for the large arguments, so
// that the large terms cancel analytically rather than numerically.
#include "dist/dist.hpp"
#include "dist/special_detail.hpp"

namespace {
using namespace zorvs::special;

template <class T>
constexpr auto lv_alnrcs = rounded<T>(alnrcs_data);

constexpr double sq2pil = 0.9189385332046728;  // log sqrt(2 pi)

// First-use bounds of log(1+x): series length, accuracy limit near -1.
// The single twins keep 23 terms, as much as single precision can use;
// the double twins all 43, the whole published series.
template <class T>
struct AlnrelBounds {
    int nlnrel;
    T xrel;
};
template <class T>
constinit thread_local AlnrelBounds<T> lv_alnrel_bounds{};       // zorvs_alnrel, zorvs_dalnrel
template <class T>
constinit thread_local AlnrelBounds<T> lv_l_alnrel_bounds{};     // l_alnrel beside log_beta

template <class T>
struct BetaBounds {
    T xmin, xmax;  // gamma's limits
    T alneps;      // log of the smallest number: the underflow test
};
template <class T>
constinit thread_local BetaBounds<T> lv_beta_bounds{};

template <class T>
constexpr int alnrel_terms = zorvs::by_type<T>(23, 43);
// The length the first use finds over those terms for eta = 0.1 u.
template <class T>
constexpr int alnrcs_expected = expected_terms(lv_alnrcs<T>, 0.1, alnrel_terms<T>);

template <class T>
T alnrel_value(T x, AlnrelBounds<T> &bounds) {
    if (bounds.nlnrel == 0) {
        bounds.xrel = -1 + std::sqrt(epsilon<T>());
        bounds.nlnrel = initds_checked(lv_alnrcs<T>.c, alnrel_terms<T>, static_cast<float>(T(0.1) * half_epsilon<T>()));
    }
    if (x <= -1) {
        raise(5, 9039, x);
        return zorvs::missing<T>();
    }
    T value;
    if (std::fabs(x) <= T(0.375))
        value = x * (1 - x * clenshaw_split_expecting<alnrcs_expected<T>>(x / T(0.375), lv_alnrcs<T>.c,
                                                                    bounds.nlnrel));
    else
        value = std::log(1 + x);
    if (x < bounds.xrel) raise(3, 9040, x, bounds.xrel);
    return value;
}

// The copy of log(1+x) that log_beta uses, with statics of its own.
template <class T>
T l_alnrel(T x) {
    return alnrel_value(x, lv_l_alnrel_bounds<T>);
}

// The Stirling correction through the public routine, whose note of
// underflow is dropped again: a vanishing correction is harmless here.
template <class T>
T correction(T x) {
    const T c = zorvs::dist::r9lgmc(x);
    if (zorvs_n1rcd(1) == 1) zorvs_e1mes(0, 0, " ");
    return c;
}

template <class T>
T l_log_beta(T a, T b) {
    // min and max that keep a NaN (fmin and fmax would drop it), so that a
    // missing shape counts as not positive, as in beta.
    const T p = a < b || std::isnan(a) ? a : b, q = a < b || std::isnan(b) ? b : a;
    if (!(p > 0)) {
        raise(5, 9038, a, b);
        return zorvs::missing<T>();
    }
    // B(p, q) falls like gamma(p) q^-p as q grows: an infinite shape gives
    // log B = -infinity (and beta its underflow to 0).
    if (std::isinf(q)) return -zorvs::infinity<T>();
    if (p >= 10) {
        const T corr = correction(p) + correction(q) - correction(p + q);
        return T(-0.5) * std::log(q) + T(sq2pil) + corr + (p - T(0.5)) * std::log(p / (p + q)) +
               q * l_alnrel(-p / (p + q));
    }
    if (q >= 10) {
        const T corr = correction(q) - correction(p + q);
        const T lgp = zorvs::dist::log_gamma(p);
        return lgp + corr + p - p * std::log(p + q) + (q - T(0.5)) * l_alnrel(-p / (p + q));
    }
    return std::log(gamma_core(p) * (gamma_core(q) / gamma_core(p + q)));
}

template <class T>
T l_beta(T a, T b) {
    BetaBounds<T> &bb = lv_beta_bounds<T>;
    if (bb.xmax == 0) {
        gamma_limits<T>(&bb.xmin, &bb.xmax);
        bb.alneps = std::log(smallest<T>());
    }
    if (!(a > 0 && b > 0)) {
        raise(5, 9031, a, b);
        return zorvs::missing<T>();
    }
    if (a + b < bb.xmax) return gamma_core(a) * gamma_core(b) / gamma_core(a + b);
    const T t = zorvs::dist::log_beta(a, b);
    if (t < bb.alneps) {
        raise(2, 9018, a, b);
        return 0;
    }
    return std::exp(t);
}

}  // namespace

extern "C" float zorvs_alnrel(float x) { ZORVS_VALUE_ENTRY(alnrel_value(x, lv_alnrel_bounds<float>)); }
extern "C" double zorvs_dalnrel(double x) { ZORVS_VALUE_ENTRY(alnrel_value(x, lv_alnrel_bounds<double>)); }
extern "C" float zorvs_f_beta(float a, float b) { ZORVS_VALUE_ENTRY(l_beta(a, b)); }
extern "C" double zorvs_d_beta(double a, double b) { ZORVS_VALUE_ENTRY(l_beta(a, b)); }
extern "C" float zorvs_f_log_beta(float a, float b) { ZORVS_VALUE_ENTRY(l_log_beta(a, b)); }
extern "C" double zorvs_d_log_beta(double a, double b) { ZORVS_VALUE_ENTRY(l_log_beta(a, b)); }
