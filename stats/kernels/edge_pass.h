#pragma once

#include <cstddef>

#include "util/instruction_set.h"

namespace ovik {

/// A sparse matrix of joint affinities and an embedding, as a pass over the entries of the matrix
/// reads them.
struct EdgeView {
    const unsigned int* row_P;
    const unsigned int* col_P;
    const double* val_P;
    /// The embedding, row-major, N x dims.
    const double* Y;
    std::size_t dims;
};

/// Two sums over the entries of a row, from which its part of the cost follows:
///
///     log_sum + log(normalisation) * weight_sum.
///
/// Each is formed in eight strands, of every eighth entry, which are then added in order.
struct RowCost {
    /// The sum of p * log((p + DBL_MIN) * (1 + squared distance)); NaN if the embedding is so wide
    /// or the affinities so far from their range that the guard of the cost's denominator may
    /// matter.
    double log_sum;
    /// The sum of the affinities p.
    double weight_sum;
};

/// Adds the attractive forces on some rows, and writes the sums of their cost.
///
/// @param begin  the rows are `begin` to `end` - 1
/// @param pos_f  row-major, N x dims; each row grows by p * q * (Y_n - Y_m) for entry after entry,
///               with q = 1 / (1 + squared distance); null if no forces are wanted
/// @param costs  N values; null if none are wanted
using EdgePass = void (*)(
    const EdgeView& edges, std::size_t begin, std::size_t end, double* pos_f, RowCost* costs);

struct EdgeKernels {
    EdgePass pass;
};

const EdgeKernels& edge_kernels(InstructionSet instructions);

}  // namespace ovik
