// uniform_test.cpp - the shared uniform generator: its plain and shuffled
// sequences against exact-integer computations (tests/data/random/
// sequences.hpp and long_runs.hpp, make_sequences.py and make_long_runs.py),
// the blocked states against the published one-step formula, one stream
// across the twins, the seed, option and shuffle-table routines, and the
// failure paths as rows.

#include "data/random/long_runs.hpp"
#include "data/random/sequences.hpp"
#include "random/random.h"
#include "support/tables.hpp"

namespace {

using namespace zorvs_test;

constexpr double divisor = 2147483711.0;

// Option and seed, with both shuffle tables emptied (first entry 0).
void reset(int option, int seed) {
    zorvs_random_option(option);
    zorvs_random_seed_set(seed);
    const float zero[128] = {};
    const double dzero[128] = {};
    zorvs_rnses(zero);
    zorvs_drnses(dzero);
}

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
    const int n = long_run_draws;
    std::vector<double> rd(n);
    std::vector<float> rf(n);
    for (int option = 1; option <= 6; ++option) {
        for (const bool single : {false, true}) {
            reset(option, long_run_seed);
            for (int done = 0, c = 0; done < n; ++c) {
                const int len = std::min(chunks[c % 10], n - done);
                if (single) zorvs_f_random_uniform(len, ZORVS_RETURN_USER, rf.data() + done, 0);
                else zorvs_d_random_uniform(len, ZORVS_RETURN_USER, rd.data() + done, 0);
                done += len;
            }
            for (int p = 0; p < long_run_picks; ++p) {
                const int i = long_run_pick_index[p];
                const double want = long_run_state[option - 1][p] / divisor;
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
    std::mt19937_64 pick(20261123);
    std::uniform_int_distribution<int> state(1, 2147483646);
    for (int i = 0; i < 100000; ++i) seeds.push_back(state(pick));
    for (int option : {1, 3, 5}) {
        zorvs_random_option(option);
        for (int s : seeds) {
            zorvs_random_seed_set(s);
            double r[9], x = s;
            zorvs_d_r1uni(9, r);
            for (int i = 0; i < 9; ++i) {
                x = step(option, x);
                ASSERT_EQ(r[i], x / divisor) << "option " << option << " seed " << s << " step " << i + 1;
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
    using random_ref::plain1_seed1;
    float f[4];
    double d[3];
    for (int option : {1, 3, 5}) {
        reset(option, 1);
        zorvs_f_random_uniform(3, ZORVS_RETURN_USER, f, 0);
        zorvs_d_random_uniform(3, ZORVS_RETURN_USER, d, 0);
        const int64_t *ref = option == 1 ? plain1_seed1 : option == 3 ? random_ref::plain3_seed1 : random_ref::plain5_seed1;
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(f[i], float(ref[i] / divisor));
            EXPECT_EQ(d[i], ref[3 + i] / divisor);
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
    EXPECT_EQ(f[0], float(random_ref::shuffled1_seed1[0] / divisor));
    zorvs_random_option(4);
    EXPECT_EQ(zorvs_random_common.table_filled, 1);
    zorvs_random_option(1);
}

// A seed out of range is refused silently; the largest still gives a
// number below one; 0 takes the clock (within a second or two of it).
TEST(RandomUniform, SeedRoutines) {
    int clock = 0;
    zorvs_r1clk(&clock);
    double d = 0;
    float first = 0;
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
    });
}

// A bad option changes nothing; n below 1 gives a null result and draws
// nothing; an unknown keyword (5, 11001) names itself and its position; a
// failed allocation (5, 200); a bad table entry (5, 11031) names its value
// and position, the good entries still taken.
TEST(RandomUniform, FailuresAsRows) {
    std::vector<double> t(128, 0.25);
    t[9] = 1.0;
    expect_rows({
        {ZORVS_DO(reset(1, 5)), any, 0},
        {ZORVS_DO(zorvs_random_option(7)), any, -1, 0, "", 0, "generator_option"},
        {ZORVS_DO(zorvs_random_option(0)), any, -1},
        {ZORVS_CALL(zorvs_random_common.option * 10 + zorvs_random_seed_get()), 15},
        {ZORVS_CALL(zorvs_f_random_uniform(0, 0) == nullptr), 1, 5, -1, "", 0, "n_random"},
        {ZORVS_CALL(zorvs_random_seed_get()), 5},
        {ZORVS_CALL(zorvs_d_random_uniform(3, 99999, 0) == nullptr), 1, 5, 11001, "i1=99999 i2=2"},
        {ZORVS_CALL(zorvs::allocation_failure_countdown = 1), 1},
        {ZORVS_CALL(zorvs_d_random_uniform(3, 0) == nullptr), 1, 5, 200},
        {ZORVS_CALL(zorvs::allocation_failure_countdown = 0), 0},
        {ZORVS_DO(zorvs_drnses(t.data())), any, 5, 11031, "r1=1 i1=10"},
    });
}

}  // namespace
