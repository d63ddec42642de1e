#include "input/table_head.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/gzip.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ReadTableHead : public testing::Test {
  protected:
    TableHead head(const std::string& content, const LoadOptions& options = {}) {
        MatrixSource source(directory_.write("m", content));
        return read_table_head(source, options);
    }

    test::TemporaryDirectory directory_;
};

TEST_F(ReadTableHead, TakesTheFirstLineForTheHeader) {
    const TableHead plain = head("gene\ta\tb\nG1\t1\t2\n# x\nG2\t3\t4\n");
    EXPECT_THAT(plain.opening, IsEmpty());
    EXPECT_EQ(plain.lines_above, 1U);
    EXPECT_EQ(plain.delimiter, '\t');
    EXPECT_THAT(plain.header, ElementsAre("gene", "a", "b"));
    EXPECT_THAT(plain.rows, ElementsAre(ElementsAre("G1", "1", "2"), ElementsAre("G2", "3", "4")));
    EXPECT_EQ(plain.row_fields, 3U);
    EXPECT_EQ(plain.longest_row_line, 2U);
    EXPECT_EQ(head("gene\ta\nG1\t1\n# x\n\nG2\t\"3\n3\"\nG3\t1\t2\nG4\t1\t2\n").longest_row_line,
              7U);
}

TEST_F(ReadTableHead, PutsTheFieldsOfTheHeaderWhereTheRowsHaveThem) {
    for (const char* const content : {"a\tb\nG1\t1\t2\n",
                                      "\ta\tb\nG1\t1\t2\n",
                                      "\xEF\xBB\xBF\"\",\"a\",\"b\"\r\nG1,1,2\r\n",
                                      "\"a\" \"b\"\n\"G1\" 1 2\n"}) {
        EXPECT_THAT(head(content).header, ElementsAre("", "a", "b")) << content;
    }
    EXPECT_THAT(head("\tname\ta\n\tG1\t1\n").header, ElementsAre("name", "a"));
    EXPECT_THAT(head("a\nG1\t1\t2\n").header, ElementsAre("a"));
}

TEST_F(ReadTableHead, CountsEmptyHeadersAtTheEnd) {
    for (const char* const content : {"g,a,b,\nG1,1,2,3\nG2,1,2,\n",
                                      "g\ta\tb\t\r\nG1\t1\t2\t3\r\n",
                                      "\xEF\xBB\xBFg,a,b,\nG1,1,2,3\n"}) {
        const TableHead found = head(content);
        EXPECT_THAT(found.header, ElementsAre("g", "a", "b", "")) << content;
        EXPECT_FALSE(found.lacks_names_header) << content;
    }
    EXPECT_THAT(head("g,a,,\nG1,1,2,3\n").header, ElementsAre("g", "a", "", ""));
    // Every line ends in a delimiter, and the header has none for the names.
    const TableHead found = head("a\tb\t\nG1\t1\t2\t\nG2\t3\t4\t\n");
    EXPECT_THAT(found.header, ElementsAre("", "a", "b"));
    EXPECT_TRUE(found.lacks_names_header);
}

TEST_F(ReadTableHead, KnowsTheEmptyFieldsThatAreNoColumns) {
    const struct {
        const char* content;
        std::size_t empty_front;
        std::size_t header_fields;
    } kCases[] = {
        {"g\ta\nG1\t1\nG2\t2\n", 0, 2},
        {"\tg\ta\n\tG1\t1\n\tG2\t2\n", 1, 2},
        {"\t\tg\ta\n\t\tG1\t1\n\t\tG2\t2\n", 2, 2},
        {"g a\n G1 1\n G2 2\n", 1, 2},
        // One row has a value there, or the header has a name for the column.
        {"\tg\ta\n\tG1\t1\nx\tG2\t2\n", 0, 3},
        {"id\tg\ta\n\tG1\t1\n\tG2\t2\n", 0, 3},
        {",g,a\n,G1,1\n,G2,2\n", 0, 3},
    };

    for (const auto& [content, empty_front, header_fields] : kCases) {
        const TableHead found = head(content);
        EXPECT_EQ(found.empty_front, empty_front) << content;
        EXPECT_THAT(found.header, SizeIs(header_fields)) << content;
    }
    LoadOptions options;
    options.has_header = false;
    EXPECT_EQ(head("\tG1\t1\n\tG2\t2\n", options).empty_front, 1U);
    options.has_names = false;
    EXPECT_EQ(head("\t1\t1\n\t2\t2\n", options).empty_front, 0U);
}

TEST_F(ReadTableHead, TakesARecordOfSeveralLinesForTheHeader) {
    const TableHead quoted = head("gene,\"a\nb\",c,d\nG1,1,2,3\n");
    EXPECT_THAT(quoted.opening, IsEmpty());
    EXPECT_THAT(quoted.header, ElementsAre("gene", "a b", "c", "d"));
    EXPECT_EQ(quoted.lines_above, 2U);
    EXPECT_THAT(quoted.rows, SizeIs(1));
}

