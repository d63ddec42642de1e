#pragma once

#include "stats/joint_matrix.h"
#include "stats/sparse_affinities.h"
#include "util/matrix_view.h"

namespace ovik {

/// Conditional affinities of every point to its nearest neighbours, of any kind, for
/// `joint_matrix`; else as `conditional_affinities`, and without a limit to the number of entries.
///
/// @param form  how they are stored. `OneOrTwo` is for uniform ones; where a row has fewer
/// neighbours than others they are stored as `Double`, after all
ConditionalRows conditional_rows(MatrixView<const double> points,
                                 RowAffinities& rows,
                                 int K,
                                 ValueForm form,
                                 const NeighbourHooks& hooks = {});

}  // namespace ovik
