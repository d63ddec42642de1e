#include "plots/gnuplot_text.h"

#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

TEST(GnuplotText, SpellsOutWhatWouldEndIt) {
    EXPECT_EQ(gnuplot_text("plain"), "'plain'");
    EXPECT_EQ(gnuplot_text(""), "''");
    EXPECT_EQ(gnuplot_text("it's"), "'it'.sprintf('%c',39).'s'");
    EXPECT_EQ(gnuplot_text("a\nb"), "'a'.sprintf('%c',10).'b'");
    EXPECT_EQ(gnuplot_text("`date` \" \\ @x"), "'`date` \" \\ @x'");
}

TEST(GnuplotShownText, AsksForTheFontsOfUnusualCharactersOnly) {
    EXPECT_EQ(gnuplot_shown_text("it's \xCE\xB1"), gnuplot_text("it's \xCE\xB1"));
    EXPECT_EQ(gnuplot_shown_text("a \xE6\x97\xA5\xF0\x9F\x98\x80 \xD0\x96"),
              "'a '.(fonts_have('65e5 1f600') ? '\xE6\x97\xA5\xF0\x9F\x98\x80' : '?"
              "?')."
              "' '.(fonts_have('416') ? '\xD0\x96' : '?').''");
    EXPECT_EQ(gnuplot_shown_text(""), "''");
}

/// What gnuplot makes of a text.
std::string shown_by_gnuplot(const std::string& definition, const std::string& text) {
    const test::TemporaryDirectory directory;
    directory.write("f.gp", definition + "set print 'shown'\nprint " + gnuplot_shown_text(text));
    const std::string command = "cd " + directory.prefix() + " && gnuplot f.gp 2>messages";
    EXPECT_EQ(std::system(command.c_str()), 0) << test::read_file(directory.file("messages"));
    return test::read_file(directory.file("shown"));
}

TEST(GnuplotShownText, HasQuestionMarksWhereNoFontHasACharacter) {
    // No font can have the last code point of all.
    const std::string unknown = "it's \xF4\x8F\xBF\xBF";
    EXPECT_EQ(shown_by_gnuplot(gnuplot_font_search(), unknown), "it's ?\n");
    EXPECT_EQ(shown_by_gnuplot(gnuplot_any_font(), unknown), unknown + "\n");
    // Cyrillic is in the fonts that gnuplot brings with it.
    const std::string cyrillic = "\xD0\x96 and \xD0\xB6";
    EXPECT_EQ(shown_by_gnuplot(gnuplot_font_search(), cyrillic), cyrillic + "\n");
}

TEST(GnuplotLine, IsOneShortLine) {
    EXPECT_EQ(gnuplot_line("two\nlines", 20), "'two lines'");
    EXPECT_EQ(gnuplot_line("\xFF", 20), gnuplot_shown_text("\xEF\xBF\xBD"));
    EXPECT_EQ(gnuplot_line("0123456789", 4), "'012\xE2\x80\xA6'");
    EXPECT_EQ(gnuplot_line("0123", 4), "'0123'");
}

}  // namespace
}  // namespace ovik
