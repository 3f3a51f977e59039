// Message catalogue: the text source against the library's raises, the
// layout of the generated file read independently of the library, every file
// variant read by the library in a fresh process, the fallbacks, the search
// path, and message heads with symbolic names.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "frame/services.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace fs = std::filesystem;

namespace {

const std::string source_root = std::string(ZORVS_TEST_DATA_DIR) + "/../..";
const std::string catalogue_source = source_root + "/lib/frame/zorvs_e.msg";
const std::string build_dir = ZORVS_BUILD_DIR;
const std::string variants = ZORVS_CATALOGUE_VARIANTS;

struct Entry {
    std::string name;
    std::string text;
};

std::string read_all(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

// A reader of the source format written for the tests: header lines
// "CODE NAME", indented template lines joined by blanks, '#' comments.
std::map<long, Entry> read_catalogue(const std::string &path) {
    std::map<long, Entry> out;
    std::istringstream in(read_all(path));
    std::string line;
    long current = -1;
    while (std::getline(in, line)) {
        if (line.empty() || line.find_first_not_of(" \t") == std::string::npos) {
            current = -1;
            continue;
        }
        std::size_t first = line.find_first_not_of(" \t");
        if (line[first] == '#') continue;
        if (first == 0) {
            std::istringstream head(line);
            Entry e;
            head >> current >> e.name;
            out[current] = e;
        } else if (current >= 0) {
            std::string &t = out[current].text;
            std::string piece = line.substr(first);
            while (!piece.empty() && piece.back() == ' ') piece.pop_back();
            if (!t.empty()) t += ' ';
            t += piece;
        }
    }
    return out;
}

const std::map<long, Entry> &catalogue() {
    static const std::map<long, Entry> c = read_catalogue(catalogue_source);
    return c;
}

// Placeholders of a template: (letter kind, slot digit); kinds 'i', 'r', 'l'.
std::set<std::pair<char, int>> placeholders(const std::string &t) {
    std::set<std::pair<char, int>> out;
    for (std::size_t k = 0; k + 4 < t.size() + 1; ++k) {
        if (t[k] != '%' || k + 3 >= t.size() || t[k + 1] != '(' || !std::isdigit(static_cast<unsigned char>(t[k + 3])))
            continue;
        char c = static_cast<char>(std::tolower(static_cast<unsigned char>(t[k + 2])));
        char kind = (c == 'i') ? 'i' : (c == 'r' || c == 'd' || c == 'f') ? 'r' : (c == 's' || c == 'l') ? 'l' : '?';
        out.insert({kind, t[k + 3] - '0'});
    }
    return out;
}

std::vector<fs::path> library_sources() {
    std::vector<fs::path> files;
    for (const auto &e : fs::recursive_directory_iterator(source_root + "/lib")) {
        auto ext = e.path().extension().string();
        if (e.is_regular_file() && (ext == ".cpp" || ext == ".hpp" || ext == ".h")) files.push_back(e.path());
    }
    return files;
}

// ---------------------------------------------------------------------------
// The text source

TEST(CatalogueSource, NamesAndTemplatesAreWellFormed) {
    const auto &c = catalogue();
    ASSERT_GT(c.size(), 250u) << "catalogue source not read: " << catalogue_source;
    std::set<std::string> names;
    const std::regex name_form("[A-Z][A-Z0-9_]*");
    for (const auto &[code, e] : c) {
        EXPECT_LE(e.name.size(), 31u) << code;
        EXPECT_TRUE(std::regex_match(e.name, name_form)) << code << " " << e.name;
        EXPECT_TRUE(names.insert(e.name).second) << "name twice: " << e.name;
        EXPECT_FALSE(e.text.empty()) << code;
        EXPECT_EQ(code / 100000, 0) << code;
        for (auto [kind, slot] : placeholders(e.text)) {
            EXPECT_NE(kind, '?') << code << ": unknown placeholder letter";
            EXPECT_GE(slot, 1) << code << ": slot 0 is never set";
        }
        // A text is a sentence for a terminal: it ends in a full stop.
        EXPECT_EQ(e.text.back(), '.') << code;
    }
}

// Every code that a routine of the library raises has a text: literal codes
// of zorvs_ermes and of raising helpers, and the codes handed to the
// keyword reader's report of an unknown keyword.
TEST(CatalogueSource, EveryRaisedCodeHasAText) {
    const std::regex ermes(R"(zorvs_ermes\s*\(\s*[1-8]\s*,([^;]*?)\)\s*;)");
    const std::regex helper(R"(\b\w*(?:raise|ermes)\w*\s*\(\s*[1-8]\s*,\s*(\d{3,6})\b)");
    const std::regex unknown(R"(\bunknown\s*\([^,()]*,\s*(\d{3,6})\s*\))");
    const std::regex number(R"(\b\d{3,6}\b)");
    std::map<long, std::string> raised;
    for (const auto &file : library_sources()) {
        std::string text = read_all(file.string());
        auto note = [&](const std::string &digits) { raised.emplace(std::stol(digits), file.filename().string()); };
        for (std::sregex_iterator it(text.begin(), text.end(), ermes), end; it != end; ++it) {
            std::string args = (*it)[1];
            for (std::sregex_iterator n(args.begin(), args.end(), number); n != end; ++n) note((*n)[0]);
        }
        for (std::sregex_iterator it(text.begin(), text.end(), helper), end; it != end; ++it) note((*it)[1]);
        for (std::sregex_iterator it(text.begin(), text.end(), unknown), end; it != end; ++it) note((*it)[1]);
    }
    // The scan must see the frame's own raises, or it is not scanning.
    for (long code : {132L, 12009L, 12010L, 10020L, 60000L, 60001L, 102L, 200L, 201L, 202L})
        EXPECT_TRUE(raised.count(code)) << "scan missed " << code;
    for (const auto &[code, file] : raised)
        EXPECT_TRUE(catalogue().count(code)) << "code " << code << " raised in " << file << " has no text";
    // Codes raised through tables or the frame's helpers.
    for (long code : {502L, 504L, 506L, 508L, 510L, 511L, 103L, 11001L, 150L, 151L, 160L})
        EXPECT_TRUE(catalogue().count(code)) << code;
}

// Where the slots stored just before a raise are visible in the source, the
// text of the raised code may only use slots among them, so that no text
// prints a value left over from an earlier message.
TEST(CatalogueSource, PlaceholdersAreSlotsTheRaiseSets) {
    const std::regex ermes(R"(zorvs_ermes\s*\(\s*[1-8]\s*,\s*(\d{3,6})\s*\))");
    const std::regex setter(
        R"(zorvs_e1st([ilrd])\s*\(\s*-?(\d)|zorvs_error_param\.([ilr])\s*\[\s*(\d)\s*\])");
    int checked = 0;
    for (const auto &file : library_sources()) {
        std::string text = read_all(file.string());
        std::vector<std::string> lines;
        std::istringstream in(text);
        for (std::string l; std::getline(in, l);) lines.push_back(l);
        for (std::size_t k = 0; k < lines.size(); ++k) {
            std::smatch m;
            if (!std::regex_search(lines[k], m, ermes)) continue;
            long code = std::stol(m[1]);
            auto entry = catalogue().find(code);
            if (entry == catalogue().end()) continue;  // reported by the test above
            // The window runs back to the previous raise or the start of the
            // enclosing function (a line at column 0), at most 20 lines.
            std::set<std::pair<char, int>> set_slots;
            std::string before = lines[k].substr(0, static_cast<std::size_t>(m.position(0)));
            std::vector<std::string> window{before};
            for (std::size_t j = k; j-- > 0 && k - j <= 20;) {
                const std::string &l = lines[j];
                if (l.find("zorvs_ermes") != std::string::npos) break;
                if (!l.empty() && !std::isspace(static_cast<unsigned char>(l[0])) && l[0] != '/' && l[0] != '#' &&
                    l[0] != '}')
                    break;
                window.push_back(l);
            }
            for (const auto &l : window) {
                for (std::sregex_iterator it(l.begin(), l.end(), setter), end; it != end; ++it) {
                    const std::smatch &s = *it;
                    char kind = s[1].matched ? s[1].str()[0] : s[3].str()[0];
                    if (kind == 'd') kind = 'r';
                    int slot = (s[2].matched ? s[2].str() : s[4].str())[0] - '0';
                    set_slots.insert({kind, slot});
                }
            }
            if (set_slots.empty()) continue;  // slots stored elsewhere: not checkable here
            ++checked;
            for (auto p : placeholders(entry->second.text))
                EXPECT_TRUE(set_slots.count(p)) << file.filename().string() << ":" << k + 1 << " raises " << code
                                                << " whose text uses " << p.first << p.second
                                                << ", which is not stored before the raise";
        }
    }
    EXPECT_GT(checked, 5);
}

// ---------------------------------------------------------------------------
// Layout of the generated files, decoded here without the library

struct Decoded {
    bool ok = false;
    std::map<long, Entry> entries;
    std::size_t text_start = 0;
};

Decoded decode(const std::string &path, bool big) {
    Decoded d;
    std::string b = read_all(path);
    if (b.size() < 14) return d;
    auto word = [&](std::size_t at) -> unsigned {
        unsigned char x = static_cast<unsigned char>(b[at]), y = static_cast<unsigned char>(b[at + 1]);
        return big ? (x << 8 | y) : (y << 8 | x);
    };
    if (word(0) != 29432) return d;
    std::size_t n = word(4), shift = word(12);
    std::size_t t = shift == 0 ? 4 * n + 15 : ((4 * n + 16 + (1u << shift) - 1) >> shift) << shift;
    d.text_start = t;
    unsigned previous = 0;
    for (std::size_t k = 0; k < n; ++k) {
        unsigned code = word(14 + 2 * k);
        if (k > 0 && code <= previous) return d;  // ascending, no repeats
        previous = code;
        std::size_t at = t + (static_cast<std::size_t>(word(14 + 2 * n + 2 * k)) << shift);
        if (at >= b.size()) return d;
        Entry e;
        e.text = std::string(b.c_str() + at);
        e.name = std::string(b.c_str() + at + e.text.size() + 1);
        d.entries[code] = e;
    }
    d.ok = true;
    return d;
}

TEST(CatalogueFile, BuildTreeFileHoldsEverySourceMessage) {
    Decoded d = decode(build_dir + "/zorvs_e.bin", false);
    ASSERT_TRUE(d.ok);
    EXPECT_EQ(d.text_start, 4 * catalogue().size() + 15);
    ASSERT_EQ(d.entries.size(), catalogue().size());
    for (const auto &[code, e] : catalogue()) {
        ASSERT_TRUE(d.entries.count(code)) << code;
        EXPECT_EQ(d.entries[code].text, e.text) << code;
        EXPECT_EQ(d.entries[code].name, e.name) << code;
    }
}

TEST(CatalogueFile, VariantsDifferOnlyInLayout) {
    const std::size_t n = catalogue().size();
    struct V {
        const char *dir;
        bool big;
        std::size_t t;
    } vs[] = {{"le0", false, 4 * n + 15}, {"be0", true, 4 * n + 15}, {"le2", false, (4 * n + 16 + 3) / 4 * 4},
              {"be2", true, (4 * n + 16 + 3) / 4 * 4}};
    Decoded reference = decode(build_dir + "/zorvs_e.bin", false);
    for (const auto &v : vs) {
        std::string path = variants + "/" + v.dir + "/zorvs_e.bin";
        Decoded d = decode(path, v.big);
        ASSERT_TRUE(d.ok) << path;
        EXPECT_EQ(d.text_start, v.t) << path;
        EXPECT_EQ(d.entries.size(), reference.entries.size()) << path;
        for (const auto &[code, e] : reference.entries) {
            EXPECT_EQ(d.entries[code].text, e.text) << path << " " << code;
            EXPECT_EQ(d.entries[code].name, e.name) << path << " " << code;
        }
        // Read in the wrong byte order the magic does not match.
        EXPECT_FALSE(decode(path, !v.big).ok) << path;
    }
}

TEST(CatalogueFile, GeneratorRefusesBadSources) {
    char dir[] = "/tmp/zorvs_catalogue_XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    auto run = [&](const std::string &body) {
        std::string src = std::string(dir) + "/in.msg";
        std::ofstream(src) << body;
        std::string cmd = std::string(ZORVS_CATALOGUE_TOOL) + " -o " + dir + "/out.bin " + src + " 2>/dev/null";
        return std::system(cmd.c_str());
    };
    EXPECT_EQ(run("7 GOOD_NAME\n    A text.\n"), 0);
    EXPECT_NE(run("7 SAME\n    A.\n8 SAME\n    B.\n"), 0);        // name twice
    EXPECT_NE(run("7 ONE\n    A.\n7 TWO\n    B.\n"), 0);          // code twice
    EXPECT_EQ(run("7 " + std::string(31, 'N') + "\n    A.\n"), 0);
    EXPECT_NE(run("7 " + std::string(32, 'N') + "\n    A.\n"), 0);
    EXPECT_NE(run("7 lower_case\n    A.\n"), 0);
    EXPECT_NE(run("7 NO_TEXT\n"), 0);
    EXPECT_NE(run("70000 LOW_PART_TOO_LARGE\n    A.\n"), 0);
    fs::remove_all(dir);
}

// ---------------------------------------------------------------------------
// Reading by the library.  Each of these runs its lookups in a fresh process
// (a re-executed test program), since a catalogue is opened once for the
// life of a process.

// In the child: every message of the source, by text and by name, through
// the library's lookups; prints the first differences and exits 0 if none.
[[noreturn]] void child_check_all() {
    int bad = 0;
    for (const auto &[code, e] : catalogue()) {
        std::string text = zorvs_find_message(static_cast<int>(code));
        std::string name = zorvs_find_name(static_cast<int>(code));
        if ((text != e.text || name != e.name) && ++bad < 5)
            std::fprintf(stderr, "code %ld: [%s] [%s]\n", code, name.c_str(), text.c_str());
    }
    std::exit(bad == 0 ? 0 : 1);
}

void use_path_from_environment(const std::string &path) { setenv("ZORVSERRPATH", path.c_str(), 1); }

class CatalogueProcess : public ::testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(CatalogueProcess, LittleEndianShiftZero) {
    EXPECT_EXIT((use_path_from_environment(variants + "/le0/"), child_check_all()), ::testing::ExitedWithCode(0),
                "^$");
}

TEST_F(CatalogueProcess, BigEndianShiftZero) {
    EXPECT_EXIT((use_path_from_environment(variants + "/be0/"), child_check_all()), ::testing::ExitedWithCode(0),
                "^$");
}

TEST_F(CatalogueProcess, LittleEndianShiftTwo) {
    EXPECT_EXIT((use_path_from_environment(variants + "/le2/"), child_check_all()), ::testing::ExitedWithCode(0),
                "^$");
}

TEST_F(CatalogueProcess, BigEndianShiftTwo) {
    EXPECT_EXIT((use_path_from_environment(variants + "/be2/"), child_check_all()), ::testing::ExitedWithCode(0),
                "^$");
}

// A code 102 and a code 100102 look in two different files.
TEST_F(CatalogueProcess, SecondFileNumberReadsItsOwnFile) {
    auto child = [] {
        use_path_from_environment(variants + "/file1/:" + build_dir + "/");
        std::string low = zorvs_find_message(102);
        std::string high = zorvs_find_message(100102);
        std::string high_name = zorvs_find_name(100102);
        std::string missing = zorvs_find_message(100103);
        bool ok = low == catalogue().at(102).text &&
                  high == "This text comes from the second catalogue file, slot %(i1)." &&
                  high_name == "SECOND_FILE_MESSAGE" && missing == "Error code 100103.";
        std::exit(ok ? 0 : 1);
    };
    EXPECT_EXIT(child(), ::testing::ExitedWithCode(0), "^$");
}

// Without a catalogue: the notice once on the standard error stream, then
// "Error code N." with the decimal code as the name in the head.
TEST_F(CatalogueProcess, MissingFileNoticeOnceAndFallbackTexts) {
    auto child = [] {
        use_path_from_environment("/nonexistent/zorvs/");
        zorvs_error_options(ZORVS_SET_STOP, 4, 0, 0);
        for (int k = 0; k < 2; ++k) {
            zorvs_e1psh("zorvs_d_vmax");
            zorvs_ermes(4, 11054);
            zorvs_e1pop("zorvs_d_vmax");
        }
        std::exit(0);
    };
    EXPECT_EXIT(child(), ::testing::ExitedWithCode(0),
                "^Error in reading zorvs_e.bin\nFile not found.\n\n"
                "\\*\\*\\* FATAL    Error 11054 from zorvs_d_vmax.  Error code 11054.\n\n"
                "\n\\*\\*\\* FATAL    Error 11054 from zorvs_d_vmax.  Error code 11054.\n\n$");
}

TEST_F(CatalogueProcess, BadMagicIsRefusedOnce) {
    char dir[] = "/tmp/zorvs_catalogue_XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    std::string bytes = read_all(build_dir + "/zorvs_e.bin");
    ASSERT_GT(bytes.size(), 14u);
    bytes[0] = 0x12;
    bytes[1] = 0x34;
    std::ofstream(std::string(dir) + "/zorvs_e.bin", std::ios::binary) << bytes;
    std::string path = std::string(dir) + "/";
    auto child = [&] {
        use_path_from_environment(path);
        std::string a = zorvs_find_message(132);
        std::string b = zorvs_find_name(11001);
        std::exit(a == "Error code 132." && b == "11001" ? 0 : 1);
    };
    EXPECT_EXIT(child(), ::testing::ExitedWithCode(0),
                "^Error in reading zorvs_e.bin\nFile is not in zorverr.bin format.\n$");
    fs::remove_all(dir);
}

// A process that raises no message never looks for the file: with no file
// on the path, nothing is printed.
TEST_F(CatalogueProcess, NoMessageNoLookup) {
    auto child = [] {
        use_path_from_environment("/nonexistent/zorvs/");
        double m = zorvs_d_vmax(3, 1.0, 5.0, 2.0);
        int w = 0;
        zorvs_page(1, &w);
        float eps = zorvs_f_machine(4);
        std::exit(m == 5.0 && w == 78 && eps > 0.0f && zorvs_error_type() == 0 ? 0 : 1);
    };
    EXPECT_EXIT(child(), ::testing::ExitedWithCode(0), "^$");
}

// Path entries: "$VAR/rest" expands; an unset variable's entry is skipped;
// the file name follows the prefix with no "/" added.
TEST_F(CatalogueProcess, VariableEntriesInThePath) {
    auto child = [] {
        setenv("ZORVS_TEST_CATALOGUE_DIR", variants.c_str(), 1);
        unsetenv("ZORVS_TEST_UNSET_VARIABLE");
        use_path_from_environment("$ZORVS_TEST_UNSET_VARIABLE/:/nonexistent:$ZORVS_TEST_CATALOGUE_DIR/be2/");
        std::string name = zorvs_find_name(11001);
        std::exit(name == "UNKNOWN_KEYWORD" ? 0 : 1);
    };
    EXPECT_EXIT(child(), ::testing::ExitedWithCode(0), "^$");
}

// A "$" entry whose variable holds the whole prefix, last in the path.
TEST_F(CatalogueProcess, VariableHoldingTheWholePrefix) {
    auto child = [] {
        std::string prefix = variants + "/le2/";
        setenv("ZORVS_TEST_CATALOGUE_PREFIX", prefix.c_str(), 1);
        use_path_from_environment("/nonexistent/:$ZORVS_TEST_CATALOGUE_PREFIX");
        std::exit(std::string(zorvs_find_name(132)) == "INDEX_OUT_OF_RANGE" ? 0 : 1);
    };
    EXPECT_EXIT(child(), ::testing::ExitedWithCode(0), "^$");
}

// A path set through the error options is used, and the environment is not
// consulted; the choice is stored where the options keep it.
TEST_F(CatalogueProcess, OptionPathBeatsEnvironment) {
    auto child = [] {
        use_path_from_environment("/nonexistent/zorvs/");
        std::string good = variants + "/be0/";
        zorvs_error_options(ZORVS_ERROR_MSG_PATH, good.c_str(), 0);
        bool ok = std::string(zorvs_find_name(20422)) == "PERMUTATION_ENTRY_OUT_OF_RANGE";
        ok = ok && zorvs_error_param.path && good == zorvs_error_param.path;
        std::exit(ok ? 0 : 1);
    };
    EXPECT_EXIT(child(), ::testing::ExitedWithCode(0), "^$");
}

// A truncated file is refused rather than read past its end.
TEST_F(CatalogueProcess, TruncatedFileIsRefused) {
    char dir[] = "/tmp/zorvs_catalogue_XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    std::string bytes = read_all(build_dir + "/zorvs_e.bin").substr(0, 40);
    std::ofstream(std::string(dir) + "/zorvs_e.bin", std::ios::binary) << bytes;
    std::string path = std::string(dir) + "/";
    auto child = [&] {
        use_path_from_environment(path);
        std::exit(std::string(zorvs_find_message(11001)) == "Error code 11001." ? 0 : 1);
    };
    EXPECT_EXIT(child(), ::testing::ExitedWithCode(0), "^Error in reading zorvs_e.bin\n");
    fs::remove_all(dir);
}

// ---------------------------------------------------------------------------
// Texts in printed messages (the catalogue of the build tree, found through
// ZORVSERRPATH as the test runner sets it)

TEST(CataloguePrint, HeadCarriesSymbolicNameAndTextWraps) {
    zorvs_test::Quiet q;
    zorvs_e1psh("zorvs_d_vmax");
    zorvs_e1sti(1, 3);
    zorvs_e1str(1, -2.0);
    zorvs_ermes(4, 11054);
    zorvs_e1pop("zorvs_d_vmax");
    std::string out = q.errors.take();
    EXPECT_EQ(out,
              "\n*** FATAL    Error NEGATIVE_FREQUENCY from zorvs_d_vmax.  The frequency -2\n"
              "***          in row 3 of the data given in this call is negative; frequencies\n"
              "***          must be 0 or more.\n\n");
    EXPECT_EQ(zorvs_error_code(), 11054);
}

TEST(CataloguePrint, TerminalHeadAndSlotsOfTheMachineInquiry) {
    zorvs_test::Quiet q;
    EXPECT_EQ(zorvs_i_machine(13), 0);
    EXPECT_EQ(q.errors.take(),
              "\n*** TERMINAL Error from zorvs_i_machine.  The argument n = 13 must be from 0\n"
              "***          to 12.\n\n");
}

TEST(CataloguePrint, LookupsAgreeWithTheSource) {
    for (long code : {102L, 11001L, 20024L, 60001L}) {
        EXPECT_EQ(std::string(zorvs_find_message(static_cast<int>(code))), catalogue().at(code).text);
        EXPECT_EQ(std::string(zorvs_find_name(static_cast<int>(code))), catalogue().at(code).name);
        // The same code twice gives the same text.
        EXPECT_EQ(std::string(zorvs_find_message(static_cast<int>(code))), catalogue().at(code).text);
    }
    EXPECT_STREQ(zorvs_find_message(12345), "Error code 12345.");
    EXPECT_STREQ(zorvs_find_name(12345), "12345");
    EXPECT_STREQ(zorvs_find_name(-7), "-7");
    EXPECT_STREQ(zorvs_find_message(300001), "Error code 300001.");
}

TEST(CataloguePrint, FatalStopPrintsNameAndText) {
    auto raise = [] {
        zorvs_e1psh("zorvs_f_table_oneway");
        zorvs_e1sti(1, 0);
        zorvs_ermes(4, 11002);
        zorvs_e1pop("zorvs_f_table_oneway");
    };
    EXPECT_EXIT(raise(), ::testing::ExitedWithCode(4),
                "FATAL    Error TOO_FEW_OBSERVATIONS from zorvs_f_table_oneway\\.  The\n"
                "\\*\\*\\*          number of observations, 0, must be at least 1\\.");
}

}  // namespace
