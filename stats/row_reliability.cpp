#include "stats/row_reliability.h"

#include <string>

namespace ovik {

RowReliability row_reliability(const RowNeighbourhoods& neighbourhoods,
                               const std::vector<double>& costs) {
    RowReliability reliability;
    for (const NeighbourhoodQuality& quality : neighbourhoods.quality) {
        const std::string k = std::to_string(quality.neighbours);
        reliability.columns.push_back({"kept_" + k, "Kept of " + k + " nearest", quality.kept});
    }
    for (const NeighbourhoodQuality& quality : neighbourhoods.quality) {
        const std::string k = std::to_string(quality.neighbours);
        reliability.columns.push_back(
            {"trustworthiness_" + k, "Trustworthiness of " + k + " nearest", quality.trusted});
    }
    reliability.columns.push_back({"cost", "Share of the cost", costs});
    reliability.near = neighbourhoods.misplaced.near;
    reliability.far = neighbourhoods.misplaced.far;
    reliability.falsely_near = neighbourhoods.misplaced.falsely_near;
    reliability.torn = neighbourhoods.misplaced.torn;
    return reliability;
}

}  // namespace ovik
