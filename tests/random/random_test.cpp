// random_test.cpp - the random number routines.  The shared uniform
// generator: its plain and shuffled sequences against exact-integer
// computations (tests/data/random/sequences.hpp and long_runs.hpp,
// make_sequences.py and make_long_runs.py), the blocked states against the
// published one-step formula, one stream across the twins, the seed, option
// and shuffle-table routines.  The non-uniform deviates (normal,
// exponential, gamma, Poisson, beta, and the multivariate normal on
// Kinderman and Ramage's normal deviates): the uniforms each method takes
// from the exact stream of generator 1, goodness of fit of 10^6 deviates at
// fixed seeds against the library's own distribution functions, sample
// moments within 4 standard errors (beta moments from mpmath,
// tests/data/random/beta_moments.inc, make_beta_moments.py), covariances.
// The failure paths of both as rows.
#include <cctype>

#include "data/random/long_runs.hpp"
#include "data/random/sequences.hpp"
#include "random/random.h"
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;
using random_ref::divisor;
using random_ref::plain1_seed1;

constexpr int kDraws = 1000000;

// Option and seed, with both shuffle tables emptied (first entry 0).
void reset(int option, int seed) {
    const float zero[128] = {};
    const double dzero[128] = {};
    zorvs_random_option(option);
    zorvs_random_seed_set(seed);
    zorvs_rnses(zero);
    zorvs_drnses(dzero);
}

// The deviates of an allocated result as doubles, the result freed.
template <class T>
std::vector<double> taken(T *x, int n) {
    EXPECT_NE(x, nullptr);
    std::vector<double> v(x, x ? x + n : x);
    std::free(x);
    return v;
}

// ---------------------------------------------------------------- uniform
// 200 numbers of each form in one call, and 300001 in calls of mixed
// lengths (the blocks split everywhere), in both twins: the single twin
// gives the same numbers rounded to float.
TEST(RandomUniform, SequencesMatchExactIntegersInCallsOfAnyLength) {
    using namespace random_ref;
    const struct { int option, seed; const int64_t *ref; int64_t last; } cases[] = {
        {1, 1, plain1_seed1, plain1_seed1[199]},
        {3, 1, plain3_seed1, plain3_seed1[199]},
        {5, 1, plain5_seed1, plain5_seed1[199]},
        {3, 123457, plain3_seed123457, plain3_seed123457[199]},
        {5, 123457, plain5_seed123457, plain5_seed123457[199]},
        {2, 1, shuffled1_seed1, shuffled1_seed1_last},
        {4, 1, shuffled3_seed1, shuffled3_seed1_last},
        {6, 1, shuffled5_seed1, shuffled5_seed1_last},
        {4, 123457, shuffled3_seed123457, shuffled3_seed123457_last},
        {6, 123457, shuffled5_seed123457, shuffled5_seed123457_last},
    };
    double r[200];
    float f[200];
    for (const auto &c : cases) {
        SCOPED_TRACE("option " + std::to_string(c.option) + " seed " + std::to_string(c.seed));
        reset(c.option, c.seed);
        zorvs_d_random_uniform(200, ZORVS_RETURN_USER, r, 0);
        EXPECT_EQ(zorvs_random_seed_get(), c.last);
        reset(c.option, c.seed);
        zorvs_f_random_uniform(200, ZORVS_RETURN_USER, f, 0);
        for (int i = 0; i < 200; ++i) {
            ASSERT_EQ(r[i], double(c.ref[i]) / divisor) << i;
            ASSERT_EQ(f[i], float(double(c.ref[i]) / divisor)) << i;
        }
    }
    reset(1, 1);
    zorvs_d_random_uniform(5, ZORVS_RETURN_USER, r, 0);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(r[i], plain1_seed1_quot[i]);  // exactly rounded quotients
    const int chunks[] = {1, 2, 5, 255, 256, 257, 511, 3, 4096, 100000};
    std::vector<double> rd(long_run_draws);
    std::vector<float> rf(long_run_draws);
    for (int option = 1; option <= 6; ++option) {
        for (const bool single : {false, true}) {
            reset(option, long_run_seed);
            for (int done = 0, c = 0; done < long_run_draws; done += chunks[c++ % 10]) {
                const int len = std::min(chunks[c % 10], long_run_draws - done);
                if (single) zorvs_f_random_uniform(len, ZORVS_RETURN_USER, rf.data() + done, 0);
                else zorvs_d_random_uniform(len, ZORVS_RETURN_USER, rd.data() + done, 0);
            }
            for (int p = 0; p < long_run_picks; ++p) {
                const int i = long_run_pick_index[p];
                const double want = double(long_run_state[option - 1][p]) / divisor;
                EXPECT_EQ(single ? double(rf[i]) : rd[i], single ? double(float(want)) : want) << option << " draw " << i;
            }
            EXPECT_EQ(zorvs_random_seed_get(), long_run_last_seed[option - 1]) << option;
        }
    }
    reset(1, 1);
}

