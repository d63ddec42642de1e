#include "stats/fit.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "stats/cached_neighbours.h"
#include "stats/elementwise.h"
#include "stats/mesh_repulsion.h"
#include "stats/method.h"
#include "stats/schedule.h"
#include "stats/sparse_affinities.h"
#include "stats/sparse_objective.h"
#include "stats/tsne.h"
#include "util/console.h"

#include "tests/plain/plain_tsne.h"
#include "tests/support/all_pairs_repulsion.h"
#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 90;
constexpr std::size_t kColumns = 4;

/// Early exaggeration and the first momentum end within the fit.
constexpr FitOptions kOptions{
    .perplexity = 7.5, .max_iter = 30, .stop_lying_iter = 12, .mom_switch_iter = 20};

FitOptions with_theta(double theta, FitOptions options = kOptions) {
    options.theta = theta;
    return options;
}

std::vector<double> input() {
    return test::random_values(kRows * kColumns, 401, 3.0);
}

MatrixView<double> matrix(std::vector<double>& values) {
    return {values.data(), values.size() / kColumns, kColumns};
}

/// Of the same rows each time.
Fit fitted(const FitOptions& options, const FitHooks& hooks = {}) {
    std::vector<double> X = input();
    return fit(matrix(X), options, hooks);
}

/// A copy of the state of a fit that lives on its own.
struct KeptState {
    explicit KeptState(const FitState& state)
        : reached(state.reached),
          embedding(state.embedding.begin(), state.embedding.end()),
          velocity(state.velocity.begin(), state.velocity.end()),
          gains(state.gains.begin(), state.gains.end()),
          marked_cost(state.marked_cost) {}

    [[nodiscard]] FitState view() const {
        return {reached, embedding, velocity, gains, marked_cost};
    }

    IterationReport reached;
    std::vector<double> embedding;
    std::vector<double> velocity;
    std::vector<double> gains;
    double marked_cost;
};

/// The state of a fit after an iteration.
KeptState state_after(int iteration, const FitOptions& options) {
    std::optional<KeptState> kept;
    FitHooks hooks;
    hooks.on_iteration = [&](const FitState& state) {
        if (state.reached.iteration == iteration) {
            kept.emplace(state);
        }
        return !kept;
    };
    fitted(options, hooks);
    return kept.value();
}

TEST(Fit, GivesTheBytesOfThePublishedClass) {
    for (const double theta : {0.0, 0.5}) {
        TSNE<double> tsne("", "", "", "");
        std::vector<double> values = input();
        tsne.X = new double[values.size()];
        std::copy(values.begin(), values.end(), tsne.X);
        tsne.N = kRows;
        tsne.D = kColumns;
        tsne.max_iter = kOptions.max_iter;
        tsne.theta = theta;
        IterationReport reached;
        {
            const ConsoleSilence silence;
            reached = tsne.embed(kOptions.out_dims,
                                 kOptions.perplexity,
                                 kOptions.stop_lying_iter,
                                 kOptions.mom_switch_iter);
        }
        const Fit own = fit(matrix(values), with_theta(theta));
        EXPECT_EQ(own.embedding, std::vector<double>(tsne.Y, tsne.Y + kRows * 2));
        EXPECT_EQ(values, std::vector<double>(tsne.X, tsne.X + kRows * kColumns));
        EXPECT_EQ(own.report.reached.cost, reached.cost);
        EXPECT_EQ(own.report.reached.iteration, reached.iteration);
        EXPECT_EQ(own.report.final_cost, tsne.finalCost());
        tsne.finish();
    }
}

TEST(Fit, LeavesTheProcessItsRandStream) {
    for (const double theta : {0.0, 0.5}) {
        std::srand(5);
        const int expected = std::rand();
        std::srand(5);
        fitted(with_theta(theta));
        EXPECT_EQ(std::rand(), expected);
    }
}

