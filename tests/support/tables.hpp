// tables.hpp - helpers of the table-driven tests: rows of calls with the
// value and the (type, code) each must give, the float or double routine of
// a twin, and the largest error of a sweep.  The one header a test file includes besides the headers of what it tests:
// GoogleTest, the standard headers the tests use, the public header and the
// frame's internals (allocation failures, the routine frame).
#ifndef ZORVS_TEST_TABLES_HPP
#define ZORVS_TEST_TABLES_HPP

// GoogleTest, the public header and the standard headers of capture.hpp
// (<algorithm>, <cstdio>, <cstdlib>, <functional>, <sstream>, <string>,
// <vector>) come with it.
#include "support/capture.hpp"

#include <array>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <numeric>
#include <random>
#include <type_traits>

#include <unistd.h>

#include "frame/frame.hpp"

namespace zorvs_test {

// xorshift64*: the same random arguments on every run and platform, for the
// random-call tests; a test derives the values it draws from these.
struct Xorshift {
    std::uint64_t s;
    std::uint64_t next() {
        s ^= s >> 12;
        s ^= s << 25;
        s ^= s >> 27;
        return s * 0x2545F4914F6CDD1Dull;
    }
    double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }
    int below(int n) { return static_cast<int>(next() % static_cast<std::uint64_t>(n)); }
};

inline constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double Inf = std::numeric_limits<double>::infinity();
// A result a row does not look at.
inline constexpr double any = -0x1.2345p1000;

using Reals = ::testing::Types<float, double>;
using Index = std::size_t;

// A typed test suite over the two twins: ZORVS_TWIN_SUITE(ArmaTwin); then
// TYPED_TEST(ArmaTwin, ...) with TypeParam float and double.
#define ZORVS_TWIN_SUITE(name)                   \
    template <class T>                           \
    class name : public ::testing::Test {};      \
    TYPED_TEST_SUITE(name, ::zorvs_test::Reals)

template <class T>
inline constexpr double eps_of = std::numeric_limits<T>::epsilon();

// The routine of twin T: twin<T>(zorvs_f_x, zorvs_d_x)(...).
template <class T, class F, class D>
constexpr auto twin(F f, D d) {
    if constexpr (std::is_same_v<T, float>) return f;
    else return d;
}

// The same inside a template of T: ZORVS_TWIN(sdot, ddot) is zorvs_sdot for
// float and zorvs_ddot for double.
#define ZORVS_TWIN(f, d) ::zorvs_test::twin<T>(zorvs_##f, zorvs_##d)

