#include "input/row_texts.h"

#include <string>
#include <vector>

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

TEST(RowTexts, AreTheLinesOfAFile) {
    const test::TemporaryDirectory directory;
    EXPECT_THAT(read_row_texts(directory.write("f", "a\n b \n\nc"), 4, "label"),
                ElementsAre("a", " b ", "", "c"));
    EXPECT_THAT(read_row_texts(directory.write("f", "a\r\nb\r\r\n\r\n"), 3, "label"),
                ElementsAre("a", "b\r", ""));
    EXPECT_THAT(read_row_texts(directory.write("f", ""), 0, "label"), IsEmpty());
}

TEST(RowTexts, HaveNoByteOrderMark) {
    const test::TemporaryDirectory directory;
    EXPECT_THAT(read_row_texts(directory.write("f",
                                               "\xef\xbb\xbf"
                                               "CDC28\nTUB1\n"),
                               2,
                               "name"),
                ElementsAre("CDC28", "TUB1"));
    EXPECT_THAT(read_row_texts(directory.write("f",
                                               "a\n\xef\xbb\xbf"
                                               "b\n"),
                               2,
                               "name"),
                ElementsAre("a",
                            "\xef\xbb\xbf"
                            "b"));
}

TEST(RowTexts, MayBePacked) {
    const test::TemporaryDirectory directory;
    EXPECT_THAT(read_row_texts(directory.write("f",
                                               test::gzipped("\xef\xbb\xbf"
                                                             "CDC28\nTUB1\n")),
                               2,
                               "name"),
                ElementsAre("CDC28", "TUB1"));
}

TEST(RowTexts, AreRefusedIfTheyCannotBeReadOrDoNotFitTheRows) {
    const test::TemporaryDirectory directory;

    const struct {
        std::string path;
        std::size_t rows;
        const char* reason;
    } kCases[] = {
        {directory.file("none"), 1, "/none: the labels cannot be read (No such file or directory)"},
        {directory.prefix(), 1, "/: the labels cannot be read (Is a directory)"},
        {directory.write("one", "a\n"),
         2,
         "/one: holds 1 label, but the matrix has 2 rows\nGive one label"},
        {directory.write("two", "a\nb\n"), 1, "/two: holds 2 labels, but the matrix has 1 row\n"},
        {directory.write("x", std::string("PK\x03\x04\0\0 xl/workbook.xml", 22)),
         1,
         "/x: this is an Excel workbook (.xlsx): open it in the spreadsheet program and save"},
        {directory.write("u",
                         std::string("\xff\xfe"
                                     "a\0\n\0"
                                     "b\0",
                                     8)),
         2,
         "/u: this is UTF-16 text"},
        {directory.write("nul", std::string("a\0b\n", 4)),
         1,
         "/nul: this holds NUL bytes, and so is no text"},
    };

    for (const auto& [path, rows, reason] : kCases) {
        try {
            read_row_texts(path, rows, "label");
            ADD_FAILURE() << reason;
        } catch (const InputError& error) {
            EXPECT_THAT(error.what(), HasSubstr(reason));
        }
    }
}

}  // namespace
}  // namespace ovik