// One step of the generator in its published split-multiplier form: every
// product stays below 2^53, so double arithmetic and fmod are exact.  The
// generator makes its states several at a time from powers of the
// multiplier: the first nine states after edge and random seeds, and the
// seed left behind, must be the one-step formula iterated.
TEST(RandomUniform, BlockedStatesEqualTheSplitFmodFormula) {
    const double m = 2147483647.0;
    auto step = [m](int option, double x) {
        if (option == 1) return std::fmod(x * 16807.0, m);
        if (option == 3) return std::fmod(std::fmod(x * 32768.0, m) * 12121.0 + std::fmod(x * 23166.0, m), m);
        return std::fmod(std::fmod(x * 32768.0, m) * 29013.0 + std::fmod(x * 8392.0, m), m);
    };
    std::vector<int> seeds = {1, 2, 3, 127, 128, 16807, 32767, 32768, 65536, 1 << 30, (1 << 30) + 1, 2147483645, 2147483646};
    Xorshift pick{20261123};
    for (int i = 0; i < 100000; ++i) seeds.push_back(1 + pick.below(2147483646));
    for (int option : {1, 3, 5}) {
        zorvs_random_option(option);
        for (int s : seeds) {
            zorvs_random_seed_set(s);
            double r[9], x = s;
            zorvs_d_r1uni(9, r);
            for (int i = 0; i < 9; ++i) {
                x = step(option, x);
                ASSERT_EQ(r[i], x / double(divisor)) << "option " << option << " seed " << s << " step " << i + 1;
            }
            ASSERT_EQ(zorvs_random_common.seed, x) << "option " << option << " seed " << s;
        }
    }
    zorvs_random_option(1);
}

// The twins continue one stream; a table of 0.5's returns 0.5 at fresh
// slots; the double table, never installed, is filled from the stream (128
// steps) at its first shuffled draw; a table emptied by a first entry 0 is
// refilled (128 + 1 steps); moving between shuffled forms keeps the table.
TEST(RandomUniform, OneStreamAcrossTwinsAndTheShuffleTables) {
    float f[4];
    double d[3];
    for (int option : {1, 3, 5}) {
        reset(option, 1);
        zorvs_f_random_uniform(3, ZORVS_RETURN_USER, f, 0);
        zorvs_d_random_uniform(3, ZORVS_RETURN_USER, d, 0);
        const int64_t *ref = option == 1 ? plain1_seed1 : option == 3 ? random_ref::plain3_seed1 : random_ref::plain5_seed1;
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(f[i], float(double(ref[i]) / divisor));
            EXPECT_EQ(d[i], double(ref[3 + i]) / divisor);
        }
    }
    reset(2, 1);
    std::vector<float> half(128, 0.5f);
    zorvs_rnses(half.data());
    zorvs_f_random_uniform(4, ZORVS_RETURN_USER, f, 0);
    EXPECT_EQ(std::vector<float>(f, f + 4), std::vector<float>(4, 0.5f));
    EXPECT_EQ(zorvs_random_seed_get(), plain1_seed1[3]);
    zorvs_d_random_uniform(1, ZORVS_RETURN_USER, d, 0);
    EXPECT_EQ(zorvs_random_seed_get(), plain1_seed1[4 + 128]);
    EXPECT_TRUE(d[0] > 0 && d[0] < 1);
    reset(2, 1);
    zorvs_f_random_uniform(1, ZORVS_RETURN_USER, f, 0);
    EXPECT_EQ(zorvs_random_seed_get(), plain1_seed1[128]);
    EXPECT_EQ(f[0], float(double(random_ref::shuffled1_seed1[0]) / divisor));
    zorvs_random_option(4);
    EXPECT_EQ(zorvs_random_common.table_filled, 1);
    zorvs_random_option(1);
}

// ---------------------------------------------------------------- deviates
// Asymptotic Kolmogorov-Smirnov p-value of a sample against cdf.
double ks_p(std::vector<double> v, const std::function<double(double)> &cdf) {
    std::sort(v.begin(), v.end());
    const double n = double(v.size());
    double d = 0, s = 0;
    for (std::size_t i = 0; i < v.size(); ++i) d = std::max({d, cdf(v[i]) - i / n, (i + 1) / n - cdf(v[i])});
    const double x = (std::sqrt(n) + 0.12 + 0.11 / std::sqrt(n)) * d;
    for (int k = 1; k <= 100; ++k) s += 2 * ((k % 2) ? 1 : -1) * std::exp(-2.0 * k * k * x * x);
    return std::clamp(s, 0.0, 1.0);
}

