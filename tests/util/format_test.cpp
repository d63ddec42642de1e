#include "util/format.h"

#include <limits>
#include <memory>
#include <new>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace ovik {
namespace {

TEST(ToStr, CutsAndNeverRounds) {
    EXPECT_EQ(to_str("2.999", 2, "."), "2.99");
    EXPECT_EQ(to_str("2.999", 3, "."), "2.999");
    EXPECT_EQ(to_str("2.9", 5, "."), "2.9");
}

TEST(ToStr, ReturnsTheIntegralPartForZeroDigits) {
    EXPECT_EQ(to_str("12.75", 0, "."), "12");
    EXPECT_EQ(to_str("12", 0, "."), "12");
}

TEST(ToStr, ReplacesTheSeparatorOnlyInTheResult) {
    EXPECT_EQ(to_str("tsne_12.750000", 1, "_"), "tsne_12_7");
    EXPECT_EQ(to_str("1,5", 1, ","), "1,5,1");
}

TEST(ToStr, TakesTheFractionFromTheStartWithoutAPoint) {
    EXPECT_EQ(to_str("7", 3, ","), "7,7");
    EXPECT_EQ(to_str("12345", 2, "."), "12345.12");
    EXPECT_EQ(to_str("", 2, "."), ".");
}

TEST(ToStr, SplitsAtTheFirstPoint) {
    EXPECT_EQ(to_str("1.2.3", 3, "."), "1.2.3");
    EXPECT_EQ(to_str(".5", 1, "."), ".5");
}

RC_GTEST_PROP(ToStr, KeepsAtMostTheDigitsAskedFor, (const std::string& text)) {
    const int digits = *rc::gen::inRange(1, 9);
    const std::string cut = to_str(text, digits, "|");
    const std::size_t point = text.find('.');
    const std::string integral = text.substr(0, point);
    RC_ASSERT(cut.substr(0, integral.size() + 1) == integral + "|");
    RC_ASSERT(cut.size() <= integral.size() + 1 + static_cast<std::size_t>(digits));
}

TEST(Num2String, FormatsIntegersWithoutDigits) {
    EXPECT_EQ(num2string<int>(-3, 0), "-3");
    EXPECT_EQ(num2string<int>(0, 0), "0");
    EXPECT_EQ(num2string(11), "11");
}

TEST(Num2String, GivesWholeSecondsTheirDeliberateFraction) {
    EXPECT_EQ(num2string<long>(5, 2), "5.5");
    EXPECT_EQ(num2string<long>(12), "12.12");
    EXPECT_EQ(num2string<long>(12345), "12345.12");
    EXPECT_EQ(num2string<long>(0), "0.0");
}

TEST(Num2String, CutsFloatsToTwoDigits) {
    EXPECT_EQ(num2string<float>(0.5F), "0.50");
    EXPECT_EQ(num2string<float>(1e-9F, 2), "0.00");
}

TEST(Num2String, CutsDoublesAsAsked) {
    EXPECT_EQ(num2string<double>(3.14159, 6), "3.141590");
    EXPECT_EQ(num2string<double>(3.14159, 1), "3.1");
    EXPECT_EQ(num2string<double>(49.99, 1), "49.9");
}

TEST(Num2String, SplitsAnInfinityAsTextWithoutAPoint) {
    EXPECT_EQ(num2string(std::numeric_limits<double>::infinity(), 2), "inf.in");
}

TEST(Num2String, IgnoresItsReservedArguments) {
    EXPECT_EQ(num2string<double>(1.25, 2, 7, true), num2string<double>(1.25, 2, 0, false));
}

TEST(CreateVecMalloc, FillsEveryElement) {
    const std::unique_ptr<double[]> one(create_vec_malloc<double>(1, 2.5));
    EXPECT_EQ(one[0], 2.5);
    const std::unique_ptr<double[]> many(create_vec_malloc<double>(1000, -1.0));
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(many[static_cast<std::size_t>(i)], -1.0);
    }
}

TEST(CreateVecMalloc, GivesAnEmptyArrayForZero) {
    const std::unique_ptr<double[]> none(create_vec_malloc<double>(0, 1.0));
    EXPECT_NE(none, nullptr);
}

TEST(CreateVecMalloc, RefusesNegativeAndImpossibleCounts) {
    EXPECT_THROW(create_vec_malloc<double>(-1, 0.0), std::bad_array_new_length);
    EXPECT_THROW(new_array<double>(std::numeric_limits<std::size_t>::max(), 0.0),
                 std::bad_array_new_length);
}

}  // namespace
}  // namespace ovik
