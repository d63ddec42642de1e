#include "input/number_format.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(DateFormat, IsToldFromTheCode) {
    for (const char* const code : {"General",
                                   "GENERAL",
                                   "0.00",
                                   "0.00E+00",
                                   "#,##0",
                                   "@",
                                   "",
                                   "\"days\" 0",
                                   "0\\d",
                                   "[Red]0",
                                   "0_d",
                                   "0;\"d\"0",
                                   "0.0;d"}) {
        EXPECT_EQ(date_format_of(code), DateFormat::None) << code;
    }
    for (const char* const code : {"d-mmm", "D-MMM", "[$-409]d\\-mmm;@", "mmm d"}) {
        EXPECT_EQ(date_format_of(code), DateFormat::DayAndMonth) << code;
    }
    for (const char* const code : {"mmm-yy", "mm/yyyy"}) {
        EXPECT_EQ(date_format_of(code), DateFormat::MonthAndYear) << code;
    }
    for (const char* const code :
         {"yyyy-mm-dd", "m/d/yy h:mm", "h:mm", "mm:ss", "yyyy", "dddd", "[h]:mm"}) {
        EXPECT_EQ(date_format_of(code), DateFormat::Other) << code;
    }
}

TEST(DateFormat, IsKnownOfBuiltInFormats) {
    for (const int number : {0, 1, 2, 9, 10, 11, 13, 23, 37, 40, 44, 48, 49, 59, 164}) {
        EXPECT_EQ(date_format_of(number), DateFormat::None) << number;
    }
    EXPECT_EQ(date_format_of(16), DateFormat::DayAndMonth);
    EXPECT_EQ(date_format_of(17), DateFormat::MonthAndYear);
    for (const int number : {14, 15, 18, 22, 27, 36, 45, 47, 50, 58}) {
        EXPECT_EQ(date_format_of(number), DateFormat::Other) << number;
    }
}

TEST(DateText, CountsFromTheStartOfTheCalendar) {
    EXPECT_EQ(date_text(45566, false, DateFormat::Other), "2024-10-01");
    EXPECT_EQ(date_text(45566.75, false, DateFormat::Other), "2024-10-01");
    EXPECT_EQ(date_text(45566 - 1462, true, DateFormat::Other), "2024-10-01");
    EXPECT_EQ(date_text(45566, false, DateFormat::DayAndMonth), "1-Oct");
    EXPECT_EQ(date_text(45413, false, DateFormat::MonthAndYear), "May-24");
    EXPECT_EQ(date_text(1, false, DateFormat::Other), "1900-01-01");
    EXPECT_EQ(date_text(59, false, DateFormat::Other), "1900-02-28");
    EXPECT_EQ(date_text(61, false, DateFormat::Other), "1900-03-01");
    EXPECT_EQ(date_text(2958465, false, DateFormat::Other), "9999-12-31");
}

TEST(DateText, IsEmptyBeyondTheCalendar) {
    for (const double serial : {-1.0, 2958466.0, 1e300, -1e300}) {
        EXPECT_EQ(date_text(serial, false, DateFormat::Other), "") << serial;
    }
}

}  // namespace
}  // namespace ovik
