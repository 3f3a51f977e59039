/* Gamma, beta and error functions. */
#include <stdio.h>

#include <zorvstat.h>

int main(void) {
    printf("gamma(4.5)       = %.15g\n", zorvs_d_gamma(4.5));
    printf("log_gamma(100)   = %.15g\n", zorvs_d_log_gamma(100.0));
    printf("beta(2.5, 1.5)   = %.15g\n", zorvs_d_beta(2.5, 1.5));
    printf("log_beta(1e3, 2) = %.15g\n", zorvs_d_log_beta(1000.0, 2.0));
    printf("erf(0.5)         = %.15g\n", zorvs_d_erf(0.5));
    printf("erfc(10)         = %.15g\n", zorvs_d_erfc(10.0));
    printf("float gamma(4.5) = %.7g\n", (double)zorvs_f_gamma(4.5f));
    return 0;
}
