// regress_target.cpp - regressors of a general linear model, the
// regression fit with its outputs, and the summary and prediction of the
// record the fit hands over, on any data, sizes and keyword lists: a result
// and a record exactly when nothing failed, a rank within the parameters,
// p-values of the coefficients in [0, 1], leverages in [0, 1].
#include "fuzz_input.hpp"

namespace zorvs_fuzz::regress {

const Item glm_menu[] = {{ZORVS_X_COL_DIM, "d"}, {ZORVS_X_CLASS_COLUMNS, "n"}, {ZORVS_MODEL_ORDER, "i"},
    {ZORVS_INDICES_EFFECTS, "dnn"}, {ZORVS_DUMMY, "i"}, {ZORVS_REGRESSORS, "a"}, {ZORVS_REGRESSORS_USER, "o"},
    {ZORVS_REGRESSORS_COL_DIM, "d"}};
const Item fit_menu[] = {{ZORVS_X_COL_DIM, "d"}, {ZORVS_NO_INTERCEPT, ""}, {ZORVS_TOLERANCE, "r"},
    {ZORVS_TOLERANCE_ADR, "s"}, {ZORVS_FREQUENCIES, "X"}, {ZORVS_WEIGHTS, "X"}, {ZORVS_RANK, "k"},
    {ZORVS_ANOVA_TABLE, "a"}, {ZORVS_ANOVA_TABLE_USER, "o"}, {ZORVS_COEF_COVARIANCES, "a"},
    {ZORVS_COEF_COVARIANCES_USER, "o"}, {ZORVS_COV_COL_DIM, "d"}, {ZORVS_X_MEAN, "a"}, {ZORVS_X_MEAN_USER, "o"},
    {ZORVS_RESIDUAL, "a"}, {ZORVS_RESIDUAL_USER, "o"}, {ZORVS_RETURN_USER, "o"}};
const Item summary_menu[] = {{ZORVS_COEF_T_TESTS_COL_DIM, "d"}, {ZORVS_COEF_VIF, "a"}, {ZORVS_COEF_VIF_USER, "o"},
    {ZORVS_COEF_COVARIANCES, "a"}, {ZORVS_COEF_COVARIANCES_USER, "o"}, {ZORVS_COVB_COL_DIM, "d"},
    {ZORVS_ANOVA_TABLE, "a"}, {ZORVS_ANOVA_TABLE_USER, "o"}, {ZORVS_COEF_T_TESTS_USER, "o"}};
const Item predict_menu[] = {{ZORVS_Y, "x"}, {ZORVS_WEIGHTS, "X"}, {ZORVS_X_COL_DIM, "d"}, {ZORVS_CONFIDENCE, "r"},
    {ZORVS_CONFIDENCE_ADR, "s"}, {ZORVS_SCHEFFE_CI, "aa"}, {ZORVS_SCHEFFE_CI_USER, "oo"}, {ZORVS_CI_POP_MEAN, "aa"},
    {ZORVS_CI_POP_MEAN_USER, "oo"}, {ZORVS_CI_NEW_SAMPLE, "aa"}, {ZORVS_CI_NEW_SAMPLE_USER, "oo"},
    {ZORVS_RESIDUAL, "a"}, {ZORVS_STANDARDIZED_RESIDUAL_USER, "o"}, {ZORVS_DELETED_RESIDUAL, "a"},
    {ZORVS_COOKSD_USER, "o"}, {ZORVS_DFFITS, "a"}, {ZORVS_RETURN_USER, "o"}};

template <class T>
void one(Input &in, Store<T> &s) {
    using Info = std::conditional_t<std::is_same_v<T, float>, zorvs_f_regression_info, zorvs_d_regression_info>;
    if (in.one_in(4)) {  // regressors of a small model: at most 12 levels in a class column
        const int n = in.count(12), n_class = in.count(3), n_cont = in.count(2);
        in.fill(s.data, 600);
        in.fill_ints(s.ints, 100, -1, 5);
        Builder<T> b(in, s);
        const int count = call(F(regressors_for_glm), b.from(glm_menu, 5), n, s.data, n_class, n_cont);
        return require(count >= 0, "regressors_for_glm", "negative count", count);
    }
    const int n = in.count(60), nv = in.count(6);
    in.fill(s.data, 3000);
    Builder<T> b(in, s);
    b.add({ZORVS_REGRESSION_INFO, "a"});
    T *coef = call(F(regression), b.from(fit_menu, 5), n, nv, s.data, s.data + 2500);
    Info *info = static_cast<Info *>(s.address[0]);
    if (!failed()) result_or_failure(coef, "regression");
    if (!failed() && !info) finding("regression", "no record after a fit without failure", 0);
    if (failed() && info) finding("regression", "a record after a failed fit", zorvs_error_type());
    if (!info) return;
    require(info->rank >= 0 && info->rank <= info->n_parameters, "regression", "rank outside 0..p", info->rank);
    Builder<T> sb(in, s);
    sb.add({ZORVS_COEF_T_TESTS, "a"});
    const int first = s.n_address - 1;
    auto &sl = sb.from(summary_menu, 3);
    call(F(regression_summary), sl, info);
    const T *tests = static_cast<T *>(s.address[first]);
    for (int j = 0; tests && !sl.has(ZORVS_COEF_T_TESTS_COL_DIM) && j < info->n_parameters; ++j)
        probability(tests[4 * j + 3], "regression_summary", true);
    const int n_predict = in.count(60);
    Builder<T> pb(in, s);
    pb.add({ZORVS_LEVERAGE, "a"});
    const int lev = s.n_address - 1;
    auto &pl = pb.from(predict_menu, 5);
    T *pred = call(F(regression_prediction), pl, info, n_predict, s.data + in.pick(100));
    if (n_predict > 0 && zorvs_error_type() < 4) result_or_failure(pred, "regression_prediction");
    const T *h = static_cast<T *>(s.address[lev]);
    for (int j = 0; h && !pl.has(ZORVS_X_COL_DIM) && j < n_predict; ++j)
        require(!(h[j] < 0), "regression_prediction", "negative leverage", h[j]);
}

}  // namespace zorvs_fuzz::regress

ZORVS_FUZZ_TARGET(regress)
