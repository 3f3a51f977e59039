/* Ranks with ties averaged, and normal scores of the same data. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double x[] = {3.1, 1.2, 5.0, 3.1, 2.4, 7.7, 3.1};
    double *rank = zorvs_d_ranks(7, x, 0);
    double *low = zorvs_d_ranks(7, x, ZORVS_LOWEST, 0);
    double *blom = zorvs_d_ranks(7, x, ZORVS_BLOM_SCORES, 0);
    int i;

    if (!rank || !low || !blom) return 1;
    printf("    x   rank  lowest   Blom\n");
    for (i = 0; i < 7; ++i) printf("%5.1f %6.1f %7.1f %8.4f\n", x[i], rank[i], low[i], blom[i]);
    free(rank);
    free(low);
    free(blom);
    return 0;
}
