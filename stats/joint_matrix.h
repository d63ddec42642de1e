#pragma once

#include <cstddef>
#include <cstdint>

#include "stats/kernels/slice_pass.h"
#include "stats/sliced_matrix.h"
#include "util/malloc_pointer.h"

namespace ovik {

/// The nearest neighbours of every row with their conditional affinities: as many for each.
struct ConditionalRows {
    std::size_t rows = 0;
    std::size_t row_length = 0;
    /// With `OneOrTwo` all affinities are the reciprocal of the row length, and none are stored.
    ValueForm form = ValueForm::Double;
    /// rows x row_length; distinct within a row, but that it may have itself several times.
    MallocArray<std::uint32_t> columns;
    MallocArray<double> doubles;
    MallocArray<float> singles;
};

/// From so many rows on their order in memory is worth choosing: points of fewer are in the cache.
constexpr std::size_t kLeastReordered = std::size_t{1} << 16U;

/// Refuses embeddings with more coordinates than places of a form can count.
///
/// @throws std::length_error
void check_coordinates(std::size_t N, std::size_t dims, ValueForm form);

/// The joint affinities, (P(m|n) + P(n|m)) / 2 where one of the two is stored, divided by the sum
/// of all in the order of the rows.
///
/// Row n lists, in the order in which rows 0, 1, ... bring them up, its own entries and those of
/// other rows that point at n, as `symmetrized` does. The conditional affinities become the joint
/// ones where they lie: beside those there are, at any time, at most 1 byte a conditional entry, 20
/// bytes a row, and the entries of 4096 rows.
///
/// @param dims   of the embeddings
/// @param order  the row at each place of the order in which the rows are to lie; null for their
/// own
/// @throws WorkMemoryError
/// @throws std::length_error if an embedding has more coordinates than 32 bits can count, or 31
/// with `OneOrTwo`
SlicedMatrix joint_matrix(ConditionalRows conditional,
                          std::size_t dims,
                          MallocArray<std::uint32_t> order = nullptr);

}  // namespace ovik
