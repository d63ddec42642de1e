#include "stats/row_placement.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

#include "neighbours/metric.h"
#include "neighbours/near_row.h"
#include "neighbours/neighbour_search.h"
#include "stats/centring.h"
#include "stats/kernels/descent_step.h"
#include "stats/median.h"
#include "stats/numerics.h"
#include "stats/row_affinities.h"
#include "stats/row_metric.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/instruction_set.h"
#include "util/parallel.h"
#include "util/random_stream.h"

namespace ovik {

namespace {

/// How many rows of a map have affinities to a further one.
std::size_t affinity_count(double perplexity, std::size_t rows) {
    const double wanted = 3.0 * perplexity;
    return wanted < static_cast<double>(rows) ? static_cast<std::size_t>(wanted) : rows;
}

/// The rows of the map that are nearest to a row, nearest first; those at no finite distance left
/// out.
void find_nearest(const FinishedMap& map,
                  std::span<const double> row,
                  std::size_t count,
                  std::vector<NearRow>& nearest) {
    const Metric& metric = euclidean_metric();
    nearest.clear();
    for (std::size_t j = 0; j < map.input.rows; ++j) {
        const double distance =
            metric.distance(row.data(), map.input.row(j).data(), map.input.columns);
        if (std::isfinite(distance)) {
            nearest.push_back({static_cast<std::uint32_t>(j), distance});
        }
    }
    const auto end = nearest.begin() + static_cast<std::ptrdiff_t>(std::min(count, nearest.size()));
    std::partial_sort(nearest.begin(), end, nearest.end(), is_nearer);
    nearest.erase(end, nearest.end());
}

/// Conditional affinities to the rows that are nearest.
std::vector<double> affinities_to(std::span<const NearRow> nearest, const FinishedMap& map) {
    std::vector<double> p(nearest.size());
    CalibratedRows calibrated({{map.perplexity, nearest.size()}}, elementary_of(map.numerics));
    calibrated.prepare(1, nearest.size());
    calibrated.fill(nearest, p.data(), 0);
    return p;
}

/// The place from which a row sets out.
std::vector<double> start_amidst(std::span<const NearRow> nearest, MatrixView<const double> Y) {
    std::vector<double> start(Y.columns);
    std::vector<double> coordinates(nearest.size());
    for (std::size_t d = 0; d < Y.columns; ++d) {
        for (std::size_t m = 0; m < nearest.size(); ++m) {
            coordinates[m] = Y.row(nearest[m].row)[d];
        }
        start[d] = median(coordinates);
    }
    return start;
}

/// The cost of a place on the map, and its gradient.
class PlaceCost {
  public:
    PlaceCost(const FinishedMap& map, std::span<const NearRow> nearest, std::vector<double> p)
        : Y_(map.embedding),
          nearest_(nearest),
          p_(std::move(p)),
          attraction_(Y_.columns),
          repulsion_(Y_.columns),
          log_(elementary_of(map.numerics).log) {}

    /// @param y         the place
    /// @param gradient  written
    /// @return the divergence of p from q there
    double evaluate(const std::vector<double>& y, std::vector<double>& gradient) {
        const double sum_w = sumRepulsion(y);
        const double cost = sumAttraction(y, sum_w);
        for (std::size_t d = 0; d < y.size(); ++d) {
            gradient[d] = 2.0 * (attraction_[d] - repulsion_[d] / sum_w);
        }
        return cost;
    }

  private:
    /// 1 / (1 + the squared distance of a place from a point of the map).
    [[nodiscard]] double weight(const std::vector<double>& y, const double* point) const {
        double square = 0.0;
        for (std::size_t d = 0; d < y.size(); ++d) {
            square += (y[d] - point[d]) * (y[d] - point[d]);
        }
        return 1.0 / (1.0 + square);
    }

    double sumRepulsion(const std::vector<double>& y) {
        std::fill(repulsion_.begin(), repulsion_.end(), 0.0);
        double sum_w = 0.0;
        for (std::size_t j = 0; j < Y_.rows; ++j) {
            const double* const point = Y_.row(j).data();
            const double w = weight(y, point);
            sum_w += w;
            for (std::size_t d = 0; d < y.size(); ++d) {
                repulsion_[d] += (w * w) * (y[d] - point[d]);
            }
        }
        return sum_w;
    }

