#include "input/label_file.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "util/input_error.h"

#include "tests/support/gzip.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LabelFiles : public testing::Test {
  protected:
    LabelFile read(const std::string& text, std::size_t rows = 3) {
        return read_label_file(directory_.write("labels", text), rows);
    }

    LabelTable table(const std::string& text) {
        LabelFile file = read(text);
        EXPECT_THAT(file.labels, IsEmpty());
        EXPECT_TRUE(file.table) << text;
        return file.table.value_or(LabelTable());
    }

    std::string refusal(const std::string& text) {
        try {
            read(text);
        } catch (const InputError& error) {
            const std::string message = error.what();
            EXPECT_TRUE(message.starts_with(directory_.file("labels"))) << message;
            return message.substr(directory_.file("labels").size());
        }
        ADD_FAILURE() << text << " was not refused";
        return "";
    }

    test::TemporaryDirectory directory_;
};

TEST_F(LabelFiles, OfOneColumnAreTheirLines) {
    const LabelFile file = read("a\r\n b \n\n");
    EXPECT_THAT(file.labels, ElementsAre("a", " b ", ""));
    EXPECT_FALSE(file.table);
    EXPECT_THAT(read("x\na, b\nc\n").labels, ElementsAre("x", "a, b", "c"));
    EXPECT_THAT(read("\"a\"\n#\n\"\n").labels, ElementsAre("\"a\"", "#", "\""));
    EXPECT_THAT(read("\xef\xbb\xbf"
                     "a\nb\na\n")
                    .labels,
                ElementsAre("a", "b", "a"));
    EXPECT_THAT(read(test::gzipped("\xef\xbb\xbf"
                                   "a\nb\na\n"))
                    .labels,
                ElementsAre("a", "b", "a"));
    EXPECT_THAT(read(">2fold\nnone\nnone\n").labels, ElementsAre(">2fold", "none", "none"));
    EXPECT_THAT(refusal("a\nb\n"), HasSubstr(": holds 2 labels, but the matrix has 3 rows\n"));
}

TEST_F(LabelFiles, OfTwoColumnsAreTables) {
    const LabelTable labels = table("gene\tprocess\nCDC28\tcycle\n\nADE5,7\t\n");
    EXPECT_EQ(labels.names_title, "gene");
    EXPECT_THAT(labels.titles, ElementsAre("process"));
    EXPECT_THAT(labels.names, ElementsAre("CDC28", "ADE5,7"));
    EXPECT_THAT(labels.lines, ElementsAre(2, 4));
    EXPECT_THAT(labels.columns, ElementsAre(ElementsAre("cycle", "")));
}

TEST_F(LabelFiles, MayHaveCommasQuotesAndLineEnds) {
    const LabelTable labels = table(
        "\xef\xbb\xbf\"gene\",\"a \"\"b\"\"\",c\r\n\"ADE5,7\",\"1\n2\",x\r\nCDC28,\"\",5\"\r\n");
    EXPECT_EQ(labels.names_title, "gene");
    EXPECT_THAT(labels.titles, ElementsAre("a \"b\"", "c"));
    EXPECT_THAT(labels.names, ElementsAre("ADE5,7", "CDC28"));
    EXPECT_THAT(labels.lines, ElementsAre(2, 4));
    EXPECT_THAT(labels.columns, ElementsAre(ElementsAre("1\n2", ""), ElementsAre("x", "5\"")));
}

TEST_F(LabelFiles, MayHaveSemicolons) {
    const LabelTable labels = table("gene;module;score\r\nSFB2;M0;0,0\r\n\"A;B\";M1;0,1\r\n");
    EXPECT_EQ(labels.names_title, "gene");
    EXPECT_THAT(labels.titles, ElementsAre("module", "score"));
    EXPECT_THAT(labels.names, ElementsAre("SFB2", "A;B"));
    EXPECT_THAT(labels.columns, ElementsAre(ElementsAre("M0", "M1"), ElementsAre("0,0", "0,1")));
    EXPECT_THAT(table("gene;x\nADE5,7;1\nARG5,6;2\n").names, ElementsAre("ADE5,7", "ARG5,6"));
    // Commas that all lines have are what separates.
    EXPECT_THAT(table("gene,GO;slim\nSFB2,a;b\nQRI7,c;d\n").titles, ElementsAre("GO;slim"));
    EXPECT_THAT(table("gene,GO\nSFB2,a;b\nQRI7,c;d\n").names, ElementsAre("SFB2", "QRI7"));
    EXPECT_THAT(refusal("gene;x\nSFB2;1;2\nCFT2;1\n"),
                HasSubstr("and put names that hold a semicolon in double quotes."));
}

TEST_F(LabelFiles, OfRHaveNoTitleAboveTheNames) {
    const LabelTable labels = table("\"group\"\t\"score\"\n\"CDC28\"\t\"x\"\t1.5\n");
    EXPECT_EQ(labels.names_title, "");
    EXPECT_THAT(labels.titles, ElementsAre("group", "score"));
    EXPECT_THAT(labels.names, ElementsAre("CDC28"));
    EXPECT_THAT(table("group\na,1\nb,2").titles, ElementsAre("group"));
}

