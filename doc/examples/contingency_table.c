/* A 2 x 3 table of counts: Pearson's and the likelihood-ratio test, the
 * expected counts, and two measures of association. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    /* Preferred product (columns) of two age groups (rows). */
    double table[2][3] = {{30, 45, 25}, {40, 20, 40}};
    double *expected = NULL, stats[23][5], chi2, p_chi2, g2, p_g2;
    int df, df_g2, i, j;
    double p = zorvs_d_contingency_table(2, 3, &table[0][0], ZORVS_CHI_SQUARED, &df, &chi2, &p_chi2, ZORVS_LRT,
                                         &df_g2, &g2, &p_g2, ZORVS_EXPECTED, &expected, ZORVS_STATISTICS_USER,
                                         &stats[0][0], 0);

    if (!expected) return 1;
    printf("Pearson X2 = %.4f on %d df, p = %.6f (returned %.6f)\n", chi2, df, p_chi2, p);
    printf("G2 = %.4f on %d df, p = %.6f\n", g2, df_g2, p_g2);
    printf("expected counts, with the margins last:\n");
    for (i = 0; i < 3; ++i) {
        for (j = 0; j < 4; ++j) printf(" %7.2f", expected[4 * i + j]);
        printf("\n");
    }
    /* Rows of the measures: statistic, standard error, standard error under
     * independence, standardised value, p-value. */
    printf("gamma %.5f (se %.5f), Kendall's tau-b %.5f (se %.5f)\n", stats[0][0], stats[0][1], stats[1][0],
           stats[1][1]);
    free(expected);
    return 0;
}
