#include "util/platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/instruction_set.h"

#include "tests/support/instruction_sets.h"

namespace ovik {
namespace {

TEST(ThisPlatform, NamesWhatTheProgramWasBuiltByAndRunsOn) {
    const Platform platform = this_platform();
    EXPECT_THAT(platform.compiler, testing::MatchesRegex("(GCC|Clang) [0-9]+[.].*"));
    EXPECT_THAT(platform.architecture, testing::Not(testing::IsEmpty()));
    EXPECT_EQ(platform.system, "Linux");
#ifdef __GLIBC__
    EXPECT_THAT(platform.c_library, testing::StartsWith("glibc 2."));
#endif
#ifdef __x86_64__
    EXPECT_EQ(platform.architecture, "x86_64");
    EXPECT_THAT(platform.processor, testing::Not(testing::IsEmpty()));
#endif
}

TEST(ThisPlatform, TellsTheInstructionSetThatIsAtWork) {
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        EXPECT_EQ(this_platform().instructions, name_of(set));
    }
}

TEST(TextOfPlatform, IsASentencePart) {
    EXPECT_EQ(text_of({"Model 7", "x86_64", "avx2", "Linux", "glibc 2.36", "GCC 12.2.0"}),
              "glibc 2.36 on Model 7 (x86_64, avx2), compiled by GCC 12.2.0");
    EXPECT_EQ(text_of({"", "ppc64le", "scalar", "Linux", "", ""}),
              "an unknown C library on an unknown processor (ppc64le, scalar), compiled by an "
              "unknown compiler");
}

TEST(ThisPlatform, IsTheSameEachTimeItIsAsked) {
    EXPECT_EQ(this_platform(), this_platform());
}

}  // namespace
}  // namespace ovik
