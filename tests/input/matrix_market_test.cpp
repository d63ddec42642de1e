#include "input/matrix_market.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;

class MatrixMarket : public testing::Test {
  protected:
    InspectedMatrix read(const std::string& content) {
        MatrixSource source(directory_.write("m.mtx", content));
        return read_matrix_market(source, {});
    }

    test::TemporaryDirectory directory_;
};

TEST_F(MatrixMarket, HasEntriesOfEveryKind) {
    const struct {
        const char* content;
        std::size_t rows;
        std::vector<double> values;
    } kCases[] = {
        // Dense ones go down their columns.
        {"matrix array real general\n% a remark\n\n2 3\n1\n2\n3\n 4 \n5e1\r\n-6",
         2,
         {1, 3, 50, 2, 4, -6}},
        {"matrix array integer symmetric\n2 2\n1\n2\n3\n", 2, {1, 2, 2, 3}},
        {"matrix array real skew-symmetric\n3 3\n1\n2\n3\n", 3, {0, -1, -2, 1, 0, -3, 2, 3, 0}},
        // What is left out is 0; what is repeated is added up.
        {"matrix coordinate real general\n2 2 3\n1 2 1.5\n2 1 4\n1 2 2\n", 2, {0, 3.5, 4, 0}},
        {"MATRIX Coordinate Pattern General\n2 2 1\n2 2\n", 2, {0, 0, 0, 1}},
        {"matrix coordinate real symmetric\n2 2 2\n1 1 5\n2 1 4\n", 2, {5, 4, 4, 0}},
        {"matrix coordinate real skew-symmetric\n2 2 1\n2 1 4\n", 2, {0, -4, 4, 0}},
        {"matrix coordinate real general\n0 0 0\n", 0, {}},
    };

    for (const auto& [content, rows, values] : kCases) {
        SCOPED_TRACE(content);
        const InspectedMatrix matrix = read(std::string("%%MatrixMarket ") + content);
        EXPECT_EQ(matrix.report.rows, rows);
        const std::vector<double> read_values(
            matrix.values.get(), matrix.values.get() + matrix.report.rows * matrix.report.columns);
        EXPECT_THAT(read_values, ElementsAreArray(values));
    }
}

TEST_F(MatrixMarket, PlacesInfinitiesByTheirLine) {
    const FieldFindings found =
        read("%%MatrixMarket matrix array real general\n2 1\n1\n-inf\n").report.not_finite;
    EXPECT_EQ(found.count, 1U);
    EXPECT_EQ(found.places.at(0).line, 4U);
    EXPECT_EQ(found.places.at(0).row, "2");
    EXPECT_EQ(found.places.at(0).field, 1U);
    EXPECT_EQ(found.places.at(0).text, "-inf");
}

TEST_F(MatrixMarket, IsRefusedWithTheLine) {
    const struct {
        const char* content;
        const char* reason;
    } kCases[] = {
        {"vector array real general\n", "m.mtx:1: a file of this format opens with"},
        {"matrix list real general\n", "m.mtx:1: a file of this format opens with"},
        {"matrix array complex general\n", "m.mtx:1: the entries are \"complex\""},
        {"matrix array pattern general\n", "m.mtx:1: the entries are \"pattern\""},
        {"matrix array real hermitian\n", "m.mtx:1: the matrix is \"hermitian\""},
        {"matrix array real general\n%\n3\n", "m.mtx:3: the size should be rows and columns"},
        {"matrix coordinate real general\n3 1\n", "the size should be rows, columns and entries"},
        {"matrix array real general\n3 -1\n", "m.mtx:2: \"-1\" should be a whole number"},
        {"matrix array real general\n4611686018427387904 4\n", "larger than any memory"},
        {"matrix array real symmetric\n2 3\n", "has as many rows as columns"},
        {"matrix array real general\n2 1\n1 2\n", "m.mtx:3: a line should hold one value"},
        {"matrix array real general\n2 1\n1x\n", "m.mtx:3: \"1x\" should be a number"},
        {"matrix array real general\n2 1\n1\n2\n3\n", "m.mtx:5: there are more entries"},
        {"matrix array real general\n2 1\n1\n", "holds 1 entries, and its size line says 2"},
        {"matrix array real general\n% no size\n",
         "the line with the size of the matrix is missing"},
        {"matrix coordinate real general\n2 2 1\n3 1 1\n", "m.mtx:3: row 3 is not one of 1 to 2"},
        {"matrix coordinate real general\n2 2 1\n1 0 1\n",
         "m.mtx:3: column 0 is not one of 1 to 2"},
        {"matrix coordinate real general\n2 2 1\n1 1\n", "an entry should be its row, its column"},
    };

    for (const auto& [content, reason] : kCases) {
        SCOPED_TRACE(reason);
        try {
            read(std::string("%%MatrixMarket ") + content);
            ADD_FAILURE();
        } catch (const InputError& error) {
            EXPECT_THAT(error.what(), HasSubstr(reason));
        }
    }
}

}  // namespace
}  // namespace ovik
