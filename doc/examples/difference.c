/* First differences of a monthly series, and a seasonal difference of
 * period 4 followed by a first difference. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double z[10] = {10, 12, 15, 11, 13, 16, 19, 14, 17, 20};
    int one[1] = {1}, both[2] = {4, 1}, lost, i;
    double *w = zorvs_d_difference(10, z, 1, one, 0);
    double *s;

    if (!w) return 1;
    printf("first differences:");
    for (i = 0; i < 10; ++i) printf(" %g", w[i]);
    printf("\n");
    free(w);

    /* (1 - B^4)(1 - B), the lost head left out. */
    s = zorvs_d_difference(10, z, 2, both, ZORVS_EXCLUDE_FIRST, ZORVS_NUM_LOST, &lost, 0);
    if (!s) return 1;
    printf("seasonal and first, %d lost:", lost);
    for (i = 0; i < 10 - lost; ++i) printf(" %g", s[i]);
    printf("\n");
    free(s);
    return 0;
}
