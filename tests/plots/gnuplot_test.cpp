#include "plots/gnuplot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plots/finished_picture.h"
#include "plots/table_run.h"
#include "results/result_table.h"

#include "tests/support/path_variable.h"
#include "tests/support/temporary_directory.h"

/// The figure class with the real gnuplot, and with stand-ins that fail.

namespace ovik {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// What `plotting` is given beside base, style and bounds.
template <typename T>
void plot(Gnuplot<T>& figure, const std::string& base, std::vector<T> bounds) {
    std::string style;
    figure.style(style, 1200, 1200, T(0.85), T(0.1), T(0.1), T(0.9), 21, true);
    figure.plotting(base,
                    style,
                    style,
                    std::move(bounds),
                    {"Component 1", "Component 2"},
                    "scatter",
                    "",
                    "",
                    {2, 3},
                    {});
}

class Figure : public testing::Test {
  protected:
    /// A table of some points on a lattice, in as many pairs of components as asked for.
    std::string table(const std::string& name,
                      const std::vector<std::string>& names = {"A", "B", "C", "D", "E"},
                      std::size_t pairs = 1) {
        ResultTable<double> rows;
        for (std::size_t pair = 0; pair < pairs; ++pair) {
            for (std::size_t n = 0; n < names.size(); ++n) {
                const auto place = static_cast<double>(n);
                rows.coordinates.push_back({place, place * place / 2});
                rows.names.push_back(names[n]);
                rows.groups.push_back("Group:" + std::to_string(pair + 1) + ":" +
                                      std::to_string(pair + 2));
                rows.functions.push_back("Enzyme, of \"some\" kind");
            }
        }
        const std::string base = directory_.file(name);
        EXPECT_EQ(write_result_table(base + ".csv", rows), std::error_code());
        return base;
    }

    /// Draws a table as a run with labels, and returns what was said on standard error.
    std::string drawLabelled(const std::string& base,
                             const std::vector<std::string>& labels,
                             const std::vector<double>& bounds = {0, 4, 0, 8}) {
        const auto table = TableRun::read(base + ".csv");
        PlottedRun<double> run = table->run();
        run.labels = labels;
        return drawRun(base, run, bounds);
    }

    /// Draws a run, and returns what was said on standard error.
    template <typename T>
    std::string drawRun(const std::string& base,
                        const PlottedRun<T>& run,
                        const std::vector<T>& bounds) {
        testing::internal::CaptureStderr();
        {
            Gnuplot<T> figure;
            figure.setRun(run);
            figure.open(false);
            plot(figure, base, bounds);
            figure.close();
        }
        return testing::internal::GetCapturedStderr();
    }

    /// Draws and returns what was said on standard error.
    template <typename T = double>
    std::string draw(const std::string& base, std::vector<T> bounds = {0, 4, 0, 8}) {
        testing::internal::CaptureStderr();
        {
            Gnuplot<T> figure;
            figure.open(false);
            plot(figure, base, std::move(bounds));
            figure.close();
        }
        return testing::internal::GetCapturedStderr();
    }

    static std::string png(const std::string& base) { return test::read_file(base + ".png"); }

    static std::string svg(const std::string& base) { return test::read_file(base + ".svg"); }

    static std::string script(const std::string& base) { return test::read_file(base + ".gp"); }

    static std::size_t count(const std::string& text, const std::string& part) {
        std::size_t found = 0;
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + 1)) {
            ++found;
        }
        return found;
    }

    test::TemporaryDirectory directory_;
};

constexpr const char* kSvgPoint = "<use xlink:href='#gpPt";

/// Markers drawn, without the lines that define their shapes.
std::size_t marker_count(const std::string& svg) {
    std::size_t found = 0;
    for (std::size_t at = svg.find(kSvgPoint); at != std::string::npos;
         at = svg.find(kSvgPoint, at + 1)) {
        found += svg.substr(at, svg.find('\n', at) - at).find("translate(") != std::string::npos;
    }
    return found;
}

