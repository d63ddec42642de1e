#include "util/matrix_line.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

std::string trimmed(const std::string& line) {
    return std::string(trimmed_matrix_line(line));
}

TEST(TrimMatrixLine, RemovesEachKindInFrontInOneRun) {
    EXPECT_EQ(trimmed("\t\t\v\f  x"), "x");
    EXPECT_EQ(trimmed("\t x"), "x");
}

TEST(TrimMatrixLine, DoesNotStartAgainInFront) {
    EXPECT_EQ(trimmed(" \tx"), "\tx");
    EXPECT_EQ(trimmed("\v\tx"), "\tx");
    EXPECT_EQ(trimmed("\f\vx"), "\vx");
}

TEST(TrimMatrixLine, KeepsLineFeedsAndCarriageReturnsInFront) {
    EXPECT_EQ(trimmed("\r#x"), "\r#x");
    EXPECT_EQ(trimmed("\nx"), "\nx");
}

TEST(TrimMatrixLine, RemovesEachKindAtTheEndInOneRun) {
    EXPECT_EQ(trimmed("x \r"), "x");
    EXPECT_EQ(trimmed("x\r\t"), "x");
    EXPECT_EQ(trimmed("x \r\f\v\n\t"), "x");
}

TEST(TrimMatrixLine, DoesNotStartAgainAtTheEnd) {
    EXPECT_EQ(trimmed("x\t\r"), "x\t");
    EXPECT_EQ(trimmed("x\r \t"), "x\r");
}

TEST(TrimMatrixLine, StopsWhenTheLineIsEmpty) {
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed("\t\t \r"), "");
    EXPECT_EQ(trimmed("  "), "");
}

TEST(TrimMatrixLine, CutsAtTheFirstNulAfterTrimming) {
    EXPECT_EQ(trimmed(std::string("a \0b ", 5)), "a ");
    EXPECT_EQ(trimmed(std::string("\0b", 2)), "");
}

TEST(IsMatrixRow, RefusesEmptyLinesAndComments) {
    EXPECT_FALSE(is_matrix_row(""));
    EXPECT_FALSE(is_matrix_row("# note"));
    EXPECT_TRUE(is_matrix_row("\r# a name"));
    EXPECT_TRUE(is_matrix_row("x#"));
}

std::vector<std::string> fields(std::string line, char delimiter) {
    std::vector<std::string> result;
    for_each_matrix_field(line, delimiter, [&](const char* field, const char* end) {
        result.emplace_back(field, end);
    });
    return result;
}

using Fields = std::vector<std::string>;

TEST(ForEachMatrixField, KeepsEmptyFieldsBetweenDelimiters) {
    EXPECT_EQ(fields("G1,,2", ','), (Fields{"G1", "", "2"}));
    EXPECT_EQ(fields(",1", ','), (Fields{"", "1"}));
}

TEST(ForEachMatrixField, AddsNoFieldForAFinalDelimiter) {
    EXPECT_EQ(fields("G1,2,", ','), (Fields{"G1", "2"}));
    EXPECT_EQ(fields("G1,2,,", ','), (Fields{"G1", "2", ""}));
    EXPECT_EQ(fields(",", ','), (Fields{""}));
}

TEST(ForEachMatrixField, VisitsALineWithoutDelimiterWhole) {
    EXPECT_EQ(fields("G1 a", ','), (Fields{"G1 a"}));
    EXPECT_EQ(fields("", ','), Fields{});
}

}  // namespace
}  // namespace ovik
