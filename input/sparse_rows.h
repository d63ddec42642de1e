#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ovik {

/// A matrix of which most values are 0: the others, row by row, in the order of their columns.
struct SparseRows {
    std::size_t rows = 0;
    std::size_t columns = 0;
    /// Where the entries of row n begin, `rows` + 1 of them: those of row n are `starts[n]` to
    /// `starts[n + 1]` - 1.
    std::vector<std::size_t> starts;
    /// The column of each entry; each column stands once in a row at most.
    std::vector<std::uint32_t> column_of;
    /// The value of each entry, which may be 0.
    std::vector<double> values;

    [[nodiscard]] std::size_t entries() const { return values.size(); }
};

/// What the entries of a sparse matrix take, in bytes.
inline double sparse_bytes(double rows, double entries) {
    return 8.0 * rows + 12.0 * entries;
}

/// Up to so many values a sparse matrix is made dense; a larger one stays sparse if its components
/// are to stand for its columns. A fixed number, so that the map does not depend on the memory of
/// the machine.
constexpr std::size_t kMostDenseValues = 20'000'000;

}  // namespace ovik
