/*
 * zorvstat.h - the public interface of libzorvstat.
 *
 * Every statistical routine comes as a single-precision routine zorvs_f_<name>
 * and a double-precision routine zorvs_d_<name>.  Keyword routines take their
 * fixed arguments and then a list of keywords, each followed by its own
 * arguments, ended by 0.  Reals in a keyword list always travel as double.
 * Trouble is reported through the error system (zorvs_error_type,
 * zorvs_error_code and the messages printed on the error unit), never by a
 * return code.  Arrays that a routine returns are obtained with malloc and
 * belong to the caller, who releases them with free.
 *
 * This header compiles as C99 and as C++.
 */
#ifndef ZORVSTAT_H
#define ZORVSTAT_H

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------ */
/* Keywords: one value, one meaning, across the whole library.               */
/* ------------------------------------------------------------------------ */
enum zorvs_keyword {
    ZORVS_ALPHA = 10070,
    ZORVS_ANOVA_TABLE = 10080,
    ZORVS_ANOVA_TABLE_USER = 10090,
    ZORVS_AR_LAGS = 10110,
    ZORVS_A_COL_DIM = 10170,
    ZORVS_BACKCASTING = 10190,
    ZORVS_BONFERRONI = 10270,
    ZORVS_CHI_SQUARED = 10450,
    ZORVS_CHI_SQUARED_CONTRIBUTIONS = 10470,
    ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER = 10480,
    ZORVS_CHI_SQUARED_STATISTICS = 10490,
    ZORVS_CHI_SQUARED_STATISTICS_USER = 10500,
    ZORVS_CLASS_MARKS = 10630,
    ZORVS_CLUSTER_MEANS = 10640,
    ZORVS_CLUSTER_SSQ = 10660,
    ZORVS_CLUSTER_SSQ_USER = 10670,
    ZORVS_COEF_COVARIANCES = 10690,
    ZORVS_COEF_COVARIANCES_USER = 10700,
    ZORVS_COEF_T_TESTS = 10710,
    ZORVS_COEF_T_TESTS_USER = 10720,
    ZORVS_COEF_VIF = 10730,
    ZORVS_COEF_VIF_USER = 10740,
    ZORVS_COL_LABELS = 10750,
    ZORVS_COL_NUMBER = 10760,
    ZORVS_COL_NUMBER_ZERO = 10770,
    ZORVS_COMPILER_VERSION = 10780,
    ZORVS_CORRELATIONS = 10810,
    ZORVS_CONFIDENCE = 10860,
    ZORVS_CONFIDENCE_MEANS = 10880,
    ZORVS_CONFIDENCE_MEANS_ADR = 10890,
    ZORVS_CONFIDENCE_VARIANCES = 10910,
    ZORVS_CONFIDENCE_VARIANCES_ADR = 10920,
    ZORVS_CONSTANT = 10930,
    ZORVS_CONVERGENCE_TOLERANCE = 10990,
    ZORVS_COOKSD = 11000,
    ZORVS_COOKSD_USER = 11010,
    ZORVS_CORRELATION_MATRIX = 11030,
    ZORVS_COV_COL_DIM = 11055,
    ZORVS_COVB_COL_DIM = 11060,
    ZORVS_CUM_PERCENT = 11080,
    ZORVS_CUTPOINTS = 11090,
    ZORVS_DATA_BOUNDS = 11120,
    ZORVS_DELETED_RESIDUAL = 11150,
    ZORVS_DELETED_RESIDUAL_USER = 11160,
    ZORVS_DFFITS = 11190,
    ZORVS_DFFITS_USER = 11200,
    ZORVS_DUMMY = 11270,
    ZORVS_DUNN_SIDAK = 11280,
    ZORVS_EIGENVECTORS = 11320,
    ZORVS_ERROR_MSG_NAME = 11400,
    ZORVS_ERROR_MSG_PATH = 11410,
    ZORVS_ERROR_PRINT_PROC = 11420,
    ZORVS_EXCLUDE_FIRST = 11540,
    ZORVS_EXPECTED = 11550,
    ZORVS_EXPECTED_USER = 11570,
    ZORVS_FREQUENCIES = 11790,
    ZORVS_FULL_TRACEBACK = 11850,
    ZORVS_FUZZ = 11870,
    ZORVS_FUZZ_ADR = 11880,
    ZORVS_GET_ERROR_FILE = 11970,
    ZORVS_GET_OUTPUT_FILE = 11980,
    ZORVS_GET_PRINT = 11990,
    ZORVS_GET_STOP = 12000,
    ZORVS_GET_TRACE = 12010,
    ZORVS_GROUP_COUNTS = 12090,
    ZORVS_GROUP_COUNTS_USER = 12100,
    ZORVS_GROUP_MEANS = 12110,
    ZORVS_GROUP_MEANS_USER = 12120,
    ZORVS_GROUP_STD_DEVS = 12130,
    ZORVS_GROUP_STD_DEVS_USER = 12140,
    ZORVS_INDICES_EFFECTS = 12300,
    ZORVS_INITIAL_ESTIMATES = 12350,
    ZORVS_KNOWN_BOUNDS = 12620,
    ZORVS_LEAST_SQUARES = 12700,
    ZORVS_LEVERAGE = 12740,
    ZORVS_LEVERAGE_USER = 12750,
    ZORVS_LIBRARY_VERSION = 12760,
    ZORVS_LILLIEFORS = 12780,
    ZORVS_NUM_LOST = 12840,
    ZORVS_LRT = 12880,
    ZORVS_MAX_ITERATIONS = 12970,
    ZORVS_MA_LAGS = 13110,
    ZORVS_MEDIAN = 13150,
    ZORVS_MEDIAN_AND_SCALE = 13160,
    ZORVS_METHOD_OF_MOMENTS = 13180,
    ZORVS_MODEL_ORDER = 13210,
    ZORVS_NO_COL_LABELS = 13330,
    ZORVS_NO_CONSTANT = 13340,
    ZORVS_NO_INTERCEPT = 13350,
    ZORVS_NO_ROW_LABELS = 13360,
    ZORVS_N_POSITIVE_DEVIATIONS = 13460,
    ZORVS_ONE_AT_A_TIME = 13560,
    ZORVS_ORDERS = 13620,
    ZORVS_OS_VERSION = 13630,
    ZORVS_PERCENTAGE = 13720,
    ZORVS_PERCENTILE = 13730,
    ZORVS_CI_NEW_SAMPLE = 13800,
    ZORVS_CI_NEW_SAMPLE_USER = 13810,
    ZORVS_CI_POP_MEAN = 13820,
    ZORVS_CI_POP_MEAN_USER = 13830,
    ZORVS_PRINT_ALL = 13910,
    ZORVS_PRINT_LOWER = 13930,
    ZORVS_PRINT_LOWER_NO_DIAG = 13940,
    ZORVS_PRINT_UPPER = 13960,
    ZORVS_PRINT_UPPER_NO_DIAG = 13970,
    ZORVS_RANK = 14110,
    ZORVS_REGRESSION_INFO = 14140,
    ZORVS_RESIDUAL = 14190,
    ZORVS_RESIDUAL_USER = 14220,
    ZORVS_RETURN_USER = 14280,
    ZORVS_ROW_LABELS = 14330,
    ZORVS_ROW_NUMBER = 14340,
    ZORVS_ROW_NUMBER_ZERO = 14350,
    ZORVS_SCHEFFE_CI = 14420,
    ZORVS_SCHEFFE_CI_USER = 14425,
    ZORVS_SCHEFFE_USER = 14440,
    ZORVS_SET_ERROR_FILE = 14490,
    ZORVS_SET_FIRST_TO_NAN = 14500,
    ZORVS_SET_OUTPUT_FILE = 14510,
    ZORVS_SET_PRINT = 14520,
    ZORVS_SET_STOP = 14530,
    ZORVS_SET_TRACE = 14540,
    ZORVS_SHAPIRO_WILK = 14550,
    ZORVS_SS_RESIDUAL = 14740,
    ZORVS_STANDARDIZED_RESIDUAL = 14750,
    ZORVS_STANDARDIZED_RESIDUAL_USER = 14760,
    ZORVS_STAT = 14770,
    ZORVS_STATISTICS = 14780,
    ZORVS_STATISTICS_USER = 14790,
    ZORVS_STAT_COL_DIM = 14800,
    ZORVS_STAT_USER = 14810,
    ZORVS_STD_DEV = 14830,
    ZORVS_TOLERANCE = 15040,
    ZORVS_TOLERANCE_ADR = 15050,
    ZORVS_TRANSPOSE = 15070,
    ZORVS_TUKEY = 15090,
    ZORVS_WEIGHTS = 15400,
    ZORVS_WRITE_FORMAT = 15410,
    ZORVS_X_COL_DIM = 15470,
    ZORVS_X_MEAN = 15490,
    ZORVS_X_MEAN_USER = 15500,
    ZORVS_Y = 15535,
    ZORVS_COEF_T_TESTS_COL_DIM = 15600,
    ZORVS_CLUSTER_SEEDS_COL_DIM = 15720,
    ZORVS_CLUSTER_MEANS_COL_DIM = 15730,
    ZORVS_CLUSTER_MEANS_USER = 15740,
    ZORVS_X_COLUMNS = 15750,
    ZORVS_CLUSTER_COUNTS = 15760,
    ZORVS_CLUSTER_COUNTS_USER = 15770,
    ZORVS_CUM_PERCENT_USER = 15780,
    ZORVS_EIGENVECTORS_USER = 15790,
    ZORVS_CORRELATIONS_USER = 15800,
    ZORVS_STD_DEV_USER = 15810,
    ZORVS_COVARIANCE_MATRIX = 15820,
    ZORVS_N_ZERO_DEVIATIONS = 15830,
    ZORVS_SCHEFFE = 15870,
    ZORVS_REGRESSORS = 16000,
    ZORVS_REGRESSORS_USER = 16010,
    ZORVS_REGRESSORS_COL_DIM = 16020,
    ZORVS_X_CLASS_COLUMNS = 16030,
    ZORVS_SIGNAL_TRAPPING_ON = 16040,
    ZORVS_SIGNAL_TRAPPING_OFF = 16041,
    ZORVS_RELATIVE_ERROR = 16050,
    ZORVS_MEAN_ESTIMATE = 16051,
    ZORVS_PARAM_EST_COV = 16052,
    ZORVS_PARAM_EST_COV_USER = 16053,
    ZORVS_AUTOCOV = 16054,
    ZORVS_AUTOCOV_USER = 16055,
    ZORVS_ARMA_INFO = 16056,
    ZORVS_TUKEY_USER = 16057,
    ZORVS_DUNN_SIDAK_USER = 16058,
    ZORVS_BONFERRONI_USER = 16059,
    ZORVS_ONE_AT_A_TIME_USER = 16061,
    ZORVS_CONFIDENCE_ADR = 18000,
    ZORVS_MISSING_LISTWISE = 18010,
    ZORVS_MISSING_ELEMENTWISE = 18011,
    ZORVS_PERCENTAGE_ADR = 20005,
    ZORVS_PERCENTILE_ADR = 20006,
    ZORVS_BACKCASTING_ADR = 20017,
    ZORVS_CONVERGENCE_TOLERANCE_ADR = 20018,
    ZORVS_RELATIVE_ERROR_ADR = 20019,
    ZORVS_HYPOTHESIZED_MEAN = 21100,
    ZORVS_HYPOTHESIZED_VARIANCE = 21101,
    ZORVS_HYPOTHESIZED_DIFFERENCE = 21102,
    ZORVS_HYPOTHESIZED_RATIO = 21103,
    ZORVS_CORRECTED_SSCP = 21104,
    ZORVS_POOLED_GROUPS = 21105,
    ZORVS_PAIR_COUNTS = 21106,
    ZORVS_PAIR_COUNTS_USER = 21107,

