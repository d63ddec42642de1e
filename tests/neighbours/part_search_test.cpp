#include "neighbours/part_search.h"

#include <cmath>
#include <numeric>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "neighbours/row_extent.h"
#include "util/stage_count.h"

#include "tests/support/instruction_sets.h"
#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

/// Holds what is found for a part, while parts come by in an order, to a comparison of all rows.
void expect_nearest(const std::vector<double>& points,
                    std::size_t dims,
                    std::size_t wanted,
                    const std::vector<IndexRange>& parts) {
    const std::size_t N = points.size() / dims;
    const double extent = *packable_extent(points.data(), N, dims, euclidean_metric());
    const auto view = [&](IndexRange part) {
        return MatrixView<const double>{points.data() + part.begin * dims, part.size(), dims};
    };
    const IndexRange own = parts.front();
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        PartSearch search(view(own), own.begin, wanted, extent);
        const OnStage nobody;
        StageCount progress(nobody, Stage::Neighbours, own.size() * parts.size());
        for (const IndexRange part : parts) {
            search.visit(view(part), part.begin, progress);
        }
        for (std::size_t row = own.begin; row < own.end; ++row) {
            const std::vector<NearRow> expected = test::nearest_of(points, dims, row, wanted);
            const std::span<const NearRow> found = search.nearest(row - own.begin);
            ASSERT_EQ(std::vector<NearRow>(found.begin(), found.end()), expected) << row;
        }
    }
}

TEST(PartSearch, FindsTheNearestOfAllRows) {
    const std::vector<double> points = test::random_values(900 * 9, 74);
    for (const int threads : {1, 3}) {
        const test::ThreadCount scope(threads);
        expect_nearest(points, 9, 15, {{0, 300}, {300, 601}, {601, 900}});
        expect_nearest(points, 9, 15, {{300, 601}, {601, 900}, {0, 300}});
        // Its own rows come last.
        expect_nearest(points, 9, 1, {{0, 1}, {1, 900}});
    }
}

TEST(PartSearch, FindsAllOthersWhereThereAreNoMoreThanAreWanted) {
    expect_nearest(test::random_values(40 * 3, 75), 3, 39, {{10, 20}, {0, 10}, {20, 40}});
    expect_nearest(test::random_values(40 * 3, 76), 3, 60, {{20, 40}, {0, 20}});
    expect_nearest(test::random_values(40 * 3, 77), 3, 0, {{20, 40}, {0, 20}});
}

TEST(PartSearch, PrefersLowerRowsAtEqualDistances) {
    std::vector<double> lattice = test::random_values(800 * 3, 65, 1.5);
    for (double& value : lattice) {
        value = std::round(value);
    }
    expect_nearest(lattice, 3, 20, {{400, 800}, {0, 400}});
    expect_nearest(lattice, 3, 20, {{0, 400}, {400, 800}});
    // Far more of them at one place than fit into a list of candidates.
    std::vector<double> points(1200, 0.25);
    points[0] = points[1] = 1e9;
    expect_nearest(points, 2, 7, {{300, 600}, {0, 300}});
}

TEST(PartSearch, FindsNeighboursOfClustersThatLieFarApart) {
    std::vector<double> points = test::random_values(2000 * 5, 66);
    for (std::size_t row = 0; row < 2000; ++row) {
        points[row * 5] += static_cast<double>(row % 7) * 500.0;
    }
    expect_nearest(points, 5, 30, {{1000, 2000}, {0, 1000}});
    expect_nearest(test::random_values(600, 67, 1e140), 2, 7, {{0, 100}, {100, 300}});
    expect_nearest(test::random_values(600, 68, 1e-90), 2, 7, {{0, 100}, {100, 300}});
}

TEST(PartSearch, EndsWhereProgressDoes) {
    const std::vector<double> points = test::random_values(500 * 2, 69);
    const MatrixView<const double> all{points.data(), 500, 2};
    PartSearch search(all, 0, 5, *packable_extent(points.data(), 500, 2, euclidean_metric()));
    const OnStage on_stage = [](Stage, std::uint64_t done, std::uint64_t) {
        if (done > 0) {
            throw std::domain_error("enough");
        }
    };
    StageCount progress(on_stage, Stage::Neighbours, 500);
    EXPECT_THROW(search.visit(all, 0, progress), std::domain_error);
}

}  // namespace
}  // namespace ovik
