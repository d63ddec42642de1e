#include "input/text_head.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::HasSubstr;

TEST(ForeignFormat, IsToldWithTheCure) {
    const struct {
        const char* head;
        const char* cure;
    } kCases[] = {
        {"PK\x03\x04", "zip archive or a spreadsheet: save the sheet as tab-separated text"},
        {"\xfd"
         "7zXZ",
         "packed by xz: unpack it first (xz -d)"},
        {"BZh9", "packed by bzip2: unpack it first (bzip2 -d)"},
        {"\x28\xb5\x2f\xfd", "packed by zstd: unpack it first (zstd -d)"},
        {"\xff\xfeh", "UTF-16 text: save it as UTF-8"},
        {"\xfe\xffh", "UTF-16 text: save it as UTF-8"},
    };

    for (const auto& [head, cure] : kCases) {
        EXPECT_THAT(foreign_format(head), HasSubstr(cure));
    }
}

TEST(ForeignFormat, IsNoneOfTextThatIsRead) {
    for (const char* const head :
         {"", "h\nG1\t1\n", "PK", "BZ", "%%MatrixMarket", "\xef\xbb\xbfh"}) {
        EXPECT_EQ(foreign_format(head), "") << head;
    }
}

TEST(TextHead, IsRefusedIfItIsNone) {
    const struct {
        std::string content;
        const char* reason;
    } kCases[] = {
        {std::string("h\nG1\t1\nG\0\t2\n", 12), "m.txt:3: the line holds a NUL byte"},
        {std::string(1, '\0'), "m.txt:1: the line holds a NUL byte"},
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
    for (const char* const content : {"", "\r", "h\r", "h\r\n", "h\rG1\n", "h"}) {
        const MatrixSource source(directory.write("m.txt", content));
        EXPECT_NO_THROW(check_text_head(source)) << content;
    }
}

}  // namespace
}  // namespace ovik