    /* ranks and scores */
    ZORVS_AVERAGE_TIE = 21200,
    ZORVS_LOWEST = 21201,
    ZORVS_HIGHEST = 21202,
    ZORVS_RANDOM_SPLIT = 21203,
    ZORVS_RANKS = 21204,
    ZORVS_BLOM_SCORES = 21205,
    ZORVS_TUKEY_SCORES = 21206,
    ZORVS_VAN_DER_WAERDEN_SCORES = 21207,
    ZORVS_SAVAGE_SCORES = 21208,
    /* chi-squared goodness of fit */
    ZORVS_COUNTS = 21220,
    ZORVS_EXPECTED_GIVEN = 21221,
    ZORVS_N_PARAMETERS_ESTIMATED = 21222,
    ZORVS_CELL_COUNTS = 21223,
    ZORVS_CELL_COUNTS_USER = 21224,
    /* ARMA forecasts */
    ZORVS_PSI_WEIGHTS = 21240,
    ZORVS_PSI_WEIGHTS_USER = 21241,
    ZORVS_KEYWORD_END_ = 0
};

/* Error types, as zorvs_error_type() reports them. */
enum zorvs_error_types {
    ZORVS_NO_ERROR = 0,
    ZORVS_NOTE = 1,
    ZORVS_ALERT = 2,
    ZORVS_WARNING = 3,
    ZORVS_FATAL = 4,
    ZORVS_TERMINAL = 5,
    ZORVS_WARNING_IMMEDIATE = 6,
    ZORVS_FATAL_IMMEDIATE = 7,
    ZORVS_INTERNAL = 8
};

