#include "util/line_blocks.h"

#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace ovik {

namespace {

using testing::ElementsAre;

std::vector<std::string> blocks_of(const std::string& text, std::size_t size) {
    std::istringstream file(text);
    LineBlocks blocks(file, size);
    std::vector<std::string> result;
    std::string block;
    while (blocks.next(block)) {
        result.push_back(block);
    }
    return result;
}

TEST(LineBlocks, EndAtLineBreaks) {
    EXPECT_THAT(blocks_of("", 4), ElementsAre());
    EXPECT_THAT(blocks_of("ab\ncd\n", 6), ElementsAre("ab\ncd\n"));
    EXPECT_THAT(blocks_of("ab\ncd\nef", 4), ElementsAre("ab\n", "cd\n", "ef"));
    EXPECT_THAT(blocks_of("a long line\nb", 3), ElementsAre("a long line\n", "b"));
    EXPECT_THAT(blocks_of("no break at all", 4), ElementsAre("no break at all"));
    EXPECT_THAT(blocks_of("\n\n\n", 1), ElementsAre("\n", "\n", "\n"));
}

RC_GTEST_PROP(LineBlocks, HoldTheTextWhateverTheirSize, ()) {
    const auto text =
        *rc::gen::container<std::string>(rc::gen::elementOf(std::string("ab\n\n\t0")));
    for (std::size_t size = 1; size < 9; ++size) {
        std::string joined;
        for (const std::string& block : blocks_of(text, size)) {
            RC_ASSERT(joined.empty() || joined.ends_with('\n'));
            joined += block;
        }
        RC_ASSERT(joined == text);
    }
}

TEST(ForEachLine, VisitsLinesWithoutTheirBreaks) {
    std::vector<std::string> lines;
    for_each_line("a\n\nb\nc", [&](std::string_view line) { lines.emplace_back(line); });
    EXPECT_THAT(lines, ElementsAre("a", "", "b", "c"));
}

}  // namespace

}  // namespace ovik
