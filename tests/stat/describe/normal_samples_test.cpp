// normal_samples_test.cpp - one- and two-sample normal inference against R
// (tests/data/stat/describe/normal_samples_ref.inc, make_normal_samples.R:
// t.test, var.test, the chi-squared interval and test of a variance) on
// sleep, PlantGrowth, mtcars and airquality (with NA), and bad input as rows.
#include <span>

#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

#include "data/stat/describe/normal_samples_ref.inc"

ZORVS_TWIN_SUITE(NormalSamples);

// Every cell of every case within 1e-10 relative in double (p-values and
// statistics near 0 against a floor of 1e-12), 1e-3 in single, where a
// p-value taken as 1 - P loses digits and beyond 68 degrees of freedom the
// chi-squared distribution is the library's Wilson-Hilferty form.
TYPED_TEST(NormalSamples, AgreeWithR) {
    using T = TypeParam;
    const double tol = sizeof(T) == 4 ? 5e-5 : 1e-10, floor = sizeof(T) == 4 ? 1e-3 : 1e-12;
    Quiet q;
    using Cases = std::span<const SampleCase>;
    for (const auto &[cases, two] : {std::pair{Cases(one_sample_cases), false}, {Cases(two_sample_cases), true}}) {
        Worst worst(std::string(two ? "two" : "one") + "-sample inference against R, " + (sizeof(T) == 4 ? "float" : "double"));
        for (const SampleCase &c : cases) {
            SCOPED_TRACE(c.name);
            std::vector<T> x1(c.x1.begin(), c.x1.end()), x2(c.x2.begin(), c.x2.end()), mine(c.want.size(), T(-7));
            T *r = two ? ZORVS_TWIN(f_normal_two_sample, d_normal_two_sample)(
                             int(x1.size()), x1.data(), int(x2.size()), x2.data(), ZORVS_HYPOTHESIZED_DIFFERENCE,
                             c.hypothesis1, ZORVS_HYPOTHESIZED_RATIO, c.hypothesis2, ZORVS_CONFIDENCE_MEANS,
                             c.level_means, ZORVS_CONFIDENCE_VARIANCES, c.level_variances, ZORVS_RETURN_USER, mine.data(), 0)
                       : ZORVS_TWIN(f_normal_one_sample, d_normal_one_sample)(
                             int(x1.size()), x1.data(), ZORVS_HYPOTHESIZED_MEAN, c.hypothesis1,
                             ZORVS_HYPOTHESIZED_VARIANCE, c.hypothesis2, ZORVS_CONFIDENCE_MEANS, c.level_means,
                             ZORVS_CONFIDENCE_VARIANCES, c.level_variances, ZORVS_RETURN_USER, mine.data(), 0);
            ASSERT_EQ(r, mine.data());
            for (std::size_t k = 0; k < c.want.size(); ++k) {
                const double e = relative_error(r[k], c.want[k], floor);
                worst.add(e);
                EXPECT_LE(e, tol) << "cell " << k << ": " << r[k] << " against " << c.want[k];
            }
        }
    }
}

// Refusals and warnings: the (type, code), its parameters, and the caller's
// storage left as it was after a terminal error.
TEST(NormalSamples, BadInputAsRows) {
    double x[] = {1, 2, 4, 8}, nan3[] = {NaN, NaN, NaN}, one_left[] = {NaN, 3, NaN}, same[] = {2, 2, 2}, with_nan[] = {1, NaN, 3},
           level = 80, mine[30] = {-7}, *none = nullptr;
    float xf[] = {1, 2, 4};
    const auto untouched = [&] { return mine[0] == -7 && mine[29] == 0; };
    // the one- and two-sample results, into the caller's storage with `user`
    auto one = [&](int n, double *x, auto... keys) { return zorvs_d_normal_one_sample(n, x, keys..., 0); };
    auto two = [&](int n1, double *x1, int n2, double *x2, auto... keys) {
        return zorvs_d_normal_two_sample(n1, x1, n2, x2, keys..., 0);
    };
    const int user = ZORVS_RETURN_USER;
    expect_rows({
        {ZORVS_CALL(one(0, x) == nullptr), 1, 5, 603},
        {ZORVS_CALL(one(3, nan3, user, mine) == mine && untouched()), 1, 5, 21101, "i1=1 i2=0"},
        {ZORVS_CALL(one(3, one_left, user, mine) == mine && untouched()), 1, 5, 21101, "i1=1 i2=1"},
        {ZORVS_CALL(two(4, x, 1, x, user, mine) == mine && untouched()), 1, 5, 21101, "i1=2 i2=1"},
        {ZORVS_CALL(one(4, x, ZORVS_CONFIDENCE_MEANS, 100.0) == nullptr), 1, 5, 11064, "r1=100"},
        {ZORVS_CALL(two(4, x, 4, x, ZORVS_CONFIDENCE_VARIANCES_ADR, none) == nullptr), 1, 5, 150},
        {ZORVS_CALL(zorvs_f_normal_two_sample(3, xf, 3, xf, ZORVS_CONFIDENCE_VARIANCES, 120.0, 0) == nullptr), 1, 5, 11065},
        {ZORVS_CALL(one(4, x, ZORVS_HYPOTHESIZED_VARIANCE, 0.0) == nullptr), 1, 5, 21103, "r1=0 l1=ZORVS_HYPOTHESIZED_VARIANCE"},
        {ZORVS_CALL(two(4, x, 4, x, ZORVS_HYPOTHESIZED_RATIO, -1.0) == nullptr), 1, 5, 21103},
        {ZORVS_CALL(one(4, x, ZORVS_HYPOTHESIZED_MEAN, NaN) == nullptr), 1, 5, 21108, "l1=ZORVS_HYPOTHESIZED_MEAN"},
        {ZORVS_CALL(two(4, x, 4, x, ZORVS_HYPOTHESIZED_DIFFERENCE, Inf) == nullptr), 1, 5, 21108},
        {ZORVS_CALL(one(4, x, ZORVS_HYPOTHESIZED_DIFFERENCE, 1.0) == nullptr), 1, 5, 11001},
        {ZORVS_CALL(two(4, x, 4, nullptr) == nullptr), 1, 5, 150, "l1=x2"},
        // warnings keep the result: NaN left out (count 2 of 3), constant data
        {ZORVS_CALL(two(4, x, 3, one_left) == nullptr), 1, 5, 21101},
        {ZORVS_CALL(one(3, with_nan, user, mine)[0]), 2, 3, 21100, "i1=1 i2=1"},
        {ZORVS_CALL(one(3, same, user, mine)[9]), NaN, 3, 21102, "i1=1"},
        {ZORVS_CALL(mine[1] == 2 && mine[13] == 0 && std::isnan(mine[5])), 1},
        {ZORVS_CALL(two(3, same, 4, x, user, mine)[22]), NaN, 3, 21102, "i1=3"},
        {ZORVS_CALL(two(3, same, 3, same, ZORVS_CONFIDENCE_MEANS_ADR, &level, user, mine)[18]), NaN, 3, 21102},
        {ZORVS_CALL(one(4, x, ZORVS_CONFIDENCE_MEANS, 0.0, user, mine)[5]), NaN},
    });
}

}  // namespace
