#include "stats/engine.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "stats/fit.h"
#include "stats/tsne.h"
#include "util/console.h"
#include "util/input_error.h"

#include "tests/support/random_points.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 90;
constexpr std::size_t kColumns = 4;

/// Early exaggeration and the first momentum end within the fit.
FitOptions options_of(double theta, int seed = 11) {
    return {.perplexity = 7.5,
            .theta = theta,
            .max_iter = 30,
            .stop_lying_iter = 12,
            .mom_switch_iter = 20,
            .seed = seed};
}

std::vector<double> input(unsigned int seed = 401) {
    return test::random_values(kRows * kColumns, seed, 3.0);
}

std::vector<double> coordinates(const Embedding& map) {
    return {map.points().all().begin(), map.points().all().end()};
}

TEST(Engine, GivesTheBytesOfThePublishedClassAndLeavesItsInput) {
    const std::vector<double> X = input();
    for (const double theta : {0.0, 0.5}) {
        const ConsoleSilence silence;
        TSNE<double> tsne("", "", "", "");
        tsne.X = new double[X.size()];
        std::copy(X.begin(), X.end(), tsne.X);
        tsne.N = kRows;
        tsne.D = kColumns;
        tsne.theta = theta;
        tsne.max_iter = 30;
        tsne.embed(2, 7.5, 12, 20);
        Engine engine(options_of(theta));
        std::vector<double> own = X;
        engine.setInput(own, kColumns);
        const Embedding map = engine.run();
        EXPECT_EQ(coordinates(map), std::vector<double>(tsne.Y, tsne.Y + kRows * 2));
        EXPECT_EQ(map.report().final_cost, tsne.finalCost());
        EXPECT_EQ(map.report().costs, tsne.costs());
        EXPECT_EQ(own, X);
        EXPECT_EQ(coordinates(engine.run()), coordinates(map));
        tsne.finish();
    }
}

TEST(Engine, PrintsNothing) {
    const std::vector<double> X = input();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    for (const double theta : {0.0, 0.5}) {
        Engine engine(options_of(theta));
        engine.setInput(X, kColumns);
        static_cast<void>(engine.run());
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

/// Runs of one engine: its matrix, options and number of threads.
struct Work {
    std::vector<double> X;
    FitOptions options;
    int threads;
};

std::vector<double> done(const Work& work) {
    const test::ThreadCount scope(work.threads);
    Engine engine(work.options);
    engine.setInput(work.X, kColumns);
    return coordinates(engine.run());
}

TEST(Engine, GivesInThreadsSideBySideWhatItGivesAlone) {
    const Work works[] = {{input(401), options_of(0.5, 3), 2},
                          {input(402), options_of(0.5, 4), 1},
                          {input(403), options_of(0.0, 5), 2}};
    std::vector<std::vector<double>> alone;
    for (const Work& work : works) {
        alone.push_back(done(work));
    }
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < std::size(works); ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 8; ++round) {
                EXPECT_EQ(done(works[i]), alone[i]) << "round " << round;
            }
        });
    }
}

TEST(Engine, WritesInThreadsSideBySide) {
    const std::vector<double> X = input();
    const test::TemporaryDirectory directory;
    const auto write = [&](const std::string& name) {
        Engine engine(options_of(0.5));
        engine.setInput(X, kColumns);
        const Embedding map = engine.run();
        for (int round = 0; round < 5; ++round) {
            EXPECT_TRUE(
                map.write({.out_dir = directory.prefix(), .out_name = name, .draw_plots = false})
                    .areWhole());
        }
    };
    {
        const std::jthread first(write, "first");
        const std::jthread second(write, "second");
    }
    const std::string table = test::read_file(directory.file("first_tsne_7_5.csv"));
    EXPECT_NE(table, "");
    EXPECT_EQ(test::read_file(directory.file("second_tsne_7_5.csv")), table);
}