TEST(Fit, GivesInThreadsSideBySideWhatItGivesAlone) {
    FitOptions other = with_theta(0.0);
    other.seed = 12;
    const FitOptions kinds[] = {with_theta(0.5), other};
    const std::vector<double> alone[] = {fitted(kinds[0]).embedding, fitted(kinds[1]).embedding};
    ASSERT_NE(alone[0], alone[1]);
    const auto fit_again = [&](std::size_t kind) {
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(fitted(kinds[kind]).embedding, alone[kind]);
        }
    };
    const std::jthread first(fit_again, 0);
    const std::jthread second(fit_again, 1);
}

TEST(Fit, IsTheSameAgainAndForAnyNumberOfThreads) {
    for (const double theta : {0.0, 0.5}) {
        const Fit first = fitted(with_theta(theta));
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            const Fit again = fitted(with_theta(theta));
            EXPECT_EQ(again.embedding, first.embedding);
            EXPECT_EQ(again.report.costs, first.report.costs);
            EXPECT_EQ(again.report.final_cost, first.report.final_cost);
        }
    }
}

TEST(Fit, ReportsTheCostOfEveryIterationAndOfTheMap) {
    FitOptions options = with_theta(0.0);
    std::vector<double> X = input();
    const Fit whole = fit(matrix(X), options);
    EXPECT_EQ(whole.report.reached.iteration, 30);
    EXPECT_EQ(whole.report.reached.max_iter, 30);
    EXPECT_TRUE(whole.report.reached.finite);
    ASSERT_EQ(whole.report.costs.size(), 31U);
    EXPECT_EQ(whole.report.costs.back(), whole.report.reached.cost);
    EXPECT_EQ(whole.report.final_cost, whole.report.costs.back());
    std::vector<double> P = plain::conditional_similarities(X, kRows, kColumns, options.perplexity);
    plain::symmetrise_and_normalise(P, kRows);
    EXPECT_NEAR(whole.report.final_cost, plain::cost(P, whole.embedding, kRows, 2), 1e-10);
    // Ended within early exaggeration: the last cost is that against exaggerated similarities.
    options.max_iter = 5;
    const Fit early = fitted(options);
    ASSERT_EQ(early.report.costs.size(), 6U);
    EXPECT_NEAR(early.report.final_cost, plain::cost(P, early.embedding, kRows, 2), 1e-10);
    for (double& p : P) {
        p *= Schedule(options, kRows).exaggeration();
    }
    EXPECT_NEAR(early.report.costs.back(), plain::cost(P, early.embedding, kRows, 2), 1e-8);
}

TEST(Fit, TellsHowTheInputIsRestored) {
    for (const double theta : {0.0, 0.5}) {
        std::vector<double> X = input();
        const Fit result = fit(matrix(X), with_theta(theta));
        const InputScale& scale = result.report.scale;
        ASSERT_EQ(scale.means.size(), kColumns);
        double largest = 0.0;
        const std::vector<double> before = input();
        for (std::size_t i = 0; i < X.size(); ++i) {
            EXPECT_NEAR(scale.means[i % kColumns] + X[i] / scale.factor, before[i], 1e-13);
            largest = std::max(largest, std::fabs(X[i]));
        }
        EXPECT_NEAR(largest, 1.0, 1e-15);
    }
}

/// The nearest others of a row by comparing all pairs: the distance, then the row.
std::vector<std::pair<double, std::uint32_t>> nearest(const std::vector<double>& X, std::size_t n) {
    std::vector<std::pair<double, std::uint32_t>> others;
    for (std::size_t m = 0; m < kRows; ++m) {
        double squared_distance = 0.0;
        for (std::size_t d = 0; d < kColumns; ++d) {
            const double difference = X[n * kColumns + d] - X[m * kColumns + d];
            squared_distance += difference * difference;
        }
        if (m != n) {
            others.emplace_back(std::sqrt(squared_distance), static_cast<std::uint32_t>(m));
        }
    }
    std::sort(others.begin(), others.end());
    return others;
}

