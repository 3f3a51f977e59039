// givens_fit.hpp - the one-pass least-squares fit by square-root-free
// (fast) Givens rotations, shared by the routines that fit linear models.
//
// The factor is kept as Gentleman's unit upper triangle: row j of R is
// sqrt(d[j]) (1, rbar[j][j+1], ..., rbar[j][p-1]) and its right side
// sqrt(d[j]) rbar[j][p].  With an intercept, row 0 then holds the weighted
// means of the columns and of y, and the rotation of a row into it leaves
// the row's deviation from the old means with weight t W_old / W_new: the
// exact running treatment of the mean.
#ifndef ZORVS_GIVENS_FIT_HPP
#define ZORVS_GIVENS_FIT_HPP

namespace zorvs {

template <class T>
struct GivensFit {
    // Set by the caller before mode 1.
    int n_independent;  // regressors per row
    int intercept;      // 1: column 0 is the intercept
    T tolerance;        // rank tolerance, 0 to 1
    T *work;            // GivensFit<T>::work_size(p) reals
    // State.
    int p;       // parameters: n_independent + intercept
    int ld;      // p + 1 rounded up to whole vectors: the length of a row of rbar and of z
    T *rbar;     // p rows of ld reals
    T *d;        // p scales; their reciprocals during the pass (inf: an empty row)
    T *z;        // the row being rotated: p regressors and y
    T *lo, *hi;  // extremes of the p columns and of y; NaN before the first used row
    T *mean;     // weighted means of the p columns and of y (without intercept)
    T weight_sum;
    T sse;
    T df_error;
    T total_ss;
    int rows_missing;
    int rank;
    bool stopped;  // a negative frequency or weight ended the fit

    // Rows are whole 32-byte vectors; the cells past y stay 0.0.
    static constexpr int lanes = static_cast<int>(32 / sizeof(T));
    static int row_length(int p) { return (p + 1 + lanes - 1) / lanes * lanes; }
    static long work_size(int p) { return static_cast<long>(p) * row_length(p) + p + 4L * row_length(p); }
};

// The fit by modes: 1 opens, 2 adds n_rows rows of x (row stride ldx) with
// y and optional frequencies and weights (rows numbered from first_row + 1
// in messages), 3 closes: rank test, coefficients into coef (p reals) and
// the ordinary-scale R, column-major with leading dimension p, into r.
template <class T>
void r2ivn(int ido, GivensFit<T> &fit, long n_rows, const T *x, long ldx, const T *y, const T *freq, const T *wt,
           long first_row, T *coef, T *r);

}  // namespace zorvs

#endif  // ZORVS_GIVENS_FIT_HPP
