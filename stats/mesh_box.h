#pragma once

#include <cstddef>

#include "stats/mesh_grid.h"

namespace ovik {

/// Most points beyond each side of a mesh.
constexpr std::size_t kMostBeyond = 64;

/// The box of a map under which a mesh lies: all of it or, where a few points that have flown far
/// out make the mesh large, a smaller one that leaves up to `kMostBeyond` of them outside each
/// side, if what those cost pair by pair (`FarPoints`) is less than what the mesh saves.
///
/// Follows from where the points lie alone, whatever their order.
///
/// @param Y  row-major, N x 2
MapBox mesh_box(const double* Y, std::size_t N);

}  // namespace ovik
