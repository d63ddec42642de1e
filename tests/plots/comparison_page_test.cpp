#include "plots/comparison_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plots/html_text.h"

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(HtmlText, IsShownAsItIs) {
    EXPECT_EQ(html_text("a<b>&\"c\"'\n\x1b"), "a&lt;b&gt;&amp;&quot;c&quot;&#39;  ");
    EXPECT_EQ(html_text("Zelle \xc3\xa4\xff"), "Zelle \xc3\xa4\xef\xbf\xbd");
}

TEST(LinkText, LeadsToTheFileOfThatName) {
    EXPECT_EQ(link_text("a_1/b-2.html"), "./a_1/b-2.html");
    EXPECT_EQ(link_text("../x"), "./../x");
    EXPECT_EQ(link_text("/tmp/x"), "/tmp/x");
    EXPECT_EQ(link_text("javascript:alert(1)"), "./javascript%3Aalert%281%29");
    EXPECT_EQ(link_text("50% \"?#\xff"), "./50%25%20%22%3F%23%FF");
}

TEST(ComparisonPage, ShowsRunsAndLeadsToTheirFiles) {
    const Comparison comparison{"Yeast",
                                {{"Input", "3 rows"}},
                                {{"Perplexity 5",
                                  "a b.png",
                                  "a.html",
                                  {{"Cost", "1.25"}},
                                  {{"Result table (csv)", "a.csv"}}},
                                 {"Perplexity 30", "", "", {}, {}}}};
    const std::string page = comparison_page(comparison);
    EXPECT_THAT(page, HasSubstr("<title>Yeast</title>"));
    EXPECT_THAT(page, HasSubstr("<h1>Yeast</h1>\n<dl><dt>Input</dt><dd>3 rows</dd></dl>"));
    EXPECT_THAT(page,
                HasSubstr("<li>\n<h2><a href=\"./a.html\">Perplexity 5</a></h2>\n"
                          "<a href=\"./a.html\"><img src=\"./a%20b.png\" alt=\"Map: Perplexity "
                          "5\" width=\"1200\" height=\"1200\" loading=\"lazy\"></a>\n"
                          "<dl><dt>Cost</dt><dd>1.25</dd></dl>\n"
                          "<p class=\"files\"><a href=\"./a.csv\">Result table (csv)</a> </p>\n"
                          "</li>\n"));
    EXPECT_THAT(page, HasSubstr("<li>\n<h2>Perplexity 30</h2>\n</li>\n"));
}

TEST(ComparisonPage, TakesAllTextsForData) {
    const std::string evil = "\"><script>alert(1)</script>";
    const std::string page = comparison_page(
        {evil, {{evil, evil}}, {{evil, evil, evil, {{evil, evil}}, {{evil, evil}}}}});
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, HasSubstr("<h1>&quot;&gt;&lt;script&gt;"));
}

}  // namespace
}  // namespace ovik
