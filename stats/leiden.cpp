#include "stats/leiden.h"

#include <algorithm>
#include <deque>
#include <numeric>
#include <optional>
#include <utility>

#include "stats/community_network.h"
#include "stats/modularity.h"
#include "util/parallel.h"
#include "util/random_stream.h"

namespace ovik {

namespace {

using Communities = std::vector<std::uint32_t>;

/// Gains below this share of a node's strength are those of rounding: nodes would move to and fro.
constexpr double kLeastGain = 1e-10;

/// Gives communities the numbers 0, 1, ... in the order of their first members.
///
/// @return how many there are
std::size_t renumber(Communities& communities) {
    constexpr std::uint32_t kNone = static_cast<std::uint32_t>(-1);
    std::vector<std::uint32_t> numbers(communities.size(), kNone);
    std::uint32_t count = 0;
    for (std::uint32_t& community : communities) {
        if (numbers[community] == kNone) {
            numbers[community] = count++;
        }
        community = numbers[community];
    }
    return count;
}

Communities each_by_itself(std::size_t count) {
    Communities communities(count);
    std::iota(communities.begin(), communities.end(), 0U);
    return communities;
}

/// The sums of strengths of communities.
std::vector<double> strengths_of(const CommunityNetwork& network, const Communities& communities) {
    std::vector<double> strengths(network.nodeCount());
    for (std::size_t node = 0; node < network.nodeCount(); ++node) {
        strengths[communities[node]] += network.strength(node);
    }
    return strengths;
}

/// The numbers below a count in an order that is drawn.
std::vector<std::uint32_t> drawn_order(std::size_t count, RandomStream& random) {
    std::vector<std::uint32_t> order = each_by_itself(count);
    for (std::size_t left = count; left > 1; --left) {
        // Two draws: there may be more nodes than numbers of one.
        const auto high = static_cast<std::uint64_t>(random.next());
        const std::uint64_t draw = (high << 31U) + static_cast<std::uint64_t>(random.next());
        std::swap(order[left - 1], order[draw % left]);
    }
    return order;
}

/// Moves single nodes to where the modularity is largest, until none gains by it.
class NodeMoves {
  public:
    /// @param communities  below the number of nodes; changed in place
    NodeMoves(const CommunityNetwork& network, double resolution, Communities& communities)
        : network_(network),
          share_(resolution / network.totalStrength()),
          communities_(communities),
          strengths_(strengths_of(network, communities)),
          sizes_(network.nodeCount()),
          weights_(network.nodeCount()) {
        for (const std::uint32_t community : communities) {
            ++sizes_[community];
        }
        for (std::size_t community = network.nodeCount(); community-- > 0;) {
            if (sizes_[community] == 0) {
                empty_.push_back(static_cast<std::uint32_t>(community));
            }
        }
    }

    /// @param order  of the first visits
    /// @return whether any has moved
    bool run(const std::vector<std::uint32_t>& order) {
        bool has_moved = false;
        std::deque<std::uint32_t> queue(order.begin(), order.end());
        std::vector<char> is_queued(network_.nodeCount(), 1);
        while (!queue.empty()) {
            const std::uint32_t node = queue.front();
            queue.pop_front();
            is_queued[node] = 0;
            if (!move(node)) {
                continue;
            }
            has_moved = true;
            for (const NetworkEdge& edge : network_.edges(node)) {
                if (communities_[edge.neighbour] != communities_[node] &&
                    is_queued[edge.neighbour] == 0) {
                    is_queued[edge.neighbour] = 1;
                    queue.push_back(edge.neighbour);
                }
            }
        }
        return has_moved;
    }