/// Markers in the groups that begin so.
std::size_t points_of(const std::string& svg, const std::string& group) {
    std::size_t found = 0;
    for (std::size_t at = svg.find(group); at != std::string::npos; at = svg.find(group, at + 1)) {
        found += marker_count(svg.substr(at, svg.find("</g>", at) - at));
    }
    return found;
}

TEST_F(Figure, IsDrawnAsPngSvgAndScript) {
    const std::string base = table("f");
    EXPECT_EQ(draw(base), "");
    EXPECT_THAT(png(base), StartsWith("\x89PNG"));
    // Width and height in the header of the file.
    EXPECT_EQ(png(base).substr(16, 8), std::string("\0\0\x04\xB0\0\0\x04\xB0", 8));
    EXPECT_EQ(marker_count(svg(base)), 5U);
    EXPECT_THAT(svg(base), HasSubstr("<text>Component 1</text>"));
    EXPECT_THAT(svg(base), HasSubstr("<text>Component 2</text>"));
    EXPECT_EQ(directory_.entryCount(), 4U);  // with the table; nothing else is left
}

TEST_F(Figure, IsTheSameForTheSameInput) {
    const std::string base = table("f");
    draw(base);
    const std::array<std::string, 3> first = {png(base), svg(base), script(base)};
    draw(base);
    EXPECT_EQ((std::array<std::string, 3>{png(base), svg(base), script(base)}), first);
    EXPECT_EQ(draw<float>(base), "");
    EXPECT_EQ(script(base), first[2]);
}

TEST_F(Figure, IsReproducedByItsScriptWithoutTheTable) {
    const std::string base = table("f");
    draw(base);
    const std::array<std::string, 2> drawn = {png(base), svg(base)};
    const test::TemporaryDirectory elsewhere;
    std::filesystem::copy(base + ".gp", elsewhere.file("moved.gp"));
    const std::string command = "cd " + elsewhere.prefix() + " && gnuplot moved.gp";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(test::read_file(elsewhere.file("f.png")), drawn[0]);
    // But for the font that the figure carries.
    EXPECT_EQ(finished_svg(test::read_file(elsewhere.file("f.svg")), 0), drawn[1]);
}

TEST_F(Figure, GivesEveryLabelAColourAndALineOfTheLegend) {
    const std::string base = table("f");
    EXPECT_EQ(drawLabelled(base, {"G1", "S", "G1", "M", "S"}), "");
    EXPECT_EQ(marker_count(svg(base)), 5U + 3U);
    EXPECT_EQ(points_of(svg(base), "<g color='#0072b2' fill-opacity='0.50'>"), 2U);
    EXPECT_EQ(points_of(svg(base), "<g color='#d55e00' fill-opacity='0.50'>"), 2U);
    EXPECT_EQ(points_of(svg(base), "<g color='#009e73' fill-opacity='0.50'>"), 1U);
    for (const char* label : {"G1", "S", "M"}) {
        EXPECT_EQ(count(svg(base), std::string("<text>") + label + "</text>"), 1U) << label;
    }
}

TEST_F(Figure, DrawsAPanelPerPairOfComponents) {
    const std::string base = table("f", {"A", "B", "C", "D"}, 3);
    EXPECT_EQ(drawLabelled(base, {"x", "y", "x", "y"}), "");
    EXPECT_EQ(marker_count(svg(base)), 3 * 4U + 2U);
    EXPECT_EQ(count(svg(base), "<text>Component 2</text>"), 2U);
    EXPECT_EQ(count(svg(base), "<text>Component 4</text>"), 1U);
    EXPECT_EQ(count(svg(base), "<text>x</text>"), 1U);
}

