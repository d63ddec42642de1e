#include "stats/seed_texts.h"

#include <cstdio>

namespace ovik {

std::string seeds_text(const SeedReport& seeds) {
    std::string text = std::to_string(seeds.runs.front().seed);
    if (seeds.runs.size() == 1) {
        return text;
    }
    return text + " to " + std::to_string(seeds.runs.back().seed) + "; " +
           std::to_string(seeds.runs[seeds.kept].seed) + " has the lowest cost";
}

std::string agreement_text(const MapAgreement& agreement) {
    char text[160];
    std::snprintf(text,
                  sizeof text,
                  "Procrustes disparity %.4f, %.1f %% of the %zu nearest neighbours shared",
                  agreement.disparity,
                  100.0 * agreement.shared_neighbours,
                  agreement.neighbours);
    return text;
}

}  // namespace ovik
