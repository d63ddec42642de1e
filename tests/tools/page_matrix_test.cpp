#include "tools/page_matrix.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

LoadedMatrix matrix_of(std::size_t rows, std::size_t columns) {
    LoadedMatrix loaded;
    loaded.matrix.report.rows = rows;
    loaded.matrix.report.columns = columns;
    loaded.matrix.values.reset(new double[rows * columns]);
    std::fill_n(loaded.matrix.values.get(), rows * columns, 1.0);
    return loaded;
}

/// What is printed while it is settled.
std::string said_of(const LoadedMatrix& loaded,
                    const Options& options,
                    std::shared_ptr<const QuantisedMatrix>& matrix) {
    testing::internal::CaptureStdout();
    matrix = settle_page_matrix(loaded, options);
    return testing::internal::GetCapturedStdout();
}

TEST(PageMatrix, HasTheBitsThatAreWanted) {
    LoadedMatrix loaded = matrix_of(3, 2);
    loaded.matrix.column_names = {"heat", "cold"};
    loaded.matrix.filled = {false, true, false, false, false, false};
    Options options;
    std::shared_ptr<const QuantisedMatrix> matrix;
    EXPECT_THAT(said_of(loaded, options, matrix), IsEmpty());
    ASSERT_NE(matrix, nullptr);
    EXPECT_EQ(matrix->bits, 16);
    EXPECT_THAT(matrix->columns, ElementsAre("heat", "cold"));
    EXPECT_EQ(matrix->filled, "\x02");
    options.page_data = PageData::Small;
    said_of(loaded, options, matrix);
    EXPECT_EQ(matrix->bits, 8);
    EXPECT_EQ(page_bytes(options, 6), 6U);
}

TEST(PageMatrix, IsNoneWithoutAPageOrWithDistances) {
    const LoadedMatrix loaded = matrix_of(3, 3);
    std::vector<Options> all(3);
    all[0].plots = false;
    all[1].page_data = PageData::None;
    all[2].fit.metric = MetricKind::Precomputed;
    for (const Options& options : all) {
        std::shared_ptr<const QuantisedMatrix> matrix;
        EXPECT_THAT(said_of(loaded, options, matrix), IsEmpty());
        EXPECT_EQ(matrix, nullptr);
        EXPECT_EQ(page_bytes(options, 9), 0U);
    }
}

TEST(PageMatrix, IsLeftOutWithAWordWhereItIsTooLarge) {
    Options options;
    EXPECT_EQ(page_bytes(options, 4'000'000), kMostPageBytes);
    EXPECT_EQ(page_bytes(options, 4'000'001), 0U);
    std::shared_ptr<const QuantisedMatrix> matrix;
    EXPECT_THAT(
        said_of(matrix_of(4001, 1000), options, matrix),
        testing::HasSubstr("Chart page: without the matrix, which has 4001000 values, more than "
                           "4000000; --page-data small has room for it\n"));
    EXPECT_EQ(matrix, nullptr);
    options.page_data = PageData::Small;
    EXPECT_THAT(said_of(matrix_of(8001, 1000), options, matrix),
                testing::HasSubstr("has 8001000 values, more than 8000000\n"));
    EXPECT_EQ(matrix, nullptr);
}

}  // namespace
}  // namespace ovik::tool
