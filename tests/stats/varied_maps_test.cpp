#include "stats/varied_maps.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

#include <gtest/gtest.h>

#include "stats/cached_neighbours.h"
#include "stats/fit.h"
#include "stats/resampling.h"
#include "util/input_error.h"

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 90;
constexpr std::size_t kColumns = 4;
constexpr FitOptions kOptions{.perplexity = 7.5, .max_iter = 20, .stop_lying_iter = 8};

/// The same matrix each time.
class Input {
  public:
    [[nodiscard]] MatrixView<const double> view() const {
        return {values_.data(), kRows, kColumns};
    }

    [[nodiscard]] std::vector<double> fitted(const FitOptions& options) const {
        std::vector<double> values = values_;
        return fit({values.data(), kRows, kColumns}, options).embedding;
    }

  private:
    std::vector<double> values_ = test::random_values(kRows * kColumns, 1);
};

TEST(VariedMap, IsTheMapOfAnotherSeed) {
    const Input input;
    FitOptions options = kOptions;
    options.seed += 3;
    const std::vector<double> expected = input.fitted(options);
    EXPECT_EQ(varied_map(input.view(), kOptions, Variation::Seeds, 2), expected);
    CachedNeighbours neighbours(22);
    EXPECT_EQ(varied_map(input.view(), kOptions, Variation::Seeds, 2, {}, &neighbours), expected);
    // Every start along components is the same: other seeds start at random all the same.
    options = kOptions;
    options.start = StartKind::Pca;
    EXPECT_EQ(varied_map(input.view(), options, Variation::Seeds, 2), expected);
}

TEST(VariedMap, IsTheMapOfColumnsDrawnAnew) {
    const Input input;
    std::vector<double> values = bootstrapped_columns(input.view(), kOptions.seed, 2);
    const Fit expected = fit({values.data(), kRows, kColumns}, kOptions);
    CachedNeighbours of_all_columns(22);
    EXPECT_EQ(varied_map(input.view(), kOptions, Variation::Columns, 2, {}, &of_all_columns),
              expected.embedding);
}

TEST(VariedMap, DrawsOnceMoreWhereARowWouldHaveNoCorrelation) {
    std::vector<double> X = test::random_values(kRows * kColumns, 1);
    // Only the last column tells the first row's values apart.
    for (std::size_t d = 0; d + 1 < kColumns; ++d) {
        X[d] = 1.0;
    }
    FitOptions options = kOptions;
    options.metric = MetricKind::Pearson;
    EXPECT_NO_THROW(check_draws({X.data(), kRows, kColumns}, options, 8));
    for (std::size_t number = 0; number < 8; ++number) {
        EXPECT_TRUE(varied_map({X.data(), kRows, kColumns}, options, Variation::Columns, number));
    }
    X[kColumns - 1] = 1.0;
    EXPECT_THROW(varied_map({X.data(), kRows, kColumns}, options, Variation::Columns, 0),
                 InputError);
    EXPECT_THROW(check_draws({X.data(), kRows, kColumns}, options, 1), InputError);
    options.metric = MetricKind::Euclidean;
    EXPECT_NO_THROW(check_draws({X.data(), kRows, kColumns}, options, 1));
}

TEST(VariedMaps, AreTheSameForAnyNumberOfThreadsAndOfMapsAtOnce) {
    const Input input;
    constexpr std::size_t kCount = 3;
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        for (const std::size_t at_once : {0U, 1U, 2U}) {
            VariationManner manner;
            manner.at_once = at_once;
            const auto maps = varied_maps(input.view(), kOptions, kCount, manner);
            ASSERT_TRUE(maps);
            ASSERT_EQ(maps->of_seeds.size(), kCount);
            ASSERT_EQ(maps->of_columns.size(), kCount);
            for (std::size_t i = 0; i < kCount; ++i) {
                EXPECT_EQ(maps->of_seeds[i],
                          varied_map(input.view(), kOptions, Variation::Seeds, i));
                EXPECT_EQ(maps->of_columns[i],
                          varied_map(input.view(), kOptions, Variation::Columns, i));
            }
            EXPECT_NE(maps->of_seeds[0], maps->of_seeds[1]);
            EXPECT_NE(maps->of_columns[0], maps->of_columns[1]);
        }
    }
    EXPECT_TRUE(varied_maps(input.view(), kOptions, 0)->of_seeds.empty());
}

TEST(VariedMaps, TellHowFarTheyAreAndEndWhereTheyAreToldTo) {
    const Input input;
    std::uint64_t told = 0;
    std::uint64_t of = 0;
    VariationManner manner;
    manner.on_stage = [&](Stage stage, std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(stage, Stage::Stability);
        EXPECT_GE(done, told);
        told = done;
        of = total;
    };
    ASSERT_TRUE(varied_maps(input.view(), kOptions, 2, manner));
    EXPECT_EQ(told, 4U * 21U);
    EXPECT_EQ(of, 4U * 21U);
    std::atomic<int> asked = 0;
    manner = {};
    manner.goes_on = [&] { return ++asked < 10; };
    EXPECT_FALSE(varied_maps(input.view(), kOptions, 3, manner));
    EXPECT_LT(asked, 40);
}

}  // namespace
}  // namespace ovik
