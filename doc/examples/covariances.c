/* Covariances and correlations of three variables, and the means. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double x[6][3] = {{4.0, 2.0, 0.60}, {4.2, 2.1, 0.59}, {3.9, 2.0, 0.58},
                      {4.3, 2.1, 0.62}, {4.1, 2.2, 0.63}, {4.4, 2.3, 0.61}};
    double *means = NULL, *cov, *cor;
    int i;

    cov = zorvs_d_covariances(6, 3, &x[0][0], ZORVS_X_MEAN, &means, 0);
    cor = zorvs_d_covariances(6, 3, &x[0][0], ZORVS_CORRELATION_MATRIX, 0);
    if (!cov || !cor) return 1;
    printf("means %.4f %.4f %.4f\n", means[0], means[1], means[2]);
    for (i = 0; i < 3; ++i)
        printf("cov %10.6f %10.6f %10.6f   cor %8.5f %8.5f %8.5f\n", cov[3 * i], cov[3 * i + 1], cov[3 * i + 2],
               cor[3 * i], cor[3 * i + 1], cor[3 * i + 2]);
    free(means);
    free(cov);
    free(cor);
    return 0;
}
