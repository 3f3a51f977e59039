/* A C99 program that uses the library through its public header only: the
   header compiles as strict C, its keywords are plain C constants, and the
   names link with C linkage. */
#include "zorvstat.h"

int main(void) {
    zorvs_error_options(ZORVS_SET_STOP, 5, 0, 0);
    if (zorvs_d_vmax(3, 1.0, 7.5, -2.0) != 7.5 || zorvs_i_vmin(4, 3, -8, 2, 9) != -8) return 1;
    return zorvs_f_max(1.5f, 2.5f) == 2.5f && zorvs_error_type() == 0 ? 0 : 1;
}
