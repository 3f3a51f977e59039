// multivariate_target.cpp - k-means clustering and principal components on
// any data, seeds, weights, column choices and keyword lists: cluster
// numbers within 1..k, eigenvalues in decreasing magnitude (a negative one
// beyond rounding with a warning).
#include "fuzz_input.hpp"

namespace zorvs_fuzz::multivariate {

const Item k_means_menu[] = {{ZORVS_RETURN_USER, "k"}, {ZORVS_MAX_ITERATIONS, "d"}, {ZORVS_WEIGHTS, "X"},
    {ZORVS_FREQUENCIES, "X"}, {ZORVS_X_COL_DIM, "d"}, {ZORVS_CLUSTER_SEEDS_COL_DIM, "d"},
    {ZORVS_CLUSTER_MEANS_COL_DIM, "d"}, {ZORVS_CLUSTER_MEANS, "a"}, {ZORVS_CLUSTER_MEANS_USER, "o"},
    {ZORVS_CLUSTER_SSQ, "a"}, {ZORVS_CLUSTER_SSQ_USER, "o"}, {ZORVS_CLUSTER_COUNTS, "a"},
    {ZORVS_CLUSTER_COUNTS_USER, "k"}, {ZORVS_X_COLUMNS, "n"}};
const Item components_menu[] = {{ZORVS_RETURN_USER, "o"}, {ZORVS_COV_COL_DIM, "d"}, {ZORVS_COVARIANCE_MATRIX, ""},
    {ZORVS_CORRELATION_MATRIX, ""}, {ZORVS_EIGENVECTORS, "a"}, {ZORVS_EIGENVECTORS_USER, "o"},
    {ZORVS_CORRELATIONS, "a"}, {ZORVS_CORRELATIONS_USER, "o"}, {ZORVS_CUM_PERCENT, "a"}, {ZORVS_CUM_PERCENT_USER, "o"},
    {ZORVS_STD_DEV, "ia"}, {ZORVS_STD_DEV_USER, "io"}};

template <class T>
void one(Input &in, Store<T> &s) {
    in.fill(s.data, 3000);
    in.fill_ints(s.ints, 64, -1, 8);
    Builder<T> b(in, s);
    if (in.one_in(2)) {
        const int n = in.count(60), nv = in.count(6), k = in.count(8);
        auto &l = b.from(k_means_menu, 5);
        int *cl = call(F(cluster_k_means), l, n, nv, s.data, k, s.data + 2500 + in.pick(100));
        for (int i = 0; cl && !l.has(ZORVS_RETURN_USER) && i < n; ++i)
            require(cl[i] >= 1 && cl[i] <= k, "cluster_k_means", "cluster number outside 1..k", cl[i]);
        return;
    }
    const int nv = in.count(10);
    for (int i = 0; i < nv; ++i)  // symmetric as a rule, not always
        for (int j = 0; j < i; ++j)
            if (!in.one_in(16)) s.data[i * nv + j] = s.data[j * nv + i];
    auto &l = b.from(components_menu, 5);
    T *values = call(F(principal_components), l, nv, s.data);
    for (int i = 0; values && !l.has(ZORVS_RETURN_USER) && i + 1 < nv; ++i)
        require(!(std::fabs(values[i]) < std::fabs(values[i + 1])), "principal_components",
                "eigenvalues not decreasing in magnitude", values[i + 1]);
}

}  // namespace zorvs_fuzz::multivariate

ZORVS_FUZZ_TARGET(multivariate)