/* ------------------------------------------------------------------------ */
/* Error system                                                             */
/* ------------------------------------------------------------------------ */
void zorvs_error_options(int keyword, ...);
int zorvs_error_type(void);
int zorvs_error_code(void);

/* ------------------------------------------------------------------------ */
/* Machine constants and environment                                        */
/* ------------------------------------------------------------------------ */
/* @@section machine */
void zorvs_output_file(int keyword, ...);
/* IEEE constants, n from 1 to 8: smallest normal, largest, 2^-digits,
 * spacing above 1, log10(2), NaN (the missing value), +inf, -inf. */
float zorvs_f_machine(int n);
double zorvs_d_machine(int n);
/* Integer constants, n from 0 to 12. */
int zorvs_i_machine(int n);
/* Version strings (ZORVS_LIBRARY_VERSION, ZORVS_COMPILER_VERSION,
 * ZORVS_OS_VERSION): a malloc'ed copy that the caller frees. */
char *zorvs_version(int keyword);
/* Page width (option 1 reads, -1 sets) and length (2 reads, -2 sets). */
void zorvs_page(int option, int *value);
/* @@end machine */

/* ------------------------------------------------------------------------ */
/* Matrix output                                                            */
/* ------------------------------------------------------------------------ */
/* @@section output */
/* Options of the output layer: 1..6 read into *value, -6..-1 set from *value,
 * 0 resets all.  1 centring, 2 row wrap, 3 line count and paging, 4 NaN as
 * blanks, 5 title on each page, 6 default format (0 "%10.4W", 1 "%12.6W",
 * 2 "%12.5e"). */
void zorvs_write_options(int option, int *value);
/* Print the first n characters of s as a counted line; n = -1 is a page feed. */
void zorvs_write_line(int n, const char *s);
/* Print a text with line feeds as lines of at most width characters. */
void zorvs_wrtrl(const char *text, int width);
void zorvs_wrrrs(const char *title, float x);
void zorvs_dwrrrs(const char *title, double x);
void zorvs_wrirs(const char *title, int x);
/* Print a row-major matrix.  Keywords: ZORVS_A_COL_DIM (int), ZORVS_WRITE_FORMAT
 * (char *), ZORVS_TRANSPOSE, ZORVS_PRINT_ALL / _LOWER / _LOWER_NO_DIAG / _UPPER /
 * _UPPER_NO_DIAG, ZORVS_ROW_LABELS (char **, one per row), ZORVS_ROW_NUMBER,
 * ZORVS_ROW_NUMBER_ZERO, ZORVS_NO_ROW_LABELS, ZORVS_COL_LABELS (char **: the
 * head of the row-label column, then one per column), ZORVS_COL_NUMBER,
 * ZORVS_COL_NUMBER_ZERO, ZORVS_NO_COL_LABELS. */
void zorvs_f_write_matrix(const char *title, int n_rows, int n_columns, float *a, ...);
void zorvs_d_write_matrix(const char *title, int n_rows, int n_columns, double *a, ...);
void zorvs_i_write_matrix(const char *title, int n_rows, int n_columns, int *a, ...);
/* The same without keywords: stride, print part (0, 1, 2, -1, -2), format,
 * row and column labels, and label modes (0 none, 1 from 1, 2 text, 3 from 0). */
void zorvs_f_wrrrl(const char *title, int n_rows, int n_columns, float *a, int a_col_dim, int itring,
                   const char *format, char **row_labels, char **col_labels, int row_mode, int col_mode);
void zorvs_d_wrrrl(const char *title, int n_rows, int n_columns, double *a, int a_col_dim, int itring,
                   const char *format, char **row_labels, char **col_labels, int row_mode, int col_mode);
void zorvs_i_wrirl(const char *title, int n_rows, int n_columns, int *a, int a_col_dim, int itring,
                   const char *format, char **row_labels, char **col_labels, int row_mode, int col_mode);
/* @@end output */

/* ------------------------------------------------------------------------ */
/* Utilities: extrema                                                       */
/* ------------------------------------------------------------------------ */
float zorvs_f_max(float a, float b);
double zorvs_d_max(double a, double b);
int zorvs_i_max(int a, int b);
float zorvs_f_min(float a, float b);
double zorvs_d_min(double a, double b);
int zorvs_i_min(int a, int b);
void zorvs_f_maximum_index(int n, const float x[], int stride, int *index);
void zorvs_d_maximum_index(int n, const double x[], int stride, int *index);
float zorvs_f_vmax(int n, ...);
double zorvs_d_vmax(int n, ...);
int zorvs_i_vmax(int n, ...);
float zorvs_f_vmin(int n, ...);
double zorvs_d_vmin(int n, ...);
int zorvs_i_vmin(int n, ...);

/* ------------------------------------------------------------------------ */
/* Transposition in place                                                   */
/* ------------------------------------------------------------------------ */
/* @@section transpose */
/* Transpose the row-major nra x nca matrix a into at (nca rows of nra);
 * at may be a itself. */
void zorvs_f_m1ran(int nra, int nca, const float a[], float at[]);
void zorvs_d_m1ran(int nra, int nca, const double a[], double at[]);
void zorvs_i_m1ran(int nra, int nca, const int a[], int at[]);
/* @@end transpose */

