#include "stats/neighbourhood_quality.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <utility>

#include "neighbours/metric.h"
#include "neighbours/rank_search.h"
#include "stats/compared_rows.h"
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

/// Adds a row by all its distances.
void add_measured(std::size_t row,
                  std::span<const std::uint32_t> on_map,
                  Neighbours& input,
                  std::vector<std::uint32_t>& ranks,
                  ComparedRows& rows) {
    input.find(row);
    ranks.clear();
    for (const std::uint32_t other : on_map) {
        ranks.push_back(static_cast<std::uint32_t>(input.rank(other)));
    }
    rows.add(row, {input.nearest(), on_map, ranks});
}

/// Compares the rows by all their distances.
void compare_measured(const RowMeasure& input,
                      const RowMeasure& embedding,
                      const OnStage& on_stage,
                      ComparedRows& rows) {
    constexpr std::size_t kRowsOfTask = 32;
    const std::size_t N = rows.rowCount();
    const std::size_t tasks = (N + kRowsOfTask - 1) / kRowsOfTask;
    const int workers = worker_count(tasks);
    const auto worker_total = static_cast<std::size_t>(workers);
    std::vector<Neighbours> inputs(worker_total, Neighbours(input, N, rows.wanted()));
    std::vector<Neighbours> maps(worker_total, Neighbours(embedding, N, rows.wanted()));
    std::vector<std::vector<std::uint32_t>> ranks(worker_total);
    StageCount progress(on_stage, Stage::Quality, N);
    parallel_tasks(tasks, workers, [&](std::size_t task, std::size_t worker) {
        const std::size_t begin = task * kRowsOfTask;
        const std::size_t end = std::min(begin + kRowsOfTask, N);
        for (std::size_t n = begin; n < end && !progress.isStopped(); ++n) {
            maps[worker].find(n);
            add_measured(n, maps[worker].nearest(), inputs[worker], ranks[worker], rows);
        }
        progress.add(end - begin);
    });
}

/// Compares the rows without measuring most distances in the input.
///
/// @param search  for as many nearest rows as are looked at, with parts
void compare_searched(const RankSearch& search,
                      const RowMeasure& input,
                      const RowMeasure& embedding,
                      const OnStage& on_stage,
                      ComparedRows& rows) {
    const std::size_t N = rows.rowCount();
    const int workers = worker_count(search.partCount());
    const auto worker_total = static_cast<std::size_t>(workers);
    std::vector<Neighbours> inputs(worker_total, Neighbours(input, N, rows.wanted()));
    std::vector<Neighbours> maps(worker_total, Neighbours(embedding, N, rows.wanted()));
    std::vector<RankSearch::Scratch> scratch(worker_total);
    std::vector<std::vector<std::uint32_t>> given(worker_total);
    std::vector<std::vector<std::uint32_t>> measured(worker_total);
    StageCount progress(on_stage, Stage::Quality, N);
    parallel_tasks(search.partCount(), workers, [&](std::size_t part, std::size_t worker) {
        if (progress.isStopped()) {
            return;
        }
        const IndexRange part_rows = search.rowsOf(part);
        given[worker].clear();
        for (std::size_t n = part_rows.begin; n < part_rows.end; ++n) {
            maps[worker].find(n);
            const std::vector<std::uint32_t>& nearest = maps[worker].nearest();
            given[worker].insert(given[worker].end(), nearest.begin(), nearest.end());
        }
        search.search(part,
                      given[worker],
                      scratch[worker],
                      [&](std::size_t n,
                          std::span<const std::uint32_t> nearest,
                          std::span<const std::uint32_t> ranks) {
                          const auto on_map =
                              std::span<const std::uint32_t>(given[worker])
                                  .subspan((n - part_rows.begin) * rows.wanted(), rows.wanted());
                          if (nearest.empty()) {
                              add_measured(n, on_map, inputs[worker], measured[worker], rows);
                          } else {
                              rows.add(n, {nearest, on_map, ranks});
                          }
                      });
        progress.add(part_rows.size());
    });
}

/// Compares rows under a metric with those of a map.
void compare_rows(MatrixView<const double> X,
                  MatrixView<const double> Y,
                  const Metric& metric,
                  const OnStage& on_stage,
                  ComparedRows& rows) {
    require_measurable_rows(metric, X.values, X.rows, X.columns);
    const Columns input(X.values, X.rows, X.columns);
    const Columns embedding(Y.values, X.rows, Y.columns);
    const RowMeasure in_data = measure_of(input, metric);
    const RowMeasure on_map = measure_of(embedding, euclidean_metric());
    const RankSearch search(X.values, X.rows, X.columns, rows.wanted(), metric);
    if (search.partCount() > 0) {
        compare_searched(search, in_data, on_map, on_stage, rows);
    } else {
        compare_measured(in_data, on_map, on_stage, rows);
    }
}

/// Compares the distances of rows with those of a map.
void compare_distances(MatrixView<const double> distances,
                       MatrixView<const double> Y,
                       const OnStage& on_stage,
                       ComparedRows& rows) {
    const Columns embedding(Y.values, Y.rows, Y.columns);
    const auto given = [distances](std::size_t row, double* result) {
        const std::span<const double> of_row = distances.row(row);
        std::copy(of_row.begin(), of_row.end(), result);
    };
    compare_measured(given, measure_of(embedding, euclidean_metric()), on_stage, rows);
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
    ComparedRows rows(X.rows, sizes, nullptr);
    compare_rows(X, Y, metric, on_stage, rows);
    return rows.quality();
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
    ComparedRows rows(distances.rows, sizes, nullptr);
    compare_distances(distances, Y, on_stage, rows);
    return rows.quality();
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
    RowNeighbourhoods result;
    result.misplaced.near = near;
    result.misplaced.far = std::max(near, std::min(3 * near, (X.rows - 1) / 2));
    ComparedRows rows(X.rows, sizes, &result.misplaced);
    if (holds_distances) {
        compare_distances(X, Y, on_stage, rows);
    } else {
        compare_rows(X, Y, euclidean_metric(), on_stage, rows);
    }
    result.quality = rows.quality();
    return result;
}

}  // namespace ovik
