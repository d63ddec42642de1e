#pragma once

#include <cstddef>
#include <vector>

#include "util/api.h"
#include "util/matrix_view.h"
#include "util/stage.h"

namespace ovik {

struct Metric;

/// How well an embedding keeps the k nearest neighbours of each row: trustworthiness and recall.
/// Both are 1 for one that keeps them all; a random embedding has a recall of k / (N - 1).
struct NeighbourhoodQuality {
    /// k.
    std::size_t neighbours = 0;
    /// Whether rows that lie close in the embedding are close in the input:
    ///
    ///     1 - 2 / (N k (2 N - 3 k - 1)) * sum over i, and over j in U(i), of r(i, j) - k
    ///
    /// where U(i) are those of the k nearest rows of i in the embedding that are not among the k
    /// nearest in the input, and r(i, j) is the rank of j among the neighbours of i in the input,
    /// from 1.
    ///
    /// @par Source Venna and Kaski, "Neighborhood preservation in nonlinear projection methods: an
    /// experimental study", ICANN 2001, LNCS 2130:485
    double trustworthiness = 0.0;
    /// The recall of the k nearest neighbours: the share of the k nearest rows in the input that
    /// are among the k nearest in the embedding, averaged over all rows.
    ///
    /// @par Source Lee and Verleysen, "Quality assessment of dimensionality reduction: rank-based
    /// criteria", Neurocomputing 72:1431, 2009
    double preservation = 0.0;
    /// The recall of each row by itself.
    std::vector<double> kept = {};
};

/// The quality of an embedding for several sizes of neighbourhoods. Rows equally far count in the
/// order of the matrix. The same for any number of threads.
///
/// @param X      input, row-major, N x D, finite
/// @param Y      embedding, row-major, N x dims, finite
/// @param sizes  numbers of neighbours, at least 1, less than N / 2
OVIK_API std::vector<NeighbourhoodQuality> neighbourhood_quality(
    const double* X,
    std::size_t N,
    std::size_t D,
    const double* Y,
    std::size_t dims,
    const std::vector<std::size_t>& sizes);

/// The same for matrices with their shapes.
///
/// @param on_stage  takes how many rows have been compared with all others; may be empty
/// @throws what `on_stage` throws
OVIK_API std::vector<NeighbourhoodQuality> neighbourhood_quality(
    MatrixView<const double> X,
    MatrixView<const double> Y,
    const std::vector<std::size_t>& sizes,
    const OnStage& on_stage = {});

/// The same for neighbours in the input by a matrix of distances.
///
/// @param distances  N x N; row n has the distances of the others from n
OVIK_API std::vector<NeighbourhoodQuality> neighbourhood_quality_of_distances(
    MatrixView<const double> distances,
    MatrixView<const double> Y,
    const std::vector<std::size_t>& sizes,
    const OnStage& on_stage = {});

/// The same for neighbours in the input under any metric; those in the embedding are Euclidean.
///
/// @throws InputError if the metric has a complaint of a row of the input
std::vector<NeighbourhoodQuality> neighbourhood_quality(const double* X,
                                                        std::size_t N,
                                                        std::size_t D,
                                                        const double* Y,
                                                        std::size_t dims,
                                                        const std::vector<std::size_t>& sizes,
                                                        const Metric& metric);

}  // namespace ovik
