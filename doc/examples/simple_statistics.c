/* Summary statistics of two variables, one with a missing value, with the
 * median and 99% limits of the mean. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    /* Eight observations of two variables, row by row; NaN is missing. */
    double x[8][2] = {{12.1, 3.4}, {11.4, 2.9}, {13.0, 3.8}, {12.6, NAN},
                      {11.9, 3.1}, {12.3, 3.5}, {14.2, 4.4}, {12.8, 3.6}};
    const char *rows[] = {"mean", "variance", "std dev", "skewness", "kurtosis", "minimum", "maximum",
                          "range", "coef var", "count", "99% low", "99% high", "var low", "var high",
                          "median"};
    double *t;
    int r;

    /* The row with a NaN is left out of both variables, with a warning on
     * the error stream (WARNING_IMMEDIATE, code 11062). */
    t = zorvs_d_simple_statistics(8, 2, &x[0][0], ZORVS_MEDIAN, ZORVS_CONFIDENCE_MEANS, 99.0, 0);
    if (!t) return 1;
    printf("code %d: a row with a missing value was left out\n", zorvs_error_code());
    for (r = 0; r < 15; ++r) printf("%-9s %10.5f %10.5f\n", rows[r], t[2 * r], t[2 * r + 1]);
    free(t);
    return 0;
}