TEST_F(Figure, ShortensLongLabelsAndCountsThoseThatDoNotFit) {
    std::vector<std::string> labels;
    std::vector<std::string> names;
    for (int n = 0; n < 200; ++n) {
        names.push_back("G" + std::to_string(n));
        labels.push_back("the label of gene number " + std::to_string(n));
    }
    const std::string base = table("f", names);
    EXPECT_EQ(drawLabelled(base, labels, {0, 199, 0, 19800.5}), "");
    EXPECT_THAT(svg(base), HasSubstr(" more</text>"));
    // Each is told apart by its number.
    const std::regex text("<text>th[^<]*\xE2\x80\xA6([0-9]+)</text>");
    const std::string picture = svg(base);
    std::set<std::string> shown;
    std::size_t lines = 0;
    for (std::sregex_iterator found(picture.begin(), picture.end(), text), end; found != end;
         ++found) {
        shown.insert((*found)[1]);
        ++lines;
    }
    EXPECT_GT(lines, 20U);
    EXPECT_EQ(shown.size(), lines);
    EXPECT_THAT(picture, HasSubstr("<text>and " + std::to_string(200 - lines) + " more</text>"));
}

TEST_F(Figure, HasOneUnitAsLongOnBothAxes) {
    const std::string base = table("f");
    draw(base);
    // Points (0, 0) and (4, 8), which is drawn as the fourth, from the markers' places in pixels.
    const auto place = [svg = svg(base)](std::size_t number) {
        std::size_t at = 0;
        for (std::size_t n = 0; n <= number; ++n) {
            at = svg.find("translate(", svg.find("' transform='translate(", at + 1));
        }
        double x = 0.0;
        double y = 0.0;
        EXPECT_EQ(std::sscanf(svg.c_str() + at, "translate(%lf,%lf)", &x, &y), 2);
        return std::array<double, 2>{x, y};
    };
    const double x_unit = (place(3)[0] - place(0)[0]) / 4;
    const double y_unit = (place(0)[1] - place(3)[1]) / 8;
    EXPECT_NEAR(x_unit, y_unit, 0.01);
    EXPECT_GT(y_unit, 80.0);  // of 960 pixels, eight units take most
}

TEST_F(Figure, WidensRangesOfZeroWidth) {
    EXPECT_EQ(draw(table("one", {"A"}), std::vector<double>{0, 0, 0, 0}), "");
    EXPECT_EQ(marker_count(svg(directory_.file("one"))), 1U);
    EXPECT_EQ(draw(table("thin"), std::vector<double>{2, 2, 0, 8}), "");
}

/// The texts of a picture that are numbers.
std::vector<std::string> numbers_of(const std::string& svg) {
    const std::regex text("<text>([^<]*)</text>");
    std::vector<std::string> numbers;
    for (std::sregex_iterator found(svg.begin(), svg.end(), text), end; found != end; ++found) {
        const std::string number = (*found)[1];
        if (!number.empty() && number.find_first_not_of("-.0123456789e") == std::string::npos) {
            numbers.push_back(number);
        }
    }
    return numbers;
}

/// The vector picture of a script whose reader wants numbers at the axes.
std::string with_axis_numbers(std::string script) {
    const std::string off = "axis_numbers = 0";
    script.replace(script.find(off), off.size(), "axis_numbers = 1");
    const test::TemporaryDirectory directory;
    directory.write("f.gp", script);
    const std::string command = "cd " + directory.prefix() + " && gnuplot f.gp 2>messages";
    EXPECT_EQ(std::system(command.c_str()), 0) << test::read_file(directory.file("messages"));
    return test::read_file(directory.file("f.svg"));
}

