#include "tools/embedding_run.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/fit.h"
#include "util/input_error.h"

#include "tests/support/random_points.h"
#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::HasSubstr;

constexpr std::size_t kRows = 40;
constexpr std::size_t kColumns = 3;

RunInput input_of(const std::vector<double>& values) {
    RunInput input;
    input.rows = kRows;
    input.columns = kColumns;
    input.values.reset(new double[values.size()]);
    std::copy(values.begin(), values.end(), input.values.get());
    for (std::size_t n = 0; n < kRows; ++n) {
        input.row_names.push_back("row" + std::to_string(n));
    }
    return input;
}

class EmbeddingRun : public testing::Test {
  protected:
    EmbeddingRun() {
        options_.out_dir = directory_.file("made/");
        options_.name = "m";
        options_.title = "Title";
        options_.plots = false;
        options_.fit.max_iter = 20;
        options_.fit.stop_lying_iter = 10;
        options_.fit.mom_switch_iter = 15;
    }

    auto run(double perplexity = 5.0) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const EndOfCapture end_of_capture(*this);
        return run_embedding(options_, input_of(values_), perplexity);
    }

    [[nodiscard]] std::string result(const std::string& name) const {
        return test::read_file(directory_.file("made/" + name));
    }

    test::TemporaryDirectory directory_;
    Options options_;
    std::vector<double> values_ = test::random_values(kRows * kColumns, 451);
    std::string out_;
    std::string err_;

  private:
    struct EndOfCapture {
        explicit EndOfCapture(EmbeddingRun& test) : test(test) {}

        EndOfCapture(const EndOfCapture&) = delete;
        EndOfCapture& operator=(const EndOfCapture&) = delete;

        ~EndOfCapture() {
            test.out_ = testing::internal::GetCapturedStdout();
            test.err_ = testing::internal::GetCapturedStderr();
        }

        EmbeddingRun& test;
    };
};

TEST_F(EmbeddingRun, RecordsTheFit) {
    options_.fit.perplexity = 30.0;  // that of another run
    const auto record = run(5.0);
    FitOptions options = options_.fit;
    options.perplexity = 5.0;
    const Fit expected = fit({values_.data(), kRows, kColumns}, options);
    EXPECT_EQ(record.perplexity, 5.0);
    EXPECT_EQ(record.iteration, 20);
    EXPECT_EQ(record.costs, expected.report.costs);
    EXPECT_EQ(record.final_cost, expected.report.final_cost);
    EXPECT_GT(record.seconds.fitting, 0.0);
    EXPECT_TRUE(record.quality.empty());
    EXPECT_TRUE(record.isComplete());
}

TEST_F(EmbeddingRun, LeavesTableAndLogAndSaysWhereTheyAre) {
    const auto record = run();
    ASSERT_EQ(record.files.size(), 2U);
    EXPECT_EQ(record.files[0].what, "Result table");
    EXPECT_EQ(record.files[0].path, directory_.file("made/m_tsne_5_0.csv"));
    EXPECT_EQ(record.files[1].what, "Run log");
    EXPECT_EQ(record.files[1].path, directory_.file("made/m.log"));
    EXPECT_THAT(result("m_tsne_5_0.csv"), HasSubstr("\nrow39,"));
    EXPECT_THAT(result("m.log"), HasSubstr("Title"));
    EXPECT_THAT(out_, HasSubstr("-- Result table: " + record.files[0].path + "\n"));
    EXPECT_EQ(err_, "");
}

TEST_F(EmbeddingRun, WritesWhatElseWasAskedFor) {
    options_.coordinates_tsv = true;
    options_.coordinates_npy = true;
    options_.quality = true;
    options_.checkpoint = directory_.file("fit.ckpt");
    const auto record = run();
    ASSERT_EQ(record.files.size(), 5U);
    EXPECT_EQ(record.files[2].path, directory_.file("made/m_tsne_5_0.tsv"));
    EXPECT_EQ(record.files[3].path, directory_.file("made/m_tsne_5_0.npy"));
    EXPECT_EQ(record.files[4].what, "Checkpoint");
    for (const auto& file : record.files) {
        EXPECT_TRUE(std::filesystem::exists(file.path)) << file.path;
    }
    // Forty rows have ten nearest ones, and too few for thirty.
    ASSERT_EQ(record.quality.size(), 1U);
    EXPECT_EQ(record.quality[0].neighbours, 10U);
}

TEST_F(EmbeddingRun, IsTheSameInEitherPrecisionButForRounding) {
    options_.coordinates_tsv = true;
    const auto in_double = run();
    const std::string doubles = result("m_tsne_5_0.tsv");
    options_.precision = Precision::Float;
    EXPECT_EQ(run().costs, in_double.costs);
    const std::string floats = result("m_tsne_5_0.tsv");
    EXPECT_NE(floats, doubles);
    EXPECT_LT(floats.size(), doubles.size());
}

TEST_F(EmbeddingRun, GoesOnFromACheckpoint) {
    options_.coordinates_npy = true;
    const auto whole = run();
    const std::string coordinates = result("m_tsne_5_0.npy");
    options_.checkpoint = directory_.file("fit.ckpt");
    options_.fit.max_iter = 12;
    run();
    options_.fit.max_iter = 20;
    options_.resume = options_.checkpoint;
    const auto resumed = run();
    EXPECT_EQ(result("m_tsne_5_0.npy"), coordinates);
    EXPECT_EQ(resumed.costs, std::vector<double>(whole.costs.begin() + 13, whole.costs.end()));
    EXPECT_EQ(resumed.final_cost, whole.final_cost);
}

TEST_F(EmbeddingRun, RefusesAForeignCheckpointBeforeItMakesTheDirectory) {
    options_.resume = directory_.write("odd.ckpt", "no checkpoint");
    EXPECT_THROW(run(), InputError);
    EXPECT_FALSE(std::filesystem::exists(directory_.file("made")));
}

TEST_F(EmbeddingRun, EndsWithoutResultsIfTheEmbeddingComesToNothing) {
    values_[7] = std::nan("");
    try {
        run();
        ADD_FAILURE();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(),
                     "the embedding got out of range at iteration 0, and no results are written\n"
                     "Bring the values of the matrix to a common scale, or choose another "
                     "perplexity.");
    }
    EXPECT_EQ(result("m_tsne_5_0.csv"), "");
}

TEST_F(EmbeddingRun, ToldOfAFileThatCouldNotBeWrittenIsNotComplete) {
    std::filesystem::create_directories(directory_.file("made/m_tsne_5_0.csv"));
    const auto record = run();
    EXPECT_FALSE(record.isComplete());
    EXPECT_EQ(record.files[0].failure, "Is a directory");
    EXPECT_EQ(record.files[1].failure, "");
    EXPECT_EQ(err_,
              "ovik-tsne: Result table could not be written: " + record.files[0].path +
                  " (Is a directory)\n");
}

TEST_F(EmbeddingRun, SharesNeighboursBetweenRuns) {
    const auto alone = run(5.0);
    const auto cached = std::make_shared<CachedNeighbours>(30);
    for (const double perplexity : {9.0, 5.0}) {
        RunInput input = input_of(values_);
        input.neighbours = cached;
        testing::internal::CaptureStdout();
        const auto record = run_embedding(options_, std::move(input), perplexity);
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(record.costs == alone.costs, perplexity == 5.0);
    }
}

}  // namespace
}  // namespace ovik::tool