/* ------------------------------------------------------------------------ */
/* Special functions and distributions                                      */
/* ------------------------------------------------------------------------ */
/* @@section dist_special */
/* Gamma function, log |gamma|, beta function and its log. */
float zorvs_f_gamma(float x);
double zorvs_d_gamma(double x);
float zorvs_f_log_gamma(float x);
double zorvs_d_log_gamma(double x);
float zorvs_f_beta(float a, float b);
double zorvs_d_beta(double a, double b);
float zorvs_f_log_beta(float a, float b);
double zorvs_d_log_beta(double a, double b);
/* Error function, its complement, the standard normal distribution. */
float zorvs_f_erf(float x);
double zorvs_d_erf(double x);
float zorvs_f_erfc(float x);
double zorvs_d_erfc(double x);
float zorvs_f_normal_cdf(float x);
double zorvs_d_normal_cdf(double x);
float zorvs_f_normal_inverse_cdf(float p);
double zorvs_d_normal_inverse_cdf(double p);
/* P(X <= x, Y <= y) for unit normals with correlation rho. */
float zorvs_f_bivariate_normal_cdf(float x, float y, float rho);
double zorvs_d_bivariate_normal_cdf(double x, double y, double rho);
/* @@end dist_special */
/* @@section dist_continuous */
float zorvs_f_gamma_incomplete(float a, float x);
double zorvs_d_gamma_incomplete(double a, double x);
float zorvs_f_gamma_cdf(float x, float a);
double zorvs_d_gamma_cdf(double x, double a);
float zorvs_f_chi_squared_cdf(float chi_squared, float df);
double zorvs_d_chi_squared_cdf(double chi_squared, double df);
float zorvs_f_chi_squared_inverse_cdf(float p, float df);
double zorvs_d_chi_squared_inverse_cdf(double p, double df);
float zorvs_f_beta_incomplete(float x, float a, float b);
double zorvs_d_beta_incomplete(double x, double a, double b);
float zorvs_f_beta_cdf(float x, float pin, float qin);
double zorvs_d_beta_cdf(double x, double pin, double qin);
float zorvs_f_beta_inverse_cdf(float p, float pin, float qin);
double zorvs_d_beta_inverse_cdf(double p, double pin, double qin);
float zorvs_f_t_cdf(float t, float df);
double zorvs_d_t_cdf(double t, double df);
float zorvs_f_t_inverse_cdf(float p, float df);
double zorvs_d_t_inverse_cdf(double p, double df);
float zorvs_f_F_cdf(float f, float df1, float df2);
double zorvs_d_F_cdf(double f, double df1, double df2);
float zorvs_f_F_inverse_cdf(float p, float df1, float df2);
double zorvs_d_F_inverse_cdf(double p, double df1, double df2);
/* @@end dist_continuous */
/* @@section dist_discrete */
float zorvs_f_poisson_cdf(int k, float theta);
double zorvs_d_poisson_cdf(int k, double theta);
float zorvs_f_binomial_cdf(int k, int n, float p);
double zorvs_d_binomial_cdf(int k, int n, double p);
/* P(X <= k), X successes in a sample of n from a population of l holding m. */
float zorvs_f_hypergeometric_cdf(int k, int n, int m, int l);
double zorvs_d_hypergeometric_cdf(int k, int n, int m, int l);
/* @@end dist_discrete */

/* ------------------------------------------------------------------------ */
/* Random numbers                                                           */
/* ------------------------------------------------------------------------ */
/* @@section random */
/* One shared generator stream for both precisions; keyword ZORVS_RETURN_USER (array). */
float *zorvs_f_random_uniform(int n, ...);
double *zorvs_d_random_uniform(int n, ...);
int zorvs_random_seed_get(void);
void zorvs_random_seed_set(int seed);
void zorvs_random_option(int generator_option);
void zorvs_rnses(const float table[]);
void zorvs_drnses(const double table[]);
float *zorvs_f_random_normal(int n, ...);
double *zorvs_d_random_normal(int n, ...);
float *zorvs_f_random_exponential(int n, ...);
double *zorvs_d_random_exponential(int n, ...);
float *zorvs_f_random_gamma(int n, float a, ...);
double *zorvs_d_random_gamma(int n, double a, ...);
int *zorvs_random_poisson(int n, float theta, ...);
float *zorvs_f_random_beta(int n, float pin, float qin, ...);
double *zorvs_d_random_beta(int n, double pin, double qin, ...);
/* n_vectors rows of l_vectors entries, row-major, with the covariance given as
 * an l_vectors x l_vectors row-major matrix (its upper triangle is read). */
float *zorvs_f_random_normal_multivariate(int n_vectors, int l_vectors, const float covariance[], ...);
double *zorvs_d_random_normal_multivariate(int n_vectors, int l_vectors, const double covariance[], ...);
/* @@end random */

/* ------------------------------------------------------------------------ */
/* Descriptive statistics                                                   */
/* ------------------------------------------------------------------------ */
/* @@section describe_table */
/* One-way frequency table of n_observations values in n_intervals cells.
 * Keywords: ZORVS_DATA_BOUNDS (float *min, float *max), ZORVS_KNOWN_BOUNDS
 * (lower, upper as double), ZORVS_CUTPOINTS (float cutpoints[]),
 * ZORVS_CLASS_MARKS (float class_marks[]), ZORVS_RETURN_USER (float table[]).
 * The double twin takes double arrays and pointers. */
float *zorvs_f_table_oneway(int n_observations, float x[], int n_intervals, ...);
double *zorvs_d_table_oneway(int n_observations, double x[], int n_intervals, ...);
/* @@end describe_table */
/* @@section describe_stats */
float *zorvs_f_simple_statistics(int n_observations, int n_variables, float x[], ...);
double *zorvs_d_simple_statistics(int n_observations, int n_variables, double x[], ...);
/* @@end describe_stats */
/* @@section describe_inference */
/* Inference on one normal sample: returns a vector of 17 reals, allocated
 * (the caller frees it) or the caller's with ZORVS_RETURN_USER.  After a
 * FATAL or TERMINAL error: null, or the caller's array left unwritten.
 *   0 count, 1 mean, 2 variance s^2, 3 standard deviation, 4 df = count - 1,
 *   5, 6 confidence limits of the mean (Student's t),
 *   7, 8 confidence limits of the variance, (n - 1) s^2 / chi2 quantiles,
 *   9 t = (mean - mu0) / (s / sqrt(n)), 10 its two-sided p-value, 11 P(T <= t),
 *     12 P(T >= t),
 *   13 chi2 = (n - 1) s^2 / sigma0^2, 14 two-sided p (twice the smaller
 *     tail, at most 1), 15 P(X <= chi2), 16 P(X >= chi2).
 * Probabilities and quantiles are computed in double precision in both
 * twins, each tail from its own formula (the incomplete beta ratio for t
 * and F; the series and continued fraction of the incomplete gamma ratios,
 * Numerical Recipes 6.2, for chi-squared), so that far tails keep their
 * relative digits.
 * NaN values of x are left out with the warning (3, 21100); fewer than 2
 * values left is terminal (5, 21101).  Constant data leave cells 5, 6 and 9
 * to 12 NaN with (3, 21102).
 * Keywords: ZORVS_CONFIDENCE_MEANS, ZORVS_CONFIDENCE_VARIANCES (double, per
 * cent, default 95; 0 or less leaves the limits NaN; 100 or more is (5,
 * 11064), (5, 11065)) and their _ADR forms (real *);
 * ZORVS_HYPOTHESIZED_MEAN (double mu0, default 0, finite, else (5, 21108)),
 * ZORVS_HYPOTHESIZED_VARIANCE (double sigma0^2, default 1, positive, else
 * (5, 21103));
 * ZORVS_RETURN_USER (real[17]). */
