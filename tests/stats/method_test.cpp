#include "stats/method.h"

#include <cmath>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <climits>
#include <gtest/gtest.h>

#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"
#include "tests/support/refusal.h"

namespace ovik {
namespace {

FitOptions with_theta(double theta) {
    return {.theta = theta};
}

TEST(MethodOf, IsTheExactOneForAThetaOfExactlyZero) {
    for (const double theta : {0.0, -0.0}) {
        EXPECT_EQ(method_of(with_theta(theta)).name, "exact");
    }
    for (const double theta :
         {0.5, 1e9, std::numeric_limits<double>::denorm_min(), -0.5, std::nan("")}) {
        EXPECT_EQ(method_of(with_theta(theta)).name, "Barnes-Hut") << theta;
    }
}

TEST(MethodOf, IsTheOneOfTheNameWhateverTheta) {
    for (const double theta : {0.0, 0.5}) {
        EXPECT_EQ(method_of({.theta = theta, .method = MethodKind::Exact}).name, "exact");
        EXPECT_EQ(method_of({.theta = theta, .method = MethodKind::BarnesHut}).name, "Barnes-Hut");
        EXPECT_EQ(method_of({.theta = theta, .method = MethodKind::Mesh}).name, "particle-mesh");
    }
}

TEST(Methods, AreAllThatOptionsStandFor) {
    std::set<std::string_view> names;
    for (const Method& method : methods()) {
        EXPECT_TRUE(names.insert(method.name).second) << method.name;
    }
    for (const double theta : {0.0, 0.5}) {
        const Method& method = method_of(with_theta(theta));
        EXPECT_GE(&method, methods().data());
        EXPECT_LT(&method, methods().data() + methods().size());
    }
}

TEST(Methods, HaveTitlesThatTellTheirAccuracy) {
    EXPECT_EQ(method_of(with_theta(0.0)).title(with_theta(0.0)), "exact t-SNE");
    EXPECT_EQ(method_of(with_theta(0.25)).title(with_theta(0.25)), "Barnes-Hut t-SNE, theta 0.25");
    const FitOptions mesh{.method = MethodKind::Mesh};
    EXPECT_EQ(method_of(mesh).title(mesh), "particle-mesh t-SNE");
}

TEST(Methods, RefuseAMeshUnderMapsOfOtherDimensions) {
    const std::vector<double> X = test::random_values(120, 413);
    const FitOptions options{.perplexity = 5.0, .method = MethodKind::Mesh, .out_dims = 3};
    EXPECT_EQ(test::refusal_of([&] {
                  method_of(options).make({{X.data(), 40, 3}, options, {}});
              }),
              "the mesh lies under maps in two dimensions, and not in 3\n"
              "Take two dimensions, or the method barnes-hut.");
}

TEST(Methods, MakeAnObjectiveOfTheInputAndTheNeighboursAsFarAsTheySearch) {
    constexpr std::size_t kRows = 60;
    const std::vector<double> X = test::random_values(kRows * 3, 411);
    const std::vector<double> Y = test::random_values(kRows * 2, 412);
    // All others are neighbours, so that both methods have the same similarities.
    FitOptions options{.perplexity = 20.0};
    std::vector<double> P = plain::conditional_similarities(X, kRows, 3, options.perplexity);
    plain::symmetrise_and_normalise(P, kRows);
    const double cost = plain::cost(P, Y, kRows, 2);
    for (const double theta : {0.0, 1e-9}) {
        options.theta = theta;
        const Method& method = method_of(options);
        NeighbourGraph graph;
        const std::unique_ptr<Objective> objective =
            method.make({{X.data(), kRows, 3}, options, {}, nullptr, &graph});
        EXPECT_NEAR(objective->cost(Y.data()), cost, 1e-9);
        EXPECT_EQ(graph.rows, method.has_neighbours ? kRows : 0U);
        EXPECT_EQ(graph.neighbour_count, method.has_neighbours ? kRows - 1 : 0U);
    }
    options.method = MethodKind::Mesh;
    NeighbourGraph graph;
    const std::unique_ptr<Objective> objective =
        method_of(options).make({{X.data(), kRows, 3}, options, {}, nullptr, &graph});
    EXPECT_NEAR(objective->cost(Y.data()), cost, 1e-6);
    EXPECT_EQ(graph.rows, kRows);
}

TEST(Methods, TellWhatMemoryTheyTakeBesideTheInput) {
    RunSize size{.rows = 1000, .columns = 20, .options = with_theta(0.0)};
    const MethodMemory exact = method_of(size.options).memory(size);
    // A copy by columns, and distances and similarities.
    EXPECT_EQ(exact.similarities, 8.0 * 1000 * 20 + 16.0 * 1000 * 1000);
    EXPECT_EQ(exact.fitting, 8.0 * 1000 * 1000);
    EXPECT_EQ(exact.shared, 0.0);
    size.options.theta = 0.5;
    const MethodMemory barnes_hut = method_of(size.options).memory(size);
    EXPECT_LT(barnes_hut.similarities, exact.similarities);
    EXPECT_LT(barnes_hut.fitting, exact.fitting);
    // The symmetric entries, tree and forces.
    EXPECT_NEAR(barnes_hut.fitting, 12.0 * 1.6 * 60000 + 191.0 * 1000 + 88.0 * 1000, 1e-6);
    EXPECT_GT(barnes_hut.shared, 16.0 * 60000);
    const FitOptions mesh{.method = MethodKind::Mesh};
    const MethodMemory of_mesh =
        method_of(mesh).memory({.rows = 1000, .columns = 20, .options = mesh});
    // Entries of 8 bytes in the place of 12: symmetric ones, and a window of conditional ones.
    EXPECT_NEAR(barnes_hut.similarities - of_mesh.similarities, 4.0 * (1.6 * 60000 + 60000), 1e-6);
    // The symmetric entries, forces, points in their order and those far out, and some 70,000
    // cells.
    EXPECT_NEAR(of_mesh.fitting, 8.0 * 1.6 * 60000 + 110.0 * 1000 + 45.0 * 69570.1, 10.0);
    // Neighbours that are there already are not searched for by an index of the run's own.
    size.is_shared = true;
    size.columns = 100000;
    const double of_shared = method_of(size.options).memory(size).similarities;
    size.is_shared = false;
    EXPECT_GT(method_of(size.options).memory(size).similarities, of_shared);
}

TEST(Methods, TakeNoIndexOfDistancesIntoMemory) {
    RunSize size;
    size.rows = size.columns = 5000;
    const double of_values = method_of(size.options).memory(size).similarities;
    size.options.metric = MetricKind::Precomputed;
    const double of_distances = method_of(size.options).memory(size).similarities;
    EXPECT_LT(of_distances, 0.5 * of_values);
    // The entries, and the lists of neighbours twice.
    EXPECT_GE(of_distances, (12.0 + 32.0) * 5000.0 * 60.0);
}

TEST(Methods, TakeNoMemoryForNoRows) {
    const RunSize size;
    for (const Method& method : methods()) {
        const MethodMemory memory = method.memory(size);
        EXPECT_EQ(memory.similarities, 0.0) << method.name;
        EXPECT_EQ(memory.fitting, 0.0) << method.name;
        EXPECT_EQ(memory.shared, 0.0) << method.name;
    }
}

TEST(Methods, OfferALighterFitIfThereIsOne) {
    const FitOptions exact{.perplexity = 50.0, .theta = 0.0, .out_dims = 3};
    const auto lighter_method = method_of(exact).lighter(exact);
    ASSERT_TRUE(lighter_method);
    EXPECT_EQ(lighter_method->what, "The Barnes-Hut method (--theta 0.5)");
    EXPECT_EQ(lighter_method->options.theta, 0.5);
    EXPECT_EQ(lighter_method->options.perplexity, 50.0);
    EXPECT_EQ(lighter_method->options.out_dims, 3);
    const FitOptions named{.method = MethodKind::Exact};
    const auto lighter_name = method_of(named).lighter(named);
    ASSERT_TRUE(lighter_name);
    EXPECT_EQ(lighter_name->what, "The Barnes-Hut method (--method barnes-hut)");
    EXPECT_EQ(method_of(lighter_name->options).name, "Barnes-Hut");
    const FitOptions wide{.perplexity = 30.5, .theta = 0.7, .out_dims = 3};
    const auto lighter_perplexity = method_of(wide).lighter(wide);
    ASSERT_TRUE(lighter_perplexity);
    EXPECT_EQ(lighter_perplexity->what, "A perplexity of 30");
    EXPECT_EQ(lighter_perplexity->options.perplexity, 30.0);
    EXPECT_EQ(lighter_perplexity->options.theta, 0.7);
    EXPECT_EQ(lighter_perplexity->options.out_dims, 3);
    const FitOptions light{.perplexity = 30.0};
    EXPECT_FALSE(method_of(light).lighter(light));
}

TEST(NeighbourCount, IsThreeTimesThePerplexityCut) {
    EXPECT_EQ(neighbour_count(5.0, 1000), 15);
    EXPECT_EQ(neighbour_count(5.6, 1000), 16);
    EXPECT_EQ(neighbour_count(0.3, 1000), 0);
    EXPECT_EQ(neighbour_count(-2.0, 1000), -6);
}

TEST(NeighbourCount, IsNotAboveTheRowsThatThereAre) {
    EXPECT_EQ(neighbour_count(5.0, 16), 15);
    EXPECT_EQ(neighbour_count(5.0, 15), 14);
    EXPECT_EQ(neighbour_count(5.0, 1), 0);
    EXPECT_EQ(neighbour_count(5.0, 0), 0);
}

TEST(NeighbourCount, IsANumberForAnyPerplexity) {
    EXPECT_EQ(neighbour_count(1e300, 10), 9);
    EXPECT_EQ(neighbour_count(std::nan(""), 10), 9);
    EXPECT_EQ(neighbour_count(std::numeric_limits<double>::infinity(), 10), 9);
    EXPECT_EQ(neighbour_count(-1e300, 10), -INT_MAX);
}

}  // namespace
}  // namespace ovik
