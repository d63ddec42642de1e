#include "stats/map_agreement.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "neighbours/neighbour_search.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/random_stream.h"

namespace ovik {

namespace {

/// A map with its centre at 0 and a norm of 1; all zero if its points are at one place.
std::vector<double> standardised(MatrixView<const double> map) {
    std::vector<double> values(map.all().begin(), map.all().end());
    double largest = 0.0;
    for (const double value : values) {
        largest = std::max(largest, std::fabs(value));
    }
    // By a power of two, which rounds nothing, so that no sum gets out of range.
    int exponent = 0;
    std::frexp(largest, &exponent);
    for (double& value : values) {
        value = std::ldexp(value, -exponent);
    }
    const std::size_t dims = map.columns;
    double squares = 0.0;
    for (std::size_t d = 0; d < dims; ++d) {
        // From the first point on: points at one place are then exactly at 0.
        const double first = values[d];
        double sum = 0.0;
        for (std::size_t n = 0; n < map.rows; ++n) {
            values[n * dims + d] -= first;
            sum += values[n * dims + d];
        }
        const double mean = sum / static_cast<double>(map.rows);
        for (std::size_t n = 0; n < map.rows; ++n) {
            values[n * dims + d] -= mean;
            squares += values[n * dims + d] * values[n * dims + d];
        }
    }
    const double norm = std::sqrt(squares);
    for (double& value : values) {
        value = norm > 0.0 ? value / norm : 0.0;
    }
    return values;
}

/// A square matrix, column by column.
using SquareColumns = std::vector<std::vector<double>>;

double dot(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

/// Turns two columns in their plane until they are at right angles.
///
/// @return whether they were not
bool orthogonalise(std::vector<double>& a, std::vector<double>& b) {
    constexpr double kRightAngle = 1e-15;
    const double product = dot(a, b);
    const double aa = dot(a, a);
    const double bb = dot(b, b);
    if (std::fabs(product) <= kRightAngle * std::sqrt(aa * bb)) {
        return false;
    }
    const double cotangent = (bb - aa) / (2.0 * product);
    const double tangent =
        std::copysign(1.0, cotangent) / (std::fabs(cotangent) + std::hypot(1.0, cotangent));
    const double cosine = 1.0 / std::sqrt(1.0 + tangent * tangent);
    const double sine = cosine * tangent;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double before = a[i];
        a[i] = cosine * before - sine * b[i];
        b[i] = sine * before + cosine * b[i];
    }
    return true;
}

/// The sum of the singular values, by one-sided Jacobi rotations.
double nuclear_norm(SquareColumns columns) {
    constexpr int kMostSweeps = 60;
    bool was_turned = true;
    for (int sweep = 0; was_turned && sweep < kMostSweeps; ++sweep) {
        was_turned = false;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            for (std::size_t j = i + 1; j < columns.size(); ++j) {
                was_turned = orthogonalise(columns[i], columns[j]) || was_turned;
            }
        }
    }
    double sum = 0.0;
    for (const std::vector<double>& column : columns) {
        sum += std::sqrt(dot(column, column));
    }
    return sum;
}

/// @param A, B  standardised, row-major
double disparity_of(const std::vector<double>& A, const std::vector<double>& B, std::size_t dims) {
    SquareColumns product(dims, std::vector<double>(dims, 0.0));
    for (std::size_t n = 0; n < A.size(); n += dims) {
        for (std::size_t j = 0; j < dims; ++j) {
            for (std::size_t i = 0; i < dims; ++i) {
                product[j][i] += A[n + i] * B[n + j];
            }
        }
    }
    const double overlap = nuclear_norm(std::move(product));
    return std::clamp(1.0 - overlap * overlap, 0.0, 1.0);
}

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

/// @param A, B  as `nearest_rows` gives them
double shared_part(const std::vector<std::uint32_t>& A,
                   const std::vector<std::uint32_t>& B,
                   std::size_t count) {
    std::size_t shared = 0;
    for (std::size_t begin = 0; begin < A.size(); begin += count) {
        for (std::size_t a = begin, b = begin; a < begin + count && b < begin + count;) {
            shared += A[a] == B[b] ? 1 : 0;
            const bool advances_both = A[a] == B[b];
            const bool advances_a = A[a] < B[b];
            a += advances_both || advances_a ? 1 : 0;
            b += advances_both || !advances_a ? 1 : 0;
        }
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

MapAgreement mean_agreement(std::span<const MatrixView<const double>> maps,
                            std::size_t neighbours) {
    check_maps(maps, neighbours);
    MapAgreement agreement;
    agreement.neighbours = std::min(neighbours, maps[0].rows - 1);
    std::vector<std::vector<double>> shapes;
    std::vector<std::vector<std::uint32_t>> nearest;
    for (const MatrixView<const double>& map : maps) {
        shapes.push_back(standardised(map));
        nearest.push_back(nearest_rows(map, agreement.neighbours));
    }
    for (std::size_t i = 0; i < maps.size(); ++i) {
        for (std::size_t j = i + 1; j < maps.size(); ++j) {
            agreement.disparity += disparity_of(shapes[i], shapes[j], maps[0].columns);
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
