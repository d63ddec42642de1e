#include "input/sparse_matrix.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/load.h"
#include "input/option_spelling.h"

#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// 3 rows and 4 columns.
SparseRows few_values() {
    return {3, 4, {0, 2, 2, 4}, {0, 3, 1, 3}, {1.0, 2.0, 3.0, 0.5}};
}

InspectedMatrix sparse_matrix(SparseRows values) {
    InspectedMatrix matrix;
    matrix.report.rows = values.rows;
    matrix.report.columns = values.columns;
    for (std::size_t n = 0; n < values.rows; ++n) {
        matrix.row_names.push_back("r" + std::to_string(n + 1));
    }
    matrix.row_lines.assign(values.rows, 0);
    matrix.sparse = std::move(values);
    return matrix;
}

TEST(SparseMatrix, StaysSoByItsExtentsAlone) {
    LoadOptions options;
    EXPECT_FALSE(stays_sparse(options, 100'000, 20'000));
    options.keeps_sparse = true;
    EXPECT_TRUE(stays_sparse(options, 100'000, 20'000));
    EXPECT_FALSE(stays_sparse(options, 1'000, 20'000));
    EXPECT_TRUE(stays_sparse(options, 1'001, 20'000));
    EXPECT_FALSE(stays_sparse(options, 1'000'000'000, 0));
    options.transformations.transpose = true;
    EXPECT_FALSE(stays_sparse(options, 100'000, 20'000));
}

TEST(SparseMatrix, IsMadeDenseWhereItIsSmall) {
    InspectedMatrix matrix;
    take_sparse("m", {}, few_values(), matrix);
    EXPECT_FALSE(matrix.sparse);
    const std::vector<double> values(matrix.values.get(), matrix.values.get() + 12);
    EXPECT_THAT(values, ElementsAre(1, 0, 0, 2, 0, 0, 0, 0, 0, 3, 0, 0.5));
    LoadOptions distances;
    distances.holds_distances = true;
    EXPECT_THAT(test::refusal_of([&] { take_sparse("m", distances, few_values(), matrix); }),
                HasSubstr("a distance that it leaves out would count as 0"));
}

TEST(SparseMatrix, IsTransformedToTheBitsOfTheDenseOne) {
    SparseRows values{600, 7, {0}, {}, {}};
    for (std::size_t n = 0; n < values.rows; ++n) {
        for (std::size_t d = n % 3; d < values.columns; d += 1 + n % 4) {
            values.column_of.push_back(static_cast<std::uint32_t>(d));
            values.values.push_back(0.1 * static_cast<double>((n * 7 + d * 3) % 11));
        }
        values.starts.push_back(values.values.size());
    }
    for (const RowTotal& total : {RowTotal{}, RowTotal{1e4}}) {
        // One of them by the C library's logarithms, the other by portable ones.
        const Transformations both{
            .row_total = total, .log1p = true, .is_portable = total.isMedian()};
        InspectedMatrix dense = sparse_matrix(values);
        make_dense(dense);
        const std::string done = transform("m", both, plainly_spelled, dense);
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            InspectedMatrix sparse = sparse_matrix(values);
            EXPECT_EQ(transform_sparse("m", both, plainly_spelled, sparse), done);
            make_dense(sparse);
            EXPECT_TRUE(
                std::equal(dense.values.get(), dense.values.get() + 600 * 7, sparse.values.get()));
        }
    }
}

TEST(SparseMatrix, IsNotGivenValuesWhereItHasNone) {
    for (const Transformations& wanted : {Transformations{.centre = Centring::Columns},
                                          Transformations{.centre = Centring::Rows},
                                          Transformations{.scale = true}}) {
        InspectedMatrix matrix = sparse_matrix(few_values());
        EXPECT_THAT(
            test::refusal_of([&] { transform_sparse("m", wanted, plainly_spelled, matrix); }),
            HasSubstr(
                ": the matrix of m is sparse, and too large to be made dense\nLeave it away"));
    }
    SparseRows negative = few_values();
    negative.values[2] = -3.0;
    InspectedMatrix matrix = sparse_matrix(negative);
    EXPECT_THAT(
        test::refusal_of(
            [&] { transform_sparse("m", {.row_total = RowTotal{}}, plainly_spelled, matrix); }),
        HasSubstr("m: row \"r3\" has a value below 0 in column 2, and row-totals is for counts"));
}

TEST(SparseMatrix, ThatCannotBeEmbeddedIsRefused) {
    check_sparse_values("m", sparse_matrix(few_values()));
    EXPECT_THAT(test::refusal_of([] {
                    check_sparse_values(
                        "m", sparse_matrix({3, 4, {0, 1, 2, 3}, {2, 2, 2}, {1.5, 1.5, 1.5}}));
                }),
                HasSubstr("m: all rows hold the same values"));
    EXPECT_THAT(test::refusal_of([] {
                    check_sparse_values("m", sparse_matrix({3, 4, {0, 0, 0, 0}, {}, {}}));
                }),
                HasSubstr("all rows hold the same values"));
    EXPECT_THAT(test::refusal_of([] {
                    check_sparse_values("m", sparse_matrix({3, 4, {0, 1, 1, 1}, {2}, {1e200}}));
                }),
                HasSubstr("too large or too small"));
}

TEST(SparseMatrix, OfAMarketFileStaysSoAndAddsUpWhatIsRepeated) {
    const test::TemporaryDirectory directory;
    LoadOptions options;
    options.keeps_sparse = true;
    std::vector<Remark> remarks;
    const std::string head = "%%MatrixMarket matrix coordinate real general\n4 6000000 5\n";
    const LoadedMatrix loaded =
        load(directory.write("m.mtx", head + "3 7 2\n1 6000000 4\n3 7 0.5\n3 2 1\n4 1 1\n"),
             options,
             remarks);
    ASSERT_TRUE(loaded.matrix.sparse);
    EXPECT_THAT(loaded.matrix.sparse->starts, ElementsAre(0, 1, 1, 3, 4));
    EXPECT_THAT(loaded.matrix.sparse->column_of, ElementsAre(5'999'999, 1, 6, 0));
    EXPECT_THAT(loaded.matrix.sparse->values, ElementsAre(4, 1, 2.5, 1));
    const std::string gap = directory.write("gap.mtx", head + "3 7 nan\n");
    EXPECT_THAT(test::refusal_of([&] { load(gap, options, remarks); }),
                HasSubstr("gap.mtx:3: the value is missing"));
    // An entry takes 32 bytes while the rows are brought into order, a row 24.
    const std::string many = directory.write(
        "many.mtx", "%%MatrixMarket matrix coordinate real general\n500000 60 1000000\n1 1 1\n");
    options.most_bytes = 43e6;
    EXPECT_THAT(
        test::refusal_of([&] { load(many, options, remarks); }),
        HasSubstr("takes about 44 MB of memory, and 43 MB are left\nTake a part of the rows"));
    options.keeps_sparse = false;
    options.most_bytes = 1e8;
    EXPECT_THAT(test::refusal_of([&] { load(gap, options, remarks); }),
                HasSubstr("takes about 192 MB of memory, and 100 MB are left\nGive pca 50"));
}

}  // namespace
}  // namespace ovik
