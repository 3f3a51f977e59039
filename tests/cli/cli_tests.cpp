// cli_tests.cpp - the zorvstat program as installed (staged into the build
// tree by the cli.stage fixture), run on the files of tests/data/cli/ and on
// its samples, a row a command line: a run that succeeds prints exactly its
// golden text, tests/data/cli/NAME.txt (rewritten with ZORVS_WRITE_GOLDEN=1
// and read by eye before a commit); a run that fails leaves its exit status,
// a piece of its message on standard error and nothing on standard output.
//
// The --format csv goldens (NAME.csv.txt) were written when each of their
// cells equalled, bit for bit, the library routine called on the same
// numbers; the printed ones show the matrix printer's layout.  Statuses 7
// and 8 (an immediate or internal stop of the library) have no command line
// that reaches them.
#include <sys/wait.h>
#include <unistd.h>

#include "support/capture.hpp"

namespace zorvs_test {
namespace {

// A command line, its exit status, and for status 0 the golden's NAME, else a piece of the message.
struct Run { const char *line; int status; const char *expected; };

// Each line as a user types it ("zorvstat describe --format csv",
// "ZORVSTAT_BLOCK=5 zorvstat table", "zorvstat describe > /dev/full"), run
// by the shell in tests/data/cli/ with the installed program first on the
// path and no environment pointing it at its catalogue or samples; "@/"
// stands for the samples' folder.  Standard input is empty and standard
// output captured unless the line redirects them itself.
void expect_runs(const std::vector<Run> &rows) {
    const std::string program = ZORVSTAT_PROGRAM, scratch = ::testing::TempDir() + "zorvstat_" + std::to_string(::getpid());
    for (const Run &row : rows) {
        SCOPED_TRACE(row.line);
        std::string line = row.line;
        for (std::size_t at; (at = line.find("@/")) != std::string::npos;) line.replace(at, 2, ZORVSTAT_SAMPLES "/");
        const std::string command = "cd '" ZORVS_TEST_DATA_DIR "/cli' && unset ZORVSTAT_DATA ZORVSERRPATH && PATH='" +
                                    program.substr(0, program.rfind('/')) + "':\"$PATH\" && (" + line + ") < /dev/null > " +
                                    scratch + ".out 2> " + scratch + ".err";
        const int rc = std::system(command.c_str());
        const std::string out = read_all(scratch + ".out"), err = read_all(scratch + ".err");
        std::remove((scratch + ".out").c_str());
        std::remove((scratch + ".err").c_str());
        EXPECT_EQ(WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, row.status) << err;
        if (row.status == 0) {
            expect_golden("../cli/" + std::string(row.expected), out);
        } else {
            EXPECT_NE(err.find(row.expected), std::string::npos) << err;
            EXPECT_EQ(out, "");
        }
    }
}

// The reader, the options and the basic commands.
TEST(CliRuns, ReaderAndBasicCommands) {
    expect_runs({
        {"zorvstat describe", 0, "describe_iris"},
        {"zorvstat describe @/airquality.csv --median Ozone Solar.R --title Airquality", 0, "describe_airquality_median"},
        {"zorvstat table", 0, "table_faithful"},
        {"zorvstat table reader.csv label", 0, "table_labels"},
        {"ZORVSTAT_BLOCK=5 zorvstat table reader.csv label", 0, "table_labels"},
        {"zorvstat ttest --sample extra --by group --title 'Sleep by drug'", 0, "ttest_sleep_groups"},
        {"zorvstat cor", 0, "cor_stackloss"},
        {"zorvstat rank @/women.csv --scores blom height --title Women", 0, "rank_women_blom"},
        {"zorvstat dist t_inverse_cdf 0.9,0.95,0.99 10", 0, "dist_t_quantiles"},
        {"zorvstat random normal 4 --seed 123457", 0, "random_normal_seeded"},
        {"zorvstat describe reader.csv a --format json", 0, "describe_json"},
        {"zorvstat describe reader.csv a 'b b' 4 --format csv", 0, "describe_reader.csv"},
        {"ZORVSTAT_BLOCK=3 zorvstat describe reader.csv a 'b b' 4 --format csv", 0, "describe_reader.csv"},
        {"zorvstat describe --tsv - 1 2 c --format csv < reader.tsv", 0, "describe_stdin.csv"},
        {"zorvstat describe reader.csv --listwise a c --format csv", 0, "describe_listwise.csv"},
        {"zorvstat describe weighted.csv --freq f --weight w --format csv", 0, "describe_weighted.csv"},
        {"zorvstat cor @/cars.csv --covariance speed dist --format csv", 0, "cor_cars_covariance.csv"},
        {"zorvstat ttest --sample --mean 1 extra --format csv", 0, "ttest_sleep_mean.csv"},
        {"zorvstat rank reader.csv --ties lowest 'b b' --format csv", 0, "rank_reader_lowest.csv"},
        {"zorvstat dist F_cdf 2.5,0.25 3 7.5 --format csv", 0, "dist_F_cdf.csv"},
        {"zorvstat random gamma 3 2.5 --seed 99 --generator 4 --format csv", 0, "random_gamma_seeded.csv"},
        {"zorvstat", 64, "Usage: zorvstat COMMAND"},
        {"zorvstat summarise", 64, "unknown command 'summarise'"},
        {"zorvstat describe --colour", 64, "unknown option '--colour'"},
        {"zorvstat describe --format", 64, "needs a value F"},
        {"zorvstat describe --format xml", 64, "--format must be text, csv or json"},
        {"zorvstat describe --listwise=yes", 64, "takes no value"},
        {"zorvstat describe --confidence high", 64, "--confidence must be a number, not 'high'"},
        {"zorvstat describe --sep ab", 64, "--sep takes one character"},
        {"zorvstat table --sample eruptions waiting", 64, "one column is counted at a time"},
        {"zorvstat ttest --sample extra --by ID", 65, "must hold two groups, not 10"},
        {"zorvstat rank --sample --ties middle speed", 64, "no tie rule 'middle'; one of:\n  average"},
        {"zorvstat dist", 64, "t_inverse_cdf p df"},
        {"zorvstat dist t_cdf 2.1", 64, "t_cdf takes 2 arguments: t df"},
        {"zorvstat dist poisson_cdf 2.5 3", 64, "k must be a whole number, not '2.5'"},
        {"zorvstat random cauchy 3", 64, "no generator 'cauchy'; one of:\n  uniform N"},
        {"zorvstat random normal 0", 64, "N must be at least 1"},
        {"zorvstat describe no_such_file.csv", 66, "cannot open 'no_such_file.csv'"},
        {"zorvstat describe .", 66, "cannot read '.'"},
        {"zorvstat describe reader.csv width", 65, "no column 'width' in reader.csv (columns: a, b b, label, c)"},
        {"zorvstat describe reader.csv 9", 65, "no column '9'"},
        {"zorvstat describe reader.csv label", 65, "column 'label' of reader.csv is not numeric: line 2 holds 'x'"},
        {"zorvstat describe mixed.csv v", 65, "column 'v' of mixed.csv is not numeric: line 4 holds 'abc'"},
        {"zorvstat describe ragged.csv", 65, "ragged.csv', line 3: 3 fields where the header has 2"},
        {"zorvstat describe unterminated.csv", 65, "line 2: a quoted field has no closing quote"},
        {"zorvstat describe empty.csv", 65, "is empty: a header line is needed"},
        {"zorvstat describe -", 65, "standard input is empty"},
        {"zorvstat describe --weight nothing --sample", 65, "no column 'nothing'"},
        {"zorvstat rank --sample --freq dist speed", 64, "rank takes no --freq"},
        {"zorvstat describe --sample --confidence 100", 5, "The confidence level for"},
        {"zorvstat table --sample --intervals 0", 5, "TERMINAL Error from zorvs_d_table_oneway"},
        {"zorvstat cor negative_freq.csv x --freq f", 4, "FATAL    Error NEGATIVE_FREQUENCY from zorvs_d_covariances"},
        {"zorvstat dist t_inverse_cdf 1.5 3", 5, "TERMINAL Error from zorvs_d_t_inverse"},
        {"zorvstat describe > /dev/full", 74, "cannot write the output"},
    });
}

// The analysis commands, regress to pca.
TEST(CliRuns, AnalysisCommands) {
    expect_runs({
        {"zorvstat regress", 0, "regress_stackloss"},
        {"zorvstat regress @/plantgrowth.csv weight --class group", 0, "regress_plantgrowth_class"},
        {"zorvstat predict", 0, "predict_cars"},
        {"zorvstat anova --method tukey", 0, "anova_plantgrowth_tukey"},
        {"zorvstat compare", 0, "compare_insectsprays"},
        {"zorvstat crosstab", 0, "crosstab_haireyecolor"},
        {"zorvstat gof", 0, "gof_precip"},
        {"zorvstat gof @/discoveries.csv discoveries --dist poisson", 0, "gof_discoveries_poisson"},
        {"zorvstat signtest", 0, "signtest_sleep"},
        {"zorvstat ranksum", 0, "ranksum_toothgrowth"},
        {"zorvstat normality", 0, "normality_precip"},
        {"zorvstat diff --periods 1,12 --exclude-first", 0, "diff_airpassengers"},
        {"zorvstat arma --least-squares", 0, "arma_lakehuron"},
        {"zorvstat forecast --leads 5", 0, "forecast_lakehuron"},
        {"zorvstat kmeans", 0, "kmeans_iris"},
        {"zorvstat pca", 0, "pca_iris"},
        {"zorvstat regress --format csv", 0, "regress_stackloss.csv"},
        {"zorvstat regress @/plantgrowth.csv weight --class group --format csv", 0, "regress_plantgrowth_class.csv"},
        {"zorvstat regress --sample --weight Water.Temp stack.loss Air.Flow --format csv", 0, "regress_weighted.csv"},
        {"zorvstat crosstab wide.csv --wide --format csv", 0, "crosstab_wide.csv"},
        {"zorvstat predict --format csv", 0, "predict_cars.csv"},
        {"zorvstat anova --method bonferroni --confidence 90 --format csv", 0, "anova_plantgrowth_bonferroni.csv"},
        {"zorvstat compare --alpha 0.05 --format csv", 0, "compare_insectsprays.csv"},
        {"zorvstat crosstab --format csv", 0, "crosstab_haireyecolor.csv"},
        {"zorvstat gof --cells 5 --format csv", 0, "gof_precip_cells.csv"},
        {"zorvstat signtest --percentile 1 --format csv", 0, "signtest_sleep_percentile.csv"},
        {"zorvstat ranksum --format csv", 0, "ranksum_toothgrowth.csv"},
        {"zorvstat normality --lilliefors --format csv", 0, "normality_precip_lilliefors.csv"},
        {"zorvstat diff --periods 1,12 --format csv", 0, "diff_airpassengers.csv"},
        {"zorvstat arma --format csv", 0, "arma_lakehuron_moments.csv"},
        {"zorvstat forecast --p 2 --q 0 --leads 3 --confidence 90 --format csv", 0, "forecast_lakehuron_ar2.csv"},
        {"zorvstat kmeans --sample --k 2 --seeds 1,150 Petal.Length Petal.Width --format csv", 0, "kmeans_iris_petals.csv"},
        {"zorvstat pca --covariance --format csv", 0, "pca_iris_covariance.csv"},
        {"zorvstat regress --sample stack.loss nothing", 65, "no column 'nothing'"},
        {"zorvstat regress @/plantgrowth.csv weight group", 65, "column 'group' of"},
        {"zorvstat regress --sample --order 3", 64, "--order must be 1 or 2"},
        {"zorvstat regress --sample --dummy none", 64, "no dummy scheme 'none'; one of:\n  all"},
        {"zorvstat regress --sample --tolerance 2", 5, "zorvs_d_regression"},
        {"zorvstat predict --new no_such_file.csv", 66, "cannot open 'no_such_file.csv'"},
        {"zorvstat predict --new reader.csv", 65, "no column 'speed' in reader.csv"},
        {"zorvstat anova --sample weight nothing", 65, "no column 'nothing'"},
        {"zorvstat anova --method tukey --confidence 99.5", 5, "zorvs_d_anova_oneway"},
        {"zorvstat anova --method newman", 64, "no method 'newman'; one of:\n  tukey"},
        {"zorvstat anova --sample weight group --freq weight", 64, "anova takes no --freq"},
        {"zorvstat crosstab --weight Freq", 64, "crosstab takes no --weight"},
        {"zorvstat compare --alpha 0.5", 5, "zorvs_d_multiple_comparisons"},
        {"zorvstat crosstab @/iris.csv", 64, "name the row and the column class columns"},
        {"zorvstat crosstab reader.csv --wide a", 5, "zorvs_d_contingency_table"},
        {"zorvstat gof --dist cauchy", 64, "no distribution 'cauchy'; one of:\n  normal"},
        {"zorvstat gof --cutpoints 40,30", 5, "zorvs_d_chi_squared_test"},
        {"zorvstat signtest --percentage 1.5", 5, "zorvs_d_sign_test"},
        {"zorvstat ranksum @/plantgrowth.csv", 65, "must hold two groups, not 3"},
        {"zorvstat normality --lilliefors reader.csv a", 4, "zorvs_d_normality_test"},
        {"zorvstat diff reader.csv a", 4, "zorvs_d_difference"},
        {"zorvstat diff --periods 1,12 --orders 1", 64, "--orders must give one order per period"},
        {"zorvstat arma --p -1", 5, "zorvs_d_arma"},
        {"zorvstat arma --no-constant", 64, "--no-constant serves the least-squares fit"},
        {"zorvstat forecast --leads 0", 5, "zorvs_d_arma_forecast"},
        {"zorvstat kmeans --seeds 1,2,151", 64, "--seeds: no row 151"},
        {"zorvstat kmeans --k 1", 5, "zorvs_d_cluster_k_means"},
        {"zorvstat kmeans --k 0", 5, "zorvs_d_cluster_k_means"},
        {"zorvstat pca --sample Species", 65, "column 'Species' of"},
        {"zorvstat pca --sample Sepal.Length", 5, "zorvs_d_principal_components"},
        {"zorvstat predict --confidence 120", 5, "zorvs_d_regression_prediction"},
        {"zorvstat ranksum --fuzz -1", 5, "zorvs_d_wilcoxon_rank_sum"},
        {"zorvstat gof --sample nothing", 65, "no column 'nothing'"},
        {"zorvstat signtest --sample drug2 nothing", 65, "no column 'nothing'"},
    });
}

}  // namespace
}  // namespace zorvs_test
