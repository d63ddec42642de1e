#include "golden/golden_parts.h"

#include <cctype>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stats/shared_fit.h"
#include "util/ranks.h"

#include "golden/embedded_files.h"
#include "golden/self_test.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/rank_threads.h"
#include "tests/support/threads.h"

/// Parts of the engine have on this machine the digests that they have on every other.

namespace ovik::golden {

/// How a test prints the part that it is of.
void PrintTo(const Part& part, std::ostream* out) {  // NOLINT(readability-identifier-naming)
    *out << part.name;
}

namespace {

const std::vector<ExpectedPart>& expected() {
    static const std::vector<ExpectedPart> parts = expected_parts(digests_text());
    return parts;
}

/// What differs of a part; empty for nothing.
std::string difference_of(const Part& part) {
    return compare_parts({part}, expected()).front().first_difference;
}

class GoldenParts : public testing::TestWithParam<Part> {};

TEST_P(GoldenParts, HaveTheDigestsThatTheyHaveEverywhere) {
    EXPECT_EQ(difference_of(GetParam()), "");
}

/// A name as a test may have it.
std::string test_name(const testing::TestParamInfo<Part>& info) {
    std::string name;
    bool begins = true;
    for (const char c : info.param.name) {
        const auto letter = static_cast<unsigned char>(c);
        if (std::isalnum(letter) != 0) {
            name += begins ? static_cast<char>(std::toupper(letter)) : c;
        }
        begins = std::isalnum(letter) == 0;
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, GoldenParts, testing::ValuesIn(all_parts()), test_name);

class SelectedParts : public testing::TestWithParam<Part> {};

TEST_P(SelectedParts, HaveThemForAnyNumberOfThreadsAndAnyInstructionSet) {
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount count(threads);
            EXPECT_EQ(difference_of(GetParam()), "") << name_of(set) << ", threads: " << threads;
        }
    }
}

std::vector<Part> selected_parts() {
    std::vector<Part> parts;
    for (const Part& part : all_parts()) {
        if (part.is_selected) {
            parts.push_back(part);
        }
    }
    return parts;
}

INSTANTIATE_TEST_SUITE_P(Some, SelectedParts, testing::ValuesIn(selected_parts()), test_name);

TEST(AllParts, AreThoseOfTheList) {
    std::vector<std::string> listed;
    std::set<std::string> distinct;
    for (const ExpectedPart& part : expected()) {
        listed.push_back(part.name);
    }
    std::vector<std::string> names;
    for (const Part& part : all_parts()) {
        names.push_back(part.name);
        distinct.insert(part.name);
    }
    EXPECT_EQ(listed, names);
    EXPECT_EQ(distinct.size(), names.size());
    EXPECT_GE(selected_parts().size(), 8U);
}

/// What differs of parts that several processes share; empty for nothing.
std::string difference_of_shared(const std::vector<Part>& parts) {
    std::string difference;
    compare_parts(parts, expected_parts(rank_digests_text()), [&](const PartOutcome& outcome) {
        if (!outcome.first_difference.empty()) {
            difference += outcome.name + ": " + outcome.first_difference + '\n';
        }
    });
    return difference;
}

TEST(SharedParts, HaveTheirDigestsByOneProcess) {
    const std::vector<Part> parts = shared_parts(one_rank());
    EXPECT_EQ(parts.size(), expected_parts(rank_digests_text()).size());
    EXPECT_EQ(difference_of_shared(parts), "");
}

TEST(SharedParts, HaveThemByFourRanksThatAllHaveRows) {
    test::run_ranks(4, [](Ranks& ranks) {
        if (!ranks.isFirst()) {
            serve_fits(ranks);
            return;
        }
        std::vector<Part> parts = shared_parts(ranks);
        std::erase_if(parts, [](const Part& part) { return !part.name.starts_with("four"); });
        EXPECT_EQ(parts.size(), 2U);
        EXPECT_EQ(difference_of_shared(parts), "");
        end_service(ranks);
    });
}

TEST(StageOf, ChangesWithEveryBit) {
    const std::vector<double> values = {1.0, 0.0};
    const std::vector<double> others = {1.0, -0.0};
    EXPECT_EQ(stage_of("map", values), stage_of("map", values));
    EXPECT_NE(stage_of("map", values), stage_of("map", others));
}

TEST(ExpectedParts, AreReadLineByLine) {
    const auto parts = expected_parts(
        "a b\tmap\t00000000000000ff\na b\tcosts\t8000000000000000\nc\tmap\t0000000000000001\n");
    ASSERT_EQ(parts.size(), 2U);
    EXPECT_EQ(parts[0].name, "a b");
    EXPECT_EQ(parts[0].stages,
              (std::vector<StageDigest>{{"map", 0xff}, {"costs", 0x8000000000000000}}));
    EXPECT_EQ(parts[1].stages, (std::vector<StageDigest>{{"map", 1}}));
}

TEST(ExpectedParts, RefuseLinesOfAnotherForm) {
    for (const char* const text :
         {"a\tmap\n", "a\tmap\tff\n", "a\tmap\t00000000000000fg\n", "\n"}) {
        EXPECT_THROW(expected_parts(text), std::invalid_argument) << text;
    }
}

TEST(FirstDifference, IsTheFirstStageThatIsNotTheSame) {
    const std::vector<StageDigest> two = {{"start", 1}, {"map", 2}};
    EXPECT_EQ(first_difference(two, two), "");
    EXPECT_EQ(first_difference(two, {{"start", 1}, {"map", 3}}), "map");
    EXPECT_EQ(first_difference(two, {{"start", 9}, {"map", 3}}), "start");
    EXPECT_EQ(first_difference(two, {{"start", 1}}), "map");
    EXPECT_EQ(first_difference({{"start", 1}}, two), "map");
    EXPECT_EQ(first_difference(two, {}), "start");
}

}  // namespace
}  // namespace ovik::golden
