#include "neighbours/metric.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "neighbours/euclidean_distance.h"
#include "neighbours/neighbour_index.h"
#include "util/input_error.h"

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"
#include "tests/support/toy_metrics.h"

namespace ovik {
namespace {

/// Distances and rows of the nearest, found by measuring all.
using Nearest = std::vector<std::pair<double, std::size_t>>;

Nearest nearest_of_all(const Metric& metric,
                       const std::vector<double>& points,
                       std::size_t dims,
                       std::size_t row,
                       std::size_t count) {
    Nearest all;
    for (std::size_t n = 0; n < points.size() / dims; ++n) {
        all.emplace_back(
            metric.distance(points.data() + row * dims, points.data() + n * dims, dims), n);
    }
    std::sort(all.begin(), all.end());
    all.resize(std::min(count, all.size()));
    return all;
}

Nearest nearest_of_index(const NeighbourIndex& index, const double* target, std::size_t count) {
    NeighbourIndex::Queries queries;
    index.search(&target, 1, count, queries);
    Nearest nearest;
    for (const auto& neighbour : queries.neighbours[0]) {
        nearest.emplace_back(neighbour.distance, index.rowAt(neighbour.position));
    }
    return nearest;
}

/// Of points without ties, so that the order of the neighbours is certain.
void expect_found_as_by_measuring_all(const Metric& metric, std::size_t count, std::size_t dims) {
    const std::vector<double> points = test::random_values(count * dims, 91);
    const NeighbourIndex index(points.data(), count, dims, metric);
    for (std::size_t row = 0; row < count; ++row) {
        ASSERT_EQ(nearest_of_index(index, points.data() + row * dims, 12),
                  nearest_of_all(metric, points, dims, row, 12))
            << metric.name << ", row " << row << " of " << count;
    }
}

TEST(Metric, IsListedOnceByName) {
    std::set<std::string> names;
    for (const Metric& metric : metrics()) {
        EXPECT_TRUE(names.insert(metric.name).second) << metric.name;
    }
    EXPECT_EQ(names.count("euclidean"), 1U);
    EXPECT_STREQ(euclidean_metric().name, "euclidean");
}

TEST(Metric, OfEuclidHasTheBitsOfThePublishedDistance) {
    for (std::size_t dims = 0; dims <= 67; ++dims) {
        const std::vector<double> a = test::random_values(dims, 92, 1e3);
        const std::vector<double> b = test::random_values(dims, 93, 1e-3);
        const DataPoint<double> first(static_cast<int>(dims), 0, a.data());
        const DataPoint<double> second(static_cast<int>(dims), 1, b.data());
        EXPECT_EQ(euclidean_metric().distance(a.data(), b.data(), dims),
                  euclidean_distance(first, second));
    }
}

TEST(Metric, HasKernelsWithTheBitsOfItsDistance) {
    for (const Metric& metric : metrics()) {
        for (const InstructionSet set : test::available_instruction_sets()) {
            const MetricKernels& kernels = metric.kernels(set);
            for (std::size_t dims = 0; dims <= 67; ++dims) {
                // One more, so that a block of no coordinates has an address, as the index's has.
                const std::vector<double> block = test::random_values(dims * kBlockPoints + 1, 94);
                const std::vector<double> rows = test::random_values(dims * kTargets, 95);
                const double* targets[kTargets];
                for (std::size_t t = 0; t < kTargets; ++t) {
                    targets[t] = rows.data() + t * dims;
                }
                std::vector<double> distances(kTargets * kBlockPoints, -1.0);
                kernels.block_distances(block.data(), targets, dims, distances.data());
                for (std::size_t i = 0; i < distances.size(); ++i) {
                    std::vector<double> point;
                    for (std::size_t d = 0; d < dims; ++d) {
                        point.push_back(block[d * kBlockPoints + i % kBlockPoints]);
                    }
                    ASSERT_EQ(distances[i],
                              metric.distance(targets[i / kBlockPoints], point.data(), dims))
                        << metric.name << ", " << dims << " dimensions";
                }
            }
        }
    }
}

TEST(Metric, HasKernelsForSomeRowsWithTheBitsOfItsDistance) {
    for (const Metric& metric : {euclidean_metric(), test::kMaximumMetric}) {
        for (const InstructionSet set : test::available_instruction_sets()) {
            const MetricKernels& kernels = metric.kernels(set);
            for (std::size_t dims = 0; dims <= 35; ++dims) {
                const std::vector<double> points = test::random_values(50 * dims + 1, 98);
                std::vector<std::uint32_t> rows;
                for (std::uint32_t i = 0; i < dims + 3; ++i) {
                    rows.push_back(i * 17 % 50);
                }
                // The value behind the last must stay.
                std::vector<double> distances(rows.size() + 1, -1.0);
                kernels.row_distances(points.data(),
                                      dims,
                                      points.data() + 7 * dims,
                                      rows.data(),
                                      rows.size(),
                                      distances.data());
                for (std::size_t i = 0; i < rows.size(); ++i) {
                    ASSERT_EQ(distances[i],
                              metric.distance(
                                  points.data() + 7 * dims, points.data() + rows[i] * dims, dims))
                        << metric.name << ", " << dims << " dimensions";
                }
                ASSERT_EQ(distances.back(), -1.0);
            }
        }
    }
}

TEST(Metric, IsSearchedAsMeasuringAllRowsWouldFind) {
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        for (const InstructionSet set : test::available_instruction_sets()) {
            const test::InstructionLimit limit(set);
            for (const Metric& metric : {euclidean_metric(), test::kMaximumMetric}) {
                expect_found_as_by_measuring_all(metric, 500, 3);
                expect_found_as_by_measuring_all(metric, 300, 40);
            }
        }
    }
}

TEST(Metric, IsSearchedAmongEveryNumberOfRows) {
    for (std::size_t count = 0; count <= 67; ++count) {
        expect_found_as_by_measuring_all(test::kMaximumMetric, count, 2);
    }
}

TEST(Metric, WithoutTheTriangleInequalityIsRefusedByTheIndex) {
    const std::vector<double> points = test::random_values(20, 96);
    try {
        const NeighbourIndex index(points.data(), 10, 2, test::kSquaresMetric);
        FAIL() << "the index took the metric";
    } catch (const std::invalid_argument& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("squares"));
        EXPECT_THAT(error.what(), testing::HasSubstr("triangle inequality"));
    }
}

