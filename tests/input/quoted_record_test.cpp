#include "input/quoted_record.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "util/matrix_line.h"

namespace ovik {
namespace {

using testing::ElementsAre;

std::vector<std::string> fields_of(std::string record, char delimiter = ',') {
    std::vector<std::string> fields;
    for_each_record_field(record, delimiter, [&](const char* field, const char* end) {
        EXPECT_EQ(*end, '\0');
        fields.emplace_back(field, end);
    });
    return fields;
}

TEST(ForEachRecordField, TakesQuotesAway) {
    EXPECT_THAT(fields_of("\"a,b\",1,\"2\""), ElementsAre("a,b", "1", "2"));
    EXPECT_THAT(fields_of("\"say \"\"a\"\"\",\"\"\"\",\"\""), ElementsAre("say \"a\"", "\"", ""));
    EXPECT_THAT(fields_of("\"a\" ,\"b\"\t"), ElementsAre("a", "b"));
    EXPECT_THAT(fields_of("\"a\nb\r\nc\",1"), ElementsAre("a b c", "1"));
}

TEST(ForEachRecordField, LeavesQuotesThatAreText) {
    EXPECT_THAT(fields_of("5\",3',a\"b\"c"), ElementsAre("5\"", "3'", "a\"b\"c"));
    EXPECT_THAT(fields_of("\"orphan\" RNA,1"), ElementsAre("\"orphan\" RNA", "1"));
    EXPECT_THAT(fields_of(" \"a\",1"), ElementsAre(" \"a\"", "1"));
}

/// Without quotes that open a field, fields are those of a line.
RC_GTEST_PROP(ForEachRecordFieldProperty, SplitsOtherLinesAsLines, ()) {
    const auto text = *rc::gen::container<std::string>(rc::gen::element('a', '1', ',', ' ', '\''));
    std::string line = text;
    std::vector<std::string> expected;
    for_each_matrix_field(
        line, ',', [&](const char* field, const char* end) { expected.emplace_back(field, end); });
    RC_ASSERT(fields_of(text) == expected);
}

/// Whatever fields hold, quoting as RFC 4180 says keeps it.
RC_GTEST_PROP(ForEachRecordFieldProperty, GivesBackWhatWasQuoted, ()) {
    const auto fields = *rc::gen::nonEmpty(rc::gen::container<std::vector<std::string>>(
        rc::gen::container<std::string>(rc::gen::element('a', '"', ',', ' ', '\t', '#'))));
    std::string record;
    for (const std::string& field : fields) {
        record += record.empty() ? "\"" : ",\"";
        for (const char c : field) {
            record += c == '"' ? "\"\"" : std::string(1, c);
        }
        record += '"';
    }
    RC_ASSERT(fields_of(record) == fields);
    const QuotedRecord found = first_record(record + "\nmore", ',');
    RC_ASSERT(!found.bad_quote);
    RC_ASSERT(found.length == record.size() + 1);
}

TEST(FirstRecord, EndsWithTheLineOrBehindQuotedLineFeeds) {
    const struct {
        const char* text;
        std::size_t length;
    } kCases[] = {
        {"a,b\nc\n", 4},
        {"a,b", 3},
        {"\n\"a\n", 1},
        {"a,\"b\nc\",d\ne\n", 10},
        {"\"a\n\n\"\nb\n", 6},
        {"  \"a\nb\",1\nc\n", 10},
        {"a,\nb", 3},
        {"a,", 2},
        // Quotes of comments and within fields open nothing.
        {"# a,\"b\nc\"\n", 7},
        {"5\",\"a\"\nc", 7},
        {"\"x\" y\nz\n", 6},
    };

    for (const auto& [text, length] : kCases) {
        const QuotedRecord record = first_record(text, ',');
        EXPECT_EQ(record.length, length) << text;
        EXPECT_FALSE(record.bad_quote) << text;
        EXPECT_FALSE(record.is_open) << text;
    }
}

TEST(FirstRecord, TellsWhereAQuoteOpensThatIsNotClosed) {
    const QuotedRecord open = first_record("a,\"b\nc,d\n", ',');
    EXPECT_TRUE(open.is_open);
    EXPECT_EQ(open.bad_quote, 2U);
    EXPECT_EQ(open.length, 5U);
    const QuotedRecord amid = first_record("a,\"b\nc\"d,e\n", ',');
    EXPECT_FALSE(amid.is_open);
    EXPECT_EQ(amid.bad_quote, 2U);
    EXPECT_TRUE(first_record("\"a\"\"\n", ',').is_open);
}

TEST(FieldsOverLines, AreThoseInQuotesWithLineFeeds) {
    using testing::ElementsAre;
    using testing::IsEmpty;
    EXPECT_THAT(fields_over_lines("\"a\nb\",\"c\",\"d,\ne\"\n", ','), ElementsAre("a\nb", "d,\ne"));
    EXPECT_THAT(fields_over_lines("  \"a\n\"\"b\",1", ','), ElementsAre("a\n\"\"b"));
    EXPECT_THAT(fields_over_lines("\"a,b\",5\",c\n", ','), IsEmpty());
    EXPECT_THAT(fields_over_lines("", ','), IsEmpty());
}

}  // namespace
}  // namespace ovik
