#include "input/matrix_formats.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/gzip.h"
#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::HasSubstr;

class MatrixFormats : public testing::Test {
  protected:
    std::string nameOf(const std::string& content) {
        return format_of(MatrixSource(directory_.write("m", content)), matrix_formats()).name;
    }

    std::string refusal(const std::string& content, const std::vector<MatrixFormat>& formats) {
        const MatrixSource source(directory_.write("m", content));
        return test::refusal_of([&] { format_of(source, formats); });
    }

    test::TemporaryDirectory directory_;
};

TEST_F(MatrixFormats, AreKnownByTheirFirstBytes) {
    EXPECT_EQ(nameOf("\x93NUMPY\x01"), "npy");
    EXPECT_EQ(nameOf("%%MatrixMarket matrix"), "matrix market");
    EXPECT_EQ(nameOf("h\nG1\t1\n"), "text");
    EXPECT_EQ(nameOf("%MatrixMarket"), "text");
    EXPECT_EQ(nameOf(test::gzipped("%%MatrixMarket matrix")), "matrix market");
}

TEST_F(MatrixFormats, DoNotIncludeWhatIsOftenTakenForText) {
    EXPECT_THAT(refusal("PK\x03\x04", matrix_formats()), HasSubstr("/m: this is a zip archive"));
    const std::vector<MatrixFormat> none;
    EXPECT_THAT(refusal("PK\x03\x04", none), HasSubstr("/m: this is a zip archive"));
    EXPECT_THAT(refusal("h\n", none), HasSubstr("/m: this is of no format that is read"));
}

TEST_F(MatrixFormats, OfTextAreRefusedIfTheyBeginLikeNone) {
    for (const std::string opening : {"", "%%MatrixMarket"}) {
        EXPECT_THAT(refusal(opening + std::string(1, '\0'), matrix_formats()),
                    HasSubstr("/m:1: the line holds a NUL byte"));
        EXPECT_THAT(refusal(opening + "\rG1\r", matrix_formats()), HasSubstr("old Macintoshes"));
    }
    EXPECT_EQ(refusal(std::string("\x93NUMPY\x01\0", 8), matrix_formats()), "");
}

}  // namespace
}  // namespace ovik
