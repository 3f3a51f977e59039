/* Regressors of a model with one class variable (three levels) and one
 * continuous variable, under the "leave out last" dummy scheme. */
#include <stdio.h>

#include <zorvstat.h>

int main(void) {
    /* Column 0: the class (any real values name the levels), column 1: x. */
    double x[5][2] = {{2, 1.5}, {1, 2.0}, {3, 0.5}, {2, 3.0}, {1, 1.0}};
    double regressors[5][3];
    int i, j;
    int n = zorvs_d_regressors_for_glm(5, &x[0][0], 1, 1, ZORVS_DUMMY, 2, ZORVS_REGRESSORS_USER,
                                       &regressors[0][0], 0);

    printf("%d regressors: class 1, class 2, x\n", n);
    for (i = 0; i < 5; ++i) {
        for (j = 0; j < n; ++j) printf(" %5.2f", regressors[i][j]);
        printf("\n");
    }
    return 0;
}
