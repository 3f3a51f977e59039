/* Sign test that the median of ten times is 60 s, and the Wilcoxon rank-sum
 * test of two sets of times. */
#include <stdio.h>

#include <zorvstat.h>

int main(void) {
    double a[10] = {58.2, 63.1, 61.4, 65.0, 59.9, 62.2, 60.0, 66.3, 64.1, 61.8};
    double b[8] = {57.0, 59.1, 58.8, 60.5, 56.2, 61.0, 58.0, 59.5};
    double stat[10];
    int above, ties;
    double p = zorvs_d_sign_test(10, a, ZORVS_PERCENTILE, 60.0, ZORVS_PERCENTAGE, 0.5,
                                 ZORVS_N_POSITIVE_DEVIATIONS, &above, ZORVS_N_ZERO_DEVIATIONS, &ties, 0);

    printf("sign test: %d above 60, %d equal, P(at least %d of %d above) = %.6f\n", above, ties, above, 10 - ties,
           p);
    p = zorvs_d_wilcoxon_rank_sum(10, a, 8, b, ZORVS_STAT_USER, stat, 0);
    printf("rank sum of a: %.1f, z = %.4f, two-sided p = %.6f\n", stat[6], stat[8], p);
    return 0;
}
