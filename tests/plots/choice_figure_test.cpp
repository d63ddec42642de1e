#include "plots/choice_figure.h"

#include <cmath>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const ChoiceCurves kCurves{
    "It's \"yeast\" `date`",
    {5.0, 12.5, 100.0},
    {{"Better than noise", {0.5, 0.25, NAN}}, {"Stability", {0.125, 0.2, 0.3}}},
    0.0625,
    12.5};

TEST(ChoiceFigure, IsDrawnBesideItsScript) {
    const test::TemporaryDirectory directory;
    const std::string base = directory.file("yeast_choice");
    EXPECT_EQ(draw_choice_figure(base, kCurves), FigureOutcome::Drawn);
    EXPECT_THAT(test::read_file(base + ".png"), StartsWith("\x89PNG"));
    const std::string picture = test::read_file(base + ".svg");
    EXPECT_THAT(picture, HasSubstr("It's \"yeast\" `date`"));
    EXPECT_THAT(picture, HasSubstr("recommended"));
    EXPECT_THAT(picture, HasSubstr("Stability"));
    const std::string script = test::read_file(base + ".gp");
    EXPECT_THAT(script,
                HasSubstr("$shares << END_OF_SHARES\n5 50 12.5\n12.5 25 20\n100 NaN 30\nEND"));
    EXPECT_THAT(script, HasSubstr("set xtics ('5' 5, '12.5' 12.5, '100' 100)\n"));
    EXPECT_THAT(script, HasSubstr("first 6.25"));
}

TEST(ChoiceFigure, HasNoMarksOfWhatThereIsNot) {
    ChoiceCurves curves = kCurves;
    curves.of_noise = NAN;
    curves.recommended.reset();
    const std::string script = choice_figure_script("x", curves);
    EXPECT_THAT(script, Not(HasSubstr("recommended")));
    EXPECT_THAT(script, Not(HasSubstr("noise may reach")));
}

TEST(ChoiceFigure, SaysWhereItCannotBeDrawn) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(draw_choice_figure("/nowhere/x", kCurves), FigureOutcome::Failed);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("could not be written"));
}

}  // namespace
}  // namespace ovik
