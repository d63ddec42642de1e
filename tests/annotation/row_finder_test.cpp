#include "annotation/row_finder.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> kRows = {"CDC28", "YBR160W", "cln1", "CDC28", "DDI2", "MF", "x"};

TEST(RowFinder, PrefersTheVeryName) {
    const RowFinder finder(kRows, true);
    EXPECT_THAT(finder.rowsOf("CDC28"), ElementsAre(0, 3));
    EXPECT_THAT(finder.rowsOf("YBR160W"), ElementsAre(1));
    EXPECT_THAT(finder.rowsOf("x"), ElementsAre(6));
}

TEST(RowFinder, FindsTheRowsOfAGeneByItsOtherNames) {
    const RowFinder finder(kRows, true);
    EXPECT_THAT(finder.rowsOf("cdc28"), ElementsAre(0, 1, 3));
    EXPECT_THAT(finder.rowsOf("Cdc28p"), ElementsAre(0, 1, 3));
    EXPECT_THAT(finder.rowsOf("CLN1"), ElementsAre(2));
    EXPECT_THAT(finder.rowsOf("YMR199W"), ElementsAre(2));
}

TEST(RowFinder, FindsNothingForNamesOfNoGeneOrOfSeveral) {
    const RowFinder finder(kRows, true);
    for (const char* const name : {"", "nobody", "X", "mf", "ACT1"}) {
        EXPECT_THAT(finder.rowsOf(name), IsEmpty()) << name;
    }
}

TEST(RowFinder, KnowsNoGenesWhereRowsAreNone) {
    const RowFinder finder(kRows, false);
    EXPECT_THAT(finder.rowsOf("CDC28"), ElementsAre(0, 3));
    EXPECT_THAT(finder.rowsOf("cdc28"), IsEmpty());
}

}  // namespace
}  // namespace ovik
