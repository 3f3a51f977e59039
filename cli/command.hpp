// command.hpp - what a command of the zorvstat program sees: its options,
// the data file read into columns, the output sink and the error path.
//
// A command is one function `int run(Context &)` and one `Command`
// descriptor in a file of its own under cli/commands/.  The framework parses
// the command line, reads the data (a CSV or TSV file with a header, or the
// command's sample), runs the command, and writes what the command put into
// the output only when the command returned 0: a failed run shows its
// messages on standard error and no output at all.
//
// Errors leave a command by exception: `Failure` with an exit status and a
// message.  Library routines are C: call them plainly, then `library_check()`
// (or use `checked(...)`), which passes their messages on to standard error
// and throws `Failure` with the message type as status when the call failed.
// No exception may be thrown from inside a function the library calls back
// (a distribution function handed to a test, for instance).
#ifndef ZORVSTAT_CLI_COMMAND_HPP
#define ZORVSTAT_CLI_COMMAND_HPP

#include <cstddef>
#include <cstdlib>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zcli {

// ---------------------------------------------------------------- exit status
// The statuses the program leaves with; `zorvstat --help` prints this table.
enum Status : int {
    status_ok = 0,
    status_library_fatal = 4,       // a FATAL message of the library (type 4)
    status_library_terminal = 5,    // a TERMINAL message (type 5)
    status_library_immediate = 7,   // a FATAL_IMMEDIATE message (type 7)
    status_library_internal = 8,    // an INTERNAL message (type 8)
    status_usage = 64,              // bad command line: unknown command or option, bad value, missing operand
    status_data = 65,               // bad data: unknown column, non-number, malformed CSV, too few values
    status_no_input = 66,           // the input file cannot be opened or read
    status_software = 70,           // a fault of the program itself (out of memory and the like)
    status_output = 74,             // the output cannot be written
};

// The error a command (or the framework) raises.  `message` is printed as
// "zorvstat <command>: <message>" unless it is empty (library failures have
// printed their own message already).
struct Failure : std::runtime_error {
    int status;
    Failure(int status_, const std::string &message) : std::runtime_error(message), status(status_) {}
};

// Shorthands.
[[noreturn]] void usage_error(const std::string &message);   // status_usage
[[noreturn]] void data_error(const std::string &message);    // status_data

// The entry of `table` (entries with a `name`) named `given`; otherwise a
// usage error listing the names, each followed by detail(entry) if given.
template <class Entry, std::size_t N>
const Entry &choose(const Entry (&table)[N], const std::string &given, const std::string &what,
                    std::string (*detail)(const Entry &) = nullptr) {
    std::string names;
    for (const Entry &e : table) {
        if (given == e.name) return e;
        names += std::string("\n  ") + e.name + (detail ? " " + detail(e) : std::string());
    }
    usage_error((given.empty() ? "name a " + what : "no " + what + " '" + given + "'") + "; one of:" + names);
}

// ---------------------------------------------------------------- options
// One option of a command, beyond the common ones.  Written `--name VALUE`,
// `--name=VALUE`, or `--name` for a flag.
struct OptionForm {
    std::string name;        // without the dashes: "alpha"
    std::string value_name;  // "" for a flag, else how the help names its value: "P"
    std::string help;        // one line
};

// The parsed command line.
class Arguments {
public:
    // A flag or option given at all.
    bool has(std::string_view name) const;
    // The option's value, if given (the last one when given twice).
    std::optional<std::string> value(std::string_view name) const;
    // The value read as a number: absent gives `fallback`; not a number (or,
    // for integer(), not a whole number in int range) is a usage error
    // naming the option.
    double real(std::string_view name, double fallback) const;
    int integer(std::string_view name, int fallback) const;
    // The operands: the words that are not options, after the file when the
    // file is given as the first of them.
    const std::vector<std::string> &operands() const { return operands_; }
    // An operand read as a number (usage error naming `what` otherwise).
    static double real_operand(const std::string &text, std::string_view what);
    static int integer_operand(const std::string &text, std::string_view what);

