#pragma once

#include <cstddef>
#include <cstdint>

#include "util/malloc_pointer.h"

namespace ovik {

/// So many rows are visited around one of them before the next is chosen.
constexpr std::size_t kNeighbourhoodRows = 4096;

/// An order of points in which most of the nearest neighbours of each are not far from it: a
/// breadth-first walk along the neighbours that begins anew, as near as it can, whenever it has
/// visited `kNeighbourhoodRows` rows. Rows that no walk comes by stand where their nearest
/// neighbour does.
///
/// @param neighbours  of each row, nearest first; N x count
/// @return the row at each place
/// @throws WorkMemoryError
/// @complexity O(N * count)
MallocArray<std::uint32_t> neighbour_order(const std::uint32_t* neighbours,
                                           std::size_t N,
                                           std::size_t count);

}  // namespace ovik
