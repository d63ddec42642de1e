#include "plots/table_run.h"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAre;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

class TableRunTest : public testing::Test {
  protected:
    [[nodiscard]] std::optional<TableRun> read(const std::string& rows) const {
        return TableRun::read(directory_.write("t.csv", "header\n" + rows));
    }

    test::TemporaryDirectory directory_;
};

TEST_F(TableRunTest, ViewsTheColumnsOfTheTable) {
    const auto table = read("ADE5,7,1.500,-2.000,1,Group:1:2,\"f\"\nB,0,nan,1,Group:1:2,\"\"\n");
    ASSERT_TRUE(table);
    const PlottedRun<double> run = table->run();
    EXPECT_THAT(run.names, ElementsAre("ADE5,7", "B"));
    EXPECT_THAT(run.groups, ElementsAre("Group:1:2", "Group:1:2"));
    EXPECT_THAT(run.functions, ElementsAre("f", ""));
    EXPECT_THAT(run.x, ElementsAre(1.5, 0.0));
    EXPECT_EQ(run.y[0], -2.0);
    EXPECT_EQ(run.title, "");
    EXPECT_TRUE(run.labels.empty());
}

TEST_F(TableRunTest, IsNoneWithoutAWholeTable) {
    EXPECT_FALSE(TableRun::read(directory_.file("none.csv")));
    EXPECT_FALSE(read("no row of a table\n"));
}

TEST_F(TableRunTest, HoldsCoordinatesToThePrecisionOfATable) {
    const auto table = read("A,1.500,nan,1,Group:1:2,\"\"\n");
    ASSERT_TRUE(table);
    EXPECT_TRUE(table->holds({1.5004}, {kNan}));
    EXPECT_FALSE(table->holds({1.502}, {kNan}));
    EXPECT_FALSE(table->holds({1.5}, {0.0}));
    EXPECT_FALSE(table->holds({1.5, 1.5}, {kNan, kNan}));
    EXPECT_FALSE(table->holds({}, {}));
}

}  // namespace
}  // namespace ovik
