// make_catalogue.cpp - writes the binary message catalogue (zorvs_e.bin) from
// its text source.
//
//   zorvs_make_catalogue [--big-endian | --little-endian] [--shift N]
//                        [--file N] -o OUTPUT SOURCE
//
// Source format: '#' starts a comment line; a message is a header line
// "CODE NAME" (the code in decimal at the start of the line, then the
// symbolic name), followed by the template on indented lines, which are
// joined with single blanks.  A blank line or the next header ends it.
// In the template, %(i1), %(r1), %(l1) ... stand for parameter slots and %/
// for a line end.
//
// Only the messages of one file number (--file, default 0: codes below
// 100000) are written; the code table holds the low parts (code % 100000),
// sorted.  Output layout, all integers unsigned 16-bit in the chosen byte
// order (default: the build host's):
//   0 magic 29432 | 2 reserved (0) | 4 count n | 6..11 reserved (0) |
//   12 shift | 14 code table (n) | 14+2n offset table (n+1, in units of
//   2^shift bytes from the text area) | text area at T = 4n+15 (shift 0) or
//   4n+16 rounded up to a multiple of 2^shift.  With shift 0 the area
//   overlaps the last byte of the end mark, so records start at offset 1.
// Each record is the template, a zero byte, the name, a zero byte; with a
// shift above 0 records are padded with zero bytes to the unit.

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Message {
    long code = 0;
    std::string name;
    std::string text;
    int line = 0;
};

[[noreturn]] void fail(const std::string &what) {
    std::cerr << "zorvs_make_catalogue: " << what << "\n";
    std::exit(1);
}

bool valid_name(const std::string &name) {
    if (name.empty() || name.size() > 31) return false;
    if (!std::isupper(static_cast<unsigned char>(name[0]))) return false;
    for (char c : name)
        if (!(std::isupper(static_cast<unsigned char>(c)) || std::isdigit(static_cast<unsigned char>(c)) ||
              c == '_'))
            return false;
    return true;
}

std::vector<Message> read_source(const std::string &path) {
    std::ifstream in(path);
    if (!in) fail("cannot read " + path);
    std::vector<Message> messages;
    std::string line;
    int number = 0;
    bool open = false;
    while (std::getline(in, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::size_t first = line.find_first_not_of(" \t");
        if (first == std::string::npos) {
            open = false;
            continue;
        }
        if (line[first] == '#') continue;
        if (first == 0) {
            std::istringstream head(line);
            Message m;
            std::string extra;
            if (!(head >> m.code >> m.name) || (head >> extra))
                fail(path + ":" + std::to_string(number) + ": expected \"CODE NAME\"");
            m.line = number;
            messages.push_back(m);
            open = true;
            continue;
        }
        if (!open) fail(path + ":" + std::to_string(number) + ": text outside a message");
        std::string piece = line.substr(first);
        while (!piece.empty() && (piece.back() == ' ' || piece.back() == '\t')) piece.pop_back();
        std::string &text = messages.back().text;
        if (!text.empty()) text += ' ';
        text += piece;
    }
    return messages;
}

void check(const std::vector<Message> &messages, const std::string &path) {
    std::set<long> codes;
    std::set<std::string> names;
    for (const Message &m : messages) {
        std::string where = path + ":" + std::to_string(m.line) + ": ";
        if (m.code < 0 || m.code % 100000 > 65535) fail(where + "code out of range");
        if (!valid_name(m.name)) fail(where + "name must be upper case, at most 31 characters: " + m.name);
        if (m.text.empty()) fail(where + "message has no text");
        if (!codes.insert(m.code).second) fail(where + "code given twice: " + std::to_string(m.code));
        if (!names.insert(m.name).second) fail(where + "name given twice: " + m.name);
    }
}

void put16(std::vector<unsigned char> &out, std::size_t at, unsigned value, bool big) {
    if (value > 0xFFFF) fail("value does not fit 16 bits");
    unsigned char hi = static_cast<unsigned char>(value >> 8), lo = static_cast<unsigned char>(value & 0xFF);
    out[at] = big ? hi : lo;
    out[at + 1] = big ? lo : hi;
}

}  // namespace

