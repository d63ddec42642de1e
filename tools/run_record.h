#pragma once

#include <string>
#include <vector>

#include "stats/neighbourhood_quality.h"
#include "stats/run_times.h"

namespace ovik::tool {

/// A file that a run was to write.
struct ResultFile {
    /// As messages call it: "Result table".
    std::string what;
    std::string path;
    /// Why it is not there; empty if it is.
    std::string failure;
};

/// What came of one run of the engine.
struct RunRecord {
    double perplexity = 0.0;
    /// The last iteration; less than was asked for if the run was ended early.
    int iteration = -1;
    /// Of every iteration, as the progress bar shows it.
    std::vector<double> costs;
    /// Against the similarities without exaggeration.
    double final_cost = 0.0;
    RunTimes seconds;
    /// Empty unless it was asked for.
    std::vector<NeighbourhoodQuality> quality;
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

}  // namespace ovik::tool
