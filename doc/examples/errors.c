/* errors.c - what a program sees when a call goes wrong, with the stops on
 * FATAL and TERMINAL errors switched off and the messages sent to
 * standard output. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double x[] = {1.0, 2.0, 3.0};
    double *table, value;

    zorvs_error_options(ZORVS_SET_STOP, ZORVS_FATAL, 0, ZORVS_SET_STOP, ZORVS_TERMINAL, 0,
                        ZORVS_SET_ERROR_FILE, stdout, 0);

    /* One interval is too few for a frequency table. */
    table = zorvs_d_table_oneway(3, x, 0, 0);
    printf("result %s, type %d, code %d\n", table ? "non-null" : "null", zorvs_error_type(),
           zorvs_error_code());

    /* A successful call: its code is 0; the type keeps the highest so far. */
    table = zorvs_d_table_oneway(3, x, 2, 0);
    printf("result %s, type %d, code %d\n", table ? "non-null" : "null", zorvs_error_type(),
           zorvs_error_code());
    free(table);

    /* A value outside a routine's domain: NaN and a message. */
    value = zorvs_d_log_gamma(0.0);
    printf("log_gamma(0) = %g, type %d, code %d\n", value, zorvs_error_type(), zorvs_error_code());
    return 0;
}