// Chi-squared p-value of a sample over the classes split at `edges`, with
// cdf(edge) the probability below each; neighbours pooled until each class
// expects at least 5 and so does what is left.  An error of the inverse
// that placed the edges moves an edge but does not bias the test.
double chi2_p(const std::vector<double> &x, const std::vector<double> &edges, const std::function<double(double)> &cdf) {
    std::vector<double> count(edges.size() + 1, 0.0);
    for (double v : x) count[std::upper_bound(edges.begin(), edges.end(), v) - edges.begin()] += 1;
    const double n = double(x.size());
    double chi2 = 0, observed = 0, expected = 0, below = 0;
    int df = -1;
    for (std::size_t k = 0; k < count.size(); ++k) {
        const double f = k < edges.size() ? cdf(edges[k]) : 1.0;
        observed += count[k];
        expected += n * (f - below);
        below = f;
        if ((expected >= 5 && n * (1 - f) >= 5) || k + 1 == count.size()) {
            chi2 += (observed - expected) * (observed - expected) / expected;
            observed = expected = 0;
            ++df;
        }
    }
    return 1 - zorvs_d_chi_squared_cdf(chi2, df);
}

// Sample means and covariances of n vectors of length l (row-major) each
// within 4 standard errors: Var(s_ij) = (s_ii s_jj + s_ij^2) / n for normal
// data.  One vector: the variance against the fourth central moment mu4.
void check_moments(const std::vector<double> &x, int l, const double *sigma, double mu4 = 0, double mean = 0) {
    const std::size_t n = x.size() / l;
    std::vector<double> m(l, 0.0);
    for (std::size_t i = 0; i < x.size(); ++i) m[i % l] += x[i] / double(n);
    for (int a = 0; a < l; ++a) {
        EXPECT_LE(std::fabs(m[a] - mean), 4 * std::sqrt(sigma[a * l + a] / n)) << "mean " << a;
        for (int b = a; b < l; ++b) {
            double s = 0;
            for (std::size_t i = 0; i < n; ++i) s += (x[i * l + a] - m[a]) * (x[i * l + b] - m[b]);
            const double var = l == 1 ? mu4 - sigma[0] * sigma[0] : sigma[a * l + a] * sigma[b * l + b] + sigma[a * l + b] * sigma[a * l + b];
            EXPECT_LE(std::fabs(s / double(n - 1) - sigma[a * l + b]), 4 * std::sqrt(var / n)) << "covariance " << a << ", " << b;
        }
    }
}

// A sample of 10^6 deviates at a seed, tested against the library's cdf:
// by Kolmogorov-Smirnov (classes 0), or by chi-squared over that many classes
// of equal probability from `inverse`, or without one over the integers
// below `classes`; and its moments where the mean is given.
struct Fit {
    std::string name;
    int seed;
    std::function<std::vector<double>()> draw;
    std::function<double(double)> cdf = {}, inverse = {};
    int classes = 0;
    double mean = NaN, var = 0, mu4 = 0;
    bool unit = false;  // values in [0, 1]
};
#define ZORVS_SAMPLE(call) [=] { return taken(call, kDraws); }

struct Moments { double p, q, mean, var, mu4; };
const Moments beta_moments[] = {
#include "data/random/beta_moments.inc"
};

