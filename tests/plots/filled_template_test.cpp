#include "plots/filled_template.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(FilledTemplate, HasTextsInThePlacesOfPlaceholders) {
    EXPECT_EQ(filled_template("a{{x}}b{{y}}c", {{"{{x}}", "1"}, {"{{y}}", ""}}), "a1bc");
    EXPECT_EQ(filled_template("a", {}), "a");
}

TEST(FilledTemplate, LeavesPlaceholdersInTextsAlone) {
    EXPECT_EQ(filled_template("{{x}}{{y}}", {{"{{x}}", "{{y}}"}, {"{{y}}", "{{x}}"}}),
              "{{y}}{{x}}");
}

}  // namespace
}  // namespace ovik
