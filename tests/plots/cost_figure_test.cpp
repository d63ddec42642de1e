#include "plots/cost_figure.h"

#include <filesystem>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/path_variable.h"
#include "tests/support/temporary_directory.h"

/// The figure of costs with the real gnuplot.

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class CostFigure : public testing::Test {
  protected:
    [[nodiscard]] std::string content(const std::string& extension) const {
        return test::read_file(base_ + extension);
    }

    test::TemporaryDirectory directory_;
    std::string base_ = directory_.file("yeast_cost");
};

TEST_F(CostFigure, IsDrawnBesideItsScript) {
    const CostCurve curve{"It's \"yeast\" `date`", 0, {30.5, 20.25, 2.5, 1.0}, 2};
    EXPECT_EQ(draw_cost_figure(base_, curve), FigureOutcome::Drawn);
    EXPECT_THAT(content(".png"), StartsWith("\x89PNG"));
    EXPECT_THAT(content(".svg"), HasSubstr("early exaggeration ends"));
    EXPECT_THAT(content(".svg"), HasSubstr("It's \"yeast\" `date`"));
    EXPECT_THAT(content(".gp"),
                HasSubstr("$costs << END_OF_COSTS\n0 30.5\n1 20.25\n2 2.5\n3 1\nEND_OF_COSTS\n"));
    EXPECT_THAT(content(".gp"), HasSubstr("set logscale y"));
}

TEST_F(CostFigure, HasATitleInAnyScriptForViewersWithItsFont) {
    const std::string title = "\xE6\x97\xA5 \xF4\x8F\xBF\xBF";
    EXPECT_EQ(draw_cost_figure(base_, {title, 0, {2.0, 1.0}, 0}), FigureOutcome::Drawn);
    EXPECT_THAT(content(".svg"), HasSubstr(title));
    EXPECT_THAT(content(".gp"), HasSubstr("fc-list"));
}

TEST_F(CostFigure, OfARunThatWentOnHasNoMarkBeforeItsStart) {
    const std::string script = cost_figure_script("x", {"", 400, {2.0, 1.0}, 250});
    EXPECT_THAT(script, HasSubstr("\n400 2\n401 1\n"));
    EXPECT_THAT(script, HasSubstr("set xrange [400:*]"));
    EXPECT_THAT(script, Not(HasSubstr("exaggeration")));
}

TEST_F(CostFigure, LeavesOutWhatIsNotFiniteAndMayBeNegative) {
    const double kNan = std::numeric_limits<double>::quiet_NaN();
    const CostCurve curve{"", 0, {1.0, kNan, -0.5}, 250};
    EXPECT_THAT(cost_figure_script("x", curve), HasSubstr("\n0 1\n2 -0.5\n"));
    EXPECT_THAT(cost_figure_script("x", curve), Not(HasSubstr("logscale")));
    EXPECT_EQ(draw_cost_figure(base_, curve), FigureOutcome::Drawn);
}

TEST_F(CostFigure, ThatIsNotDrawnIsReported) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_EQ(draw_cost_figure(directory_.file("none/x"), {"", 0, {1.0}, 0}),
              FigureOutcome::Failed);
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_THAT(told, HasSubstr("none/x.png was not drawn: "));
    EXPECT_THAT(told, HasSubstr("(No such file or directory)"));
    {
        const test::PathVariable no_programs(directory_.file("empty"), true);
        testing::internal::CaptureStderr();
        EXPECT_EQ(draw_cost_figure(base_, {"", 0, {1.0}, 0}), FigureOutcome::ScriptOnly);
        EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("gnuplot-nox"));
    }
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(std::filesystem::exists(base_ + ".gp"));
}

}  // namespace
}  // namespace ovik
