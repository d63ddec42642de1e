#include "stats/mesh_order.h"

#include <algorithm>

namespace ovik {

namespace {

constexpr std::size_t kBlockColumns = 32;

/// Points are counted by chunks, of which there are few however many points there are.
constexpr std::size_t kMostChunks = 64;
constexpr std::size_t kLeastChunk = 2048;

/// Where points lie in a mesh.
struct Layout {
    MeshGrid grid;
    std::size_t blocks;

    [[nodiscard]] MeshPoint point(const double* Y, std::size_t n) const {
        return {grid.cells_per_unit * (Y[2 * n] - grid.corner[0]),
                grid.cells_per_unit * (Y[2 * n + 1] - grid.corner[1]),
                n};
    }

    [[nodiscard]] std::size_t block(const MeshPoint& point) const {
        const auto x = static_cast<std::size_t>(static_cast<long>(point.x));
        const auto y = static_cast<std::size_t>(static_cast<long>(point.y));
        return y / kBandRows * blocks + x / kBlockColumns;
    }
};

}  // namespace

void MeshOrder::sort(const double* Y, IndexRange wanted, const MapBox& box, const MeshGrid& grid) {
    const std::size_t N = wanted.size();
    bands_ = (grid.rows + kBandRows - 1) / kBandRows;
    blocks_ = (grid.columns + kBlockColumns - 1) / kBlockColumns;
    const Layout layout{grid, blocks_};
    const std::size_t keys = bands_ * blocks_;
    const std::size_t chunk_size = std::max(kLeastChunk, (N + kMostChunks - 1) / kMostChunks);
    const std::size_t chunks = (N + chunk_size - 1) / chunk_size;
    points_.reserve(N);
    starts_.assign(keys + 1, 0);
    places_.assign(chunks * keys, 0);
    const auto for_points = [&](IndexRange range, std::size_t* places, const auto& body) {
        for (std::size_t n = range.begin; n < range.end; ++n) {
            if (holds(box, Y + 2 * n)) {
                const MeshPoint point = layout.point(Y, n);
                body(point, places[layout.block(point)]);
            }
        }
    };
    const auto for_chunks = [&](const auto& body) {
        parallel_for_each(chunks, 1, [&](std::size_t chunk) {
            const std::size_t begin = chunk * chunk_size;
            for_points({wanted.begin + begin, wanted.begin + std::min(begin + chunk_size, N)},
                       places_.data() + chunk * keys,
                       body);
        });
    };
    for_chunks([](const MeshPoint& /*point*/, std::size_t& count) { ++count; });
    std::size_t place = 0;
    for (std::size_t key = 0; key < keys; ++key) {
        starts_[key] = place;
        for (std::size_t chunk = 0; chunk < chunks; ++chunk) {
            std::size_t& count = places_[chunk * keys + key];
            place += count;
            count = place - count;
        }
    }
    starts_[keys] = place;
    MeshPoint* const points = points_.get();
    for_chunks([points](const MeshPoint& point, std::size_t& next) { points[next++] = point; });
}

}  // namespace ovik