TEST_F(Figure, HasNoNumbersAtItsAxesUnlessItsScriptIsChanged) {
    const std::string base = table("f");

    const struct {
        std::vector<double> bounds;
        const char* title;
    } kCases[] = {
        {{-40, 30, -35, 35}, "<text>Component 1</text>"},
        {{-4000, 3000, -3500, 3500}, "<text>Component 1</text>"},
        {{-0.9, 0.2, -0.5, 0.5}, "<text>Component 1</text>"},
        {{-0.11, 0.11, -0.05, 0.05}, "<text>Component 1</text>"},
        {{-0.05, 0.08, -0.05, 0.05}, "<text>Component 1, in units of 0.001</text>"},
        {{-6e-5, 6e-4, -1e-2, 9e-3}, "<text>Component 1, in units of 0.0001</text>"},
        {{-1e-5, 1e-5, -1e-5, 2e-5}, "<text>Component 1, in units of 1e-06</text>"},
        {{-70000, 2, -35, 35}, "<text>Component 1, in units of 1000</text>"},
        {{1e-3, 2e-3, 5e-3, 6e-3}, "<text>Component 1, in units of 0.0001</text>"},
        {{-1e200, 1e200, -35, 35}, "<text>Component 1, in units of 1e+199</text>"},
    };

    for (const auto& [bounds, title] : kCases) {
        SCOPED_TRACE(title);
        EXPECT_EQ(draw(base, bounds), "");
        EXPECT_TRUE(numbers_of(svg(base)).empty());
        const std::string picture = with_axis_numbers(script(base));
        EXPECT_THAT(picture, HasSubstr(title));
        const std::vector<std::string> ticks = numbers_of(picture);
        EXPECT_GE(ticks.size(), 4U);
        EXPECT_LE(ticks.size(), 24U);
        for (const std::string& tick : ticks) {
            EXPECT_LE(tick.size(), 5U) << tick;
        }
    }
}

TEST_F(Figure, LeavesTicksOfPointsFarFromTheMiddleToGnuplot) {
    const std::string base = table("far");
    EXPECT_EQ(draw(base, std::vector<double>{1e9, 1e9 + 1, 0, 1}), "");
    EXPECT_EQ(draw(base, std::vector<double>{1e9, 1e9, 0, 0}), "");
    EXPECT_THAT(svg(base), HasSubstr("<text>Component 1</text>"));
}

TEST_F(Figure, HasAxesWithoutPoints) {
    EXPECT_EQ(draw(table("none", {}), std::vector<double>{0, 0, 0, 0}), "");
    EXPECT_EQ(marker_count(svg(directory_.file("none"))), 0U);
    EXPECT_THAT(svg(directory_.file("none")), HasSubstr("<text>Component 1</text>"));
}

TEST_F(Figure, LeavesOutWhatIsNotFinite) {
    const std::string table =
        directory_.write("f.csv",
                         "h\nA,nan,1,1,Group:1:2,\"\"\nB,1,-inf,1,Group:1:2,\"\"\n"
                         "C,1,2,1,Group:1:2,\"\"\n");
    const std::string base = table.substr(0, table.size() - 4);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(draw(base, std::vector<double>{nan, nan, 1, 2}), "");
    EXPECT_EQ(marker_count(svg(base)), 1U);
}

TEST_F(Figure, DrawsTextsOfTheDataAsTextsAndRunsNoneOfThem) {
    const std::string trap = directory_.file("trap");
    const std::vector<std::string> hostile = {"'; system(\"touch " + trap + "\")",
                                              "`touch " + trap + "`",
                                              "\"; !touch " + trap,
                                              "@x } { ] ) \\",
                                              "END_OF_POINTS",
                                              "%s%n $x #",
                                              "</text><script>alert(1)</script>",
                                              "line\nsystem('touch " + trap + "')",
                                              "\xFF\xC3\xBC\x1B[2J",
                                              ""};
    std::vector<std::string> names = hostile;
    names[7] = "two lines are no row of a table";
    const std::string base = table("f", names);
    EXPECT_EQ(drawLabelled(base, hostile, {0, 9, 0, 40.5}), "");
    EXPECT_FALSE(std::filesystem::exists(trap));
    EXPECT_EQ(marker_count(svg(base)), 20U);
    EXPECT_THAT(svg(base), Not(HasSubstr("<script>")));
    EXPECT_THAT(svg(base), HasSubstr("<text>'; system("));
    EXPECT_THAT(svg(base), HasSubstr("<text>@x } { ] ) \\</text>"));
    EXPECT_EQ(directory_.entryCount(), 4U);
}

