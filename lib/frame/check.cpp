// check.cpp - the shared argument checks (the c1 family) and the safe
// arithmetic that routines use on their statistics.
//
// Each check tests one thing and raises its message with the parameters the
// message prints; none returns a verdict, so that a routine runs all its
// checks and then tests the error state once.  Each adds 1 to the caller's
// argument counter, pass or fail, apart from where told otherwise.

#include <cmath>
#include <type_traits>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/services.h"

namespace {

void count(int *arg_no) {
    if (arg_no) ++*arg_no;
}

void raise_at_least(int value, const char *name, int lo) {
    zorvs_e1sti(1, value);
    zorvs_e1sti(2, lo);
    zorvs_e1stl(1, name);
    zorvs_ermes(5, 603);
}

void raise_at_most(int a, const char *name_a, int b, const char *name_b) {
    zorvs_e1sti(1, a);
    zorvs_e1sti(2, b);
    zorvs_e1stl(1, name_a);
    zorvs_e1stl(2, name_b);
    zorvs_ermes(5, 601);
}

template <class T>
void c1ge0(T x, const char *name, int *arg_no) {
    if (x < T(0)) {
        zorvs_e1str(1, x);
        zorvs_e1stl(1, name);
        zorvs_ermes(5, 11061);
    }
    count(arg_no);
}

template <class T>
void c1cip(const char *name, T x, int *arg_no_1, int *arg_no_2) {
    if (x < T(0) || x >= T(100)) {
        zorvs_e1stl(1, name);
        zorvs_e1str(1, x);
        zorvs_ermes(5, 20403);
    } else if (x > T(0) && x < T(50)) {
        zorvs_e1stl(1, name);
        zorvs_e1str(1, x);
        zorvs_ermes(6, 20404);
    }
    count(arg_no_1);
    count(arg_no_2);
}

// R(i, j) from 1, column-major.
template <class T>
void c1r(int n, const T *r, int ldr, int *arg_no) {
    for (int i = 1; i <= n; ++i) {
        T diagonal = r[(i - 1) * static_cast<long>(ldr) + (i - 1)];
        if (diagonal != T(0)) continue;
        for (int j = i + 1; j <= n; ++j) {
            T element = r[(j - 1) * static_cast<long>(ldr) + (i - 1)];
            if (element != T(0)) {
                zorvs_e1sti(1, i);
                zorvs_e1sti(2, j);
                zorvs_e1str(1, diagonal);
                zorvs_e1str(2, element);
                zorvs_ermes(5, 11060);
                return;
            }
        }
    }
    count(arg_no);
}

template <class T>
T c1div(T a, T b) {
    const T tiny = zorvs::smallest<T>();
    const T huge = zorvs::largest<T>();
    const T nan = zorvs::missing<T>();
    if (zorvs::is_missing(a) || zorvs::is_missing(b)) return nan;
    T abs_a = std::fabs(a), abs_b = std::fabs(b);
    if (abs_b <= T(1)) {
        if (abs_a < huge * abs_b) return a / b;
        if (a == T(0)) return nan;
        // A b of 0 counts as positive.
        bool negative = (a < T(0)) != (b < T(0));
        return negative ? -zorvs::infinity<T>() : zorvs::infinity<T>();
    }
    if (abs_a < tiny * abs_b) return T(0);
    return a / b;
}

// x(row, column) from 1, column-major.
template <class T>
T element(const T *x, int ldx, int row, int column) {
    return x[(column - 1) * static_cast<long>(ldx) + (row - 1)];
}

template <class T>
void c1wfr(int ido, int group, const T *x, int ldx, int row, int sign, int ifrq, int iwt, int *nmiss, T *freq,
           T *wt, int *status) {
    *status = 0;
    T f = T(1), w = T(1);
    if (ifrq > 0) {
        f = element(x, ldx, row, ifrq);
        if (zorvs::is_missing(f)) {
            *nmiss += sign;
            *status = 2;
        } else if (f == T(0)) {
            *freq = f;
            *status = 1;
            return;
        }
    }
    if (iwt > 0) {
        w = element(x, ldx, row, iwt);
        if (zorvs::is_missing(w) && *status != 2) {
            *nmiss += sign;
            *status = 2;
        }
    }
    auto raise_negative = [&](int grouped, int single, T value) {
        zorvs_e1sti(1, row);
        if (ido >= 1) zorvs_e1sti(2, group);
        zorvs_e1str(1, value);
        zorvs_ermes(4, ido >= 1 ? grouped : single);
    };
    if (ifrq >= 1 && !zorvs::is_missing(f) && f < T(0)) {
        raise_negative(11054, 11055, f);
        *freq = f;
        *wt = w;
        *status = 3;
        return;
    }
    if (sign == -1) f = -f;
    if (iwt >= 1 && !zorvs::is_missing(w) && w < T(0)) {
        raise_negative(11056, 11057, w);
        *status = 3;
    }
    *freq = f;
    *wt = w;
}

}  // namespace

