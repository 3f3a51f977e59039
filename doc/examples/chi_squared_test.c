/* Goodness of fit: are 40 values uniform on [0, 1]?  Four equal cells. */
#include <math.h>
#include <stdio.h>

#include <zorvstat.h>

static double uniform_cdf(double x) { return x < 0 ? 0 : x > 1 ? 1 : x; }

int main(void) {
    double x[40], cut[3] = {0.25, 0.5, 0.75}, counts[4], chi2, p;
    int i, df;

    /* Values piled towards 1: x = sqrt(u) on an even grid of u. */
    for (i = 0; i < 40; ++i) x[i] = sqrt((i + 0.5) / 40);
    p = zorvs_d_chi_squared_test(uniform_cdf, 4, 40, x, ZORVS_CUTPOINTS, cut, ZORVS_CHI_SQUARED, &df, &chi2, &p,
                                 ZORVS_CELL_COUNTS_USER, counts, 0);
    printf("cell counts %.0f %.0f %.0f %.0f\n", counts[0], counts[1], counts[2], counts[3]);
    printf("X2 = %.3f on %d df, p = %.3g\n", chi2, df, p);
    return 0;
}
