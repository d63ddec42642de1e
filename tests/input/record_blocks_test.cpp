#include "input/record_blocks.h"

#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "input/quoted_record.h"

namespace ovik {
namespace {

using testing::ElementsAre;

std::vector<std::string> blocks_of(const std::string& text,
                                   std::size_t size,
                                   std::size_t begun = 0) {
    std::istringstream file(text.substr(begun));
    RecordBlocks blocks(file, size, text.substr(0, begun), ',');
    std::vector<std::string> all;
    std::string block;
    while (blocks.next(block)) {
        all.push_back(block);
    }
    return all;
}

TEST(RecordBlocks, EndWithLinesWhereNoQuoteIsOpen) {
    EXPECT_THAT(blocks_of("a\nb\nc", 1), ElementsAre("a\n", "b\n", "c"));
    EXPECT_THAT(blocks_of("a\n\"b\nc\",1\nd\n", 1), ElementsAre("a\n", "\"b\nc\",1\n", "d\n"));
    EXPECT_THAT(blocks_of("", 1), ElementsAre());
}

TEST(RecordBlocks, EndWithTheFileIfAQuoteStaysOpen) {
    EXPECT_THAT(blocks_of("a\n\"b\nc\nd\n", 1), ElementsAre("a\n", "\"b\nc\nd\n"));
}

TEST(RecordBlocks, GiveUpOnAQuoteThatStaysOpenForLong) {
    const std::string line(std::size_t{1} << 20U, 'x');
    std::string text = "\"";
    for (int n = 0; n < 40; ++n) {
        text += line + "\n";
    }
    const std::vector<std::string> blocks = blocks_of(text, std::size_t{1} << 20U);
    EXPECT_GT(blocks.size(), 2U);
    EXPECT_GE(blocks[0].size(), RecordBlocks::kLongestRecord);
}

/// Wherever blocks end, they hold the same records.
RC_GTEST_PROP(RecordBlocksProperty, HoldTheRecordsOfTheText, ()) {
    const auto lines = *rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
        "a,1\n", "\"b\nc\",2\n", "# \"x\n", "\n", "\"d\"\"\n\ne\",\"3\n\"\n", "5\",4\n"));
    std::string text;
    for (const std::string& line : lines) {
        text += line;
    }
    const auto size = *rc::gen::inRange<std::size_t>(1, 30);
    const auto begun = *rc::gen::inRange<std::size_t>(0, text.size() + 1);
    std::string joined;
    for (const std::string& block : blocks_of(text, size, begun)) {
        std::string_view rest = block;
        while (!rest.empty()) {
            const QuotedRecord record = first_record(rest, ',');
            RC_ASSERT(!record.bad_quote);
            rest.remove_prefix(record.length);
        }
        joined += block;
    }
    RC_ASSERT(joined == text);
}

}  // namespace
}  // namespace ovik
