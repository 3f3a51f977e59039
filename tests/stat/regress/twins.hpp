// twins.hpp - the float and double twins of the regression routines under
// one name, so that a test is written once for both.
#ifndef ZORVS_TEST_REGRESS_TWINS_HPP
#define ZORVS_TEST_REGRESS_TWINS_HPP

#include "support/tables.hpp"

namespace zorvs_test {

ZORVS_TWIN_WRAPPER(glm, regressors_for_glm)
ZORVS_TWIN_WRAPPER(fit, regression)
ZORVS_TWIN_WRAPPER(summary, regression_summary)
ZORVS_TWIN_WRAPPER(predict, regression_prediction)

template <class T>
using Info = std::conditional_t<std::is_same_v<T, float>, zorvs_f_regression_info, zorvs_d_regression_info>;

}  // namespace zorvs_test

#endif  // ZORVS_TEST_REGRESS_TWINS_HPP
