#include "tools/start_file.h"

#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "results/annotated_table.h"
#include "results/coordinate_files.h"
#include "results/result_table.h"

#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsNan;

class StartFile : public testing::Test {
  protected:
    [[nodiscard]] StartPlaces read(const std::string& content, std::size_t dims = 2) const {
        return read_start_file(directory_.write("start", content), rows_, dims);
    }

    [[nodiscard]] std::string refusal(const std::string& content, std::size_t dims = 2) const {
        return test::refusal_of([&] { (void)read(content, dims); });
    }

    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("start");
    std::vector<std::string> rows_ = {"CDC28", "a,b", "x \"y\""};
    std::vector<double> places_ = {0.5, -1.25, 2.0, 0.0, 0.125, 8.0};
};

TEST_F(StartFile, IsWhatAnEarlierRunLeft) {
    const double* const Y = places_.data();
    ASSERT_FALSE(write_coordinates_tsv<double>(path_, rows_.data(), Y, 3, 2));
    EXPECT_EQ(read_start_file(path_, rows_, 2).places, places_);
    ASSERT_FALSE(write_coordinates_npy<double>(path_, Y, 3, 2));
    EXPECT_EQ(read_start_file(path_, rows_, 2).places, places_);
    const std::vector<std::string> texts = {"does, \"so\"", "", ",1,Data,\"x\""};
    ASSERT_FALSE(write_annotated_table<double>(path_, {Y, 3, 2}, {rows_, texts, {}, texts}));
    EXPECT_EQ(read_start_file(path_, rows_, 2).places, places_);
    ASSERT_FALSE(write_result_table(path_, make_result_table<double>({Y, 3, 2}, rows_, texts)));
    const StartPlaces start = read_start_file(path_, rows_, 2);
    EXPECT_EQ(start.places, places_);
    EXPECT_EQ(start.placed, 3U);
    EXPECT_EQ(start_line(start, "f", 3), "Start: 3 of 3 rows have their place in f");
}

TEST_F(StartFile, IsAResultTableOfMoreDimensions) {
    rows_ = {"a", "b"};
    for (const std::size_t dims : {3U, 4U}) {
        std::vector<double> Y(2 * dims);
        for (std::size_t i = 0; i < Y.size(); ++i) {
            Y[i] = 0.25 * static_cast<double>(i * i) - 1.0;
        }
        const std::vector<std::string> texts(2);
        ASSERT_FALSE(write_result_table(
            path_, make_result_table<double>({Y.data(), 2, dims}, rows_, texts)));
        EXPECT_EQ(read_start_file(path_, rows_, dims).places, Y);
        EXPECT_THAT(test::refusal_of([&] { (void)read_start_file(path_, rows_, 2); }),
                    HasSubstr("line 4: the table is of a map of other dimensions than 2"));
        EXPECT_THAT(test::refusal_of([&] { (void)read_start_file(path_, rows_, dims + 1); }),
                    HasSubstr("has fewer than"));
    }
}

TEST_F(StartFile, FindsRowsByName) {
    const StartPlaces start =
        read("gene;u;v\nnew1;0;0\na,b;1;2\n\nnew2;1;1\nCDC28;-3;4.5\nnew3;5;5\nnew4;6;6\n");
    EXPECT_THAT(start.places, ElementsAre(-3.0, 4.5, 1.0, 2.0, IsNan(), IsNan()));
    EXPECT_EQ(start_line(start, "f", 3),
              "Start: 2 of 3 rows have their place in f, the others start among their neighbours; "
              "4 names are of no row: new1, new2, new3, ...");
}

