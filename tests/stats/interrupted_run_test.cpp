#include <cmath>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "results/checkpoint.h"
#include "stats/tsne.h"
#include "util/input_error.h"

#include "tests/support/engine_run.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/threads.h"

/// Runs that are watched, ended between iterations and gone on with.

namespace ovik {
namespace {

using test::RunOutcome;
using test::RunSettings;
using testing::HasSubstr;

constexpr int kStopLying = 60;
constexpr int kMomentumSwitch = 90;
constexpr int kLast = 150;

std::function<bool(const IterationReport&)> end_at(int iteration) {
    return [=](const IterationReport& reached) { return reached.iteration < iteration; };
}

/// What the progress bar drew from an iteration on.
std::string progress_from(const std::string& out, int iteration) {
    const std::size_t at = out.find(" at iteration (" + std::to_string(iteration) + "/");
    const std::size_t start = out.rfind('\r', at);
    return out.substr(start, out.find("completed \n") - start);
}

class InterruptedRun : public testing::Test {
  protected:
    [[nodiscard]] RunSettings settings(double theta) const {
        return {.perplexity = 10.0,
                .theta = theta,
                .max_iter = kLast,
                .stop_lying_iter = kStopLying,
                .mom_switch_iter = kMomentumSwitch};
    }

    /// Runs up to an iteration, which leaves a checkpoint.
    template <typename T = double>
    RunOutcome runUntil(int iteration, RunSettings run) const {
        run.on_iteration = end_at(iteration);
        run.checkpoint_path = checkpoint_;
        return test::run_engine<T>(matrix_, run);
    }

    template <typename T = double>
    RunOutcome resume(RunSettings run) const {
        run.resume_path = checkpoint_;
        return test::run_engine<T>(matrix_, run);
    }

    /// What is said about a run that cannot go on; it prints and writes nothing.
    [[nodiscard]] std::string refusal(const std::string& matrix, const RunSettings& run) const {
        TSNE<double> tsne(directory_.file("refused/"), "run", "", "");
        tsne.init(matrix, run.max_iter, '\t');
        tsne.theta = run.theta;
        tsne.resume_path = checkpoint_;
        testing::internal::CaptureStdout();
        std::string message;
        try {
            tsne.actuate(run.no_dims, run.perplexity, {}, run.stop_lying_iter, run.mom_switch_iter);
        } catch (const InputError& error) {
            message = error.what();
        }
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        EXPECT_EQ(tsne.Y, nullptr);
        EXPECT_THROW(
            tsne.checkResume(run.no_dims, run.perplexity, run.stop_lying_iter, run.mom_switch_iter),
            InputError);
        tsne.finish();
        return message;
    }

