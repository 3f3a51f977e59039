/*
 * machine.h - machine constants and small process services of the call
 * frame, for the library's own routines.  C-compatible.
 *
 * The public inquiry routines (zorvs_f_machine, zorvs_d_machine,
 * zorvs_i_machine, zorvs_version, zorvs_page, zorvs_output_file) are in
 * zorvstat.h; the short forms and the tables are here.
 */
#ifndef ZORVS_FRAME_MACHINE_H
#define ZORVS_FRAME_MACHINE_H

#ifdef __cplusplus
extern "C" {
#endif

/* IEEE constants of both precisions, indices 1 to 8 as element 0 to 7:
 * smallest normal, largest finite, 2^-digits, spacing above 1, log10(2),
 * NaN (the missing value), +infinity, -infinity. */
struct zorvs_machine_t {
    float f[8];
    double d[8];
};
extern const struct zorvs_machine_t zorvs_machine;

/* The small numbers 0 to 10 (index 0 to 10) and 0.5 (index 11). */
extern const float zorvs_F_NUMBER[12];
extern const double zorvs_D_NUMBER[12];

/* Constants by index 1 to 8; outside that (5, 12009). */
float zorvs_amach(int i);
double zorvs_dmach(int i);
/* Integer constants by index 1 to 12; outside that (5, 132). */
int zorvs_imach(int i);

/* Processor time of the process so far, in seconds. */
double zorvs_ctime(void);

/* Raise (5, 151) (element i of an array, i >= 0) or (5, 150) (a plain
 * argument, i < 0) if p is null, with l1 = name and i1 = i. */
void zorvs_null_pointer(const char *name, int i, const void *p);

#ifdef __cplusplus
}
#endif

#endif /* ZORVS_FRAME_MACHINE_H */
