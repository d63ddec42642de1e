#pragma once

#include <cstddef>
#include <vector>

namespace plain {

/// A map, and the matrix that it was made of after centring and scaling. Row-major.
struct FixedMap {
    std::vector<double> input;
    std::vector<double> means;
    double factor = 1.0;
    std::vector<double> embedding;
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::size_t out_dims = 0;
    double perplexity = 0.0;
};

struct Place {
    std::vector<double> y;
    double cost = 0.0;
};

/// The place of a row, in the units of the matrix as it was read, on a map: gradient descent of its
/// divergence, 125 iterations of rate 2 with momentum 0.8 and gains, in steps of length 1 at most
/// and within the box of the map's points. It sets out from the cheapest three of the median of the
/// places of its 25 nearest rows and these places themselves; the cheapest of all that were met.
Place place_row(const FixedMap& map, const std::vector<double>& row);

}  // namespace plain
