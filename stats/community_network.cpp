#include "stats/community_network.h"

namespace ovik {

CommunityNetwork::CommunityNetwork(const SparseMatrixView& graph, std::size_t N) : strengths_(N) {
    starts_.reserve(N + 1);
    edges_.reserve(graph.row_P[N]);
    for (std::size_t n = 0; n < N; ++n) {
        for (unsigned int i = graph.row_P[n]; i < graph.row_P[n + 1]; ++i) {
            const double weight = graph.val_P[i];
            strengths_[n] += weight;
            if (weight > 0.0 && graph.col_P[i] != n) {
                edges_.push_back({graph.col_P[i], weight});
            }
        }
        starts_.push_back(edges_.size());
        total_ += strengths_[n];
    }
}

CommunityNetwork CommunityNetwork::aggregated(std::span<const std::uint32_t> groups,
                                              std::size_t group_count) const {
    std::vector<std::vector<std::uint32_t>> members(group_count);
    for (std::size_t node = 0; node < groups.size(); ++node) {
        members[groups[node]].push_back(static_cast<std::uint32_t>(node));
    }
    CommunityNetwork result;
    result.strengths_.resize(group_count);
    result.starts_.reserve(group_count + 1);
    CommunityWeights weights(group_count);
    const auto add_edges_out_of = [&](std::size_t group, std::uint32_t node) {
        for (const NetworkEdge& edge : edges(node)) {
            if (groups[edge.neighbour] != group) {
                weights.add(groups[edge.neighbour], edge.weight);
            }
        }
    };
    for (std::size_t group = 0; group < group_count; ++group) {
        for (const std::uint32_t node : members[group]) {
            result.strengths_[group] += strengths_[node];
            add_edges_out_of(group, node);
        }
        for (const std::uint32_t other : weights.met()) {
            result.edges_.push_back({other, weights.of(other)});
        }
        weights.clear();
        result.starts_.push_back(result.edges_.size());
    }
    result.total_ = total_;
    return result;
}

}  // namespace ovik
