#include "input/duplicate_rows.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

namespace ovik {

namespace {

/// Equal rows have equal hashes, also those that differ in the signs of their zeros.
std::size_t row_hash(const double* row, std::size_t columns) {
    std::size_t hash = columns;
    for (std::size_t d = 0; d < columns; ++d) {
        // Odd multiplier of large order, as in multiplicative hashing (Knuth, volume 3, 6.4).
        hash = (hash ^ std::hash<double>()(row[d])) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 32U;
    }
    return hash;
}

}  // namespace

std::size_t count_duplicate_rows(const double* values, std::size_t rows, std::size_t columns) {
    const auto hash = [=](const double* row) { return row_hash(row, columns); };
    const auto equal = [=](const double* a, const double* b) {
        return std::equal(a, a + columns, b);
    };
    std::unordered_set<const double*, decltype(hash), decltype(equal)> seen(rows, hash, equal);
    for (std::size_t n = 0; n < rows; ++n) {
        seen.insert(values + n * columns);
    }
    return rows - seen.size();
}

}  // namespace ovik