    double sumAttraction(const std::vector<double>& y, double sum_w) {
        std::fill(attraction_.begin(), attraction_.end(), 0.0);
        double cost = 0.0;
        for (std::size_t m = 0; m < p_.size(); ++m) {
            const double* const point = Y_.row(nearest_[m].row).data();
            const double w = weight(y, point);
            for (std::size_t d = 0; d < y.size(); ++d) {
                attraction_[d] += (p_[m] * w) * (y[d] - point[d]);
            }
            // An affinity that has vanished adds nothing.
            if (p_[m] > 0.0) {
                cost += p_[m] * log_(p_[m] * sum_w / w);
            }
        }
        return cost;
    }

    MatrixView<const double> Y_;
    std::span<const NearRow> nearest_;
    std::vector<double> p_;
    std::vector<double> attraction_;
    std::vector<double> repulsion_;
    RealFunction log_;
};

/// The smallest box that holds all points of a map.
struct Box {
    std::vector<double> low;
    std::vector<double> high;
};

Box box_of(MatrixView<const double> Y) {
    const std::span<const double> first = Y.row(0);
    Box box{{first.begin(), first.end()}, {first.begin(), first.end()}};
    for (std::size_t j = 1; j < Y.rows; ++j) {
        for (std::size_t d = 0; d < Y.columns; ++d) {
            box.low[d] = std::min(box.low[d], Y.row(j)[d]);
            box.high[d] = std::max(box.high[d], Y.row(j)[d]);
        }
    }
    return box;
}

/// Shortens a vector to a length, unless it is shorter.
void shorten(std::vector<double>& vector, double longest) {
    double square = 0.0;
    for (const double x : vector) {
        square += x * x;
    }
    const double length = std::sqrt(square);
    if (length > longest) {
        for (double& x : vector) {
            x *= longest / length;
        }
    }
}

/// A place, and its cost.
struct Place {
    std::vector<double> y;
    double cost;
};

/// Descends from a start.
///
/// @return the place of the lowest cost that was met
Place descend(PlaceCost& place_cost,
              const Box& box,
              const PlacementDescent& descent,
              const Place& start) {
    Place lowest = start;
    std::vector<double> here = start.y;
    std::vector<double> there(here.size());
    std::vector<double> gradient(here.size());
    std::vector<double> velocity(here.size(), 0.0);
    std::vector<double> gains(here.size(), 1.0);
    const DescentKernels& kernels = descent_kernels(instruction_set());
    place_cost.evaluate(here, gradient);
    for (int iteration = 0; iteration < descent.iterations; ++iteration) {
        // The kernel goes the whole way, of which only the direction may be wanted.
        there = here;
        kernels.step({gradient.data(), velocity.data(), gains.data(), there.data(), there.size()},
                     descent.learning_rate,
                     descent.momentum);
        shorten(velocity, descent.longest_step);
        for (std::size_t d = 0; d < here.size(); ++d) {
            here[d] = std::clamp(here[d] + velocity[d], box.low[d], box.high[d]);
        }
        const double cost = place_cost.evaluate(here, gradient);
        if (cost < lowest.cost) {
            lowest = {here, cost};
        }
    }
    return lowest;
}

/// The places from which a row may set out, cheapest first: amidst the rows that are nearest, and
/// beside each of them.
std::vector<Place> starts_of(PlaceCost& place_cost,
                             MatrixView<const double> Y,
                             std::span<const NearRow> nearest) {
    std::vector<Place> starts{{start_amidst(nearest, Y), 0.0}};
    for (const NearRow& near : nearest) {
        const std::span<const double> own = Y.row(near.row);
        starts.push_back({{own.begin(), own.end()}, 0.0});
    }
    std::vector<double> gradient(Y.columns);
    for (Place& start : starts) {
        start.cost = place_cost.evaluate(start.y, gradient);
    }
    std::stable_sort(starts.begin(), starts.end(), [](const Place& a, const Place& b) {
        return a.cost < b.cost;
    });
    return starts;
}

/// Descends from the cheapest starts.
///
/// @return the cheapest end; the earliest of those that cost the same
Place cheapest_place(PlaceCost& place_cost,
                     MatrixView<const double> Y,
                     const Box& box,
                     std::span<const NearRow> nearest,
                     const PlacementDescent& descent) {
    const std::size_t count = std::min(descent.start_neighbours, nearest.size());
    const std::vector<Place> starts = starts_of(place_cost, Y, nearest.first(count));
    Place cheapest = starts.front();
    for (std::size_t s = 0; s < std::min(descent.descents, starts.size()); ++s) {
        Place end = descend(place_cost, box, descent, starts[s]);
        if (end.cost < cheapest.cost) {
            cheapest = std::move(end);
        }
    }
    return cheapest;
}

/// @throws std::invalid_argument
void require_shapes(const FinishedMap& map, MatrixView<const double> rows) {
    if (map.input.rows == 0 || map.input.rows > std::numeric_limits<std::uint32_t>::max() ||
        map.embedding.rows != map.input.rows || map.scale.means.size() != map.input.columns ||
        rows.columns != map.input.columns || !(map.perplexity >= 1.0)) {
        throw std::invalid_argument("rows, map and its input do not fit together");
    }
}

/// @throws InputError if a row cannot be compared with any other
void refuse_rows_without_direction(MetricKind metric, MatrixView<const double> rows) {
    const std::vector<std::size_t> found = rows_without_direction(rows, metric);
    if (!found.empty()) {
        throw InputError(
            "row " + std::to_string(found.front() + 1) + " does not vary, so that it has no " +
            std::string(choice_name(metric)) + " correlation with any row of the map" +
            (found.size() > 1 ? " (" + counted(found.size(), "such row", "such rows") + ")" : "") +
            "\nTake such rows out, or place them on a map by the metric euclidean.");
    }
}

/// @throws InputError if a row is at no finite distance from the map
void refuse_distant(const std::vector<double>& nearest_distances) {
    const auto distant = std::find(nearest_distances.begin(), nearest_distances.end(), HUGE_VAL);
    if (distant != nearest_distances.end()) {
        throw InputError("row " + std::to_string(distant - nearest_distances.begin() + 1) +
                         " has values that are not finite, or so large that its distances from the "
                         "rows of the map are not\nBring it to the units of the matrix that the "
                         "map was made of.");
    }
}

}  // namespace

PlacedRows place_rows(const FinishedMap& map,
                      MatrixView<const double> rows,
                      const PlacementDescent& descent) {
    require_shapes(map, rows);
    refuse_rows_without_direction(map.metric, rows);
    std::vector<double> scaled(rows.all().begin(), rows.all().end());
    const MatrixView<double> prepared{scaled.data(), rows.rows, rows.columns};
    prepare_rows(prepared, map.metric);
    scale_alike(prepared, map.scale);
    const std::size_t dims = map.embedding.columns;
    PlacedRows placed;
    placed.embedding.resize(rows.rows * dims);
    placed.costs.resize(rows.rows);
    placed.nearest.resize(rows.rows);
    placed.nearest_distances.resize(rows.rows);
    const std::size_t wanted = affinity_count(map.perplexity, map.input.rows);
    const Box box = box_of(map.embedding);
    parallel_for_each(rows.rows, 1, [&](std::size_t n) {
        const std::span<const double> row(scaled.data() + n * rows.columns, rows.columns);
        std::vector<NearRow> nearest;
        find_nearest(map, row, std::max(wanted, descent.start_neighbours), nearest);
        if (nearest.empty()) {
            placed.nearest_distances[n] = HUGE_VAL;
            return;
        }
        const std::span<const NearRow> near(nearest);
        const std::span<const NearRow> weighed = near.first(std::min(wanted, near.size()));
        PlaceCost cost(map, weighed, affinities_to(weighed, map));
        const Place place = cheapest_place(cost, map.embedding, box, near, descent);
        placed.costs[n] = place.cost;
        std::copy(place.y.begin(),
                  place.y.end(),
                  placed.embedding.begin() + static_cast<std::ptrdiff_t>(n * dims));
        placed.nearest[n] = nearest.front().row;
        placed.nearest_distances[n] = nearest.front().distance;
    });
    refuse_distant(placed.nearest_distances);
    return placed;
}

double cost_of_no_place(std::size_t rows, double perplexity) {
    return std::log(static_cast<double>(rows) / perplexity);
}

bool bars_placement(std::string_view option_name, std::string_view value) {
    if (option_name == "metric") {
        return value == choice_name(MetricKind::Precomputed);
    }
    constexpr std::string_view kBarring[] = {"pca", "affinity", "multiscale"};
    return std::find(std::begin(kBarring), std::end(kBarring), option_name) != std::end(kBarring);
}

double largest_nearest_distance(MatrixView<const double> rows) {
    OwnRandomStream random;
    NeighbourSearch search(rows.rows, rows.columns, random);
    std::vector<double> largest(search.workerCount(), 0.0);
    search.findAll(
        rows.values, 2, [&](std::size_t, std::span<const NearRow> nearest, std::size_t worker) {
            if (nearest.size() > 1) {
                largest[worker] = std::max(largest[worker], nearest[1].distance);
            }
        });
    return *std::max_element(largest.begin(), largest.end());
}

}  // namespace ovik
