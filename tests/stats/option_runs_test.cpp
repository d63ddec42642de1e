#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/rounded_functions.h"

#include "tests/plain/plain_mesh.h"
#include "tests/plain/plain_sptree.h"
#include "tests/plain/plain_tsne.h"
#include "tests/support/engine_run.h"
#include "tests/support/plain_functions.h"
#include "tests/support/threads.h"

/// Runs with numbers other than the presets, against the plain program with the same.

namespace ovik {
namespace {

constexpr int kRows = 100;
constexpr double kPerplexity = 10.0;

constexpr plain::Schedule kSchedule{60, 20, 30};

/// A number that is another than the preset, for the engine and for the plain program.
struct OtherNumber {
    const char* name;
    void (*set)(FitOptions& options, plain::Schedule& schedule);
};

const OtherNumber kOtherNumbers[] = {
    {"Seed",
     [](FitOptions& options, plain::Schedule& schedule) { schedule.seed = options.seed = 4711; }},
    {"LearningRate",
     [](FitOptions& options, plain::Schedule& schedule) {
         schedule.learning_rate = options.learning_rate = 57.5;
     }},
    {"Exaggeration",
     [](FitOptions& options, plain::Schedule& schedule) {
         schedule.exaggeration = options.exaggeration = 4.25;
     }},
    {"StartSpread",
     [](FitOptions& options, plain::Schedule& schedule) {
         schedule.start_spread = options.start_spread = 0.01;
     }},
    {"Momentum",
     [](FitOptions& options, plain::Schedule& schedule) {
         schedule.momentum = options.momentum = 0.3;
     }},
    {"FinalMomentum",
     [](FitOptions& options, plain::Schedule& schedule) {
         schedule.final_momentum = options.final_momentum = 0.65;
     }},
    {"ConstantGains",
     [](FitOptions& options, plain::Schedule& schedule) {
         options.gains = GainKind::Constant;
         schedule.has_gains = false;
     }},
    {"AnnealedSchedule",
     [](FitOptions& options, plain::Schedule& schedule) {
         options.schedule = ScheduleKind::Annealed;
         schedule.is_annealed = true;
         schedule.hold_iter = options.hold_iter = 15;
         schedule.release_iter = options.release_iter = 20;
         schedule.final_momentum = options.final_momentum = 0.95;
     }},
    {"AnnealedScheduleWithoutGains",
     [](FitOptions& options, plain::Schedule& schedule) {
         options.schedule = ScheduleKind::Annealed;
         options.gains = GainKind::Constant;
         schedule.is_annealed = true;
         schedule.has_gains = false;
         schedule.exaggeration = options.exaggeration = 4.0;
         schedule.hold_iter = options.hold_iter = 20;
         schedule.release_iter = options.release_iter = 10;
         schedule.has_automatic_rate = options.automatic_rate = true;
         schedule.final_momentum = options.final_momentum = 0.99;
     }},
};

class ShortRun : public testing::Test {
  protected:
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

