#include "stats/embedding_start.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "neighbours/neighbour_lists.h"
#include "neighbours/neighbour_search.h"
#include "stats/elementwise.h"
#include "stats/leading_eigenvectors.h"
#include "stats/median_place.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/parallel.h"
#include "util/random_stream.h"

namespace ovik {

namespace {

bool has_place(MatrixView<const double> places, std::size_t n) {
    return !std::isnan(places.row(n)[0]);
}

void place_others(MatrixView<double> Y,
                  MatrixView<const double> places,
                  const NeighbourGraph& graph) {
    std::vector<std::uint32_t> all_placed;
    for (std::size_t n = 0; n < Y.rows; ++n) {
        if (has_place(places, n)) {
            all_placed.push_back(static_cast<std::uint32_t>(n));
        }
    }
    if (all_placed.empty()) {
        throw InputError(
            "the start has a place for none of the rows\nCheck that it is of the same rows, by "
            "their names.");
    }
    std::vector<double> middle(Y.columns);
    std::vector<double> all_values;
    write_median_place(places, all_placed, all_values, middle);
    const auto is_placed = [&](std::size_t row) { return has_place(places, row); };
    parallel_for(Y.rows, kElementwiseGrain, [&](std::size_t /*worker*/, IndexRange rows) {
        std::vector<std::uint32_t> placed;
        std::vector<double> values;
        for (std::size_t n = rows.begin; n < rows.end; ++n) {
            if (is_placed(n)) {
                continue;
            }
            find_placed_neighbours(graph, n, kPlacingNeighbours, is_placed, placed);
            if (placed.empty()) {
                std::copy(middle.begin(), middle.end(), Y.row(n).begin());
            } else {
                write_median_place(places, placed, values, Y.row(n));
            }
        }
    });
}

/// @throws InputError if a column has one value alone
void check_varies(MatrixView<const double> Y) {
    for (std::size_t d = 0; d < Y.columns; ++d) {
        bool varies = false;
        for (std::size_t n = 1; n < Y.rows && !varies; ++n) {
            varies = Y.row(n)[d] != Y.row(0)[d];
        }
        if (!varies) {
            throw InputError("coordinate " + std::to_string(d + 1) +
                             " of the start is the same in all rows, and the map could not leave "
                             "it\nGive another start, or take the random one.");
        }
    }
}

/// The sums of products of coordinates, dimensions x dimensions, of places that are brought into
/// [-1, 1] and then centred.
std::vector<double> products_of_coordinates(MatrixView<const double> Y) {
    double largest = 0.0;
    for (const double value : Y.all()) {
        largest = std::max(largest, std::fabs(value));
    }
    std::vector<double> means(Y.columns, 0.0);
    for (std::size_t n = 0; n < Y.rows; ++n) {
        for (std::size_t d = 0; d < Y.columns; ++d) {
            means[d] += Y.row(n)[d] / largest;
        }
    }
    for (double& mean : means) {
        mean /= static_cast<double>(Y.rows);
    }
    std::vector<double> products(Y.columns * Y.columns, 0.0);
    std::vector<double> deviations(Y.columns);
    for (std::size_t n = 0; n < Y.rows; ++n) {
        for (std::size_t d = 0; d < Y.columns; ++d) {
            deviations[d] = Y.row(n)[d] / largest - means[d];
        }
        for (std::size_t i = 0; i < products.size(); ++i) {
            // NOLINTNEXTLINE(clang-analyzer-core.DivideZero): without columns there are no products
            products[i] += deviations[i / Y.columns] * deviations[i % Y.columns];
        }
    }
    return products;
}

/// @param Y  every coordinate varies
/// @throws InputError if the places lie in fewer dimensions than they have, and need not: forces
/// between them lie in there, too
void check_fills_dimensions(MatrixView<const double> Y) {
    const std::size_t dims = std::min(Y.columns, Y.rows - 1);
    const std::vector<double> squares =
        leading_eigenvectors(products_of_coordinates(Y), Y.columns, dims).values;
    // One millionth of the extent.
    constexpr double kFlat = 1e-12;
    if (squares.back() <= kFlat * squares.front()) {
        const auto flat = std::find_if(
            squares.begin(), squares.end(), [&](double x) { return x <= kFlat * squares[0]; });
        const auto filled = static_cast<std::size_t>(flat - squares.begin());
        throw InputError("the places of the start all lie " +
                         (filled == 1 ? std::string("on a line")
                                      : "in " + std::to_string(filled) + " dimensions") +
                         ", and the map of " + std::to_string(Y.columns) +
                         " dimensions could not leave it\nGive another start, or take the random "
                         "one.");
    }
}

void fill_in(NeighbourGraph& graph, std::size_t row, std::span<const NearRow> nearest) {
    const std::size_t begin = row * graph.neighbour_count;
    for (std::size_t m = 0; m < std::min(nearest.size(), graph.neighbour_count); ++m) {
        graph.neighbours[begin + m] = nearest[m].row;
        graph.distances[begin + m] = nearest[m].distance;
    }
}

/// Fills a graph of its full size in by a search among rows.
void search_for_nearest(MatrixView<const double> X, NeighbourTies ties, NeighbourGraph& graph) {
    OwnRandomStream stream;
    NeighbourSearch search(X.rows, X.columns, stream);
    search.findAll(
        X.values,
        graph.neighbour_count + 1,
        [&graph](std::size_t row, std::span<const NearRow> nearest, std::size_t /*worker*/) {
            // The first is taken for the row itself.
            fill_in(graph, row, nearest.subspan(std::min<std::size_t>(1, nearest.size())));
        },
        {.ties = ties});
}

/// The same by the distances of all rows.
void take_nearest_by_distance(MatrixView<const double> distances, NeighbourGraph& graph) {
    const NeighbourLists lists = nearest_by_distance(distances, graph.neighbour_count);
    for (std::size_t row = 0; row < graph.rows; ++row) {
        // As they are given: those of the lists are scaled.
        std::vector<NearRow> nearest(lists.of(row).begin(), lists.of(row).end());
        for (NearRow& one : nearest) {
            one.distance = distances.row(row)[one.row];
        }
        fill_in(graph, row, nearest);
    }
}

}  // namespace

void start_along_components(MatrixView<double> Y,
                            const PrincipalComponents& components,
                            double spread) {
    if (Y.size() == 0) {
        return;
    }
    if (components.varying < Y.columns) {
        throw InputError("a start by principal components needs one for each of the " +
                         std::to_string(Y.columns) +
                         " dimensions of the map, and the rows vary along " +
                         std::to_string(components.varying) +
                         " alone\nTake the random start, or fewer dimensions.");
    }
    const double factor = spread / std::sqrt(components.variances[0]);
    parallel_for_each(Y.rows, kElementwiseGrain, [&](std::size_t n) {
        for (std::size_t d = 0; d < Y.columns; ++d) {
            Y.row(n)[d] = components.scores[n * components.count + d] * factor;
        }
    });
}

double extent_of_places(MatrixView<const double> places) {
    double extent = 0.0;
    for (std::size_t d = 0; d < places.columns; ++d) {
        std::vector<double> values;
        for (std::size_t n = 0; n < places.rows; ++n) {
            if (has_place(places, n)) {
                values.push_back(places.row(n)[d]);
            }
        }
        double mean = 0.0;
        for (const double value : values) {
            // Divided one by one, so that no sum gets out of range.
            mean += value / static_cast<double>(values.size());
        }
        for (const double value : values) {
            extent = std::max(extent, std::fabs(value - mean));
        }
    }
    return extent;
}

std::string extent_remark(MatrixView<const double> places) {
    constexpr double kUsual = 100.0;
    const double extent = extent_of_places(places);
    if (extent <= 10.0 * kUsual) {
        return "";
    }
    return "the places of the start lie up to " + shortest_text(std::round(extent)) +
           " from their mean, and from places so far apart points hardly move; divided by " +
           shortest_text(std::round(extent / kUsual)) + " they would lie within " +
           shortest_text(kUsual) + " of it, as those of maps do";
}

bool has_rows_without_place(MatrixView<const double> places) {
    bool has_any = false;
    for (std::size_t n = 0; n < places.rows; ++n) {
        const std::span<const double> place = places.row(n);
        const auto missing =
            std::count_if(place.begin(), place.end(), [](double x) { return std::isnan(x); });
        const bool is_finite =
            std::none_of(place.begin(), place.end(), [](double x) { return std::isinf(x); });
        if (!is_finite || (missing != 0 && static_cast<std::size_t>(missing) != place.size())) {
            throw InputError("the start of row " + std::to_string(n) +
                             ", counted from 0, is not finite\nGive all of its coordinates, or NaN "
                             "for each of them: it starts among its neighbours then.");
        }
        has_any = has_any || missing != 0;
    }
    return has_any;
}

void start_at_places(MatrixView<double> Y,
                     MatrixView<const double> places,
                     const NeighbourGraph& graph) {
    if (Y.size() == 0) {
        return;
    }
    std::copy(places.values, places.values + places.size(), Y.values);
    place_others(Y, places, graph);
    if (extent_of_places(places) > kLargestExtent) {
        throw InputError(extent_remark(places) + "\nDivide them by that, or take another start.");
    }
    check_varies(Y);
    check_fills_dimensions(Y);
}

NeighbourGraph placing_neighbours(MatrixView<const double> X,
                                  MetricKind metric,
                                  NeighbourTies ties,
                                  std::size_t count) {
    NeighbourGraph graph = graph_without_neighbours(X.rows, std::min(count, X.rows - 1));
    if (metric == MetricKind::Precomputed) {
        take_nearest_by_distance(X, graph);
    } else {
        search_for_nearest(X, ties, graph);
    }
    return graph;
}

}  // namespace ovik
