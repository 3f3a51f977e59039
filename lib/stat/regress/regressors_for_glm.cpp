// regressors_for_glm.cpp - the regressor matrix of a general linear model
// from a data matrix of class (categorical) and continuous columns.
//
// Each effect, a list of columns, becomes a block of regressors: the
// Kronecker product of the codes of its class columns (the last one varying
// fastest), times the product of its continuous columns.  A class variable
// of L levels is coded by one of three dummy-variable schemes:
//   1 all levels      L columns, level t is the unit vector e_t;
//   2 leave out last  L - 1 columns, the last level is all 0;
//   3 sum to zero     L - 1 columns, the last level is all -1.
// Levels are the distinct non-NaN values of the column in ascending order.
// A NaN in any column of an effect, at one observation, makes that
// observation's whole block NaN; its other blocks are computed as usual.
//
// Model order 2 without ZORVS_INDICES_EFFECTS forms the main effects, the
// square of each continuous column and every pair of columns.  The square of
// a class column is not formed, so one class column and nothing else gives a
// single effect, its main effect.
//
// The caller's x is transposed in place to column-major for the workers and
// back before the return, on every path that reaches the transposition.  A
// regressor matrix in the caller's storage with ZORVS_REGRESSORS_COL_DIM above
// the regressor count is brought to column-major and back the same way, so
// the caller's cells beyond the regressor columns come back unchanged; in an
// allocated matrix those cells are NaN.  ZORVS_REGRESSORS_COL_DIM below the
// regressor count is refused with (5, 601).

#include <cstdarg>
#include <cstring>

#include "frame/checks.h"
#include "frame/frame.hpp"
#include "frame/machine.h"
#include "kernels/kernels.h"
#include "kernels/linalg.hpp"
#include "kernels/sort.hpp"
#include "stat/regress/regress.hpp"
#include "zorvstat.h"

