#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/plain/plain_sptree.h"
#include "tests/plain/plain_tsne.h"
#include "tests/support/engine_run.h"
#include "tests/support/threads.h"

/// Runs with numbers other than the presets, against the plain program with the same.

namespace ovik {
namespace {

constexpr int kRows = 100;
constexpr double kPerplexity = 10.0;

class OptionRun : public testing::Test {
  protected:
    void expectPlain(const FitOptions& options, const plain::Schedule& schedule) {
        const plain::Matrix input = plain::read_tab_separated(path_, kRows);
        for (const double theta : {0.0, 0.5}) {
            const std::vector<double> Y =
                theta == 0.0
                    ? plain::embed_exactly(input, 2, kPerplexity, schedule, nullptr)
                    : plain::embed_with_tree(input, 2, kPerplexity, theta, schedule, nullptr);
            for (const int threads : {1, 3}) {
                const test::ThreadCount scope(threads);
                EXPECT_EQ(run(options, theta), Y) << theta << ", " << threads << " threads";
            }
            EXPECT_NE(run(FitOptions(), theta), Y) << theta;
        }
    }

    [[nodiscard]] std::vector<double> run(const FitOptions& options, double theta) const {
        return test::run_engine(path_,
                                {.perplexity = kPerplexity,
                                 .theta = theta,
                                 .max_iter = kSchedule.max_iter,
                                 .stop_lying_iter = kSchedule.stop_lying_iter,
                                 .mom_switch_iter = kSchedule.mom_switch_iter,
                                 .options = options})
            .Y;
    }

    static constexpr plain::Schedule kSchedule{60, 20, 30};

  private:
    test::TemporaryDirectory directory_;
    std::string path_ = test::first_rows(directory_, "brauer2008_chemostat.tsv", kRows);
};

TEST_F(OptionRun, StartsFromAnotherSeed) {
    plain::Schedule schedule = kSchedule;
    schedule.seed = 4711;
    FitOptions options;
    options.seed = 4711;
    expectPlain(options, schedule);
}

TEST_F(OptionRun, StepsAtAnotherLearningRate) {
    plain::Schedule schedule = kSchedule;
    schedule.learning_rate = 57.5;
    FitOptions options;
    options.learning_rate = 57.5;
    expectPlain(options, schedule);
}

TEST_F(OptionRun, ExaggeratesByAnotherFactor) {
    plain::Schedule schedule = kSchedule;
    schedule.exaggeration = 4.25;
    FitOptions options;
    options.exaggeration = 4.25;
    expectPlain(options, schedule);
}

TEST_F(OptionRun, StartsWithAnotherSpread) {
    plain::Schedule schedule = kSchedule;
    schedule.start_spread = 0.01;
    FitOptions options;
    options.start_spread = 0.01;
    expectPlain(options, schedule);
}

TEST_F(OptionRun, HasAnotherMomentum) {
    plain::Schedule schedule = kSchedule;
    schedule.momentum = 0.3;
    FitOptions options;
    options.momentum = 0.3;
    expectPlain(options, schedule);
}

TEST_F(OptionRun, HasAnotherFinalMomentum) {
    plain::Schedule schedule = kSchedule;
    schedule.final_momentum = 0.65;
    FitOptions options;
    options.final_momentum = 0.65;
    expectPlain(options, schedule);
}

}  // namespace
}  // namespace ovik
