#pragma once

#include <cstddef>
#include <vector>

#include "tests/plain/plain_components.h"

namespace plain {

/// The value of a sparse matrix at a place.
struct Entry {
    std::size_t row;
    std::size_t column;
    double value;
};

/// The first `count` principal components of a sparse matrix whose columns are centred on the way:
/// the best among directions that products of its covariances give, 16 at a time.
///
/// @param entries  by rows, and by columns within a row
Components sparse_principal_components(const std::vector<Entry>& entries,
                                       std::size_t N,
                                       std::size_t dims,
                                       std::size_t count);

}  // namespace plain
