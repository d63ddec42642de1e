#pragma once

#include <cstddef>

#include "stats/mesh_grid.h"

namespace ovik {

/// Most points beyond each side of a mesh.
constexpr std::size_t kMostBeyond = 64;

/// The box of a map under which a mesh lies.
///
/// That of the map, if its mesh is small. Else the one that costs least of that, of those that
/// leave up to `kMostBeyond` points outside each side, which are taken pair by pair (`FarPoints`),
/// and, with up to some 9000 points, of none at all: then all are. If all boxes have more cells
/// than a mesh may have it is that of the map, which `mesh_grid` refuses.
///
/// Follows from where the points lie alone, whatever their order.
///
/// @param Y  row-major, N x 2
MapBox mesh_box(const double* Y, std::size_t N);

}  // namespace ovik
