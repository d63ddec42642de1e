#include "tools/map_noise.h"

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

    /// @param kept, misfit  of each row
    std::optional<RecordedNoise> compare(double kept, double misfit) {
        rows_ = row_reliability({}, {}, std::vector<double>(kRows, misfit));
        const NeighbourhoodQuality quality{10, 0.5, 0.5, std::vector<double>(kRows, kept)};
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const auto noise =
            compare_with_noise(options_, options_.fit, {X_.data(), kRows, 3}, quality, rows_);
        out_ = testing::internal::GetCapturedStdout();
        err_ = testing::internal::GetCapturedStderr();
        return noise;
    }

    std::vector<double> X_ = test::random_values(kRows * 3, 4);
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
    EXPECT_EQ(noise->needed, 0U);
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
    EXPECT_EQ(noise->needed, 0U);
}

}  // namespace
}  // namespace ovik::tool
