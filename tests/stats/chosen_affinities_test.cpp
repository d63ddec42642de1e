#include "stats/chosen_affinities.h"

#include <cmath>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "stats/fit.h"
#include "stats/method.h"

#include "tests/plain/plain_affinities.h"
#include "tests/plain/plain_sptree.h"
#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 150;
constexpr std::size_t kColumns = 5;

FitOptions uniform(int neighbours) {
    return {.affinity = AffinityKind::Uniform, .neighbours = neighbours};
}

FitOptions multiscale(NumberList perplexities) {
    return {.multiscale = perplexities};
}

/// As a fit centres and scales them.
std::vector<double> normalised(std::vector<double> X) {
    plain::normalise_input(X, kRows, kColumns);
    return X;
}

/// Holds whole runs of the tree method to the plain program, on conditional affinities.
void expect_plain_map(FitOptions options,
                      const std::vector<double>& X,
                      const plain::SparseRows& conditional) {
    options.max_iter = 60;
    options.stop_lying_iter = 20;
    options.mom_switch_iter = 30;
    srand(11);
    for (std::size_t draw = 0; draw < plain::tree_draws(kRows); ++draw) {
        std::rand();
    }
    const std::vector<double> expected = plain::descend_with_tree(
        plain::joined(conditional), 2, options.theta, {60, 20, 30}, nullptr);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        std::vector<double> values = X;
        EXPECT_EQ(fit({values.data(), kRows, kColumns}, options).embedding, expected)
            << threads << " threads";
    }
}

TEST(ChosenAffinities, OfUniformRunsGiveTheMapOfThePlainProgram) {
    const std::vector<double> X = test::random_values(kRows * kColumns, 12);
    expect_plain_map(
        uniform(15), X, plain::uniform_similarities(normalised(X), kRows, kColumns, 15));
}

TEST(ChosenAffinities, OfSeveralPerplexitiesGiveTheMapOfThePlainProgram) {
    const std::vector<double> X = test::random_values(kRows * kColumns, 13);
    expect_plain_map(multiscale({20.0, 5.0}),
                     X,
                     plain::multiscale_similarities(normalised(X), kRows, kColumns, {20.0, 5.0}));
}

/// Holds gradient and cost of the exact method to the plain program.
void expect_plain_objective(FitOptions options,
                            const std::vector<double>& X,
                            std::vector<double> P) {
    options.theta = 0.0;
    plain::symmetrise_and_normalise(P, kRows);
    const std::vector<double> Y = test::random_values(kRows * 2, 14, 5.0);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const auto objective = method_of(options).make({{X.data(), kRows, kColumns}, options});
        std::vector<double> dY(Y.size());
        EXPECT_NEAR(
            objective->costAndGradient(Y.data(), dY.data()), plain::cost(P, Y, kRows, 2), 1e-12);
        EXPECT_EQ(dY, plain::gradient(P, Y, kRows, 2)) << threads << " threads";
    }
}

TEST(ChosenAffinities, OfTheExactMethodEqualThePlainProgram) {
    const std::vector<double> X = test::random_values(kRows * kColumns, 15);
    expect_plain_objective(
        uniform(15), X, plain::dense_rows(plain::uniform_similarities(X, kRows, kColumns, 15)));
    expect_plain_objective(multiscale({5.0, 20.0}),
                           X,
                           plain::dense_multiscale_similarities(X, kRows, kColumns, {5.0, 20.0}));
}

TEST(ChosenAffinities, OfUniformRunsAreTheSameInBothMethods) {
    const std::vector<double> X = test::random_values(kRows * kColumns, 16);
    const std::vector<double> Y = test::random_values(kRows * 2, 17);
    FitOptions options = uniform(10);
    std::vector<double> costs;
    for (const double theta : {0.0, 1e-9}) {
        options.theta = theta;
        costs.push_back(
            method_of(options).make({{X.data(), kRows, kColumns}, options})->cost(Y.data()));
    }
    EXPECT_NEAR(costs[0], costs[1], 1e-9);
}

TEST(AffinityNeighbours, AreThoseOfTheOptions) {
    EXPECT_EQ(affinity_neighbours({.perplexity = 12.5}, 1000), 37);
    EXPECT_EQ(affinity_neighbours({.perplexity = 12.5}, 20), 19);
    EXPECT_EQ(affinity_neighbours(uniform(15), 1000), 15);
    EXPECT_EQ(affinity_neighbours(uniform(15), 10), 9);
    EXPECT_EQ(affinity_neighbours(uniform(15), 0), 0);
    EXPECT_EQ(affinity_neighbours(multiscale({10.0, 50.0, 2.0}), 1000), 150);
    EXPECT_EQ(affinity_neighbours(multiscale({10.0, 50.0}), 100), 99);
}

}  // namespace
}  // namespace ovik