void expect_nearest(const NeighbourGraph& graph, const std::vector<double>& X) {
    ASSERT_EQ(graph.rows, kRows);
    ASSERT_EQ(graph.neighbour_count, 22U);
    ASSERT_EQ(graph.neighbours.size(), kRows * 22);
    ASSERT_EQ(graph.distances.size(), kRows * 22);
    for (std::size_t n = 0; n < kRows; ++n) {
        const auto others = nearest(X, n);
        for (std::size_t k = 0; k < 22; ++k) {
            EXPECT_EQ(graph.neighbours[n * 22 + k], others[k].second) << n << " " << k;
            EXPECT_NEAR(graph.distances[n * 22 + k], others[k].first, 1e-14);
        }
    }
}

TEST(Fit, GivesTheNeighboursOfTheScaledRowsWhereTheyAreWanted) {
    FitHooks hooks;
    hooks.wants_neighbours = true;
    std::vector<double> X = input();
    const Fit result = fit(matrix(X), kOptions, hooks);
    expect_nearest(result.report.neighbours, X);
    EXPECT_EQ(result.embedding, fitted(kOptions).embedding);
    CachedNeighbours cached(40);
    hooks.cached_neighbours = &cached;
    // Found by the first fit, and taken over by the second.
    for (int round = 0; round < 2; ++round) {
        const Fit sharing = fitted(kOptions, hooks);
        expect_nearest(sharing.report.neighbours, X);
        EXPECT_EQ(sharing.embedding, result.embedding);
    }
}

TEST(Fit, TellsHowManyNeighboursAnApproximateSearchFound) {
    EXPECT_FALSE(fitted(kOptions).report.recall);
    FitOptions options = kOptions;
    options.neighbour_search = NeighbourSearchKind::Approximate;
    FitHooks hooks;
    std::uint64_t found = 0;
    std::optional<NeighbourRecall> told;
    hooks.on_stage = [&](Stage stage, std::uint64_t done, std::uint64_t /*total*/) {
        found = stage == Stage::Neighbours ? done : found;
    };
    hooks.on_recall = [&](const NeighbourRecall& recall) { told = recall; };
    const Fit approximate = fitted(options, hooks);
    EXPECT_EQ(approximate.report.recall, (NeighbourRecall{1.0, kRows}));
    EXPECT_EQ(told, approximate.report.recall);
    EXPECT_EQ(found, kRows);
    // So few rows are compared with one another, all of them.
    EXPECT_EQ(approximate.embedding, fitted(kOptions).embedding);
    hooks.on_stage = [](Stage stage, std::uint64_t done, std::uint64_t /*total*/) {
        if (stage == Stage::Neighbours && done > 0) {
            throw std::runtime_error("enough");
        }
    };
    EXPECT_THROW(fitted(options, hooks), std::runtime_error);
    EXPECT_THROW(fitted(kOptions, hooks), std::runtime_error);
}

TEST(Fit, SaysWhereAnApproximateSearchBecomesExact) {
    // More columns than single precision tells rows apart by.
    constexpr std::size_t kColumns = 8400;
    std::vector<double> X = test::random_values(60 * kColumns, 31);
    FitOptions options = kOptions;
    options.perplexity = 5.0;
    options.max_iter = 1;
    options.neighbour_search = NeighbourSearchKind::Approximate;
    FitHooks hooks;
    int told = 0;
    hooks.on_note = [&](FitNote note) { told += note == FitNote::SearchIsExact ? 1 : 0; };
    const Fit exact = fit({X.data(), 60, kColumns}, options, hooks);
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(exact.report.search_became_exact);
    EXPECT_FALSE(exact.report.recall);
    X.resize(60 * std::size_t{20});
    const Fit approximate = fit({X.data(), 60, 20}, options, hooks);
    EXPECT_EQ(told, 1);
    EXPECT_FALSE(approximate.report.search_became_exact);
    EXPECT_TRUE(approximate.report.recall);
}

