#include "input/hdf5_sparse.h"

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/hdf5_writer.h"
#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik::hdf5 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr double kPlenty = 1e9;

class Sparse : public testing::Test {
  protected:
    /// The arrays of a matrix of 3 rows and 4 columns, or of one by columns of 4 rows and 3.
    struct Arrays {
        std::vector<double> data = {1, 2, 3, 4};
        std::vector<std::int64_t> indices = {3, 0, 2, 1};
        std::vector<std::int64_t> pointers = {0, 1, 1, 4};
        hid_t index_type = H5T_STD_I32LE;
    };

    SparseRows read(const Arrays& arrays, bool is_by_columns = false, double most = kPlenty) {
        const std::string path = directory_.file("m.h5");
        {
            test::Hdf5Writer file(path);
            file.group("X");
            file.numbers("X/data", arrays.data);
            file.wholeNumbers("X/indices", arrays.indices, arrays.index_type);
            file.wholeNumbers("X/indptr", arrays.pointers);
        }
        const File file(path, "m.h5", most);
        return is_by_columns ? read_sparse(file, {"X", 4, 3, true}, "Take less.")
                             : read_sparse(file, {"X", 3, 4, false}, "Take less.");
    }

    std::string refusal(const Arrays& arrays) {
        return test::refusal_of([&] { read(arrays); });
    }

    test::TemporaryDirectory directory_;
};

TEST_F(Sparse, EntriesComeInTheOrderOfTheirColumns) {
    const SparseRows matrix = read({});
    EXPECT_EQ(matrix.rows, 3U);
    EXPECT_EQ(matrix.columns, 4U);
    EXPECT_THAT(matrix.starts, ElementsAre(0, 1, 1, 4));
    EXPECT_THAT(matrix.column_of, ElementsAre(3, 0, 1, 2));
    EXPECT_THAT(matrix.values, ElementsAre(1, 2, 4, 3));
}

TEST_F(Sparse, ByColumnsItIsTurned) {
    const SparseRows matrix = read({}, true);
    EXPECT_EQ(matrix.rows, 4U);
    EXPECT_THAT(matrix.starts, ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(matrix.column_of, ElementsAre(2, 2, 2, 0));
    EXPECT_THAT(matrix.values, ElementsAre(2, 4, 3, 1));
}

TEST_F(Sparse, ArraysThatDoNotFitTogetherAreRefused) {
    EXPECT_THAT(refusal({.pointers = {0, 1, 4}}),
                HasSubstr("m.h5: X/indptr: has 3 elements, and 3 rows need 4"));
    EXPECT_THAT(refusal({.indices = {3, 0, 2}}),
                HasSubstr("m.h5: X/indices: has 3 elements, and the data have 4"));
    EXPECT_THAT(refusal({.pointers = {0, 1, 1, 3}}),
                HasSubstr("X/indptr: ends with 3, and the data have 4 elements"));
    EXPECT_THAT(refusal({.pointers = {1, 1, 1, 4}}),
                HasSubstr("X/indptr: element 1 is 1, and should be 0"));
    EXPECT_THAT(refusal({.pointers = {0, 3, 2, 4}}),
                HasSubstr("X/indptr: element 3 is 2, less than the one before it, 3\nThe file may "
                          "be damaged"));
}

TEST_F(Sparse, IndicesOutOfRangeOrTwiceAreRefusedWithTheirRow) {
    EXPECT_THAT(refusal({.indices = {3, 0, 4, 1}}),
                HasSubstr("X/indices: row 3 has an entry at 4, which is not one of 0 to 3"));
    EXPECT_THAT(refusal({.indices = {-1, 0, 2, 1}}), HasSubstr("row 1 has an entry at -1"));
    EXPECT_THAT(refusal({.indices = {3, 0, 2, 0}}), HasSubstr("row 3 has column 1 twice"));
    EXPECT_THAT(refusal({.index_type = H5T_IEEE_F32LE}),
                HasSubstr("X/indices: its elements should be whole numbers"));
}

TEST_F(Sparse, ValuesThatAreNotFiniteAreRefusedWithTheirPlace) {
    EXPECT_THAT(refusal({.data = {1, 2, std::nan(""), 4}}),
                HasSubstr("m.h5: X/data: column 3 of row 3 is \"nan\""));
    EXPECT_THAT(refusal({.data = {-std::numeric_limits<double>::infinity(), 2, 3, 4}}),
                HasSubstr("column 4 of row 1 is \"-inf\", which is not a finite number"));
}

TEST_F(Sparse, TakesNoMoreMemoryThanThereIs) {
    EXPECT_THAT(test::refusal_of([&] { read({}, false, 100.0); }),
                HasSubstr("m.h5: the sparse matrix with 4 values takes about 1 MB of memory, and 1 "
                          "MB are left\nTake less."));
}

}  // namespace
}  // namespace ovik::hdf5