std::vector<Fit> fits() {
    const auto normal_cdf = [](double x) { return zorvs_d_normal_cdf(x); };
    const auto normal_inverse = [](double p) { return zorvs_d_normal_inverse_cdf(p); };
    const double one = 1.0;
    const float onef = 1.0f;
    // Kinderman-Ramage normals also by chi-squared: finer than
    // Kolmogorov-Smirnov to a fault in one of the method's narrow regions.
    std::vector<Fit> all = {
        {"normal", 12345, ZORVS_SAMPLE(zorvs_d_random_normal(kDraws, 0)), normal_cdf, {}, 0, 0, 1, 3},
        {"single normal", 4321, ZORVS_SAMPLE(zorvs_f_random_normal(kDraws, 0)), normal_cdf},
        {"single exponential", 99, ZORVS_SAMPLE(zorvs_f_random_exponential(kDraws, 0)), [](double x) { return 1 - std::exp(-x); }, {}, 0, 1, 1, 9},
        {"Kinderman-Ramage", 5001, ZORVS_SAMPLE(zorvs_d_random_normal_multivariate(kDraws, 1, &one, 0)), normal_cdf, normal_inverse, 0, 0, 1, 3},
        {"Kinderman-Ramage", 5001, ZORVS_SAMPLE(zorvs_d_random_normal_multivariate(kDraws, 1, &one, 0)), normal_cdf, normal_inverse, 200, 0, 1, 3},
        {"single Kinderman-Ramage", 5002, ZORVS_SAMPLE(zorvs_f_random_normal_multivariate(kDraws, 1, &onef, 0)), normal_cdf, normal_inverse, 0},
        {"single Kinderman-Ramage", 5002, ZORVS_SAMPLE(zorvs_f_random_normal_multivariate(kDraws, 1, &onef, 0)), normal_cdf, normal_inverse, 200},
    };
    // Every method of the gamma deviates: GS below 1, 0.5, 1, the
    // Schmeiser-Lal hat with and without its left convex piece, large a;
    // variance a, fourth central moment 3a^2 + 6a.
    int seed = 1000;
    for (double a : {0.05, 0.3, 0.5, 0.9, 1.0, 1.5, 2.5, 5.0, 30.0, 1000.0})
        all.push_back({"gamma " + std::to_string(a), ++seed, ZORVS_SAMPLE(zorvs_d_random_gamma(kDraws, a, 0)),
                       [a](double x) { return zorvs_d_gamma_cdf(x, a); }, {}, 0, a, a, 3 * a * a + 6 * a});
    for (float a : {0.4f, 3.0f})
        all.push_back({"single gamma " + std::to_string(a), ++seed, ZORVS_SAMPLE(zorvs_f_random_gamma(kDraws, a, 0)),
                       [a](double x) { return zorvs_d_gamma_cdf(x, a); }});
    // Poisson by inversion below 15, by PTPE above.
    seed = 2000;
    for (float theta : {0.1f, 2.5f, 14.5f, 15.0f, 40.0f, 250.0f, 5000.0f})
        all.push_back({"Poisson " + std::to_string(theta), ++seed, ZORVS_SAMPLE(zorvs_random_poisson(kDraws, theta, 0)),
                       [theta](double x) { return zorvs_d_poisson_cdf(int(x), theta); }, {},
                       int(theta + 12 * std::sqrt(theta) + 20), theta, theta, theta * (1 + 3 * theta)});
    // Beta: Johnk's method (also in logarithms), inversion, switching and
    // Cheng's; (2.5, 1) and (1, 1) fall into the same classes, being one
    // monotone map of the same uniforms.  Shapes so small that both powers
    // of Johnk's method underflow together: the round in logarithms keeps
    // the moments (no fit).
    seed = 3000;
    for (const Moments &m : beta_moments)
        all.push_back({"beta " + std::to_string(m.p) + ", " + std::to_string(m.q), m.p == 0.02 ? 77 : ++seed,
                       ZORVS_SAMPLE(zorvs_d_random_beta(kDraws, m.p, m.q, 0)), [m](double x) { return zorvs_d_beta_cdf(x, m.p, m.q); },
                       [m](double p) { return zorvs_d_beta_inverse_cdf(p, m.p, m.q); }, m.p == 0.02 ? -1 : 500, m.mean, m.var,
                       m.mu4, true});
    seed = 4000;
    for (auto [p, q] : {std::pair{0.4f, 0.6f}, {1.0f, 2.0f}, {0.5f, 6.0f}, {3.0f, 4.0f}})
        all.push_back({"single beta " + std::to_string(p) + ", " + std::to_string(q), ++seed,
                       ZORVS_SAMPLE(zorvs_f_random_beta(kDraws, p, q, 0)), [p, q](double x) { return zorvs_d_beta_cdf(x, p, q); },
                       [p, q](double x) { return zorvs_d_beta_inverse_cdf(x, p, q); }, 500});
    return all;
}

const std::vector<Fit> all_fits = fits();

class RandomFit : public ::testing::TestWithParam<std::size_t> {};

TEST_P(RandomFit, DeviatesFitTheirDistributionAtAFixedSeed) {
    const Fit &f = all_fits[GetParam()];
    reset(1, f.seed);
    const std::vector<double> x = f.draw();
    if (f.unit) { EXPECT_TRUE(std::all_of(x.begin(), x.end(), [](double v) { return v >= 0 && v <= 1; })); }
    if (!std::isnan(f.mean)) check_moments(x, 1, &f.var, f.mu4, f.mean);
    if (f.classes < 0) return;
    std::vector<double> edges;
    for (int k = 1; k < f.classes; ++k) {
        const double e = f.inverse ? f.inverse(double(k) / f.classes) : k - 0.5;
        if (edges.empty() || e > edges.back()) edges.push_back(e);
    }
    const double p = f.classes ? chi2_p(x, edges, f.cdf) : ks_p(x, f.cdf);
    std::printf("[measure] %s, seed %d: %s p = %.3f\n", f.name.c_str(), f.seed, f.classes ? "chi-squared" : "Kolmogorov-Smirnov", p);
    EXPECT_GT(p, 1e-3);
}