float *zorvs_f_normal_one_sample(int n_observations, float x[], ...);
double *zorvs_d_normal_one_sample(int n_observations, double x[], ...);
/* Inference on two independent normal samples: returns a vector of 30
 * reals, with the same rules of storage, missing values (per sample,
 * i2 = 1 or 2) and constant data as above.
 *   0, 1 counts n1, n2, 2, 3 means, 4, 5 variances, 6 difference of means,
 *   pooled variance: 7 pooled variance, 8 df = n1 + n2 - 2, 9, 10 limits of
 *     the difference, 11 t = (difference - d0) / se, 12 two-sided p,
 *     13 P(T <= t), 14 P(T >= t),
 *   Welch: 15 Satterthwaite's df, 16, 17 limits, 18 t, 19 to 21 p as above,
 *   variances: 22 F = (s1^2 / s2^2) / ratio0, 23, 24 df1 = n1 - 1,
 *     df2 = n2 - 1, 25, 26 limits of the ratio s1^2 / s2^2 (F quantiles),
 *     27 two-sided p, 28 P(F' <= F), 29 P(F' >= F).
 * A zero variance leaves the F cells 22, 25 to 29 NaN with (3, 21102).
 * Keywords: the confidence levels as above (means: the difference;
 * variances: the ratio), ZORVS_HYPOTHESIZED_DIFFERENCE (double d0, default
 * 0, finite), ZORVS_HYPOTHESIZED_RATIO (double, default 1, positive),
 * ZORVS_RETURN_USER (real[30]).
 * References: Welch (1947), Biometrika 34; Satterthwaite (1946), Biometrics
 * Bulletin 2; Snedecor and Cochran, Statistical Methods. */
float *zorvs_f_normal_two_sample(int n_observations_1, float x1[], int n_observations_2, float x2[], ...);
double *zorvs_d_normal_two_sample(int n_observations_1, double x1[], int n_observations_2, double x2[], ...);
/* The n_variables x n_variables matrix of the columns of x (row-major,
 * n_observations rows, leading dimension ZORVS_X_COL_DIM), row-major with
 * leading dimension ZORVS_COV_COL_DIM: by default the variance-covariance
 * matrix; with ZORVS_CORRECTED_SSCP the corrected sums of squares and
 * crossproducts; with ZORVS_CORRELATION_MATRIX the correlations (at most
 * one of the three, else (5, 11117)).  After a FATAL or TERMINAL error:
 * null, or the caller's array left unwritten (the optional outputs too).
 * Method: one pass of weighted updating (West 1979) per pair of variables
 * on values less each variable's first value, so a large offset keeps its
 * digits.  Frequencies repeat observations, weights are reliability
 * weights: covariance = sum f w (x_j - m_j)(x_k - m_k) / ((W^2 - V) / W),
 * W = sum f w, V = sum f w^2 (count - 1 without weights; the unbiased
 * weighted covariance otherwise).
 * Missing values (NaN): ZORVS_MISSING_LISTWISE (default) leaves out an
 * observation with a NaN in any variable; ZORVS_MISSING_ELEMENTWISE uses
 * for each pair the observations where both are present, with that pair's
 * means and, for correlations, its standard deviations ("pairwise
 * complete").  Either raises (3, 11062) or (3, 11288) when it left one out.
 * Keywords: ZORVS_FREQUENCIES, ZORVS_WEIGHTS (real[n_observations]; NaN
 * leaves the observation out, a negative one is (4, 11054), (4, 11056));
 * ZORVS_POOLED_GROUPS (int n_groups, int groups[n_observations]: the
 * matrix pooled within groups, sums of crossproducts and divisors added
 * over the groups; a negative group leaves the observation out, one of
 * n_groups or more is (5, 21107)); ZORVS_X_MEAN (real **) and
 * ZORVS_X_MEAN_USER (real[n_groups * n_variables]): the means, per group,
 * over each variable's observations used; ZORVS_PAIR_COUNTS (real **) and
 * ZORVS_PAIR_COUNTS_USER (real[n_variables * n_variables]): the sum of
 * frequencies of each pair's observations; ZORVS_RETURN_USER.
 * Fewer than 2 weighted observations for every variable: (5, 21104).  A
 * pair with fewer: NaN, (3, 21105); a constant variable: NaN correlations,
 * (3, 21106). */
float *zorvs_f_covariances(int n_observations, int n_variables, float x[], ...);
double *zorvs_d_covariances(int n_observations, int n_variables, double x[], ...);
/* @@end describe_inference */

/* @@section describe_ranks */
/* Ranks of x[0..n_observations-1], or their normal or exponential scores.
 * A NaN is missing: its result is NaN, the others are ranked among
 * themselves (m of them); all missing gives all NaN with the warning
 * (3, 21200).  Values that differ by at most the fuzz from their sorted
 * neighbour are tied (the fuzz chains; default 0).
 * Tie rule, one of: ZORVS_AVERAGE_TIE (default: the mean of the tied
 * places' scores), ZORVS_LOWEST, ZORVS_HIGHEST (the score of the lowest or
 * highest tied place), ZORVS_RANDOM_SPLIT (the places in a random order
 * drawn from the library's generator: a group of k ties draws k uniforms).
 * Score of place r, one of: ZORVS_RANKS (default, r), ZORVS_BLOM_SCORES
 * Phi^-1((r - 3/8)/(m + 1/4)), ZORVS_TUKEY_SCORES Phi^-1((r - 1/3)/(m + 1/3)),
 * ZORVS_VAN_DER_WAERDEN_SCORES Phi^-1(r/(m + 1)), ZORVS_SAVAGE_SCORES
 * sum_(j=m-r+1..m) 1/j, the expected exponential order statistic (not
 * centred: subtract 1 for the centred Savage score).
 * Other keywords: ZORVS_FUZZ (double), ZORVS_FUZZ_ADR (float *),
 * ZORVS_RETURN_USER (float []).  The double twin takes double arrays. */
float *zorvs_f_ranks(int n_observations, float x[], ...);
double *zorvs_d_ranks(int n_observations, double x[], ...);
/* @@end describe_ranks */

/* ------------------------------------------------------------------------ */
/* Regression                                                               */
/* ------------------------------------------------------------------------ */
/* @@section regress */
/* Regressors of a general linear model from n_observations rows of n_class
 * class and n_cont continuous columns; returns the number of regressors.
 * Keywords: ZORVS_X_COL_DIM (int), ZORVS_X_CLASS_COLUMNS (int[], from 0),
 * ZORVS_MODEL_ORDER (int, 1 or 2), ZORVS_INDICES_EFFECTS (int n_effects,
 * int n_var_effects[], int indices_effects[]), ZORVS_DUMMY (int, 1 all
 * levels, 2 leave out last, 3 sum to zero), ZORVS_REGRESSORS (float **),
 * ZORVS_REGRESSORS_USER (float[]), ZORVS_REGRESSORS_COL_DIM (int). */
