/* One-way analysis of variance of three groups with Tukey's intervals, and
 * the Student-Newman-Keuls grouping of the same means. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    /* Yields of three fertilisers, the groups one after the other. */
    int n[3] = {5, 4, 5};
    double y[14] = {20.1, 21.3, 19.8, 22.0, 20.6,  23.9, 24.4, 22.8, 25.1,  21.0, 22.2, 20.9, 21.7, 22.5};
    double aov[15], means[3], tukey[3][5];
    int *groups, i;
    double p = zorvs_d_anova_oneway(3, n, y, ZORVS_ANOVA_TABLE_USER, aov, ZORVS_GROUP_MEANS_USER, means,
                                    ZORVS_TUKEY_USER, &tukey[0][0], 0);

    printf("F = %.4f on %.0f and %.0f df, p = %.6f\n", aov[8], aov[0], aov[1], p);
    printf("group means %.3f %.3f %.3f\n", means[0], means[1], means[2]);
    for (i = 0; i < 3; ++i)
        printf("groups %.0f-%.0f: difference %7.3f, 95%% limits %7.3f %7.3f\n", tukey[i][0], tukey[i][1],
               tukey[i][2], tukey[i][3], tukey[i][4]);

    /* Which means differ at the 5% level: the error mean square and its df
     * from the table give the standard error of a mean of 5 (approximately,
     * the groups being nearly equal). */
    groups = zorvs_d_multiple_comparisons(3, means, (int)aov[1], aov[12] / 2.23606797749979, ZORVS_ALPHA, 0.05, 0);
    if (!groups) return 1;
    printf("SNK: %d %d\n", groups[0], groups[1]);
    free(groups);
    return 0;
}
