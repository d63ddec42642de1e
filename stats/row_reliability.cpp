#include "stats/row_reliability.h"

#include <string>

#include "stats/row_concentration.h"

namespace ovik {

RowReliability row_reliability(const RowNeighbourhoods& neighbourhoods,
                               const std::vector<double>& costs,
                               const std::vector<double>& misfits) {
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
    reliability.columns.push_back({"misfit", "Misfit", misfits});
    reliability.near = neighbourhoods.misplaced.near;
    reliability.far = neighbourhoods.misplaced.far;
    reliability.falsely_near = neighbourhoods.misplaced.falsely_near;
    reliability.torn = neighbourhoods.misplaced.torn;
    return reliability;
}

const std::vector<double>* column_of(const RowReliability& reliability, std::string_view name) {
    for (const RowNumbers& column : reliability.columns) {
        if (column.name == name) {
            return &column.values;
        }
    }
    return nullptr;
}

RowFits row_fits(MatrixView<const double> X,
                 const NeighbourhoodQuality& quality,
                 const std::vector<double>& misfits) {
    return {quality.kept, misfits, row_concentrations(X)};
}

void add_chances(RowReliability& reliability,
                 const RowFits& fits,
                 const NoiseComparison& comparison) {
    const auto add = [&reliability](
                         const char* name, const char* title, const std::vector<double>& values) {
        reliability.columns.push_back({name, title, values});
    };
    add("concentration", "Concentration in one column", fits.concentration);
    add("p_kept", "Noise: chance of keeping as many", comparison.kept.p);
    add("q_kept", "Noise: false discovery rate by kept neighbours", comparison.kept.q);
    add("p_misfit", "Noise: chance of such a misfit", comparison.misfit.p);
    add("q_misfit", "Noise: false discovery rate by misfit", comparison.misfit.q);
}

std::optional<NoiseSummary> noise_summary_of(const RowReliability& reliability,
                                             const std::string& by) {
    const std::vector<double>* const p = column_of(reliability, "p_" + by);
    const std::vector<double>* const q = column_of(reliability, "q_" + by);
    if (p == nullptr || q == nullptr) {
        return std::nullopt;
    }
    return summary_of({*p, *q});
}

}  // namespace ovik
