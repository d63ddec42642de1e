#include "plots/component_pair.h"

#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(RowsPerPair, AreThoseOfTheFirstGroup) {
    const std::vector<std::string> groups = {"Group:1:2", "Group:1:2", "Group:1:3", "Group:1:2"};
    EXPECT_EQ(rows_per_pair(groups, 4), 2U);
    const std::vector<std::string> three = {
        "Group:1:2", "Group:1:2", "Group:1:3", "Group:1:3", "Group:2:3", "Group:2:3"};
    EXPECT_EQ(rows_per_pair(three, 6), 2U);
    for (const char* group : {"Data", ""}) {
        EXPECT_EQ(rows_per_pair(std::vector<std::string>(3, group), 3), 3U) << group;
    }
}

TEST(RowsPerPair, AreAllWithoutGroups) {
    EXPECT_EQ(rows_per_pair({}, 5), 5U);
    EXPECT_EQ(rows_per_pair({}, 0), 0U);
}

TEST(ComponentTitle, NamesTheComponentsOfAPair) {
    EXPECT_EQ(component_title("Group:1:12", 0, "x"), "Component 1");
    EXPECT_EQ(component_title("Group:1:12", 1, "x"), "Component 12");
}

TEST(ComponentTitle, IsTheFallbackWithoutAPair) {
    for (const char* group : {"", "Data", "Group:1"}) {
        EXPECT_EQ(component_title(group, 0, "x"), "x") << group;
        EXPECT_EQ(component_title(group, 1, "y"), "y") << group;
    }
}

}  // namespace
}  // namespace ovik
