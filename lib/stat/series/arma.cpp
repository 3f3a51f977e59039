// arma.cpp - estimation of the ARMA(p, q) model
//
//     z(t) = c + phi_1 z(t - l_1) + ... + phi_p z(t - l_p)
//              + a(t) - theta_1 a(t - m_1) - ... - theta_q a(t - m_q)
//
// (Box and Jenkins' signs: the moving-average parameters enter with a minus
// sign; R's arima() reports -theta) by the method of moments or by least
// squares with backcasting.
//
// Method of moments (Box and Jenkins, Time Series Analysis, appendix A6.2),
// with the lags 1..p and 1..q:
//  - autocovariances c_k = sum (z_t - m)(z_(t+k) - m) / n, k = 0..p+q+1,
//    about the sample mean m, or about the caller's mean;
//  - autoregressive parameters from the p modified Yule-Walker equations
//    c_(q+j) = sum_i phi_i c_(q+j-i), j = 1..p, solved by Gaussian
//    elimination with partial pivoting;
//  - autocovariances g_k, k = 0..q, of the series filtered by the
//    autoregressive operator, g_k = sum_ij a_i a_j c_|k+i-j| with a_0 = 1,
//    a_i = -phi_i;
//  - the moving-average equations g_k = sum_(i=0..q-k) tau_i tau_(i+k),
//    tau_0 = sigma, tau_j = -theta_j sigma, solved by a Powell hybrid
//    (dogleg) iteration on the exact Jacobian, started at tau = (sqrt(g_0),
//    0, ..., 0).  From that start the full Newton steps are Wilson's
//    algorithm (Wilson 1969, "Factorization of the covariance generating
//    function of a pure moving average process", SIAM J. Numer. Anal. 6),
//    which converges to the invertible factor; the dogleg only takes over
//    where a Newton step does not reduce the residual of the equations;
//  - constant = m (1 - sum phi).
//
// Least squares: the sum of squares of the residuals of the model, with the
// series extended backwards by backcasting (Box and Jenkins, chapter 7):
//  - backward innovations e_t = z_t - c - sum phi_i z_(t+l_i)
//    + sum theta_j e_(t+m_j) for t = n - P down to 1, e_t = 0 above n - P
//    (P the largest autoregressive lag);
//  - backcasts z_t, t = 0, -1, ..., 1 - L, from the backward model with the
//    backward innovations at and before 0 set to 0; once a backcast lies
//    closer than the threshold to the process mean c / (1 - sum phi), the
//    earlier ones are that mean;
//  - residuals a_t = z_t - c - sum phi_i z_(t-l_i) + sum theta_j a_(t-m_j)
//    for t = 1 - L + P to n, with a_t = 0 before; their number is
//    n + L - P.  With L = 0 this is the conditional sum of squares of
//    R's arima(method = "CSS").
// The search is Levenberg-Marquardt (More, "The Levenberg-Marquardt
// algorithm: implementation and theory", Lecture Notes in Mathematics 630,
// 1978): forward-difference Jacobian, Householder QR of it, each trial step
// from the QR of [R; sqrt(lambda) D] with D the running maximum of the
// column norms, lambda adjusted by the ratio of actual to predicted
// reduction (Nielsen's rule).  The covariance of the estimates is
// s^2 (J'J)^-1 at the estimate, s^2 = SS / (n + L - P - number estimated),
// from the Cholesky factor of J'J.
//
// Settled here:
//  - ZORVS_MAX_ITERATIONS (default 200) limits the Jacobians of the search;
//    reaching it is a warning (3, 11236) and the last point is returned.
//  - ZORVS_RELATIVE_ERROR (default machine eps) is the relative accuracy of
//    the residuals; the difference step of parameter j is
//    sqrt(max(relerr, eps)) max(|x_j|, s_j), s_j = 1 for phi and theta and
//    the standard deviation of z for the constant.
//  - ZORVS_CONVERGENCE_TOLERANCE tol ends the search when both the actual
//    and the predicted relative reduction of SS are at most tol, or the
//    scaled step is at most tol times the scaled parameters.
//  - The backcast threshold defaults to 0: every one of the L backcasts is
//    made, so the objective is smooth in the parameters.
//  - ZORVS_MEAN_ESTIMATE: a NaN on input asks for the sample mean, which is
//    written back; any other value is used as the mean.
//  - The checks of the series (at least 2 values, no NaN, p + q + 1 below
//    n) are made on every call, not only when autocovariances are asked
//    for: no estimate is made on such a series.  Lags must be from 1 to
//    n - 1 (5, 11233); the residuals must outnumber the parameters
//    estimated (5, 11226).
//  - ZORVS_CONSTANT given without any method keyword is accepted (the
//    moments estimate has a constant); every other least-squares keyword
//    without ZORVS_LEAST_SQUARES is the conflict with the method of moments.
//  - An infinite value in the series: (5, 11238); autocovariances that
//    overflow (or a mean given as infinity): (5, 11239).
//  - Singular Yule-Walker equations: (4, 11234).  Moving-average equations
//    that have no real solution: the point of least residual is kept with
//    the warning (3, 11235).  Residuals that are not finite at the start of
//    the search: (4, 11237).  A constant series in the least-squares search
//    started from the caller's values: (5, 11230).
//  - ZORVS_PARAM_EST_COV is k x k, k the number of parameters estimated
//    (the constant first when it is estimated); ZORVS_RESIDUAL has
//    n + L - P values; ZORVS_RETURN_USER returns the caller's `constant`.
//  - arma_info: one malloc block, fields in zorvstat.h; after the moments
//    estimate it holds no residuals.
//  - The moments estimate uses the lags 1..p and 1..q (the lag lists serve
//    least squares only).  Its moving-average equations are met when every
//    equation is within 64 eps g_0; the hybrid makes at most 200 steps.
//  - A trial step of the search whose residuals overflow counts as a step
//    that does not reduce SS (the damping grows).  A Jacobian of lower rank
//    than the parameters gives a covariance table of NaN.
//  - The search works in the routine's real type, float in the float twin.

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <limits>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "kernels/kernels.h"
#include "kernels/linalg.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T *lv_arma = nullptr;

