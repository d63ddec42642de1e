#include "stats/noise_record.h"

#include "stats/perplexity_choice.h"

namespace ovik {

namespace {

RecordedNoiseSummary recorded(const NoiseChances& chances,
                              const NoiseComparison& comparison,
                              std::size_t matrices,
                              std::size_t rows) {
    const NoiseSummary summary = summary_of(chances);
    // In noise no number of matrices would tell a row from it.
    const bool is_as_noise = summary.better <= largest_share_of_noise(rows, matrices);
    return {summary.better,
            summary.told,
            summary.least_rate,
            summary.signal,
            is_as_noise ? 0 : noise_fits_needed(comparison, summary, rows)};
}

}  // namespace

RecordedNoise recorded_noise(const NoiseComparison& comparison,
                             std::size_t matrices,
                             std::size_t neighbours,
                             std::size_t rows) {
    return {matrices,
            neighbours,
            comparison.groups,
            comparison.least_chance,
            recorded(comparison.kept, comparison, matrices, rows),
            recorded(comparison.misfit, comparison, matrices, rows)};
}

}  // namespace ovik
