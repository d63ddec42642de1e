#include "tools/set_join.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::SizeIs;
using testing::StartsWith;

const std::vector<std::string> kRows = {"CDC28", "cln1", "YPL256C", "HSP12"};

TEST(JoinSets, FindsRowsByNameAndByOtherNamesOfTheirGenes) {
    const JoinedSets joined =
        join_sets({{"G1", 1, {"CLN2", "CLN1", "YBR160W", "CLN1", "nobody"}}}, kRows, "f.gmt", true);
    ASSERT_THAT(joined.sets, SizeIs(1));
    EXPECT_EQ(joined.sets[0].name, "G1");
    EXPECT_THAT(joined.sets[0].rows, ElementsAre(0, 1, 2));
    EXPECT_EQ(joined_sets_line(joined), "Sets: 1 set; 3 of 4 genes are in the matrix, not nobody");
}

TEST(JoinSets, CountsGenesOnceAndSaysWhichSetsAreLeftOut) {
    const JoinedSets joined = join_sets({{"a", 1, {"HSP12", "A", "B"}},
                                         {"b", 2, {"A", "C", "D"}},
                                         {"c", 3, {"HSP12"}},
                                         {"d", 4, {"D"}}},
                                        kRows,
                                        "f.gmt",
                                        true);
    ASSERT_THAT(joined.sets, SizeIs(2));
    EXPECT_EQ(joined_sets_line(joined),
              "Sets: 2 sets; 1 of 5 genes are in the matrix, not A, B, C, ...; 2 sets have no gene "
              "there and are left out: b, d");
}

TEST(JoinSets, TakesNamesAsTheyStandWhereRowsAreNoGenes) {
    const JoinedSets joined = join_sets({{"a", 1, {"CLN1", "CDC28"}}}, kRows, "f.gmt", false);
    EXPECT_THAT(joined.sets[0].rows, ElementsAre(0));
    EXPECT_EQ(joined_sets_line(joined), "Sets: 1 set; 1 of 2 genes are in the matrix, not CLN1");
}

TEST(JoinSets, RefusesSetsOfWhichNoGeneIsThere) {
    try {
        join_sets({{"a", 1, {"ACT1", "B"}}}, kRows, "f.gmt", true);
        ADD_FAILURE() << "not refused";
    } catch (const InputError& error) {
        EXPECT_THAT(error.what(),
                    StartsWith("f.gmt: no gene of its sets (ACT1, ...) is that of a row (CDC28, "
                               "...)\nSets name genes as the rows"));
    }
}

TEST(SettleSets, GivesNoneWithoutAFile) {
    EXPECT_THAT(settle_sets(kRows, Options()), SizeIs(0));
}

}  // namespace
}  // namespace ovik::tool
