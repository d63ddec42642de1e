#pragma once

#include <cstddef>
#include <optional>

#include "neighbours/neighbour_recall.h"

namespace ovik {

/// What the fit of a sample of the rows came to, with whose map a fit starts.
struct SampleReport {
    /// How many rows the sample has.
    std::size_t rows = 0;
    /// How many of their nearest neighbours in the sample were found, if that search was not exact.
    std::optional<NeighbourRecall> recall;
};

}  // namespace ovik