TEST_F(LabelFiles, MayBePacked) {
    EXPECT_THAT(table(test::gzipped("gene\tx\nCDC28\t1\n")).names, ElementsAre("CDC28"));
    EXPECT_THAT(read(test::gzipped("a\nb\nc\n")).labels, ElementsAre("a", "b", "c"));
    const std::string packed = test::gzipped("gene\tx\nCDC28\t1\n");
    EXPECT_THAT(refusal(packed.substr(0, packed.size() - 9)), HasSubstr(": "));
}

TEST_F(LabelFiles, AreRefusedWithTheLine) {
    EXPECT_THAT(
        refusal("gene,x\nCDC28,1\nADE5,7,1\n"),
        HasSubstr(", line 3: has 3 fields, the header stands for 2\nGive each line a name and a "
                  "label per column, and put names that hold a comma in double quotes."));
    EXPECT_THAT(refusal("gene\tx\ty\nCDC28\t1\n\nA\t1\t2\n"), HasSubstr(", line 2: has 2 fields"));
    EXPECT_THAT(refusal("gene,x\nADE5,7,1\nCDC28,1\n"), HasSubstr(", line 2: has 3 fields"));
    EXPECT_THAT(refusal("gene\tx\nCDC28\t1\nA\t2\nCDC28\t3\n"),
                HasSubstr(": \"CDC28\" stands in lines 2 and 4\nGive each name one line,"));
    EXPECT_THAT(refusal("gene\tx\tx\nCDC28\t1\t2\n"), HasSubstr("\"x\" stands in columns 2 and 3"));
    EXPECT_THAT(refusal("gene\tx\n\"CDC28\t1\n"), HasSubstr(", line 2: nothing closes"));
    EXPECT_THAT(refusal("gene\tx\n\"CDC28\"a\t1\n"), HasSubstr(", line 2: text stands behind"));
    EXPECT_THAT(refusal("gene\tx\nCDC28\n"), HasSubstr(", line 2: has 1 field,"));
    EXPECT_THAT(refusal("\"a\tb\nc\"\n"), HasSubstr(": holds no line"));
    EXPECT_THAT(
        refusal(std::string("PK\x03\x04\0\0 xl/workbook.xml\t\n\t\n", 26)),
        HasSubstr(": this is an Excel workbook (.xlsx): open it in the spreadsheet program"));
}

std::string quoted(const std::string& text) {
    std::string field = "\"";
    for (const char c : text) {
        field += c == '"' ? "\"\"" : std::string(1, c);
    }
    return field + "\"";
}

std::string written(const std::vector<std::vector<std::string>>& rows, char separator) {
    std::string text;
    for (const std::vector<std::string>& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            text += (i == 0 ? "" : std::string(1, separator)) + quoted(row[i]);
        }
        text += "\n";
    }
    return text;
}

RC_GTEST_PROP(LabelTables, HoldWhatWasWritten, ()) {
    const auto field =
        rc::gen::container<std::string>(rc::gen::element('a', 'b', ',', '"', '\t', '\r', ' '));
    const auto names = *rc::gen::unique<std::vector<std::string>>(rc::gen::nonEmpty(field));
    const auto columns = *rc::gen::inRange<std::size_t>(1, 4);
    RC_PRE(!names.empty());
    std::vector<std::vector<std::string>> rows = {{"name"}};
    for (std::size_t column = 0; column < columns; ++column) {
        rows[0].push_back("t" + std::to_string(column));
    }
    for (const std::string& name : names) {
        rows.push_back({name});
        for (std::size_t column = 0; column < columns; ++column) {
            rows.back().push_back(*field);
        }
    }
    const test::TemporaryDirectory directory;
    for (const char separator : {',', '\t'}) {
        // A comma file has no tab in its first lines, or tabs are what separates.
        const bool has_tab =
            std::any_of(rows[1].begin(), rows[1].end(), [](const std::string& text) {
                return text.find('\t') != std::string::npos;
            });
        if (separator == ',' && has_tab) {
            continue;
        }
        const LabelFile file =
            read_label_file(directory.write("labels", written(rows, separator)), 0);
        RC_ASSERT(file.table.has_value());
        RC_ASSERT(file.table->names == names);
        for (std::size_t r = 1; r < rows.size(); ++r) {
            RC_ASSERT(file.table->lines[r - 1] == r + 1);
            for (std::size_t column = 0; column < columns; ++column) {
                RC_ASSERT(file.table->columns[column][r - 1] == rows[r][column + 1]);
            }
        }
    }
}

TEST_F(LabelFiles, ThatCannotBeReadAreRefused) {
    EXPECT_THROW(read_label_file(directory_.file("none"), 1), InputError);
    EXPECT_THROW(read_label_file(directory_.prefix(), 1), InputError);
}

}  // namespace
}  // namespace ovik
