/* Machine constants, the page size, and the output unit sent to a file. */
#include <stdio.h>
#include <stdlib.h>

#include <zorvstat.h>

int main(void) {
    double x[2][2] = {{1.5, 2.25}, {-3.0, 4.125}};
    int width;
    FILE *out = tmpfile(), *old;
    char line[80];

    printf("double: smallest normal %g, largest %g, spacing above 1 %g\n", zorvs_d_machine(1),
           zorvs_d_machine(2), zorvs_d_machine(4));
    printf("float:  spacing above 1 %g, missing value %g\n", (double)zorvs_f_machine(4),
           (double)zorvs_f_machine(6));

    zorvs_page(1, &width);
    printf("page width %d\n", width);

    /* Print a matrix into a file instead of standard output, then read it back. */
    if (!out) return 1;
    zorvs_output_file(ZORVS_GET_OUTPUT_FILE, &old, ZORVS_SET_OUTPUT_FILE, out, 0);
    zorvs_d_write_matrix("x", 2, 2, &x[0][0], 0);
    zorvs_output_file(ZORVS_SET_OUTPUT_FILE, old, 0);
    rewind(out);
    while (fgets(line, sizeof line, out)) printf("file: %s", line);
    fclose(out);
    return 0;
}
