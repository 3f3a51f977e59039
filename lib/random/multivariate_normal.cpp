// multivariate_normal.cpp - multivariate normal deviates with a given
// covariance, and the normal deviates behind them.
//
// l_rnnoa: standard normal deviates by the acceptance-rejection method of
//   Kinderman and Ramage (1976), "Computer generation of normal random
//   variables", JASA 71, 893-896.  The density is split into a central
//   triangle (88.4% of the mass: two uniforms, no test), a tail beyond
//   xi = 2.216035867166471 sampled by Marsaglia's tail method, and three
//   wedge regions sampled from triangles and accepted against
//   c*exp(-t^2/2) - 0.180025191068563*(xi - |t|), c = 1/sqrt(2*pi).  The
//   first uniform chooses the region; each round of the tail and the wedges
//   takes two fresh uniforms.
// l_rnmvn: z R with z a row of independent normal deviates and R the upper
//   Cholesky factor of the covariance (R'R = covariance), so that the rows
//   have the covariance R'R.  A singular covariance is allowed: the zero rows
//   of R confine the vectors to its range.
#include <cmath>
#include <cstddef>

#include "frame/checks.h"
#include "frame/checks.hpp"
#include "frame/frame.hpp"
#include "kernels/blas.hpp"
#include "kernels/linalg.hpp"
#include "random/random.h"
#include "random/random.hpp"
#include "random/stream.hpp"
#include "zorvstat.h"

