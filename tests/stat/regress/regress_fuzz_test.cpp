// regress_fuzz_test.cpp - the regressors of a general linear model and the
// regression fit, in both twins, called with random shapes, keywords and
// awkward data (NaN, infinities, zeros, huge and subnormal values, repeated
// rows, negative frequencies and weights) from fixed seeds.  What must hold
// whatever the arguments:
//   - the call returns, and x comes back as it was;
//   - a null result (or a count of 0 with its message) goes with a message of
//     type 4 or 5, and a result with none of them;
//   - the count of regressors is the same with and without the matrix;
//   - the summary and prediction of any record a fit returns give all their
//     outputs or none, none with a message of type 4 or 5, and leverages of
//     rows with a finite residual no larger than 1.
// Under the sanitizer build these runs also look for reads and writes out of
// bounds and for leaks on every path.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "stat/regress/twins.hpp"
#include "support/capture.hpp"
#include "support/tables.hpp"
#include "zorvstat.h"

namespace {

using zorvs_test::fit;
using zorvs_test::glm;
using zorvs_test::Info;
using zorvs_test::Quiet;

struct Draw : zorvs_test::Xorshift {
    double value() {
        static const double awkward[] = {std::numeric_limits<double>::quiet_NaN(),
                                         std::numeric_limits<double>::infinity(), 0.0, -0.0, 1.0, 1e-310, 1e300,
                                         -1e300, 3.0, 3.0, 2.0};
        if (below(5) == 0) return awkward[below(sizeof awkward / sizeof awkward[0])];
        return 10 * unit() - 5;
    }
};

// A message of type 4 or 5 since the log was last cleared.
bool failed(const zorvs_test::CodeLog &codes) {
    for (const auto &e : codes.entries())
        if (e.first == 4 || e.first == 5) return true;
    return false;
}

// The same bits: NaN included.
template <class T>
bool same(const std::vector<T> &a, const std::vector<T> &b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

template <class T>
class RegressFuzz : public ::testing::Test {};
using Reals = ::testing::Types<float, double>;
TYPED_TEST_SUITE(RegressFuzz, Reals);

TYPED_TEST(RegressFuzz, RegressorsForGlm) {
    using T = TypeParam;
    Quiet q;
    zorvs_test::CodeLog codes;
    Draw d{{0x9E3779B97F4A7C15ull}};
    for (int run = 0; run < 400; ++run) {
        const int n = 1 + d.below(8), n_class = d.below(3), n_cont = d.below(3), c = n_class + n_cont;
        const int ld = c + d.below(2);
        std::vector<T> x(static_cast<std::size_t>(n) * (ld > 0 ? ld : 1));
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < ld; ++j)
                x[i * ld + j] = static_cast<T>(j < n_class ? (d.below(6) ? 1 + d.below(3) : d.value()) : d.value());
        const std::vector<T> before = x;
        const int scheme = 1 + d.below(3), order = 1 + d.below(2);
        int sizes[3], columns[9], n_effects = 1 + d.below(3), total = 0;
        for (int e = 0; e < n_effects; ++e) {
            sizes[e] = 1 + d.below(3);
            for (int m = 0; m < sizes[e]; ++m) columns[total++] = d.below(ld > 0 ? ld : 1);
        }
        const bool by_hand = d.below(2) == 0;
        auto call = [&](auto... out) {
            return by_hand ? glm<T>(n, x.data(), n_class, n_cont, ZORVS_X_COL_DIM, ld, ZORVS_DUMMY, scheme,
                                    ZORVS_INDICES_EFFECTS, n_effects, sizes, columns, out..., 0)
                           : glm<T>(n, x.data(), n_class, n_cont, ZORVS_X_COL_DIM, ld, ZORVS_DUMMY, scheme,
                                    ZORVS_MODEL_ORDER, order, out..., 0);
        };
        codes.clear();
        const int count = call();
        const bool refused = failed(codes);
        EXPECT_TRUE(!refused || count == 0) << run;
        EXPECT_TRUE(c >= 1 || refused) << run;
        EXPECT_TRUE(same(x, before)) << run;
        if (refused || count == 0) continue;
        T *made = nullptr;
        EXPECT_EQ(call(ZORVS_REGRESSORS, &made), count) << run;
        ASSERT_NE(made, nullptr) << run;
        std::vector<T> mine(static_cast<std::size_t>(n) * (count + 1), T(-7));
        EXPECT_EQ(call(ZORVS_REGRESSORS_USER, mine.data(), ZORVS_REGRESSORS_COL_DIM, count + 1), count) << run;
        for (int i = 0; i < n; ++i) {
            EXPECT_EQ(mine[i * (count + 1) + count], T(-7)) << run;
            for (int j = 0; j < count; ++j) {
                const T a = made[i * count + j], b = mine[i * (count + 1) + j];
                EXPECT_TRUE(a == b || (std::isnan(a) && std::isnan(b))) << run;
            }
        }
        std::free(made);
        EXPECT_TRUE(same(x, before)) << run;
    }
}

TYPED_TEST(RegressFuzz, Regression) {
    using T = TypeParam;
    Quiet q;
    zorvs_test::CodeLog codes;
    Draw d{{0xD1B54A32D192ED03ull}};
    for (int run = 0; run < 600; ++run) {
        const int n = 1 + d.below(9), nv = 1 + d.below(4), ld = nv + d.below(2);
        std::vector<T> x(static_cast<std::size_t>(n) * ld), y(n), f(n), w(n);
        for (T &v : x) v = static_cast<T>(d.below(4) ? 3 * d.unit() : d.value());
        for (int i = 0; i < n; ++i) {
            y[i] = static_cast<T>(d.below(4) ? d.unit() : d.value());
            f[i] = static_cast<T>(d.below(8) ? d.below(3) : d.value());
            w[i] = static_cast<T>(d.below(8) ? 2 * d.unit() : d.value());
        }
        if (d.below(3) == 0)  // repeated rows and columns
            for (int i = 1; i < n; ++i) x[i * ld] = x[(i - 1) * ld];
        const std::vector<T> before = x;
        const T *freq = d.below(3) == 0 ? f.data() : nullptr;
        const T *wt = d.below(3) == 0 ? w.data() : nullptr;
        const bool no_intercept = d.below(3) == 0;
        T *aov = nullptr, *cov = nullptr, *means = nullptr, *res = nullptr;
        Info<T> *info = nullptr;
        int rank = 0;
        T *b;
        auto call = [&](auto... more) {
            return fit<T>(n, nv, x.data(), y.data(), ZORVS_X_COL_DIM, ld, ZORVS_FREQUENCIES, freq, ZORVS_WEIGHTS, wt,
                          ZORVS_ANOVA_TABLE, &aov, ZORVS_COEF_COVARIANCES, &cov, ZORVS_X_MEAN, &means, ZORVS_RESIDUAL,
                          &res, ZORVS_REGRESSION_INFO, &info, ZORVS_RANK, &rank, more..., 0);
        };
        codes.clear();
        b = no_intercept ? call(ZORVS_NO_INTERCEPT) : call(ZORVS_TOLERANCE, d.below(4) ? 1e-5 : 2.0);
        EXPECT_EQ(b == nullptr, failed(codes)) << run;
        EXPECT_EQ(info == nullptr, failed(codes)) << run;
        if (info) {
            EXPECT_EQ(info->n_parameters, nv + (no_intercept ? 0 : 1)) << run;
            EXPECT_LE(info->rank, info->n_parameters) << run;
            EXPECT_LE(info->rows_missing, n) << run;
        }
        EXPECT_TRUE(same(x, before)) << run;
        if (info) {  // the summary and prediction of whatever record came out
            T *tests = nullptr, *vif = nullptr, *lev = nullptr, *del = nullptr, *lo = nullptr, *hi = nullptr;
            codes.clear();
            zorvs_test::summary<T>(info, ZORVS_COEF_T_TESTS, &tests, ZORVS_COEF_VIF, &vif, 0);
            EXPECT_EQ(tests == nullptr || vif == nullptr, failed(codes)) << run;
            codes.clear();
            T *pred = zorvs_test::predict<T>(info, n, x.data(), ZORVS_X_COL_DIM, ld, ZORVS_Y, y.data(), ZORVS_WEIGHTS,
                                             w.data(), ZORVS_LEVERAGE, &lev, ZORVS_DELETED_RESIDUAL, &del,
                                             ZORVS_SCHEFFE_CI, &lo, &hi, ZORVS_CONFIDENCE, 90.0, 0);
            EXPECT_EQ(pred == nullptr || lev == nullptr || lo == nullptr, failed(codes)) << run;
            for (int i = 0; lev && pred && i < n; ++i)  // a residual known: clamped
                EXPECT_FALSE(lev[i] > T(1) && std::isfinite(y[i] - pred[i])) << run;
            for (T *p : {tests, vif, pred, lev, del, lo, hi}) std::free(p);
        }
        for (void *p : {static_cast<void *>(b), static_cast<void *>(aov), static_cast<void *>(cov),
                        static_cast<void *>(means), static_cast<void *>(res), static_cast<void *>(info)})
            std::free(p);
    }
}

}  // namespace
