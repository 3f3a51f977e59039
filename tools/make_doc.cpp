// make_doc.cpp - fills the reference manual's Markdown pages with the parts
// that must follow the sources, and checks that the manual is complete.
//
//   zorvs_make_doc expand ROOT OUT    expand doc/*.md of ROOT into OUT
//   zorvs_make_doc check ROOT SYMS    check the pages against the exported
//                                     symbols listed one a line in SYMS
//
// A page is a Markdown file of doc/intro/ or doc/routines/ whose head may say,
// in HTML comments that pandoc drops,
//   <!-- routines: regression regression_summary -->   base names it documents
//   <!-- sources: lib/stat/regress/regression.cpp lib/stat/regress -->
//   <!-- section: 1 -->                                 man section (default 3,
//                                                       7 for doc/intro pages)
// and whose text may hold these lines, each replaced by generated Markdown:
//   @@synopsis@@     the prototypes of both twins (and i twins) with their
//                    comments, from include/zorvstat.h
//   @@messages@@     every (type, code) that the sources raise, directly or
//                    through the library's shared helpers, with the name and
//                    text from lib/frame/zorvs_e.msg
//   @@example NAME@@ doc/examples/NAME.c and its output doc/examples/NAME.out
//   @@keywords@@     the keyword values of the header's enumeration
//   @@error_types@@  the error types of the header
//   @@internals@@    the exported workers that the public header leaves out
//   @@catalogue@@    every message of the catalogue with the pages raising it
//
// A base name NAME stands for zorvs_f_NAME, zorvs_d_NAME, zorvs_i_NAME,
// zorvs_NAME and zorvs_dNAME.
//
// The raise scan: the sources are cut into function bodies (a name, its
// parenthesised arguments, then a brace block), each body yields the
// literal (type, code) pairs of zorvs_ermes(...) and raise...(...) and the
// names that it calls.  The messages of a page are those its own files raise
// plus, transitively, those of every library function they call by name,
// except the public routines of the header (a public routine called inside
// another one reports on its own page) and the error system's services of
// lib/frame/services.h.  A name defined in several files
// counts all its definitions, so a list may hold a message that one of the
// same-named helpers raises and the other does not; none is left out.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::string read_file(const fs::path &p) {
    std::ifstream in(p, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + p.string());
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

void write_file(const fs::path &p, const std::string &text) {
    fs::create_directories(p.parent_path());
    std::ofstream out(p, std::ios::binary);
    out << text;
    if (!out) throw std::runtime_error("cannot write " + p.string());
}

std::string trim(const std::string &s) {
    auto b = s.find_first_not_of(" \t\r\n");
    if (b == std::string::npos) return "";
    auto e = s.find_last_not_of(" \t\r\n");
    return s.substr(b, e - b + 1);
}

std::vector<std::string> words(const std::string &s) {
    std::istringstream in(s);
    std::vector<std::string> out;
    for (std::string w; in >> w;) out.push_back(w);
    return out;
}

// ---------------------------------------------------------------------------
// The catalogue: code -> name and text.
struct Message {
    std::string name, text;
};

std::map<long, Message> read_catalogue(const fs::path &root) {
    std::map<long, Message> out;
    std::istringstream in(read_file(root / "lib/frame/zorvs_e.msg"));
    long current = -1;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (line[0] != ' ' && line[0] != '\t') {
            auto w = words(line);
            if (w.size() >= 2) {
                current = std::stol(w[0]);
                out[current].name = w[1];
            }
        } else if (current >= 0) {
            std::string &t = out[current].text;
            t += (t.empty() ? "" : " ") + trim(line);
        }
    }
    return out;
}

// A template as the reader sees it: %(i1) and %(r2%g) become <i1> and <r2>,
// %/ a line break.
std::string readable(const std::string &text) {
    static const std::regex slot(R"(%\((\w\d)[^)]*\))");
    std::string t = std::regex_replace(text, slot, "<$1>");
    t = std::regex_replace(t, std::regex("%/"), " / ");
    std::string out;
    for (char c : t) {
        if (c == '|') out += "\\|";
        else if (c == '<') out += "&lt;";
        else if (c == '>') out += "&gt;";
        else if (c == '*' || c == '_' || c == '`') out += std::string("\\") + c;
        else out += c;
    }
    return out;
}