namespace {

// Distinct values of the class variables: nclval[v] values of variable v,
// sorted ascending, stored one run after another in clval; nmiss[v] counts
// its NaN.  At most maxcl values in all, else (4, 20236).
template <class T>
void l_gclas(int nobs, int ncol, const T *x, int ldx, int nclvar, const int *indcl, int maxcl, int *nclval,
             T *clval, int *nmiss) {
    static const char *const name = "l_gclas ";
    zorvs_e1psh(name);
    for (int v = 0; v < nclvar; ++v) {
        if (indcl[v] < 1 || indcl[v] > ncol) {
            zorvs_e1sti(1, v);
            zorvs_e1sti(2, indcl[v] - 1);
            zorvs_e1sti(3, ncol);
            zorvs_ermes(5, 20235);
        }
    }
    if (zorvs_error_n1rty[0] >= 4) {
        zorvs_e1pop(name);
        return;
    }
    int total = 0;
    for (int v = 0; v < nclvar; ++v) {
        const T *column = x + static_cast<long>(indcl[v] - 1) * ldx;
        T *run = clval + total;
        int count = 0;
        nmiss[v] = 0;
        for (int i = 0; i < nobs; ++i) {
            const T value = column[i];
            if (zorvs::is_missing(value)) {
                ++nmiss[v];
                continue;
            }
            int k = 0;
            while (k < count && run[k] != value) ++k;
            if (k < count) continue;
            if (total + count >= maxcl) {
                zorvs_e1sti(1, maxcl);
                zorvs_ermes(4, 20236);
                zorvs_e1pop(name);
                return;
            }
            // Runs of later variables are not filled yet: the new value goes
            // to the end of this variable's run.
            run[count++] = value;
        }
        if (count > 1) zorvs::sort::svrgn(count, run, run);
        nclval[v] = count;
        total += count;
    }
    zorvs_e1pop(name);
}

// Place of value among the sorted values of one class variable, from 0;
// -1 if it is not there.
template <class T>
int level_of(T value, const T *values, int n) {
    int lo = 0, hi = n - 1;
    while (lo <= hi) {
        const int mid = (lo + hi) / 2;
        if (values[mid] < value)
            lo = mid + 1;
        else if (values[mid] > value)
            hi = mid - 1;
        else
            return mid;
    }
    return -1;
}

// Width of one class variable's code.
inline int code_width(int levels, int scheme) {
    const int w = scheme == 1 ? levels : levels - 1;
    return w > 0 ? w : 0;
}

// The class variable (index from 0 into indcl) of a column, or -1.
inline int class_index(int column, int nclvar, const int *indcl) {
    for (int v = 0; v < nclvar; ++v)
        if (indcl[v] == column) return v;
    return -1;
}

template <class T>
void l_grglm(int nobs, int ncol, const T *x, int ldx, int nclvar, const int *indcl, const int *nclval,
             const T *clval, int nef, const int *nvef, const int *indef, int idummy, int *nreg, T *xd, int ldxd,
             int *nrmiss) {
    (void)ncol;
    const int scheme = idummy < 0 ? -idummy : idummy;
    // Work: the start of each class variable's run of values, and for one
    // effect the strides and widths of its class columns at their last level.
    int longest = 0;
    for (int e = 0; e < nef; ++e) longest = nvef[e] > longest ? nvef[e] : longest;
    int *start = zorvs::allocate<int>(static_cast<std::size_t>(nclvar) + 2 * static_cast<std::size_t>(longest));
    if (!start) return;
    int *last_stride = start + nclvar, *last_width = last_stride + longest;
    for (int v = 0, s = 0; v < nclvar; ++v) {
        start[v] = s;
        s += nclval[v];
    }
    // Widths of the blocks, and the regressor count.
    int count = 0;
    for (int e = 0, pos = 0; e < nef; pos += nvef[e], ++e) {
        int width = 1;
        for (int m = 0; m < nvef[e]; ++m) {
            const int v = class_index(indef[pos + m], nclvar, indcl);
            if (v >= 0) width *= code_width(nclval[v], scheme);
        }
        count += width;
    }
    *nreg = count;
    *nrmiss = 0;
    if (idummy < 0) {
        zorvs::release(start);
        return;
    }
    const T nan = zorvs::missing<T>();
    for (int i = 0; i < nobs; ++i) {
        bool row_missing = false;
        int column0 = 0;  // first regressor column of the block, from 0
        for (int e = 0, pos = 0; e < nef; pos += nvef[e], ++e) {
            const int *cols = indef + pos;
            const int k = nvef[e];
            // Walk the effect from its last column to its first: the stride of
            // each class variable is the product of the widths walked before.
            int width = 1, cell = 0;
            T product = T(1);
            bool missing = false, zero = false;
            int last_levels = 0;  // scheme 3: class columns at their last level
            for (int m = k - 1; m >= 0; --m) {
                const T value = x[static_cast<long>(cols[m] - 1) * ldx + i];
                if (zorvs::is_missing(value)) missing = true;
                const int v = class_index(cols[m], nclvar, indcl);
                if (v < 0) {
                    product *= value;
                    continue;
                }
                const int levels = nclval[v];
                const int w = code_width(levels, scheme);
                const int t = missing ? -1 : level_of(value, clval + start[v], levels);
                if (t < 0 || levels == 0) missing = true;
                if (!missing) {
                    if (scheme == 1 || t < levels - 1) {
                        cell += t * width;
                    } else if (scheme == 2) {
                        zero = true;
                    } else {
                        last_stride[last_levels] = width;
                        last_width[last_levels++] = w;
                    }
                }
                width *= w;
            }
            T *out = xd + static_cast<long>(column0) * ldxd + i;
            if (missing) {
                row_missing = true;
                for (int c = 0; c < width; ++c) out[static_cast<long>(c) * ldxd] = nan;
            } else {
                for (int c = 0; c < width; ++c) out[static_cast<long>(c) * ldxd] = T(0);
                if (!zero && width > 0) {
                    // Scheme 3: each variable at its last level spreads -1 over
                    // all its positions; the cells are the sums of the
                    // fixed part and any choice of those positions.
                    int combinations = 1;
                    for (int a = 0; a < last_levels; ++a) combinations *= last_width[a];
                    const T value = (last_levels % 2 == 0) ? product : -product;
                    for (int c = 0; c < combinations; ++c) {
                        int rest = c, offset = cell;
                        for (int a = 0; a < last_levels; ++a) {
                            offset += (rest % last_width[a]) * last_stride[a];
                            rest /= last_width[a];
                        }
                        out[static_cast<long>(offset) * ldxd] = value;
                    }
                }
            }
            column0 += width;
        }
        if (row_missing) ++*nrmiss;
    }
    zorvs::release(start);
}

// A fatal or terminal error stands in the routine's frame.  The frame's own
// record is read, since the pop of a nested call (the transposition) clears
// the type of the latest event.
inline bool failed() { return zorvs_error_type() >= 4; }

template <class T>
constinit thread_local int lv_n_regressors = 0;

template <class T>
void l_regressors_for_glm(int n_observations, T *x, int n_class, int n_cont, va_list *list) {
    zorvs::KeywordReader kw(list, 4);
    int x_col_dim = n_class + n_cont, order = 1, scheme = 1, regressors_col_dim = -1;
    bool col_dim_given = false, order_given = false, effects_given = false;
    int *class_columns = nullptr, n_effects = 0, *n_var_effects = nullptr, *indices_effects = nullptr;
    T **regressors = nullptr, *regressors_user = nullptr;
    for (int k = kw.keyword(); k != 0; k = kw.keyword()) {
        switch (k) {
        case ZORVS_X_COL_DIM:
            x_col_dim = kw.integer();
            col_dim_given = true;
            break;
        case ZORVS_X_CLASS_COLUMNS: class_columns = kw.pointer<int>(); break;
        case ZORVS_MODEL_ORDER:
            order = kw.integer();
            order_given = true;
            break;
        case ZORVS_INDICES_EFFECTS:
            n_effects = kw.integer();
            n_var_effects = kw.pointer<int>();
            indices_effects = kw.pointer<int>();
            effects_given = true;
            break;
        case ZORVS_DUMMY: scheme = kw.integer(); break;
        case ZORVS_REGRESSORS: regressors = kw.pointer<T *>(); break;
        case ZORVS_REGRESSORS_USER: regressors_user = kw.pointer<T>(); break;
        case ZORVS_REGRESSORS_COL_DIM: regressors_col_dim = kw.integer(); break;
        default: kw.unknown(k); return;
        }
    }
    int arg_no = 0;
    zorvs_c1iarg(n_observations, "nobs", 1, 0, &arg_no);
    zorvs_c1iarg(n_class, "n_class", 0, -1, &arg_no);
    zorvs_c1iarg(n_cont, "n_cont", 0, -1, &arg_no);
    if (failed()) return;
    const int n_columns = n_class + n_cont;
    if (n_columns < 1) zorvs_ermes(5, 20234);
    if (order < 1 || order > 2) {
        zorvs_e1sti(1, order);
        zorvs_ermes(5, 20230);
    }
    if (scheme < 1 || scheme > 3) zorvs_ermes(5, 20232);
    if (col_dim_given && x_col_dim < n_columns) {
        zorvs_e1sti(1, x_col_dim);
        zorvs_ermes(5, 20233);
    }
    if (order_given && effects_given) {
        zorvs_e1stl(1, "ZORVS_MODEL_ORDER and ZORVS_INDICES_EFFECTS");
        zorvs_ermes(5, 11117);
    }
    zorvs_null_pointer("x", -1, x);
    if (failed()) return;
    if (regressors && regressors_user) {
        zorvs_e1stl(1, "ZORVS_REGRESSORS and ZORVS_REGRESSORS_USER");
        zorvs_ermes(5, 11117);
        return;
    }

    // Work: class columns and effects from 1, class values.
    int *indcl = nullptr, *nclval = nullptr, *nmiss = nullptr, *nvef = nullptr, *indef = nullptr;
    T *clval = nullptr;
    T *out = nullptr;
    bool out_allocated = false;
    int n_regressors = 0, rows_missing = 0, ld = 0;
    // The work arrays are the frame's workspace, freed by its pop on every
    // path.

    indcl = zorvs::workspace<int>(static_cast<std::size_t>(n_class));
    nclval = zorvs::workspace<int>(static_cast<std::size_t>(n_class));
    nmiss = zorvs::workspace<int>(static_cast<std::size_t>(n_class));
    if (!indcl || !nclval || !nmiss) return;
    for (int v = 0; v < n_class; ++v) indcl[v] = (class_columns ? class_columns[v] : v) + 1;
    if (n_class > 0) {
        T *all = zorvs::workspace<T>(n_observations, "n_observations", n_class, "n_class");
        if (!all) return;
        zorvs::linalg::m1ran(n_observations, x_col_dim, x, x);
        const long limit = static_cast<long>(n_observations) * n_class;
        l_gclas(n_observations, x_col_dim, x, n_observations, n_class, indcl,
                limit < 2147483647L ? static_cast<int>(limit) : 2147483647, nclval, all, nmiss);
        zorvs::linalg::m1ran(x_col_dim, n_observations, x, x);
        if (failed()) return;
        int total = 0;
        for (int v = 0; v < n_class; ++v) total += nclval[v];
        clval = zorvs::workspace<T>(static_cast<std::size_t>(total));
        if (clval) std::memcpy(clval, all, sizeof(T) * static_cast<std::size_t>(total));
        zorvs::workspace_free(all);
        if (!clval) return;
    }

    if (effects_given) {
        zorvs_c1iarg(n_effects, "n_effects", 1, 0, &arg_no);
        if (failed()) return;
        zorvs_null_pointer("n_var_effects", -1, n_var_effects);
        zorvs_null_pointer("indices_effects", -1, indices_effects);
        if (failed()) return;
        long total = 0;
        for (int e = 0; e < n_effects; ++e) {
            if (n_var_effects[e] < 1) {
                zorvs_e1sti(1, e);
                zorvs_e1sti(2, n_var_effects[e]);
                zorvs_ermes(5, 20237);
            } else {
                total += n_var_effects[e];
            }
        }
        if (failed()) return;
        for (long i = 0; i < total; ++i) {
            if (indices_effects[i] < 0 || indices_effects[i] > x_col_dim - 1) {
                zorvs_e1sti(1, static_cast<int>(i));
                zorvs_e1sti(2, indices_effects[i]);
                zorvs_e1sti(3, x_col_dim);
                zorvs_ermes(5, 20238);
            }
        }
        if (failed()) return;
        nvef = zorvs::workspace<int>(static_cast<std::size_t>(n_effects));
        indef = zorvs::workspace<int>(static_cast<std::size_t>(total));
        if (!nvef || !indef) return;
        std::memcpy(nvef, n_var_effects, sizeof(int) * static_cast<std::size_t>(n_effects));
        for (long i = 0; i < total; ++i) indef[i] = indices_effects[i] + 1;
    } else {
        const int c = n_columns;
        // Main effects, squares of the continuous columns, pairs.
        int squares = 0;
        for (int j = 1; j <= c; ++j)
            if (class_index(j, n_class, indcl) < 0) ++squares;
        n_effects = order == 1 ? c : c + squares + c * (c - 1) / 2;
        nvef = zorvs::workspace<int>(static_cast<std::size_t>(n_effects));
        indef = zorvs::workspace<int>(static_cast<std::size_t>(2 * n_effects));
        if (!nvef || !indef) return;
        int e = 0, pos = 0;
        for (int j = 1; j <= c; ++j) {
            nvef[e++] = 1;
            indef[pos++] = j;
        }
        if (order == 2) {
            for (int j = 1; j <= c; ++j) {
                if (class_index(j, n_class, indcl) >= 0) continue;
                nvef[e++] = 2;
                indef[pos++] = j;
                indef[pos++] = j;
            }
            for (int i = 1; i <= c; ++i) {
                for (int j = i + 1; j <= c; ++j) {
                    nvef[e++] = 2;
                    indef[pos++] = i;
                    indef[pos++] = j;
                }
            }
        }
    }

    zorvs::linalg::m1ran(n_observations, x_col_dim, x, x);
    zorvs::regress::grglm(n_observations, x_col_dim, x, n_observations, n_class, indcl, nclval, clval, n_effects,
                          nvef, indef, -scheme, &n_regressors, nullptr, 1, &rows_missing);
    if (failed() || (!regressors && !regressors_user)) {
        zorvs::linalg::m1ran(x_col_dim, n_observations, x, x);
        if (!failed()) lv_n_regressors<T> = n_regressors;
        return;
    }
    ld = regressors_col_dim >= 0 ? regressors_col_dim : n_regressors;
    zorvs_c12ile(n_regressors, "n_regressors", ld, "regressors_col_dim", &arg_no);
    if (!failed() && n_regressors > 0) {
        if (regressors_user) {
            out = regressors_user;
            if (ld > n_regressors) zorvs::linalg::m1ran(n_observations, ld, out, out);
        } else {
            // The rows of the caller's stride; the cells past the regressors
            // are NaN.
            out = static_cast<T *>(zorvs::raw_allocate(static_cast<std::size_t>(n_observations) * ld * sizeof(T)));
            if (!out) {
                zorvs_e1sti(1, n_observations);
                zorvs_e1stl(1, "n_observations");
                zorvs_e1sti(2, n_regressors);
                zorvs_e1stl(2, "n_regressors");
                zorvs_ermes(5, 202);
            } else if (ld > n_regressors) {
                for (long c = 0, n = static_cast<long>(n_observations) * ld; c < n; ++c) out[c] = zorvs::missing<T>();
            }
            out_allocated = out != nullptr;
        }
        if (out) {
            zorvs::regress::grglm(n_observations, x_col_dim, x, n_observations, n_class, indcl, nclval, clval,
                                  n_effects, nvef, indef, scheme, &n_regressors, out, n_observations, &rows_missing);
        }
    }
    zorvs::linalg::m1ran(x_col_dim, n_observations, x, x);
    if (out) zorvs::linalg::m1ran(ld, n_observations, out, out);
    if (failed()) {
        if (out_allocated) zorvs::release(out);
        return;
    }
    if (regressors) *regressors = out;
    lv_n_regressors<T> = n_regressors;
}

}  // namespace