TEST_F(Figure, WorksUnderAnyFileName) {
    for (const char* name : {"a b",
                             "it's",
                             "two\nlines",
                             "100%d",
                             "gr\xC3\xBC\xC3\x9F",
                             "not utf-8 \xFF",
                             "\"quoted\"",
                             "`touch trap`",
                             "< ls",
                             "| ls",
                             "-x",
                             "$(touch trap)",
                             "back\\slash"}) {
        const std::string base = table(name);
        EXPECT_EQ(draw(base), "") << name;
        EXPECT_THAT(png(base), StartsWith("\x89PNG")) << name;
        EXPECT_THAT(svg(base), HasSubstr("</svg>")) << name;
    }
    EXPECT_EQ(directory_.entryCount(), 13 * 4U);
}

TEST_F(Figure, MissingGnuplotCostsTheFigureAlone) {
    const std::string base = table("f");
    const test::TemporaryDirectory nothing;
    const test::PathVariable path(nothing.prefix(), true);
    EXPECT_EQ(draw(base),
              "Figure " + base +
                  ".png was not drawn: gnuplot is not installed (Debian: apt-get install "
                  "gnuplot-nox). Draw it later: run gnuplot on " +
                  base + ".gp in its directory.\n");
    EXPECT_THAT(script(base), HasSubstr("set output './f.png'"));
    EXPECT_EQ(directory_.entryCount(), 2U);
}

/// What a failing program is to be reported as.
struct Failure {
    const char* name;
    const char* program;
    const char* reason;
};

class FailingGnuplot : public Figure, public testing::WithParamInterface<Failure> {};

TEST_P(FailingGnuplot, IsReportedAndLeavesEarlierPictures) {
    const std::string base = table("f");
    draw(base);
    const std::string earlier = png(base);
    const test::TemporaryDirectory programs;
    test::write_program(programs, "gnuplot", GetParam().program);
    const test::PathVariable path(programs.prefix());
    testing::internal::CaptureStderr();
    Gnuplot<double> figure;
    figure.time_limit = std::chrono::milliseconds(2000);
    figure.open(false);
    plot<double>(figure, base, {0, 4, 0, 8});
    figure.close();
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_THAT(err, HasSubstr(GetParam().reason));
    EXPECT_EQ(count(err, "\n"), 1U);
    EXPECT_EQ(png(base), earlier);
    EXPECT_EQ(directory_.entryCount(), 4U);
}

INSTANTIATE_TEST_SUITE_P(
    Programs,
    FailingGnuplot,
    testing::Values(
        Failure{"Fails", "echo; echo 'unknown terminal' >&2; exit 3", "status 3: unknown terminal"},
        Failure{"IsKilled", "kill -9 $$", "status 137"},
        Failure{"WritesNothing", "exit 0", "no whole picture"},
        Failure{"WritesHalf", "printf '%0100d' 0 > f.png; exit 0", "no whole picture"},
        Failure{"Hangs", "exec sleep 60", "had not finished after 2 seconds"},
        Failure{"Floods",
                "i=0; while [ $i -lt 20000 ]; do echo 'noise, noise, noise' >&2; "
                "i=$((i+1)); done; exit 1",
                "status 1: noise, noise, noise"}),
    [](const testing::TestParamInfo<Failure>& failure) { return std::string(failure.param.name); });

TEST_F(Figure, NeedsATableAndAnOpenSession) {
    const std::string base = directory_.file("f");
    EXPECT_EQ(draw(base),
              "Figure " + base + ".png was not drawn: there is no whole result table beside it.\n");
    EXPECT_EQ(directory_.entryCount(), 0U);
    Gnuplot<double> figure;
    EXPECT_THROW(figure.open(true), std::invalid_argument);
    EXPECT_THROW(plot<double>(figure, base, {0, 1, 0, 1}), std::logic_error);
    figure.open(false);
    EXPECT_THROW(plot<double>(figure, base, {0, 1, 0}), std::invalid_argument);
    figure.close();
    EXPECT_THROW(plot<double>(figure, base, {0, 1, 0, 1}), std::logic_error);
}

