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
    const auto shape = guess_shape(source(content), TableLayout());
    ASSERT_TRUE(shape);
    EXPECT_EQ(shape->columns, 2U);
    EXPECT_NEAR(static_cast<double>(shape->rows), 1000.0, 50.0);
    EXPECT_FALSE(guess_shape(source("h\n"), TableLayout()));
    TableLayout layout;
    layout.lines_above = 2;
    layout.leaveOut(1);
    const auto annotated = guess_shape(source("a line\nh\tname\ta\nG1\tx\t1\n"), layout);
    ASSERT_TRUE(annotated);
    EXPECT_EQ(annotated->columns, 1U);
}

TEST_F(MatrixGuess, OfTheDelimiterIsTheOneWithMostNumbers) {
    const struct {
        const char* content;
        std::optional<char> delimiter;
    } kCases[] = {
        {"G1\t1\t2\n", '\t'},
        {"G1,1,2\n", ','},
        {"G1;1;2\n", ';'},
        {"G1 1 2\n", ' '},
        // Names and decimal numbers with commas.
        {"ADE5,7\t1\t2\n", '\t'},
        {"G1\t0,17\t0,33\n", '\t'},
        {"G1;0,17;0,33\n", ';'},
        {"ARG5,6\t0,1\t0,2\n", '\t'},
        {"G1;1.000,00;1.007,05\n", ';'},
        // Fields in quotes.
        {"\"a, b, 1\";\"1\";\"2\"\n", ';'},
        {"\"1\n2,3,4\"\t1\t2\n", '\t'},
        // Comments do not count.
        {"# 1,2,3\nG1;1.5;2\n", ';'},
        {"G1|1|2\n", std::nullopt},
        {"", std::nullopt},
    };

    for (const auto& [content, delimiter] : kCases) {
        EXPECT_EQ(guess_delimiter(content), delimiter) << content;
    }
}

TEST_F(MatrixGuess, OfTheDelimiterIsNoCommaThatIsTheDecimalSign) {
    EXPECT_EQ(guess_delimiter("G1,1,2\n", ','), std::nullopt);
    EXPECT_EQ(guess_delimiter("G1;x0,1;y0,2\n", ','), std::nullopt);
    EXPECT_EQ(guess_delimiter("G1,1,2\n", '.'), ',');
    // In quotes it is not between fields.
    EXPECT_EQ(guess_delimiter("G1,\"1,5\",\"2\"\n", ','), ',');
}

}  // namespace
}  // namespace ovik
