// cli_tests.cpp - the zorvstat program as installed (staged into the build
// tree by the cli.stage fixture), run on the files of tests/data/cli/ and
// on its samples: printed tables against golden texts, --format csv against
// the library routine called here on the same numbers (bit for bit), and
// the exit status and message of every kind of error.
#include <sys/wait.h>

#include "support/cli.hpp"

namespace zorvs_test {
namespace {

// ---------------------------------------------------------------- printer
// The text output of a command line, against tests/data/cli/NAME.txt.
TEST(CliText, PrintsThroughTheMatrixPrinter) {
    const struct {
        const char *name, *args;
    } rows[] = {
        {"describe_iris", "describe"},
        {"describe_airquality_median", "describe @/airquality.csv --median Ozone Solar.R --title Airquality"},
        {"table_faithful", "table"},
        {"table_labels", "table reader.csv label"},
        {"table_labels", "ZORVSTAT_BLOCK=5 table reader.csv label"},
        {"ttest_sleep_groups", "ttest --sample extra --by group --title 'Sleep by drug'"},
        {"cor_stackloss", "cor"},
        {"rank_women_blom", "rank @/women.csv --scores blom height --title Women"},
        {"dist_t_quantiles", "dist t_inverse_cdf 0.9,0.95,0.99 10"},
        {"random_normal_seeded", "random normal 4 --seed 123457"},
        {"describe_json", "describe reader.csv a --format json"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.args);
        Outcome r = zorvstat(row.args);
        EXPECT_EQ(r.status, 0) << r.err;
        expect_golden("../cli/" + std::string(row.name), r.out);
    }
}

// ---------------------------------------------------------------- exact values
const std::vector<std::string> statistic_rows = {
    "mean",     "variance",      "std. dev.",     "skewness",      "kurtosis",      "minimum",
    "maximum",  "range",         "coef. var.",    "count",         "lower CL mean", "upper CL mean",
    "lower CL var.", "upper CL var.", "missing"};

// describe's table of columns given as numbers.
void describe_cells(Cells &cells, const std::string &title, const std::vector<std::string> &names,
                    std::vector<std::vector<double>> columns) {
    for (std::size_t k = 0; k < names.size(); ++k) {
        std::vector<double> s(15);
        zorvs_d_simple_statistics(static_cast<int>(columns[k].size()), 1, columns[k].data(),
                                  ZORVS_MISSING_ELEMENTWISE, ZORVS_RETURN_USER, s.data(), 0);
        s[14] = static_cast<double>(std::count_if(columns[k].begin(), columns[k].end(), [](double v) { return std::isnan(v); }));
        add_table(cells, title, statistic_rows, {names[k]}, s.data());
    }
}

// The values of the test files, as the reader must see them.
const std::vector<double> reader_a = {1.5, -2, NaN, NaN, 1e-3}, reader_b = {2, 7, 1e3, 4.25, NaN},
                          reader_c = {3, NaN, NaN, -0.5, 6};
TEST(CliCsv, EqualsTheLibraryRoutineBitForBit) {
    Quiet quiet;
    const struct {
        const char *args, *input;
        std::function<void(Cells &)> expected;
    } rows[] = {
        {"describe reader.csv a 'b b' 4", "",
         [](Cells &c) { describe_cells(c, "Summary of reader.csv", {"a", "b b", "c"}, {reader_a, reader_b, reader_c}); }},
        {"ZORVSTAT_BLOCK=3 describe reader.csv a 'b b' 4", "",
         [](Cells &c) { describe_cells(c, "Summary of reader.csv", {"a", "b b", "c"}, {reader_a, reader_b, reader_c}); }},
        {"describe --tsv - 1 2 c", "reader.tsv",
         [](Cells &c) {
             describe_cells(c, "Summary of standard input", {"a", "b b", "c"}, {reader_a, reader_b, reader_c});
         }},
        {"describe reader.csv --listwise a c", "",
         [](Cells &c) { describe_cells(c, "Summary of reader.csv", {"a", "c"}, {{1.5, 1e-3}, {3, 6}}); }},
        {"describe weighted.csv --freq f --weight w", "",
         [](Cells &c) {
             double x[5] = {1.5, 2.25, NaN, 4, -1}, f[5] = {2, 1, 3, 1, 2}, w[5] = {0.5, 1, 1, 2, 1.5}, s[15];
             zorvs_d_simple_statistics(5, 1, x, ZORVS_FREQUENCIES, f, ZORVS_WEIGHTS, w, ZORVS_RETURN_USER, s, 0);
             s[14] = 1;
             add_table(c, "Summary of weighted.csv", statistic_rows, {"x"}, s);
         }},
        {"cor @/cars.csv --covariance speed dist", "",
         [](Cells &c) {
             std::vector<double> speed = sample_column("cars.csv", 0), dist = sample_column("cars.csv", 1), x;
             for (std::size_t i = 0; i < speed.size(); ++i) x.insert(x.end(), {speed[i], dist[i]});
             double cov[4], means[2], counts[4];
             zorvs_d_covariances(static_cast<int>(speed.size()), 2, x.data(), ZORVS_MISSING_ELEMENTWISE,
                                 ZORVS_X_MEAN_USER, means, ZORVS_PAIR_COUNTS_USER, counts, ZORVS_RETURN_USER, cov, 0);
             add_table(c, "Covariances", {"speed", "dist"}, {"speed", "dist"}, cov);
             add_table(c, "Means", {"mean"}, {"speed", "dist"}, means);
             add_table(c, "Observations of each pair", {"speed", "dist"}, {"speed", "dist"}, counts);
         }},
        {"ttest --sample --mean 1 extra", "",
         [](Cells &c) {
             std::vector<double> x = sample_column("sleep.csv", 0);
             double r[17];
             zorvs_d_normal_one_sample(static_cast<int>(x.size()), x.data(), ZORVS_HYPOTHESIZED_MEAN, 1.0,
                                       ZORVS_RETURN_USER, r, 0);
             double t_row[7] = {r[9], r[10], r[11], r[12], r[5], r[6], 95};
             add_table(c, "Tests of the mean (t) and the variance (chi-squared)", {"mean = 1"},
                       {"statistic", "p two-sided", "P(<= stat)", "P(>= stat)", "lower CL", "upper CL", "level"}, t_row);
         }},
        {"rank reader.csv --ties lowest 'b b'", "",
         [](Cells &c) {
             std::vector<double> b = reader_b, r(5);
             zorvs_d_ranks(5, b.data(), ZORVS_LOWEST, ZORVS_RETURN_USER, r.data(), 0);
             add_table(c, "Ranks of reader.csv", {"1", "2", "3", "4", "5"}, {"b b"}, r.data());
         }},
        {"dist F_cdf 2.5,0.25 3 7.5", "",
         [](Cells &c) {
             double v[2][4] = {{2.5, 3, 7.5, zorvs_d_F_cdf(2.5, 3, 7.5)}, {0.25, 3, 7.5, zorvs_d_F_cdf(0.25, 3, 7.5)}};
             add_table(c, "F_cdf", {"", ""}, {"f", "df1", "df2", "F_cdf"}, &v[0][0]);
         }},
        {"random gamma 3 2.5 --seed 99 --generator 4", "",
         [](Cells &c) {
             zorvs_random_option(4);
             zorvs_random_seed_set(99);
             double x[3];
             zorvs_d_random_gamma(3, 2.5, ZORVS_RETURN_USER, x, 0);
             add_table(c, "Random gamma deviates", {"1", "2", "3"}, {"gamma"}, x);
         }},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.args);
        Outcome r = zorvstat(std::string(row.args) + " --format csv", row.input);
        ASSERT_EQ(r.status, 0) << r.err;
        Cells expected;
        row.expected(expected);
        expect_cells(r.out, expected);
    }
}

// ---------------------------------------------------------------- errors
// Every kind of error: its exit status, a piece of its message, and nothing
// on standard output.
TEST(CliErrors, ExitStatusAndMessage) {
    const struct {
        const char *args, *input;
        int status;
        const char *message;
        bool output_full;
    } rows[] = {
        {"", "", 64, "Usage: zorvstat COMMAND", false},
        {"summarise", "", 64, "unknown command 'summarise'", false},
        {"describe --colour", "", 64, "unknown option '--colour'", false},
        {"describe --format", "", 64, "needs a value F", false},
        {"describe --format xml", "", 64, "--format must be text, csv or json", false},
        {"describe --listwise=yes", "", 64, "takes no value", false},
        {"describe --confidence high", "", 64, "--confidence must be a number, not 'high'", false},
        {"describe --sep ab", "", 64, "--sep takes one character", false},
        {"table --sample eruptions waiting", "", 64, "one column is counted at a time", false},
        {"ttest --sample extra --by ID", "", 65, "must hold two groups, not 10", false},
        {"rank --sample --ties middle speed", "", 64, "no tie rule 'middle'; one of:\n  average", false},
        {"dist", "", 64, "t_inverse_cdf p df", false},
        {"dist t_cdf 2.1", "", 64, "t_cdf takes 2 arguments: t df", false},
        {"dist poisson_cdf 2.5 3", "", 64, "k must be a whole number, not '2.5'", false},
        {"random cauchy 3", "", 64, "no generator 'cauchy'; one of:\n  uniform N", false},
        {"random normal 0", "", 64, "N must be at least 1", false},
        {"describe no_such_file.csv", "", 66, "cannot open 'no_such_file.csv'", false},
        {"describe .", "", 66, "cannot read '.'", false},
        {"describe reader.csv width", "", 65, "no column 'width' in reader.csv (columns: a, b b, label, c)", false},
        {"describe reader.csv 9", "", 65, "no column '9'", false},
        {"describe reader.csv label", "", 65, "column 'label' of reader.csv is not numeric: line 2 holds 'x'", false},
        {"describe mixed.csv v", "", 65, "column 'v' of mixed.csv is not numeric: line 4 holds 'abc'", false},
        {"describe ragged.csv", "", 65, "ragged.csv', line 3: 3 fields where the header has 2", false},
        {"describe unterminated.csv", "", 65, "line 2: a quoted field has no closing quote", false},
        {"describe empty.csv", "", 65, "is empty: a header line is needed", false},
        {"describe -", "", 65, "standard input is empty", false},
        {"describe --weight nothing --sample", "", 65, "no column 'nothing'", false},
        {"rank --sample --freq dist speed", "", 64, "rank takes no --freq", false},
        {"describe --sample --confidence 100", "", 5, "The confidence level for", false},
        {"table --sample --intervals 0", "", 5, "TERMINAL Error from zorvs_d_table_oneway", false},
        {"cor negative_freq.csv x --freq f", "", 4, "FATAL    Error NEGATIVE_FREQUENCY from zorvs_d_covariances", false},
        {"dist t_inverse_cdf 1.5 3", "", 5, "TERMINAL Error from zorvs_d_t_inverse", false},
        {"describe", "", 74, "cannot write the output", true},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.args);
        Outcome r = zorvstat(row.args, row.input, row.output_full ? "/dev/full" : "");
        EXPECT_EQ(r.status, row.status) << r.err;
        EXPECT_NE(r.err.find(row.message), std::string::npos) << r.err;
        EXPECT_EQ(r.out, "");
    }
}

}  // namespace
}  // namespace zorvs_test