    // Filled by the parser.
    std::map<std::string, std::string, std::less<>> options_;
    std::vector<std::string> operands_;
};

// The options every command that reads data has.
struct CommonOptions {
    std::string file;              // "" for the sample, "-" for standard input
    char separator = 0;            // 0: ',' unless the file name ends in .tsv/.tab (then tab)
    enum class Format { text, csv, json } format = Format::text;
    bool listwise = false;         // leave out a row with a missing value in any column used
    std::string freq_column;       // --freq COL: frequencies (repeat counts) of the rows
    std::string weight_column;     // --weight COL: weights of the rows
    std::string title;             // --title: replaces the first table's title
};

// ---------------------------------------------------------------- data
// One column of the input.  A column is numeric when every field that is
// not missing (empty, NA, NaN, nan, N/A, NULL, null or ".") reads as a
// number; otherwise it is
// a text column (class labels), and its first field that is not a number is
// remembered so a numeric use can say where it is.
struct Column {
    std::string name;
    bool numeric = true;
    const double *values = nullptr;      // numeric: `rows` values, NaN for missing
    std::vector<std::string> text;       // text column: every field as read ("" for missing)
    std::size_t first_text_line = 0;     // text column: line of its first non-number
    std::string first_text;              // ... and that field
};

class Data {
public:
    Data();
    ~Data();
    Data(const Data &) = delete;
    Data &operator=(const Data &) = delete;

    std::size_t rows() const { return rows_; }
    // The row count as the int a library routine takes (data error beyond).
    int int_rows() const;
    std::size_t columns() const { return columns_.size(); }
    const Column &column(std::size_t index) const { return columns_[index]; }
    const std::string &source() const { return source_; }   // file name as given, or the sample's

    // A column by name, or by number from 1 ("3"); a name wins over a
    // number.  Unknown: data error naming the column and listing the names.
    std::size_t find(std::string_view selection) const;
    // The values of a numeric column.  A text column is a data error saying
    // which line holds the first field that is not a number.
    const double *numbers(std::size_t index) const;
    // The fields of any column as labels: a text column's own texts, a
    // numeric column's values in their shortest exact form ("" for missing).
    std::vector<std::string> labels(std::size_t index) const;
    // The distinct labels of a column in order of first appearance, and
    // each row's place among them (-1 for a missing field): the groups of a
    // class column, for splitting samples or building a table.
    struct Groups {
        std::vector<std::string> levels;
        std::vector<int> of_row;
    };
    Groups groups(std::size_t index) const;
    // The numeric columns, in file order, less those named in `except`
    // (the frequency and weight columns, say): the default selection.
    std::vector<std::size_t> numeric_columns(const std::vector<std::size_t> &except = {}) const;

    // Reading; the framework calls these.  `progress` draws a progress line
    // on standard error (it is set when standard error is a terminal).
    void read_file(const std::string &path, char separator, bool progress, const std::string &shown_as = "");
    void read_stream(int fd, const std::string &name, char separator, bool progress);

private:
    friend struct DataReader;
    std::string source_;
    std::size_t rows_ = 0;
    std::vector<Column> columns_;
    std::vector<struct ColumnBuffer *> buffers_;   // storage of the numeric columns
};

// ---------------------------------------------------------------- output
// A titled matrix of reals, row-major, with a label per row and per column.
// Whole numbers (counts, indices) are reals here too: they print without
// decimals in every format.
struct Matrix {
    std::string title;
    std::size_t n_rows = 0, n_columns = 0;
    std::vector<double> values;              // n_rows * n_columns, NaN shows as missing
    std::vector<std::string> row_labels;     // empty: rows numbered from 1
    std::vector<std::string> column_labels;  // empty: columns numbered from 1
    std::string row_head;                    // head of the row-label column ("" allowed)
    std::string format;                      // printer format for text, "" for the default

    Matrix() = default;
    Matrix(std::string title_, std::size_t rows, std::size_t columns)
        : title(std::move(title_)), n_rows(rows), n_columns(columns), values(rows * columns) {}
    double &at(std::size_t i, std::size_t j) { return values[i * n_columns + j]; }
    double at(std::size_t i, std::size_t j) const { return values[i * n_columns + j]; }
};