TEST(Metric, TellsWhichRowItCannotMeasure) {
    const std::vector<double> points = {1.0, 2.0, 0.0, -1.0, -1.0, 5.0};
    require_measurable_rows(test::kComplainingMetric, points.data(), 2, 2);
    try {
        require_measurable_rows(test::kComplainingMetric, points.data(), 3, 2);
        FAIL() << "there was no complaint";
    } catch (const InputError& error) {
        EXPECT_STREQ(error.what(),
                     "row 3 has no complaining distances: the first coordinate is negative");
    }
    EXPECT_THROW(NeighbourIndex(points.data(), 3, 2, test::kComplainingMetric), InputError);
}

TEST(Metric, OfEuclidMeasuresEveryRow) {
    const double odd[] = {std::numeric_limits<double>::infinity(),
                          std::numeric_limits<double>::quiet_NaN()};
    EXPECT_NO_THROW(require_measurable_rows(euclidean_metric(), odd, 1, 2));
}

TEST(Metric, ThatIsRefusedDrawsNoRandomNumbers) {
    const std::vector<double> points = test::random_values(20, 97);
    std::srand(7);
    const int expected = std::rand();
    std::srand(7);
    EXPECT_THROW(NeighbourIndex(points.data(), 10, 2, test::kSquaresMetric), std::invalid_argument);
    EXPECT_EQ(std::rand(), expected);
}

}  // namespace
}  // namespace ovik
