/*
 * example.c - a first look at libzorvstat.
 *
 * Routines take their fixed arguments and then, for most of them, a list of
 * keywords ended by 0.  Trouble is reported through the error system: a
 * message on the error stream, and zorvs_error_type()/zorvs_error_code().
 */
#include <stdio.h>
#include <stdlib.h>

#include "zorvstat.h"

int main(void) {
    double data[] = {2.5, -1.0, 7.25, 7.25, 3.0};
    int index;

    /* The largest of a list of numbers, through the full call frame. */
    printf("largest of 2.5, -1, 7.25: %g\n", zorvs_d_vmax(3, 2.5, -1.0, 7.25));
    printf("smallest of 4, 9, -3, 8:  %d\n", zorvs_i_vmin(4, 4, 9, -3, 8));

    /* Position (from 0) of the element of largest absolute value. */
    zorvs_d_maximum_index(5, data, 1, &index);
    printf("largest |x| is data[%d] = %g\n", index, data[index]);

    /* Summary statistics of a small data set: heights (cm) and weights (kg)
     * of ten people, one row per person.  The result is a table with one
     * column per variable: rows 0 mean, 1 variance, 2 standard deviation,
     * 5 minimum, 6 maximum, 9 count, 10 and 11 the 95% limits of the mean,
     * 14 the median. */
    {
        double people[10][2] = {{172, 68.5}, {165, 59.0}, {180, 81.2}, {158, 52.4}, {175, 77.0},
                                {169, 64.3}, {183, 88.1}, {161, 55.7}, {177, 72.9}, {170, 66.0}};
        static char *names[] = {"", "height", "weight"};
        static const int rows[] = {0, 2, 5, 6, 14, 10, 11};
        static char *row_names[] = {"mean", "std dev", "minimum", "maximum", "median",
                                    "95% lower", "95% upper"};
        double *table = zorvs_d_simple_statistics(10, 2, &people[0][0], ZORVS_MEDIAN, 0);
        double shown[7][2];
        int r, j;
        if (table) {
            for (r = 0; r < 7; ++r)
                for (j = 0; j < 2; ++j) shown[r][j] = table[rows[r] * 2 + j];
            /* The matrix printer picks the decimals from the values. */
            zorvs_d_write_matrix("Heights and weights of ten people", 7, 2, &shown[0][0], ZORVS_ROW_LABELS,
                                 row_names, ZORVS_COL_LABELS, names, 0);
            free(table);
        }
    }

    /* A one-way frequency table: ten measurements in four equal intervals
     * over the data, with the data's extremes returned. */
    {
        double v[] = {4.2, 5.0, 3.1, 6.8, 5.5, 4.9, 7.0, 3.0, 5.1, 6.0};
        double lo, hi;
        double *freq = zorvs_d_table_oneway(10, v, 4, ZORVS_DATA_BOUNDS, &lo, &hi, 0);
        int c;
        if (freq) {
            printf("Frequencies in four intervals from %g to %g:", lo, hi);
            for (c = 0; c < 4; ++c) printf(" %g", freq[c]);
            printf("\n");
            free(freq);
        }
    }

    /* A small regression: fuel use (l/100 km) of eight cars on their mass
     * (t) and their engine kind (1 petrol, 2 diesel, 3 hybrid), a class
     * variable.  The regressors come from the class column coded by
     * "leave out last" (so hybrid is the reference) and the mass; the fit
     * gives the coefficients, intercept first, and the analysis of variance
     * table (entry 10 R-squared in per cent, 12 the residual standard
     * deviation).  The record of the fit then gives the t test of each
     * coefficient (estimate, standard error, t, p) and the predicted use of
     * a diesel car of 1.5 t with its 95% limits for a new observation. */
    {
        double cars[8][2] = {{1, 1.20}, {2, 1.45}, {3, 1.30}, {1, 1.05}, {2, 1.70}, {3, 1.55}, {1, 1.60}, {2, 1.25}};
        double use[8] = {6.9, 6.4, 4.6, 6.2, 7.3, 5.3, 8.1, 5.8};
        double regressors[8][3], aov[15], tests[4][4], diesel[3] = {0, 1, 1.5}, low, high;
        zorvs_d_regression_info *info = NULL;
        int n = zorvs_d_regressors_for_glm(8, &cars[0][0], 1, 1, ZORVS_DUMMY, 2, ZORVS_REGRESSORS_USER,
                                           &regressors[0][0], 0);
        double *b = zorvs_d_regression(8, n, &regressors[0][0], use, ZORVS_ANOVA_TABLE_USER, aov,
                                       ZORVS_REGRESSION_INFO, &info, 0);
        if (b && info) {
            double *p;
            int j;
            printf("fuel use = %.3f + %.3f petrol + %.3f diesel + %.3f per tonne  (R^2 %.1f%%, s %.3f)\n", b[0],
                   b[1], b[2], b[3], aov[10], aov[12]);
            zorvs_d_regression_summary(info, ZORVS_COEF_T_TESTS_USER, &tests[0][0], 0);
            for (j = 0; j < 4; ++j)
                printf("  coefficient %d: %8.3f  se %.3f  t %6.2f  p %.4f\n", j, tests[j][0], tests[j][1],
                       tests[j][2], tests[j][3]);
            p = zorvs_d_regression_prediction(info, 1, diesel, ZORVS_CI_NEW_SAMPLE_USER, &low, &high, 0);
            if (p) printf("  diesel of 1.5 t: %.2f l/100 km, 95%% limits %.2f to %.2f\n", p[0], low, high);
            free(p);
        }
        free(b);
        free(info);
    }

    /* A caught error: an unknown keyword.  By default a TERMINAL error ends
     * the process; here stopping is switched off, so the call returns and
     * the program reads the type and code. */
    zorvs_error_options(ZORVS_SET_STOP, ZORVS_TERMINAL, 0, 0);
    {
        double x[] = {1.0, 2.0, 3.0};
        double *t = zorvs_d_simple_statistics(3, 1, x, 4711, 0);
        printf("after a bad call: result %s, error type %d, code %d\n", t ? "returned" : "null",
               zorvs_error_type(), zorvs_error_code());
    }
    return 0;
}
