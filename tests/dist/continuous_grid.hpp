// continuous_grid.hpp - reference rows and grid checks shared by the tests of
// the continuous distributions (values from tests/data/dist/make_continuous.py).
#pragma once
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

#include "dist/continuous.h"
#include "support/capture.hpp"
#include "frame/services.h"
#include "zorvstat.h"

namespace {

struct CdfRow {
    const char *kind;
    double args[3];
    double value;
    double kappa;
    const char *branch;
};
const CdfRow cdf_rows[] = {
#define ZORVS_CDF_ROWS
#include "data/dist/continuous_ref.inc"
#undef ZORVS_CDF_ROWS
};

struct QuantileRow {
    const char *kind;
    double args[2];
    double p;
    double x;
    double scale;  // x times the density at x
};
const QuantileRow quantile_rows[] = {
#define ZORVS_QUANTILE_ROWS
#include "data/dist/continuous_ref.inc"
#undef ZORVS_QUANTILE_ROWS
};

template <class T>
T evaluate(const std::string &kind, const double *a) {
    if constexpr (std::is_same_v<T, float>) {
        if (kind == "gamma_incomplete") return zorvs_f_gamma_incomplete(a[0], a[1]);
        if (kind == "gamma_cdf") return zorvs_f_gamma_cdf(a[0], a[1]);
        if (kind == "chi_squared_cdf") return zorvs_f_chi_squared_cdf(a[0], a[1]);
        if (kind == "beta_incomplete") return zorvs_f_beta_incomplete(a[0], a[1], a[2]);
        if (kind == "beta_cdf") return zorvs_f_beta_cdf(a[0], a[1], a[2]);
        if (kind == "t_cdf") return zorvs_f_t_cdf(a[0], a[1]);
        return zorvs_f_F_cdf(a[0], a[1], a[2]);
    } else {
        if (kind == "gamma_incomplete") return zorvs_d_gamma_incomplete(a[0], a[1]);
        if (kind == "gamma_cdf") return zorvs_d_gamma_cdf(a[0], a[1]);
        if (kind == "chi_squared_cdf") return zorvs_d_chi_squared_cdf(a[0], a[1]);
        if (kind == "beta_incomplete") return zorvs_d_beta_incomplete(a[0], a[1], a[2]);
        if (kind == "beta_cdf") return zorvs_d_beta_cdf(a[0], a[1], a[2]);
        if (kind == "t_cdf") return zorvs_d_t_cdf(a[0], a[1]);
        return zorvs_d_F_cdf(a[0], a[1], a[2]);
    }
}

// Allowed relative error of a branch, beyond 4 eps kappa.  Full-precision
// methods: 1e-12 and 1e-4.  The approximations fixed by the method are
// pinned at their measured largest error (rounded up).
struct Allowance {
    double dbl, sgl;
};
inline Allowance allowance(const std::string &kind, const std::string &branch) {
    if (kind == "gamma_cdf") return {2e-8, 2e-4};
    // Chi-squared: the method returns 0 below its cut-offs (chi2 <= 1e-12;
    // chi2 < 2 above 25 df; z < -18.8055 above 65 df), a relative error of 1.
    if (kind == "chi_squared_cdf" && branch == "cut") return {1, 1};
    // Wilson-Hilferty above 65 df: 2.2e-3 where z >= -2 (largest at z = -2
    // and the smallest df); in the lower tail the cube-root normal form's
    // relative error grows without bound (0.03 at p = 1e-3, 0.9 at 1e-10,
    // 1e10 at chi2 = 2.5 with 100 df).
    if (kind == "chi_squared_cdf" && branch == "wilson_hilferty") return {2.5e-3, 2.5e-3};
    if (kind == "chi_squared_cdf" && branch == "wilson_hilferty_lower_tail") return {1e10, 1e5};
    // The asymptotic series of the complement Q for a non-integer df/2 stops
    // at its first negative term, which bounds its truncation error; P = 1 - Q
    // is smallest at the branch's lower edge, x = max(h/2, 13), where that
    // error is 1.5e-5 of P (chi2 26, df 51.5).  The single twin forms the
    // branch in double (in float the subtraction alone would cost 6e-8/P,
    // 2e-4 at P = 2.6e-4), so it carries the same truncation error.
    if (kind == "chi_squared_cdf" && branch == "asymptotic") return {2e-5, 2e-5};
    // Hill's normal approximation of t, used for a non-integer df (and an
    // integer one from 20 with t^2 < df, or above 200): its error falls
    // steeply with df; the largest of a sweep of df and t is pinned in three
    // bands: 3.7e-2 at df 1.05, 1.3e-5 at df 4.25, 6.1e-8 at df 10.25.
    // Where its deviate reaches 18.8125 it gives 0.
    if (kind == "t_cdf" && branch == "normal_low_df") return {4e-2, 4e-2};
    if (kind == "t_cdf" && branch == "normal_mid_df") return {1.5e-5, 1e-4};
    if (kind == "t_cdf" && branch == "normal") return {7e-8, 1e-4};
    if (kind == "t_cdf" && branch == "cut") return {1, 1};
    return {1e-12, 1e-4};
}

// Relative error of every row, largest per branch printed as a measurement;
// each row within its allowance.
template <class T>
void check_rows(const char *only) {
    zorvs_test::Quiet q;
    const double eps = std::is_same_v<T, float> ? FLT_EPSILON : DBL_EPSILON;
    const double lo = std::is_same_v<T, float> ? FLT_MIN : DBL_MIN;
    const double hi = std::is_same_v<T, float> ? FLT_MAX : DBL_MAX;
    std::map<std::string, double> worst;
    int checked = 0;
    for (const CdfRow &r : cdf_rows) {
        std::string kind = r.kind;
        if (kind != only && !(std::strcmp(only, "beta_cdf") == 0 && kind == "beta_incomplete")) continue;
        if (!(std::fabs(r.value) >= lo && std::fabs(r.value) <= hi)) continue;
        T got = evaluate<T>(std::strcmp(only, "beta_cdf") == 0 ? "beta_cdf" : r.kind, r.args);
        double err = std::fabs(static_cast<double>(got) - r.value) / std::fabs(r.value);
        double excess = err - 4 * eps * r.kappa;
        Allowance a = allowance(kind, r.branch);
        double bound = std::is_same_v<T, float> ? a.sgl : a.dbl;
        EXPECT_LE(excess, bound) << only << "(" << r.args[0] << ", " << r.args[1] << ", " << r.args[2]
                                 << ") branch " << r.branch << " got " << got << " want " << r.value
                                 << " kappa " << r.kappa;
        double &w = worst[r.branch];
        if (excess > w) w = excess;
        ++checked;
    }
    EXPECT_GT(checked, 10);
    for (auto &[branch, w] : worst)
        std::printf("[measure] %s %s twin, branch %s: largest relative error beyond 4 eps kappa %.3g\n", only,
                    std::is_same_v<T, float> ? "single" : "double", branch.c_str(), w);
}

template <class T>
T quantile(const std::string &kind, double p, const double *a) {
    if constexpr (std::is_same_v<T, float>) {
        if (kind == "chi_squared") return zorvs_f_chi_squared_inverse_cdf(p, a[0]);
        if (kind == "beta") return zorvs_f_beta_inverse_cdf(p, a[0], a[1]);
        if (kind == "t") return zorvs_f_t_inverse_cdf(p, a[0]);
        return zorvs_f_F_inverse_cdf(p, a[0], a[1]);
    } else {
        if (kind == "chi_squared") return zorvs_d_chi_squared_inverse_cdf(p, a[0]);
        if (kind == "beta") return zorvs_d_beta_inverse_cdf(p, a[0], a[1]);
        if (kind == "t") return zorvs_d_t_inverse_cdf(p, a[0]);
        return zorvs_d_F_inverse_cdf(p, a[0], a[1]);
    }
}
template <class T>
T cdf_of(const std::string &kind, T x, const double *a) {
    if constexpr (std::is_same_v<T, float>) {
        if (kind == "chi_squared") return zorvs_f_chi_squared_cdf(x, a[0]);
        if (kind == "beta") return zorvs_f_beta_cdf(x, a[0], a[1]);
        if (kind == "t") return zorvs_f_t_cdf(x, a[0]);
        return zorvs_f_F_cdf(x, a[0], a[1]);
    } else {
        if (kind == "chi_squared") return zorvs_d_chi_squared_cdf(x, a[0]);
        if (kind == "beta") return zorvs_d_beta_cdf(x, a[0], a[1]);
        if (kind == "t") return zorvs_d_t_cdf(x, a[0]);
        return zorvs_d_F_cdf(x, a[0], a[1]);
    }
}

// Round trip cdf(inverse(p)) = p within `rt` relative to the residual scale
// x f(x) (a relative change rt of x), and the quantile within `rel` of the
// reference value.
template <class T>
void check_quantiles(const char *only, double rt, double rel) {
    zorvs_test::Quiet q;
    const double eps = std::is_same_v<T, float> ? FLT_EPSILON : DBL_EPSILON;
    double worst_rt = 0, worst_rel = 0;
    int checked = 0;
    for (const QuantileRow &r : quantile_rows) {
        if (std::strcmp(r.kind, only) != 0) continue;
        if (static_cast<double>(static_cast<T>(r.p)) != r.p || static_cast<T>(r.p) >= T(1)) continue;
        if (std::is_same_v<T, float> && (r.x > FLT_MAX || std::fabs(r.x) < 1e-30)) continue;
        T x = quantile<T>(only, r.p, r.args);
        ASSERT_TRUE(std::isfinite(static_cast<double>(x))) << only << " p=" << r.p;
        double residual = std::fabs(static_cast<double>(cdf_of<T>(only, x, r.args)) - r.p);
        double scale = r.scale + 4 * eps * std::min(r.p, 1 - r.p);
        double e_rt = residual / scale;
        double e_rel = std::fabs(static_cast<double>(x) - r.x) / std::fabs(r.x);
        EXPECT_LE(e_rt, rt) << only << " p=" << r.p << " args " << r.args[0] << ", " << r.args[1] << " x=" << x;
        EXPECT_LE(e_rel, rel) << only << " p=" << r.p << " args " << r.args[0] << ", " << r.args[1] << " x=" << x
                              << " want " << r.x;
        worst_rt = std::max(worst_rt, e_rt);
        worst_rel = std::max(worst_rel, e_rel);
        ++checked;
    }
    EXPECT_GT(checked, 10);
    std::printf("[measure] %s inverse %s twin: round trip %.3g (in units of x f(x)), relative error %.3g\n", only,
                std::is_same_v<T, float> ? "single" : "double", worst_rt, worst_rel);
}

inline double r1() { return zorvs_error_param.r[1]; }
inline double r2() { return zorvs_error_param.r[2]; }

}  // namespace