    test::TemporaryDirectory directory_;
    std::string path_ = test::first_rows(directory_, "brauer2008_chemostat.tsv", kRows);
};

class OptionRun : public ShortRun, public testing::WithParamInterface<OtherNumber> {};

TEST_P(OptionRun, EqualsThePlainProgramWithTheSameNumber) {
    FitOptions options;
    plain::Schedule schedule = kSchedule;
    GetParam().set(options, schedule);
    const plain::Matrix input = plain::read_tab_separated(path_, kRows);
    for (const double theta : {0.0, 0.5}) {
        const std::vector<double> Y =
            theta == 0.0 ? plain::embed_exactly(input, 2, kPerplexity, schedule, nullptr)
                         : plain::embed_with_tree(input, 2, kPerplexity, theta, schedule, nullptr);
        for (const int threads : {1, 3}) {
            const test::ThreadCount scope(threads);
            EXPECT_EQ(run(options, theta), Y) << theta << ", " << threads << " threads";
        }
        EXPECT_NE(run(FitOptions(), theta), Y) << theta;
    }
}

TEST_F(ShortRun, ByPortableNumericsEqualsThePlainProgramWithRoundedFunctions) {
    FitOptions options;
    options.numerics = NumericsKind::Portable;
    const plain::Matrix input = plain::read_tab_separated(path_, kRows);
    const test::PlainFunctions scope({&rounded_exp, &rounded_log});
    for (const double theta : {0.0, 0.5}) {
        const std::vector<double> Y =
            theta == 0.0 ? plain::embed_exactly(input, 2, kPerplexity, kSchedule, nullptr)
                         : plain::embed_with_tree(input, 2, kPerplexity, theta, kSchedule, nullptr);
        for (const int threads : {1, 3}) {
            const test::ThreadCount threads_scope(threads);
            EXPECT_EQ(run(options, theta), Y) << theta << ", " << threads << " threads";
        }
        EXPECT_NE(run(FitOptions(), theta), Y) << theta;
    }
}

INSTANTIATE_TEST_SUITE_P(Each, OptionRun, testing::ValuesIn(kOtherNumbers), [](const auto& test) {
    return std::string(test.param.name);
});

TEST(MeshRun, EqualsThePlainProgramForAnyNumberOfThreads) {
    const test::TemporaryDirectory directory;
    const std::string path = test::first_rows(directory, "brauer2008_chemostat.tsv", kRows);
    const plain::Matrix input = plain::read_tab_separated(path, kRows);
    const std::vector<double> Y = plain::embed_in_single_precision(
        &plain::mesh_repulsion, input, 2, kPerplexity, kSchedule, nullptr);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        EXPECT_EQ(test::run_engine(path,
                                   {.perplexity = kPerplexity,
                                    .max_iter = kSchedule.max_iter,
                                    .stop_lying_iter = kSchedule.stop_lying_iter,
                                    .mom_switch_iter = kSchedule.mom_switch_iter,
                                    .options = {.method = MethodKind::Mesh}})
                      .Y,
                  Y)
            << threads << " threads";
    }
}

TEST(AutomaticRateRun, EqualsThePlainProgramWithMoreRowsThanTheLeastRate) {
    constexpr int kManyRows = 203;
    const test::TemporaryDirectory directory;
    const std::string path = test::first_rows(directory, "brauer2008_chemostat.tsv", kManyRows);
    const plain::Matrix input = plain::read_tab_separated(path, kManyRows);
    plain::Schedule schedule = kSchedule;
    schedule.has_automatic_rate = true;
    FitOptions options;
    options.automatic_rate = true;
    const auto run = [&](const FitOptions& chosen, double theta) {
        return test::run_engine(path,
                                {.perplexity = kPerplexity,
                                 .theta = theta,
                                 .max_iter = schedule.max_iter,
                                 .stop_lying_iter = schedule.stop_lying_iter,
                                 .mom_switch_iter = schedule.mom_switch_iter,
                                 .options = chosen})
            .Y;
    };
    for (const double theta : {0.0, 0.5}) {
        const std::vector<double> Y =
            theta == 0.0 ? plain::embed_exactly(input, 2, kPerplexity, schedule, nullptr)
                         : plain::embed_with_tree(input, 2, kPerplexity, theta, schedule, nullptr);
        EXPECT_EQ(run(options, theta), Y) << theta;
        EXPECT_NE(run({}, theta), Y) << theta;
    }
}

/// A run of some hundred iterations that ends by itself.
plain::Schedule settling(FitOptions& options) {
    options.schedule = ScheduleKind::Annealed;
    plain::Schedule schedule = kSchedule;
    schedule.max_iter = 600;
    schedule.is_annealed = true;
    schedule.hold_iter = options.hold_iter = 30;
    schedule.release_iter = options.release_iter = 40;
    schedule.stop_when = options.stop_when = 0.004;
    return schedule;
}

TEST(SettlingRun, EndsWhereThePlainProgramEnds) {
    FitOptions options;
    const plain::Schedule schedule = settling(options);
    const test::TemporaryDirectory directory;
    const std::string path = test::first_rows(directory, "brauer2008_chemostat.tsv", kRows);
    const plain::Matrix input = plain::read_tab_separated(path, kRows);
    for (const double theta : {0.0, 0.5}) {
        std::vector<double> costs;
        const std::vector<double> Y =
            theta == 0.0 ? plain::embed_exactly(input, 2, kPerplexity, schedule, &costs)
                         : plain::embed_with_tree(input, 2, kPerplexity, theta, schedule, &costs);
        ASSERT_GE(costs.size(), 151U);
        ASSERT_LT(costs.size(), 600U);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            std::vector<int> seen;
            const test::RunOutcome run =
                test::run_engine(path,
                                 {.perplexity = kPerplexity,
                                  .theta = theta,
                                  .max_iter = schedule.max_iter,
                                  .options = options,
                                  .on_iteration = [&seen](const IterationReport& reached) {
                                      seen.push_back(reached.iteration);
                                      return true;
                                  }});
            EXPECT_EQ(run.Y, Y) << theta;
            EXPECT_EQ(seen.size(), costs.size());
            EXPECT_NE(run.out.find("Settled at iteration " + std::to_string(seen.back())),
                      std::string::npos);
        }
    }
}

}  // namespace
}  // namespace ovik
