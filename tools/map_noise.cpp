#include "tools/map_noise.h"

#include <cmath>
#include <string>
#include <vector>

#include "input/duplicate_rows.h"
#include "stats/noise_fits.h"
#include "stats/noise_record.h"
#include "stats/row_reliability.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/rounded.h"

#include "tools/interruption.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// What is to be said of all rows where they are, or are not, told from noise.
std::string told_text(const std::string& by,
                      const NoiseSummary& summary,
                      const NoiseComparison& comparison,
                      std::size_t rows) {
    const std::string line = "By " + by + ": ";
    if (summary.told > 0.0) {
        return line + percent_text(summary.told) +
               " of the rows told from noise at a false discovery rate of 5 %, " +
               percent_text(summary.better) + " better than 95 % of it";
    }
    const auto better =
        static_cast<std::size_t>(std::lround(summary.better * static_cast<double>(rows)));
    return line + "no row told from noise at a false discovery rate of 5 %, " +
           percent_text(summary.better) + " (" + counted(better, "row", "rows") +
           ") better than 95 % of it; least chance " +
           significant_text(comparison.least_chance, 2) + ", least rate " +
           significant_text(summary.least_rate, 2) + ", about " + percent_text(summary.signal) +
           " of the rows not as noise, whichever they are";
}

/// Says by how many matrices rows could be told from noise, if these were too few.
void note_matrices(const std::string& by, const RecordedNoiseSummary& summary) {
    if (summary.needed > 0) {
        complain("note: too few matrices of noise to tell single rows from it by " + by +
                 ", where about " + percent_text(summary.better) +
                 " are better: it takes --against-noise " + std::to_string(summary.needed));
    }
}

/// Says that copies of rows are no signal, if there are any.
void note_copies(MatrixView<const double> X) {
    const std::size_t copies = count_duplicate_rows(X.values, X.rows, X.columns);
    if (copies > 0) {
        complain("note: " + counted(copies, "row holds", "rows hold") +
                 " the same values as an earlier one, and shuffling parts them: copies are told "
                 "from noise because they are copies\nLeave copies out, or read the shares without "
                 "them.");
    }
}

}  // namespace

std::optional<RecordedNoise> compare_with_noise(const Options& options,
                                                const FitOptions& fit,
                                                MatrixView<const double> X,
                                                const NeighbourhoodQuality& quality,
                                                RowReliability& reliability) {
    const auto matrices = static_cast<std::size_t>(options.against_noise);
    print_info("Embedding " + counted(matrices, "matrix", "matrices") + " of shuffled values");
    const NoiseManner manner{
        quality.neighbours, options.seeds_at_once, &ovik::tool::goes_on, options.on_stage};
    const std::vector<RowFits> maps = noise_fits(X, fit, matrices, manner);
    if (maps.empty()) {
        complain("The rows are not compared with noise, as the run was interrupted");
        return std::nullopt;
    }
    const RowFits fits = row_fits(X, quality, *column_of(reliability, "misfit"));
    const NoiseComparison comparison = compare_with_noise(fits, maps);
    add_chances(reliability, fits, comparison);
    const NoiseSummary kept = summary_of(comparison.kept);
    const NoiseSummary misfit = summary_of(comparison.misfit);
    const RecordedNoise noise = recorded_noise(comparison, matrices, quality.neighbours, X.rows);
    print_info(told_text("kept neighbours", kept, comparison, X.rows));
    print_info(told_text("misfit", misfit, comparison, X.rows));
    note_matrices("kept neighbours", noise.kept);
    note_matrices("misfit", noise.misfit);
    note_copies(X);
    return noise;
}

}  // namespace ovik::tool