extern "C" {

void zorvs_grglm(int nobs, int ncol, const float x[], int ldx, int nclvar, const int indcl[], const int nclval[],
                 const float clval[], int nef, const int nvef[], const int indef[], int idummy, int *nreg,
                 float xd[], int ldxd, int *nrmiss) {
    l_grglm(nobs, ncol, x, ldx, nclvar, indcl, nclval, clval, nef, nvef, indef, idummy, nreg, xd, ldxd, nrmiss);
}

void zorvs_dgrglm(int nobs, int ncol, const double x[], int ldx, int nclvar, const int indcl[],
                  const int nclval[], const double clval[], int nef, const int nvef[], const int indef[],
                  int idummy, int *nreg, double xd[], int ldxd, int *nrmiss) {
    l_grglm(nobs, ncol, x, ldx, nclvar, indcl, nclval, clval, nef, nvef, indef, idummy, nreg, xd, ldxd, nrmiss);
}

int zorvs_f_regressors_for_glm(int n_observations, float x[], int n_class, int n_cont, ...) {
    ZORVS_KEYWORD_ENTRY(n_cont, "zorvs_f_regressors_for_glm", lv_n_regressors<float>,
                        l_regressors_for_glm<float>(n_observations, x, n_class, n_cont, &list));
}

int zorvs_d_regressors_for_glm(int n_observations, double x[], int n_class, int n_cont, ...) {
    ZORVS_KEYWORD_ENTRY(n_cont, "zorvs_d_regressors_for_glm", lv_n_regressors<double>,
                        l_regressors_for_glm<double>(n_observations, x, n_class, n_cont, &list));
}

}  // extern "C"