int zorvs_f_regressors_for_glm(int n_observations, float x[], int n_class, int n_cont, ...);
int zorvs_d_regressors_for_glm(int n_observations, double x[], int n_class, int n_cont, ...);

/* The record of a linear regression fit: one malloc'ed block, released with
 * one free; the vectors follow the header in the same block.  r_matrix is
 * the upper triangular factor R, column-major with leading dimension
 * n_parameters; a zero diagonal marks a column dropped as dependent. */
typedef struct {
    int n_observations;
    int rows_missing;
    int n_dependent;
    int n_parameters;
    int intercept;
    int rank;
    float df_error;
    float *coefficients;
    float *sscp_error;
    float *r_matrix;
    float *r_scale;
    float *work_row;
    float *x_mean;
    float *x_min;
    float *x_max;
    float *y_mean;
    float *y_min;
    float *y_max;
} zorvs_f_regression_info;
typedef struct {
    int n_observations;
    int rows_missing;
    int n_dependent;
    int n_parameters;
    int intercept;
    int rank;
    double df_error;
    double *coefficients;
    double *sscp_error;
    double *r_matrix;
    double *r_scale;
    double *work_row;
    double *x_mean;
    double *x_min;
    double *x_max;
    double *y_mean;
    double *y_min;
    double *y_max;
} zorvs_d_regression_info;

/* Least-squares fit of y on the n_rows x n_independent row-major x; returns
 * the n_parameters coefficients, the intercept first.  Keywords:
 * ZORVS_X_COL_DIM (int), ZORVS_NO_INTERCEPT, ZORVS_TOLERANCE (double),
 * ZORVS_TOLERANCE_ADR (float *), ZORVS_FREQUENCIES (float[]), ZORVS_WEIGHTS
 * (float[]), ZORVS_RANK (int *), ZORVS_ANOVA_TABLE (float **),
 * ZORVS_ANOVA_TABLE_USER (float[15]), ZORVS_COEF_COVARIANCES (float **),
 * ZORVS_COEF_COVARIANCES_USER (float[]), ZORVS_COV_COL_DIM (int),
 * ZORVS_X_MEAN (float **), ZORVS_X_MEAN_USER (float[]), ZORVS_RESIDUAL
 * (float **), ZORVS_RESIDUAL_USER (float[]), ZORVS_REGRESSION_INFO
 * (zorvs_f_regression_info **), ZORVS_RETURN_USER (float[]).  The double
 * twin takes double arrays and pointers and zorvs_d_regression_info **. */
float *zorvs_f_regression(int n_rows, int n_independent, float x[], float y[], ...);
double *zorvs_d_regression(int n_rows, int n_independent, double x[], double y[], ...);
/* @@end regress */
/* @@section regress_summary */
/* Inference on the coefficients of a fit from its record: t tests, variance
 * inflation factors, covariances, the analysis of variance table.
 * Keywords: ZORVS_COEF_T_TESTS (float **), ZORVS_COEF_T_TESTS_USER
 * (float[]), ZORVS_COEF_T_TESTS_COL_DIM (int, default 4), ZORVS_COEF_VIF
 * (float **), ZORVS_COEF_VIF_USER (float[]), ZORVS_COEF_COVARIANCES
 * (float **), ZORVS_COEF_COVARIANCES_USER (float[]), ZORVS_COVB_COL_DIM
 * (int), ZORVS_ANOVA_TABLE (float **), ZORVS_ANOVA_TABLE_USER (float[15]).
 * The double twin takes double arrays and pointers. */
void zorvs_f_regression_summary(zorvs_f_regression_info *regression_info, ...);
void zorvs_d_regression_summary(zorvs_d_regression_info *regression_info, ...);

/* Predicted values of n_predict row-major rows of x from the record, with
 * intervals and, given the responses, the case statistics.  Keywords:
 * ZORVS_Y (float[]), ZORVS_WEIGHTS (float[]), ZORVS_X_COL_DIM (int),
 * ZORVS_CONFIDENCE (double, per cent), ZORVS_CONFIDENCE_ADR (float *);
 * the interval pairs ZORVS_SCHEFFE_CI, ZORVS_CI_POP_MEAN, ZORVS_CI_NEW_SAMPLE
 * (float **lower, float **upper) and their _USER forms (float[], float[]);
 * ZORVS_RESIDUAL, ZORVS_STANDARDIZED_RESIDUAL, ZORVS_DELETED_RESIDUAL,
 * ZORVS_COOKSD, ZORVS_DFFITS, ZORVS_LEVERAGE (float **) and their _USER forms
 * (float[]); ZORVS_RETURN_USER (float[]). */
float *zorvs_f_regression_prediction(zorvs_f_regression_info *regression_info, int n_predict, float x[], ...);
double *zorvs_d_regression_prediction(zorvs_d_regression_info *regression_info, int n_predict, double x[], ...);
/* @@end regress_summary */

/* ------------------------------------------------------------------------ */
/* Analysis of variance                                                     */
/* ------------------------------------------------------------------------ */
/* @@section anova */
/* One-way analysis of variance of n_groups groups, the n[i] responses of
 * group i after those of group i - 1 in y (NaN: missing); returns the
 * p-value of the F test.  Keywords: ZORVS_ANOVA_TABLE (float **),
 * ZORVS_ANOVA_TABLE_USER (float[15]), ZORVS_GROUP_COUNTS (int **),
 * ZORVS_GROUP_COUNTS_USER (int[]), ZORVS_GROUP_MEANS (float **),
 * ZORVS_GROUP_MEANS_USER (float[]), ZORVS_GROUP_STD_DEVS (float **),
 * ZORVS_GROUP_STD_DEVS_USER (float[]), ZORVS_CONFIDENCE (double, per cent),
 * ZORVS_CONFIDENCE_ADR (float *), and one of ZORVS_TUKEY, ZORVS_DUNN_SIDAK,
 * ZORVS_BONFERRONI, ZORVS_SCHEFFE, ZORVS_ONE_AT_A_TIME (float **) or their
 * _USER forms (float[n_groups (n_groups - 1) / 2 * 5]): rows (i, j,
 * mean_i - mean_j, lower, upper), groups from 1.  The double twin takes
 * double arrays and pointers. */
float zorvs_f_anova_oneway(int n_groups, int n[], float y[], ...);
double zorvs_d_anova_oneway(int n_groups, int n[], double y[], ...);
/* Student-Newman-Keuls test on n_groups means with a common standard error
 * of df degrees of freedom; returns n_groups - 1 ints, at sorted position i
 * the number of consecutive sorted means from i found not to differ (0:
 * none).  Keywords: ZORVS_ALPHA (double, 0.01 to 0.1, default 0.01),
 * ZORVS_RETURN_USER (int[n_groups - 1]). */
