#include "input/delimiters.h"

#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik {
namespace {

using testing::HasSubstr;

LoadOptions with_delimiter(std::optional<char> delimiter) {
    LoadOptions options;
    options.delimiter = delimiter;
    return options;
}

TEST(FindDelimiter, TakesTheOneThatIsGivenOrGuessed) {
    const Delimiters guessed = find_delimiter("m", "G1,1\n", {}, false);
    EXPECT_EQ(guessed.used, ',');
    EXPECT_EQ(guessed.guessed, ',');
    const Delimiters given = find_delimiter("m", "G1,1\n", with_delimiter(';'), false);
    EXPECT_EQ(given.used, ';');
    EXPECT_EQ(given.guessed, ',');
    EXPECT_EQ(find_delimiter("m", "G1|1\n", with_delimiter('|'), false).guessed, std::nullopt);
    EXPECT_EQ(find_delimiter("m", "G1\n", {}, true).used, '\t');
}

TEST(FindDelimiter, RefusesWhatHasNothingToGuess) {
    try {
        find_delimiter("m.txt", "G1|1\n", {}, false);
        ADD_FAILURE();
    } catch (const InputError& error) {
        EXPECT_THAT(error.what(), HasSubstr("m.txt: found no numbers behind the first line"));
    }
}

TEST(DelimiterText, NamesBlanks) {
    EXPECT_EQ(delimiter_text('\t'), "tab");
    EXPECT_EQ(delimiter_text(' '), "space");
    EXPECT_EQ(delimiter_text(';'), ";");
}

}  // namespace
}  // namespace ovik
