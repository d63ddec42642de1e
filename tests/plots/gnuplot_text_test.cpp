#include "plots/gnuplot_text.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(GnuplotText, SpellsOutWhatWouldEndIt) {
    EXPECT_EQ(gnuplot_text("plain"), "'plain'");
    EXPECT_EQ(gnuplot_text(""), "''");
    EXPECT_EQ(gnuplot_text("it's"), "'it'.sprintf('%c',39).'s'");
    EXPECT_EQ(gnuplot_text("a\nb"), "'a'.sprintf('%c',10).'b'");
    EXPECT_EQ(gnuplot_text("`date` \" \\ @x"), "'`date` \" \\ @x'");
}

TEST(GnuplotLine, IsOneShortLine) {
    EXPECT_EQ(gnuplot_line("two\nlines", 20), "'two lines'");
    EXPECT_EQ(gnuplot_line("\xFF", 20), "'\xEF\xBF\xBD'");
    EXPECT_EQ(gnuplot_line("0123456789", 4), "'012\xE2\x80\xA6'");
    EXPECT_EQ(gnuplot_line("0123", 4), "'0123'");
}

}  // namespace
}  // namespace ovik