namespace {

template <class T> constinit thread_local T *lv_normal_multivariate = nullptr;

// Bounds of the method, set on first use.
struct NormalBounds {
    bool ready = false;
    double c = 0, xi = 0, h = 0;
};
constinit thread_local NormalBounds lv_rnnoa;

// The wedge test c*exp(-t^2/2) - 0.180025191068563*(xi - |t|): the density
// less the central triangle.
inline double wedge(const NormalBounds &b, double t) {
    return b.c * std::exp(-0.5 * t * t) - 0.180025191068563 * (b.xi - std::fabs(t));
}

template <class T>
void l_rnnoa(std::size_t n, T r[]) {
    NormalBounds &b = lv_rnnoa;
    if (!b.ready) {
        b.c = 1.0 / std::sqrt(4.0 * std::asin(1.0));
        b.xi = 2.216035867166471;
        b.h = 2.45540748228412;  // xi^2/2
        b.ready = true;
    }
    // The uniforms come one at a time, through a local source.
    zorvs::UniformSource<T> src;
    zorvs::open_uniform_source(src);
    auto uniform = [&src]() -> double { return src.next(); };
    for (std::size_t i = 0; i < n; ++i) {
        const double u = uniform();
        double x;
        if (u < 0.884070402298758) {
            // The central triangle.
            const double v = uniform();
            x = b.xi * (1.13113163544418 * u + v - 1.0);
        } else if (u >= 0.973310954173898) {
            // The tail beyond xi.
            double t;
            for (;;) {
                const double v = uniform(), w = uniform();
                t = b.h - std::log(w);
                if (v * v * t <= b.h) break;
            }
            x = std::sqrt(2.0 * t);
            if (u >= 0.986655477086949) x = -x;
        } else {
            // Three wedges, by the first uniform.
            double t, z;
            for (;;) {
                const double v = uniform(), w = uniform();
                z = v - w;
                const double m = v < w ? v : w, top = v < w ? w : v;
                double slope;
                if (u >= 0.958720824790463) {
                    t = b.xi - 0.63083480192196 * m;
                    if (top <= 0.755591531667601) break;
                    slope = 0.034240503750111;
                } else if (u >= 0.911312780288703) {
                    t = 0.479727404222441 + 1.10547366102207 * m;
                    if (top <= 0.87283497667179) break;
                    slope = 0.049264496373128;
                } else {
                    t = 0.479727404222441 - 0.59550713801594 * m;
                    if (t < 0) continue;
                    if (top <= 0.805577924423817) break;
                    slope = 0.053377549506886;
                }
                if (slope * std::fabs(z) <= wedge(b, t)) break;
            }
            x = z >= 0 ? -t : t;
        }
        r[i] = static_cast<T>(x);
    }
    zorvs::close_uniform_source(src);
}

// n_vectors vectors of length l_vectors with covariance R'R, column-major
// into result (leading dimension ldresult).
template <class T>
void l_rnmvn(int n_vectors, int l_vectors, const T r[], int ldr, T result[], int ldresult) {
    // Only a failed check stops here: a warning of the factorisation that
    // came before (pivots dropped as negative) leaves a usable factor, and
    // the deviates are still wanted from it.
    int arg = 0;
    zorvs_c1dim(1, n_vectors, "NR", ldresult, "LDR", &arg);
    zorvs_c1dim(1, l_vectors, "K", ldr, "LDRSIG", &arg);
    if (zorvs_error_n1rty[0] >= 4) return;
    zorvs::check::c1r(l_vectors, r, ldr, &arg);
    if (zorvs_error_n1rty[0] >= 4) return;
    if (ldresult == n_vectors) {
        l_rnnoa<T>(static_cast<std::size_t>(n_vectors) * static_cast<std::size_t>(l_vectors), result);
    } else {
        for (int j = 0; j < l_vectors; ++j) l_rnnoa<T>(static_cast<std::size_t>(n_vectors), result + static_cast<std::size_t>(j) * ldresult);
    }
    // Row i becomes z R; from the last column down, so that column j still
    // reads the deviates of columns 1..j.
    for (int i = 0; i < n_vectors; ++i) {
        T *row = result + i;
        for (int j = l_vectors; j >= 1; --j)
            row[static_cast<std::size_t>(j - 1) * ldresult] =
                zorvs::blas::dot(j, row, ldresult, r + static_cast<std::size_t>(j - 1) * ldr, 1);
    }
}

template <class T>
void l_random_normal_multivariate(int n_vectors, int l_vectors, const T covariance[], va_list *list) {
    zorvs::OutputPair<T> vectors(lv_normal_multivariate<T>);
    zorvs::KeywordReader kw(list, 3);
    if (!zorvs::read_return_user(kw, vectors)) {
        vectors.drop();
        return;
    }
    int arg = 0;
    zorvs_c1iarg(n_vectors, "n_vectors", 1, 0, &arg);
    zorvs_c1iarg(l_vectors, "l_vectors", 1, 0, &arg);
    if (zorvs_n1rcd(0) != 0) return;
    if (!vectors.obtain(n_vectors, "n_vectors", l_vectors, "l_vectors")) return;
    T *result = vectors.data();
    const std::size_t l = static_cast<std::size_t>(l_vectors);
    T *factor = static_cast<T *>(zorvs::workspace_block(l * l * sizeof(T)));
    if (!factor) {
        zorvs_e1sti(1, l_vectors);
        zorvs_e1stl(1, "l_vectors");
        zorvs_ermes(5, 201);
    } else {
        // The caller's row-major upper triangle becomes the column-major
        // upper triangle that the factorisation reads.
        for (std::size_t j = 0; j < l; ++j)
            for (std::size_t i = 0; i <= j; ++i) factor[j * l + i] = covariance[i * l + j];
        int rank = 0;
        zorvs::linalg::chfac(l_vectors, factor, l_vectors, static_cast<T>(1e-5), &rank, factor, l_vectors);
        if (zorvs_error_n1rty[1] < 4) {
            l_rnmvn<T>(n_vectors, l_vectors, factor, l_vectors, result, n_vectors);
            // Column-major n_vectors x l_vectors is row-major l_vectors x
            // n_vectors: transpose it to the caller's row-major layout.
            zorvs::linalg::m1ran(l_vectors, n_vectors, result, result);
        }
    }
}

}  // namespace

extern "C" {

float *zorvs_f_random_normal_multivariate(int n_vectors, int l_vectors, const float covariance[], ...) {
    ZORVS_KEYWORD_ENTRY(covariance, "zorvs_f_random_normal_multivariate", lv_normal_multivariate<float>,
                        l_random_normal_multivariate<float>(n_vectors, l_vectors, covariance, &list));
}
double *zorvs_d_random_normal_multivariate(int n_vectors, int l_vectors, const double covariance[], ...) {
    ZORVS_KEYWORD_ENTRY(covariance, "zorvs_d_random_normal_multivariate", lv_normal_multivariate<double>,
                        l_random_normal_multivariate<double>(n_vectors, l_vectors, covariance, &list));
}

}  // extern "C"
