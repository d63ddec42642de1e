#pragma once

#include "stats/joint_matrix.h"
#include "stats/rank_rows.h"
#include "stats/sparse_affinities.h"
#include "util/matrix_view.h"

namespace ovik {

/// Conditional affinities of the rows that a rank has to their nearest neighbours among all rows:
/// those that `conditional_rows` gives for all. Parts of the rows go round the ranks
/// (`RankNearest`); of an approximate search each rank gets all of them, and makes it whole.
///
/// @param points  all rows; their values are read of the first rank's alone
/// @param rows    as each rank has them
/// @param K       not negative
/// @param hooks   without cached neighbours, and with a stream that gives the same numbers to each
/// rank; the graph, that of all rows, is for the first rank
/// @return a row for each of the rank's, in their order; columns are numbers of all rows
/// @throws what `conditional_rows` throws
ConditionalRows conditional_rows_of_rank(MatrixView<const double> points,
                                         RowAffinities& affinities,
                                         int K,
                                         ValueForm form,
                                         const NeighbourHooks& hooks,
                                         const RankRows& rows);

}  // namespace ovik