extern "C" {

void zorvs_c1iarg(int value, const char *name, int lo, int hi, int *arg_no) {
    if (lo > hi) {
        if (value < lo) raise_at_least(value, name, lo);
    } else if (value < lo || value > hi) {
        zorvs_e1sti(1, value);
        zorvs_e1sti(2, lo);
        zorvs_e1sti(3, hi);
        zorvs_e1stl(1, name);
        zorvs_ermes(5, 602);
    }
    count(arg_no);
}

void zorvs_c12ile(int a, const char *name_a, int b, const char *name_b, int *arg_no) {
    if (a > b) raise_at_most(a, name_a, b, name_b);
    count(arg_no);
}

void zorvs_c1dim(int lo, int n, const char *name, int ld, const char *name_ld, int *arg_no) {
    if (name && name[0] == '*') {
        // The test of n against lo is waived.
        count(arg_no);
        zorvs_c1iarg(ld, name_ld, 1, 0, arg_no);
        if (ld >= 1) zorvs_c12ile(n, name + 1, ld, name_ld, arg_no);
        else count(arg_no);
        return;
    }
    zorvs_c1iarg(n, name, lo, lo - 1, arg_no);
    zorvs_c1iarg(ld, name_ld, 1, 0, arg_no);
    if (ld >= 1) zorvs_c12ile(n, name, ld, name_ld, arg_no);
    else count(arg_no);
}

void zorvs_c1ind(int lo, int n, const char *name, int ld, const char *name_ld, int *arg_no) {
    zorvs_c1iarg(n, name, lo, lo - 1, arg_no);
    if (ld >= 1) zorvs_c12ile(n, name, ld, name_ld, arg_no);
    else count(arg_no);
}

void zorvs_c1ge0(float x, const char *name, int *arg_no) { c1ge0(x, name, arg_no); }
void zorvs_dc1ge0(double x, const char *name, int *arg_no) { c1ge0(x, name, arg_no); }

void zorvs_c1cip(const char *name, float x, int *arg_no_1, int *arg_no_2) { c1cip(name, x, arg_no_1, arg_no_2); }
void zorvs_dc1cip(const char *name, double x, int *arg_no_1, int *arg_no_2) {
    c1cip(name, x, arg_no_1, arg_no_2);
}

void zorvs_c1r(int n, const float r[], int ldr, int *arg_no) { c1r(n, r, ldr, arg_no); }
void zorvs_dc1r(int n, const double r[], int ldr, int *arg_no) { c1r(n, r, ldr, arg_no); }

void zorvs_c1ef(int ncol, int nclvar, const int indcl[], int nef, const int nvef[], const int indef[],
                int *arg_no) {
    zorvs_c1iarg(ncol, "NCOL", 1, 0, arg_no);
    zorvs_c1iarg(nclvar, "NCLVAR", 0, -1, arg_no);
    zorvs_c1iarg(nef, "NEF", 0, -1, arg_no);
    if (zorvs_error_n1rty[0] != 0) return;
    for (int i = 1; i <= nclvar; ++i) {
        int v = indcl[i - 1];
        if (v < 1 || v > ncol) {
            zorvs_e1sti(1, i);
            zorvs_e1sti(2, v);
            zorvs_e1sti(3, ncol);
            zorvs_ermes(5, 20235);
        }
    }
    count(arg_no);
    long total = 0;
    for (int k = 1; k <= nef; ++k) {
        int v = nvef[k - 1];
        if (v < 1) {
            zorvs_e1sti(1, k);
            zorvs_e1sti(2, v);
            zorvs_ermes(5, 20237);
        } else {
            total += v;
        }
    }
    if (zorvs_error_n1rty[0] != 0) return;
    count(arg_no);
    for (long i = 1; i <= total; ++i) {
        int v = indef[i - 1];
        if (v < 1 || v > ncol) {
            zorvs_e1sti(1, static_cast<int>(i));
            zorvs_e1sti(2, v);
            zorvs_e1sti(3, ncol);
            zorvs_ermes(5, 20238);
        }
    }
}

void zorvs_c1div(float a, float b, float *result) { *result = c1div(a, b); }
void zorvs_dc1div(double a, double b, double *result) { *result = c1div(a, b); }

void zorvs_c1wfr(int ido, int group, const float x[], int ldx, int row, int sign, int ifrq, int iwt, int,
                 int *nmiss, float *freq, float *wt, int *status) {
    c1wfr(ido, group, x, ldx, row, sign, ifrq, iwt, nmiss, freq, wt, status);
}

void zorvs_dc1wfr(int ido, int group, const double x[], int ldx, int row, int sign, int ifrq, int iwt, int,
                  int *nmiss, double *freq, double *wt, int *status) {
    c1wfr(ido, group, x, ldx, row, sign, ifrq, iwt, nmiss, freq, wt, status);
}

}  // extern "C"
