#include "plots/figure_font.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(FigureFont, IsASmallWoff2) {
    // "wOF2" in base64.
    EXPECT_TRUE(figure_font_woff2().starts_with("d09GMg"));
    EXPECT_LT(figure_font_woff2().size(), 40000U);
    EXPECT_EQ(figure_font_woff2().size() % 4, 0U);
}

TEST(FigureFont, KnowsHowFarItsCharactersAdvance) {
    EXPECT_EQ(figure_font_advance('A'), 667);
    EXPECT_EQ(figure_font_advance('i'), 222);
    EXPECT_EQ(figure_font_advance(0x2026), 1000);
    EXPECT_EQ(figure_font_advance(0x1F), std::nullopt);
    EXPECT_EQ(figure_font_advance(0x65E5), std::nullopt);
    EXPECT_EQ(figure_font_advance(0xFFFFFFFF), std::nullopt);
}

}  // namespace
}  // namespace ovik
