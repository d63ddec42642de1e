#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "stats/sparse_matrix.h"

namespace ovik {

/// An edge of a network, seen from one of its ends.
struct NetworkEdge {
    std::uint32_t neighbour;
    double weight;
};

/// A weighted network in which communities are looked for: the rows of a graph, or what groups of
/// them come to when each becomes a node.
class CommunityNetwork {
  public:
    /// The network of the rows of a graph.
    ///
    /// @param graph  symmetric, N rows, entries not negative; those of 0, and those on the
    ///               diagonal, are no edges
    CommunityNetwork(const SparseMatrixView& graph, std::size_t N);

    /// The network that has a node for each group of nodes of another.
    ///
    /// @param groups  of each node, below `group_count`
    [[nodiscard]] CommunityNetwork aggregated(std::span<const std::uint32_t> groups,
                                              std::size_t group_count) const;

    [[nodiscard]] std::size_t nodeCount() const { return strengths_.size(); }

    /// The edges of a node to others.
    [[nodiscard]] std::span<const NetworkEdge> edges(std::size_t node) const {
        return std::span(edges_).subspan(starts_[node], starts_[node + 1] - starts_[node]);
    }

    /// The sum of the weights at a node, with those within the group that it stands for twice.
    [[nodiscard]] double strength(std::size_t node) const { return strengths_[node]; }

    /// The sum of all strengths.
    [[nodiscard]] double totalStrength() const { return total_; }

  private:
    CommunityNetwork() = default;

    std::vector<std::size_t> starts_{0};
    std::vector<NetworkEdge> edges_;
    std::vector<double> strengths_;
    double total_ = 0.0;
};

/// Sums the weights of a node's edges by the communities that they lead to.
class CommunityWeights {
  public:
    explicit CommunityWeights(std::size_t community_count)
        : weights_(community_count),
          is_met_(community_count) {}

    /// Adds to the weight of a community.
    void add(std::uint32_t community, double weight) {
        if (!is_met_[community]) {
            is_met_[community] = 1;
            met_.push_back(community);
        }
        weights_[community] += weight;
    }

    /// The communities that weights were added to, in the order in which they were met.
    [[nodiscard]] const std::vector<std::uint32_t>& met() const { return met_; }

    [[nodiscard]] double of(std::uint32_t community) const { return weights_[community]; }

    /// Forgets all weights.
    void clear() {
        for (const std::uint32_t community : met_) {
            weights_[community] = 0.0;
            is_met_[community] = 0;
        }
        met_.clear();
    }

  private:
    std::vector<double> weights_;
    std::vector<char> is_met_;
    std::vector<std::uint32_t> met_;
};

}  // namespace ovik
