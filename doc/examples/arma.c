/* An AR(1) model fitted by least squares, and forecasts for three steps. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double z[20] = {2.4, 2.4, 2.4, 2.2, 2.1, 1.5, 2.3, 2.3, 2.5, 2.0,
                    1.9, 1.7, 2.2, 1.8, 3.2, 3.2, 2.7, 2.2, 2.2, 1.9};
    zorvs_arma_info *info = NULL;
    double *est, *forecast;
    int h;

    est = zorvs_d_arma(20, z, 1, 0, ZORVS_LEAST_SQUARES, ZORVS_BACKCASTING, 0, 0.0, ZORVS_ARMA_INFO, &info, 0);
    if (!est) return 1;
    printf("constant %.4f, phi %.4f, innovation variance %.4f\n", est[0], est[1], info->innovation_variance);

    forecast = zorvs_d_arma_forecast(info, 3, 0);
    if (!forecast) return 1;
    for (h = 0; h < 3; ++h)
        printf("lead %d: %.4f (95%% limits %.4f to %.4f)\n", h + 1, forecast[3 * h], forecast[3 * h + 1],
               forecast[3 * h + 2]);
    free(forecast);
    free(est);
    free(info);
    return 0;
}
