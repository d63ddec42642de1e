#include "tools/map_noise.h"

#include <algorithm>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/row_reliability.h"

#include "tests/support/random_points.h"

namespace ovik::tool {
namespace {

using testing::HasSubstr;

class MapNoise : public testing::Test {
  protected:
    static constexpr std::size_t kRows = 60;

    MapNoise() {
        options_.against_noise = 2;
        options_.fit.perplexity = 5.0;
        options_.fit.max_iter = 10;
    }

    /// @param kept    of the first `count` rows; others keep nothing
    /// @param misfit  of each row
    std::optional<RecordedNoise> compare(double kept, double misfit, std::size_t count = kRows) {
        rows_ = row_reliability({}, {}, std::vector<double>(row_count_, misfit));
        NeighbourhoodQuality quality{10, 0.5, 0.5, std::vector<double>(row_count_, 0.0)};
        std::fill_n(quality.kept.begin(), std::min(count, row_count_), kept);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const auto noise =
            compare_with_noise(options_, options_.fit, {X_.data(), row_count_, 3}, quality, rows_);
        out_ = testing::internal::GetCapturedStdout();
        err_ = testing::internal::GetCapturedStderr();
        return noise;
    }

    std::vector<double> X_ = test::random_values(kRows * 3, 4);
    std::size_t row_count_ = kRows;
    Options options_;
    RowReliability rows_;
    std::string out_;
    std::string err_;
};

TEST_F(MapNoise, AddsTheChancesAndSaysWhatCameOfThem) {
    const auto noise = compare(1.1, -1.0);
    EXPECT_THAT(out_, HasSubstr("-- Embedding 2 matrices of shuffled values\n"));
    EXPECT_THAT(out_, HasSubstr("-- By kept neighbours: 100.0 % of the rows told from noise"));
    EXPECT_THAT(out_, HasSubstr("-- By misfit: 100.0 % of the rows told from noise"));
    ASSERT_TRUE(noise.has_value());
    EXPECT_EQ(noise->matrices, 2U);
    EXPECT_EQ(noise->neighbours, 10U);
    EXPECT_EQ(noise->groups, 1U);
    EXPECT_EQ(noise->kept.needed, 0U);
    EXPECT_EQ(noise->kept.told, 1.0);
    EXPECT_EQ(noise->misfit.better, 1.0);
    EXPECT_DOUBLE_EQ((*column_of(rows_, "p_kept"))[7], 1.0 / 121.0);
    EXPECT_DOUBLE_EQ((*column_of(rows_, "q_misfit"))[7], 1.0 / 121.0);
    EXPECT_EQ(err_, "");
}

TEST_F(MapNoise, SaysWhereNoRowIsToldFromNoise) {
    const auto noise = compare(0.0, 100.0);
    EXPECT_THAT(out_,
                HasSubstr("-- By kept neighbours: no row told from noise at a false discovery rate "
                          "of 5 %, 0.0 % (0 rows) better than 95 % of it; least chance 0.0083, "
                          "least rate 1, about 0.0 % of the rows not as noise, whichever they "
                          "are\n"));
    EXPECT_EQ(noise->kept.told, 0.0);
    EXPECT_EQ(noise->kept.needed, 0U);
    EXPECT_EQ(noise->misfit.needed, 0U);
    EXPECT_EQ(err_, "");
}

TEST_F(MapNoise, SaysByWhichStatisticThereAreTooFewMatrices) {
    options_.against_noise = 1;
    row_count_ = 40;
    const auto noise = compare(1.1, 100.0, 18);
    EXPECT_EQ(noise->kept.told, 0.0);
    EXPECT_EQ(noise->kept.better, 0.45);
    EXPECT_EQ(noise->kept.needed, 2U);
    EXPECT_EQ(noise->misfit.needed, 0U);
    EXPECT_EQ(err_,
              "ovik-tsne: note: too few matrices of noise to tell single rows from it by kept "
              "neighbours, "
              "where about 45.0 % are better: it takes --against-noise 2\n");
}

TEST_F(MapNoise, SaysThatCopiesAreToldFromNoiseBecauseTheyAreCopies) {
    std::copy_n(X_.begin(), 3 * 2, X_.begin() + 3 * 30);
    compare(0.0, 100.0);
    EXPECT_EQ(
        err_,
        "ovik-tsne: note: 2 rows hold the same values as an earlier one, and shuffling parts them: "
        "copies are told from noise because they are copies\nLeave copies out, or read the "
        "shares without them.\n");
}

}  // namespace
}  // namespace ovik::tool