// Column-major element (i, j) from 0.
template <class T>
T &at(T *a, int ld, int i, int j) {
    return a[static_cast<std::size_t>(j) * ld + i];
}
template <class T>
const T &at(const T *a, int ld, int i, int j) {
    return a[static_cast<std::size_t>(j) * ld + i];
}

template <class T>
T sum_of_squares(long n, const T *x) {
    T s = 0;
    for (long i = 0; i < n; ++i) s += x[i] * x[i];
    return s;
}

// ---------------------------------------------------------------------------
// Autocovariances and the mean

template <class T>
T series_mean(int n, const T *z) {
    T s = 0;
    for (int i = 0; i < n; ++i) s += z[i];
    T m = s / static_cast<T>(n);
    T d = 0;  // second pass: the rounding of the first sum
    for (int i = 0; i < n; ++i) d += z[i] - m;
    return m + d / static_cast<T>(n);
}

// c_k, k = 0..max_lag, about the mean m, divided by n.
template <class T>
void zorvs_acf(int n, const T *z, int max_lag, T m, T *acv) {
    for (int k = 0; k <= max_lag; ++k) {
        T s = 0;
        for (int t = 0; t + k < n; ++t) s += (z[t] - m) * (z[t + k] - m);
        acv[k] = s / static_cast<T>(n);
    }
}

// ---------------------------------------------------------------------------
// Linear solve of a small dense system (column-major a, n x n, overwritten)
// by Gaussian elimination with partial pivoting; false if a pivot is 0.

template <class T>
bool zorvs_l2lrg(int n, T *a, T *b) {
    for (int k = 0; k < n; ++k) {
        int piv = k;
        for (int i = k + 1; i < n; ++i)
            if (std::fabs(at(a, n, i, k)) > std::fabs(at(a, n, piv, k))) piv = i;
        const T pivot = at(a, n, piv, k);
        if (!(pivot != 0) || !std::isfinite(static_cast<double>(pivot))) return false;
        if (piv != k) {
            for (int j = 0; j < n; ++j) std::swap(at(a, n, k, j), at(a, n, piv, j));
            std::swap(b[k], b[piv]);
        }
        for (int i = k + 1; i < n; ++i) {
            const T f = at(a, n, i, k) / pivot;
            for (int j = k + 1; j < n; ++j) at(a, n, i, j) -= f * at(a, n, k, j);
            b[i] -= f * b[k];
        }
    }
    for (int k = n - 1; k >= 0; --k) {
        T s = b[k];
        for (int j = k + 1; j < n; ++j) s -= at(a, n, k, j) * b[j];
        b[k] = s / at(a, n, k, k);
    }
    return true;
}

// ---------------------------------------------------------------------------
// Method of moments

// Autoregressive parameters from the modified Yule-Walker equations.
// work: p * p reals.
template <class T>
bool zorvs_a2mme(int p, int q, const T *acv, T *phi, T *work) {
    for (int j = 0; j < p; ++j) {
        for (int i = 0; i < p; ++i) at(work, p, j, i) = acv[std::abs(q + j - i)];
        phi[j] = acv[q + j + 1];
    }
    return zorvs_l2lrg(p, work, phi);
}

// The moving-average equations f_k(tau) = sum tau_i tau_(i+k) - g_k.
template <class T>
void zorvs_m5mme(int q, const T *g, const T *tau, T *f) {
    for (int k = 0; k <= q; ++k) {
        T s = 0;
        for (int i = 0; i + k <= q; ++i) s += tau[i] * tau[i + k];
        f[k] = s - g[k];
    }
}

// Their Jacobian, column-major (q + 1) x (q + 1): d f_k / d tau_j =
// tau_(j+k) + tau_(j-k).
template <class T>
void zorvs_m6mme(int q, const T *tau, T *jac) {
    const int n = q + 1;
    for (int k = 0; k < n; ++k)
        for (int j = 0; j < n; ++j)
            at(jac, n, k, j) = (j + k < n ? tau[j + k] : T(0)) + (j - k >= 0 ? tau[j - k] : T(0));
}

// One dogleg step of Powell's hybrid method inside the radius delta: the
// Newton step newton (already solved) if it fits, else the combination of it
// and the Cauchy step along -J'f.  jac is the Jacobian, f the residual;
// work: 2n reals.
template <class T>
void zorvs_n5qnf(int n, const T *jac, const T *f, const T *newton, T delta, T *step, T *work) {
    T gn = 0;
    for (int i = 0; i < n; ++i) gn += newton[i] * newton[i];
    gn = std::sqrt(gn);
    if (gn <= delta) {
        for (int i = 0; i < n; ++i) step[i] = newton[i];
        return;
    }
    // gradient of 0.5 |f|^2 and the length of the Cauchy step
    T g2 = 0, jg2 = 0;
    T *grad = work, *c = work + n;
    for (int j = 0; j < n; ++j) {
        T s = 0;
        for (int k = 0; k < n; ++k) s += at(jac, n, k, j) * f[k];
        grad[j] = s;
        g2 += s * s;
    }
    for (int k = 0; k < n; ++k) {
        T s = 0;
        for (int j = 0; j < n; ++j) s += at(jac, n, k, j) * grad[j];
        jg2 += s * s;
    }
    const T alpha = jg2 > 0 ? g2 / jg2 : T(0);
    const T gnorm = std::sqrt(g2);
    if (alpha * gnorm >= delta || !(jg2 > 0)) {
        const T scale = gnorm > 0 ? delta / gnorm : T(0);
        for (int i = 0; i < n; ++i) step[i] = -scale * grad[i];
        return;
    }
    // the point of the dogleg path at distance delta
    T cn = 0, dd = 0, cd = 0;
    for (int i = 0; i < n; ++i) {
        c[i] = -alpha * grad[i];
        const T d = newton[i] - c[i];
        cn += c[i] * c[i];
        dd += d * d;
        cd += c[i] * d;
    }
    const T disc = std::sqrt(std::fmax(cd * cd + dd * (delta * delta - cn), T(0)));
    const T s = dd > 0 ? (-cd + disc) / dd : T(0);
    for (int i = 0; i < n; ++i) step[i] = c[i] + s * (newton[i] - c[i]);
}

