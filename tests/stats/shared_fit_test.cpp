#include "stats/shared_fit.h"

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <limits>
#include <omp.h>
#include <optional>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "stats/cached_neighbours.h"
#include "stats/fit.h"
#include "stats/preset.h"
#include "util/input_error.h"

#include "tests/support/random_points.h"
#include "tests/support/rank_threads.h"
#include "tests/support/refusal.h"

namespace ovik {
namespace {

/// Three windows of rows, the last of them not full.
constexpr std::size_t kRows = 8500;
constexpr std::size_t kColumns = 3;

FitOptions mesh_options(int max_iter) {
    FitOptions options;
    options.method = MethodKind::Mesh;
    options.perplexity = 5.0;
    options.max_iter = max_iter;
    options.stop_lying_iter = 3;
    options.mom_switch_iter = 5;
    return options;
}

std::vector<double> some_rows(std::size_t rows = kRows) {
    std::vector<double> values = test::random_values(rows * kColumns, 11);
    for (std::size_t n = 0; n < rows; ++n) {
        // Some groups, so that a map has something to show.
        values[n * kColumns] += static_cast<double>(n % 5) * 6.0;
    }
    return values;
}

/// Fits in several ranks, as the first of them does it.
Fit fit_by_ranks(std::size_t count,
                 std::vector<double> values,
                 const FitOptions& options,
                 FitHooks hooks = {}) {
    Fit result;
    const std::size_t rows = values.size() / kColumns;
    test::run_ranks(count, [&](Ranks& ranks) {
        if (!ranks.isFirst()) {
            serve_fits(ranks);
            return;
        }
        hooks.ranks = &ranks;
        result = fit({values.data(), rows, kColumns}, options, hooks);
        end_service(ranks);
    });
    return result;
}

Fit fit_by_one(std::vector<double> values, const FitOptions& options, const FitHooks& hooks = {}) {
    return fit({values.data(), values.size() / kColumns, kColumns}, options, hooks);
}

/// Holds the fits of several ranks to that of a process by itself.
void expect_the_same(const std::vector<double>& values,
                     const FitOptions& options,
                     const FitHooks& hooks = {},
                     std::initializer_list<std::size_t> counts = {1, 2, 3, 4, 7}) {
    const Fit expected = fit_by_one(values, options, hooks);
    for (const std::size_t count : counts) {
        const Fit fitted = fit_by_ranks(count, values, options, hooks);
        EXPECT_EQ(fitted.embedding, expected.embedding) << count << " ranks";
        EXPECT_EQ(fitted.report.costs, expected.report.costs) << count << " ranks";
        EXPECT_EQ(fitted.report.final_cost, expected.report.final_cost) << count << " ranks";
        EXPECT_EQ(fitted.report.neighbours.neighbours, expected.report.neighbours.neighbours);
        EXPECT_EQ(fitted.report.neighbours.distances, expected.report.neighbours.distances);
        EXPECT_EQ(fitted.report.row_costs, expected.report.row_costs);
        EXPECT_EQ(fitted.report.row_misfits, expected.report.row_misfits);
    }
}

TEST(SharedFit, IsThatOfOneProcess) {
    FitHooks hooks;
    hooks.wants_neighbours = true;
    hooks.wants_row_costs = true;
    expect_the_same(some_rows(), mesh_options(12), hooks);
}

TEST(SharedFit, IsTheSameWhereExaggerationLasts) {
    FitOptions options = mesh_options(4);
    options.stop_lying_iter = 250;
    expect_the_same(some_rows(), options, {}, {3});
}

TEST(SharedFit, IsTheSameByTheRefinedPreset) {
    FitOptions options = refined_options(kRows);
    options.method = MethodKind::Mesh;
    options.perplexity = 6.0;
    options.max_iter = 10;
    expect_the_same(some_rows(), options, {}, {2, 3});
}

TEST(SharedFit, IsTheSameByUniformAffinities) {
    FitOptions options = mesh_options(6);
    options.affinity = AffinityKind::Uniform;
    options.neighbours = 12;
    FitHooks hooks;
    hooks.wants_row_costs = true;
    expect_the_same(some_rows(), options, hooks, {2, 3});
}

TEST(SharedFit, IsTheSameBySeveralPerplexities) {
    FitOptions options = mesh_options(4);
    options.multiscale = {3.0, 6.0};
    expect_the_same(some_rows(), options, {}, {3});
}

TEST(SharedFit, IsTheSameFromTheMapOfASample) {
    FitOptions options = mesh_options(6);
    options.start = StartKind::Sample;
    expect_the_same(some_rows(), options, {}, {2, 3, 4});
}

TEST(SharedFit, IsTheSameByAnApproximateSearch) {
    FitOptions options = mesh_options(4);
    options.neighbour_search = NeighbourSearchKind::Approximate;
    expect_the_same(some_rows(5000), options, {}, {2});
}

TEST(SharedFit, IsTheSameWithPrincipalComponents) {
    FitOptions options = mesh_options(4);
    options.pca = 2;
    options.start = StartKind::Pca;
    expect_the_same(some_rows(), options, {}, {3});
}

TEST(SharedFit, IsTheSameFromGivenPlaces) {
    std::vector<double> places = test::random_values(2 * kRows, 3);
    // Some get theirs from their neighbours.
    std::fill_n(places.begin() + 400, 20, std::numeric_limits<double>::quiet_NaN());
    FitOptions options = mesh_options(4);
    options.start = StartKind::Given;
    FitHooks hooks;
    hooks.start = {places.data(), kRows, 2};
    expect_the_same(some_rows(), options, hooks, {3});
}

// Nothing but the draws of the tree tells rows apart that lie on a lattice or on one another, and
// some have themselves among their neighbours.
TEST(SharedFit, IsTheSameWhereDistancesAreEqual) {
    std::vector<double> values = some_rows();
    for (double& value : values) {
        value = std::floor(value);
    }
    std::copy_n(values.begin(), 200 * kColumns, values.begin() + 5000 * kColumns);
    FitHooks hooks;
    hooks.wants_neighbours = true;
    expect_the_same(values, mesh_options(5), hooks, {2, 3});
    FitOptions uniform = mesh_options(5);
    uniform.affinity = AffinityKind::Uniform;
    expect_the_same(values, uniform, hooks, {3});
}

TEST(SharedFit, IsTheSameOfFewRows) {
    for (const std::size_t rows : {std::size_t{2}, std::size_t{5}, std::size_t{70}}) {
        FitOptions options = mesh_options(8);
        options.perplexity = 1.0;
        FitHooks hooks;
        hooks.wants_neighbours = true;
        expect_the_same(some_rows(rows), options, hooks, {2, 7});
    }
}

/// A state that does not change with the next iteration.
struct KeptState {
    FitState state;
    std::vector<double> embedding;
    std::vector<double> velocity;
    std::vector<double> gains;

