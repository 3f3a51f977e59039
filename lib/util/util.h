/*
 * util.h - short routines of the utilities that other routines share.
 */
#ifndef ZORVS_UTIL_H
#define ZORVS_UTIL_H

#ifdef __cplusplus
extern "C" {
#endif

/* Index from 1 of the first largest (max) or smallest (min) element of a
 * strided vector; 0 if n is below 1. */
int zorvs_ismax(int n, const float x[], int stride);
int zorvs_ismin(int n, const float x[], int stride);
int zorvs_dismax(int n, const double x[], int stride);
int zorvs_dismin(int n, const double x[], int stride);
int zorvs_iimax(const int *n, const int x[], const int *stride);
int zorvs_iimin(const int *n, const int x[], const int *stride);

#ifdef __cplusplus
}
#endif

#endif /* ZORVS_UTIL_H */
