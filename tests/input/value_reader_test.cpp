#include "input/value_reader.h"

#include <clocale>
#include <cstring>

#include <gtest/gtest.h>

#include "tests/support/locales.h"

namespace ovik {
namespace {

struct Field {
    FieldKind kind;
    double value;
};

Field read(const ValueReader& reader, const char* text) {
    Field field{};
    field.kind = reader.read(text, text + std::strlen(text), field.value);
    return field;
}

TEST(ValueReader, ReadsAsClassifyFieldUnlessToldOtherwise) {
    const ValueReader reader;
    EXPECT_EQ(read(reader, "1.5").value, 1.5);
    EXPECT_EQ(read(reader, "1,5").kind, FieldKind::TextBehind);
    EXPECT_EQ(read(reader, "NA").kind, FieldKind::Missing);
    EXPECT_EQ(read(reader, "ND").kind, FieldKind::NotNumber);
}

TEST(ValueReader, ReadsDecimalCommasAndRefusesPoints) {
    const ValueReader reader(',');
    for (const auto& [text, value] : {std::pair{"1,5", 1.5}, {"-,25e1", -2.5}, {"7", 7.0}}) {
        EXPECT_EQ(read(reader, text).kind, FieldKind::Number) << text;
        EXPECT_EQ(read(reader, text).value, value) << text;
    }
    for (const char* const text : {"1.5", "1.234", "1.234,5", "1,2,3"}) {
        EXPECT_EQ(read(reader, text).kind, FieldKind::TextBehind) << text;
    }
    EXPECT_EQ(read(reader, ".").kind, FieldKind::Missing);
}

TEST(ValueReader, KnowsTheMissingSignsThatAreGiven) {
    const ValueReader reader(std::nullopt, {"ND", "-999"});
    EXPECT_EQ(read(reader, " ND ").kind, FieldKind::Missing);
    EXPECT_EQ(read(reader, "-999").kind, FieldKind::Missing);
    EXPECT_EQ(read(reader, "NA").kind, FieldKind::Missing);
    EXPECT_EQ(read(reader, "nd").kind, FieldKind::NotNumber);
    EXPECT_EQ(read(reader, "-999.0").kind, FieldKind::Number);
}

TEST(ValueReader, HasTheGivenDecimalSignInEveryLocale) {
    const test::MadeLocales made({"de_DE.UTF-8"});
    if (!made.failure().empty()) {
        GTEST_SKIP() << made.failure();
    }
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
    EXPECT_EQ(read(ValueReader('.'), "1.5").value, 1.5);
    EXPECT_EQ(read(ValueReader('.'), "1,5").kind, FieldKind::TextBehind);
    EXPECT_EQ(read(ValueReader(','), "1,5").value, 1.5);
    EXPECT_EQ(read(ValueReader(), "1,5").value, 1.5);
    std::setlocale(LC_NUMERIC, "C");
}

TEST(ValueReader, TakesNoNoticeOfBlanksAroundMissingSigns) {
    const ValueReader reader(std::nullopt, {" not done\t"});
    EXPECT_EQ(read(reader, "not done").kind, FieldKind::Missing);
    EXPECT_EQ(read(reader, " not done").kind, FieldKind::Missing);
    EXPECT_EQ(read(reader, "notdone").kind, FieldKind::NotNumber);
}

}  // namespace
}  // namespace ovik
