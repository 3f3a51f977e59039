// Tests of the studentized range distribution and its inverse against
// SciPy's studentized_range (quantiles by solving its cdf(q) = p to 1e-13), for
// 2 to 100 means and 2 to 1e6 degrees of freedom; messages of bad arguments.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "dist/discrete.h"
#include "frame/services.h"
#include "support/capture.hpp"
#include "zorvstat.h"

namespace {
struct StudentizedRangeRow { double p, df, means, q; };
struct StudentizedRangeCdfRow { double q, means, df, value; };
struct StudentizedRangeTwoRow { double p, df, q; };
#include "data/dist/studentized_range_ref.inc"
}  // namespace

TEST(StudentizedRangeInverse, DoubleQuantilesAgreeToOneInAMillion) {
    zorvs_test::Quiet quiet;
    zorvs_test::CodeLog log;
    double worst = 0;
    for (const auto &r : studentized_range_rows) {
        double q = zorvs_dsrin(r.p, r.df, r.means);
        double e = std::fabs(q - r.q) / r.q;
        // The reference takes df above 1e5 as infinite; the quantile at df
        // differs from that by a relative O(1/df) (for two means the
        // folded-t test below checks df = 1e6 exactly).
        double allowed = r.df > 1e5 ? 1e-6 + 10 / r.df : 1e-6;
        if (r.df <= 1e5) worst = std::fmax(worst, e);
        EXPECT_LE(e, allowed) << "p=" << r.p << " df=" << r.df << " means=" << r.means << " got " << q << " want " << r.q;
    }
    EXPECT_TRUE(log.entries().empty());
    std::printf("studentized range inverse: worst relative difference %.3g\n", worst);
}

TEST(StudentizedRangeInverse, TwoMeansIsTheFoldedT) {
    zorvs_test::Quiet quiet;
    double worst = 0;
    for (const auto &r : studentized_range_two_rows) {
        double q = zorvs_dsrin(r.p, r.df, 2);
        double e = std::fabs(q - r.q) / r.q;
        worst = std::fmax(worst, e);
        EXPECT_LE(e, 1e-8) << "p=" << r.p << " df=" << r.df << " got " << q << " want " << r.q;
    }
    std::printf("studentized range inverse, two means: worst relative error %.3g\n", worst);
}

TEST(StudentizedRangeInverse, SingleTwinAndMonotoneInP) {
    zorvs_test::Quiet quiet;
    for (double means : {2.0, 60.0}) {
        for (double df : {2.0, 1e6}) {
            double previous = 0;
            for (double p = 0.80; p < 0.9995; p += 0.04) {
                double q = zorvs_dsrin(p, df, means);
                EXPECT_GT(q, previous) << "p=" << p << " df=" << df << " means=" << means;
                previous = q;
                float qf = zorvs_srin(static_cast<float>(p), static_cast<float>(df), static_cast<float>(means));
                EXPECT_NEAR(qf, q, 1e-4 * q);
            }
        }
    }
}

TEST(StudentizedRangeCdf, AgreesWithReferenceAndInvertsTheInverse) {
    zorvs_test::Quiet quiet;
    double worst = 0;
    for (const auto &r : studentized_range_cdf_rows) {
        double p = zorvs_dsrdf(r.q, r.means, r.df);
        double e = std::fabs(p - r.value);
        // As above: the reference's df = 1e6 is infinite, off by O(1/df).
        if (r.df > 1e5) {
            EXPECT_LE(e, 1e-5) << "q=" << r.q << " means=" << r.means;
            continue;
        }
        worst = std::fmax(worst, e);
        EXPECT_LE(e, 1e-7 * std::fmax(r.value, 1e-3)) << "q=" << r.q << " means=" << r.means << " df=" << r.df;
        EXPECT_NEAR(zorvs_srdf(static_cast<float>(r.q), static_cast<float>(r.means), static_cast<float>(r.df)),
                    r.value, 1e-4);
    }
    std::printf("studentized range cdf: worst absolute difference %.3g\n", worst);
    for (double p : {0.8, 0.95, 0.999}) EXPECT_NEAR(zorvs_dsrdf(zorvs_dsrin(p, 9, 4), 4, 9), p, 1e-11);
    // Two means: Q / sqrt(2) is |T| with df degrees of freedom; for df = 2,
    // P(|T| <= t) = t / sqrt(2 + t^2) exactly.
    for (double t : {0.3, 1.0, 4.0}) EXPECT_NEAR(zorvs_dsrdf(t * std::sqrt(2.0), 2, 2), t / std::sqrt(2 + t * t), 1e-10);
    EXPECT_EQ(zorvs_dsrdf(0, 5, 10), 0.0);
    EXPECT_EQ(zorvs_dsrdf(-1, 5, 10), 0.0);
    EXPECT_EQ(zorvs_dsrdf(INFINITY, 5, 10), 1.0);
}

TEST(StudentizedRangeErrors, BadArgumentsRaiseTerminalMessagesAndGiveNaN) {
    zorvs_test::Quiet quiet;
    EXPECT_TRUE(std::isnan(zorvs_dsrdf(3, 1.5, 10)));
    EXPECT_EQ(zorvs_error_type(), 5);
    EXPECT_EQ(zorvs_error_code(), 9065);
    EXPECT_EQ(zorvs_error_param.r[1], 1.5);
    EXPECT_TRUE(std::isnan(zorvs_dsrin(0.9, 1, 3)));
    EXPECT_EQ(zorvs_error_code(), 9066);
    EXPECT_EQ(zorvs_error_param.r[1], 1.0);
    for (double p : {0.0, 1.0, -0.1, static_cast<double>(NAN)}) {
        EXPECT_TRUE(std::isnan(zorvs_srin(static_cast<float>(p), 10, 3)));
        EXPECT_EQ(zorvs_error_code(), 9067);
    }
    std::string text = quiet.errors.take();
    EXPECT_NE(text.find("zorvs_srin"), std::string::npos);
}

TEST(StudentizedRangeErrors, UncomputableValueWarns) {
    zorvs_test::Quiet quiet;
    zorvs_test::CodeLog log;
    EXPECT_TRUE(std::isnan(zorvs_dsrdf(NAN, 3, 10)));
    EXPECT_TRUE(log.has(3, 9069));
}

TEST(StudentizedRangeDeath, TerminalErrorStopsTheProcess) {
    EXPECT_EXIT(zorvs_dsrin(1.5, 10, 3), ::testing::ExitedWithCode(5), "9067|zorvs_dsrin");
}
