// Tests of the shared uniform generator: exact sequences against an
// exact-integer computation, the seed and option routines, the shuffle
// tables, one stream across the twins, and the failure paths.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "data/random/long_runs.hpp"
#include "data/random/sequences.hpp"
#include "frame/frame.hpp"
#include "random/random.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {

void reset(int option, int seed) {
    zorvs_random_option(option);
    zorvs_random_seed_set(seed);
    float zero[128] = {};
    zorvs_rnses(zero);  // first entry 0: both tables must be refilled
    double dzero[128] = {};
    zorvs_drnses(dzero);
}

TEST(RandomUniform, FirstNumberAndCheckValueAfterTenThousandSteps) {
    reset(1, 1);
    float first;
    zorvs_f_random_uniform(1, ZORVS_RETURN_USER, &first, 0);
    EXPECT_EQ(zorvs_random_seed_get(), 16807);
    EXPECT_EQ(first, static_cast<float>(16807.0 / 2147483711.0));
    EXPECT_EQ(zorvs_random_common.divisor, 2147483711.0);
    double *rest = zorvs_d_random_uniform(9999, 0);
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(zorvs_random_seed_get(), random_ref::seed_after_10000);
    std::free(rest);
}

TEST(RandomUniform, PlainAndShuffledSequencesMatchExactIntegers) {
    struct Case {
        int option, seed;
        const int64_t *ref;
        int64_t last;
    };
    const Case cases[] = {
        {1, 1, random_ref::plain1_seed1, random_ref::plain1_seed1[199]},
        {3, 1, random_ref::plain3_seed1, random_ref::plain3_seed1[199]},
        {5, 1, random_ref::plain5_seed1, random_ref::plain5_seed1[199]},
        {3, 123457, random_ref::plain3_seed123457, random_ref::plain3_seed123457[199]},
        {5, 123457, random_ref::plain5_seed123457, random_ref::plain5_seed123457[199]},
        {2, 1, random_ref::shuffled1_seed1, random_ref::shuffled1_seed1_last},
        {4, 1, random_ref::shuffled3_seed1, random_ref::shuffled3_seed1_last},
        {6, 1, random_ref::shuffled5_seed1, random_ref::shuffled5_seed1_last},
        {4, 123457, random_ref::shuffled3_seed123457, random_ref::shuffled3_seed123457_last},
        {6, 123457, random_ref::shuffled5_seed123457, random_ref::shuffled5_seed123457_last},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE("option " + std::to_string(c.option) + " seed " + std::to_string(c.seed));
        reset(c.option, c.seed);
        double r[200];
        zorvs_d_random_uniform(200, ZORVS_RETURN_USER, r, 0);
        for (int i = 0; i < 200; ++i) ASSERT_EQ(r[i], static_cast<double>(c.ref[i]) / 2147483711.0) << i;
        EXPECT_EQ(zorvs_random_seed_get(), c.last);
        // The single twin gives the same numbers rounded to float.
        reset(c.option, c.seed);
        float f[200];
        zorvs_f_random_uniform(200, ZORVS_RETURN_USER, f, 0);
        for (int i = 0; i < 200; ++i) ASSERT_EQ(f[i], static_cast<float>(static_cast<double>(c.ref[i]) / 2147483711.0)) << i;
    }
    // Quotients against exactly rounded rationals.
    reset(1, 1);
    double q[5];
    zorvs_d_random_uniform(5, ZORVS_RETURN_USER, q, 0);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(q[i], random_ref::plain1_seed1_quot[i]);
}

// One step of the generator in its published split-multiplier form: every
// product stays below 2^53, so double arithmetic and fmod are exact.
double split_fmod_step(int option, double x) {
    const double m = 2147483647.0;
    switch (option) {
    case 1: return std::fmod(x * 16807.0, m);
    case 3: return std::fmod(std::fmod(x * 32768.0, m) * 12121.0 + std::fmod(x * 23166.0, m), m);
    default: return std::fmod(std::fmod(x * 32768.0, m) * 29013.0 + std::fmod(x * 8392.0, m), m);
    }
}

