#include "input/field_kind.h"

#include <clocale>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/locales.h"

namespace ovik {
namespace {

FieldKind kind_of(const std::string& field) {
    double value = 0.0;
    return classify_field(NumberReader(), field.c_str(), field.c_str() + field.size(), value);
}

TEST(ClassifyField, KnowsNumbers) {
    for (const char* field : {"0",
                              "1.5",
                              "-1.5",
                              "+1",
                              " 1",
                              "1 ",
                              ".5",
                              "1.",
                              "1e-3",
                              "1E5",
                              "0x10",
                              "1e-999",
                              "-0",
                              "1\r"}) {
        EXPECT_EQ(kind_of(field), FieldKind::Number) << field;
    }
}

TEST(ClassifyField, KnowsTheSignsOfMissingValues) {
    for (const char* field :
         {"",    " ",   "\t ",  "NA",   "na",   " NA ", "N/A", "n/a", "#N/A", "NaN",
          "nan", "NAN", "null", "NULL", "None", "-",    "--",  ".",   "?",    "NA\r"}) {
        EXPECT_EQ(kind_of(field), FieldKind::Missing) << field;
    }
}

TEST(ClassifyField, TakesOtherTextForNoNumber) {
    for (const char* field : {"x",
                              "NAs",
                              "---",
                              "..",
                              "\"1\"",
                              "\"NA\"",
                              "$1",
                              "#VALUE!",
                              "e5",
                              "\xE2\x88\x92"
                              "1",
                              "\xD9\xA1",
                              "missing",
                              "NAN1",
                              "INF2",
                              "1e999kg",
                              "- -"}) {
        EXPECT_EQ(kind_of(field), FieldKind::NotNumber) << field;
    }
}

TEST(ClassifyField, SeesTextBehindANumber) {
    for (const char* field : {"1,5", "1.5kg", "1e", "1d5", "1 2", "1-", "0x", "1.2.3", "1_000"}) {
        EXPECT_EQ(kind_of(field), FieldKind::TextBehind) << field;
    }
}

TEST(ClassifyField, SeesWhatIsNotFinite) {
    for (const char* field : {"inf", "-inf", "Infinity", "1e999", "-1e999", "-nan", "nan(1)"}) {
        EXPECT_EQ(kind_of(field), FieldKind::NotFinite) << field;
    }
}

TEST(HasDecimalComma, KnowsNumbersWithAComma) {
    for (const char* field : {"0,12", "-1,5", "+1,5E3", ",5", "5,", " 1,2 ", "1,234"}) {
        EXPECT_TRUE(has_decimal_comma(field)) << field;
    }
    for (const char* field : {"", ",", "1.5", "1", "1,2,3", "1,2kg", "1,2E", "x,1", "1,234.5"}) {
        EXPECT_FALSE(has_decimal_comma(field)) << field;
    }
}

TEST(HasGroupedDigits, KnowsNumbersWithCommasBetweenThousands) {
    for (const char* field : {"1,234", "12,345,678", "-1,234.5", " 999,999 "}) {
        EXPECT_TRUE(has_grouped_digits(field)) << field;
    }
    for (const char* field :
         {"", "1234", "1,23", "1234,567", "0,123", "1,234,5", ",123", "1,234x"}) {
        EXPECT_FALSE(has_grouped_digits(field)) << field;
    }
}

TEST(HasPointGroups, KnowsNumbersWithPointsBetweenThousands) {
    for (const char* field : {"1.234", "12.345.678", "-1.234,5", "1.000,00", " 999.999 "}) {
        EXPECT_TRUE(has_point_groups(field)) << field;
    }
    for (const char* field :
         {"", "1234", "1.23", "1234.567", "0.123", "1.234.5", ".123", "1.234x", "1,234.5"}) {
        EXPECT_FALSE(has_point_groups(field)) << field;
    }
}

TEST(ClassifyField, ReadsAsStrtod) {
    double value = -1.0;
    const std::string number = "1.5abc";
    const NumberReader numbers;
    classify_field(numbers, number.c_str(), number.c_str() + number.size(), value);
    EXPECT_EQ(value, 1.5);
    const std::string text = "abc";
    classify_field(numbers, text.c_str(), text.c_str() + text.size(), value);
    EXPECT_EQ(value, 0.0);
}

TEST(ClassifyField, FollowsTheLocaleOfEachCall) {
    const test::MadeLocales made({"de_DE.UTF-8"});
    if (!made.failure().empty()) {
        GTEST_SKIP() << made.failure();
    }
    EXPECT_EQ(kind_of("1,5"), FieldKind::TextBehind);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
    EXPECT_EQ(kind_of("1,5"), FieldKind::Number);
    EXPECT_EQ(kind_of("1.5"), FieldKind::TextBehind);
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_EQ(kind_of("1.5"), FieldKind::Number);
}

}  // namespace
}  // namespace ovik
