#include "stats/map_agreement.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "neighbours/neighbour_search.h"
#include "stats/procrustes.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/random_stream.h"

namespace ovik {

namespace {

/// The `count` nearest others of each row of a map, by their numbers.
std::vector<std::uint32_t> nearest_rows(MatrixView<const double> map, std::size_t count) {
    OwnRandomStream random;
    NeighbourSearch search(map.rows, map.columns, random);
    std::vector<std::uint32_t> nearest(map.rows * count);
    search.findAll(map.values,
                   count + 1,
                   [&](std::size_t n, std::span<const NearRow> found, std::size_t /*worker*/) {
                       std::uint32_t* const row = nearest.data() + n * count;
                       // Of points at one place, the row itself may not be the first, or not be
                       // among so many.
                       std::size_t filled = 0;
                       for (const NearRow& other : found) {
                           if (other.row != n && filled < count) {
                               row[filled++] = other.row;
                           }
                       }
                       std::sort(row, row + filled);
                   });
    return nearest;
}

/// How many neighbours a row has in both maps.
///
/// @param A, B   as `nearest_rows` gives them
/// @param begin  where those of the row begin
std::size_t shared_of_row(const std::vector<std::uint32_t>& A,
                          const std::vector<std::uint32_t>& B,
                          std::size_t begin,
                          std::size_t count) {
    std::size_t shared = 0;
    for (std::size_t a = begin, b = begin; a < begin + count && b < begin + count;) {
        shared += A[a] == B[b] ? 1 : 0;
        const bool advances_both = A[a] == B[b];
        const bool advances_a = A[a] < B[b];
        a += advances_both || advances_a ? 1 : 0;
        b += advances_both || !advances_a ? 1 : 0;
    }
    return shared;
}

/// @param A, B  as `nearest_rows` gives them
double shared_part(const std::vector<std::uint32_t>& A,
                   const std::vector<std::uint32_t>& B,
                   std::size_t count) {
    std::size_t shared = 0;
    for (std::size_t begin = 0; begin < A.size(); begin += count) {
        shared += shared_of_row(A, B, begin, count);
    }
    return static_cast<double>(shared) / static_cast<double>(A.size());
}

void check_maps(std::span<const MatrixView<const double>> maps, std::size_t neighbours) {
    const auto shape = [](const MatrixView<const double>& map) {
        return counted(map.rows, "row", "rows") + " and " +
               counted(map.columns, "dimension", "dimensions");
    };
    if (maps.size() < 2 || neighbours == 0) {
        throw InputError(
            "the agreement of maps takes two of them, and at least one neighbour of each row");
    }
    for (const MatrixView<const double>& map : maps) {
        if (map.rows != maps[0].rows || map.columns != maps[0].columns) {
            throw InputError("a map of " + shape(map) + " cannot be compared with one of " +
                             shape(maps[0]) + "\nGive maps of the same rows in the same order.");
        }
    }
    if (maps[0].rows < 2 || maps[0].columns == 0) {
        throw InputError("maps of " + shape(maps[0]) + " have nothing to agree in");
    }
}

}  // namespace

MapAgreement map_agreement(MatrixView<const double> A,
                           MatrixView<const double> B,
                           std::size_t neighbours) {
    const MatrixView<const double> maps[] = {A, B};
    return mean_agreement(maps, neighbours);
}

MapNeighbours::MapNeighbours(MatrixView<const double> map, std::size_t neighbours) : map_(map) {
    const MatrixView<const double> maps[] = {map, map};
    check_maps(maps, neighbours);
    count_ = std::min(neighbours, map.rows - 1);
    nearest_ = nearest_rows(map, count_);
}

std::vector<double> MapNeighbours::sharedWith(MatrixView<const double> other) const {
    const MatrixView<const double> maps[] = {map_, other};
    check_maps(maps, count_);
    const std::vector<std::uint32_t> of_other = nearest_rows(other, count_);
    std::vector<double> shared;
    for (std::size_t begin = 0; begin < nearest_.size(); begin += count_) {
        shared.push_back(static_cast<double>(shared_of_row(nearest_, of_other, begin, count_)) /
                         static_cast<double>(count_));
    }
    return shared;
}

MapAgreement mean_agreement(std::span<const MatrixView<const double>> maps,
                            std::size_t neighbours) {
    check_maps(maps, neighbours);
    MapAgreement agreement;
    agreement.neighbours = std::min(neighbours, maps[0].rows - 1);
    std::vector<StandardisedMap> shapes;
    std::vector<std::vector<std::uint32_t>> nearest;
    for (const MatrixView<const double>& map : maps) {
        shapes.push_back(standardised(map));
        nearest.push_back(nearest_rows(map, agreement.neighbours));
    }
    for (std::size_t i = 0; i < maps.size(); ++i) {
        for (std::size_t j = i + 1; j < maps.size(); ++j) {
            agreement.disparity += procrustes_disparity(shapes[i], shapes[j]);
            agreement.shared_neighbours +=
                shared_part(nearest[i], nearest[j], agreement.neighbours);
        }
    }
    const double pairs =
        static_cast<double>(maps.size()) * static_cast<double>(maps.size() - 1) / 2.0;
    agreement.disparity /= pairs;
    agreement.shared_neighbours /= pairs;
    return agreement;
}

}  // namespace ovik