int *zorvs_f_multiple_comparisons(int n_groups, float means[], int df, float std_error, ...);
int *zorvs_d_multiple_comparisons(int n_groups, double means[], int df, double std_error, ...);
/* @@end anova */

/* ------------------------------------------------------------------------ */
/* Categorical data and tests                                               */
/* ------------------------------------------------------------------------ */
/* @@section categorical_tests */
/* Sign test: the probability that at least the observed number of values
 * lie above the percentile value under the binomial hypothesis.  Keywords:
 * ZORVS_PERCENTAGE (double p), ZORVS_PERCENTAGE_ADR (float *p),
 * ZORVS_PERCENTILE (double q), ZORVS_PERCENTILE_ADR (float *q),
 * ZORVS_N_POSITIVE_DEVIATIONS (int *), ZORVS_N_ZERO_DEVIATIONS (int *). */
float zorvs_f_sign_test(int n_observations, float x[], ...);
double zorvs_d_sign_test(int n_observations, double x[], ...);
/* Wilcoxon rank-sum test of two samples; returns the two-sided p-value of
 * the normal approximation.  Keywords: ZORVS_FUZZ (double), ZORVS_FUZZ_ADR
 * (float *), ZORVS_STAT (float **), ZORVS_STAT_USER (float stat[10]). */
float zorvs_f_wilcoxon_rank_sum(int n1_observations, float x[], int n2_observations, float y[], ...);
double zorvs_d_wilcoxon_rank_sum(int n1_observations, double x[], int n2_observations, double y[], ...);
/* Normality test: Shapiro-Wilk W (default, 3 to 2000 observations) or
 * Lilliefors (5 or more); returns the p-value.  Keywords: ZORVS_SHAPIRO_WILK
 * (float *w), ZORVS_LILLIEFORS (float *max_difference). */
float zorvs_f_normality_test(int n_observations, float x[], ...);
double zorvs_d_normality_test(int n_observations, double x[], ...);
/* @@end categorical_tests */

/* @@section categorical_table */
/* Two-way contingency table of n_rows x n_columns non-negative counts
 * (row-major); returns the p-value of Pearson's chi-squared test.
 * Keywords: ZORVS_CHI_SQUARED and ZORVS_LRT (int *df, float *statistic,
 * float *p_value), ZORVS_EXPECTED (float **), ZORVS_EXPECTED_USER (float[]),
 * ZORVS_CHI_SQUARED_CONTRIBUTIONS (float **),
 * ZORVS_CHI_SQUARED_CONTRIBUTIONS_USER (float[]): both (n_rows+1) x
 * (n_columns+1) with the margins last; ZORVS_CHI_SQUARED_STATISTICS
 * (float **), ZORVS_CHI_SQUARED_STATISTICS_USER (float[]): exact mean and
 * standard deviation of chi-squared, phi, contingency coefficient, Cramer's
 * V; ZORVS_STATISTICS (float **), ZORVS_STATISTICS_USER (float[]): 23
 * measures of association by 5 (statistic, standard error, standard error
 * under independence, standardised value, p-value).  The double twin takes
 * double arrays and pointers. */
float zorvs_f_contingency_table(int n_rows, int n_columns, float table[], ...);
double zorvs_d_contingency_table(int n_rows, int n_columns, double table[], ...);
/* @@end categorical_table */

/* @@section categorical_gof */
/* Pearson's chi-squared goodness-of-fit test; returns the p-value, NaN
 * after an error.  Cells are cut by the n_categories - 1 increasing
 * ZORVS_CUTPOINTS c: (-inf, c_1], (c_1, c_2], ..., (c_(K-1), inf).  Expected
 * counts N (F(c_k) - F(c_(k-1))) from the distribution function cdf (called
 * once per cutpoint; its values must lie in [0, 1] and not decrease), or,
 * with cdf null, the n_categories ZORVS_EXPECTED_GIVEN (float []) as given.
 * X^2 = sum (O - E)^2 / E on n_categories - 1 - m degrees of freedom, m from
 * ZORVS_N_PARAMETERS_ESTIMATED (int, default 0); p = P(chi2 > X^2), the
 * upper tail itself.
 * Data: raw values x[0..n_observations-1] (default; NaN missing) with
 * ZORVS_FREQUENCIES (float []), or with ZORVS_COUNTS the n_categories cell
 * counts (n_observations = n_categories).  Outputs: ZORVS_CHI_SQUARED
 * (int *df, float *chi_squared, float *p_value), ZORVS_EXPECTED (float **)
 * and _USER, ZORVS_CHI_SQUARED_CONTRIBUTIONS (float **) and _USER,
 * ZORVS_CELL_COUNTS (float **) and _USER, n_categories values each.
 * Expected counts below 5: warning (3, 21229).  The double twin takes a
 * double function and double arrays. */
float zorvs_f_chi_squared_test(float (*cdf)(float), int n_categories, int n_observations, float x[], ...);
double zorvs_d_chi_squared_test(double (*cdf)(double), int n_categories, int n_observations, double x[], ...);
/* @@end categorical_gof */

/* ------------------------------------------------------------------------ */
/* Utilities: permutations                                                  */
/* ------------------------------------------------------------------------ */
/* @@section permute */
/* Values of `permute`: a vector gathered (result[i] = x[permutation[i]]) or
 * scattered (result[permutation[i]] = x[i]); a matrix's rows gathered or its
 * columns scattered.  The permutation counts from 0 and must hold each index
 * once.  Keyword: ZORVS_RETURN_USER (result array). */
enum zorvs_permute_option {
    ZORVS_FORWARD_PERMUTATION = 1,
    ZORVS_BACKWARD_PERMUTATION = 2,
    ZORVS_PERMUTE_ROWS = 3,
    ZORVS_PERMUTE_COLUMNS = 4
};
float *zorvs_f_permute_vector(int n_elements, float x[], int permutation[], int permute, ...);
double *zorvs_d_permute_vector(int n_elements, double x[], int permutation[], int permute, ...);
float *zorvs_f_permute_matrix(int n_rows, int n_columns, float a[], int permutation[], int permute, ...);
double *zorvs_d_permute_matrix(int n_rows, int n_columns, double a[], int permutation[], int permute, ...);
/* @@end permute */

