// cli.hpp - running the installed zorvstat program in tests (the cli test
// program only: ZORVSTAT_PROGRAM and ZORVSTAT_SAMPLES come from its build),
// and the cells of its --format csv output against tables the library gives.
#ifndef ZORVS_TEST_CLI_HPP
#define ZORVS_TEST_CLI_HPP

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/tables.hpp"

namespace zorvs_test {

inline const std::string data_dir = std::string(ZORVS_TEST_DATA_DIR) + "/cli";

struct Outcome {
    int status;
    std::string out, err;
};

// The program with `args` ("@/" stands for the samples' folder), in the
// folder of the test files, standard input from `input` (a file there) or
// empty, standard output to `out_to` or captured.
inline Outcome zorvstat(std::string args, const std::string &input = "", const std::string &out_to = "") {
    for (std::size_t at; (at = args.find("@/")) != std::string::npos;)
        args.replace(at, 2, std::string(ZORVSTAT_SAMPLES) + "/");
    std::string environment;   // leading NAME=VALUE words
    while (args.find('=') < args.find(' ') && args.find('=') != std::string::npos) {
        environment += args.substr(0, args.find(' ') + 1);
        args.erase(0, args.find(' ') + 1);
    }
    std::string scratch = ::testing::TempDir() + "zorvstat_" + std::to_string(::getpid());
    std::string command = "cd '" + data_dir + "' && env -u ZORVSTAT_DATA -u ZORVSERRPATH " + environment + "'" ZORVSTAT_PROGRAM "' " +
                          args + " < " + (input.empty() ? "/dev/null" : "'" + input + "'") + " > " +
                          (out_to.empty() ? scratch + ".out" : out_to) + " 2> " + scratch + ".err";
    int rc = std::system(command.c_str());
    Outcome r{WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, out_to.empty() ? read_all(scratch + ".out") : "",
          read_all(scratch + ".err")};
    std::remove((scratch + ".out").c_str());
    std::remove((scratch + ".err").c_str());
    return r;
}

// A cell of --format csv output: (table, row, column) -> value text.
using Cells = std::map<std::array<std::string, 3>, std::string>;

inline Cells parse_csv(const std::string &text) {
    Cells cells;
    std::vector<std::string> fields(1);
    bool quoted = false, header = true;
    for (std::size_t k = 0; k < text.size(); ++k) {
        char c = text[k];
        if (quoted) {
            if (c != '"') fields.back() += c;
            else if (k + 1 < text.size() && text[k + 1] == '"') fields.back() += text[++k];
            else quoted = false;
        } else if (c == '"') {
            quoted = true;
        } else if (c == ',') {
            fields.emplace_back();
        } else if (c == '\n') {
            EXPECT_EQ(fields.size(), 4u);
            if (!header && fields.size() == 4) cells[{fields[0], fields[1], fields[2]}] = fields[3];
            header = false;
            fields.assign(1, "");
        } else {
            fields.back() += c;
        }
    }
    return cells;
}

// The cells the library gives: a table of `rows` x `columns` values.
inline void add_table(Cells &cells, const std::string &title, const std::vector<std::string> &row_labels,
               const std::vector<std::string> &column_labels, const double *values) {
    for (std::size_t i = 0; i < row_labels.size(); ++i)
        for (std::size_t j = 0; j < column_labels.size(); ++j) {
            double v = values[i * column_labels.size() + j];
            char text[40] = "";
            if (!std::isnan(v)) std::snprintf(text, sizeof text, "%.17g", v);
            cells[{title, row_labels[i], column_labels[j]}] = text;
        }
}

// The rows of a sample (header left out) as fields, quotes removed; the
// samples quote no comma.
inline std::vector<std::vector<std::string>> sample_fields(const std::string &file) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream in(read_all(std::string(ZORVSTAT_SAMPLES) + "/" + file));
    std::string line;
    std::getline(in, line);
    while (std::getline(in, line)) {
        rows.push_back(split(line, ','));
        for (std::string &f : rows.back())
            if (f.size() >= 2 && f.front() == '"') f = f.substr(1, f.size() - 2);
    }
    return rows;
}
// Every cell of `expected` in the csv output `text`, with the same value text.
inline void expect_cells(const std::string &text, const Cells &expected) {
    Cells got = parse_csv(text);
    for (const auto &[key, value] : expected) {
        auto it = got.find(key);
        ASSERT_NE(it, got.end()) << key[0] << " / " << key[1] << " / " << key[2];
        EXPECT_EQ(it->second, value) << key[0] << " / " << key[1] << " / " << key[2];
    }
}

// A sample's column as numbers.
inline std::vector<double> sample_column(const std::string &file, int column) {
    std::istringstream in(read_all(std::string(ZORVSTAT_SAMPLES) + "/" + file));
    std::string line;
    std::getline(in, line);
    std::vector<double> v;
    while (std::getline(in, line)) v.push_back(std::strtod(split(line, ',')[column].c_str(), nullptr));
    return v;
}

}  // namespace zorvs_test

#endif
