#include "stats/run_results.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

FitReport report() {
    FitReport report;
    report.reached = {.iteration = 8, .max_iter = 9, .cost = 0.125};
    return report;
}

class RunResults : public testing::Test {
  protected:
    /// A run of three rows.
    [[nodiscard]] EndedRun run() const { return {{Y_.data(), 3, 2}, names_, 7, options_, report_}; }

    [[nodiscard]] ResultSettings settings() const {
        return {.out_dir = directory_.prefix(), .out_name = "run", .data_title = "Title"};
    }

    std::vector<double> Y_{0.5, 1.0, -2.25, 0.0, 3.0, -1.0};
    std::vector<std::string> names_{"CDC28", "of no gene", "CDC28"};
    FitOptions options_{.perplexity = 12.75, .theta = 0.0};
    FitReport report_ = report();
    test::TemporaryDirectory directory_;
};

TEST_F(RunResults, AreNamedAfterTheirBaseAndThePerplexity) {
    ResultSettings where = settings();
    where.out_suffix = "_x";
    where.draw_plots = false;
    const WrittenResults written = write_results<double>(where, directory_.file("base"), run());
    EXPECT_TRUE(written.areWhole());
    EXPECT_EQ(written.plots.figure, FigureOutcome::None);
    const std::string table = test::read_file(directory_.file("base_tsne_12_7_x.csv"));
    EXPECT_NE(table.find("\nCDC28,0.500,1.000,"), std::string::npos) << table;
    EXPECT_NE(table.find("\nof no gene,-2.250,0,"), std::string::npos) << table;
    EXPECT_NE(test::read_file(directory_.file("base.log")).find("Title"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(directory_.file("run_tsne_12_7_x.html")));
}

TEST_F(RunResults, ShowHowTheMapWasMadeOnThePage) {
    write_results<double>(settings(), directory_.file("run"), run());
    const std::string page = test::read_file(directory_.file("run_tsne_12_7.html"));
    for (const char* const parameter : {"exact t-SNE",
                                        "3 rows, 7 columns",
                                        "Perplexity",
                                        "12.75",
                                        "Last iteration",
                                        "Final cost",
                                        "0.125"}) {
        EXPECT_NE(page.find(parameter), std::string::npos) << parameter;
    }
}

TEST_F(RunResults, AreATableBeforeAnythingIsAddedToThePlots) {
    const auto fail = [this](ResultSettings&) {
        EXPECT_NE(test::read_file(directory_.file("run_tsne_12_7.csv")), "");
        throw std::runtime_error("no memory");
    };
    EXPECT_THROW(write_results<double>(settings(), directory_.file("run"), run(), fail),
                 std::runtime_error);
    EXPECT_NE(test::read_file(directory_.file("run_tsne_12_7.csv")), "");
    EXPECT_FALSE(std::filesystem::exists(directory_.file("run_tsne_12_7.html")));
}

TEST_F(RunResults, OfWhichOneFailsCostNoOther) {
    // Where the table is to stand is a directory.
    std::filesystem::create_directory(directory_.file("run_tsne_12_7.csv"));
    testing::internal::CaptureStdout();
    const WrittenResults written = write_results<double>(settings(), directory_.file("run"), run());
    testing::internal::GetCapturedStdout();
    EXPECT_FALSE(written.areWhole());
    EXPECT_NE(written.table_failure, std::error_code());
    EXPECT_EQ(written.log_failure, std::error_code());
    EXPECT_EQ(written.plots.page_failure, std::error_code());
    EXPECT_NE(test::read_file(directory_.file("run_tsne_12_7.html")), "");
}

}  // namespace
}  // namespace ovik