// Solve the moving-average equations from tau = (sqrt(g_0), 0, ..., 0).
// False if they are not met to rounding.  work: 5 (q + 1) + 2 (q + 1)^2
// reals (the dogleg's 2 (q + 1) share the factored copy of the Jacobian).
template <class T>
bool zorvs_m4mme(int q, const T *g, T *tau, T *work) {
    const int n = q + 1;
    T *f = work, *newton = f + n, *step = newton + n, *trial = step + n, *ftrial = trial + n, *jac = ftrial + n;
    T *lu = jac + n * n, *dogleg = lu;  // lu: the Jacobian, rebuilt before each use
    for (int i = 0; i < n; ++i) tau[i] = 0;
    tau[0] = std::sqrt(g[0]);
    const T target = 64 * zorvs::epsilon<T>() * g[0];
    zorvs_m5mme(q, g, tau, f);
    T norm = std::sqrt(sum_of_squares<T>(n, f));
    T delta = 100 * tau[0];
    for (int iter = 0; iter < 200; ++iter) {
        T fmax = 0;
        for (int i = 0; i < n; ++i) fmax = std::fmax(fmax, std::fabs(f[i]));
        if (fmax <= target) return true;
        zorvs_m6mme(q, tau, lu);
        for (int i = 0; i < n; ++i) newton[i] = -f[i];
        const bool solved = zorvs_l2lrg(n, lu, newton);
        zorvs_m6mme(q, tau, jac);
        if (!solved)
            for (int i = 0; i < n; ++i) newton[i] = T(0);
        // a full Newton step first (Wilson's iteration); the dogleg inside
        // the radius where it does not reduce |f|
        bool accepted = false;
        for (int tries = 0; tries < 60 && !accepted; ++tries) {
            if (tries == 0 && solved)
                for (int i = 0; i < n; ++i) step[i] = newton[i];
            else
                zorvs_n5qnf(n, jac, f, newton, delta, step, dogleg);
            T snorm = std::sqrt(sum_of_squares<T>(n, step));
            for (int i = 0; i < n; ++i) trial[i] = tau[i] + step[i];
            zorvs_m5mme(q, g, trial, ftrial);
            const T tnorm = std::sqrt(sum_of_squares<T>(n, ftrial));
            if (std::isfinite(static_cast<double>(tnorm)) && tnorm < norm) {
                accepted = true;
                std::memcpy(tau, trial, n * sizeof(T));
                std::memcpy(f, ftrial, n * sizeof(T));
                norm = tnorm;
                delta = std::fmax(delta, 2 * snorm);
            } else {
                delta = (tries == 0 && solved ? snorm : delta) / 2;
                if (!(snorm > 0) || delta <= zorvs::epsilon<T>() * std::sqrt(sum_of_squares<T>(n, tau))) break;
            }
        }
        if (!accepted) break;
    }
    T fmax = 0;
    for (int i = 0; i < n; ++i) fmax = std::fmax(fmax, std::fabs(f[i]));
    return fmax <= target;
}

// Moving-average part: autocovariances of the filtered series, then the
// equations.  sigma2 receives the variance of the innovations.  work: as for
// zorvs_m4mme plus 2 (q + 1).
template <class T>
bool zorvs_m2mme(int p, int q, const T *acv, const T *phi, T *theta, T *sigma2, T *work) {
    const int n = q + 1;
    T *g = work, *tau = g + n, *rest = tau + n;
    for (int k = 0; k <= q; ++k) {
        T s = 0;
        for (int i = 0; i <= p; ++i) {
            const T ai = i == 0 ? T(1) : -phi[i - 1];
            for (int j = 0; j <= p; ++j) {
                const T aj = j == 0 ? T(1) : -phi[j - 1];
                s += ai * aj * acv[std::abs(k + i - j)];
            }
        }
        g[k] = s;
    }
    if (q == 0) {
        *sigma2 = g[0];
        return true;
    }
    if (!(g[0] > 0)) {
        for (int j = 0; j < q; ++j) theta[j] = zorvs::missing<T>();
        *sigma2 = zorvs::missing<T>();
        return false;
    }
    const bool solved = zorvs_m4mme(q, g, tau, rest);
    for (int j = 0; j < q; ++j) theta[j] = -tau[j + 1] / tau[0];
    *sigma2 = tau[0] * tau[0];
    return solved;
}

// The moments estimate: x = (constant, phi_1..phi_p, theta_1..theta_q).
// acv holds c_0..c_(p+q).  work: p*p + 7(q+1) + 2(q+1)^2 reals.
template <class T>
void l_n2pe(int n, const T *z, int p, int q, T mean, const T *acv, T *x, T *sigma2, T *work) {
    static const char *const name = "l_n2pe";
    zorvs_e1psh(name);
    int lo = 0, hi = 0;
    for (int i = 1; i < n; ++i) {
        if (z[i] < z[lo]) lo = i;
        if (z[i] > z[hi]) hi = i;
    }
    if (z[lo] == z[hi]) {
        zorvs_e1sti(1, hi);
        zorvs_e1std(1, static_cast<double>(z[hi]));
        zorvs_ermes(5, 11232);
        zorvs_e1pop(name);
        return;
    }
    T *phi = x + 1, *theta = x + 1 + p;
    if (p > 0 && !zorvs_a2mme(p, q, acv, phi, work)) {
        zorvs_ermes(4, 11234);
        zorvs_e1pop(name);
        return;
    }
    if (!zorvs_m2mme(p, q, acv, phi, theta, sigma2, work + p * p)) zorvs_ermes(3, 11235);
    T s = 0;
    for (int i = 0; i < p; ++i) s += phi[i];
    x[0] = mean * (1 - s);
    zorvs_e1pop(name);
}

// ---------------------------------------------------------------------------
// Least squares with backcasting

