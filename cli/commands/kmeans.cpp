// kmeans.cpp - k-means clustering by Hartigan and Wong's transfers:
// zorvs_d_cluster_k_means from seed rows of the data.
//
// The columns are the operands or every numeric column; missing values
// are passed on (an observation is placed by its present values).  The
// seeds are the rows --seeds (numbers from 1), by default k rows spread
// evenly over the file, row 1 + floor(i n / k) for i = 0..k-1 (which on the
// sample takes one flower of each species).
#include <string>
#include <vector>

#include "analysis.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

int run(Context &ctx) {
    std::vector<std::size_t> columns = ctx.select(ctx.args.operands());
    const std::vector<double> x = ctx.matrix(columns);
    const std::size_t nv = columns.size(), rows = x.size() / nv;
    ctx.data.int_rows();   // the rows fit an int, so do those kept
    const int n = static_cast<int>(rows);
    const int k = ctx.args.integer("k", 3);
    std::vector<int> defaults;
    for (int i = 0; i < k; ++i) defaults.push_back(1 + static_cast<int>(static_cast<long>(i) * n / k));
    std::vector<int> seed_rows = integer_list(ctx.args, "seeds", defaults);
    if (seed_rows.size() != static_cast<std::size_t>(k < 0 ? 0 : k)) usage_error("--seeds must name k rows");
    std::vector<double> seeds;
    for (int r : seed_rows) {
        if (r < 1 || r > n) usage_error("--seeds: no row " + std::to_string(r));
        seeds.insert(seeds.end(), x.begin() + static_cast<long>((static_cast<std::size_t>(r) - 1) * nv),
                     x.begin() + static_cast<long>(static_cast<std::size_t>(r) * nv));
    }
    seeds.push_back(0.0);   // never null, so that a k out of range meets the routine's own check
    std::vector<double> f, w;
    if (const double *p = ctx.frequencies()) f.assign(p, p + rows);
    if (const double *p = ctx.weights()) w.assign(p, p + rows);
    const std::size_t kk = k > 0 ? static_cast<std::size_t>(k) : 0;
    std::vector<int> cluster(rows + 1), counts(kk + 1);
    std::vector<double> means(kk * nv + 1), ssq(kk + 1);
    const int iterations = ctx.args.integer("max-iterations", 30);
    double *xp = const_cast<double *>(x.data());
    // Frequencies and weights go in only when given: the routine reads a
    // keyword's array for every row.
    if (!f.empty() && !w.empty())
        zorvs_d_cluster_k_means(n, static_cast<int>(nv), xp, k, seeds.data(), ZORVS_FREQUENCIES, f.data(), ZORVS_WEIGHTS,
                                w.data(), ZORVS_MAX_ITERATIONS, iterations, ZORVS_CLUSTER_MEANS_USER, means.data(),
                                ZORVS_CLUSTER_SSQ_USER, ssq.data(), ZORVS_CLUSTER_COUNTS_USER, counts.data(),
                                ZORVS_RETURN_USER, cluster.data(), 0);
    else if (!f.empty() || !w.empty())
        zorvs_d_cluster_k_means(n, static_cast<int>(nv), xp, k, seeds.data(),
                                f.empty() ? ZORVS_WEIGHTS : ZORVS_FREQUENCIES, f.empty() ? w.data() : f.data(),
                                ZORVS_MAX_ITERATIONS, iterations, ZORVS_CLUSTER_MEANS_USER, means.data(),
                                ZORVS_CLUSTER_SSQ_USER, ssq.data(), ZORVS_CLUSTER_COUNTS_USER, counts.data(),
                                ZORVS_RETURN_USER, cluster.data(), 0);
    else
        zorvs_d_cluster_k_means(n, static_cast<int>(nv), xp, k, seeds.data(), ZORVS_MAX_ITERATIONS, iterations,
                                ZORVS_CLUSTER_MEANS_USER, means.data(), ZORVS_CLUSTER_SSQ_USER, ssq.data(),
                                ZORVS_CLUSTER_COUNTS_USER, counts.data(), ZORVS_RETURN_USER, cluster.data(), 0);
    library_check();

    Matrix m = result(ctx.title("Cluster means"), kk, nv + 2);
    m.row_head = "cluster";
    for (std::size_t c : columns) m.column_labels.push_back(ctx.data.column(c).name);
    m.column_labels.push_back("count");
    m.column_labels.push_back("within SS");
    for (std::size_t c = 0; c < kk; ++c) {
        m.row_labels.push_back(std::to_string(c + 1));
        for (std::size_t j = 0; j < nv; ++j) m.at(c, j) = means[c * nv + j];
        m.at(c, nv) = counts[c];
        m.at(c, nv + 1) = ssq[c];
    }
    ctx.out->matrix(m);
    if (ctx.args.has("assignments")) {
        Matrix a = result("Clusters of the rows", rows, 1);
        a.row_head = "row";
        a.column_labels = {"cluster"};
        for (std::size_t i = 0; i < rows; ++i) {
            a.row_labels.push_back(std::to_string(i + 1));
            a.values[i] = cluster[i];
        }
        ctx.out->matrix(a);
    }
    return status_ok;
}

}  // namespace

const Command kmeans_command{
    "kmeans",
    "k-means clustering",
    "[COLUMN...]",
    "Clusters the rows by the COLUMNs (default: every numeric column) into k\n"
    "groups by Hartigan and Wong's k-means method, from k seed rows: the\n"
    "cluster means, counts and within-cluster sums of squares, and with\n"
    "--assignments the cluster of each row.",
    "iris.csv",
    {
        {"k", "K", "number of clusters (default 3)"},
        {"seeds", "ROWS", "the k seed rows, numbers from 1 (default: spread evenly)"},
        {"max-iterations", "N", "limit of the transfer passes (default 30)"},
        {"assignments", "", "also print the cluster of each row"},
    },
    run,
};

}  // namespace zcli
