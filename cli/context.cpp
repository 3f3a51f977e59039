// context.cpp - the option values, the column selection and the sample
// folder, as commands see them.
#include <unistd.h>

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <string>
#include <sys/stat.h>

#include "command.hpp"

#ifndef ZORVSTAT_SOURCE_DATA
#define ZORVSTAT_SOURCE_DATA ""
#endif

namespace zcli {

bool Arguments::has(std::string_view name) const { return options_.find(name) != options_.end(); }

std::optional<std::string> Arguments::value(std::string_view name) const {
    auto it = options_.find(name);
    if (it == options_.end()) return std::nullopt;
    return it->second;
}

double Arguments::real_operand(const std::string &text, std::string_view what) {
    const char *p = text.c_str();
    char *end = nullptr;
    double v = std::strtod(p, &end);
    if (text.empty() || *end != '\0') usage_error(std::string(what) + " must be a number, not '" + text + "'");
    return v;
}

int Arguments::integer_operand(const std::string &text, std::string_view what) {
    double v = real_operand(text, what);
    if (!(v == std::floor(v)) || v < INT_MIN || v > INT_MAX)
        usage_error(std::string(what) + " must be a whole number, not '" + text + "'");
    return static_cast<int>(v);
}

double Arguments::real(std::string_view name, double fallback) const {
    auto v = value(name);
    return v ? real_operand(*v, "--" + std::string(name)) : fallback;
}

int Arguments::integer(std::string_view name, int fallback) const {
    auto v = value(name);
    return v ? integer_operand(*v, "--" + std::string(name)) : fallback;
}

const double *Context::frequencies() const {
    asked_frequencies = true;
    return common.freq_column.empty() ? nullptr : data.numbers(data.find(common.freq_column));
}

const double *Context::weights() const {
    asked_weights = true;
    return common.weight_column.empty() ? nullptr : data.numbers(data.find(common.weight_column));
}

std::vector<std::size_t> Context::select(const std::vector<std::string> &selections) const {
    std::vector<std::size_t> out;
    if (selections.empty()) {
        std::vector<std::size_t> except;
        if (!common.freq_column.empty()) except.push_back(data.find(common.freq_column));
        if (!common.weight_column.empty()) except.push_back(data.find(common.weight_column));
        out = data.numeric_columns(except);
        if (out.empty()) data_error(data.source() + " has no numeric column to analyse");
        return out;
    }
    for (const std::string &s : selections) out.push_back(data.find(s));
    return out;
}

std::vector<double> Context::matrix(const std::vector<std::size_t> &columns, std::vector<std::size_t> *kept) const {
    std::vector<const double *> x;
    for (std::size_t j : columns) x.push_back(data.numbers(j));
    const double *f = frequencies(), *w = weights();
    std::size_t n = data.rows(), p = columns.size();
    std::vector<double> out;
    out.reserve(n * p);
    if (kept) kept->clear();
    for (std::size_t i = 0; i < n; ++i) {
        if (common.listwise) {
            bool complete = !(f && std::isnan(f[i])) && !(w && std::isnan(w[i]));
            for (std::size_t j = 0; j < p && complete; ++j) complete = !std::isnan(x[j][i]);
            if (!complete) continue;
        }
        for (std::size_t j = 0; j < p; ++j) out.push_back(x[j][i]);
        if (kept) kept->push_back(i);
    }
    return out;
}

std::string Context::title(const std::string &fallback) const { return common.title.empty() ? fallback : common.title; }

namespace {
bool is_file(const std::string &path) {
    struct stat st;
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}
}  // namespace

std::string sample_path(const std::string &file) {
    if (const char *dir = std::getenv("ZORVSTAT_DATA"); dir && *dir) return std::string(dir) + "/" + file;
    char self[4096];
    ssize_t n = ::readlink("/proc/self/exe", self, sizeof self - 1);
    if (n > 0) {
        std::string exe(self, static_cast<std::size_t>(n));
        std::string bin = exe.substr(0, exe.rfind('/'));
        std::string installed = bin.substr(0, bin.rfind('/')) + "/share/zorvstat/" + file;
        if (is_file(installed)) return installed;
    }
    return std::string(ZORVSTAT_SOURCE_DATA) + "/" + file;
}

}  // namespace zcli