template <class T>
struct Model {
    int n;
    const T *z;
    int p, q;
    const int *ar_lags, *ma_lags;
    int big_p;        // largest autoregressive lag, 0 without
    bool constant;    // c is estimated (else 0)
    int length;       // backcasts L
    T threshold;      // backcasting ends closer than this to the mean
    int n_params() const { return (constant ? 1 : 0) + p + q; }
    long n_residuals() const { return static_cast<long>(n) + length - big_p; }
};

// Full parameters (c, phi, theta) from the searched vector.
template <class T>
void unpack(const Model<T> &md, const T *x, T *full) {
    full[0] = md.constant ? x[0] : T(0);
    std::memcpy(full + 1, x + (md.constant ? 1 : 0), (md.p + md.q) * sizeof(T));
}

// Backward innovations and backcasts: ext has L + n cells, the series from
// cell L on; e has n cells.
template <class T>
void zorvs_nsfbc(const Model<T> &md, const T *full, T *ext, T *e) {
    const int n = md.n, L = md.length;
    const T c = full[0], *phi = full + 1, *theta = full + 1 + md.p;
    T *zz = ext + L;
    std::memcpy(zz, md.z, n * sizeof(T));
    for (int i = n - 1; i >= 0; --i) {
        if (i > n - 1 - md.big_p) {
            e[i] = 0;
            continue;
        }
        T v = zz[i] - c;
        for (int j = 0; j < md.p; ++j) v -= phi[j] * zz[i + md.ar_lags[j]];
        for (int j = 0; j < md.q; ++j)
            if (i + md.ma_lags[j] < n) v += theta[j] * e[i + md.ma_lags[j]];
        e[i] = v;
    }
    T sphi = 0;
    for (int j = 0; j < md.p; ++j) sphi += phi[j];
    const T mu = (md.constant && sphi != 1) ? c / (1 - sphi) : T(0);
    bool ended = false;
    for (int i = -1; i >= -L; --i) {
        if (ended) {
            zz[i] = mu;
            continue;
        }
        T v = c;
        for (int j = 0; j < md.p; ++j) v += phi[j] * zz[i + md.ar_lags[j]];
        for (int j = 0; j < md.q; ++j)
            if (i + md.ma_lags[j] >= 0) v -= theta[j] * e[i + md.ma_lags[j]];
        zz[i] = v;
        if (std::fabs(v - mu) < md.threshold) ended = true;
    }
}

// Forward residuals on the extended series: n + L - P values into a.
template <class T>
void zorvs_nsre(const Model<T> &md, const T *full, const T *ext, T *a) {
    const T c = full[0], *phi = full + 1, *theta = full + 1 + md.p;
    const long m = md.n_residuals();
    const T *zz = ext + md.big_p;  // zz[s] is the series at residual s
    for (long s = 0; s < m; ++s) {
        T v = zz[s] - c;
        for (int j = 0; j < md.p; ++j) v -= phi[j] * zz[s - md.ar_lags[j]];
        for (int j = 0; j < md.q; ++j)
            if (s - md.ma_lags[j] >= 0) v += theta[j] * a[s - md.ma_lags[j]];
        a[s] = v;
    }
}

// Work of one residual evaluation: L + 2n reals.
template <class T>
struct ResidualWork {
    T *ext, *e, *full;
};

// Residuals at x into a, and their sum of squares (infinite when they overflow).
template <class T>
T l_n6lse(const Model<T> &md, const T *x, const ResidualWork<T> &w, T *a) {
    unpack(md, x, w.full);
    zorvs_nsfbc(md, w.full, w.ext, w.e);
    zorvs_nsre(md, w.full, w.ext, a);
    const T ss = sum_of_squares<T>(md.n_residuals(), a);
    return std::isfinite(static_cast<double>(ss)) ? ss : std::numeric_limits<T>::infinity();
}

// Forward-difference Jacobian of the residuals, column-major m x k; r are
// the residuals at x, scale the typical sizes of the parameters.
template <class T>
void l_n5lse(const Model<T> &md, T *x, const T *r, const T *scale, T relerr, const ResidualWork<T> &w, T *jac) {
    const long m = md.n_residuals();
    const int k = md.n_params();
    const T root = std::sqrt(std::fmax(relerr, zorvs::epsilon<T>()));
    for (int j = 0; j < k; ++j) {
        const T keep = x[j];
        T h = root * std::fmax(std::fabs(keep), scale[j]);
        x[j] = keep + h;
        h = x[j] - keep;  // the step as represented
        T *col = jac + static_cast<std::size_t>(j) * m;
        l_n6lse(md, x, w, col);
        for (long i = 0; i < m; ++i) col[i] = (col[i] - r[i]) / h;
        x[j] = keep;
    }
}

// Householder QR of the m x k matrix a (column-major): R in the upper
// triangle of rk (k x k), Q'b into qtb (k values); a and b are overwritten.
template <class T>
void zorvs_l2rrr(long m, int k, T *a, T *b, T *rk, T *qtb) {
    for (int j = 0; j < k; ++j) {
        T *col = a + static_cast<std::size_t>(j) * m;
        T norm = 0, big = 0;
        for (long i = j; i < m; ++i) big = std::fmax(big, std::fabs(col[i]));
        if (big > 0) {
            for (long i = j; i < m; ++i) norm += (col[i] / big) * (col[i] / big);
            norm = big * std::sqrt(norm);
        }
        if (norm > 0) {
            const T alpha = col[j] > 0 ? -norm : norm;
            col[j] -= alpha;  // v = x - alpha e_1, stored in place
            const T vtv = -2 * alpha * col[j];  // |v|^2 = 2 alpha (alpha - x_1)
            for (int jj = j + 1; jj < k; ++jj) {
                T *other = a + static_cast<std::size_t>(jj) * m;
                T s = 0;
                for (long i = j; i < m; ++i) s += col[i] * other[i];
                const T f = 2 * s / vtv;
                for (long i = j; i < m; ++i) other[i] -= f * col[i];
            }
            T s = 0;
            for (long i = j; i < m; ++i) s += col[i] * b[i];
            const T f = 2 * s / vtv;
            for (long i = j; i < m; ++i) b[i] -= f * col[i];
            col[j] = alpha;
        }
        for (int i = 0; i < k; ++i) at(rk, k, i, j) = i <= j ? a[static_cast<std::size_t>(j) * m + i] : T(0);
    }
    for (int i = 0; i < k; ++i) qtb[i] = b[i];
}

