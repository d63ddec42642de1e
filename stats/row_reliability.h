#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "results/row_reliability.h"
#include "stats/neighbourhood_quality.h"
#include "stats/noise_comparison.h"
#include "util/matrix_view.h"

namespace ovik {

/// How many nearest rows count as near where neighbours are false or torn.
constexpr std::size_t kNearRows = 10;

/// Fewest rows of which single ones can be judged.
constexpr std::size_t kFewestJudgedRows = 30;

/// Puts together what a map says of its rows by itself: what each keeps of its neighbours, how
/// trustworthy these are, and its cost.
///
/// @param neighbourhoods  of the map
/// @param costs           of the rows (`FitReport::row_costs`)
/// @param misfits         of the rows (`FitReport::row_misfits`)
RowReliability row_reliability(const RowNeighbourhoods& neighbourhoods,
                               const std::vector<double>& costs,
                               const std::vector<double>& misfits);

/// The numbers of a column; null if there is none of the name.
const std::vector<double>* column_of(const RowReliability& reliability, std::string_view name);

/// What is compared with noise of the rows of a map.
///
/// @param X  as it was loaded: neither prepared for a metric nor centred
/// @param quality  of the map, for the neighbours that are looked at
/// @param misfits  of the rows (`FitReport::row_misfits`)
RowFits row_fits(MatrixView<const double> X,
                 const NeighbourhoodQuality& quality,
                 const std::vector<double>& misfits);

/// Adds what a comparison with noise says of each row.
///
/// @param fits  of the rows that were compared
void add_chances(RowReliability& reliability,
                 const RowFits& fits,
                 const NoiseComparison& comparison);

/// How rows compare with noise by their kept neighbours (`by` is "kept") or their misfit
/// ("misfit"), as `add_chances` has left it; none if they were not compared.
std::optional<NoiseSummary> noise_summary_of(const RowReliability& reliability,
                                             const std::string& by);

}  // namespace ovik
