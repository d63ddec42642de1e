#include "tools/table_map.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;

class ReadTableMap : public testing::Test {
  protected:
    std::string table(const std::string& lines) {
        return directory_.write(
            "t.csv", "name,data in xaxis,data in yaxis,point size,group,function\n" + lines);
    }

    test::TemporaryDirectory directory_;
};

TEST_F(ReadTableMap, TakesThePlacesOfAPlane) {
    const RunMap map = read_table_map(table("A,1.500,-2.250,1,Group:1:2,\"kinase\"\n"
                                            "\"ADE5,7,0,3.125,1,Group:1:2,\"NULL\"\n"),
                                      2);
    ASSERT_NE(map.rows, nullptr);
    EXPECT_EQ(map.dims, 2U);
    EXPECT_THAT(map.places, ElementsAre(1.5, -2.25, 0, 3.125));
    EXPECT_THAT(map.rows->names, ElementsAre("A", "\"ADE5,7"));
    EXPECT_THAT(map.rows->functions, ElementsAre("kinase", "NULL"));
}

TEST_F(ReadTableMap, PutsTheDimensionsOfPairsTogether) {
    const RunMap map = read_table_map(table("A,1,2,1,Group:1:2,\"\"\nB,5,6,1,Group:1:2,\"\"\n"
                                            "A,1,3,1,Group:1:3,\"\"\nB,5,7,1,Group:1:3,\"\"\n"
                                            "A,2,3,1,Group:2:3,\"\"\nB,6,7,1,Group:2:3,\"\"\n"),
                                      2);
    EXPECT_EQ(map.dims, 3U);
    EXPECT_THAT(map.places, ElementsAre(1, 2, 3, 5, 6, 7));
    EXPECT_THAT(map.rows->names, ElementsAre("A", "B"));
}

TEST_F(ReadTableMap, IsNoneOfAnotherTable) {
    const std::string path = table("A,1,2,1,Group:1:2,\"\"\nB,5,6,1,Group:1:2,\"\"\n");
    EXPECT_EQ(read_table_map(path, 3).rows, nullptr);
    EXPECT_EQ(read_table_map(path, 0).rows, nullptr);
    EXPECT_EQ(read_table_map(directory_.file("missing.csv"), 2).rows, nullptr);
    EXPECT_EQ(read_table_map(table("what is this\n"), 1).rows, nullptr);
}

}  // namespace
}  // namespace ovik::tool