TEST_F(ReadTableHead, LooksBehindLinesThatAreEmptyOrComments) {
    const TableHead commented = head("# a note, 1\n\ngene\ta\nG1\t1\n");
    EXPECT_THAT(commented.opening, ElementsAre("# a note, 1", ""));
    EXPECT_EQ(commented.lines_above, 3U);
    EXPECT_THAT(commented.header, ElementsAre("gene", "a"));
    const TableHead in_comment = head("# note\n#gene\ta\tb\nG1\t1\t2\nG2\t3\t4\n");
    EXPECT_THAT(in_comment.header, ElementsAre("gene", "a", "b"));
    EXPECT_EQ(in_comment.lines_above, 2U);
    EXPECT_THAT(in_comment.rows, SizeIs(2));
}

TEST_F(ReadTableHead, LooksBelowTitlesAndLinesThatGiveTheDelimiter) {
    const TableHead titled = head("Table S1\n\ngene\t0\t7\nG1\t1\t2\n");
    EXPECT_THAT(titled.opening, ElementsAre("Table S1", ""));
    EXPECT_THAT(titled.header, ElementsAre("gene", "0", "7"));
    const TableHead separated = head("sep=;\r\ngene;0;7\r\nG1;1,5;2\r\n");
    EXPECT_EQ(separated.delimiter, ';');
    EXPECT_THAT(separated.opening, ElementsAre("sep=;"));
    EXPECT_THAT(separated.header, ElementsAre("gene", "0", "7"));
}

TEST_F(ReadTableHead, HasNoHeaderIfThereIsNone) {
    LoadOptions options;
    options.has_header = false;
    const TableHead bare = head("# note\nG1\t1\nG2\t2\n", options);
    EXPECT_THAT(bare.header, IsEmpty());
    EXPECT_EQ(bare.lines_above, 0U);
    EXPECT_THAT(bare.rows, SizeIs(2));
}

TEST_F(ReadTableHead, HasTheRowsBehindTheLineThatGivesTheDelimiter) {
    LoadOptions options;
    options.has_header = false;
    const TableHead bare = head("sep=;\r\nG1;1;2\r\nG2;3;4\r\n", options);
    EXPECT_THAT(bare.header, IsEmpty());
    EXPECT_EQ(bare.delimiter, ';');
    EXPECT_EQ(bare.lines_above, 1U);
    EXPECT_THAT(bare.rows, ElementsAre(ElementsAre("G1", "1", "2"), ElementsAre("G2", "3", "4")));
}

TEST_F(ReadTableHead, FindsTheTablesOfGeo) {
    std::string content = "!Series_title\t\"a, b\"\n!Series_type\t\"x\"\n";
    // Longer than the head that is read at first.
    content += "!Sample_title" + std::string(3000000, '\t') + "\n";
    content +=
        "!series_matrix_table_begin\n\"ID_REF\"\t\"GSM1\"\n\"YAL001C\"\t1.5\n"
        "!series_matrix_table_end\n";
    for (const std::string& text : {content, test::gzipped(content)}) {
        const TableHead geo = head(text);
        EXPECT_THAT(geo.opening, SizeIs(4));
        EXPECT_EQ(geo.lines_above, 5U);
        EXPECT_THAT(geo.header, ElementsAre("ID_REF", "GSM1"));
        EXPECT_EQ(geo.rows.at(0).at(0), "YAL001C");
    }
    try {
        head("^SERIES = GSE1\n!Series_title = x\n");
        ADD_FAILURE();
    } catch (const InputError& error) {
        EXPECT_THAT(error.what(), HasSubstr("opens as a file of GEO, but has no table"));
    }
}

TEST_F(ReadTableHead, FindsTheTableOfAGctFile) {
    const TableHead gct = head("#1.2\n1\t2\nName\tDescription\ta\tb\nG1\tx\t1\t2\n");
    EXPECT_THAT(gct.opening, ElementsAre("#1.2", "1\t2"));
    EXPECT_THAT(gct.header, ElementsAre("Name", "Description", "a", "b"));
}

TEST(FieldsOf, KeepDelimitersInFrontIfTheyShall) {
    EXPECT_THAT(fields_of("\ta\tb \r\n", '\t', true), ElementsAre("", "a", "b"));
    EXPECT_THAT(fields_of("\ta\tb\t\n", '\t', false), ElementsAre("a", "b"));
    EXPECT_THAT(fields_of(" a,b\n", ',', true), ElementsAre("a", "b"));
    EXPECT_THAT(fields_of("", ',', true), IsEmpty());
}

}  // namespace
}  // namespace ovik