// The generator makes its states several at a time from powers of the
// multiplier; each of the first nine states after edge and random seeds must
// equal the one-step formula iterated, and so must the seed left behind.
TEST(RandomUniform, BlockedStatesEqualTheSplitFmodFormula) {
    std::vector<int> seeds = {1, 2, 3, 127, 128, 16807, 32767, 32768, 65536, 1 << 30, (1 << 30) + 1,
                              2147483645, 2147483646};
    std::mt19937_64 pick(20261123);
    std::uniform_int_distribution<int> state(1, 2147483646);
    for (int i = 0; i < 100000; ++i) seeds.push_back(state(pick));
    for (int option : {1, 3, 5}) {
        SCOPED_TRACE("option " + std::to_string(option));
        zorvs_random_option(option);
        for (int s : seeds) {
            zorvs_random_seed_set(s);
            double r[9];
            zorvs_d_r1uni(9, r);
            double x = s;
            for (int i = 0; i < 9; ++i) {
                x = split_fmod_step(option, x);
                ASSERT_EQ(r[i], x / 2147483711.0) << "seed " << s << " step " << i + 1;
            }
            ASSERT_EQ(zorvs_random_common.seed, x) << "seed " << s;
        }
    }
    zorvs_random_option(1);
}

// 300001 numbers of each form drawn in calls of mixed lengths (so that the
// blocks split everywhere) against exact integer references.
TEST(RandomUniform, LongRunsInCallsOfMixedLengths) {
    const int chunks[] = {1, 2, 5, 255, 256, 257, 511, 3, 4096, 100000};
    const double d = 2147483711.0;
    for (int option = 1; option <= 6; ++option) {
        const int64_t *ref = random_ref::long_run_state[option - 1];
        for (int twin = 0; twin < 2; ++twin) {
            SCOPED_TRACE("option " + std::to_string(option) + (twin ? " double" : " single"));
            reset(option, random_ref::long_run_seed);
            const int n = random_ref::long_run_draws;
            std::vector<double> r(n);
            std::vector<float> f(n);
            for (int done = 0, c = 0; done < n; ++c) {
                const int len = std::min(chunks[c % 10], n - done);
                if (twin)
                    zorvs_d_random_uniform(len, ZORVS_RETURN_USER, r.data() + done, 0);
                else
                    zorvs_f_random_uniform(len, ZORVS_RETURN_USER, f.data() + done, 0);
                done += len;
            }
            for (int p = 0; p < random_ref::long_run_picks; ++p) {
                const int i = random_ref::long_run_pick_index[p];
                if (twin)
                    EXPECT_EQ(r[i], ref[p] / d) << "draw " << i;
                else
                    EXPECT_EQ(f[i], static_cast<float>(ref[p] / d)) << "draw " << i;
            }
            EXPECT_EQ(zorvs_random_seed_get(), random_ref::long_run_last_seed[option - 1]);
        }
    }
    reset(1, 1);
}

TEST(RandomUniform, SingleAndDoubleContinueOneStream) {
    for (int option : {1, 3, 5}) {
        reset(option, 1);
        float f[3];
        double d[3];
        zorvs_f_random_uniform(3, ZORVS_RETURN_USER, f, 0);
        zorvs_d_random_uniform(3, ZORVS_RETURN_USER, d, 0);
        const int64_t *ref = option == 1 ? random_ref::plain1_seed1
                             : option == 3 ? random_ref::plain3_seed1 : random_ref::plain5_seed1;
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(f[i], static_cast<float>(ref[i] / 2147483711.0));
            EXPECT_EQ(d[i], ref[3 + i] / 2147483711.0);
        }
    }
}