TEST(Fit, HasNoNeighboursOfTheExactMethodOrWhereNoneAreWanted) {
    EXPECT_TRUE(fitted(kOptions).report.neighbours.neighbours.empty());
    FitHooks hooks;
    hooks.wants_neighbours = true;
    const NeighbourGraph graph = fitted(with_theta(0.0), hooks).report.neighbours;
    EXPECT_EQ(graph.rows, 0U);
    EXPECT_TRUE(graph.neighbours.empty());
    EXPECT_TRUE(graph.distances.empty());
}

TEST(Fit, TellsWhatEachRowAddsToTheCost) {
    EXPECT_TRUE(fitted(kOptions).report.row_costs.empty());
    FitHooks hooks;
    hooks.wants_row_costs = true;
    for (const double theta : {0.0, 0.5}) {
        // With exaggeration at its end, and still exaggerated.
        for (const int last : {30, 5}) {
            FitOptions options = with_theta(theta);
            options.max_iter = last;
            const Fit result = fitted(options, hooks);
            const std::vector<double>& costs = result.report.row_costs;
            ASSERT_EQ(costs.size(), kRows);
            EXPECT_NEAR(
                std::accumulate(costs.begin(), costs.end(), 0.0), result.report.final_cost, 1e-11);
            EXPECT_EQ(result.embedding, fitted(options).embedding);
            for (const int threads : {1, 2, 5}) {
                const test::ThreadCount scope(threads);
                EXPECT_EQ(fitted(options, hooks).report.row_costs, costs) << threads;
            }
        }
    }
}

TEST(Fit, TellsWhatEachRowAddsToTheCostByEveryMethodAndAffinity) {
    FitHooks hooks;
    hooks.wants_row_costs = true;
    for (const MethodKind method : {MethodKind::BarnesHut, MethodKind::Mesh}) {
        for (const AffinityKind affinity : {AffinityKind::Perplexity, AffinityKind::Uniform}) {
            FitOptions options = kOptions;
            options.method = method;
            options.affinity = affinity;
            const Fit result = fitted(options, hooks);
            const std::vector<double>& costs = result.report.row_costs;
            ASSERT_EQ(costs.size(), kRows);
            EXPECT_NEAR(
                std::accumulate(costs.begin(), costs.end(), 0.0), result.report.final_cost, 1e-11);
            EXPECT_GT(*std::max_element(costs.begin(), costs.end()),
                      *std::min_element(costs.begin(), costs.end()));
        }
    }
}

TEST(Fit, TellsTheMisfitOfEachRow) {
    EXPECT_TRUE(fitted(kOptions).report.row_misfits.empty());
    FitHooks hooks;
    hooks.wants_row_costs = true;
    for (const MethodKind method : {MethodKind::Exact, MethodKind::BarnesHut, MethodKind::Mesh}) {
        FitOptions options = kOptions;
        options.method = method;
        const std::vector<double> misfits = fitted(options, hooks).report.row_misfits;
        ASSERT_EQ(misfits.size(), kRows);
        EXPECT_GT(*std::min_element(misfits.begin(), misfits.end()), 0.0);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            EXPECT_EQ(fitted(options, hooks).report.row_misfits, misfits) << threads;
        }
    }
}

