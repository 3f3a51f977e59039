/*
 * example.c - a first look at libzorvstat.
 *
 * Routines take their fixed arguments and then, for most of them, a list of
 * keywords ended by 0.  Trouble is reported through the error system: a
 * message on the error stream, and zorvs_error_type()/zorvs_error_code().
 */
#include <stdio.h>

#include "zorvstat.h"

int main(void) {
    double data[] = {2.5, -1.0, 7.25, 7.25, 3.0};
    int index;

    /* The largest of a list of numbers, through the full call frame. */
    printf("largest of 2.5, -1, 7.25: %g\n", zorvs_d_vmax(3, 2.5, -1.0, 7.25));
    printf("smallest of 4, 9, -3, 8:  %d\n", zorvs_i_vmin(4, 4, 9, -3, 8));

    /* Position (from 0) of the element of largest absolute value. */
    zorvs_d_maximum_index(5, data, 1, &index);
    printf("largest |x| is data[%d] = %g\n", index, data[index]);

    /* A caught error: an unknown keyword.  By default a TERMINAL error ends
     * the process; here stopping is switched off, so the call returns and
     * the program reads the type and code. */
    zorvs_error_options(ZORVS_SET_STOP, ZORVS_TERMINAL, 0, 0);
    zorvs_error_options(ZORVS_SET_PRINT, 99, 1, 0);
    printf("after a bad call: error type %d, code %d\n", zorvs_error_type(), zorvs_error_code());
    return 0;
}
