/* A straight-line fit with its summary and a prediction: stopping distance
 * (m) of a car against its speed (km/h). */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double speed[8] = {20, 30, 40, 50, 60, 70, 80, 90};
    double distance[8] = {5.8, 10.9, 15.1, 22.7, 29.8, 36.5, 47.2, 55.1};
    double aov[15], tests[2][4], new_speed[1] = {100}, low[1], high[1];
    zorvs_d_regression_info *info = NULL;
    double *coef, *fit;

    coef = zorvs_d_regression(8, 1, speed, distance, ZORVS_ANOVA_TABLE_USER, aov, ZORVS_REGRESSION_INFO, &info, 0);
    if (!coef) return 1;
    printf("distance = %.5f + %.6f speed\n", coef[0], coef[1]);
    printf("R-squared %.3f%%, residual sd %.5f, F = %.2f on %.0f and %.0f df\n", aov[10], aov[12], aov[8],
           aov[0], aov[1]);

    /* Estimate, standard error, t and p of each coefficient. */
    zorvs_d_regression_summary(info, ZORVS_COEF_T_TESTS_USER, &tests[0][0], 0);
    printf("intercept %9.5f se %.5f t %7.3f p %.4f\n", tests[0][0], tests[0][1], tests[0][2], tests[0][3]);
    printf("speed     %9.6f se %.6f t %7.3f p %.2e\n", tests[1][0], tests[1][1], tests[1][2], tests[1][3]);

    /* At 100 km/h: the prediction and 95% limits for a new observation. */
    fit = zorvs_d_regression_prediction(info, 1, new_speed, ZORVS_CI_NEW_SAMPLE_USER, low, high, 0);
    if (!fit) return 1;
    printf("at 100 km/h: %.3f m, 95%% limits %.3f to %.3f\n", fit[0], low[0], high[0]);

    free(fit);
    free(coef);
    free(info); /* the record is one block */
    return 0;
}