// A template wrapper of a twin: ZORVS_TWIN_WRAPPER(arma, arma) defines
// arma<T>(...), which calls zorvs_f_arma for float and zorvs_d_arma for double.
#define ZORVS_TWIN_WRAPPER(wrapper, name)                                  \
    template <class T, class... A>                                         \
    auto wrapper(A... a) {                                                 \
        return ::zorvs_test::twin<T>(zorvs_f_##name, zorvs_d_##name)(a...); \
    }

// The message parameters listed as "r1=-2 i2=3 l1=x": r for reals (r2~171.6
// within 1e-4 of it), i for integers, l for texts.
inline void expect_params(const char *params) {
    std::istringstream in(params);
    for (std::string item; in >> item;) {
        const int k = item[1] - '0';
        const double want = std::strtod(item.c_str() + 3, nullptr), got = zorvs_error_param.r[k];
        if (item[0] == 'i') { EXPECT_EQ(zorvs_error_param.i[k], std::stoi(item.substr(3))) << item; }
        else if (item[0] == 'l') { EXPECT_STREQ(zorvs_error_param.l[k], item.c_str() + 3) << item; }
        else if (std::isnan(want)) { EXPECT_TRUE(std::isnan(got)) << item; }
        else if (item[2] == '~') { EXPECT_NEAR(got, want, 1e-4 * std::fabs(want)) << item; }
        else { EXPECT_DOUBLE_EQ(got, want) << item; }
    }
}

// One call, the value it must return (NaN: a NaN; any: not looked at), the
// (type, code) it must leave at user level ((0, 0): none; -1: not looked
// at), the message parameters, a tolerance, and a text the error unit must
// show (the routine's name; continuation lines joined).  A row reads
//     {ZORVS_CALL(zorvs_d_gamma(-2.0)), NaN, 5, 9006, "r1=-2"},
struct Call {
    const char *what;
    std::function<double()> call;
    double want = any;
    int type = 0, code = 0;
    const char *params = "";
    double tol = 0;
    const char *text = "";
};
#define ZORVS_CALL(expr) #expr, [&] { return static_cast<double>(expr); }
#define ZORVS_DO(statement) #statement, [&] { return statement, 0.0; }

// Runs the rows with the stops off, each from a clear error state.
inline void expect_rows(const std::vector<Call> &rows) {
    Quiet q;
    for (const Call &c : rows) {
        SCOPED_TRACE(c.what);
        zorvs_e1mes(0, 0, " ");
        const double got = c.call();
        if (std::isnan(c.want)) { EXPECT_TRUE(std::isnan(got)) << got; }
        else if (c.want != any && got != c.want) { EXPECT_NEAR(got, c.want, c.tol); }
        if (c.type >= 0) { EXPECT_EQ(zorvs_error_type(), c.type) << "code " << zorvs_error_code(); }
        if (c.type > 0 && c.code >= 0) { EXPECT_EQ(zorvs_error_code(), c.code); }
        expect_params(c.params);
        const std::string shown = flat(q.errors.take());
        EXPECT_NE(shown.find(c.text), std::string::npos) << shown;
    }
}

// The first elements of p are the values v, in order (a null p holds none).
template <class E, class... V>
bool holds(const E *p, V... v) {
    int i = 0;
    return p && ((p[i++] == static_cast<E>(v)) && ...);
}

// A reference table of doubles as a vector of the twin's type.
template <class T, std::size_t N>
std::vector<T> as(const double (&a)[N]) {
    return std::vector<T>(a, a + N);
}

// The single (`single` true) or the double routine zorvs_f_name or
// zorvs_d_name, called with the arguments, as a double.
#define ZORVS_EITHER(single, name, ...)                                                            \
    ((single) ? static_cast<double>(zorvs_f_##name(__VA_ARGS__)) : static_cast<double>(zorvs_d_##name(__VA_ARGS__)))

// Each allocation of a call made to fail in turn, until the call makes no
// more: `call` makes the call, frees what it got and says whether nothing
// was handed over.  Each failure must do so with a memory message (5, 200
// to 202), or with one of `standing`, a routine's own memory codes for an
// optional output whose failure leaves the other results standing.  With
// `recovered`, a failure may also pass without a message of type 4 or 5 and
// with the results handed over (a path that needs no block, as the in-place
// transposition's cycles); such failures are counted there.  Returns the
// number of allocations the call makes.
template <class F>
int each_allocation_failing(F call, const std::vector<int> &standing = {}, int *recovered = nullptr) {
    Quiet q;
    CodeLog log;
    for (int n = 1;; ++n) {
        log.clear();
        zorvs::allocation_failure_countdown = n;
        const bool nothing = call();
        const bool reached = zorvs::allocation_failure_countdown == 0;
        zorvs::allocation_failure_countdown = 0;
        if (!reached) return n - 1;
        const bool memory = log.has(5, 200) || log.has(5, 201) || log.has(5, 202);
        const bool stands = std::any_of(standing.begin(), standing.end(), [&](int c) { return log.has(5, c); });
        const bool failed = std::any_of(log.entries().begin(), log.entries().end(),
                                        [](const auto &e) { return e.first == 4 || e.first == 5; });
        if (recovered && !failed && !nothing) {
            ++*recovered;
            continue;
        }
        EXPECT_TRUE(nothing || stands) << "allocation " << n;
        EXPECT_TRUE(memory || stands) << "allocation " << n;
    }
}

// The largest of a family's errors, printed as a measurement when done.
class Worst {
public:
    explicit Worst(std::string name) : name_(std::move(name)) {}
    ~Worst() { std::printf("[measure] %s: largest %.3g\n", name_.c_str(), value_); }
    Worst(const Worst &) = delete;
    Worst &operator=(const Worst &) = delete;
    void add(double e) { value_ = std::max(value_, e); }  // a NaN leaves it as it is
    double value() const { return value_; }
    // Adds an error and holds it to the tolerance.
    void expect_within(double e, double tol) {
        add(e);
        EXPECT_LE(e, tol);
    }

private:
    std::string name_;
    double value_ = 0;
};

// |got - want| relative to |want|, or to `floor` where |want| is below it.
inline double relative_error(double got, double want, double floor = 0) {
    return std::fabs(got - want) / std::fmax(std::fabs(want), floor);
}

}  // namespace zorvs_test

#endif  // ZORVS_TEST_TABLES_HPP
