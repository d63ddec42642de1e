#pragma once

#include <cstddef>

namespace ovik {

/// The least and the greatest coordinates of a map in two dimensions; the box of no points has
/// least coordinates above the greatest.
struct MapBox {
    double least[2];
    double greatest[2];
    /// Whether all coordinates are numbers.
    bool is_finite;
};

/// Whether a point lies in the box or on its edge.
inline bool holds(const MapBox& box, const double* point) {
    return box.least[0] <= point[0] && point[0] <= box.greatest[0] && box.least[1] <= point[1] &&
           point[1] <= box.greatest[1];
}

/// @param Y  row-major, N x 2
MapBox map_box(const double* Y, std::size_t N);

/// A mesh of square cells under a map in two dimensions: what is at a coordinate y lies
/// cells_per_unit * (y - corner) cells behind the corner.
///
/// The cells follow from the box of the map and the number of points alone, so that a fit that goes
/// on from a checkpoint has those that it would have had.
struct MeshGrid {
    double cells_per_unit;
    double corner[2];
    /// Cells that splines of points in the box touch.
    std::size_t columns;
    std::size_t rows;
};

/// Three cells to a unit, with which splines of order 6 give forces to within 0.3 % of their root
/// mean square; 6, 12, ... 384 where a map is less than 64 cells wide, so that the forces among
/// points that lie close together are those of many cells.
///
/// @throws InputError if the map is no longer one of numbers, or so wide that its cells are more
///         than 4,194,304 and more than 16 for each point
MeshGrid mesh_grid(const MapBox& box, std::size_t N);

/// How many cells the mesh under a box has, if it is not refused.
double mesh_cells(const MapBox& box);

/// More cells than these are refused.
double most_mesh_cells(std::size_t N);

}  // namespace ovik
