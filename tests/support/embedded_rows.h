#pragma once

#include <cstddef>
#include <vector>

#include "stats/sparse_matrix.h"

#include "tests/support/random_points.h"

namespace ovik::test {

/// A matrix whose row n has n entries, in an embedding of as many points.
struct EmbeddedRows {
    EmbeddedRows(std::size_t N, std::size_t dims) : Y(random_values(N * dims, 81)), dims(dims) {
        starts.push_back(0);
        for (std::size_t n = 0; n < N; ++n) {
            for (std::size_t i = 0; i < n; ++i) {
                columns.push_back(static_cast<unsigned int>((n + 3 * i + 1) % N));
                values.push_back(1e-3 / static_cast<double>(i + 1));
            }
            starts.push_back(static_cast<unsigned int>(columns.size()));
        }
    }

    [[nodiscard]] std::size_t count() const { return starts.size() - 1; }

    [[nodiscard]] SparseMatrixView view() const {
        return {starts.data(), columns.data(), values.data()};
    }

    /// Of row n: 1 + squared distance of the points of an entry.
    [[nodiscard]] double inverseQ(std::size_t n, std::size_t entry) const {
        double squared_distance = 0.0;
        for (std::size_t d = 0; d < dims; ++d) {
            const double difference = Y[n * dims + d] - Y[columns[entry] * dims + d];
            squared_distance += difference * difference;
        }
        return 1.0 + squared_distance;
    }

    /// The attractive forces, each added to `start` entry by entry.
    [[nodiscard]] std::vector<double> forces(double start) const {
        std::vector<double> forces(Y.size(), start);
        for (std::size_t n = 0; n < count(); ++n) {
            for (std::size_t i = starts[n]; i < starts[n + 1]; ++i) {
                const double factor = values[i] * (1.0 / inverseQ(n, i));
                for (std::size_t d = 0; d < dims; ++d) {
                    forces[n * dims + d] += factor * (Y[n * dims + d] - Y[columns[i] * dims + d]);
                }
            }
        }
        return forces;
    }

    std::vector<double> Y;
    std::size_t dims;
    std::vector<unsigned int> starts;
    std::vector<unsigned int> columns;
    std::vector<double> values;
};

}  // namespace ovik::test
