// Random calls of k-means, principal components and the permutations: odd
// sizes, NaN, infinities, zeros, repeated seeds and entries, bad counts.  No
// call may crash, hang or write outside its arrays (the sanitizer build
// checks); each either fails with a message of type 5 and a null result or
// returns results that keep their promises.
#include "support/tables.hpp"

namespace {

using zorvs_test::Quiet;

double odd_value(std::mt19937 &rng) {
    switch (rng() % 10) {
    case 0: return NAN;
    case 1: return INFINITY;
    case 2: return 0;
    default: return std::uniform_real_distribution<double>(-5, 5)(rng);
    }
}

TEST(MultivariateFuzz, RandomCallsEndCleanly) {
    Quiet quiet;
    std::mt19937 rng(26);
    for (int trial = 0; trial < 300; ++trial) {
        const int m = 1 + static_cast<int>(rng() % 12), nv = 1 + static_cast<int>(rng() % 4);
        const int k = static_cast<int>(rng() % 6);
        std::vector<double> x(m * nv), seeds(6 * nv), f(m);
        for (double &v : x) v = odd_value(rng);
        for (double &v : seeds) v = rng() % 3 ? x[rng() % x.size()] : odd_value(rng);
        for (double &v : f) v = rng() % 8 ? 1 + rng() % 3 : odd_value(rng);
        int *c = zorvs_d_cluster_k_means(m, nv, x.data(), k, seeds.data(), ZORVS_MAX_ITERATIONS,
                                         static_cast<int>(rng() % 4), ZORVS_FREQUENCIES,
                                         rng() % 2 ? f.data() : nullptr, 0);
        if (c)
            for (int i = 0; i < m; ++i) EXPECT_TRUE(c[i] >= 1 && c[i] <= k);
        else
            EXPECT_EQ(zorvs_n1rty(1), 5);
        std::free(c);

        const int n = 1 + static_cast<int>(rng() % 5);
        std::vector<double> a(n * n);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j <= i; ++j) a[i * n + j] = a[j * n + i] = rng() % 6 ? odd_value(rng) : 0;
        double *values = zorvs_d_principal_components(n, a.data(), rng() % 2 ? ZORVS_CORRELATION_MATRIX : 0, 0);
        EXPECT_EQ(values == nullptr, zorvs_n1rty(1) >= 4);
        std::free(values);

        std::vector<int> p(n);
        for (int &e : p) e = static_cast<int>(rng() % (n + 1)) - (rng() % 9 == 0);
        std::vector<double> v(a.begin(), a.begin() + n);
        double *y = zorvs_d_permute_vector(n, v.data(), p.data(), 1 + static_cast<int>(rng() % 2), 0);
        double *z = zorvs_d_permute_matrix(n, n, a.data(), p.data(), 3 + static_cast<int>(rng() % 2), 0);
        std::free(y);
        std::free(z);
    }
}

}  // namespace