int main(int argc, char **argv) {
    const std::uint16_t probe = 1;
    bool big = *reinterpret_cast<const unsigned char *>(&probe) == 0;
    int shift = 0;
    long file_number = 0;
    std::string output, source;
    for (int k = 1; k < argc; ++k) {
        std::string a = argv[k];
        if (a == "--big-endian") big = true;
        else if (a == "--little-endian") big = false;
        else if (a == "--shift" && k + 1 < argc) shift = std::atoi(argv[++k]);
        else if (a == "--file" && k + 1 < argc) file_number = std::atol(argv[++k]);
        else if (a == "-o" && k + 1 < argc) output = argv[++k];
        else if (!a.empty() && a[0] != '-' && source.empty()) source = a;
        else fail("usage: zorvs_make_catalogue [--big-endian|--little-endian] [--shift N] [--file N] -o OUT SOURCE");
    }
    if (output.empty() || source.empty()) fail("an output (-o) and a source are needed");
    if (shift < 0 || shift > 15) fail("shift must be 0 to 15");

    std::vector<Message> all = read_source(source);
    check(all, source);
    std::vector<Message> messages;
    for (const Message &m : all)
        if (m.code / 100000 == file_number) messages.push_back(m);
    std::sort(messages.begin(), messages.end(),
              [](const Message &a, const Message &b) { return a.code % 100000 < b.code % 100000; });
    for (std::size_t k = 1; k < messages.size(); ++k)
        if (messages[k].code % 100000 == messages[k - 1].code % 100000) fail("two codes share a low part");
    const std::size_t n = messages.size();
    if (n > 65535) fail("too many messages");

    // The tables end at 4n + 16.  With shift 0 the text area is counted from
    // 4n + 15, the last byte of the end mark, so the first record starts at
    // offset 1; with a shift it starts on the first unit boundary at or
    // after 4n + 16.
    const std::size_t unit = std::size_t{1} << shift;
    const std::size_t tables_end = 4 * n + 16;
    const std::size_t text_start =
        shift == 0 ? tables_end - 1 : (tables_end + unit - 1) / unit * unit;
    const std::size_t reserved = tables_end > text_start ? tables_end - text_start : 0;

    // Text area, record by record, each starting on a unit boundary.
    std::vector<unsigned char> text(reserved, 0);
    std::vector<std::size_t> offsets;
    for (const Message &m : messages) {
        while (text.size() % unit) text.push_back(0);
        offsets.push_back(text.size() / unit);
        text.insert(text.end(), m.text.begin(), m.text.end());
        text.push_back(0);
        text.insert(text.end(), m.name.begin(), m.name.end());
        text.push_back(0);
    }
    while (text.size() % unit) text.push_back(0);
    offsets.push_back(text.size() / unit);
    if (offsets.back() > 0xFFFF) fail("text area too large for 16-bit offsets: use a larger --shift");

    std::vector<unsigned char> out(std::max(tables_end, text_start), 0);
    put16(out, 0, 29432, big);
    put16(out, 4, static_cast<unsigned>(n), big);
    put16(out, 12, static_cast<unsigned>(shift), big);
    for (std::size_t k = 0; k < n; ++k)
        put16(out, 14 + 2 * k, static_cast<unsigned>(messages[k].code % 100000), big);
    for (std::size_t k = 0; k <= n; ++k) put16(out, 14 + 2 * n + 2 * k, static_cast<unsigned>(offsets[k]), big);
    out.insert(out.end(), text.begin() + static_cast<std::ptrdiff_t>(reserved), text.end());

    std::string temp = output + ".tmp";
    std::FILE *f = std::fopen(temp.c_str(), "wb");
    if (!f) fail("cannot write " + temp);
    bool ok = std::fwrite(out.data(), 1, out.size(), f) == out.size();
    ok = (std::fclose(f) == 0) && ok;
    if (!ok || std::rename(temp.c_str(), output.c_str()) != 0) fail("cannot write " + output);
    return 0;
}