    test::TemporaryDirectory directory_;
    std::string matrix_ = test::first_rows(directory_, "brauer2008_chemostat.tsv", 120);
    std::string checkpoint_ = directory_.file("fit.ckpt");
};

TEST_F(InterruptedRun, ReportsEveryIterationAndChangesNothing) {
    for (const double theta : {0.0, 0.5}) {
        RunSettings watched = settings(theta);
        const RunOutcome unwatched = test::run_engine(matrix_, watched);
        std::vector<IterationReport> reports;
        watched.on_iteration = [&](const IterationReport& reached) {
            reports.push_back(reached);
            return true;
        };
        const RunOutcome run = test::run_engine(matrix_, watched);
        EXPECT_EQ(run.Y, unwatched.Y);
        EXPECT_EQ(run.table, unwatched.table);
        ASSERT_EQ(reports.size(), kLast + 1U);
        for (int i = 0; i <= kLast; ++i) {
            const IterationReport& report = reports[static_cast<std::size_t>(i)];
            EXPECT_EQ(report.iteration, i);
            EXPECT_EQ(report.max_iter, kLast);
            EXPECT_TRUE(report.finite);
            char text[64];
            std::snprintf(text, sizeof text, "Got error of %f at iteration (%d/", report.cost, i);
            EXPECT_THAT(run.out, HasSubstr(text));
        }
    }
}

TEST_F(InterruptedRun, EndsWithTheResultsOfWhatWasReached) {
    for (const double theta : {0.0, 0.5}) {
        for (const int iteration : {0, 1, kStopLying - 1, kStopLying, kMomentumSwitch + 1}) {
            RunSettings ended = settings(theta);
            ended.on_iteration = end_at(iteration);
            const RunOutcome run = test::run_engine(matrix_, ended);
            RunSettings shorter = settings(theta);
            shorter.max_iter = iteration;
            const RunOutcome expected = test::run_engine(matrix_, shorter);
            EXPECT_EQ(run.Y, expected.Y) << iteration;
            EXPECT_EQ(run.table, expected.table);
            EXPECT_EQ(run.log, expected.log);
            EXPECT_THAT(run.out,
                        HasSubstr("\n-- Ended early, at iteration " + std::to_string(iteration) +
                                  " of 150\n-- Performed fitting in "));
            EXPECT_EQ(expected.out.find("Ended early"), std::string::npos);
        }
    }
}

TEST_F(InterruptedRun, IsNotCalledEarlyAtItsLastIteration) {
    RunSettings run = settings(0.5);
    run.on_iteration = end_at(kLast);
    EXPECT_EQ(test::run_engine(matrix_, run).out.find("Ended early"), std::string::npos);
}

TEST_F(InterruptedRun, LeavesNoResultsBehindAnException) {
    TSNE<double> tsne(directory_.file("left/"), "run", "", "");
    std::filesystem::create_directories(tsne.out_dir);
    testing::internal::CaptureStdout();
    tsne.init(matrix_, kLast, '\t');
    tsne.on_iteration = [](const IterationReport& reached) -> bool {
        throw std::runtime_error("at " + std::to_string(reached.iteration));
    };
    EXPECT_THROW(tsne.actuate(2, 10.0, {}, kStopLying, kMomentumSwitch), std::runtime_error);
    testing::internal::GetCapturedStdout();
    EXPECT_FALSE(tsne.tableWritten());
    EXPECT_FALSE(tsne.logWritten());
    EXPECT_TRUE(std::filesystem::is_empty(tsne.out_dir));
    tsne.finish();
}

TEST_F(InterruptedRun, GoesOnToTheSameBytesWithAnotherNumberOfThreads) {
    for (const double theta : {0.0, 0.5}) {
        const RunOutcome unbroken = test::run_engine(matrix_, settings(theta));
        int threads = 0;  // before: 1, 2, 3, 1, ...; afterwards: 2, 3, 1, 2, ...
        for (const int iteration : {0,
                                    1,
                                    kStopLying - 1,
                                    kStopLying,
                                    kStopLying + 1,
                                    kMomentumSwitch - 1,
                                    kMomentumSwitch,
                                    kMomentumSwitch + 1,
                                    kLast - 1}) {
            {
                const test::ThreadCount scope(1 + threads % 3);
                runUntil(iteration, settings(theta));
            }
            const test::ThreadCount scope(1 + (threads + 1) % 3);
            const RunOutcome run = resume(settings(theta));
            EXPECT_EQ(run.Y, unbroken.Y) << "theta " << theta << ", iteration " << iteration;
            EXPECT_EQ(run.table, unbroken.table);
            EXPECT_EQ(progress_from(run.out, iteration + 1),
                      progress_from(unbroken.out, iteration + 1));
            EXPECT_THAT(run.out,
                        HasSubstr("-- Going on after iteration " + std::to_string(iteration) +
                                  ", from checkpoint " + checkpoint_ + "\n\r"));
            ++threads;
        }
    }
}

TEST_F(InterruptedRun, GoesOnInThreeDimensionsAndThroughSeveralInterruptions) {
    for (const double theta : {0.0, 0.5}) {
        RunSettings run = settings(theta);
        run.no_dims = 3;
        const RunOutcome unbroken = test::run_engine(matrix_, run);
        runUntil(20, run);
        run.resume_path = checkpoint_;
        runUntil(70, run);
        runUntil(71, run);
        EXPECT_EQ(resume(run).Y, unbroken.Y);
    }
}

TEST_F(InterruptedRun, GoesOnInEitherPrecision) {
    const RunOutcome unbroken = test::run_engine<float>(matrix_, settings(0.5));
    runUntil<float>(50, settings(0.5));
    const RunOutcome run = resume<float>(settings(0.5));
    EXPECT_EQ(run.Y, unbroken.Y);
    EXPECT_EQ(run.table, unbroken.table);
    EXPECT_EQ(progress_from(run.out, 51), progress_from(unbroken.out, 51));
    // The fit is the same in both.
    runUntil<double>(50, settings(0.5));
    EXPECT_EQ(resume<float>(settings(0.5)).table, unbroken.table);
}

TEST_F(InterruptedRun, GoesOnBeyondTheIterationAtWhichItWasToEnd) {
    for (const double theta : {0.0, 0.5}) {
        const RunOutcome longer = test::run_engine(matrix_, settings(theta));
        for (const int last : {40, kStopLying, 100}) {
            RunSettings shorter = settings(theta);
            shorter.max_iter = last;
            runUntil(last, shorter);
            const RunOutcome run = resume(settings(theta));
            EXPECT_EQ(run.Y, longer.Y);
            EXPECT_EQ(run.table, longer.table);
            EXPECT_EQ(progress_from(run.out, last + 1), progress_from(longer.out, last + 1));
        }
    }
}

TEST_F(InterruptedRun, WritesTheResultsAgainWhenItWasDone) {
    const RunOutcome unbroken = runUntil(kLast, settings(0.5));
    const RunOutcome run = resume(settings(0.5));
    EXPECT_EQ(run.Y, unbroken.Y);
    EXPECT_EQ(run.table, unbroken.table);
    EXPECT_EQ(run.out.find("Got error of"), std::string::npos);
}

TEST_F(InterruptedRun, SavesItsStateEverySoManyIterations) {
    RunSettings run = settings(0.5);
    run.checkpoint_path = checkpoint_;
    run.checkpoint_every = 7;
    std::vector<int> saved;
    run.on_iteration = [&](const IterationReport& reached) {
        // What the file holds before this iteration is saved.
        saved.push_back(reached.iteration == 0 ? -1 : read_checkpoint(checkpoint_).iteration);
        return true;
    };
    const RunOutcome outcome = test::run_engine(matrix_, run);
    EXPECT_EQ(outcome.Y, test::run_engine(matrix_, settings(0.5)).Y);
    ASSERT_EQ(saved.size(), kLast + 1U);
    for (int i = 1; i <= kLast; ++i) {
        EXPECT_EQ(saved[static_cast<std::size_t>(i)], (i - 1) / 7 * 7);
    }
    EXPECT_EQ(read_checkpoint(checkpoint_).iteration, kLast);
}

TEST_F(InterruptedRun, IsRefusedForAnotherMatrixOrOtherOptions) {
    runUntil(30, settings(0.5));
    std::string content = test::read_file(matrix_);
    RunSettings other = settings(0.0);
    other.perplexity = 12.0;
    EXPECT_THAT(refusal(matrix_, other),
                HasSubstr("\n  perplexity: 10 in the checkpoint, 12 now"
                          "\n  theta: 0.5 in the checkpoint, 0 now\n"));
    const std::size_t last_row = content.rfind('\n', content.size() - 2) + 1;
    EXPECT_THAT(refusal(directory_.write("short.tsv", content.substr(0, last_row)), settings(0.5)),
                HasSubstr("\n  rows: 120 in the checkpoint, 119 now\n"));
    std::string renamed = content;
    renamed.insert(last_row, "X");
    EXPECT_THAT(refusal(directory_.write("renamed.tsv", renamed), settings(0.5)),
                HasSubstr("run\n  the names of its rows are others\n"));
    content.insert(content.size() - 1, "1");
    EXPECT_THAT(refusal(directory_.write("changed.tsv", content), settings(0.5)),
                HasSubstr("run\n  the values of the matrix are others\n"));
    RunSettings shorter = settings(0.5);
    shorter.max_iter = 29;
    EXPECT_THAT(refusal(matrix_, shorter), HasSubstr("is of iteration 30, and the run ends with"));
}

TEST_F(InterruptedRun, GoesOnWithoutACheckpointThatCannotBeWritten) {
    RunSettings run = settings(0.5);
    run.checkpoint_path = directory_.file("missing/fit.ckpt");
    const RunOutcome outcome = test::run_engine(matrix_, run);
    EXPECT_EQ(outcome.Y, test::run_engine(matrix_, settings(0.5)).Y);
    EXPECT_EQ(outcome.checkpoint_failure, "No such file or directory");
    const std::string report = "Error: I cannot write checkpoint: " + run.checkpoint_path +
                               " (No such file or directory)\n";
    const std::size_t at = outcome.out.find(report);
    EXPECT_NE(at, std::string::npos);
    // Once is enough.
    EXPECT_EQ(outcome.out.find(report, at + 1), std::string::npos);
}

TEST_F(InterruptedRun, ForgetsAFailureThatALaterCheckpointMakesGood) {
    RunSettings run = settings(0.5);
    run.checkpoint_path = directory_.file("made later/fit.ckpt");
    run.on_iteration = [&](const IterationReport& reached) {
        if (reached.iteration == 20) {
            std::filesystem::create_directories(directory_.file("made later"));
        }
        return true;
    };
    EXPECT_EQ(test::run_engine(matrix_, run).checkpoint_failure, "");
    EXPECT_EQ(read_checkpoint(run.checkpoint_path).iteration, kLast);
}

TEST_F(InterruptedRun, TellsOfCoordinatesThatAreNotFiniteAndNeverSavesThem) {
    for (const double theta : {0.0, 0.5}) {
        runUntil(30, settings(theta));
        // One coordinate of the last row, large enough to come to nothing.
        for (const double coordinate : {1e308, -1e308}) {
            Checkpoint checkpoint = read_checkpoint(checkpoint_);
            checkpoint.iteration = 30;
            checkpoint.embedding.back() = coordinate;
            checkpoint.velocity.back() = coordinate * 1.7;
            ASSERT_EQ(write_checkpoint(checkpoint_, checkpoint), "");
            RunSettings run = settings(theta);
            run.resume_path = checkpoint_;
            run.checkpoint_path = directory_.file("kept.ckpt");
            run.checkpoint_every = 1;
            std::vector<bool> finite;
            run.on_iteration = [&](const IterationReport& reached) {
                finite.push_back(reached.finite);
                return true;
            };
            const RunOutcome outcome = test::run_engine(matrix_, run);
            // The run goes on: what to do about it is for the caller to say.
            EXPECT_EQ(finite, std::vector<bool>(kLast - 30, false));
            EXPECT_TRUE(std::isnan(outcome.Y.back()));
            EXPECT_FALSE(std::filesystem::exists(run.checkpoint_path));
        }
    }
}

TEST_F(InterruptedRun, NeedsAnIntervalBetweenCheckpoints) {
    TSNE<double> tsne(directory_.prefix(), "run", "", "");
    tsne.init(matrix_, kLast, '\t');
    tsne.checkpoint_every = 0;
    EXPECT_THROW(tsne.actuate(2, 10.0, {}, 250, 250), std::invalid_argument);
    tsne.finish();
}

}  // namespace
}  // namespace ovik
