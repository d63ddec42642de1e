#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "stats/kernels/far_pairs.h"
#include "stats/mesh_grid.h"
#include "stats/rank_rows.h"
#include "stats/work_array.h"

namespace ovik {

/// The repulsion between the few points of a map that lie outside the box of a mesh and all others,
/// pair by pair.
///
/// What a far point adds up of all others is summed in whole numbers, and what the others add up of
/// far points in the order of where these lie, so that neither the order of the points nor the
/// number of threads matters.
class FarPoints {
  public:
    /// @param Y  row-major, N x 2
    /// @throws WorkMemoryError
    void compute(const double* Y, std::size_t N, const MapBox& box) {
        compute(Y, RankRows(N), box);
    }

    /// The same of several ranks, each for the points that it has.
    void compute(const double* Y, const RankRows& rows, const MapBox& box);

    /// Has none.
    void clear() {
        indices_.clear();
        own_.clear();
    }

    /// How many there are, those of all ranks.
    [[nodiscard]] std::size_t size() const { return indices_.size(); }

    /// Adds to the force on, and the normalisation of, a point in the box.
    ///
    /// @param forces   row-major, N x 2
    /// @param z_terms  N values
    void addTo(std::size_t point, double* forces, double* z_terms) const;

    /// Writes the force on, and the normalisation of, far point `i` of those that the rank has.
    ///
    /// @param forces   row-major, N x 2
    /// @param z_terms  N values
    void write(std::size_t i, double* forces, double* z_terms) const;

  private:
    void find(const double* Y, const RankRows& rows, const MapBox& box);
    void sumPairs(const double* Y, const RankRows& rows);

    double scale_ = 0.0;
    std::vector<std::size_t> indices_;
    /// Which of them the rank has, and its first point.
    std::vector<std::size_t> own_;
    std::size_t first_ = 0;
    std::vector<FarPlace> places_;
    /// For each chunk of the points, kFarSums rows: what far points add to each.
    WorkArray<double> of_points_;
    /// kFarSums of each far point.
    std::vector<std::int64_t> of_far_points_;
};

}  // namespace ovik
