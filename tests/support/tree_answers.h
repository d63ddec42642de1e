#pragma once

#include <cstdlib>
#include <vector>

#include "neighbours/data_point.h"
#include "neighbours/euclidean_distance.h"
#include "neighbours/vptree.h"

/// What the vantage-point tree finds for each of its points: what every other search has to find.

namespace ovik::test {

/// The seed of `rand` before the tree is built.
constexpr unsigned int kTreeSeed = 5;

struct Answer {
    std::vector<int> rows;
    std::vector<double> distances;

    bool operator==(const Answer&) const = default;
};

struct Answers {
    std::vector<Answer> of_rows;
    /// What `rand` gives after the tree was built.
    int next_draw = 0;

    bool operator==(const Answers&) const = default;
};

/// @param points  row-major
/// @param count   neighbours of each, itself among them
inline Answers answers_of_tree(const std::vector<double>& points, std::size_t dims, int count) {
    std::vector<DataPoint<double>> list;
    for (std::size_t n = 0; n < points.size() / dims; ++n) {
        list.emplace_back(static_cast<int>(dims), static_cast<int>(n), points.data() + n * dims);
    }
    std::srand(kTreeSeed);
    VpTree<DataPoint<double>, &euclidean_distance> tree;
    tree.create(list);
    Answers answers{{}, std::rand()};
    for (const auto& target : list) {
        std::vector<DataPoint<double>> results;
        Answer answer;
        tree.search(target, count, &results, &answer.distances);
        for (const auto& result : results) {
            answer.rows.push_back(result.index);
        }
        answers.of_rows.push_back(answer);
    }
    return answers;
}

}  // namespace ovik::test
