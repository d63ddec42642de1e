#pragma once

#include <cstddef>
#include <vector>

#include "stats/slice_layout.h"
#include "util/parallel.h"
#include "util/ranks.h"

namespace ovik {

/// Which rows of a fit each of several ranks has: as many whole windows of `SliceLayout` as one
/// after the other, so that the slices of the rows of a rank are those that they are in among all
/// rows. A rank has none where there are fewer windows than ranks.
class RankRows {
  public:
    static constexpr std::size_t kWindowRows = SliceLayout::kWindowRows;

    /// @param count  of all rows
    /// @param ranks  have to outlive the object
    explicit RankRows(std::size_t count, Ranks& ranks = one_rank())
        : count_(count),
          ranks_(&ranks),
          own_(of(ranks.rank())) {}

    /// Of all ranks together.
    [[nodiscard]] std::size_t count() const { return count_; }

    /// Those of this rank.
    [[nodiscard]] IndexRange own() const { return own_; }

    [[nodiscard]] Ranks& ranks() const { return *ranks_; }

    /// Those of a rank.
    [[nodiscard]] IndexRange of(std::size_t rank) const;

    /// The rank that has a row.
    [[nodiscard]] std::size_t ownerOf(std::size_t row) const;

    /// Gives all what each has of its rows.
    ///
    /// @param values   row-major, count x columns
    void gather(double* values, std::size_t columns, Errand errand) const;

  private:
    [[nodiscard]] std::size_t windows() const { return (count_ + kWindowRows - 1) / kWindowRows; }

    std::size_t count_;
    Ranks* ranks_;
    IndexRange own_;
};

}  // namespace ovik
