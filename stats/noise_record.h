#pragma once

#include <cstddef>

#include "results/run_record.h"
#include "stats/noise_comparison.h"

namespace ovik {

/// A comparison with noise as reports have it.
///
/// @param matrices    of noise
/// @param neighbours  how many of each row were looked at
/// @param rows        of the matrix
RecordedNoise recorded_noise(const NoiseComparison& comparison,
                             std::size_t matrices,
                             std::size_t neighbours,
                             std::size_t rows);

}  // namespace ovik
