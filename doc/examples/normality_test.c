/* Shapiro-Wilk and Lilliefors tests of normality of one sample. */
#include <stdio.h>

#include <zorvstat.h>

int main(void) {
    double x[12] = {148, 154, 158, 160, 161, 162, 166, 170, 182, 195, 236, 268};
    double w, d;
    double p_w = zorvs_d_normality_test(12, x, ZORVS_SHAPIRO_WILK, &w, 0);
    double p_d = zorvs_d_normality_test(12, x, ZORVS_LILLIEFORS, &d, 0);

    printf("Shapiro-Wilk W = %.5f, p = %.5f\n", w, p_w);
    printf("Lilliefors D = %.5f, p = %.5f\n", d, p_d);
    return 0;
}
