/* Poisson, binomial and hypergeometric distribution functions. */
#include <stdio.h>

#include <zorvstat.h>

int main(void) {
    printf("Poisson, mean 3.5: P(X <= 2) = %.10f\n", zorvs_d_poisson_cdf(2, 3.5));
    printf("binomial, 20 trials, p 0.3: P(X <= 4) = %.10f\n", zorvs_d_binomial_cdf(4, 20, 0.3));
    /* Draw 10 from 50 of which 20 are marked: P(at most 3 marked). */
    printf("hypergeometric: P(X <= 3) = %.10f\n", zorvs_d_hypergeometric_cdf(3, 10, 20, 50));
    return 0;
}
