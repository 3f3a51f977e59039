// checks.hpp - the real argument checks and the safe arithmetic of checks.h
// as one overloaded name for both twins, so that a template body calls
// zorvs::check::c1div(a, b, &r) and the argument type picks zorvs_c1div or
// zorvs_dc1div.  Each overload is the C routine itself, frame and messages
// included; the integer checks have one C name and need none.
#ifndef ZORVS_FRAME_CHECKS_HPP
#define ZORVS_FRAME_CHECKS_HPP

#include "frame/checks.h"

namespace zorvs::check {

inline void c1ge0(float x, const char *name, int *arg_no) { zorvs_c1ge0(x, name, arg_no); }
inline void c1ge0(double x, const char *name, int *arg_no) { zorvs_dc1ge0(x, name, arg_no); }

inline void c1cip(const char *name, float x, int *arg_no_1, int *arg_no_2) {
    zorvs_c1cip(name, x, arg_no_1, arg_no_2);
}
inline void c1cip(const char *name, double x, int *arg_no_1, int *arg_no_2) {
    zorvs_dc1cip(name, x, arg_no_1, arg_no_2);
}

inline void c1r(int n, const float r[], int ldr, int *arg_no) { zorvs_c1r(n, r, ldr, arg_no); }
inline void c1r(int n, const double r[], int ldr, int *arg_no) { zorvs_dc1r(n, r, ldr, arg_no); }

inline void c1div(float a, float b, float *result) { zorvs_c1div(a, b, result); }
inline void c1div(double a, double b, double *result) { zorvs_dc1div(a, b, result); }
// The quotient of c1div as a value.
template <class T>
T divide(T a, T b) {
    T result;
    c1div(a, b, &result);
    return result;
}

inline void c1wfr(int ido, int group, const float x[], int ldx, int row, int sign, int ifrq, int iwt, int spare,
                  int *nmiss, float *freq, float *wt, int *status) {
    zorvs_c1wfr(ido, group, x, ldx, row, sign, ifrq, iwt, spare, nmiss, freq, wt, status);
}
inline void c1wfr(int ido, int group, const double x[], int ldx, int row, int sign, int ifrq, int iwt, int spare,
                  int *nmiss, double *freq, double *wt, int *status) {
    zorvs_dc1wfr(ido, group, x, ldx, row, sign, ifrq, iwt, spare, nmiss, freq, wt, status);
}

}  // namespace zorvs::check

#endif  // ZORVS_FRAME_CHECKS_HPP
