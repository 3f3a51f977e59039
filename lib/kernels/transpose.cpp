// transpose.cpp - transposition of a row-major nra x nca matrix, out of place
// or in place, at the border between the row-major public interface and the
// column-major kernels.
//
// In place, the matrix is copied transposed into a temporary block and copied
// back.  A large block is a fresh mapping from the kernel, and touching it in
// 4 KiB pages (a fault, a zeroed page and a TLB entry for each) costs several
// times the copy itself, so such a block is advised to use transparent huge
// pages where the system offers them.  When that block cannot be had, the
// permutation is carried out along its cycles without a work array, after
// Brenner, "Algorithm 467: Matrix transposition in place", Comm. ACM 16
// (1973) 692-694: the element at position k (from 0) of the vector of
// N + 1 = nra*nca elements goes to k*nra mod N; 0 and N stay.  The positions k with gcd(k, N) = d form
// phi(N/d) / ord_{N/d}(nra) cycles of equal length, so the number of cycles
// still to find is known for every divisor d and the search for cycle leaders
// stops as soon as all are found.  The cycle of k and that of N - k are
// mirror images and are moved together.

#include <cstdint>
#include <cstring>

#include <sys/mman.h>

#include "frame/frame.hpp"
#include "kernels/linalg.h"
#include "zorvstat.h"

