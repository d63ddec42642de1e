#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/cached_neighbours.h"
#include "stats/engine.h"
#include "stats/fit.h"
#include "stats/method.h"
#include "stats/sample_start.h"

#include "tests/plain/plain_sptree.h"
#include "tests/plain/plain_start.h"
#include "tests/plain/plain_tsne.h"
#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/threads.h"

/// Runs with starts other than the random one, and of principal components in the place of the
/// columns, against the plain program.

namespace ovik {
namespace {

using testing::HasSubstr;

constexpr std::size_t kRows = 100;
constexpr double kPerplexity = 10.0;
constexpr double kTheta = 0.5;

class StartRun : public testing::Test {
  protected:
    StartRun() { plain::normalise_input(points_, kRows, input_.columns); }

    static FitOptions optionsOf(StartKind start, double theta = kTheta) {
        return {.perplexity = kPerplexity,
                .theta = theta,
                .max_iter = 40,
                .stop_lying_iter = 15,
                .mom_switch_iter = 20,
                .start = start};
    }

    /// The same embedding for several numbers of threads.
    [[nodiscard]] std::vector<double> run(const FitOptions& options,
                                          const std::vector<double>& places = {}) const {
        Engine engine(options);
        engine.setInput(input_.values, input_.columns);
        const auto dims = static_cast<std::size_t>(options.out_dims);
        FitHooks hooks;
        hooks.start = {places.data(), places.size() / dims, dims};
        std::optional<std::vector<double>> Y;
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            std::vector<double> with_these = engine.run(hooks).takeValues();
            EXPECT_TRUE(!Y || *Y == with_these) << threads << " threads";
            Y = std::move(with_these);
        }
        return *Y;
    }

    /// What the plain program makes of a start.
    [[nodiscard]] std::vector<double> plainRun(const std::vector<double>& start,
                                               double theta) const {
        plain::Schedule schedule{40, 15, 20};
        schedule.start = &start;
        return theta == 0.0
                   ? plain::embed_exactly(input_, 2, kPerplexity, schedule, nullptr)
                   : plain::embed_with_tree(input_, 2, kPerplexity, theta, schedule, nullptr);
    }

    plain::Matrix input_ =
        plain::read_tab_separated(OVIK_DATA_DIR "/brauer2008_chemostat.tsv", kRows);
    /// Centred and scaled.
    std::vector<double> points_ = input_.values;
};

TEST_F(StartRun, AlongComponentsEqualsThePlainProgram) {
    const std::vector<double> start = plain::component_start(
        plain::principal_components(points_, kRows, input_.columns, 2), 2, kRows, 2, 0.0001);
    for (const double theta : {0.0, kTheta}) {
        EXPECT_EQ(run(optionsOf(StartKind::Pca, theta)), plainRun(start, theta)) << theta;
    }
}

TEST_F(StartRun, AtPlacesEqualsThePlainProgram) {
    std::vector<double> places = test::random_values(kRows * 2, 3, 20.0);
    for (const double theta : {0.0, kTheta}) {
        EXPECT_EQ(run(optionsOf(StartKind::Given, theta), places), plainRun(places, theta));
    }
    for (std::size_t n = 1; n < kRows; n += 4) {
        places[2 * n] = places[2 * n + 1] = std::nan("");
    }
    const std::vector<double> start =
        plain::start_at_places(points_, kRows, input_.columns, places, 2);
    for (const double theta : {0.0, kTheta}) {
        EXPECT_EQ(run(optionsOf(StartKind::Given, theta), places), plainRun(start, theta)) << theta;
    }
}

/// Rows enough for a sample.
class SampledStartRun : public StartRun {
  protected:
    static constexpr std::size_t kLarge = 2000;
    static constexpr double kSmallPerplexity = 4.0;

    /// Measured values, which have two decimals, a little shaken: rows at exactly the same distance
    /// are neighbours in the order of their numbers in the plain program, and in the engine in that
    /// in which its search came upon them.
    SampledStartRun() {
        input_ = plain::read_tab_separated(OVIK_DATA_DIR "/brauer2008_chemostat.tsv", kLarge);
        const std::vector<double> shaken = test::random_values(input_.values.size(), 31);
        for (std::size_t i = 0; i < shaken.size(); ++i) {
            input_.values[i] += 1e-7 * shaken[i];
        }
        points_ = input_.values;
        plain::normalise_input(points_, kLarge, input_.columns);
    }

