/* first_program.c - statistics of heights and weights, printed as a matrix. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    /* Ten people, one row each: height (cm), weight (kg). */
    double people[10][2] = {{172, 68.5}, {165, 59.0}, {180, 81.2}, {158, 52.4}, {175, 77.0},
                            {169, 64.3}, {183, 88.1}, {161, 55.7}, {177, 72.9}, {170, 66.0}};
    char *columns[] = {"", "height", "weight"};
    char *rows[] = {"mean", "variance", "std dev", "minimum", "maximum"};
    /* Rows of the statistics table: 0 mean, 1 variance, 2 standard
     * deviation, 5 minimum, 6 maximum (one column per variable). */
    const int wanted[] = {0, 1, 2, 5, 6};
    double shown[5][2];
    double *stats = zorvs_d_simple_statistics(10, 2, &people[0][0], 0);
    int r, j;

    if (!stats) return 1;
    for (r = 0; r < 5; ++r)
        for (j = 0; j < 2; ++j) shown[r][j] = stats[wanted[r] * 2 + j];
    free(stats); /* the table belongs to the caller */

    zorvs_d_write_matrix("Ten people", 5, 2, &shown[0][0], ZORVS_ROW_LABELS, rows, ZORVS_COL_LABELS,
                         columns, ZORVS_WRITE_FORMAT, "%10.2f", 0);
    printf("\nlargest of 2.5, -1, 7.25: %g\n", zorvs_d_vmax(3, 2.5, -1.0, 7.25));
    return 0;
}
