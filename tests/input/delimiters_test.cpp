#include "input/delimiters.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::HasSubstr;

class DelimitersTest : public testing::Test {
  protected:
    Delimiters find(const std::string& content, std::optional<char> given) {
        return find_delimiter(MatrixSource(directory_.write("m.txt", content)), given);
    }

    static std::string refusal(const Delimiters& delimiters, const MatrixReport& report) {
        return test::refusal_of([&] { check_delimited("m.txt", delimiters, report); });
    }

    test::TemporaryDirectory directory_;
};

TEST_F(DelimitersTest, AreGivenOrGuessed) {
    const Delimiters guessed = find("h\nG1,1\n", std::nullopt);
    EXPECT_EQ(guessed.used, ',');
    EXPECT_EQ(guessed.guessed, ',');
    const Delimiters given = find("h\nG1,1\n", ';');
    EXPECT_EQ(given.used, ';');
    EXPECT_EQ(given.guessed, ',');
    EXPECT_EQ(find("h\nG1|1\n", '|').guessed, std::nullopt);
}

TEST_F(DelimitersTest, AreRefusedIfThereIsNothingToGuess) {
    try {
        find("h\nG1|1\n", std::nullopt);
        ADD_FAILURE();
    } catch (const InputError& error) {
        EXPECT_THAT(error.what(), HasSubstr("/m.txt: found no numbers behind the first line"));
    }
}

TEST_F(DelimitersTest, ThatPartNoNumbersAreRefusedWithTheCure) {
    const struct {
        Delimiters delimiters;
        const char* cure;
    } kCases[] = {
        {{',', '\t'}, "no numbers with , between the fields\nThere are with --delimiter 'tab'"},
        {{'\t', ' '}, "no numbers with tab between the fields\nThere are with --delimiter 'space'"},
        {{'|', std::nullopt}, "no numbers with | between the fields\nEvery line behind the first"},
        {{',', ','}, "no numbers with , between the fields\nEvery line behind the first"},
    };

    MatrixReport report;
    report.rows = 3;
    for (const auto& [delimiters, cure] : kCases) {
        EXPECT_THAT(refusal(delimiters, report), HasSubstr(cure));
    }
    report.numbers = 1;
    EXPECT_EQ(refusal({',', '\t'}, report), "");
}

TEST_F(DelimitersTest, ThatLoseNamesAreRefusedWithTheLine) {
    MatrixReport report;
    report.rows = 3;
    report.numbers = 3;
    report.lost_names.count = 2;
    report.lost_names.first = {5, "1.5", 1, ""};
    EXPECT_THAT(refusal({'\t', '\t'}, report),
                HasSubstr("m.txt:5: the row has no name: the line opens with the delimiter, and "
                          "\"1.5\" would be taken for the name (2 such rows)"));
}

}  // namespace
}  // namespace ovik
