#include "stats/noise_record.h"

#include <algorithm>

namespace ovik {

namespace {

RecordedNoiseSummary recorded(const NoiseSummary& summary) {
    return {summary.better, summary.told, summary.least_rate, summary.signal};
}

}  // namespace

RecordedNoise recorded_noise(const NoiseComparison& comparison,
                             std::size_t matrices,
                             std::size_t neighbours,
                             std::size_t rows) {
    const NoiseSummary kept = summary_of(comparison.kept);
    const NoiseSummary misfit = summary_of(comparison.misfit);
    return {matrices,
            neighbours,
            comparison.groups,
            comparison.least_chance,
            std::max(noise_fits_needed(comparison, kept, rows),
                     noise_fits_needed(comparison, misfit, rows)),
            recorded(kept),
            recorded(misfit)};
}

}  // namespace ovik