// ---------------------------------------------------------------------------
// The public header: prototypes with their comments, keywords, error types.
struct Prototype {
    std::string name, text, comment;
};

struct Header {
    std::vector<Prototype> prototypes;
    std::vector<std::pair<std::string, std::string>> keywords, error_types;
    std::map<std::string, std::string> records;  // typedef name -> text
};

Header read_header(const fs::path &root) {
    Header h;
    std::istringstream in(read_file(root / "include/zorvstat.h"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    static const std::regex proto_name(R"(\b(zorvs_\w+)\s*\()"), enum_entry(R"(^\s*(ZORVS_\w+)\s*=\s*(\d+))");
    std::string comment, pending, which_enum;
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string &l = lines[i];
        if (l.rfind("enum zorvs_keyword", 0) == 0) which_enum = "k";
        else if (l.rfind("enum zorvs_error_types", 0) == 0) which_enum = "t";
        if (!which_enum.empty()) {
            std::smatch m;
            if (std::regex_search(l, m, enum_entry) && m[1] != "ZORVS_KEYWORD_END_")
                (which_enum == "k" ? h.keywords : h.error_types).emplace_back(m[1], m[2]);
            if (l.rfind("};", 0) == 0) which_enum.clear();
            continue;
        }
        if (l.rfind("enum ", 0) == 0) {
            // An enumeration of a routine's option values: shown with the
            // prototypes that follow it.
            std::string text = comment;
            size_t k = i;
            for (; k < lines.size(); ++k) {
                text += lines[k] + "\n";
                if (lines[k].rfind("}", 0) == 0) break;
            }
            i = k;
            comment = text;
            continue;
        }
        if (l.rfind("typedef struct", 0) == 0) {
            std::string text;
            size_t k = i;
            for (; k < lines.size(); ++k) {
                text += lines[k] + "\n";
                if (lines[k].rfind("}", 0) == 0) break;
            }
            std::smatch m;
            std::string last = lines[k];
            if (std::regex_search(last, m, std::regex(R"((\w+)\s*;)"))) h.records[m[1]] = comment + text;
            i = k;
            comment.clear();
            continue;
        }
        if (l.rfind("/*", 0) == 0) {
            // A comment block: kept for the prototypes below it, unless it
            // is a rule, a section marker or the file's head.
            std::string block;
            size_t k = i;
            for (; k < lines.size(); ++k) {
                block += lines[k] + "\n";
                if (lines[k].find("*/") != std::string::npos) break;
            }
            i = k;
            bool keep = block.find("@@") == std::string::npos && block.find("-----") == std::string::npos &&
                        block.find("zorvstat.h -") == std::string::npos;
            comment = keep ? block : "";
            continue;
        }
        if (trim(l).empty()) {
            comment.clear();
            continue;
        }
        if (!pending.empty() || (l[0] != ' ' && l[0] != '#' && l[0] != '}' && std::regex_search(l, proto_name))) {
            pending += (pending.empty() ? "" : "\n") + l;
            if (l.find(';') == std::string::npos) continue;
            std::smatch m;
            std::regex_search(pending, m, proto_name);
            h.prototypes.push_back({m[1], pending, comment});
            comment.clear();
            pending.clear();
        }
    }
    return h;
}

// The base name of an exported routine: zorvs_f_x, zorvs_d_x, zorvs_i_x -> x;
// zorvs_dx -> x only when zorvs_x is also declared (the worker twins).
std::string base_of(const std::string &name, const std::set<std::string> &declared) {
    std::string b = name.substr(6);
    if (b.size() > 2 && (b[0] == 'f' || b[0] == 'd' || b[0] == 'i') && b[1] == '_') return b.substr(2);
    if (b.size() > 1 && b[0] == 'd' && declared.count("zorvs_" + b.substr(1))) return b.substr(1);
    return b;
}

// ---------------------------------------------------------------------------
// The raise scan.
struct Body {
    std::string file;
    std::set<std::pair<int, long>> raised;
    std::set<std::string> calls;
    std::string text;  // the body, for the second pass
    bool lambda;       // a named lambda: seen only from its own file
};

// Comments and the contents of string and character literals blanked out,
// so that braces and parentheses in them do not count.
std::string code_only(const std::string &s) {
    std::string out = s;
    for (size_t i = 0; i < out.size(); ++i) {
        if (out.compare(i, 2, "//") == 0) {
            while (i < out.size() && out[i] != '\n') out[i++] = ' ';
        } else if (out.compare(i, 2, "/*") == 0) {
            size_t e = out.find("*/", i + 2);
            e = e == std::string::npos ? out.size() : e + 2;
            for (; i < e; ++i)
                if (out[i] != '\n') out[i] = ' ';
            --i;
        } else if (out[i] == '"' || out[i] == '\'') {
            // Digit separators and raw strings do not occur in the sources.
            char q = out[i];
            if (q == '\'' && i > 0 && std::isxdigit(static_cast<unsigned char>(out[i - 1]))) continue;
            for (++i; i < out.size() && out[i] != q; ++i) {
                if (out[i] == '\\') out[i++] = ' ';
                if (i < out.size() && out[i] != '\n') out[i] = ' ';
            }
        }
    }
    return out;
}

// The arguments of a call or the parameters of a head, from the position of
// the opening parenthesis: split at the commas outside nested brackets.
std::vector<std::string> arguments(const std::string &text, size_t open) {
    std::vector<std::string> out(1);
    int depth = 0;
    for (size_t i = open + 1; i < text.size(); ++i) {
        char c = text[i];
        if (c == '(' || c == '[' || c == '{' || c == '<') ++depth;
        else if ((c == ')' || c == ']' || c == '}' || c == '>') && depth > 0) --depth;
        else if (c == ')') break;
        else if (c == ',' && depth == 0) {
            out.emplace_back();
            continue;
        }
        out.back() += c;
    }
    return out;
}

std::multimap<std::string, Body> scan_sources(const fs::path &root) {
    static const std::set<std::string> not_functions = {"if", "for", "while", "switch", "catch", "return",
                                                        "sizeof", "defined", "decltype", "alignof"};
    static const std::regex head(R"(\b([A-Za-z_]\w*)\s*\(([^;{}()]|\([^;{}()]*\))*\)\s*(const\s*)?(noexcept\s*)?(->\s*[\w:<>*& ]+\s*)?\{)");
    static const std::regex raise(R"(\b(?:zorvs_ermes|raise\w*)\s*\(\s*([1-8])\s*,\s*(\d{3,6})\b)");
    // A raise whose code is an expression: its literals, or the variable
    // that a forwarding helper takes as a parameter.
    static const std::regex computed(R"(\b(?:zorvs_ermes|raise\w*)\s*\(\s*([1-8])\s*,((?:[^;,()]|\([^;()]*\))*?)[,)])");
    static const std::regex number(R"(\b\d{3,6}\b)"), identifier(R"(^\s*([A-Za-z_]\w*)\s*$)");
    static const std::regex code_pair(R"(\b\w*raise\w*\s*\(\s*(\d{3,6})\s*,\s*(\d{3,6})\b)");
    static const std::regex unknown(R"(\.unknown\s*\([^,()]*(?:,\s*(\d{3,6}))?\s*\))");
    static const std::regex call(R"(\b([A-Za-z_]\w*)\s*(?:<[^;(){}]*>)?\s*\()");
    struct Text {
        std::string file, text;
    };
    std::vector<Text> texts;
    for (const auto &entry : fs::recursive_directory_iterator(root / "lib")) {
        const std::string ext = entry.path().extension().string();
        if (ext != ".cpp" && ext != ".hpp" && ext != ".h") continue;
        texts.push_back({fs::relative(entry.path(), root).string(), code_only(read_file(entry.path()))});
    }
    std::multimap<std::string, Body> bodies;
    std::map<std::string, std::pair<int, size_t>> forwarders;  // name -> type, index of the code parameter
    // A named lambda, `auto check = [&](int code) {`, counts as a function
    // of that name.
    static const std::regex macro(R"(#define\s+(\w+)\(([^\n]*\\\n)*[^\n]*)");
    static const std::regex lambda(R"(\b([A-Za-z_]\w*)\s*=\s*\[[^\]]*\]\s*\([^()]*\)[^{;]*\{)");
    for (const auto &[rel, text] : texts) {
        struct Head {
            std::string name;
            size_t name_at, open;
            bool lambda;
        };
        std::vector<Head> heads;
        for (const std::regex *re : {&head, &lambda})
            for (std::sregex_iterator it(text.begin(), text.end(), *re), end; it != end; ++it)
                heads.push_back({(*it)[1], static_cast<size_t>(it->position(1)),
                                 static_cast<size_t>(it->position(0) + it->length(0) - 1), re == &lambda});
        // A function-like macro (the call frame's entry macros) is a body of
        // its own: the lines of its definition.
        for (std::sregex_iterator it(text.begin(), text.end(), macro), end; it != end; ++it) {
            const std::string body = (*it)[0];
            Body b{rel, {}, {}, body, false};
            for (std::sregex_iterator c(body.begin(), body.end(), call); c != end; ++c)
                if (!not_functions.count((*c)[1])) b.calls.insert((*c)[1]);
            bodies.emplace((*it)[1], std::move(b));
        }
        for (const Head &h : heads) {
            const std::string &name = h.name;
            const std::sregex_iterator end;
            if (not_functions.count(name)) continue;
            size_t open = h.open, depth = 0, close = open;
            for (; close < text.size(); ++close) {
                if (text[close] == '{') ++depth;
                else if (text[close] == '}' && --depth == 0) break;
            }
            const std::string body = text.substr(open, close - open);
            Body b{rel, {}, {}, body, h.lambda};
            for (std::sregex_iterator r(body.begin(), body.end(), raise); r != end; ++r)
                b.raised.emplace(std::stoi((*r)[1]), std::stol((*r)[2]));
            for (std::sregex_iterator r(body.begin(), body.end(), computed); r != end; ++r) {
                const int type = std::stoi((*r)[1]);
                const std::string expr = (*r)[2];
                std::smatch id;
                if (std::regex_match(expr, id, identifier)) {
                    auto params = arguments(text, text.find('(', h.name_at));
                    for (size_t k = 0; k < params.size(); ++k) {
                        std::string param = params[k].substr(0, params[k].find('='));
                        std::smatch last;
                        if (std::regex_search(param, last, std::regex(R"((\w+)\s*$)")) && last[1] == id[1])
                            forwarders[name] = {type, k};
                    }
                }
                for (std::sregex_iterator n(expr.begin(), expr.end(), number); n != end; ++n)
                    b.raised.emplace(type, std::stol((*n)[0]));
                // A local helper handing its codes on: raise_x(CODE, CODE, ...).
                if (!std::regex_match(expr, id, identifier) && !std::regex_search(expr, number))
                    for (std::sregex_iterator c(body.begin(), body.end(), code_pair); c != end; ++c) {
                        b.raised.emplace(type, std::stol((*c)[1]));
                        b.raised.emplace(type, std::stol((*c)[2]));
                    }
            }
            for (std::sregex_iterator c(body.begin(), body.end(), call); c != end; ++c)
                if (!not_functions.count((*c)[1])) b.calls.insert((*c)[1]);
            // An unknown keyword: KeywordReader::unknown raises (5, 11001)
            // or the code given as its second argument.
            for (std::sregex_iterator u(body.begin(), body.end(), unknown); u != end; ++u)
                b.raised.emplace(5, (*u)[1].matched ? std::stol((*u)[1]) : 11001L);
            bodies.emplace(name, std::move(b));
        }
    }
    // Calls of the forwarding helpers with a literal code.
    for (auto &[name, b] : bodies) {
        (void)name;
        const std::string &body = b.text;
        for (const auto &[helper, where] : forwarders) {
            const std::regex at("\\b" + helper + "\\s*\\(");
            for (std::sregex_iterator c(body.begin(), body.end(), at), end; c != end; ++c) {
                auto args = arguments(body, c->position(0) + c->length(0) - 1);
                std::smatch m;
                if (where.second < args.size() && std::regex_match(args[where.second], m, std::regex(R"(\s*(\d{3,6})\s*)")))
                    b.raised.emplace(where.first, std::stol(m[1]));
            }
        }
    }
    return bodies;
}

// The messages raised from the files (a file or a folder, relative to root),
// following calls into other functions.  A call from file F finds the
// definitions of its name in F if there are any (a file's own helpers
// shadow same-named ones elsewhere, as its anonymous namespace does),
// otherwise every definition outside F but named lambdas, which belong to
// their files.
std::set<std::pair<int, long>> raised_by(const std::vector<std::string> &sources,
                                         const std::multimap<std::string, Body> &bodies,
                                         const std::set<std::string> &public_names) {
    auto in_sources = [&](const std::string &file) {
        for (const auto &s : sources)
            if (file == s || file.rfind(s + "/", 0) == 0) return true;
        return false;
    };
    std::set<std::pair<int, long>> out;
    std::set<std::pair<std::string, std::string>> seen;  // (name, calling file)
    std::vector<std::pair<std::string, std::string>> todo;
    auto follow = [&](const Body &b) {
        out.insert(b.raised.begin(), b.raised.end());
        for (const auto &c : b.calls) todo.emplace_back(c, b.file);
    };
    for (const auto &[name, b] : bodies)
        if (in_sources(b.file)) follow(b);
    while (!todo.empty()) {
        auto call = todo.back();
        todo.pop_back();
        if (public_names.count(call.first) || !seen.insert(call).second) continue;
        auto [lo, hi] = bodies.equal_range(call.first);
        bool own = false;
        for (auto it = lo; it != hi; ++it) own = own || it->second.file == call.second;
        for (auto it = lo; it != hi; ++it)
            if (own ? it->second.file == call.second : !it->second.lambda) follow(it->second);
    }
    return out;
}

// ---------------------------------------------------------------------------
// Pages.
struct Page {
    fs::path path;
    std::string name, title, section, text;
    int order = 99;  // place among the introductory pages
    std::vector<std::string> routines, sources;
};

std::vector<Page> read_pages(const fs::path &root) {
    std::vector<Page> pages;
    for (const char *dir : {"doc/intro", "doc/routines"}) {
        std::vector<fs::path> files;
        for (const auto &e : fs::directory_iterator(root / dir))
            if (e.path().extension() == ".md") files.push_back(e.path());
        std::sort(files.begin(), files.end());
        for (const auto &f : files) {
            Page p;
            p.path = f;
            p.name = f.stem().string();
            p.text = read_file(f);
            p.section = std::string(dir) == "doc/intro" ? "7" : "3";
            std::smatch m;
            static const std::regex meta(R"(<!--\s*(\w+):([^>]*)-->)"), title(R"((^|\n)# ([^\n]+))");
            for (std::sregex_iterator it(p.text.begin(), p.text.end(), meta), end; it != end; ++it) {
                const std::string key = (*it)[1];
                if (key == "routines") p.routines = words((*it)[2]);
                else if (key == "sources") p.sources = words((*it)[2]);
                else if (key == "section") p.section = trim((*it)[2]);
                else if (key == "order") p.order = std::stoi((*it)[2]);
            }
            if (std::regex_search(p.text, m, title)) p.title = m[2];
            pages.push_back(std::move(p));
        }
    }
    std::stable_sort(pages.begin(), pages.end(), [](const Page &a, const Page &b) {
        return (a.section == "3") != (b.section == "3") ? b.section == "3" : a.order < b.order;
    });
    return pages;
}

const char *type_name(int type) {
    static const char *names[] = {"", "NOTE", "ALERT", "WARNING", "FATAL", "TERMINAL",
                                  "WARNING_IMMEDIATE", "FATAL_IMMEDIATE", "INTERNAL"};
    return type >= 1 && type <= 8 ? names[type] : "?";
}

struct Manual {
    fs::path root;
    Header header;
    std::map<long, Message> catalogue;
    std::multimap<std::string, Body> bodies;
    std::vector<Page> pages;
    std::set<std::string> declared, public_names;
    std::map<const Page *, std::set<std::pair<int, long>>> raised;

    explicit Manual(const fs::path &r) : root(r) {
        header = read_header(root);
        catalogue = read_catalogue(root);
        bodies = scan_sources(root);
        pages = read_pages(root);
        for (const auto &p : header.prototypes) declared.insert(p.name);
        // Calls not followed: the public routines (their messages are on
        // their own pages) and the error system's services, whose own
        // messages (a broken error stack, a bad unit) concern the library's
        // state rather than the call; they are on the pages of
        // zorvs_error_options and zorvs_output_file.
        public_names = declared;
        static const std::regex service(R"(\b(zorvs_\w+)\s*\()");
        const std::string services = code_only(read_file(root / "lib/frame/services.h"));
        for (std::sregex_iterator it(services.begin(), services.end(), service), end; it != end; ++it)
            public_names.insert((*it)[1]);
        for (const auto &p : pages) raised[&p] = raised_by(p.sources, bodies, public_names);
    }

    bool documents(const Page &p, const std::string &name) const {
        const std::string b = base_of(name, declared);
        return std::find(p.routines.begin(), p.routines.end(), b) != p.routines.end();
    }

    std::string synopsis(const Page &p) const {
        // The records that the prototypes take come first, each once.
        std::string records, prototypes;
        std::set<std::string> seen;
        for (const auto &proto : header.prototypes) {
            if (!documents(p, proto.name)) continue;
            for (const auto &[name, text] : header.records)
                if (proto.text.find(name) != std::string::npos && seen.insert(name).second) records += "\n" + text;
            prototypes += (proto.comment.empty() ? "" : "\n" + proto.comment) + proto.text + "\n";
        }
        return "```c\n#include <zorvstat.h>\n" + records + prototypes + "```\n";
    }

    std::string messages(const Page &p) const {
        const auto &r = raised.at(&p);
        if (r.empty()) return "This page's routines raise no message of their own.\n";
        std::string out = "| Type | Code | Name | Text |\n|--------|-----|-----------|------------------------|\n";
        std::vector<std::pair<long, int>> by_code;
        for (const auto &[t, c] : r) by_code.emplace_back(c, t);
        std::sort(by_code.begin(), by_code.end());
        for (const auto &[c, t] : by_code) {
            auto m = catalogue.find(c);
            out += "| " + std::to_string(t) + " " + type_name(t) + " | " + std::to_string(c) + " | " +
                   (m == catalogue.end() ? "(not catalogued)" : "`" + m->second.name + "`") + " | " +
                   (m == catalogue.end() ? "Error code " + std::to_string(c) + "." : readable(m->second.text)) + " |\n";
        }
        return out;
    }

    std::string example(const std::string &name) const {
        const fs::path dir = root / "doc/examples";
        std::string out = "```c\n" + read_file(dir / (name + ".c")) + "```\n\nOutput:\n\n```\n" +
                          read_file(dir / (name + ".out")) + "```\n";
        return out;
    }

    std::string keywords() const {
        std::string out = "| Keyword | Value |\n|---|---|\n";
        for (const auto &[k, v] : header.keywords) out += "| `" + k + "` | " + v + " |\n";
        return out;
    }

    std::string error_types() const {
        std::string out = "| Type | Name |\n|---|---|\n";
        for (const auto &[k, v] : header.error_types) out += "| " + v + " | `" + k + "` |\n";
        return out;
    }

    // Exported symbols that the public header does not declare, with the
    // internal header that does.
    std::map<std::string, std::string> internal_declarations() const {
        std::map<std::string, std::string> out;
        static const std::regex decl(R"(\b(zorvs_\w+)\s*\()"), var(R"(\bextern\b[^;(]*\b(zorvs_\w+)\s*(\[[^\]]*\])?\s*;)");
        for (const auto &e : fs::recursive_directory_iterator(root / "lib")) {
            if (e.path().extension() != ".h") continue;
            const std::string text = code_only(read_file(e.path()));
            const std::string rel = fs::relative(e.path(), root).string();
            for (std::sregex_iterator it(text.begin(), text.end(), decl), end; it != end; ++it)
                out.emplace((*it)[1], rel);
            for (std::sregex_iterator it(text.begin(), text.end(), var), end; it != end; ++it)
                out.emplace((*it)[1], rel);
        }
        return out;
    }

    std::string internals() const {
        std::map<std::string, std::set<std::string>> by_header;
        for (const auto &[name, file] : internal_declarations())
            if (!declared.count(name)) by_header[file].insert(name);
        std::string out;
        for (const auto &[file, names] : by_header) {
            out += "`" + file + "`\n:   ";
            bool first = true;
            for (const auto &n : names) {
                out += (first ? "" : ", ") + std::string("`") + n + "`";
                first = false;
            }
            out += "\n\n";
        }
        return out;
    }

    std::string all_messages() const {
        std::map<long, std::set<std::string>> pages_of;
        for (const auto &p : pages)
            for (const auto &[t, c] : raised.at(&p)) pages_of[c].insert(p.name);
        std::string out = "| Code | Name | Text | Raised by |\n|-----|-----------|----------------------|----------|\n";
        for (const auto &[c, m] : catalogue) {
            std::string where;
            for (const auto &n : pages_of[c]) where += (where.empty() ? "" : ", ") + ("[" + n + "](" + n + ".html)");
            out += "| " + std::to_string(c) + " | `" + m.name + "` | " + readable(m.text) + " | " + where + " |\n";
        }
        return out;
    }

    std::string expand(const Page &p) const {
        std::istringstream in(p.text);
        std::string out;
        static const std::regex directive(R"(^@@(\w+)(?:\s+(\w+))?@@\s*$)");
        for (std::string line; std::getline(in, line);) {
            std::smatch m;
            if (!std::regex_match(line, m, directive)) {
                out += line + "\n";
                continue;
            }
            const std::string d = m[1];
            if (d == "synopsis") out += synopsis(p);
            else if (d == "messages") out += messages(p);
            else if (d == "example") out += example(m[2]);
            else if (d == "keywords") out += keywords();
            else if (d == "error_types") out += error_types();
            else if (d == "internals") out += internals();
            else if (d == "catalogue") out += all_messages();
            else throw std::runtime_error(p.path.string() + ": unknown directive " + d);
        }
        return out;
    }
};

std::string json_string(const std::string &s) {
    std::string out = "\"";
    for (char c : s) {
        if (c == '"' || c == '\\') out += std::string("\\") + c;
        else if (c == '\n' || c == '\t') out += ' ';
        else if (static_cast<unsigned char>(c) >= 0x20) out += c;
    }
    return out + "\"";
}

int expand(const fs::path &root, const fs::path &out) {
    Manual manual(root);
    fs::create_directories(out / "md");
    std::string index = "var ZORVS_INDEX = [\n", pages_list;
    for (const auto &p : manual.pages) {
        const std::string text = manual.expand(p);
        write_file(out / "md" / (p.name + ".md"), text);
        pages_list += p.name + "\t" + p.section + "\t" + p.title + "\t" + (p.section == "3" ? "r" : "i") + "\n";
        // The search index: the page's title, its routines and keywords, and
        // its words without Markdown punctuation.
        std::set<std::string> names;
        static const std::regex ident(R"(\b(zorvs_\w+|ZORVS_\w+)\b)");
        for (std::sregex_iterator it(text.begin(), text.end(), ident), end; it != end; ++it) names.insert((*it)[1]);
        std::string plain = std::regex_replace(text, std::regex(R"(<!--[^>]*-->)"), " ");
        plain = std::regex_replace(plain, std::regex(R"([`#|*<>\[\]()=]+|-{2,}|&lt;|&gt;)"), " ");
        plain = std::regex_replace(plain, std::regex(R"(\s+)"), " ");
        std::string joined;
        for (const auto &n : names) joined += n + " ";
        index += "{\"page\": " + json_string(p.name + ".html") + ", \"title\": " + json_string(p.title) +
                 ", \"names\": " + json_string(joined) + ", \"text\": " + json_string(plain) + "},\n";
        // man links: one page name per exported routine, pointing at the family's page.
        if (p.section == "3")
            for (const auto &proto : manual.header.prototypes)
                if (manual.documents(p, proto.name) && proto.name != p.name)
                    write_file(out / "man3links" / (proto.name + ".3"), ".so man3/" + p.name + ".3\n");
    }
    // The navigation of the HTML pages: a search box, the introductory pages
    // in the order of the manual's contents, then the routine pages.
    std::string nav = "<nav id=\"sidebar\">\n<p class=\"home\"><a href=\"index.html\">libzorvstat manual</a></p>\n"
                      "<input id=\"search\" type=\"search\" placeholder=\"Search\" autocomplete=\"off\">\n"
                      "<ul id=\"results\"></ul>\n";
    for (const char *group : {"i", "r"}) {
        nav += std::string("<h3>") + (group[0] == 'i' ? "Introduction" : "Routines") + "</h3>\n<ul>\n";
        for (const auto &p : manual.pages)
            if ((p.section == "3") == (group[0] == 'r'))
                nav += "<li><a href=\"" + p.name + ".html\">" + (group[0] == 'r' ? p.name : p.title) + "</a></li>\n";
        nav += "</ul>\n";
    }
    write_file(out / "sidebar.html", nav + "</nav>\n<main>\n");
    write_file(out / "search-index.js", index + "];\n");
    write_file(out / "pages.txt", pages_list);
    return 0;
}

// The completeness check: every exported routine has a page, every page's
// messages are on it, every source file of the statistical and
// distribution layers belongs to a page, and no page names a routine that
// the header does not declare.
int check(const fs::path &root, const fs::path &symbols) {
    Manual manual(root);
    int failures = 0;
    auto fail = [&](const std::string &what) {
        std::cout << what << "\n";
        ++failures;
    };
    const auto internal = manual.internal_declarations();
    std::set<std::string> exported;
    for (const auto &w : words(read_file(symbols))) exported.insert(w);
    if (exported.size() < 50) fail("too few exported symbols listed: " + std::to_string(exported.size()));
    for (const auto &name : exported) {
        if (name.rfind("zorvs_", 0) != 0) continue;
        bool paged = false;
        for (const auto &p : manual.pages) paged = paged || (manual.declared.count(name) && manual.documents(p, name));
        if (paged) continue;
        if (manual.declared.count(name)) fail(name + ": exported and declared in zorvstat.h, but on no page");
        else if (!internal.count(name)) fail(name + ": exported, but declared neither in zorvstat.h nor in lib/");
    }
    for (const auto &proto : manual.header.prototypes)
        if (!exported.count(proto.name)) fail(proto.name + ": declared in zorvstat.h but not exported");
    std::set<std::string> listed;
    for (const auto &p : manual.pages) {
        const std::string page = manual.expand(p);
        for (const auto &r : p.routines) {
            bool any = false;
            for (const auto &proto : manual.header.prototypes) any = any || base_of(proto.name, manual.declared) == r;
            if (!any) fail(p.name + ": routine " + r + " is not in zorvstat.h");
        }
        if (!p.routines.empty() && page.find("## Messages") == std::string::npos)
            fail(p.name + ": no Messages section");
        for (const auto &[t, c] : manual.raised.at(&p)) {
            auto m = manual.catalogue.find(c);
            const std::string row = "| " + std::to_string(t) + " " + type_name(t) + " | " + std::to_string(c) + " | `" +
                                    (m == manual.catalogue.end() ? "" : m->second.name) + "` | ";
            if (m == manual.catalogue.end()) fail(p.name + ": raises (" + std::to_string(t) + ", " + std::to_string(c) + "), not in the catalogue");
            else if (page.find(row) == std::string::npos)
                fail(p.name + ": message (" + std::to_string(t) + ", " + std::to_string(c) + ") " + m->second.name + " missing");
        }
        for (const auto &s : p.sources) {
            if (!fs::exists(root / s)) fail(p.name + ": source " + s + " does not exist");
            listed.insert(s);
        }
    }
    for (const char *layer : {"lib/stat", "lib/dist", "lib/random", "lib/output"}) {
        for (const auto &e : fs::recursive_directory_iterator(root / layer)) {
            if (e.path().extension() != ".cpp") continue;
            std::string rel = fs::relative(e.path(), root).string();
            bool in = false;
            for (const auto &s : listed) in = in || rel == s || rel.rfind(s + "/", 0) == 0;
            if (!in) fail(rel + ": on no page's sources");
        }
    }
    std::cout << manual.pages.size() << " pages, " << exported.size() << " exported symbols, " << failures
              << " failures\n";
    return failures ? 1 : 0;
}

}  // namespace

int main(int argc, char **argv) {
    try {
        if (argc == 4 && std::string(argv[1]) == "expand") return expand(argv[2], argv[3]);
        if (argc == 4 && std::string(argv[1]) == "check") return check(argv[2], argv[3]);
        std::cerr << "usage: zorvs_make_doc expand ROOT OUT | check ROOT SYMBOLS\n";
        return 2;
    } catch (const std::exception &e) {
        std::cerr << "zorvs_make_doc: " << e.what() << "\n";
        return 2;
    }
}
