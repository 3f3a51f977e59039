// twins.hpp - the float and double twins of the regression routines under
// one name, so that a test is written once for both.
#ifndef ZORVS_TEST_REGRESS_TWINS_HPP
#define ZORVS_TEST_REGRESS_TWINS_HPP

#include <type_traits>

#include "zorvstat.h"

namespace zorvs_test {

template <class T, class... Args>
int glm(int n, T *x, int n_class, int n_cont, Args... args) {
    if constexpr (std::is_same_v<T, float>)
        return zorvs_f_regressors_for_glm(n, x, n_class, n_cont, args...);
    else
        return zorvs_d_regressors_for_glm(n, x, n_class, n_cont, args...);
}

template <class T, class... Args>
T *fit(int n, int nv, T *x, T *y, Args... args) {
    if constexpr (std::is_same_v<T, float>)
        return zorvs_f_regression(n, nv, x, y, args...);
    else
        return zorvs_d_regression(n, nv, x, y, args...);
}

// One fit of make_regression_lm.R's table: the data (row-major x, y, the
// weights), R's coefficients, analysis of variance table and covariances.
struct LmCase {
    const char *name;
    int n, nv, intercept;
    bool weighted;
    const double *x, *y, *w, *coef, *aov, *cov;
};

template <class T>
using Info = std::conditional_t<std::is_same_v<T, float>, zorvs_f_regression_info, zorvs_d_regression_info>;

template <class T, class I, class... Args>
void summary(I *info, Args... args) {
    if constexpr (std::is_same_v<T, float>)
        zorvs_f_regression_summary(info, args...);
    else
        zorvs_d_regression_summary(info, args...);
}

template <class T, class I, class... Args>
T *predict(I *info, int n, T *x, Args... args) {
    if constexpr (std::is_same_v<T, float>)
        return zorvs_f_regression_prediction(info, n, x, args...);
    else
        return zorvs_d_regression_prediction(info, n, x, args...);
}

}  // namespace zorvs_test

#endif  // ZORVS_TEST_REGRESS_TWINS_HPP