TEST(Fit, EndsWhereTheHookSaysSo) {
    for (const double theta : {0.0, 0.5}) {
        std::vector<int> seen;
        FitHooks hooks;
        hooks.on_iteration = [&seen](const FitState& state) {
            seen.push_back(state.reached.iteration);
            EXPECT_EQ(state.isLast(), state.reached.iteration == 30);
            EXPECT_EQ(state.embedding.size(), kRows * 2);
            return state.reached.iteration < 4;
        };
        const Fit ended = fitted(with_theta(theta), hooks);
        EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3, 4}));
        EXPECT_EQ(ended.report.costs.size(), 5U);
        EXPECT_EQ(ended.report.reached.iteration, 4);
        // It is the fit whose last iteration this was.
        FitOptions options = with_theta(theta);
        options.max_iter = 4;
        const Fit shorter = fitted(options);
        EXPECT_EQ(ended.embedding, shorter.embedding);
        EXPECT_EQ(ended.report.final_cost, shorter.report.final_cost);
    }
}

TEST(Fit, GoesOnFromAStateToTheBytesOfTheUnbrokenFit) {
    for (const double theta : {0.0, 0.5}) {
        const FitOptions options = with_theta(theta);
        const Fit unbroken = fitted(options);
        // Around the end of exaggeration and the change of momentum, and up to the end.
        for (const int iteration : {0, 11, 12, 13, 20, 21, 29, 30}) {
            SCOPED_TRACE(iteration);
            const KeptState kept = state_after(iteration, options);
            const FitState state = kept.view();
            FitHooks hooks;
            hooks.resumed_state = &state;
            const Fit resumed = fitted(options, hooks);
            EXPECT_EQ(resumed.embedding, unbroken.embedding);
            EXPECT_EQ(resumed.report.reached.iteration, 30);
            EXPECT_EQ(resumed.report.reached.cost, unbroken.report.reached.cost);
            EXPECT_EQ(resumed.report.final_cost, unbroken.report.final_cost);
            EXPECT_EQ(resumed.report.costs,
                      std::vector<double>(unbroken.report.costs.begin() + iteration + 1,
                                          unbroken.report.costs.end()));
        }
    }
}

TEST(Fit, WithoutIterationsIsTheRandomStart) {
    FitOptions options = kOptions;
    options.max_iter = -1;
    const Fit start = fitted(options);
    EXPECT_TRUE(start.report.costs.empty());
    EXPECT_EQ(start.report.reached.iteration, -1);
    EXPECT_EQ(start.embedding.size(), kRows * 2);
    EXPECT_TRUE(std::any_of(
        start.embedding.begin(), start.embedding.end(), [](double y) { return y != 0.0; }));
    EXPECT_TRUE(std::isfinite(start.report.final_cost));
}

TEST(Fit, HasAnyNumberOfDimensionsButANegativeOne) {
    for (const double theta : {0.0, 0.5}) {
        FitOptions options = with_theta(theta);
        for (const int dims : {0, 1, 3, 5}) {
            options.out_dims = dims;
            const Fit result = fitted(options);
            EXPECT_EQ(result.embedding.size(), kRows * static_cast<std::size_t>(dims));
            EXPECT_TRUE(std::all_of(result.embedding.begin(), result.embedding.end(), [](double y) {
                return std::isfinite(y);
            }));
        }
        options.out_dims = -1;
        EXPECT_THROW(fitted(options), std::length_error);
    }
}

TEST(Fit, OfNoRowsIsEmpty) {
    for (const double theta : {0.0, 0.5}) {
        const Fit result = fit({nullptr, 0, kColumns}, with_theta(theta));
        EXPECT_TRUE(result.embedding.empty());
        EXPECT_EQ(result.report.final_cost, 0.0);
    }
}

TEST(Fit, PrintsNothing) {
    for (const double theta : {0.0, 0.5}) {
        FitOptions options = with_theta(theta);
        // More neighbours than there are.
        options.perplexity = 50.0;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        fitted(options);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    }
}

/// What a fit of the fixed rows tells.
std::vector<FitNote> notes_of(const FitOptions& options) {
    std::vector<FitNote> notes;
    FitHooks hooks;
    hooks.on_note = [&notes](FitNote note) { notes.push_back(note); };
    fitted(options, hooks);
    return notes;
}

