#pragma once

#include <cstddef>
#include <cstdint>
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
    /// The trustworthiness of each row by itself: 1 minus the part of its sum in the largest that
    /// it could be. Its mean over the rows is that of the embedding.
    std::vector<double> trusted = {};
};

/// Rows that the embedding puts elsewhere than the input has them, seen from each row.
struct MisplacedNeighbours {
    /// How many nearest rows are near, and beyond how many rows are far.
    std::size_t near = 0;
    std::size_t far = 0;
    /// False neighbours of each row: near in the embedding, far in the input; by their rank in the
    /// embedding.
    std::vector<std::vector<std::uint32_t>> falsely_near = {};
    /// Torn neighbours of each row: near in the input, far in the embedding; by their rank in the
    /// input.
    std::vector<std::vector<std::uint32_t>> torn = {};
};

/// What there is to say of the neighbours of each row.
struct RowNeighbourhoods {
    std::vector<NeighbourhoodQuality> quality;
    MisplacedNeighbours misplaced;
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

/// The quality of an embedding with the neighbours that it misplaces: near are the `near` nearest
/// rows, far all but three times as many, or all but half of the others where that is less.
///
/// @param sizes  as `neighbourhood_quality` takes them; may be empty
/// @param near   at least 1, less than N / 2
/// @param holds_distances  whether X has, N x N, the distances of the rows
/// @param on_stage         as of `neighbourhood_quality`
OVIK_API RowNeighbourhoods row_neighbourhoods(MatrixView<const double> X,
                                              MatrixView<const double> Y,
                                              const std::vector<std::size_t>& sizes,
                                              std::size_t near,
                                              bool holds_distances = false,
                                              const OnStage& on_stage = {});

}  // namespace ovik
