#include "stats/mesh_grid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "stats/kernels/mesh_points.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr double kCellsPerUnit = 3.0;
constexpr double kMostCellsPerUnit = 384.0;

/// A map is so many cells wide, as long as those are not too small.
constexpr double kLeastWidth = 64.0;

constexpr double kMostCells = 4194304.0;
constexpr double kMostCellsPerPoint = 16.0;

constexpr char kCure[] =
    "\nGive a lower learning rate, or the method barnes-hut, which bears any map.";

MapBox empty_box() {
    constexpr double kFar = std::numeric_limits<double>::infinity();
    return {{kFar, kFar}, {-kFar, -kFar}, true};
}

void add_point(MapBox& box, const double* point) {
    for (std::size_t d = 0; d < 2; ++d) {
        box.is_finite = box.is_finite && std::isfinite(point[d]);
        box.least[d] = std::min(box.least[d], point[d]);
        box.greatest[d] = std::max(box.greatest[d], point[d]);
    }
}

void add_box(MapBox& box, const MapBox& other) {
    for (std::size_t d = 0; d < 2; ++d) {
        box.least[d] = std::min(box.least[d], other.least[d]);
        box.greatest[d] = std::max(box.greatest[d], other.greatest[d]);
    }
    box.is_finite = box.is_finite && other.is_finite;
}

/// Cells that the splines of points touch which are `width` cells apart.
double touched_cells(double width) {
    return std::floor(width) + static_cast<double>(kSplineOrder);
}

/// A mesh's size, which may be too large for a mesh.
struct Extent {
    double widths[2];
    double cells_per_unit;
    double columns;
    double rows;
};

Extent extent_under(const MapBox& box) {
    Extent extent{
        {box.greatest[0] - box.least[0], box.greatest[1] - box.least[1]}, kCellsPerUnit, 0.0, 0.0};
    const double width = std::max(extent.widths[0], extent.widths[1]);
    while (extent.cells_per_unit < kMostCellsPerUnit &&
           width * extent.cells_per_unit < kLeastWidth) {
        extent.cells_per_unit *= 2.0;
    }
    extent.columns = touched_cells(extent.widths[0] * extent.cells_per_unit);
    extent.rows = touched_cells(extent.widths[1] * extent.cells_per_unit);
    return extent;
}

}  // namespace

MapBox map_box(const double* Y, std::size_t N) {
    constexpr std::size_t kChunk = 16384;
    std::vector<MapBox> boxes((N + kChunk - 1) / kChunk, empty_box());
    parallel_for_each(boxes.size(), 1, [&, Y, N](std::size_t chunk) {
        MapBox box = empty_box();
        for (std::size_t n = chunk * kChunk; n < std::min((chunk + 1) * kChunk, N); ++n) {
            add_point(box, Y + 2 * n);
        }
        boxes[chunk] = box;
    });
    MapBox all = empty_box();
    for (const MapBox& box : boxes) {
        add_box(all, box);
    }
    return all;
}

MeshGrid mesh_grid(const MapBox& box, std::size_t N) {
    if (box.least[0] > box.greatest[0]) {
        return {kCellsPerUnit, {0.0, 0.0}, kSplineOrder, kSplineOrder};
    }
    if (!box.is_finite) {
        throw InputError(
            "the map has coordinates that are no numbers: it has grown beyond all "
            "bounds" +
            std::string(kCure));
    }
    const Extent extent = extent_under(box);
    // Not so for a width that is infinite.
    if (!(extent.columns * extent.rows <= most_mesh_cells(N))) {
        throw InputError("the map has grown to " + shortest_text(std::ceil(extent.widths[0])) +
                         " x " + shortest_text(std::ceil(extent.widths[1])) +
                         ", too wide for a mesh over " + std::to_string(N) + " points" + kCure);
    }
    return {extent.cells_per_unit,
            {box.least[0], box.least[1]},
            static_cast<std::size_t>(extent.columns),
            static_cast<std::size_t>(extent.rows)};
}

double most_mesh_cells(std::size_t N) {
    return std::max(kMostCells, kMostCellsPerPoint * static_cast<double>(N));
}

double mesh_cells(const MapBox& box) {
    const Extent extent = extent_under(box);
    return extent.columns * extent.rows;
}

}  // namespace ovik
