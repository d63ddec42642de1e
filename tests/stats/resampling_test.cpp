#include "stats/resampling.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

std::vector<double> column(const std::vector<double>& values, std::size_t columns, std::size_t c) {
    std::vector<double> result;
    for (std::size_t i = c; i < values.size(); i += columns) {
        result.push_back(values[i]);
    }
    return result;
}

TEST(ResamplingDraws, AreTheSameEverywhereAndEvenlySpread) {
    ResamplingDraws draws(ResamplingDraws::Purpose::Noise, 11, 0);
    ResamplingDraws same(ResamplingDraws::Purpose::Noise, 11, 0);
    std::vector<int> counts(7);
    for (int i = 0; i < 7000; ++i) {
        const std::size_t drawn = draws.below(7);
        ASSERT_LT(drawn, 7U);
        EXPECT_EQ(same.below(7), drawn);
        ++counts[drawn];
    }
    for (const int count : counts) {
        // Five standard deviations.
        EXPECT_NEAR(count, 1000, 150);
    }
    EXPECT_EQ(draws.below(1), 0U);
}

TEST(ShuffleColumns, KeepsTheValuesOfEachColumnAndNoRow) {
    constexpr std::size_t kRows = 200;
    constexpr std::size_t kColumns = 3;
    std::vector<double> X;
    for (std::size_t i = 0; i < kRows * kColumns; ++i) {
        X.push_back(static_cast<double>(i));
    }
    std::vector<double> noise = X;
    shuffle_columns({noise.data(), kRows, kColumns}, 11, 0);
    for (std::size_t c = 0; c < kColumns; ++c) {
        std::vector<double> shuffled = column(noise, kColumns, c);
        EXPECT_NE(shuffled, column(X, kColumns, c));
        std::sort(shuffled.begin(), shuffled.end());
        EXPECT_EQ(shuffled, column(X, kColumns, c));
    }
    std::size_t whole = 0;
    for (std::size_t n = 0; n < kRows; ++n) {
        whole += noise[n * kColumns] + 1 == noise[n * kColumns + 1] ? 1 : 0;
    }
    EXPECT_LT(whole, 8U);
    std::vector<double> again = X;
    shuffle_columns({again.data(), kRows, kColumns}, 11, 0);
    EXPECT_EQ(again, noise);
    for (const auto& [seed, number] : {std::pair(11, 1), std::pair(12, 0)}) {
        again = X;
        shuffle_columns({again.data(), kRows, kColumns}, seed, static_cast<std::size_t>(number));
        EXPECT_NE(again, noise);
    }
}

TEST(BootstrappedColumns, AreWholeColumnsOfTheMatrixSomeOfThemTwice) {
    constexpr std::size_t kRows = 4;
    constexpr std::size_t kColumns = 30;
    std::vector<double> X;
    for (std::size_t i = 0; i < kRows * kColumns; ++i) {
        X.push_back(static_cast<double>(i));
    }
    const std::vector<double> drawn = bootstrapped_columns({X.data(), kRows, kColumns}, 11, 0);
    std::vector<double> chosen(drawn.begin(), drawn.begin() + kColumns);
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        EXPECT_EQ(drawn[i], chosen[i % kColumns] + static_cast<double>(i / kColumns * kColumns));
    }
    std::sort(chosen.begin(), chosen.end());
    EXPECT_LT(chosen.back(), kColumns);
    const auto distinct = std::unique(chosen.begin(), chosen.end()) - chosen.begin();
    EXPECT_GT(distinct, 12);
    EXPECT_LT(distinct, 27);
    EXPECT_NE(bootstrapped_columns({X.data(), kRows, kColumns}, 11, 1), drawn);
}

}  // namespace
}  // namespace ovik
