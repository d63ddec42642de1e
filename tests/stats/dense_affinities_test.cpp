#include "stats/dense_affinities.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stats/tsne.h"

#include "tests/plain/plain_affinities.h"
#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"
#include "tests/support/recording_sink.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

std::vector<double> affinities(const std::vector<double>& points, int N, int D, double perplexity) {
    std::vector<double> P(static_cast<std::size_t>(N) * static_cast<std::size_t>(N), -1.0);
    TSNE<double>::computeGaussianPerplexity(points.data(), N, D, P.data(), perplexity);
    return P;
}

TEST(DenseAffinities, EqualThePlainProgramBitForBit) {
    constexpr std::size_t kCount = 120;
    const std::vector<double> points = test::random_values(kCount * 5, 2);
    const std::vector<double> expected = plain::conditional_similarities(points, kCount, 5, 17.5);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        EXPECT_EQ(affinities(points, kCount, 5, 17.5), expected);
    }
}

TEST(DenseAffinities, SumToOneWithTheWantedEntropy) {
    constexpr std::size_t kCount = 80;
    const std::vector<double> P = affinities(test::random_values(kCount * 3, 3), kCount, 3, 10.0);
    for (std::size_t n = 0; n < kCount; ++n) {
        double sum = 0.0;
        double entropy = 0.0;
        for (std::size_t m = 0; m < kCount; ++m) {
            const double p = P[n * kCount + m];
            sum += p;
            entropy -= p * std::log(p);
        }
        EXPECT_NEAR(sum, 1.0, 1e-12);
        EXPECT_NEAR(entropy, std::log(10.0), 1.1e-5);
        EXPECT_GT(P[n * kCount + n], 0.0);
        EXPECT_LT(P[n * kCount + n], 1e-300);
    }
}

TEST(DenseAffinities, OfOnePointAreAHalf) {
    EXPECT_EQ(affinities({1.0, 2.0}, 1, 2, 5.0), std::vector<double>{0.5});
}

TEST(DenseAffinities, OfIdenticalPointsAreEqual) {
    const std::vector<double> P = affinities(std::vector<double>(8, 3.0), 4, 2, 2.0);
    for (std::size_t n = 0; n < 4; ++n) {
        for (std::size_t m = 0; m < 4; ++m) {
            if (m != n) {
                EXPECT_DOUBLE_EQ(P[n * 4 + m], 1.0 / 3.0);
            }
        }
    }
}

TEST(DenseAffinities, AreFiniteForAnImpossiblePerplexity) {
    const std::vector<double> points = test::random_values(40, 4);
    for (const double perplexity : {0.0, -3.0, std::nan(""), 1e9}) {
        const std::vector<double> actual = affinities(points, 20, 2, perplexity);
        EXPECT_EQ(actual, plain::conditional_similarities(points, 20, 2, perplexity));
        for (const double p : actual) {
            EXPECT_TRUE(std::isfinite(p));
        }
    }
}

void expect_two_lines(const test::RecordingSink& sink, const std::string& message) {
    ASSERT_EQ(sink.lines.size(), 2U);
    for (const auto& line : sink.lines) {
        EXPECT_EQ(line.severity, google::GLOG_INFO);
        EXPECT_EQ(line.file, "stats/tsne");
        EXPECT_EQ(line.message, message);
    }
    EXPECT_EQ(sink.lines[0].line, 639);
    EXPECT_EQ(sink.lines[1].line, 641);
}

TEST(DenseAffinities, LogTheBarePerplexityTwice) {
    const test::RecordingSink sink;
    affinities(test::random_values(20, 5), 10, 2, 2.5);
    expect_two_lines(sink, "2.5");
}

TEST(DenseAffinities, OnlyLogWithoutPoints) {
    const test::RecordingSink sink;
    affinities({}, 0, 2, 30.0);
    expect_two_lines(sink, "30");
}

TEST(DenseAffinitiesDeathTest, EndTheProcessWhenTheDistancesDoNotFit) {
    EXPECT_EXIT(TSNE<double>::computeGaussianPerplexity(nullptr, 2147483647, 2, nullptr, 30.0),
                testing::ExitedWithCode(1),
                "Memory allocation failed!\n$");
}

