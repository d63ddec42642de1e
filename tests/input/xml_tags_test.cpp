#include "input/xml_tags.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik {
namespace {

TEST(XmlTags, AreTheSameWithAnyPrefix) {
    for (const std::string prefix : {"", "x:", "main:"}) {
        const XmlPart part("m.xlsx",
                           "<" + prefix + "a><b/><" + prefix + "c n='1'/></" + prefix + "a>");
        const pugi::xml_node root = child(part.document(), "a");
        EXPECT_EQ(tag_of(root), "a");
        EXPECT_EQ(child(root, "c").attribute("n").as_int(), 1);
        EXPECT_FALSE(child(root, "d"));
        EXPECT_FALSE(child(child(root, "d"), "e"));
    }
}

TEST(XmlTags, OfDamagedPartsAreRefused) {
    for (const char* const text : {"", "<a>", "<a></b>", "text"}) {
        try {
            const XmlPart part("m.xlsx", text);
            ADD_FAILURE() << text;
        } catch (const InputError& error) {
            EXPECT_THAT(error.what(),
                        testing::HasSubstr("m.xlsx: a part of the workbook is damaged"));
        }
    }
}

TEST(StringOf, JoinsThePartsWithoutTheirReading) {
    const XmlPart part("m.xlsx",
                       "<a><si><t>TFC3 &amp; co</t></si>"
                       "<si><r><rPr/><t>TFC</t></r><r><t xml:space='preserve'> 3</t></r></si>"
                       "<si><t>x</t><rPh><t>reading</t></rPh></si><si/></a>");
    std::vector<std::string> strings;
    for (const pugi::xml_node item : child(part.document(), "a").children()) {
        strings.push_back(string_of(item));
    }
    EXPECT_THAT(strings, testing::ElementsAre("TFC3 & co", "TFC 3", "x", ""));
}

}  // namespace
}  // namespace ovik
