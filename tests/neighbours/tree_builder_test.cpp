#include "neighbours/tree_builder.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"

namespace ovik {
namespace {

/// A built tree, and the points that it reads.
struct Tree {
    Tree(std::vector<double> data, std::size_t dims, bool last_part_first = false)
        : points(std::move(data)),
          builder(dims, points.size() / dims) {
        build(last_part_first);
    }

    void build(bool last_part_first = false) {
        const std::size_t parts = builder.prepare(points.data(), squared_theta);
        for (std::size_t i = 0; i < parts; ++i) {
            builder.buildPart(last_part_first ? parts - 1 - i : i);
        }
        builder.join();
        builder.rankPoints();
    }

    [[nodiscard]] std::size_t pointCount() const { return points.size() / builder.view().dims; }

    std::vector<double> points;
    double squared_theta = 0.25;
    TreeBuilder builder;
};

/// Whether the points of each cell are those of its children, and its centre is their mean.
void expect_sound(const Tree& tree) {
    const TreeView view = tree.builder.view();
    const std::size_t N = tree.pointCount();
    std::vector<std::uint32_t> order(view.order, view.order + N);
    for (std::uint32_t position = 0; position < N; ++position) {
        EXPECT_EQ(tree.builder.rank()[order[position]], position);
    }
    ASSERT_TRUE(view.cell_count > 0 || N == 0);
    for (std::size_t i = 0; i < view.cell_count; ++i) {
        const TreeCell& cell = view.cells[i];
        ASSERT_LE(i + cell.skip, view.cell_count);
        std::uint32_t next = cell.first;
        for (std::size_t child = i + 1; child < i + cell.skip; child += view.cells[child].skip) {
            EXPECT_EQ(view.cells[child].first, next);
            EXPECT_TRUE(view.cells[child].skip == 1 ||
                        view.squared_sides[child] < view.squared_sides[i]);
            next += static_cast<std::uint32_t>(view.cells[child].weight);
        }
        EXPECT_TRUE(cell.skip == 1 || next == cell.first + static_cast<std::uint32_t>(cell.weight));
        for (std::size_t d = 0; d < view.dims; ++d) {
            double sum = 0.0;
            for (std::uint32_t k = 0; k < static_cast<std::uint32_t>(cell.weight); ++k) {
                sum += tree.points[order[cell.first + k] * view.dims + d];
            }
            EXPECT_NEAR(view.centres[i * view.dims + d], sum / cell.weight, 1e-12);
        }
    }
    if (N > 0) {
        EXPECT_EQ(view.cells[0].weight, static_cast<double>(N));
        EXPECT_EQ(view.cells[0].skip, view.cell_count);
    }
}

TEST(TreeBuilder, PutsEveryPointIntoOneLeaf) {
    for (std::size_t dims = 1; dims <= 5; ++dims) {
        expect_sound(Tree(test::random_values(300 * dims, 21), dims));
    }
}

TEST(TreeBuilder, BuildsTreesOfEveryNumberOfPoints) {
    for (std::size_t N = 0; N <= 67; ++N) {
        expect_sound(Tree(test::random_values(2 * N, 22), 2));
    }
}

TEST(TreeBuilder, SplitsASquareAtItsSplitLevels) {
    // Two points in one quarter, one in the opposite one.
    const Tree tree({0.0, 0.0, 1.0, 1.0, 8.0, 8.0}, 2);
    const TreeView view = tree.builder.view();
    ASSERT_EQ(view.cell_count, 5U);
    EXPECT_EQ(view.squared_sides[0], 64.0);
    EXPECT_EQ(view.cells[0].squared_reach, 256.0);
    EXPECT_EQ(view.cells[0].skip, 5U);
    // The pair is split at the third halving: its smallest cell has a side of 2.
    EXPECT_EQ(view.squared_sides[1], 4.0);
    EXPECT_EQ(view.cells[1].squared_reach, 16.0);
    EXPECT_EQ(view.cells[1].weight, 2.0);
    EXPECT_EQ(view.cells[4].skip, 1U);
    EXPECT_EQ(view.cells[4].weight, 1.0);
}

TEST(TreeBuilder, KnowsFromHowFarCellsAreOpened) {
    std::vector<double> points = test::random_values(2 * 200, 27);
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] = std::ldexp(points[i], -40 * static_cast<int>(i / 2 % 3));
    }
    Tree tree(points, 2);
    for (const double theta :
         {1e-160, 1e-12, 0.1, 0.5, 1.0 / 3.0, 1.0, 7.0, 1e12, 1e150, HUGE_VAL}) {
        tree.squared_theta = theta * theta;
        tree.build();
        const TreeView view = tree.builder.view();
        for (std::size_t i = 0; i < view.cell_count; ++i) {
            const double reach = view.cells[i].squared_reach;
            const auto is_far = [&](double squared_distance) {
                return view.squared_sides[i] < tree.squared_theta * squared_distance;
            };
            if (view.cells[i].skip == 1) {
                EXPECT_LT(reach, 0.0);
            } else if (std::isinf(reach)) {
                EXPECT_FALSE(is_far(DBL_MAX)) << theta;
            } else {
                EXPECT_FALSE(is_far(reach)) << theta;
                EXPECT_TRUE(is_far(std::nextafter(reach, HUGE_VAL))) << theta;
            }
        }
    }
}

TEST(TreeBuilder, OpensEveryCellForAThetaOfZero) {
    Tree tree(test::random_values(2 * 50, 27), 2);
    tree.squared_theta = 0.0;
    tree.build();
    EXPECT_EQ(tree.builder.view().cells[0].squared_reach, HUGE_VAL);
}