TEST(Engine, TellsOfItsProgressAndEndsWhereAHookEndsIt) {
    const std::vector<double> X = input();
    Engine engine(options_of(0.5));
    engine.setInput(X, kColumns);
    std::vector<int> seen;
    FitHooks hooks;
    hooks.on_iteration = [&seen](const FitState& state) {
        seen.push_back(state.reached.iteration);
        return state.reached.iteration < 3;
    };
    const Embedding map = engine.run(hooks);
    EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3}));
    EXPECT_FALSE(map.isComplete());
    EXPECT_EQ(map.report().reached.iteration, 3);
    EXPECT_TRUE(engine.run().isComplete());
}

TEST(Engine, PassesTheExceptionOfAHookOn) {
    const std::vector<double> X = input();
    Engine engine(options_of(0.5));
    engine.setInput(X, kColumns);
    FitHooks hooks;
    hooks.on_iteration = [](const FitState&) -> bool { throw std::out_of_range("enough"); };
    EXPECT_THROW(static_cast<void>(engine.run(hooks)), std::out_of_range);
}

TEST(Engine, RemarksOnALargePerplexity) {
    const std::vector<double> X = input();
    Engine engine(options_of(0.5));
    engine.setInput(X, kColumns);
    EXPECT_EQ(engine.run().remark(), "");
    engine.options.perplexity = 40.0;
    EXPECT_NE(engine.run().remark(), "");
}

TEST(Engine, RefusesToRunWithoutAnInput) {
    EXPECT_THROW(static_cast<void>(Engine().run()), std::logic_error);
}

TEST(Engine, KeepsItsInputWhereItRefusesAnother) {
    const std::vector<double> X = input();
    Engine engine(options_of(0.5));
    engine.setInput(X, kColumns);
    const std::vector<double> before = coordinates(engine.run());
    const std::vector<double> equal(kRows * kColumns, 1.0);
    EXPECT_THROW(engine.setInput(equal, kColumns), InputError);
    EXPECT_THROW(engine.setInput(X, 7), InputError);
    EXPECT_THROW(engine.setInput(X, 0), InputError);
    EXPECT_EQ(coordinates(engine.run()), before);
}

TEST(Engine, LooksAgainAtValuesThatHaveChanged) {
    std::vector<double> X = input();
    Engine engine(options_of(0.5));
    engine.setInput({X.data(), kRows, kColumns}, std::vector<std::string>(kRows, "G"));
    X[5] = std::nan("");
    try {
        static_cast<void>(engine.run());
        ADD_FAILURE() << "a map of a matrix with NaN";
    } catch (const InputError& error) {
        EXPECT_EQ(std::string(error.what()).find("the value in row 1 (\"G\"), column 1,"), 0U);
    }
}

TEST(Engine, RefusesOptionsThatHaveNoMap) {
    const std::vector<double> X = input();
    Engine engine;
    engine.setInput(X, kColumns);
    engine.options.perplexity = static_cast<double>(kRows - 1);
    EXPECT_THROW(static_cast<void>(engine.run()), InputError);
    engine.options = {.out_dims = 1};
    EXPECT_THROW(static_cast<void>(engine.run()), InputError);
}

TEST(Engine, GivesNoMapThatGotOutOfRange) {
    const std::vector<double> X = input();
    std::vector<double> start(kRows * 2, 0.001);
    start.back() = 1e308;
    const std::vector<double> gains(start.size(), 1.0);
    std::vector<double> velocity(start.size());
    velocity.back() = 1.7e308;
    const FitState state{{.iteration = 7, .max_iter = 30}, start, velocity, gains};
    FitHooks hooks;
    hooks.resumed_state = &state;
    for (const double theta : {0.0, 0.5}) {
        Engine engine(options_of(theta));
        engine.setInput(X, kColumns);
        try {
            static_cast<void>(engine.run(hooks));
            ADD_FAILURE() << "a map that is not finite";
        } catch (const InputError& error) {
            EXPECT_EQ(
                std::string(error.what()).find("the embedding got out of range at iteration 8\n"),
                0U);
        }
    }
}

}  // namespace
}  // namespace ovik