// Where a command puts its results.  Nothing reaches standard output until
// the command has returned 0.
//   text: each matrix through the library's matrix printer, a note as a line;
//   csv:  one table of all cells, header "table,row,column,value", each value
//         in %.17g (exact), missing as an empty field; notes are left out;
//   json: {"command": ..., "source": ..., "tables": [{"title", "rows",
//         "columns", "values": [[...]]}], "notes": [...], "messages": [...]}
//         with null for missing.
class Output {
public:
    virtual ~Output() = default;
    virtual void matrix(const Matrix &m) = 0;
    // A single value as a 1 x 1 table.
    void value(const std::string &title, double v);
    // A line of text for people (text format), a note (json).
    virtual void note(const std::string &line) = 0;
};

// The shortest text that reads back to the same double ("" for NaN): for
// numbers in labels and notes.
std::string shortest(double v);

// ---------------------------------------------------------------- the library
// After a library call: pass its messages on to standard error (the library
// prints into a buffer of the program) and throw Failure(status = message
// type, "") when the call ended with a type 4, 5, 7 or 8 message.  Warnings
// and notes leave the run going.
void library_check();

// `checked(zorvs_d_...(args))`: the call, then library_check(), then its value.
template <class R>
R checked(R result) {
    library_check();
    return result;
}

// A block the library malloc'ed, freed at the end of the scope.
template <class T>
struct Owned {
    T *p = nullptr;
    explicit Owned(T *p_ = nullptr) : p(p_) {}
    ~Owned() { std::free(p); }
    Owned(const Owned &) = delete;
    Owned &operator=(const Owned &) = delete;
    T *get() const { return p; }
    T &operator[](std::size_t i) const { return p[i]; }
};

// ---------------------------------------------------------------- a command
struct Command;

// Everything a command's run function sees.
struct Context {
    const Command &command;
    Arguments args;
    CommonOptions common;
    Data data;                 // read before run (empty for commands without data)
    Output *out = nullptr;

    // The --freq and --weight columns (null when not given), as numeric
    // columns of the data.  A command that never asks for them refuses
    // them: the run ends with a usage error instead of ignoring them.
    const double *frequencies() const;
    const double *weights() const;
    mutable bool asked_frequencies = false, asked_weights = false;
    // The columns named by `selections` (the operands, usually); none named:
    // every numeric column but the frequency and weight columns.
    std::vector<std::size_t> select(const std::vector<std::string> &selections) const;
    // The values of `columns` as a row-major matrix, rows * columns.size();
    // with --listwise only the rows where every one of them (and the
    // frequency and weight, if given) is present, and then `kept` (if not
    // null) holds the row numbers kept (from 0).
    std::vector<double> matrix(const std::vector<std::size_t> &columns,
                               std::vector<std::size_t> *kept = nullptr) const;
    // The first table's title: --title if given, else `fallback`.
    std::string title(const std::string &fallback) const;

    Context(const Command &c) : command(c) {}
};

struct Command {
    const char *name;
    const char *summary;       // one line for the command list
    const char *operands;      // the operands in the usage line: "[COLUMN...]"
    const char *description;   // a few lines for `zorvstat NAME --help`
    const char *sample;        // the sample file in the data folder; null: reads no data
    std::vector<OptionForm> options;
    int (*run)(Context &);
};

// Every command, in the order of `zorvstat --help`.
const std::vector<const Command *> &registry();

// The descriptors, one per file cli/commands/<name>.cpp (defined there as
// `const Command <name>_command{...};`).
extern const Command describe_command, table_command, ttest_command, cor_command, rank_command,
    regress_command, predict_command, anova_command, compare_command, crosstab_command, gof_command,
    signtest_command, ranksum_command, normality_command, diff_command, arma_command, forecast_command,
    kmeans_command, pca_command, dist_command, random_command;

// The data folder: $ZORVSTAT_DATA, else share/zorvstat beside the installed
// program, else the source tree's cli/data.
std::string sample_path(const std::string &file);

}  // namespace zcli

#endif
