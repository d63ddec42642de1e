#include "util/plain_text.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace ovik {

namespace {

TEST(OneLineUtf8, KeepsValidText) {
    const std::string text = "CDC28 \xC3\xBC \xE2\x82\xAC \xF0\x9F\x8D\x9E 100% 'x' `y` \\";
    EXPECT_EQ(one_line_utf8(text), text);
    EXPECT_EQ(one_line_utf8(""), "");
}

TEST(OneLineUtf8, MakesControlCharactersBlanks) {
    EXPECT_EQ(one_line_utf8(std::string("a\nb\tc\0d\x1B[2J\x7F", 12)), "a b c d [2J ");
    EXPECT_EQ(one_line_utf8("a\xC2\x85z"), "a z");  // NEL, a line end of its own
}

TEST(OneLineUtf8, ReplacesWhatIsNotUtf8) {
    const std::string bad = "\xEF\xBF\xBD";
    EXPECT_EQ(one_line_utf8("a\xFFz"), "a" + bad + "z");
    EXPECT_EQ(one_line_utf8("\xC0\x80"), bad + bad);              // overlong NUL
    EXPECT_EQ(one_line_utf8("\xE0\x80\x80"), bad + bad + bad);    // overlong
    EXPECT_EQ(one_line_utf8("\xED\xA0\x80"), bad + bad + bad);    // surrogate
    EXPECT_EQ(one_line_utf8("\xF4\x90\x80\x80").size(), 4 * 3U);  // above U+10FFFF
    EXPECT_EQ(one_line_utf8("x\xE2\x82"), "x" + bad + bad);       // cut short
}

RC_GTEST_PROP(OneLineUtf8, IsIdempotentAndHasNoControls, (const std::string& bytes)) {
    const std::string text = one_line_utf8(bytes);
    RC_ASSERT(one_line_utf8(text) == text);
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        RC_ASSERT(code >= 0x20U && code != 0x7FU);
    }
}

TEST(Shortened, CutsCharactersNotBytes) {
    EXPECT_EQ(shortened("abc", 3), "abc");
    EXPECT_EQ(shortened("abcd", 3), "ab\xE2\x80\xA6");
    EXPECT_EQ(shortened("\xC3\xBC\xC3\xBC\xC3\xBC", 2), "\xC3\xBC\xE2\x80\xA6");
    EXPECT_EQ(shortened("abcd", 1), "\xE2\x80\xA6");
    EXPECT_EQ(character_count("\xC3\xBC"
                              "a"),
              2U);
}

}  // namespace

}  // namespace ovik
