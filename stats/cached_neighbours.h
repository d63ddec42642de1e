#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "neighbours/neighbour_index.h"
#include "results/checkpoint.h"
#include "util/parallel.h"
#include "util/random_stream.h"

namespace ovik {

/// The nearest neighbours of all rows of a matrix, found once for several runs of different
/// perplexity over it.
///
/// The first run finds as many neighbours as any will want. Later ones get the head of each list
/// where it is certain to be what a search of its own would give. Where distances are equal, or
/// too close at the end of the head, that depends on the way of the search, and it is made again.
/// The stream of random numbers is left as a search of its own leaves it.
class CachedNeighbours {
  public:
    /// @param most  neighbours of a row that any run will want, without the row itself
    explicit CachedNeighbours(std::size_t most) : most_(most + 1) {}

    /// The index over the points, built by the first call.
    ///
    /// @param points  row-major, N x dims
    /// @throws std::invalid_argument if the points are not those of the first call
    const NeighbourIndex& index(const double* points,
                                std::size_t N,
                                std::size_t dims,
                                RandomStream& random = process_random_stream());

    /// Does what `NeighbourIndex::search` does, for the rows at some positions of the tree order.
    /// Several threads may ask at once for different positions.
    ///
    /// @param positions  at most `kTargets`
    /// @param targets    the rows at these positions
    void search(IndexRange positions,
                const double* const* targets,
                std::size_t count,
                NeighbourIndex::Queries& queries);

  private:
    using Neighbour = NeighbourIndex::Neighbour;

    [[nodiscard]] bool isCertain(std::size_t position, std::size_t count) const;

    /// How many neighbours of each row are cached, the row itself among them.
    std::size_t most_;
    std::unique_ptr<NeighbourIndex> index_;
    std::size_t N_ = 0;
    Digest points_{};
    /// Distances that differ by less may be told apart in one search and not in another.
    double margin_ = 0.0;
    /// `most_` for each position, of which `found_` are there.
    std::vector<Neighbour> lists_;
    std::vector<std::size_t> found_;
    /// Not a bit each: threads write side by side.
    std::vector<char> has_list_;
};

}  // namespace ovik
