#include "tools/sparse_input.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/sparse_components.h"

#include "tests/support/refusal.h"
#include "tools/command_report.h"

namespace ovik::tool {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

LoadedMatrix sparse_matrix() {
    SparseRows values{40, 30, {0}, {}, {}};
    for (std::size_t n = 0; n < values.rows; ++n) {
        for (std::size_t d = n % 4; d < values.columns; d += 3 + n % 3) {
            values.column_of.push_back(static_cast<std::uint32_t>(d));
            values.values.push_back(1.0 + static_cast<double>((n + 2 * d) % 5));
        }
        values.starts.push_back(values.values.size());
    }
    LoadedMatrix loaded;
    loaded.matrix.report.rows = values.rows;
    loaded.matrix.report.columns = values.columns;
    loaded.matrix.sparse = std::move(values);
    return loaded;
}

class SparseInput : public testing::Test {
  protected:
    SparseInput() {
        options_.fit.pca = 3;
        options_.given.insert("pca");
    }

    /// @return what is printed
    std::string settle() {
        testing::internal::CaptureStdout();
        settle_sparse_input(loaded_, options_);
        return testing::internal::GetCapturedStdout();
    }

    LoadedMatrix loaded_ = sparse_matrix();
    Options options_;
};

TEST_F(SparseInput, HasItsComponentsInThePlaceOfColumns) {
    const PrincipalComponents expected = sparse_components(*loaded_.matrix.sparse, 3).components;
    EXPECT_THAT(settle(), HasSubstr("3 principal components stand for 30 columns, with "));
    EXPECT_FALSE(loaded_.matrix.sparse);
    EXPECT_EQ(loaded_.matrix.report.columns, 3U);
    EXPECT_THAT(loaded_.matrix.column_names, ElementsAre("PC1", "PC2", "PC3"));
    EXPECT_TRUE(
        std::equal(expected.scores.begin(), expected.scores.end(), loaded_.matrix.values.get()));
    EXPECT_EQ(options_.sparse_variance_kept, expected.varianceKept());
    EXPECT_EQ(options_.fit.pca, 0);
    EXPECT_THAT(reported_options(options_), Contains(Pair("pca", "3")));
}

TEST_F(SparseInput, HasNoColumnsToShuffle) {
    options_.against_noise = 2;
    EXPECT_THROW(settle(), InputError);
    testing::internal::GetCapturedStdout();
}

TEST_F(SparseInput, TellsHowFarItsComponentsAre) {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> told;
    options_.on_stage = [&told](Stage stage, std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(stage, Stage::Components);
        told.emplace_back(done, total);
    };
    settle();
    ASSERT_GE(told.size(), 3U);
    EXPECT_THAT(told.front(), Pair(0, 0));
    EXPECT_THAT(told[1], Pair(16, most_directions(3)));
    EXPECT_THAT(told.back(), Pair(1, 1));
}

TEST_F(SparseInput, IsNotComputedForADryRun) {
    options_.dry_run = true;
    EXPECT_EQ(settle(), "");
    EXPECT_EQ(loaded_.matrix.values, nullptr);
    EXPECT_EQ(loaded_.matrix.report.columns, 3U);
}

TEST_F(SparseInput, IsRefusedWhereTheColumnsThemselvesAreNeeded) {
    options_.fit.metric = MetricKind::Cosine;
    EXPECT_THAT(test::refusal_of([&] { settle(); }),
                HasSubstr("--metric cosine: the matrix is sparse"));
    testing::internal::GetCapturedStdout();
    options_.fit.metric = MetricKind::Euclidean;
    options_.model = "map.ovik";
    EXPECT_THAT(test::refusal_of([&] { settle(); }), HasSubstr("--model: the matrix is sparse"));
    testing::internal::GetCapturedStdout();
    options_.model.clear();
    options_.fit.pca = 30;
    EXPECT_THAT(test::refusal_of([&] { settle(); }),
                HasSubstr("that many components reduce nothing"));
    testing::internal::GetCapturedStdout();
}

TEST_F(SparseInput, LeavesOtherMatricesAsTheyAre) {
    loaded_ = {};
    EXPECT_EQ(settle(), "");
    EXPECT_EQ(options_.fit.pca, 3);
}

}  // namespace
}  // namespace ovik::tool
