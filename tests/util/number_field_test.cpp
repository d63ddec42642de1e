#include "util/number_field.h"

#include <bit>
#include <clocale>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace ovik {

namespace {

/// Holds a field against strtod: the same bits, and the same text behind the number.
void expect_as_strtod(const std::string& field) {
    const NumberReader numbers;
    const char* rest = nullptr;
    const double value = numbers.read(field.c_str(), field.c_str() + field.size(), rest);
    char* wanted_rest = nullptr;
    const double wanted = std::strtod(field.c_str(), &wanted_rest);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(wanted)) << field;
    EXPECT_EQ(rest - field.c_str(), wanted_rest - field.c_str()) << field;
}

TEST(NumberReader, ReadsEveryFormAsStrtodDoes) {
    for (const char* field : {"",
                              " ",
                              "0",
                              "-0",
                              "+1",
                              "--1",
                              "-",
                              ".",
                              "-.",
                              ".5",
                              "-.5",
                              "5.",
                              "1.5x",
                              "1e",
                              "1e+",
                              "1e5",
                              "1E-5",
                              "1e5.5",
                              "1d5",
                              "0x10",
                              "-0x1p3",
                              "0X",
                              "0x.8p1",
                              "  7",
                              "\t7 ",
                              "\v7",
                              "nan",
                              "NaN(7)",
                              "-inf",
                              "Infinity",
                              "1e999",
                              "-1e999",
                              "1e-999",
                              "4e-324",
                              "2e-324",
                              "1e-310",
                              "1,5",
                              "1_000",
                              "1.7976931348623159e308",
                              "9007199254740993",
                              "0.1000000000000000055511151231257827",
                              "1.2.3",
                              "2.2250738585072011e-308",
                              "179769313486231570000000000000000000000000000000000e258",
                              "00012",
                              "-00.5e-0003",
                              "1e0000000000000000001",
                              "\xE2\x88\x92"
                              "1",
                              "e5",
                              "1e-",
                              "infx"}) {
        expect_as_strtod(field);
    }
}

RC_GTEST_PROP(NumberReader, ReadsAnyDoubleBack, (std::uint64_t bits)) {
    const auto value = std::bit_cast<double>(bits);
    char text[400];
    for (const int digits : {3, 6, 17}) {
        for (const std::chars_format format : {std::chars_format::fixed,
                                               std::chars_format::scientific,
                                               std::chars_format::general}) {
            const auto end = std::to_chars(text, text + sizeof text, value, format, digits);
            expect_as_strtod({text, end.ptr});
        }
    }
    expect_as_strtod(std::to_string(bits >> 20U) + "." + std::to_string(bits & 0xFFFFFU) + "e" +
                     std::to_string(static_cast<int>(bits % 700U) - 350));
}

RC_GTEST_PROP(NumberReader, ReadsAnyTextAsStrtodDoes, ()) {
    expect_as_strtod(*rc::gen::container<std::string>(
        rc::gen::elementOf(std::string("0123456789..-+eExXnaifNAINF pP,_\t"))));
}

TEST(NumberReader, FollowsALocaleWithAnotherPoint) {
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8"}) {
        if (std::setlocale(LC_NUMERIC, name) != nullptr) {
            expect_as_strtod("3,14");
            expect_as_strtod("3.14");
        }
    }
    std::setlocale(LC_NUMERIC, "C");
    expect_as_strtod("3,14");
}

}  // namespace

}  // namespace ovik
