#include "plots/characters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(CharactersOf, AreOneToFourBytesLong) {
    EXPECT_THAT(characters_of("a\xCE\xB1\xE6\x97\xA5\xF0\x9F\x98\x80"),
                ElementsAre("a", "\xCE\xB1", "\xE6\x97\xA5", "\xF0\x9F\x98\x80"));
    EXPECT_THAT(characters_of(""), IsEmpty());
}

TEST(CodeOf, IsThatOfTheCharacter) {
    EXPECT_EQ(code_of("a"), 0x61U);
    EXPECT_EQ(code_of("\xCE\xB1"), 0x3B1U);
    EXPECT_EQ(code_of("\xE6\x97\xA5"), 0x65E5U);
    EXPECT_EQ(code_of("\xF0\x9F\x98\x80"), 0x1F600U);
}

}  // namespace
}  // namespace ovik