/* ------------------------------------------------------------------------ */
/* Multivariate analysis                                                    */
/* ------------------------------------------------------------------------ */
/* @@section multivariate */
/* K-means clustering by Hartigan and Wong's transfers from the caller's seed
 * means; returns the cluster of each observation, from 1.  Keywords:
 * ZORVS_RETURN_USER (int []), ZORVS_MAX_ITERATIONS (int), ZORVS_WEIGHTS,
 * ZORVS_FREQUENCIES (real []), ZORVS_X_COL_DIM, ZORVS_CLUSTER_SEEDS_COL_DIM,
 * ZORVS_CLUSTER_MEANS_COL_DIM (int), ZORVS_CLUSTER_MEANS (real **),
 * ZORVS_CLUSTER_MEANS_USER (real []), ZORVS_CLUSTER_SSQ (real **),
 * ZORVS_CLUSTER_SSQ_USER (real []), ZORVS_CLUSTER_COUNTS (int **),
 * ZORVS_CLUSTER_COUNTS_USER (int []), ZORVS_X_COLUMNS (int []). */
int *zorvs_f_cluster_k_means(int n_observations, int n_variables, float x[], int n_clusters,
                             float cluster_seeds[], ...);
int *zorvs_d_cluster_k_means(int n_observations, int n_variables, double x[], int n_clusters,
                             double cluster_seeds[], ...);
/* Principal components of a covariance or correlation matrix; returns the
 * eigenvalues in decreasing order.  Keywords: ZORVS_RETURN_USER, ZORVS_COV_COL_DIM
 * (int), ZORVS_COVARIANCE_MATRIX, ZORVS_CORRELATION_MATRIX, ZORVS_EIGENVECTORS,
 * ZORVS_CORRELATIONS, ZORVS_CUM_PERCENT (real **) and their _USER twins (real []),
 * ZORVS_STD_DEV (int df, real **), ZORVS_STD_DEV_USER (int df, real []). */
float *zorvs_f_principal_components(int n_variables, float covariances[], ...);
double *zorvs_d_principal_components(int n_variables, double covariances[], ...);
/* @@end multivariate */

/* ------------------------------------------------------------------------ */
/* Time series                                                              */
/* ------------------------------------------------------------------------ */
/* @@section series */
/* Differencing: the operators (1 - B^periods[k])^orders[k], applied from the
 * last to the first.  Keywords: ZORVS_RETURN_USER (float w[]), ZORVS_ORDERS
 * (int orders[]), ZORVS_NUM_LOST (int *), ZORVS_EXCLUDE_FIRST,
 * ZORVS_SET_FIRST_TO_NAN.  The double twin takes double arrays. */
float *zorvs_f_difference(int n_observations, float z[], int n_differences, int periods[], ...);
double *zorvs_d_difference(int n_observations, double z[], int n_differences, int periods[], ...);
/* ARMA(p, q) estimation by the method of moments (default) or by least
 * squares with backcasting (ZORVS_LEAST_SQUARES).  The result holds the
 * constant, the p autoregressive and the q moving-average parameters, the
 * latter with Box and Jenkins' sign: z(t) = c + sum phi_i z(t - l_i) + a(t)
 * - sum theta_j a(t - m_j).  Keywords: ZORVS_CONSTANT, ZORVS_NO_CONSTANT,
 * ZORVS_METHOD_OF_MOMENTS, ZORVS_LEAST_SQUARES, ZORVS_INITIAL_ESTIMATES
 * (float ar[], float ma[]), ZORVS_AR_LAGS (int []), ZORVS_MA_LAGS (int []),
 * ZORVS_BACKCASTING (int length, double threshold), ZORVS_BACKCASTING_ADR
 * (int, float *), ZORVS_CONVERGENCE_TOLERANCE (double) and _ADR (float *),
 * ZORVS_RELATIVE_ERROR (double) and _ADR, ZORVS_MAX_ITERATIONS (int),
 * ZORVS_MEAN_ESTIMATE (float *: NaN asks for the sample mean),
 * ZORVS_RESIDUAL (float **) and _USER (n + length - largest AR lag values),
 * ZORVS_PARAM_EST_COV (float **) and _USER (k x k, k parameters estimated),
 * ZORVS_AUTOCOV (float **) and _USER (lags 0 to p + q + 1),
 * ZORVS_SS_RESIDUAL (float *), ZORVS_RETURN_USER (float *constant, float
 * ar[], float ma[]), ZORVS_ARMA_INFO (void **: a zorvs_arma_info the caller
 * frees).  The double twin takes double arrays and pointers. */
typedef struct zorvs_arma_info {
    int p, q;                    /* orders */
    int has_constant;            /* 1 if the constant was estimated */
    int method;                  /* ZORVS_METHOD_OF_MOMENTS or ZORVS_LEAST_SQUARES */
    int n_observations;          /* length of the series */
    int *ar_lags, *ma_lags;      /* p and q lags */
    double mean;                 /* mean of the series used by the estimate */
    double constant;             /* c */
    double *ar, *ma;             /* phi_1..phi_p, theta_1..theta_q */
    double innovation_variance;  /* moments: sigma^2 of the equations; least squares: SS / (residuals - k) */
    int n_last_observations;     /* the largest AR lag */
    double *last_observations;   /* the last observations of the series, oldest first */
    int n_last_residuals;        /* the largest MA lag (least squares), else 0 */
    double *last_residuals;      /* the last residuals, oldest first */
} zorvs_arma_info;
float *zorvs_f_arma(int n_observations, float z[], int p, int q, ...);
double *zorvs_d_arma(int n_observations, double z[], int p, int q, ...);
/* Forecasts at leads 1..n_predict from the end of the series, with
 * probability limits, from the record of zorvs_f_arma (ZORVS_ARMA_INFO).
 * Returns an n_predict x 3 table, row-major: forecast, lower and upper
 * limit.  zhat(h) = c + sum phi_i [z(n+h-l_i)] - sum theta_j [a(n+h-m_j)],
 * with observations and the fit's residuals up to n, forecasts and 0 after
 * (Box and Jenkins, chapter 5); limits zhat -/+ z_(1-alpha/2) sigma
 * sqrt(sum_(k<h) psi_k^2) from the psi weights psi_0 = 1,
 * psi_k = sum phi_i psi_(k-l_i) - theta(k).  The record of a moments
 * estimate holds no residuals: with moving-average terms (5, 21242).  A
 * null record (5, 21240), an inconsistent one (5, 21241).  Keywords:
 * ZORVS_CONFIDENCE (double, per cent, default 95.0), ZORVS_PSI_WEIGHTS
 * (float **) and _USER (float []: psi_0..psi_(n_predict-1)),
 * ZORVS_RETURN_USER (float [3 n_predict]).  The double twin takes double
 * arrays and pointers; both twins take the same record. */
float *zorvs_f_arma_forecast(zorvs_arma_info *arma_info, int n_predict, ...);
double *zorvs_d_arma_forecast(zorvs_arma_info *arma_info, int n_predict, ...);
/* @@end series */

#ifdef __cplusplus
}
#endif

#endif /* ZORVSTAT_H */