  private:
    /// Moves a node where it gains most by it.
    ///
    /// @return whether it has moved
    bool move(std::uint32_t node) {
        const std::uint32_t from = communities_[node];
        const double strength = network_.strength(node);
        strengths_[from] -= strength;
        for (const NetworkEdge& edge : network_.edges(node)) {
            weights_.add(communities_[edge.neighbour], edge.weight);
        }
        const auto gain = [&](std::uint32_t community) {
            return weights_.of(community) - share_ * strength * strengths_[community];
        };
        std::uint32_t to = from;
        double largest = gain(from) + kLeastGain * strength;
        for (const std::uint32_t community : weights_.met()) {
            if (gain(community) > largest) {
                largest = gain(community);
                to = community;
            }
        }
        // By itself it gains nothing, and may lose by any company.
        if (largest < 0.0 && sizes_[from] > 1) {
            to = empty_.back();
            empty_.pop_back();
        }
        weights_.clear();
        strengths_[to] += strength;
        if (to == from) {
            return false;
        }
        if (--sizes_[from] == 0) {
            // What is left of the sum is rounding.
            strengths_[from] = 0.0;
            empty_.push_back(from);
        }
        ++sizes_[to];
        communities_[node] = to;
        return true;
    }

    const CommunityNetwork& network_;
    double share_;
    Communities& communities_;
    std::vector<double> strengths_;
    std::vector<std::size_t> sizes_;
    std::vector<std::uint32_t> empty_;
    CommunityWeights weights_;
};

/// Builds parts of communities out of single nodes, each part connected and well connected with the
/// rest of its community.
class Refinement {
  public:
    Refinement(const CommunityNetwork& network, double resolution, const Communities& communities)
        : network_(network),
          share_(resolution / network.totalStrength()),
          communities_(communities),
          totals_(strengths_of(network, communities)),
          parts_(each_by_itself(network.nodeCount())),
          strengths_(strengths_of(network, parts_)),
          outward_(network.nodeCount()),
          is_alone_(network.nodeCount(), 1),
          weights_(network.nodeCount()) {
        for (std::size_t node = 0; node < network.nodeCount(); ++node) {
            for (const NetworkEdge& edge : network.edges(node)) {
                outward_[node] += isWithin(node, edge) ? edge.weight : 0.0;
            }
        }
    }

    /// The part of each node.
    Communities parts(const std::vector<std::uint32_t>& order) {
        for (const std::uint32_t node : order) {
            if (is_alone_[node] != 0 && isWellConnected(node, communities_[node])) {
                join(node);
            }
        }
        return parts_;
    }

  private:
    [[nodiscard]] bool isWithin(std::size_t node, const NetworkEdge& edge) const {
        return communities_[edge.neighbour] == communities_[node];
    }

    /// Whether a part has as much weight to the rest of its community as chance would give it.
    [[nodiscard]] bool isWellConnected(std::uint32_t part, std::uint32_t community) const {
        const double strength = strengths_[part];
        return outward_[part] >=
               share_ * strength * (totals_[community] - strength) - kLeastGain * strength;
    }

    /// Joins a node that is alone with the part of its community where that gains most.
    void join(std::uint32_t node) {
        for (const NetworkEdge& edge : network_.edges(node)) {
            if (isWithin(node, edge)) {
                weights_.add(parts_[edge.neighbour], edge.weight);
            }
        }
        std::uint32_t to = node;
        double largest = -kLeastGain * strengths_[node];
        for (const std::uint32_t part : weights_.met()) {
            const double gain = weights_.of(part) - share_ * strengths_[node] * strengths_[part];
            if (gain > largest && isWellConnected(part, communities_[node])) {
                largest = gain;
                to = part;
            }
        }
        if (to != node) {
            outward_[to] += outward_[node] - 2.0 * weights_.of(to);
            strengths_[to] += strengths_[node];
            parts_[node] = to;
            is_alone_[to] = 0;
        }
        weights_.clear();
    }