TEST(Fit, TellsWhatItDoesInOrder) {
    EXPECT_EQ(notes_of(kOptions),
              (std::vector<FitNote>{FitNote::SimilaritiesBegin, FitNote::NeighbourIndexBuilt}));
    FitOptions options = kOptions;
    options.perplexity = 100.0;
    EXPECT_EQ(notes_of(options),
              (std::vector<FitNote>{FitNote::SimilaritiesBegin,
                                    FitNote::PerplexityAboveNeighbours,
                                    FitNote::NeighbourIndexBuilt}));
    EXPECT_EQ(notes_of(with_theta(0.0)),
              (std::vector<FitNote>{FitNote::SimilaritiesBegin,
                                    FitNote::ExactMethod,
                                    FitNote::DistancesBegin,
                                    FitNote::DistancesDone,
                                    FitNote::Symmetrizing}));
}

TEST(Fit, HandsOverTheMessageOnceTheSimilaritiesAreThere) {
    std::vector<std::string> messages;
    int iterations = 0;
    FitHooks hooks;
    hooks.on_similarities = [&](const std::string& message) {
        EXPECT_EQ(iterations, 0);
        messages.push_back(message);
    };
    hooks.on_iteration = [&iterations](const FitState&) {
        ++iterations;
        return true;
    };
    const Fit result = fitted(kOptions, hooks);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].find("Got sparsity 0."), 0U);
    EXPECT_EQ(iterations, 31);
    EXPECT_GE(result.report.seconds.similarities, 0.0);
    EXPECT_GT(result.report.seconds.fitting, 0.0);
    EXPECT_EQ(result.report.seconds.results, 0.0);
    EXPECT_GE(result.report.fitting_clock, 0);
}

TEST(Fit, LetsExceptionsOfTheHooksThrough) {
    const auto fail = [] { throw std::range_error("the hook"); };
    for (const double theta : {0.0, 0.5}) {
        const Fit expected = fitted(with_theta(theta));
        FitHooks on_note;
        on_note.on_note = [&](FitNote) { fail(); };
        EXPECT_THROW(fitted(with_theta(theta), on_note), std::range_error);
        FitHooks on_similarities;
        on_similarities.on_similarities = [&](const std::string&) { fail(); };
        EXPECT_THROW(fitted(with_theta(theta), on_similarities), std::range_error);
        FitHooks on_iteration;
        on_iteration.on_iteration = [&](const FitState& state) {
            if (state.reached.iteration == 3) {
                fail();
            }
            return true;
        };
        EXPECT_THROW(fitted(with_theta(theta), on_iteration), std::range_error);
        // The next one is as if nothing had happened.
        EXPECT_EQ(fitted(with_theta(theta)).embedding, expected.embedding);
    }
}

/// Sparse similarities as those of Barnes-Hut, and the repulsion of all pairs.
std::unique_ptr<Objective> make_all_pairs(const MethodInput& input) {
    const std::size_t N = input.X.rows;
    const double perplexity = input.options.perplexity;
    const SparseMatrix conditional = neighbour_affinities(input.X.values,
                                                          N,
                                                          input.X.columns,
                                                          perplexity,
                                                          neighbour_count(perplexity, N),
                                                          input.neighbourHooks());
    SparseMatrix P = symmetrized(conditional.view(), N);
    divide_by_sum(P.val_P.get(), P.row_P[N]);
    const auto dims = static_cast<std::size_t>(input.options.out_dims);
    return std::make_unique<SparseObjective>(
        SlicedAttraction(SlicedMatrix(std::move(P), N, dims), dims, platform_elementary().log),
        SparseForces(N, dims, std::make_unique<test::AllPairsRepulsion>(N, dims)));
}

/// A method as docs/architecture.md says to add one, but for its row in the list.
constexpr Method kAllPairs{
    "all pairs",
    [](const FitOptions& /*options*/) { return std::string("t-SNE with all pairs"); },
    &make_all_pairs,
    [](const RunSize& /*size*/) { return MethodMemory(); },
    [](const FitOptions& /*options*/) { return std::optional<LighterFit>(); },
    true};

