// sort.cpp - ascending in-memory sorts of reals and integers, with or without
// a companion permutation, and the application of a permutation in place.
//
// One algorithm serves every sort: Singleton's modified quicksort,
// R. C. Singleton (1969), "An efficient algorithm for sorting with minimal
// storage", CACM 12, 185-187, algorithm 347.  The pivot is the median of the
// first, last and one inner element whose position moves through the piece
// by a fraction r that changes from one partition to the next; the shorter
// piece is sorted first and the longer one kept on a fixed stack of 21
// levels; pieces of fewer than 12 entries are finished by an insertion sort
// that needs no bound test, because the entry in front of every such piece is
// no larger than any entry in it.
//
// The stack cannot overflow for n below 12 * 2^20; for larger n, should it
// ever fill, the longer piece is sorted by a nested call of the same sort
// with a fresh stack instead of being pushed, so no input writes past it.
//
// Permutations are applied by following their cycles (no work array): the
// entries are marked by negation while checked, and unmarked as the cycles
// are walked.

#include <cmath>
#include <cstring>
#include <type_traits>

#include "frame/checks.h"
#include "frame/services.h"
#include "kernels/kernels.h"

namespace {

constexpr int stack_levels = 21;

// Keys by value or by absolute value.
struct plain_key {
    template <class T>
    T operator()(T v) const {
        return v;
    }
};
struct abs_key {
    template <class T>
    T operator()(T v) const {
        return std::fabs(v);
    }
};

// Sort positions i..j (from 1) of a, moving perm (if not null) with the keys.
// `first` is the first position of the whole array: a piece starting there
// has no sentinel in front of it and is partitioned down to single entries.
template <class T, class Key>
void l_qsort(T *a, int *perm, int i, int j, int first, Key key) {
    // 1-based access.
    T *x = a - 1;
    int *p = perm ? perm - 1 : nullptr;
    auto swap = [&](int u, int v) {
        T tmp = x[u];
        x[u] = x[v];
        x[v] = tmp;
        if (p) {
            int tp = p[u];
            p[u] = p[v];
            p[v] = tp;
        }
    };
    int il[stack_levels], iu[stack_levels];
    int m = 1;
    double r = 0.375;
    int ij, k, l;
    T t;

step1:
    if (i == j) goto step8;
    if (r <= 0.5898437)
        r += 0.0390625;
    else
        r -= 0.21875;
step3:
    ij = static_cast<int>(i + (j - i) * r);
    t = key(x[ij]);
    if (key(x[i]) > t) {
        swap(i, ij);
        t = key(x[ij]);
    }
    if (key(x[j]) < t) {
        swap(ij, j);
        t = key(x[ij]);
        if (key(x[i]) > t) {
            swap(i, ij);
            t = key(x[ij]);
        }
    }
    l = j;
    k = i;
    for (;;) {
        do --l;
        while (key(x[l]) > t);
        do ++k;
        while (key(x[k]) < t);
        if (k > l) break;
        if (key(x[l]) != key(x[k])) swap(l, k);
    }
    if (m > stack_levels) {
        // Stack full: sort the longer piece with a fresh stack.
        if (l - i <= j - k) {
            l_qsort(a, perm, k, j, first, key);
            j = l;
        } else {
            l_qsort(a, perm, i, l, first, key);
            i = k;
        }
    } else if (l - i <= j - k) {
        il[m - 1] = k;
        iu[m - 1] = j;
        j = l;
        ++m;
    } else {
        il[m - 1] = i;
        iu[m - 1] = l;
        i = k;
        ++m;
    }
step7:
    if (j - i >= 11) goto step3;
    if (i == first) goto step1;
    // Insertion sort of i..j; position i-1 stops every shift.
    for (int q = i; q < j; ++q) {
        if (key(x[q]) > key(x[q + 1])) {
            T v = x[q + 1];
            T kv = key(v);
            int pv = p ? p[q + 1] : 0;
            int s = q;
            do {
                x[s + 1] = x[s];
                if (p) p[s + 1] = p[s];
                --s;
            } while (key(x[s]) > kv);
            x[s + 1] = v;
            if (p) p[s + 1] = pv;
        }
    }
step8:
    if (m == 1) return;
    --m;
    i = il[m - 1];
    j = iu[m - 1];
    goto step7;
}

// Copy ra to rb when they differ.
template <class T>
void copy_in(int n, const T *ra, T *rb) {
    if (n > 0 && ra != rb) std::memmove(rb, ra, static_cast<std::size_t>(n) * sizeof(T));
}

// Sort with a check of n: copy, check, sort unless an error stands.
template <class T, class Key>
void l_checked_sort(const char *name, int code, bool ok, int n, const T *ra, T *rb, int *iperm, Key key) {
    zorvs_e1psh(name);
    copy_in(n, ra, rb);
    if (!ok) {
        zorvs_e1sti(1, n);
        zorvs_ermes(5, code);
    }
    if (zorvs_n1rcd(0) == 0 && n > 1) l_qsort(rb, iperm, 1, n, 1, key);
    zorvs_e1pop(name);
}

template <class T>
void l_sort_abs_signed(const int *n, const T *ra, T *rb, int *iperm) {
    static const char *const name = "l_svrbp ";
    zorvs_e1psh(name);
    copy_in(*n, ra, rb);
    int arg_no = 0;
    zorvs_c1iarg(*n, "n", 1, 0, &arg_no);
    if (zorvs_n1rcd(0) == 0) {
        for (int i = 0; i < *n; ++i) {
            if (rb[i] < 0) {
                iperm[i] = -iperm[i];
                rb[i] = -rb[i];
            }
        }
        if (*n > 1) l_qsort(rb, iperm, 1, *n, 1, plain_key{});
        for (int i = 0; i < *n; ++i) {
            if (iperm[i] < 0) {
                iperm[i] = -iperm[i];
                rb[i] = -rb[i];
            }
        }
    }
    zorvs_e1pop(name);
}

// In-place permutation by cycles; see the header for gather and scatter.
template <class T>
void l_permute(const char *name, int n, const T *x, int *iperm, int ipath, T *xout) {
    zorvs_e1psh(name);
    copy_in(n, x, xout);
    if (!zorvs::l_check_permutation(n, iperm) || n == 1) {
        zorvs_e1pop(name);
        return;
    }
    T *v = xout - 1;
    int *p = iperm - 1;
    // Every entry is marked unvisited by negation; the walks below unmark.
    for (int i = 1; i <= n; ++i) p[i] = -p[i];
    auto swap = [&](int a, int b) {
        T t = v[a];
        v[a] = v[b];
        v[b] = t;
    };
    if (ipath == 1) {
        for (int i = 1; i <= n; ++i) {
            if (p[i] >= 1) continue;
            p[i] = -p[i];
            int k = p[i], j = i;
            while (p[k] < 1) {
                swap(j, k);
                j = k;
                p[k] = -p[k];
                k = p[k];
            }
        }
    } else {
        for (int i = 1; i <= n; ++i) {
            if (p[i] >= 1) continue;
            p[i] = -p[i];
            int k = p[i];
            while (k != i) {
                swap(i, k);
                p[k] = -p[k];
                k = p[k];
            }
        }
    }
    zorvs_e1pop(name);
}

}  // namespace

