#include "results/checkpoint_keeper.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

const RunIdentity kRun{2, 3, 1, {{"perplexity", "5"}}, {1, 2}, {3, 4}};

class Keeper : public testing::Test {
  protected:
    /// Keeps a state that names its iteration in every number.
    void keep(CheckpointKeeper& keeper, int iteration, bool is_last = false) {
        const double number = iteration;
        embedding_.assign(2, number);
        velocity_.assign(2, number + 0.25);
        gains_.assign(2, number + 0.5);
        testing::internal::CaptureStdout();
        keeper.keep({iteration, number + 0.75, embedding_, velocity_, gains_}, is_last);
        out_ = testing::internal::GetCapturedStdout();
    }

    /// The iteration of the file; -1 if there is none.
    [[nodiscard]] int kept() const {
        return std::filesystem::exists(path_) ? read_checkpoint(path_).iteration : -1;
    }

    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("fit.ckpt");
    std::string out_;

  private:
    std::vector<double> embedding_;
    std::vector<double> velocity_;
    std::vector<double> gains_;
};

TEST_F(Keeper, SavesTheStateOfTheRun) {
    CheckpointKeeper keeper(path_, 1, kRun);
    keep(keeper, 7);
    const Checkpoint checkpoint = read_checkpoint(path_);
    EXPECT_EQ(checkpoint.iteration, 7);
    EXPECT_EQ(checkpoint.cost, 7.75);
    EXPECT_EQ(checkpoint.embedding, std::vector<double>(2, 7.0));
    EXPECT_EQ(checkpoint.velocity, std::vector<double>(2, 7.25));
    EXPECT_EQ(checkpoint.gains, std::vector<double>(2, 7.5));
    EXPECT_EQ(checkpoint.run.rows, 2U);
    EXPECT_EQ(checkpoint.run.columns, 3U);
    EXPECT_EQ(checkpoint.run.options, kRun.options);
    EXPECT_EQ(checkpoint.run.values, kRun.values);
    EXPECT_EQ(checkpoint.run.names, kRun.names);
    EXPECT_EQ(keeper.failure(), "");
    EXPECT_EQ(out_, "");
}

TEST_F(Keeper, SavesEverySoManyIterationsAndTheLast) {
    CheckpointKeeper keeper(path_, 10, kRun);
    const int expected[] = {0, 0, 0, 10, 10, 20, 21};
    const int iterations[] = {0, 1, 9, 10, 19, 20, 21};
    for (std::size_t i = 0; i < std::size(iterations); ++i) {
        keep(keeper, iterations[i], iterations[i] == 21);
        EXPECT_EQ(kept(), expected[i]) << iterations[i];
    }
}

TEST_F(Keeper, WritesNothingWhereNoneIsDue) {
    CheckpointKeeper keeper(path_, 50, kRun);
    keep(keeper, 49);
    EXPECT_EQ(kept(), -1);
    EXPECT_EQ(directory_.entryCount(), 0U);
    EXPECT_EQ(keeper.failure(), "");
}

TEST_F(Keeper, KeepsNoneWithoutAPath) {
    CheckpointKeeper keeper("", 1, kRun);
    keep(keeper, 3, true);
    EXPECT_EQ(keeper.failure(), "");
    EXPECT_EQ(out_, "");
    EXPECT_EQ(directory_.entryCount(), 0U);
}

TEST_F(Keeper, TellsOfAFailureOnceAndGoesOn) {
    path_ = directory_.file("made/fit.ckpt");
    CheckpointKeeper keeper(path_, 1, kRun);
    keep(keeper, 1);
    EXPECT_NE(keeper.failure(), "");
    EXPECT_EQ(out_,
              "\n-- \033[1;31mError: I cannot write checkpoint: " + path_ + " (" +
                  keeper.failure() + ")\n\033[0m\n");
    keep(keeper, 2);
    EXPECT_NE(keeper.failure(), "");
    EXPECT_EQ(out_, "");
    // Where there is room again, the next one is written, and a later failure is another one.
    std::filesystem::create_directories(directory_.file("made"));
    keep(keeper, 3);
    EXPECT_EQ(keeper.failure(), "");
    EXPECT_EQ(out_, "");
    EXPECT_EQ(kept(), 3);
    std::filesystem::remove_all(directory_.file("made"));
    keep(keeper, 4);
    EXPECT_NE(keeper.failure(), "");
    EXPECT_THAT(out_, testing::HasSubstr("I cannot write checkpoint"));
}

TEST_F(Keeper, RemembersAFailureWhileNoneIsDue) {
    CheckpointKeeper keeper(directory_.file("missing/fit.ckpt"), 10, kRun);
    keep(keeper, 10);
    const std::string failure = keeper.failure();
    EXPECT_NE(failure, "");
    keep(keeper, 11);
    EXPECT_EQ(keeper.failure(), failure);
}

}  // namespace
}  // namespace ovik