TEST_F(StartFile, TakesTheColumnsThatAreCoordinates) {
    EXPECT_THAT(read("g\tlabel\ty\tx\nCDC28\tred\t1\t2\n").places,
                ElementsAre(2.0, 1.0, IsNan(), IsNan(), IsNan(), IsNan()));
    EXPECT_THAT(read(",0,1\n\"a,b\",1,2\n").places,
                ElementsAre(IsNan(), IsNan(), 1.0, 2.0, IsNan(), IsNan()));
    EXPECT_THAT(refusal("g,label,a,b\nCDC28,red,1,2\n"),
                HasSubstr("line 1: the header names no columns component_1, component_2 or x, y, "
                          "and stands for other columns than a name and 2 coordinates"));
}

TEST_F(StartFile, NeedsAHeader) {
    for (const char* const row : {"CDC28,1,-2.5e1\n", "CDC28;1;2\n", "CDC28\t0\t1\n", "1,1,2\n"}) {
        EXPECT_THAT(refusal(std::string(row) + row),
                    HasSubstr("has numbers there, and this line should be a header\nPut one above"))
            << row;
    }
    EXPECT_THAT(refusal("CDC28,1,2\nother,1,2\n"), HasSubstr(", line 1: \"CDC28\" has numbers"));
}

TEST_F(StartFile, IsNotOfMoreDimensions) {
    EXPECT_THAT(refusal("name,component_1,component_2,component_3\nCDC28,1,2,3\n"),
                HasSubstr("line 1: the table has \"component_3\", too: it is of a map of more "
                          "dimensions than 2\n"));
    EXPECT_THAT(refusal("name\tx\ty\tz\tlabel\nCDC28\t1\t2\t3\ta\n"),
                HasSubstr("the table has \"z\", too"));
    EXPECT_THAT(read("name,z,y,x\nCDC28,1,2,3\n", 3).places, testing::Contains(3.0));
    EXPECT_THAT(read("name,component_1,component_2,q\nCDC28,1,2,3\n").places,
                ElementsAre(1.0, 2.0, IsNan(), IsNan(), IsNan(), IsNan()));
}

TEST_F(StartFile, RefusesWhatIsNoStart) {
    EXPECT_THAT(refusal("g,x,y\nCDC28,1,2\nb,1,2\nCDC28,1,2\n"),
                HasSubstr("line 4: \"CDC28\" stands in line 2, too, with another place"));
    EXPECT_THAT(refusal("g,x,y\nCDC28,1,NA\n"), HasSubstr("line 2: \"NA\" is no coordinate"));
    EXPECT_THAT(refusal("g,x,y\nCDC28,1,inf\n"), HasSubstr("line 2: \"inf\" is no coordinate"));
    EXPECT_THAT(refusal("g,x,y\nCDC28,1\n"), HasSubstr("line 2: has 2 fields, fewer than the"));
    EXPECT_THAT(refusal("g,x,y\nother,1,2\n"),
                HasSubstr("none of its names (other, ...) is that of a row (CDC28, ...)"));
    EXPECT_THAT(refusal("g,x,y\n"), HasSubstr("holds no line of a name and coordinates"));
    EXPECT_THAT(refusal("g,x,y\n\n"), HasSubstr("holds no line of a name and coordinates"));
    EXPECT_THAT(refusal("name,data in xaxis,data in yaxis,psize,group,function\nCDC28,1,2\n"),
                HasSubstr("line 2: this is no line of a result table"));
    ASSERT_FALSE(write_coordinates_npy<double>(path_, places_.data(), 2, 3));
    EXPECT_THAT(test::refusal_of([&] { (void)read_start_file(path_, rows_, 2); }),
                HasSubstr("the array has the shape (2, 3), and the map has (3, 2)"));
}

TEST_F(StartFile, OfAnArrayMayLeavePlacesOut) {
    places_[2] = places_[3] = std::nan("");
    ASSERT_FALSE(write_coordinates_npy<double>(path_, places_.data(), 3, 2));
    const StartPlaces start = read_start_file(path_, rows_, 2);
    EXPECT_EQ(start.placed, 2U);
    EXPECT_THAT(start.places, ElementsAre(0.5, -1.25, IsNan(), IsNan(), 0.125, 8.0));
}

}  // namespace
}  // namespace ovik::tool
