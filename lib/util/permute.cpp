// permute.cpp - the public permutation of a vector, and of the rows or the
// columns of a row-major matrix, over the in-place cycle kernel zorvs_permu.
//
//   ZORVS_FORWARD_PERMUTATION   (1)  result[i] = x[permutation[i]]
//   ZORVS_BACKWARD_PERMUTATION  (2)  result[permutation[i]] = x[i]
//   ZORVS_PERMUTE_ROWS          (3)  row i of the result is row permutation[i] of a
//   ZORVS_PERMUTE_COLUMNS       (4)  column permutation[j] of the result is column j of a
//
// The permutation counts from 0; a copy counting from 1 goes to the kernel.
// Rows are gathered and columns scattered, as the kernel's two paths do: a
// column permutation is the inverse of the row permutation by the same
// entries.
//
// The copy is checked before anything is written: an entry out of range is
// (5, 20422) and a repeated entry (5, 20425), and then neither the caller's
// matrix nor caller storage given with ZORVS_RETURN_USER is touched.  A
// repeated entry is no permutation, and the cycle walk would run off the
// array on one.  A value of `permute` that does not belong to the routine is
// (5, 602) from the range check.
//
// The matrix is transposed to column-major in place around the kernel call
// and transposed back, as the result is, so the caller's matrix holds on
// return what it held before.  Caller storage may be x or a itself: the
// permutation is then made in place.

#include <cstdarg>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "kernels/blas.hpp"
#include "kernels/kernels.h"
#include "kernels/linalg.hpp"
#include "kernels/sort.hpp"
#include "zorvstat.h"

namespace {

template <class T>
constinit thread_local T *lv_permuted = nullptr;

// The kernel's copy of the permutation, counting from 1, checked; null after
// an error (reported).  A work array of the routine's frame.
int *kernel_permutation(int n, const int *permutation, const char *name) {
    int *index = zorvs::workspace<int>(n, name);
    if (!index) return nullptr;
    for (int i = 0; i < n; ++i) index[i] = permutation[i] + 1;
    if (!zorvs::l_check_permutation(n, index)) return nullptr;
    return index;
}

template <class T>
void l_permute_vector(int n_elements, T *x, int *permutation, int permute, va_list *list) {
    zorvs::OutputPair<T> permuted(lv_permuted<T>);
    zorvs::KeywordReader kw(list, 4);
    if (!zorvs::read_return_user(kw, permuted)) return;
    int arg_no = 0;
    zorvs_c1iarg(n_elements, "n_elements", 1, 0, &arg_no);
    zorvs_c1iarg(permute, "permute", ZORVS_FORWARD_PERMUTATION, ZORVS_BACKWARD_PERMUTATION, &arg_no);
    zorvs_null_pointer("x", -1, x);
    zorvs_null_pointer("permutation", -1, permutation);
    if (permuted.user()) zorvs_null_pointer("ZORVS_RETURN_USER", -1, permuted.data());
    if (zorvs_error_n1rty[0] >= 4) return;
    int *index = kernel_permutation(n_elements, permutation, "n_elements");
    if (!index) return;
    if (!permuted.obtain(n_elements, "n_elements")) return;
    zorvs::sort::permu(n_elements, x, index, permute, permuted.data());
}

// Column-major worker: b := a with its rows gathered (path 1) or its columns
// scattered (path 2) by iperm; work holds one row.
template <class T>
void l_p2rma(int n_rows, int n_columns, const T *a, int a_col_dim, int *iperm, int ipath, T *b, int b_col_dim,
             T *work) {
    static const char *const name = "l_p2rma ";
    zorvs_e1psh(name);
    int arg_no = 0;
    zorvs_c1iarg(n_rows, "n_rows", 1, 0, &arg_no);
    zorvs_c1iarg(n_columns, "n_columns", 1, 0, &arg_no);
    zorvs_c1iarg(a_col_dim, "a_col_dim", n_rows, 0, &arg_no);
    if (zorvs_n1rcd(0) == 0) {
        if (ipath == 1) {
            for (long j = 0; j < n_columns; ++j)
                zorvs::sort::permu(n_rows, a + j * a_col_dim, iperm, 1, b + j * b_col_dim);
        } else {
            for (int i = 0; i < n_rows; ++i) {
                zorvs::blas::copy(n_columns, a + i, a_col_dim, work, 1);
                zorvs::sort::permu(n_columns, work, iperm, 2, work);
                zorvs::blas::copy(n_columns, work, 1, b + i, b_col_dim);
            }
        }
    }
    zorvs_e1pop(name);
}

template <class T>
void l_permute_matrix(int n_rows, int n_columns, T *a, int *permutation, int permute, va_list *list) {
    zorvs::OutputPair<T> permuted(lv_permuted<T>);
    zorvs::KeywordReader kw(list, 5);
    if (!zorvs::read_return_user(kw, permuted)) return;
    int arg_no = 0;
    zorvs_c1iarg(n_rows, "n_rows", 1, 0, &arg_no);
    zorvs_c1iarg(n_columns, "n_columns", 1, 0, &arg_no);
    zorvs_c1iarg(permute, "permute", ZORVS_PERMUTE_ROWS, ZORVS_PERMUTE_COLUMNS, &arg_no);
    zorvs_null_pointer("a", -1, a);
    zorvs_null_pointer("permutation", -1, permutation);
    if (permuted.user()) zorvs_null_pointer("ZORVS_RETURN_USER", -1, permuted.data());
    if (zorvs_error_n1rty[0] >= 4) return;
    const bool rows = permute == ZORVS_PERMUTE_ROWS;
    const int n = rows ? n_rows : n_columns;
    int *index = kernel_permutation(n, permutation, rows ? "n_rows" : "n_columns");
    if (!index) return;
    T *work = zorvs::workspace<T>(n_columns, "n_columns");
    if (!work) return;
    if (!permuted.obtain(n_rows, "n_rows", n_columns, "n_columns")) return;
    T *b = permuted.data();
    zorvs::linalg::m1ran(n_rows, n_columns, a, a);
    l_p2rma(n_rows, n_columns, a, n_rows, index, rows ? 1 : 2, b, n_rows, work);
    if (b != a) zorvs::linalg::m1ran(n_columns, n_rows, a, a);
    zorvs::linalg::m1ran(n_columns, n_rows, b, b);
}

}  // namespace

extern "C" {

float *zorvs_f_permute_vector(int n_elements, float x[], int permutation[], int permute, ...) {
    ZORVS_KEYWORD_ENTRY(permute, "zorvs_f_permute_vector", lv_permuted<float>,
                        l_permute_vector<float>(n_elements, x, permutation, permute, &list));
}
double *zorvs_d_permute_vector(int n_elements, double x[], int permutation[], int permute, ...) {
    ZORVS_KEYWORD_ENTRY(permute, "zorvs_d_permute_vector", lv_permuted<double>,
                        l_permute_vector<double>(n_elements, x, permutation, permute, &list));
}
float *zorvs_f_permute_matrix(int n_rows, int n_columns, float a[], int permutation[], int permute, ...) {
    ZORVS_KEYWORD_ENTRY(permute, "zorvs_f_permute_matrix", lv_permuted<float>,
                        l_permute_matrix<float>(n_rows, n_columns, a, permutation, permute, &list));
}
double *zorvs_d_permute_matrix(int n_rows, int n_columns, double a[], int permutation[], int permute, ...) {
    ZORVS_KEYWORD_ENTRY(permute, "zorvs_d_permute_matrix", lv_permuted<double>,
                        l_permute_matrix<double>(n_rows, n_columns, a, permutation, permute, &list));
}

}  // extern "C"
