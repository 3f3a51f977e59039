/* The larger and smaller of numbers, and the index of the largest |x|. */
#include <stdio.h>

#include <zorvstat.h>

int main(void) {
    double x[6] = {2.0, -7.5, 3.25, 7.5, 0.0, -1.0};
    int index;

    printf("max(2, 3) = %g, min(2, 3) = %g\n", zorvs_d_max(2.0, 3.0), zorvs_d_min(2.0, 3.0));
    printf("largest of four: %g, smallest of three ints: %d\n", zorvs_d_vmax(4, 1.5, 9.0, -2.0, 8.5),
           zorvs_i_vmin(3, 7, -4, 2));
    zorvs_d_maximum_index(6, x, 1, &index);
    printf("largest |x| first at index %d (x = %g)\n", index, x[index]);
    zorvs_d_maximum_index(3, x, 2, &index);
    printf("among x[0], x[2], x[4]: element %d of them (x = %g)\n", index, x[2 * index]);
    return 0;
}
