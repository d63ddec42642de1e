#include "plots/text_width.h"

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST(TextWidth, IsThatOfTheFont) {
    EXPECT_DOUBLE_EQ(text_width("", 10), 0.0);
    EXPECT_DOUBLE_EQ(text_width("H", 1000), 722.0);
    EXPECT_DOUBLE_EQ(text_width("Hi", 100), 72.2 + 22.2);
    // A Greek letter is one character of the font, an East Asian one is square.
    EXPECT_DOUBLE_EQ(text_width("\xCE\xB1", 1000), 578.0);
    EXPECT_DOUBLE_EQ(text_width("\xE6\x97\xA5", 1000), 1000.0);
}

TEST(CutDistinctly, LeavesWhatHasRoom) {
    EXPECT_THAT(cut_distinctly({"a", "", "a"}, 10, 50), ElementsAre("a", "", "a"));
    EXPECT_THAT(cut_distinctly({"two\nlines"}, 10, 500), ElementsAre("two lines"));
    EXPECT_THAT(cut_distinctly({}, 10, 50), ElementsAre());
}

TEST(CutDistinctly, CutsTheEndOfOneLongText) {
    const std::vector<std::string> cut =
        cut_distinctly({"mitochondrial ribosome", "other"}, 10, 60);
    EXPECT_THAT(cut[0], StartsWith("mitoch"));
    EXPECT_THAT(cut[0], EndsWith("\xE2\x80\xA6"));
    EXPECT_LE(text_width(cut[0], 10), 60);
    EXPECT_EQ(cut[1], "other");
}

TEST(CutDistinctly, ShowsWhereTextsDiffer) {
    EXPECT_THAT(cut_distinctly({"mitochondrial ribosome, large subunit",
                                "mitochondrial ribosome, small subunit"},
                               10,
                               120),
                ElementsAre(HasSubstr("\xE2\x80\xA6large"), HasSubstr("\xE2\x80\xA6small")));
}

TEST(CutDistinctly, KeepsManyTextsApartInLittleRoom) {
    std::vector<std::string> texts;
    for (int n = 0; n < 120; ++n) {
        texts.push_back("the very long label of the gene with the number " + std::to_string(n) +
                        " and more behind it");
    }
    for (const double width : {60.0, 90.0, 150.0}) {
        const std::vector<std::string> cut = cut_distinctly(texts, 10, width);
        EXPECT_EQ(std::set<std::string>(cut.begin(), cut.end()).size(), texts.size()) << width;
        for (const std::string& text : cut) {
            EXPECT_LE(text_width(text, 10), width) << text;
        }
    }
}

TEST(CutDistinctly, NumbersWhatDiffersNowhereInTheRoom) {
    // The texts differ behind a stretch of their own that is cut, too.
    const std::string start(60, 'a');
    const std::vector<std::string> cut =
        cut_distinctly({start + "b" + start, start + start, "ii"}, 10, 10);
    EXPECT_EQ(std::set<std::string>(cut.begin(), cut.end()).size(), 3U);
    EXPECT_EQ(cut[2], "ii");
    // Nothing is left to cut.
    EXPECT_THAT(cut_distinctly({"WW"}, 10, 1), ElementsAre("WW"));
}

}  // namespace
}  // namespace ovik