TEST_F(Figure, ReportsAScriptThatCannotBeWritten) {
    const std::string base = table("f");
    std::filesystem::create_directory(base + ".gp");
    testing::internal::CaptureStdout();
    EXPECT_EQ(draw(base),
              "Figure " + base + ".png was not drawn: " + base +
                  ".gp could not be written (Is a directory).\n");
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                HasSubstr("I cannot write file: " + base + ".gp"));
}

TEST_F(Figure, OfARunNeedsNoTableAndShowsNoOther) {
    const std::string base = table("f");
    const std::vector<float> x = {0.1F, 1.0F / 3.0F};
    const std::vector<float> y = {-2.5e-7F, 16777216.0F};
    PlottedRun<float> run;
    run.x = x;
    run.y = y;
    EXPECT_EQ(drawRun<float>(base, run, {0.1F, 0.5F, -1.0F, 2e7F}), "");
    EXPECT_EQ(marker_count(svg(base)), 2U);
    EXPECT_THAT(script(base), HasSubstr("\n0.1 -2.5e-07\n0.33333334 16777216\nEND_OF_POINTS"));
    std::filesystem::remove(base + ".csv");
    const std::string drawn = png(base);
    std::filesystem::remove(base + ".png");
    EXPECT_EQ(drawRun<float>(base, run, {0.1F, 0.5F, -1.0F, 2e7F}), "");
    EXPECT_EQ(png(base), drawn);
}

TEST_F(Figure, RefusesARunOfUnequalLists) {
    const std::vector<double> x = {1.0, 2.0};
    PlottedRun<double> run;
    run.x = x;
    Gnuplot<double> figure;
    figure.setRun(run);
    figure.open(false);
    EXPECT_THROW(plot<double>(figure, directory_.file("f"), {0, 1, 0, 1}), std::invalid_argument);
    EXPECT_EQ(directory_.entryCount(), 0U);
}

TEST_F(Figure, IsWrittenThroughLinksAndKeepsPermissions) {
    const std::string base = table("f");
    draw(base);
    const std::string drawn = png(base);
    const test::TemporaryDirectory elsewhere;
    std::filesystem::remove(base + ".png");
    std::filesystem::create_symlink(elsewhere.file("picture"), base + ".png");
    std::filesystem::permissions(base + ".svg", std::filesystem::perms::owner_read);
    EXPECT_EQ(draw(base), "");
    EXPECT_TRUE(std::filesystem::is_symlink(base + ".png"));
    EXPECT_EQ(test::read_file(elsewhere.file("picture")), drawn);
    EXPECT_EQ(std::filesystem::status(base + ".svg").permissions(),
              std::filesystem::perms::owner_read);
    EXPECT_EQ(directory_.entryCount(), 4U);
}

TEST_F(Figure, TellsWhatBecameOfIt) {
    const std::string base = table("f");
    Gnuplot<double> figure;
    EXPECT_EQ(figure.outcome(), FigureOutcome::None);
    const auto outcome = [&] {
        testing::internal::CaptureStderr();
        figure.open(false);
        plot<double>(figure, base, {0, 4, 0, 8});
        figure.close();
        testing::internal::GetCapturedStderr();
        return figure.outcome();
    };
    EXPECT_EQ(outcome(), FigureOutcome::Drawn);
    const test::TemporaryDirectory programs;
    {
        const test::PathVariable path(programs.prefix(), true);
        EXPECT_EQ(outcome(), FigureOutcome::ScriptOnly);
    }
    test::write_program(programs, "gnuplot", "exit 1");
    const test::PathVariable path(programs.prefix());
    EXPECT_EQ(outcome(), FigureOutcome::Failed);
}

