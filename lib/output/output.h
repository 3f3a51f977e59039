/*
 * output.h - internal routines of the matrix output layer.  C99 and C++.
 */
#ifndef ZORVS_OUTPUT_H
#define ZORVS_OUTPUT_H

#ifdef __cplusplus
extern "C" {
#endif

/* Options without checks and without a frame: 1..6 read, -6..-1 set, 0 reset. */
void zorvs_w1opt(int option, int *value);
/* Range of elements of one column inside a print part (0, +-1, +-2). */
void zorvs_w12rl(int itring, int first, int last, int column, int *start, int *count);
/* printf format of a value of size |x| in a field of `width` showing `digits` significant digits.
 * The result is a static buffer; take a copy. */
const char *zorvs_fmtx(float x, int width, int digits);
const char *zorvs_dfmtx(double x, int width, int digits);
/* Check a format: maximum width, number of conversions, number of W or w.  Letters allowed: `letters`. */
void zorvs_write_format(const char *format, const char *letters, int *max_width, int *n_conversions,
                        int *n_w);

#ifdef __cplusplus
}
#endif

#endif /* ZORVS_OUTPUT_H */