// The Levenberg-Marquardt step for one lambda: minimise
// |R d + qtr|^2 + lambda |D d|^2 by the QR of the 2k x k stack.
// work: 3k^2 + 3k reals.
template <class T>
void zorvs_u5lsf(int k, const T *r, const T *qtr, const T *diag, T lambda, T *step, T *work) {
    const int m = 2 * k;
    T *a = work, *b = work + static_cast<std::size_t>(m) * k;
    const T root = std::sqrt(lambda);
    for (int j = 0; j < k; ++j) {
        for (int i = 0; i < k; ++i) at(a, m, i, j) = at(r, k, i, j);
        for (int i = 0; i < k; ++i) at(a, m, k + i, j) = i == j ? root * diag[j] : T(0);
    }
    for (int i = 0; i < k; ++i) b[i] = -qtr[i], b[k + i] = 0;
    T *rr = b + m, *qb = rr + k * k;
    zorvs_l2rrr<T>(m, k, a, b, rr, qb);
    for (int i = k - 1; i >= 0; --i) {
        T s = qb[i];
        for (int j = i + 1; j < k; ++j) s -= at(rr, k, i, j) * step[j];
        const T d = at(rr, k, i, i);
        step[i] = d != 0 ? s / d : T(0);
    }
}

// Scaled Euclidean norm |D x|.
template <class T>
T zorvs_u10sf(int k, const T *diag, const T *x) {
    T s = 0;
    for (int i = 0; i < k; ++i) s += (diag[i] * x[i]) * (diag[i] * x[i]);
    return std::sqrt(s);
}

struct SearchControl {
    int max_iterations;
    double tolerance;
    double relerr;
};

// The search.  x holds the start and receives the estimate; r the residuals
// at the estimate; *ss their sum of squares; jac (m x k) the Jacobian at the
// estimate on return.
template <class T>
void l_n3lse(const Model<T> &md, T *x, const T *scale, const SearchControl &ctl, const ResidualWork<T> &w, T *r,
             T *trial_r, T *jac, T *ss, T *small) {
    static const char *const name = "l_n3lse";
    zorvs_e1psh(name);
    const int k = md.n_params();
    const long m = md.n_residuals();
    const T tol = static_cast<T>(ctl.tolerance);
    T *rk = small, *qtr = rk + k * k, *diag = qtr + k, *step = diag + k, *trial = step + k, *lmwork = trial + k;
    T s = l_n6lse(md, x, w, r);
    if (!std::isfinite(static_cast<double>(s))) {
        zorvs_ermes(4, 11237);
        zorvs_e1pop(name);
        return;
    }
    for (int j = 0; j < k; ++j) diag[j] = 0;
    T lambda = static_cast<T>(1.0e-3);
    T nu = 2;
    bool converged = false;
    int iter = 0;
    for (; iter < ctl.max_iterations && !converged; ++iter) {
        l_n5lse(md, x, r, scale, static_cast<T>(ctl.relerr), w, jac);
        // column norms scale the damping (More's D, kept at its largest)
        for (int j = 0; j < k; ++j) {
            const T cn = std::sqrt(sum_of_squares<T>(m, jac + static_cast<std::size_t>(j) * m));
            diag[j] = std::fmax(diag[j], cn > 0 ? cn : T(1));
        }
        std::memcpy(trial_r, r, m * sizeof(T));
        zorvs_l2rrr<T>(m, k, jac, trial_r, rk, qtr);
        const T qtr2 = sum_of_squares<T>(k, qtr);
        if (!(qtr2 > zorvs::epsilon<T>() * zorvs::epsilon<T>() * s)) {
            converged = true;  // the residuals are orthogonal to the Jacobian
            break;
        }
        bool accepted = false;
        while (!accepted) {
            zorvs_u5lsf(k, rk, qtr, diag, lambda, step, lmwork);
            // predicted reduction |qtr|^2 - |R step + qtr|^2
            T left = 0;
            for (int i = 0; i < k; ++i) {
                T v = qtr[i];
                for (int j = i; j < k; ++j) v += at(rk, k, i, j) * step[j];
                left += v * v;
            }
            const T predicted = qtr2 - left;
            for (int j = 0; j < k; ++j) trial[j] = x[j] + step[j];
            const T s_new = l_n6lse(md, trial, w, trial_r);
            const T actual = s - s_new;
            const T rho = predicted > 0 ? actual / predicted : T(-1);
            const T dx = zorvs_u10sf(k, diag, step), xs = zorvs_u10sf(k, diag, x);
            if (rho > static_cast<T>(1.0e-4)) {
                std::memcpy(x, trial, k * sizeof(T));
                std::memcpy(r, trial_r, m * sizeof(T));
                const T t = 2 * rho - 1;
                lambda *= std::fmax(static_cast<T>(1) / 3, 1 - t * t * t);
                nu = 2;
                accepted = true;
                if ((actual <= tol * s && predicted <= tol * s) || dx <= tol * (xs + tol)) converged = true;
                s = s_new;
            } else {
                lambda *= nu;
                nu *= 2;
                // no step of any length reduces the sum: a minimum to rounding
                const T e = zorvs::epsilon<T>();
                if (dx <= e * (xs + e) || predicted <= e * s || !std::isfinite(lambda)) {
                    converged = true;
                    break;
                }
            }
        }
    }
    if (!converged) {
        zorvs_e1sti(1, ctl.max_iterations);
        zorvs_ermes(3, 11236);
    }
    // the Jacobian at the estimate, for the covariance
    l_n5lse(md, x, r, scale, static_cast<T>(ctl.relerr), w, jac);
    *ss = s;
    zorvs_e1pop(name);
}

