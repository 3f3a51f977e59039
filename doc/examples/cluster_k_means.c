/* K-means clustering of ten points in the plane into two clusters. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double x[10][2] = {{1.0, 1.1}, {1.3, 0.8}, {0.7, 1.4}, {1.2, 1.2}, {0.9, 0.6},
                       {5.1, 4.8}, {4.6, 5.3}, {5.4, 5.0}, {4.9, 4.4}, {5.2, 5.6}};
    /* Seed means: the first and the last point. */
    double seeds[2][2] = {{1.0, 1.1}, {5.2, 5.6}};
    double means[2][2], ssq[2];
    int counts[2], i;
    int *cluster = zorvs_d_cluster_k_means(10, 2, &x[0][0], 2, &seeds[0][0], ZORVS_CLUSTER_MEANS_USER, &means[0][0],
                                           ZORVS_CLUSTER_SSQ_USER, ssq, ZORVS_CLUSTER_COUNTS_USER, counts, 0);

    if (!cluster) return 1;
    printf("clusters:");
    for (i = 0; i < 10; ++i) printf(" %d", cluster[i]);
    printf("\n");
    for (i = 0; i < 2; ++i)
        printf("cluster %d: %d points, mean (%.2f, %.2f), within sum of squares %.3f\n", i + 1, counts[i],
               means[i][0], means[i][1], ssq[i]);
    free(cluster);
    return 0;
}