INSTANTIATE_TEST_SUITE_P(Deviates, RandomFit, ::testing::Range(std::size_t(0), all_fits.size()),
                         [](const ::testing::TestParamInfo<std::size_t> &info) {
                             std::string name = all_fits[info.param].name + "_" + std::to_string(info.param);
                             for (char &c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                             return name;
                         });

// Inversion takes one uniform a deviate, from the exact stream of seed 1:
// normal, exponential, gamma at 1 (the exponential) and 1/2 (z^2 / 2), beta
// with a shape of 1 (1 - u^(1/3) by expm1, accurate near 0), the Poisson
// count below theta = 15.  The rejection methods are held to their
// distributions by the fits above.
TEST(RandomDeviates, InversionsTakeOneUniformEach) {
    const auto z = [](double u) { return zorvs_d_normal_inverse_cdf(u); };
    const auto exponential = [](double u) { return -std::log(u); };
    const struct {
        std::function<void(double *)> draw;
        std::function<double(double)> deviate;
    } rows[] = {
        {[](double *r) { zorvs_d_random_normal(5, ZORVS_RETURN_USER, r, 0); }, z},
        {[](double *r) { zorvs_d_random_exponential(5, ZORVS_RETURN_USER, r, 0); }, exponential},
        {[](double *r) { zorvs_d_random_gamma(5, 1.0, ZORVS_RETURN_USER, r, 0); }, exponential},
        {[](double *r) { zorvs_d_random_gamma(5, 0.5, ZORVS_RETURN_USER, r, 0); }, [z](double u) { return z(u) * z(u) / 2; }},
        {[](double *r) { zorvs_d_random_beta(5, 2.5, 1.0, ZORVS_RETURN_USER, r, 0); }, [](double u) { return std::pow(u, 0.4); }},
        {[](double *r) { zorvs_d_random_beta(5, 1.0, 3.0, ZORVS_RETURN_USER, r, 0); }, [](double u) { return -std::expm1(std::log(u) / 3); }},
        {[](double *r) { zorvs_d_random_beta(5, 1.0, 1.0, ZORVS_RETURN_USER, r, 0); }, [](double u) { return u; }},
        // below theta = 15 the least k with u <= F(k), for its own uniform
        {[](double *r) { std::copy_n(zorvs_random_poisson(5, 7.0f, ZORVS_RETURN_USER, std::array<int, 5>{}.data(), 0), 5, r); },
         [](double u) { int k = 0; while (u > zorvs_d_poisson_cdf(k, 7.0)) ++k; return k + 0.0; }},
    };
    for (const auto &row : rows) {
        double r[5];
        reset(1, 1);
        row.draw(r);
        EXPECT_EQ(zorvs_random_seed_get(), plain1_seed1[4]) << &row - rows;
        for (int i = 0; i < 5; ++i)
            EXPECT_LE(relative_error(r[i], row.deviate(double(plain1_seed1[i]) / divisor), DBL_MIN), 1e-14) << &row - rows << " " << i;
    }
}

// The rejection loops draw their uniforms ahead in blocks: one call of n
// deviates gives the same deviates, seed and next uniform as n calls of one,
// for plain and shuffled options (started with empty shuffle tables).
template <class T, class Draw>
void one_call_equals_many(Draw draw) {
    constexpr int n = 700;  // several blocks
    for (int option : {1, 2, 5, 6}) {
        std::vector<T> once(n), each(n);
        double next[2];
        for (int way = 0; way < 2; ++way) {
            reset(option, 4242);
            if (way == 0) draw(n, once.data());
            for (int i = 0; way == 1 && i < n; ++i) draw(1, &each[i]);
            zorvs_d_random_uniform(1, ZORVS_RETURN_USER, &next[way], 0);
        }
        EXPECT_EQ(next[0], next[1]) << "option " << option;
        EXPECT_EQ(once, each) << "option " << option;
    }
    reset(1, 1);
}

TEST(RandomDeviates, OneCallEqualsManyCallsOfOne) {
    for (double a : {0.3, 3.0, 30.0})
        one_call_equals_many<double>([a](int n, double *r) { zorvs_d_random_gamma(n, a, ZORVS_RETURN_USER, r, 0); });
    for (float a : {0.7f, 4.5f})
        one_call_equals_many<float>([a](int n, float *r) { zorvs_f_random_gamma(n, a, ZORVS_RETURN_USER, r, 0); });
    for (float theta : {4.0f, 30.99f, 400.0f})
        one_call_equals_many<int>([theta](int n, int *r) { zorvs_random_poisson(n, theta, ZORVS_RETURN_USER, r, 0); });
}

// Positive definite (leading minors 4, 8, 10), with scales that differ by
// column so that a layout fault shows; only the upper triangle of the
// row-major matrix is read; row i is z R with R'R the covariance, the
// deviates filling the result column by column; without memory for its
// buffer the transposition runs in place by cycles, with the same vectors.
TEST(RandomDeviates, MultivariateVectorsHaveTheCovariance) {
    const double sigma[9] = {4, 2, -1, 2, 3, 0.5, -1, 0.5, 2}, upper[9] = {4, 2, -1, 999, 3, 0.5, 999, 999, 2};
    const float sigmaf[9] = {4, 2, -1, 2, 3, 0.5f, -1, 0.5f, 2};
    const int n = 300000;
    reset(1, 6001);
    check_moments(taken(zorvs_d_random_normal_multivariate(n, 3, sigma, 0), 3 * n), 3, sigma);
    reset(1, 6002);
    check_moments(taken(zorvs_f_random_normal_multivariate(n, 3, sigmaf, 0), 3 * n), 3, sigma);
    std::vector<double> a[3];
    for (int way = 0; way < 3; ++way) {
        reset(1, 21);
        zorvs::allocation_failure_countdown = way == 2 ? 3 : 0;  // result, factor, transposition buffer
        a[way] = taken(zorvs_d_random_normal_multivariate(50, 3, way == 1 ? upper : sigma, 0), 150);
        EXPECT_EQ(zorvs::allocation_failure_countdown, 0);
        zorvs::allocation_failure_countdown = 0;
    }
    EXPECT_EQ(a[1], a[0]);
    EXPECT_EQ(a[2], a[0]);
    const double one = 1.0, diag[4] = {1, 0, 0, 4};
    double z[6], y[6];
    reset(1, 11);
    zorvs_d_random_normal_multivariate(6, 1, &one, ZORVS_RETURN_USER, z, 0);
    reset(1, 11);
    zorvs_d_random_normal_multivariate(3, 2, diag, ZORVS_RETURN_USER, y, 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_DOUBLE_EQ(y[2 * i], z[i]);
        EXPECT_DOUBLE_EQ(y[2 * i + 1], 2 * z[3 + i]);
    }
}

// A rank-one covariance v v' gives multiples of v, without a message; a
// rank-two one A A' (columns (1, 0, 1) and (0, 1, 1)) vectors orthogonal to
// its null vector (1, 1, -1).
TEST(RandomDeviates, SingularCovariancesGiveVectorsInTheirRange) {
    const double v[4] = {1, -2, 0.5, 3};
    double sigma[16];
    for (int i = 0; i < 16; ++i) sigma[i] = v[i / 4] * v[i % 4];
    const float s2[9] = {1, 0, 1, 0, 1, 1, 1, 1, 2};
    CodeLog log;
    reset(1, 8);
    const auto x = taken(zorvs_d_random_normal_multivariate(1000, 4, sigma, 0), 4000);
    const auto y = taken(zorvs_f_random_normal_multivariate(1000, 3, s2, 0), 3000);
    EXPECT_TRUE(log.entries().empty());
    for (int i = 0; i < 1000; ++i) {
        for (int j = 1; j < 4; ++j) EXPECT_NEAR(x[i * 4 + j], x[i * 4] * v[j], 1e-14 * (1 + std::fabs(x[i * 4]))) << i;
        EXPECT_NEAR(y[i * 3] + y[i * 3 + 1] - y[i * 3 + 2], 0.0, 1e-5 * (1 + std::fabs(y[i * 3 + 2]))) << i;
    }
}

// ---------------------------------------------------------------- failures
// A result handed back (and freed) as 1, none as 0.
double given(void *p) {
    std::free(p);
    return p != nullptr;
}
// Every vector finite and its second entry twice its first.
double on_the_line(double *v, int n) {
    bool ok = v != nullptr;
    for (int i = 0; ok && i < n; ++i) ok = std::isfinite(v[2 * i]) && v[2 * i + 1] == 2 * v[2 * i];
    std::free(v);
    return ok;
}
// The same as given() with the allocation that the countdown reaches refused.
template <class F>
double without_memory(int countdown, F call) {
    zorvs::allocation_failure_countdown = countdown;
    void *p = call();
    zorvs::allocation_failure_countdown = 0;
    return given(p);
}

// A seed out of range is refused silently; the largest still gives a
// number below one; 0 takes the clock (within a second or two of it).
// A bad option changes nothing; n below 1 gives a null result and draws
// nothing; an unknown keyword (5, 11001) names itself and its position; a
// failed allocation (5, 200 to 202); a bad table entry (5, 11031) names its
// value and position, the good entries still taken.  Bad parameters of the
// deviates; an infinite shape makes every round of Cheng's method fail
// (given up after 1000 rounds of two uniforms), but below 1 against it the
// switching method gives the limit at once.
TEST(RandomFailures, AsRows) {
    int clock = 0;
    zorvs_r1clk(&clock);
    double d = 0, r[4];
    float first = 0, limit[2];
    int count = 0;
    std::vector<double> t(128, 0.25);
    t[9] = 1.0;
    const double sigma[4] = {2, 1, 1, 2}, bad[4] = {1, 2, 2, 1};
    const float sigmaf[4] = {2, 1, 1, 2};
    int64_t after_2000 = 1;  // generator 1: x 16807 modulo 2^31 - 1
    for (int k = 0; k < 2000; ++k) after_2000 = after_2000 * 16807 % 2147483647;
    expect_rows({
        {ZORVS_DO(reset(1, 1)), any, 0},
        {ZORVS_CALL(*zorvs_f_random_uniform(1, ZORVS_RETURN_USER, &first, 0)), float(16807.0 / divisor)},
        {ZORVS_CALL(zorvs_random_seed_get()), 16807},
        {ZORVS_CALL(zorvs_d_random_uniform(9999, ZORVS_RETURN_USER, std::vector<double>(9999).data(), 0) != nullptr), 1},
        {ZORVS_CALL(zorvs_random_seed_get()), double(random_ref::seed_after_10000)},
        {ZORVS_DO(zorvs_random_seed_set(77)), any, 0},
        {ZORVS_DO(zorvs_random_seed_set(2147483647)), any, 0},
        {ZORVS_DO(zorvs_random_seed_set(-5)), any, 0},
        {ZORVS_CALL(zorvs_random_seed_get()), 77},
        {ZORVS_DO(zorvs_random_seed_set(2147483646)), any, 0},
        {ZORVS_CALL(zorvs_random_seed_get()), 2147483646},
        {ZORVS_CALL(*zorvs_d_random_uniform(1, ZORVS_RETURN_USER, &d, 0) < 1), 1},
        {ZORVS_DO(zorvs_random_seed_set(0)), any, 0},
        {ZORVS_CALL(zorvs_random_seed_get() >= 2 && zorvs_random_seed_get() <= 235960), 1},
        {ZORVS_CALL(zorvs_random_seed_get() - clock), 0, 0, 0, "", 2},
        {ZORVS_DO(reset(1, 5)), any, 0},
        {ZORVS_DO(zorvs_random_option(7)), any, -1, 0, "", 0, "generator_option"},
        {ZORVS_DO(zorvs_random_option(0)), any, -1},
        {ZORVS_CALL(zorvs_random_common.option * 10 + zorvs_random_seed_get()), 15},
        {ZORVS_CALL(given(zorvs_f_random_uniform(0, 0))), 0, 5, -1, "", 0, "n_random"},
        {ZORVS_CALL(given(zorvs_f_random_normal(0, 0))), 0, 5, -1, "", 0, "n_random"},
        {ZORVS_CALL(given(zorvs_d_random_exponential(-1, 0))), 0, 5, -1, "", 0, "n_random"},
        {ZORVS_CALL(given(zorvs_random_poisson(0, 1.0f, 0))), 0, 5, -1, "", 0, "n_random"},
        {ZORVS_CALL(given(zorvs_d_random_gamma(0, 2.0, 0))), 0, 5, -1, "", 0, "n_random"},
        {ZORVS_CALL(given(zorvs_d_random_beta(0, 1.0, 2.0, 0))), 0, 5, -1, "", 0, "n_random"},
        {ZORVS_CALL(given(zorvs_d_random_normal_multivariate(0, 2, sigma, 0))), 0, 5, -1, "", 0, "n_vectors"},
        {ZORVS_CALL(given(zorvs_f_random_normal_multivariate(3, -1, nullptr, 0))), 0, 5, -1, "", 0, "l_vectors"},
        {ZORVS_CALL(zorvs_random_seed_get()), 5},  // nothing drawn
        {ZORVS_CALL(given(zorvs_d_random_uniform(3, 99999, 0))), 0, 5, 11001, "i1=99999 i2=2"},
        {ZORVS_CALL(given(zorvs_d_random_normal(3, 12345, 0))), 0, 5, 11001, "i1=12345 i2=2"},
        {ZORVS_CALL(given(zorvs_d_random_gamma(3, 2.0, 12345, 0))), 0, 5, 11001, "i2=3"},
        {ZORVS_CALL(given(zorvs_random_poisson(3, 2.0f, 12345, 0))), 0, 5, 11001, "i2=3"},
        {ZORVS_CALL(given(zorvs_d_random_beta(3, 1.0, 2.0, 12345, 0))), 0, 5, 11001, "i2=4"},
        {ZORVS_CALL(given(zorvs_d_random_normal_multivariate(3, 2, sigma, 12345, 0))), 0, 5, 11001, "i2=4"},
        {ZORVS_CALL(without_memory(1, [&] { return zorvs_d_random_uniform(3, 0); })), 0, 5, 200},
        {ZORVS_CALL(without_memory(1, [&] { return zorvs_f_random_normal(5, 0); })), 0, 5, 200},
        {ZORVS_CALL(without_memory(1, [&] { return zorvs_d_random_exponential(5, 0); })), 0, 5, 200},
        {ZORVS_CALL(without_memory(1, [&] { return zorvs_d_random_gamma(5, 3.0, 0); })), 0, 5, 200},
        {ZORVS_CALL(without_memory(1, [&] { return zorvs_random_poisson(5, 3.0f, 0); })), 0, 5, 200},
        {ZORVS_CALL(without_memory(1, [&] { return zorvs_f_random_beta(5, 2.0f, 3.0f, 0); })), 0, 5, 200},
        {ZORVS_CALL(without_memory(1, [&] { return zorvs_d_random_normal_multivariate(7, 2, sigma, 0); })), 0, 5, 202, "i1=7 i2=2 l1=n_vectors l2=l_vectors"},
        {ZORVS_CALL(without_memory(2, [&] { return zorvs_f_random_normal_multivariate(7, 2, sigmaf, 0); })), 0, 5, 201, "i1=2 l1=l_vectors"},
        {ZORVS_DO(zorvs_drnses(t.data())), any, 5, 11031, "r1=1 i1=10"},
        {ZORVS_CALL(given(zorvs_d_random_gamma(10, 0.0, 0))), 0, 5, 11036, "r1=0"},
        {ZORVS_CALL(given(zorvs_f_random_gamma(10, -2.0f, 0))), 0, 5, 11036},
        {ZORVS_CALL(given(zorvs_random_poisson(10, 0.0f, 0))), 0, 5, 11032},
        {ZORVS_CALL(given(zorvs_d_random_beta(10, 0.0, 2.0, 0))), 0, 5, 11033},
        {ZORVS_CALL(given(zorvs_f_random_beta(10, 2.0f, -1.0f, 0))), 0, 5, 11034},
        {ZORVS_CALL(given(zorvs_d_random_beta(10, -1.0, NaN, 0))), 0, 5, -1},
        {ZORVS_CALL(given(zorvs_d_random_normal_multivariate(5, 2, bad, 0))), 1, 3, 20406},
        // the factor with its negative pivot dropped still gives deviates,
        // all on the line of its first row (the second entry twice the first)
        {ZORVS_CALL(on_the_line(zorvs_d_random_normal_multivariate(4, 2, bad, 0), 4)), 1, 3, 20406},
        {ZORVS_DO(reset(1, 1)), any, 0},
        {ZORVS_CALL(zorvs_d_random_beta(4, Inf, 2.0, ZORVS_RETURN_USER, r, 0) && std::isnan(r[0]) && std::isnan(r[3])), 1, 5, 11035, "i1=1"},
        {ZORVS_CALL(zorvs_random_seed_get()), double(after_2000)},
        {ZORVS_CALL(given(zorvs_f_random_beta(3, 2.0f, float(Inf), 0))), 0, 5, 11035},
        {ZORVS_CALL(zorvs_f_random_beta(2, 0.5f, float(Inf), ZORVS_RETURN_USER, limit, 0)[0]), 0, 0},
        {ZORVS_CALL(zorvs_f_random_beta(2, float(Inf), 0.5f, ZORVS_RETURN_USER, limit, 0)[1]), 1, 0},
        // theta 10^6 keeps to the integer range, near the mean
        {ZORVS_CALL(std::abs(*zorvs_random_poisson(1, 1e6f, ZORVS_RETURN_USER, &count, 0) - 1000000) < 6000), 1, 0},
    });
}

}  // namespace