/// A run of points on a spiral.
struct Spiral {
    explicit Spiral(std::size_t count) {
        for (std::size_t n = 0; n < count; ++n) {
            const auto turn = static_cast<double>(n);
            x.push_back(std::sqrt(turn) * std::cos(turn));
            y.push_back(std::sqrt(turn) * std::sin(turn));
            names.push_back("G" + std::to_string(n));
            labels.push_back(n % 3 == 0 ? "other" : "group " + std::to_string(n % 7));
        }
        run.x = x;
        run.y = y;
        run.names = names;
        run.labels = labels;
        run.figure = &options;
    }

    [[nodiscard]] std::vector<double> bounds() const {
        const auto [left, right] = std::minmax_element(x.begin(), x.end());
        const auto [bottom, top] = std::minmax_element(y.begin(), y.end());
        return {*left, *right, *bottom, *top};
    }

    std::vector<double> x;
    std::vector<double> y;
    std::vector<std::string> names;
    std::vector<std::string> labels;
    FigureOptions options;
    PlottedRun<double> run;
};

TEST_F(Figure, OfAGenomeIsASmallVectorPicture) {
    Spiral spiral(6600);
    spiral.options = {"Yeast", {89, 0, true}, {5, 100, 2000}};
    const std::string base = directory_.file("f");
    EXPECT_EQ(drawRun(base, spiral.run, spiral.bounds()), "");
    const std::string picture = svg(base);
    EXPECT_LT(picture.size(), 2000000U);
    EXPECT_THAT(picture, HasSubstr(" width=\"89mm\" height=\""));
    EXPECT_THAT(picture, HasSubstr("@font-face"));
    for (const char* text : {"Yeast", "G5", "G100", "G2000", "other", "group 6", "Component 1"}) {
        EXPECT_EQ(count(picture, std::string("<text>") + text + "</text>"), 1U) << text;
    }
    // All points, seven entries of the legend and the rims; grey ones lie beneath the others.
    EXPECT_EQ(points_of(picture, "<g color='#b4bcc4' fill-opacity='0.50'>"), 2200U);
    EXPECT_LT(picture.rfind("<g color='#b4bcc4' fill-opacity='0.50'>"),
              picture.find("<g color='#0072b2' fill-opacity='0.50'>"));
    // 300 dots an inch.
    EXPECT_THAT(png(base), HasSubstr("pHYs"));
}

TEST_F(Figure, OfVeryManyPointsHasThemAsAnImage) {
    Spiral spiral(20001);
    spiral.options.size = {600, 0, false};
    const std::string base = directory_.file("f");
    EXPECT_EQ(drawRun(base, spiral.run, spiral.bounds()), "");
    EXPECT_EQ(count(svg(base), "<image "), 1U);
    EXPECT_THAT(svg(base), HasSubstr("data:image/png;base64,"));
    EXPECT_EQ(points_of(svg(base), "fill-opacity"), 0U);
    EXPECT_THAT(svg(base), HasSubstr("<text>Component 1</text>"));
    EXPECT_EQ(directory_.entryCount(), 3U);
}

TEST_F(Figure, SaysWhichNamesHaveNoRoom) {
    Spiral spiral(3);
    spiral.names[1] = std::string(300, 'w');
    spiral.options = {"", {300, 300, false}, {0, 1}};
    const std::string base = directory_.file("f");
    EXPECT_THAT(drawRun(base, spiral.run, spiral.bounds()),
                HasSubstr(".png has no room for 1 name (www"));
    EXPECT_THAT(svg(base), HasSubstr("<text>G0</text>"));
}

TEST_F(Figure, StyleNamesItsNumbers) {
    Gnuplot<float> figure;
    std::string style = "replaced";
    figure.style(style, 600, 400, 0.85F, 0.1F, 0.15F, 0.9F, 12, false);
    EXPECT_EQ(style,
              "# Pixels, fractions of the canvas, points; transparency from 0 to 255.\n"
              "figure_width = 600\nfigure_height = 400\nright_edge = 0.85\nleft_edge = 0.1\n"
              "bottom_edge = 0.15\ntop_edge = 0.9\nfont_size = 12\ntransparency = 0\n");
}

}  // namespace

}  // namespace ovik
