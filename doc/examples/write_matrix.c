/* The matrix printer: labels, a format, and the lower triangle. */
#include <zorvstat.h>

int main(void) {
    double r[3][3] = {{1.0, 0.6, 0.3}, {0.6, 1.0, 0.5}, {0.3, 0.5, 1.0}};
    int counts[2][3] = {{12, 7, 30}, {4, 19, 8}};
    char *names[] = {"", "height", "weight", "age"};
    char *rows[] = {"height", "weight", "age"};

    zorvs_d_write_matrix("Correlations", 3, 3, &r[0][0], ZORVS_PRINT_LOWER, ZORVS_ROW_LABELS, rows,
                         ZORVS_COL_LABELS, names, ZORVS_WRITE_FORMAT, "%7.3f", 0);
    zorvs_i_write_matrix("Counts", 2, 3, &counts[0][0], 0);
    zorvs_d_write_matrix("Above the diagonal, numbered from 0", 3, 3, &r[0][0], ZORVS_PRINT_UPPER_NO_DIAG,
                         ZORVS_ROW_NUMBER_ZERO, ZORVS_COL_NUMBER_ZERO, 0);
    return 0;
}