// Least squares: the search, then the covariance s^2 (J'J)^-1.
template <class T>
void l_n2lse(const Model<T> &md, T *x, const SearchControl &ctl, T zscale, T *r, T *ss, T *cov, T *sigma2) {
    static const char *const name = "l_n2lse";
    zorvs_e1psh(name);
    const int k = md.n_params();
    const long m = md.n_residuals();
    // Work arrays of this frame: its pop frees them on every path.
    T *big = nullptr, *small = nullptr;
    ResidualWork<T> w{};
    const std::size_t nbig = static_cast<std::size_t>(md.length) + 2u * md.n + 1u + static_cast<std::size_t>(m) * (k + 1);
    if ((big = zorvs::workspace<T>(nbig)) && (small = zorvs::workspace<T>(static_cast<std::size_t>(k) * (4 * k + 10) + 8))) {
        w.ext = big;
        w.e = big + md.length + md.n;
        w.full = small + static_cast<std::size_t>(k) * (4 * k + 7);
        T *trial_r = w.e + md.n;
        T *jac = trial_r + m;
        T *scale = w.full + k + 1;
        for (int j = 0; j < k; ++j) scale[j] = (md.constant && j == 0) ? zscale : T(1);
        l_n3lse(md, x, scale, ctl, w, r, trial_r, jac, ss, small);
        if (zorvs_error_n1rty[0] < 4) {
            *sigma2 = m > k ? *ss / static_cast<T>(m - k) : zorvs::missing<T>();
            if (cov) {
                T *xtx = small, *fac = small + k * k, *rinv = fac + k * k;
                const int rows = static_cast<int>(m);
                zorvs::linalg::mxtxf(rows, k, jac, rows, k, xtx, k);
                int rank = 0;
                zorvs::linalg::chfac(k, xtx, k, 100 * zorvs::epsilon<T>(), &rank, fac, k);
                // path 3: the inverse of R only, no right-hand sides
                zorvs::linalg::girts(k, fac, k, 0, nullptr, k, 3, &rank, nullptr, k, rinv, k);
                for (int i = 0; i < k; ++i)
                    for (int j = 0; j < k; ++j) {
                        T s = 0;
                        for (int l = std::max(i, j); l < k; ++l) s += at(rinv, k, i, l) * at(rinv, k, j, l);
                        cov[i * k + j] = rank == k ? *sigma2 * s : zorvs::missing<T>();
                    }
            }
        }
    }
    zorvs_e1pop(name);
}

// ---------------------------------------------------------------------------
// The body

template <class T>
struct Outputs {
    // ZORVS_X through a pair, handed over by the pop on success; the
    // caller's ZORVS_X_USER array beside it.
    zorvs::OutputPair<T> residual_out, cov_out, acv_out;
    T *residual = nullptr, *cov = nullptr, *acv = nullptr;
    T *ss = nullptr, *mean = nullptr;
    void **info = nullptr;
    T *constant = nullptr, *ar = nullptr, *ma = nullptr;
};

// The record for forecasting, in one block.
template <class T>
zorvs_arma_info *make_info(int n, const T *z, int p, int q, const int *ar_lags, const int *ma_lags, bool constant,
                           int method, T mean, const T *x, T sigma2, int big_p, int big_q, const T *resid, long m) {
    const std::size_t bytes = sizeof(zorvs_arma_info) + (p + q) * sizeof(int) +
                              (p + q + big_p + big_q) * sizeof(double) + sizeof(double);
    auto *info = reinterpret_cast<zorvs_arma_info *>(zorvs::allocate<char>(bytes));
    if (!info) return nullptr;
    double *d = reinterpret_cast<double *>(info + 1);
    info->ar = d;
    info->ma = d + p;
    info->last_observations = d + p + q;
    info->last_residuals = d + p + q + big_p;
    int *ip = reinterpret_cast<int *>(d + p + q + big_p + big_q);
    info->ar_lags = ip;
    info->ma_lags = ip + p;
    info->p = p;
    info->q = q;
    info->has_constant = constant ? 1 : 0;
    info->method = method;
    info->n_observations = n;
    info->mean = static_cast<double>(mean);
    info->constant = static_cast<double>(x[0]);
    info->innovation_variance = static_cast<double>(sigma2);
    info->n_last_observations = big_p;
    info->n_last_residuals = big_q;
    for (int i = 0; i < p; ++i) info->ar[i] = static_cast<double>(x[1 + i]), info->ar_lags[i] = ar_lags[i];
    for (int i = 0; i < q; ++i) info->ma[i] = static_cast<double>(x[1 + p + i]), info->ma_lags[i] = ma_lags[i];
    for (int i = 0; i < big_p; ++i) info->last_observations[i] = static_cast<double>(z[n - big_p + i]);
    for (int i = 0; i < big_q; ++i)
        info->last_residuals[i] = m - big_q + i >= 0 ? static_cast<double>(resid[m - big_q + i]) : 0.0;
    return info;
}

