// analysis_tests.cpp - the analysis commands of the installed zorvstat
// program (regress to pca): each on its sample as printed (golden texts),
// --format csv against the library routine called here on the sample's
// numbers (bit for bit), and their error exits.
#include <cfloat>
#include <numeric>

#include "support/cli.hpp"

namespace zorvs_test {
namespace {

using Fields = std::vector<std::vector<std::string>>;

// Columns of a sample as a row-major matrix.
std::vector<double> rows_of(const Fields &f, const std::vector<int> &columns) {
    std::vector<double> x;
    for (const auto &row : f)
        for (int c : columns) x.push_back(std::strtod(row[static_cast<std::size_t>(c)].c_str(), nullptr));
    return x;
}
std::vector<std::string> numbered(std::size_t n) {
    std::vector<std::string> v;
    for (std::size_t i = 1; i <= n; ++i) v.push_back(std::to_string(i));
    return v;
}
// Columns picked from a row-major table of `width` columns.
std::vector<double> pick(const std::vector<double> &t, std::size_t width, const std::vector<std::size_t> &columns) {
    std::vector<double> out;
    for (std::size_t i = 0; i < t.size() / width; ++i)
        for (std::size_t c : columns) out.push_back(t[i * width + c]);
    return out;
}

double lv_mean = 0, lv_sd = 1;
double fitted_normal(double x) { return zorvs_d_normal_cdf((x - lv_mean) / lv_sd); }

TEST(CliAnalysisText, PrintsEachCommandOnItsSample) {
    const struct {
        const char *name, *args;
    } rows[] = {
        {"regress_stackloss", "regress"},
        {"regress_plantgrowth_class", "regress @/plantgrowth.csv weight --class group"},
        {"predict_cars", "predict"},
        {"anova_plantgrowth_tukey", "anova --method tukey"},
        {"compare_insectsprays", "compare"},
        {"crosstab_haireyecolor", "crosstab"},
        {"gof_precip", "gof"},
        {"gof_discoveries_poisson", "gof @/discoveries.csv discoveries --dist poisson"},
        {"signtest_sleep", "signtest"},
        {"ranksum_toothgrowth", "ranksum"},
        {"normality_precip", "normality"},
        {"diff_airpassengers", "diff --periods 1,12 --exclude-first"},
        {"arma_lakehuron", "arma --least-squares"},
        {"forecast_lakehuron", "forecast --leads 5"},
        {"kmeans_iris", "kmeans"},
        {"pca_iris", "pca"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.args);
        Outcome r = zorvstat(row.args);
        EXPECT_EQ(r.status, 0) << r.err;
        expect_golden("../cli/" + std::string(row.name), r.out);
    }
}

TEST(CliAnalysisCsv, EqualsTheLibraryRoutineBitForBit) {
    Quiet quiet;
    const std::vector<std::string> est = {"estimate", "std. error", "t", "p-value"};
    const struct {
        const char *args;
        std::function<void(Cells &)> expected;
    } rows[] = {
        {"regress",
         [&](Cells &c) {
             Fields f = sample_fields("stackloss.csv");
             std::vector<double> x = rows_of(f, {0, 1, 2}), y = rows_of(f, {3}), anova(15), t(16);
             zorvs_d_regression_info *info = nullptr;
             std::free(zorvs_d_regression(21, 3, x.data(), y.data(), ZORVS_REGRESSION_INFO, &info, ZORVS_ANOVA_TABLE_USER,
                                anova.data(), 0));
             zorvs_d_regression_summary(info, ZORVS_COEF_T_TESTS_USER, t.data(), 0);
             std::free(info);
             add_table(c, "Coefficients of stack.loss", {"intercept", "Air.Flow", "Water.Temp", "Acid.Conc."}, est, t.data());
             add_table(c, "Summary of the fit", {"R-squared (%)", "adjusted R-squared (%)"}, {"value"}, &anova[10]);
         }},
        {"regress @/plantgrowth.csv weight --class group",
         [&](Cells &c) {
             // Dummies of ctrl and trt1 made here; trt2 is the level left out.
             Fields f = sample_fields("plantgrowth.csv");
             std::vector<double> x, y = rows_of(f, {0}), t(12);
             for (const auto &row : f) x.insert(x.end(), {row[1] == "ctrl" ? 1.0 : 0.0, row[1] == "trt1" ? 1.0 : 0.0});
             zorvs_d_regression_info *info = nullptr;
             std::free(zorvs_d_regression(30, 2, x.data(), y.data(), ZORVS_REGRESSION_INFO, &info, 0));
             zorvs_d_regression_summary(info, ZORVS_COEF_T_TESTS_USER, t.data(), 0);
             std::free(info);
             add_table(c, "Coefficients of weight", {"intercept", "group=ctrl", "group=trt1"}, est, t.data());
         }},
        {"regress --sample --weight Water.Temp stack.loss Air.Flow",
         [&](Cells &c) {
             Fields f = sample_fields("stackloss.csv");
             std::vector<double> x = rows_of(f, {0}), w = rows_of(f, {1}), y = rows_of(f, {3}), t(8);
             zorvs_d_regression_info *info = nullptr;
             std::free(zorvs_d_regression(21, 1, x.data(), y.data(), ZORVS_WEIGHTS, w.data(), ZORVS_REGRESSION_INFO, &info, 0));
             zorvs_d_regression_summary(info, ZORVS_COEF_T_TESTS_USER, t.data(), 0);
             std::free(info);
             add_table(c, "Coefficients of stack.loss", {"intercept", "Air.Flow"}, est, t.data());
         }},
        {"crosstab wide.csv --wide",
         [&](Cells &c) {
             double t[4] = {3, 4, 5, 1}, s[3];
             int df;
             zorvs_d_contingency_table(2, 2, t, ZORVS_CHI_SQUARED, &df, s + 1, s + 2, 0);
             s[0] = df;
             add_table(c, "Tests of independence", {"Pearson chi-squared"}, {"df", "statistic", "p-value"}, s);
         }},
        {"predict",
         [&](Cells &c) {
             Fields f = sample_fields("cars.csv");
             std::vector<double> x = rows_of(f, {0}), y = rows_of(f, {1}), w(50, 1.0), v(50 * 12);
             zorvs_d_regression_info *info = nullptr;
             std::free(zorvs_d_regression(50, 1, x.data(), y.data(), ZORVS_REGRESSION_INFO, &info, 0));
             double *p = v.data();
             zorvs_d_regression_prediction(info, 50, x.data(), ZORVS_Y, y.data(), ZORVS_WEIGHTS, w.data(),
                                           ZORVS_CI_POP_MEAN_USER, p + 50, p + 100, ZORVS_CI_NEW_SAMPLE_USER, p + 150,
                                           p + 200, ZORVS_LEVERAGE_USER, p + 250, ZORVS_COOKSD_USER, p + 300,
                                           ZORVS_DFFITS_USER, p + 350, ZORVS_RETURN_USER, p, 0);
             std::free(info);
             std::vector<double> t(50 * 8);
             for (std::size_t i = 0; i < 50; ++i)
                 for (std::size_t j = 0; j < 8; ++j) t[i * 8 + j] = v[j * 50 + i];
             add_table(c, "Predictions of dist", numbered(50),
                       {"predicted", "lower mean", "upper mean", "lower new", "upper new"}, pick(t, 8, {0, 1, 2, 3, 4}).data());
             add_table(c, "Case statistics", numbered(50), {"leverage", "Cook's D", "DFFITS"}, pick(t, 8, {5, 6, 7}).data());
         }},
        {"anova --method bonferroni --confidence 90",
         [&](Cells &c) {
             std::vector<double> y = sample_column("plantgrowth.csv", 0), means(3), sds(3), ci(15), g(9);
             int n[3] = {10, 10, 10}, counts[3];
             zorvs_d_anova_oneway(3, n, y.data(), ZORVS_GROUP_COUNTS_USER, counts, ZORVS_GROUP_MEANS_USER, means.data(),
                                  ZORVS_GROUP_STD_DEVS_USER, sds.data(), ZORVS_CONFIDENCE, 90.0, ZORVS_BONFERRONI_USER,
                                  ci.data(), 0);
             for (std::size_t i = 0; i < 3; ++i) g[3 * i] = counts[i], g[3 * i + 1] = means[i], g[3 * i + 2] = sds[i];
             add_table(c, "Groups", {"ctrl", "trt1", "trt2"}, {"count", "mean", "std. dev."}, g.data());
             add_table(c, "Bonferroni intervals (90 per cent)", {"ctrl - trt1", "ctrl - trt2", "trt1 - trt2"},
                       {"estimate", "lower", "upper"}, pick(ci, 5, {2, 3, 4}).data());
         }},
        {"compare --alpha 0.05",
         [&](Cells &c) {
             std::vector<double> y = sample_column("insectsprays.csv", 0), table(15), means(6);
             int n[6] = {12, 12, 12, 12, 12, 12}, runs[5];
             zorvs_d_anova_oneway(6, n, y.data(), ZORVS_ANOVA_TABLE_USER, table.data(), ZORVS_GROUP_MEANS_USER,
                                  means.data(), 0);
             const double se = std::sqrt(table[7] / 12);
             zorvs_d_multiple_comparisons(6, means.data(), static_cast<int>(table[1]), se, ZORVS_ALPHA, 0.05,
                                          ZORVS_RETURN_USER, runs, 0);
             double e[3] = {se, 66, 12};
             add_table(c, "Error of a mean", {"count"}, {"std. error", "df", "group size"}, e);
             // Sorted means: C E D A B F.
             double r[6] = {means[2], 1.0 * runs[0], means[4], 1.0 * runs[1], means[3], 1.0 * runs[2]};
             add_table(c, "Student-Newman-Keuls test at level 0.05", {"C", "E", "D"}, {"mean", "run"}, r);
         }},
        {"crosstab",
         [&](Cells &c) {
             const std::vector<std::string> hair = {"Black", "Brown", "Red", "Blond"}, eye = {"Brown", "Blue", "Hazel", "Green"};
             std::vector<double> t(16), m(115);
             for (const auto &row : sample_fields("haireyecolor.csv"))
                 t[static_cast<std::size_t>(std::find(hair.begin(), hair.end(), row[0]) - hair.begin()) * 4 +
                   static_cast<std::size_t>(std::find(eye.begin(), eye.end(), row[1]) - eye.begin())] += std::stod(row[3]);
             int df;
             double s[3];
             zorvs_d_contingency_table(4, 4, t.data(), ZORVS_LRT, &df, s, s + 1, ZORVS_STATISTICS_USER, m.data(), 0);
             s[2] = s[1], s[1] = s[0], s[0] = df;
             add_table(c, "Tests of independence", {"likelihood ratio G^2"}, {"df", "statistic", "p-value"}, s);
             add_table(c, "Measures of association", {"gamma", "Kendall tau-b", "Stuart tau-c", "Somers D (row)"},
                       {"statistic", "std. error", "s.e. (null)", "t", "p-value"}, m.data());
         }},
        {"gof --cells 5",
         [&](Cells &c) {
             std::vector<double> x = sample_column("precip.csv", 1), cut, e(5), o(5);
             lv_mean = std::accumulate(x.begin(), x.end(), 0.0) / 70;
             double ss = 0;
             for (double v : x) ss += (v - lv_mean) * (v - lv_mean);
             lv_sd = std::sqrt(ss / 69);
             for (int k = 1; k < 5; ++k) cut.push_back(lv_mean + lv_sd * zorvs_d_normal_inverse_cdf(k / 5.0));
             int df;
             double s[3];
             zorvs_d_chi_squared_test(fitted_normal, 5, 70, x.data(), ZORVS_CUTPOINTS, cut.data(),
                                      ZORVS_N_PARAMETERS_ESTIMATED, 2, ZORVS_CHI_SQUARED, &df, s + 1, s + 2,
                                      ZORVS_EXPECTED_USER, e.data(), ZORVS_CELL_COUNTS_USER, o.data(), 0);
             s[0] = df;
             add_table(c, "Chi-squared test of fit of precip to the normal distribution", {"precip"},
                       {"df", "chi-squared", "p-value"}, s);
             add_table(c, "Cells", numbered(5), {"observed"}, o.data());
             add_table(c, "Cells", numbered(5), {"expected"}, e.data());
         }},
        {"signtest --percentile 1",
         [&](Cells &c) {
             std::vector<double> x = sample_column("sleep_paired.csv", 1), a = sample_column("sleep_paired.csv", 0);
             for (std::size_t i = 0; i < x.size(); ++i) x[i] -= a[i];
             int above, zero;
             double p = zorvs_d_sign_test(10, x.data(), ZORVS_PERCENTILE, 1.0, ZORVS_N_POSITIVE_DEVIATIONS, &above,
                                          ZORVS_N_ZERO_DEVIATIONS, &zero, 0);
             double r[3] = {static_cast<double>(above), static_cast<double>(zero), p};
             add_table(c, "Sign test", {"drug2 - drug1"}, {"above", "equal", "P(>= above)"}, r);
         }},
        {"ranksum",
         [&](Cells &c) {
             std::vector<double> len = sample_column("toothgrowth.csv", 0), s(10);
             // The file holds the 30 VC rows, then the 30 OJ rows.
             zorvs_d_wilcoxon_rank_sum(30, len.data(), 30, len.data() + 30, ZORVS_STAT_USER, s.data(), 0);
             add_table(c, "Wilcoxon rank-sum test of len: VC against OJ",
                       {"W (ties low)", "P (ties low)", "W (midranks)", "z", "two-sided p"}, {"value"},
                       pick(s, 10, {0, 2, 6, 8, 9}).data());
         }},
        {"normality --lilliefors",
         [&](Cells &c) {
             std::vector<double> x = sample_column("precip.csv", 1);
             double r[2];
             r[1] = zorvs_d_normality_test(70, x.data(), ZORVS_LILLIEFORS, r, 0);
             add_table(c, "Lilliefors test of normality", {"precip"}, {"D", "p-value"}, r);
         }},
        {"diff --periods 1,12",
         [&](Cells &c) {
             std::vector<double> z = sample_column("airpassengers.csv", 2), w(144);
             int periods[2] = {1, 12};
             zorvs_d_difference(144, z.data(), 2, periods, ZORVS_RETURN_USER, w.data(), 0);
             add_table(c, "(1 - B^1)(1 - B^12) passengers", numbered(144), {"passengers"}, w.data());
         }},
        {"arma",
         [&](Cells &c) {
             std::vector<double> z = sample_column("lakehuron.csv", 1), a(4);
             double par[3];
             zorvs_d_arma(98, z.data(), 1, 1, ZORVS_AUTOCOV_USER, a.data(), ZORVS_RETURN_USER, par, par + 1, par + 2, 0);
             add_table(c, "ARMA(1, 1) of level, method of moments", {"constant", "AR(1)", "MA(1)"}, {"estimate"}, par);
             add_table(c, "Autocovariances", {"0", "1", "2", "3"}, {"level"}, a.data());
         }},
        {"forecast --p 2 --q 0 --leads 3 --confidence 90",
         [&](Cells &c) {
             std::vector<double> z = sample_column("lakehuron.csv", 1), t(9);
             double par[3];
             int lags[2] = {1, 2}, none = 0;
             void *info = nullptr;
             zorvs_d_arma(98, z.data(), 2, 0, ZORVS_LEAST_SQUARES, ZORVS_AR_LAGS, lags, ZORVS_MA_LAGS, &none,
                          ZORVS_BACKCASTING, 10, 0.0, ZORVS_CONVERGENCE_TOLERANCE,
                          std::max(1.0e-9, std::cbrt(DBL_EPSILON * DBL_EPSILON)), ZORVS_ARMA_INFO, &info,
                          ZORVS_RETURN_USER, par, par + 1, par + 2, 0);
             zorvs_d_arma_forecast(static_cast<zorvs_arma_info *>(info), 3, ZORVS_CONFIDENCE, 90.0, ZORVS_RETURN_USER,
                                   t.data(), 0);
             std::free(info);
             add_table(c, "Forecasts of level", {"1", "2", "3"}, {"forecast", "lower 90%", "upper 90%"}, t.data());
         }},
        {"kmeans --sample --k 2 --seeds 1,150 Petal.Length Petal.Width",
         [&](Cells &c) {
             std::vector<double> x = rows_of(sample_fields("iris.csv"), {2, 3}), seeds = {x[0], x[1], x[298], x[299]},
                                 means(4), ssq(2);
             int counts[2];
             zorvs_d_cluster_k_means(150, 2, x.data(), 2, seeds.data(), ZORVS_CLUSTER_MEANS_USER, means.data(),
                                     ZORVS_CLUSTER_SSQ_USER, ssq.data(), ZORVS_CLUSTER_COUNTS_USER, counts, 0);
             double t[8] = {means[0], means[1], static_cast<double>(counts[0]), ssq[0],
                            means[2], means[3], static_cast<double>(counts[1]), ssq[1]};
             add_table(c, "Cluster means", {"1", "2"}, {"Petal.Length", "Petal.Width", "count", "within SS"}, t);
         }},
        {"pca --covariance",
         [&](Cells &c) {
             std::vector<double> x = rows_of(sample_fields("iris.csv"), {0, 1, 2, 3}), cov(16), v(4), vec(16), s(12);
             zorvs_d_covariances(150, 4, x.data(), ZORVS_RETURN_USER, cov.data(), 0);
             zorvs_d_principal_components(4, cov.data(), ZORVS_EIGENVECTORS_USER, vec.data(), ZORVS_CUM_PERCENT_USER,
                                          s.data() + 4, ZORVS_STD_DEV_USER, 149, s.data() + 8, ZORVS_RETURN_USER,
                                          s.data(), 0);
             std::vector<double> t(12);
             for (std::size_t j = 0; j < 4; ++j) t[3 * j] = s[j], t[3 * j + 1] = s[4 + j], t[3 * j + 2] = s[8 + j];
             const std::vector<std::string> pcs = {"PC1", "PC2", "PC3", "PC4"};
             add_table(c, "Principal components of the covariance matrix", pcs,
                       {"eigenvalue", "cum. proportion", "std. error"}, t.data());
             add_table(c, "Eigenvectors", {"Sepal.Length", "Sepal.Width", "Petal.Length", "Petal.Width"}, pcs, vec.data());
         }},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.args);
        Outcome r = zorvstat(std::string(row.args) + " --format csv");
        ASSERT_EQ(r.status, 0) << r.err;
        Cells expected;
        row.expected(expected);
        expect_cells(r.out, expected);
    }
}

// Unknown columns, data the command cannot use, bad options and the
// library's own refusals: the exit status, a piece of the message, and no
// output.
TEST(CliAnalysisErrors, ExitStatusAndMessage) {
    const struct {
        const char *args;
        int status;
        const char *message;
    } rows[] = {
        {"regress --sample stack.loss nothing", 65, "no column 'nothing'"},
        {"regress @/plantgrowth.csv weight group", 65, "column 'group' of"},
        {"regress --sample --order 3", 64, "--order must be 1 or 2"},
        {"regress --sample --dummy none", 64, "no dummy scheme 'none'; one of:\n  all"},
        {"regress --sample --tolerance 2", 5, "zorvs_d_regression"},
        {"predict --new no_such_file.csv", 66, "cannot open 'no_such_file.csv'"},
        {"predict --new reader.csv", 65, "no column 'speed' in reader.csv"},
        {"anova --sample weight nothing", 65, "no column 'nothing'"},
        {"anova --method tukey --confidence 99.5", 5, "zorvs_d_anova_oneway"},
        {"anova --method newman", 64, "no method 'newman'; one of:\n  tukey"},
        {"anova --sample weight group --freq weight", 64, "anova takes no --freq"},
        {"crosstab --weight Freq", 64, "crosstab takes no --weight"},
        {"compare --alpha 0.5", 5, "zorvs_d_multiple_comparisons"},
        {"crosstab @/iris.csv", 64, "name the row and the column class columns"},
        {"crosstab reader.csv --wide a", 5, "zorvs_d_contingency_table"},
        {"gof --dist cauchy", 64, "no distribution 'cauchy'; one of:\n  normal"},
        {"gof --cutpoints 40,30", 5, "zorvs_d_chi_squared_test"},
        {"signtest --percentage 1.5", 5, "zorvs_d_sign_test"},
        {"ranksum @/plantgrowth.csv", 65, "must hold two groups, not 3"},
        {"normality --lilliefors reader.csv a", 4, "zorvs_d_normality_test"},
        {"diff reader.csv a", 4, "zorvs_d_difference"},
        {"diff --periods 1,12 --orders 1", 64, "--orders must give one order per period"},
        {"arma --p -1", 5, "zorvs_d_arma"},
        {"arma --no-constant", 64, "--no-constant serves the least-squares fit"},
        {"forecast --leads 0", 5, "zorvs_d_arma_forecast"},
        {"kmeans --seeds 1,2,151", 64, "--seeds: no row 151"},
        {"kmeans --k 1", 5, "zorvs_d_cluster_k_means"},
        {"kmeans --k 0", 5, "zorvs_d_cluster_k_means"},
        {"pca --sample Species", 65, "column 'Species' of"},
        {"pca --sample Sepal.Length", 5, "zorvs_d_principal_components"},
        {"predict --confidence 120", 5, "zorvs_d_regression_prediction"},
        {"ranksum --fuzz -1", 5, "zorvs_d_wilcoxon_rank_sum"},
        {"compare --sample count nothing", 65, "no column 'nothing'"},
        {"crosstab --sample Hair nothing", 65, "no column 'nothing'"},
        {"gof --sample nothing", 65, "no column 'nothing'"},
        {"signtest --sample drug2 nothing", 65, "no column 'nothing'"},
        {"ranksum --sample nothing", 65, "no column 'nothing'"},
        {"normality --sample nothing", 65, "no column 'nothing'"},
        {"diff --sample nothing", 65, "no column 'nothing'"},
        {"arma --sample nothing", 65, "no column 'nothing'"},
        {"forecast --sample nothing", 65, "no column 'nothing'"},
        {"kmeans --sample nothing", 65, "no column 'nothing'"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.args);
        Outcome r = zorvstat(row.args);
        EXPECT_EQ(r.status, row.status) << r.err;
        EXPECT_NE(r.err.find(row.message), std::string::npos) << r.err;
        EXPECT_EQ(r.out, "");
    }
}

}  // namespace
}  // namespace zorvs_test