    explicit KeptState(const FitState& of)
        : state(of),
          embedding(of.embedding.begin(), of.embedding.end()),
          velocity(of.velocity.begin(), of.velocity.end()),
          gains(of.gains.begin(), of.gains.end()) {
        state.embedding = embedding;
        state.velocity = velocity;
        state.gains = gains;
    }
};

TEST(SharedFit, GoesOnFromAStateByAnotherNumberOfRanks) {
    const std::vector<double> values = some_rows();
    const Fit whole = fit_by_one(values, mesh_options(12));
    std::optional<KeptState> kept;
    FitHooks stopping;
    stopping.on_iteration = [&](const FitState& state) {
        kept.emplace(state);
        return state.reached.iteration < 6;
    };
    const Fit begun = fit_by_ranks(3, values, mesh_options(12), stopping);
    EXPECT_EQ(begun.report.reached.iteration, 6);
    FitHooks resuming;
    resuming.resumed_state = &kept->state;
    for (const std::size_t count : {std::size_t{1}, std::size_t{2}, std::size_t{4}}) {
        const Fit resumed = fit_by_ranks(count, values, mesh_options(12), resuming);
        EXPECT_EQ(resumed.embedding, whole.embedding);
        EXPECT_EQ(resumed.report.final_cost, whole.report.final_cost);
    }
}

TEST(SharedFit, LeavesTheOthersReadyForAnotherWhereAHookFails) {
    const std::vector<double> values = some_rows();
    const Fit expected = fit_by_one(values, mesh_options(3));
    test::run_ranks(3, [&](Ranks& ranks) {
        if (!ranks.isFirst()) {
            serve_fits(ranks);
            return;
        }
        FitHooks failing;
        failing.ranks = &ranks;
        failing.on_iteration = [](const FitState&) -> bool { throw std::domain_error("enough"); };
        std::vector<double> rows = values;
        EXPECT_THROW(fit({rows.data(), kRows, kColumns}, mesh_options(3), failing),
                     std::domain_error);
        EXPECT_FALSE(ranks.hasGivenUp());
        FitHooks hooks;
        hooks.ranks = &ranks;
        rows = values;
        EXPECT_EQ(fit({rows.data(), kRows, kColumns}, mesh_options(3), hooks).embedding,
                  expected.embedding);
        end_service(ranks);
    });
}

TEST(SharedFit, LeavesTheOthersReadyWhereAllRefuseTheMap) {
    // Of fewer rows all pairs are taken, however wide the map.
    constexpr std::size_t kMany = 10'000;
    FitOptions options = mesh_options(40);
    options.learning_rate = 1e9;
    test::run_ranks(3, [&](Ranks& ranks) {
        if (!ranks.isFirst()) {
            serve_fits(ranks);
            return;
        }
        FitHooks hooks;
        hooks.ranks = &ranks;
        std::vector<double> rows = some_rows(kMany);
        EXPECT_THROW(fit({rows.data(), kMany, kColumns}, options, hooks), InputError);
        EXPECT_FALSE(ranks.hasGivenUp());
        end_service(ranks);
    });
}

TEST(SharedFit, HasGivenUpWhereTheFirstFailsAmidTheWork) {
    const auto run = [](Ranks& ranks) {
        if (!ranks.isFirst()) {
            serve_fits(ranks);
            return;
        }
        FitHooks hooks;
        hooks.ranks = &ranks;
        hooks.on_stage = [](Stage stage, std::uint64_t, std::uint64_t) {
            if (stage == Stage::Neighbours) {
                throw std::domain_error("enough");
            }
        };
        std::vector<double> rows = some_rows();
        EXPECT_THROW(fit({rows.data(), kRows, kColumns}, mesh_options(3), hooks),
                     std::domain_error);
        EXPECT_TRUE(ranks.hasGivenUp());
    };
    EXPECT_THROW(test::run_ranks(2, run), std::runtime_error);
}

TEST(SharedFit, IsRefusedOfWhatRanksCannotShare) {
    test::run_ranks(2, [](Ranks& ranks) {
        if (!ranks.isFirst()) {
            serve_fits(ranks);
            return;
        }
        FitHooks hooks;
        hooks.ranks = &ranks;
        std::vector<double> rows = some_rows(100);
        FitOptions options = mesh_options(3);
        options.method = MethodKind::BarnesHut;
        EXPECT_THROW(fit({rows.data(), 100, kColumns}, options, hooks), std::invalid_argument);
        CachedNeighbours cached(15);
        hooks.cached_neighbours = &cached;
        EXPECT_THROW(fit({rows.data(), 100, kColumns}, mesh_options(3), hooks),
                     std::invalid_argument);
        end_service(ranks);
    });
}

TEST(SharedFit, IsRefusedOfMachinesThatDoNotComputeTheSame) {
    test::run_ranks(3, [](Ranks& ranks) {
        if (!ranks.isFirst()) {
            // One of them rounds in another way.
            std::fesetround(ranks.rank() == 2 ? FE_UPWARD : FE_TONEAREST);
            serve_fits(ranks);
            return;
        }
        FitHooks hooks;
        hooks.ranks = &ranks;
        std::vector<double> rows = some_rows(100);
        EXPECT_NE(test::refusal_of([&] {
                      fit({rows.data(), 100, kColumns}, mesh_options(3), hooks);
                  }).find("do not compute the same"),
                  std::string::npos);
        EXPECT_FALSE(ranks.hasGivenUp());
        end_service(ranks);
    });
}

TEST(SharedFit, TellsTheOthersTheirNumberOfThreads) {
    test::run_ranks(3, [](Ranks& ranks) {
        if (ranks.isFirst()) {
            tell_thread_count(ranks, 3);
            end_service(ranks);
        } else {
            serve_fits(ranks);
            EXPECT_EQ(omp_get_max_threads(), 3);
        }
    });
}

}  // namespace
}  // namespace ovik
