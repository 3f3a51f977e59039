// regress_target.cpp - regressors of a general linear model, the
// regression fit with its outputs, and the summary and prediction of the
// record the fit hands over, on any data, sizes and keyword lists: a result
// and a record exactly when nothing failed, a rank within the parameters,
// p-values of the coefficients in [0, 1], leverages in [0, 1].
#include "fuzz_input.hpp"

namespace {

using zorvs_fuzz::Item;
using zorvs_fuzz::probability;
using zorvs_fuzz::require;

template <class T>
zorvs_fuzz::Store<T> store;

const Item glm_menu[] = {{ZORVS_X_COL_DIM, "d"},   {ZORVS_X_CLASS_COLUMNS, "n"}, {ZORVS_MODEL_ORDER, "i"},
                         {ZORVS_INDICES_EFFECTS, "dnn"}, {ZORVS_DUMMY, "i"},    {ZORVS_REGRESSORS, "a"},
                         {ZORVS_REGRESSORS_USER, "o"},   {ZORVS_REGRESSORS_COL_DIM, "d"}};
const Item fit_menu[] = {{ZORVS_X_COL_DIM, "d"},        {ZORVS_NO_INTERCEPT, ""},      {ZORVS_TOLERANCE, "r"},
                         {ZORVS_TOLERANCE_ADR, "s"},    {ZORVS_FREQUENCIES, "X"},      {ZORVS_WEIGHTS, "X"},
                         {ZORVS_RANK, "k"},             {ZORVS_ANOVA_TABLE, "a"},      {ZORVS_ANOVA_TABLE_USER, "o"},
                         {ZORVS_COEF_COVARIANCES, "a"}, {ZORVS_COEF_COVARIANCES_USER, "o"}, {ZORVS_COV_COL_DIM, "d"},
                         {ZORVS_X_MEAN, "a"},           {ZORVS_X_MEAN_USER, "o"},      {ZORVS_RESIDUAL, "a"},
                         {ZORVS_RESIDUAL_USER, "o"},    {ZORVS_RETURN_USER, "o"}};
const Item summary_menu[] = {{ZORVS_COEF_T_TESTS_COL_DIM, "d"}, {ZORVS_COEF_VIF, "a"},
                             {ZORVS_COEF_VIF_USER, "o"},        {ZORVS_COEF_COVARIANCES, "a"},
                             {ZORVS_COEF_COVARIANCES_USER, "o"}, {ZORVS_COVB_COL_DIM, "d"},
                             {ZORVS_ANOVA_TABLE, "a"},          {ZORVS_ANOVA_TABLE_USER, "o"},
                             {ZORVS_COEF_T_TESTS_USER, "o"}};
const Item predict_menu[] = {{ZORVS_Y, "x"},
                             {ZORVS_WEIGHTS, "X"},
                             {ZORVS_X_COL_DIM, "d"},
                             {ZORVS_CONFIDENCE, "r"},
                             {ZORVS_CONFIDENCE_ADR, "s"},
                             {ZORVS_SCHEFFE_CI, "aa"},
                             {ZORVS_SCHEFFE_CI_USER, "oo"},
                             {ZORVS_CI_POP_MEAN, "aa"},
                             {ZORVS_CI_POP_MEAN_USER, "oo"},
                             {ZORVS_CI_NEW_SAMPLE, "aa"},
                             {ZORVS_CI_NEW_SAMPLE_USER, "oo"},
                             {ZORVS_RESIDUAL, "a"},
                             {ZORVS_STANDARDIZED_RESIDUAL_USER, "o"},
                             {ZORVS_DELETED_RESIDUAL, "a"},
                             {ZORVS_COOKSD_USER, "o"},
                             {ZORVS_DFFITS, "a"},
                             {ZORVS_RETURN_USER, "o"}};

template <class T>
void one(zorvs_fuzz::Input &in) {
    using zorvs_fuzz::call;
    using zorvs_fuzz::twin;
    using Info = std::conditional_t<std::is_same_v<T, float>, zorvs_f_regression_info, zorvs_d_regression_info>;
    auto &s = store<T>;
    s.reset();
    if (in.one_in(4)) {  // regressors of a small model: at most 12 levels in a class column
        const int n = in.count(12), n_class = in.count(3), n_cont = in.count(2);
        in.fill(s.data, 600);
        in.fill_ints(s.ints, 100, -1, 5);
        zorvs_fuzz::Builder<T> b(in, s);
        auto &l = b.from(glm_menu, 5);
        const int count = call(twin<T>(zorvs_f_regressors_for_glm, zorvs_d_regressors_for_glm), l, n, s.data, n_class, n_cont);
        require(count >= 0, "regressors_for_glm", "negative count", count);
        s.release();
        return;
    }
    const int n = in.count(60), nv = in.count(6);
    in.fill(s.data, 3000);
    zorvs_fuzz::Builder<T> b(in, s);
    b.add({ZORVS_REGRESSION_INFO, "a"});
    auto &l = b.from(fit_menu, 5);
    T *coef = call(twin<T>(zorvs_f_regression, zorvs_d_regression), l, n, nv, s.data, s.data + 2500);
    const bool failed = zorvs_error_type() >= 4 && zorvs_error_type() != 6;  // 6: a note, not a failure
    Info *info = static_cast<Info *>(s.address[0]);
    if (!failed) {
        zorvs_fuzz::result_or_failure(coef, "regression");
        if (!info) zorvs_fuzz::finding("regression", "no record after a fit without failure", 0);
    } else if (info) {
        zorvs_fuzz::finding("regression", "a record after a failed fit", zorvs_error_type());
    }
    if (info) {
        require(info->rank >= 0 && info->rank <= info->n_parameters, "regression", "rank outside 0..parameters",
                info->rank);
        T *tests = nullptr;
        zorvs_fuzz::Builder<T> sb(in, s);
        sb.add({ZORVS_COEF_T_TESTS, "a"});
        const int first = s.n_address - 1;
        auto &sl = sb.from(summary_menu, 3);
        call(twin<T>(zorvs_f_regression_summary, zorvs_d_regression_summary), sl, info);
        tests = static_cast<T *>(s.address[first]);
        if (tests && !zorvs_fuzz::has(sl, ZORVS_COEF_T_TESTS_COL_DIM))
            for (int j = 0; j < info->n_parameters; ++j) probability(tests[4 * j + 3], "regression_summary", true);
        const int n_predict = in.count(60);
        zorvs_fuzz::Builder<T> pb(in, s);
        pb.add({ZORVS_LEVERAGE, "a"});
        const int lev = s.n_address - 1;
        auto &pl = pb.from(predict_menu, 5);
        T *pred = call(twin<T>(zorvs_f_regression_prediction, zorvs_d_regression_prediction), pl, info, n_predict,
                       s.data + in.pick(100));
        if (n_predict > 0 && zorvs_error_type() < 4) zorvs_fuzz::result_or_failure(pred, "regression_prediction");
        if (const T *h = static_cast<T *>(s.address[lev]); h && !zorvs_fuzz::has(pl, ZORVS_X_COL_DIM))
            for (int j = 0; j < n_predict; ++j)
                require(!(h[j] < 0), "regression_prediction", "negative leverage", h[j]);
        s.free_result(pred);
    }
    s.free_result(coef);
    s.release();
}

}  // namespace

ZORVS_FUZZ_TWIN_TARGET(one)
