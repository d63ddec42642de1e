#include "stats/neighbourhood_quality.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <utility>

#include "neighbours/metric.h"
#include "stats/kernels/neighbour_ranks.h"
#include "stats/kernels/pair_kernels.h"
#include "util/instruction_set.h"
#include "util/kernel_dispatch.h"
#include "util/parallel.h"
#include "util/stage_count.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(RankKernels, kRankKernels, rank_kernels)

namespace {

static_assert(kPanelWidth % kColumnMultiple == 0 && kPanelWidth % kRankMultiple == 0);

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The points of a row-major matrix, stored coordinate by coordinate.
class Columns {
  public:
    Columns(const double* rows, std::size_t N, std::size_t dims)
        : coordinates_(dims * padded_to_panels(N)),
          point_count_(N),
          dims_(dims) {
        for (std::size_t n = 0; n < N; ++n) {
            for (std::size_t d = 0; d < dims; ++d) {
                coordinates_[d * padded_to_panels(N) + n] = rows[n * dims + d];
            }
        }
    }

    [[nodiscard]] PointsByColumn view() const {
        return {coordinates_.data(), point_count_, padded_to_panels(point_count_), dims_};
    }

  private:
    std::vector<double> coordinates_;
    std::size_t point_count_;
    std::size_t dims_;
};

/// Writes something that grows with the distances of all rows from one, in their order.
using RowMeasure = std::function<void(std::size_t row, double* distances)>;

/// @param points  must outlive the result
RowMeasure measure_of(const Columns& points, const Metric& metric) {
    return [points = points.view(),
            squared_distances = metric.kernels(instruction_set()).squared_distances](
               std::size_t row, double* distances) { squared_distances(points, row, distances); };
}

/// The nearest neighbours of one row, found anew for each.
class Neighbours {
  public:
    Neighbours(RowMeasure measure, std::size_t N, std::size_t count)
        : measure_(std::move(measure)),
          kernels_(rank_kernels(instruction_set())),
          distances_(padded_to_panels(N), kInfinity),
          nearest_(count),
          nearest_distances_(count) {}

    void find(std::size_t row) {
        measure_(row, distances_.data());
        distances_[row] = kInfinity;
        kernels_.nearest(distances_.data(),
                         distances_.size(),
                         nearest_.size(),
                         nearest_.data(),
                         nearest_distances_.data());
    }

    [[nodiscard]] const std::vector<std::uint32_t>& nearest() const { return nearest_; }

    /// The rank of another row among the neighbours, from 0.
    [[nodiscard]] std::size_t rank(std::uint32_t other) const {
        const auto found = std::find(nearest_.begin(), nearest_.end(), other);
        return found != nearest_.end() ? static_cast<std::size_t>(found - nearest_.begin())
                                       : kernels_.rank(distances_.data(), distances_.size(), other);
    }

  private:
    RowMeasure measure_;
    const RankKernels& kernels_;
    std::vector<double> distances_;
    std::vector<std::uint32_t> nearest_;
    std::vector<double> nearest_distances_;
};

/// Sums over rows for one size k of neighbourhoods; whole numbers, so that their order is of no
/// matter.
struct Sums {
    /// By how much the ranks in the input of the k nearest rows in the embedding exceed k, in all:
    /// trustworthiness falls with it.
    std::uint64_t excess = 0;
    /// How many of the k nearest rows in the input are among the k nearest in the embedding.
    std::uint64_t recalled = 0;
};

/// The sums of one row.
std::vector<Sums> sums_of_row(const Neighbours& input,
                              const Neighbours& embedding,
                              const std::vector<std::size_t>& sizes) {
    std::vector<Sums> sums(sizes.size());
    const std::vector<std::uint32_t>& nearest = embedding.nearest();
    const std::size_t largest = sizes.empty() ? 0 : *std::max_element(sizes.begin(), sizes.end());
    for (std::size_t map_rank = 0; map_rank < largest; ++map_rank) {
        const std::size_t rank = input.rank(nearest[map_rank]);
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            if (map_rank < sizes[i]) {
                sums[i].recalled += rank < sizes[i] ? 1 : 0;
                sums[i].excess += rank < sizes[i] ? 0 : rank + 1 - sizes[i];
            }
        }
    }
    return sums;
}

