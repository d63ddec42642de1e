#pragma once

#include <cstddef>
#include <vector>

#include "stats/kernels/mesh_points.h"
#include "stats/mesh_grid.h"
#include "stats/work_array.h"
#include "util/parallel.h"

namespace ovik {

/// Rows of a mesh whose points are spread by one task.
constexpr std::size_t kBandRows = 8;

/// The points of a map in the order of where they lie in a mesh: by bands of rows, and within a
/// band by blocks of columns, so that who goes along them stays among few cells.
class MeshOrder {
  public:
    /// Orders the points of an embedding that lie in a box; those of a block may come in any
    /// order.
    ///
    /// @param Y     row-major, N x 2
    /// @param box   that of the grid
    void sort(const double* Y, std::size_t N, const MapBox& box, const MeshGrid& grid) {
        sort(Y, IndexRange{0, N}, box, grid);
    }

    /// The same of some of the points.
    void sort(const double* Y, IndexRange points, const MapBox& box, const MeshGrid& grid);

    [[nodiscard]] const MeshPoint* points() const { return points_.get(); }

    /// How many lie in the box.
    [[nodiscard]] std::size_t size() const { return starts_.back(); }

    [[nodiscard]] std::size_t bands() const { return bands_; }

    /// The points of a band.
    [[nodiscard]] IndexRange band(std::size_t band) const {
        return {starts_[band * blocks_], starts_[(band + 1) * blocks_]};
    }

  private:
    std::size_t bands_ = 0;
    std::size_t blocks_ = 0;
    WorkArray<MeshPoint> points_;
    /// First point of each block of each band, and the number of points.
    std::vector<std::size_t> starts_;
    /// For each chunk of the points and each block: how many it has, then where the next one goes.
    std::vector<std::size_t> places_;
};

}  // namespace ovik