TEST(RandomUniform, ShuffleTablesPerTwinAndCallerTables) {
    // A table of 0.5's: the first draws at fresh slots return 0.5.
    zorvs_random_option(2);
    zorvs_random_seed_set(1);
    float half[128];
    for (float &v : half) v = 0.5f;
    zorvs_rnses(half);
    float f[4];
    zorvs_f_random_uniform(4, ZORVS_RETURN_USER, f, 0);
    for (float v : f) EXPECT_EQ(v, 0.5f);  // slots 16807%128 ... distinct
    EXPECT_EQ(zorvs_random_seed_get(), random_ref::plain1_seed1[3]);
    // The double table was never installed: its first shuffled draw fills it
    // from the stream (128 steps) before drawing.
    double d;
    zorvs_d_random_uniform(1, ZORVS_RETURN_USER, &d, 0);
    EXPECT_EQ(zorvs_random_seed_get(), random_ref::plain1_seed1[4 + 128]);
    EXPECT_GT(d, 0.0);
    EXPECT_LT(d, 1.0);
    // First entry 0 empties the ready state; the next draw moves 128 + 1 steps.
    float zero[128] = {};
    zorvs_rnses(zero);
    zorvs_random_seed_set(1);
    zorvs_f_random_uniform(1, ZORVS_RETURN_USER, f, 0);
    EXPECT_EQ(zorvs_random_seed_get(), random_ref::plain1_seed1[128]);
    EXPECT_EQ(f[0], static_cast<float>(random_ref::shuffled1_seed1[0] / 2147483711.0));
    // Moving between shuffled forms keeps the table.
    zorvs_random_option(4);
    EXPECT_EQ(zorvs_random_common.table_filled, 1);
    zorvs_random_option(1);
}

TEST(RandomUniform, SeedRoutines) {
    zorvs_random_option(1);
    zorvs_random_seed_set(77);
    EXPECT_EQ(zorvs_random_seed_get(), 77);
    zorvs_random_seed_set(2147483647);  // refused silently
    zorvs_random_seed_set(-5);
    EXPECT_EQ(zorvs_random_seed_get(), 77);
    zorvs_random_seed_set(2147483646);
    EXPECT_EQ(zorvs_random_seed_get(), 2147483646);
    double d;
    zorvs_d_random_uniform(1, ZORVS_RETURN_USER, &d, 0);
    EXPECT_LT(d, 1.0);  // the largest seed still gives a number below one
    // A seed of 0 takes the clock, even after a set seed.
    int clock;
    zorvs_r1clk(&clock);
    zorvs_random_seed_set(0);
    int s = zorvs_random_seed_get();
    EXPECT_GE(s, 2);
    EXPECT_LE(s, 235960);
    EXPECT_LE(std::abs(s - clock), 2);  // within a second or two of the clock
}

TEST(RandomUniform, FailuresAreReported) {
    zorvs_test::Quiet q;
    zorvs_test::CodeLog log;
    zorvs_random_option(1);
    zorvs_random_seed_set(5);
    // Bad option: reported, nothing changes.
    zorvs_random_option(7);
    EXPECT_NE(q.errors.take().find("generator_option"), std::string::npos);
    zorvs_random_option(0);
    EXPECT_EQ(zorvs_random_common.option, 1);
    EXPECT_EQ(zorvs_random_seed_get(), 5);
    // n < 1: null result and no draw.
    EXPECT_EQ(zorvs_f_random_uniform(0, 0), nullptr);
    EXPECT_NE(q.errors.take().find("n_random"), std::string::npos);
    EXPECT_EQ(zorvs_random_seed_get(), 5);
    // Unknown keyword: (5, 11001) with the keyword and its position.
    log.clear();
    EXPECT_EQ(zorvs_d_random_uniform(3, 99999, 0), nullptr);
    EXPECT_TRUE(log.has(5, 11001));
    EXPECT_EQ(zorvs_error_param.i[1], 99999);
    EXPECT_EQ(zorvs_error_param.i[2], 2);
    // Allocation failure: (5, 200) and a null result.
    log.clear();
    zorvs::allocation_failure_countdown = 1;
    EXPECT_EQ(zorvs_d_random_uniform(3, 0), nullptr);
    zorvs::allocation_failure_countdown = 0;
    EXPECT_TRUE(log.has(5, 200));
    // A bad table entry: (5, 11031) with the value and its position; the
    // good entries are still taken.
    log.clear();
    double t[128];
    for (double &v : t) v = 0.25;
    t[9] = 1.0;
    zorvs_drnses(t);
    EXPECT_TRUE(log.has(5, 11031));
    EXPECT_EQ(zorvs_error_param.r[1], 1.0);
    EXPECT_EQ(zorvs_error_param.i[1], 10);
    q.errors.take();
}

TEST(RandomUniform, BadTableEntryStopsByDefault) {
    EXPECT_EXIT(
        {
            float t[128];
            for (float &v : t) v = 0.5f;
            t[3] = -0.5f;
            zorvs_rnses(t);
        },
        ::testing::ExitedWithCode(5), "11031|zorvs_rnses");
}

}  // namespace
