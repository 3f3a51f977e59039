// output.cpp - the three outputs: the library's matrix printer (text),
// one CSV table of all cells, and JSON.  Each keeps its text until finish().
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "framework.hpp"
#include "zorvstat.h"

namespace zcli {

std::string shortest(double v) {
    if (std::isnan(v)) return "";
    char text[32];
    auto r = std::to_chars(text, text + sizeof text, v);
    return std::string(text, r.ptr);
}

void Output::value(const std::string &title, double v) {
    Matrix m(title, 1, 1);
    m.values[0] = v;
    m.row_labels = {""};
    m.column_labels = {"value"};
    matrix(m);
}

namespace {

std::string exact(double v) {
    if (std::isnan(v)) return "";
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", v);
    return text;
}

std::string row_label(const Matrix &m, std::size_t i) {
    return m.row_labels.empty() ? std::to_string(i + 1) : m.row_labels[i];
}
std::string column_label(const Matrix &m, std::size_t j) {
    return m.column_labels.empty() ? std::to_string(j + 1) : m.column_labels[j];
}

// Text: the library's printer writes into a memory stream set as its output
// unit.
class TextOutput : public BufferedOutput {
public:
    TextOutput() {
        stream_ = open_memstream(&buffer_, &size_);
        if (!stream_) throw Failure(status_software, "cannot open an output buffer");
        zorvs_output_file(ZORVS_SET_OUTPUT_FILE, stream_, 0);
        int blank = 1;   // a missing value prints as blanks
        zorvs_write_options(-4, &blank);
    }
    ~TextOutput() override {
        zorvs_output_file(ZORVS_SET_OUTPUT_FILE, stdout, 0);
        std::fclose(stream_);
        std::free(buffer_);
    }
    void matrix(const Matrix &m) override {
        if (m.n_rows == 0 || m.n_columns == 0) {
            note(m.title + ": (empty)");
            return;
        }
        std::vector<std::string> rows, cols;
        std::vector<char *> row_p, col_p;
        for (std::size_t i = 0; i < m.n_rows; ++i) rows.push_back(row_label(m, i));
        cols.push_back(m.row_head);
        for (std::size_t j = 0; j < m.n_columns; ++j) cols.push_back(column_label(m, j));
        for (auto &s : rows) row_p.push_back(s.data());
        for (auto &s : cols) col_p.push_back(s.data());
        std::vector<double> a = m.values;
        const char *format = m.format.empty() ? nullptr : m.format.c_str();
        if (format)
            zorvs_d_write_matrix(m.title.c_str(), static_cast<int>(m.n_rows), static_cast<int>(m.n_columns),
                                 a.data(), ZORVS_ROW_LABELS, row_p.data(), ZORVS_COL_LABELS, col_p.data(),
                                 ZORVS_WRITE_FORMAT, format, 0);
        else
            zorvs_d_write_matrix(m.title.c_str(), static_cast<int>(m.n_rows), static_cast<int>(m.n_columns),
                                 a.data(), ZORVS_ROW_LABELS, row_p.data(), ZORVS_COL_LABELS, col_p.data(), 0);
        library_check();
    }
    void note(const std::string &line) override { std::fprintf(stream_, "\n%s\n", line.c_str()); }
    bool finish(FILE *f) override {
        // The printer starts each line with its line feed: end the last one.
        if (size_ == 0 || buffer_[size_ - 1] != '\n') std::fputc('\n', stream_);
        std::fflush(stream_);
        return std::fwrite(buffer_, 1, size_, f) == size_ && std::fflush(f) == 0;
    }

private:
    FILE *stream_ = nullptr;
    char *buffer_ = nullptr;
    std::size_t size_ = 0;
};

std::string csv_field(const std::string &s) {
    if (s.find_first_of(",\"\n\r") == std::string::npos) return s;
    std::string q = "\"";
    for (char c : s) {
        if (c == '"') q += '"';
        q += c;
    }
    return q + "\"";
}

class CsvOutput : public BufferedOutput {
public:
    CsvOutput() : text_("table,row,column,value\n") {}
    void matrix(const Matrix &m) override {
        std::string title = csv_field(m.title);
        for (std::size_t i = 0; i < m.n_rows; ++i) {
            std::string row = title + "," + csv_field(row_label(m, i)) + ",";
            for (std::size_t j = 0; j < m.n_columns; ++j)
                text_ += row + csv_field(column_label(m, j)) + "," + exact(m.at(i, j)) + "\n";
        }
    }
    void note(const std::string &) override {}
    bool finish(FILE *f) override {
        return std::fwrite(text_.data(), 1, text_.size(), f) == text_.size() && std::fflush(f) == 0;
    }

private:
    std::string text_;
};

std::string json_string(const std::string &s) {
    std::string q = "\"";
    for (unsigned char c : s) {
        if (c == '"' || c == '\\') {
            q += '\\';
            q += static_cast<char>(c);
        } else if (c < 0x20) {
            char esc[8];
            std::snprintf(esc, sizeof esc, "\\u%04x", c);
            q += esc;
        } else {
            q += static_cast<char>(c);
        }
    }
    return q + "\"";
}

std::string json_number(double v) {
    if (std::isnan(v)) return "null";
    if (std::isinf(v)) return v > 0 ? "1e999" : "-1e999";
    return exact(v);
}

std::string json_list(const std::vector<std::string> &items) {
    std::string s = "[";
    for (std::size_t k = 0; k < items.size(); ++k) s += (k ? ", " : "") + json_string(items[k]);
    return s + "]";
}

class JsonOutput : public BufferedOutput {
public:
    JsonOutput(const Context &ctx) : ctx_(ctx) {}
    void matrix(const Matrix &m) override {
        std::vector<std::string> rows, cols;
        for (std::size_t i = 0; i < m.n_rows; ++i) rows.push_back(row_label(m, i));
        for (std::size_t j = 0; j < m.n_columns; ++j) cols.push_back(column_label(m, j));
        std::string t = "    {\"title\": " + json_string(m.title) + ",\n     \"rows\": " + json_list(rows) +
                        ",\n     \"columns\": " + json_list(cols) + ",\n     \"values\": [";
        for (std::size_t i = 0; i < m.n_rows; ++i) {
            t += i ? ",\n       [" : "[";
            for (std::size_t j = 0; j < m.n_columns; ++j) t += (j ? ", " : "") + json_number(m.at(i, j));
            t += "]";
        }
        tables_.push_back(t + "]}");
    }
    void note(const std::string &line) override { notes_.push_back(line); }
    bool finish(FILE *f) override {
        std::string t = "{\"command\": " + json_string(ctx_.command.name) +
                         ",\n \"source\": " + json_string(ctx_.data.source()) + ",\n \"tables\": [\n";
        for (std::size_t k = 0; k < tables_.size(); ++k) t += tables_[k] + (k + 1 < tables_.size() ? ",\n" : "\n");
        t += " ],\n \"notes\": " + json_list(notes_) + ",\n \"messages\": " + json_list(library_messages()) + "}\n";
        return std::fwrite(t.data(), 1, t.size(), f) == t.size() && std::fflush(f) == 0;
    }

private:
    const Context &ctx_;
    std::vector<std::string> tables_, notes_;
};

}  // namespace

std::unique_ptr<BufferedOutput> make_output(const Context &ctx) {
    switch (ctx.common.format) {
        case CommonOptions::Format::csv: return std::make_unique<CsvOutput>();
        case CommonOptions::Format::json: return std::make_unique<JsonOutput>(ctx);
        default: return std::make_unique<TextOutput>();
    }
}

}  // namespace zcli
