#include "input/cell_names.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/load.h"

#include "tests/support/gzip.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kMatrix =
    "%%MatrixMarket matrix coordinate integer general\n2 3 4\n1 1 5\n2 1 1\n1 2 3\n2 3 7\n";

class CellNamesBeside : public testing::Test {
  protected:
    void writeNames(const std::string& front) {
        directory_.write(front + "barcodes.tsv", "AAA-1\nCCC-1\nGGG-1\n");
        directory_.write(front + "features.tsv.gz",
                         test::gzipped("ENSG1\tACT1\tGene\nENSG2\t\tGene\n"));
    }

    LoadedMatrix loaded(const std::string& path) {
        remarks_.clear();
        return load(path, options_, remarks_);
    }

    test::TemporaryDirectory directory_;
    LoadOptions options_;
    std::vector<Remark> remarks_;
};

TEST_F(CellNamesBeside, NameCellsWhichBecomeTheRows) {
    for (const char* const front : {"", "GSM1_"}) {
        writeNames(front);
        const std::string path = directory_.write(std::string(front) + "matrix.mtx", kMatrix);
        const LoadedMatrix cells = loaded(path);
        EXPECT_THAT(cells.matrix.row_names, ElementsAre("AAA-1", "CCC-1", "GGG-1"));
        EXPECT_THAT(cells.matrix.column_names, ElementsAre("ACT1", "ENSG2"));
        const double* const values = cells.matrix.values.get();
        EXPECT_THAT(std::vector<double>(values, values + 6), ElementsAre(5, 1, 3, 0, 0, 7));
        ASSERT_EQ(remarks_.size(), 1U);
        EXPECT_EQ(remarks_[0].kind, Remark::Kind::Note);
        EXPECT_THAT(remarks_[0].text,
                    HasSubstr("the cells are its columns, named by " + directory_.prefix() + front +
                              "barcodes.tsv, and become the points"));
    }
}

TEST_F(CellNamesBeside, OfACellsByGenesMatrixLeaveItAsItIs) {
    writeNames("");
    const LoadedMatrix cells = loaded(directory_.write(
        "matrix.mtx", "%%MatrixMarket matrix coordinate integer general\n3 2 2\n1 1 5\n3 2 7\n"));
    EXPECT_THAT(cells.matrix.row_names, ElementsAre("AAA-1", "CCC-1", "GGG-1"));
    EXPECT_EQ(cells.matrix.values[0], 5.0);
    EXPECT_EQ(cells.matrix.values[5], 7.0);
}

TEST_F(CellNamesBeside, AreLeftOutWithAWarningIfTheyAreOfAnotherMatrix) {
    writeNames("");
    const LoadedMatrix other = loaded(directory_.write(
        "matrix.mtx", "%%MatrixMarket matrix coordinate integer general\n4 2 2\n1 1 5\n3 2 7\n"));
    EXPECT_THAT(other.matrix.row_names, ElementsAre("1", "2", "3", "4"));
    ASSERT_FALSE(remarks_.empty());
    EXPECT_EQ(remarks_.back().kind, Remark::Kind::Warning);
    EXPECT_THAT(remarks_.back().text,
                HasSubstr("names beside it are of 3 cells and 2 features, and it has 4 rows and 2 "
                          "columns: they are not used"));
}

TEST_F(CellNamesBeside, CountOnlyBesideAMatrixOfTheUsualName) {
    writeNames("");
    directory_.write("matrix.mtx", kMatrix);
    EXPECT_TRUE(names_beside(directory_.file("matrix.mtx")));
    EXPECT_TRUE(names_beside(directory_.file("matrix.mtx.gz")));
    EXPECT_FALSE(names_beside(directory_.file("counts.mtx")));
    EXPECT_FALSE(names_beside(directory_.file("other_matrix.mtx")));
    EXPECT_FALSE(names_beside(""));
    const std::string three = directory_.write(
        "matrix.mtx", "%%MatrixMarket matrix coordinate integer general\n3 2 1\n1 1 5\n");
    options_.row_names_file = directory_.write("genes.txt", "a\nb\nc\n");
    EXPECT_THAT(loaded(three).matrix.row_names, ElementsAre("a", "b", "c"));
}

}  // namespace
}  // namespace ovik