TEST(FitByAnotherMethod, TakesItsObjectiveAndItsNeighbours) {
    FitOptions options = kOptions;
    FitHooks hooks;
    hooks.wants_neighbours = true;
    std::vector<double> X = input();
    std::vector<double> Y(kRows * 2, -7.0);
    const FitReport report = fit_into({Y.data(), kRows, 2}, matrix(X), options, hooks, kAllPairs);
    expect_nearest(report.neighbours, X);
    // Barnes-Hut with the repulsion of all pairs: no cell of the tree counts as one point.
    options.theta = 1e-12;
    const Fit exact_tree = fitted(options);
    ASSERT_EQ(report.costs.size(), exact_tree.report.costs.size());
    EXPECT_NEAR(report.final_cost, exact_tree.report.final_cost, 1e-8);
    for (std::size_t i = 0; i < Y.size(); ++i) {
        EXPECT_NEAR(Y[i], exact_tree.embedding[i], 1e-7);
    }
    // It is not the tree after all.
    EXPECT_NE(Y, fitted(kOptions).embedding);
}

TEST(FitByAnotherMethod, IsTheSameForAnyNumberOfThreadsAndGoesOnFromAState) {
    const auto embed = [](const FitHooks& hooks) {
        std::vector<double> X = input();
        std::vector<double> Y(kRows * 2);
        fit_into({Y.data(), kRows, 2}, matrix(X), kOptions, hooks, kAllPairs);
        return Y;
    };
    std::optional<KeptState> kept;
    FitHooks keeping;
    keeping.on_iteration = [&kept](const FitState& state) {
        if (state.reached.iteration == 15) {
            kept.emplace(state);
        }
        return true;
    };
    const std::vector<double> expected = embed(keeping);
    const FitState state = kept.value().view();
    FitHooks resuming;
    resuming.resumed_state = &state;
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        EXPECT_EQ(embed({}), expected);
        EXPECT_EQ(embed(resuming), expected);
    }
}

/// Every fifth embedding of a fit with the repulsion of all pairs.
std::vector<std::vector<double>> embeddings_on_the_way(const FitOptions& options) {
    std::vector<std::vector<double>> embeddings;
    FitHooks hooks;
    hooks.on_iteration = [&embeddings](const FitState& state) {
        if (state.reached.iteration % 5 == 0) {
            embeddings.emplace_back(state.embedding.begin(), state.embedding.end());
        }
        return true;
    };
    std::vector<double> X = input();
    std::vector<double> Y(kRows * 2);
    fit_into({Y.data(), kRows, 2}, matrix(X), options, hooks, kAllPairs);
    return embeddings;
}

struct Repulsed {
    std::vector<double> forces;
    double z;
};

Repulsed repulsed_by(Repulsion& repulsion, const std::vector<double>& Y) {
    std::vector<double> forces(Y.size());
    std::vector<double> z_terms(Y.size() / 2);
    repulsion.prepare(Y.data());
    repulsion.finishPreparation();
    repulsion.compute({0, z_terms.size()}, forces.data(), z_terms.data());
    return {forces, std::accumulate(z_terms.begin(), z_terms.end(), 0.0)};
}

/// Root mean square of what differs, relative to that of the latter.
double relative_error(const std::vector<double>& actual, const std::vector<double>& exact) {
    double errors = 0.0;
    double squares = 0.0;
    for (std::size_t i = 0; i < exact.size(); ++i) {
        errors += std::pow(actual[i] - exact[i], 2);
        squares += std::pow(exact[i], 2);
    }
    return std::sqrt(errors / squares);
}

