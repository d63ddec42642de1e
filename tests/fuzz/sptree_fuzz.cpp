#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <omp.h>
#include <vector>

#include "neighbours/partwise_sptree.h"

#include "tests/fuzz/support/points.h"
#include "tests/fuzz/support/require.h"
#include "tests/plain/plain_sptree.h"
#include "tests/support/instruction_sets.h"

/// The space-partitioning tree against a plain recursive one and against sums over all pairs.

namespace ovik {
namespace {

struct Repulsion {
    std::vector<double> forces;
    std::vector<double> shares;

    /// All NaNs are one.
    bool operator==(const Repulsion& other) const {
        const auto same = [](double a, double b) {
            return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
                   (std::isnan(a) && std::isnan(b));
        };
        return std::equal(forces.begin(), forces.end(), other.forces.begin(), same) &&
               std::equal(shares.begin(), shares.end(), other.shares.begin(), same);
    }
};

Repulsion zeros(const test::PointsInput& points) {
    return {std::vector<double>(points.values.size(), 0.0),
            std::vector<double>(points.count(), 0.0)};
}

Repulsion plain_repulsion(const test::PointsInput& points, double theta) {
    const plain::SPTree tree(points.dims, points.values);
    Repulsion result = zeros(points);
    for (std::size_t n = 0; n < points.count(); ++n) {
        tree.addRepulsion(n, theta, result.forces.data() + n * points.dims, &result.shares[n]);
    }
    return result;
}

Repulsion one_by_one(const SPTree& tree, const test::PointsInput& points, double theta) {
    Repulsion result = zeros(points);
    for (std::size_t n = 0; n < points.count(); ++n) {
        tree.computeNonEdgeForces(static_cast<unsigned int>(n),
                                  theta,
                                  result.forces.data() + n * points.dims,
                                  &result.shares[n]);
    }
    return result;
}

/// @param batch  points at a time, at least 1
Repulsion together(PartwiseSPTree& tree,
                   const test::PointsInput& points,
                   double theta,
                   std::size_t batch) {
    Repulsion result = zeros(points);
    tree.rebuild(points.values.data(), theta);
    for (std::size_t begin = 0; begin < points.count(); begin += batch) {
        const std::size_t end = std::min(points.count(), begin + batch);
        tree.computeRepulsion(begin, end, result.forces.data(), result.shares.data());
    }
    return result;
}

/// With all pairs each force is a sum in another order: it is off by rounding errors of its terms,
/// which below the smallest normal number are as large as above it.
void check_all_pairs(const SPTree& tree, const test::PointsInput& points) {
    constexpr double kTolerance = 1e-12;
    const Repulsion actual = one_by_one(tree, points, 0.0);
    const std::size_t dims = points.dims;
    for (std::size_t n = 0; n < points.count(); ++n) {
        double share = 0.0;
        std::vector<double> force(dims, 0.0);
        std::vector<double> magnitude(dims, 0.0);
        for (std::size_t m = 0; m < points.count(); ++m) {
            double squared_distance = 0.0;
            for (std::size_t d = 0; d < dims; ++d) {
                const double difference = points.values[n * dims + d] - points.values[m * dims + d];
                squared_distance += difference * difference;
            }
            const double q = 1.0 / (1.0 + squared_distance);
            share += m == n ? 0.0 : q;
            for (std::size_t d = 0; d < dims; ++d) {
                const double term =
                    q * q * (points.values[n * dims + d] - points.values[m * dims + d]);
                force[d] += term;
                magnitude[d] += std::fabs(term);
            }
        }
        OVIK_REQUIRE(std::fabs(actual.shares[n] - share) <= kTolerance * share);
        for (std::size_t d = 0; d < dims; ++d) {
            OVIK_REQUIRE(std::fabs(actual.forces[n * dims + d] - force[d]) <=
                         kTolerance * magnitude[d] + std::numeric_limits<double>::min());
        }
    }
}

void check_points(const test::PointsInput& points) {
    constexpr double kThetas[] = {0.0, 0.1, 0.5, 1.0, 3.0, -1.0, NAN, 1e300};
    const double theta = kThetas[points.choices[0] % std::size(kThetas)];
    const std::size_t batch = 1 + points.choices[1] % (points.count() + 1);
    const auto dims = static_cast<unsigned int>(points.dims);
    const auto count = static_cast<unsigned int>(points.count());
    const Repulsion expected = plain_repulsion(points, theta);
    PartwiseSPTree tree(dims, points.values.data(), count);
    OVIK_REQUIRE(one_by_one(tree, points, theta) == expected);
    for (const InstructionSet instructions : test::available_instruction_sets()) {
        const test::InstructionLimit limit(instructions);
        OVIK_REQUIRE(together(tree, points, theta, batch) == expected);
    }
    // Farther apart, the squares of similarities lose digits below the smallest normal number.
    constexpr double kLargest = 1e60;
    if (points.areWithin(kLargest)) {
        check_all_pairs(tree, points);
    }
    // Built over other points before, the tree is the same.
    const std::vector<double> reversed(points.values.rbegin(), points.values.rend());
    tree.rebuild(reversed.data());
    OVIK_REQUIRE(together(tree, points, theta, batch) == expected);
}

}  // namespace
}  // namespace ovik

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kMostPoints = 40;
    omp_set_num_threads(1);
    const ovik::test::PointsInput points(data, size, kMostPoints);
    if (points.count() > 0) {
        ovik::check_points(points);
    }
    return 0;
}
