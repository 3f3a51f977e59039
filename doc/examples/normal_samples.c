/* A paired comparison as one sample of differences, and the same data as
 * two independent samples: Student's, Welch's and the F test. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double a[] = {0.7, -1.6, -0.2, -1.2, -0.1, 3.4, 3.7, 0.8, 0.0, 2.0};
    double b[] = {1.9, 0.8, 1.1, 0.1, -0.1, 4.4, 5.5, 1.6, 4.6, 3.4};
    double d[10], *one, *two;
    int i;

    for (i = 0; i < 10; ++i) d[i] = b[i] - a[i];
    one = zorvs_d_normal_one_sample(10, d, 0);
    if (!one) return 1;
    printf("differences: mean %.4f, sd %.5f, 95%% limits %.5f to %.5f\n", one[1], one[3], one[5], one[6]);
    printf("t = %.4f on %.0f df, two-sided p = %.6f\n", one[9], one[4], one[10]);
    free(one);

    two = zorvs_d_normal_two_sample(10, a, 10, b, 0);
    if (!two) return 1;
    printf("pooled: t = %.4f on %.0f df, p = %.5f\n", two[11], two[8], two[12]);
    printf("Welch:  t = %.4f on %.3f df, p = %.5f\n", two[18], two[15], two[19]);
    printf("F = %.5f on %.0f and %.0f df, p = %.5f\n", two[22], two[23], two[24], two[27]);
    free(two);
    return 0;
}
