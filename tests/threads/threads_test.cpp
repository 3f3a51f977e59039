// Eight threads calling every routine family at once.  Each row is a call
// that depends on the thread's number (data, seed, page width, the value in a
// message); it is run once per thread number on one thread, then by eight
// threads together, each thread in its own order and several rounds.  What a
// call leaves (its results as bytes, the type and code at user level, the text
// on the thread's output and error units) must be the same bytes both times:
// no result, message, stop setting or option of one thread shows in another.
// The same holds while one of the eight threads faults in call after call.
#include "support/tables.hpp"

#include <cstdint>
#include <cstring>
#include <sstream>
#include <thread>

namespace {

using zorvs_test::twin;

template <class V>
void put(std::string &bytes, const V *p, int n) {
    bytes.append(reinterpret_cast<const char *>(p), sizeof(V) * static_cast<std::size_t>(n));
}
// A result the library allocated: its bytes, then back to free.
template <class V>
void take(std::string &bytes, V *p, int n) {
    if (p) put(bytes, p, n);
    else bytes += "null";
    std::free(p);
}

template <class T>
std::vector<T> sample(int t, int n, double scale) {
    zorvs_test::Xorshift g{0x9E3779B97F4A7C15ull * static_cast<std::uint64_t>(t + 1)};
    std::vector<T> x(n);
    for (T &v : x) v = static_cast<T>(scale * g.unit());
    return x;
}

template <class T>
struct Row {
    const char *family;
    void (*call)(int t, std::string &bytes);
    int type;     // the type left at user level, checked on the single thread
    bool prints;  // writes on the output unit
};

template <class T>
const std::vector<Row<T>> &rows() {
    static const std::vector<Row<T>> table = {
        {"distributions", [](int t, std::string &b) {
             for (int i = 0; i < 40; ++i) {
                 const T x = static_cast<T>(-4 + 0.2 * i + 0.01 * t);
                 const T v[] = {twin<T>(zorvs_f_normal_cdf, zorvs_d_normal_cdf)(x),
                                twin<T>(zorvs_f_t_cdf, zorvs_d_t_cdf)(x, T(3 + t)),
                                twin<T>(zorvs_f_chi_squared_cdf, zorvs_d_chi_squared_cdf)(x + 5, T(2 + t)),
                                twin<T>(zorvs_f_gamma, zorvs_d_gamma)(x / 2 + T(2.5))};
                 put(b, v, 4);
             }
         }, 0, false},
        {"random streams", [](int t, std::string &b) {
             zorvs_random_seed_set(1000 + 17 * t);
             take(b, twin<T>(zorvs_f_random_uniform, zorvs_d_random_uniform)(30, 0), 30);
             take(b, twin<T>(zorvs_f_random_normal, zorvs_d_random_normal)(30, 0), 30);
             take(b, twin<T>(zorvs_f_random_gamma, zorvs_d_random_gamma)(20, T(0.5 + t), 0), 20);
             take(b, zorvs_random_poisson(20, 3.5f + static_cast<float>(t), 0), 20);
             const int seed = zorvs_random_seed_get();
             put(b, &seed, 1);
         }, 0, false},
        {"simple statistics", [](int t, std::string &b) {
             std::vector<T> x = sample<T>(t, 60, 10);
             take(b, twin<T>(zorvs_f_simple_statistics, zorvs_d_simple_statistics)(30, 2, x.data(), 0), 28);
         }, 0, false},
        {"regression", [](int t, std::string &b) {
             std::vector<T> x = sample<T>(t, 50, 5), noise = sample<T>(t + 8, 25, 1), y(25);
             for (int i = 0; i < 25; ++i) y[i] = 1 + 2 * x[2 * i] - x[2 * i + 1] + noise[i];
             take(b, twin<T>(zorvs_f_regression, zorvs_d_regression)(25, 2, x.data(), y.data(), 0), 3);
         }, 0, false},
        {"contingency table", [](int t, std::string &b) {
             T table[9] = {T(20 + t), 17, 13, 14, T(22 - t), 16, 12, 15, T(19 + 2 * t)};
             int df = 0;
             T x2 = 0, p = 0;
             const T value = twin<T>(zorvs_f_contingency_table, zorvs_d_contingency_table)(
                 3, 3, table, ZORVS_CHI_SQUARED, &df, &x2, &p, 0);
             put(b, &value, 1), put(b, &df, 1), put(b, &x2, 1), put(b, &p, 1);
         }, 0, false},
        {"clustering", [](int t, std::string &b) {
             std::vector<T> x = sample<T>(t, 80, 10), seeds(x.begin(), x.begin() + 6), means(6);
             take(b, twin<T>(zorvs_f_cluster_k_means, zorvs_d_cluster_k_means)(
                         40, 2, x.data(), 3, seeds.data(), ZORVS_CLUSTER_MEANS_USER, means.data(), 0), 40);
             put(b, means.data(), 6);
         }, 0, false},
        {"printing with the thread's page width", [](int t, std::string &) {
             int width = 40 + 6 * t;
             zorvs_page(-1, &width);
             std::vector<T> a = sample<T>(t, 24, 100);
             twin<T>(zorvs_f_write_matrix, zorvs_d_write_matrix)("A", 4, 6, a.data(), 0);
         }, 0, true},
        {"a warning", [](int t, std::string &b) {
             const T v = twin<T>(zorvs_f_chi_squared_inverse_cdf, zorvs_d_chi_squared_inverse_cdf)(
                 T(0.5 + 0.01 * t), std::numeric_limits<T>::infinity());
             put(b, &v, 1);
         }, 3, false},
        {"a refused call", [](int t, std::string &b) {
             const T v = twin<T>(zorvs_f_poisson_cdf, zorvs_d_poisson_cdf)(3, T(-2 - t));
             put(b, &v, 1);
         }, 5, false},
    };
    return table;
}

// One call as its thread sees it: stops off, both units captured, no
// earlier message on record.
template <class T>
std::string run(const Row<T> &row, int t, int *type = nullptr) {
    zorvs_test::NoStop stops;
    zorvs_test::UnitCapture errors, output(false);
    zorvs_e1mes(0, 0, nullptr);
    std::string bytes;
    row.call(t, bytes);
    if (type) *type = zorvs_error_type();
    std::ostringstream s;
    s << zorvs_error_type() << ',' << zorvs_error_code() << "|out:" << output.text() << "|err:" << errors.text()
      << "|";
    return s.str() + bytes;
}

// Thread t runs the rows of tables[t]: first alone, one thread after the
// other, then with the others at once, `rounds` times in its own order.  Each
// concurrent call must leave what the same call left alone.  Returns the
// calls made alone.
template <class T>
std::vector<std::vector<std::string>> expect_same_together(const std::vector<const std::vector<Row<T>> *> &tables,
                                                          int rounds) {
    const int threads = static_cast<int>(tables.size());
    std::vector<std::vector<std::string>> alone(threads), differed(threads);
    for (int t = 0; t < threads; ++t)
        for (const Row<T> &row : *tables[t]) {
            int type = -1;
            alone[t].push_back(run(row, t, &type));
            differed[t].emplace_back();
            EXPECT_EQ(type, row.type) << row.family;
            EXPECT_EQ(alone[t].back().find("|out:|") == std::string::npos, row.prints) << row.family;
        }

    // Each thread keeps the first call that differed from its single-threaded
    // run, by row.
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t)
        pool.emplace_back([&, t] {
            const int n = static_cast<int>(tables[t]->size());
            for (int r = 0; r < rounds; ++r)
                for (int k = 0; k < n; ++k) {
                    const int i = (k * (t % 2 ? 1 : n - 1) + t + r) % n;  // orders differ by thread
                    std::string seen = run((*tables[t])[i], t);
                    if (seen != alone[t][i] && differed[t][i].empty()) differed[t][i] = seen;
                }
        });
    for (std::thread &p : pool) p.join();
    for (int t = 0; t < threads; ++t)
        for (std::size_t i = 0; i < alone[t].size(); ++i)
            EXPECT_EQ(differed[t][i], "") << "thread " << t << ", " << (*tables[t])[i].family << "; alone:\n"
                                          << alone[t][i];
    return alone;
}

