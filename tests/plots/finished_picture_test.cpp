#include "plots/finished_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plots/figure_font.h"

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kSvg =
    "<svg \n width=\"1051\" height=\"709\"\n viewBox=\"0 0 1051 709\"\n>\n<defs>\n"
    "\t<circle id='gpPt5' r='1'/>\n\t<use xlink:href='#gpPt5' id='gpPt6' fill='x'/>\n</defs>\n"
    "\t<use xlink:href='#gpPt6' transform='translate(1.00,2.00)' color='rgb(  0, 114, 178)' "
    "opacity='0.50'/>\n"
    "\t<use xlink:href='#gpPt6' transform='translate(3.00,4.00)' color='rgb(  0, 114, 178)' "
    "opacity='0.50'/>\n"
    "\t<use xlink:href='#gpPt6' transform='translate(5.00,6.00)' color='rgb(255,  94,   0)'/>\n"
    "\t<g transform=\"translate(1,2)\" font-family=\"Arial\" font-size=\"28.00\">\n"
    "\t\t<text>rgb( 1, 2, 3) id='gpPt6' font-family=\"Arial\"</text>\n\t</g>\n</svg>\n";

TEST(FinishedSvg, CarriesItsFontOnceAndKeepsTextsAsTexts) {
    const std::string svg = finished_svg(kSvg, 0);
    const std::size_t style = svg.find("<style>@font-face{font-family:Arial;");
    ASSERT_NE(style, std::string::npos);
    EXPECT_LT(style, svg.find("<defs>"));
    EXPECT_EQ(svg.find("@font-face", style + 20), std::string::npos);
    EXPECT_THAT(svg, HasSubstr(std::string(figure_font_woff2())));
    EXPECT_THAT(svg, HasSubstr("font-family=\"Arial, Liberation Sans, Helvetica, sans-serif\""));
    EXPECT_THAT(svg,
                HasSubstr("<text>rgb( 1, 2, 3) id='gpPt6' font-family=\"Arial\"</text>\n\t</g>"));
}

TEST(FinishedSvg, GroupsPointsOfOneColour) {
    EXPECT_THAT(finished_svg(kSvg, 0),
                HasSubstr("<g color='#0072b2' fill-opacity='0.50'>\n"
                          "\t<use xlink:href='#gpPt6' transform='translate(1.00,2.00)'/>\n"
                          "\t<use xlink:href='#gpPt6' transform='translate(3.00,4.00)'/>\n</g>\n"
                          "<g color='#ff5e00'>\n"
                          "\t<use xlink:href='#gpPt6' transform='translate(5.00,6.00)'/>\n</g>\n"));
}

TEST(FinishedSvg, HasThePagesShapes) {
    const std::string svg = finished_svg(kSvg, 0);
    EXPECT_THAT(svg, HasSubstr("<path id='gpPt6' fill='currentColor' stroke='none' transform="));
    EXPECT_THAT(svg, HasSubstr("A7.5 7.5 0 1 1 8 .5Z'/>"));
    EXPECT_THAT(svg, Not(HasSubstr("fill='x'")));
}

TEST(FinishedSvg, HasAnImageOfThePointsOnItsGroundAlone) {
    const std::string svg =
        "<rect x=\"0\" y=\"0\" width=\"12\" height=\"9\" fill=\"#ffffff\"/>\n<defs>\n</defs>\n"
        "<rect x=\"1\"/>\n";
    EXPECT_THAT(finished_svg(svg, 0, "abc"),
                testing::StartsWith(
                    "<rect x=\"0\" y=\"0\" width=\"12\" height=\"9\" fill=\"#ffffff\"/>\n"
                    "<image x=\"0\" y=\"0\" width=\"12\" height=\"9\" preserveAspectRatio=\"none\" "
                    "xlink:href=\"data:image/png;base64,YWJj\"/>\n<style>"));
    EXPECT_THAT(finished_svg(svg, 0, "abc"), testing::EndsWith("<rect x=\"1\"/>\n"));
    EXPECT_THAT(finished_svg(svg, 0), Not(HasSubstr("<image")));
}

TEST(FinishedSvg, TellsItsSizeOnPaper) {
    EXPECT_THAT(finished_svg(kSvg, 0), HasSubstr(" width=\"1051\" height=\"709\"\n"));
    EXPECT_THAT(finished_svg(kSvg, 300 / 25.4),
                HasSubstr(" width=\"89mm\" height=\"60mm\"\n viewBox=\"0 0 1051 709\""));
}

TEST(FinishedPng, TellsItsResolutionBehindItsHead) {
    const std::string png =
        std::string("\x89PNG\r\n\x1A\n") + std::string(4 + 4 + 13 + 4, 'h') + "rest";
    EXPECT_EQ(finished_png(png, 0), png);
    EXPECT_EQ(finished_png("short", 2), "short");
    const std::string finished = finished_png(png, 300 / 25.4);
    // 11811 pixels a metre; the sum is that of any other program.
    EXPECT_EQ(finished,
              png.substr(0, 33) +
                  std::string("\0\0\0\x09pHYs\0\0\x2E\x23\0\0\x2E\x23\x01\x78\xA5\x3F\x76", 21) +
                  "rest");
}

}  // namespace
}  // namespace ovik