TEST(DenseAffinities, AreThoseOfTheRowsOfAMatrix) {
    const std::vector<double> points = test::random_values(30, 54);
    std::vector<double> expected(100);
    std::vector<double> P(100);
    dense_conditional_affinities(points.data(), 10, 3, expected.data(), 2.5);
    dense_conditional_affinities({points.data(), 10, 3}, P.data(), 2.5);
    EXPECT_EQ(P, expected);
}

TEST(DenseAffinities, OfDistancesAreThoseOfThePlainProgramForAnyThreads) {
    constexpr std::size_t kRows = 30;
    std::vector<double> distances(kRows * kRows, 0.0);
    const std::vector<double> values = test::random_values(kRows * kRows, 9);
    double largest = 0.0;
    for (std::size_t n = 0; n < kRows; ++n) {
        for (std::size_t m = 0; m < n; ++m) {
            const double distance = std::fabs(values[n * kRows + m]);
            distances[n * kRows + m] = distances[m * kRows + n] = distance;
            largest = std::max(largest, distance);
        }
    }
    ASSERT_GT(largest, 2.0);
    ASSERT_LT(largest, 4.0);
    std::vector<double> squares = distances;
    for (double& square : squares) {
        square = (0.25 * square) * (0.25 * square);
    }
    const std::vector<double> expected = plain::conditional_similarities_by(squares, kRows, 5.0);
    // What rounding leaves in the place of 0 is no distance.
    distances[0] = 1e-12;
    distances[kRows + 1] = -1e-12;
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        std::vector<double> P(kRows * kRows);
        dense_affinities_of_distances({distances.data(), kRows, kRows},
                                      P.data(),
                                      calibrated_row({5.0}, platform_elementary()));
        EXPECT_EQ(P, expected);
    }
}

constexpr std::size_t kPoints = 120;
constexpr std::size_t kColumns = 5;

TEST(UniformRow, EqualsThePlainProgramBitForBit) {
    const std::vector<double> points = test::random_values(kPoints * kColumns, 2);
    for (const std::size_t K : {1U, 15U, 119U}) {
        const std::vector<double> expected =
            plain::dense_rows(plain::uniform_similarities(points, kPoints, kColumns, K));
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            std::vector<double> P(kPoints * kPoints, -1.0);
            dense_conditional_affinities(
                {points.data(), kPoints, kColumns}, P.data(), uniform_row(K));
            EXPECT_EQ(P, expected) << K << " neighbours, " << threads << " threads";
        }
    }
}

TEST(UniformRow, OfRowsEquallyFarTakesTheEarlier) {
    const std::vector<double> points = {0.0, 1.0, -1.0, 2.0, 1.0};
    std::vector<double> P(25, -1.0);
    dense_conditional_affinities({points.data(), 5, 1}, P.data(), uniform_row(2));
    EXPECT_EQ(std::vector<double>(P.begin(), P.begin() + 5),
              (std::vector<double>{DBL_MIN, 0.5, 0.5, 0.0, 0.0}));
    EXPECT_EQ(std::vector<double>(P.begin() + 15, P.begin() + 20),
              (std::vector<double>{0.0, 0.5, 0.0, DBL_MIN, 0.5}));
}

TEST(UniformRow, IsSharedAmongTheOthersAtAFiniteDistance) {
    const std::vector<double> points = {0.0, 1.0, std::nan("")};
    std::vector<double> P(9, -1.0);
    dense_conditional_affinities({points.data(), 3, 1}, P.data(), uniform_row(2));
    EXPECT_EQ(P, (std::vector<double>{DBL_MIN, 1.0, 0.0, 1.0, DBL_MIN, 0.0, 0.0, 0.0, DBL_MIN}));
}

TEST(CalibratedRow, OfSeveralPerplexitiesEqualsThePlainProgramBitForBit) {
    const std::vector<double> points = test::random_values(kPoints * kColumns, 3);
    const std::vector<double> perplexities = {30.0, 4.0, 12.5};
    const std::vector<double> expected =
        plain::dense_multiscale_similarities(points, kPoints, kColumns, perplexities);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        std::vector<double> P(kPoints * kPoints, -1.0);
        dense_conditional_affinities({points.data(), kPoints, kColumns},
                                     P.data(),
                                     calibrated_row(perplexities, platform_elementary()));
        EXPECT_EQ(P, expected) << threads << " threads";
    }
}

}  // namespace
}  // namespace ovik
