#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "stats/neighbourhood_quality.h"

namespace ovik {

/// What is compared of one row.
struct ComparedRow {
    /// Its nearest in the input and in the embedding, the nearest first.
    std::span<const std::uint32_t> in_data;
    std::span<const std::uint32_t> on_map;
    /// The ranks of the latter in the input, from 0.
    std::span<const std::uint32_t> ranks;
};

/// What is found out of all rows, each of which is added once; several threads may add rows.
class ComparedRows {
  public:
    /// @param sizes      of the neighbourhoods; must outlive the object
    /// @param misplaced  null, or with the numbers of rows that are near and not far; its lists are
    /// written
    ComparedRows(std::size_t N,
                 const std::vector<std::size_t>& sizes,
                 MisplacedNeighbours* misplaced);

    [[nodiscard]] std::size_t rowCount() const { return sums_.size(); }

    /// How many nearest rows are looked at.
    [[nodiscard]] std::size_t wanted() const;

    /// @param row  with as many of all as are wanted
    void add(std::size_t n, const ComparedRow& row);

    /// The quality for each size.
    [[nodiscard]] std::vector<NeighbourhoodQuality> quality() const;

  private:
    /// Sums over rows for one size k of neighbourhoods; whole numbers, so that their order is of no
    /// matter.
    struct Sums {
        /// By how much the ranks in the input of the k nearest rows in the embedding exceed k, in
        /// all: trustworthiness falls with it.
        std::uint64_t excess = 0;
        /// How many of the k nearest rows in the input are among the k nearest in the embedding.
        std::uint64_t recalled = 0;
    };

    [[nodiscard]] std::vector<Sums> sumsOf(std::span<const std::uint32_t> ranks) const;
    [[nodiscard]] NeighbourhoodQuality qualityOf(std::size_t which) const;
    static double trustworthiness(const Sums& sums, double rows, double N, double k);

    const std::vector<std::size_t>& sizes_;
    MisplacedNeighbours* misplaced_;
    std::vector<std::vector<Sums>> sums_;
};

}  // namespace ovik