TEST(TreeBuilder, LetsPointsAtOnePlaceShareALeaf) {
    const Tree tree(std::vector<double>(2 * 50, 1.25), 2);
    const TreeView view = tree.builder.view();
    ASSERT_EQ(view.cell_count, 1U);
    EXPECT_EQ(view.cells[0].weight, 50.0);
    EXPECT_LT(view.cells[0].squared_reach, 0.0);
    EXPECT_EQ(view.centres[0], 1.25);
    // Points of one place keep the order of their rows.
    EXPECT_TRUE(std::is_sorted(view.order, view.order + 50));
}

TEST(TreeBuilder, LaysAFinerGridOverPointsTooCloseForOne) {
    std::vector<double> points = test::random_values(2 * 40, 23, 1e-14);
    points.push_back(1000.0);
    points.push_back(1000.0);
    const Tree tree(points, 2);
    expect_sound(tree);
    EXPECT_GE(tree.builder.view().cell_count, 41U);
}

void expect_same(const Tree& tree, const Tree& other) {
    const TreeView a = tree.builder.view();
    const TreeView b = other.builder.view();
    ASSERT_EQ(a.cell_count, b.cell_count);
    EXPECT_TRUE(std::equal(a.order, a.order + tree.pointCount(), b.order));
    EXPECT_TRUE(std::equal(a.centres, a.centres + a.dims * a.cell_count, b.centres));
    EXPECT_EQ(a.reach, b.reach);
    for (std::size_t i = 0; i < a.cell_count; ++i) {
        ASSERT_EQ(a.cells[i].squared_reach, b.cells[i].squared_reach);
        ASSERT_TRUE(a.cells[i].skip == 1 || a.squared_sides[i] == b.squared_sides[i]);
        ASSERT_EQ(a.cells[i].weight, b.cells[i].weight);
        ASSERT_EQ(a.cells[i].skip, b.cells[i].skip);
    }
}

TEST(TreeBuilder, BuildsTheSameTreeInAnyOrderOfParts) {
    const std::vector<double> points = test::random_values(2 * 5000, 24);
    expect_same(Tree(points, 2), Tree(points, 2, true));
}

TEST(TreeBuilder, BuildsTheSameTreeAfterAnyOther) {
    constexpr std::size_t kCount = 3000;
    for (std::size_t dims = 1; dims <= 4; ++dims) {
        Tree tree(test::random_values(dims * kCount, 25), dims);
        const std::vector<double> step = test::random_values(dims * kCount, 26, 1e-3);
        // From a little to as far as the embedding is wide, then to where all orders turn round.
        for (const double scale : {1.0, 30.0, 1000.0, -2000.0}) {
            for (std::size_t i = 0; i < step.size(); ++i) {
                tree.points[i] += scale * step[i];
            }
            tree.build();
            expect_same(tree, Tree(tree.points, dims));
        }
        for (double& coordinate : tree.points) {
            coordinate = std::fabs(std::round(coordinate));
        }
        tree.points[0] = 1e9;
        tree.build();
        expect_same(tree, Tree(tree.points, dims));
    }
}

/// Whether each cell has a rank of its own among those around it, and names that of its parent.
void expect_ranks(const TreeView& tree, std::size_t i, std::vector<std::uint8_t> around) {
    const TreeCell& cell = tree.cells[i];
    ASSERT_EQ(cell.parent, around.back());
    if (cell.skip == 1) {
        ASSERT_EQ(cell.rank, kLeafRank);
        return;
    }
    ASSERT_EQ(std::count(around.begin(), around.end(), cell.rank), 0);
    ASSERT_LT(cell.rank, kAboveRoot);
    around.push_back(cell.rank);
    for (std::size_t child = i + 1; child < i + cell.skip; child += tree.cells[child].skip) {
        expect_ranks(tree, child, around);
    }
}

TEST(TreeBuilder, RanksTheCellsAroundEachCell) {
    for (std::size_t dims = 1; dims <= 3; ++dims) {
        const Tree ordinary(test::random_values(dims * 3000, 28), dims);
        expect_ranks(ordinary.builder.view(), 0, {kAboveRoot});
        std::vector<double> points = test::random_values(dims * 300, 29);
        for (std::size_t i = 0; i < points.size(); ++i) {
            // So near one another that three grids lie within one another.
            points[i] = std::ldexp(points[i], -40 * static_cast<int>(i / dims % 3));
        }
        const Tree nested(points, dims);
        EXPECT_FALSE(nested.builder.view().is_deep);
        expect_ranks(nested.builder.view(), 0, {kAboveRoot});
    }
}

TEST(TreeBuilder, TellsWhereGridsLieWithinOneAnotherTooDeepForRanks) {
    std::vector<double> points;
    for (int i = 0; i < 60; ++i) {
        points.insert(points.end(), {std::ldexp(1.0, -16 * i), 0.0});
    }
    EXPECT_TRUE(Tree(points, 2).builder.view().is_deep);
    points.resize(2 * 10);
    EXPECT_FALSE(Tree(points, 2).builder.view().is_deep);
}

TEST(TreeBuilder, KnowsTheLargestSizeOfACoordinate) {
    for (std::size_t dims = 1; dims <= 4; ++dims) {
        std::vector<double> points = test::random_values(dims * 20, 27);
        points[7] = -1e9;
        EXPECT_EQ(Tree(points, dims).builder.view().reach, 1e9);
        points[8] = 1e10;
        EXPECT_EQ(Tree(points, dims).builder.view().reach, 1e10);
        for (const double odd : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
            points[9] = odd;
            EXPECT_EQ(Tree(points, dims).builder.view().reach, HUGE_VAL);
        }
    }
}

}  // namespace
}  // namespace ovik
