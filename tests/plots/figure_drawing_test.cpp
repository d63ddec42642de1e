#include "plots/figure_drawing.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/path_variable.h"
#include "tests/support/temporary_directory.h"

/// The drawing of a script, with stand-ins for gnuplot. What the real one makes, and how it fails,
/// is in gnuplot_test.cpp.

namespace ovik {
namespace {

using testing::HasSubstr;

constexpr std::chrono::milliseconds kPlenty{600000};

/// Leaves two files that end as pictures do.
constexpr const char* kDraws =
    "for e in 'png IEND' 'svg </svg>'; do set -- $e\n"
    "printf '%050d%s' 0 $2 >y_tsne.$1; done";

class Drawing : public testing::Test {
  protected:
    void SetUp() override { directory_.write("y_tsne.gp", "script"); }

    /// Draws by a stand-in; what was said on standard error goes to `said_`.
    FigureOutcome draw(const std::string& program) {
        const test::TemporaryDirectory programs;
        test::write_program(programs, "gnuplot", program);
        const test::PathVariable path(programs.prefix());
        testing::internal::CaptureStderr();
        const FigureOutcome outcome = FigureDrawing(base_, {}, files_).complete(kPlenty);
        said_ = testing::internal::GetCapturedStderr();
        return outcome;
    }

    test::TemporaryDirectory directory_;
    std::string base_ = directory_.file("y_tsne");
    std::string said_;
    std::optional<DrawingFiles> files_;
};

TEST_F(Drawing, PutsPicturesInTheirPlacesAndLeavesNothingElse) {
    EXPECT_EQ(draw(kDraws), FigureOutcome::Drawn);
    EXPECT_EQ(said_, "");
    EXPECT_EQ(test::read_file(base_ + ".png"), std::string(50, '0') + "IEND");
    EXPECT_EQ(test::read_file(base_ + ".svg"), std::string(50, '0') + "</svg>");
    EXPECT_EQ(directory_.entryCount(), 3U);
}

TEST_F(Drawing, IsGivenTheScriptFromWithinItsOwnDirectory) {
    EXPECT_EQ(draw(std::string("[ \"$*\" = '-d ../y_tsne.gp' ] && [ -f ../y_tsne.gp ] || exit 9\n"
                               "case $PWD in */.ovik-*.part) ;; *) exit 8 ;; esac\n") +
                   kDraws),
              FigureOutcome::Drawn)
        << said_;
}

TEST_F(Drawing, DrawsByAScriptAndAnImageOfItsOwn) {
    files_ = {"around", "image", true};
    EXPECT_EQ(
        draw(std::string("[ \"$*\" = '-d script' ] && [ \"$(cat script)\" = around ] || exit 9\n"
                         "[ \"$(cat y_tsne_points.png)\" = image ] || exit 8\n") +
             kDraws),
        FigureOutcome::Drawn)
        << said_;
    EXPECT_EQ(directory_.entryCount(), 3U);
}

TEST_F(Drawing, PromisesNoScriptWhereNoneDraws) {
    files_ = {"around", "image", false};
    EXPECT_EQ(draw("exit 3"), FigureOutcome::Failed);
    EXPECT_EQ(said_, "Figure " + base_ + ".png was not drawn: gnuplot ended with status 3: .\n");
}

TEST_F(Drawing, TellsOfAPictureThatCannotBePlaced) {
    std::filesystem::create_directories(base_ + ".svg/occupied");
    EXPECT_EQ(draw(kDraws), FigureOutcome::Failed);
    EXPECT_EQ(said_,
              "Figure " + base_ + ".png was not drawn: Is a directory: " + base_ +
                  ".svg. Draw it later: run gnuplot on " + base_ + ".gp in its directory.\n");
}

TEST_F(Drawing, LeavesEarlierPicturesIfOneIsNotWhole) {
    directory_.write("y_tsne.png", "earlier");
    EXPECT_EQ(draw("printf '%050dIEND' 0 >y_tsne.png"), FigureOutcome::Failed);
    EXPECT_THAT(said_, HasSubstr("y_tsne.svg"));
    EXPECT_EQ(test::read_file(base_ + ".png"), "earlier");
    EXPECT_EQ(directory_.entryCount(), 2U);
}

/// Larger than any number of a process.
constexpr const char* kLeftOver = ".ovik-99999999-1.part";

TEST(LeftOverDrawings, AreRemovedWithWhatGnuplotMakes) {
    const test::TemporaryDirectory directory;
    std::filesystem::create_directory(directory.file(kLeftOver));
    for (const char* name : {"messages", "script", "y_tsne_20_0.png", "y_tsne_20_0.svg"}) {
        directory.write(std::string(kLeftOver) + "/" + name, "half");
    }
    std::filesystem::create_directory(directory.file(".ovik-99999999-2.part"));
    directory.write(".ovik-99999999-3.part", "a file");
    remove_left_over_drawings(directory.file("y"));
    EXPECT_EQ(directory.entryCount(), 1U);
    EXPECT_TRUE(std::filesystem::exists(directory.file(".ovik-99999999-3.part")));
}

TEST(LeftOverDrawings, KeepAllThatIsForeign) {
    for (const char* foreign : {"notes.txt", "photo.png", "messages.txt", "y.png", "other_1.svg"}) {
        const test::TemporaryDirectory directory;
        std::filesystem::create_directory(directory.file(kLeftOver));
        directory.write(std::string(kLeftOver) + "/messages", "");
        directory.write(std::string(kLeftOver) + "/y_tsne_20_0.png", "half");
        directory.write(std::string(kLeftOver) + "/" + foreign, "mine");
        remove_left_over_drawings(directory.file("y"));
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.file(kLeftOver)), {}),
                  3)
            << foreign;
    }
}

}  // namespace
}  // namespace ovik
