#include "neighbours/sptree.h"

#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/support/random_points.h"

namespace ovik {
namespace {

constexpr double kVanishingTheta = 1e-12;

struct Forces {
    std::vector<double> neg_f;
    double sum_Q = 0.0;
};

Forces all_pairs(const std::vector<double>& data, std::size_t dims) {
    const std::size_t N = data.size() / dims;
    Forces forces{std::vector<double>(data.size(), 0.0), 0.0};
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t m = 0; m < N; ++m) {
            if (m == n) {
                continue;
            }
            double squared_distance = 0.0;
            for (std::size_t d = 0; d < dims; ++d) {
                squared_distance += std::pow(data[n * dims + d] - data[m * dims + d], 2);
            }
            const double q = 1.0 / (1.0 + squared_distance);
            forces.sum_Q += q;
            for (std::size_t d = 0; d < dims; ++d) {
                forces.neg_f[n * dims + d] += q * q * (data[n * dims + d] - data[m * dims + d]);
            }
        }
    }
    return forces;
}

Forces through_tree(const std::vector<double>& data, std::size_t dims, double theta) {
    const auto N = static_cast<unsigned int>(data.size() / dims);
    const SPTree tree(static_cast<unsigned int>(dims), data.data(), N);
    Forces forces{std::vector<double>(data.size(), 0.0), 0.0};
    for (unsigned int n = 0; n < N; ++n) {
        tree.computeNonEdgeForces(n, theta, forces.neg_f.data() + n * dims, &forces.sum_Q);
    }
    return forces;
}

double norm(const std::vector<double>& values) {
    return std::sqrt(std::inner_product(values.begin(), values.end(), values.begin(), 0.0));
}

double relative_error(const std::vector<double>& actual, const std::vector<double>& expected) {
    std::vector<double> difference(actual.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        difference[i] = actual[i] - expected[i];
    }
    const double scale = norm(expected);
    return scale > 0.0 ? norm(difference) / scale : norm(difference);
}

void expect_all_pairs(const std::vector<double>& data, std::size_t dims, double theta) {
    const Forces expected = all_pairs(data, dims);
    const Forces actual = through_tree(data, dims, theta);
    EXPECT_NEAR(actual.sum_Q, expected.sum_Q, 1e-12 * expected.sum_Q);
    EXPECT_LE(relative_error(actual.neg_f, expected.neg_f), 1e-12);
}

TEST(SPTree, EqualsAllPairsWithAVanishingThetaInOneToFiveDimensions) {
    for (std::size_t dims = 1; dims <= 5; ++dims) {
        SCOPED_TRACE(dims);
        expect_all_pairs(test::random_values(300 * dims, 7), dims, kVanishingTheta);
    }
}

TEST(SPTree, OpensEverythingForZeroNegativeAndNanTheta) {
    const std::vector<double> data = test::random_values(400, 8);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double theta : {0.0, -0.5, nan}) {
        expect_all_pairs(data, 2, theta);
    }
}

TEST(SPTree, ApproximatesWithTheUsualTheta) {
    for (std::size_t dims = 1; dims <= 5; ++dims) {
        SCOPED_TRACE(dims);
        const std::vector<double> data = test::random_values(1000 * dims, 9, 10.0);
        const Forces expected = all_pairs(data, dims);
        const Forces actual = through_tree(data, dims, 0.5);
        // A cell at the limit of the criterion is off by about theta^2 / 6 in two dimensions.
        EXPECT_NEAR(actual.sum_Q, expected.sum_Q, 0.04 * expected.sum_Q);
        EXPECT_LE(relative_error(actual.neg_f, expected.neg_f), 0.05);
        // It would be no approximation if it were exact.
        EXPECT_GT(relative_error(actual.neg_f, expected.neg_f), 1e-9);
    }
}

TEST(SPTree, NeverCountsThePointItselfHoweverLargeTheta) {
    // With this theta a point is far even from a cell that holds it, were such cells not opened.
    const std::vector<double> data = {0.0, 0.0, 0.0, 0.0, 9.0, 9.0};
    expect_all_pairs(data, 2, 1e6);
}

TEST(SPTree, TakesFarCellsAsOnePointAtTheirCentreOfMass) {
    // Seen from (100, 0), the pair at (0, 0) and (1, 1) is one point at (0.5, 0.5).
    const std::vector<double> data = {100.0, 0.0, 0.0, 0.0, 1.0, 1.0};
    const SPTree tree(2, data.data(), 3);
    double neg_f[2] = {};
    double sum_Q = 0.0;
    tree.computeNonEdgeForces(0, 0.5, neg_f, &sum_Q);
    const double q = 1.0 / (1.0 + (99.5 * 99.5 + 0.5 * 0.5));
    EXPECT_EQ(sum_Q, 2.0 * q);
    EXPECT_EQ(neg_f[0], 2.0 * q * q * 99.5);
    EXPECT_EQ(neg_f[1], 2.0 * q * q * -0.5);
}

TEST(SPTree, AddsToWhatIsThere) {
    const std::vector<double> data = {0.0, 1.0};
    const SPTree tree(1, data.data(), 2);
    double neg_f = 10.0;
    double sum_Q = 20.0;
    tree.computeNonEdgeForces(0, 0.5, &neg_f, &sum_Q);
    EXPECT_EQ(sum_Q, 20.5);
    EXPECT_EQ(neg_f, 9.75);
}

