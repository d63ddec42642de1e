#include "tools/choice_run.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/random_points.h"
#include "tests/support/temporary_directory.h"
#include "tools/load_matrix.h"
#include "tools/result_paths.h"

namespace ovik::tool {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class ChoiceRun : public testing::Test {
  protected:
    ChoiceRun() {
        std::string text = "name\ta\tb\tc\n";
        const std::vector<double> values = test::random_values(3 * 40, 4);
        for (std::size_t n = 0; n < 40; ++n) {
            text += "r" + std::to_string(n);
            for (std::size_t d = 0; d < 3; ++d) {
                text += "\t" + std::to_string(values[3 * n + d]);
            }
            text += "\n";
        }
        options_.matrix = directory_.write("m.tsv", text);
        options_.out_dir = directory_.file("out/");
        options_.name = "m";
        options_.title = "m";
        options_.names = RowNames::Other;
        options_.plots = false;
        options_.chooses_perplexity = true;
        options_.fit.max_iter = 10;
        options_.stability = 1;
        options_.against_noise = 2;
    }

    /// @return what it printed
    std::string choose(const std::vector<double>& perplexities) {
        testing::internal::CaptureStdout();
        RunReport report;
        status_ = run_choice(load_matrix(options_), {}, perplexities, options_, report, {});
        return testing::internal::GetCapturedStdout();
    }

    test::TemporaryDirectory directory_;
    Options options_;
    ExitStatus status_ = FailedRun;
};

TEST_F(ChoiceRun, KeepsItsFitsBesideTheResults) {
    EXPECT_THAT(choose({4.0, 8.0}), HasSubstr("-- Fits: 8; those"));
    EXPECT_EQ(status_, Success);
    EXPECT_TRUE(std::filesystem::exists(choice_base(options_) + ".tsv"));
    const std::filesystem::directory_iterator kept(kept_runs_path(options_));
    EXPECT_EQ(std::distance(begin(kept), end(kept)), 8);
    EXPECT_THAT(choose({4.0, 8.0}), HasSubstr("of which 8 are kept from before"));
}

TEST_F(ChoiceRun, HasNothingToChooseFromOfOnePerplexity) {
    EXPECT_THAT(choose({8.0}), HasSubstr("There is one perplexity"));
    EXPECT_EQ(status_, Success);
    EXPECT_FALSE(std::filesystem::exists(choice_base(options_) + ".tsv"));
    EXPECT_TRUE(std::filesystem::exists(result_base(options_, 8.0) + ".csv"));
}

TEST_F(ChoiceRun, SaysWhereFitsCannotBeKept) {
    std::filesystem::create_directories(options_.out_dir);
    directory_.write("out/m_tsne_choice.runs", "in its place");
    testing::internal::CaptureStdout();
    try {
        run_choice(load_matrix(options_), {}, {8.0}, options_, {}, {});
        ADD_FAILURE() << "fits were kept in a file";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), StartsWith(kept_runs_path(options_) + ": fits cannot be kept"));
        EXPECT_THAT(error.what(), HasSubstr("\nRemove what stands there"));
    }
    // No fit has begun.
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(ChoiceRun, RemovesWhatKilledOnesLeftOver) {
    // The number is larger than any of a process.
    const std::string left = ".ovik-99999999-1.part";
    const std::string drawing = "out/.ovik-99999999-2.part";
    std::filesystem::create_directories(kept_runs_path(options_));
    std::filesystem::create_directories(directory_.file(drawing));
    directory_.write("out/" + left, "left over");
    directory_.write("out/m_tsne_choice.runs/" + left, "left over");
    directory_.write(drawing + "/m_tsne_choice.svg", "left over");
    choose({8.0});
    EXPECT_FALSE(std::filesystem::exists(directory_.file("out/" + left)));
    EXPECT_FALSE(std::filesystem::exists(kept_runs_path(options_) + "/" + left));
    EXPECT_FALSE(std::filesystem::exists(directory_.file(drawing)));
}

TEST_F(ChoiceRun, FailsWhereAResultCannotBeWritten) {
    std::filesystem::create_directories(result_base(options_, 8.0) + ".csv");
    testing::internal::CaptureStderr();
    choose({8.0});
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(status_, FailedRun);
}

}  // namespace
}  // namespace ovik::tool
