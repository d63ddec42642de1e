#include "golden/self_test.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ovik::golden {
namespace {

Part part(const std::string& name, std::uint64_t digest) {
    return {name, [digest] { return std::vector<StageDigest>{{"map", digest}}; }};
}

TEST(CompareParts, TellsOfEachInTurn) {
    std::vector<std::string> told;
    const auto outcomes =
        compare_parts({part("a", 1), part("b", 2), part("c", 3)},
                      {{"c", {{"map", 3}}}, {"a", {{"map", 1}}}, {"b", {{"map", 4}}}},
                      [&told](const PartOutcome& outcome) {
                          told.push_back(outcome.name + ":" + outcome.first_difference);
                      });
    EXPECT_EQ(told, (std::vector<std::string>{"a:", "b:map", "c:"}));
    ASSERT_EQ(outcomes.size(), 3U);
    EXPECT_EQ(outcomes[1].first_difference, "map");
    EXPECT_EQ(count_differences(outcomes), 1U);
}

TEST(CompareParts, TakesWhatIsNotInTheListForDifferent) {
    EXPECT_EQ(count_differences(compare_parts({part("a", 1)}, {})), 1U);
}

}  // namespace
}  // namespace ovik::golden
