/* A frequency table of twelve measurements in five equal intervals between
 * the smallest and the largest value, and then between bounds of our own. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double x[] = {4.2, 5.1, 6.3, 3.9, 5.5, 5.0, 7.8, 6.1, 4.7, 5.9, 6.6, 5.2};
    double lo, hi;
    double *table = zorvs_d_table_oneway(12, x, 5, ZORVS_DATA_BOUNDS, &lo, &hi, 0);
    int i;

    if (!table) return 1;
    printf("data from %.1f to %.1f\n", lo, hi);
    for (i = 0; i < 5; ++i) printf("interval %d: %.0f\n", i + 1, table[i]);
    free(table);

    /* Known bounds: the first and last intervals are open, the three inner
     * ones split [4, 7] evenly. */
    table = zorvs_d_table_oneway(12, x, 5, ZORVS_KNOWN_BOUNDS, 4.0, 7.0, 0);
    if (!table) return 1;
    for (i = 0; i < 5; ++i) printf("cell %d: %.0f\n", i + 1, table[i]);
    free(table);
    return 0;
}