/// The first `near` of some rows that are not among the first `far` of others.
std::vector<std::uint32_t> near_but_far(const std::vector<std::uint32_t>& rows,
                                        const std::vector<std::uint32_t>& others,
                                        std::size_t near,
                                        std::size_t far) {
    const auto end = others.begin() + static_cast<std::ptrdiff_t>(far);
    std::vector<std::uint32_t> found;
    for (std::size_t i = 0; i < near; ++i) {
        if (std::find(others.begin(), end, rows[i]) == end) {
            found.push_back(rows[i]);
        }
    }
    return found;
}

/// The trustworthiness for some sums over so many rows of N.
double trustworthiness(const Sums& sums, double rows, double N, double k) {
    return 1.0 - 2.0 * static_cast<double>(sums.excess) / (rows * k * (2.0 * N - 3.0 * k - 1.0));
}

NeighbourhoodQuality quality_of(const std::vector<std::vector<Sums>>& rows,
                                std::size_t size,
                                std::size_t which) {
    const auto N = static_cast<double>(rows.size());
    const auto k = static_cast<double>(size);
    NeighbourhoodQuality quality{size};
    Sums total;
    for (const std::vector<Sums>& row : rows) {
        total.excess += row[which].excess;
        total.recalled += row[which].recalled;
        quality.kept.push_back(static_cast<double>(row[which].recalled) / k);
        quality.trusted.push_back(trustworthiness(row[which], 1.0, N, k));
    }
    quality.trustworthiness = trustworthiness(total, N, N, k);
    quality.preservation = static_cast<double>(total.recalled) / (N * k);
    return quality;
}

/// The quality by measures of the input and of the embedding.
///
/// @param N          above 0
/// @param misplaced  null, or with the numbers of rows that are near and not far; its lists are
/// written
std::vector<NeighbourhoodQuality> quality_by(const RowMeasure& input,
                                             const RowMeasure& embedding,
                                             std::size_t N,
                                             const std::vector<std::size_t>& sizes,
                                             const OnStage& on_stage,
                                             MisplacedNeighbours* misplaced = nullptr) {
    constexpr std::size_t kRowsOfTask = 32;
    std::size_t largest = misplaced != nullptr ? misplaced->far : 0;
    for (const std::size_t size : sizes) {
        largest = std::max(largest, size);
    }
    const std::size_t tasks = (N + kRowsOfTask - 1) / kRowsOfTask;
    const int workers = worker_count(tasks);
    std::vector<std::vector<Sums>> sums(N);
    if (misplaced != nullptr) {
        misplaced->falsely_near.resize(N);
        misplaced->torn.resize(N);
    }
    std::vector<Neighbours> inputs(static_cast<std::size_t>(workers),
                                   Neighbours(input, N, largest));
    std::vector<Neighbours> embeddings(static_cast<std::size_t>(workers),
                                       Neighbours(embedding, N, largest));
    StageCount progress(on_stage, Stage::Quality, N);
    parallel_tasks(tasks, workers, [&](std::size_t task, std::size_t worker) {
        const std::size_t begin = task * kRowsOfTask;
        const std::size_t end = std::min(begin + kRowsOfTask, N);
        for (std::size_t n = begin; n < end && !progress.isStopped(); ++n) {
            inputs[worker].find(n);
            embeddings[worker].find(n);
            sums[n] = sums_of_row(inputs[worker], embeddings[worker], sizes);
            if (misplaced != nullptr) {
                const auto& [near, far] = std::pair(misplaced->near, misplaced->far);
                const std::vector<std::uint32_t>& in_data = inputs[worker].nearest();
                const std::vector<std::uint32_t>& on_map = embeddings[worker].nearest();
                misplaced->falsely_near[n] = near_but_far(on_map, in_data, near, far);
                misplaced->torn[n] = near_but_far(in_data, on_map, near, far);
            }
        }
        progress.add(end - begin);
    });
    std::vector<NeighbourhoodQuality> result;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        result.push_back(quality_of(sums, sizes[i], i));
    }
    return result;
}

