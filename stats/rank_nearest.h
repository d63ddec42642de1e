#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "neighbours/near_row.h"
#include "neighbours/neighbour_search.h"
#include "neighbours/part_search.h"
#include "neighbours/search_manner.h"
#include "stats/rank_rows.h"
#include "util/matrix_view.h"

namespace ovik {

/// The nearest others of the rows that a rank has among all rows: exactly those that
/// `NeighbourSearch` finds, in its order.
///
/// Each rank gets its part of the rows, and the parts go round all ranks, so that none but the
/// first, where they come from, has more than three at once. Where equal distances leave it to the
/// way of a search through a tree, the first rank looks there.
class RankNearest {
  public:
    /// @param points  all rows; their values are read of the first rank's alone
    /// @param wanted  how many others are wanted of each row
    /// @param tree    over as many rows; each rank has drawn the same for it
    /// @param manner  of an exact search
    /// @throws what the manner's `on_stage` throws
    RankNearest(MatrixView<const double> points,
                std::size_t wanted,
                NeighbourSearch& tree,
                const NeighbourSearchManner& manner,
                const RankRows& rows);

    /// @param place  of the row among those of the rank
    /// @return nearest first; fewer than are wanted where there are not so many at a finite
    /// distance
    [[nodiscard]] std::span<const NearRow> of(std::size_t place) const;

  private:
    struct Parts;

    void passRound(const Parts& parts, double extent, const NeighbourSearchManner& manner);
    [[nodiscard]] std::vector<std::uint32_t> undecided(double margin, NeighbourTies ties) const;
    void askTree(MatrixView<const double> points,
                 NeighbourSearch& tree,
                 const NeighbourSearchManner& manner,
                 std::span<const std::uint32_t> rows);
    void store(std::span<const std::byte> answers);

    std::size_t wanted_;
    RankRows rows_;
    /// The rank's part, which the search looks at; that of the first one lies among all rows.
    std::vector<double> own_values_;
    /// None without rows, or where they cannot be compared in single precision.
    std::optional<PartSearch> search_;
    /// What the tree has found, of the places of its rows.
    std::unordered_map<std::size_t, std::vector<NearRow>> answers_;
};

}  // namespace ovik