ZORVS_TWIN_SUITE(ThreadTwin);

TYPED_TEST(ThreadTwin, EightThreadsMatchTheSingleThreadedCalls) {
    expect_same_together<TypeParam>(std::vector(8, &rows<TypeParam>()), 3);
}

// A fault in one thread: a call given an invalid pointer, trapping on.  The
// signal goes to the thread that faulted, whose handler jumps back into that
// thread's own bracket; its message is the trap's, at user level; the seven
// others, calling all the while, see nothing of it.
ZORVS_TWIN_SUITE(TrapThreadTwin);

TYPED_TEST(TrapThreadTwin, OneThreadFaultsWhileSevenCall) {
    using T = TypeParam;
    static T *const invalid = reinterpret_cast<T *>(static_cast<std::uintptr_t>(16));
    const Row<T> fault = {"a fault", [](int t, std::string &) {
                              std::free(twin<T>(zorvs_f_simple_statistics, zorvs_d_simple_statistics)(
                                  30 + t, 2, invalid, 0));
                          }, 5, false};
    const std::vector<Row<T>> faults(rows<T>().size(), fault);
    std::vector<const std::vector<Row<T>> *> tables(8, &rows<T>());
    tables[0] = &faults;
    const auto alone = expect_same_together<T>(tables, 3);
    EXPECT_EQ(alone[0][0].substr(0, 6), "5,102|");
    EXPECT_NE(alone[0][0].find("segmentation"), std::string::npos) << alone[0][0];
}

}  // namespace