    const CommunityNetwork& network_;
    double share_;
    const Communities& communities_;
    /// Strengths of the communities, and of the parts.
    std::vector<double> totals_;
    Communities parts_;
    std::vector<double> strengths_;
    /// The weight from each part to the rest of its community.
    std::vector<double> outward_;
    /// Whether no other node has joined a node.
    std::vector<char> is_alone_;
    CommunityWeights weights_;
};

/// One round over all levels: from communities of the rows to better ones.
Communities improved(const CommunityNetwork& rows,
                     double resolution,
                     const Communities& before,
                     RandomStream& random) {
    const CommunityNetwork* network = &rows;
    std::optional<CommunityNetwork> aggregate;
    Communities communities = before;
    // The node of each row.
    Communities nodes = each_by_itself(rows.nodeCount());
    for (;;) {
        const std::vector<std::uint32_t> order = drawn_order(network->nodeCount(), random);
        const bool has_moved = NodeMoves(*network, resolution, communities).run(order);
        Communities parts = Refinement(*network, resolution, communities).parts(order);
        const std::size_t part_count = renumber(parts);
        if (part_count == network->nodeCount()) {
            if (!has_moved) {
                // Each node is a community, and none is left to be joined.
                return nodes;
            }
            // Moves of others may have left nodes in a community that they would leave.
            continue;
        }
        // Each community has at least one part: its number is one that a part can have.
        renumber(communities);
        Communities of_parts(part_count);
        for (std::size_t node = 0; node < parts.size(); ++node) {
            of_parts[parts[node]] = communities[node];
        }
        for (std::uint32_t& node : nodes) {
            node = parts[node];
        }
        aggregate = network->aggregated(parts, part_count);
        network = &*aggregate;
        communities = std::move(of_parts);
    }
}

/// The largest community becomes 0; of equally large ones that of the first row comes first.
void number_by_size(Communities& communities) {
    const std::size_t count = renumber(communities);
    std::vector<std::size_t> sizes(count);
    for (const std::uint32_t community : communities) {
        ++sizes[community];
    }
    Communities order = each_by_itself(count);
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        return sizes[a] > sizes[b];
    });
    Communities numbers(count);
    for (std::size_t place = 0; place < count; ++place) {
        numbers[order[place]] = static_cast<std::uint32_t>(place);
    }
    for (std::uint32_t& community : communities) {
        community = numbers[community];
    }
}

struct Found {
    Communities communities;
    double modularity = 0.0;
};

/// Communities of a graph with edges, by orders that a seed draws.
///
/// @param rows  the same graph as a network
Found communities_by_seed(const SparseMatrixView& graph,
                          const CommunityNetwork& rows,
                          double resolution,
                          unsigned int seed) {
    OwnRandomStream random;
    random.seed(seed);
    Found found{each_by_itself(rows.nodeCount())};
    found.modularity = modularity(graph, found.communities, resolution);
    for (;;) {
        Found next{improved(rows, resolution, found.communities, random)};
        renumber(next.communities);
        next.modularity = modularity(graph, next.communities, resolution);
        // A round may lead to other communities that are as good: it ends for want of better ones.
        if (next.modularity <= found.modularity) {
            return found;
        }
        found = std::move(next);
    }
}

}  // namespace

std::vector<std::uint32_t> leiden_communities(const SparseMatrixView& graph,
                                              std::size_t N,
                                              double resolution) {
    constexpr std::size_t kOrders = 10;
    const CommunityNetwork rows(graph, N);
    if (rows.totalStrength() == 0.0) {
        return each_by_itself(N);
    }
    std::vector<Found> found(kOrders);
    parallel_for_each(kOrders, 1, [&](std::size_t order) {
        const auto seed = static_cast<unsigned int>(order + 1);
        found[order] = communities_by_seed(graph, rows, resolution, seed);
    });
    const auto best =
        std::max_element(found.begin(), found.end(), [](const Found& a, const Found& b) {
            return a.modularity < b.modularity;
        });
    Communities communities = std::move(best->communities);
    number_by_size(communities);
    return communities;
}

}  // namespace ovik
