/*
 * random.h - internal declarations of the random number routines.
 *
 * The generator state is one record per thread, shared by the single and
 * the double precision routines, so that both continue one stream.  The header
 * compiles as C99 and as C++.
 */
#ifndef ZORVS_RANDOM_H
#define ZORVS_RANDOM_H

#include <stdint.h>

#include "frame/services.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The state of the multiplicative congruential generator (32 bytes). */
struct zorvs_random_state {
    double divisor;       /* x/divisor lies in (0, 1) in both precisions */
    double seed;          /* current x, an integer in 1..2147483646 */
    int32_t reserved;     /* 0, read by nothing */
    int32_t option;       /* generator 1..6 */
    int32_t table_filled; /* 1 when a shuffle table is ready */
};
extern ZORVS_THREAD_LOCAL struct zorvs_random_state zorvs_random_common;

/* First-use work; k = -1 marks the generator seeded, k > 0 sets the option,
   k = 0 takes the clock seed unless a seed is set. */
void zorvs_r1int(int k);
/* The clock seed: 10000*hour + 100*minute + second + 1, or 123457 below 2. */
void zorvs_r1clk(int *seed);
/* n uniforms into r without the keyword frame (n >= 1 expected). */
void zorvs_f_r1uni(int n, float r[]);
void zorvs_d_r1uni(int n, double r[]);

#ifdef __cplusplus
}
#endif

#endif /* ZORVS_RANDOM_H */
