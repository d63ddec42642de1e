#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "results/recorded_stability.h"
#include "results/row_reliability.h"

namespace ovik {

/// A file that a run was to write.
struct ResultFile {
    /// What messages call the file, such as "Result table".
    std::string what;
    std::string path;
    /// Why it is not there; empty if it is.
    std::string failure;
};

/// How long the stages of a run took, by the clock on the wall.
struct RecordedSeconds {
    double similarities = 0.0;
    double fitting = 0.0;
    /// What writing table, log and plots took.
    double results = 0.0;
    /// What the map of a sample took at which the rows start; 0 without.
    double sample = 0.0;
};

/// How well the map keeps neighbourhoods of one size.
struct RecordedQuality {
    /// How many rows a neighbourhood has.
    std::size_t neighbours = 0;
    /// Trustworthiness of the map, 0 to 1.
    double trustworthiness = 0.0;
    /// The part of the neighbours that the map keeps, 0 to 1.
    double preservation = 0.0;
};

/// Clusters of the rows.
struct RecordedClusters {
    double resolution = 1.0;
    double modularity = 0.0;
    /// How many rows each has, the largest first.
    std::vector<std::size_t> sizes;
};

/// How the rows of a map compare with those of noise by one statistic.
struct RecordedNoiseSummary {
    /// The share of rows that are better than 95 % of noise.
    double better = 0.0;
    /// The share of rows that are told from noise at a false discovery rate of 5 %.
    double told = 0.0;
    /// The least rate of a row.
    double least_rate = 1.0;
    /// About what share of rows does not do as noise, whichever they are.
    double signal = 0.0;
    /// From how many matrices on rows could be told from noise; 0 if there were enough, or the rows
    /// are as noise.
    std::size_t needed = 0;
};

/// How the rows of a map compare with those of noise.
struct RecordedNoise {
    /// How many matrices of noise were embedded.
    std::size_t matrices = 0;
    /// How many nearest neighbours of each row were looked at.
    std::size_t neighbours = 0;
    /// How many groups of rows of like concentration were compared, each by itself.
    std::size_t groups = 0;
    /// The least chance that a row could have.
    double least_chance = 1.0;
    RecordedNoiseSummary kept;
    RecordedNoiseSummary misfit;
};

/// A fit of one seed among several.
struct RecordedSeed {
    int seed = 0;
    /// The last iteration; less than was asked for if the run was ended early.
    int iteration = -1;
    double final_cost = 0.0;
    bool is_complete = false;
};

/// How far the maps of several seeds agree, averaged over pairs.
struct RecordedAgreement {
    /// Procrustes disparity, 0 to 1.
    double disparity = 0.0;
    /// How many nearest neighbours of a row are compared.
    std::size_t neighbours = 0;
    /// The part of them that maps share, 0 to 1.
    double shared_neighbours = 0.0;
};

/// How the map of a run compares with maps of other seeds and of drawn columns, all made by its
/// options. Numbers that were not measured are NaN.
struct RecordedTrials {
    /// How many fits there were of each kind; the map itself is the first of the seeds.
    std::size_t seeds = 0;
    std::size_t columns = 0;
    /// How many nearest rows on a map are compared with those on another.
    std::size_t neighbours = 0;
    /// The share of them that rows have on a map of another seed, of drawn columns.
    double shared_by_seeds = std::numeric_limits<double>::quiet_NaN();
    double shared_by_columns = std::numeric_limits<double>::quiet_NaN();
    /// The median of how far the places of a row spread (`RowStability`).
    double spread_by_seeds = std::numeric_limits<double>::quiet_NaN();
    double spread_by_columns = std::numeric_limits<double>::quiet_NaN();
};

/// What came of one run of the engine.
struct RunRecord {
    /// NaN where the run has none.
    double perplexity = 0.0;
    /// The last iteration; less than was asked for if the run was ended early.
    int iteration = -1;
    /// Whether that is because the cost gained too little.
    bool settled = false;
    /// The cost of every iteration, as the progress bar shows it.
    std::vector<double> costs;
    /// The cost of the map against the affinities without exaggeration.
    double final_cost = 0.0;
    /// The checksum of the bits of the map (`checksum_of`); none where no map is left.
    std::optional<std::uint64_t> embedding;
    /// The share of the variance that principal components keep, if they stand for the columns.
    std::optional<double> variance_kept;
    /// The share of the nearest neighbours that were found, if the search was not exact.
    std::optional<double> neighbour_recall;
    /// The same of the sample at whose map the rows start.
    std::optional<double> sample_recall;
    RecordedSeconds seconds;
    /// Of a run from several seeds, one of which gave the map; empty for a run from one.
    std::vector<RecordedSeed> seeds;
    /// The seed of the map, if there were several.
    int kept_seed = 0;
    /// None of a run from one seed, or where fewer than two came to their end.
    std::optional<RecordedAgreement> agreement;
    /// The quality of the map; empty unless it was asked for.
    std::vector<RecordedQuality> quality;
    /// None unless they were asked for.
    std::optional<RecordedClusters> clusters;
    /// How far each row can be trusted; null unless it was asked for.
    std::shared_ptr<const RowReliability> reliability;
    /// None unless a perplexity was to be chosen.
    std::optional<RecordedTrials> trials;
    /// None unless the rows were compared with noise.
    std::optional<RecordedNoise> noise;
    /// How far the map stays as it is on others; null unless it was asked for.
    std::shared_ptr<const RecordedStability> stability;
    std::vector<ResultFile> files;
    /// The map, row-major, rows x dimensions; empty unless it is to be compared with others.
    std::vector<double> places;

    [[nodiscard]] bool isComplete() const {
        for (const ResultFile& file : files) {
            if (!file.failure.empty()) {
                return false;
            }
        }
        return true;
    }
};

/// What came of choosing a perplexity among those of the runs.
struct RecordedChoice {
    /// None if none is recommended.
    std::optional<double> recommended;
    /// What is recommended, and why.
    std::string sentence;
    std::vector<ResultFile> files;
};

/// What came of placing rows on the map of a model. Lists have an element for each row.
struct PlacementRecord {
    /// Path of the model.
    std::string model;
    /// Rows of the map, and its perplexity.
    std::size_t map_rows = 0;
    double perplexity = 0.0;
    /// What the placement took, by the clock on the wall.
    double seconds = 0.0;
    std::vector<std::string> names;
    /// The divergence of each place from the row's affinities, in nats.
    std::vector<double> costs;
    /// The row of the map that is nearest in the input, and how far that is in the units of the
    /// data; with a map by correlation, the root of 2 (1 - r).
    std::vector<std::string> nearest;
    std::vector<double> nearest_distances;
    std::vector<ResultFile> files;
};

}  // namespace ovik