namespace {

using u64 = unsigned long long;

// a*b mod n by doubling and adding, never forming a value above 2n; used when
// a plain product could leave the integer range.
u64 l_prod_mod(u64 a, u64 b, u64 n) {
    u64 result = 0;
    a %= n;
    while (b) {
        if (b & 1u) result = result >= n - a ? result - (n - a) : result + a;
        a = a >= n - a ? a - (n - a) : a + a;
        b >>= 1;
    }
    return result;
}

// Distinct prime factors of n > 1 with exponents, by trial division.
int l_factor(u64 n, u64 factors[], int exponents[]) {
    int count = 0;
    for (u64 p = 2; p * p <= n; p += (p == 2 ? 1 : 2)) {
        if (n % p) continue;
        int e = 0;
        while (n % p == 0) {
            n /= p;
            ++e;
        }
        factors[count] = p;
        exponents[count] = e;
        ++count;
    }
    if (n > 1) {
        factors[count] = n;
        exponents[count] = 1;
        ++count;
    }
    return count;
}

template <class T>
void l_mod_m1ran(int nra, int nca, T a[], long long int_max) {
    const u64 n = static_cast<u64>(nra) * static_cast<u64>(nca) - 1;  // N
    if (n < 2 || nra == 1 || nca == 1) return;                        // only the shape changes
    const bool by_doubling = nra > int_max / nca;
    auto mul = [&](u64 x, u64 y, u64 mod) { return by_doubling ? l_prod_mod(x, y, mod) : (x * y) % mod; };

    u64 factors[64];
    int exponents[64];
    const int nf = l_factor(n, factors, exponents);
    // Odometer over the divisors d = prod p_i^{c_i}, c_i from 0 to e_i; d = N is
    // position 0 alone and is left out.
    int digit[64] = {0};
    for (;;) {
        u64 d = 1;
        for (int i = 0; i < nf; ++i)
            for (int c = 0; c < digit[i]; ++c) d *= factors[i];
        if (d < n) {
            const u64 m = n / d;
            // Euler's phi(m) from the exponents of the factors left in m.
            u64 phi = 1;
            for (int i = 0; i < nf; ++i) {
                int e = exponents[i] - digit[i];
                if (e == 0) continue;
                phi *= factors[i] - 1;
                for (int c = 1; c < e; ++c) phi *= factors[i];
            }
            // Order of nra modulo m, the common length of these cycles.
            const u64 base = static_cast<u64>(nra) % m;
            u64 order = 1;
            for (u64 x = base; x != 1 % m; x = mul(x, base, m)) ++order;
            u64 cycles = phi / order;
            // Leaders: the least element of a cycle and its mirror.
            for (u64 j = 1; cycles > 0 && j < m; ++j) {
                u64 g = j, h = m;  // gcd(j, m) = 1 keeps k = d*j in this class
                while (h) {
                    u64 t = g % h;
                    g = h;
                    h = t;
                }
                if (g != 1) continue;
                const u64 k = d * j;
                const u64 mirror = n - k;
                bool seen = false, self_mirror = false;
                for (u64 x = mul(k, nra, n); x != k; x = mul(x, nra, n)) {
                    if (x < k || n - x < k) {
                        seen = true;
                        break;
                    }
                    if (x == mirror) self_mirror = true;
                }
                if (seen) continue;
                if (mirror == k) self_mirror = true;
                // Move the cycle of k, and that of N - k beside it: position
                // i receives from i*nca mod N, as nra*nca = 1 mod N.
                T first = a[k], first_mirror = a[mirror];
                u64 i = k;
                for (;;) {
                    u64 source = mul(i, nca, n);
                    if (source == k) break;
                    a[i] = a[source];
                    if (!self_mirror) a[n - i] = a[n - source];
                    i = source;
                }
                a[i] = first;
                if (!self_mirror) a[n - i] = first_mirror;
                cycles -= self_mirror ? 1 : 2;
            }
        }
        int i = 0;
        while (i < nf && digit[i] == exponents[i]) digit[i++] = 0;
        if (i == nf) break;
        ++digit[i];
    }
}

// Out of place, in tiles so that both sides stay in cache.
template <class T>
void l_plain_transpose(int nra, int nca, const T a[], T at[]) {
    constexpr int tile = 32;
    for (int i0 = 0; i0 < nra; i0 += tile) {
        const int i1 = i0 + tile < nra ? i0 + tile : nra;
        for (int j0 = 0; j0 < nca; j0 += tile) {
            const int j1 = j0 + tile < nca ? j0 + tile : nca;
            for (int i = i0; i < i1; ++i)
                for (int j = j0; j < j1; ++j)
                    at[static_cast<std::size_t>(j) * nra + i] = a[static_cast<std::size_t>(i) * nca + j];
        }
    }
}

// Advice only: the block's whole 2 MiB pages may be backed by huge pages.
// Blocks below 4 MiB are left alone.  Contents and results do not change.
void l_advise_huge_pages(void *block, std::size_t bytes) {
#ifdef MADV_HUGEPAGE
    constexpr std::uintptr_t huge = std::uintptr_t(1) << 21;
    if (bytes < 2 * huge) return;
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t from = (start + huge - 1) & ~(huge - 1);
    const std::uintptr_t to = (start + bytes) & ~(huge - 1);
    if (to > from) madvise(reinterpret_cast<void *>(from), to - from, MADV_HUGEPAGE);
#else
    (void)block;
    (void)bytes;
#endif
}

template <class T>
void l_m1ran(const char *name, int nra, int nca, const T a[], T at[]) {
    zorvs_e1psh(name);
    bool bad = false;
    if (nra < 1) {
        zorvs_e1sti(1, nra);
        zorvs_ermes(5, 620);
        bad = true;
    }
    if (nca < 1) {
        zorvs_e1sti(1, nca);
        zorvs_ermes(5, 621);
        bad = true;
    }
    if (!bad) {
        const std::size_t size = static_cast<std::size_t>(nra) * static_cast<std::size_t>(nca);
        if (nra == nca) {
            if (at != a) std::memcpy(at, a, size * sizeof(T));
            for (int j = 1; j < nra; ++j)
                for (int i = 0; i < j; ++i) {
                    T t = at[static_cast<std::size_t>(i) * nra + j];
                    at[static_cast<std::size_t>(i) * nra + j] = at[static_cast<std::size_t>(j) * nra + i];
                    at[static_cast<std::size_t>(j) * nra + i] = t;
                }
        } else if (at != a) {
            l_plain_transpose(nra, nca, a, at);
        } else if (nra > 1 && nca > 1) {
            T *work = static_cast<T *>(zorvs::raw_allocate(size * sizeof(T)));
            if (work) {
                l_advise_huge_pages(work, size * sizeof(T));
                l_plain_transpose(nra, nca, a, work);
                std::memcpy(at, work, size * sizeof(T));
                std::free(work);
            } else {
                l_mod_m1ran(nra, nca, at, static_cast<long long>(zorvs_i_machine(5)));
            }
        }
    }
    zorvs_e1pop(name);
}

}  // namespace

extern "C" {

void zorvs_f_m1ran(int nra, int nca, const float a[], float at[]) { l_m1ran("M1RAN_F", nra, nca, a, at); }
void zorvs_d_m1ran(int nra, int nca, const double a[], double at[]) { l_m1ran("M1RAN_D", nra, nca, a, at); }
void zorvs_i_m1ran(int nra, int nca, const int a[], int at[]) { l_m1ran("M1RAN_I", nra, nca, a, at); }

void zorvs_f_m1ran_cycles(int nra, int nca, float a[], long long int_max) { l_mod_m1ran(nra, nca, a, int_max); }
void zorvs_d_m1ran_cycles(int nra, int nca, double a[], long long int_max) {
    l_mod_m1ran(nra, nca, a, int_max);
}
void zorvs_i_m1ran_cycles(int nra, int nca, int a[], long long int_max) { l_mod_m1ran(nra, nca, a, int_max); }

}  // extern "C"
