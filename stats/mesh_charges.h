#pragma once

#include <cstddef>
#include <cstdint>

#include "stats/kernels/mesh_points.h"
#include "stats/mesh_order.h"
#include "stats/work_array.h"
#include "util/ranks.h"

namespace ovik {

/// What a weight 1 of charges is multiplied by before it becomes a whole number, a power of two.
///
/// No point adds more than kLargestCharge = 66^2 < 2^13 times the scale to a cell, and rounding no
/// more than a half: N < 2^b points add less than 2^(b + 13) times the scale in all. With a scale
/// of at most 2^(49 - b) the sums, of whatever sign a rounded weight has, stay below 2^62, and
/// within 64 bits; with one of at most 2^37 a charge is below 2^50, as the kernels need it.
///
/// @throws std::length_error if there are 2^40 points or more, for which charges would be coarse
double charge_scale(std::size_t N);

/// The charges of points on the cells of a mesh: sums of whole numbers, which are the same in
/// whatever order and by however many threads they are formed.
class MeshCharges {
  public:
    /// Spreads the charges of points, and writes those of all cells.
    ///
    /// @param order  over a mesh of `rows`
    /// @param N      points
    /// @param field  rows x stride; a power of two times 120^2 in all for each point
    /// @throws WorkMemoryError
    void spread(
        const MeshOrder& order, std::size_t N, std::size_t rows, std::size_t stride, double* field);

    /// The same of several ranks, of which each has some of the points.
    ///
    /// @param order  of the points of this rank
    /// @param N      points of all ranks
    void spread(const MeshOrder& order,
                std::size_t N,
                std::size_t rows,
                std::size_t stride,
                double* field,
                Ranks& ranks);

    /// Charge of a cell of the last field, without the rounding that a double may take.
    [[nodiscard]] std::int64_t sum(std::size_t row, std::size_t column) const;

  private:
    void spreadBands(const MeshOrder& order, std::size_t N, std::size_t stride);

    std::size_t stride_ = 0;
    /// For each band, its rows and those behind them that splines of its points touch.
    WorkArray<std::int64_t> bands_;
    /// Of all cells, where several ranks add theirs.
    WorkArray<std::int64_t> sums_;
};

}  // namespace ovik
