#include "util/rounded.h"

#include <cstdio>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace {

using ovik::percent_text;
using ovik::rounded_text;
using ovik::significant_text;

constexpr double kValues[] = {0.0,
                              -0.0,
                              0.125,
                              2.5,
                              0.05,
                              -1.0 / 3.0,
                              999.95,
                              1234567,
                              1e-5,
                              1e22,
                              1e-320,
                              std::numeric_limits<double>::max()};

std::string with_decimals(double value, int decimals) {
    char text[400];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string with_digits(double value, int digits) {
    char text[400];
    std::snprintf(text, sizeof text, "%.*g", digits, value);
    return text;
}

TEST(RoundedText, IsThatOfPrintfWithAPoint) {
    for (const double value : kValues) {
        for (const int decimals : {0, 1, 2, 4, 7}) {
            EXPECT_EQ(rounded_text(value, decimals), with_decimals(value, decimals));
        }
    }
}

TEST(SignificantText, IsThatOfPrintfWithAPoint) {
    for (const double value : kValues) {
        for (const int digits : {1, 3, 6, 17}) {
            EXPECT_EQ(significant_text(value, digits), with_digits(value, digits));
        }
        EXPECT_EQ(significant_text(value), with_digits(value, 6));
    }
}

TEST(RoundedText, OfNoNumberSaysSo) {
    EXPECT_EQ(rounded_text(std::numeric_limits<double>::quiet_NaN(), 2), "nan");
    EXPECT_EQ(rounded_text(-std::numeric_limits<double>::infinity(), 2), "-inf");
}

TEST(PercentText, HasOneDecimal) {
    EXPECT_EQ(percent_text(0.5), "50.0 %");
    EXPECT_EQ(percent_text(0.12345), "12.3 %");
    EXPECT_EQ(percent_text(1.0), "100.0 %");
}

}  // namespace
