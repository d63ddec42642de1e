#include "input/row_texts.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

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
