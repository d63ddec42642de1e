#include "stats/normal_deviates.h"

#include <cmath>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "stats/tsne.h"

#include "tests/plain/plain_tsne.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

TEST(NormalDeviate, IsAFunctionOfTheRandStream) {
    std::srand(11);
    std::vector<double> expected(1000);
    for (double& deviate : expected) {
        deviate = plain::normal_deviate();
    }
    std::srand(11);
    for (const double deviate : expected) {
        EXPECT_EQ(TSNE<double>::randn(), deviate);
    }
}

TEST(NormalDeviate, ConsumesPairsOfRandValues) {
    std::srand(3);
    normal_deviate();
    const int next = std::rand();
    std::srand(3);
    int used = 0;
    while (std::rand() != next) {
        ++used;
    }
    EXPECT_GE(used, 2);
    EXPECT_EQ(used % 2, 0);
}

TEST(NormalDeviate, HasMeanZeroAndVarianceOne) {
    std::srand(5);
    constexpr int kCount = 100000;
    double sum = 0.0;
    double squares = 0.0;
    for (int i = 0; i < kCount; ++i) {
        const double deviate = normal_deviate();
        sum += deviate;
        squares += deviate * deviate;
    }
    // Five standard errors.
    EXPECT_NEAR(sum / kCount, 0.0, 5.0 / std::sqrt(kCount));
    EXPECT_NEAR(squares / kCount, 1.0, 5.0 * std::sqrt(2.0 / kCount));
}

TEST(DrawInitialEmbedding, DrawsInIndexOrderForAnyNumberOfThreads) {
    std::srand(11);
    std::vector<double> expected(501);
    for (double& y : expected) {
        y = plain::normal_deviate() * 0.0001;
    }
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        std::srand(11);
        std::vector<double> Y(501);
        draw_initial_embedding(Y.data(), Y.size());
        EXPECT_EQ(Y, expected);
    }
}

}  // namespace
}  // namespace ovik
