/* Permuting a vector and the rows of a matrix. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double x[4] = {10, 20, 30, 40}, a[3][2] = {{1, 2}, {3, 4}, {5, 6}};
    int p[4] = {2, 0, 3, 1}, rows[3] = {2, 0, 1}, i;
    double *gathered = zorvs_d_permute_vector(4, x, p, ZORVS_FORWARD_PERMUTATION, 0);
    double *scattered = zorvs_d_permute_vector(4, x, p, ZORVS_BACKWARD_PERMUTATION, 0);
    double *b = zorvs_d_permute_matrix(3, 2, &a[0][0], rows, ZORVS_PERMUTE_ROWS, 0);

    if (!gathered || !scattered || !b) return 1;
    printf("x[p[i]]:       %g %g %g %g\n", gathered[0], gathered[1], gathered[2], gathered[3]);
    printf("y[p[i]] = x[i]: %g %g %g %g\n", scattered[0], scattered[1], scattered[2], scattered[3]);
    for (i = 0; i < 3; ++i) printf("row %d: %g %g\n", i, b[2 * i], b[2 * i + 1]);
    free(gathered);
    free(scattered);
    free(b);
    return 0;
}
