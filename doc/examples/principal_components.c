/* Principal components of a 3 x 3 correlation matrix. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double r[3][3] = {{1.0, 0.6, 0.3}, {0.6, 1.0, 0.5}, {0.3, 0.5, 1.0}};
    double vectors[3][3], cumulative[3];
    double *values = zorvs_d_principal_components(3, &r[0][0], ZORVS_CORRELATION_MATRIX, ZORVS_EIGENVECTORS_USER,
                                                  &vectors[0][0], ZORVS_CUM_PERCENT_USER, cumulative, 0);
    int i;

    if (!values) return 1;
    for (i = 0; i < 3; ++i)
        printf("component %d: eigenvalue %.5f, cumulative %.4f, vector (%.5f, %.5f, %.5f)\n", i + 1, values[i],
               cumulative[i], vectors[0][i], vectors[1][i], vectors[2][i]);
    free(values);
    return 0;
}
