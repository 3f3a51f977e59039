// Message catalogue: the text source against the library's raises, and every
// file variant and search path read by the library in a fresh process, with
// the fallbacks.  (Message heads with
// symbolic names are among the error stack's scenarios.)
#include "support/tables.hpp"

#include <filesystem>
#include <regex>
#include <set>

namespace fs = std::filesystem;

namespace {

const std::string source_root = std::string(ZORVS_TEST_DATA_DIR) + "/../..";
const std::string build_dir = ZORVS_BUILD_DIR, variants = ZORVS_CATALOGUE_VARIANTS;

using zorvs_test::read_all;
struct Entry { std::string name, text; };

// The text and the name the library gives for a code.
std::string message(int code) { return zorvs_find_message(code); }
std::string name(int code) { return zorvs_find_name(code); }

// The source format, read here on its own: "CODE NAME" at the start of a
// line, the template on indented lines joined by blanks, '#' comments.
const std::map<long, Entry> &catalogue() {
    static const std::map<long, Entry> c = [] {
        std::map<long, Entry> out;
        std::istringstream in(read_all(source_root + "/lib/frame/zorvs_e.msg"));
        long current = -1;
        for (std::string line; std::getline(in, line);) {
            std::size_t first = line.find_first_not_of(" \t");
            if (first == std::string::npos) current = -1;
            else if (line[first] == '#') continue;
            else if (first == 0) std::istringstream(line) >> current >> out[current].name;
            else if (current >= 0) {
                std::string &t = out[current].text;
                t += (t.empty() ? "" : " ") + line.substr(first, line.find_last_not_of(' ') + 1 - first);
            }
        }
        return out;
    }();
    return c;
}

// Placeholders of a template as (kind, slot): kinds 'i', 'r', 'l', '?'.
std::set<std::pair<char, int>> placeholders(const std::string &t) {
    std::set<std::pair<char, int>> out;
    static const std::regex slot(R"(%\((\w)(\d))");
    for (std::sregex_iterator it(t.begin(), t.end(), slot), end; it != end; ++it) {
        char c = static_cast<char>(std::tolower((*it)[1].str()[0]));
        out.insert({c == 'i' ? 'i' : std::strchr("rdf", c) ? 'r' : std::strchr("sl", c) ? 'l' : '?',
                    (*it)[2].str()[0] - '0'});
    }
    return out;
}

// Names are unique, of capitals, digits and '_', at most 31 long; codes fit
// the file's 16-bit words; every text is a sentence whose placeholders are of
// a known kind.  Every code a routine of the library raises has a text: literal codes of
// zorvs_ermes and of raising helpers, and the codes of unknown keywords.
// Where the slots stored before a raise are in sight (back to the previous
// raise or the start of the function, at most 20 lines), its text uses only
// those, so that no text prints a value left over from an earlier message.
TEST(CatalogueSource, TextsAndTheCodesRaised) {
    const std::regex ermes(R"(zorvs_ermes\s*\(\s*[1-8]\s*,([^;]*?)\)\s*;)");
    const std::regex other(R"(\b\w*(?:raise|ermes)\w*\s*\(\s*[1-8]\s*,\s*(\d{3,6})\b|\bunknown\s*\([^,()]*,\s*(\d{3,6})\s*\))");
    const std::regex number(R"(\b\d{3,6}\b)"), literal(R"(zorvs_ermes\s*\(\s*[1-8]\s*,\s*(\d{3,6})\s*\))");
    const std::regex setter(R"(zorvs_e1st([ilrd])\s*\(\s*-?(\d)|zorvs_error_param\.([ilr])\s*\[\s*(\d)\s*\])");
    ASSERT_GT(catalogue().size(), 250u);
    std::set<std::string> names;
    for (const auto &[code, e] : catalogue()) {
        EXPECT_TRUE(e.name.size() <= 31 && std::regex_match(e.name, std::regex("[A-Z][A-Z0-9_]*"))) << code;
        EXPECT_TRUE(names.insert(e.name).second && code < 65536) << "name twice or code too large: " << code;
        EXPECT_TRUE(!e.text.empty() && e.text.back() == '.') << code;  // a sentence for a terminal
        for (auto [kind, slot] : placeholders(e.text)) EXPECT_TRUE(kind != '?' && slot >= 1) << code;
    }
    std::map<long, std::string> raised;
    int windows = 0;
    for (const auto &entry : fs::recursive_directory_iterator(source_root + "/lib")) {
        const std::string file = entry.path(), text = read_all(file);
        if (!std::regex_match(entry.path().extension().string(), std::regex(R"(\.(cpp|hpp|h))"))) continue;
        for (std::sregex_iterator it(text.begin(), text.end(), ermes), end; it != end; ++it) {
            std::string args = (*it)[1];
            for (std::sregex_iterator n(args.begin(), args.end(), number); n != end; ++n) raised[std::stol((*n)[0])] = file;
        }
        for (std::sregex_iterator it(text.begin(), text.end(), other), end; it != end; ++it)
            raised[std::stol((*it)[(*it)[1].matched ? 1 : 2])] = file;
        const std::vector<std::string> lines = zorvs_test::split(text);
        for (std::size_t k = 0; k < lines.size(); ++k) {
            std::smatch m;
            if (!std::regex_search(lines[k], m, literal) || !catalogue().count(std::stol(m[1]))) continue;
            std::string window = lines[k].substr(0, static_cast<std::size_t>(m.position(0)));
            for (std::size_t j = k; j-- > 0 && k - j <= 20;) {
                const std::string &l = lines[j];
                if (l.find("zorvs_ermes") != std::string::npos || (!l.empty() && !std::strchr(" \t/#}", l[0]))) break;
                window += "\n" + l;
            }
            std::set<std::pair<char, int>> set_slots;
            for (std::sregex_iterator it(window.begin(), window.end(), setter), end; it != end; ++it) {
                const char kind = (*it)[1].matched ? (*it)[1].str()[0] : (*it)[3].str()[0];
                set_slots.insert({kind == 'd' ? 'r' : kind, ((*it)[2].matched ? (*it)[2] : (*it)[4]).str()[0] - '0'});
            }
            if (set_slots.empty()) continue;  // slots stored elsewhere: not checkable here
            ++windows;
            for (auto p : placeholders(catalogue().at(std::stol(m[1])).text))
                EXPECT_TRUE(set_slots.count(p)) << file << ":" << k + 1 << " raises " << m[1] << " whose text uses "
                                                << p.first << p.second << ", not stored before the raise";
        }
    }
    EXPECT_GT(windows, 5);
    // The scan must see the frame's own raises, or it is not scanning.
    for (long code : {132L, 12009L, 12010L, 10020L, 60000L, 60001L, 102L, 200L, 201L, 202L})
        EXPECT_TRUE(raised.count(code)) << "scan missed " << code;
    for (const auto &[code, file] : raised) EXPECT_TRUE(catalogue().count(code)) << code << " raised in " << file;
    // Codes raised through tables or the frame's helpers.
    for (long code : {502L, 504L, 506L, 508L, 510L, 511L, 103L, 11001L, 150L, 151L, 160L})
        EXPECT_TRUE(catalogue().count(code)) << code;
}

// Reading by the library, in a fresh process each (a catalogue is opened once
// for the life of a process): the search path, what the lookups give, and
// what the process prints on its error unit.
TEST(CatalogueProcess, PathsVariantsAndFallbacks) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string bad_dir = fs::temp_directory_path() / ("zorvs_bad_catalogue_" + std::to_string(getpid()));
    fs::create_directories(bad_dir + "/magic"), fs::create_directories(bad_dir + "/short");
    std::string bytes = read_all(build_dir + "/zorvs_e.bin");
    std::ofstream(bad_dir + "/short/zorvs_e.bin", std::ios::binary) << bytes.substr(0, 40);
    bytes[0] = 0x12, bytes[1] = 0x34;
    std::ofstream(bad_dir + "/magic/zorvs_e.bin", std::ios::binary) << bytes;
    setenv("ZORVS_TEST_CATALOGUE_DIR", variants.c_str(), 1);
    setenv("ZORVS_TEST_CATALOGUE_PREFIX", (variants + "/le2/").c_str(), 1);
    unsetenv("ZORVS_TEST_UNSET_VARIABLE");
    static const auto all_agree = [] {
        for (const auto &[code, e] : catalogue())
            if (message(int(code)) != e.text || name(int(code)) != e.name) return false;
        return true;
    };
    const struct { std::string path; bool (*lookups)(); const char *printed; } cases[] = {
        // Both byte orders, both offset units: every message as in the source.
        {variants + "/le0/", all_agree, "^$"},
        {variants + "/be0/", all_agree, "^$"},
        {variants + "/le2/", all_agree, "^$"},
        {variants + "/be2/", all_agree, "^$"},
        // Codes 102 and 100102 look in two different files; codes without a
        // text get "Error code N." and the number as their name.
        {variants + "/file1/:" + build_dir + "/",
         [] {
             return message(102) == catalogue().at(102).text && name(100102) == "SECOND_FILE_MESSAGE" && name(-7) == "-7" &&
                    message(100102) == "This text comes from the second catalogue file, slot %(i1)." &&
                    message(100103) == "Error code 100103." && message(300001) == "Error code 300001.";
         },
         "^$"},
        // "$VAR/rest" expands, an unset variable's entry is skipped, a
        // variable may hold the whole prefix; no "/" is added.
        {"$ZORVS_TEST_UNSET_VARIABLE/:/nonexistent:$ZORVS_TEST_CATALOGUE_DIR/be2/", [] { return name(11001) == "UNKNOWN_KEYWORD"; }, "^$"},
        {"/nonexistent/:$ZORVS_TEST_CATALOGUE_PREFIX", [] { return name(132) == "INDEX_OUT_OF_RANGE"; }, "^$"},
        // A path set through the options is used, and kept where they keep it.
        {"/nonexistent/zorvs/",
         [] {
             const std::string good = variants + "/be0/";
             zorvs_error_options(ZORVS_ERROR_MSG_PATH, good.c_str(), 0);
             return name(20422) == "PERMUTATION_ENTRY_OUT_OF_RANGE" && good == zorvs_error_param.path;
         },
         "^$"},
        // A process that raises nothing never looks for the file.
        {"/nonexistent/zorvs/", [] { return zorvs_d_vmax(3, 1.0, 5.0, 2.0) == 5.0 && zorvs_f_machine(4) > 0; }, "^$"},
        // Without a catalogue: the notice once, then "Error code N." named by N.
        {"/nonexistent/zorvs/",
         [] {
             zorvs_error_options(ZORVS_SET_STOP, 4, 0, 0);
             for (int k = 0; k < 2; ++k) zorvs::framed("zorvs_d_vmax", [] { zorvs_ermes(4, 11054); });
             return true;
         },
         "^Error in reading zorvs_e.bin\nFile not found.\n\n"
         "\\*\\*\\* FATAL    Error 11054 from zorvs_d_vmax.  Error code 11054.\n\n"
         "\n\\*\\*\\* FATAL    Error 11054 from zorvs_d_vmax.  Error code 11054.\n\n$"},
        {bad_dir + "/magic/", [] { return message(132) == "Error code 132." && name(11001) == "11001"; },
         "^Error in reading zorvs_e.bin\nFile is not in zorverr.bin format.\n$"},
        {bad_dir + "/short/", [] { return message(11001) == "Error code 11001."; }, "^Error in reading zorvs_e.bin\n"},
    };
    for (const auto &c : cases)
        EXPECT_EXIT((setenv("ZORVSERRPATH", c.path.c_str(), 1), std::exit(c.lookups() ? 0 : 1)),
                    ::testing::ExitedWithCode(0), c.printed)
            << c.path;
    fs::remove_all(bad_dir);
}

}  // namespace