    /// By how much a neighbour is farther than the one before it, at least: among the nearest of
    /// all rows, as many as are asked for and one more.
    [[nodiscard]] static double leastGap(const std::vector<double>& points,
                                         std::size_t columns,
                                         std::size_t neighbours) {
        double least = 1.0;
        for (std::size_t row = 0; row < points.size() / columns; ++row) {
            const std::vector<NearRow> nearest =
                test::nearest_of(points, columns, row, neighbours + 1);
            for (std::size_t i = 1; i < nearest.size(); ++i) {
                least = std::min(least, nearest[i].distance - nearest[i - 1].distance);
            }
        }
        return least;
    }

    static FitOptions sampledOptions(double theta) {
        FitOptions options = optionsOf(StartKind::Sample, theta);
        options.perplexity = kSmallPerplexity;
        options.max_iter = 8;
        options.stop_lying_iter = 5;
        options.mom_switch_iter = 4;
        options.seed = 5;
        return options;
    }

    [[nodiscard]] std::vector<double> plainMap(const plain::Matrix& matrix,
                                               const std::vector<double>& start,
                                               double theta) const {
        plain::Schedule schedule{8, 5, 4, 5};
        schedule.start = &start;
        return theta == 0.0
                   ? plain::embed_exactly(matrix, 2, kSmallPerplexity, schedule, nullptr)
                   : plain::embed_with_tree(matrix, 2, kSmallPerplexity, theta, schedule, nullptr);
    }

    [[nodiscard]] plain::Matrix sampleOf(const std::vector<std::size_t>& rows) const {
        const std::size_t columns = input_.columns;
        plain::Matrix sampled{{}, rows.size(), columns, {}};
        for (const std::size_t row : rows) {
            const auto begin = points_.begin() + static_cast<std::ptrdiff_t>(row * columns);
            sampled.values.insert(
                sampled.values.end(), begin, begin + static_cast<std::ptrdiff_t>(columns));
        }
        return sampled;
    }