namespace zorvs {
// Each entry must lie in 1..n and occur once.  A repeated entry would send
// the cycle walks of l_permute out of the array (an entry reached twice is
// unmarked twice, and its negation then serves as an index), so it is
// caught here.  The repeats are found by marking, in place, the entry at the
// position each value names; the marks are removed before returning.
bool l_check_permutation(int n, int iperm[]) {
    int *p = iperm - 1;
    bool good = true;
    for (int i = 1; i <= n; ++i) {
        if (p[i] < 1 || p[i] > n) {
            zorvs_e1sti(1, i - 1);
            zorvs_e1sti(2, n);
            zorvs_e1sti(3, p[i] - 1);
            zorvs_ermes(5, 20422);
            good = false;
        }
    }
    if (!good) return false;
    for (int i = 1; i <= n; ++i) {
        const int value = p[i] < 0 ? -p[i] : p[i];
        if (p[value] < 0) {
            zorvs_e1sti(1, i - 1);
            zorvs_e1sti(2, value - 1);
            zorvs_e1sti(3, n - 1);
            zorvs_ermes(5, 20425);
            good = false;
            break;
        }
        p[value] = -p[value];
    }
    for (int i = 1; i <= n; ++i)
        if (p[i] < 0) p[i] = -p[i];
    return good;
}

void l_svrbp(const int *n, const float ra[], float rb[], int iperm[]) { l_sort_abs_signed(n, ra, rb, iperm); }
void l_svrbp(const int *n, const double ra[], double rb[], int iperm[]) { l_sort_abs_signed(n, ra, rb, iperm); }
void l_svign(int n, const int ia[], int ib[]) {
    static const char *const name = "l_svign ";
    zorvs_e1psh(name);
    copy_in(n, ia, ib);
    if (n > 1) l_qsort(ib, nullptr, 1, n, 1, plain_key{});
    zorvs_e1pop(name);
}
void l_permu(const int *n, const int x[], int iperm[], const int *ipath, int xout[]) {
    l_permute("l_permu ", *n, x, iperm, *ipath, xout);
}
}  // namespace zorvs

extern "C" {

void zorvs_svrgn(int n, const float ra[], float rb[]) {
    l_checked_sort("zorvs_svrgn", 615, n > 0, n, ra, rb, nullptr, plain_key{});
}
void zorvs_dsvrgn(int n, const double ra[], double rb[]) {
    l_checked_sort("zorvs_svrgn", 615, n > 0, n, ra, rb, nullptr, plain_key{});
}
void zorvs_svrgp(int n, const float ra[], float rb[], int iperm[]) {
    l_checked_sort("zorvs_svrgp", 616, n > 0, n, ra, rb, iperm, plain_key{});
}
void zorvs_dsvrgp(int n, const double ra[], double rb[], int iperm[]) {
    l_checked_sort("zorvs_svrgp", 616, n > 0, n, ra, rb, iperm, plain_key{});
}
void zorvs_svrbn(const int *n, const float ra[], float rb[]) {
    l_checked_sort("zorvs_svrbn ", 614, *n > 0, *n, ra, rb, nullptr, abs_key{});
}
void zorvs_dsvrbn(const int *n, const double ra[], double rb[]) {
    l_checked_sort("zorvs_svrbn ", 614, *n > 0, *n, ra, rb, nullptr, abs_key{});
}
void zorvs_svigp(const int *n, const int ia[], int ib[], int iperm[]) {
    l_checked_sort("zorvs_svigp ", 20426, *n >= 1, *n, ia, ib, iperm, plain_key{});
}
void zorvs_dsvigp(const int *n, const int ia[], int ib[], int iperm[]) { zorvs_svigp(n, ia, ib, iperm); }

void zorvs_permu(const int *n, const float x[], int iperm[], const int *ipath, float xout[]) {
    l_permute("zorvs_permu", *n, x, iperm, *ipath, xout);
}
void zorvs_dpermu(const int *n, const double x[], int iperm[], const int *ipath, double xout[]) {
    l_permute("zorvs_permu", *n, x, iperm, *ipath, xout);
}

}  // extern "C"
