#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "stats/sparse_matrix.h"

namespace ovik {

/// Communities of a weighted graph by the Leiden algorithm, for the modularity at a resolution.
///
/// Nodes are moved between communities while that raises the modularity; each community is then
/// refined, beginning with its nodes alone; the network of what they are refined to is treated
/// alike, beginning with the communities, until each is a node of its own. All of it is done again
/// while that raises the modularity. Every community is connected, none can be joined with another,
/// and no row moved to another, to a higher modularity.
///
/// That depends on the order in which nodes are visited. Ten orders are drawn, from a stream of
/// random numbers with a fixed seed each, and the communities of the highest modularity are the
/// result, of equally good ones the first. Of equal gains the community that is met first counts;
/// refining takes the largest gain, where the algorithm as published draws among them. The result
/// is the same for any number of threads.
///
/// @param graph       symmetric, N rows, entries not negative
/// @param resolution  above 0; larger ones give more, and smaller, communities
/// @return the community of each row: the largest is 0, of equally large ones that of the first row
/// @par Source Traag, Waltman and van Eck, "From Louvain to Leiden: guaranteeing well-connected
/// communities", Sci. Rep. 9:5233, 2019
std::vector<std::uint32_t> leiden_communities(const SparseMatrixView& graph,
                                              std::size_t N,
                                              double resolution = 1.0);

}  // namespace ovik