/// The quality by distances of rows under a metric.
std::vector<NeighbourhoodQuality> quality_of_rows(MatrixView<const double> X,
                                                  MatrixView<const double> Y,
                                                  const std::vector<std::size_t>& sizes,
                                                  const Metric& metric,
                                                  const OnStage& on_stage) {
    if (X.rows == 0 || sizes.empty()) {
        return {};
    }
    require_measurable_rows(metric, X.values, X.rows, X.columns);
    const Columns input(X.values, X.rows, X.columns);
    const Columns embedding(Y.values, X.rows, Y.columns);
    return quality_by(measure_of(input, metric),
                      measure_of(embedding, euclidean_metric()),
                      X.rows,
                      sizes,
                      on_stage);
}

/// Gives the distances that stand in a row of a matrix.
RowMeasure measure_by_distances(MatrixView<const double> distances) {
    return [distances](std::size_t row, double* result) {
        const std::span<const double> given = distances.row(row);
        std::copy(given.begin(), given.end(), result);
    };
}

}  // namespace

std::vector<NeighbourhoodQuality> neighbourhood_quality(MatrixView<const double> X,
                                                        MatrixView<const double> Y,
                                                        const std::vector<std::size_t>& sizes,
                                                        const OnStage& on_stage) {
    return quality_of_rows(X, Y, sizes, euclidean_metric(), on_stage);
}

std::vector<NeighbourhoodQuality> neighbourhood_quality(const double* X,
                                                        std::size_t N,
                                                        std::size_t D,
                                                        const double* Y,
                                                        std::size_t dims,
                                                        const std::vector<std::size_t>& sizes) {
    return quality_of_rows({X, N, D}, {Y, N, dims}, sizes, euclidean_metric(), {});
}

std::vector<NeighbourhoodQuality> neighbourhood_quality(const double* X,
                                                        std::size_t N,
                                                        std::size_t D,
                                                        const double* Y,
                                                        std::size_t dims,
                                                        const std::vector<std::size_t>& sizes,
                                                        const Metric& metric) {
    return quality_of_rows({X, N, D}, {Y, N, dims}, sizes, metric, {});
}

std::vector<NeighbourhoodQuality> neighbourhood_quality_of_distances(
    MatrixView<const double> distances,
    MatrixView<const double> Y,
    const std::vector<std::size_t>& sizes,
    const OnStage& on_stage) {
    if (distances.rows == 0 || sizes.empty()) {
        return {};
    }
    const Columns embedding(Y.values, Y.rows, Y.columns);
    return quality_by(measure_by_distances(distances),
                      measure_of(embedding, euclidean_metric()),
                      distances.rows,
                      sizes,
                      on_stage);
}

RowNeighbourhoods row_neighbourhoods(MatrixView<const double> X,
                                     MatrixView<const double> Y,
                                     const std::vector<std::size_t>& sizes,
                                     std::size_t near,
                                     bool holds_distances,
                                     const OnStage& on_stage) {
    if (X.rows == 0) {
        return {};
    }
    const Columns embedding(Y.values, Y.rows, Y.columns);
    std::optional<Columns> input;
    if (!holds_distances) {
        require_measurable_rows(euclidean_metric(), X.values, X.rows, X.columns);
        input.emplace(X.values, X.rows, X.columns);
    }
    RowNeighbourhoods result;
    result.misplaced.near = near;
    result.misplaced.far = std::max(near, std::min(3 * near, (X.rows - 1) / 2));
    result.quality =
        quality_by(input ? measure_of(*input, euclidean_metric()) : measure_by_distances(X),
                   measure_of(embedding, euclidean_metric()),
                   X.rows,
                   sizes,
                   on_stage,
                   &result.misplaced);
    return result;
}

}  // namespace ovik
