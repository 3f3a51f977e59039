// main.cpp - the zorvstat program: parse the command line, read the data,
// run the command, and write its output only when it succeeded.
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "command.hpp"
#include "framework.hpp"
#include "zorvstat.h"

namespace zcli {
namespace {

const char *const status_table =
    "Exit status:\n"
    "   0  success (notes and warnings of the library may still be on standard error)\n"
    "   4  the library stopped the analysis with a FATAL message\n"
    "   5  the library stopped the analysis with a TERMINAL message\n"
    "   7  the library stopped the analysis with a FATAL_IMMEDIATE message\n"
    "   8  the library reported an INTERNAL error\n"
    "  64  usage: unknown command or option, bad option value, missing operand\n"
    "  65  data: unknown column, a non-number where numbers are needed, malformed CSV\n"
    "  66  the input file cannot be opened or read\n"
    "  70  a fault of the program itself (out of memory)\n"
    "  74  the output cannot be written\n"
    "On any status but 0 nothing is written to standard output.\n";

const std::vector<OptionForm> &common_options(bool reads_data) {
    static const std::vector<OptionForm> data_options = {
        {"file", "FILE", "the data: CSV or TSV with a header; '-' reads standard input"},
        {"sample", "", "use the command's sample data set (all words are then operands)"},
        {"sep", "C", "field separator: one character, or 'tab' (default ',', tab for .tsv/.tab)"},
        {"tsv", "", "fields separated by tabs"},
        {"listwise", "", "leave out a row with a missing value in any column used"},
        {"freq", "COL", "frequencies of the rows (each row counts that many times)"},
        {"weight", "COL", "weights of the rows"},
        {"format", "F", "text (default), csv (table,row,column,value; %.17g) or json"},
        {"title", "T", "title of the first table"},
        {"help", "", "this help"},
    };
    static const std::vector<OptionForm> plain_options = {
        {"format", "F", "text (default), csv (table,row,column,value; %.17g) or json"},
        {"title", "T", "title of the first table"},
        {"help", "", "this help"},
    };
    return reads_data ? data_options : plain_options;
}

void print_options(FILE *f, const std::vector<OptionForm> &options) {
    for (const OptionForm &o : options) {
        std::string head = "  --" + o.name + (o.value_name.empty() ? "" : " " + o.value_name);
        std::fprintf(f, "%-22s %s\n", head.c_str(), o.help.c_str());
    }
}

void program_help(FILE *f) {
    std::fprintf(f,
                 "Usage: zorvstat COMMAND [OPTIONS] [FILE] [OPERANDS...]\n"
                 "Statistics of a CSV or TSV file with a header (or standard input, '-'),\n"
                 "through libzorvstat.  Without a file each command runs on its sample.\n\n"
                 "Commands:\n");
    for (const Command *c : registry()) std::fprintf(f, "  %-10s %s\n", c->name, c->summary);
    std::fprintf(f,
                 "\n'zorvstat COMMAND --help' shows a command's operands and options.\n"
                 "Empty fields, NA, NaN, N/A, NULL and '.' are missing values.\n\n%s",
                 status_table);
}

void command_help(FILE *f, const Command &c) {
    std::fprintf(f, "Usage: zorvstat %s [OPTIONS]%s %s\n%s.\n", c.name, c.sample ? " [FILE]" : "", c.operands,
                 c.summary);
    if (c.description && *c.description) std::fprintf(f, "\n%s\n", c.description);
    if (c.sample) std::fprintf(f, "\nSample: %s\n", c.sample);
    std::fprintf(f, "\nOptions:\n");
    print_options(f, c.options);
    print_options(f, common_options(c.sample != nullptr));
    std::fprintf(f, "\n%s", status_table);
}

// A word that reads as a number is an operand even when it starts with '-'.
bool looks_numeric(const char *s) {
    char *end = nullptr;
    std::strtod(s, &end);
    return end != s && *end == '\0';
}

const OptionForm *find_option(const std::vector<OptionForm> &options, std::string_view name) {
    for (const OptionForm &o : options)
        if (o.name == name) return &o;
    return nullptr;
}

// The command line after the command's name into ctx.args and ctx.common.
// Returns false when help was asked for.
bool parse(Context &ctx, int argc, char **argv) {
    const Command &c = ctx.command;
    bool reads_data = c.sample != nullptr;
    bool options_done = false;
    for (int i = 0; i < argc; ++i) {
        std::string word = argv[i];
        if (options_done || word.size() < 2 || word[0] != '-' || looks_numeric(word.c_str())) {
            ctx.args.operands_.push_back(word);
            continue;
        }
        if (word == "--") {
            options_done = true;
            continue;
        }
        if (word == "-h") return false;
        if (word == "-f" || word == "-F") word = word == "-f" ? "--file" : "--format";
        if (word.compare(0, 2, "--") != 0) usage_error("unknown option '" + word + "'");
        std::string name = word.substr(2), value;
        bool has_value = false;
        if (std::size_t eq = name.find('='); eq != std::string::npos) {
            value = name.substr(eq + 1);
            name.resize(eq);
            has_value = true;
        }
        const OptionForm *option = find_option(c.options, name);
        if (!option) option = find_option(common_options(reads_data), name);
        if (!option) usage_error("unknown option '--" + name + "' (see 'zorvstat " + c.name + " --help')");
        if (name == "help") return false;
        if (option->value_name.empty()) {
            if (has_value) usage_error("option '--" + name + "' takes no value");
        } else if (!has_value) {
            if (i + 1 >= argc) usage_error("option '--" + name + "' needs a value " + option->value_name);
            value = argv[++i];
        }
        ctx.args.options_[name] = value;
    }

    CommonOptions &common = ctx.common;
    if (auto f = ctx.args.value("format")) {
        if (*f == "text") common.format = CommonOptions::Format::text;
        else if (*f == "csv") common.format = CommonOptions::Format::csv;
        else if (*f == "json") common.format = CommonOptions::Format::json;
        else usage_error("--format must be text, csv or json, not '" + *f + "'");
    }
    common.title = ctx.args.value("title").value_or("");
    if (!reads_data) return true;
    if (auto f = ctx.args.value("file")) {
        common.file = *f;
    } else if (!ctx.args.has("sample") && !ctx.args.operands_.empty()) {
        common.file = ctx.args.operands_.front();
        ctx.args.operands_.erase(ctx.args.operands_.begin());
    }
    if (ctx.args.has("tsv")) common.separator = '\t';
    if (auto s = ctx.args.value("sep")) {
        if (*s == "tab" || *s == "\\t") common.separator = '\t';
        else if (s->size() == 1 && (*s)[0] != '"' && (*s)[0] != '\n' && (*s)[0] != '\r') common.separator = (*s)[0];
        else usage_error("--sep takes one character or 'tab', not '" + *s + "'");
    }
    common.listwise = ctx.args.has("listwise");
    common.freq_column = ctx.args.value("freq").value_or("");
    common.weight_column = ctx.args.value("weight").value_or("");
    return true;
}

int run(int argc, char **argv) {
    if (argc < 2) {
        program_help(stderr);
        return status_usage;
    }
    std::string name = argv[1];
    if (name == "--help" || name == "-h" || name == "help") {
        program_help(stdout);
        return std::fflush(stdout) == 0 ? status_ok : status_output;
    }
    if (name == "--version") {
        char *v = zorvs_version(ZORVS_LIBRARY_VERSION);
        std::printf("zorvstat (libzorvstat %s)\n", v ? v : "?");
        std::free(v);
        return std::fflush(stdout) == 0 ? status_ok : status_output;
    }
    const Command *command = nullptr;
    for (const Command *c : registry())
        if (name == c->name) command = c;
    if (!command) {
        std::fprintf(stderr, "zorvstat: unknown command '%s' (see 'zorvstat --help')\n", name.c_str());
        return status_usage;
    }

    Context ctx(*command);
    try {
        if (!parse(ctx, argc - 2, argv + 2)) {
            command_help(stdout, *command);
            return std::fflush(stdout) == 0 ? status_ok : status_output;
        }
        library_setup();
        if (command->sample) {
            const CommonOptions &common = ctx.common;
            bool progress = isatty(STDERR_FILENO) != 0;
            if (common.file == "-") {
                ctx.data.read_stream(STDIN_FILENO, "standard input", common.separator ? common.separator : ',',
                                     progress);
            } else {
                std::string path = common.file.empty() ? sample_path(command->sample) : common.file;
                char sep = common.separator;
                if (!sep) {
                    bool tab = path.size() > 4 && (path.compare(path.size() - 4, 4, ".tsv") == 0 ||
                                                   path.compare(path.size() - 4, 4, ".tab") == 0);
                    sep = tab ? '\t' : ',';
                }
                ctx.data.read_file(path, sep, progress, common.file.empty() ? command->sample : "");
            }
        }
        auto out = make_output(ctx);
        ctx.out = out.get();
        int status = command->run(ctx);
        if (status != status_ok) return status;
        if (!ctx.common.freq_column.empty() && !ctx.asked_frequencies)
            usage_error(std::string(command->name) + " takes no --freq");
        if (!ctx.common.weight_column.empty() && !ctx.asked_weights)
            usage_error(std::string(command->name) + " takes no --weight");
        if (out->finish(stdout)) return status_ok;
        std::fprintf(stderr, "zorvstat %s: cannot write the output: %s\n", command->name, std::strerror(errno));
        return status_output;
    } catch (const Failure &f) {
        library_flush();
        if (*f.what()) std::fprintf(stderr, "zorvstat %s: %s\n", command->name, f.what());
        return f.status;
    } catch (const std::bad_alloc &) {
        library_flush();
        std::fprintf(stderr, "zorvstat %s: out of memory\n", command->name);
        return status_software;
    } catch (const std::exception &e) {
        library_flush();
        std::fprintf(stderr, "zorvstat %s: %s\n", command->name, e.what());
        return status_software;
    }
}

}  // namespace
}  // namespace zcli

int main(int argc, char **argv) { return zcli::run(argc, argv); }