TEST(FitByAMesh, HasTheCostAndTheForcesOfAllPairsOnEveryMapOnTheWay) {
    FitOptions options = kOptions;
    options.method = MethodKind::Mesh;
    std::vector<double> X = input();
    const MethodInput of_rows{matrix(X), options, {}};
    const std::unique_ptr<Objective> by_mesh = method_of(options).make(of_rows);
    const std::unique_ptr<Objective> by_pairs = make_all_pairs(of_rows);
    for (const double rate : {5.0, 50.0, 200.0}) {
        FitOptions on_the_way = kOptions;
        on_the_way.max_iter = 100;
        on_the_way.learning_rate = rate;
        for (const std::vector<double>& Y : embeddings_on_the_way(on_the_way)) {
            MeshRepulsion mesh(kRows);
            test::AllPairsRepulsion pairs(kRows, 2);
            const Repulsed actual = repulsed_by(mesh, Y);
            const Repulsed exact = repulsed_by(pairs, Y);
            EXPECT_NEAR(by_mesh->cost(Y.data()), by_pairs->cost(Y.data()), 1e-4);
            EXPECT_LT(relative_error(actual.forces, exact.forces), 0.005);
        }
    }
}

TEST(FitByAMesh, ComesToTheCostOfAllPairsWhereStepsAreSmall) {
    // Early exaggeration ends soon, and steps are small: else fits of so few rows with all pairs
    // that start within 0.01 % of one another end with costs 0.02 apart.
    FitOptions options = kOptions;
    options.learning_rate = 5.0;
    options.max_iter = 1000;
    std::vector<double> grouped = input();
    for (std::size_t n = 0; n < kRows; ++n) {
        grouped[n * kColumns + n % 3] += 12.0;
    }
    for (const std::vector<double>& rows : {input(), grouped}) {
        std::vector<double> X = rows;
        std::vector<double> Y(kRows * 2);
        options.method = MethodKind::Auto;
        const FitReport exact = fit_into({Y.data(), kRows, 2}, matrix(X), options, {}, kAllPairs);
        X = rows;
        options.method = MethodKind::Mesh;
        const FitReport actual = fit_into({Y.data(), kRows, 2}, matrix(X), options);
        EXPECT_NEAR(actual.final_cost, exact.final_cost, 0.01);
    }
}

TEST(FitByAMesh, GoesOnFromAState) {
    FitOptions options = kOptions;
    options.method = MethodKind::Mesh;
    std::optional<KeptState> kept;
    FitHooks keeping;
    keeping.on_iteration = [&kept](const FitState& state) {
        if (state.reached.iteration == 15) {
            kept.emplace(state);
        }
        return true;
    };
    const Fit expected = fitted(options, keeping);
    const FitState state = kept.value().view();
    FitHooks resuming;
    resuming.resumed_state = &state;
    EXPECT_EQ(fitted(options, resuming).embedding, expected.embedding);
}

TEST(FitByAMesh, IsRefusedWhereTheMapGrowsWithoutBound) {
    // Of fewer rows all pairs are taken.
    constexpr std::size_t kMany = 10'000;
    std::vector<double> X = test::random_values(3 * kMany, 91);
    FitOptions options = kOptions;
    options.method = MethodKind::Mesh;
    options.learning_rate = 1e9;
    EXPECT_NE(test::refusal_of([&] {
                  fit({X.data(), kMany, 3}, options);
              }).find("barnes-hut"),
              std::string::npos);
}

TEST(Fit, RefusesToGoOnFromAStateOfAnotherShape) {
    std::vector<double> values = test::random_values(60, 91);
    const std::vector<double> three(3, 1.0);
    FitState state;
    state.embedding = three;
    state.velocity = three;
    state.gains = three;
    FitHooks hooks;
    hooks.resumed_state = &state;
    EXPECT_THROW(fit({values.data(), 20, 3}, {.perplexity = 3.0, .max_iter = 2}, hooks),
                 std::invalid_argument);
}

}  // namespace
}  // namespace ovik
