#include "neighbours/kernels/grid_keys.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

constexpr double kLargest = 0x1.fffffffffffffp1023;

/// Coordinates of which every other is of the same dimension, side by side.
struct Extremes {
    Lanes low = broadcast(kLargest);
    Lanes high = broadcast(-kLargest);
    /// NaN from the first number on that is not finite.
    Lanes zero{};

    void add(Lanes x) {
        low = x < low ? x : low;
        high = x > high ? x : high;
        zero += x * 0.0;
    }
};

bool bounds(const double* points, std::size_t count, double* low, double* high) {
    const std::size_t values = 2 * count;
    // Two at a time, so that neither waits for the other.
    Extremes extremes[2];
    std::size_t i = 0;
    for (; i + 2 * kLanes <= values; i += 2 * kLanes) {
        extremes[0].add(load(points + i));
        extremes[1].add(load(points + i + kLanes));
    }
    for (; i < values; i += 2) {
        extremes[0].add(each_lane([=](std::size_t lane) { return points[i + lane % 2]; }));
    }
    double zero = 0.0;
    for (std::size_t d = 0; d < 2; ++d) {
        low[d] = kLargest;
        high[d] = -kLargest;
        for (const Extremes& some : extremes) {
            for (std::size_t lane = d; lane < kLanes; lane += 2) {
                low[d] = some.low[lane] < low[d] ? some.low[lane] : low[d];
                high[d] = some.high[lane] > high[d] ? some.high[lane] : high[d];
                zero += some.zero[lane];
            }
        }
    }
    return zero == 0.0;
}

/// The cells of coordinates in one dimension of a grid.
Bits grid_cells(Lanes coordinate, double low, double side) {
    constexpr double kCells = 0x1p32;
    constexpr std::uint64_t kCellBits = 0xFFFFFFFFU;
    // Numbers from here on that are doubles are whole.
    constexpr double kWhole = 0x1p52;
    Lanes cell = (coordinate - low) / side * kCells;
    // Written so that NaN and everything beyond the grid fall into the last cell.
    cell = cell < kCells - 1.0 ? cell : broadcast(kCells - 1.0);
    cell = coordinate <= low ? Lanes{} : cell;
    const Lanes nearest = (cell + kWhole) - kWhole;
    const Lanes whole = nearest > cell ? nearest - 1.0 : nearest;
    return as_bits(whole + kWhole) & (side == 0.0 ? 0 : kCellBits);
}

/// Puts a zero bit before each bit.
Bits spread(Bits bits) {
    bits = (bits | bits << 16) & 0x0000FFFF0000FFFFU;
    bits = (bits | bits << 8) & 0x00FF00FF00FF00FFU;
    bits = (bits | bits << 4) & 0x0F0F0F0F0F0F0F0FU;
    bits = (bits | bits << 2) & 0x3333333333333333U;
    bits = (bits | bits << 1) & 0x5555555555555555U;
    return bits;
}

Bits keys_of(const double* points, const std::uint32_t* rows, const PlaneGrid& grid) {
    Lanes place[2];
    gather_pairs<2>(points, rows, place);
    return spread(grid_cells(place[0], grid.low[0], grid.side)) << 1 |
           spread(grid_cells(place[1], grid.low[1], grid.side));
}

void keys(const double* points,
          const std::uint32_t* rows,
          std::size_t count,
          const PlaneGrid& grid,
          GridKey* keys) {
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        const Bits bits = keys_of(points, rows + i, grid);
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            keys[i + lane] = {bits[lane], rows[i + lane]};
        }
    }
    for (; i < count; ++i) {
        std::uint32_t alike[kLanes];
        for (std::uint32_t& row : alike) {
            row = rows[i];
        }
        keys[i] = {keys_of(points, alike, grid)[0], rows[i]};
    }
}

}  // namespace

extern const GridKernels kGridKernels;
const GridKernels kGridKernels = {&bounds, &keys};

}  // namespace ovik::OVIK_KERNELS
