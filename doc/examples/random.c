/* Random numbers from a fixed seed: the sequence repeats from run to run. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double *u, *z;
    int i;

    zorvs_random_seed_set(123457);
    u = zorvs_d_random_uniform(5, 0);
    z = zorvs_d_random_normal(3, 0);
    if (!u || !z) return 1;
    printf("uniform:");
    for (i = 0; i < 5; ++i) printf(" %.6f", u[i]);
    printf("\nnormal: ");
    for (i = 0; i < 3; ++i) printf(" %.6f", z[i]);
    printf("\nseed now %d\n", zorvs_random_seed_get());
    free(u);
    free(z);
    return 0;
}
