#pragma once

#include <cstddef>
#include <string>
#include <vector>

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

/// What came of one run of the engine.
struct RunRecord {
    /// NaN where the run has none.
    double perplexity = 0.0;
    /// The last iteration; less than was asked for if the run was ended early.
    int iteration = -1;
    /// The cost of every iteration, as the progress bar shows it.
    std::vector<double> costs;
    /// The cost of the map against the affinities without exaggeration.
    double final_cost = 0.0;
    RecordedSeconds seconds;
    /// The quality of the map; empty unless it was asked for.
    std::vector<RecordedQuality> quality;
    std::vector<ResultFile> files;

    [[nodiscard]] bool isComplete() const {
        for (const ResultFile& file : files) {
            if (!file.failure.empty()) {
                return false;
            }
        }
        return true;
    }
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
    /// The row of the map that is nearest in the input, and how far that is once it is scaled.
    std::vector<std::string> nearest;
    std::vector<double> nearest_distances;
    std::vector<ResultFile> files;
};

}  // namespace ovik