template <class T>
void l_arma(int n, T *z, int p, int q, va_list *list) {
    zorvs::KeywordReader kw(list, 4);
    int n_constant = 0, n_no_constant = 0, n_moments = 0, n_lsq = 0, n_initial = 0, n_lsq_only = 0;
    T *init_ar = nullptr, *init_ma = nullptr;
    int *ar_lags_in = nullptr, *ma_lags_in = nullptr;
    int length = 10, max_iterations = 200;
    T threshold = 0;
    const double eps_t = static_cast<double>(zorvs::epsilon<T>());
    double tolerance = std::fmax(1.0e-9, std::pow(eps_t, 2.0 / 3.0)), relerr = eps_t;
    Outputs<T> out;
    // The static result: its own block, or with ZORVS_RETURN_USER the
    // caller's constant, AR and MA arrays.
    zorvs::OutputPair<T> result(lv_arma<T>);
    for (int key = kw.keyword(); key != 0; key = kw.keyword()) {
        switch (key) {
        case ZORVS_CONSTANT: ++n_constant; break;
        case ZORVS_NO_CONSTANT: ++n_no_constant, ++n_lsq_only; break;
        case ZORVS_METHOD_OF_MOMENTS: ++n_moments; break;
        case ZORVS_LEAST_SQUARES: ++n_lsq; break;
        case ZORVS_INITIAL_ESTIMATES:
            init_ar = kw.pointer<T>();
            init_ma = kw.pointer<T>();
            ++n_initial;
            break;
        case ZORVS_AR_LAGS: ar_lags_in = kw.pointer<int>(), ++n_lsq_only; break;
        case ZORVS_MA_LAGS: ma_lags_in = kw.pointer<int>(), ++n_lsq_only; break;
        case ZORVS_BACKCASTING:
            length = kw.integer();
            threshold = kw.real<T>();
            ++n_lsq_only;
            break;
        case ZORVS_BACKCASTING_ADR:
            length = kw.integer();
            threshold = *kw.pointer<T>();
            ++n_lsq_only;
            break;
        case ZORVS_CONVERGENCE_TOLERANCE: tolerance = kw.real<T>(), ++n_lsq_only; break;
        case ZORVS_CONVERGENCE_TOLERANCE_ADR: tolerance = *kw.pointer<T>(), ++n_lsq_only; break;
        case ZORVS_RELATIVE_ERROR: relerr = kw.real<T>(), ++n_lsq_only; break;
        case ZORVS_RELATIVE_ERROR_ADR: relerr = *kw.pointer<T>(), ++n_lsq_only; break;
        case ZORVS_MAX_ITERATIONS: max_iterations = kw.integer(), ++n_lsq_only; break;
        case ZORVS_MEAN_ESTIMATE: out.mean = kw.pointer<T>(); break;
        case ZORVS_RESIDUAL: out.residual_out.take_address(kw.pointer<T *>()), ++n_lsq_only; break;
        case ZORVS_RESIDUAL_USER: out.residual = kw.pointer<T>(), ++n_lsq_only; break;
        case ZORVS_PARAM_EST_COV: out.cov_out.take_address(kw.pointer<T *>()), ++n_lsq_only; break;
        case ZORVS_PARAM_EST_COV_USER: out.cov = kw.pointer<T>(), ++n_lsq_only; break;
        case ZORVS_AUTOCOV: out.acv_out.take_address(kw.pointer<T *>()); break;
        case ZORVS_AUTOCOV_USER: out.acv = kw.pointer<T>(); break;
        case ZORVS_SS_RESIDUAL: out.ss = kw.pointer<T>(), ++n_lsq_only; break;
        case ZORVS_ARMA_INFO: out.info = kw.pointer<void *>(); break;
        case ZORVS_RETURN_USER:
            out.constant = kw.pointer<T>();
            out.ar = kw.pointer<T>();
            out.ma = kw.pointer<T>();
            result.take_user(out.constant);
            break;
        default: kw.unknown(key); return;
        }
    }
    // 1. conflicts
    const bool lsq = n_lsq > 0;
    const char *clash = nullptr;
    if (n_constant + n_no_constant > 1)
        clash = "ZORVS_NO_CONSTANT and ZORVS_CONSTANT";
    else if (n_moments + n_lsq > 1)
        clash = "ZORVS_METHOD_OF_MOMENTS and ZORVS_LEAST_SQUARES";
    else if (n_initial > 0 && (!lsq || n_initial > 1))
        clash = "ZORVS_METHOD_OF_MOMENTS and ZORVS_INITIAL_ESTIMATES";
    else if (!lsq && (n_lsq_only > 0 || (n_moments > 0 && n_constant > 0)))
        clash = "ZORVS_METHOD_OF_MOMENTS and argument(s) used exclusively with ZORVS_LEAST_SQUARES";
    if (clash) {
        zorvs_e1stl(1, clash);
        zorvs_ermes(5, 11117);
        return;
    }
    // 2., 3. orders and the series
    if (p < 0 || q < 0 || p + q < 1) {
        zorvs_e1sti(1, p);
        zorvs_e1sti(2, q);
        zorvs_ermes(5, 11257);
        return;
    }
    zorvs_null_pointer("z", -1, z);
    if (zorvs_error_n1rty[0] > 3) {
        return;
    }
    if (n < 2) {
        zorvs_e1sti(1, n);
        zorvs_ermes(5, 11083);
    } else if (int at_nan = zorvs::first_missing(n, z); at_nan >= 0) {
        zorvs_e1sti(1, at_nan);
        zorvs_ermes(5, 11227);
    } else {
        for (int i = 0; i < n; ++i)
            if (!std::isfinite(static_cast<double>(z[i]))) {
                zorvs_e1sti(1, i);
                zorvs_e1std(1, static_cast<double>(z[i]));
                zorvs_ermes(5, 11238);
                break;
            }
    }
    if (n >= 2 && p + q + 1 >= n) {
        zorvs_e1sti(1, n);
        zorvs_e1sti(2, p + q + 1);
        zorvs_ermes(5, 11226);
    }
    if (zorvs_error_n1rty[0] > 3) {
        return;
    }
    if (result.user()) {
        zorvs_null_pointer("ar", -1, p > 0 ? out.ar : z);
        zorvs_null_pointer("ma", -1, q > 0 ? out.ma : z);
    }
    if (n_initial) {
        zorvs_null_pointer("ar", -1, p > 0 ? init_ar : z);
        zorvs_null_pointer("ma", -1, q > 0 ? init_ma : z);
    }
    // lags: 1 to n - 1.  The work arrays belong to the frame, whose pop
    // frees them on every path.
    int *lags = zorvs::workspace<int>(p + q + 1);
    if (!lags) return;
    int big_p = 0, big_q = 0;
    for (int i = 0; i < p + q; ++i) {
        const bool ar = i < p;
        const int *given = ar ? ar_lags_in : ma_lags_in;
        const int lag = given ? given[ar ? i : i - p] : (ar ? i + 1 : i - p + 1);
        lags[i] = lag;
        if (lag < 1 || lag >= n) {
            zorvs_e1stl(1, ar ? "ZORVS_AR_LAGS" : "ZORVS_MA_LAGS");
            zorvs_e1sti(1, ar ? i : i - p);
            zorvs_e1sti(2, lag);
            zorvs_e1sti(3, n);
            zorvs_ermes(5, 11233);
        }
        if (ar) big_p = std::max(big_p, lag);
        else big_q = std::max(big_q, lag);
    }
    if (lsq && length < 0) {
        zorvs_e1stl(1, "length");
        zorvs_e1sti(1, 0);
        zorvs_e1sti(2, length);
        zorvs_ermes(5, 110);
    }
    const bool constant = n_no_constant == 0;
    const int k = (lsq && !constant ? 0 : 1) + p + q;
    const long m = lsq ? static_cast<long>(n) + length - big_p : 0;
    if (lsq && zorvs_error_n1rty[0] < 4 && m <= k) {
        zorvs_e1sti(1, n);
        zorvs_e1sti(2, k);
        zorvs_ermes(5, 11226);
    }
    if (zorvs_error_n1rty[0] > 3) {
        return;
    }

    // allocation: results and work
    const int n_acv = p + q + 2;
    const int mom_work = p * p + 7 * (q + 1) + 2 * (q + 1) * (q + 1);
    T *x = nullptr, *acv = nullptr, *mom = nullptr, *resid = nullptr, *cov = nullptr;
    zorvs_arma_info *info = nullptr;
    bool ok = (x = zorvs::workspace<T>(p + q + 1)) && (acv = zorvs::workspace<T>(n_acv)) &&
              (mom = zorvs::workspace<T>(mom_work));
    if (ok) ok = result.obtain(p + q + 1, "n_observations");
    if (ok && lsq) {
        ok = out.residual_out.obtain(static_cast<int>(m), "length");
        resid = out.residual ? out.residual : out.residual_out.data();
        if (ok && !resid) ok = (resid = zorvs::workspace<T>(static_cast<int>(m), "length")) != nullptr;
        if (ok) ok = out.cov_out.obtain(k, "ldcov", k, "ldcov");
        cov = out.cov ? out.cov : out.cov_out.data();
    }
    if (ok) ok = out.acv_out.obtain(n_acv, "n_observations");

    T sigma2 = zorvs::missing<T>(), ss = zorvs::missing<T>(), mean = 0;
    if (ok) {
        // 5. mean and autocovariances
        mean = (out.mean && !zorvs::is_missing(*out.mean)) ? *out.mean : series_mean(n, z);
        zorvs_acf(n, z, p + q + 1, mean, acv);
        for (int i = 0; i < n_acv; ++i)
            if (!std::isfinite(static_cast<double>(acv[i]))) {
                zorvs_e1sti(1, i);
                zorvs_ermes(5, 11239);
                break;
            }
        // 6. starting point
        for (int i = 0; i < p + q + 1; ++i) x[i] = 0;
        if (zorvs_error_n1rty[0] > 3) {
            // no estimate from autocovariances that overflow
        } else if (lsq && n_initial) {
            if (p > 0) std::memcpy(x + 1, init_ar, p * sizeof(T));
            if (q > 0) std::memcpy(x + 1 + p, init_ma, q * sizeof(T));
            T s = 0;
            for (int i = 0; i < p; ++i) s += x[1 + i];
            x[0] = mean * (1 - s);
            int lo = 0, hi = 0;
            for (int i = 1; i < n; ++i) lo = z[i] < z[lo] ? i : lo, hi = z[i] > z[hi] ? i : hi;
            if (z[lo] == z[hi]) {
                zorvs_e1sti(1, hi);
                zorvs_e1std(1, static_cast<double>(z[hi]));
                zorvs_ermes(5, 11230);
            }
        } else {
            l_n2pe(n, z, p, q, mean, acv, x, &sigma2, mom);
        }
        // 7. least squares on the searched vector (without c when it is not estimated)
        if (lsq && zorvs_error_n1rty[0] < 4) {
            const Model<T> md{n, z, p, q, lags, lags + p, big_p, constant, length, threshold};
            T *xs = constant ? x : x + 1;
            if (!constant) x[0] = 0;
            const SearchControl ctl{max_iterations > 0 ? max_iterations : 1, tolerance, relerr};
            l_n2lse(md, xs, ctl, std::sqrt(acv[0]), resid, &ss, cov, &sigma2);
        }
    }
    // 8. results: the record first, so that a failed allocation hands
    // nothing over
    if (ok && zorvs_error_n1rty[0] < 4 && out.info)
        info = make_info(n, z, p, q, lags, lags + p, lsq ? constant : true,
                         lsq ? ZORVS_LEAST_SQUARES : ZORVS_METHOD_OF_MOMENTS, mean, x, sigma2, big_p,
                         lsq ? big_q : 0, resid, m);
    if (ok && zorvs_error_n1rty[0] < 4) {
        if (result.user()) {
            *out.constant = x[0];
            if (p > 0) std::memcpy(out.ar, x + 1, p * sizeof(T));
            if (q > 0) std::memcpy(out.ma, x + 1 + p, q * sizeof(T));
        } else {
            std::memcpy(result.data(), x, (p + q + 1) * sizeof(T));
        }
        if (out.mean) *out.mean = mean;
        if (out.acv) std::memcpy(out.acv, acv, n_acv * sizeof(T));
        if (T *a = out.acv_out.data()) std::memcpy(a, acv, n_acv * sizeof(T));
        if (out.ss) *out.ss = ss;
        // a residual or covariance block given with ZORVS_X_USER as well
        // still receives the values
        if (T *r = out.residual_out.data(); r && r != resid)
            std::memcpy(r, resid, static_cast<std::size_t>(m) * sizeof(T));
        if (T *c = out.cov_out.data(); c && c != cov)
            std::memcpy(c, cov, static_cast<std::size_t>(k) * k * sizeof(T));
        if (out.info) *out.info = info;
    }
}

}  // namespace

extern "C" {

float *zorvs_f_arma(int n_observations, float z[], int p, int q, ...) {
    ZORVS_KEYWORD_ENTRY(q, "zorvs_f_arma", lv_arma<float>, l_arma<float>(n_observations, z, p, q, &list));
}

double *zorvs_d_arma(int n_observations, double z[], int p, int q, ...) {
    ZORVS_KEYWORD_ENTRY(q, "zorvs_d_arma", lv_arma<double>, l_arma<double>(n_observations, z, p, q, &list));
}

}  // extern "C"