    /// @param neighbours  among which rows are placed
    [[nodiscard]] std::vector<double> plainStart(double theta, std::size_t neighbours) const {
        const std::size_t columns = input_.columns;
        const std::vector<std::size_t> sample = plain::sampled_rows(kLarge, 5);
        const plain::Matrix sampled = sampleOf(sample);
        std::vector<double> normalised = sampled.values;
        plain::normalise_input(normalised, sample.size(), columns);
        const std::vector<double> map =
            plainMap(sampled,
                     plain::component_start(
                         plain::principal_components(normalised, sample.size(), columns, 2),
                         2,
                         sample.size(),
                         2,
                         0.0001),
                     theta);
        std::vector<double> places(kLarge * 2, std::nan(""));
        for (std::size_t i = 0; i < sample.size(); ++i) {
            places[2 * sample[i]] = map[2 * i];
            places[2 * sample[i] + 1] = map[2 * i + 1];
        }
        return plain::with_spread(
            plain::placed_among_neighbours(points_, kLarge, columns, places, 2, neighbours),
            2,
            0.0001);
    }
};

TEST_F(SampledStartRun, EqualsThePlainProgram) {
    // Far above what is left to rounding.
    ASSERT_GT(leastGap(points_, input_.columns, 25), 1e-12);
    plain::Matrix sampled = sampleOf(plain::sampled_rows(kLarge, 5));
    plain::normalise_input(sampled.values, sampled.rows, sampled.columns);
    ASSERT_GT(leastGap(sampled.values, sampled.columns, 12), 1e-12);
    EXPECT_EQ(run(sampledOptions(kTheta)), plainMap(input_, plainStart(kTheta, 12), kTheta));
    EXPECT_EQ(run(sampledOptions(0.0)), plainMap(input_, plainStart(0.0, 25), 0.0));
}

/// What the method of the last fit by `noting` was asked to keep.
struct Asked {
    bool graph = false;
    bool distances = false;
};

Asked& asked() {
    static Asked asked;
    return asked;
}

/// The method of some options, which notes what it is asked to keep.
Method noting(const FitOptions& options) {
    Method method = method_of(options);
    method.make = [](const MethodInput& input) {
        asked() = {input.graph != nullptr, input.wants_distances};
        return method_of(input.options).make(input);
    };
    return method;
}

TEST_F(SampledStartRun, KeepsNoDistancesAndNoNeighboursWhereAFitIsResumed) {
    const FitOptions options = sampledOptions(kTheta);
    const Method method = noting(options);
    std::vector<double> Y(kLarge * 2);
    const auto report_of = [&](const FitHooks& hooks) {
        std::vector<double> X = input_.values;
        return fit_into(
            {Y.data(), kLarge, 2}, {X.data(), kLarge, input_.columns}, options, hooks, method);
    };
    report_of({});
    EXPECT_TRUE(asked().graph);
    EXPECT_FALSE(asked().distances);
    FitHooks wanting;
    wanting.wants_neighbours = true;
    const NeighbourGraph graph = report_of(wanting).neighbours;
    EXPECT_EQ(graph.distances.size(), kLarge * graph.neighbour_count);
    const std::vector<double> reached = Y;
    const std::vector<double> ones(kLarge * 2, 1.0);
    FitState state;
    state.embedding = reached;
    state.velocity = ones;
    state.gains = ones;
    state.reached.iteration = options.max_iter - 1;
    FitHooks resuming;
    resuming.resumed_state = &state;
    report_of(resuming);
    EXPECT_FALSE(asked().graph);
}

TEST_F(SampledStartRun, IsOfTheSeedAndNotLookedAtWhereAFitIsResumed) {
    const FitOptions options = sampledOptions(kTheta);
    FitOptions other = options;
    other.seed = 6;
    EXPECT_NE(run(options), run(other));
    std::vector<double> X = input_.values;
    std::vector<double> embedding;
    std::vector<double> velocity;
    std::vector<double> gains;
    FitState kept;
    FitHooks hooks;
    hooks.on_iteration = [&](const FitState& state) {
        if (state.reached.iteration == 3) {
            embedding.assign(state.embedding.begin(), state.embedding.end());
            velocity.assign(state.velocity.begin(), state.velocity.end());
            gains.assign(state.gains.begin(), state.gains.end());
            kept = state;
        }
        return true;
    };
    const Fit whole = fit({X.data(), kLarge, input_.columns}, options, hooks);
    kept.embedding = embedding;
    kept.velocity = velocity;
    kept.gains = gains;
    FitHooks resumed;
    resumed.resumed_state = &kept;
    X = input_.values;
    EXPECT_EQ(fit({X.data(), kLarge, input_.columns}, options, resumed).embedding, whole.embedding);
}

TEST_F(SampledStartRun, TellsOfTheSampleAndIsStoppedInIt) {
    FitOptions options = sampledOptions(kTheta);
    options.neighbour_search = NeighbourSearchKind::Approximate;
    std::vector<std::string> order;
    const auto note = [&order](const std::string& what) {
        if (order.empty() || order.back() != what) {
            order.push_back(what);
        }
    };
    FitHooks hooks;
    hooks.on_similarities = [&](const std::string& /*message*/) { note("similarities"); };
    hooks.on_note = [&](FitNote told) {
        if (told == FitNote::SampleBegins) {
            note("sample begins");
        }
    };
    hooks.on_stage = [&](Stage stage, std::uint64_t /*done*/, std::uint64_t /*total*/) {
        if (stage == Stage::Sample || stage == Stage::Iterations) {
            note(stage == Stage::Sample ? "sample" : "iterations");
        }
    };
    hooks.on_sample = [&](const SampleReport& sample) {
        EXPECT_EQ(sample.rows, sample_size(kLarge));
        EXPECT_TRUE(sample.recall);
        note("sample ended");
    };
    std::vector<double> X = input_.values;
    const MatrixView<double> rows{X.data(), kLarge, input_.columns};
    const FitReport report = fit(rows, options, hooks).report;
    EXPECT_EQ(order,
              (std::vector<std::string>{
                  "similarities", "sample begins", "sample", "sample ended", "iterations"}));
    ASSERT_TRUE(report.sample);
    EXPECT_GT(report.seconds.sample, 0.0);
    X = input_.values;
    int iterations = 0;
    hooks.on_sample = {};
    hooks.on_sample_iteration = [&](const FitState& /*state*/) -> bool {
        throw std::runtime_error(++iterations == 1 ? "enough" : "too late");
    };
    EXPECT_THROW(fit(rows, options, hooks), std::runtime_error);
    EXPECT_EQ(iterations, 1);
}

TEST_F(StartRun, OfComponentsInThePlaceOfColumnsEqualsThePlainProgram) {
    constexpr std::size_t kComponents = 7;
    const plain::Components components =
        plain::principal_components(points_, kRows, input_.columns, kComponents);
    const std::vector<double> along =
        plain::component_start(components, kComponents, kRows, 2, 0.0001);
    plain::Schedule schedule{40, 15, 20};
    schedule.start = &along;
    const std::vector<double> expected = plain::descend_with_tree(
        plain::joint_similarities(components.scores, kRows, kComponents, kPerplexity),
        2,
        kTheta,
        schedule,
        nullptr);
    FitOptions options = optionsOf(StartKind::Pca);
    options.pca = kComponents;
    EXPECT_EQ(run(options), expected);
    EXPECT_NE(run(optionsOf(StartKind::Pca)), expected);
}

TEST_F(StartRun, TellsWhatComponentsKeep) {
    FitOptions options = optionsOf(StartKind::Random);
    Engine engine(options);
    engine.setInput(input_.values, input_.columns);
    double told = -1.0;
    FitHooks hooks;
    hooks.on_components = [&told](double share) { told = share; };
    EXPECT_FALSE(engine.run(hooks).report().variance_kept.has_value());
    EXPECT_EQ(told, -1.0);
    engine.options.pca = 10;
    const double ten = engine.run(hooks).report().variance_kept.value_or(0.0);
    EXPECT_EQ(told, ten);
    engine.options.pca = static_cast<int>(input_.columns) - 1;
    EXPECT_GT(engine.run(hooks).report().variance_kept.value_or(0.0), ten);
    EXPECT_LT(told, 1.0);
    EXPECT_GT(ten, 0.5);
}

TEST_F(StartRun, DoesNotChangeNeighboursThatRunsShare) {
    // What is searched for with a row without a place is not kept in the report.
    std::vector<double> places = test::random_values(kRows * 2, 3);
    places[0] = places[1] = std::nan("");
    const std::vector<double> expected = run(optionsOf(StartKind::Given), places);
    CachedNeighbours shared(60);
    for (const double perplexity : {20.0, kPerplexity}) {
        FitOptions options = optionsOf(StartKind::Given);
        options.perplexity = perplexity;
        FitHooks hooks;
        hooks.start = {places.data(), kRows, 2};
        hooks.cached_neighbours = &shared;
        std::vector<double> X = input_.values;
        const Fit map = fit({X.data(), kRows, input_.columns}, options, hooks);
        EXPECT_TRUE(map.report.neighbours.neighbours.empty());
        EXPECT_EQ(map.embedding == expected, perplexity == kPerplexity);
    }
}

TEST_F(StartRun, TakesEqualRows) {
    for (std::size_t n = 0; n < 60; ++n) {
        for (std::size_t d = 0; d < input_.columns; ++d) {
            input_.values[n * input_.columns + d] = input_.values[(n % 2) * input_.columns + d];
        }
    }
    for (const double theta : {0.0, kTheta}) {
        for (const double y : run(optionsOf(StartKind::Pca, theta))) {
            ASSERT_TRUE(std::isfinite(y));
        }
    }
}

TEST_F(StartRun, RefusesAStartOfAnotherShape) {
    const std::string said =
        "the start should give a place to each of the 100 rows in 2 dimensions";
    EXPECT_THAT(test::refusal_of([&] { (void)run(optionsOf(StartKind::Given)); }), HasSubstr(said));
    EXPECT_THAT(
        test::refusal_of([&] { (void)run(optionsOf(StartKind::Given), std::vector<double>(198)); }),
        HasSubstr(said));
}

TEST_F(StartRun, RefusesRowsThatVaryAlongALine) {
    for (std::size_t n = 0; n < kRows; ++n) {
        for (std::size_t d = 0; d < input_.columns; ++d) {
            input_.values[n * input_.columns + d] = static_cast<double>(n * n % 101);
        }
    }
    EXPECT_THAT(test::refusal_of([&] { (void)run(optionsOf(StartKind::Pca)); }),
                HasSubstr("the rows vary along 1 alone"));
}

}  // namespace
}  // namespace ovik