TEST(SPTree, CountsCoincidentPointsByTheThousand) {
    std::vector<double> data(20000, 0.25);
    data.push_back(1.25);
    data.push_back(0.25);
    const auto N = static_cast<unsigned int>(data.size() / 2);
    const SPTree tree(2, data.data(), N);
    double neg_f[2] = {};
    double sum_Q = 0.0;
    tree.computeNonEdgeForces(5, 0.5, neg_f, &sum_Q);
    EXPECT_EQ(sum_Q, 9999.0 + 0.5);
    EXPECT_EQ(neg_f[0], -0.25);
    EXPECT_EQ(neg_f[1], 0.0);
}

TEST(SPTree, TellsPointsApartThatAreAMillionTimesNearerThanOthers) {
    std::vector<double> data = test::random_values(400, 10, 1e-6);
    data.insert(data.end(), {1e6, -1e6, -3e6, 2e6});
    expect_all_pairs(data, 2, kVanishingTheta);
    const Forces expected = all_pairs(data, 2);
    const Forces actual = through_tree(data, 2, 0.5);
    EXPECT_NEAR(actual.sum_Q, expected.sum_Q, 1e-9 * expected.sum_Q);
}

TEST(SPTree, LaysFinerGridsWhereOneDoesNotReach) {
    // Distances shrink by a factor of 16 from point to point, far beyond the 2^32 cells of a grid.
    std::vector<double> data;
    for (int i = 0; i < 200; ++i) {
        data.push_back(std::ldexp(1.0, -4 * i));
        data.push_back(std::ldexp(-3.0, -4 * i));
    }
    expect_all_pairs(data, 2, kVanishingTheta);
    expect_all_pairs(data, 1, kVanishingTheta);
}

TEST(SPTree, HandlesExtremeCoordinates) {
    const double huge = std::numeric_limits<double>::max();
    const double tiny = std::numeric_limits<double>::denorm_min();
    const std::vector<double> data = {huge, -huge, -huge, huge, 0.0, tiny, tiny, 0.0, 1.0, 1.0};
    const Forces actual = through_tree(data, 2, 0.5);
    // The three near the origin see one another; the others are out of reach.
    EXPECT_NEAR(actual.sum_Q, 2.0 * (1.0 + 1.0 / 3.0 + 1.0 / 3.0), 1e-12);
}

TEST(SPTree, ServesNoPointAndOnePoint) {
    const SPTree none(2, nullptr, 0);
    const std::vector<double> data = {3.0, 4.0};
    const Forces one = through_tree(data, 2, 0.5);
    EXPECT_EQ(one.sum_Q, 0.0);
    EXPECT_EQ(one.neg_f, (std::vector<double>{0.0, 0.0}));
}

TEST(SPTree, EndsWithNanAndInfiniteCoordinates) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (const double odd : {nan, inf, -inf}) {
        std::vector<double> data = test::random_values(200, 11);
        data[31] = odd;
        const Forces actual = through_tree(data, 2, 0.5);
        EXPECT_TRUE(std::isnan(actual.neg_f[31]));
        std::vector<double> all(20000, odd);
        EXPECT_EQ(through_tree(all, 2, 0.5).neg_f.size(), all.size());
    }
    const std::vector<double> mixed = {nan, 1.0, inf, 1.0, -inf, nan, nan, inf, 2.0, 3.0};
    EXPECT_EQ(through_tree(mixed, 2, 0.5).neg_f.size(), mixed.size());
}

TEST(SPTree, AddsAttractiveForcesEntryByEntry) {
    const std::vector<double> data = {0.0, 0.0, 1.0, 2.0, -3.0, 0.5};
    const unsigned int row_P[] = {0, 2, 3, 3};
    const unsigned int col_P[] = {2, 1, 0};
    const double val_P[] = {0.3, 0.7, 0.2};
    const SPTree tree(2, data.data(), 3);
    std::vector<double> pos_f(6, 0.0);
    tree.computeEdgeForces(row_P, col_P, val_P, 3, pos_f.data());
    const double q01 = 1.0 / (1.0 + 5.0);
    const double q02 = 1.0 / (1.0 + 9.25);
    EXPECT_EQ(pos_f[0], 0.3 * q02 * 3.0 + 0.7 * q01 * -1.0);
    EXPECT_EQ(pos_f[1], 0.3 * q02 * -0.5 + 0.7 * q01 * -2.0);
    EXPECT_EQ(pos_f[2], 0.2 * q01 * 1.0);
    EXPECT_EQ(pos_f[3], 0.2 * q01 * 2.0);
    EXPECT_EQ(pos_f[4], 0.0);
    EXPECT_EQ(pos_f[5], 0.0);
}

RC_GTEST_PROP(SPTree, EqualsAllPairsOnAnyPoints, ()) {
    const auto dims = *rc::gen::inRange<std::size_t>(1, 5);
    const auto count = *rc::gen::inRange<std::size_t>(1, 60);
    // Few distinct values, so that coincident points are common.
    const auto grid = *rc::gen::container<std::vector<int>>(count * dims, rc::gen::inRange(-4, 5));
    const std::vector<double> data(grid.begin(), grid.end());
    const Forces expected = all_pairs(data, dims);
    const Forces actual = through_tree(data, dims, kVanishingTheta);
    RC_ASSERT(std::fabs(actual.sum_Q - expected.sum_Q) <= 1e-12 * expected.sum_Q);
    RC_ASSERT(relative_error(actual.neg_f, expected.neg_f) <= 1e-12);
}

}  // namespace
}  // namespace ovik
