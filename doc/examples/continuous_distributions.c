/* Distribution functions and quantiles of the continuous distributions. */
#include <stdio.h>

#include <zorvstat.h>

int main(void) {
    printf("normal: P(Z <= 1.96) = %.10f, P(Z <= -10) = %.6e\n", zorvs_d_normal_cdf(1.96),
           zorvs_d_normal_cdf(-10.0));
    printf("normal quantile of 0.975 = %.7f\n", zorvs_d_normal_inverse_cdf(0.975));
    printf("t, 10 df: P(T <= 2.228) = %.8f, quantile of 0.975 = %.6f\n", zorvs_d_t_cdf(2.228, 10.0),
           zorvs_d_t_inverse_cdf(0.975, 10.0));
    printf("chi-squared, 4 df: P(X <= 9.4877) = %.8f, quantile of 0.95 = %.6f\n",
           zorvs_d_chi_squared_cdf(9.4877, 4.0), zorvs_d_chi_squared_inverse_cdf(0.95, 4.0));
    printf("F, 3 and 20 df: P(F <= 3.1) = %.8f, quantile of 0.95 = %.6f\n", zorvs_d_F_cdf(3.1, 3.0, 20.0),
           zorvs_d_F_inverse_cdf(0.95, 3.0, 20.0));
    printf("beta(2, 5): P(X <= 0.3) = %.10f, quantile of 0.5 = %.8f\n", zorvs_d_beta_cdf(0.3, 2.0, 5.0),
           zorvs_d_beta_inverse_cdf(0.5, 2.0, 5.0));
    printf("gamma, shape 3: P(X <= 2) = %.10f\n", zorvs_d_gamma_cdf(2.0, 3.0));
    printf("bivariate normal, rho 0.5: P(X <= 0, Y <= 0) = %.10f\n", zorvs_d_bivariate_normal_cdf(0.0, 0.0, 0.5));
    return 0;
}
