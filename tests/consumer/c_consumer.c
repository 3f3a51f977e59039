/* A C99 program that uses the library through its public header only. */
#include <stdio.h>
#include <stdlib.h>

#include "zorvstat.h"

int main(void) {
    double m = zorvs_d_vmax(3, 1.0, 7.5, -2.0);
    int k = zorvs_i_vmin(4, 3, -8, 2, 9);
    float f = zorvs_f_max(1.5f, 2.5f);
    int index = 0;
    double x[] = {1.0, -9.0, 4.0};
    zorvs_d_maximum_index(3, x, 1, &index);
    if (m != 7.5 || k != -8 || f != 2.5f || index != 1) {
        fprintf(stderr, "unexpected results\n");
        return 1;
    }
    zorvs_error_options(ZORVS_SET_STOP, 5, 0, 0);
    if (zorvs_error_type() != 0) return 1;
    puts("c consumer: ok");
    return 0;
}
