#include "input/argument_spelling.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

constexpr ArgumentSyntax kPython = {"=", "True", "False", "[", "]", true};
constexpr ArgumentSyntax kR = {" = ", "TRUE", "FALSE", "c(", ")", false};

TEST(ArgumentSpelling, HasTheNameOfTheArgument) {
    EXPECT_EQ(spelled_as_argument("names-column", "", kPython), "names_column");
    EXPECT_EQ(spelled_as_argument("names-column", "gene", kPython), "names_column=\"gene\"");
    EXPECT_EQ(spelled_as_argument("missing", "drop", kR), "missing = \"drop\"");
}

TEST(ArgumentSpelling, OfWhatIsOnOrOffIsABoolean) {
    EXPECT_EQ(spelled_as_argument("no-header", "", kPython), "header=False");
    EXPECT_EQ(spelled_as_argument("no-names", "", kR), "names = FALSE");
    EXPECT_EQ(spelled_as_argument("log1p", "", kPython), "log1p=True");
    EXPECT_EQ(spelled_as_argument("scale", "", kR), "scale = TRUE");
}

TEST(ArgumentSpelling, OfSeveralColumnsIsAList) {
    EXPECT_EQ(spelled_as_argument("skip-columns", "a", kPython), "skip_columns=[\"a\"]");
    EXPECT_EQ(spelled_as_argument("skip-columns", "a", kR), "skip_columns = \"a\"");
    EXPECT_EQ(spelled_as_argument("skip-columns", "a,#3", kPython), "skip_columns=[\"a\", \"#3\"]");
    EXPECT_EQ(spelled_as_argument("skip-columns", "a,#3", kR), "skip_columns = c(\"a\", \"#3\")");
}

TEST(ArgumentSpelling, OfDelimitersIsTheCharacter) {
    EXPECT_EQ(spelled_as_argument("delimiter", "tab", kPython), "delimiter=\"\\t\"");
    EXPECT_EQ(spelled_as_argument("delimiter", "space", kR), "delimiter = \" \"");
    EXPECT_EQ(spelled_as_argument("delimiter", ";", kR), "delimiter = \";\"");
}

TEST(ArgumentSpelling, TakesTextsAsTheyStandInAProgram) {
    EXPECT_EQ(spelled_as_argument("na", "a\"\\b", kPython), "na=\"a\\\"\\\\b\"");
}

}  // namespace
}  // namespace ovik
