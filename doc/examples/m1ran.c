/* Transposing a 2 x 3 matrix in place. */
#include <stdio.h>

#include <zorvstat.h>

int main(void) {
    double a[6] = {1, 2, 3, 4, 5, 6}; /* 2 rows of 3 */
    int i, j;

    zorvs_d_m1ran(2, 3, a, a); /* now 3 rows of 2 */
    for (i = 0; i < 3; ++i) {
        for (j = 0; j < 2; ++j) printf(" %g", a[2 * i + j]);
        printf("\n");
    }
    return 0;
}
