#pragma once

#include <string>

#include "input/known_columns.h"
#include "results/map_model.h"
#include "stats/tsne.h"

#include "tools/options.h"

namespace ovik::tool {

/// Refuses options of a map on which new rows cannot be placed: those by which rows are compared in
/// another way than by their columns and affinities of one perplexity.
///
/// @throws InputError with the option and the cure
void check_placing_options(const FitOptions& fit);

/// The same for the options of a model, as `MapModel` has them.
///
/// @param path  of the model, for the message
void check_placing_options(const std::string& path, const MapModel& model);

/// The metric by which the map of a model was made.
///
/// @param path  of the model, for the message
/// @throws InputError if this program does not know it
MetricKind metric_of(const std::string& path, const MapModel& model);

/// The numerics by which it was made.
///
/// @param path  of the model, for the message
/// @throws InputError if this program does not know them
NumericsKind numerics_of(const std::string& path, const MapModel& model);

/// What is needed to place further rows on the map of a run.
///
/// @param tsne     after `actuate`, before `finish`
/// @param columns  of the matrix, as it was loaded
template <typename T>
MapModel model_of_run(const TSNE<T>& tsne, const Options& options, const KnownColumns& columns);

}  // namespace ovik::tool
