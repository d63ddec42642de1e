#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <omp.h>
#include <set>
#include <span>
#include <vector>

#include "neighbours/data_point.h"
#include "neighbours/euclidean_distance.h"
#include "neighbours/neighbour_index.h"
#include "neighbours/neighbour_search.h"
#include "neighbours/vptree.h"

#include "tests/fuzz/support/points.h"
#include "tests/fuzz/support/require.h"
#include "tests/support/instruction_sets.h"

/// The vantage-point tree against a comparison of all points, and the index for many queries and
/// the search of all rows against the tree.

namespace ovik {
namespace {

using Tree = VpTree<DataPoint<double>, &euclidean_distance>;

struct Answer {
    std::vector<int> rows;
    std::vector<double> distances;

    bool operator==(const Answer&) const = default;
};

std::vector<DataPoint<double>> points_of(const test::PointsInput& input) {
    std::vector<DataPoint<double>> points;
    for (std::size_t n = 0; n < input.count(); ++n) {
        points.emplace_back(static_cast<int>(input.dims),
                            static_cast<int>(n),
                            input.values.data() + n * input.dims);
    }
    return points;
}

double plain_distance(const DataPoint<double>& a, const DataPoint<double>& b) {
    double squared = 0.0;
    for (int d = 0; d < a.dimension; ++d) {
        squared += (a.coordinates[d] - b.coordinates[d]) * (a.coordinates[d] - b.coordinates[d]);
    }
    return std::sqrt(squared);
}

Answer ask(Tree& tree, const DataPoint<double>& target, int k) {
    Answer answer;
    std::vector<DataPoint<double>> results;
    tree.search(target, k, &results, &answer.distances);
    for (const auto& result : results) {
        answer.rows.push_back(result.index);
    }
    Tree::Query query;
    const Tree& finished = tree;
    finished.search(target, k, query);
    OVIK_REQUIRE(query.neighbours.size() == answer.rows.size());
    for (std::size_t i = 0; i < answer.rows.size(); ++i) {
        const auto position = static_cast<std::size_t>(query.neighbours[i].index);
        OVIK_REQUIRE(tree.items[position].index == answer.rows[i]);
        OVIK_REQUIRE(query.neighbours[i].dist == answer.distances[i]);
    }
    return answer;
}

/// What holds of any points: neighbours are points of the list, each once, nearest first, at the
/// distances that are given.
void check_answer(const Answer& answer,
                  const std::vector<DataPoint<double>>& points,
                  const DataPoint<double>& target,
                  std::size_t k) {
    OVIK_REQUIRE(answer.rows.size() == answer.distances.size());
    OVIK_REQUIRE(answer.rows.size() <= k);
    OVIK_REQUIRE(std::set<int>(answer.rows.begin(), answer.rows.end()).size() ==
                 answer.rows.size());
    for (std::size_t i = 0; i < answer.rows.size(); ++i) {
        const double distance = answer.distances[i];
        OVIK_REQUIRE(std::isfinite(distance) && (i == 0 || answer.distances[i - 1] <= distance));
        OVIK_REQUIRE(plain_distance(points[static_cast<std::size_t>(answer.rows[i])], target) ==
                     distance);
    }
}

/// None is missing. On whole numbers distances that differ do so by far more than rounding errors,
/// so that the tree never passes a nearer point over; on others it may by that much.
void check_nearest(const Answer& answer,
                   const std::vector<DataPoint<double>>& points,
                   const DataPoint<double>& target,
                   std::size_t k,
                   bool is_exact) {
    std::vector<double> expected;
    for (const auto& point : points) {
        expected.push_back(plain_distance(point, target));
    }
    std::sort(expected.begin(), expected.end());
    const double farthest = expected.empty() ? 0.0 : expected.back();
    expected.resize(std::min(expected.size(), k));
    if (is_exact) {
        OVIK_REQUIRE(answer.distances == expected);
        return;
    }
    OVIK_REQUIRE(answer.distances.size() == expected.size());
    // Squares below the smallest number vanish.
    const double tolerance = 1e-12 * farthest + 1e-150;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        OVIK_REQUIRE(answer.distances[i] - expected[i] <= tolerance);
    }
}

/// @param group_size  targets that are searched for together, 1 to kTargets
std::vector<Answer> ask(const NeighbourIndex& index,
                        const std::vector<DataPoint<double>>& targets,
                        std::size_t group_size,
                        std::size_t k) {
    NeighbourIndex::Queries queries;
    std::vector<Answer> answers;
    for (std::size_t first = 0; first < targets.size(); first += group_size) {
        const std::size_t count = std::min(group_size, targets.size() - first);
        const double* group[kTargets] = {};
        for (std::size_t t = 0; t < count; ++t) {
            group[t] = targets[first + t].coordinates;
        }
        index.search(group, count, k, queries);
        for (std::size_t t = 0; t < count; ++t) {
            Answer answer;
            for (const auto& neighbour : queries.neighbours[t]) {
                answer.rows.push_back(static_cast<int>(index.rowAt(neighbour.position)));
                answer.distances.push_back(neighbour.distance);
            }
            answers.push_back(answer);
        }
    }
    return answers;
}

/// The search of all rows, which takes another way than the tree.
void check_search(const test::PointsInput& input,
                  const std::vector<DataPoint<double>>& targets,
                  const std::vector<Answer>& answers,
                  std::size_t k) {
    std::vector<Answer> of_rows(input.count());
    NeighbourSearch search(input.count(), input.dims, process_random_stream());
    search.findAll(input.values.data(),
                   k,
                   [&](std::size_t row, std::span<const NearRow> nearest, std::size_t /*worker*/) {
                       for (const NearRow& near : nearest) {
                           of_rows[row].rows.push_back(static_cast<int>(near.row));
                           of_rows[row].distances.push_back(near.distance);
                       }
                   });
    for (std::size_t t = 0; t < targets.size(); ++t) {
        if (targets[t].index >= 0) {
            OVIK_REQUIRE(of_rows[static_cast<std::size_t>(targets[t].index)] == answers[t]);
        }
    }
}

void check_points(const test::PointsInput& input) {
    constexpr unsigned int kSeed = 5;
    constexpr std::size_t kMostTargets = 6;
    const std::vector<DataPoint<double>> points = points_of(input);
    const std::size_t k = input.choices[0] % (points.size() + 3);
    std::srand(kSeed);
    Tree tree;
    tree.create(points);
    const int next_draw = std::rand();
    // Some of the points, and one place that is none of them.
    std::vector<DataPoint<double>> targets;
    for (std::size_t i = 0; i < std::min(kMostTargets, points.size()); ++i) {
        targets.push_back(points[(input.choices[1] + i) % points.size()]);
    }
    const std::vector<double> place(input.dims, input.choices[2] / 7.0);
    targets.emplace_back(static_cast<int>(input.dims), -1, place.data());
    std::vector<Answer> answers;
    for (const auto& target : targets) {
        answers.push_back(ask(tree, target, static_cast<int>(k)));
        check_answer(answers.back(), points, target, k);
        // Distances beyond the largest number are infinite.
        if (input.areWithin(1e150)) {
            const bool is_exact = input.areWhole() && target.index >= 0;
            check_nearest(answers.back(), points, target, k, is_exact);
        }
    }
    for (const InstructionSet instructions : test::available_instruction_sets()) {
        const test::InstructionLimit limit(instructions);
        std::srand(kSeed);
        const NeighbourIndex index(input.values.data(), input.count(), input.dims);
        OVIK_REQUIRE(std::rand() == next_draw);
        for (const std::size_t group_size : {std::size_t{1}, 1 + input.choices[2] % kTargets}) {
            OVIK_REQUIRE(ask(index, targets, group_size, k) == answers);
        }
        std::srand(kSeed);
        check_search(input, targets, answers, k);
        OVIK_REQUIRE(std::rand() == next_draw);
    }
}

}  // namespace
}  // namespace ovik

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kMostPoints = 80;
    omp_set_num_threads(1);
    ovik::check_points(ovik::test::PointsInput(data, size, kMostPoints));
    return 0;
}
