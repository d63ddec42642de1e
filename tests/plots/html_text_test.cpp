#include "plots/html_text.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(WithReplaced, ReplacesTheseCharactersAlone) {
    static constexpr const char* kForms[] = {"one", ""};
    EXPECT_EQ(with_replaced("a1b2c1", "12", kForms), "aonebcone");
    EXPECT_EQ(with_replaced("", "12", kForms), "");
}

TEST(HtmlText, IsNoMarkup) {
    EXPECT_EQ(html_text("<a href=\"x\">&'"), "&lt;a href=&quot;x&quot;&gt;&amp;&#39;");
    EXPECT_EQ(html_text("two\nlines \xFF"), "two lines \xEF\xBF\xBD");
}

TEST(JsonForScript, CannotEndItsElement) {
    EXPECT_EQ(json_for_script("[\"</script>&\"]"), "[\"\\u003c/script\\u003e\\u0026\"]");
}

TEST(LinkText, LeadsToTheSameFile) {
    EXPECT_EQ(link_text("results/a b.html"), "./results/a%20b.html");
    EXPECT_EQ(link_text("/results/100%.html"), "/results/100%25.html");
    EXPECT_EQ(link_text("../x"), "./../x");
    // No scheme, no query, no fragment, no markup.
    EXPECT_EQ(link_text("javascript:x?y#z\"<"), "./javascript%3Ax%3Fy%23z%22%3C");
    EXPECT_EQ(link_text("gr\xC3\xBC\xC3\x9F"), "./gr%C3%BC%C3%9F");
}

}  // namespace
}  // namespace ovik
