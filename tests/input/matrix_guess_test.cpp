#include "input/matrix_guess.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

class MatrixGuess : public testing::Test {
  protected:
    MatrixSource source(const std::string& content) {
        return MatrixSource(directory_.write("m.txt", content));
    }

    test::TemporaryDirectory directory_;
};

TEST_F(MatrixGuess, OfTheShapeIsAFewPercentOff) {
    std::string content = "h\ta\tb\n";
    for (int n = 100; n < 1100; ++n) {
        content += "G100\t1.25\t" + std::to_string(n) + "\n";
    }
    const auto shape = guess_shape(source(content), '\t');
    ASSERT_TRUE(shape);
    EXPECT_EQ(shape->columns, 2U);
    EXPECT_NEAR(static_cast<double>(shape->rows), 1000.0, 50.0);
    EXPECT_FALSE(guess_shape(source("h\n"), '\t'));
}

TEST_F(MatrixGuess, OfTheDelimiterIsTheOneWithMostNumbers) {
    const struct {
        const char* content;
        std::optional<char> delimiter;
    } kCases[] = {
        {"h\nG1\t1\t2\n", '\t'},
        {"h\nG1,1,2\n", ','},
        {"h\nG1;1;2\n", ';'},
        {"h\nG1 1 2\n", ' '},
        // Names and decimal numbers with commas.
        {"h\nADE5,7\t1\t2\n", '\t'},
        {"h\nG1\t0,17\t0,33\n", '\t'},
        {"h\nG1;0,17;0,33\n", ';'},
        // Headers and comments do not count.
        {"h h\n# 1,2,3\nG1;1.5;2\n", ';'},
        {"h\nG1|1|2\n", std::nullopt},
        {"", std::nullopt},
    };

    for (const auto& [content, delimiter] : kCases) {
        EXPECT_EQ(guess_delimiter(source(content)), delimiter) << content;
    }
}

}  // namespace
}  // namespace ovik
