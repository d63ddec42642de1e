#pragma once

#include <cstddef>

#include "stats/joint_matrix.h"
#include "stats/rank_rows.h"
#include "stats/sliced_matrix.h"

namespace ovik {

/// The rows that a rank has of the joint affinities, which are those of `joint_matrix`: what others
/// store of a row comes from the ranks that have them.
///
/// @param conditional  of the rank's rows; columns are numbers of all rows
/// @param dims         of the embeddings
/// @throws WorkMemoryError
/// @throws std::length_error as `joint_matrix` does
SlicedMatrix joint_matrix_of_rank(ConditionalRows conditional,
                                  std::size_t dims,
                                  const RankRows& rows);

}  // namespace ovik
