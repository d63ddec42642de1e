#include "stats/mesh_box.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "util/parallel.h"

namespace ovik {

namespace {

/// A mesh of so few cells is not worth cutting.
constexpr double kFewCells = 65536.0;

/// What a cell costs in the time of a pair of points: measured, 40 against 2 ns of a core.
constexpr double kPairsPerCell = 20.0;

/// Most pairs of points in the place of a mesh.
constexpr double kMostPairs = 84e6;

constexpr std::size_t kChunk = 16384;

/// What a mesh under a box costs, with some pairs of points outside of it.
double cost_of(const MapBox& box, double pairs, std::size_t N) {
    const double cells = mesh_cells(box);
    return cells > most_mesh_cells(N) ? std::numeric_limits<double>::infinity()
                                      : kPairsPerCell * cells + pairs;
}

using Values = std::vector<double>;

/// The first numbers, of up to `kMostBeyond` + 1, in an order.
template <typename Order>
Values first_of(const Values& values, Order order) {
    Values first(std::min(values.size(), kMostBeyond + 1));
    std::partial_sort_copy(values.begin(), values.end(), first.begin(), first.end(), order);
    return first;
}

/// The outermost coordinates in a dimension, from the outermost on.
struct Outermost {
    Values least;
    Values greatest;
};

Outermost outermost_of(const Values& values) {
    return {first_of(values, std::less<>()), first_of(values, std::greater<>())};
}

void append(Values& values, const Values& more) {
    values.insert(values.end(), more.begin(), more.end());
}

Outermost outermost(const double* Y, std::size_t N, std::size_t dimension) {
    std::vector<Outermost> of_chunks((N + kChunk - 1) / kChunk);
    parallel_for_each(of_chunks.size(), 1, [&](std::size_t chunk) {
        Values values;
        for (std::size_t n = chunk * kChunk; n < std::min((chunk + 1) * kChunk, N); ++n) {
            values.push_back(Y[2 * n + dimension]);
        }
        of_chunks[chunk] = outermost_of(values);
    });
    Outermost all;
    for (const Outermost& of_chunk : of_chunks) {
        append(all.least, of_chunk.least);
        append(all.greatest, of_chunk.greatest);
    }
    return {first_of(all.least, std::less<>()), first_of(all.greatest, std::greater<>())};
}

}  // namespace

MapBox mesh_box(const double* Y, std::size_t N) {
    const MapBox whole = map_box(Y, N);
    const double cells = mesh_cells(whole);
    // Neither for a box that is none.
    if (!whole.is_finite || !(cells > kFewCells) || !std::isfinite(cells)) {
        return whole;
    }
    const Outermost sides[2] = {outermost(Y, N, 0), outermost(Y, N, 1)};
    const auto points = static_cast<double>(N);
    MapBox best = whole;
    double least_cost = cost_of(whole, 0.0, N);
    for (std::size_t beyond = 1; beyond <= kMostBeyond && 4 * beyond < N; beyond *= 2) {
        const MapBox box = {{sides[0].least[beyond], sides[1].least[beyond]},
                            {sides[0].greatest[beyond], sides[1].greatest[beyond]},
                            true};
        const double cost = cost_of(box, static_cast<double>(4 * beyond) * points, N);
        if (cost < least_cost) {
            best = box;
            least_cost = cost;
        }
    }
    const double all_pairs = points * points;
    return all_pairs < std::min(least_cost, kMostPairs) ? map_box(nullptr, 0) : best;
}

}  // namespace ovik
