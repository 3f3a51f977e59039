# The peer of bench/k_means_bench.cpp: R's kmeans(algorithm = "Hartigan-Wong")
# on the same 10^6 x 10 data (written by the benchmark with
# ZORVS_KMEANS_DATA=<file>) from the same 20 seed rows, at most 30 passes.
# Prints the elapsed time of each of `reps` runs and the total within sum of
# squares.
#
#   Rscript bench/k_means_peer.R <file> [reps]
args <- commandArgs(trailingOnly = TRUE)
reps <- if (length(args) > 1) as.integer(args[2]) else 3L
rows <- 1000000L; dims <- 10L; k <- 20L
x <- matrix(readBin(args[1], "double", rows * dims), ncol = dims, byrow = TRUE)
centres <- x[1 + (0:(k - 1)) * 49999, ]
for (r in seq_len(reps)) {
  t <- system.time(fit <- kmeans(x, centres, iter.max = 30, algorithm = "Hartigan-Wong"))
  cat(sprintf("R kmeans Hartigan-Wong: %.3f s elapsed, %.3f s CPU, total within SS %.10g, iter %d\n",
              t[["elapsed"]], t[["user.self"]] + t[["sys.self"]], fit$tot.withinss, fit$iter))
}
