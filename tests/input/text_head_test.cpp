#include "input/text_head.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::HasSubstr;

TEST(TextHead, IsRefusedIfItIsNone) {
    const struct {
        std::string content;
        const char* reason;
    } kCases[] = {
        {std::string("h\nG1\t1\nG\0\t2\n", 12), "m.txt:3: the line holds a NUL byte"},
        {std::string(1, '\0'), "m.txt:1: the line holds a NUL byte"},
        {"", "m.txt: the file is empty\nCheck that the program"},
        {" \n\t\r\n", "m.txt: the file holds blanks alone\nCheck that the program"},
        {"h\rG1\t1\rG2\t2\r", "m.txt: its lines end with carriage returns alone"},
    };

    const test::TemporaryDirectory directory;
    for (const auto& [content, reason] : kCases) {
        const MatrixSource source(directory.write("m.txt", content));
        try {
            check_text_head(source);
            ADD_FAILURE() << reason;
        } catch (const InputError& error) {
            EXPECT_THAT(error.what(), HasSubstr(reason));
        }
    }
}

TEST(TextHead, MayHaveAnyOtherLineEnds) {
    const test::TemporaryDirectory directory;
    for (const char* const content : {"h\r", "h\r\n", "h\rG1\n", "h"}) {
        const MatrixSource source(directory.write("m.txt", content));
        EXPECT_NO_THROW(check_text_head(source)) << content;
    }
}

}  // namespace
}  // namespace ovik
